// The colour profile that a device gives for its pages.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qsscan {

struct IccProfile {
  std::vector<std::uint8_t> bytes;
  int channels = 0;  // 1 of grey pages, 3 of colour pages
};

// A copy of the profile. Nothing for bytes that are no profile of grey or of red, green and blue.
std::optional<IccProfile> readIccProfile(std::span<const std::uint8_t> bytes);

}  // namespace qsscan
