#include "api/ScanProtocol.h"

#include <gtest/gtest.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "tests/fakes/FakeCompanions.h"
#include "tests/reception/scan_harness.h"
#include "tests/reception/scan_pictures.h"

namespace reception_test {
namespace {

using Calls = std::vector<std::string>;
using fakes::MemoryDevice;

_QS_SELECT_DEVICE_INFO deviceInfo(int connectionType, const char* primary, const char* secondary = "") {
  _QS_SELECT_DEVICE_INFO info{};
  info.connectionType = connectionType;
  std::strcpy(info.primaryName, primary);
  std::strcpy(info.secondaryName, secondary);
  return info;
}

// The facade with all four companions injected, or some of them.
struct Injected {
  fakes::CallList calls;
  fakes::FakeDeviceAccess device{calls};
  fakes::FakeScanCommand command{calls};
  fakes::FakeDeviceCaps caps{calls};
  fakes::FakeScanProc proc{calls};
  CScanProtocol core;

  Injected() {
    core.SetDeviceAccess(&device);
    core.SetScanCommand(&command);
    core.SetDeviceCaps(&caps);
    core.SetScanProc(&proc);
    caps.capability.generation = SCANCMD_GENERATION_2ND;
    caps.capability.commandVersion = 0x0102;
  }
  void initialize() {
    EXPECT_EQ(core.Initialize(), 0u);
    auto info = memoryDeviceInfo();
    EXPECT_EQ(core.SelectDevice(info), 0u);
    calls.take();
  }
};

// --- Before Initialize
// -------------------------------------------------------------------------------------------------

TEST(ScanProtocol, BeforeInitializeEachOperationGivesItsOwnRefusal) {
  CScanProtocol core;
  EXPECT_FALSE(core.IsInitialized());
  int count = 5;
  _QS_SELECT_DEVICE_INFO* list = reinterpret_cast<_QS_SELECT_DEVICE_INFO*>(&count);
  EXPECT_EQ(core.EnumerateDevice(&list, &count), 0x10100001u);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(reinterpret_cast<int*>(list), &count) << "left alone";
  EXPECT_EQ(core.EnumerateDevice(nullptr, nullptr), 0x10100001u);
  core.ReleaseDeviceList();
  EXPECT_FALSE(core.CheckConnection());
  EXPECT_FALSE(core.IsAdfInserted());
  QS_SCANNER_CAPABILITY capability;
  tagQS_SCANNER_CAPABILITY_VER1 older;
  EXPECT_EQ(core.QueryDeviceCapabilities(nullptr), 0x10100001u);
  EXPECT_EQ(core.QueryDeviceCapabilities(&capability), 0x10100009u);
  EXPECT_EQ(core.QueryDeviceCapabilities(1, &older), 0x10100009u);
  EXPECT_EQ(core.QueryDeviceCapabilities(2, nullptr), 0x10100009u);
  tagQS_PUSHSCAN_PARAMETERS push;
  std::memset(&push, 0x5A, sizeof push);
  const tagQS_PUSHSCAN_PARAMETERS untouched = push;
  EXPECT_EQ(core.GetPushScanParameter(1, &push), 0u);
  EXPECT_EQ(core.GetPushScanParameter(1, nullptr), 0u);
  EXPECT_EQ(std::memcmp(&push, &untouched, sizeof push), 0);
  QS_SCANNER_PARAMETERS parameters{};
  EXPECT_EQ(core.StartScanning(&parameters), 0x10100001u);
  EXPECT_EQ(core.StartScanning(nullptr), 0x10100001u);
  void* data = nullptr;
  int size = 0;
  EXPECT_EQ(core.GetIccProfile(nullptr, &size), 0x7010000Au);
  EXPECT_EQ(core.GetIccProfile(&data, nullptr), 0x7010000Au);
  EXPECT_EQ(core.GetIccProfile(&data, &size), 0x1010000Du);
  tagQS_SCAN_IMAGEDATA image{};
  int pageNo = 0;
  EXPECT_EQ(core.ReadImageData(nullptr, &pageNo), 0x7010000Au);
  EXPECT_EQ(core.ReadImageData(&image, &pageNo), 0x1010000Du);
  EXPECT_EQ(core.ReadImageData(&image, nullptr), 0x1010000Du);
  EXPECT_TRUE(core.AbortScanning());
  core.FreeImageData(1);
  EXPECT_EQ(core.GetScanStatus(), READY);
  EXPECT_EQ(core.GetCurrentReceivedLines(1), 0);
  const QS_BITMAP_IMAGE_INFO info = core.GetScanBitmapImageInfo();
  EXPECT_EQ(info.bitPerPixel, 0);
  EXPECT_EQ(info.widthPixel, 0);
  EXPECT_EQ(info.pixelsPerMeterX, 0);
  core.UnInitialize();
  core.UnInitialize();
}

TEST(ScanProtocol, WithoutADeviceEachOperationGivesItsOwnRefusal) {
  CScanProtocol core;
  MemoryDevice device;
  core.SetDeviceAccess(&device);
  ASSERT_EQ(core.Initialize(), 0u);
  EXPECT_TRUE(core.IsInitialized());
  EXPECT_FALSE(core.CheckConnection());
  EXPECT_FALSE(core.IsAdfInserted());
  QS_SCANNER_CAPABILITY capability;
  EXPECT_EQ(core.QueryDeviceCapabilities(&capability), 0x10100010u);
  tagQS_PUSHSCAN_PARAMETERS push{};
  EXPECT_EQ(core.GetPushScanParameter(1, &push), 0x10100009u);
  QS_SCANNER_PARAMETERS parameters{};
  EXPECT_EQ(core.StartScanning(&parameters), 0x10100009u);
  EXPECT_TRUE(device.frames().empty());
}

TEST(ScanProtocol, EnumerationIsNotOffered) {
  Injected bench;
  bench.initialize();
  int count = 5;
  _QS_SELECT_DEVICE_INFO* list = nullptr;
  EXPECT_EQ(bench.core.EnumerateDevice(&list, &count), 0x10100011u);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(list, nullptr);
  EXPECT_EQ(bench.core.EnumerateDevice(nullptr, nullptr), 0x10100011u);
}

// --- Selecting
// ---------------------------------------------------------------------------------------------------------

TEST(ScanProtocol, SelectsADeviceThatHasAConnectionAndAName) {
  const struct {
    int connectionType;
    const char* primary;
    const char* secondary;
    QSRSLT result;
  } rows[] = {{0, "a", "b", 0x70100013}, {1, "", "", 0x70100013}, {2, "", "", 0x70100013}, {1, "a", "", 0},
              {2, "", "b", 0},           {1, "", "b", 0},         {7, "a", "", 0},         {-1, "a", "", 0}};
  for (const auto& row : rows) {
    CScanProtocol core;
    auto old = deviceInfo(1, "old");
    ASSERT_EQ(core.SelectDevice(old), 0u) << "no Initialize is needed";
    auto info = deviceInfo(row.connectionType, row.primary, row.secondary);
    EXPECT_EQ(core.SelectDevice(info), row.result) << row.connectionType << row.primary << row.secondary;
    _QS_SELECT_DEVICE_INFO stored{};
    EXPECT_EQ(core.GetSelectedDevInfo(&stored), 0u);
    EXPECT_EQ(std::memcmp(&stored, row.result == 0 ? &info : &old, sizeof stored), 0);
  }
}

TEST(ScanProtocol, TheSelectedDeviceIsGivenToNobodyAlso) {
  CScanProtocol core;
  EXPECT_EQ(core.GetSelectedDevInfo(nullptr), 0u);
}

TEST(ScanProtocol, InitializeForgetsTheSelectedDevice) {
  Injected bench;
  auto info = deviceInfo(1, "first");
  EXPECT_EQ(bench.core.SelectDevice(info), 0u);
  EXPECT_EQ(bench.core.Initialize(), 0u);
  _QS_SELECT_DEVICE_INFO stored = info;
  EXPECT_EQ(bench.core.GetSelectedDevInfo(&stored), 0u);
  EXPECT_EQ(stored.connectionType, 0);
  EXPECT_EQ(stored.primaryName[0], 0);
}

TEST(ScanProtocol, ANameWithoutAnEndIsCutInTheStoredCopy) {
  CScanProtocol core;
  _QS_SELECT_DEVICE_INFO info{};
  info.connectionType = 1;
  std::memset(info.primaryName, 'p', sizeof info.primaryName);
  std::memset(info.secondaryName, 's', sizeof info.secondaryName);
  EXPECT_EQ(core.SelectDevice(info), 0u);
  _QS_SELECT_DEVICE_INFO stored{};
  core.GetSelectedDevInfo(&stored);
  EXPECT_EQ(stored.primaryName[127], 0);
  EXPECT_EQ(stored.secondaryName[127], 0);
  EXPECT_EQ(std::strlen(stored.primaryName), 127u);
  EXPECT_EQ(info.primaryName[127], 'p') << "the host's record stays";
}

TEST(ScanProtocol, TheDeviceIsOpenedByTheNameThatItsConnectionCallsFor) {
  const struct {
    int connectionType;
    const char* primary;
    const char* secondary;
    const char* open;  // null: the identifier cannot be made
  } rows[] = {{1, "first", "", "first"},        {1, "first", "second", "first"}, {2, "first", "", "first"},
              {2, "first", "second", "second"}, {2, "", "second", "second"},     {5, "first", "second", "first"},
              {1, "", "second", nullptr},       {5, "", "second", nullptr}};
  for (const auto& row : rows) {
    MemoryDevice device;
    CScanProtocol core;
    core.SetDeviceAccess(&device);
    ASSERT_EQ(core.Initialize(), 0u);
    auto info = deviceInfo(row.connectionType, row.primary, row.secondary);
    ASSERT_EQ(core.SelectDevice(info), 0u);
    QS_SCANNER_CAPABILITY capability;
    if (row.open == nullptr) {
      EXPECT_FALSE(core.CheckConnection());
      EXPECT_EQ(core.QueryDeviceCapabilities(&capability), 0x10100010u);
      continue;
    }
    EXPECT_TRUE(core.CheckConnection());
    const bool isSecondary = std::strcmp(row.open, "second") == 0;
    EXPECT_EQ(device.openedName(), row.open) << row.connectionType << row.primary << row.secondary;
    EXPECT_EQ(device.opened().kind, isSecondary ? 3 : 0);
    EXPECT_EQ(device.opened().connection, row.connectionType <= 2 ? row.connectionType : 0);
  }
}

TEST(ScanProtocol, ANewSelectionChangesTheNameAndKeepsKindAndConnection) {
  MemoryDevice device;
  CScanProtocol core;
  core.SetDeviceAccess(&device);
  ASSERT_EQ(core.Initialize(), 0u);
  auto first = deviceInfo(1, "first");
  auto second = deviceInfo(2, "second");
  core.SelectDevice(first);
  EXPECT_TRUE(core.CheckConnection());
  device.Close();
  core.SelectDevice(second);
  EXPECT_TRUE(core.CheckConnection());
  EXPECT_EQ(device.openedName(), "second");
  EXPECT_EQ(device.opened().connection, 1);
}

TEST(ScanProtocol, ADeviceSelectedBeforeInitializeLeavesNoUselessCommandObjectBehind) {
  MemoryDevice device;
  CScanProtocol core;
  auto info = deviceInfo(1, "memory");
  QS_SCANNER_PARAMETERS parameters{};
  core.SelectDevice(info);
  EXPECT_EQ(core.StartScanning(&parameters), 0x10100001u);
  tagQS_PUSHSCAN_PARAMETERS push{};
  EXPECT_EQ(core.GetPushScanParameter(1, &push), 0u);
  core.SetDeviceAccess(&device);
  ASSERT_EQ(core.Initialize(), 0u);
  core.SelectDevice(info);
  QS_SCANNER_CAPABILITY capability;
  EXPECT_EQ(core.QueryDeviceCapabilities(&capability), 0u);
}

// --- Connection and paper
// ------------------------------------------------------------------------------------------------

TEST(ScanProtocol, TheConnectionIsWhatTheCommandSays) {
  Injected bench;
  bench.initialize();
  EXPECT_TRUE(bench.core.CheckConnection());
  EXPECT_EQ(bench.calls.take(), Calls{"command.GetConnectionStatus"});
  bench.command.connected = false;
  EXPECT_FALSE(bench.core.CheckConnection());
}

TEST(ScanProtocol, PaperIsInTheFeederOnlyIfTheCheckGivesNothingElseThanZero) {
  Injected bench;
  bench.initialize();
  for (const QSRSLT result : {0u, 0x00202000u, 0x00202001u, 0x10240055u, 0x40500031u}) {
    bench.command.results["CheckDocument"] = result;
    EXPECT_EQ(bench.core.IsAdfInserted(), result == 0) << std::hex << result;
    EXPECT_EQ(bench.calls.take(), Calls{"command.CheckDocument 1"});
  }
}

TEST(ScanProtocol, ASecondGenerationDeviceNeverSaysThatPaperIsIn) {
  ScanHarness harness;
  harness.device.answer("CKD", {0, 0});
  QS_SCANNER_CAPABILITY capability;
  EXPECT_EQ(harness.core.QueryDeviceCapabilities(&capability), 0u);
  EXPECT_FALSE(harness.core.IsAdfInserted());
  EXPECT_EQ(harness.device.frames().back(), "CKD\nPSRC=ADF\n");
}

// --- Capabilities
// --------------------------------------------------------------------------------------------------------

TEST(ScanProtocol, CapabilitiesPassTheirFailureOn) {
  Injected bench;
  bench.initialize();
  QS_SCANNER_CAPABILITY capability;
  EXPECT_EQ(bench.core.QueryDeviceCapabilities(&capability), 0u);
  EXPECT_EQ(capability.commandVersion, 0x0102);
  bench.caps.capabilityResult = 0x40500031;
  EXPECT_EQ(bench.core.QueryDeviceCapabilities(&capability), 0x40500031u);
  tagQS_SCANNER_CAPABILITY_VER1 older;
  EXPECT_EQ(bench.core.QueryDeviceCapabilities(1, &older), 0x40500031u);
  EXPECT_EQ(bench.core.QueryDeviceCapabilities(5, nullptr), 0x40500031u);
}

TEST(ScanProtocol, OnlyTheFirstVersionOfTheRecordIsFilled) {
  Injected bench;
  bench.initialize();
  tagQS_SCANNER_CAPABILITY_VER1 older;
  std::memset(&older, 0x5A, sizeof older);
  const tagQS_SCANNER_CAPABILITY_VER1 untouched = older;
  for (const unsigned generation : {0u, 2u, 3u, 0xFFFFFFFFu}) {
    EXPECT_EQ(bench.core.QueryDeviceCapabilities(generation, &older), 0u);
    EXPECT_EQ(bench.calls.take(), Calls{"caps.GetDeviceCapability"}) << "asked all the same";
    EXPECT_EQ(std::memcmp(&older, &untouched, sizeof older), 0);
  }
  EXPECT_EQ(bench.core.QueryDeviceCapabilities(1, &older), 0u);
  EXPECT_EQ(bench.calls.take(), (Calls{"caps.GetDeviceCapability", "caps.ScanCap2ScanCapV1"}));
  EXPECT_EQ(older.xferCount, 0x0102);
}

TEST(ScanProtocol, CapsThatAreNotInitialisedGetTheCommand) {
  Injected bench;
  bench.initialize();
  bench.caps.initialized = false;
  QS_SCANNER_CAPABILITY capability;
  EXPECT_EQ(bench.core.QueryDeviceCapabilities(&capability), 0u);
  EXPECT_EQ(bench.calls.take(), (Calls{"caps.Initialize", "caps.GetDeviceCapability"}));
  bench.caps.initializeResult = 0x10300055;
  EXPECT_EQ(bench.core.QueryDeviceCapabilities(&capability), 0x10300055u);
}

TEST(ScanProtocol, TheDeviceIsAskedForItsCapabilitiesOnceUntilUnInitialize) {
  ScanHarness harness;
  tagQS_SCANNER_CAPABILITY_VER1 older;
  const auto queries = [&] {
    const auto names = harness.device.mnemonics();
    return std::count(names.begin(), names.end(), "QDI");
  };
  for (int i = 0; i < 3; ++i) EXPECT_EQ(harness.core.QueryDeviceCapabilities(1, &older), 0u);
  EXPECT_EQ(queries(), 1);
  EXPECT_EQ(harness.device.frames(), (Calls{"Q\n", "QDI\n"}));
  EXPECT_FALSE(harness.device.IsOpen());
  harness.core.UnInitialize();
  harness.connect();
  EXPECT_EQ(harness.core.QueryDeviceCapabilities(1, &older), 0u);
  EXPECT_EQ(queries(), 2);
}

TEST(ScanProtocol, AFlatRecordForNobodyIsRefused) {
  ScanHarness harness;
  EXPECT_EQ(harness.core.QueryDeviceCapabilities(1, nullptr), 0x70100012u);
  EXPECT_EQ(harness.core.QueryDeviceCapabilities(9, nullptr), 0u);
}

// --- The panel
// -------------------------------------------------------------------------------------------------------------

TEST(ScanProtocol, ThePanelsSettingsTakeTheirStepsInOrder) {
  Injected bench;
  bench.initialize();
  tagQS_PUSHSCAN_PARAMETERS push{};
  EXPECT_EQ(bench.core.GetPushScanParameter(1, &push), 0u);
  EXPECT_EQ(bench.calls.take(), (Calls{"proc.Initialize", "caps.GetDeviceCapability", "command.SelectCommandVersion 2",
                                       "command.GetPushScanParameter"}));
  EXPECT_EQ(bench.core.GetPushScanParameter(1, nullptr), 0x7010000Au);

  bench.command.results["GetPushScanParameter"] = 0x10240033;
  EXPECT_EQ(bench.core.GetPushScanParameter(7, &push), 0x10240033u);
  bench.command.versionAccepted = false;
  EXPECT_EQ(bench.core.GetPushScanParameter(1, &push), 0x1010000Fu);
  bench.caps.capabilityResult = 0x40500031;
  EXPECT_EQ(bench.core.GetPushScanParameter(1, &push), 0x40500031u);
  bench.proc.initializeResult = 0x70100003;
  EXPECT_EQ(bench.core.GetPushScanParameter(1, &push), 0x10100009u) << "every failed preparation is one code";
}

TEST(ScanProtocol, AskingThePanelMakesAScanProcessWithoutAReadThread) {
  ScanHarness harness;
  tagQS_PUSHSCAN_PARAMETERS push{};
  EXPECT_TRUE(harness.core.AbortScanning()) << "no scan process yet";
  harness.core.GetPushScanParameter(1, &push);
  EXPECT_FALSE(harness.core.AbortScanning());
}

// --- Starting
// --------------------------------------------------------------------------------------------------------------

TEST(ScanProtocol, StartingTakesItsStepsInOrderAndHandsOnBothRecords) {
  Injected bench;
  bench.initialize();
  QS_SCANNER_PARAMETERS parameters{};
  parameters.resolution = {123, 456};
  EXPECT_EQ(bench.core.StartScanning(&parameters), 0u);
  EXPECT_EQ(bench.calls.take(),
            (Calls{"proc.Initialize", "caps.GetDeviceCapability", "proc.Initialize", "proc.StartScan"}));
  EXPECT_EQ(bench.proc.startedWith.resolution.y, 456u);
  EXPECT_EQ(bench.proc.startedOn.commandVersion, 0x0102);

  bench.proc.result = 0x1010000E;
  EXPECT_EQ(bench.core.StartScanning(&parameters), 0x1010000Eu);
  EXPECT_EQ(bench.core.StartScanning(nullptr), 0x10100001u);
  bench.caps.capabilityResult = 0x1030000A;
  EXPECT_EQ(bench.core.StartScanning(&parameters), 0x1030000Au);
}

TEST(ScanProtocol, AFailedPreparationIsOneCodeAndAFailedSecondInitialiseIsItsOwn) {
  Injected first;
  first.initialize();
  QS_SCANNER_PARAMETERS parameters{};
  first.proc.initializeResult = 0x70100003;
  EXPECT_EQ(first.core.StartScanning(&parameters), 0x10100009u);
  EXPECT_EQ(first.calls.take(), Calls{"proc.Initialize"});

  Injected second;
  second.initialize();
  second.proc.initializeResult = 0x10100008;
  second.proc.failingInitialize = 2;
  EXPECT_EQ(second.core.StartScanning(&parameters), 0x10100008u);
}

TEST(ScanProtocol, ANewScanNeedsNoNewSelectionAfterACancelledOne) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(settingsFor(6, 3, 24)), 0u);
  harness.core.AbortScanning();
  EXPECT_EQ(harness.collect().last, XFERCANCELED);
  const Picture picture = drawPicture(6, 3, 24);
  const Outcome outcome = harness.scan(settingsFor(6, 3, 24), rawLines(picture) + pageEnd(1) + allPagesEnd());
  EXPECT_EQ(outcome.pages(), std::vector<ByteString>{expectedBmp(picture)});
}

