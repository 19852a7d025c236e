// Shades: tone by hand, automatic tone, smoothing, edge enhancement.
#include <cmath>

#include "image_enhance_harness.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;

_IE_PARAM color() {
  _IE_PARAM param{};
  param.colorClass = 4;
  return param;
}

_IE_PARAM tone(IE_TONEADJUST adjust) {
  _IE_PARAM param = color();
  param.doToneAdjust = true;
  param.toneAdjust = adjust;
  return param;
}

constexpr IE_TONEADJUST kNeutral = {128, 128, 0, 255, 1.0};

// All levels of grey from left to right.
Sheet ramp() {
  Sheet sheet(256, 2);
  for (int x = 0; x < 256; ++x) {
    const auto level = static_cast<std::uint8_t>(x);
    sheet.fill({x, 0, 1, 2}, {level, level, level});
  }
  return sheet;
}

// A washed-out page: grey paper, grey text, faint colours.
Sheet faded() {
  Sheet sheet(800, 400, {214, 212, 205});
  writeText(sheet, {30, 10, 460, 380}, 10, {108, 108, 110});
  const Ink inks[] = {{190, 130, 125}, {130, 170, 135}, {125, 135, 185}, {150, 150, 150}};
  for (int i = 0; i < 4; ++i) sheet.fill({540, 20 + i * 92, 220, 80}, inks[i]);
  addGrain(sheet, 2);
  return sheet;
}

_IE_PARAM automaticTone() {
  _IE_PARAM param = color();
  param.doAutoTone = true;
  return param;
}

// The level that most of a photograph has is no paper: what is brighter must not all become white.
TEST(ImageEnhanceTone, DoesNotWashOutAPicture) {
  Sheet sheet(400, 300);
  for (int y = 0; y < 300; ++y) {
    for (int x = 0; x < 400; ++x) {
      const auto level = static_cast<std::uint8_t>(y < 120 ? 190 + x / 10 : 40 + (x + y) / 5);
      sheet.set(x, y, {level, level, level});
    }
  }
  const Sheet after = enhance(sheet, automaticTone()).sheet;
  EXPECT_LT(after.level(100, 50), 235) << "the sky";
  EXPECT_GT(after.level(390, 50), 250);
  for (int x = 20; x < 380; x += 40) EXPECT_LT(after.level(x, 50), after.level(x + 20, 50)) << x;
}

TEST(ImageEnhanceTone, MakesPaleInkBlack) {
  Sheet sheet(800, 300, {250, 250, 248});
  writeText(sheet, {30, 10, 740, 280}, 10, {165, 165, 165});
  const Sheet after = enhance(sheet, automaticTone()).sheet;
  EXPECT_NEAR(countDark(after, sheet.whole(), 40), countDark(sheet, sheet.whole(), 200), 20);
  EXPECT_EQ(after.at(5, 5), kWhite);
}

TEST(ImageEnhanceTone, MakesNoNoiseOfABlankPage) {
  Sheet sheet(400, 300, {235, 232, 228});
  addGrain(sheet, 8);
  const Sheet after = enhance(sheet, automaticTone()).sheet;
  EXPECT_EQ(countDark(after, sheet.whole(), 225), 0);
}

TEST(ImageEnhanceTone, LeavesAPageAloneWithNeutralNumbers) { EXPECT_FALSE(enhance(ramp(), tone(kNeutral)).hasChanged); }

TEST(ImageEnhanceTone, DoesWhatEachNumberSays) {
  struct Row {
    const char* name;
    IE_TONEADJUST adjust;
    std::vector<std::pair<int, int>> levels;  // before, after
  };
  const Row rows[] = {
      {"brighter", {168, 128, 0, 255, 1.0}, {{0, 40}, {100, 140}, {230, 255}}},
      {"darker", {88, 128, 0, 255, 1.0}, {{20, 0}, {100, 60}, {255, 215}}},
      {"all contrast", {128, 255, 0, 255, 1.0}, {{60, 0}, {127, 126}, {200, 255}}},
      {"no contrast", {128, 1, 0, 255, 1.0}, {{0, 96}, {255, 159}}},
      {"shadow", {128, 128, 50, 255, 1.0}, {{50, 0}, {153, 128}, {255, 255}}},
      {"highlight", {128, 128, 0, 220, 1.0}, {{0, 0}, {110, 128}, {220, 255}, {240, 255}}},
      {"gamma 2", {128, 128, 0, 255, 2.0}, {{0, 0}, {64, 128}, {255, 255}}},
      {"gamma one half", {128, 128, 0, 255, 0.5}, {{0, 0}, {128, 64}, {255, 255}}},
      {"shadow above highlight", {128, 128, 200, 100, 2.0}, {{64, 128}}},
      {"no gamma", {168, 128, 0, 255, 0.0}, {{100, 140}}},
      {"gamma that is no number", {168, 128, 0, 255, std::nan("")}, {{100, 140}}},
  };
  for (const Row& row : rows) {
    for (const Sheet& sheet : {ramp(), toGray(ramp())}) {
      const Sheet after = enhance(sheet, tone(row.adjust)).sheet;
      for (const auto& [before, wanted] : row.levels) EXPECT_NEAR(after.level(before, 0), wanted, 1) << row.name;
    }
  }
  const Sheet before = faded();
  leavePicture("tone", before, enhance(before, tone({128, 150, 90, 205, 0.9})).sheet, before.whole(), 0.4F);
}

TEST(ImageEnhanceTone, HasNoShadesToChangeOnAMonoPage) {
  _IE_PARAM param = tone({255, 255, 0, 255, 3.0});
  param.doAutoTone = param.doSmoothing = param.doEdgeEnhance = true;
  EXPECT_FALSE(enhance(toMono(faded()), param).hasChanged);
}

