// From one form of a line to another. Lines are not padded; a set mono bit is white, the highest bit is the leftmost.
// Threads: reentrant.
#pragma once

#include <cstddef>
#include <cstdint>

namespace scan_decode {

enum class LineForm { Mono, Gray, Rgb, Bgr };

constexpr std::size_t lineBytes(LineForm form, std::size_t widthPx) {
  return form == LineForm::Mono ? (widthPx + 7) / 8 : form == LineForm::Gray ? widthPx : widthPx * 3;
}

// True when a line of either form has the same number of bits, so that it can be converted in place.
constexpr bool sameDepth(LineForm a, LineForm b) {
  const auto isColor = [](LineForm form) { return form == LineForm::Rgb || form == LineForm::Bgr; };
  return a == b || (isColor(a) && isColor(b));
}

// Converts a line of lineBytes(from, widthPx) bytes to one of lineBytes(to, widthPx). to is Mono, Gray or Bgr. in may
// be out where sameDepth(from, to); otherwise the two do not overlap. Colour becomes grey as the truncated mean of its
// parts, grey becomes mono at half way.
void convertLine(LineForm from, const std::uint8_t* in, LineForm to, std::uint8_t* out, std::size_t widthPx);

}  // namespace scan_decode
