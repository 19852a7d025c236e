#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "settings/ScanParam.h"

namespace orvalle_scan_api {
namespace {

using Settings = QS_SCANNER_PARAMETERS;
using Capability = QS_SCANNER_CAPABILITY;

const CScanParam kParam;
constexpr AXIS kA3At300{3508, 4960};

constexpr auto kFlatbed = PAPERSOURCE_FLATBED;
constexpr auto kFeeder = PAPERSOURCE_ADF;
constexpr auto kCardslot = PAPERSOURCE_CARDSLOT;

Settings paperAt(PAPERTYPE paper, std::uint32_t dpi) {
  Settings settings{};
  settings.paperType = paper;
  settings.resolution = {dpi, dpi};
  settings.paperSource = kFlatbed;
  return settings;
}

Settings customAt(std::int32_t x, std::int32_t y, UNITTYPE unit, std::uint32_t dpi) {
  Settings settings = paperAt(PAPERTYPE_CUSTOM, dpi);
  settings.customPaperSize = {x, y, unit};
  return settings;
}

void expectArea(_SCANCMD_SCANAREA got, std::int64_t left, std::int64_t top, std::int64_t width, std::int64_t height,
                const char* name = "") {
  EXPECT_EQ(static_cast<std::int32_t>(got.left), left) << name;
  EXPECT_EQ(static_cast<std::int32_t>(got.top), top) << name;
  EXPECT_EQ(static_cast<std::int32_t>(got.width), width) << name;
  EXPECT_EQ(static_cast<std::int32_t>(got.height), height) << name;
}

void expectRect(SCANAREA got, int left, int top, int right, int bottom, UNITTYPE unit, const char* name = "") {
  EXPECT_EQ(got.left, left) << name;
  EXPECT_EQ(got.top, top) << name;
  EXPECT_EQ(got.right, right) << name;
  EXPECT_EQ(got.bottom, bottom) << name;
  EXPECT_EQ(got.unit, unit) << name;
}

// --- Position ---------------------------------------------------------------------------------------------------

TEST(ScanArea, ThePaperLiesWhereItsSourceSays) {
  const PAPERSETTINGPOSITIONS positions{1, 2, 3, 4, 5, 6};
  const struct { int source, x, y; } rows[] = {{0, 1, 2}, {1, 1, 2}, {2, 3, 4}, {3, 5, 6}, {4, 1, 2}, {-1, 1, 2}};
  for (const auto& row : rows) {
    EXPECT_EQ(kParam.GetPaperPositionX(static_cast<PAPERSOURCESELECT>(row.source), positions), row.x) << row.source;
    EXPECT_EQ(kParam.GetPaperPositionY(static_cast<PAPERSOURCESELECT>(row.source), positions), row.y) << row.source;
  }
}

TEST(ScanArea, TheOffsetIsTheRoomBesideThePaperOrHalfOfIt) {
  const struct {
    int size, maximum, position, expected;
  } rows[] = {{100, 131, 0, 0},
              {100, 131, 1, 15},
              {100, 131, 2, 31},
              {100, 131, 3, 0},
              {100, 131, -1, 0},
              {100, 100, 2, 0},
              {131, 100, 2, 0},
              {131, 100, 1, 0},
              {-10, 100, 2, 110},
              // The room of an enormous paper wraps.
              {INT_MIN, 100, 2, 0},
              {INT_MAX, INT_MIN, 2, 1}};
  for (const auto& row : rows) {
    EXPECT_EQ(kParam.CalcOffsetValue(row.size, row.maximum, row.position), row.expected)
        << row.size << " of " << row.maximum << " at " << row.position;
  }
}

Capability withMargins(UNITTYPE unit) {
  Capability capability{};
  capability.baseFunc.marginSize.flatbed = {100, 200, 300, 400, unit};
  capability.baseFunc.marginSize.adfSimplex = {101, 201, 301, 401, unit};
  capability.baseFunc.marginSize.adfDuplex = {102, 202, 302, 402, unit};
  capability.baseFunc.marginSize.cardslot = {103, 203, 303, 403, unit};
  return capability;
}

TEST(ScanArea, AnAreaBecomesPixelsByBothResolutions) {
  expectRect(kParam.GetPixelArea({1000, 1000, 2000, -2000, UNIT_INCH}, 300, 600), 300, 600, 600, -1200, UNIT_PIXEL);
  expectRect(kParam.GetPixelArea({2540, 2540, 5080, 5080, UNIT_MILLIMETER}, 300, 600), 300, 600, 600, 1200, UNIT_PIXEL);
  expectRect(kParam.GetPixelArea({1, 2, 3, 4, UNIT_PIXEL}, 300, 600), 1, 2, 3, 4, UNIT_PIXEL);
  expectRect(kParam.GetPixelArea({2540, INT_MIN, 2540, 2540, UNIT_MILLIMETER}, 300, 300), 300, 0, 300, 300, UNIT_PIXEL,
             "a side that cannot be converted is 0 and the others are converted");
}

// --- The area that is sent --------------------------------------------------------------------------------------

TEST(ScanArea, A4LiesAgainstTheEdgeOfTheFlatbed) {
  const auto area = kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, paperAt(PAPERTYPE_A4, 300), {});
  expectArea(area, 0, 0, 2480, 3508);
  EXPECT_EQ(area.areaType, SCANCMD_SCAN_AREA_NORMAL);
}

TEST(ScanArea, ASmallPaperIsCentredInTheFeeder) {
  Settings settings = paperAt(PAPERTYPE_A6, 300);
  Capability capability{};
  capability.baseFunc.paperPosition.adfX = 1;
  capability.baseFunc.paperPosition.adfY = 2;
  expectArea(kParam.CalcScanCmdArea(300, 300, kFeeder, {2550, 4200}, settings, capability), 655, 4200 - 1748, 1240,
             1748);
  // The device's answer tells where the paper lies, not the source of the settings.
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, {2550, 4200}, settings, capability), 0, 0, 1240, 1748);
}

