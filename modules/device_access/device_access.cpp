#include "device_access.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <exception>

#include "connect.h"

namespace device_access {

// Neither sockets nor USB carry a name of the driver.
void DeviceAccess::SetClientId(const char*) { tell({}, 0); }

int DeviceAccess::Open(orvalle_scan_api::_DEV_IDENTIFIER& id) {
  Close();
  Outcome outcome;
  try {
    outcome = open(id);
  } catch (const std::exception&) {
    outcome = {kNoResource, ENOMEM};
  }
  return tell(outcome, static_cast<int>(outcome.result));
}

Outcome DeviceAccess::open(const orvalle_scan_api::_DEV_IDENTIFIER& id) {
  DeviceName name;
  const NameFault fault = parseDeviceName(id.connection, id.name != nullptr ? id.name : "", name);
  if (fault != NameFault::None) return {kNameRefused, static_cast<std::uint32_t>(fault)};
  const Outcome outcome = connectDevice(name, usb_, connection_);
  betweenCommands_ = outcome.ok();
  return outcome;
}

void DeviceAccess::Close() {
  connection_.reset();
  betweenCommands_ = false;
  streamSilence_ = {};
  tell({}, 0);
}

bool DeviceAccess::IsOpen() {
  // Looked for between commands only, so that the next command opens anew after the device has closed an idle
  // connection. While an answer or the image stream is awaited, Read must be the one to find out: a reader that saw
  // "not open" before it saw the failure would never learn that there was one.
  if (connection_ && betweenCommands_ && connection_->peerGone()) connection_.reset();
  return connection_ != nullptr;
}

int DeviceAccess::Read(void* buffer, unsigned int size, unsigned int, long timeOutMs) {
  if (!connection_) return tell({kNotOpen}, -1);
  if (buffer == nullptr) return tell({kBadArgument}, -1);
  if (size == 0) return tell({}, 0);
  const std::span bytes(static_cast<std::byte*>(buffer), std::min<std::size_t>(size, INT_MAX));
  const Milliseconds wait(std::clamp<long>(timeOutMs, 0, INT_MAX));
  return size > kCommandReadBytes ? readStream(bytes, wait) : readAnswer(bytes, wait);
}

int DeviceAccess::readAnswer(std::span<std::byte> buffer, Milliseconds wait) {
  streamSilence_ = {};
  const std::size_t enough = std::min(buffer.size(), kAnswerHeadBytes);
  std::size_t received = 0;
  Milliseconds pause = wait;
  do {
    std::size_t got = 0;
    const Outcome outcome = connection_->receive(buffer.subspan(received), pause, got);
    if (!outcome.ok() && received == 0) return lose(outcome);
    if (got == 0) break;  // silence, or a loss that the next read tells
    received += got;
    pause = std::min(wait, kAnswerPause);
  } while (received < enough);
  if (received == 0) return tell({kReadTimeout}, 0);
  betweenCommands_ = true;
  return tell({}, static_cast<int>(received));
}

int DeviceAccess::readStream(std::span<std::byte> buffer, Milliseconds wait) {
  betweenCommands_ = false;
  const Milliseconds pause = std::clamp(wait - streamSilence_, Milliseconds(0), kStreamPause);
  std::size_t received = 0;
  const Outcome outcome = connection_->receive(buffer, pause, received);
  if (!outcome.ok()) return lose(outcome);
  streamSilence_ = received > 0 ? Milliseconds(0) : streamSilence_ + pause;
  if (received > 0 || streamSilence_ < wait) return tell({}, static_cast<int>(received));
  streamSilence_ = {};
  return tell({kReadTimeout}, 0);
}

int DeviceAccess::Write(const void* data, int size, int) {
  if (!connection_) return tell({kNotOpen}, -1);
  if (data == nullptr || size < 0) return tell({kBadArgument}, -1);
  betweenCommands_ = false;
  streamSilence_ = {};
  const Outcome outcome =
      connection_->send({static_cast<const std::byte*>(data), static_cast<std::size_t>(size)}, kWriteWait);
  return outcome.ok() ? tell(outcome, size) : lose(outcome);
}

int DeviceAccess::tell(const Outcome& outcome, int value) {
  lastResult = outcome.result;
  lastDetail = outcome.detail;
  return value;
}

int DeviceAccess::lose(const Outcome& outcome) {
  connection_.reset();
  betweenCommands_ = false;
  return tell(outcome, -1);
}

}  // namespace device_access
