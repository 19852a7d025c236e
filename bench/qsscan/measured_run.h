// One run of qsscan, and what it cost on either side.
#pragma once

#include <map>
#include <string>

#include "jobs.h"
#include "process.h"

namespace qsscan_bench {

// Seconds of processor time, but for the first.
struct Cost {
  double wall = 0;
  double whole = 0;     // qsscan with the library and its modules
  double writing = 0;   // its main thread: encoding and writing files
  double fetching = 0;  // its thread that takes pages from the library and copies them
  double device = 0;    // the scanner's process
  double peakMib = 0;
  // By the timed stand-ins: transport, lines, jpeg, enhancement. Empty where the real modules were used.
  std::map<std::string, double> modules;
};

// Runs it to its end in that folder; the scanner is the process with that id. Throws std::runtime_error where qsscan
// fails.
Cost measure(const Arguments& arguments, const std::string& folder, pid_t scanner);

// Processor time that a process has taken so far.
double processSeconds(pid_t pid);

}  // namespace qsscan_bench
