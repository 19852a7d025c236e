#include "net/server.h"

#include <poll.h>

#include <cerrno>

#include "device/session.h"

namespace vscan {

Server::Server(Device& device, std::vector<Listener> listeners, Log& log, int stopFd)
    : device_(device), listeners_(std::move(listeners)), log_(log), stopFd_(stopFd) {}

void Server::run() {
  std::vector<pollfd> watched{{stopFd_, POLLIN, 0}};
  for (const Listener& listener : listeners_) watched.push_back({listener.fd(), POLLIN, 0});
  for (;;) {
    if (::poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR) return;
    if (watched[0].revents != 0) return;
    for (std::size_t i = 0; i < listeners_.size(); ++i) {
      if ((watched[i + 1].revents & POLLIN) == 0) continue;
      UniqueFd socket = listeners_[i].accept();
      if (!socket) continue;
      log_.detail("a host has connected to " + listeners_[i].address());
      Connection connection(std::move(socket), stopFd_, device_.options.drip);
      Session(device_, connection, log_).run();
      log_.detail("the host has gone");
    }
  }
}

}  // namespace vscan
