// The paper between two corners against a second reading of its rules that is written here: every edge in pixels, with
// margins, sources and units, and corners thrown at random.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "settings/ConvertUnit.h"
#include "settings/PaperSize.h"

namespace orvalle_scan_api {
namespace {

const CPaperSize kPaper;

struct Device {
  int flatbedLeft = 0, simplexLeft = 0, duplexLeft = 0;  // margins
  UNITTYPE flatbedUnit = UNIT_MILLIMETER;
  std::uint32_t flatbedWidth = 0, simplexWidth = 0, duplexWidth = 0;

  QS_SCANNER_CAPABILITY capability() const {
    QS_SCANNER_CAPABILITY c{};
    auto& margin = c.baseFunc.marginSize;
    margin.flatbed = {flatbedLeft, 5555, 6666, 7777, flatbedUnit};
    margin.adfSimplex = {simplexLeft, 5555, 6666, 7777, UNIT_PIXEL};
    margin.adfDuplex = {duplexLeft, 5555, 6666, 7777, UNIT_PIXEL};
    auto& size = c.baseFunc.deviceScanSizeMax;
    size.flatbed.x = flatbedWidth, size.simplex.x = simplexWidth, size.duplex.x = duplexWidth;
    size.flatbed.y = size.simplex.y = size.duplex.y = 99999;
    return c;
  }
};

double edgeOf(AXIS_SIGNED first, AXIS_SIGNED second) {
  const double dx = second.x - first.x, dy = second.y - first.y;
  return std::sqrt(dx * dx + dy * dy);
}
int distanceMm(AXIS_SIGNED first, AXIS_SIGNED second, AXIS resolution) {
  return static_cast<int>(edgeOf(first, second) / resolution.x * 25.4 * 100.0);
}
// Hundredths of a millimetre of a margin.
int marginMm(int margin, UNITTYPE unit) {
  std::int32_t mm = 0;
  EXPECT_TRUE(CConvertUnit().ConvertUnit(margin, unit, &mm, UNIT_MILLIMETER));
  return mm;
}
int paperOf(int edge, const Device& device, int source, UNITTYPE unit) {
  const int margin = source == 1 ? device.flatbedLeft : device.simplexLeft;
  const auto s = static_cast<std::uint32_t>(edge + 2 * marginMm(margin, device.flatbedUnit));
  const bool metric = unit == UNIT_MILLIMETER;
  if (s < 6900) {
    const bool wide = (source == 2 && device.simplexWidth > 21590) || (source == 1 && device.flatbedWidth > 21590);
    return metric ? (wide ? 4 : 1) : (wide ? 5 : 2);
  }
  if (s < 9400) return 14;
  if (s < 10400) return metric ? 16 : 12;
  if (s < 13200) return 15;
  return 8;  // from 13200 to 15300 by its row, and beyond because the search ends there
}

int named(AXIS_SIGNED first, AXIS_SIGNED second, AXIS resolution, const Device& device, int source, UNITTYPE unit) {
  ACTUALSCANPARAM actual{};
  actual.paperSource = static_cast<PAPERSOURCESELECT>(source);
  return kPaper.GetPaperTypeFromVertex(first, second, resolution, device.capability(), actual, unit);
}

constexpr UNITTYPE kUnits[] = {UNIT_INCH, UNIT_MILLIMETER, UNIT_PIXEL};

TEST(PaperCornersRows, EveryEdgeOfEveryDevice) {
  const Device devices[] = {
      {},
      {300, 100, 50, UNIT_MILLIMETER, 21590, 21591, 30000},
      {-300, -100, 50, UNIT_MILLIMETER, 21591, 21590, 30000},
      {118, 39, 7, UNIT_INCH, 29700, 0, 0},
      {0, 0, 0, UNIT_MILLIMETER, 0, 29700, 29700},
  };
  for (const Device& device : devices) {
    for (int source = 0; source <= 3; ++source) {
      for (const UNITTYPE unit : kUnits) {
        for (int pixels = 0; pixels < 3600; pixels += 3) {
          const int edge = distanceMm({0, 0}, {pixels, 0}, {300, 300});
          ASSERT_EQ(named({0, 0}, {pixels, 0}, {300, 300}, device, source, unit), paperOf(edge, device, source, unit))
              << pixels << " source " << source << " unit " << unit;
        }
      }
    }
  }
}

// One pixel is a tenth of 1/100 mm here, so that every width can be met exactly.
TEST(PaperCornersRows, EveryWidthAroundEveryBound) {
  const struct {
    int from, metric, inch;
  } rows[] = {{6900, 14, 14}, {9400, 16, 12}, {10400, 15, 15}, {13200, 8, 8}, {15300, 8, 8},
              {21300, 8, 8},  {22090, 8, 8},  {26200, 8, 8},   {28440, 8, 8}};
  int metricBefore = 1, inchBefore = 2;
  for (const auto& row : rows) {
    const auto at = [](int width, UNITTYPE unit) {
      return named({3, 4}, {3 + 10 * width + 5, 4}, {25400, 1}, {}, 1, unit);
    };
    EXPECT_EQ(at(row.from - 1, UNIT_MILLIMETER), metricBefore) << row.from;
    EXPECT_EQ(at(row.from - 1, UNIT_INCH), inchBefore) << row.from;
    EXPECT_EQ(at(row.from, UNIT_MILLIMETER), row.metric) << row.from;
    EXPECT_EQ(at(row.from, UNIT_INCH), row.inch) << row.from;
    EXPECT_EQ(at(row.from, UNIT_PIXEL), row.inch) << row.from;
    metricBefore = row.metric, inchBefore = row.inch;
  }
}

TEST(PaperCornersRows, TheEdgesInWords) {
  EXPECT_EQ(kPaper.GetDistanceOfCorners({0, 0}, {2480, 0}, {300, 300}, UNIT_MILLIMETER), 20997);
  EXPECT_EQ(named({0, 0}, {2480, 0}, {300, 300}, {}, 1, UNIT_MILLIMETER), 8);
  EXPECT_EQ(kPaper.GetDistanceOfCorners({0, 0}, {1100, 0}, {300, 300}, UNIT_MILLIMETER), 9313);
  EXPECT_EQ(kPaper.GetDistanceOfCorners({0, 0}, {1200, 0}, {300, 300}, UNIT_MILLIMETER), 10160);
  for (const UNITTYPE unit : {UNIT_INCH, UNIT_MILLIMETER}) {
    EXPECT_EQ(named({0, 0}, {1100, 0}, {300, 300}, {}, 1, unit), 14);
    EXPECT_EQ(named({0, 0}, {1200, 0}, {300, 300}, {}, 1, unit), unit == UNIT_INCH ? 12 : 16);
    for (const std::uint32_t width : {21590u, 21591u}) {
      Device device;
      device.flatbedWidth = width;
      const int narrow = unit == UNIT_INCH ? 2 : 1, wide = unit == UNIT_INCH ? 5 : 4;
      EXPECT_EQ(named({0, 0}, {68995, 0}, {25400, 25400}, device, 1, unit), width > 21590 ? wide : narrow);
      EXPECT_EQ(named({0, 0}, {68995, 0}, {25400, 25400}, device, 2, unit), narrow);
    }
  }
}

TEST(PaperCornersRows, DistancesInEveryUnit) {
  std::mt19937 random(65);
  const auto corner = [&random] {
    return AXIS_SIGNED{static_cast<int>(random() % 20000) - 5000, static_cast<int>(random() % 20000) - 5000};
  };
  for (int round = 0; round < 20000; ++round) {
    const AXIS_SIGNED first = corner(), second = corner();
    const AXIS resolution{1 + static_cast<std::uint32_t>(random() % 1200), 7};
    const double edge = edgeOf(first, second);
    EXPECT_EQ(kPaper.GetDistanceOfCorners(first, second, resolution, UNIT_INCH),
              static_cast<int>(edge / resolution.x * 1000.0));
    EXPECT_EQ(kPaper.GetDistanceOfCorners(first, second, resolution, UNIT_MILLIMETER),
              distanceMm(first, second, resolution));
    EXPECT_EQ(kPaper.GetDistanceOfCorners(first, second, resolution, UNIT_PIXEL), static_cast<int>(edge));
  }
}

TEST(PaperCornersRows, TheBoxAroundASkewedPage) {
  std::mt19937 random(66);
  const Device device{300, 100, 50, UNIT_MILLIMETER, 30000, 20000, 0};
  for (int round = 0; round < 20000; ++round) {
    const AXIS_SIGNED first{static_cast<int>(random() % 500), static_cast<int>(random() % 500)};
    const AXIS_SIGNED second{static_cast<int>(random() % 3000), static_cast<int>(random() % 600)};
    const AXIS resolution{75 + static_cast<std::uint32_t>(random() % 600),
                          75 + static_cast<std::uint32_t>(random() % 600)};
    const int source = static_cast<int>(random() % 4);
    const UNITTYPE unit = kUnits[random() % 3];
    ACTUALSCANPARAM actual{};
    actual.paperSource = static_cast<PAPERSOURCESELECT>(source);
    const auto whole = static_cast<unsigned>(edgeOf(first, second));
    if (whole == 0) continue;
    const double sine = std::abs(second.y - first.y) / static_cast<double>(whole);
    const double cosine = std::abs(second.x - first.x) / static_cast<double>(whole);
    const int type = paperOf(distanceMm(first, second, resolution), device, source, unit);
    const AXIS paper = kPaper.GetPaperSize(static_cast<PAPERTYPE>(type), UNIT_INCH);
    const AXIS box = kPaper.GetScanSizeFromVertex(first, second, resolution, device.capability(), actual, unit);
    ASSERT_EQ(box.x, static_cast<std::uint32_t>(resolution.x * (cosine * paper.x + sine * paper.y) / 1000.0)) << round;
    ASSERT_EQ(box.y, static_cast<std::uint32_t>(resolution.y * (cosine * paper.y + sine * paper.x) / 1000.0)) << round;
  }
}

TEST(PaperCornersRows, TheMarginThatIsAdded) {
  for (const UNITTYPE from : {UNIT_INCH, UNIT_MILLIMETER}) {
    for (const UNITTYPE to : {UNIT_INCH, UNIT_MILLIMETER}) {
      for (int source = -1; source <= 4; ++source) {
        const DEVICESCANSIZES margins{{118, 9999}, {300, 9999}, {77, 9999}, from};
        const std::int32_t margin = source == 1 ? 118 : 300;
        std::int32_t converted = 0;
        ASSERT_TRUE(CConvertUnit().ConvertUnit(margin, from, &converted, to));
        EXPECT_EQ(kPaper.AddMarginSize(1000, to, margins, static_cast<PAPERSOURCESELECT>(source)), 1000 + 2 * converted)
            << from << to << source;
      }
    }
  }
}

}  // namespace
}  // namespace orvalle_scan_api