TEST(ScanProtocol, AScanThatRunsIsOvertakenAndNotRefused) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(settingsFor(6, 3, 24)), 0u);
  EXPECT_EQ(harness.start(settingsFor(6, 3, 24)), 0u);
}

// --- Forwarding
// --------------------------------------------------------------------------------------------------------------

TEST(ScanProtocol, ForwardsToTheScanProcess) {
  Injected bench;
  bench.initialize();
  void* data = nullptr;
  int size = 0;
  bench.proc.result = 0x1010000D;
  EXPECT_EQ(bench.core.GetIccProfile(&data, &size), 0x1010000Du);
  EXPECT_EQ(bench.core.GetIccProfile(nullptr, &size), 0x7010000Au);
  EXPECT_EQ(bench.calls.take(), Calls{"proc.GetIccProfile"});
  bench.proc.result = 0x50000002;
  tagQS_SCAN_IMAGEDATA image{};
  int pageNo = 0;
  EXPECT_EQ(bench.core.ReadImageData(&image, &pageNo), 0x50000002u);
  EXPECT_EQ(pageNo, 7);
  EXPECT_EQ(image.widthPixel, 42);
  EXPECT_EQ(bench.core.ReadImageData(nullptr, &pageNo), 0x7010000Au);
  EXPECT_EQ(bench.core.ReadImageData(&image, nullptr), 0x50000002u) << "the scan process refuses it";
  EXPECT_EQ(bench.calls.take(), (Calls{"proc.ReadImageData", "proc.ReadImageData"}));
  EXPECT_TRUE(bench.core.AbortScanning());
  bench.proc.aborts = false;
  EXPECT_FALSE(bench.core.AbortScanning());
  bench.core.FreeImageData(3);
  EXPECT_EQ(bench.calls.take(), (Calls{"proc.AbortScan", "proc.AbortScan", "proc.FreeImageData 3"}));
  EXPECT_EQ(bench.core.GetScanStatus(), RECEIVING);
  EXPECT_EQ(bench.core.GetCurrentReceivedLines(5), 105);
  bench.proc.imageInfo.widthPixel = 99;
  EXPECT_EQ(bench.core.GetScanBitmapImageInfo().widthPixel, 99);
}

