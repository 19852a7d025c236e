#include "usb_transfer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "usb_error.h"

namespace device_access {

UsbTransfer::UsbTransfer(UsbLink& link, std::uint8_t endpoint, std::size_t bufferBytes)
    : link_(link),
      buffer_(new std::byte[bufferBytes]),
      bufferBytes_(bufferBytes),
      endpoint_(endpoint),
      transfer_(libusb_alloc_transfer(0)) {
  if (transfer_ == nullptr) throw std::bad_alloc();
}

UsbTransfer::~UsbTransfer() { libusb_free_transfer(transfer_); }

void UsbTransfer::submit(std::span<const std::byte> data) {
  const std::size_t bytes = std::min(data.size(), bufferBytes_);
  std::memcpy(buffer_.get(), data.data(), bytes);
  start(bytes);
}

void UsbTransfer::submit() { start(bufferBytes_); }

void UsbTransfer::start(std::size_t bytes) {
  // No time-out of libusb's: whoever waits has a deadline, and a transfer may wait longer than any of them.
  libusb_fill_bulk_transfer(transfer_, link_.handle, endpoint_, reinterpret_cast<unsigned char*>(buffer_.get()),
                            static_cast<int>(bytes), ended, this, 0);
  cancelled_ = false;
  transferred_ = 0;
  taken_ = 0;
  inFlight_ = true;
  error_ = errnoOfUsbCall(link_.calls.submitTransfer(transfer_));
  if (error_ != 0) inFlight_ = false;
}

void UsbTransfer::cancel() {
  if (!inFlight_) return;
  cancelled_ = true;
  link_.calls.cancelTransfer(transfer_);  // one that has just ended by itself is noticed like any other
}

void LIBUSB_CALL UsbTransfer::ended(libusb_transfer* transfer) {
  auto& self = *static_cast<UsbTransfer*>(transfer->user_data);
  self.inFlight_ = false;
  self.error_ = errnoOfTransfer(transfer->status);
  self.transferred_ = static_cast<std::size_t>(std::clamp(transfer->actual_length, 0, transfer->length));
}

int UsbTransfer::error() const { return error_ == ECANCELED && cancelled_ ? 0 : error_; }

std::size_t UsbTransfer::take(std::span<std::byte> out) {
  const std::size_t bytes = std::min(out.size(), transferred_ - taken_);
  if (bytes > 0) std::memcpy(out.data(), buffer_.get() + taken_, bytes);
  taken_ += bytes;
  return bytes;
}

}  // namespace device_access
