// The one exported symbol of QsScanDecode.so.
#include <new>

#include "scan_decode.h"

// The new object, released with delete; null when there is no memory for it.
extern "C" __attribute__((visibility("default"))) orvalle_scan_api::IScanDec* CreateInstance() {
  return new (std::nothrow) scan_decode::ScanDecode;
}
