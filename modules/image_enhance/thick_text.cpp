// Thicker strokes: every pixel takes the darkest value of a square about it, level and a half pixels wider for each
// level at 300 dpi.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "pix.h"
#include "steps.h"

namespace image_enhance {
namespace {

// The darkest of side values in a row, in place: value x becomes the least of those from x - side / 2 on.
void darkenSideways(std::uint8_t* line, std::vector<std::uint8_t>& padded, std::size_t lineBytes, std::size_t step,
                    std::size_t side) {
  std::fill(padded.begin(), padded.end(), std::uint8_t{255});
  std::memcpy(&padded[side / 2 * step], line, lineBytes);
  for (std::size_t i = 0; i < side; ++i) {
    const std::uint8_t* const at = &padded[i * step];
    for (std::size_t x = 0; x < lineBytes; ++x) line[x] = std::min(line[x], at[x]);
  }
}

void darken(Page& page, int width, int height) {
  const auto widthSize = static_cast<std::size_t>(width);
  const auto step = static_cast<std::size_t>(page.channels());
  const std::size_t lineBytes = page.lineBytes();
  std::vector<std::uint8_t> padded(lineBytes + widthSize * step);
  for (int y = 0; y < page.heightPx; ++y) darkenSideways(page.line(y), padded, lineBytes, step, widthSize);
  // Downwards from copies of the lines that are still to be looked at.
  const int above = height / 2;
  const int below = height - 1 - above;
  std::vector<std::vector<std::uint8_t>> ring(static_cast<std::size_t>(height),
                                              std::vector<std::uint8_t>(lineBytes, 255));
  const auto load = [&](int y) {
    std::memcpy(ring[static_cast<std::size_t>(y % height)].data(), page.line(y), lineBytes);
  };
  for (int y = 0; y < std::min(below, page.heightPx); ++y) load(y);
  for (int y = 0; y < page.heightPx; ++y) {
    if (y + below < page.heightPx) load(y + below);
    std::uint8_t* const line = page.line(y);
    for (int other = std::max(0, y - above); other <= std::min(page.heightPx - 1, y + below); ++other) {
      const std::uint8_t* const at = ring[static_cast<std::size_t>(other % height)].data();
      for (std::size_t x = 0; x < lineBytes; ++x) line[x] = std::min(line[x], at[x]);
    }
  }
}

}  // namespace

bool thickenText(Page& page, const Request& request) {
  const int level = std::clamp(request.param.thickTextLevel, 1, 5);
  const auto sidePx = [&](Along along) {
    return 1 + std::max(1, static_cast<int>(std::lround(level * page.dpi(along) / 300.0)));
  };
  const int width = sidePx(Along::Width);
  const int height = sidePx(Along::Height);
  if (page.isMono()) {
    page = monoPage(page, *owned(pixDilateBrick(nullptr, inkBelow(page, 0).get(), width, height)));
  } else {
    darken(page, width, height);
  }
  return true;
}

}  // namespace image_enhance
