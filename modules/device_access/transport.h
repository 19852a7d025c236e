// A connection to a device, whatever carries it: bytes in, bytes out, each with a time-out, no policy.
// Threads: one caller at a time.
#pragma once

#include <chrono>
#include <cstddef>
#include <span>

#include "device_result.h"

namespace device_access {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

class Transport {
 public:
  virtual ~Transport() = default;

  // Waits at most wait for the first byte, then takes what is there, at most buffer.size() bytes, and stores their
  // number in received. 0 bytes with a successful outcome mean silence. A failure is final: the connection is gone.
  virtual Outcome receive(std::span<std::byte> buffer, Milliseconds wait, std::size_t& received) = 0;

  // Sends all of data. kWriteTimeout when the device did not take it within wait; the connection is of no use then,
  // since the device holds part of a frame.
  virtual Outcome send(std::span<const std::byte> data, Milliseconds wait) = 0;

  // True when the device is known to have closed and nothing that it sent is left to receive.
  virtual bool peerGone() = 0;
};

}  // namespace device_access
