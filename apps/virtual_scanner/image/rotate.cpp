#include "image/rotate.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vscan {
namespace {

// A pixel of the source, the backing outside.
int pixelAt(const Raster& source, int x, int y, int channel, int backing) {
  if (x < 0 || y < 0 || x >= source.widthPx || y >= source.heightPx) return backing;
  return source.line(y)[x * source.channels + channel];
}

}  // namespace

Raster rotate(const Raster& source, double degrees, std::uint8_t backing) {
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
        const auto at = [&](int dx, int dy) { return pixelAt(source, left + dx, top + dy, c, backing); };
        const double upper = at(0, 0) * (1 - right) + at(1, 0) * right;
        const double lower = at(0, 1) * (1 - right) + at(1, 1) * right;
        *out++ = static_cast<std::uint8_t>(std::lround(upper * (1 - below) + lower * below));
      }
    }
  }
  return turned;
}

Raster turnRight(const Raster& source) {
  Raster turned(source.heightPx, source.widthPx, source.channels);
  for (int y = 0; y < source.heightPx; ++y) {
    const std::uint8_t* in = source.line(y);
    const int x = source.heightPx - 1 - y;
    for (int newY = 0; newY < turned.heightPx; ++newY, in += source.channels) {
      std::copy(in, in + source.channels, turned.line(newY) + x * source.channels);
    }
  }
  return turned;
}

}  // namespace vscan
