// Dot-text joining: the dots that a needle printer draws letters with become strokes. Text whose strokes are whole
// already is left alone: only small pieces of ink are joined, and only with each other.
#include <cmath>
#include <cstring>

#include "paint.h"
#include "steps.h"

namespace image_enhance {
namespace {

constexpr double kNeedlesPerInch = 72;

// Where the page does not tell its resolution, the record's mode does: 1 stands for less than 600 dpi, 2 for more.
double pitchPx(const Page& page, std::int32_t mode) {
  const bool isTold = page.dpiX > 0 || page.dpiY > 0;
  return (isTold ? page.dpi() : mode == 2 ? 600 : 300) / kNeedlesPerInch;
}

struct SelDeleter {
  void operator()(Sel* sel) const { selDestroy(&sel); }
};

PixPtr selectUpTo(const Pix& pix, int sidePx, int which) {
  return owned(pixSelectBySize(const_cast<Pix*>(&pix), sidePx, sidePx, 8, which, L_SELECT_IF_LTE, nullptr));
}

// What lies between bits that are less than size apart on a slant, rising or falling.
PixPtr closeSlanting(Pix& pix, int size, bool isRising) {
  const std::unique_ptr<Sel, SelDeleter> slant(selCreate(size, size, nullptr));
  if (slant == nullptr) throw LibraryFailure();
  selSetOrigin(slant.get(), size / 2, size / 2);
  for (int i = 0; i < size; ++i) selSetElement(slant.get(), isRising ? size - 1 - i : i, i, SEL_HIT);
  return owned(pixCloseSafe(nullptr, &pix, slant.get()));
}

// The pixels between dots that belong to a stroke.
PixPtr gapsBetweenDots(const Pix& ink, double pitch) {
  const auto thin = static_cast<int>(std::lround(1.5 * pitch));
  const auto along = static_cast<int>(std::lround(3 * pitch));
  const int closed = std::max(2, static_cast<int>(std::lround(pitch)) + 1);
  const PixPtr dots = selectUpTo(*selectUpTo(ink, along, L_SELECT_IF_BOTH), thin, L_SELECT_IF_EITHER);
  const PixPtr strokes = owned(pixCloseSafeBrick(nullptr, dots.get(), closed, closed));
  for (const bool isRising : {false, true}) {
    pixOr(strokes.get(), strokes.get(), closeSlanting(*dots, closed, isRising).get());
  }
  return owned(pixSubtract(nullptr, strokes.get(), const_cast<Pix*>(&ink)));
}

// The darkest pixel outside the mask within a square about (x, y): the ink of the dots on either side.
const std::uint8_t* darkestAround(const Page& page, const Pix& mask, int x, int y, int reachPx) {
  const std::uint8_t* darkest = nullptr;
  int least = 256;
  for (int atY = std::max(0, y - reachPx); atY <= std::min(page.heightPx - 1, y + reachPx); ++atY) {
    const BitLine masked(mask, atY);
    for (int atX = std::max(0, x - reachPx); atX <= std::min(page.widthPx - 1, x + reachPx); ++atX) {
      if (masked[atX]) continue;
      const std::uint8_t* const pixel = page.line(atY) + static_cast<std::ptrdiff_t>(atX) * page.channels();
      const int level = page.isColor() ? luma(pixel) : pixel[0];
      if (level < least) {
        least = level;
        darkest = pixel;
      }
    }
  }
  return darkest;
}

}  // namespace

bool joinDots(Page& page, const Request& request) {
  const double pitch = pitchPx(page, request.param.dotTextCombineMode);
  const PixPtr ink = inkBelow(page, page.isMono() ? 0 : automaticThreshold(histogramOf(page)));
  const PixPtr gaps = gapsBetweenDots(*ink, pitch);
  if (page.isMono()) {
    pixOr(ink.get(), ink.get(), gaps.get());
    page = monoPage(page, *ink);
    return true;
  }
  return forEachMasked(page, *gaps, [&](int x, int y) {
    const std::uint8_t* const ink = darkestAround(page, *gaps, x, y, static_cast<int>(pitch) + 1);
    if (ink == nullptr) return;
    std::memcpy(page.line(y) + static_cast<std::ptrdiff_t>(x) * page.channels(), ink,
                static_cast<std::size_t>(page.channels()));
  });
}

}  // namespace image_enhance
