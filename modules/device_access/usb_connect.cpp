#include "usb_connect.h"

#include <array>
#include <cerrno>
#include <span>
#include <string>
#include <vector>

#include "usb_error.h"
#include "usb_transport.h"

namespace device_access {
namespace {

constexpr std::uint8_t kDirectionIn = 0x80;
constexpr std::uint8_t kTransferTypeMask = 3;

// The devices on the bus that have the ids of name.
class DeviceList {
 public:
  explicit DeviceList(UsbLink& link) : calls_(link.calls), count_(calls_.getDeviceList(link.context, &devices_)) {}
  ~DeviceList() {
    if (count_ >= 0) calls_.freeDeviceList(devices_);
  }
  DeviceList(const DeviceList&) = delete;
  DeviceList& operator=(const DeviceList&) = delete;

  int error() const { return count_ < 0 ? errnoOfUsbCall(static_cast<int>(count_)) : 0; }

  struct Match {
    libusb_device* device;
    std::uint8_t serialIndex;
  };
  std::vector<Match> matching(const DeviceName& name) const {
    std::vector<Match> matches;
    for (ssize_t i = 0; i < count_; ++i) {
      libusb_device_descriptor descriptor{};
      if (calls_.getDeviceDescriptor(devices_[i], &descriptor) != LIBUSB_SUCCESS) continue;
      if (descriptor.idVendor != name.vendorId || descriptor.idProduct != name.productId) continue;
      matches.push_back({devices_[i], descriptor.iSerialNumber});
    }
    return matches;
  }

