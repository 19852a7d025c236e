// Finds the USB device that a name tells and opens it.
#pragma once

#include <memory>

#include "device_name.h"
#include "transport.h"
#include "usb_calls.h"

namespace device_access {

// name: of kind Usb. Fills connection and succeeds, or says why not and leaves connection empty. Throws std::bad_alloc.
// 1. Finds the device by its ids, and by its serial number if the name has one; several that fit are told, not guessed.
// 2. Claims the first interface that has a bulk endpoint in each direction. A kernel driver that has it is put back
//    when the connection ends.
// 3. Throws away what the device still had to say to an earlier connection.
Outcome connectUsb(const DeviceName& name, UsbCalls& calls, std::unique_ptr<Transport>& connection);

}  // namespace device_access
