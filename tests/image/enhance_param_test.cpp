#include "image/enhance_param.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

using namespace orvalle_scan_api;

namespace {

struct EnhanceParam : ::testing::Test {
  QS_SCANNER_PARAMETERS user{};
  QS_SCANNER_CAPABILITY capability{};
  EnhanceParam() {
    user.resolution = {300, 300};
    user.colorType = COLORTYPE_COLOR24BIT;
    capability.commandVersion = 0x102;
  }
  _IE_PARAM make() const { return makeEnhanceParam(user, capability); }
};

void expectTone(const IE_TONEADJUST& tone, int brightness, int contrast, int shadow, int highlight, double gamma) {
  EXPECT_EQ(tone.brightness, brightness);
  EXPECT_EQ(tone.contrast, contrast);
  EXPECT_EQ(tone.shadow, shadow);
  EXPECT_EQ(tone.highlight, highlight);
  EXPECT_EQ(tone.gamma, gamma);
}

TEST_F(EnhanceParam, WithoutAnyWishOnlyTheColourClassIsSet) {
  const _IE_PARAM param = make();
  _IE_PARAM expected{};
  expected.colorClass = 4;
  EXPECT_EQ(std::memcmp(&param, &expected, sizeof param), 0);
}

TEST_F(EnhanceParam, ColourTypesHaveTheirClass) {
  const int kRows[][2] = {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 0}, {5, 4}, {9, 0}, {-1, 0}};
  for (const auto& row : kRows) {
    user.colorType = static_cast<COLORTYPE>(row[0]);
    EXPECT_EQ(make().colorClass, row[1]) << row[0];
  }
}

TEST_F(EnhanceParam, TheFirstColourDropPresetThatIsSetWins) {
  struct Row {
    const char* name;
    QSBOOL chromatic, red, green, blue;
    IE_COLORDROP expected;
  };
  const Row kRows[] = {{"chromatic", 1, 1, 1, 1, {1, 0, 0, 0, 1, 1}},
                       {"red", 0, 1, 1, 1, {0, 80, 0, 28, 40, 1}},
                       {"green", 0, 0, 1, 1, {0, 0, 60, 0, 40, 1}},
                       {"blue", 0, 0, 0, 1, {0, 0, 0, 40, 60, 1}},
                       {"custom", 0, 0, 0, 0, {0, 11, 12, 13, 14, 1}}};
  for (const Row& row : kRows) {
    user.colorDrop = {1, row.chromatic, row.red, row.green, row.blue, 11, 12, 13, 14, 2};
    const _IE_PARAM param = make();
    EXPECT_TRUE(param.doColorDrop);
    EXPECT_EQ(std::memcmp(&param.colorDrop, &row.expected, sizeof row.expected), 0) << row.name;
  }
  user.colorDrop.customFlag = 0;
  user.colorDrop.blue = 0;
  EXPECT_EQ(make().colorDrop.flag, 0);
}

TEST_F(EnhanceParam, PunchHolesAreSearchedAgainstTheDevicesTape) {
  user.punchHoleRemoval = {1, 6};
  capability.baseFunc.colorTape = {2, 200, 100, 50, 7, 9};
  const IE_PUNCHHOLE hole = make().punchHole;
  EXPECT_TRUE(make().doPunchHole);
  for (int margin : hole.margin) EXPECT_EQ(margin, 30);
  EXPECT_EQ(hole.areaLimit, 3);
  EXPECT_EQ(hole.step, 10);
  EXPECT_EQ(hole.hasColorTape, 1);
  // (306 * 200 + 601 * 100 + 117 * 50) >> 10 = 127150 >> 10 = 124
  EXPECT_EQ(hole.grayLow, 124 - 9);
  EXPECT_EQ(hole.grayHigh, 124 + 7);
  EXPECT_EQ(hole.fillMode, 0);
  const int kFills[][2] = {{6, 0}, {0, 1}, {1, 2}, {5, 2}, {7, 2}};
  for (const auto& row : kFills) {
    user.punchHoleRemoval.fill = row[0];
    EXPECT_EQ(make().punchHole.fillMode, row[1]) << row[0];
  }
  capability.baseFunc.colorTape = {0, -1, 0, 0, 0, 0};
  EXPECT_EQ(make().punchHole.hasColorTape, 0);
  EXPECT_EQ(make().punchHole.grayLow, -1) << "an arithmetic shift";
}

