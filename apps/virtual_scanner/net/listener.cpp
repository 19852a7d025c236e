#include "net/listener.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "support/failure.h"

namespace vscan {
namespace {

constexpr int kBacklog = 16;

struct AddressesDeleter {
  void operator()(addrinfo* list) const { ::freeaddrinfo(list); }
};

struct HostAndPort {
  std::string host;
  std::string port;
};

HostAndPort splitAddress(const std::string& text) {
  const auto colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0 || colon + 1 == text.size()) {
    throw Failure("\"" + text + "\" is no address; write HOST:PORT or [IPV6]:PORT");
  }
  std::string host = text.substr(0, colon);
  if (host.front() == '[' && host.back() == ']') host = host.substr(1, host.size() - 2);
  return {host, text.substr(colon + 1)};
}

UniqueFd newSocket(int family) { return UniqueFd(::socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)); }

sockaddr_un unixAddress(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof address.sun_path) {
    throw Failure("the path of a Unix socket has 1 to " + std::to_string(sizeof address.sun_path - 1) + " bytes; \"" +
                  path + "\" does not fit");
  }
  std::memcpy(address.sun_path, path.c_str(), path.size());
  return address;
}

bool isListenedOn(const sockaddr_un& address) {
  const UniqueFd probe = newSocket(AF_UNIX);
  return probe && (::connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
                   errno == EAGAIN || errno == EINPROGRESS);
}

}  // namespace

Listener::Listener(UniqueFd fd, std::string address, std::string socketPath)
    : fd_(std::move(fd)), address_(std::move(address)), socketPath_(std::move(socketPath)) {}

Listener::Listener(UniqueFd tcp) : fd_(std::move(tcp)) {
  sockaddr_storage bound{};
  socklen_t size = sizeof bound;
  std::array<char, NI_MAXHOST> host{};
  std::array<char, NI_MAXSERV> port{};
  if (::getsockname(fd_.get(), reinterpret_cast<sockaddr*>(&bound), &size) != 0 ||
      ::getnameinfo(reinterpret_cast<sockaddr*>(&bound), size, host.data(), host.size(), port.data(), port.size(),
                    NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
    throw Failure("cannot tell the address that was taken");
  }
  const std::string name = host.data();
  address_ = (bound.ss_family == AF_INET6 ? "[" + name + "]" : name) + ":" + port.data();
  port_ = static_cast<std::uint16_t>(std::strtoul(port.data(), nullptr, 10));
  isLoopback_ = name == "::1" || name.starts_with("127.");
}

Listener::~Listener() {
  if (fd_ && !socketPath_.empty()) ::unlink(socketPath_.c_str());
}

Listener Listener::onTcp(const std::string& hostAndPort) {
  const auto [host, port] = splitAddress(hostAndPort);
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  wanted.ai_flags = AI_PASSIVE;
  addrinfo* list = nullptr;
  if (const int error = ::getaddrinfo(host.c_str(), port.c_str(), &wanted, &list); error != 0) {
    throw Failure("cannot listen on " + hostAndPort + ": " + ::gai_strerror(error));
  }
  const std::unique_ptr<addrinfo, AddressesDeleter> addresses(list);
  int lastError = 0;
  for (const addrinfo* one = list; one != nullptr; one = one->ai_next) {
    UniqueFd fd = newSocket(one->ai_family);
    const int on = 1;
    if (fd) ::setsockopt(fd.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (fd && ::bind(fd.get(), one->ai_addr, one->ai_addrlen) == 0 && ::listen(fd.get(), kBacklog) == 0) {
      return Listener(std::move(fd));
    }
    lastError = errno;
  }
  throw Failure("cannot listen on " + hostAndPort + ": " + std::strerror(lastError));
}

Listener Listener::onUnix(const std::string& path) {
  const sockaddr_un address = unixAddress(path);
  struct stat there {};
  if (::lstat(path.c_str(), &there) == 0) {
    if (!S_ISSOCK(there.st_mode)) throw Failure(path + " is there already and is no socket");
    if (isListenedOn(address)) throw Failure("another program listens on " + path);
    ::unlink(path.c_str());
  }
  UniqueFd fd = newSocket(AF_UNIX);
  if (!fd || ::bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(fd.get(), kBacklog) != 0) {
    throw Failure("cannot listen on " + path + ": " + std::strerror(errno));
  }
  return Listener(std::move(fd), "unix:" + path, path);
}

UniqueFd Listener::accept() const {
  UniqueFd host(::accept4(fd_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!host) return host;
  // A host that has lost its power or its cable is found out after a minute. A Unix socket refuses what is TCP's and
  // has no use for the rest; neither does harm.
  constexpr struct {
    int level, option, value;
  } kOptions[] = {{IPPROTO_TCP, TCP_NODELAY, 1},
                  {SOL_SOCKET, SO_KEEPALIVE, 1},
                  {IPPROTO_TCP, TCP_KEEPIDLE, 30},
                  {IPPROTO_TCP, TCP_KEEPINTVL, 10},
                  {IPPROTO_TCP, TCP_KEEPCNT, 3}};
  for (const auto& one : kOptions) ::setsockopt(host.get(), one.level, one.option, &one.value, sizeof one.value);
  return host;
}

UniqueFd connectUnix(const std::string& path) {
  const sockaddr_un address = unixAddress(path);
  UniqueFd fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!fd || ::connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw Failure("cannot reach a scanner behind " + path + ": " + std::strerror(errno));
  }
  return fd;
}

}  // namespace vscan
