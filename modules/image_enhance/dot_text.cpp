// Dot-text joining: the dots that a needle printer draws letters with become strokes. Text whose strokes are whole
// already is left alone: only small pieces of ink are joined, and only with each other.
#include <cmath>
#include <cstring>

#include "paint.h"
#include "steps.h"

namespace image_enhance {
namespace {

constexpr double kNeedlesPerInch = 72;

// From needle to needle, in pixels.
struct Pitch {
  double x, y;
};

// Where the page does not tell its resolution, the record's mode does: 1 stands for less than 600 dpi, 2 for more.
Pitch pitchOn(const Page& page, std::int32_t mode) {
  if (page.dpiX > 0 || page.dpiY > 0) {
    return {page.dpi(Along::Width) / kNeedlesPerInch, page.dpi(Along::Height) / kNeedlesPerInch};
  }
  const double pitch = (mode == 2 ? 600 : 300) / kNeedlesPerInch;
  return {pitch, pitch};
}

struct SelDeleter {
  void operator()(Sel* sel) const { selDestroy(&sel); }
};

PixPtr selectUpTo(const Pix& pix, double pitches, const Pitch& pitch, int which) {
  return owned(pixSelectBySize(const_cast<Pix*>(&pix), static_cast<int>(std::lround(pitches * pitch.x)),
                               static_cast<int>(std::lround(pitches * pitch.y)), 8, which, L_SELECT_IF_LTE, nullptr));
}

// What lies between bits that are on a slant, rising or falling, of less than this width and height.
PixPtr closeSlanting(Pix& pix, int width, int height, bool isRising) {
  const std::unique_ptr<Sel, SelDeleter> slant(selCreate(height, width, nullptr));
  if (slant == nullptr) throw LibraryFailure();
  selSetOrigin(slant.get(), height / 2, width / 2);
  const int steps = std::max(width, height);
  for (int i = 0; i < steps; ++i) {
    const int row = i * height / steps;
    selSetElement(slant.get(), isRising ? height - 1 - row : row, i * width / steps, SEL_HIT);
  }
  return owned(pixCloseSafe(nullptr, &pix, slant.get()));
}

// The pixels between dots that belong to a stroke.
PixPtr gapsBetweenDots(const Pix& ink, const Pitch& pitch) {
  const int width = std::max(2, static_cast<int>(std::lround(pitch.x)) + 1);
  const int height = std::max(2, static_cast<int>(std::lround(pitch.y)) + 1);
  const PixPtr dots = selectUpTo(*selectUpTo(ink, 3, pitch, L_SELECT_IF_BOTH), 1.5, pitch, L_SELECT_IF_EITHER);
  const PixPtr strokes = owned(pixCloseSafeBrick(nullptr, dots.get(), width, height));
  for (const bool isRising : {false, true}) {
    pixOr(strokes.get(), strokes.get(), closeSlanting(*dots, width, height, isRising).get());
  }
  return owned(pixSubtract(nullptr, strokes.get(), const_cast<Pix*>(&ink)));
}

// The darkest pixel outside the mask within a pitch about (x, y): the ink of the dots on either side.
const std::uint8_t* darkestAround(const Page& page, const Pix& mask, int x, int y, const Pitch& pitch) {
  const int reachX = static_cast<int>(pitch.x) + 1;
  const int reachY = static_cast<int>(pitch.y) + 1;
  const std::uint8_t* darkest = nullptr;
  int least = 256;
  for (int atY = std::max(0, y - reachY); atY <= std::min(page.heightPx - 1, y + reachY); ++atY) {
    const BitLine masked(mask, atY);
    for (int atX = std::max(0, x - reachX); atX <= std::min(page.widthPx - 1, x + reachX); ++atX) {
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
  const Pitch pitch = pitchOn(page, request.param.dotTextCombineMode);
  const PixPtr ink = inkBelow(page, page.isMono() ? 0 : automaticThreshold(histogramOf(page)));
  const PixPtr gaps = gapsBetweenDots(*ink, pitch);
  if (page.isMono()) {
    pixOr(ink.get(), ink.get(), gaps.get());
    page = monoPage(page, *ink);
    return true;
  }
  return forEachMasked(page, *gaps, [&](int x, int y) {
    const std::uint8_t* const ink = darkestAround(page, *gaps, x, y, pitch);
    if (ink == nullptr) return;
    std::memcpy(page.line(y) + static_cast<std::ptrdiff_t>(x) * page.channels(), ink,
                static_cast<std::size_t>(page.channels()));
  });
}

}  // namespace image_enhance
