#include "foundation/qvtcl/TTime.h"

#include <sys/time.h>
#include <unistd.h>

#include <ctime>

namespace qvtcl {

void CTTime::Sleep_sec(unsigned int seconds) {
  while (sleep(seconds) != 0) {
  }
}

void CTTime::Sleep_ms(unsigned long milliseconds) {
  struct timespec wait {};
  wait.tv_sec = static_cast<std::time_t>(milliseconds / 1000);
  wait.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000L;
  nanosleep(&wait, nullptr);
}

void CTTime::StartTimeMeasure() { GetCurrentClockTime(start); }

long CTTime::LapTimeMeasure() { return start.seconds < 1 || start.milliseconds == 0 ? 0 : CalcTimeMeasure(); }

long CTTime::CalcTimeMeasure() {
  _CLKTIME now = start;
  GetCurrentClockTime(now);
  return (now.seconds - start.seconds) * 1000 + now.milliseconds - start.milliseconds;
}

long CTTime::StopTimeMeasure() {
  const long elapsed = LapTimeMeasure();
  start = {};
  return elapsed;
}

void CTTime::GetCurrentClockTime(_CLKTIME& time) {
  struct timeval now {};
  if (gettimeofday(&now, nullptr) != 0) return;
  time = {now.tv_sec, now.tv_usec / 1000};
}

void CTTime::GetCurrentLocalTime(_TIME_INFO& time) {
  const std::time_t now = std::time(nullptr);
  struct tm local {};
  if (localtime_r(&now, &local) == nullptr) return;
  time = {local.tm_year, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, local.tm_wday};
}

CTString CTTime::GetCurrentLocalTimeString() {
  const std::time_t now = std::time(nullptr);
  char text[64];
  return CTString(ctime_r(&now, text));
}

}  // namespace qvtcl
