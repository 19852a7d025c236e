#include "page.h"

#include <cstring>

namespace image_enhance {

void brightnessOfLine(const Page& page, int y, std::uint8_t* out) {
  const std::uint8_t* const from = page.line(y);
  if (page.isColor()) {
    for (int x = 0; x < page.widthPx; ++x) out[x] = luma(from + 3 * static_cast<std::ptrdiff_t>(x));
  } else if (page.isMono()) {
    for (int x = 0; x < page.widthPx; ++x) out[x] = (from[x / 8] >> (7 - x % 8) & 1) != 0 ? 255 : 0;
  } else {
    std::memcpy(out, from, page.lineBytes());
  }
}

Page grayOf(const Page& page) {
  PageForm form = page;
  form.bitsPerPixel = 8;
  Page gray(form);
  for (int y = 0; y < page.heightPx; ++y) brightnessOfLine(page, y, gray.line(y));
  return gray;
}

}  // namespace image_enhance
