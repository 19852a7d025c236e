#include "api/ScanProc.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "command/ScanCmd.h"
#include "tests/fakes/FakeCompanions.h"
#include "tests/reception/scan_harness.h"
#include "tests/reception/scan_pictures.h"

namespace reception_test {
namespace {

using fakes::MemoryDevice;

const Picture kPicture = drawPicture(6, 3, 24);
const QS_SCANNER_PARAMETERS kSettings = settingsFor(6, 3, 24);

ByteString pages(unsigned count) {
  ByteString stream;
  for (unsigned n = 1; n <= count; ++n) stream = stream + rawLines(kPicture, n) + pageEnd(n);
  return stream + allPagesEnd();
}

struct Bench {
  fakes::CallList calls;
  MemoryDevice device;
  _DEV_IDENTIFIER identifier{0, 1, "memory"};
  CScanCmd command{&device, identifier};
  fakes::FakeDeviceCaps caps{calls};
  CScanProc proc;

  Bench() {
    keepModulesLoaded();
    caps.capability.generation = SCANCMD_GENERATION_2ND;
  }
  QSRSLT initialize() { return proc.Initialize(&command, &caps, &device); }
  QSRSLT start(const QS_SCANNER_PARAMETERS& settings = kSettings) { return proc.StartScan(settings, caps.capability); }
  QSRSLT start(const ByteString& stream) {
    device.stream(stream);
    return start();
  }
  SCANAPISTATUS wait() {
    SCANAPISTATUS status = proc.GetReadStatus();
    for (int i = 0; i < 20000 && status == RECEIVING; ++i) {
      std::this_thread::sleep_for(std::chrono::microseconds(500));
      status = proc.GetReadStatus();
    }
    return status;
  }
  Delivery read() {
    Delivery delivery;
    delivery.result = proc.ReadImageData(&delivery.record, &delivery.pageNo);
    return delivery;
  }
};

// --- Initialising ----------------------------------------------------------------------------------------------------

TEST(ScanProc, RefusesToBeInitialisedWithoutItsCompanions) {
  Bench bench;
  EXPECT_EQ(bench.proc.Initialize(nullptr, nullptr, nullptr), 0x70100004u);
  EXPECT_EQ(bench.proc.Initialize(&bench.command, nullptr, nullptr), 0x30100007u);
  bench.caps.initialized = false;
  EXPECT_EQ(bench.proc.Initialize(&bench.command, &bench.caps, nullptr), 0x70100003u);
  EXPECT_EQ(bench.proc.Initialize(&bench.command, &bench.caps, &bench.device), 0x10100008u);
  EXPECT_FALSE(bench.proc.IsInitialized());
  bench.caps.initialized = true;
  EXPECT_EQ(bench.initialize(), 0u);
  EXPECT_TRUE(bench.proc.IsInitialized());
  EXPECT_EQ(bench.proc.Initialize(nullptr, nullptr, nullptr), 0u) << "the arguments are ignored from now on";
}

TEST(ScanProc, IsReadyAgainAfterASecondInitialise) {
  Bench bench;
  bench.initialize();
  ASSERT_EQ(bench.start(pages(1)), 0u);
  EXPECT_EQ(bench.start(), 0x10100001u) << "a scan runs";
  EXPECT_EQ(bench.initialize(), 0u);
  EXPECT_EQ(bench.read().result, 0x1010000Du);
  EXPECT_EQ(bench.start(pages(2)), 0u);
  EXPECT_EQ(bench.wait(), XFERREADY);
}

TEST(ScanProc, UninitialisedItEndsItsScanAndForgetsItsCompanions) {
  Bench bench;
  bench.proc.UnInitialize();
  bench.initialize();
  bench.device.stream({MemoryDevice::quietForEver()});
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.device.waitUntilQuiet());
  bench.proc.UnInitialize();
  EXPECT_FALSE(bench.proc.IsInitialized());
  EXPECT_FALSE(bench.device.IsOpen());
  EXPECT_EQ(bench.proc.GetReadStatus(), READY);
  EXPECT_EQ(bench.start(), 0x10100001u);
  bench.initialize();
  EXPECT_EQ(bench.start(pages(1)), 0x10100001u) << "the state is left as it was";
  bench.initialize();
  EXPECT_EQ(bench.start(pages(1)), 0u);
}

// --- Starting --------------------------------------------------------------------------------------------------------

TEST(ScanProc, StartsOnlyWhenItIsInitialised) {
  Bench bench;
  EXPECT_EQ(bench.start(), 0x10100001u);
}

TEST(ScanProc, ADeviceOfNoGenerationHasNoReadThread) {
  Bench bench;
  bench.initialize();
  for (const int generation : {0, 3, 7, -1}) {
    bench.caps.capability.generation = static_cast<SCANCMD_GENERATION>(generation);
    EXPECT_EQ(bench.start(), 0x1010000Eu) << generation;
  }
  bench.caps.capability.generation = SCANCMD_GENERATION_2ND;
  EXPECT_EQ(bench.start(pages(1)), 0u) << "still ready";
}

TEST(ScanProc, ARefusedStartHasClearedThePageNumberAllTheSame) {
  Bench bench;
  bench.initialize();
  ASSERT_EQ(bench.start(pages(3)), 0u);
  EXPECT_EQ(bench.wait(), XFERREADY);
  EXPECT_EQ(bench.read().pageNo, 1);
  EXPECT_EQ(bench.read().pageNo, 2);
  EXPECT_EQ(bench.start(), 0x10100001u);
  EXPECT_EQ(bench.read().pageNo, 1);
}

TEST(ScanProc, KeepsItsCopyOfTheSettings) {
  Bench bench;
  bench.initialize();
  auto settings = kSettings;
  settings.resolution = {200, 100};
  bench.device.stream(pages(1));
  ASSERT_EQ(bench.start(settings), 0u);
  settings.resolution = {1, 1};
  EXPECT_EQ(bench.proc.GetScanBitmapImageInfo().resolutionX, 200);
}

// --- The state -------------------------------------------------------------------------------------------------------

TEST(ScanProc, IsReadyWithoutAReadThreadAndCannotAbort) {
  Bench bench;
  EXPECT_EQ(bench.proc.GetReadStatus(), READY);
  EXPECT_FALSE(bench.proc.AbortScan());
  bench.proc.FreeImageData(1);
  EXPECT_EQ(bench.proc.GetCurrentReceivedLines(1), 0);
}

TEST(ScanProc, SeesTheEndOnceAndIsReadyAfterwards) {
  Bench bench;
  bench.initialize();
  ASSERT_EQ(bench.start(allPagesEnd()), 0u);
  EXPECT_EQ(bench.wait(), ALLEND);
  EXPECT_EQ(bench.proc.GetReadStatus(), READY);
  EXPECT_EQ(bench.read().result, 0x1010000Du);
  EXPECT_TRUE(bench.proc.AbortScan()) << "its read thread is still there";
  EXPECT_EQ(bench.start(pages(1)), 0u);
  EXPECT_EQ(bench.wait(), XFERREADY);
}

TEST(ScanProc, ReadingPastTheLastPageIsTheWrongState) {
  Bench bench;
  bench.initialize();
  ASSERT_EQ(bench.start(pages(1)), 0u);
  EXPECT_EQ(bench.read().result, 0u);
  const Delivery past = bench.read();
  EXPECT_EQ(past.result, 0x1010000Du);
  EXPECT_EQ(past.pageNo, 2);
  EXPECT_EQ(bench.proc.GetReadStatus(), READY) << "it ended the scan";
  EXPECT_EQ(bench.start(pages(1)), 0u);
}

TEST(ScanProc, AFailureIsToldOnceAndFreesTheWayForTheNextScan) {
  Bench bench;
  bench.initialize();
  ASSERT_EQ(bench.start(rawLines(kPicture) + pageEnd(1) + deviceError(0x91)), 0u);
  EXPECT_EQ(bench.read().result, 0u);
  EXPECT_EQ(bench.wait(), XFERREADY);
  const Delivery failed = bench.read();
  EXPECT_EQ(failed.result, 0x50000002u);
  EXPECT_EQ(failed.pageNo, 2);
  EXPECT_EQ(failed.record.data, nullptr);
  EXPECT_EQ(bench.proc.GetReadStatus(), READY);
  EXPECT_EQ(bench.read().result, 0x1010000Du);
  EXPECT_EQ(bench.start(pages(1)), 0u);
}

// --- Reading ---------------------------------------------------------------------------------------------------------

TEST(ScanProc, ReadingTestsItsArgumentsBeforeItsState) {
  Bench bench;
  tagQS_SCAN_IMAGEDATA image{};
  int pageNo = 0;
  EXPECT_EQ(bench.proc.ReadImageData(nullptr, &pageNo), 0x7010000Au);
  EXPECT_EQ(bench.proc.ReadImageData(&image, nullptr), 0x7010000Au);
  EXPECT_EQ(bench.proc.ReadImageData(&image, &pageNo), 0x1010000Du);
}

TEST(ScanProc, ABlankPageIsAnEmptyRecordWithItsFlag) {
  Bench bench;
  bench.initialize();
  ASSERT_EQ(bench.start(rawLines(kPicture) + blankPageEnd(1) + allPagesEnd()), 0u);
  const Delivery blank = bench.read();
  EXPECT_EQ(blank.result, 0u);
  EXPECT_TRUE(blank.record.isBlankPage);
  EXPECT_EQ(blank.record.data, nullptr);
  EXPECT_EQ(bench.wait(), ALLEND);
}

TEST(ScanProc, APlasticCardNumbersItsSidesInPairsAndDeliversNothing) {
  Bench bench;
  bench.initialize();
  auto settings = kSettings;
  settings.plasticCard = 1;
  bench.device.stream({MemoryDevice::quietForEver()});
  ASSERT_EQ(bench.start(settings), 0u);
  tagQS_SCAN_IMAGEDATA image;
  std::memset(&image, 0x5A, sizeof image);
  const tagQS_SCAN_IMAGEDATA untouched = image;
  for (const int expected : {1, 2, 2, 3, 3, 4}) {
    int pageNo = 0;
    EXPECT_EQ(bench.proc.ReadImageData(&image, &pageNo), 0u);
    EXPECT_EQ(pageNo, expected);
    EXPECT_EQ(std::memcmp(&image, &untouched, sizeof image), 0);
    bench.proc.FreeImageData(pageNo);
  }
}

TEST(ScanProc, FreeingAPageKeepsTheOthers) {
  Bench bench;
  bench.initialize();
  ASSERT_EQ(bench.start(pages(2)), 0u);
  const Delivery first = bench.read();
  const Delivery second = bench.read();
  ASSERT_EQ(first.result, 0u);
  ASSERT_EQ(second.result, 0u);
  bench.proc.FreeImageData(1);
  const ByteString expected = expectedBmp(kPicture);
  ASSERT_EQ(second.record.dataSize, expected.size());
  EXPECT_EQ(std::memcmp(second.record.data, expected.data(), expected.size()), 0);
}

// --- The colour profile ----------------------------------------------------------------------------------------------

TEST(ScanProc, HasAProfileOnlyWithAReadThread) {
  Bench bench;
  void* data = nullptr;
  int size = 0;
  EXPECT_EQ(bench.proc.GetIccProfile(nullptr, &size), 0x7010000Au);
  EXPECT_EQ(bench.proc.GetIccProfile(&data, nullptr), 0x7010000Au);
  EXPECT_EQ(bench.proc.GetIccProfile(&data, &size), 0x1010000Du);
}

TEST(ScanProc, TheFirstPageThatHasADepthChoosesTheProfile) {
  Bench bench;
  bench.initialize();
  bench.caps.capability.imageProcFunc.colorProfileOutput = 2;
  bench.device.answer("GCP", fakes::framed("GCP", fakes::tag(0x3101, fakes::text("colour")) +
                                                      fakes::tag(0x3102, fakes::text("gray")) + fakes::endTag()));
  auto settings = kSettings;
  settings.wantColorProfile = 1;
  bench.device.stream(rawLines(kPicture, 1) + blankPageEnd(1) + rawLines(kPicture, 2) + pageEnd(2) + allPagesEnd());
  ASSERT_EQ(bench.start(settings), 0u);
  const auto profile = [&] {
    void* data = nullptr;
    int size = 0;
    EXPECT_EQ(bench.proc.GetIccProfile(&data, &size), 0u);
    return std::string(static_cast<char*>(data), static_cast<std::size_t>(size));
  };
  EXPECT_EQ(bench.wait(), XFERREADY);
  EXPECT_EQ(profile(), "gray") << "no page yet";
  EXPECT_EQ(bench.read().result, 0u);
  EXPECT_EQ(profile(), "gray") << "a blank page has no depth";
  EXPECT_EQ(bench.read().result, 0u);
  EXPECT_EQ(profile(), "colour");
  EXPECT_EQ(bench.wait(), ALLEND);
  EXPECT_EQ(profile(), "colour") << "also after the end";
}

// --- The panel -------------------------------------------------------------------------------------------------------

TEST(ScanProc, ThePanelsSettingsNeedAnInitialisedObjectAndARecord) {
  Bench bench;
  fakes::FakeScanCommand command(bench.calls);
  tagQS_PUSHSCAN_PARAMETERS parameters{};
  EXPECT_EQ(bench.proc.QueryPushScanSettings(&parameters), 0x10100001u);
  bench.proc.Initialize(&command, &bench.caps, &bench.device);
  EXPECT_EQ(bench.proc.QueryPushScanSettings(nullptr), 0x7010000Au);
  command.results["GetPushScanParameter"] = 0x10240055;
  EXPECT_EQ(bench.proc.QueryPushScanSettings(&parameters), 0x10240055u);
  command.results.clear();
  EXPECT_EQ(bench.proc.QueryPushScanSettings(&parameters), 0u);
}

// --- The forecast ----------------------------------------------------------------------------------------------------

TEST(ScanProc, ForecastsAPageFromTheSettingsAlone) {
  const struct {
    const char* name;
    COLORTYPE colorType;
    AXIS resolution;
    int paperType;
    CUSTOMPAPERSIZE custom;
    SCANAREA area;
    int bits, perMeterX, perMeterY, width, height, widthBytes;
  } rows[] = {
      {"A4 colour", COLORTYPE_COLOR24BIT, {300, 300}, 1, {}, {}, 24, 11811, 11811, 2480, 3508, 7440},
      {"automatic colour", COLORTYPE_AUTO, {300, 300}, 1, {}, {}, 24, 11811, 11811, 2480, 3508, 7440},
      {"A4 grey", COLORTYPE_TRUEGRAY, {200, 100}, 1, {}, {}, 8, 7874, 3937, 1653, 1169, 1653},
      {"256 colours", COLORTYPE_COLOR256, {100, 100}, 2, {}, {}, 8, 3937, 3937, 850, 1100, 850},
      {"Letter mono", COLORTYPE_BLACKANDWHITE, {150, 150}, 2, {}, {}, 1, 5905, 5905, 1275, 1650, 160},
      {"diffusion", COLORTYPE_ERRORDIFFUSION, {600, 600}, 2, {}, {}, 1, 23622, 23622, 5100, 6600, 638},
      {"area in pixels",
       COLORTYPE_COLOR24BIT,
       {300, 300},
       1,
       {},
       {5, 6, 11, 22, UNIT_PIXEL},
       24,
       11811,
       11811,
       11,
       22,
       33},
      {"area in inches",
       COLORTYPE_TRUEGRAY,
       {300, 200},
       1,
       {},
       {0, 0, 1000, 2000, UNIT_INCH},
       8,
       11811,
       7874,
       300,
       400,
       300},
      {"area without a width",
       COLORTYPE_TRUEGRAY,
       {100, 100},
       2,
       {},
       {0, 0, 0, 2000, UNIT_INCH},
       8,
       3937,
       3937,
       850,
       1100,
       850},
      {"custom", COLORTYPE_TRUEGRAY, {100, 100}, 26, {2540, 5080, UNIT_MILLIMETER}, {}, 8, 3937, 3937, 100, 200, 100},
      {"automatic paper", COLORTYPE_TRUEGRAY, {100, 100}, 0, {}, {}, 8, 3937, 3937, 0, 0, 0},
      {"no paper", COLORTYPE_TRUEGRAY, {100, 100}, 25, {}, {}, 8, 3937, 3937, 0, 0, 0},
      {"paper above all", COLORTYPE_TRUEGRAY, {100, 100}, 27, {}, {}, 8, 3937, 3937, 0, 0, 0},
  };
  for (const auto& row : rows) {
    Bench bench;
    bench.initialize();
    auto settings = kSettings;
    settings.colorType = row.colorType;
    settings.resolution = row.resolution;
    settings.paperType = static_cast<PAPERTYPE>(row.paperType);
    settings.customPaperSize = row.custom;
    settings.scanArea = row.area;
    settings.useScanArea = 0;
    bench.device.stream({MemoryDevice::quietForEver()});
    ASSERT_EQ(bench.start(settings), 0u);
    const QS_BITMAP_IMAGE_INFO info = bench.proc.GetScanBitmapImageInfo();
    EXPECT_EQ(info.bitPerPixel, row.bits) << row.name;
    EXPECT_EQ(info.resolutionX, static_cast<int>(row.resolution.x)) << row.name;
    EXPECT_EQ(info.resolutionY, static_cast<int>(row.resolution.y)) << row.name;
    EXPECT_EQ(info.pixelsPerMeterX, row.perMeterX) << row.name;
    EXPECT_EQ(info.pixelsPerMeterY, row.perMeterY) << row.name;
    EXPECT_EQ(info.widthPixel, row.width) << row.name;
    EXPECT_EQ(info.heightPixel, row.height) << row.name;
    EXPECT_EQ(info.widthBytes, row.widthBytes) << row.name;
  }
}

TEST(ScanProc, AForecastOfAbsurdSettingsStaysInItsNumbers) {
  Bench bench;
  bench.initialize();
  auto settings = kSettings;
  settings.resolution = {0xFFFFFFFF, 60000000};
  settings.scanArea = {0, 0, INT_MAX, INT_MAX, UNIT_PIXEL};
  bench.device.stream({MemoryDevice::quietForEver()});
  ASSERT_EQ(bench.start(settings), 0u);
  const QS_BITMAP_IMAGE_INFO info = bench.proc.GetScanBitmapImageInfo();
  EXPECT_EQ(info.pixelsPerMeterX, INT_MAX);
  EXPECT_EQ(info.pixelsPerMeterY, INT_MAX);
  EXPECT_EQ(info.widthPixel, INT_MAX);
}

// --- For embedders ---------------------------------------------------------------------------------------------------

TEST(ScanProc, SettingsThatAreSetLaterShowInTheForecast) {
  Bench bench;
  auto settings = kSettings;
  settings.resolution = {600, 300};
  settings.scanArea = {0, 0, 2540, 2540, UNIT_MILLIMETER};
  bench.proc.SetUserScanParam(settings);
  const QS_BITMAP_IMAGE_INFO info = bench.proc.GetScanBitmapImageInfo();
  EXPECT_EQ(info.resolutionX, 600);
  EXPECT_EQ(info.widthPixel, 600);
  EXPECT_EQ(info.heightPixel, 300);
}

TEST(ScanProc, AnAreaIsConvertedToPixelsInACopyOfTheSettings) {
  auto settings = kSettings;
  settings.resolution = {600, 300};
  settings.scanArea = {2540, 5080, 7620, 10160, UNIT_MILLIMETER};
  const QS_SCANNER_PARAMETERS converted = CScanProc::ConvertScanAreaToPixel(settings);
  EXPECT_EQ(converted.scanArea.left, 600);
  EXPECT_EQ(converted.scanArea.top, 600);
  EXPECT_EQ(converted.scanArea.right, 1800);
  EXPECT_EQ(converted.scanArea.bottom, 1200);
  EXPECT_EQ(converted.scanArea.unit, UNIT_PIXEL);
  EXPECT_EQ(converted.resolution.x, 600u);
  EXPECT_EQ(settings.scanArea.unit, UNIT_MILLIMETER);
}

TEST(ScanProc, WaitingForAStatusEndsWithTheFirstOther) {
  Bench bench;
  EXPECT_EQ(bench.proc.WaitForXferStatus(RECEIVING), READY);
  bench.initialize();
  ASSERT_EQ(bench.start(pages(1)), 0u);
  EXPECT_EQ(bench.proc.WaitForXferStatus(RECEIVING), XFERREADY);
  EXPECT_EQ(bench.read().result, 0u);
  EXPECT_EQ(bench.proc.WaitForXferStatus(RECEIVING), ALLEND);
}

}  // namespace
}  // namespace reception_test
