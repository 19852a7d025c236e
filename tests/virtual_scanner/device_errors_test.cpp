#include "protocol/device_errors.h"

#include <gtest/gtest.h>

namespace vscan {
namespace {

TEST(DeviceErrors, EachHasItsNameAndItsNumberInBothGenerations) {
  const struct {
    const char* name;
    int first;
    int second;
  } rows[] = {
      {"feeder-empty", 0xC2, 0x90},   {"jam", 0xC3, 0x91},           {"cover-open", 0xC4, 0xA0},
      {"busy", 0xC5, 0xB0},           {"out-of-memory", 0xC6, 0xB1}, {"double-feed", 0xC8, 0x92},
      {"internal-fault", 0xC9, 0x84}, {"lamp-fault", 0xCA, 0xA1},    {"settings-not-possible", 0xCB, 0xA4},
      {"locked", 0xCC, 0xA5},
  };
  for (const auto& row : rows) {
    const auto error = deviceErrorNamed(row.name);
    ASSERT_TRUE(error) << row.name;
    EXPECT_EQ(codeOf(*error, Generation::First), row.first) << row.name;
    EXPECT_EQ(codeOf(*error, Generation::Second), row.second) << row.name;
  }
  EXPECT_FALSE(deviceErrorNamed("fire"));
}

TEST(DeviceErrors, TheCodeUsedIsThatOfTheErrorItself) {
  EXPECT_EQ(codeOf(DeviceError::FeederEmpty, Generation::Second), 0x90);
  EXPECT_EQ(codeOf(DeviceError::InternalFault, Generation::First), 0xC9);
  EXPECT_EQ(codeOf(DeviceError::SettingsNotPossible, Generation::Second), 0xA4);
  EXPECT_EQ(codeOf(DeviceError::Locked, Generation::Second), 0xA5);
}

}  // namespace
}  // namespace vscan
