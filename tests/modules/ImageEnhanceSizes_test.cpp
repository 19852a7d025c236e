// Lengths on the paper: what an item does to so many millimetres it does at every resolution, along the width and along
// the height, which may have different ones.
#include <cmath>

#include "image_enhance_harness.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;

struct Resolution {
  int dpiX, dpiY;
};
void PrintTo(const Resolution& row, std::ostream* out) { *out << row.dpiX << " by " << row.dpiY << " dpi"; }

_IE_PARAM color() {
  _IE_PARAM param{};
  param.colorClass = 4;
  return param;
}

class Sizes : public testing::TestWithParam<Resolution> {
 protected:
  static constexpr double kSideMm = 100;

  int pxX(double mm) const { return static_cast<int>(std::lround(mm * GetParam().dpiX / 25.4)); }
  int pxY(double mm) const { return static_cast<int>(std::lround(mm * GetParam().dpiY / 25.4)); }
  // At least a pixel wide and high.
  Rect rect(double x, double y, double width, double height) const {
    return {pxX(x), pxY(y), std::max(1, pxX(width)), std::max(1, pxY(height))};
  }
  Sheet sheet(Ink paper = kWhite) const {
    Sheet sheet(pxX(kSideMm), pxY(kSideMm), paper);
    sheet.dpi = GetParam().dpiX;
    if (GetParam().dpiY != GetParam().dpiX) sheet.linesPerInch = GetParam().dpiY;
    return sheet;
  }
  void disc(Sheet& sheet, double centerX, double centerY, double acrossMm) const {
    for (int y = 0; y < sheet.heightPx; ++y) {
      for (int x = 0; x < sheet.widthPx; ++x) {
        const double offX = (x + 0.5) * 25.4 / GetParam().dpiX - centerX;
        const double offY = (y + 0.5) * 25.4 / GetParam().dpiY - centerY;
        if (offX * offX + offY * offY <= acrossMm * acrossMm / 4) sheet.set(x, y, kBlack);
      }
    }
  }
  // Whether any ink is left in so many millimetres.
  bool hasInk(const Sheet& sheet, double x, double y, double width, double height) const {
    return countDark(sheet, rect(x, y, width, height)) > 0;
  }
};

TEST_P(Sizes, OfFilledEdges) {
  _IE_PARAM param = color();
  param.doEdgeFill = true;
  param.edgeFill = {false, 500, 400, 300, 200, 0};  // left 5 mm, right 4, top 3, bottom 2
  const Sheet after = enhance(sheet(kBlack), param).sheet;
  const int middleX = after.widthPx / 2;
  const int middleY = after.heightPx / 2;
  EXPECT_EQ(countDark(after, {0, middleY, after.widthPx, 1}), after.widthPx - pxX(5) - pxX(4));
  EXPECT_EQ(countDark(after, {middleX, 0, 1, after.heightPx}), after.heightPx - pxY(3) - pxY(2));
  EXPECT_GE(after.level(pxX(5) - 1, middleY), 250);
  EXPECT_GE(after.level(middleX, pxY(3) - 1), 250);
}

TEST_P(Sizes, OfPunchedHoles) {
  Sheet before = sheet();
  const struct {
    double x, y, across;
    bool isHole;
  } discs[] = {{12, 20, 6, true},  {50, 12, 6, true},   {85, 75, 8, true},    {50, 50, 6, false},
               {12, 50, 2, false}, {12, 80, 14, false}, {31.5, 40, 5, false}, {28.5, 60, 5, true}};
  for (const auto& row : discs) disc(before, row.x, row.y, row.across);
  _IE_PARAM param = color();
  param.doPunchHole = true;
  param.punchHole = {{30, 30, 30, 30}, 3, 10, 0, 0, 0, 1, {0, 0}};
  for (const Sheet& page : {before, toMono(before)}) {
    const Sheet after = enhance(page, param).sheet;
    for (const auto& row : discs) {
      EXPECT_EQ(hasInk(after, row.x - 0.5, row.y - 0.5, 1, 1), !row.isHole)
          << row.across << " mm at " << row.x << "," << row.y << " of " << page.bits << " bits";
    }
  }
}

TEST_P(Sizes, OfSpecks) {
  Sheet before = sheet();
  before.fill(rect(20, 20, 0.25, 0.25), kBlack);
  before.fill(rect(40, 20, 0.7, 0.7), kBlack);
  before.fill(rect(60, 20, 0.25, 1), kBlack);
  before.fill(rect(80, 20, 1, 0.25), kBlack);
  _IE_PARAM param = color();
  param.doNoiseRemoval = true;
  param.noiseRemoval = {{100, 120, 120, 500, 1}};  // 0.3 mm
  for (const Sheet& page : {before, toMono(before)}) {
    const Sheet after = enhance(page, param).sheet;
    EXPECT_FALSE(hasInk(after, 18, 18, 4, 4));
    for (const int x : {38, 58, 78}) EXPECT_TRUE(hasInk(after, x, 18, 4, 4)) << x;
  }
}

