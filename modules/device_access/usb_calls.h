// The calls of libusb that this module makes, as an interface, so that tests can put a device of their own behind them.
// Each call does what libusb's call of that name does and returns what it returns; nothing is added on the way.
// Transfers are allocated and freed with libusb's own calls, which need no device.
// Threads: those of libusb. Callbacks of transfers run inside handleEvents.
#pragma once

#include <libusb.h>

#include <cstdint>

namespace device_access {

class UsbCalls {
 public:
  virtual ~UsbCalls() = default;

  virtual int init(libusb_context** context) = 0;
  virtual void exit(libusb_context* context) = 0;

  virtual ssize_t getDeviceList(libusb_context* context, libusb_device*** list) = 0;
  virtual void freeDeviceList(libusb_device** list) = 0;  // the devices in it as well
  virtual int getDeviceDescriptor(libusb_device* device, libusb_device_descriptor* descriptor) = 0;
  virtual int getActiveConfigDescriptor(libusb_device* device, libusb_config_descriptor** descriptor) = 0;
  virtual void freeConfigDescriptor(libusb_config_descriptor* descriptor) = 0;

  virtual int open(libusb_device* device, libusb_device_handle** handle) = 0;
  virtual void close(libusb_device_handle* handle) = 0;
  virtual int getStringDescriptorAscii(libusb_device_handle* handle, std::uint8_t index, unsigned char* text,
                                       int textBytes) = 0;
  virtual int setAutoDetachKernelDriver(libusb_device_handle* handle, int enable) = 0;
  virtual int claimInterface(libusb_device_handle* handle, int interface) = 0;
  virtual int releaseInterface(libusb_device_handle* handle, int interface) = 0;
  virtual int setInterfaceAltSetting(libusb_device_handle* handle, int interface, int setting) = 0;
  virtual int clearHalt(libusb_device_handle* handle, std::uint8_t endpoint) = 0;

  virtual int submitTransfer(libusb_transfer* transfer) = 0;
  virtual int cancelTransfer(libusb_transfer* transfer) = 0;
  virtual int handleEvents(libusb_context* context, timeval* wait) = 0;  // libusb_handle_events_timeout_completed
};

// libusb itself. Lives as long as the module.
UsbCalls& systemUsb();

}  // namespace device_access
