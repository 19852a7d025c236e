#include "exit_codes.h"

namespace qsscan {

std::span<const ExitCodeRow> exitCodeTable() {
  static constexpr ExitCodeRow kRows[] = {
      {ExitCode::kDone, "done"},
      {ExitCode::kUsage, "the command line is wrong"},
      {ExitCode::kNotReachable, "the device cannot be reached"},
      {ExitCode::kFeederEmpty, "no paper in the feeder"},
      {ExitCode::kJam, "paper jam or double feed"},
      {ExitCode::kCoverOpen, "a cover of the device is open"},
      {ExitCode::kBusy, "the device is busy or locked"},
      {ExitCode::kDeviceError, "another error of the device"},
      {ExitCode::kConnectionLost, "the connection was lost while scanning"},
      {ExitCode::kNoPages, "the scan ended without a page"},
      {ExitCode::kCannotWrite, "the output cannot be written"},
      {ExitCode::kNoLibrary, "the scanning library or one of its modules is missing"},
      {ExitCode::kNotServed, "the device cannot do what an option asks for"},
      {ExitCode::kStoppedAtDevice, "the scan was stopped at the device"},
      {ExitCode::kInternal, "a failure inside the scanning software, lack of memory included"},
      {ExitCode::kConfiguration, "a configuration file is wrong or cannot be read"},
      {ExitCode::kHungUp, "the terminal was closed (SIGHUP); finished pages are kept"},
      {ExitCode::kInterrupted, "interrupted (Ctrl-C); finished pages are kept"},
      {ExitCode::kTerminated, "terminated (SIGTERM); finished pages are kept"},
  };
  return kRows;
}

}  // namespace qsscan