TEST(ScanArea, AnAreaWiderThanTheDeviceHasNoOffsetAndIsCut) {
  Capability capability{};
  capability.baseFunc.paperPosition = {2, 2, 2, 2, 2, 2};
  const auto area = kParam.CalcScanCmdArea(300, 300, kFlatbed, {2000, 4000}, paperAt(PAPERTYPE_A4, 300), capability);
  expectArea(area, 0, 492, 2480, 3508);
  ACTUALSCANPARAM actual{};
  actual.maxSizePixel = {2000, 4000};
  expectArea(kParam.ReviseScanCmd_Area(area, actual, capability), 0, 492, 2000, 3508);
}

TEST(ScanArea, ABusinessCardIsTurnedInAFeederAndAnUprightOneIsNot) {
  const auto card = [](PAPERTYPE paper, PAPERSOURCESELECT source) {
    return kParam.CalcScanCmdArea(254, 254, source, kA3At300, paperAt(paper, 254), {});
  };
  // 90 mm are 3543 inch units, hence 900 pixels; 60 mm are 2362 and 600.
  expectArea(card(PAPERTYPE_BCARD, kFlatbed), 0, 0, 900, 600, "flatbed");
  for (const auto source : {kFeeder, kCardslot, static_cast<PAPERSOURCESELECT>(0)}) {
    expectArea(card(PAPERTYPE_BCARD, source), 0, 0, 600, 900, "turned");
    expectArea(card(PAPERTYPE_BCARDV, source), 0, 0, 600, 900, "upright");
  }
  expectArea(card(PAPERTYPE_BCARDV, kFlatbed), 0, 0, 600, 900, "upright on the flatbed");
}

