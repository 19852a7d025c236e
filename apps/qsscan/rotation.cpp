#include "rotation.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace qsscan {
namespace {

// Edge of the square tiles in which a page is turned, so that lines that are read and lines that are written both stay
// in the cache.
constexpr int kTilePx = 64;

struct Bits {
  static void copy(const std::uint8_t* from, int x, std::uint8_t* to, int toX) {
    const unsigned bit = from[x / 8] >> (7 - x % 8) & 1U;
    to[toX / 8] = static_cast<std::uint8_t>(to[toX / 8] | bit << (7 - toX % 8));  // onto a line of zeros
  }
};

template <int bytes>
struct Samples {
  static void copy(const std::uint8_t* from, int x, std::uint8_t* to, int toX) {
    std::memcpy(to + std::ptrdiff_t{toX} * bytes, from + std::ptrdiff_t{x} * bytes, bytes);
  }
};

// Where the pixel at (x, y) of a page goes, both counted from the left and from the top.
struct Place {
  int x, y;
};
Place placeOf(int x, int y, const Page& page, int degrees) {
  switch (degrees) {
    case 90:
      return {page.heightPx - 1 - y, x};
    case 180:
      return {page.widthPx - 1 - x, page.heightPx - 1 - y};
    default:
      return {y, page.widthPx - 1 - x};
  }
}

template <typename Pixel>
void copyTurned(const Page& from, int degrees, Page& to) {
  for (int top = 0; top < from.heightPx; top += kTilePx) {
    const int bottom = std::min(top + kTilePx, from.heightPx);
    for (int left = 0; left < from.widthPx; left += kTilePx) {
      const int right = std::min(left + kTilePx, from.widthPx);
      for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
          const Place place = placeOf(x, y, from, degrees);
          std::uint8_t* const line =
              to.pixels.data() + static_cast<std::size_t>(to.heightPx - 1 - place.y) * to.lineBytes;
          Pixel::copy(from.line(y), x, line, place.x);
        }
      }
    }
  }
}

}  // namespace

Page turned(Page page, int degrees) {
  if (degrees == 0) return page;
  std::vector<std::uint8_t> pixels;
  pixels.swap(page.pixels);
  Page result = page;  // all but the pixels
  pixels.swap(page.pixels);
  if (degrees != 180) {
    std::swap(result.widthPx, result.heightPx);
    std::swap(result.dpiX, result.dpiY);
  }
  result.lineBytes = (static_cast<std::size_t>(result.widthPx) * static_cast<std::size_t>(result.bitsPerPixel) + 7) / 8;
  result.pixels.resize(result.lineBytes * static_cast<std::size_t>(result.heightPx));
  switch (page.bitsPerPixel) {
    case 1:
      copyTurned<Bits>(page, degrees, result);
      break;
    case 8:
      copyTurned<Samples<1>>(page, degrees, result);
      break;
    default:
      copyTurned<Samples<3>>(page, degrees, result);
      break;
  }
  return result;
}

}  // namespace qsscan
