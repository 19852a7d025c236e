// A USB bus in memory behind the calls of libusb: devices, their descriptors, and a transfer engine whose every step is
// the test's. It ends transfers only inside handleEvents, as libusb does.
// Threads: the device's side (send, end, unplug, ...) may run in a thread of its own.
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "modules/device_access/usb_calls.h"

namespace module_test {

struct FakeEndpoint {
  std::uint8_t address;
  std::uint8_t attributes;
};
using FakeSetting = std::vector<FakeEndpoint>;

inline constexpr std::uint8_t kInterrupt = LIBUSB_ENDPOINT_TRANSFER_TYPE_INTERRUPT;
inline constexpr std::uint8_t kBulk = LIBUSB_ENDPOINT_TRANSFER_TYPE_BULK;
inline constexpr std::uint8_t kIn = 0x81;
inline constexpr std::uint8_t kOut = 0x02;

struct FakeDevice {
  std::uint16_t vendor = 0xfff0;
  std::uint16_t product = 0x00a1;
  std::string serial;                                                                    // empty: it has none
  std::vector<std::vector<FakeSetting>> interfaces = {{{{kIn, kBulk}, {kOut, kBulk}}}};  // each with its settings
  int openError = 0;
  int serialError = 0;
  int configError = 0;
  int claimError = 0;
};

class FakeUsb final : public device_access::UsbCalls {
 public:
  // The bus. Filled before it is used.
  std::list<FakeDevice> devices;
  int initError = 0;
  std::map<int, int> submitErrors;  // by number of the submission, counted from 1
  int failingCall = 0;              // the n-th call that can fail does, counted from 1
  bool keepsCancelled = false;      // cancelled transfers do not end

  // What was asked of it, oldest first: "claim 0", "setting 0 1", "clear 81", "release 0", "close", "exit".
  std::vector<std::string> log() const { return locked(log_); }
  int calls() const { return locked(calls_); }
  bool nothingLeft() const {
    const std::lock_guard lock(mutex_);
    return contexts_ == 0 && lists_ == 0 && configs_.empty() && handles_.empty() && pending_.empty() && done_.empty();
  }
  std::size_t inFlight() const { return locked(pending_).size(); }
  int largestTransfer() const { return locked(largestTransfer_); }
  std::string written() const { return locked(written_); }
  bool starved() const { return locked(starved_); }  // the device had something to send and no transfer waited

  // The device sends bytes; the last packet is short, which ends the transfer, unless wholePackets.
  void send(std::string_view bytes, bool wholePackets = false) {
    const std::lock_guard lock(mutex_);
    outbox_.push_back({std::string(bytes), !wholePackets});
    fillTransfers();
  }
  // Ends the n-th waiting transfer from the device, counted from 0, whatever the others do.
  void end(std::size_t n, int status, std::string_view bytes = {}) {
    const std::lock_guard lock(mutex_);
    const auto transfer = nthIn(n);
    if (transfer == pending_.end()) return;
    append(*transfer, bytes);
    finish(transfer, status);
  }
  // From now on the device always has something more to send.
  void neverFallSilent() {
    const std::lock_guard lock(mutex_);
    endless_ = true;
    fillTransfers();
  }
  void unplug() {
    const std::lock_guard lock(mutex_);
    unplugged_ = true;
    while (!pending_.empty()) finish(pending_.begin(), LIBUSB_TRANSFER_NO_DEVICE);
  }
  void halt(std::uint8_t endpoint) {
    const std::lock_guard lock(mutex_);
    halted_.push_back(endpoint);
  }
  // What becomes of transfers to the device: they end with status once takenBytes are taken; -1: all of them.
  void take(int status, int takenBytes = -1) {
    const std::lock_guard lock(mutex_);
    outStatus_ = status;
    outBytes_ = takenBytes;
  }
  static constexpr int kNever = -1;  // as status: a transfer to the device does not end by itself
  void failEvents(int error, int times) {
    const std::lock_guard lock(mutex_);
    eventError_ = error;
    eventErrors_ = times;
  }

