// Sleeping, a stopwatch, the wall clock.
//
// Threads: sleeping and the clock are reentrant; the stopwatch belongs to one thread.
#pragma once

#include <cstdint>

#include "foundation/qvtcl/TString.h"

namespace qvtcl {

struct _CLKTIME {
  long seconds;  // since the epoch
  long milliseconds;
};

// Kept: year counts from 1900 while month counts from 1. Pinned by TTime_test "TheYearCountsFrom1900AndTheMonthFrom1".
struct _TIME_INFO {
  std::int32_t year;
  std::int32_t month;  // 1 to 12
  std::int32_t day;
  std::int32_t hour;
  std::int32_t minute;
  std::int32_t second;
  std::int32_t weekday;  // 0 is Sunday
};

class CTTime {
 public:
  virtual ~CTTime() = default;

  // Sleeps again, for the whole time, as long as it comes back early.
  void Sleep_sec(unsigned int seconds);
  // One sleep; an interrupted one is not resumed.
  void Sleep_ms(unsigned long milliseconds);

  void StartTimeMeasure();
  // Milliseconds since the start; 0 if it was not started.
  // Kept: a start that fell exactly on a whole second reads as not started. Pinned by TTime_test
  // "AStartOnAWholeSecondReadsAsNotStarted".
  long LapTimeMeasure();
  long CalcTimeMeasure();  // the same without asking whether it was started
  long StopTimeMeasure();  // LapTimeMeasure, then the start is cleared

  void GetCurrentClockTime(_CLKTIME& time);  // left as it was on failure
  void GetCurrentLocalTime(_TIME_INFO& time);
  CTString GetCurrentLocalTimeString();  // as ctime prints it, line end included; empty on failure

 private:
  _CLKTIME start{};
};

}  // namespace qvtcl
