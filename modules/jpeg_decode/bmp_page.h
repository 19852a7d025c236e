// The BMP file image that a decoded page is handed out in: 54 bytes of headers, a palette of 256 greys for 8-bit
// pictures, then the lines, bottom line first and not padded.
// Threads: one caller at a time.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "jpeg_reader.h"
#include "scan_image.h"

namespace jpeg_decode {

// Larger pictures are refused before any memory is taken: GetDecodeMode sends a page to band decoding long before.
inline constexpr std::size_t kMaxPageBytes = std::size_t{1} << 30;

class BmpPage {
 public:
  // Makes room for picture with headers filled and lines as they happen to be. False, with nothing kept, when picture
  // is larger than kMaxPageBytes or there is no memory.
  bool create(const Picture& picture);
  void clear();

  // Where the line that is the given number of lines below the top belongs.
  std::uint8_t* line(std::size_t fromTop);

  // Makes all lines from fromTop down to the bottom mid-grey.
  void fillFrom(std::size_t fromTop);

  // Describes the image, which stays owned by this object.
  orvalle_scan_api::tagQS_SCAN_IMAGEDATA describe() const;

 private:
  struct Free {
    void operator()(std::uint8_t* block) const { std::free(block); }
  };

  Picture picture_;
  std::size_t headerBytes_ = 0;
  std::size_t pixelBytes_ = 0;
  std::unique_ptr<std::uint8_t[], Free> file_;
};

}  // namespace jpeg_decode