TEST(ScanArea, MarginsComeOffThePaperInThePapersUnit) {
  Settings settings = paperAt(PAPERTYPE_LETTER, 300);
  // Letter, 8500 by 11000, less 100 + 200 and 300 + 400.
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, withMargins(UNIT_INCH)), 0, 0, 2460, 3090);
  // 1, 2, 3 and 4 mm are 39, 78, 118 and 157 inch units.
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, withMargins(UNIT_MILLIMETER)), 0, 0,
             (8383 * 3 + 5) / 10, (10725 * 3 + 5) / 10);
  // Pixels are not converted: their numbers come off as if they were inches.
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, withMargins(UNIT_PIXEL)), 0, 0, 2460, 3090);
}

TEST(ScanArea, TheMarginGoesByTheSettingsAndThePositionByTheDevice) {
  Settings settings = paperAt(PAPERTYPE_LETTER, 300);
  settings.paperSource = kFeeder;
  settings.duplexType = DUPLEXTYPE_LONG_EDGE;
  Capability capability{};
  capability.baseFunc.marginSize.adfDuplex.left = 1000;
  capability.baseFunc.marginSize.flatbed.left = 5000;
  capability.baseFunc.paperPosition.flatbedX = 2;
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, {3000, 4000}, settings, capability), 750, 0, 2250, 3300);
}

TEST(ScanArea, ACustomSizeInPixelsGoesFromTheUsersToTheDevicesResolution) {
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, customAt(1000, 700, UNIT_PIXEL, 200), {}), 0, 0, 1500,
             1050);
  Settings unequal = customAt(1000, 700, UNIT_PIXEL, 200);
  unequal.resolution.y = 100;
  expectArea(kParam.CalcScanCmdArea(300, 600, kFlatbed, kA3At300, unequal, {}), 0, 0, 1500, 4200);
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, customAt(1001, 1, UNIT_PIXEL, 600), {}), 0, 0, 500, 0,
             "truncated");
}

TEST(ScanArea, ACustomSizeInUnitsOfLengthGoesByTheDevicesResolution) {
  expectArea(kParam.CalcScanCmdArea(300, 600, kFlatbed, kA3At300, customAt(4000, 6000, UNIT_INCH, 200), {}), 0, 0, 1200,
             3600);
  expectArea(kParam.CalcScanCmdArea(300, 600, kFlatbed, kA3At300, customAt(2540, 5080, UNIT_MILLIMETER, 200), {}), 0, 0,
             300, 1200);
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, customAt(4000, 6000, UNIT_INCH, 200),
                                    withMargins(UNIT_INCH)),
             0, 0, 1110, 1590, "less margins");
}

TEST(ScanArea, AMarginInPixelsGoesByTheHorizontalResolution) {
  // 1000 less (100 + 200) * 300 / 1000; 2000 less (300 + 400) * 300 / 1000, although the vertical resolution is 600.
  Settings settings = customAt(1000, 2000, UNIT_PIXEL, 300);
  settings.resolution.y = 600;
  expectArea(kParam.CalcScanCmdArea(300, 600, kFlatbed, kA3At300, settings, withMargins(UNIT_INCH)), 0, 0, 910, 1790);
  expectArea(kParam.CalcScanCmdArea(300, 600, kFlatbed, kA3At300, settings, withMargins(UNIT_PIXEL)), 0, 0, 700, 1300);
}

TEST(ScanArea, AutomaticSizeGivesTheAreaTypeAlone) {
  Settings settings = paperAt(PAPERTYPE_AUTO, 300);
  settings.useScanArea = 1;
  settings.scanArea = {1, 2, 3, 4, UNIT_PIXEL};
  settings.carrierSheet = 1;
  Capability capability = withMargins(UNIT_INCH);
  capability.baseFunc.paperPosition = {2, 2, 2, 2, 2, 2};
  capability.advancedFunc.autoSize.deviceDetectSize.cap = 2;
  auto area = kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, capability);
  EXPECT_EQ(area.areaType, SCANCMD_SCAN_AREA_AUTO);
  expectArea(area, 0, 0, 0, 0);
  capability.advancedFunc.autoSize.deviceDetectSize.detectSystem = 1;
  capability.advancedFunc.autoSize.deviceDetectSize.detectOverScan = 1;
  capability.advancedFunc.deskew.cap = 2;
  area = kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, capability);
  EXPECT_EQ(area.areaType, SCANCMD_SCAN_AREA_ATDSKW);
  expectArea(area, 0, 0, 0, 0);
}

