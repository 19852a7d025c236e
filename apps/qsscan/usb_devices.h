// USB devices whose ids the administrator named. Nothing tells a scanner from another USB device but its ids.
#pragma once

#include <vector>

#include "configuration.h"
#include "found_device.h"

namespace qsscan {

// Those that are plugged in, with their serial number where it can be read. Without ids USB is not touched.
Search findUsbDevices(const std::vector<UsbIds>& ids);

}  // namespace qsscan
