#include "device/turn.h"

#include <gtest/gtest.h>

#include <thread>

namespace vscan {
namespace {

using namespace std::chrono_literals;

const char kOne = 0, kOther = 0;

TEST(Turn, ACommandThatKeepsNothingLeavesTheDeviceBehindIt) {
  Turn turn(0ms);
  ASSERT_TRUE(turn.take(&kOne, false));
  EXPECT_FALSE(turn.take(&kOther, false));
  turn.finish(&kOne);
  EXPECT_TRUE(turn.take(&kOther, false));
}

TEST(Turn, WhatIsKeptIsKeptUntilItsHostLeaves) {
  Turn turn(0ms);
  ASSERT_TRUE(turn.take(&kOne, true));
  turn.finish(&kOne);
  EXPECT_FALSE(turn.take(&kOther, true));
  ASSERT_TRUE(turn.take(&kOne, false));  // a question in between
  turn.finish(&kOne);
  EXPECT_FALSE(turn.take(&kOther, true));
  turn.leave(&kOther);  // which has nothing to leave
  EXPECT_FALSE(turn.take(&kOther, true));
  turn.leave(&kOne);
  EXPECT_TRUE(turn.take(&kOther, true));
}

TEST(Turn, WhoeverComesNextKeepsOnlyWhatItAskedToKeep) {
  Turn turn(0ms);
  ASSERT_TRUE(turn.take(&kOne, true));
  turn.leave(&kOne);
  ASSERT_TRUE(turn.take(&kOther, false));
  turn.finish(&kOther);
  EXPECT_TRUE(turn.take(&kOne, false));
}

TEST(Turn, AHostWaitsForOneThatIsJustLeaving) {
  Turn turn(10s);
  ASSERT_TRUE(turn.take(&kOne, true));
  std::thread leaving([&] {
    std::this_thread::sleep_for(20ms);
    turn.leave(&kOne);
  });
  EXPECT_TRUE(turn.take(&kOther, true));
  leaving.join();
}

TEST(Turn, SettingsThatNothingFollowsLapseButACommandDoesNot) {
  Turn turn(0ms, 0ms);
  ASSERT_TRUE(turn.take(&kOne, true));
  EXPECT_FALSE(turn.take(&kOther, true));  // the command is still being carried out
  turn.finish(&kOne);
  ASSERT_TRUE(turn.take(&kOther, true));
  turn.finish(&kOne);  // too late
  EXPECT_FALSE(turn.take(&kOne, true));
}

}  // namespace
}  // namespace vscan