TEST(ScanArea, ACarrierSheetMovesThePageDown) {
  Settings settings = paperAt(PAPERTYPE_A4, 300);
  settings.carrierSheet = 2;
  Capability capability{};
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, capability), 0, 378, 2480, 3508);
  capability.baseFunc.paperPosition.flatbedY = 2;
  expectArea(kParam.CalcScanCmdArea(300, 600, kFlatbed, {3508, 9920}, settings, capability), 0, 755 + 9920 - 7015, 2480,
             7015, "by the vertical resolution, on top of the position");
}

TEST(ScanArea, NoLengthOfLongPaperIsSent) {
  Capability capability{};
  capability.baseFunc.longPaperLengthMax = {2, 86300, 86300, UNIT_MILLIMETER};
  ACTUALSCANPARAM actual{};
  actual.maxSizePixel = kA3At300;
  for (const Settings& settings :
       {paperAt(PAPERTYPE_LONG, 300), paperAt(PAPERTYPE_LONG_NARROW, 300), customAt(8500, 0, UNIT_INCH, 300)}) {
    EXPECT_EQ(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, capability).height, 0u);
    Capability margins = withMargins(UNIT_INCH);
    const auto area = kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, margins);
    EXPECT_EQ(static_cast<std::int32_t>(area.height), -210) << "minus both margins";
    EXPECT_EQ(static_cast<std::int32_t>(kParam.ReviseScanCmd_Area(area, actual, margins).height), -210);
  }
}

TEST(ScanArea, MarginsThatAreStoredNegativeMakeTheAreaGrow) {
  Capability capability{};
  capability.baseFunc.marginSize.flatbed = {-100, -200, -300, -400, UNIT_INCH};
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, paperAt(PAPERTYPE_LONG, 300), capability), 0, 0, 2640,
             210);
}

TEST(ScanArea, AWishedAreaReplacesTheSizeAndIsAddedToThePosition) {
  Settings settings = paperAt(PAPERTYPE_A6, 300);
  settings.useScanArea = 2;
  settings.scanArea = {10, 20, 300, 400, UNIT_PIXEL};
  Capability capability{};
  capability.baseFunc.paperPosition.flatbedX = 1;
  capability.baseFunc.paperPosition.flatbedY = 2;
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, {2550, 4200}, settings, capability), 655 + 10, 4200 - 1748 + 20,
             300, 400);
}

TEST(ScanArea, AnAreaInPixelsGoesFromTheUsersToTheDevicesResolution) {
  Settings settings = paperAt(PAPERTYPE_A4, 200);
  settings.useScanArea = 1;
  settings.scanArea = {10, 21, 300, 401, UNIT_PIXEL};
  expectArea(kParam.CalcScanCmdArea(300, 600, kFlatbed, kA3At300, settings, {}), 15, 63, 450, 1203);
}

TEST(ScanArea, AnAreaInInchesIsScaledTwice) {
  Settings settings = paperAt(PAPERTYPE_A4, 200);
  settings.useScanArea = 1;
  settings.scanArea = {100, 100, 1000, 2000, UNIT_INCH};
  // 1 inch is 300 pixels at the device's 300 dpi, and these count once more as 200 dpi.
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, {}), 45, 45, 450, 900);
  settings.resolution = {300, 300};
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, {}), 30, 30, 300, 600);
}

TEST(ScanArea, AreasAreUnsignedAndWrap) {
  Settings settings = paperAt(PAPERTYPE_A4, 200);
  settings.useScanArea = 1;
  settings.scanArea = {-10, 0x40000000, -1, 20000000, UNIT_PIXEL};
  const auto area = kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, {});
  EXPECT_EQ(area.left, (0x100000000 - 3000) / 200);
  EXPECT_EQ(area.top, 0u);  // 0x40000000 * 300 is a multiple of 2^32
  EXPECT_EQ(area.width, (0x100000000 - 300) / 200);
  EXPECT_EQ(area.height, (6000000000 - 0x100000000) / 200);
}

