// Why a device could not be opened.
//
// The library has one result for it, whatever the reason: absent, busy, forbidden. The module that it opens devices
// with knows the reason, and can be asked by opening the device once more.
#pragma once

#include <optional>
#include <string>

#include "exit_codes.h"

namespace qsscan {

// The outcome of an attempt to open a device, as the module tells it.
struct OpenOutcome {
  std::uint32_t result = 0;  // 0: it is open
  std::uint32_t detail = 0;
};

// Opens the device with the module in the folder of the library, and closes it again. Nothing where the module cannot
// be asked.
std::optional<OpenOutcome> tryToOpen(const std::string& libraryFolder, const std::string& deviceName);

// An error with the sentence and the exit code for this outcome.
CommandError explained(const CommandError& error, const OpenOutcome& outcome);

// The error as it is, or explained where it says that the device could not be opened.
CommandError explained(const CommandError& error, const std::string& libraryFolder, const std::string& deviceName);

}  // namespace qsscan
