// What a page is reduced to: grey, mono by a threshold, mono by error diffusion.
#include "image_enhance_harness.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;

_IE_PARAM classOf(std::int32_t colorClass) {
  _IE_PARAM param{};
  param.colorClass = colorClass;
  return param;
}

// Text on the left, a grey wedge from black to white and three inks on the right.
Sheet textAndWedge() {
  Sheet sheet(900, 300);
  writeText(sheet, {30, 10, 400, 270});
  for (int x = 0; x < 400; ++x) {
    const auto level = static_cast<std::uint8_t>(x * 255 / 399);
    sheet.fill({470 + x, 30, 1, 220}, {level, level, level});
  }
  const Ink inks[] = {kRed, kGreen, kBlue};
  for (int i = 0; i < 3; ++i) sheet.fill({470 + i * 140, 260, 120, 30}, inks[i]);
  return sheet;
}

TEST(ImageEnhanceReduce, GoesByTheUsersClassAndByWhatTheDeviceFound) {
  const Sheet color = textAndWedge();
  const struct {
    const char* name;
    Sheet sheet;
    std::int32_t colorClass;
    int autoColorMode;
    int bits;
  } rows[] = {
      {"colour for mono", color, 1, 0, 1},
      {"colour for error diffusion", color, 2, 0, 1},
      {"colour for grey", color, 3, 0, 8},
      {"colour for colour", color, 4, 0, 24},
      {"colour for colour, found mono", color, 4, 2, 24},
      {"automatic, found colour", color, 0, 0, 24},
      {"automatic, found grey", color, 0, 1, 8},
      {"automatic, found mono", color, 0, 2, 1},
      {"grey for mono", toGray(color), 1, 0, 1},
      {"grey for error diffusion", toGray(color), 2, 0, 1},
      {"automatic grey, found mono", toGray(color), 0, 2, 1},
      {"unknown class", color, 77, 1, 8},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(enhance(row.sheet, classOf(row.colorClass), row.autoColorMode).sheet.bits, row.bits) << row.name;
  }
}

TEST(ImageEnhanceReduce, GivesGreyTheWeightsOfTheEye) {
  Sheet sheet(4, 1);
  const Ink inks[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};
  for (int x = 0; x < 4; ++x) sheet.set(x, 0, inks[x]);
  EXPECT_EQ(enhance(sheet, classOf(3)).sheet.pixels, (std::vector<std::uint8_t>{76, 149, 29, 255}));
}

TEST(ImageEnhanceReduce, TakesDarkerThanTheThresholdForInk) {
  Sheet ramp(256, 1);
  for (int x = 0; x < 256; ++x) {
    const auto level = static_cast<std::uint8_t>(x);
    ramp.set(x, 0, {level, level, level});
  }
  for (const int threshold : {1, 60, 128, 254}) {
    _IE_PARAM param = classOf(1);
    param.threshold = threshold;
    for (const Sheet& sheet : {ramp, toGray(ramp)}) {
      const Sheet mono = enhance(sheet, param).sheet;
      EXPECT_EQ(countDark(mono, mono.whole()), threshold);
      EXPECT_EQ(mono.level(threshold - 1, 0), 0);
      EXPECT_EQ(mono.level(threshold, 0), 255);
    }
  }
}

TEST(ImageEnhanceReduce, FindsTheThresholdWhereNoneIsGiven) {
  const Ink paper = {120, 118, 110};
  const Ink ink = {60, 62, 66};
  Sheet sheet(600, 200, paper);
  writeText(sheet, {20, 10, 560, 180}, 12, ink);
  const int inked = countDark(sheet, sheet.whole(), 90);
  addGrain(sheet, 8);
  for (const int threshold : {0, -1, 255, 100000}) {
    _IE_PARAM param = classOf(1);
    param.threshold = threshold;
    const Sheet mono = enhance(sheet, param).sheet;
    EXPECT_NEAR(countDark(mono, mono.whole()), inked, inked / 100) << threshold;
  }
}

TEST(ImageEnhanceReduce, KeepsABlankPageBlank) {
  for (const Ink paper : {kWhite, Ink{225, 220, 205}, Ink{140, 140, 140}}) {
    Sheet sheet(1000, 1000, paper);
    addGrain(sheet, 8);
    for (const bool isAutomatic : {false, true}) {
      _IE_PARAM param = classOf(1);
      param.doAutoThreshold = isAutomatic;
      param.autoThreshold = {{50, 50}, 0, {7, 2}};
      const Sheet mono = enhance(sheet, param).sheet;
      EXPECT_EQ(countDark(mono, mono.whole()), 0) << int{paper[2]};
    }
  }
}