  int init(libusb_context** context) override {
    const std::lock_guard lock(mutex_);
    if (const int error = fault(initError); error != 0) return error;
    ++contexts_;
    *context = reinterpret_cast<libusb_context*>(this);
    return 0;
  }
  void exit(libusb_context*) override {
    const std::lock_guard lock(mutex_);
    log_.push_back("exit");
    --contexts_;
  }
  ssize_t getDeviceList(libusb_context*, libusb_device*** list) override {
    const std::lock_guard lock(mutex_);
    if (const int error = fault(0); error != 0) return error;
    ++lists_;
    list_.clear();
    for (FakeDevice& device : devices) list_.push_back(reinterpret_cast<libusb_device*>(&device));
    *list = list_.data();
    return static_cast<ssize_t>(list_.size());
  }
  void freeDeviceList(libusb_device**) override {
    const std::lock_guard lock(mutex_);
    --lists_;
  }
  int getDeviceDescriptor(libusb_device* device, libusb_device_descriptor* descriptor) override {
    const std::lock_guard lock(mutex_);
    const auto& fake = *reinterpret_cast<FakeDevice*>(device);
    descriptor->idVendor = fake.vendor;
    descriptor->idProduct = fake.product;
    descriptor->iSerialNumber = fake.serial.empty() ? 0 : 3;
    return fault(0);
  }
  int getActiveConfigDescriptor(libusb_device* device, libusb_config_descriptor** descriptor) override {
    const std::lock_guard lock(mutex_);
    const auto& fake = *reinterpret_cast<FakeDevice*>(device);
    if (const int error = fault(fake.configError); error != 0) return error;
    *descriptor = &configs_.emplace_back(fake).descriptor;
    return 0;
  }
  void freeConfigDescriptor(libusb_config_descriptor* descriptor) override {
    const std::lock_guard lock(mutex_);
    configs_.remove_if([descriptor](const Config& config) { return &config.descriptor == descriptor; });
  }
  int open(libusb_device* device, libusb_device_handle** handle) override {
    const std::lock_guard lock(mutex_);
    auto* fake = reinterpret_cast<FakeDevice*>(device);
    if (const int error = fault(fake->openError); error != 0) return error;
    *handle = reinterpret_cast<libusb_device_handle*>(&handles_.emplace_back(Handle{fake}));
    return 0;
  }
  void close(libusb_device_handle* handle) override {
    const std::lock_guard lock(mutex_);
    log_.push_back("close");
    handles_.remove_if([handle](const Handle& open) { return &open == reinterpret_cast<Handle*>(handle); });
  }
  int getStringDescriptorAscii(libusb_device_handle* handle, std::uint8_t index, unsigned char* text,
                               int textBytes) override {
    const std::lock_guard lock(mutex_);
    const FakeDevice& fake = *reinterpret_cast<Handle*>(handle)->device;
    if (const int error = fault(fake.serialError); error != 0) return error;
    if (index != 3) return LIBUSB_ERROR_INVALID_PARAM;
    const std::size_t bytes = std::min(fake.serial.size(), static_cast<std::size_t>(textBytes) - 1);
    std::memcpy(text, fake.serial.c_str(), bytes + 1);
    return static_cast<int>(bytes);
  }
  int setAutoDetachKernelDriver(libusb_device_handle*, int enable) override {
    const std::lock_guard lock(mutex_);
    log_.push_back("detach " + std::to_string(enable));
    return 0;
  }
  int claimInterface(libusb_device_handle* handle, int interface) override {
    const std::lock_guard lock(mutex_);
    log_.push_back("claim " + std::to_string(interface));
    return fault(reinterpret_cast<Handle*>(handle)->device->claimError);
  }
  int releaseInterface(libusb_device_handle*, int interface) override {
    const std::lock_guard lock(mutex_);
    log_.push_back("release " + std::to_string(interface));
    return 0;
  }
  int setInterfaceAltSetting(libusb_device_handle*, int interface, int setting) override {
    const std::lock_guard lock(mutex_);
    log_.push_back("setting " + std::to_string(interface) + " " + std::to_string(setting));
    return fault(0);
  }
  int clearHalt(libusb_device_handle*, std::uint8_t endpoint) override {
    const std::lock_guard lock(mutex_);
    log_.push_back(endpoint == kIn ? "clear in" : "clear out");
    std::erase(halted_, endpoint);
    return 0;
  }

  int submitTransfer(libusb_transfer* transfer) override {
    const std::lock_guard lock(mutex_);
    const auto planned = submitErrors.find(++submissions_);
    if (const int error = fault(planned == submitErrors.end() ? 0 : planned->second); error != 0) return error;
    if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
    if (find(transfer) != pending_.end()) return LIBUSB_ERROR_BUSY;
    largestTransfer_ = std::max(largestTransfer_, transfer->length);
    const auto added = pending_.insert(pending_.end(), {transfer});
    if (std::find(halted_.begin(), halted_.end(), transfer->endpoint) != halted_.end()) {
      finish(added, LIBUSB_TRANSFER_STALL);
    } else if (transfer->endpoint == kOut) {
      receive(added);
    } else {
      fillTransfers();
    }
    return 0;
  }
  int cancelTransfer(libusb_transfer* transfer) override {
    const std::lock_guard lock(mutex_);
    const auto found = find(transfer);
    if (found == pending_.end()) return LIBUSB_ERROR_NOT_FOUND;
    if (keepsCancelled) {
      kept_.push_back(transfer);
    } else {
      finish(found, LIBUSB_TRANSFER_CANCELLED);
    }
    return 0;
  }
  int handleEvents(libusb_context*, timeval* wait) override {
    std::deque<Done> ended;
    {
      std::unique_lock lock(mutex_);
      if (eventErrors_ > 0) {
        --eventErrors_;
        return eventError_;
      }
      if (const int error = fault(0); error != 0) return error;
      const auto until = std::chrono::system_clock::now() + std::chrono::seconds(wait->tv_sec) +
                         std::chrono::microseconds(wait->tv_usec);
      changed_.wait_until(lock, until, [this] { return !done_.empty(); });
      ended.swap(done_);
    }
    for (const Done& done : ended) {
      done.transfer->status = static_cast<libusb_transfer_status>(done.status);
      done.transfer->actual_length = done.bytes;
      done.transfer->callback(done.transfer);
    }
    return 0;
  }

