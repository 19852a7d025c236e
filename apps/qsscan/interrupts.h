// Counts Ctrl-C and the other requests to stop while a scan runs.
#pragma once

#include <signal.h>

#include <chrono>

namespace qsscan {

// While one lives, SIGINT, SIGTERM and SIGHUP are counted instead of ending the program. One at a time.
class Interrupts {
 public:
  Interrupts();
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

  int count() const;
  // The first that came; 0 as long as none has.
  int signal() const;
  // How long ago that was.
  std::chrono::steady_clock::duration age() const;

 private:
  static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
  struct sigaction before_[3];
};

}  // namespace qsscan
