// One scanner of the program: its device, where it listens, and the threads that serve it.
// Threads: start() and the destructor belong to one thread.
#pragma once
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "device/control.h"
#include "net/announcer.h"
#include "net/server.h"
#include "options.h"

namespace vscan {

class Scanner {
 public:
  // number counts the scanners of the program from 0. Listens at once, serves from start() on. stopFd: not owned;
  // readable means stop. Throws Failure.
  Scanner(const ScannerOptions& options, int number, int stopFd);

  // Waits for its threads; the stop descriptor has to be readable by then.
  ~Scanner();

  void start();

  // "127.0.0.1:9480 and unix:/path".
  const std::string& addresses() const { return addresses_; }

  // What the network is to be told of it: one for each TCP address, none when it is hidden.
  const std::vector<Announcement>& announcements() const { return announcements_; }

 private:
  Log log_;
  Device device_;
  std::string addresses_;
  std::vector<Announcement> announcements_;
  std::unique_ptr<Server> server_;
  std::unique_ptr<Control> control_;  // null without a control socket
  std::vector<std::thread> threads_;
};

}  // namespace vscan