TEST_F(EnhanceParam, AutomaticToneIsForColourAndGreyOnly) {
  user.colorTone = {1, 1, 10, 10, 1, 2, 150};
  for (COLORTYPE color : {COLORTYPE_COLOR24BIT, COLORTYPE_TRUEGRAY, COLORTYPE_AUTO, COLORTYPE_COLOR256}) {
    user.colorType = color;
    EXPECT_TRUE(make().doAutoTone);
    EXPECT_FALSE(make().doToneAdjust);
    expectTone(make().toneAdjust, 0, 0, 0, 0, 0);
  }
  for (COLORTYPE color : {COLORTYPE_BLACKANDWHITE, COLORTYPE_ERRORDIFFUSION}) {
    user.colorType = color;
    EXPECT_FALSE(make().doAutoTone);
    EXPECT_TRUE(make().doToneAdjust);
  }
}

TEST_F(EnhanceParam, ToneComesFromItsOwnFieldsOrForMonoFromTheMainOnes) {
  user.colorTone = {1, 0, 10, -10, 0x105, 220, 150};
  user.brightness = 20;
  user.contrast = -20;
  struct Row {
    COLORTYPE color;
    int brightness, contrast, shadow, highlight;
    double gamma;
    int grayBrightness;
  };
  // 10 -> 153, -10 -> 102, 20 -> 179, -20 -> 77
  const Row kRows[] = {
      {COLORTYPE_COLOR24BIT, 153, 102, 5, 220, 1.5, 0},    {COLORTYPE_TRUEGRAY, 153, 102, 5, 220, 1.5, 0},
      {COLORTYPE_AUTO, 153, 102, 5, 220, 1.5, 179},        {COLORTYPE_COLOR256, 153, 102, 5, 220, 1.5, 179},
      {COLORTYPE_ERRORDIFFUSION, 179, 77, 0, 220, 1.0, 0}, {COLORTYPE_BLACKANDWHITE, 179, 128, 0, 255, 1.4, 0}};
  for (const Row& row : kRows) {
    user.colorType = row.color;
    const _IE_PARAM param = make();
    SCOPED_TRACE(row.color);
    expectTone(param.toneAdjust, row.brightness, row.contrast, row.shadow, row.highlight, row.gamma);
    EXPECT_EQ(param.grayBrightness, row.grayBrightness);
  }
}

TEST_F(EnhanceParam, ToneBytesAreTruncatedAndWrapOutsideTheirRange) {
  user.colorTone.enable = 1;
  const int kRows[][2] = {{0, 128}, {-50, 0}, {50, 255}, {1, 130}, {-1, 125}, {70, 50}, {-70, 206}};
  for (const auto& row : kRows) {
    user.colorTone.brightness = row[0];
    EXPECT_EQ(make().toneAdjust.brightness, row[1]) << row[0];
  }
  user.colorTone.brightness = 0x7FFFFFFF;
  make();
}

TEST_F(EnhanceParam, NoiseLevelsHaveTheirPreset) {
  const int kRows[][2] = {{1, 30}, {2, 60}, {3, 120}, {4, 200}, {5, 300}, {0, 120}, {6, 120}, {-1, 120}};
  for (const auto& row : kRows) {
    user.noiseRemoval = {1, row[0]};
    const _IE_PARAM param = make();
    EXPECT_TRUE(param.doNoiseRemoval);
    const int expected[] = {100, row[1], row[1], 500, 1};
    EXPECT_EQ(std::memcmp(param.noiseRemoval.value, expected, sizeof expected), 0) << row[0];
  }
}

TEST_F(EnhanceParam, LineRemovalTakesOneDirectionOrBoth) {
  struct Row {
    int direction;
    std::size_t a, b;
  };
  for (const Row& row : {Row{0, 1, 0}, Row{1, 0, 1}, Row{2, 1, 1}, Row{-1, 1, 1}}) {
    user.lineRemoval = {1, row.direction, 11, 12, 13};
    const _IE_PARAM param = make();
    EXPECT_TRUE(param.doLineRemoval);
    EXPECT_EQ(param.lineRemovalA.enable, row.a) << row.direction;
    EXPECT_EQ(param.lineRemovalB.enable, row.b) << row.direction;
    for (const IE_LINEREMOVAL& line : {param.lineRemovalA, param.lineRemovalB}) {
      EXPECT_EQ(line.reserved, 0u);
      EXPECT_EQ(line.mode, 0x21);
      EXPECT_EQ(line.second, 12);
      EXPECT_EQ(line.first, 11);
    }
    EXPECT_EQ(param.lineRemovalThird, 13);
  }
}

