#include "net/connection.h"

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace vscan {
namespace {

// A host that sends more than this while it reads nothing is not talking to a scanner.
constexpr std::size_t kMaxPendingBytes = 64 * 1024;

int millisecondsUntil(Connection::Clock::time_point time) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Connection::Clock::now());
  return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
}

}  // namespace

Connection::Connection(UniqueFd socket, int stopFd, Drip drip)
    : socket_(std::move(socket)), stopFd_(stopFd), drip_(drip) {}

bool Connection::waitFor(short events, std::optional<Clock::time_point> until, short& happened) {
  happened = 0;
  if (!socket_) return false;
  const bool canRead = reader_.pendingBytes() < kMaxPendingBytes;
  pollfd watched[2] = {{socket_.get(), static_cast<short>(events | (canRead ? POLLIN : 0)), 0}, {stopFd_, POLLIN, 0}};
  if (::poll(watched, 2, until ? millisecondsUntil(*until) : -1) < 0) return errno == EINTR;
  if (watched[1].revents != 0) return false;
  happened = watched[0].revents;
  if ((happened & POLLIN) != 0) return readInput();
  return (happened & (POLLERR | POLLHUP | POLLNVAL)) == 0;
}

bool Connection::readInput() {
  std::array<std::uint8_t, 4096> bytes;
  const auto count = ::recv(socket_.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
  if (count > 0) {
    reader_.feed({bytes.data(), static_cast<std::size_t>(count)});
    return true;
  }
  return count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
}

std::optional<Command> Connection::waitForCommand() {
  for (;;) {
    if (auto command = reader_.next()) return command;
    short happened = 0;
    if (!waitFor(POLLIN, std::nullopt, happened)) return std::nullopt;
  }
}

bool Connection::send(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const std::size_t count = drip_.chunkBytes == 0 ? bytes.size() : std::min(drip_.chunkBytes, bytes.size());
    if (!sendChunk(bytes.first(count))) return false;
    bytes = bytes.subspan(count);
    if (!pause(drip_.pause)) return false;
  }
  return isOpen();
}

bool Connection::collect() {
  short happened = 0;
  return waitFor(0, Clock::now(), happened) && isOpen();
}

bool Connection::pause(std::chrono::milliseconds time) {
  const auto end = Clock::now() + time;
  short happened = 0;
  while (Clock::now() < end) {
    if (!waitFor(0, end, happened)) return false;
  }
  return isOpen();
}

bool Connection::sendChunk(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    short happened = 0;
    if (!waitFor(POLLOUT, std::nullopt, happened)) return false;
    if ((happened & POLLOUT) == 0) continue;
    const auto count = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) return false;
    if (count > 0) bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

bool Connection::idleUntil(Clock::time_point time) {
  while (Clock::now() < time) {
    const std::size_t before = reader_.pendingBytes();
    short happened = 0;
    if (!waitFor(0, time, happened)) return false;
    if (reader_.pendingBytes() != before) return true;
  }
  return isOpen();
}

void Connection::playDead() {
  short happened = 0;
  while (waitFor(POLLIN, std::nullopt, happened)) {
    while (reader_.next()) {
    }
  }
}

void Connection::close() {
  if (socket_) ::shutdown(socket_.get(), SHUT_WR);
  socket_.reset();
}

// A reset throws away what the other side has not acknowledged; the place of a fault would then be left to chance.
void Connection::waitUntilTaken() {
  constexpr auto kPatience = std::chrono::seconds(2);
  const auto end = Clock::now() + kPatience;
  int unsent = 0;
  while (socket_ && Clock::now() < end && ::ioctl(socket_.get(), SIOCOUTQ, &unsent) == 0 && unsent > 0) {
    pause(std::chrono::milliseconds(1));
  }
}

void Connection::reset() {
  // A lingering time of 0 makes closing a TCP connection a reset; a Unix socket has no such thing and is just closed.
  const linger atOnce{1, 0};
  waitUntilTaken();
  if (socket_) ::setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  socket_.reset();
}

}  // namespace vscan
