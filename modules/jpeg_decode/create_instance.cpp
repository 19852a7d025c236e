// The one exported symbol of QsJpegDecode.so.
#include <new>

#include "jpeg_decode.h"

// The new object, released with delete; null when there is no memory for it.
extern "C" __attribute__((visibility("default"))) orvalle_scan_api::IJpegDecode* CreateInstance() {
  return new (std::nothrow) jpeg_decode::JpegDecode;
}
