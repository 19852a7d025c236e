// What the owner says to a running scanner over its control socket, a line at a time:
//   button image|ocr|email|file [KEY=VALUE...]   presses a button
//   button none                                  lets it go
// Each line is answered by one: "ok", or "error: " and a sentence.
// Threads: run() belongs to one thread of its own; the stop descriptor may be made readable by any.
#pragma once
#include <string>

#include "device/panel.h"
#include "device/profile.h"
#include "net/listener.h"
#include "support/log.h"

namespace vscan {

// Carries out "image ..." or "none". Throws Failure, also for a button that the profile's panel does not have.
void pressButton(const Profile& profile, Panel& panel, const std::string& text);

class Control {
 public:
  // profile, panel and log are borrowed. stopFd: not owned; readable means stop.
  Control(const Profile& profile, Panel& panel, Listener listener, Log& log, int stopFd);

  void run();

 private:
  void serve(UniqueFd owner);
  std::string carryOut(const std::string& line);

  const Profile& profile_;
  Panel& panel_;
  const Listener listener_;
  Log& log_;
  const int stopFd_;
};

// Says one line to the scanner behind that socket and returns its answer without the line feed. Throws Failure when
// nobody answers within five seconds.
std::string tellScanner(const std::string& socketPath, const std::string& line);

}  // namespace vscan
