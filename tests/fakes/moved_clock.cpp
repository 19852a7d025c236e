#include "tests/fakes/moved_clock.h"

namespace fakes {
std::atomic<std::clock_t> clockAdvance{0};
}

extern "C" {
std::clock_t __real_clock();
std::clock_t __wrap_clock() { return __real_clock() + fakes::clockAdvance; }
}
