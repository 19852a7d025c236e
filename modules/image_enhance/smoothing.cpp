// Smoothing: mode 0 evens everything out, as printed dots and moire need it; any other mode averages like with like and
// leaves edges sharp, as grainy paper needs it.
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "blur.h"
#include "steps.h"

namespace image_enhance {
namespace {

void blur(Page& page, double sigmaMm) {
  Blur blurred(page, sigmaMm);
  for (int y = 0; y < page.heightPx; ++y) std::memcpy(page.line(y), blurred.nextLine(), page.lineBytes());
}

// Each value becomes the mean of those of its eight neighbours that differ by at most tolerance, and itself.
void averageAlike(Page& page, int tolerance) {
  const auto step = static_cast<std::size_t>(page.channels());
  const std::size_t lineBytes = page.lineBytes();
  // Copies of the lines above, at and below y, each with its ends drawn out by one pixel.
  std::array<std::vector<std::uint8_t>, 3> lines;
  for (auto& line : lines) line.resize(lineBytes + 2 * step);
  const auto load = [&](int y) {
    std::vector<std::uint8_t>& to = lines[static_cast<std::size_t>(y % 3)];
    const std::uint8_t* const from = page.line(y);
    std::memcpy(&to[step], from, lineBytes);
    std::memcpy(to.data(), from, step);
    std::memcpy(&to[step + lineBytes], from + lineBytes - step, step);
  };
  std::array<std::uint16_t, 10> reciprocals{};  // of 65536, so that no pixel is divided
  for (unsigned i = 1; i < 10; ++i) reciprocals[i] = static_cast<std::uint16_t>(std::min(65535u, 65536 / i + 1));
  std::vector<std::uint16_t> sums(lineBytes);
  std::vector<std::uint8_t> counts(lineBytes);

  load(0);
  for (int y = 0; y < page.heightPx; ++y) {
    if (y + 1 < page.heightPx) load(y + 1);
    const std::uint8_t* const own = &lines[static_cast<std::size_t>(y % 3)][step];
    for (std::size_t x = 0; x < lineBytes; ++x) sums[x] = own[x];
    std::fill(counts.begin(), counts.end(), std::uint8_t{1});
    for (int dy = -1; dy <= 1; ++dy) {
      const int other = std::clamp(y + dy, 0, page.heightPx - 1);
      for (int dx = 0; dx <= 2; ++dx) {
        if (dy == 0 && dx == 1) continue;
        const std::uint8_t* const at = &lines[static_cast<std::size_t>(other % 3)][step * static_cast<std::size_t>(dx)];
        for (std::size_t x = 0; x < lineBytes; ++x) {
          const int difference = at[x] - own[x];
          const bool isAlike = difference <= tolerance && -difference <= tolerance;
          sums[x] = static_cast<std::uint16_t>(sums[x] + (isAlike ? at[x] : 0));
          counts[x] = static_cast<std::uint8_t>(counts[x] + (isAlike ? 1 : 0));
        }
      }
    }
    std::uint8_t* const to = page.line(y);
    for (std::size_t x = 0; x < lineBytes; ++x) {
      const unsigned rounded = sums[x] + counts[x] / 2u;
      to[x] = counts[x] == 1 ? own[x] : static_cast<std::uint8_t>(rounded * reciprocals[counts[x]] >> 16);
    }
  }
}

}  // namespace

bool smooth(Page& page, const Request& request) {
  const double level = std::clamp(request.param.smoothingLevel, -50, 50) / 50.0;
  if (request.param.smoothingMode == 0) {
    blur(page, std::exp2(1.25 * level) * 25.4 / 300);
  } else {
    averageAlike(page, static_cast<int>(24 * std::exp2(1.5 * level)));
  }
  return true;
}

}  // namespace image_enhance
