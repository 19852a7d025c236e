// Processor time of the calling thread.
#pragma once

#include <cstdint>
#include <ctime>

namespace timed {

inline std::int64_t threadClockNs() {
  std::timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return std::int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
}

}  // namespace timed
