// Punch-hole removal: round spots of one shade, of the size of a punched hole, near an edge.
#include <cmath>
#include <cstdlib>

#include "paint.h"
#include "steps.h"

namespace image_enhance {
namespace {

using orvalle_scan_api::IE_PUNCHHOLE;

constexpr double kLargestMm = 10;
constexpr double kRimMm = 0.5;         // the shadow around a hole
constexpr int kLevelsBelowPaper = 64;  // a hole without a tape behind it is at least so much darker
constexpr double kRoundShare = 0.785;  // of its box that a disc fills

struct Zone {
  int left, top, right, bottom;
};

// Where holes are looked for: the record's margins are millimetres, in the order left, top, right, bottom. A hole
// counts when its middle lies within one of them.
Zone insideOf(const Page& page, const IE_PUNCHHOLE& hole) {
  const auto px = [&](int i) { return page.pxOfMm(std::clamp(hole.margin[i], 0, 10000)); };
  return {px(0), px(1), page.widthPx - px(2), page.heightPx - px(3)};
}

int levelAt(const Page& page, int x, int y) {
  const std::uint8_t* const pixel = page.line(y) + static_cast<std::ptrdiff_t>(x) * page.channels();
  return page.isColor() ? luma(pixel) : pixel[0];
}

// What could be seen through a hole: the colour tape behind the paper, or darkness.
PixPtr spots(const Page& page, const IE_PUNCHHOLE& hole) {
  if (page.isMono()) return inkBelow(page, 0);
  if (hole.hasColorTape == 0) return inkBelow(page, paperLevel(histogramOf(page)) - kLevelsBelowPaper);
  PixPtr spots = inkBelow(page, static_cast<int>(std::min<std::int64_t>(std::int64_t{hole.grayHigh} + 1, 256)));
  const PixPtr darker = inkBelow(page, std::max(hole.grayLow, 0));
  pixSubtract(spots.get(), spots.get(), darker.get());
  return spots;
}

// Whether the inner part of a spot is of one shade, so that a round picture is not taken for a hole.
bool isEven(const Page& page, int x, int y, int width, int height, int step) {
  if (page.isMono()) return true;
  std::int64_t sum = 0;
  std::int64_t count = 0;
  const auto forEach = [&](auto visit) {
    for (int atY = y + height / 4; atY < y + height - height / 4; ++atY) {
      for (int atX = x + width / 4; atX < x + width - width / 4; ++atX) visit(levelAt(page, atX, atY));
    }
  };
  forEach([&](int level) { sum += level, ++count; });
  if (count == 0) return false;
  const auto mean = static_cast<int>(sum / count);
  std::int64_t deviations = 0;
  forEach([&](int level) { deviations += std::abs(level - mean); });
  return deviations <= count * std::int64_t{std::max(step, 1)};
}

bool isRound(const Pix& spot, int width, int height) {
  if (std::abs(width - height) * 5 > std::max(width, height)) return false;
  l_int32 area = 0;
  pixCountPixels(const_cast<Pix*>(&spot), &area, nullptr);
  return std::abs(static_cast<double>(area) / (width * height) - kRoundShare) < 0.07;
}

struct PixaDeleter {
  void operator()(Pixa* pixa) const { pixaDestroy(&pixa); }
};

}  // namespace

bool removePunchHoles(Page& page, const Request& request) {
  const IE_PUNCHHOLE& hole = request.param.punchHole;
  const Zone inside = insideOf(page, hole);
  const int smallest = std::max(4, page.pxOfMm(std::clamp(hole.areaLimit, 1, 9)));
  const int largest = page.pxOfMm(kLargestMm);
  const PixPtr large = owned(
      pixSelectBySize(spots(page, hole).get(), smallest, smallest, 8, L_SELECT_IF_BOTH, L_SELECT_IF_GTE, nullptr));
  Pixa* shapes = nullptr;
  const BoxaPtr boxes = owned(pixConnComp(large.get(), &shapes, 8));
  const std::unique_ptr<Pixa, PixaDeleter> owner(shapes);
  const PixPtr mask = owned(pixCreate(page.widthPx, page.heightPx, 1));
  for (int i = 0; i < boxaGetCount(boxes.get()); ++i) {
    l_int32 x = 0, y = 0, width = 0, height = 0;
    boxaGetBoxGeometry(boxes.get(), i, &x, &y, &width, &height);
    if (width > largest || height > largest) continue;
    const int middleX = x + width / 2;
    const int middleY = y + height / 2;
    if (middleX >= inside.left && middleX < inside.right && middleY >= inside.top && middleY < inside.bottom) continue;
    const PixPtr shape = owned(pixaGetPix(shapes, i, L_CLONE));
    if (!isRound(*shape, width, height) || !isEven(page, x, y, width, height, hole.step)) continue;
    pixRasterop(mask.get(), x, y, width, height, PIX_PAINT, shape.get(), 0, 0);
  }
  const int rim = 2 * page.pxOfMm(kRimMm) + 1;
  const PixPtr wide = owned(pixDilateBrick(nullptr, mask.get(), rim, rim));
  if (hole.fillMode == 0) return paintFlat(page, *wide, {});
  if (hole.fillMode == 2) return paintFlat(page, *wide, paperColor(page));
  return paintFromAround(page, *wide, 2 * largest);
}

}  // namespace image_enhance
