// The linker sends the core's calls of the system's clocks and sleeps here.
#include "foundation/qvtcl/TTime.h"

#include <gtest/gtest.h>
#include <sys/time.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using qvtcl::_CLKTIME;
using qvtcl::_TIME_INFO;
using qvtcl::CTTime;

namespace {

struct System {
  std::vector<timespec> naps;
  int napResult = 0;
  std::vector<unsigned int> sleeps;
  std::vector<unsigned int> secondsLeft;  // what sleep gives back, call by call; 0 afterwards
  std::optional<timeval> clock;           // of gettimeofday; the real one if unset
  bool clockFails = false;
  std::optional<std::time_t> wall;  // of time
  bool localFails = false;
};
System fake;

class TTime : public ::testing::Test {
 protected:
  void SetUp() override { fake = {}; }
  void TearDown() override { fake = {}; }

  static void at(long seconds, long microseconds) { fake.clock = timeval{seconds, microseconds}; }
  CTTime time;
};

}  // namespace

extern "C" {
int __real_gettimeofday(timeval* now, void* zone);
std::time_t __real_time(std::time_t* now);
tm* __real_localtime_r(const std::time_t* now, tm* local);
char* __real_ctime_r(const std::time_t* now, char* text);

int __wrap_nanosleep(const timespec* wait, timespec* left);
unsigned int __wrap_sleep(unsigned int seconds);
int __wrap_gettimeofday(timeval* now, void* zone);
std::time_t __wrap_time(std::time_t* now);
tm* __wrap_localtime_r(const std::time_t* now, tm* local);
char* __wrap_ctime_r(const std::time_t* now, char* text);

int __wrap_nanosleep(const timespec* wait, timespec* left) {
  fake.naps.push_back(*wait);
  if (fake.napResult != 0 && left != nullptr) *left = *wait;
  return fake.napResult;
}

unsigned int __wrap_sleep(unsigned int seconds) {
  const std::size_t call = fake.sleeps.size();
  fake.sleeps.push_back(seconds);
  return call < fake.secondsLeft.size() ? fake.secondsLeft[call] : 0;
}

int __wrap_gettimeofday(timeval* now, void* zone) {
  if (fake.clockFails) return -1;
  if (!fake.clock) return __real_gettimeofday(now, zone);
  *now = *fake.clock;
  return 0;
}

std::time_t __wrap_time(std::time_t* now) {
  if (!fake.wall) return __real_time(now);
  if (now != nullptr) *now = *fake.wall;
  return *fake.wall;
}

tm* __wrap_localtime_r(const std::time_t* now, tm* local) {
  return fake.localFails ? nullptr : __real_localtime_r(now, local);
}

char* __wrap_ctime_r(const std::time_t* now, char* text) {
  return fake.localFails ? nullptr : __real_ctime_r(now, text);
}
}

TEST_F(TTime, SleepMsIsOneSleepOfSecondsAndNanoseconds) {
  struct Row {
    unsigned long milliseconds;
    long seconds, nanoseconds;
  };
  for (const Row& row : {Row{100, 0, 100000000}, Row{0, 0, 0}, Row{1, 0, 1000000}, Row{999, 0, 999000000},
                         Row{1000, 1, 0}, Row{1500, 1, 500000000}, Row{ULONG_MAX, 18446744073709551, 615000000}}) {
    fake.naps.clear();
    time.Sleep_ms(row.milliseconds);
    ASSERT_EQ(fake.naps.size(), 1u) << row.milliseconds;
    EXPECT_EQ(fake.naps[0].tv_sec, row.seconds) << row.milliseconds;
    EXPECT_EQ(fake.naps[0].tv_nsec, row.nanoseconds) << row.milliseconds;
  }
}

TEST_F(TTime, AnInterruptedSleepMsIsNotResumed) {
  fake.napResult = -1;
  time.Sleep_ms(250);
  EXPECT_EQ(fake.naps.size(), 1u);
}

TEST_F(TTime, SleepSecBeginsAgainWithTheWholeTimeWhenItComesBackEarly) {
  fake.secondsLeft = {3, 4, 0};
  time.Sleep_sec(5);
  EXPECT_EQ(fake.sleeps, (std::vector<unsigned int>{5, 5, 5}));
  fake = {};
  time.Sleep_sec(7);
  EXPECT_EQ(fake.sleeps, (std::vector<unsigned int>{7}));
}

TEST_F(TTime, TheClockGivesSecondsAndWholeMilliseconds) {
  static_assert(std::is_same_v<decltype(_CLKTIME::seconds), long> && sizeof(_CLKTIME) == 16);
  _CLKTIME clock{1, 2};
  at(1700000000, 123999);
  time.GetCurrentClockTime(clock);
  EXPECT_EQ(clock.seconds, 1700000000);
  EXPECT_EQ(clock.milliseconds, 123);
  at(5, 999);
  time.GetCurrentClockTime(clock);
  EXPECT_EQ(clock.seconds, 5);
  EXPECT_EQ(clock.milliseconds, 0);
}

