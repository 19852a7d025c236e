#include "image/rotate.h"

#include <cmath>
#include <numbers>

namespace vscan {
namespace {

// A pixel of the source, white outside.
int pixelAt(const Raster& source, int x, int y, int channel) {
  if (x < 0 || y < 0 || x >= source.widthPx || y >= source.heightPx) return 255;
  return source.line(y)[x * source.channels + channel];
}

}  // namespace

Raster rotate(const Raster& source, double degrees) {
  const double angle = degrees * std::numbers::pi / 180;
  const double cosine = std::cos(angle), sine = std::sin(angle);
  const double middleX = (source.widthPx - 1) / 2.0, middleY = (source.heightPx - 1) / 2.0;
  Raster turned(source.widthPx, source.heightPx, source.channels);
  for (int y = 0; y < turned.heightPx; ++y) {
    std::uint8_t* out = turned.line(y);
    for (int x = 0; x < turned.widthPx; ++x) {
      // Where this pixel comes from, between four pixels of the source.
      const double fromX = middleX + (x - middleX) * cosine + (y - middleY) * sine;
      const double fromY = middleY - (x - middleX) * sine + (y - middleY) * cosine;
      const int left = static_cast<int>(std::floor(fromX)), top = static_cast<int>(std::floor(fromY));
      const double right = fromX - left, below = fromY - top;
      for (int c = 0; c < source.channels; ++c) {
        const double upper = pixelAt(source, left, top, c) * (1 - right) + pixelAt(source, left + 1, top, c) * right;
        const double lower =
            pixelAt(source, left, top + 1, c) * (1 - right) + pixelAt(source, left + 1, top + 1, c) * right;
        *out++ = static_cast<std::uint8_t>(std::lround(upper * (1 - below) + lower * below));
      }
    }
  }
  return turned;
}

}  // namespace vscan
