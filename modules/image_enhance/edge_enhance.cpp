// Sharper edges: what a blur takes from a pixel is added to it (an unsharp mask).
#include "blur.h"
#include "steps.h"

namespace image_enhance {
namespace {

constexpr double kSigmaMm = 0.1016;  // 1.2 pixels at 300 dpi
constexpr int kGrain = 3;            // differences up to this many levels are paper, not edges

}  // namespace

bool enhanceEdges(Page& page, const Request& request) {
  const int halves = std::clamp(request.param.edgeEnhanceLevel, 1, 5);  // of the difference
  Blur blurred(page, kSigmaMm);
  for (int y = 0; y < page.heightPx; ++y) {
    const std::uint8_t* const soft = blurred.nextLine();
    std::uint8_t* const line = page.line(y);
    for (std::size_t x = 0; x < page.lineBytes(); ++x) {
      const int difference = line[x] - soft[x];
      const int edge = difference > kGrain ? difference - kGrain : difference < -kGrain ? difference + kGrain : 0;
      line[x] = static_cast<std::uint8_t>(std::clamp(line[x] + edge * halves / 2, 0, 255));
    }
  }
  return true;
}

}  // namespace image_enhance
