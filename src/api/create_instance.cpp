// The one exported function.
#include <new>

#include "api/ScanProtocol.h"

extern "C" __attribute__((visibility("default"))) orvalle_scan_api::IScanCoreApi* CreateInstance() {
  try {
    return new orvalle_scan_api::CScanProtocol;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
