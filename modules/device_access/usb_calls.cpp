#include "usb_calls.h"

#include <csignal>

namespace device_access {
namespace {

class SystemUsb final : public UsbCalls {
 public:
  // libusb starts a thread that watches for devices. It takes no signals: those of the host are for the host's threads.
  int init(libusb_context** context) override {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    const bool blocked = pthread_sigmask(SIG_SETMASK, &all, &before) == 0;
    const int error = libusb_init(context);
    if (blocked) pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return error;
  }
  void exit(libusb_context* context) override { libusb_exit(context); }

  ssize_t getDeviceList(libusb_context* context, libusb_device*** list) override {
    return libusb_get_device_list(context, list);
  }
  void freeDeviceList(libusb_device** list) override { libusb_free_device_list(list, 1); }
  int getDeviceDescriptor(libusb_device* device, libusb_device_descriptor* descriptor) override {
    return libusb_get_device_descriptor(device, descriptor);
  }
  int getActiveConfigDescriptor(libusb_device* device, libusb_config_descriptor** descriptor) override {
    return libusb_get_active_config_descriptor(device, descriptor);
  }
  void freeConfigDescriptor(libusb_config_descriptor* descriptor) override {
    libusb_free_config_descriptor(descriptor);
  }

  int open(libusb_device* device, libusb_device_handle** handle) override { return libusb_open(device, handle); }
  void close(libusb_device_handle* handle) override { libusb_close(handle); }
  int getStringDescriptorAscii(libusb_device_handle* handle, std::uint8_t index, unsigned char* text,
                               int textBytes) override {
    return libusb_get_string_descriptor_ascii(handle, index, text, textBytes);
  }
  int setAutoDetachKernelDriver(libusb_device_handle* handle, int enable) override {
    return libusb_set_auto_detach_kernel_driver(handle, enable);
  }
  int claimInterface(libusb_device_handle* handle, int interface) override {
    return libusb_claim_interface(handle, interface);
  }
  int releaseInterface(libusb_device_handle* handle, int interface) override {
    return libusb_release_interface(handle, interface);
  }
  int setInterfaceAltSetting(libusb_device_handle* handle, int interface, int setting) override {
    return libusb_set_interface_alt_setting(handle, interface, setting);
  }
  int clearHalt(libusb_device_handle* handle, std::uint8_t endpoint) override {
    return libusb_clear_halt(handle, endpoint);
  }

  int submitTransfer(libusb_transfer* transfer) override { return libusb_submit_transfer(transfer); }
  int cancelTransfer(libusb_transfer* transfer) override { return libusb_cancel_transfer(transfer); }
  int handleEvents(libusb_context* context, timeval* wait) override {
    return libusb_handle_events_timeout_completed(context, wait, nullptr);
  }
};

}  // namespace

UsbCalls& systemUsb() {
  static SystemUsb usb;
  return usb;
}

}  // namespace device_access
