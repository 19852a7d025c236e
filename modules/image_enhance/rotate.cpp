// Automatic rotation: text that lies on its side or on its head is turned upright.
#include <cmath>

#include "background.h"
#include "histogram.h"
#include "pix.h"
#include "steps.h"
#include "stretch.h"

namespace image_enhance {
namespace {

constexpr int kFinestDpi = 300;       // the library knows the shapes of text at 150 to 300 dpi
constexpr int kSmallestSidePx = 100;  // nothing worth reading is smaller

PixPtr inkOf(const Page& page) {
  if (page.isMono()) return inkBelow(page, 0);
  Page gray = grayOf(page);
  whitenPaper(gray, page.pxOfMm(4, Along::Width), page.pxOfMm(4, Along::Height), 2);
  return inkBelow(gray, automaticThreshold(histogramOf(gray)));
}

bool isLarge(const Pix& pix, int sidePx) {
  return std::min(pixGetWidth(const_cast<Pix*>(&pix)), pixGetHeight(const_cast<Pix*>(&pix))) >= sidePx;
}

// The ink at one resolution both ways, which is one that letters are known at, if the page is large enough for that.
PixPtr readableInk(const Page& page) {
  PixPtr ink = inkOf(page);
  const int dpiX = page.dpi(Along::Width);
  const int dpiY = page.dpi(Along::Height);
  int dpi = std::max(dpiX, dpiY);
  if (dpiX != dpiY) {
    dpi = std::min(dpi, kFinestDpi);
    ink = owned(pixScale(ink.get(), static_cast<float>(dpi) / static_cast<float>(dpiX),
                         static_cast<float>(dpi) / static_cast<float>(dpiY)));
  }
  for (; dpi > kFinestDpi * 4 / 3 && isLarge(*ink, 2 * kSmallestSidePx); dpi /= 2) {
    ink = owned(pixReduceRankBinary2(ink.get(), 2, nullptr));
  }
  return ink;
}

// The library counts letters that rise above and hang below their lines, as standard deviations from chance: positive
// for one direction, negative for its opposite. Text in the other two directions gives little.
bool isCertain(float confidence, float other) {
  constexpr float kLeast = 8;
  constexpr float kLeastRatio = 2.5F;
  return std::abs(confidence) > kLeast && std::abs(confidence) > kLeastRatio * std::abs(other);
}

// How many quarter turns clockwise make the text upright; 0 where that is not certain.
int quarterTurns(const Page& page) {
  if (std::min(page.widthPx, page.heightPx) < kSmallestSidePx) return 0;
  const PixPtr ink = readableInk(page);
  if (!isLarge(*ink, kSmallestSidePx)) return 0;
  l_float32 upright = 0;
  l_float32 turnedLeft = 0;
  if (pixOrientDetect(ink.get(), &upright, &turnedLeft, 0, 0) != 0) throw LibraryFailure();
  if (isCertain(upright, turnedLeft)) return upright > 0 ? 0 : 2;
  if (isCertain(turnedLeft, upright)) return turnedLeft > 0 ? 1 : 3;
  return 0;
}

// Grey and colour in squares, so that the lines of one square stay in the cache while it is turned.
template <int channels>
void turnPixels(const Page& from, Page& to, int turns) {
  constexpr int kSquarePx = 64;
  const auto turnPixel = [&](int x, int y) {
    const int toX = turns == 1 ? to.widthPx - 1 - y : turns == 2 ? to.widthPx - 1 - x : y;
    const int toY = turns == 1 ? x : turns == 2 ? to.heightPx - 1 - y : to.heightPx - 1 - x;
    const std::uint8_t* const source = from.line(y) + static_cast<std::ptrdiff_t>(x) * channels;
    std::uint8_t* const target = to.line(toY) + static_cast<std::ptrdiff_t>(toX) * channels;
    for (int i = 0; i < channels; ++i) target[i] = source[i];
  };
  for (int top = 0; top < from.heightPx; top += kSquarePx) {
    for (int left = 0; left < from.widthPx; left += kSquarePx) {
      for (int y = top; y < std::min(from.heightPx, top + kSquarePx); ++y) {
        for (int x = left; x < std::min(from.widthPx, left + kSquarePx); ++x) turnPixel(x, y);
      }
    }
  }
}

// The page in its new position, its resolutions exchanged where it lies on its side.
Page turned(const Page& page, int turns) {
  PageForm form = page;
  if (turns != 2) {
    std::swap(form.widthPx, form.heightPx);
    std::swap(form.dpiX, form.dpiY);
    std::swap(form.pixelsPerMetreX, form.pixelsPerMetreY);
  }
  if (page.isMono()) return monoPage(form, *owned(pixRotateOrth(inkBelow(page, 0).get(), turns)));
  Page result(form);
  page.isColor() ? turnPixels<3>(page, result, turns) : turnPixels<1>(page, result, turns);
  return result;
}

int scaledSide(int sidePx, int toDpi, int fromDpi) {
  const double px = static_cast<double>(sidePx) * toDpi / fromDpi;
  return static_cast<int>(std::lround(std::clamp(px, 1.0, static_cast<double>(kMaxSidePx))));
}

// Gives a page that was turned on its side the resolutions back that it was scanned with: the scan was ordered with
// one along the width and another along the height, and whoever raises the resolution later goes by that order.
Page atResolutionOf(const PageForm& scanned, Page turnedPage) {
  const bool isTold = scanned.dpiX > 0 && scanned.dpiY > 0;
  if (!isTold || turnedPage.dpiX == scanned.dpiX) return turnedPage;
  Page result = stretched(turnedPage, scaledSide(turnedPage.widthPx, scanned.dpiX, scanned.dpiY),
                          scaledSide(turnedPage.heightPx, scanned.dpiY, scanned.dpiX));
  std::swap(result.dpiX, result.dpiY);
  std::swap(result.pixelsPerMetreX, result.pixelsPerMetreY);
  return result;
}

}  // namespace

bool turnUpright(Page& page, const Request&) {
  const int turns = quarterTurns(page);
  if (turns == 0) return false;
  page = atResolutionOf(page, turned(page, turns));
  return true;
}

}  // namespace image_enhance
