#include "device/abilities.h"

#include <gtest/gtest.h>

#include "device/profile.h"

namespace vscan {
namespace {

TEST(Abilities, BothGenerationsSayTheSameOfTheSameMachine) {
  const Abilities office = loadProfile(QS_PROFILES "/office.json").abilities();
  const Abilities classic = loadProfile(QS_PROFILES "/classic.json").abilities();
  for (const Abilities& can : {office, classic}) {
    EXPECT_TRUE(can.hasFlatbed);
    EXPECT_TRUE(can.hasFeeder);
    EXPECT_TRUE(can.hasDuplex);
    EXPECT_EQ(can.of(Path::Flatbed).size, (std::array<std::int64_t, 2>{2159, 2972}));
    EXPECT_EQ(can.of(Path::FeederOneSide).size, (std::array<std::int64_t, 2>{2159, 3556}));
    EXPECT_EQ(can.of(Path::FeederBothSides).dpi, (std::array<std::int64_t, 2>{600, 600}));
    EXPECT_EQ(can.of(Path::FeederOneSide).longLength, 8630);
    EXPECT_EQ(can.of(Path::Flatbed).longLength, 0);
    EXPECT_EQ(can.position, (std::array<std::int64_t, 4>{1, 1, 2, 1}));
    EXPECT_EQ(can.colors & 0x17, 0x17);
  }
  EXPECT_EQ(office.of(Path::FeederBothSides).longLength, 8630);
  EXPECT_EQ(classic.of(Path::FeederBothSides).longLength, 0);  // long paper of this generation has one side
}

TEST(Abilities, TheFlatbedScannerHasNoFeeder) {
  const Abilities can = loadProfile(QS_PROFILES "/flatbed.json").abilities();
  EXPECT_TRUE(can.hasFlatbed);
  EXPECT_FALSE(can.hasFeeder);
  EXPECT_FALSE(can.hasDuplex);
  EXPECT_EQ(can.of(Path::Flatbed).dpi, (std::array<std::int64_t, 2>{1200, 1200}));
}

TEST(Abilities, MarginsAreTakenFromTheirPath) {
  Capability second(Generation::Second);
  second.set("marginSize", 4, 30);
  second.set("marginSize", 7, 50);
  EXPECT_EQ(abilitiesOf(second).of(Path::FeederOneSide).margins, (std::array<std::int64_t, 4>{30, 0, 0, 50}));
  EXPECT_EQ(abilitiesOf(second).of(Path::Flatbed).margins, (std::array<std::int64_t, 4>{0, 0, 0, 0}));
  Capability first(Generation::First);
  first.set("marginY", 0, 10);
  EXPECT_EQ(abilitiesOf(first).of(Path::Flatbed).margins, (std::array<std::int64_t, 4>{30, 30, 10, 10}));
}

TEST(Abilities, AThresholdByHandHasToBeOffered) {
  Capability capability(Generation::Second);
  capability.set("monoThresholdMin", 0, 1);
  capability.set("monoThresholdMax", 0, 255);
  EXPECT_GT(abilitiesOf(capability).thresholdMin, abilitiesOf(capability).thresholdMax);
  capability.set("monoThreshold", 0, 1);
  EXPECT_EQ(abilitiesOf(capability).thresholdMax, 255);
}

}  // namespace
}  // namespace vscan
