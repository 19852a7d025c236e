// Every overload of the record families does to each member what the operation for one number does.
#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

#include "settings/ConvertUnit.h"

namespace orvalle_scan_api {
namespace {

const CConvertUnit kUnits;
constexpr auto kNoUnit = static_cast<UNITTYPE>(7);
constexpr UNITTYPE kAllUnits[] = {UNIT_INCH, UNIT_MILLIMETER, UNIT_PIXEL, kNoUnit};
constexpr AXIS kDpi{300, 623};

// The members of a value in the order in which they are converted, and whether each is vertical.
struct Member {
  bool vertical;
  std::int32_t value;

  bool operator==(const Member&) const = default;
};
using Members = std::vector<Member>;
Members membersOf(std::int32_t v) { return {{false, v}}; }
Members membersOf(std::uint32_t v) { return {{false, static_cast<std::int32_t>(v)}}; }
Members membersOf(const AXIS& v) {
  return {{false, static_cast<std::int32_t>(v.x)}, {true, static_cast<std::int32_t>(v.y)}};
}
Members membersOf(const tagRECT& v) { return {{false, v.left}, {false, v.right}, {true, v.top}, {true, v.bottom}}; }
Members membersOf(const SCANAREA& v) { return {{false, v.left}, {true, v.top}, {false, v.right}, {true, v.bottom}}; }

// What a family must give: the members converted one by one up to the first failure; the rest is as it was.
struct Wanted {
  bool success = true;
  Members members;
};
template <class Value, class Scalar>
Wanted wantedOf(const Value& value, const Value& before, Scalar scalar) {
  Wanted wanted{true, membersOf(before)};
  const Members from = membersOf(value);
  for (std::size_t i = 0; i < from.size() && wanted.success; ++i) {
    wanted.success = scalar(from[i].vertical, from[i].value, &wanted.members[i].value);
  }
  return wanted;
}

template <class Value, class Convert>
void expectLike(const Wanted& wanted, Value before, Convert convert) {
  Value result = before;
  EXPECT_EQ(convert(&result), wanted.success);
  EXPECT_EQ(membersOf(result), wanted.members);
}

std::mt19937 random_(11);
std::int32_t number() {
  static constexpr std::int32_t kEdges[] = {0, 1, -1, 21000, 8500, -2550, 214749, INT_MAX, INT_MIN};
  const std::size_t choice = random_() % 12;
  if (choice < std::size(kEdges)) return kEdges[choice];
  return static_cast<std::int32_t>(random_()) >> (random_() % 31);
}
void fill(std::int32_t& v) { v = number(); }
void fill(std::uint32_t& v) { v = static_cast<std::uint32_t>(number()); }
void fill(AXIS& v) { fill(v.x), fill(v.y); }
void fill(tagRECT& v) { fill(v.left), fill(v.top), fill(v.right), fill(v.bottom); }
void fill(SCANAREA& v) { fill(v.left), fill(v.top), fill(v.right), fill(v.bottom); }

template <class Value>
constexpr bool kIsOneNumber = std::integral<Value>;

// The rules of one number, by its unit.
bool lengthToLength(UNITTYPE from, UNITTYPE to, std::int32_t v, std::int32_t* out) {
  if (from == UNIT_PIXEL || to == UNIT_PIXEL) return false;
  if (from == UNIT_MILLIMETER && to == UNIT_INCH) return kUnits.ConvMillimeterToInch(v, out);
  if (from == UNIT_INCH && to == UNIT_MILLIMETER) return kUnits.ConvInchToMillimeter(v, out);
  *out = v;
  return true;
}
bool toPixels(std::uint32_t dpi, UNITTYPE from, std::int32_t v, std::int32_t* out) {
  if (from == UNIT_INCH) return kUnits.ConvInchToPixels(dpi, v, out);
  if (from == UNIT_MILLIMETER) return kUnits.ConvMillimeterToPixles(dpi, v, out);
  *out = v;
  return true;
}
bool fromPixels(std::uint32_t dpi, UNITTYPE to, std::int32_t v, std::int32_t* out) {
  if (to == UNIT_INCH) return kUnits.ConvPixelsToInch(dpi, v, out);
  if (to == UNIT_MILLIMETER) return kUnits.ConvPixlesToMillimeter(dpi, v, out);
  *out = v;
  return true;
}

// Both kinds of resolution: one for each direction, and one for both.
template <class Run>
void withResolutions(Run run) {
  run(kDpi, [](bool vertical) { return vertical ? kDpi.y : kDpi.x; });
  run(std::uint32_t{600}, [](bool) { return std::uint32_t{600}; });
}

template <class Value>
class ConvertUnitOverloads : public ::testing::Test {
 protected:
  // Calls run(value, before) for many values.
  template <class Run>
  void eachValue(Run run) {
    for (int round = 0; round < 300; ++round) {
      Value value{}, before{};
      fill(value), fill(before);
      run(value, before);
    }
  }
};
using Values = ::testing::Types<std::int32_t, std::uint32_t, AXIS, tagRECT>;
TYPED_TEST_SUITE(ConvertUnitOverloads, Values);

TYPED_TEST(ConvertUnitOverloads, LengthsBecomeTheOtherLength) {
  for (const UNITTYPE from : kAllUnits) {
    for (const UNITTYPE to : kAllUnits) {
      this->eachValue([&](const TypeParam& value, const TypeParam& before) {
        expectLike(wantedOf(value, before,
                            [&](bool, std::int32_t v, std::int32_t* out) { return lengthToLength(from, to, v, out); }),
                   before, [&](TypeParam* out) { return kUnits.ConvertUnit(value, from, out, to); });
      });
    }
  }
}

TYPED_TEST(ConvertUnitOverloads, LengthsBecomePixels) {
  for (const UNITTYPE from : kAllUnits) {
    withResolutions([&](auto resolution, auto dpiOf) {
      this->eachValue([&](const TypeParam& value, const TypeParam& before) {
        expectLike(wantedOf(value, before,
                            [&](bool vertical, std::int32_t v, std::int32_t* out) {
                              return toPixels(dpiOf(vertical), from, v, out);
                            }),
                   before, [&](TypeParam* out) { return kUnits.ConvertToPixles(resolution, value, from, out); });
      });
    });
  }
}

TYPED_TEST(ConvertUnitOverloads, PixelsBecomeLengths) {
  for (const UNITTYPE to : kAllUnits) {
    withResolutions([&](auto resolution, auto dpiOf) {
      this->eachValue([&](const TypeParam& value, const TypeParam& before) {
        const bool refused = !kIsOneNumber<TypeParam> && to == UNIT_PIXEL;
        expectLike(wantedOf(value, before,
                            [&](bool vertical, std::int32_t v, std::int32_t* out) {
                              return !refused && fromPixels(dpiOf(vertical), to, v, out);
                            }),
                   before, [&](TypeParam* out) { return kUnits.ConvertPixlesTo(resolution, value, out, to); });
      });
    });
  }
}

using AreaOverloads = ConvertUnitOverloads<SCANAREA>;

TEST_F(AreaOverloads, LengthsBecomeTheOtherLength) {
  for (const UNITTYPE from : kAllUnits) {
    for (const UNITTYPE to : kAllUnits) {
      eachValue([&](SCANAREA value, const SCANAREA& before) {
        value.unit = from;
        expectLike(wantedOf(value, before,
                            [&](bool, std::int32_t v, std::int32_t* out) { return lengthToLength(from, to, v, out); }),
                   before, [&](SCANAREA* out) {
                     const bool success = kUnits.ConvertUnit(value, out, to);
                     EXPECT_EQ(out->unit, to) << "also where it fails";
                     return success;
                   });
      });
    }
  }
}

TEST_F(AreaOverloads, LengthsBecomePixels) {
  for (const UNITTYPE from : kAllUnits) {
    withResolutions([&](auto resolution, auto dpiOf) {
      eachValue([&](SCANAREA value, const SCANAREA& before) {
        value.unit = from;
        expectLike(wantedOf(value, before,
                            [&](bool vertical, std::int32_t v, std::int32_t* out) {
                              return toPixels(dpiOf(vertical), from, v, out);
                            }),
                   before, [&](SCANAREA* out) {
                     const bool success = kUnits.ConvertToPixles(resolution, value, out);
                     EXPECT_EQ(out->unit, UNIT_PIXEL) << "also where it fails";
                     return success;
                   });
      });
    });
  }
}

TEST_F(AreaOverloads, PixelsBecomeLengths) {
  for (const UNITTYPE from : kAllUnits) {
    for (const UNITTYPE to : kAllUnits) {
      withResolutions([&](auto resolution, auto dpiOf) {
        eachValue([&](SCANAREA value, SCANAREA before) {
          value.unit = from;
          before.unit = kNoUnit;
          expectLike(wantedOf(value, before,
                              [&](bool vertical, std::int32_t v, std::int32_t* out) {
                                return from == UNIT_PIXEL && fromPixels(dpiOf(vertical), to, v, out);
                              }),
                     before, [&](SCANAREA* out) {
                       const bool success = kUnits.ConvertPixlesTo(resolution, value, out, to);
                       const UNITTYPE unit = to == UNIT_INCH || to == UNIT_MILLIMETER ? to : UNIT_PIXEL;
                       EXPECT_EQ(out->unit, from == UNIT_PIXEL ? unit : kNoUnit);
                       return success;
                     });
        });
      });
    }
  }
}

TEST(ConvertUnitResolution, OfZeroStopsAtTheMemberThatItDivides) {
  AXIS pair{7, 7};
  EXPECT_FALSE(kUnits.ConvertPixlesTo(AXIS{300, 0}, AXIS{600, 600}, &pair, UNIT_INCH));
  EXPECT_EQ(pair.x, 2000u);
  EXPECT_EQ(pair.y, 0u);
  tagRECT rect{7, 7, 7, 7};  // left, right, top, bottom
  EXPECT_FALSE(kUnits.ConvertPixlesTo(AXIS{300, 0}, tagRECT{600, 600, 300, 300}, &rect, UNIT_MILLIMETER));
  EXPECT_EQ(rect.left, 5080);
  EXPECT_EQ(rect.right, 2540);
  EXPECT_EQ(rect.top, 0);
  EXPECT_EQ(rect.bottom, 7);
  SCANAREA area{7, 7, 7, 7, kNoUnit};  // left, top, right, bottom
  EXPECT_FALSE(kUnits.ConvertPixlesTo(AXIS{300, 0}, SCANAREA{600, 600, 300, 300, UNIT_PIXEL}, &area, UNIT_INCH));
  EXPECT_EQ(area.left, 2000);
  EXPECT_EQ(area.top, 0);
  EXPECT_EQ(area.right, 7);
  EXPECT_EQ(area.unit, UNIT_INCH);
  std::int32_t one = 7;
  EXPECT_TRUE(kUnits.ConvertToPixles(0, 8500, UNIT_INCH, &one)) << "a multiplication";
  EXPECT_EQ(one, 0);
}

}  // namespace
}  // namespace orvalle_scan_api
