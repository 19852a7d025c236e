#include "device/placement.h"

#include <gtest/gtest.h>

namespace vscan {
namespace {

Profile office() { return loadProfile(QS_PROFILES "/office.json"); }

TEST(Placement, TheLargestAreaIsTheSizeOfThePathAtTheResolution) {
  const Profile profile = office();
  EXPECT_EQ(maxArea(profile, Path::FeederOneSide, false, 300, 300), (Size{2550, 4200}));
  EXPECT_EQ(maxArea(profile, Path::FeederBothSides, false, 600, 300), (Size{5100, 4200}));
  EXPECT_EQ(maxArea(profile, Path::Flatbed, false, 300, 300), (Size{2550, 3510}));
}

TEST(Placement, LongPaperReachesFurtherInTheFeederOnly) {
  const Profile profile = office();
  EXPECT_EQ(maxArea(profile, Path::FeederOneSide, true, 100, 100), (Size{850, 3397}));
  EXPECT_EQ(maxArea(profile, Path::Flatbed, true, 100, 100), (Size{850, 1170}));
}

TEST(Placement, ASheetLiesWhereThePaperPositionSays) {
  const struct {
    const char* name;
    Path path;
    int x, y;  // the two bytes of the paper position
    Size sheet;
    Rect expected;
  } rows[] = {
      {"left and top", Path::Flatbed, 1, 1, {1000, 500}, {0, 0, 1000, 500}},
      {"nothing said", Path::Flatbed, 0, 0, {1000, 500}, {0, 0, 1000, 500}},
      {"in the middle", Path::Flatbed, 2, 2, {1000, 500}, {775, 1505, 1775, 2005}},
      {"right and bottom", Path::Flatbed, 3, 3, {1000, 500}, {1550, 3010, 2550, 3510}},
      {"an odd rest goes to the right", Path::FeederOneSide, 2, 1, {2481, 3508}, {34, 0, 2515, 3508}},
      {"A4 at 300 dpi in the feeder", Path::FeederBothSides, 2, 1, {2480, 3507}, {35, 0, 2515, 3507}},
      {"wider than the path", Path::FeederOneSide, 2, 1, {3000, 100}, {0, 0, 3000, 100}},
  };
  for (const auto& row : rows) {
    Profile profile = office();
    const std::size_t place = row.path == Path::Flatbed ? 0 : 2;
    profile.capability.set("paperPosition", place, row.x);
    profile.capability.set("paperPosition", place + 1, row.y);
    EXPECT_EQ(placeSheet(profile, row.path, row.sheet, maxArea(profile, row.path, false, 300, 300)), row.expected)
        << row.name;
  }
}

TEST(Placement, TheScannedAreaIsCutToTheDevice) {
  const Size maximum{2550, 4200};
  const Rect sheet{35, 0, 2515, 3507};
  const struct {
    const char* name;
    AreaKind kind;
    std::array<std::int64_t, 4> numbers;
    Rect expected;
  } rows[] = {
      {"as asked", AreaKind::Normal, {35, 10, 2515, 3517}, {35, 10, 2515, 3517}},
      {"beyond the right and the bottom", AreaKind::Normal, {100, 100, 9000, 9000}, {100, 100, 2550, 4200}},
      {"left beyond the right edge", AreaKind::Normal, {2550, 0, 2600, 10}, {2549, 0, 2550, 10}},
      {"wrapped left and top", AreaKind::Normal, {4294967286, 4294967295, 100, 100}, {0, 0, 100, 100}},
      {"no height: that of the sheet", AreaKind::Normal, {35, 0, 2515, 0}, {35, 0, 2515, 3507}},
      {"wrapped height: that of the sheet", AreaKind::Normal, {35, 0, 2515, 4294967286}, {35, 0, 2515, 3507}},
      {"no numbers: the sheet", AreaKind::Normal, {0, 0, 0, 0}, {35, 0, 2515, 3507}},
      {"no height below the sheet", AreaKind::Normal, {35, 4000, 2515, 4000}, {35, 4000, 2515, 4001}},
      {"automatic", AreaKind::Automatic, {}, {35, 0, 2515, 3507}},
      {"full", AreaKind::Full, {}, {0, 0, 2550, 4200}},
      {"the sheet without a rim", AreaKind::Over, {}, {35, 0, 2515, 3507}},
  };
  for (const auto& row : rows) EXPECT_EQ(scannedArea(row.kind, row.numbers, sheet, maximum), row.expected) << row.name;
  EXPECT_EQ(scannedArea(AreaKind::Automatic, {}, {0, 0, 3000, 9000}, maximum), (Rect{0, 0, 2550, 4200}));
}

}  // namespace

void PrintTo(const Rect& rect, std::ostream* out) {
  *out << rect.left << "," << rect.top << "," << rect.right << "," << rect.bottom;
}

}  // namespace vscan
