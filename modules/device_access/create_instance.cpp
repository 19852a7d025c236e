// The one exported symbol of QsDeviceAccs.so.
#include <new>

#include "device_access.h"

// The new object, released with delete; null when there is no memory for it.
extern "C" __attribute__((visibility("default"))) orvalle_scan_api::IDeviceAccess* CreateInstance() {
  return new (std::nothrow) device_access::DeviceAccess;
}
