// Noise removal: specks that are small and lie alone. Dots that belong to something stay: the dot of an i and the full
// stop to the letters beside them, the dots of a screen, of needle print and of a leader (". . . .") to one another.
#include "paint.h"
#include "specks.h"
#include "steps.h"

namespace image_enhance {
namespace {

constexpr int kFaintest = 40;          // levels below the paper from which something counts as a speck
constexpr double kTogetherMm = 0.25;   // the clear paper between dots of one screen or letter at most
constexpr double kLeaderStepMm = 3;    // from one dot of a leader to the next at most
constexpr double kUnevennessMm = 0.1;  // of the dots of a leader at most

// The record's lengths are hundredths of a pixel at the resolution that its first value names: 100, 120, 120, 500 are
// specks of up to 1.2 by 1.2 and 5 clear pixels around them, at 100 dpi.
int scaled(std::int32_t hundredths, std::int32_t baseDpi, const Page& page, Along along) {
  const double px = std::clamp(hundredths, 0, 5000) / 100.0 * page.dpi(along) / std::clamp(baseDpi, 25, 4800);
  return std::clamp(static_cast<int>(std::lround(px)), 1, 128);
}

SpeckReach reachOn(const Page& page) {
  return {std::max(1, page.pxOfMm(kTogetherMm, Along::Width)), std::max(1, page.pxOfMm(kTogetherMm, Along::Height)),
          page.pxOfMm(kLeaderStepMm, Along::Width), std::max(1, page.pxOfMm(kUnevennessMm, Along::Width))};
}

}  // namespace

bool removeNoise(Page& page, const Request& request) {
  const auto& [base, width, height, clear, isRemoved] = request.param.noiseRemoval.value;
  if (isRemoved == 0) return false;
  const PixPtr ink = inkBelow(page, page.isMono() ? 0 : paperLevel(histogramOf(page)) - kFaintest);
  const PixPtr small =
      owned(pixSelectBySize(ink.get(), scaled(width, base, page, Along::Width),
                            scaled(height, base, page, Along::Height), 8, L_SELECT_IF_BOTH, L_SELECT_IF_LTE, nullptr));
  const PixPtr larger = owned(pixSubtract(nullptr, ink.get(), small.get()));
  pixOr(larger.get(), larger.get(), specksInCompany(*small, reachOn(page)).get());
  const PixPtr besideLarger =
      owned(pixDilateBrick(nullptr, larger.get(), 2 * scaled(clear, base, page, Along::Width) + 1,
                           2 * scaled(clear, base, page, Along::Height) + 1));
  pixAnd(besideLarger.get(), besideLarger.get(), small.get());
  const PixPtr dotsOfLetters = owned(pixSeedfillBinary(nullptr, besideLarger.get(), small.get(), 8));
  PixPtr specks = owned(pixSubtract(nullptr, small.get(), dotsOfLetters.get()));
  // The rim that is too pale to count.
  if (!page.isMono()) specks = owned(pixDilateBrick(nullptr, specks.get(), 5, 5));
  return paintFromAround(page, *specks, 64);
}

}  // namespace image_enhance
