// Lines of a page in the orders that file formats want.
#pragma once

#include <cstdint>
#include <vector>

#include "page.h"

namespace qsscan {

// One line of B,G,R as R,G,B.
inline void copyAsRgb(const std::uint8_t* from, int widthPx, std::uint8_t* to) {
  for (int x = 0; x < widthPx; ++x, from += 3, to += 3) {
    to[0] = from[2];
    to[1] = from[1];
    to[2] = from[0];
  }
}

// One line of bits with black and white exchanged.
inline void copyInverted(const std::uint8_t* from, std::size_t bytes, std::uint8_t* to) {
  for (std::size_t i = 0; i < bytes; ++i) to[i] = static_cast<std::uint8_t>(~from[i]);
}

// All lines of a black-and-white page, top line first, with a set bit for black.
inline std::vector<std::uint8_t> invertedLines(const Page& page) {
  std::vector<std::uint8_t> lines(page.lineBytes * static_cast<std::size_t>(page.heightPx));
  for (int y = 0; y < page.heightPx; ++y) {
    copyInverted(page.line(y), page.lineBytes, lines.data() + static_cast<std::size_t>(y) * page.lineBytes);
  }
  return lines;
}

// The line y from the top for a format that wants R,G,B and, where blackIsSet, a set bit for black. buffer has
// page.lineBytes of room; the result lies there or in the page.
inline const std::uint8_t* lineFor(const Page& page, int y, bool blackIsSet, std::uint8_t* buffer) {
  const std::uint8_t* line = page.line(y);
  if (page.bitsPerPixel == 24) {
    copyAsRgb(line, page.widthPx, buffer);
  } else if (page.bitsPerPixel == 1 && blackIsSet) {
    copyInverted(line, page.lineBytes, buffer);
  } else {
    return line;
  }
  return buffer;
}

}  // namespace qsscan
