// A capability record that was never filled says "not reported" of every feature, and nothing takes that for one.
#include <gtest/gtest.h>

#include "image/enhance_param.h"
#include "settings/ScanParam.h"
#include "tests/api/caps_bench.h"

namespace {

using namespace orvalle_scan_api;

const QS_SCANNER_CAPABILITY kNothing{};

// All that can be wished for.
QS_SCANNER_PARAMETERS everyWish(COLORTYPE colorType) {
  QS_SCANNER_PARAMETERS wishes{};
  wishes.resolution = {300, 300};
  wishes.colorType = colorType;
  wishes.autoDeskew = wishes.autoRotate = wishes.quietScan = wishes.multifeedDetect = 1;
  wishes.removeBackground = {1, 200};
  wishes.carrierSheet = 1;
  wishes.blankPageRemoval = {1, 3};
  wishes.autoColorLevel = {4, 5};
  wishes.threshold = 128;
  return wishes;
}

TEST(EmptyCapability, GivesNoQuestionAYes) {
  caps_test::Known known([](QS_SCANNER_CAPABILITY&) {});
  CDeviceCaps& caps = known.caps;
  EXPECT_FALSE(caps.IsDuplexSupport());
  EXPECT_FALSE(caps.IsFlatbedSupported());
  EXPECT_FALSE(caps.IsAdfSupported());
  EXPECT_FALSE(caps.IsLongPaperSupport());
  EXPECT_FALSE(caps.IsAutoCropSupport());
  EXPECT_FALSE(caps.IsAutoPaperSizeSupport());
  EXPECT_FALSE(caps.IsAutoDeskewSupport());
  EXPECT_FALSE(caps.IsRemoveBackgroundColorSupport(nullptr));
  EXPECT_FALSE(caps.IsCarrierSheetSupport());
  EXPECT_FALSE(caps.IsPlasticCardModeSupport());
  EXPECT_FALSE(caps.IsMultifeedDetectSupport());
  EXPECT_FALSE(caps.IsIccProfileSupport());
  EXPECT_FALSE(caps.IsQuietModeSupport());
  EXPECT_FALSE(caps.IsAutoColorSupport());
  EXPECT_FALSE(caps.IsEdgeCutSupport());
  EXPECT_FALSE(caps.IsDocumentScanner());
  EXPECT_FALSE(caps.IsInkAio());
  EXPECT_EQ(caps.GetXferCountCapability(), 0);
}

TEST(EmptyCapability, LetsNoWishGoOut) {
  for (const COLORTYPE colorType : {COLORTYPE_AUTO, COLORTYPE_BLACKANDWHITE, COLORTYPE_ERRORDIFFUSION,
                                    COLORTYPE_TRUEGRAY, COLORTYPE_COLOR256, COLORTYPE_COLOR24BIT}) {
    const _SCANCMD_SCANPARAM sent = CScanParam().ConvertScanPramToCmdParam(everyWish(colorType), kNothing);
    EXPECT_EQ(sent.scanArea.areaType, 0) << colorType;
    EXPECT_FALSE(sent.autoColorLevelOn) << colorType;
    EXPECT_FALSE(sent.monoThreshold.isValid) << colorType;
    EXPECT_FALSE(sent.autoDeskew) << colorType;
    EXPECT_FALSE(sent.groundColorRemoval.isOn) << colorType;
    EXPECT_FALSE(sent.carrierSheetMode.isOn) << colorType;
    EXPECT_FALSE(sent.blankPageRemoval.isOn) << colorType;
    EXPECT_FALSE(sent.doubleFeedDetection.isOn) << colorType;
    EXPECT_FALSE(sent.feedMotion.isOn) << colorType;
  }
}

TEST(EmptyCapability, HasNoTapeBehindThePaper) {
  QS_SCANNER_PARAMETERS wishes{};
  wishes.punchHoleRemoval.enable = 1;
  EXPECT_EQ(makeEnhanceParam(wishes, kNothing).punchHole.hasColorTape, 0);
}

}  // namespace
