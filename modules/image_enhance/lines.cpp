// Line removal: ruled lines and the boxes of forms, without the strokes of text that cross them.
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

struct LineSize {
  int lengthPx;     // at least
  int thicknessPx;  // at most
  int gapPx;        // bridged
};

// The record has hundredths of a millimetre; 0 is the usual size.
int pxOf(std::int32_t hundredths, double usualMm, const Page& page, int most) {
  const double mm = hundredths > 0 ? hundredths / 100.0 : usualMm;
  return std::clamp(page.pxOfMm(std::min(mm, 1000.0)), 1, most);
}

LineSize sizeOf(const orvalle_scan_api::IE_LINEREMOVAL& line, std::int32_t gap, const Page& page) {
  const int thickness = pxOf(line.second, 0.7, page, 100);
  return {std::max(4 * thickness, pxOf(line.first, 15, page, 1 << 14)), thickness,
          gap > 0 ? pxOf(gap, 0, page, 100) : 0};
}

PixPtr open(const PixPtr& pix, bool isVertical, int along, int across) {
  return owned(isVertical ? pixOpenBrick(nullptr, pix.get(), across, along)
                          : pixOpenBrick(nullptr, pix.get(), along, across));
}

// Pixels of long, possibly slightly slanting lines, things as thick as text strokes included.
PixPtr longRuns(const PixPtr& ink, bool isVertical, const LineSize& size) {
  PixPtr pix = owned(isVertical ? pixDilateBrick(nullptr, ink.get(), 3, 1) : pixDilateBrick(nullptr, ink.get(), 1, 3));
  if (size.gapPx > 0) {
    pix = owned(isVertical ? pixCloseSafeBrick(nullptr, pix.get(), 1, size.gapPx + 1)
                           : pixCloseSafeBrick(nullptr, pix.get(), size.gapPx + 1, 1));
  }
  // A third of the length follows a slant by steps; the pieces together have to be long enough.
  pix = open(pix, isVertical, std::clamp(size.lengthPx / 3, 3, kLongestPiecePx), 1);
  pix = owned(pixSelectBySize(pix.get(), size.lengthPx, size.lengthPx, 8, isVertical ? L_SELECT_HEIGHT : L_SELECT_WIDTH,
                              L_SELECT_IF_GTE, nullptr));
  return owned(pixAnd(nullptr, pix.get(), ink.get()));
}

}  // namespace

// A is the lines along the page's width, B those along its height.
bool removeLines(Page& page, const Request& request) {
  const orvalle_scan_api::_IE_PARAM& param = request.param;
  const PixPtr ink = inkBelow(page, page.isMono() ? 0 : paperLevel(histogramOf(page)) - kFaintest);
  const PixPtr mask = owned(pixCreate(page.widthPx, page.heightPx, 1));
  const PixPtr crossings = owned(pixCopy(nullptr, ink.get()));
  int thickestPx = 0;
  for (const bool isVertical : {false, true}) {
    const orvalle_scan_api::IE_LINEREMOVAL& line = isVertical ? param.lineRemovalB : param.lineRemovalA;
    if (line.enable == 0) {
      pixClearAll(crossings.get());
      continue;
    }
    const LineSize size = sizeOf(line, param.lineRemovalThird, page);
    const PixPtr runs = longRuns(ink, isVertical, size);
    const PixPtr across = open(ink, !isVertical, size.thicknessPx + 1, 1);
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
