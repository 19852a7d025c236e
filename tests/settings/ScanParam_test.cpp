#include "settings/ScanParam.h"

#include <gtest/gtest.h>

#include <climits>
#include <initializer_list>
#include <string>

namespace orvalle_scan_api {
namespace {

using Settings = QS_SCANNER_PARAMETERS;
using Capability = QS_SCANNER_CAPABILITY;
using Command = _SCANCMD_SCANPARAM;

const CScanParam kParam;

Settings withColor(int colorType) {
  Settings settings{};
  settings.colorType = static_cast<COLORTYPE>(colorType);
  return settings;
}

// --- Rounding ---------------------------------------------------------------------------------------------------

TEST(ScanParam, RoundingUpGoesToTheNextMultipleAndANegativeValueTowardsZero) {
  const struct {
    int value, unit, up, down;
  } rows[] = {{100, 16, 112, 96},
              {112, 16, 112, 112},
              {1, 16, 16, 0},
              {0, 16, 0, 0},
              {-5, 16, 0, 0},
              {-16, 16, -16, -16},
              {-17, 16, -16, -16},
              {7, 1, 7, 7},
              {100, -16, 80, 96},
              {5, 0, 5, 5},
              {INT_MIN, -1, INT_MIN, INT_MIN},
              {INT_MAX, 16, INT_MIN, INT_MAX - 15}};
  for (const auto& row : rows) {
    EXPECT_EQ(kParam.RoundUpValue(row.value, row.unit), row.up) << row.value << " to " << row.unit;
    EXPECT_EQ(kParam.RoundDownValue(row.value, row.unit), row.down) << row.value << " to " << row.unit;
  }
}

// --- The effective colour type ----------------------------------------------------------------------------------

TEST(ScanParam, EnhancementsThatWorkOnColourAskForColour) {
  for (int color = -1; color <= 7; ++color) {
    const auto effective = [&](void (*wish)(Settings&)) {
      Settings settings = withColor(color);
      wish(settings);
      kParam.ConvertColorTypeForSpecialScanParam(settings);
      return static_cast<int>(settings.colorType);
    };
    EXPECT_EQ(effective([](Settings&) {}), color);
    EXPECT_EQ(effective([](Settings& s) { s.autoThreshold = 2; }), color == 1 ? 5 : color);
    EXPECT_EQ(effective([](Settings& s) { s.smoothing.enable = 2; }), 5);
    EXPECT_EQ(effective([](Settings& s) { s.colorDrop.enable = 2; }), 5);
    EXPECT_EQ(effective([](Settings& s) { s.punchHoleRemoval.enable = 2; }), 5);
    EXPECT_EQ(effective([](Settings& s) { s.colorDrop.red = 1; }), color);
  }
}

TEST(ScanParam, BlackAndWhiteWithAutomaticThresholdIsScannedInColourWithItsContrast) {
  Settings settings = withColor(1);
  settings.autoThreshold = 1;
  settings.contrast = 20;
  const Command cmd = kParam.ConvertScanPramToCmdParam(settings, {});
  EXPECT_EQ(cmd.colorType, SCANCMD_COLOR_C24BIT);
  EXPECT_EQ(cmd.compressionType, SCANCMD_COMPRESSION_JPEG);
  EXPECT_EQ(cmd.jpegCompressionRate, 50u);
  EXPECT_EQ(cmd.contrast, 20);
  EXPECT_EQ(settings.colorType, COLORTYPE_BLACKANDWHITE) << "the caller's record is not changed";
}

TEST(ScanParam, ContrastIsLeftOutForBlackAndWhiteAlone) {
  for (int color = -1; color <= 7; ++color) {
    Settings settings = withColor(color);
    settings.contrast = -30;
    settings.brightness = 40;
    const Command cmd = kParam.ConvertScanPramToCmdParam(settings, {});
    EXPECT_EQ(cmd.contrast, color == 1 ? 0 : -30) << color;
    EXPECT_EQ(cmd.brightness, 40) << color;
  }
}

TEST(ScanParam, EachColourTypeHasItsWordAndItsCompression) {
  const struct {
    int color;
    bool grayJpeg;
    int sent, compression;
    std::uint32_t rate;
  } rows[] = {
      {0, false, 5, 3, 50},      {1, false, 0, 2, 0},  {2, false, 1, 2, 0}, {3, false, 2, 2, 0},
      {4, false, 3, 1, 0},       {5, false, 4, 3, 50}, {6, false, 4, 3, 0}, {-1, false, 4, 3, 0},
      {INT_MAX, false, 4, 3, 0}, {0, true, 5, 3, 50},  {1, true, 0, 2, 0},  {2, true, 1, 2, 0},
      {3, true, 2, 3, 50},       {4, true, 3, 1, 0},   {5, true, 4, 3, 50}, {6, true, 4, 3, 0},
  };
  for (const auto& row : rows) {
    Capability capability{};
    capability.imageProcFunc.supportCompresssionType.trueGray.jpeg = row.grayJpeg;
    const Command cmd = kParam.ConvertScanPramToCmdParam(withColor(row.color), capability);
    EXPECT_EQ(cmd.colorType, row.sent) << row.color;
    EXPECT_EQ(cmd.compressionType, row.compression) << row.color << " grey JPEG " << row.grayJpeg;
    EXPECT_EQ(cmd.jpegCompressionRate, row.rate) << row.color << " grey JPEG " << row.grayJpeg;
    EXPECT_EQ(kParam.ConvertScanCmd_ColorType(withColor(row.color)), row.sent) << row.color;
    EXPECT_EQ(kParam.ConvertScanCmd_CompressionType(withColor(row.color), capability), row.compression) << row.color;
    EXPECT_EQ(kParam.ConvertScanCmd_JpgCompressRate(withColor(row.color), capability), row.rate) << row.color;
  }
}

// --- Fixed fields -----------------------------------------------------------------------------------------------

TEST(ScanParam, EveryRecordNamesTheBuildAndAsksForToneAdjustmentAndHalvedChroma) {
  const Command cmd = kParam.ConvertScanPramToCmdParam({}, {});
  EXPECT_EQ(cmd.osInfo, SCANCMD_OS_MAC);
  EXPECT_TRUE(cmd.toneAdjust);
  EXPECT_EQ(cmd.jpegSamplingFactor, SCANCMD_JPEG_SAMPLING_420);
}

TEST(ScanParam, TheResolutionIsTheUsersAndNeverAutomatic) {
  Settings settings{};
  settings.resolution = {200, 600};
  for (const _SCANCMD_RESOLUTION& resolution :
       {kParam.ConvertScanPramToCmdParam(settings, {}).resolution, kParam.ConvertScanCmd_Resolution(settings)}) {
    EXPECT_EQ(resolution.x, 200u);
    EXPECT_EQ(resolution.y, 600u);
    EXPECT_FALSE(resolution.isAuto);
  }
}

// --- Paper ------------------------------------------------------------------------------------------------------

TEST(ScanParam, TheAreaTypeOfAutomaticSizeFollowsWhatTheDeviceDetects) {
  for (const int paper : {0, 1, 23, 24, 26}) {
    for (const CAP cap : {0, 1, 2}) {
      for (const FLAG detectSystem : std::initializer_list<FLAG>{0, 1, 2}) {
        for (const CAP deskew : {0, 1, 2}) {
          for (const FLAG overScan : std::initializer_list<FLAG>{0, 1, 2}) {
            Settings settings{};
            settings.paperType = static_cast<PAPERTYPE>(paper);
            Capability capability{};
            capability.advancedFunc.autoSize.deviceDetectSize.cap = cap;
            capability.advancedFunc.autoSize.deviceDetectSize.detectSystem = detectSystem;
            capability.advancedFunc.autoSize.deviceDetectSize.detectOverScan = overScan;
            capability.advancedFunc.deskew.cap = deskew;
            int expected = 0;
            if (paper == 0 && cap == 2 && detectSystem == 0) expected = 3;
            if (paper == 0 && cap == 2 && detectSystem != 0 && deskew == 2 && overScan != 0) expected = 4;
            for (const auto& area : {kParam.ConvertScanPramToCmdParam(settings, capability).scanArea,
                                     kParam.ConvertScanCmd_ScanArea(settings, capability)}) {
              EXPECT_EQ(area.areaType, expected) << paper << cap << +detectSystem << deskew << +overScan;
              EXPECT_EQ(area.left | area.top | area.width | area.height, 0u);
            }
          }
        }
      }
    }
  }
}

TEST(ScanParam, OnlyPaperWithoutALengthSetsTheLongPaperMode) {
  for (int paper = 0; paper <= 27; ++paper) {
    for (const int customY : {0, 5000, -5000}) {
      Settings settings{};
      settings.paperType = static_cast<PAPERTYPE>(paper);
      settings.customPaperSize.y = customY;
      settings.useScanArea = 1;  // an area without a bottom does not set it
      const bool expected = paper == 23 || paper == 24 || (paper == 26 && customY == 0);
      EXPECT_EQ(kParam.ConvertScanPramToCmdParam(settings, {}).longPaperMode, expected) << paper << " " << customY;
    }
  }
}

TEST(ScanParam, TheEdgeCutIsSentInMillimetresAndOneInPixelsNotAtAll) {
  const auto expectMargin = [](EDGECUT cut, tagRECT expected, const char* name) {
    Settings settings{};
    settings.edgeCut = cut;
    for (const tagRECT& got :
         {kParam.ConvertScanPramToCmdParam(settings, {}).marginArea, kParam.GetScanCmd_Margin_ToMm(settings)}) {
      EXPECT_EQ(got.left, expected.left) << name;
      EXPECT_EQ(got.top, expected.top) << name;
      EXPECT_EQ(got.right, expected.right) << name;
      EXPECT_EQ(got.bottom, expected.bottom) << name;
    }
  };
  expectMargin({1, 100, 200, 300, -400, UNIT_INCH}, {254, 508, 762, -1016}, "inches");
  expectMargin({2, 100, 200, 300, 400, UNIT_MILLIMETER}, {100, 200, 300, 400}, "millimetres");
  expectMargin({1, 100, 200, 300, 400, UNIT_PIXEL}, {}, "pixels");
  expectMargin({0, 100, 200, 300, 400, UNIT_MILLIMETER}, {}, "switched off");
  // Converted left, right, top, bottom; what comes after the side that fails stays 0.
  expectMargin({1, 100, INT_MIN, 300, 400, UNIT_INCH}, {254, 0, 762, 0}, "a side that cannot be converted");
}

// --- Switches ---------------------------------------------------------------------------------------------------

TEST(ScanParam, BothSidesAreScannedForDuplexAndForAPlasticCard) {
  for (const int duplex : {0, 1, 2, 3}) {
    for (const int card : {0, 1, 2}) {
      Settings settings{};
      settings.duplexType = static_cast<DUPLEXTYPE>(duplex);
      settings.plasticCard = static_cast<QSBOOL>(card);
      const Command cmd = kParam.ConvertScanPramToCmdParam(settings, {});
      EXPECT_EQ(cmd.duplexScan.isDuplex, duplex != 0 || card != 0);
      EXPECT_FALSE(cmd.duplexScan.isBackSideOnly);
      EXPECT_EQ(kParam.IsDuplexScan(settings, {}), duplex != 0);
    }
  }
}

TEST(ScanParam, TheLevelsOfAutomaticColourAreSentWhereTheDeviceOffersIt) {
  Settings settings{};
  settings.autoColorLevel = {7, -3};
  for (const CAP cap : {0, 1, 2, 3}) {
    Capability capability{};
    capability.advancedFunc.autoColor.cap = cap;
    const Command cmd = kParam.ConvertScanPramToCmdParam(settings, capability);
    EXPECT_EQ(cmd.autoColorLevelOn, cap == 2);
    EXPECT_EQ(cmd.autoColorLevel.first, cap == 2 ? 7 : 0);
    EXPECT_EQ(cmd.autoColorLevel.second, cap == 2 ? -3 : 0);
    const ScanCmdColorLevel group = kParam.ConvertScanCmd_ColorLevel(settings, capability);
    EXPECT_EQ(group.isOn, cap == 2);
    EXPECT_EQ(group.level.first, cap == 2 ? 7 : 0);
    EXPECT_EQ(group.level.second, cap == 2 ? -3 : 0);
  }
}

TEST(ScanParam, DeskewIsAskedForUnlessTheDevicesFirstDeskewFlagIsOne) {
  for (const int wish : {0, 1, 2}) {
    for (const CAP cap : {0, 1, 2}) {
      for (const int first : {0, 1, 2}) {
        for (const int second : {0, 1}) {
          Settings settings{};
          settings.autoDeskew = static_cast<QSBOOL>(wish);
          Capability capability{};
          capability.advancedFunc.deskew.cap = cap;
          capability.advancedFunc.deskew.systemType[0] = static_cast<FLAG>(first);
          capability.advancedFunc.deskew.systemType[1] = static_cast<FLAG>(second);
          const bool expected = wish != 0 && cap == 2 && first != 1;
          EXPECT_EQ(kParam.ConvertScanPramToCmdParam(settings, capability).autoDeskew, expected);
          EXPECT_EQ(kParam.ConvertScanCmd_Deskew(settings, capability), expected);
        }
      }
    }
  }
}

TEST(ScanParam, TheCarrierSheetIsAskedForWhereverItIsReported) {
  for (const int wish : {0, 1, 2}) {
    for (const CAP cap : {0, 1, 2}) {
      for (const int skip : {0, 1, 2}) {
        Settings settings{};
        settings.carrierSheet = static_cast<QSBOOL>(wish);
        Capability capability{};
        capability.advancedFunc.carrierSheet.cap = cap;
        capability.advancedFunc.carrierSheet.skipOffsetSystem = skip;
        for (const auto& mode : {kParam.ConvertScanPramToCmdParam(settings, capability).carrierSheetMode,
                                 kParam.ConvertScanCmd_CarrierSheet(settings, capability)}) {
          EXPECT_EQ(mode.isOn, wish != 0 && cap != 0);
          EXPECT_EQ(mode.isAuto, wish != 0 && cap != 0 && skip == 1);
        }
      }
    }
  }
}

TEST(ScanParam, BlankPageRemovalHasALevelWhereTheDeviceHasOne) {
  for (const int wish : {0, 1, 2}) {
    for (const CAP cap : {0, 1, 2}) {
      for (const CAP levelCap : {0, 1, 2}) {
        Settings settings{};
        settings.blankPageRemoval = {static_cast<QSBOOL>(wish), 9};
        Capability capability{};
        capability.advancedFunc.blankRemoval.cap = cap;
        capability.advancedFunc.blankRemoval.levelCap = levelCap;
        const bool on = wish != 0 && cap == 2;
        for (const auto& removal : {kParam.ConvertScanPramToCmdParam(settings, capability).blankPageRemoval,
                                    kParam.ConvertScanCmd_BlankPageRemoval(settings, capability)}) {
          EXPECT_EQ(removal.isOn, on);
          EXPECT_EQ(removal.hasLevel, on && levelCap == 2);
          EXPECT_EQ(removal.level, on && levelCap == 2 ? 9u : 0u);
        }
      }
    }
  }
}

TEST(ScanParam, APageCountOfZeroOrLessIsNoLimit) {
  for (const int count : {INT_MIN, -1, 0, 1, 50, INT_MAX}) {
    Settings settings{};
    settings.scanPageCount = count;
    EXPECT_EQ(kParam.ConvertScanPramToCmdParam(settings, {}).scanPage,
              count > 0 ? static_cast<std::uint32_t>(count) : 0u);
  }
}

TEST(ScanParam, QuietScanIsSentToADeviceThatDoesNotOfferIt) {
  for (const int wish : {0, 1, 2}) {
    Settings settings{};
    settings.quietScan = static_cast<QSBOOL>(wish);
    EXPECT_EQ(kParam.ConvertScanPramToCmdParam(settings, {}).quietScan, wish != 0);
  }
}

TEST(ScanParam, DoubleFeedsAreDetectedAndAnsweredAsTheDeviceCan) {
  for (const int wish : {0, 1, 2}) {
    for (const CAP cap : {0, 1, 2}) {
      for (const int system : {0, 1, 2}) {
        for (const CAP feed : {0, 1, 2}) {
          for (int flags = 0; flags < 8; ++flags) {
            Settings settings{};
            settings.multifeedDetect = static_cast<QSBOOL>(wish);
            Capability capability{};
            capability.advancedFunc.multifeedDetect = {cap, system, 5};
            auto& errorFeed = capability.baseFunc.errorSystem.feed;
            errorFeed.cap = feed;
            errorFeed.stop = flags & 1;
            errorFeed.keepOn = (flags >> 1) & 1;
            errorFeed.resume = (flags >> 2) & 1;
            const Command cmd = kParam.ConvertScanPramToCmdParam(settings, capability);
            const bool on = wish != 0 && cap == 2;
            const bool stops = on && feed == 2 && errorFeed.stop != 0;
            const bool goesOn = on && feed == 2 && errorFeed.stop == 0 && errorFeed.keepOn != 0;
            for (const ScanCmdMultifeed& got : {ScanCmdMultifeed{cmd.doubleFeedDetection, cmd.feedMotion},
                                                kParam.ConvertScanCmd_Multifeed(settings, capability)}) {
              EXPECT_EQ(got.detection.isOn, on);
              EXPECT_EQ(got.detection.hasLevel, on && system == 2);
              EXPECT_EQ(got.detection.level, 0u);
              EXPECT_EQ(got.motion.isOn, stops || goesOn);
              EXPECT_EQ(got.motion.hasValue, stops);
              EXPECT_EQ(got.motion.isContinue, goesOn);
            }
          }
        }
      }
    }
  }
}

// --- Threshold --------------------------------------------------------------------------------------------------

TEST(ScanParam, AThresholdIsSentWhereTheDeviceCanTakeItAndDroppedOtherwise) {
  const struct {
    const char* name;
    int autoThreshold, color;
    CAP cap;
    int minimum, maximum;
    std::uint32_t threshold;
    _SCANCMD_MONO_THRESHOLD expected;
  } rows[] = {
      {"as given", 0, 1, 2, 1, 254, 100, {100, false, true}},
      {"the smallest", 0, 1, 2, 1, 254, 1, {1, false, true}},
      {"the largest", 0, 1, 2, 1, 254, 254, {254, false, true}},
      {"too small", 0, 1, 2, 1, 254, 0, {}},
      {"too large is not clamped", 0, 1, 2, 1, 254, 300, {}},
      {"beyond the signed range", 0, 1, 2, 1, 254, 0x80000000, {}},
      {"a negative maximum is a large one", 0, 1, 2, 1, -1, 0x80000000, {0x80000000, false, true}},
      {"a negative minimum is a large one", 0, 1, 2, -1, 254, 100, {}},
      {"not offered", 0, 1, 1, 1, 254, 100, {}},
      {"error diffusion", 0, 2, 2, 1, 254, 100, {}},
      {"grey", 0, 3, 2, 1, 254, 100, {}},
      {"automatic", 1, 1, 2, 1, 254, 100, {0, true, false}},
      {"automatic, not offered", 2, 3, 0, 0, 0, 100, {0, true, false}},
  };
  for (const auto& row : rows) {
    Settings settings = withColor(row.color);
    settings.autoThreshold = static_cast<QSBOOL>(row.autoThreshold);
    settings.threshold = row.threshold;
    Capability capability{};
    capability.imageProcFunc.monoThreshold.manuanThresholdCap = row.cap;
    capability.imageProcFunc.monoThreshold.manualThresholdLevelMin = row.minimum;
    capability.imageProcFunc.monoThreshold.manualThresholdLevelMax = row.maximum;
    for (const auto& got : {kParam.ConvertScanPramToCmdParam(settings, capability).monoThreshold,
                            kParam.ConvertScanCmd_MonoThreshold(settings, capability)}) {
      EXPECT_EQ(got.threshold, row.expected.threshold) << row.name;
      EXPECT_EQ(got.useDeviceValue, row.expected.useDeviceValue) << row.name;
      EXPECT_EQ(got.isValid, row.expected.isValid) << row.name;
    }
  }
}

TEST(ScanParam, AThresholdIsNotSentForAPageThatIsScannedInColour) {
  Settings settings = withColor(1);
  settings.threshold = 100;
  settings.smoothing.enable = 1;
  Capability capability{};
  capability.imageProcFunc.monoThreshold = {0, 0, 2, 254, 1, 128};
  EXPECT_FALSE(kParam.ConvertScanPramToCmdParam(settings, capability).monoThreshold.isValid);
}

// --- Ground colour ----------------------------------------------------------------------------------------------

void expectGround(_SCANCMD_GROUNDCOLORREMOVAL got, bool isOn, bool hasLevel, int level, const std::string& name) {
  EXPECT_EQ(got.isOn, isOn) << name;
  EXPECT_EQ(got.hasLevel, hasLevel) << name;
  EXPECT_EQ(got.level, level) << name;
}

TEST(ScanParam, ALevelAboveTheDevicesIsFoldedByDoublingSteps) {
  const struct {
    const char* name;
    CAP cap;
    int generation, deviceLevel, want;
    bool isOn, hasLevel;
    int level;
  } rows[] = {
      {"not reported", 0, 2, 4, 100, false, false, 0},
      {"missing", 1, 2, 4, 100, false, false, 0},
      {"missing, generation 1", 1, 1, 4, 100, false, false, 0},
      {"generation 1 takes it as it is", 2, 1, 4, 200, true, true, 200},
      {"generation 1 without levels", 2, 1, 0, -7, true, true, -7},
      {"no level", 2, 2, 0, 100, true, false, 0},
      {"one level", 2, 2, 1, 100, true, false, 0},
      {"a negative device level", 2, 2, -5, 100, true, false, 0},
      {"below the device's level", 2, 2, 4, 3, true, true, 3},
      {"at the device's level", 2, 2, 4, 4, true, true, 4},
      {"negative", 2, 2, 4, -9, true, true, -9},
      {"just above it", 2, 2, 4, 5, true, true, 0},
      {"4 levels, 63", 2, 2, 4, 63, true, true, 0},
      {"4 levels, 64", 2, 2, 4, 64, true, true, 1},
      {"4 levels, 126", 2, 2, 4, 126, true, true, 1},
      {"4 levels, 127", 2, 2, 4, 127, true, true, 2},
      {"4 levels, 252", 2, 2, 4, 252, true, true, 2},
      {"4 levels, 253", 2, 2, 4, 253, true, true, 3},
      {"4 levels, far above", 2, 2, 4, INT_MAX, true, true, 3},
      {"3 levels, 85", 2, 2, 3, 85, true, true, 0},
      {"3 levels, 200", 2, 2, 3, 200, true, true, 2},
      {"2 levels, 255", 2, 2, 2, 255, true, true, 2},
      {"255 levels, 256", 2, 2, 255, 256, true, true, 8},
      {"more levels than the scale has", 2, 2, 256, 300, true, true, 0},
      {"an unknown generation folds", 2, 0, 3, 200, true, true, 2},
  };
  for (const auto& row : rows) {
    Settings settings{};
    settings.removeBackground.level = row.want;  // the switch is not looked at here
    const auto got = kParam.GetGroundColorRemoval(settings, {row.cap, row.deviceLevel},
                                                  static_cast<SCANCMD_GENERATION>(row.generation));
    expectGround(got, row.isOn, row.hasLevel, row.level, row.name);
  }
}

TEST(ScanParam, TheGroundColourGoesByTheSupportOfTheColourType) {
  Capability capability{};
  capability.generation = SCANCMD_GENERATION_2ND;
  // Each support folds 200 to another level.
  capability.advancedFunc.backgroundRemove = {{2, 2}, {2, 4}, {2, 8}, {2, 16}};
  const struct {
    int color;
    bool isOn;
    int level;
  } rows[] = {{1, true, 1}, {2, true, 2}, {3, true, 3}, {4, false, 0}, {5, true, 4}, {0, true, 4}, {6, true, 4}};
  for (const auto& row : rows) {
    Settings settings = withColor(row.color);
    settings.removeBackground = {2, 200};
    const auto got = kParam.ConvertScanPramToCmdParam(settings, capability).groundColorRemoval;
    expectGround(got, row.isOn, row.isOn, row.level, std::to_string(row.color));
    expectGround(kParam.ConvertScanCmd_GroundColorRemoval(settings, capability), row.isOn, row.isOn, row.level,
                 "the group of " + std::to_string(row.color));
    settings.removeBackground.enable = 0;
    expectGround(kParam.ConvertScanPramToCmdParam(settings, capability).groundColorRemoval, false, false, 0, "off");
    expectGround(kParam.ConvertScanCmd_GroundColorRemoval(settings, capability), false, false, 0, "the group, off");
  }
}

TEST(ScanParam, TheGroundColourGoesByTheColourTypeThatIsReallyScanned) {
  Capability capability{};
  capability.advancedFunc.backgroundRemove.color24bit = {2, 0};
  Settings settings = withColor(1);
  settings.removeBackground = {1, 200};
  settings.autoThreshold = 1;
  EXPECT_TRUE(kParam.ConvertScanPramToCmdParam(settings, capability).groundColorRemoval.isOn);
  EXPECT_FALSE(kParam.ConvertScanCmd_GroundColorRemoval(settings, capability).isOn);
}

}  // namespace
}  // namespace orvalle_scan_api
