#include "paint.h"

#include <cstring>

namespace image_enhance {
namespace {

void whiten(Page& page, int x, int y) {
  std::uint8_t& byte = page.line(y)[x / 8];
  byte = static_cast<std::uint8_t>(byte | 0x80u >> (x % 8));
}

std::uint8_t* pixelAt(Page& page, int x, int y) {
  return page.line(y) + static_cast<std::ptrdiff_t>(x) * page.channels();
}

int brightness(const Page& page, const std::uint8_t* pixel) { return page.isColor() ? luma(pixel) : pixel[0]; }

// The unmasked pixel that is nearest in one direction; null where there is none within reach.
const std::uint8_t* nearest(Page& page, const Pix& mask, int x, int y, int dx, int dy, int reachPx) {
  for (int i = 0; i < reachPx; ++i) {
    x += dx;
    y += dy;
    if (x < 0 || x >= page.widthPx || y < 0 || y >= page.heightPx) return nullptr;
    if (!BitLine(mask, y)[x]) return pixelAt(page, x, y);
  }
  return nullptr;
}

}  // namespace

bool paintFromAround(Page& page, const Pix& mask, int reachPx) {
  constexpr int kDirections[][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
  return forEachMasked(page, mask, [&](int x, int y) {
    if (page.isMono()) return whiten(page, x, y);
    std::uint8_t found[3] = {255, 255, 255};
    int brightest = -1;
    for (const auto& [dx, dy] : kDirections) {
      const std::uint8_t* const pixel = nearest(page, mask, x, y, dx, dy, reachPx);
      if (pixel == nullptr || brightness(page, pixel) <= brightest) continue;
      brightest = brightness(page, pixel);
      std::memcpy(found, pixel, static_cast<std::size_t>(page.channels()));
    }
    std::memcpy(pixelAt(page, x, y), found, static_cast<std::size_t>(page.channels()));
  });
}

bool paintFlat(Page& page, const Pix& mask, const Color& color) {
  const std::uint8_t bytes[3] = {color.blue, color.green, color.red};
  return forEachMasked(page, mask, [&](int x, int y) {
    if (page.isMono()) return whiten(page, x, y);
    std::memcpy(pixelAt(page, x, y), bytes, static_cast<std::size_t>(page.channels()));
  });
}

}  // namespace image_enhance
