// Noise removal: specks that are small and lie alone.
#include "paint.h"
#include "steps.h"

namespace image_enhance {
namespace {

constexpr int kFaintest = 40;  // levels below the paper from which something counts as a speck

// The record's lengths are hundredths of a pixel at the resolution that its first value names: 100, 120, 120, 500 are
// specks of up to 1.2 by 1.2 and 5 clear pixels around them, at 100 dpi.
int scaled(std::int32_t hundredths, std::int32_t baseDpi, const Page& page) {
  const double px = std::clamp(hundredths, 0, 5000) / 100.0 * page.dpi() / std::clamp(baseDpi, 25, 4800);
  return std::clamp(static_cast<int>(std::lround(px)), 1, 128);
}

}  // namespace

bool removeNoise(Page& page, const Request& request) {
  const auto& [base, width, height, clear, isRemoved] = request.param.noiseRemoval.value;
  if (isRemoved == 0) return false;
  const int clearPx = scaled(clear, base, page);
  const PixPtr ink = inkBelow(page, page.isMono() ? 0 : paperLevel(histogramOf(page)) - kFaintest);
  const PixPtr small = owned(pixSelectBySize(ink.get(), scaled(width, base, page), scaled(height, base, page), 8,
                                             L_SELECT_IF_BOTH, L_SELECT_IF_LTE, nullptr));
  // The dot of an i and a full stop belong to what stands beside them. Specks do not protect each other.
  const PixPtr larger = owned(pixSubtract(nullptr, ink.get(), small.get()));
  const PixPtr protectedArea = owned(pixDilateBrick(nullptr, larger.get(), 2 * clearPx + 1, 2 * clearPx + 1));
  pixAnd(protectedArea.get(), protectedArea.get(), small.get());
  const PixPtr protectedDots = owned(pixSeedfillBinary(nullptr, protectedArea.get(), small.get(), 8));
  PixPtr specks = owned(pixSubtract(nullptr, small.get(), protectedDots.get()));
  // The rim that is too pale to count.
  if (!page.isMono()) specks = owned(pixDilateBrick(nullptr, specks.get(), 5, 5));
  return paintFromAround(page, *specks, 64);
}

}  // namespace image_enhance
