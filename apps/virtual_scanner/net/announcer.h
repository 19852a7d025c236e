// Tells the local network of all scanners of the program over mDNS, for as long as the object lives, where the Avahi
// daemon runs. Without the daemon it waits for one and disturbs nothing. Threads: a thread of its own does all of it;
// construction and destruction belong to one thread.
#pragma once
#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "support/log.h"

namespace vscan {

struct Announcement {
  std::string name;  // what people see; another one is taken when it is there already
  std::string model;
  std::string id;  // stable from start to start
  std::string place;
  std::uint16_t port = 0;
  bool onlyLoopback = false;  // listens for this machine alone
};

// "txtvers=1", "ty=<model>", "id=<id>" and, where there is one, "note=<place>".
std::vector<std::string> textRecords(const Announcement& announcement);

class Announcer {
 public:
  Announcer(std::vector<Announcement> announcements, Log& log);
  ~Announcer();
  Announcer(const Announcer&) = delete;
  Announcer& operator=(const Announcer&) = delete;

 private:
  void run();

  const std::vector<Announcement> announcements_;
  Log& log_;
  std::atomic<bool> stops_ = false;
  std::thread thread_;
};

}  // namespace vscan
