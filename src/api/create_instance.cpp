// The one exported function.
#include <new>

#include "api/ScanProtocol.h"

extern "C" __attribute__((visibility("default"))) orvalle_scan_api::IScanCoreApi* CreateInstance() {
  return new (std::nothrow) orvalle_scan_api::CScanProtocol;
}