TEST_P(Sizes, OfLines) {
  Sheet before = sheet();
  before.fill(rect(10, 10, 25, 0.4), kBlack);  // a line
  before.fill(rect(10, 20, 10, 0.4), kBlack);  // too short
  before.fill(rect(10, 30, 25, 1.4), kBlack);  // too thick
  before.fill(rect(60, 10, 0.4, 25), kBlack);  // the same along the height
  before.fill(rect(70, 10, 0.4, 10), kBlack);
  before.fill(rect(80, 10, 1.4, 25), kBlack);
  _IE_PARAM param = color();
  param.doLineRemoval = true;
  param.lineRemovalA.enable = param.lineRemovalB.enable = 1;  // 15 mm long, 0.7 mm thick
  for (const Sheet& page : {before, toMono(before)}) {
    const Sheet after = enhance(page, param).sheet;
    EXPECT_FALSE(hasInk(after, 8, 8, 30, 4)) << "along the width";
    EXPECT_TRUE(hasInk(after, 8, 18, 30, 4)) << "short";
    EXPECT_TRUE(hasInk(after, 8, 28, 30, 4)) << "thick";
    EXPECT_FALSE(hasInk(after, 58, 8, 4, 30)) << "along the height";
    EXPECT_TRUE(hasInk(after, 68, 8, 4, 30)) << "short";
    EXPECT_TRUE(hasInk(after, 78, 8, 4, 30)) << "thick";
  }
}

TEST_P(Sizes, OfThickerStrokes) {
  Sheet before = sheet();
  before.fill(rect(20, 10, 1, 80), kBlack);
  before.fill(rect(50, 50, 40, 1), kBlack);
  _IE_PARAM param = color();
  param.doThickText = true;
  param.thickTextLevel = 4;  // a third of a millimetre
  for (const Sheet& page : {before, toMono(before)}) {
    const Sheet after = enhance(page, param).sheet;
    EXPECT_EQ(countDark(after, rect(15, 30, 15, 0)), pxX(1) + std::max(1, pxX(4 * 25.4 / 300)));
    EXPECT_EQ(countDark(after, rect(70, 40, 0, 20)), pxY(1) + std::max(1, pxY(4 * 25.4 / 300)));
  }
}

// A row of dots 1/72 inch apart and a column of them; where the pixels are as large as that, dots touch anyway.
TEST_P(Sizes, OfGapsBetweenNeedles) {
  if (std::min(GetParam().dpiX, GetParam().dpiY) < 150) GTEST_SKIP() << "no gaps to see";
  Sheet before = sheet();
  for (int i = 0; i < 12; ++i) {
    before.fill(rect(20 + i * 25.4 / 72, 20, 0.15, 0.15), kBlack);
    before.fill(rect(60, 20 + i * 25.4 / 72, 0.15, 0.15), kBlack);
    before.fill(rect(20 + i * 25.4 / 36, 60, 0.15, 0.15), kBlack);  // twice as far apart: no stroke
  }
  _IE_PARAM param = color();
  param.doDotTextCombine = true;
  param.dotTextCombineMode = 1;
  const Sheet after = enhance(before, param).sheet;
  EXPECT_EQ(countDark(after, {pxX(20), pxY(20), pxX(3), 1}), pxX(3));
  EXPECT_EQ(countDark(after, {pxX(60), pxY(20), 1, pxY(3)}), pxY(3));
  EXPECT_EQ(countDifferent(before, after, rect(18, 58, 15, 4)), 0);
}

TEST_P(Sizes, OfEvenSmoothing) {
  Sheet before = sheet();
  before.fill(rect(50, 0, 50, 100), {0, 0, 0});
  before.fill(rect(0, 50, 50, 50), {0, 0, 0});
  _IE_PARAM param = color();
  param.doSmoothing = true;
  param.smoothingLevel = 50;
  const double sigmaMm = std::exp2(1.25) * 25.4 / 300;
  const Sheet after = enhance(before, param).sheet;
  const auto expected = [&](int px, int dpi) {
    return 255 * 0.5 * (1 + std::erf((px + 0.5) * 25.4 / dpi / sigmaMm / std::sqrt(2.0)));
  };
  for (int i = 0; i < 8; ++i) {
    EXPECT_NEAR(after.level(pxX(50) - 1 - i, pxY(20)), expected(i, GetParam().dpiX), 14) << i;
    EXPECT_NEAR(after.level(pxX(20), pxY(50) - 1 - i), expected(i, GetParam().dpiY), 14) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Resolutions, Sizes,
                         testing::Values(Resolution{75, 75}, Resolution{150, 150}, Resolution{200, 200},
                                         Resolution{300, 300}, Resolution{600, 600}, Resolution{300, 150},
                                         Resolution{200, 600}),
                         [](const auto& info) {
                           return std::to_string(info.param.dpiX) + "by" + std::to_string(info.param.dpiY);
                         });

}  // namespace
