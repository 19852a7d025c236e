// Collects what the library logs while an object lives, whatever the set-up of the machine's log.
//
// COutputLog::WriteLog is replaced at link time, see log_capture.cmake; outside of a
// capture lines are formatted and dropped.
// Threads: one capture at a time, on the thread that logs.
#pragma once

#include <string>
#include <vector>

struct LogLine {
  int level;
  std::string text;

  bool operator==(const LogLine&) const = default;
};

class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // Whether a line with just this text was logged at just this level.
  bool has(int level, const std::string& text) const;
  // The same at any level.
  bool says(const std::string& text) const;
  // All lines, "level text" each, to be printed by a failing test.
  std::string all() const;

  std::vector<LogLine> lines;
};