// A page whose right half lies in the shade: one threshold blackens it or loses the text, an automatic one does
// neither.
TEST(ImageEnhanceReduce, EvensShadedPaperForTheAutomaticThreshold) {
  Sheet drawn(1600, 800);
  writeText(drawn, {60, 20, 1480, 760});
  const Sheet wanted = toMono(drawn);
  Sheet shaded = drawn;
  for (int y = 0; y < shaded.heightPx; ++y) {
    for (int x = 0; x < shaded.widthPx; ++x) {
      const double light = 1 - 0.68 * x / shaded.widthPx;
      Ink ink = drawn.at(x, y);
      for (std::uint8_t& value : ink) value = static_cast<std::uint8_t>((value * 0.55 + 115) * light * 255 / 256);
      shaded.set(x, y, ink);
    }
  }
  addGrain(shaded, 4);
  _IE_PARAM param = classOf(1);
  const Sheet plain = enhance(shaded, param).sheet;
  param.doAutoThreshold = true;
  param.autoThreshold = {{50, 50}, 0, {7, 2}};
  const Sheet even = enhance(shaded, param).sheet;
  const int inked = countDark(wanted, wanted.whole());
  EXPECT_GT(countDifferent(plain, wanted, wanted.whole()), inked) << "the page is too easy";
  EXPECT_LT(countDifferent(even, wanted, wanted.whole()), inked / 50);
  leavePicture("threshold-one", shaded, plain, {500, 100, 1000, 300}, 0.4F);
  leavePicture("threshold-automatic", shaded, even, {500, 100, 1000, 300}, 0.4F);
}

TEST(ImageEnhanceReduce, LetsBrightnessMoveTheAutomaticThreshold) {
  Sheet sheet(600, 200);
  writeText(sheet, {20, 10, 560, 180}, 12);
  Sheet soft = sheet;
  for (int y = 1; y < 199; ++y) {
    for (int x = 1; x < 599; ++x) {
      const auto mean = static_cast<std::uint8_t>(meanLevel(sheet, {x - 1, y - 1, 3, 3}));
      soft.set(x, y, {mean, mean, mean});
    }
  }
  int last = -1;
  for (const int brightness : {190, 128, 70}) {
    _IE_PARAM param = classOf(1);
    param.doToneAdjust = true;
    param.toneAdjust = {static_cast<std::uint8_t>(brightness), 128, 0, 255, 1.4};
    const Sheet mono = enhance(soft, param).sheet;
    EXPECT_GT(countDark(mono, mono.whole()), last * 105 / 100) << brightness;
    last = countDark(mono, mono.whole());
  }
}

// Error diffusion keeps the brightness of every part and leaves paper and black as they are.
TEST(ImageEnhanceReduce, KeepsShadesAsDensityByErrorDiffusion) {
  const Sheet sheet = textAndWedge();
  const Sheet dots = enhance(sheet, classOf(2)).sheet;
  ASSERT_EQ(dots.bits, 1);
  for (int x = 490; x < 830; x += 40) {
    const Rect patch{x, 40, 40, 200};
    EXPECT_NEAR(meanLevel(dots, patch), meanLevel(sheet, patch), 8) << x;
  }
  EXPECT_EQ(countDark(dots, {0, 0, 20, 300}), 0);
  leavePicture("reduce-grey", sheet, enhance(sheet, classOf(3)).sheet, sheet.whole(), 0.4F);
  _IE_PARAM threshold = classOf(1);
  threshold.threshold = 128;
  const Sheet mono = enhance(sheet, threshold).sheet;
  EXPECT_EQ(meanLevel(mono, {490, 40, 40, 200}), 0);
  leavePicture("reduce-diffusion", sheet, dots, sheet.whole(), 0.4F);
  leavePicture("reduce-mono", sheet, mono, sheet.whole(), 0.4F);
}

TEST(ImageEnhanceReduce, BrightensAnAutomaticPageThatBecomesGrey) {
  Sheet sheet(40, 40, {100, 100, 100});
  _IE_PARAM param = classOf(0);
  param.doToneAdjust = true;
  param.toneAdjust = {128, 128, 0, 255, 1.0};
  param.grayBrightness = 148;
  EXPECT_EQ(enhance(sheet, param, 1).sheet.level(20, 20), 120);
  EXPECT_FALSE(enhance(sheet, param, 0).hasChanged);
  param.threshold = 110;
  EXPECT_EQ(enhance(sheet, param, 2).sheet.level(20, 20), 255);
  param.grayBrightness = 128;
  EXPECT_EQ(enhance(sheet, param, 2).sheet.level(20, 20), 0);
}

}  // namespace
