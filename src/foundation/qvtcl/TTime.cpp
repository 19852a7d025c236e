#include "foundation/qvtcl/TTime.h"

#include <ctime>

namespace qvtcl {

void CTTime::Sleep_ms(unsigned long milliseconds) {
  struct timespec wait {};
  wait.tv_sec = static_cast<std::time_t>(milliseconds / 1000);
  wait.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000L;
  nanosleep(&wait, nullptr);
}

}  // namespace qvtcl
