#include "settings/ConvertUnit.h"

#include <gtest/gtest.h>

#include <climits>
#include <iterator>
#include <random>
#include <utility>

namespace orvalle_scan_api {
namespace {

const CConvertUnit kUnits;
constexpr auto kNoUnit = static_cast<UNITTYPE>(7);

// Each conversion written once more over 64-bit numbers, where nothing wraps by itself.
std::int64_t mod32(std::int64_t value) { return value & 0xFFFFFFFF; }
std::int32_t signed32(std::int64_t value) {
  const std::int64_t low = mod32(value);
  return static_cast<std::int32_t>(low >= 0x80000000 ? low - 0x100000000 : low);
}
std::int32_t referenceMmToInch(std::int32_t mm) {
  const std::int64_t m = mm < 0 ? -std::int64_t{mm} : mm;
  const std::int64_t r = (std::int64_t{signed32(m * 10000)} / 254 + 5) / 100;
  return signed32(mm < 0 ? -r : r);
}
std::int32_t referenceInchToMm(std::int32_t inch) { return signed32(std::int64_t{inch} * 25400 / 10000); }
std::int32_t referenceInchToPixels(std::uint32_t dpi, std::int32_t inch) {
  const std::int64_t i = inch < 0 ? -std::int64_t{inch} : inch;
  const std::int64_t r = mod32(mod32(mod32(i * dpi) * 10) + 5000) / 10000;
  return signed32(inch < 0 ? -r : r);
}
std::int32_t referencePixelsToInch(std::uint32_t dpi, std::int32_t pixels) {
  return signed32(mod32(mod32(pixels) * 1000) / dpi);
}

struct Row {
  const char* name;
  std::uint32_t dpi;
  std::int32_t input;
  std::int32_t expected;
};

std::int32_t mmToInch(std::uint32_t, std::int32_t v) {
  std::int32_t r = -1;
  EXPECT_TRUE(kUnits.ConvMillimeterToInch(v, &r));
  return r;
}
std::int32_t inchToMm(std::uint32_t, std::int32_t v) {
  std::int32_t r = -1;
  EXPECT_TRUE(kUnits.ConvInchToMillimeter(v, &r));
  return r;
}
std::int32_t inchToPixels(std::uint32_t dpi, std::int32_t v) {
  std::int32_t r = -1;
  EXPECT_TRUE(kUnits.ConvInchToPixels(dpi, v, &r));
  return r;
}
std::int32_t mmToPixels(std::uint32_t dpi, std::int32_t v) {
  std::int32_t r = -1;
  EXPECT_TRUE(kUnits.ConvMillimeterToPixles(dpi, v, &r));
  return r;
}
std::int32_t pixelsToInch(std::uint32_t dpi, std::int32_t v) {
  std::int32_t r = -1;
  EXPECT_TRUE(kUnits.ConvPixelsToInch(dpi, v, &r));
  return r;
}
std::int32_t pixelsToMm(std::uint32_t dpi, std::int32_t v) {
  std::int32_t r = -1;
  EXPECT_TRUE(kUnits.ConvPixlesToMillimeter(dpi, v, &r));
  return r;
}

void checkRows(std::int32_t (*convert)(std::uint32_t, std::int32_t), std::initializer_list<Row> rows) {
  for (const Row& row : rows) EXPECT_EQ(convert(row.dpi, row.input), row.expected) << row.name;
}

TEST(ConvertUnit, MillimetresBecomeThousandthsOfAnInch) {
  checkRows(mmToInch, {{"A4 width", 0, 21000, 8267},
                       {"A4 height", 0, 29700, 11692},
                       {"negative", 0, -21000, -8267},
                       {"zero", 0, 0, 0},
                       {"one", 0, 1, 0},
                       {"two", 0, 2, 0},
                       {"three", 0, 3, 1},
                       {"one inch", 0, 2540, 1000},
                       {"carrier sheet", 0, 3200, 1259}});
}

TEST(ConvertUnit, InchesTruncateToMillimetres) {
  checkRows(inchToMm, {{"Letter width", 0, 8500, 21590},
                       {"A4 width does not come back", 0, 8267, 20998},
                       {"negative", 0, -8267, -20998},
                       {"one", 0, 1, 2},
                       {"above the 32-bit range", 0, INT_MAX, signed32(std::int64_t{INT_MAX} * 25400 / 10000)}});
}

TEST(ConvertUnit, InchesRoundHalvesUpToPixels) {
  checkRows(inchToPixels, {{"Letter width", 300, 8500, 2550},
                           {"negative", 300, -8500, -2550},
                           {"one unit vanishes", 100, 1, 0},
                           {"five units are exactly half a pixel", 100, 5, 1},
                           {"no resolution", 0, 8500, 0}});
}

TEST(ConvertUnit, MillimetresBecomePixelsThroughTheRoundedInches) {
  checkRows(mmToPixels, {{"A4 width", 300, 21000, 2480},
                         {"A4 width, negative", 300, -21000, -2480},
                         {"A6 width", 300, 10500, 1240},
                         {"carrier sheet", 300, 3200, 378}});
}

TEST(ConvertUnit, PixelsTruncateToLengths) {
  checkRows(pixelsToInch, {{"Letter width", 300, 2550, 8500}, {"one", 300, 1, 3}});
  checkRows(pixelsToMm, {{"Letter width", 300, 2550, 21590},
                         {"limit of a long page", 600, 23622, 99999},
                         {"one more", 600, 23623, 100002}});
}

TEST(ConvertUnit, NegativePixelsBecomeALargePositiveLength) { EXPECT_EQ(pixelsToInch(300, -2550), 14308057); }

TEST(ConvertUnit, TheProductOfALongMillimetreValueWraps) {
  EXPECT_EQ(mmToInch(0, 214748), 84546);
  EXPECT_EQ(mmToInch(0, 214749), -84546);  // 2147490000 is -2147477296 in 32 bits
  EXPECT_EQ(mmToInch(0, -214749), 84546);
}

TEST(ConvertUnit, TheMostNegativeNumberFailsAndStoresZero) {
  std::int32_t r = 5;
  EXPECT_FALSE(kUnits.ConvMillimeterToInch(INT_MIN, &r));
  EXPECT_EQ(r, 0);
  r = 5;
  EXPECT_FALSE(kUnits.ConvInchToMillimeter(INT_MIN, &r));
  EXPECT_EQ(r, 0);
  r = 5;
  EXPECT_FALSE(kUnits.ConvMillimeterToPixles(300, INT_MIN, &r));
  EXPECT_EQ(r, 0);
  r = 5;
  EXPECT_TRUE(kUnits.ConvInchToPixels(300, INT_MIN, &r));
  EXPECT_EQ(r, referenceInchToPixels(300, INT_MIN));
}

TEST(ConvertUnit, AResolutionOfZeroGivesZeroAndFailsWhereItDivides) {
  std::int32_t r = 5;
  EXPECT_FALSE(kUnits.ConvPixelsToInch(0, 100, &r));
  EXPECT_EQ(r, 0);
  r = 5;
  EXPECT_FALSE(kUnits.ConvPixlesToMillimeter(0, 100, &r));
  EXPECT_EQ(r, 0);
  AXIS pair{9, 9};
  EXPECT_FALSE(kUnits.ConvertPixlesTo(AXIS{300, 0}, AXIS{300, 300}, &pair, UNIT_INCH));
  EXPECT_EQ(pair.x, 1000u);
  EXPECT_EQ(pair.y, 0u);
}

TEST(ConvertUnit, ScalarsAgreeWithTheReferenceOverTheWholeRange) {
  std::mt19937 random(20240817);
  constexpr std::uint32_t kDpi[] = {1, 75, 100, 150, 200, 300, 400, 600, 1200, 2400, 19200, 0xFFFFFFFF};
  for (int n = 0; n < 200000; ++n) {
    // Every magnitude gets its share, not the large ones alone.
    const auto v = static_cast<std::int32_t>(random()) >> (random() % 31);
    if (v == INT_MIN) continue;
    const std::uint32_t dpi = kDpi[random() % std::size(kDpi)];
    ASSERT_EQ(mmToInch(0, v), referenceMmToInch(v)) << v;
    ASSERT_EQ(inchToMm(0, v), referenceInchToMm(v)) << v;
    ASSERT_EQ(inchToPixels(dpi, v), referenceInchToPixels(dpi, v)) << v << " at " << dpi;
    ASSERT_EQ(mmToPixels(dpi, v), referenceInchToPixels(dpi, referenceMmToInch(v))) << v << " at " << dpi;
    ASSERT_EQ(pixelsToInch(dpi, v), referencePixelsToInch(dpi, v)) << v << " at " << dpi;
    ASSERT_EQ(pixelsToMm(dpi, v), referenceInchToMm(referencePixelsToInch(dpi, v))) << v << " at " << dpi;
  }
}

TEST(ConvertUnit, TheSignIsPutBackOnEveryLength) {
  for (std::int32_t v = 0; v < 300000; v += 7) {
    ASSERT_EQ(mmToInch(0, -v), -mmToInch(0, v)) << v;
    ASSERT_EQ(inchToMm(0, -v), -inchToMm(0, v)) << v;
    ASSERT_EQ(inchToPixels(600, -v), -inchToPixels(600, v)) << v;
    ASSERT_EQ(mmToPixels(600, -v), -mmToPixels(600, v)) << v;
  }
}

TEST(ConvertUnit, LengthsGrowWithTheirValueBelowTheWrap) {
  for (std::int32_t v = 1; v <= 214748; ++v) {
    ASSERT_GE(mmToInch(0, v), mmToInch(0, v - 1)) << v;
    ASSERT_GE(inchToMm(0, v), inchToMm(0, v - 1)) << v;
    ASSERT_GE(inchToPixels(300, v), inchToPixels(300, v - 1)) << v;
    ASSERT_GE(mmToPixels(300, v), mmToPixels(300, v - 1)) << v;
    ASSERT_GE(pixelsToInch(300, v), pixelsToInch(300, v - 1)) << v;
    ASSERT_GE(pixelsToMm(300, v), pixelsToMm(300, v - 1)) << v;
  }
}

TEST(ConvertUnit, ThereAndBackLosesOneInchUnitOrThreeMillimetreUnitsAtMost) {
  for (std::int32_t v = 0; v <= 84000; ++v) {
    const std::int32_t lost = v - mmToInch(0, inchToMm(0, v));
    ASSERT_TRUE(lost == 0 || lost == 1) << v;
  }
  for (std::int32_t v = 0; v <= 214748; ++v) {
    const std::int32_t lost = v - inchToMm(0, mmToInch(0, v));
    ASSERT_TRUE(lost >= 0 && lost <= 3) << v;
  }
  EXPECT_EQ(inchToMm(0, mmToInch(0, 10)), 7);  // the most that is lost
}

TEST(ConvertUnit, UnsignedFormsWorkOnTheSameBits) {
  std::mt19937 random(7);
  for (int n = 0; n < 20000; ++n) {
    const auto v = static_cast<std::uint32_t>(static_cast<std::int32_t>(random()) >> (random() % 31));
    const auto s = static_cast<std::int32_t>(v);
    std::uint32_t u = 0;
    std::int32_t i = 0;
    const auto expectSame = [&](bool okUnsigned, bool okSigned) {
      EXPECT_EQ(okUnsigned, okSigned) << s;
      ASSERT_EQ(u, static_cast<std::uint32_t>(i)) << s;
    };
    expectSame(kUnits.ConvMillimeterToInch(v, &u), kUnits.ConvMillimeterToInch(s, &i));
    expectSame(kUnits.ConvInchToMillimeter(v, &u), kUnits.ConvInchToMillimeter(s, &i));
    expectSame(kUnits.ConvInchToPixels(600, v, &u), kUnits.ConvInchToPixels(600, s, &i));
    expectSame(kUnits.ConvPixelsToInch(600, v, &u), kUnits.ConvPixelsToInch(600, s, &i));
    expectSame(kUnits.ConvMillimeterToPixles(600, v, &u), kUnits.ConvMillimeterToPixles(600, s, &i));
    expectSame(kUnits.ConvPixlesToMillimeter(600, v, &u), kUnits.ConvPixlesToMillimeter(600, s, &i));
    expectSame(kUnits.ConvertUnit(v, UNIT_MILLIMETER, &u, UNIT_INCH),
               kUnits.ConvertUnit(s, UNIT_MILLIMETER, &i, UNIT_INCH));
    expectSame(kUnits.ConvertToPixles(600, v, UNIT_INCH, &u), kUnits.ConvertToPixles(600, s, UNIT_INCH, &i));
    expectSame(kUnits.ConvertPixlesTo(600, v, &u, UNIT_INCH), kUnits.ConvertPixlesTo(600, s, &i, UNIT_INCH));
  }
}

TEST(ConvertUnit, DeviceMillimetresAreTenDriverMillimetres) {
  EXPECT_EQ(kUnits.ConvDeviceMillimeterToDriverMillimeter(2100), 21000);
  EXPECT_EQ(kUnits.ConvDeviceMillimeterToDriverMillimeter(-2100), -21000);
  EXPECT_EQ(kUnits.ConvDeviceMillimeterToDriverMillimeter(2100u), 21000u);
  EXPECT_EQ(kUnits.ConvDeviceMillimeterToDriverMillimeter(INT_MAX), -10);
  EXPECT_EQ(kUnits.ConvDeviceMillimeterToDriverMillimeter(0x80000001u), 10u);
}

TEST(ConvertUnit, ANullResultFailsEveryOperation) {
  std::int32_t* const i = nullptr;
  std::uint32_t* const u = nullptr;
  EXPECT_FALSE(kUnits.ConvMillimeterToInch(1, i));
  EXPECT_FALSE(kUnits.ConvMillimeterToInch(1, u));
  EXPECT_FALSE(kUnits.ConvInchToMillimeter(1, i));
  EXPECT_FALSE(kUnits.ConvInchToMillimeter(1, u));
  EXPECT_FALSE(kUnits.ConvInchToPixels(300, 1, i));
  EXPECT_FALSE(kUnits.ConvInchToPixels(300, 1, u));
  EXPECT_FALSE(kUnits.ConvPixelsToInch(300, 1, i));
  EXPECT_FALSE(kUnits.ConvPixelsToInch(300, 1, u));
  EXPECT_FALSE(kUnits.ConvMillimeterToPixles(300, 1, i));
  EXPECT_FALSE(kUnits.ConvMillimeterToPixles(300, 1, u));
  EXPECT_FALSE(kUnits.ConvPixlesToMillimeter(300, 1, i));
  EXPECT_FALSE(kUnits.ConvPixlesToMillimeter(300, 1, u));
  const auto families = [](auto value) {
    decltype(value)* const none = nullptr;
    EXPECT_FALSE(kUnits.ConvertUnit(value, UNIT_INCH, none, UNIT_MILLIMETER));
    EXPECT_FALSE(kUnits.ConvertUnit(value, UNIT_INCH, none, UNIT_INCH));
    EXPECT_FALSE(kUnits.ConvertToPixles(300, value, UNIT_PIXEL, none));
    EXPECT_FALSE(kUnits.ConvertToPixles(AXIS{300, 600}, value, UNIT_INCH, none));
    EXPECT_FALSE(kUnits.ConvertPixlesTo(300, value, none, UNIT_INCH));
  };
  families(std::int32_t{});
  families(std::uint32_t{});
  families(AXIS{});
  families(tagRECT{});
  SCANAREA* const area = nullptr;
  EXPECT_FALSE(kUnits.ConvertUnit(SCANAREA{}, area, UNIT_INCH));
  EXPECT_FALSE(kUnits.ConvertToPixles(300, SCANAREA{}, area));
  EXPECT_FALSE(kUnits.ConvertPixlesTo(300, SCANAREA{0, 0, 0, 0, UNIT_PIXEL}, area, UNIT_INCH));
}

TEST(ConvertUnit, EqualAndUnknownUnitsCopy) {
  std::int32_t r = 0;
  EXPECT_TRUE(kUnits.ConvertUnit(INT_MIN, UNIT_INCH, &r, UNIT_INCH));
  EXPECT_EQ(r, INT_MIN);
  EXPECT_TRUE(kUnits.ConvertUnit(8500, UNIT_INCH, &r, kNoUnit));
  EXPECT_EQ(r, 8500);
  EXPECT_TRUE(kUnits.ConvertUnit(-3, kNoUnit, &r, UNIT_MILLIMETER));
  EXPECT_EQ(r, -3);
  SCANAREA area{};
  EXPECT_TRUE(kUnits.ConvertUnit(SCANAREA{1, 2, 3, 4, UNIT_INCH}, &area, UNIT_INCH));
  EXPECT_EQ(area.left, 1);
  EXPECT_EQ(area.bottom, 4);
}

TEST(ConvertUnit, PixelsAreRefusedAndLeaveTheResultUntouched) {
  std::int32_t i = 77;
  std::uint32_t u = 77;
  AXIS pair{77, 78};
  tagRECT rect{1, 2, 3, 4};
  for (const auto& [from, to] :
       {std::pair{UNIT_PIXEL, UNIT_INCH}, std::pair{UNIT_INCH, UNIT_PIXEL}, std::pair{UNIT_PIXEL, UNIT_PIXEL}}) {
    EXPECT_FALSE(kUnits.ConvertUnit(5, from, &i, to));
    EXPECT_FALSE(kUnits.ConvertUnit(5, from, &u, to));
    EXPECT_FALSE(kUnits.ConvertUnit(AXIS{5, 6}, from, &pair, to));
    EXPECT_FALSE(kUnits.ConvertUnit(tagRECT{5, 6, 7, 8}, from, &rect, to));
    EXPECT_EQ(i, 77);
    EXPECT_EQ(u, 77u);
    EXPECT_EQ(pair.x, 77u);
    EXPECT_EQ(pair.y, 78u);
    EXPECT_EQ(rect.left, 1);
    EXPECT_EQ(rect.bottom, 4);
  }
}

TEST(ConvertUnit, ARefusedAreaHasItsNewUnitAndItsOldNumbers) {
  SCANAREA area{1, 2, 3, 4, kNoUnit};
  EXPECT_FALSE(kUnits.ConvertUnit(SCANAREA{5, 6, 7, 8, UNIT_PIXEL}, &area, UNIT_INCH));
  EXPECT_EQ(area.unit, UNIT_INCH);
  EXPECT_EQ(area.left, 1);
  EXPECT_FALSE(kUnits.ConvertUnit(SCANAREA{5, 6, 7, 8, UNIT_INCH}, &area, UNIT_PIXEL));
  EXPECT_EQ(area.unit, UNIT_PIXEL);
  EXPECT_EQ(area.bottom, 4);
}

TEST(ConvertUnit, RecordsAreConvertedMemberByMember) {
  AXIS pair{};
  EXPECT_TRUE(kUnits.ConvertUnit(AXIS{21000, 29700}, UNIT_MILLIMETER, &pair, UNIT_INCH));
  EXPECT_EQ(pair.x, 8267u);
  EXPECT_EQ(pair.y, 11692u);
  tagRECT rect{};
  EXPECT_TRUE(kUnits.ConvertUnit(tagRECT{100, -200, 8500, 11000}, UNIT_INCH, &rect, UNIT_MILLIMETER));
  EXPECT_EQ(rect.left, 254);
  EXPECT_EQ(rect.top, -508);
  EXPECT_EQ(rect.right, 21590);
  EXPECT_EQ(rect.bottom, 27940);
  SCANAREA area{100, -200, 8500, 11000, UNIT_INCH};
  EXPECT_TRUE(kUnits.ConvertUnit(area, &area, UNIT_MILLIMETER));
  EXPECT_EQ(area.left, 254);
  EXPECT_EQ(area.top, -508);
  EXPECT_EQ(area.right, 21590);
  EXPECT_EQ(area.bottom, 27940);
  EXPECT_EQ(area.unit, UNIT_MILLIMETER);
}

TEST(ConvertUnit, ConversionStopsAtTheFirstFailureInTheOrderOfTheRecord) {
  AXIS pair{7, 7};
  EXPECT_FALSE(kUnits.ConvertUnit(AXIS{0x80000000, 100}, UNIT_INCH, &pair, UNIT_MILLIMETER));
  EXPECT_EQ(pair.x, 0u);
  EXPECT_EQ(pair.y, 7u);
  tagRECT rect{7, 7, 7, 7};  // left, right, top, bottom
  EXPECT_FALSE(kUnits.ConvertUnit(tagRECT{100, INT_MIN, 200, 300}, UNIT_INCH, &rect, UNIT_MILLIMETER));
  EXPECT_EQ(rect.left, 254);
  EXPECT_EQ(rect.right, 508);
  EXPECT_EQ(rect.top, 0);
  EXPECT_EQ(rect.bottom, 7);
  rect = {7, 7, 7, 7};
  EXPECT_FALSE(kUnits.ConvertToPixles(300, tagRECT{100, INT_MIN, 2540, 300}, UNIT_MILLIMETER, &rect));
  EXPECT_EQ(rect.right, 300);
  EXPECT_EQ(rect.top, 0);
  EXPECT_EQ(rect.bottom, 7);
  SCANAREA area{7, 7, 7, 7, kNoUnit};  // left, top, right, bottom
  EXPECT_FALSE(kUnits.ConvertUnit(SCANAREA{100, INT_MIN, 200, 300, UNIT_INCH}, &area, UNIT_MILLIMETER));
  EXPECT_EQ(area.left, 254);
  EXPECT_EQ(area.top, 0);
  EXPECT_EQ(area.right, 7);
  EXPECT_EQ(area.bottom, 7);
  area = {7, 7, 7, 7, kNoUnit};
  EXPECT_FALSE(kUnits.ConvertToPixles(300, SCANAREA{2540, INT_MIN, 200, 300, UNIT_MILLIMETER}, &area));
  EXPECT_EQ(area.left, 300);
  EXPECT_EQ(area.top, 0);
  EXPECT_EQ(area.right, 7);
  EXPECT_EQ(area.unit, UNIT_PIXEL);
}

TEST(ConvertUnit, HorizontalMembersUseXAndVerticalOnesY) {
  AXIS pair{};
  EXPECT_TRUE(kUnits.ConvertToPixles(AXIS{300, 600}, AXIS{1000, 1000}, UNIT_INCH, &pair));
  EXPECT_EQ(pair.x, 300u);
  EXPECT_EQ(pair.y, 600u);
  EXPECT_TRUE(kUnits.ConvertPixlesTo(AXIS{300, 600}, AXIS{600, 600}, &pair, UNIT_INCH));
  EXPECT_EQ(pair.x, 2000u);
  EXPECT_EQ(pair.y, 1000u);
  tagRECT rect{};
  EXPECT_TRUE(kUnits.ConvertToPixles(AXIS{300, 600}, tagRECT{1000, 1000, 2000, 2000}, UNIT_INCH, &rect));
  EXPECT_EQ(rect.left, 300);
  EXPECT_EQ(rect.top, 600);
  EXPECT_EQ(rect.right, 600);
  EXPECT_EQ(rect.bottom, 1200);
  SCANAREA area{};
  EXPECT_TRUE(kUnits.ConvertToPixles(AXIS{300, 600}, SCANAREA{1000, 1000, 2000, 2000, UNIT_INCH}, &area));
  EXPECT_EQ(area.left, 300);
  EXPECT_EQ(area.top, 600);
  EXPECT_EQ(area.right, 600);
  EXPECT_EQ(area.bottom, 1200);
  EXPECT_EQ(area.unit, UNIT_PIXEL);
  EXPECT_TRUE(kUnits.ConvertPixlesTo(AXIS{300, 600}, area, &area, UNIT_MILLIMETER));
  EXPECT_EQ(area.left, 2540);
  EXPECT_EQ(area.top, 2540);
  EXPECT_EQ(area.right, 5080);
  EXPECT_EQ(area.bottom, 5080);
  EXPECT_EQ(area.unit, UNIT_MILLIMETER);
}

TEST(ConvertUnit, ConvertToPixlesCopiesWhatIsAlreadyInPixels) {
  for (const UNITTYPE unit : {UNIT_PIXEL, kNoUnit}) {
    std::int32_t i = 0;
    EXPECT_TRUE(kUnits.ConvertToPixles(300, -5, unit, &i));
    EXPECT_EQ(i, -5);
    AXIS pair{};
    EXPECT_TRUE(kUnits.ConvertToPixles(300, AXIS{5, 6}, unit, &pair));
    EXPECT_EQ(pair.x, 5u);
    EXPECT_EQ(pair.y, 6u);
    SCANAREA area{};
    EXPECT_TRUE(kUnits.ConvertToPixles(300, SCANAREA{1, 2, 3, 4, unit}, &area));
    EXPECT_EQ(area.bottom, 4);
    EXPECT_EQ(area.unit, UNIT_PIXEL);
  }
}

TEST(ConvertUnit, APixelTargetFailsForPairsAndRectanglesAndCopiesOtherwise) {
  AXIS pair{7, 7};
  EXPECT_FALSE(kUnits.ConvertPixlesTo(300, AXIS{5, 6}, &pair, UNIT_PIXEL));
  EXPECT_FALSE(kUnits.ConvertPixlesTo(AXIS{300, 300}, AXIS{5, 6}, &pair, UNIT_PIXEL));
  EXPECT_EQ(pair.x, 7u);
  tagRECT rect{7, 7, 7, 7};
  EXPECT_FALSE(kUnits.ConvertPixlesTo(300, tagRECT{1, 2, 3, 4}, &rect, UNIT_PIXEL));
  EXPECT_EQ(rect.left, 7);
  std::int32_t i = 7;
  EXPECT_TRUE(kUnits.ConvertPixlesTo(300, -5, &i, UNIT_PIXEL));
  EXPECT_EQ(i, -5);
  SCANAREA area{7, 7, 7, 7, UNIT_INCH};
  EXPECT_TRUE(kUnits.ConvertPixlesTo(300, SCANAREA{1, 2, 3, 4, UNIT_PIXEL}, &area, UNIT_PIXEL));
  EXPECT_EQ(area.left, 1);
  EXPECT_EQ(area.unit, UNIT_PIXEL);
}

TEST(ConvertUnit, AnUnknownTargetCopiesPixels) {
  AXIS pair{};
  EXPECT_TRUE(kUnits.ConvertPixlesTo(300, AXIS{5, 6}, &pair, kNoUnit));
  EXPECT_EQ(pair.y, 6u);
  SCANAREA area{};
  EXPECT_TRUE(kUnits.ConvertPixlesTo(300, SCANAREA{1, 2, 3, 4, UNIT_PIXEL}, &area, kNoUnit));
  EXPECT_EQ(area.bottom, 4);
  EXPECT_EQ(area.unit, UNIT_PIXEL);
}

TEST(ConvertUnit, AnAreaThatIsNotInPixelsIsRefusedUnchanged) {
  SCANAREA area{7, 7, 7, 7, UNIT_MILLIMETER};
  EXPECT_FALSE(kUnits.ConvertPixlesTo(300, SCANAREA{1, 2, 3, 4, UNIT_INCH}, &area, UNIT_INCH));
  EXPECT_EQ(area.left, 7);
  EXPECT_EQ(area.unit, UNIT_MILLIMETER);
}

}  // namespace
}  // namespace orvalle_scan_api
