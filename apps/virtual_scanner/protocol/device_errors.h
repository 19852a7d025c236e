// What can go wrong in a device, and the number that each generation has for it: the result of a refused command, and
// the error that ends an image stream.
// Threads: reentrant.
#pragma once
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "protocol/generation.h"

namespace vscan {

enum class DeviceError {
  FeederEmpty,
  PaperJam,
  CoverOpen,
  Busy,
  OutOfMemory,
  DoubleFeed,
  InternalFault,
  LampFault,
  SettingsNotPossible,
  Locked,
};

std::uint8_t codeOf(DeviceError error, Generation generation);

// What people call the errors.
std::vector<std::string_view> deviceErrorNames();

// The error that people call so ("jam", "cover-open"); nothing for any other word.
std::optional<DeviceError> deviceErrorNamed(std::string_view name);

}  // namespace vscan
