// Lines in PackBits.
#pragma once

#include <cstdint>
#include <vector>

namespace module_test {

using Bytes = std::vector<std::uint8_t>;

// PackBits as a device sends it: runs of three and more as runs, the rest as it stands.
inline Bytes packBits(const Bytes& line) {
  Bytes packed;
  std::size_t i = 0;
  const auto runAt = [&line](std::size_t at) {
    std::size_t end = at + 1;
    while (end < line.size() && end - at < 128 && line[end] == line[at]) ++end;
    return end - at;
  };
  while (i < line.size()) {
    if (const std::size_t run = runAt(i); run >= 3) {
      packed.push_back(static_cast<std::uint8_t>(257 - run));
      packed.push_back(line[i]);
      i += run;
      continue;
    }
    const std::size_t start = i;
    while (i < line.size() && i - start < 128 && runAt(i) < 3) ++i;
    packed.push_back(static_cast<std::uint8_t>(i - start - 1));
    packed.insert(packed.end(), line.begin() + static_cast<std::ptrdiff_t>(start),
                  line.begin() + static_cast<std::ptrdiff_t>(i));
  }
  return packed;
}

}  // namespace module_test