TEST(ImageEnhanceTone, StretchesAFadedPage) {
  const Sheet before = faded();
  _IE_PARAM param = color();
  param.doAutoTone = true;
  const Sheet after = enhance(before, param).sheet;
  EXPECT_LT(meanLevel(before, {0, 0, 20, 400}), 215);
  EXPECT_GT(meanLevel(after, {0, 0, 20, 400}), 253);
  EXPECT_EQ(countDark(before, {30, 10, 460, 380}, 60), 0);
  EXPECT_GT(countDark(after, {30, 10, 460, 380}, 60), countDark(before, {30, 10, 460, 380}, 150) * 9 / 10);
  // Colours keep their kind: the red patch is still redder than it is green.
  const Ink red = after.at(600, 60);
  EXPECT_GT(red[0], red[1] + 60);
  leavePicture("tone-automatic", before, after, before.whole(), 0.4F);
}

// Neither all white nor all dark nor black and white already: nothing to stretch.
TEST(ImageEnhanceTone, StretchesNothingThatNeedsNone) {
  _IE_PARAM param = color();
  param.doAutoTone = true;
  Sheet page(400, 400);
  page.fill({100, 100, 100, 100}, {0, 0, 0});
  const Sheet after = enhance(page, param).sheet;
  EXPECT_LE(countDifferent(page, after, page.whole(), 2), 0);
  Sheet dark(400, 400, {90, 90, 90});
  EXPECT_LT(meanLevel(enhance(dark, param).sheet, {0, 0, 400, 400}), 170) << "a dark page is not paper";
}

// A tint of printed dots, and a sharp black edge beside it.
Sheet printedTint() {
  Sheet sheet(640, 320);
  for (int y = 0; y < 320; y += 5) {
    for (int x = 0; x < 320; x += 5) sheet.fill({x, y, 3, 3}, {130, 130, 130});
  }
  writeText(sheet, {350, 10, 280, 300}, 12);
  return sheet;
}

double deviation(const Sheet& sheet, Rect rect) {
  const double mean = meanLevel(sheet, rect);
  double sum = 0;
  for (int y = rect.y; y < rect.y + rect.height; ++y) {
    for (int x = rect.x; x < rect.x + rect.width; ++x) sum += std::pow(sheet.level(x, y) - mean, 2);
  }
  return std::sqrt(sum / rect.width / rect.height);
}

TEST(ImageEnhanceTone, SmoothsPrintedDots) {
  const Sheet before = printedTint();
  constexpr Rect kTint = {20, 20, 280, 280};
  double last = deviation(before, kTint);
  for (const int level : {-50, 0, 50}) {
    for (const Sheet& sheet : {before, toGray(before)}) {
      _IE_PARAM param = color();
      param.doSmoothing = true;
      param.smoothingLevel = level;
      const Sheet after = enhance(sheet, param).sheet;
      EXPECT_LT(deviation(after, kTint), last * 0.95) << level;
      EXPECT_NEAR(meanLevel(after, kTint), meanLevel(before, kTint), 1);
      if (sheet.bits == 8) last = deviation(after, kTint);
      if (level == 50 && sheet.bits == 24) leavePicture("smoothing", before, after, before.whole());
    }
  }
  EXPECT_LT(last, 2) << "dots can still be seen at the highest level";
}

TEST(ImageEnhanceTone, SmoothsGrainAndLeavesEdgesSharp) {
  Sheet clean(640, 320, {225, 222, 215});
  writeText(clean, {20, 10, 600, 300}, 12);
  Sheet before = clean;
  addGrain(before, 10);
  _IE_PARAM param = color();
  param.doSmoothing = true;
  param.smoothingMode = 1;
  const Sheet after = enhance(before, param).sheet;
  EXPECT_LT(deviation(after, {0, 0, 15, 320}), deviation(before, {0, 0, 15, 320}) / 2);
  EXPECT_LT(countDifferent(after, clean, clean.whole(), 20), clean.widthPx * clean.heightPx / 500);
  leavePicture("smoothing-grain", before, after, {10, 20, 300, 150}, 1.2F);
}

TEST(ImageEnhanceTone, SharpensSoftEdges) {
  Sheet drawn(640, 320);
  writeText(drawn, {20, 10, 600, 300}, 12);
  _IE_PARAM softened = color();
  softened.doSmoothing = true;
  const Sheet before = enhance(drawn, softened).sheet;
  // What is neither ink nor paper is an edge that has lost its sharpness.
  const auto softPixels = [](const Sheet& sheet) {
    return countDark(sheet, sheet.whole(), 190) - countDark(sheet, sheet.whole(), 75);
  };
  int last = softPixels(before);
  for (int level = 1; level <= 5; ++level) {
    for (const Sheet& sheet : {before, toGray(before)}) {
      _IE_PARAM param = color();
      param.doEdgeEnhance = true;
      param.edgeEnhanceLevel = level;
      const Sheet after = enhance(sheet, param).sheet;
      EXPECT_LT(softPixels(after), last) << level;
      if (sheet.bits == 8) last = softPixels(after);
      if (level == 3 && sheet.bits == 24) leavePicture("edges", before, after, {10, 20, 300, 150}, 1.2F);
    }
  }
  EXPECT_LT(last, softPixels(before) / 2);
}

TEST(ImageEnhanceTone, LeavesGrainAloneWhereItSharpens) {
  Sheet paper(300, 300, {225, 222, 215});
  addGrain(paper, 3);
  _IE_PARAM param = color();
  param.doEdgeEnhance = true;
  param.edgeEnhanceLevel = 5;
  EXPECT_LT(deviation(enhance(paper, param).sheet, paper.whole()), deviation(paper, paper.whole()) * 1.05);
}

}  // namespace
