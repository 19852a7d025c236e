// Serves hosts one after the other: whoever connects while another is served waits in the queue of the socket.
// Threads: run() belongs to one thread; the stop descriptor may be made readable by any.
#pragma once
#include <vector>

#include "device/device.h"
#include "net/listener.h"

namespace vscan {

class Server {
 public:
  // stopFd: not owned; readable means stop.
  Server(Device& device, std::vector<Listener> listeners, Log& log, int stopFd);

  void run();

 private:
  Device& device_;
  const std::vector<Listener> listeners_;
  Log& log_;
  const int stopFd_;
};

}  // namespace vscan