 private:
  UsbCalls& calls_;
  libusb_device** devices_ = nullptr;
  const ssize_t count_;
};

// 0 or an error number. A device without a serial number has an empty one.
int readSerial(UsbLink& link, libusb_device_handle* handle, std::uint8_t index, std::string& serial) {
  serial.clear();
  if (index == 0) return 0;
  std::array<unsigned char, 256> text{};
  const int got = link.calls.getStringDescriptorAscii(handle, index, text.data(), static_cast<int>(text.size()));
  if (got < 0) return errnoOfUsbCall(got);
  serial.assign(text.begin(), text.begin() + got);
  return 0;
}

Outcome openOnly(UsbLink& link, const std::vector<DeviceList::Match>& matches, libusb_device*& chosen) {
  if (matches.size() > 1) return {kSeveralDevices, static_cast<std::uint32_t>(matches.size())};
  chosen = matches.front().device;
  const int error = link.calls.open(chosen, &link.handle);
  if (error != LIBUSB_SUCCESS) link.handle = nullptr;
  return error == LIBUSB_SUCCESS ? Outcome{} : usbOpenFailure(errnoOfUsbCall(error));
}

// A serial number can be read from an opened device only, so a device that may not be opened may be the one.
Outcome openBySerial(UsbLink& link, const std::vector<DeviceList::Match>& matches, const std::string& wanted,
                     libusb_device*& chosen) {
  Outcome failure{kDeviceAbsent, 0};
  std::uint32_t found = 0;
  for (const DeviceList::Match& match : matches) {
    libusb_device_handle* opened = nullptr;
    int error = errnoOfUsbCall(link.calls.open(match.device, &opened));
    const auto close = [&link](libusb_device_handle* handle) { link.calls.close(handle); };
    std::unique_ptr<libusb_device_handle, decltype(close)> handle(error == 0 ? opened : nullptr, close);
    std::string serial;
    if (error == 0) error = readSerial(link, handle.get(), match.serialIndex, serial);
    if (error != 0) {
      if (failure.detail == 0) failure = usbOpenFailure(error);
    } else if (serial == wanted && ++found == 1) {
      link.handle = handle.release();
      chosen = match.device;
    }
  }
  if (found > 1) return {kSeveralDevices, found};
  return found == 1 ? Outcome{} : failure;
}

// True when the setting has a bulk endpoint in each direction; the first of each are filled in.
bool findBulkPair(const libusb_interface_descriptor& setting, UsbLink& link) {
  link.inEndpoint = link.outEndpoint = 0;
  for (const libusb_endpoint_descriptor& endpoint : std::span(setting.endpoint, setting.bNumEndpoints)) {
    if ((endpoint.bmAttributes & kTransferTypeMask) != LIBUSB_ENDPOINT_TRANSFER_TYPE_BULK) continue;
    std::uint8_t& place = (endpoint.bEndpointAddress & kDirectionIn) != 0 ? link.inEndpoint : link.outEndpoint;
    if (place == 0) place = endpoint.bEndpointAddress;
  }
  return link.inEndpoint != 0 && link.outEndpoint != 0;
}

int claimSetting(UsbLink& link, const libusb_interface_descriptor& setting, bool hasOtherSettings) {
  link.calls.setAutoDetachKernelDriver(link.handle, 1);  // where there are no such drivers it fails, to no harm
  if (const int error = link.calls.claimInterface(link.handle, setting.bInterfaceNumber); error != 0) return error;
  link.interface = setting.bInterfaceNumber;
  // Some devices do not take the request when there is nothing to choose.
  if (!hasOtherSettings) return 0;
  return link.calls.setInterfaceAltSetting(link.handle, setting.bInterfaceNumber, setting.bAlternateSetting);
}

Outcome claimBulkPair(UsbLink& link, const libusb_config_descriptor& config) {
  for (const libusb_interface& interface : std::span(config.interface, config.bNumInterfaces)) {
    for (int i = 0; i < interface.num_altsetting; ++i) {
      const libusb_interface_descriptor& setting = interface.altsetting[i];
      if (!findBulkPair(setting, link)) continue;
      const int error = claimSetting(link, setting, interface.num_altsetting > 1);
      return error == 0 ? Outcome{} : usbOpenFailure(errnoOfUsbCall(error));
    }
  }
  return {kNoBulkEndpoints, 0};
}

Outcome claim(UsbLink& link, libusb_device* device) {
  libusb_config_descriptor* config = nullptr;
  const int error = link.calls.getActiveConfigDescriptor(device, &config);
  if (error == LIBUSB_ERROR_NOT_FOUND) return {kNoBulkEndpoints, ENOENT};  // not configured
  if (error != LIBUSB_SUCCESS) return usbOpenFailure(errnoOfUsbCall(error));
  const Outcome outcome = claimBulkPair(link, *config);
  link.calls.freeConfigDescriptor(config);
  return outcome;
}

Outcome openDevice(UsbLink& link, const DeviceName& name) {
  if (const int error = link.calls.init(&link.context); error != LIBUSB_SUCCESS) {
    link.context = nullptr;
    if (error == LIBUSB_ERROR_NO_MEM) return {kNoResource, ENOMEM};
    return {kDeviceAbsent, ENOSYS};  // this machine has no USB
  }
  const DeviceList list(link);
  if (list.error() != 0) return usbOpenFailure(list.error());
  const auto matches = list.matching(name);
  if (matches.empty()) return {kDeviceAbsent, 0};
  libusb_device* device = nullptr;
  const Outcome opened =
      name.serial.empty() ? openOnly(link, matches, device) : openBySerial(link, matches, name.serial, device);
  return opened.ok() ? claim(link, device) : opened;
}

}  // namespace

Outcome connectUsb(const DeviceName& name, UsbCalls& calls, std::unique_ptr<Transport>& connection) {
  connection.reset();
  auto link = std::make_unique<UsbLink>(calls);
  if (const Outcome opened = openDevice(*link, name); !opened.ok()) return opened;
  auto transport = std::make_unique<UsbTransport>(std::move(link));
  const Outcome started = transport->start();
  if (started.ok()) connection = std::move(transport);
  return started;
}

}  // namespace device_access
