#include "image/packbits.h"

namespace vscan {

void packBits(std::span<const std::uint8_t> line, Bytes& out) {
  constexpr std::size_t kMaxCount = 128;
  std::size_t position = 0;
  const auto runAt = [&](std::size_t start) {
    std::size_t end = start + 1;
    while (end < line.size() && end - start < kMaxCount && line[end] == line[start]) ++end;
    return end - start;
  };
  while (position < line.size()) {
    const std::size_t run = runAt(position);
    if (run >= 2) {
      out.push_back(static_cast<std::uint8_t>(257 - run));
      out.push_back(line[position]);
      position += run;
      continue;
    }
    // A pair inside literal bytes is cheaper left among them; three of a kind end them.
    std::size_t end = position + 1;
    while (end < line.size() && end - position < kMaxCount &&
           !(end + 2 < line.size() && line[end] == line[end + 1] && line[end] == line[end + 2])) {
      ++end;
    }
    out.push_back(static_cast<std::uint8_t>(end - position - 1));
    out.insert(out.end(), line.begin() + static_cast<std::ptrdiff_t>(position),
               line.begin() + static_cast<std::ptrdiff_t>(end));
    position = end;
  }
}

}  // namespace vscan
