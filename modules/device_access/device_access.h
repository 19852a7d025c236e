// IDeviceAccess over a byte stream: what a read waits for, what a failure leaves behind.
//
// A byte stream keeps no message boundaries, while the command layer takes an answer's head from one read. So a read of
// at most kCommandReadBytes goes on until kAnswerHeadBytes are there or kAnswerPause passes without a further byte. A
// larger read belongs to the image stream and returns what is there.
//
// Threads: one caller at a time.
#pragma once

#include <memory>

#include "modules/DeviceAccess.h"
#include "transport.h"
#include "usb_calls.h"

namespace device_access {

inline constexpr std::size_t kCommandReadBytes = 0x40000;
inline constexpr std::size_t kAnswerHeadBytes = 16;
inline constexpr Milliseconds kAnswerPause{10};
inline constexpr Milliseconds kStreamPause{250};  // the reader gets its turn this often while the device is silent
inline constexpr Milliseconds kWriteWait{10000};

class DeviceAccess final : public orvalle_scan_api::IDeviceAccess {
 public:
  // USB devices are reached through usb, which must outlive the object.
  explicit DeviceAccess(UsbCalls& usb = systemUsb()) : usb_(usb) {}

  void SetClientId(const char* id) override;
  void ReservedFirst() override {}
  void ReservedSecond() override {}
  int Open(orvalle_scan_api::_DEV_IDENTIFIER& id) override;
  void Close() override;
  bool IsOpen() override;
  int Read(void* buffer, unsigned int size, unsigned int wanted, long timeOutMs) override;
  int Write(const void* data, int size, int flags) override;

 private:
  int readAnswer(std::span<std::byte> buffer, Milliseconds wait);
  int readStream(std::span<std::byte> buffer, Milliseconds wait);
  Outcome open(const orvalle_scan_api::_DEV_IDENTIFIER& id);
  int tell(const Outcome& outcome, int value);
  int lose(const Outcome& outcome);

  UsbCalls& usb_;
  std::unique_ptr<Transport> connection_;
  Milliseconds streamSilence_{0};  // waited in stream reads since the last byte in either direction
  bool betweenCommands_ = false;   // nothing was asked that has not been answered
};

}  // namespace device_access