 private:
  struct Handle {
    FakeDevice* device;
  };
  struct Pending {
    libusb_transfer* transfer;
    int bytes = 0;
  };
  struct Done {
    libusb_transfer* transfer;
    int status;
    int bytes;
  };
  struct Message {
    std::string bytes;
    bool endsShort;
  };
  // libusb's tree of descriptors with what it points to.
  struct Config {
    explicit Config(const FakeDevice& device) {
      for (const auto& settings : device.interfaces) {
        auto& described = settingLists.emplace_back();
        for (const FakeSetting& setting : settings) {
          auto& endpoints = endpointLists.emplace_back();
          for (const FakeEndpoint& endpoint : setting) {
            auto& added = endpoints.emplace_back();
            added.bEndpointAddress = endpoint.address;
            added.bmAttributes = endpoint.attributes;
          }
          auto& added = described.emplace_back();
          added.bInterfaceNumber = static_cast<std::uint8_t>(interfaces.size());
          added.bAlternateSetting = static_cast<std::uint8_t>(described.size() - 1);
          added.bNumEndpoints = static_cast<std::uint8_t>(endpoints.size());
          added.endpoint = endpoints.data();
        }
        interfaces.push_back({described.data(), static_cast<int>(described.size())});
      }
      descriptor.bNumInterfaces = static_cast<std::uint8_t>(interfaces.size());
      descriptor.interface = interfaces.data();
    }
    std::list<std::vector<libusb_endpoint_descriptor>> endpointLists;
    std::list<std::vector<libusb_interface_descriptor>> settingLists;
    std::vector<libusb_interface> interfaces;
    libusb_config_descriptor descriptor{};
  };
  using PendingList = std::list<Pending>;

  template <class Value>
  Value locked(const Value& value) const {
    const std::lock_guard lock(mutex_);
    return value;
  }

  int fault(int planned) { return ++calls_ == failingCall ? LIBUSB_ERROR_IO : planned; }
  PendingList::iterator find(const libusb_transfer* transfer) {
    return std::find_if(pending_.begin(), pending_.end(), [&](const Pending& p) { return p.transfer == transfer; });
  }
  PendingList::iterator nthIn(std::size_t n) {
    return std::find_if(pending_.begin(), pending_.end(),
                        [&n](const Pending& p) { return p.transfer->endpoint == kIn && n-- == 0; });
  }
  static std::size_t append(Pending& pending, std::string_view bytes) {
    const auto room = static_cast<std::size_t>(pending.transfer->length - pending.bytes);
    const std::size_t count = std::min(room, bytes.size());
    std::copy_n(bytes.begin(), count, pending.transfer->buffer + pending.bytes);
    pending.bytes += static_cast<int>(count);
    return count;
  }
  void finish(PendingList::iterator pending, int status) {
    done_.push_back({pending->transfer, status, pending->bytes});
    pending_.erase(pending);
    changed_.notify_all();
  }
  void fillTransfers() {
    if (endless_ && outbox_.empty()) outbox_.push_back({std::string(1000, 's'), true});
    while (!outbox_.empty()) {
      const auto oldest = nthIn(0);
      if (oldest == pending_.end()) {
        starved_ = true;
        return;
      }
      Message& message = outbox_.front();
      message.bytes.erase(0, append(*oldest, message.bytes));
      const bool ended = message.bytes.empty();
      if (oldest->bytes == oldest->transfer->length || (ended && message.endsShort)) {
        finish(oldest, LIBUSB_TRANSFER_COMPLETED);
      }
      if (ended) outbox_.pop_front();
    }
  }
  void receive(PendingList::iterator out) {
    const int bytes = outBytes_ < 0 ? out->transfer->length : std::min(outBytes_, out->transfer->length);
    written_.append(reinterpret_cast<const char*>(out->transfer->buffer), static_cast<std::size_t>(bytes));
    out->bytes = bytes;
    if (outStatus_ != kNever) finish(out, outStatus_);
  }

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::string> log_;
  std::vector<libusb_device*> list_;
  std::list<Config> configs_;
  std::list<Handle> handles_;
  PendingList pending_;
  std::deque<Done> done_;
  std::deque<Message> outbox_;
  std::vector<std::uint8_t> halted_;
  std::vector<libusb_transfer*> kept_;
  std::string written_;
  int contexts_ = 0;
  int lists_ = 0;
  int calls_ = 0;
  int submissions_ = 0;
  int largestTransfer_ = 0;
  int outStatus_ = LIBUSB_TRANSFER_COMPLETED;
  int outBytes_ = -1;
  int eventError_ = 0;
  int eventErrors_ = 0;
  bool endless_ = false;
  bool unplugged_ = false;
  bool starved_ = false;
};

}  // namespace module_test