TEST(ScanArea, ACustomSizeIsUnsignedAndWraps) {
  // 20000000 * 300 wraps; a margin larger than the paper leaves 2^32 less the rest, which is scaled as it stands.
  const auto area = kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, customAt(20000000, 10, UNIT_PIXEL, 200),
                                           withMargins(UNIT_PIXEL));
  EXPECT_EQ(area.width, ((20000000 - 300) * std::int64_t{300} - 0x100000000) / 200);
  EXPECT_EQ(area.height, (0x100000000 - 690 * 300 % 0x100000000) / 200);
  // In inches a size below 0 keeps its sign.
  expectArea(
      kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, customAt(100, 100, UNIT_INCH, 200), withMargins(UNIT_INCH)),
      0, 0, -60, -180);
}

TEST(ScanArea, TheTopWrapsWhereTheSheetsOffsetAndTheWishedAreaAreAdded) {
  Settings settings = paperAt(PAPERTYPE_A4, 300);
  settings.carrierSheet = 1;
  settings.useScanArea = 1;
  settings.scanArea = {0, -1000, 100, 100, UNIT_PIXEL};
  // -1000 pixels at equal resolutions: (2^32 - 300000) / 300 lines further down.
  const auto area = kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, {});
  EXPECT_EQ(area.top, 378 + (0x100000000 - 300000) / 300);
  Capability capability{};
  capability.advancedFunc.carrierSheet.offsetSizeMm.top = -2540;  // an offset upwards
  settings.useScanArea = 0;
  EXPECT_EQ(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, capability).top, 0x100000000 - 300);
}

TEST(ScanArea, AUserResolutionOfZeroLeavesPixelsAsTheyAre) {
  Settings settings = customAt(1000, 700, UNIT_PIXEL, 0);
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, {}), 0, 0, 1000, 700);
  settings.useScanArea = 1;
  settings.scanArea = {10, 20, 300, 400, UNIT_PIXEL};
  expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, settings, {}), 10, 20, 300, 400);
}

TEST(ScanArea, APaperTypeWithoutASizeGivesNothing) {
  for (const int paper : {25, 27, -1, INT_MAX}) {
    expectArea(kParam.CalcScanCmdArea(300, 300, kFlatbed, kA3At300, paperAt(static_cast<PAPERTYPE>(paper), 300), {}), 0,
               0, 0, 0);
  }
}

TEST(ScanArea, RevisingResetsACornerBeyondTheMaximumAndKeepsTheType) {
  ACTUALSCANPARAM actual{};
  actual.maxSizePixel = {1000, 2000};
  const auto area = kParam.ReviseScanCmd_Area({SCANCMD_SCAN_AREA_OVER, 1001, 2001, 500, 600}, actual, {});
  EXPECT_EQ(area.areaType, SCANCMD_SCAN_AREA_OVER);
  expectArea(area, 0, 0, 500, 600);
  expectArea(kParam.ReviseScanCmd_Area({SCANCMD_SCAN_AREA_OVER, 1000, 2000, 5000, 6000}, actual, {}), 1000, 2000, 1000,
             2000);
  actual.maxSizePixel = {};
  expectArea(kParam.ReviseScanCmd_Area({SCANCMD_SCAN_AREA_OVER, 1001, 2001, 5000, 6000}, actual, {}), 1001, 2001, 5000,
             6000);
}

// --- What the device will deliver -------------------------------------------------------------------------------

_SCANCMD_SCANPARAM sentAt(AXIS resolution, int color, _SCANCMD_SCANAREA area) {
  _SCANCMD_SCANPARAM cmd{};
  cmd.resolution = {resolution.x, resolution.y, false};
  cmd.colorType = static_cast<SCANCMD_COLOR_TYPE>(color);
  cmd.scanArea = area;
  return cmd;
}

