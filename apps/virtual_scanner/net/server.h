// Serves hosts side by side, each on a thread of its own; which of them has the device is settled by its Turn.
// Threads: run() belongs to one thread; the stop descriptor may be made readable by any.
#pragma once
#include <atomic>
#include <list>
#include <memory>
#include <thread>
#include <vector>

#include "device/device.h"
#include "net/listener.h"

namespace vscan {

class Server {
 public:
  // More hosts than this at once are no hosts: the next one's connection is closed.
  static constexpr std::size_t kMaxHosts = 32;

  // stopFd: not owned; readable means stop.
  Server(Device& device, std::vector<Listener> listeners, Log& log, int stopFd);

  // Returns when the scanner is to stop and every host has been left.
  void run();

 private:
  struct Served {
    std::thread thread;
    std::unique_ptr<Log> log;  // null for a host that is alone: it needs no name
    std::atomic<bool> hasGone{false};
  };

  void receive(UniqueFd socket, const Listener& listener);
  void serve(UniqueFd socket, Served& host, Log& log);

  Device& device_;
  const std::vector<Listener> listeners_;
  Log& log_;
  const int stopFd_;
  std::list<Served> hosts_;  // run() only, but for the flags
  unsigned hostsSoFar_ = 0;  // run() only
};

}  // namespace vscan
