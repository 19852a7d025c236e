// What the facade, the scan process, the capabilities and the scan status write into the log, and at which level.
#include <gtest/gtest.h>

#include <map>

#include "api/ScanProc.h"
#include "tests/fakes/FakeCompanions.h"
#include "tests/foundation/expect_log.h"
#include "tests/reception/scan_harness.h"
#include "tests/reception/scan_pictures.h"

namespace reception_test {
namespace {

using fakes::MemoryDevice;
using namespace foundation_test;

// Before any case hides /tmp, in which this program and its modules may lie.
[[maybe_unused]] const bool kModulesAreLoaded = (keepModulesLoaded(), true);

const Picture kPicture = drawPicture(6, 3, 24);
const QS_SCANNER_PARAMETERS kSettings = settingsFor(6, 3, 24);

TEST(LogTexts, OfTheFacadesOperations) {
  const auto levels = messagesByLevel([] {
    CScanProtocol core;
    int count = 0;
    void* data = nullptr;
    tagQS_SCANNER_CAPABILITY_VER1 older{};
    tagQS_PUSHSCAN_PARAMETERS push{};
    tagQS_SCAN_IMAGEDATA image{};
    QS_SCANNER_PARAMETERS parameters{};
    MemoryDevice device;
    core.SetDeviceAccess(&device);
    core.QueryDeviceCapabilities(1, &older);
    core.Initialize();
    core.EnumerateDevice(nullptr, &count);
    core.ReleaseDeviceList();
    auto info = memoryDeviceInfo();
    core.SelectDevice(info);
    core.GetSelectedDevInfo(&info);
    core.CheckConnection();
    core.QueryDeviceCapabilities(5, &older);
    device.answer("CKD", {0, 3});
    core.IsAdfInserted();
    core.GetIccProfile(&data, &count);
    core.ReadImageData(&image, &count);
    core.AbortScanning();
    core.FreeImageData(1);
    core.GetScanStatus();
    core.GetCurrentReceivedLines(1);
    core.GetScanBitmapImageInfo();
    core.GetPushScanParameter(3, &push);
    core.StartScanning(&parameters);
    core.UnInitialize();
  });
  for (const char* operation :
       {"Initialize", "EnumerateDevice", "SelectDevice", "GetSelectedDevInfo", "CheckConnection", "IsAdfInserted",
        "GetIccProfile", "ReadImageData", "AbortScanning", "FreeImageData", "GetPushScanParameter", "StartScanning",
        "UnInitialize", "GetCurrentReceivedLines", "GetScanBitmapImageInfo"}) {
    expectStartAtLevel(levels, 1, std::string(">>>>> ") + operation + " >>>>>");
    expectStartAtLevel(levels, 1, std::string("<<<<< ") + operation + " <<<<<");
  }
  for (const char* operation :
       {"GetScanStatus", "GetDeviceAccessInstance", "GetScanCmdInstance", "GetDeviceCapsInstance",
        "GetScanProcInstance", "InitScanCmd", "InitDeviceCaps", "InitScanProc", "PrepareQueryCapabilities",
        "PrepareScanning", "ConvertDevInfoToDevIdentifier"}) {
    expectStartAtLevel(levels, 2, std::string(">>>>> ") + operation + " >>>>>");
    expectStartAtLevel(levels, 2, std::string("<<<<< ") + operation + " <<<<<");
  }
  expectAtLevel(levels, 1, ">>>>> QueryDeviceCapabilities >>>>> generation = 1");
  expectAtLevel(levels, 1, ">>>>> QueryDeviceCapabilities >>>>> generation = 5");
  expectAtLevel(levels, 1, "<<<<< QueryDeviceCapabilities <<<<< ret = 0x10100009");
  expectAtLevel(levels, 1, "<<<<< QueryDeviceCapabilities <<<<< ret = 0x0");
  expectAtLevel(levels, 1, "<<<<< EnumerateDevice <<<<< ret = 0x10100011");
  expectAtLevel(levels, 1, "ReleaseDeviceList");
  expectAtLevel(levels, 0, "Device not selected");
  expectAtLevel(levels, 0, "Check Document result = 0x202003");
  expectAtLevel(levels, 0, "ScanProc instance is null");
}

// The primary name alone counts on a direct connection.
TEST(LogTexts, OfADeviceWithoutItsName) {
  const auto messages = runWithLog("LogLevel=2\n", [] {
                          MemoryDevice device;
                          CScanProtocol core;
                          core.SetDeviceAccess(&device);
                          core.Initialize();
                          _QS_SELECT_DEVICE_INFO info{1, "", "second"};
                          EXPECT_EQ(core.SelectDevice(info), 0u);
                          QS_SCANNER_CAPABILITY capability;
                          EXPECT_EQ(core.QueryDeviceCapabilities(&capability), 0x10100010u);
                        }).messages();
  EXPECT_GT(countOf(messages, "<<<<< ConvertDevInfoToDevIdentifier <<<<< ret = 0x70100013"), 0);
  EXPECT_GT(countOf(messages, "<<<<< GetScanCmdInstance <<<<<"), 0);
  EXPECT_EQ(countOf(messages, "<<<<< InitScanCmd <<<<< ret = 0x10100010"), 1);
}

TEST(LogTexts, EveryEntryHasItsExitButOne) {
  const auto messages = runWithLog("LogLevel=2\n", [] {
                          ScanHarness harness;
                          harness.scan(kSettings, rawLines(kPicture) + pageEnd(1) + allPagesEnd());
                          tagQS_SCAN_IMAGEDATA image{};
                          int number = 0;
                          harness.core.ReadImageData(nullptr, &number);
                          harness.core.ReadImageData(&image, nullptr);
                          harness.core.StartScanning(nullptr);
                          harness.core.QueryDeviceCapabilities(1, nullptr);
                          harness.core.GetPushScanParameter(1, nullptr);
                          harness.core.UnInitialize();
                        }).messages();
  std::map<std::string, int> open;
  for (const std::string& message : messages) {
    const bool isEntry = message.rfind(">>>>> ", 0) == 0;
    if (!isEntry && message.rfind("<<<<< ", 0) != 0) continue;
    const std::string name = message.substr(6, message.find(' ', 6) - 6);
    open[name] += isEntry ? 1 : -1;
  }
  for (const auto& [name, count] : open) EXPECT_EQ(count, 0) << name;
  EXPECT_GT(open.size(), 20u);

  const auto refused = runWithLog("LogLevel=2\n", [] {
                         CScanProtocol core;
                         core.GetIccProfile(nullptr, nullptr);
                       }).messages();
  EXPECT_EQ(countOfStart(refused, ">>>>> GetIccProfile >>>>>"), 1);
  EXPECT_EQ(countOfStart(refused, "<<<<< GetIccProfile <<<<<"), 0) << "the one that has none";
}

TEST(LogTexts, OfTheScanProcess) {
  const auto levels = messagesByLevel([] {
    ScanHarness harness;
    harness.scan(kSettings, rawLines(kPicture) + pageEnd(1) + deviceError(0x91));
    auto card = kSettings;
    card.plasticCard = 1;
    harness.device.stream({MemoryDevice::quietForEver()});
    harness.start(card);
    harness.read();
    harness.core.UnInitialize();
  });
  expectStartAtLevel(levels, 1, ">>>>> Initialize >>>>> pScanCmd = 0x");
  expectStartAtLevel(levels, 1, ">>>>> ReadImageData >>>>> pScanBmpData = 0x");
  expectAtLevel(levels, 1, ">>>>> CreateScanReadClassInstances >>>>> protocol = 2");
  expectStartAtLevel(levels, 1, "DeleteScanReadClassInstances");
  expectAtLevel(levels, 1, ">>>>> ReadImageFromReadThread >>>>> m_status = 1");
  expectAtLevel(levels, 1, "Set Page No 1");
  expectAtLevel(levels, 1, "Set Page No 2");
  expectAtLevel(levels, 1, "PageNo = 1");
  expectAtLevel(levels, 1, "PageNo = 2");
  expectStartAtLevel(levels, 1, "pageNo = 1, pImgData = 0x");
  expectAtLevel(levels, 1, "pageNo = 2, pImgData = 0x0, cancelled = 0, ret = 1342177282");
  expectStartAtLevel(levels, 1, "pScanBmpData = 0x");
  expectAtLevel(levels, 1, "Set m_status Ready");
  expectAtLevel(levels, 1, "<<<<< ReadImageData <<<<< ret = 0x50000002");
  const Messages& all = levels[2];
  EXPECT_TRUE(std::any_of(all.begin(), all.end(), [](const std::string& message) {
    return message.rfind(">>>>> ReadImageData >>>>> ", 0) == 0 && message.find(", pPageNo = 0x") != std::string::npos &&
           message.substr(message.size() - 18) == ", m_xferPageNo = 1";
  }));
  EXPECT_TRUE(std::any_of(all.begin(), all.end(), [](const std::string& message) {
    return message.find("ReadImageForPlasticCardProc") != std::string::npos;
  }));
  EXPECT_TRUE(std::any_of(all.begin(), all.end(), [](const std::string& message) {
    return message.rfind(">>>>> Initialize >>>>> pScanCmd = 0x", 0) == 0 &&
           message.find(", pDevCaps = 0x") < message.find(", pDevAcs = 0x");
  }));
}

TEST(LogTexts, OfTheScanProcessesRefusals) {
  const auto levels = messagesByLevel([] {
    fakes::CallList calls;
    fakes::FakeScanCommand command(calls);
    fakes::FakeDeviceCaps caps(calls);
    MemoryDevice device;
    CScanProc proc;
    caps.initialized = false;
    proc.Initialize(&command, &caps, &device);
    caps.initialized = true;
    proc.Initialize(&command, &caps, &device);
    command.results["GetPushScanParameter"] = 0x10240055;
    tagQS_PUSHSCAN_PARAMETERS push{};
    proc.QueryPushScanSettings(&push);
  });
  expectAtLevel(levels, 0, "DeviceCaps not initialized");
  expectAtLevel(levels, 0, "GetPushScanParameter failed. qsRslt = 0x10240055");
}

TEST(LogTexts, OfTheCapabilities) {
  const auto levels = messagesByLevel([] {
    ScanHarness harness;
    QS_SCANNER_CAPABILITY capability;
    harness.device.answer("QDI", {});
    harness.core.QueryDeviceCapabilities(&capability);
    harness.device.answer("QDI", fakes::framed("QDI", fakes::endTag()));
    harness.core.QueryDeviceCapabilities(&capability);
    harness.core.QueryDeviceCapabilities(&capability);
  });
  expectStartAtLevel(levels, 1, ">>>>> GetDeviceCapability >>>>> pDeviceCap = 0x");
  expectAtLevel(levels, 0, "QueryDeviceCapability failed. result = 0x40500031");
  EXPECT_EQ(countOf(levels[2], "QS_SCANNER_CAPABILITY Info"), 2);
  EXPECT_EQ(countOfStart(levels[2], ">>>>> GetDeviceCapability >>>>>"), 2) << "silent out of the cache";
}

TEST(LogTexts, OfTheScanStatus) {
  const auto levels = messagesByLevel([] {
    CScanError error;
    error.Set({});
    error.Set({0x1040100B, 3, 4, 0, 0x91, true, true, false});
    error.Set({0x40401005, 9, 1, 5, 0x92, true, true, true});
    error.Set({0x40401005, 9, 1, 6, 0x92, true, true, true});
  });
  EXPECT_EQ(levels[1],
            (Messages{"Set errPageNo = 0", "Set betweenPageErr = 0", "Set scanFinished = 0",
                      "Set canceled = 0, cancelPageNo = 0", "Set status = 0x1040100B", "Set lastReceivePageNo = 3",
                      "Set errPageNo = 4", "Set deviceErr = 0x91", "Set betweenPageErr = 1", "Set scanFinished = 1",
                      "Set canceled = 0, cancelPageNo = 0", "Set canceled = 1, cancelPageNo = 5"}));
  EXPECT_TRUE(levels[0].empty());
}

TEST(LogTexts, OfTheLoader) {
  const auto messages = runWithLog("LogLevel=1\n", [] {
                          CModuleInstances modules;
                          EXPECT_NE(modules.GetScanDecInstance(), nullptr);
                          EXPECT_NE(modules.GetScanDecInstance(), nullptr);
                          EXPECT_EQ(modules.GetImageProcessInstance(), nullptr);
                          modules.FreeScanDecInstance();
                        }).messages();
  EXPECT_EQ(countOfStart(messages, ">>>>> GetScanDecInstance >>>>>"), 2);
  EXPECT_EQ(countOfStart(messages, "<<<<< GetScanDecInstance <<<<< Instance = 0x"), 2);
  EXPECT_EQ(countOf(messages, "<<<<< GetImageProcessInstance <<<<< Instance = 0x0"), 1);
  EXPECT_EQ(countOfStart(messages, "Module Path: /"), 3) << "the path is built before the cache is looked at";
  EXPECT_TRUE(std::any_of(messages.begin(), messages.end(), [](const std::string& message) {
    return message.find("FreeScanDecInstance") != std::string::npos;
  }));
}

TEST(LogTexts, DumpsShowThePageOnItsWay) {
  const std::string all =
      "LogLevel=-1\nOutDir=0\nWriteForm=0\nDumpPackBits=1\nDumpJpg=1\nDumpPreScanDec=1\n"
      "DumpPreImagEnhance=1\nDumpFinalData=1\n";
  const Left left = runWithLog(all, [] {
    ScanHarness harness;
    harness.scan(kSettings, packedLines(kPicture) + pageEnd(1) + allPagesEnd());
  });
  const auto text = [](const ByteString& bytes) { return std::string(bytes.begin(), bytes.end()); };
  std::string packed;
  for (const ByteString& line : kPicture.lines) packed += text(packBits(line));
  EXPECT_EQ(left.files.at("/tmp/QvOutLog/DumpPackBits_01"), packed);
  EXPECT_TRUE(left.has("/tmp/QvOutLog/DumpPreScanDec_01.bmp"));
  EXPECT_EQ(left.files.at("/tmp/QvOutLog/DumpPreImagEnhance_01.bmp"), text(expectedBmp(kPicture)));
  EXPECT_EQ(left.files.at("/tmp/QvOutLog/DumpFinalData_01.bmp"), text(expectedBmp(kPicture)));
  EXPECT_FALSE(left.has("/tmp/QvOutLog/DumpJpg_01.jpg"));

  const Left jpeg = runWithLog(all, [] {
    ScanHarness harness;
    harness.scan(kSettings,
                 block(1, kJpeg | kColor, {1, 2}, 3) + block(1, kJpeg | kColor, {3}, 3) + pageEnd(1) + allPagesEnd());
  });
  EXPECT_EQ(jpeg.files.at("/tmp/QvOutLog/DumpJpg_01.jpg"), "\1\2\3");
  EXPECT_FALSE(jpeg.has("/tmp/QvOutLog/DumpFinalData_01.bmp"));
}

}  // namespace
}  // namespace reception_test
