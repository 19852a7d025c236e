// A program that a test runs: output to files, a time limit on every wait, ended by its own id and reaped.
// Bound to the thread that made it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace e2e {

std::string contentOf(const std::string& path);

class Process {
 public:
  using Clock = std::chrono::steady_clock;

  // Starts arguments[0] with the others; its output goes to the two files. It dies with this test.
  Process(const std::vector<std::string>& arguments, const std::string& outPath, const std::string& errPath);
  // Kills it where it still runs.
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  struct Exit {
    int code = -1;       // 128 + N where signal N ended it
    bool inTime = true;  // false: it had to be killed
    double seconds = 0;  // from its start
    long peakKib = 0;    // its largest resident size that was seen
  };
  // Waits for its end, and kills it when the limit is over.
  Exit wait(std::chrono::milliseconds limit);

  bool isRunning();
  pid_t pid() const { return pid_; }  // -1 once its end was seen
  // Nothing happens once it has ended.
  void send(int signal);
  // Waits until one of its output files contains the text; false when it ended or the limit passed before.
  bool waitForText(const std::string& path, const std::string& text, std::chrono::milliseconds limit);

  const std::string& outPath() const { return outPath_; }
  const std::string& errPath() const { return errPath_; }

 private:
  void notePeak();
  bool reap(int options);

  const std::string outPath_;
  const std::string errPath_;
  const Clock::time_point start_ = Clock::now();
  pid_t pid_ = -1;  // -1 once it is reaped
  Exit exit_;
};

}  // namespace e2e
