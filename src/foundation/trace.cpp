#include "foundation/trace.h"

#include <string>

namespace orvalle_scan_api {

Trace::~Trace() {
  if (exitFormat_ == nullptr) {
    g_ScanDevApiLog.WriteLog(level_, "<<<<< %s <<<<<", operation_);
    return;
  }
  char value[64];
  // Both conversions in use, %X and %d, take the value by its 32-bit pattern.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  std::snprintf(value, sizeof value, exitFormat_, exitValue_);
#pragma GCC diagnostic pop
  g_ScanDevApiLog.WriteLog(level_, "<<<<< %s <<<<<%s", operation_, value);
}

}  // namespace orvalle_scan_api
