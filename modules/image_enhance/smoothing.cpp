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

// One line of averageAlike, in which line[dx] of above, own and below stands dx - 1 pixels to the right. No two of the
// pointers that are written through lead to the same bytes, and no one that is read through leads to them: the loops
// then work on many values at a time.
struct Neighbours {
  const std::uint8_t* above[3];
  const std::uint8_t* own[3];
  const std::uint8_t* below[3];
};

void averageLine(const Neighbours& at, std::uint8_t tolerance, std::size_t count, std::uint16_t* __restrict sums,
                 std::uint8_t* __restrict counts, std::uint8_t* __restrict out) {
  const std::uint8_t* const own = at.own[1];
  const std::uint8_t* const others[] = {at.above[0], at.above[1], at.above[2], at.own[0],
                                        at.own[2],   at.below[0], at.below[1], at.below[2]};
  for (std::size_t x = 0; x < count; ++x) sums[x] = own[x];
  std::fill_n(counts, count, std::uint8_t{1});
  for (const std::uint8_t* const other : others) {
    for (std::size_t x = 0; x < count; ++x) {
      const auto difference = static_cast<std::uint8_t>(std::max(other[x], own[x]) - std::min(other[x], own[x]));
      const std::uint8_t isAlike = difference <= tolerance ? 0xFF : 0;
      sums[x] = static_cast<std::uint16_t>(sums[x] + (other[x] & isAlike));
      counts[x] = static_cast<std::uint8_t>(counts[x] - isAlike);  // one more
    }
  }
  // Exact: of quotients that small, none lies so close below a whole number.
  for (std::size_t x = 0; x < count; ++x) {
    const int sumForRounding = sums[x] + counts[x] / 2;
    out[x] = static_cast<std::uint8_t>(static_cast<float>(sumForRounding) / static_cast<float>(counts[x]));
  }
}

// Each value becomes the mean of those of its eight neighbours that differ by at most tolerance, and itself.
void averageAlike(Page& page, std::uint8_t tolerance) {
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
  std::vector<std::uint16_t> sums(lineBytes);
  std::vector<std::uint8_t> counts(lineBytes);
  load(0);
  for (int y = 0; y < page.heightPx; ++y) {
    if (y + 1 < page.heightPx) load(y + 1);
    Neighbours at{};
    for (std::size_t dx = 0; dx < 3; ++dx) {
      const auto from = [&](int line) {
        return &lines[static_cast<std::size_t>(std::clamp(line, 0, page.heightPx - 1) % 3)][step * dx];
      };
      at.above[dx] = from(y - 1);
      at.own[dx] = from(y);
      at.below[dx] = from(y + 1);
    }
    averageLine(at, tolerance, lineBytes, sums.data(), counts.data(), page.line(y));
  }
}

}  // namespace

bool smooth(Page& page, const Request& request) {
  const double level = std::clamp(request.param.smoothingLevel, -50, 50) / 50.0;
  if (request.param.smoothingMode == 0) {
    blur(page, std::exp2(1.25 * level) * 25.4 / 300);
  } else {
    averageAlike(page, static_cast<std::uint8_t>(24 * std::exp2(1.5 * level)));
  }
  return true;
}

}  // namespace image_enhance
