// The device's end of a connection: listens on this machine and plays a script to each client in a thread.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace module_test {

inline void sleepMs(int waitMs) { std::this_thread::sleep_for(std::chrono::milliseconds(waitMs)); }

// One accepted connection, closed at the end of the script.
class Client {
 public:
  explicit Client(int descriptor, const std::atomic<bool>& stop) : descriptor_(descriptor), stop_(stop) {}
  ~Client() { close(descriptor_); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  // Both go on until the bytes are through, the host has gone, or the test is over.
  void send(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent > 0) bytes.remove_prefix(static_cast<std::size_t>(sent));
      if (sent <= 0 && !shouldGoOn()) return;
    }
  }
  std::string receive(std::size_t count) const {
    std::string bytes(count, 0);
    std::size_t got = 0;
    while (got < count) {
      const ssize_t part = recv(descriptor_, bytes.data() + got, count - got, 0);
      if (part > 0) got += static_cast<std::size_t>(part);
      if (part == 0 || (part < 0 && !shouldGoOn())) break;
    }
    bytes.resize(got);
    return bytes;
  }
  // Keeps the connection until the test is over.
  void stay() const {
    while (!stop_) sleepMs(2);
  }
  // The close that follows is a reset.
  void resetOnClose() const {
    const linger hard{1, 0};
    setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &hard, sizeof(hard));
  }

 private:
  bool shouldGoOn() const { return !stop_ && (errno == EAGAIN || errno == EINTR); }

  const int descriptor_;
  const std::atomic<bool>& stop_;
};

class LoopbackDevice {
 public:
  using Script = std::function<void(const Client&)>;
  enum class Kind { Ipv4, Ipv6, Unix };

  explicit LoopbackDevice(Script script, Kind kind = Kind::Ipv4) : script_(std::move(script)), kind_(kind) {
    listening_ = listenOn();
    if (listening_) thread_ = std::thread([this] { serve(); });
  }
  ~LoopbackDevice() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    if (descriptor_ >= 0) close(descriptor_);
    if (kind_ == Kind::Unix && listening_) {
      unlink(path_.c_str());
      rmdir(folder_.c_str());
    }
  }
  LoopbackDevice(const LoopbackDevice&) = delete;
  LoopbackDevice& operator=(const LoopbackDevice&) = delete;

  // False where this machine has no such address family.
  bool listening() const { return listening_; }
  int port() const { return port_; }
  int connection() const { return kind_ == Kind::Unix ? 1 : 2; }
  std::string name() const {
    if (kind_ == Kind::Unix) return "unix:" + path_;
    return (kind_ == Kind::Ipv6 ? "[::1]:" : "127.0.0.1:") + std::to_string(port_);
  }

 private:
  bool listenOn() {
    if (kind_ == Kind::Unix) return listenUnix();
    return kind_ == Kind::Ipv6 ? listenIpv6() : listenIpv4();
  }
  bool listenIpv4() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool good = bindAndListen(&address, sizeof(address));
    port_ = ntohs(address.sin_port);
    return good;
  }
  bool listenIpv6() {
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    const bool good = bindAndListen(&address, sizeof(address));
    port_ = ntohs(address.sin6_port);
    return good;
  }
  bool listenUnix() {
    const char* base = std::getenv("TMPDIR");
    folder_ = std::string(base != nullptr ? base : "/tmp") + "/qsdeviceXXXXXX";
    if (mkdtemp(folder_.data()) == nullptr) return false;
    path_ = folder_ + "/device";
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path_.copy(address.sun_path, sizeof(address.sun_path) - 1);
    return bindAndListen(&address, sizeof(address));
  }
  template <class Address>
  bool bindAndListen(Address* address, socklen_t size) {
    auto* plain = reinterpret_cast<sockaddr*>(address);
    descriptor_ = socket(plain->sa_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    return descriptor_ >= 0 && bind(descriptor_, plain, size) == 0 && listen(descriptor_, 8) == 0 &&
           getsockname(descriptor_, plain, &size) == 0;
  }
  void serve() {
    while (!stop_) {
      const int accepted = accept4(descriptor_, nullptr, nullptr, SOCK_CLOEXEC);
      if (accepted < 0) {
        sleepMs(1);
        continue;
      }
      const int on = 1;
      setsockopt(accepted, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
      const timeval wait{0, 20000};  // after which the script looks whether the test is over
      setsockopt(accepted, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof(wait));
      setsockopt(accepted, SOL_SOCKET, SO_SNDTIMEO, &wait, sizeof(wait));
      script_(Client(accepted, stop_));
    }
  }

  const Script script_;
  const Kind kind_;
  std::atomic<bool> stop_{false};
  bool listening_ = false;
  int descriptor_ = -1;
  int port_ = 0;
  std::string folder_;
  std::string path_;
  std::thread thread_;
};

}  // namespace module_test
