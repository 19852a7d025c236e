// The published exit codes of qsscan. Scripts rely on them: a number never changes its meaning, new meanings get new
// numbers.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

namespace qsscan {

enum class ExitCode : int {
  kDone = 0,
  kUsage = 1,
  kNotReachable = 2,
  kFeederEmpty = 3,
  kJam = 4,
  kCoverOpen = 5,
  kBusy = 6,
  kDeviceError = 7,
  kConnectionLost = 8,
  kNoPages = 9,
  kCannotWrite = 10,
  kNoLibrary = 11,
  kNotServed = 12,
  kStoppedAtDevice = 13,
  kInternal = 14,
  kConfiguration = 15,
  // 128 and the number of the signal, as shells tell it.
  kHungUp = 129,
  kInterrupted = 130,
  kTerminated = 143,
};

struct ExitCodeRow {
  ExitCode code;
  const char* meaning;
};

// Every exit code in rising order.
std::span<const ExitCodeRow> exitCodeTable();

// A command that cannot go on: the exit code, in what() the sentence for people, and the library's result code where
// there is one.
class CommandError : public std::runtime_error {
 public:
  CommandError(ExitCode code, const std::string& sentence, std::uint32_t result = 0)
      : std::runtime_error(sentence), code_(code), result_(result) {}
  ExitCode code() const { return code_; }
  std::uint32_t result() const { return result_; }

 private:
  ExitCode code_;
  std::uint32_t result_;
};

}  // namespace qsscan
