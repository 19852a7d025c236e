// Runs code with a log that was made anew over a set-up of the case's own.
#pragma once

#include <new>

#include "foundation/OutputLog.h"
#include "tests/foundation/own_tmp.h"

namespace foundation_test {

// No setup: no set-up file. Expectations of code count for the running test.
inline Left runWithLog(const std::optional<std::string>& setup, const std::function<void()>& code) {
  return runWithOwnTmp(setup, [&code] {
    g_ScanDevApiLog.~COutputLog();
    new (&g_ScanDevApiLog) COutputLog("ScanApiLog");
    code();
  });
}

}  // namespace foundation_test
