// Devices that announce themselves over mDNS as _qsscan._tcp.
#pragma once

#include "found_device.h"

namespace qsscan {

// Asks the Avahi daemon and gives it a bounded time, some two seconds at most. Where the daemon does not run the answer
// is empty and comes at once.
Search findNetworkDevices();

}  // namespace qsscan
