#include "usb_transport.h"

#include <algorithm>
#include <cerrno>

#include "usb_error.h"

namespace device_access {
namespace {

Outcome lost(int errorNumber) { return {kLost, static_cast<std::uint32_t>(errorNumber)}; }

// One call of libusb waits no longer than this; its own sum of milliseconds is an int.
constexpr std::chrono::microseconds kLongestEventWait = std::chrono::minutes(1);

}  // namespace

UsbTransport::~UsbTransport() {
  cancelAll();
  clearStalls();
  const auto giveUp = [](std::unique_ptr<UsbTransfer>& transfer) {
    if (transfer && transfer->inFlight()) static_cast<void>(transfer.release());
  };
  std::for_each(ring_.begin(), ring_.end(), giveUp);
  giveUp(out_);
}

Outcome UsbTransport::start() {
  out_ = std::make_unique<UsbTransfer>(*link_, link_->outEndpoint, kTransferBytes);
  Outcome outcome = submitAll();
  if (outcome.ok()) outcome = drain();
  if (outcome.result != kLost || outcome.detail != EPIPE) return outcome;
  // Halted by an earlier connection: once more, from the beginning.
  cancelAll();
  clearStalls();
  outcome = submitAll();
  return outcome.ok() ? drain() : outcome;
}

Outcome UsbTransport::submitAll() {
  oldest_ = 0;
  for (std::size_t i = 0; i < kTransfersInFlight; ++i) {
    if (i == ring_.size()) {
      ring_.push_back(std::make_unique<UsbTransfer>(*link_, link_->inEndpoint, kTransferBytes));
    }
    if (ring_[i]->inFlight()) return usbOpenFailure(EIO);  // a cancelled one that the system keeps
    ring_[i]->submit();
    if (ring_[i]->inFlight()) continue;
    const int error = ring_[i]->error();
    if (i == 0 || error != ENOMEM) return usbOpenFailure(error);
    ring_.resize(i);  // the memory for USB transfers is used up by others: fewer of them work as well
    break;
  }
  return {};
}

Outcome UsbTransport::drain() {
  const auto leftovers = std::make_unique<std::byte[]>(kTransferBytes);
  const Clock::time_point giveUp = Clock::now() + kDrainWait;
  while (Clock::now() < giveUp) {
    std::size_t received = 0;
    const Outcome outcome = receive({leftovers.get(), kTransferBytes}, kDrainPause, received);
    if (!outcome.ok() || received == 0) return outcome;
  }
  return {kDeviceBusy, EAGAIN};
}

Outcome UsbTransport::receive(std::span<std::byte> buffer, Milliseconds wait, std::size_t& received) {
  received = 0;
  const Clock::time_point deadline = Clock::now() + wait;
  int error = handleEvents(Clock::now());
  bool timeUp = false;
  while (true) {
    const Outcome outcome = take(buffer, received);
    if (received > 0 || !outcome.ok()) return outcome;
    if (error != 0) return lost(error);
    if (timeUp) return {};
    UsbTransfer& oldest = *ring_[oldest_];
    error = waitFor(oldest, std::min(deadline, Clock::now() + kFlushPause));
    timeUp = Clock::now() >= deadline;
    if (error == 0 && oldest.inFlight()) {
      oldest.cancel();
      error = waitFor(oldest, Clock::now() + kReapWait);
    }
  }
}

Outcome UsbTransport::take(std::span<std::byte> buffer, std::size_t& received) {
  while (received < buffer.size()) {
    UsbTransfer& oldest = *ring_[oldest_];
    if (oldest.inFlight()) break;
    received += oldest.take(buffer.subspan(received));
    if (oldest.hasData()) break;
    if (const int error = oldest.error(); error != 0 && error != ETIMEDOUT) {
      return received > 0 ? Outcome{} : lost(error);
    }
    oldest.submit();
    oldest_ = (oldest_ + 1) % ring_.size();
  }
  return {};
}

Outcome UsbTransport::send(std::span<const std::byte> data, Milliseconds wait) {
  const Clock::time_point deadline = Clock::now() + wait;
  std::size_t sent = 0;
  while (sent < data.size()) {
    if (out_->inFlight() || Clock::now() >= deadline) return {kWriteTimeout, static_cast<std::uint32_t>(sent)};
    out_->submit(data.subspan(sent));
    int error = waitFor(*out_, deadline);
    if (out_->inFlight()) {
      out_->cancel();
      const int reapError = waitFor(*out_, Clock::now() + kReapWait);
      if (error == 0) error = reapError;
    }
    if (error != 0) return lost(error);
    if (out_->inFlight()) continue;
    sent += out_->transferredBytes();
    error = out_->error();
    if (error != 0 && error != ETIMEDOUT) return lost(error);
  }
  return {};
}

bool UsbTransport::peerGone() {
  if (handleEvents(Clock::now()) != 0) return true;
  for (std::size_t i = 0; i < ring_.size(); ++i) {
    const UsbTransfer& transfer = *ring_[(oldest_ + i) % ring_.size()];
    if (transfer.inFlight() || transfer.hasData()) return false;
    if (transfer.error() != 0 && transfer.error() != ETIMEDOUT) return true;
  }
  return false;
}

int UsbTransport::handleEvents(Clock::time_point deadline) {
  const auto left = std::clamp(std::chrono::ceil<std::chrono::microseconds>(deadline - Clock::now()),
                               std::chrono::microseconds(0), kLongestEventWait);
  timeval wait{static_cast<time_t>(left.count() / 1000000), static_cast<suseconds_t>(left.count() % 1000000)};
  const int error = link_->calls.handleEvents(link_->context, &wait);
  return error == LIBUSB_ERROR_INTERRUPTED ? 0 : errnoOfUsbCall(error);
}

int UsbTransport::waitFor(const UsbTransfer& transfer, Clock::time_point deadline) {
  int error = 0;
  do {
    error = handleEvents(deadline);
  } while (error == 0 && transfer.inFlight() && Clock::now() < deadline);
  return error;
}

void UsbTransport::cancelAll() {
  if (out_) out_->cancel();
  // The newest first, so that none of them begins to receive what an older one no longer does.
  for (std::size_t i = ring_.size(); i > 0; --i) ring_[(oldest_ + i - 1) % ring_.size()]->cancel();
  const Clock::time_point giveUp = Clock::now() + kReapWait;
  for (const auto& transfer : ring_) {
    if (transfer->inFlight() && waitFor(*transfer, giveUp) != 0) return;
  }
  if (out_ && out_->inFlight()) waitFor(*out_, giveUp);
}

// A halted endpoint stays so until it is told otherwise, also for the next connection.
void UsbTransport::clearStalls() {
  const auto stalled = [](const auto& transfer) { return transfer && transfer->error() == EPIPE; };
  if (std::any_of(ring_.begin(), ring_.end(), stalled)) link_->calls.clearHalt(link_->handle, link_->inEndpoint);
  if (stalled(out_)) link_->calls.clearHalt(link_->handle, link_->outEndpoint);
}

}  // namespace device_access