TEST_F(EnhanceParam, OlderAndNewerCommandVersionsGetNoThresholdNoiseAndLineRemoval) {
  user.autoThreshold = 1;
  user.threshold = 77;
  user.noiseRemoval = {1, 4};
  user.lineRemoval = {1, 0, 1, 2, 3};
  _IE_PARAM param = make();
  EXPECT_TRUE(param.doAutoThreshold);
  EXPECT_EQ(param.autoThreshold.first[0], 50);
  EXPECT_EQ(param.autoThreshold.first[1], 50);
  EXPECT_EQ(param.autoThreshold.word, 0u);
  EXPECT_EQ(param.autoThreshold.second[0], 7);
  EXPECT_EQ(param.autoThreshold.second[1], 2);
  EXPECT_EQ(param.threshold, 77);
  for (int version : {0x101, 0x103, 0}) {
    capability.commandVersion = static_cast<std::uint16_t>(version);
    param = make();
    EXPECT_FALSE(param.doAutoThreshold);
    EXPECT_FALSE(param.doNoiseRemoval);
    EXPECT_FALSE(param.doLineRemoval);
    EXPECT_EQ(param.noiseRemoval.value[0], 0);
    EXPECT_EQ(param.lineRemovalA.mode, 0);
    EXPECT_EQ(param.threshold, 77) << "for every version";
  }
}

TEST_F(EnhanceParam, ThickTextHidesDotTextCombine) {
  user.thickText = {1, 3};
  user.dotTextCombine = 1;
  const _IE_PARAM param = make();
  EXPECT_TRUE(param.doThickText);
  EXPECT_EQ(param.thickTextLevel, 3);
  EXPECT_FALSE(param.doDotTextCombine);
  EXPECT_EQ(param.dotTextCombineMode, 0);
}

TEST_F(EnhanceParam, TheSmallerResolutionChoosesTheDotTextMode) {
  user.dotTextCombine = 1;
  const unsigned kRows[][3] = {{600, 300, 1}, {300, 600, 1}, {600, 600, 2}, {599, 599, 1}, {1200, 600, 2}};
  for (const auto& row : kRows) {
    user.resolution = {row[0], row[1]};
    EXPECT_TRUE(make().doDotTextCombine);
    EXPECT_EQ(make().dotTextCombineMode, static_cast<int>(row[2])) << row[0] << " by " << row[1];
  }
}

TEST_F(EnhanceParam, TheOtherWishesAreCopied) {
  user.firstEnhanceFlag = 1;
  user.smoothing = {1, 2, -30};
  user.edgeEnhance = {1, 4};
  user.autoRotate = 1;
  user.autoRotateParam = 9;
  user.edgeFill = {1, 2, 11, 12, 13, 14, 15};
  _IE_PARAM param = make();
  EXPECT_TRUE(param.doFirstEnhance);
  EXPECT_TRUE(param.doSmoothing);
  EXPECT_EQ(param.smoothingMode, 2);
  EXPECT_EQ(param.smoothingLevel, -30);
  EXPECT_TRUE(param.doEdgeEnhance);
  EXPECT_EQ(param.edgeEnhanceLevel, 4);
  EXPECT_TRUE(param.doAutoRotate);
  EXPECT_EQ(param.autoRotateParam, 9);
  EXPECT_TRUE(param.doEdgeFill);
  EXPECT_TRUE(param.edgeFill.isPixel);
  EXPECT_EQ(param.edgeFill.first, 11);
  EXPECT_EQ(param.edgeFill.third, 13);
  EXPECT_EQ(param.edgeFill.second, 12);
  EXPECT_EQ(param.edgeFill.fourth, 14);
  EXPECT_EQ(param.edgeFill.fifth, 15);
  user.edgeFill.mode = 1;
  EXPECT_FALSE(make().edgeFill.isPixel);
  user.autoRotate = 0;
  EXPECT_EQ(make().autoRotateParam, 0) << "only with the wish";
}

}  // namespace
