#include "usb_devices.h"

#include <libusb.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "printable.h"

namespace qsscan {
namespace {

class Bus {
 public:
  Bus() : result_(::libusb_init(&context_)) {
    if (result_ == 0) result_ = ::libusb_get_device_list(context_, &devices_);
  }
  ~Bus() {
    if (devices_ != nullptr) ::libusb_free_device_list(devices_, 1);
    if (context_ != nullptr) ::libusb_exit(context_);
  }
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  // A number of devices, or a negative error.
  ssize_t result() const { return result_; }
  libusb_device* at(ssize_t i) const { return devices_[i]; }

 private:
  libusb_context* context_ = nullptr;
  libusb_device** devices_ = nullptr;
  ssize_t result_;
};

std::string textAt(libusb_device_handle* handle, std::uint8_t index) {
  std::array<unsigned char, 256> bytes{};
  if (index == 0) return "";
  const int got = ::libusb_get_string_descriptor_ascii(handle, index, bytes.data(), static_cast<int>(bytes.size()));
  return got <= 0 ? "" : std::string(bytes.begin(), bytes.begin() + got);
}

std::string problemOf(int error) {
  if (error == LIBUSB_ERROR_ACCESS) {
    return "You may not use this device: the administrator can allow it with 70-qsscan-usb.rules.template.";
  }
  return std::string("It cannot be opened: ") + ::libusb_strerror(error) + ".";
}

FoundDevice look(libusb_device* device, const libusb_device_descriptor& descriptor) {
  char ids[24];
  std::snprintf(ids, sizeof ids, "usb:%04x:%04x", descriptor.idVendor, descriptor.idProduct);
  FoundDevice found{ids, "", ""};
  libusb_device_handle* handle = nullptr;
  if (const int error = ::libusb_open(device, &handle); error != 0) {
    found.problem = problemOf(error);
    return found;
  }
  found.about = printable(textAt(handle, descriptor.iProduct));
  // A serial number that -d would not take is left out; the ids alone name the device then.
  const std::string serial = textAt(handle, descriptor.iSerialNumber);
  if (!serial.empty() && printable(serial) == serial) found.address += ":" + serial;
  ::libusb_close(handle);
  return found;
}

}  // namespace

Search findUsbDevices(const std::vector<UsbIds>& ids) {
  Search search;
  if (ids.empty()) return search;
  const Bus bus;
  if (bus.result() < 0) {
    search.problem = std::string("USB cannot be searched: ") + ::libusb_strerror(static_cast<int>(bus.result())) + ".";
  }
  for (ssize_t i = 0; i < bus.result(); ++i) {
    libusb_device_descriptor descriptor{};
    if (::libusb_get_device_descriptor(bus.at(i), &descriptor) != 0) continue;
    if (std::find(ids.begin(), ids.end(), UsbIds{descriptor.idVendor, descriptor.idProduct}) == ids.end()) continue;
    search.devices.push_back(look(bus.at(i), descriptor));
  }
  return search;
}

}  // namespace qsscan