TEST_F(TTime, AClockThatFailsLeavesTheRecord) {
  _CLKTIME clock{11, 22};
  fake.clockFails = true;
  time.GetCurrentClockTime(clock);
  EXPECT_EQ(clock.seconds, 11);
  EXPECT_EQ(clock.milliseconds, 22);
  fake.clockFails = false;
  at(100, 500000);
  time.StartTimeMeasure();
  fake.clockFails = true;
  time.StartTimeMeasure();
  fake.clockFails = false;
  at(100, 750000);
  EXPECT_EQ(time.LapTimeMeasure(), 250) << "the first start holds";
}

TEST_F(TTime, TheStopwatchGivesMilliseconds) {
  at(100, 500000);
  time.StartTimeMeasure();
  struct Row {
    long seconds, microseconds, expected;
  };
  for (const Row& row : {Row{100, 500000, 0}, Row{100, 500999, 0}, Row{100, 501000, 1}, Row{101, 0, 500},
                         Row{101, 250000, 750}, Row{3700, 499000, 3599999}, Row{99, 500000, -1000}}) {
    at(row.seconds, row.microseconds);
    EXPECT_EQ(time.LapTimeMeasure(), row.expected);
    EXPECT_EQ(time.CalcTimeMeasure(), row.expected);
  }
  at(102, 600000);
  EXPECT_EQ(time.StopTimeMeasure(), 2100);
  EXPECT_EQ(time.LapTimeMeasure(), 0) << "not started";
  EXPECT_EQ(time.StopTimeMeasure(), 0);
  EXPECT_EQ(time.CalcTimeMeasure(), 102600) << "since a start of zeros";
}

TEST_F(TTime, AStopwatchThatWasNeverStartedGivesNothing) {
  at(102, 600000);
  EXPECT_EQ(time.LapTimeMeasure(), 0);
  EXPECT_EQ(time.StopTimeMeasure(), 0);
  EXPECT_EQ(time.CalcTimeMeasure(), 102600);
}

TEST_F(TTime, AStartOnAWholeSecondReadsAsNotStarted) {
  for (const auto& [seconds, microseconds] : {std::pair{100L, 0L}, std::pair{100L, 999L}, std::pair{0L, 500000L}}) {
    at(seconds, microseconds);
    time.StartTimeMeasure();
    at(200, 750000);
    EXPECT_EQ(time.LapTimeMeasure(), 0);
    EXPECT_EQ(time.CalcTimeMeasure(), 200750 - seconds * 1000 - microseconds / 1000);
    EXPECT_EQ(time.StopTimeMeasure(), 0);
    EXPECT_EQ(time.CalcTimeMeasure(), 200750) << "the start is cleared all the same";
  }
  at(1, 1000);
  time.StartTimeMeasure();
  at(1, 4000);
  EXPECT_EQ(time.LapTimeMeasure(), 3) << "the first second and millisecond that count";
}

TEST_F(TTime, TheYearCountsFrom1900AndTheMonthFrom1) {
  static_assert(std::is_same_v<decltype(_TIME_INFO::year), std::int32_t> && sizeof(_TIME_INFO) == 28);
  ::setenv("TZ", "UTC0", 1);
  ::tzset();
  struct Row {
    std::time_t now;
    std::vector<int> expected;  // year, month, day, hour, minute, second, weekday
  };
  for (const Row& row : {Row{1700000000, {123, 11, 14, 22, 13, 20, 2}}, Row{0, {70, 1, 1, 0, 0, 0, 4}},
                         Row{946684799, {99, 12, 31, 23, 59, 59, 5}}, Row{1709164800, {124, 2, 29, 0, 0, 0, 4}},
                         Row{-1, {69, 12, 31, 23, 59, 59, 3}}, Row{1705190400, {124, 1, 14, 0, 0, 0, 0}}}) {
    fake.wall = row.now;
    _TIME_INFO t{};
    time.GetCurrentLocalTime(t);
    EXPECT_EQ((std::vector<int>{t.year, t.month, t.day, t.hour, t.minute, t.second, t.weekday}), row.expected);
  }
}

TEST_F(TTime, TheTimeIsLocal) {
  ::setenv("TZ", "XYZ-5:30", 1);
  ::tzset();
  fake.wall = 1700000000;
  _TIME_INFO t{};
  time.GetCurrentLocalTime(t);
  EXPECT_EQ((std::vector<int>{t.year, t.month, t.day, t.hour, t.minute, t.second, t.weekday}),
            (std::vector<int>{123, 11, 15, 3, 43, 20, 3}));
  EXPECT_STREQ(time.GetCurrentLocalTimeString().C_str(), "Wed Nov 15 03:43:20 2023\n");
}

TEST_F(TTime, ATimeThatCannotBeBrokenDownGivesNothing) {
  _TIME_INFO t{1, 2, 3, 4, 5, 6, 7};
  fake.wall = 1700000000;
  fake.localFails = true;
  time.GetCurrentLocalTime(t);
  EXPECT_EQ(t.year, 1);
  EXPECT_EQ(t.weekday, 7);
  EXPECT_STREQ(time.GetCurrentLocalTimeString().C_str(), "");
  fake.localFails = false;
  fake.wall = LONG_MAX;  // a year that fits no record
  time.GetCurrentLocalTime(t);
  EXPECT_EQ(t.year, 1);
  EXPECT_STREQ(time.GetCurrentLocalTimeString().C_str(), "");
}
