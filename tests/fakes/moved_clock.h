// The processor clock, which the abort's time limit is measured with, can be moved on by a test: a program that is
// linked with --wrap=clock has the core's calls of clock() come here.
// Threads: thread-safe.
#pragma once

#include <atomic>
#include <ctime>

namespace fakes {

// Added to what the clock says.
extern std::atomic<std::clock_t> clockAdvance;
// Just more than the ten seconds after which an unanswered abort is given up.
inline constexpr std::clock_t kAbortLimitPassed = 10000001;

}  // namespace fakes
