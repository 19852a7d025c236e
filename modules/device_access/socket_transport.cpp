#include "socket_transport.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

namespace device_access {
namespace {

Outcome lost(int error) { return {kLost, static_cast<std::uint32_t>(error)}; }

bool wouldBlock(int error) { return error == EAGAIN || error == EWOULDBLOCK; }

}  // namespace

int waitForSocket(int descriptor, short events, Clock::time_point deadline) {
  pollfd entry{descriptor, events, 0};
  while (true) {
    // Rounded up, so that the last millisecond is slept and not spun through.
    const auto left = std::chrono::ceil<Milliseconds>(deadline - Clock::now()).count();
    const int ready = poll(&entry, 1, static_cast<int>(std::clamp<decltype(left)>(left, 0, INT_MAX)));
    if (ready >= 0 || errno != EINTR) return ready;
  }
}

SocketTransport::~SocketTransport() { close(descriptor_); }

Outcome SocketTransport::receive(std::span<std::byte> buffer, Milliseconds wait, std::size_t& received) {
  received = 0;
  const Clock::time_point deadline = Clock::now() + wait;
  while (true) {
    // A busy stream is served without asking poll first.
    const ssize_t got = recv(descriptor_, buffer.data(), buffer.size(), 0);
    if (got > 0) {
      received = static_cast<std::size_t>(got);
      return {};
    }
    if (got == 0) return lost(0);
    if (errno == EINTR) continue;
    if (!wouldBlock(errno)) return lost(errno);
    const int ready = waitForSocket(descriptor_, POLLIN, deadline);
    if (ready == 0) return {};
    if (ready < 0) return lost(errno);
  }
}

Outcome SocketTransport::send(std::span<const std::byte> data, Milliseconds wait) {
  const Clock::time_point deadline = Clock::now() + wait;
  std::size_t sent = 0;
  while (sent < data.size()) {
    const ssize_t taken = ::send(descriptor_, data.data() + sent, data.size() - sent, MSG_NOSIGNAL);
    if (taken >= 0) {
      sent += static_cast<std::size_t>(taken);
      continue;
    }
    if (errno == EINTR) continue;
    if (!wouldBlock(errno)) return lost(errno);
    const int ready = waitForSocket(descriptor_, POLLOUT, deadline);
    if (ready == 0) return {kWriteTimeout, static_cast<std::uint32_t>(sent)};
    if (ready < 0) return lost(errno);
  }
  return {};
}

bool SocketTransport::peerGone() {
  char byte;
  const ssize_t got = recv(descriptor_, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
  return got == 0 || (got < 0 && !wouldBlock(errno) && errno != EINTR);
}

}  // namespace device_access