TEST(ScanProtocol, ReadingWithoutAPlaceForThePageNumberIsRefusedInAScan) {
  ScanHarness harness;
  const Picture picture = drawPicture(6, 3, 24);
  harness.device.stream(rawLines(picture) + pageEnd(1) + allPagesEnd());
  ASSERT_EQ(harness.start(settingsFor(6, 3, 24)), 0u);
  ASSERT_EQ(harness.waitForStatusOtherThanReceiving(), XFERREADY);
  tagQS_SCAN_IMAGEDATA image{};
  EXPECT_EQ(harness.core.ReadImageData(&image, nullptr), 0x7010000Au);
  EXPECT_EQ(harness.read().pageNo, 1) << "no page was used up";
}

// --- Injection and the end
// -----------------------------------------------------------------------------------------------------

TEST(ScanProtocol, AnInjectedNullIsIgnored) {
  Injected bench;
  bench.calls.take();
  bench.core.SetDeviceAccess(nullptr);
  bench.core.SetScanCommand(nullptr);
  bench.core.SetDeviceCaps(nullptr);
  bench.core.SetScanProc(nullptr);
  EXPECT_TRUE(bench.calls.take().empty());
  bench.initialize();
  EXPECT_TRUE(bench.core.CheckConnection()) << "all four are still there";
  EXPECT_EQ(bench.core.GetScanStatus(), RECEIVING);
}

