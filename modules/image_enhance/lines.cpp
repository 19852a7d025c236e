// Line removal: ruled lines and the boxes of forms, without the strokes of text that cross them. What is thin
// only because of the light specks in a printed picture, or of the white letters in a black box, is no line.
//
// A line is what is long one way and thin the other; where something as thin lies across it, the crossing pixels are
// long the other way too, and stay:
//
//     ink        long, thin         left
//     ..#..      .....              ..#..
//     #####  ->  ##.##  taken off   ..#..
//     ..#..      .....              ..#..
#include "paint.h"
#include "steps.h"

namespace image_enhance {
namespace {

constexpr int kFaintest = 40;         // levels below the paper from which something counts as a line
constexpr int kLongestPiecePx = 200;  // longer ones take time and tell no more
constexpr double kDarkAreaMm = 3;     // dark both ways over so much is a picture or a box
constexpr double kLightPartMm = 0.7;  // with light parts in it of up to this

struct LineSize {
  int lengthPx;     // at least
  int thicknessPx;  // at most
  int gapPx;        // bridged
};

// The record has hundredths of a millimetre; 0 is the usual size.
int pxOf(std::int32_t hundredths, double usualMm, const Page& page, Along along, int most) {
  const double mm = hundredths > 0 ? hundredths / 100.0 : usualMm;
  return std::clamp(page.pxOfMm(std::min(mm, 1000.0), along), 1, most);
}

LineSize sizeOf(const orvalle_scan_api::IE_LINEREMOVAL& line, std::int32_t gap, const Page& page, bool isVertical) {
  const Along along = isVertical ? Along::Height : Along::Width;
  const Along across = isVertical ? Along::Width : Along::Height;
  const int thickness = pxOf(line.second, 0.7, page, across, 100);
  return {std::max(4 * thickness, pxOf(line.first, 15, page, along, 1 << 14)), thickness,
          gap > 0 ? pxOf(gap, 0, page, along, 100) : 0};
}

// Pixels of long, possibly slightly slanting lines, things as thick as text strokes included.
PixPtr longRuns(const PixPtr& ink, bool isVertical, const LineSize& size) {
  PixPtr pix = owned(isVertical ? pixDilateBrick(nullptr, ink.get(), 3, 1) : pixDilateBrick(nullptr, ink.get(), 1, 3));
  if (size.gapPx > 0) {
    pix = owned(isVertical ? pixCloseSafeBrick(nullptr, pix.get(), 1, size.gapPx + 1)
                           : pixCloseSafeBrick(nullptr, pix.get(), size.gapPx + 1, 1));
  }
  // About a third of the length follows a slant by steps; the pieces together have to be long enough.
  const int piece = std::clamp(size.lengthPx / 3, 3, kLongestPiecePx);
  pix = owned(isVertical ? pixOpenCompBrick(nullptr, pix.get(), 1, piece)
                         : pixOpenCompBrick(nullptr, pix.get(), piece, 1));
  pix = owned(pixSelectBySize(pix.get(), size.lengthPx, size.lengthPx, 8, isVertical ? L_SELECT_HEIGHT : L_SELECT_WIDTH,
                              L_SELECT_IF_GTE, nullptr));
  return owned(pixAnd(nullptr, pix.get(), ink.get()));
}

// Printed pictures and black boxes with white letters: dark over some millimetres but for small light parts. Coarse, as
// a few dots per millimetre are enough for that.
PixPtr darkAreas(const PixPtr& ink, const Page& page) {
  constexpr int kCoarseDpi = 110;
  constexpr int kSmallestSidePx = 64;
  PixPtr coarse = owned(pixCopy(nullptr, ink.get()));
  int factor = 1;
  while (std::max(page.dpi(Along::Width), page.dpi(Along::Height)) / factor > kCoarseDpi &&
         std::min(pixGetWidth(coarse.get()), pixGetHeight(coarse.get())) >= kSmallestSidePx) {
    // Any ink of four pixels counts at first, which closes screens; then half of it.
    coarse = owned(pixReduceRankBinaryCascade(coarse.get(), factor == 1 ? 1 : 2, 0, 0, 0));
    factor *= 2;
  }
  const auto px = [&](double mm, Along along) { return std::max(1, page.pxOfMm(mm, along) / factor); };
  coarse =
      owned(pixCloseSafeBrick(nullptr, coarse.get(), px(kLightPartMm, Along::Width), px(kLightPartMm, Along::Height)));
  coarse = owned(pixOpenBrick(nullptr, coarse.get(), px(kDarkAreaMm, Along::Width), px(kDarkAreaMm, Along::Height)));
  const PixPtr fine = owned(pixExpandBinaryPower2(coarse.get(), factor));
  PixPtr areas = owned(pixCreate(page.widthPx, page.heightPx, 1));
  pixRasterop(areas.get(), 0, 0, page.widthPx, page.heightPx, PIX_SRC, fine.get(), 0, 0);
  return areas;
}

}  // namespace

// A is the lines along the page's width, B those along its height.
bool removeLines(Page& page, const Request& request) {
  const orvalle_scan_api::_IE_PARAM& param = request.param;
  const PixPtr ink = inkBelow(page, page.isMono() ? 0 : paperLevel(histogramOf(page)) - kFaintest);
  const PixPtr dark = darkAreas(ink, page);
  const PixPtr mask = owned(pixCreate(page.widthPx, page.heightPx, 1));
  const PixPtr crossings = owned(pixCopy(nullptr, ink.get()));
  int thickestPx = 0;
  for (const bool isVertical : {false, true}) {
    const orvalle_scan_api::IE_LINEREMOVAL& line = isVertical ? param.lineRemovalB : param.lineRemovalA;
    if (line.enable == 0) {
      pixClearAll(crossings.get());
      continue;
    }
    const LineSize size = sizeOf(line, param.lineRemovalThird, page, isVertical);
    const PixPtr runs = longRuns(ink, isVertical, size);
    pixSubtract(runs.get(), runs.get(), dark.get());
    const int crossing = size.thicknessPx + 1;
    const PixPtr across = owned(isVertical ? pixOpenBrick(nullptr, ink.get(), crossing, 1)
                                           : pixOpenBrick(nullptr, ink.get(), 1, crossing));
    PixPtr thin = owned(pixSubtract(nullptr, runs.get(), across.get()));
    if (!page.isMono()) {
      // The rim that is too pale to count, but nothing of what crosses.
      thin = owned(pixDilateBrick(nullptr, thin.get(), 5, 5));
      pixSubtract(thin.get(), thin.get(), across.get());
    }
    pixOr(mask.get(), mask.get(), thin.get());
    pixAnd(crossings.get(), crossings.get(), runs.get());
    thickestPx = std::max(thickestPx, size.thicknessPx);
  }
  // Where two lines cross, both go, unless it is a solid area.
  const PixPtr solid = owned(pixOpenBrick(nullptr, crossings.get(), thickestPx + 1, thickestPx + 1));
  pixSubtract(crossings.get(), crossings.get(), solid.get());
  pixOr(mask.get(), mask.get(), crossings.get());
  return paintFromAround(page, *mask, 64);
}

}  // namespace image_enhance
