#include "settings/AdjustScanSetting.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace orvalle_scan_api {
namespace {

using Settings = QS_SCANNER_PARAMETERS;

const CAdjustScanSetting kAdjust;

// Every byte of the record set, so that a field that is wrongly cleared shows.
Settings filled() {
  Settings settings;
  std::memset(&settings, 1, sizeof settings);
  return settings;
}

// A device that offers long paper and the carrier sheet.
QS_SCANNER_CAPABILITY capable() {
  QS_SCANNER_CAPABILITY capability{};
  capability.baseFunc.longPaperLengthMax.cap = 2;
  capability.advancedFunc.carrierSheet.cap = 2;
  return capability;
}

void expectSame(const Settings& got, const Settings& expected) {
  const auto* const a = reinterpret_cast<const unsigned char*>(&got);
  const auto* const b = reinterpret_cast<const unsigned char*>(&expected);
  for (std::size_t i = 0; i < sizeof got; ++i) ASSERT_EQ(a[i], b[i]) << "byte " << i;
}

Settings onCard(Settings settings) {
  settings.resolution = {600, 600};
  settings.paperType = PAPERTYPE_AUTO;
  settings.duplexType = DUPLEXTYPE_SHORT_EDGE;
  settings.autoDeskew = 0;
  settings.multifeedDetect = 0;
  settings.autoRotate = 0;
  settings.plasticCardProcess = 1;
  return settings;
}

TEST(AdjustScanSetting, WithoutAPlasticCardTheSettingsComeBackByteForByte) {
  std::mt19937 random(62);
  for (int paper = 0; paper <= 26; ++paper) {
    for (const int carrier : {0, 1, 2, 255}) {
      for (const int card : {0, 2, 255}) {
        Settings settings;
        for (std::size_t i = 0; i < sizeof settings; ++i)
          reinterpret_cast<unsigned char*>(&settings)[i] = random() & 255;
        settings.paperType = static_cast<PAPERTYPE>(paper);
        settings.carrierSheet = static_cast<QSBOOL>(carrier);
        settings.plasticCard = static_cast<QSBOOL>(card);
        expectSame(kAdjust.ConvertUserSetting(settings, capable()), settings);
        expectSame(kAdjust.ConvertUserSetting(settings, {}), settings);
      }
    }
  }
}

TEST(AdjustScanSetting, APlasticCardIsScannedOnBothSidesAt600DpiWithAutomaticSize) {
  Settings settings = filled();
  settings.resolution = {200, 300};
  settings.paperType = PAPERTYPE_LONG;  // long paper does not take the card away before it is looked at
  settings.plasticCardProcess = 7;
  const Settings expected = onCard(settings);
  expectSame(kAdjust.ConvertUserSetting_PlasticCard(settings, {}), expected);
  expectSame(kAdjust.ConvertUserSetting(settings, capable()), expected);
  EXPECT_EQ(expected.carrierSheet, 1);
}

TEST(AdjustScanSetting, AnyOtherCardByteThanOneIsNoCard) {
  for (int card = 0; card < 256; ++card) {
    Settings settings = filled();
    settings.plasticCard = static_cast<QSBOOL>(card);
    expectSame(kAdjust.ConvertUserSetting_PlasticCard(settings, capable()), card == 1 ? onCard(settings) : settings);
  }
}

TEST(AdjustScanSetting, AutomaticSizeTakesTheCarrierSheetAway) {
  for (int paper = 0; paper <= 26; ++paper) {
    Settings settings = filled();
    settings.paperType = static_cast<PAPERTYPE>(paper);
    Settings expected = settings;
    if (paper == 0) expected.carrierSheet = 0;
    expectSame(kAdjust.ConvertUserSetting_AutoSize(settings, capable()), expected);
  }
}

TEST(AdjustScanSetting, LongPaperTakesEveryFunctionAwayThatNeedsAWholePage) {
  for (int paper = 0; paper <= 26; ++paper) {
    Settings settings = filled();
    settings.paperType = static_cast<PAPERTYPE>(paper);
    Settings expected = settings;
    if (paper == 23 || paper == 24) {
      expected.autoDeskew = 0;
      expected.autoRotate = 0;
      expected.autoThreshold = 0;
      expected.colorTone.autoMode = 0;
      expected.edgeEnhance.enable = 0;
      expected.noiseRemoval.enable = 0;
      expected.lineRemoval.enable = 0;
      expected.carrierSheet = 0;
      expected.plasticCard = 0;
    }
    expectSame(kAdjust.ConvertUserSetting_LongPaper(settings, capable()), expected);
  }
}

TEST(AdjustScanSetting, LongPaperOnADeviceWithoutItChangesNothing) {
  for (const CAP cap : {0, 1, 3}) {
    QS_SCANNER_CAPABILITY capability = capable();
    capability.baseFunc.longPaperLengthMax.cap = cap;
    Settings settings = filled();
    settings.paperType = PAPERTYPE_LONG;
    expectSame(kAdjust.ConvertUserSetting_LongPaper(settings, capability), settings);
  }
}

TEST(AdjustScanSetting, ACarrierSheetThatTheDeviceTakesChangesNothing) {
  Settings settings = filled();
  settings.paperType = PAPERTYPE_A4;
  expectSame(kAdjust.ConvertUserSetting_CarrierSheet(settings, capable()), settings);
}

TEST(AdjustScanSetting, ACarrierSheetIsWithdrawnForAutomaticSizeAndWhereItIsNotOffered) {
  Settings settings = filled();
  settings.paperType = PAPERTYPE_AUTO;
  Settings expected = settings;
  expected.carrierSheet = 0;
  expectSame(kAdjust.ConvertUserSetting_CarrierSheet(settings, capable()), expected);

  settings.paperType = expected.paperType = PAPERTYPE_A4;
  for (const CAP cap : {0, 1, 3}) {
    QS_SCANNER_CAPABILITY capability = capable();
    capability.advancedFunc.carrierSheet.cap = cap;
    expectSame(kAdjust.ConvertUserSetting_CarrierSheet(settings, capability), expected);
  }
}

TEST(AdjustScanSetting, AnyOtherCarrierByteThanOneIsLeftAlone) {
  Settings settings = filled();
  settings.paperType = PAPERTYPE_AUTO;
  for (const int carrier : {0, 2, 255}) {
    settings.carrierSheet = static_cast<QSBOOL>(carrier);
    expectSame(kAdjust.ConvertUserSetting_CarrierSheet(settings, {}), settings);
  }
}

TEST(AdjustScanSetting, TheWholeAdjustmentKeepsACarrierSheetOnAutomaticSizeAndTheDeskewOfALongPage) {
  Settings settings = filled();
  settings.plasticCard = 0;
  settings.paperType = PAPERTYPE_AUTO;
  EXPECT_EQ(kAdjust.ConvertUserSetting(settings, capable()).carrierSheet, 1);
  settings.paperType = PAPERTYPE_LONG;
  EXPECT_EQ(kAdjust.ConvertUserSetting(settings, capable()).autoDeskew, 1);
}

}  // namespace
}  // namespace orvalle_scan_api