TEST(ScanProtocol, AReplacedCompanionIsPartedWithAndNotDestroyed) {
  Injected bench;
  fakes::CallList others;
  fakes::FakeDeviceAccess device(others);
  fakes::FakeScanCommand command(others);
  fakes::FakeDeviceCaps caps(others);
  fakes::FakeScanProc proc(others);
  bench.calls.take();
  bench.core.SetDeviceAccess(&device);
  EXPECT_EQ(bench.calls.take(), Calls{"device.Close"});
  bench.core.SetScanCommand(&command);
  EXPECT_EQ(bench.calls.take(), Calls{});
  bench.core.SetDeviceCaps(&caps);
  EXPECT_EQ(bench.calls.take(), Calls{"caps.UnInitialize"});
  bench.core.SetScanProc(&proc);
  EXPECT_EQ(bench.calls.take(), Calls{"proc.UnInitialize"});
  EXPECT_TRUE(others.take().empty());
  bench.core.FreeImageData(1);
  EXPECT_EQ(others.take(), Calls{"proc.FreeImageData 1"});
}

TEST(ScanProtocol, InjectedCompanionsAreLeftAloneByUnInitialize) {
  Injected bench;
  bench.initialize();
  bench.core.UnInitialize();
  EXPECT_EQ(bench.calls.take(), Calls{});
  EXPECT_FALSE(bench.core.IsInitialized());
  EXPECT_EQ(bench.core.GetScanStatus(), READY) << "they are forgotten";
  EXPECT_TRUE(bench.core.AbortScanning());
  EXPECT_EQ(bench.calls.take(), Calls{});
}

