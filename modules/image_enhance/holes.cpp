// Punch-hole removal: round spots of one shade, of the size of a punched hole, near an edge.
#include <cmath>
#include <cstdlib>

#include "paint.h"
#include "steps.h"

namespace image_enhance {
namespace {

using orvalle_scan_api::IE_PUNCHHOLE;

constexpr double kLargestMm = 10;
constexpr double kRimMm = 0.7;        // the shadow around a hole
constexpr double kGrainMm = 0.25;     // of one shade in spite of a pixel of another
constexpr int kPercentOfPaper = 60;   // as bright is a hole at most that has no tape behind it; its shadow is brighter
constexpr double kMostUneven = 0.08;  // of its box in which a hole may differ from a disc

struct Zone {
  int left, top, right, bottom;
};

// Where holes are looked for: the record's margins are millimetres, in the order left, top, right, bottom. A hole
// counts when its middle lies within one of them.
Zone insideOf(const Page& page, const IE_PUNCHHOLE& hole) {
  const auto px = [&](int i, Along along) { return page.pxOfMm(std::clamp(hole.margin[i], 0, 10000), along); };
  return {px(0, Along::Width), px(1, Along::Height), page.widthPx - px(2, Along::Width),
          page.heightPx - px(3, Along::Height)};
}

int levelAt(const Page& page, int x, int y) {
  const std::uint8_t* const pixel = page.line(y) + static_cast<std::ptrdiff_t>(x) * page.channels();
  return page.isColor() ? luma(pixel) : pixel[0];
}

// What could be seen through a hole: the colour tape behind the paper, or darkness.
PixPtr spots(const Page& page, const IE_PUNCHHOLE& hole) {
  if (page.isMono()) return inkBelow(page, 0);
  if (hole.hasColorTape == 0) return inkBelow(page, paperLevel(histogramOf(page)) * kPercentOfPaper / 100);
  PixPtr spots = inkBelow(page, static_cast<int>(std::min<std::int64_t>(std::int64_t{hole.grayHigh} + 1, 256)));
  const PixPtr darker = inkBelow(page, std::max(hole.grayLow, 0));
  pixSubtract(spots.get(), spots.get(), darker.get());
  return spots;
}

// Spots of less than a width go: letters and rules that a hole was punched through, and that would be a part of it.
PixPtr withoutStrokes(const PixPtr& spots, const Page& page, double widthMm) {
  const auto px = [&](double mm, Along along) { return std::max(1, page.pxOfMm(mm, along)); };
  const PixPtr even =
      owned(pixCloseSafeBrick(nullptr, spots.get(), px(kGrainMm, Along::Width), px(kGrainMm, Along::Height)));
  return owned(pixOpenBrick(nullptr, even.get(), px(widthMm, Along::Width), px(widthMm, Along::Height)));
}

// Whether the inner part of a spot is of one shade, so that a round picture is not taken for a hole.
bool isEven(const Page& page, const Box& box, int step) {
  if (page.isMono()) return true;
  std::int64_t sum = 0;
  std::int64_t count = 0;
  const auto forEach = [&](auto visit) {
    for (int y = box.y + box.h / 4; y < box.y + box.h - box.h / 4; ++y) {
      for (int x = box.x + box.w / 4; x < box.x + box.w - box.w / 4; ++x) visit(levelAt(page, x, y));
    }
  };
  forEach([&](int level) { sum += level, ++count; });
  if (count == 0) return false;
  const auto mean = static_cast<int>(sum / count);
  std::int64_t deviations = 0;
  forEach([&](int level) { deviations += std::abs(level - mean); });
  return deviations <= count * std::int64_t{std::max(step, 1)};
}

// Whether a spot is the disc that its box tells, and not a letter of the same size.
bool isRound(const Pix& spot, const Box& box, const Page& page) {
  const double widthInches = static_cast<double>(box.w) / page.dpi(Along::Width);
  const double heightInches = static_cast<double>(box.h) / page.dpi(Along::Height);
  if (std::abs(widthInches - heightInches) * 5 > std::max(widthInches, heightInches)) return false;
  int different = 0;
  for (int y = 0; y < box.h; ++y) {
    const BitLine line(spot, y);
    const double v = (2 * y + 1.0) / box.h - 1;
    for (int x = 0; x < box.w; ++x) {
      const double u = (2 * x + 1.0) / box.w - 1;
      different += line[x] != (u * u + v * v <= 1) ? 1 : 0;
    }
  }
  return different < kMostUneven * box.w * box.h;
}

}  // namespace

bool removePunchHoles(Page& page, const Request& request) {
  const IE_PUNCHHOLE& hole = request.param.punchHole;
  const Zone inside = insideOf(page, hole);
  const int leastMm = std::clamp(hole.areaLimit, 1, 9);
  const PixPtr cleared = withoutStrokes(spots(page, hole), page, leastMm / 4.0);
  const PixPtr large = owned(pixSelectBySize(cleared.get(), std::max(4, page.pxOfMm(leastMm, Along::Width)),
                                             std::max(4, page.pxOfMm(leastMm, Along::Height)), 8, L_SELECT_IF_BOTH,
                                             L_SELECT_IF_GTE, nullptr));
  const int widest = page.pxOfMm(kLargestMm, Along::Width);
  const int highest = page.pxOfMm(kLargestMm, Along::Height);
  const PixPtr mask = owned(pixCreate(page.widthPx, page.heightPx, 1));
  forEachPiece(*large, [&](Pix& piece, const Box& box) {
    if (box.w > widest || box.h > highest) return;
    const int middleX = box.x + box.w / 2;
    const int middleY = box.y + box.h / 2;
    if (middleX >= inside.left && middleX < inside.right && middleY >= inside.top && middleY < inside.bottom) return;
    if (!isRound(piece, box, page) || !isEven(page, box, hole.step)) return;
    pixRasterop(mask.get(), box.x, box.y, box.w, box.h, PIX_PAINT, &piece, 0, 0);
  });
  const PixPtr wide = owned(pixDilateBrick(nullptr, mask.get(), 2 * page.pxOfMm(kRimMm, Along::Width) + 1,
                                           2 * page.pxOfMm(kRimMm, Along::Height) + 1));
  if (hole.fillMode == 0) return paintFlat(page, *wide, {});
  if (hole.fillMode == 2) return paintFlat(page, *wide, paperColor(page));
  return paintFromAround(page, *wide, 2 * std::max(widest, highest));
}

}  // namespace image_enhance
