// An opened USB device: libusb's context of this connection alone, the handle and the claimed interface.
// All of it is given back in reverse order; releasing the interface puts a kernel driver back that had it before.
// Threads: one caller at a time.
#pragma once

#include "usb_calls.h"

namespace device_access {

struct UsbLink {
  explicit UsbLink(UsbCalls& usbCalls) : calls(usbCalls) {}
  ~UsbLink() {
    if (interface >= 0) calls.releaseInterface(handle, interface);
    if (handle != nullptr) calls.close(handle);
    if (context != nullptr) calls.exit(context);
  }
  UsbLink(const UsbLink&) = delete;
  UsbLink& operator=(const UsbLink&) = delete;

  UsbCalls& calls;
  libusb_context* context = nullptr;
  libusb_device_handle* handle = nullptr;
  int interface = -1;  // the claimed one
  std::uint8_t inEndpoint = 0;
  std::uint8_t outEndpoint = 0;
};

}  // namespace device_access
