// A Gaussian blur of grey and colour pages that hands out one blurred line after the other, so that a filter built on
// it needs no second page. Threads: none of its own.
#pragma once

#include <cstdint>
#include <vector>

#include "page.h"

namespace image_enhance {

class Blur {
 public:
  // page: not mono; it has to outlive this object. sigmaMm: on the paper; brought into 0.3 to 16 pixels.
  Blur(const Page& page, double sigmaMm);

  // The next line from the top, valid until the next call; there are heightPx of them. The page's own line of that
  // number and those above may be changed afterwards, those below not.
  const std::uint8_t* nextLine();

 private:
  using Line = std::vector<std::uint16_t>;  // blurred sideways, 256 times the brightness

  void blurSideways(int y, Line& out);

  const Page& page_;
  // Of the pixel itself, of its neighbours and so on; all 2n - 1 add up to 256.
  std::vector<std::uint16_t> sideways_;
  std::vector<std::uint16_t> downwards_;
  std::vector<Line> ring_;            // the lines that the next one is made of
  std::vector<std::uint8_t> padded_;  // one line with its ends drawn out
  std::vector<std::uint32_t> sums_;
  std::vector<std::uint8_t> line_;
  int read_ = 0;  // lines blurred sideways so far
  int next_ = 0;
};

}  // namespace image_enhance