TEST(ScanProtocol, AnInjectedDeviceIsNotToldWhoWeAre) {
  fakes::CallList calls;
  fakes::FakeDeviceAccess device(calls);
  {
    CScanProtocol core;
    core.SetDeviceAccess(&device);
    EXPECT_EQ(core.Initialize(), 0u);
    EXPECT_EQ(calls.take(), Calls{});
  }
  EXPECT_EQ(calls.take(), Calls{}) << "nor closed or destroyed at the end";
}

TEST(ScanProtocol, UnInitializeEndsARunningScanBeforeItsCommandIsDestroyed) {
  for (int round = 0; round < 20; ++round) {
    ScanHarness harness;
    harness.device.stream({MemoryDevice::quiet(3), MemoryDevice::quietForEver()});
    ASSERT_EQ(harness.start(settingsFor(6, 3, 24)), 0u);
    if (round % 2 == 0) harness.device.waitUntilQuiet();
    harness.core.AbortScanning();  // the read thread uses the command object for it
    harness.core.UnInitialize();
    EXPECT_FALSE(harness.device.IsOpen());
  }
}

auto threadCount() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
}

// The flag of an injection outlives UnInitialize, so that a scan process made later is kept too; its thread must not
// live on beside the command object that is gone.
TEST(ScanProtocol, AScanBehindAnEarlierInjectionIsStoppedAllTheSame) {
#if defined(__SANITIZE_ADDRESS__)
  __lsan_disable();  // the scan process is not destroyed
#endif
  fakes::CallList calls;
  fakes::FakeScanProc injected(calls);
  ScanHarness harness;
  harness.core.SetScanProc(&injected);
  harness.core.UnInitialize();
  harness.connect();
  harness.device.stream({MemoryDevice::quietForEver()});
  const auto threadsBefore = threadCount();
  ASSERT_EQ(harness.start(settingsFor(6, 3, 24)), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
  harness.core.UnInitialize();
  EXPECT_FALSE(harness.device.IsOpen());
  EXPECT_EQ(threadCount(), threadsBefore);
#if defined(__SANITIZE_ADDRESS__)
  __lsan_enable();
#endif
}

TEST(ScanProtocol, WithoutAnInjectedDeviceTheModuleBesideTheProgramIsLoaded) {
  CScanProtocol core;
  EXPECT_EQ(core.Initialize(), 0u);
  EXPECT_EQ(core.Initialize(), 0u);
  EXPECT_TRUE(core.IsInitialized());
  core.UnInitialize();
  EXPECT_FALSE(core.IsInitialized());
  EXPECT_EQ(core.Initialize(), 0u);
}

}  // namespace
}  // namespace reception_test
