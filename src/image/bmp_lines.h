// The lines of a BMP file image that are really there: what the header promises, bounded by the bytes present.
// Every walk over pixels starts from this, so that no header leads outside its block.
#pragma once

#include <cstddef>

namespace orvalle_scan_api {

inline constexpr std::size_t kBmpHeadersBytes = 54;  // both headers; a palette follows them

struct BmpLines {
  unsigned char* first = nullptr;  // borrowed; null when there is no line
  std::size_t lineBytes = 0;       // also told when no line is there
  std::size_t count = 0;
  std::size_t promised = 0;  // the header's height; 0 for a height below 1
  std::size_t offset = 0;    // of the first pixel byte
  int widthPx = 0;
  int bitPerPixel = 0;

  unsigned char* line(std::size_t index) const { return first + index * lineBytes; }
};

// Data that is no BMP has no lines.
BmpLines bmpLines(unsigned char* data, std::size_t size);

// 'B' 'M' and both headers whole. Line records start with a data kind of 1 to 7 and never pass.
bool isBmp(const unsigned char* data, std::size_t size);

}  // namespace orvalle_scan_api
