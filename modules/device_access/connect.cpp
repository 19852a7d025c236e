#include "connect.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <thread>

#include "socket_transport.h"
#include "usb_connect.h"

namespace device_access {
namespace {

// Closes the socket unless it is handed on.
class Socket {
 public:
  Socket(int family, int protocol)
      : descriptor_(socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, protocol)) {}
  ~Socket() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  int get() const { return descriptor_; }
  std::unique_ptr<Transport> handOn() {
    auto transport = std::make_unique<SocketTransport>(descriptor_);
    descriptor_ = -1;
    return transport;
  }

 private:
  int descriptor_;
};

Outcome failure(int error) {
  const auto detail = static_cast<std::uint32_t>(error);
  switch (error) {
    case ECONNREFUSED:
      return {kConnectRefused, detail};
    case ETIMEDOUT:
      return {kConnectTimeout, detail};
    case EMFILE:
    case ENFILE:
    case ENOBUFS:
    case ENOMEM:
      return {kNoResource, detail};
    default:
      return {kConnectFailed, detail};
  }
}

// 0 or an error number.
int connectWithin(int descriptor, const sockaddr* address, socklen_t addressBytes, Milliseconds wait) {
  const Clock::time_point deadline = Clock::now() + wait;
  while (connect(descriptor, address, addressBytes) != 0) {
    if (errno == EAGAIN) {  // a Unix socket whose queue is full: nothing to poll for, the only way is to try again
      if (Clock::now() >= deadline) return ETIMEDOUT;
      std::this_thread::sleep_for(Milliseconds(20));
      continue;
    }
    if (errno != EINPROGRESS && errno != EINTR) return errno;
    const int ready = waitForSocket(descriptor, POLLOUT, deadline);
    if (ready == 0) return ETIMEDOUT;
    if (ready < 0) return errno;
    int error = 0;
    socklen_t errorBytes = sizeof(error);
    if (getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &errorBytes) != 0) return errno;
    return error;
  }
  return 0;
}

// Commands are small and wait for their answers; a device that lost its power in a scan is noticed by the probes.
void tuneTcp(int descriptor) {
  const auto set = [descriptor](int level, int option, int value) {
    setsockopt(descriptor, level, option, &value, sizeof(value));
  };
  set(IPPROTO_TCP, TCP_NODELAY, 1);
  set(SOL_SOCKET, SO_KEEPALIVE, 1);
  set(IPPROTO_TCP, TCP_KEEPIDLE, 30);
  set(IPPROTO_TCP, TCP_KEEPINTVL, 10);
  set(IPPROTO_TCP, TCP_KEEPCNT, 3);
}

Outcome connectAddress(const addrinfo& address, std::unique_ptr<Transport>& connection) {
  Socket socket(address.ai_family, address.ai_protocol);
  if (socket.get() < 0) return failure(errno);
  tuneTcp(socket.get());
  const int error = connectWithin(socket.get(), address.ai_addr, address.ai_addrlen, kConnectWait);
  if (error != 0) return failure(error);
  connection = socket.handOn();
  return {};
}

// A refusal proves that the machine is there, silence that it may be; an unreachable network says little, since a host
// often has addresses of a family that this network does not carry.
int weight(const Outcome& outcome) {
  return outcome.result == kConnectRefused ? 3 : outcome.result == kConnectTimeout ? 2 : 1;
}

Outcome connectTcp(const DeviceName& name, std::unique_ptr<Transport>& connection) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICSERV | (name.numericHost ? AI_NUMERICHOST : 0);
  addrinfo* found = nullptr;
  const int error = getaddrinfo(name.host.c_str(), std::to_string(name.port).c_str(), &hints, &found);
  if (error == EAI_MEMORY) return {kNoResource, ENOMEM};
  if (error != 0) return {kNameNotFound, static_cast<std::uint32_t>(-error)};
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, freeaddrinfo);

  Outcome outcome{kNameNotFound, static_cast<std::uint32_t>(-EAI_NONAME)};
  for (const addrinfo* address = found; address != nullptr; address = address->ai_next) {
    const Outcome attempt = connectAddress(*address, connection);
    if (attempt.ok()) return attempt;
    if (address == found || weight(attempt) > weight(outcome)) outcome = attempt;
  }
  return outcome;
}

Outcome connectUnix(const DeviceName& name, std::unique_ptr<Transport>& connection) {
  Socket socket(AF_UNIX, 0);
  if (socket.get() < 0) return failure(errno);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  name.path.copy(address.sun_path, sizeof(address.sun_path) - 1);
  const int error =
      connectWithin(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address), kConnectWait);
  if (error != 0) return failure(error);
  connection = socket.handOn();
  return {};
}

}  // namespace

Outcome connectDevice(const DeviceName& name, UsbCalls& usb, std::unique_ptr<Transport>& connection) {
  connection.reset();
  switch (name.kind) {
    case DeviceName::Kind::Unix:
      return connectUnix(name, connection);
    case DeviceName::Kind::Usb:
      return connectUsb(name, usb, connection);
    default:
      return connectTcp(name, connection);
  }
}

}  // namespace device_access
