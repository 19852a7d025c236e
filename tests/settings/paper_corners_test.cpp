#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <random>

#include "settings/PaperSize.h"

namespace orvalle_scan_api {
namespace {

const CPaperSize kPaper;
constexpr AXIS k300{300, 300};

std::int32_t distance(AXIS_SIGNED first, AXIS_SIGNED second, AXIS resolution, UNITTYPE unit) {
  return kPaper.GetDistanceOfCorners(first, second, resolution, unit);
}

// An edge that lies straight.
PAPERTYPE paperOf(std::int32_t pixels, UNITTYPE unit, const QS_SCANNER_CAPABILITY& capability = {},
                  PAPERSOURCESELECT source = PAPERSOURCE_FLATBED, AXIS resolution = k300) {
  ACTUALSCANPARAM actual{};
  actual.paperSource = source;
  return kPaper.GetPaperTypeFromVertex({0, 0}, {pixels, 0}, resolution, capability, actual, unit);
}

// At this resolution ten pixels are 1/100 mm, so that an edge can be given to the unit, and five more keep its
// truncation away from the next one.
constexpr AXIS kThousandths{25400, 25400};
std::int32_t pixelsOf(std::int32_t hundredths) { return hundredths == 0 ? 0 : 10 * hundredths + 5; }
PAPERTYPE paperOfWidth(std::int32_t hundredths, UNITTYPE unit) {
  return paperOf(pixelsOf(hundredths), unit, {}, PAPERSOURCE_FLATBED, kThousandths);
}

TEST(PaperCorners, ADistanceIsTruncated) {
  EXPECT_EQ(distance({0, 0}, {2480, 0}, k300, UNIT_MILLIMETER), 20997);
  EXPECT_EQ(distance({2480, 0}, {0, 0}, k300, UNIT_MILLIMETER), 20997);
  EXPECT_EQ(distance({0, 0}, {1100, 0}, k300, UNIT_MILLIMETER), 9313);
  EXPECT_EQ(distance({0, 0}, {1200, 0}, k300, UNIT_MILLIMETER), 10160);
  EXPECT_EQ(distance({0, 0}, {2480, 0}, k300, UNIT_INCH), 8266);
  EXPECT_EQ(distance({0, 0}, {2550, 0}, k300, UNIT_INCH), 8500);
  EXPECT_EQ(distance({-1, -2}, {2, 2}, k300, UNIT_PIXEL), 5);
  EXPECT_EQ(distance({0, 0}, {1, 1}, k300, UNIT_PIXEL), 1);
  EXPECT_EQ(distance({7, 7}, {7, 7}, k300, UNIT_MILLIMETER), 0);
}

TEST(PaperCorners, OnlyTheResolutionAcrossCounts) {
  EXPECT_EQ(distance({0, 0}, {0, 300}, {300, 600}, UNIT_INCH), 1000);
  EXPECT_EQ(distance({0, 0}, {0, 300}, {600, 300}, UNIT_INCH), 500);
}

TEST(PaperCorners, AResolutionOfZeroGivesNoLengthButPixels) {
  EXPECT_EQ(distance({0, 0}, {300, 0}, {0, 300}, UNIT_INCH), 0);
  EXPECT_EQ(distance({0, 0}, {300, 0}, {0, 300}, UNIT_MILLIMETER), 0);
  EXPECT_EQ(distance({0, 0}, {300, 0}, {0, 300}, UNIT_PIXEL), 300);
}

TEST(PaperCorners, FarCornersDoNotOverflow) {
  // The differences wrap in 32 bits; their squares do not.
  EXPECT_EQ(distance({INT_MIN, 0}, {INT_MAX, 0}, k300, UNIT_PIXEL), 1);
  EXPECT_EQ(distance({INT_MIN, 0}, {0, 0}, k300, UNIT_PIXEL), INT_MAX);  // clamped
  EXPECT_EQ(distance({0, 0}, {INT_MAX, INT_MAX}, k300, UNIT_PIXEL), INT_MAX);
  EXPECT_EQ(distance({0, 0}, {100000, 0}, {1, 1}, UNIT_MILLIMETER), 254000000);
  EXPECT_EQ(distance({0, 0}, {1000000, 0}, {1, 1}, UNIT_MILLIMETER), INT_MAX);
  EXPECT_EQ(distance({0, 0}, {46341, 0}, k300, UNIT_PIXEL), 46341);  // its square is beyond 32 bits
}

TEST(PaperCorners, TheMarginIsAddedOnBothSides) {
  const DEVICESCANSIZES margins{{300, 400}, {50, 60}, {7, 8}, UNIT_MILLIMETER};
  EXPECT_EQ(kPaper.AddMarginSize(1000, UNIT_MILLIMETER, margins, PAPERSOURCE_FLATBED), 1600);
  for (const int source : {0, 2, 3, -1}) {
    EXPECT_EQ(kPaper.AddMarginSize(1000, UNIT_MILLIMETER, margins, static_cast<PAPERSOURCESELECT>(source)), 1100);
  }
  EXPECT_EQ(kPaper.AddMarginSize(1000, UNIT_INCH, {{2540, 0}, {}, {}, UNIT_MILLIMETER}, PAPERSOURCE_FLATBED), 3000);
  EXPECT_EQ(kPaper.AddMarginSize(1000, UNIT_MILLIMETER, {{1000, 0}, {}, {}, UNIT_INCH}, PAPERSOURCE_FLATBED), 6080);
  // A margin in pixels cannot be converted and counts as none.
  EXPECT_EQ(kPaper.AddMarginSize(1000, UNIT_MILLIMETER, {{9, 9}, {}, {}, UNIT_PIXEL}, PAPERSOURCE_FLATBED), 1000);
  EXPECT_EQ(kPaper.AddMarginSize(1000, UNIT_PIXEL, {{9, 9}, {}, {}, UNIT_INCH}, PAPERSOURCE_FLATBED), 1000);
  // Negated margins, as second-generation devices give them, take off; sums wrap.
  EXPECT_EQ(kPaper.AddMarginSize(1000, UNIT_INCH, {{0xFFFFFFFF, 0}, {}, {}, UNIT_INCH}, PAPERSOURCE_FLATBED), 998);
  EXPECT_EQ(kPaper.AddMarginSize(INT_MAX, UNIT_INCH, {{1, 0}, {}, {}, UNIT_INCH}, PAPERSOURCE_FLATBED), INT_MIN + 1);
}

TEST(PaperCorners, ARowNamesOnePaperForEachClient) {
  const DETECTPAPERTABLE row{9400, PAPERTYPE_POSTCARD, PAPERTYPE_PHOTO};
  EXPECT_EQ(kPaper.GetPaperType(row, UNIT_MILLIMETER), PAPERTYPE_POSTCARD);
  EXPECT_EQ(kPaper.GetPaperType(row, UNIT_INCH), PAPERTYPE_PHOTO);
  EXPECT_EQ(kPaper.GetPaperType(row, UNIT_PIXEL), PAPERTYPE_PHOTO);
}

TEST(PaperCorners, TheEdgeNamesThePaper) {
  const struct {
    std::int32_t width;  // 1/100 mm
    int metric, inch;
  } rows[] = {
      {6900, 14, 14},  {9399, 14, 14}, {9400, 16, 12}, {10399, 16, 12}, {10400, 15, 15},
      {13199, 15, 15}, {13200, 8, 8},  {15299, 8, 8},  {6899, 1, 2},    {0, 1, 2},
  };
  for (const auto& row : rows) {
    ASSERT_EQ(distance({0, 0}, {pixelsOf(row.width), 0}, kThousandths, UNIT_MILLIMETER), row.width);
    EXPECT_EQ(paperOfWidth(row.width, UNIT_MILLIMETER), row.metric) << row.width;
    EXPECT_EQ(paperOfWidth(row.width, UNIT_INCH), row.inch) << row.width;
    EXPECT_EQ(paperOfWidth(row.width, UNIT_PIXEL), row.inch) << row.width;
  }
  EXPECT_EQ(paperOf(1100, UNIT_MILLIMETER), PAPERTYPE_PHOTOL);
  EXPECT_EQ(paperOf(1100, UNIT_INCH), PAPERTYPE_PHOTOL);
  EXPECT_EQ(paperOf(1200, UNIT_MILLIMETER), PAPERTYPE_POSTCARD);
  EXPECT_EQ(paperOf(1200, UNIT_INCH), PAPERTYPE_PHOTO);
}

TEST(PaperCorners, EveryEdgeFrom153MillimetresOnIsA5) {
  for (const std::int32_t width : {15300, 15301, 21000, 21300, 22090, 26200, 28440, 42000, 1000000}) {
    EXPECT_EQ(paperOfWidth(width, UNIT_MILLIMETER), PAPERTYPE_A5) << width;
    EXPECT_EQ(paperOfWidth(width, UNIT_INCH), PAPERTYPE_A5) << width;
  }
  EXPECT_EQ(paperOf(2480, UNIT_MILLIMETER), PAPERTYPE_A5);
}

TEST(PaperCorners, AnEdgeShorterThanAnyPaperIsThePageOfTheDevice) {
  const auto named = [](std::uint32_t flatbed, std::uint32_t simplex, int source, UNITTYPE unit) {
    QS_SCANNER_CAPABILITY capability{};
    capability.baseFunc.deviceScanSizeMax = {{flatbed, 1}, {simplex, 1}, {90000, 90000}, UNIT_MILLIMETER};
    return paperOf(pixelsOf(6899), unit, capability, static_cast<PAPERSOURCESELECT>(source), kThousandths);
  };
  const struct {
    std::uint32_t flatbed, simplex;
    int source;
    bool wide;
  } rows[] = {
      {21590, 0, 1, false},     {21591, 0, 1, true},      {0, 21590, 2, false},
      {0, 21591, 2, true},      {0, 30000, 1, false},     {30000, 0, 2, false},
      {30000, 30000, 3, false}, {30000, 30000, 0, false}, {0xFFFFFFFF, 0, 1, true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(named(row.flatbed, row.simplex, row.source, UNIT_MILLIMETER), row.wide ? PAPERTYPE_A3 : PAPERTYPE_A4);
    EXPECT_EQ(named(row.flatbed, row.simplex, row.source, UNIT_INCH), row.wide ? PAPERTYPE_LEDGER : PAPERTYPE_LETTER);
    EXPECT_EQ(named(row.flatbed, row.simplex, row.source, UNIT_PIXEL), row.wide ? PAPERTYPE_LEDGER : PAPERTYPE_LETTER);
  }
}

TEST(PaperCorners, TheSourcesLeftMarginIsPartOfTheEdge) {
  QS_SCANNER_CAPABILITY capability{};
  auto& margin = capability.baseFunc.marginSize;
  margin.flatbed = {300, 9000, 9000, 9000, UNIT_MILLIMETER};
  margin.adfSimplex = {100, 9000, 9000, 9000, UNIT_PIXEL};  // the flatbed's unit goes for all
  margin.adfDuplex = {5000, 9000, 9000, 9000, UNIT_MILLIMETER};
  const auto named = [&](std::int32_t width, int source) {
    return paperOf(pixelsOf(width), UNIT_MILLIMETER, capability, static_cast<PAPERSOURCESELECT>(source), kThousandths);
  };
  EXPECT_EQ(named(8799, 1), PAPERTYPE_PHOTOL);
  EXPECT_EQ(named(8800, 1), PAPERTYPE_POSTCARD);
  for (const int source : {0, 2, 3}) {
    EXPECT_EQ(named(9199, source), PAPERTYPE_PHOTOL) << source;
    EXPECT_EQ(named(9200, source), PAPERTYPE_POSTCARD) << source;
  }
  // A negative margin takes off, and an edge that falls below 0 is a very long one.
  margin.flatbed.left = -300;
  EXPECT_EQ(named(9999, 1), PAPERTYPE_PHOTOL);
  EXPECT_EQ(named(10000, 1), PAPERTYPE_POSTCARD);
  EXPECT_EQ(named(599, 1), PAPERTYPE_A5);
  EXPECT_EQ(named(600, 1), PAPERTYPE_A4);
}

AXIS sizeOf(AXIS_SIGNED first, AXIS_SIGNED second, AXIS resolution, UNITTYPE unit = UNIT_MILLIMETER) {
  return kPaper.GetScanSizeFromVertex(first, second, resolution, {}, {}, unit);
}

TEST(PaperCorners, AStraightPageIsAsLargeAsItsPaper) {
  const AXIS postcard = sizeOf({0, 0}, {1200, 0}, {300, 600});  // 3937 by 5826 thousandths of an inch
  EXPECT_EQ(postcard.x, 1181u);
  EXPECT_EQ(postcard.y, 3495u);
  const AXIS photo = sizeOf({0, 0}, {1200, 0}, {300, 600}, UNIT_INCH);  // 4000 by 6000
  EXPECT_EQ(photo.x, 1200u);
  EXPECT_EQ(photo.y, 3600u);
}

TEST(PaperCorners, APageOnItsSideChangesItsSides) {
  const AXIS size = sizeOf({5, 1200}, {5, 0}, {300, 300}, UNIT_INCH);
  EXPECT_EQ(size.x, 1800u);
  EXPECT_EQ(size.y, 1200u);
}

TEST(PaperCorners, ASkewedPageHasTheBoxAroundIt) {
  // 960, 720 and 1200 make a right angle: cosine 0.8, sine 0.6.
  for (const AXIS_SIGNED& corner : {AXIS_SIGNED{960, 720}, {960, -720}, {-960, 720}, {-960, -720}}) {
    const AXIS size = sizeOf({0, 0}, corner, {300, 300}, UNIT_INCH);
    EXPECT_EQ(size.x, static_cast<std::uint32_t>(300 * (0.8 * 4000 + 0.6 * 6000) / 1000.0));
    EXPECT_EQ(size.y, static_cast<std::uint32_t>(300 * (0.8 * 6000 + 0.6 * 4000) / 1000.0));
  }
}

TEST(PaperCorners, TheEdgeItselfIsTruncatedBeforeItDivides) {
  // The edge of 1, 1 is 1.41, taken as 1: both shares are then 1.
  const AXIS size = sizeOf({0, 0}, {1, 1}, {1000, 1000});  // A4, 8267 by 11692
  EXPECT_EQ(size.x, 8267u + 11692u);
  EXPECT_EQ(size.y, 8267u + 11692u);
}

TEST(PaperCorners, TwoCornersAtOnePointHaveNoSize) {
  const AXIS size = sizeOf({7, 8}, {7, 8}, k300);
  EXPECT_EQ(size.x, 0u);
  EXPECT_EQ(size.y, 0u);
}

TEST(PaperCorners, AnyCornersGiveSomeSize) {
  const AXIS far = sizeOf({INT_MIN, 0}, {0, 0}, {0xFFFFFFFF, 0});
  EXPECT_EQ(far.x, 0xFFFFFFFFu);  // clamped
  EXPECT_EQ(far.y, 0u);
  std::mt19937 random(65);
  const auto number = [&] { return static_cast<std::int32_t>(random()) >> (random() % 31); };
  const auto resolution = [&] { return static_cast<std::uint32_t>(number()); };
  for (int n = 0; n < 20000; ++n) {
    const AXIS_SIGNED first{number(), number()}, second{number(), number()};
    const AXIS dpi{resolution(), resolution()};
    const AXIS there = sizeOf(first, second, dpi);
    const AXIS back = sizeOf(second, first, dpi);
    // Only a difference of exactly half the range has two signs, and both are as long.
    EXPECT_EQ(there.x, back.x);
    EXPECT_EQ(there.y, back.y);
  }
}

}  // namespace
}  // namespace orvalle_scan_api
