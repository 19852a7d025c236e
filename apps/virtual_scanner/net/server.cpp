#include "net/server.h"

#include <poll.h>

#include <cerrno>
#include <exception>

#include "device/session.h"

namespace vscan {
namespace {

constexpr int kNoDescriptorsMs = 100;

}  // namespace

Server::Server(Device& device, std::vector<Listener> listeners, Log& log, int stopFd)
    : device_(device), listeners_(std::move(listeners)), log_(log), stopFd_(stopFd) {}

void Server::run() {
  std::vector<pollfd> watched{{stopFd_, POLLIN, 0}};
  for (const Listener& listener : listeners_) watched.push_back({listener.fd(), POLLIN, 0});
  for (;;) {
    if (::poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR) break;
    if (watched[0].revents != 0) break;
    for (std::size_t i = 0; i < listeners_.size(); ++i) {
      if ((watched[i + 1].revents & POLLIN) == 0) continue;
      if (UniqueFd socket = listeners_[i].accept()) {
        receive(std::move(socket), listeners_[i]);
      } else if (errno == EMFILE || errno == ENFILE) {
        ::poll(watched.data(), 1, kNoDescriptorsMs);  // the host is still there when one has become free
      }
    }
  }
  for (Served& host : hosts_) host.thread.join();
  hosts_.clear();
}

void Server::receive(UniqueFd socket, const Listener& listener) {
  hosts_.remove_if([](Served& host) {
    if (!host.hasGone) return false;
    host.thread.join();
    return true;
  });
  if (hosts_.size() == kMaxHosts) {
    log_.note("too many hosts are connected; one more has been turned away");
    return;
  }
  const bool isAlone = hosts_.empty();
  Served& host = hosts_.emplace_back();
  ++hostsSoFar_;
  if (!isAlone) host.log = std::make_unique<Log>(log_, "host " + std::to_string(hostsSoFar_));
  Log& log = isAlone ? log_ : *host.log;
  log.detail("a host has connected to " + listener.address());
  try {
    host.thread =
        std::thread([this, &host, &log, own = std::move(socket)]() mutable { serve(std::move(own), host, log); });
  } catch (const std::system_error& error) {
    log_.note(std::string("a host has been turned away: ") + error.what());
    hosts_.pop_back();
  }
}

void Server::serve(UniqueFd socket, Served& host, Log& log) {
  try {
    Connection connection(std::move(socket), stopFd_, device_.options.drip);
    Session(device_, connection, log).run();
  } catch (const std::exception& error) {
    log.note(std::string("a host has been left: ") + error.what());
  }
  log.detail("the host has gone");
  host.hasGone = true;
}

}  // namespace vscan
