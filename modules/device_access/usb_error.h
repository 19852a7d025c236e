// What libusb's numbers mean as error numbers of the system, which is what lastDetail tells.
#pragma once

#include "device_result.h"

namespace device_access {

// The error number of a failed call of libusb, 0 for success. What has no number of its own is EIO.
int errnoOfUsbCall(int error);

// The error number of a completed transfer, 0 when it completed well.
int errnoOfTransfer(int status);

// The outcome of opening a device: which failures a person can do something about.
Outcome usbOpenFailure(int errorNumber);

}  // namespace device_access
