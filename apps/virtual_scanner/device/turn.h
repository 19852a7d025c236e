// Whose turn it is: hosts connect side by side, the paper is for one of them at a time. A host has the device while one
// of its commands needs it, and from its settings until its scan is over or it goes. Settings that are followed by
// nothing do not keep the device for ever: after a while the next host may take it.
// Threads: any.
#pragma once
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace vscan {

class Turn {
 public:
  using Host = const void*;  // whatever tells hosts apart; not looked into

  // patience: how long a host waits before it is told that the device is busy; one that has just gone may take as long
  // to be noticed. lapse: after so long without a command the device is no longer kept.
  explicit Turn(std::chrono::milliseconds patience = std::chrono::seconds(1),
                std::chrono::milliseconds lapse = std::chrono::seconds(60))
      : patience_(patience), lapse_(lapse) {}

  // From here until finish() a command of this host has the device; keeps: and on until leave(). False: another host
  // has it.
  [[nodiscard]] bool take(Host host, bool keeps);

  // Both do nothing for a host that does not have the device.
  void finish(Host host);  // the command is over
  void leave(Host host);   // the scan is over, or the host has gone

 private:
  using Clock = std::chrono::steady_clock;

  // With mutex_ held.
  bool isFreeFor(Host host) const;
  void release();

  const std::chrono::milliseconds patience_;
  const std::chrono::milliseconds lapse_;
  std::mutex mutex_;
  std::condition_variable isLeft_;
  // Guarded by mutex_.
  Host host_ = nullptr;
  bool isBusy_ = false;  // with a command
  bool isKept_ = false;  // also behind it
  Clock::time_point lastUse_{};
};

}  // namespace vscan
