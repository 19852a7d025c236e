// One bulk transfer with its buffer, used over and over.
// Threads: one caller at a time; its end is noticed while that caller handles events.
#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "usb_link.h"

namespace device_access {

class UsbTransfer {
 public:
  // Throws std::bad_alloc. link must outlive the transfer.
  UsbTransfer(UsbLink& link, std::uint8_t endpoint, std::size_t bufferBytes);
  // Must not be in flight: the system would write into freed memory.
  ~UsbTransfer();
  UsbTransfer(const UsbTransfer&) = delete;
  UsbTransfer& operator=(const UsbTransfer&) = delete;

  // To the device: sends a copy of data, at most as large as the buffer. From the device: asks for a whole buffer.
  // A transfer that is refused has ended at once, with its error.
  void submit(std::span<const std::byte> data);
  void submit();

  // Asks for the end of a transfer in flight. It ends with what it holds, without an error.
  void cancel();

  bool inFlight() const { return inFlight_; }

  // The rest is about a transfer that has ended. error is 0 or an error number of the system.
  int error() const;
  std::size_t transferredBytes() const { return transferred_; }
  bool hasData() const { return taken_ < transferred_; }
  // Copies what has not been taken yet, as far as it fits, and returns the number of bytes.
  std::size_t take(std::span<std::byte> out);

 private:
  void start(std::size_t bytes);
  static void LIBUSB_CALL ended(libusb_transfer* transfer);

  UsbLink& link_;
  const std::unique_ptr<std::byte[]> buffer_;
  const std::size_t bufferBytes_;
  const std::uint8_t endpoint_;
  libusb_transfer* const transfer_;
  bool inFlight_ = false;
  bool cancelled_ = false;  // by us
  int error_ = 0;
  std::size_t transferred_ = 0;
  std::size_t taken_ = 0;
};

}  // namespace device_access