TEST(ScanArea, TheDeviceCopyHasTheResolutionColourAndAreaThatWereSent) {
  Settings settings = paperAt(PAPERTYPE_A4, 200);
  settings.scanArea = {1, 2, 3, 4, UNIT_INCH};
  const Settings device = kParam.CreateDeviceScanParam(
      settings, sentAt({300, 600}, 2, {SCANCMD_SCAN_AREA_NORMAL, 10, 20, 2000, 3000}), {5000, 5000});
  EXPECT_EQ(device.resolution.x, 300u);
  EXPECT_EQ(device.resolution.y, 600u);
  EXPECT_EQ(device.colorType, COLORTYPE_TRUEGRAY);
  expectRect(device.scanArea, 10, 20, 2000, 3000, UNIT_PIXEL);
}

TEST(ScanArea, TheDeviceCopyKeepsEverythingElseByteForByte) {
  Settings settings;
  std::memset(&settings, 1, sizeof settings);
  settings.paperType = PAPERTYPE_A4;
  const auto cmd = sentAt({300, 600}, 2, {SCANCMD_SCAN_AREA_NORMAL, 10, 20, 2000, 3000});
  Settings device = kParam.CreateDeviceScanParam(settings, cmd, {5000, 5000});
  device.resolution = settings.resolution;
  device.colorType = settings.colorType;
  device.scanArea = settings.scanArea;
  EXPECT_EQ(std::memcmp(&device, &settings, sizeof settings), 0);
}

TEST(ScanArea, TheDeviceCopyNeverHasAutomaticColour) {
  const struct { int sent, expected; } rows[] = {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 5}, {5, 5}, {6, 5}, {-1, 5}};
  for (const auto& row : rows) {
    EXPECT_EQ(kParam.CreateDeviceScanParam({}, sentAt({300, 300}, row.sent, {}), {}).colorType, row.expected)
        << row.sent;
  }
}

TEST(ScanArea, TheDeviceCopyGrowsByTheEdgeCutButNotWithAutomaticSize) {
  const auto cmd = sentAt({300, 600}, 4, {SCANCMD_SCAN_AREA_NORMAL, 10, 20, 2000, 3000});
  Settings settings = paperAt(PAPERTYPE_A4, 200);
  settings.edgeCut = {2, 100, 100, 200, 200, UNIT_INCH};
  expectRect(kParam.CreateDeviceScanParam(settings, cmd, {}).scanArea, 10, 20, 2090, 3180, UNIT_PIXEL, "inches");
  settings.edgeCut.unit = UNIT_PIXEL;
  expectRect(kParam.CreateDeviceScanParam(settings, cmd, {}).scanArea, 10, 20, 2300, 3300, UNIT_PIXEL, "pixels");
  settings.edgeCut = {1, -100, -100, -100, -100, UNIT_PIXEL};
  expectRect(kParam.CreateDeviceScanParam(settings, cmd, {}).scanArea, 10, 20, 1800, 2800, UNIT_PIXEL, "negative");
  settings.edgeCut.enable = 0;
  expectRect(kParam.CreateDeviceScanParam(settings, cmd, {}).scanArea, 10, 20, 2000, 3000, UNIT_PIXEL, "off");
  settings.edgeCut.enable = 1;
  settings.paperType = PAPERTYPE_AUTO;
  expectRect(kParam.CreateDeviceScanParam(settings, cmd, {}).scanArea, 10, 20, 2000, 3000, UNIT_PIXEL, "automatic");
}

TEST(ScanArea, ASizeBelowZeroBecomesZeroInTheDeviceCopyAfterTheSum) {
  const auto minus = [](int n) { return static_cast<std::uint32_t>(-n); };
  Settings settings = paperAt(PAPERTYPE_LONG, 300);
  const auto cmd = sentAt({300, 300}, 4, {SCANCMD_SCAN_AREA_NORMAL, minus(5), minus(6), minus(10), minus(210)});
  expectRect(kParam.CreateDeviceScanParam(settings, cmd, {100, 100}).scanArea, -5, -6, 0, 0, UNIT_PIXEL);
  settings.edgeCut = {1, 100, 100, 0, 150, UNIT_PIXEL};
  expectRect(kParam.CreateDeviceScanParam(settings, cmd, {100, 100}).scanArea, -5, -6, 90, 40, UNIT_PIXEL);
}

