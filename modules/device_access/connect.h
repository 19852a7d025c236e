// Connects to the device that a name tells.
#pragma once

#include <memory>

#include "device_name.h"
#include "transport.h"
#include "usb_calls.h"

namespace device_access {

// Each address of a host has this long to answer.
inline constexpr Milliseconds kConnectWait{5000};

// Fills connection and succeeds, or says why not and leaves connection empty. A host's addresses of both families are
// tried in the order in which the system gives them; of several failures the one that says most is told. USB devices
// are reached through usb. Throws std::bad_alloc.
Outcome connectDevice(const DeviceName& name, UsbCalls& usb, std::unique_ptr<Transport>& connection);

}  // namespace device_access
