// Pixels in memory, top line first, no padding: one byte a pixel (grey) or three (R, G, B).
#pragma once
#include <cstdint>
#include <vector>

namespace vscan {

struct Raster {
  int widthPx = 0;
  int heightPx = 0;
  int channels = 1;  // 1 or 3
  std::vector<std::uint8_t> pixels;

  Raster() = default;
  Raster(int width, int height, int channelCount, std::uint8_t value = 0)
      : widthPx(width),
        heightPx(height),
        channels(channelCount),
        pixels(
            static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * static_cast<std::size_t>(channelCount),
            value) {}

  std::size_t lineBytes() const { return static_cast<std::size_t>(widthPx) * static_cast<std::size_t>(channels); }
  std::uint8_t* line(int y) { return pixels.data() + static_cast<std::size_t>(y) * lineBytes(); }
  const std::uint8_t* line(int y) const { return pixels.data() + static_cast<std::size_t>(y) * lineBytes(); }
};

}  // namespace vscan
