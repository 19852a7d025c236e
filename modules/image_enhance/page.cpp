#include "page.h"

#include <cstring>

namespace image_enhance {

Page grayOf(const Page& page) {
  PageForm form = page;
  form.bitsPerPixel = 8;
  Page gray(form);
  for (int y = 0; y < page.heightPx; ++y) {
    const std::uint8_t* const from = page.line(y);
    std::uint8_t* const to = gray.line(y);
    if (page.isColor()) {
      for (int x = 0; x < page.widthPx; ++x) to[x] = luma(from + 3 * static_cast<std::ptrdiff_t>(x));
    } else {
      std::memcpy(to, from, gray.lineBytes());
    }
  }
  return gray;
}

}  // namespace image_enhance
