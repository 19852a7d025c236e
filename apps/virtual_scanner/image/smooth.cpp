#include "image/smooth.h"

#include <algorithm>

namespace vscan {

Raster smooth(const Raster& source) {
  // 1 2 1
  // 2 4 2   of sixteen parts; at the edges the picture goes on as it ends
  // 1 2 1
  Raster smoothed(source.widthPx, source.heightPx, source.channels);
  const std::size_t step = static_cast<std::size_t>(source.channels);
  const std::size_t bytes = source.lineBytes();
  std::vector<unsigned> sums(bytes);  // of three lines
  for (int y = 0; y < source.heightPx; ++y) {
    const std::uint8_t* above = source.line(std::max(y - 1, 0));
    const std::uint8_t* here = source.line(y);
    const std::uint8_t* below = source.line(std::min(y + 1, source.heightPx - 1));
    for (std::size_t i = 0; i < bytes; ++i) sums[i] = above[i] + 2u * here[i] + below[i];
    std::uint8_t* out = smoothed.line(y);
    for (std::size_t i = 0; i < bytes; ++i) {
      const unsigned left = sums[i < step ? i : i - step];
      const unsigned right = sums[i + step < bytes ? i + step : i];
      out[i] = static_cast<std::uint8_t>((left + 2 * sums[i] + right + 8) / 16);
    }
  }
  return smoothed;
}

}  // namespace vscan