TEST(ScanArea, TheDeviceCopyIsTrimmedToTheMaximumAfterTheEdgeCut) {
  Settings settings = paperAt(PAPERTYPE_A4, 300);
  settings.edgeCut = {1, 100, 100, 100, 100, UNIT_PIXEL};
  const auto cmd = sentAt({300, 300}, 4, {SCANCMD_SCAN_AREA_NORMAL, 2600, 20, 2480, 3508});
  expectRect(kParam.CreateDeviceScanParam(settings, cmd, {2550, 3600}).scanArea, 0, 20, 2550, 3600, UNIT_PIXEL);
}

// --- The unit of an area ----------------------------------------------------------------------------------------

TEST(ScanArea, TheAreaOfTheSettingsChangesItsUnitByTheirResolution) {
  Settings settings = paperAt(PAPERTYPE_A4, 0);
  settings.resolution = {300, 600};
  const struct {
    const char* name;
    SCANAREA from;
    UNITTYPE to;
    SCANAREA expected;
  } rows[] = {
      {"inches to pixels", {1000, 1000, 2000, 2000, UNIT_INCH}, UNIT_PIXEL, {300, 600, 600, 1200, UNIT_PIXEL}},
      {"mm to pixels", {2540, 2540, 5080, 5080, UNIT_MILLIMETER}, UNIT_PIXEL, {300, 600, 600, 1200, UNIT_PIXEL}},
      {"pixels stay", {1, 2, 3, 4, UNIT_PIXEL}, UNIT_PIXEL, {1, 2, 3, 4, UNIT_PIXEL}},
      {"pixels to inches", {300, 600, 600, 1200, UNIT_PIXEL}, UNIT_INCH, {1000, 1000, 2000, 2000, UNIT_INCH}},
      {"pixels to mm", {300, 600, 600, 1200, UNIT_PIXEL}, UNIT_MILLIMETER, {2540, 2540, 5080, 5080, UNIT_MILLIMETER}},
      {"inches to mm", {100, 200, 300, 400, UNIT_INCH}, UNIT_MILLIMETER, {254, 508, 762, 1016, UNIT_MILLIMETER}},
      {"mm to inches", {2540, 5080, 0, -2540, UNIT_MILLIMETER}, UNIT_INCH, {1000, 2000, 0, -1000, UNIT_INCH}},
      {"inches stay", {1, 2, 3, 4, UNIT_INCH}, UNIT_INCH, {1, 2, 3, 4, UNIT_INCH}},
      {"failures are ignored",
       {INT_MIN, 100, INT_MIN, 100, UNIT_INCH},
       UNIT_MILLIMETER,
       {0, 254, 0, 254, UNIT_MILLIMETER}},
  };
  for (const auto& row : rows) {
    settings.scanArea = row.from;
    const Settings converted = kParam.ConvertScanAreaValueUnit(settings, row.to);
    expectRect(converted.scanArea, row.expected.left, row.expected.top, row.expected.right, row.expected.bottom,
               row.expected.unit, row.name);
    EXPECT_EQ(converted.paperType, PAPERTYPE_A4);
    EXPECT_EQ(settings.scanArea.left, row.from.left) << "the caller's record is not changed";
  }
}

TEST(ScanArea, PixelsWithoutAResolutionHaveNoLength) {
  Settings settings = paperAt(PAPERTYPE_A4, 0);
  settings.scanArea = {1, 2, 3, 4, UNIT_PIXEL};
  expectRect(kParam.ConvertScanAreaValueUnit(settings, UNIT_INCH).scanArea, 0, 0, 0, 0, UNIT_INCH);
}

}  // namespace
}  // namespace orvalle_scan_api
