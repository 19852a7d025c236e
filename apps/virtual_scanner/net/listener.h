// Where hosts connect: a TCP address or a Unix socket.
// Threads: one.
#pragma once
#include <cstdint>
#include <string>

#include "net/unique_fd.h"

namespace vscan {

class Listener {
 public:
  // HOST:PORT or [IPV6]:PORT; port 0 takes a free one. Throws Failure.
  static Listener onTcp(const std::string& hostAndPort);

  // A socket file that nobody listens on any more is replaced. Throws Failure.
  static Listener onUnix(const std::string& path);

  Listener(Listener&&) = default;
  Listener& operator=(Listener&&) = delete;
  ~Listener();  // removes the socket file

  int fd() const { return fd_.get(); }

  // "127.0.0.1:9480", "[::1]:9480" or "unix:/path", with the port that was taken.
  const std::string& address() const { return address_; }

  // The TCP port; 0 for a Unix socket.
  std::uint16_t port() const { return port_; }
  // True when only this machine can connect.
  bool isLoopback() const { return isLoopback_; }

  // The next host that waits, non-blocking and close-on-exec; empty when there is none.
  UniqueFd accept() const;

 private:
  Listener(UniqueFd fd, std::string address, std::string socketPath);
  explicit Listener(UniqueFd tcp);

  UniqueFd fd_;
  std::string address_;
  std::string socketPath_;  // to be removed; empty for TCP and after a move
  std::uint16_t port_ = 0;
  bool isLoopback_ = true;
};

// A blocking connection to such a socket. Throws Failure when nobody listens there.
UniqueFd connectUnix(const std::string& path);

}  // namespace vscan
