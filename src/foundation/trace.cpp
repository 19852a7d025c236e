#include "foundation/trace.h"

namespace orvalle_scan_api {

Trace::~Trace() {
  if (exitFormat_ == nullptr) {
    g_ScanDevApiLog.WriteLog(level_, "<<<<< %s <<<<<", operation_);
    return;
  }
  // One of the formats below, of which each takes a name and a value of 32 bits.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  g_ScanDevApiLog.WriteLog(level_, exitFormat_, operation_, exitValue_);
#pragma GCC diagnostic pop
}

}  // namespace orvalle_scan_api
