#include "settings/PaperSize.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>

namespace orvalle_scan_api {
namespace {

const CPaperSize kPaper;

struct PaperRow {
  int type;
  std::uint32_t inchWidth, inchHeight;
  std::uint32_t mmWidth, mmHeight;
};
constexpr PaperRow kPapers[] = {
    {0, 0, 0, 0, 0},
    {1, 8267, 11692, 21000, 29700},
    {2, 8500, 11000, 21590, 27940},
    {3, 8500, 14000, 21590, 35560},
    {4, 11692, 16535, 29700, 42000},
    {5, 11000, 17000, 27940, 43180},
    {6, 10118, 14330, 25700, 36400},
    {7, 7165, 10118, 18200, 25700},
    {8, 5826, 8267, 14800, 21000},
    {9, 5039, 7165, 12800, 18200},
    {10, 4133, 5826, 10500, 14800},
    {11, 7250, 10500, 18415, 26670},
    {12, 4000, 6000, 10160, 15240},
    {13, 5000, 8000, 12700, 20320},
    {14, 3503, 5000, 8897, 12700},
    {15, 5000, 7000, 12700, 17780},
    {16, 3937, 5826, 10000, 14800},
    {17, 5826, 7874, 14800, 20000},
    {18, 3543, 2362, 9000, 6000},
    {19, 2362, 3543, 6000, 9000},
    {20, 8500, 13000, 21590, 33020},
    {21, 8500, 13380, 21590, 33985},
    {22, 8464, 13582, 21500, 34500},
    {23, 4250, 0, 10795, 0},
    {24, 8500, 0, 21590, 0},
    // Without a row.
    {25, 0, 0, 0, 0},
    {26, 0, 0, 0, 0},
    {27, 0, 0, 0, 0},
    {-1, 0, 0, 0, 0},
    {INT_MAX, 0, 0, 0, 0},
    {INT_MIN, 0, 0, 0, 0},
};

TEST(PaperSize, EveryPaperHasItsSizeInBothUnits) {
  for (const PaperRow& row : kPapers) {
    const auto type = static_cast<PAPERTYPE>(row.type);
    const AXIS inch = kPaper.GetPaperSize(type, UNIT_INCH);
    EXPECT_EQ(inch.x, row.inchWidth) << row.type;
    EXPECT_EQ(inch.y, row.inchHeight) << row.type;
    const AXIS mm = kPaper.GetPaperSize(type, UNIT_MILLIMETER);
    EXPECT_EQ(mm.x, row.mmWidth) << row.type;
    EXPECT_EQ(mm.y, row.mmHeight) << row.type;
  }
}

TEST(PaperSize, NoPaperHasASizeInPixels) {
  for (const PaperRow& row : kPapers) {
    const AXIS size = kPaper.GetPaperSize(static_cast<PAPERTYPE>(row.type), UNIT_PIXEL);
    EXPECT_EQ(size.x, 0u) << row.type;
    EXPECT_EQ(size.y, 0u) << row.type;
  }
}

TEST(PaperSize, ARowHoldsThePaperInTheUnitItIsDefinedIn) {
  constexpr int kMetric[] = {1, 4, 6, 7, 8, 9, 10, 16, 17, 18, 19, 22};
  for (int type = 0; type <= 24; ++type) {
    const PaperListRow row = paperListRow(static_cast<PAPERTYPE>(type));
    const bool metric = std::ranges::find(kMetric, type) != std::end(kMetric);
    EXPECT_EQ(row.unit, metric ? UNIT_MILLIMETER : UNIT_INCH) << type;
    EXPECT_EQ(row.width, metric ? kPapers[type].mmWidth : kPapers[type].inchWidth) << type;
    EXPECT_EQ(row.height, metric ? kPapers[type].mmHeight : kPapers[type].inchHeight) << type;
  }
}

TEST(PaperSize, CuttingTheMarginTakesItOffBothSidesOfTheSize) {
  const SCANAREA cut = kPaper.CutOutMarginSize({3, 4, 1000, 2000, UNIT_MILLIMETER}, {10, 20});
  EXPECT_EQ(cut.left, 3);
  EXPECT_EQ(cut.top, 4);
  EXPECT_EQ(cut.right, 980);
  EXPECT_EQ(cut.bottom, 1960);
  EXPECT_EQ(cut.unit, UNIT_MILLIMETER);
}

TEST(PaperSize, CuttingMoreThanTheSizeGoesBelowZeroAndWraps) {
  EXPECT_EQ(kPaper.CutOutMarginSize({0, 0, 10, 20, UNIT_PIXEL}, {10, 20}).right, -10);
  EXPECT_EQ(kPaper.CutOutMarginSize({0, 0, INT_MIN, INT_MIN, UNIT_PIXEL}, {1, 0x80000001}).right, INT_MAX - 1);
  EXPECT_EQ(kPaper.CutOutMarginSize({0, 0, INT_MIN, INT_MIN, UNIT_PIXEL}, {1, 0x80000001}).bottom, INT_MAX - 1);
}

void expectArea(SCANAREA got, SCANAREA expected, const char* name) {
  EXPECT_EQ(got.left, expected.left) << name;
  EXPECT_EQ(got.top, expected.top) << name;
  EXPECT_EQ(got.right, expected.right) << name;
  EXPECT_EQ(got.bottom, expected.bottom) << name;
  EXPECT_EQ(got.unit, expected.unit) << name;
}

TEST(PaperSize, ACornerBeyondTheMaximumGoesBackToTheEdge) {
  constexpr UNITTYPE kPx = UNIT_PIXEL;
  const struct {
    const char* name;
    SCANAREA area;
    AXIS maximum;
    SCANAREA expected;
  } rows[] = {
      {"inside", {1, 2, 3, 4, kPx}, {10, 20}, {1, 2, 3, 4, kPx}},
      {"exactly at the maximum", {10, 20, 10, 20, kPx}, {10, 20}, {10, 20, 10, 20, kPx}},
      {"corner beyond", {11, 21, 3, 4, kPx}, {10, 20}, {0, 0, 3, 4, kPx}},
      {"size beyond", {1, 2, 11, 21, kPx}, {10, 20}, {1, 2, 10, 20, kPx}},
      {"corner plus size beyond", {9, 19, 9, 19, kPx}, {10, 20}, {9, 19, 9, 19, kPx}},
      {"negative stays", {-1, -2, -3, -4, kPx}, {10, 20}, {-1, -2, -3, -4, kPx}},
      {"no limit across", {11, 21, 11, 21, kPx}, {0, 20}, {11, 0, 11, 20, kPx}},
      {"no limit down", {11, 21, 11, 21, kPx}, {10, 0}, {0, 21, 10, 21, kPx}},
      {"the unit is kept", {1, 2, 3, 4, UNIT_INCH}, {10, 20}, {1, 2, 3, 4, UNIT_INCH}},
      {"a maximum beyond the signed range is negative",
       {1, 2, 3, 4, kPx},
       {0xFFFFFFFF, 0xFFFFFFFE},
       {0, 0, -1, -2, kPx}},
  };
  for (const auto& row : rows) expectArea(kPaper.ReviseArea(row.area, row.maximum), row.expected, row.name);
}

TEST(PaperSize, RevisingTwiceChangesNothingMore) {
  std::mt19937 random(65);
  const auto number = [&] { return static_cast<std::int32_t>(random()) >> (random() % 31); };
  for (int n = 0; n < 20000; ++n) {
    const SCANAREA area{number(), number(), number(), number(), UNIT_PIXEL};
    const AXIS maximum{static_cast<std::uint32_t>(number()), static_cast<std::uint32_t>(number())};
    const SCANAREA once = kPaper.ReviseArea(area, maximum);
    expectArea(kPaper.ReviseArea(once, maximum), once, "revised twice");
  }
}

QS_SCANNER_PARAMETERS paper(PAPERTYPE type) {
  QS_SCANNER_PARAMETERS settings{};
  settings.paperType = type;
  return settings;
}

TEST(PaperSize, ALongPageMayGrowToTheLimitOfItsResolution) {
  const QS_SCANNER_PARAMETERS longPaper = paper(PAPERTYPE_LONG);
  // The last height that passes: floor(height * 1000 / dpi) inch units are at most the limit, in mm times 2.54.
  const struct {
    std::uint32_t dpi;
    std::uint32_t lastHeight;
  } rows[] = {{100, 19685}, {150, 29527}, {200, 39370}, {300, 59055}, {400, 43685}, {600, 23622}, {1200, 16801}};
  for (const auto& row : rows) {
    EXPECT_TRUE(kPaper.IsSupportImageSize(row.dpi, row.dpi, row.lastHeight, &longPaper)) << row.dpi;
    EXPECT_FALSE(kPaper.IsSupportImageSize(row.dpi, row.dpi, row.lastHeight + 1, &longPaper)) << row.dpi;
  }
}

TEST(PaperSize, OnlyLongPaperIsLimited) {
  for (int type = -1; type <= 30; ++type) {
    const QS_SCANNER_PARAMETERS settings = paper(static_cast<PAPERTYPE>(type));
    EXPECT_EQ(kPaper.IsSupportImageSize(600, 600, 23623, &settings), type != 23 && type != 24) << type;
  }
  EXPECT_TRUE(kPaper.IsSupportImageSize(600, 600, 23623, nullptr));
}

TEST(PaperSize, AResolutionOutsideTheTableHasNoLimit) {
  const QS_SCANNER_PARAMETERS longPaper = paper(PAPERTYPE_LONG_NARROW);
  for (const std::uint32_t dpi : {0u, 250u, 599u, 2400u}) {
    EXPECT_TRUE(kPaper.IsSupportImageSize(dpi, dpi, 0x7FFFFFFF, &longPaper)) << dpi;
  }
}

TEST(PaperSize, TheLengthIsMultipliedByTheWholeRatioOfTheResolutions) {
  const QS_SCANNER_PARAMETERS longPaper = paper(PAPERTYPE_LONG);
  EXPECT_TRUE(kPaper.IsSupportImageSize(1200, 600, 8400, &longPaper));   // 7000 inch units, doubled
  EXPECT_FALSE(kPaper.IsSupportImageSize(1200, 600, 8402, &longPaper));  // 7001
  EXPECT_TRUE(kPaper.IsSupportImageSize(1200, 800, 16800, &longPaper));  // a ratio of 1.5 counts as 1
  EXPECT_TRUE(kPaper.IsSupportImageSize(600, 1200, 23622, &longPaper));  // a finer device changes nothing
  EXPECT_FALSE(kPaper.IsSupportImageSize(600, 1200, 23623, &longPaper));
}

TEST(PaperSize, ADeviceResolutionOfZeroLeavesTheLengthAsItIs) {
  const QS_SCANNER_PARAMETERS longPaper = paper(PAPERTYPE_LONG);
  EXPECT_TRUE(kPaper.IsSupportImageSize(600, 0, 23622, &longPaper));
  EXPECT_FALSE(kPaper.IsSupportImageSize(600, 0, 23623, &longPaper));
}

}  // namespace
}  // namespace orvalle_scan_api
