// Sharper edges: what a blur takes from a pixel is added to it (an unsharp mask).
#include "blur.h"
#include "steps.h"

namespace image_enhance {
namespace {

constexpr double kSigmaMm = 0.1016;  // 1.2 pixels at 300 dpi
constexpr int kGrain = 3;            // differences up to this many levels are paper, not edges

// Adds so many halves of the difference. The two lines are different ones.
void sharpen(std::uint8_t* __restrict line, const std::uint8_t* __restrict soft, std::size_t count, int halves) {
  for (std::size_t x = 0; x < count; ++x) {
    const int difference = line[x] - soft[x];
    const int edge = std::max(difference - kGrain, 0) + std::min(difference + kGrain, 0);
    line[x] = static_cast<std::uint8_t>(std::clamp(line[x] + edge * halves / 2, 0, 255));
  }
}

}  // namespace

bool enhanceEdges(Page& page, const Request& request) {
  const int halves = std::clamp(request.param.edgeEnhanceLevel, 1, 5);
  Blur blurred(page, kSigmaMm);
  for (int y = 0; y < page.heightPx; ++y) sharpen(page.line(y), blurred.nextLine(), page.lineBytes(), halves);
  return true;
}

}  // namespace image_enhance
