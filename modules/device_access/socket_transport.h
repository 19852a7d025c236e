// A stream socket as Transport: TCP and Unix sockets alike.
#pragma once

#include <cerrno>

#include "transport.h"

namespace device_access {

// Waits until one of events is there, at most INT_MAX milliseconds. Above 0 ready, 0 time is up, below 0 failure with
// errno set. Interruptions by signals are waited out.
int waitForSocket(int descriptor, short events, Clock::time_point deadline);

class SocketTransport final : public Transport {
 public:
  // Owns descriptor, a connected socket in non-blocking mode.
  explicit SocketTransport(int descriptor) : descriptor_(descriptor) {}
  ~SocketTransport() override;
  SocketTransport(const SocketTransport&) = delete;
  SocketTransport& operator=(const SocketTransport&) = delete;

  Outcome receive(std::span<std::byte> buffer, Milliseconds wait, std::size_t& received) override;
  Outcome send(std::span<const std::byte> data, Milliseconds wait) override;
  bool peerGone() override;

 private:
  const int descriptor_;
};

}  // namespace device_access
