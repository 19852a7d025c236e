// A frame of one colour along the edges of the scanned sheet.
#include <cstring>

#include "steps.h"

namespace image_enhance {
namespace {

// Pixels from x up to end, of one line.
void fill(Page& page, int y, int x, int end, std::uint8_t value) {
  if (x >= end) return;
  std::uint8_t* const line = page.line(y);
  if (!page.isMono()) {
    const auto channels = static_cast<std::size_t>(page.channels());
    std::memset(line + static_cast<std::size_t>(x) * channels, value, static_cast<std::size_t>(end - x) * channels);
    return;
  }
  for (; x < end; ++x) {
    const unsigned bit = 0x80u >> (x % 8);
    line[x / 8] = static_cast<std::uint8_t>(value != 0 ? line[x / 8] | bit : line[x / 8] & ~bit);
  }
}

// A width in the record's unit, pixels or hundredths of a millimetre, as pixels on the page.
int pxOf(std::int32_t width, bool isPixel, int dpi, int sidePx) {
  if (width <= 0) return 0;
  const double px = isPixel ? width : width / 2540.0 * (dpi > 0 ? dpi : 300) + 0.5;
  return px < sidePx ? static_cast<int>(px) : sidePx;
}

}  // namespace

// The record's order is left, right, top, bottom: third stands before second. The fifth is the colour.
bool fillEdges(Page& page, const Request& request) {
  const orvalle_scan_api::IE_EDGEFILL& edge = request.param.edgeFill;
  const int left = pxOf(edge.first, edge.isPixel, page.dpiX, page.widthPx);
  const int right = pxOf(edge.third, edge.isPixel, page.dpiX, page.widthPx);
  const int top = pxOf(edge.second, edge.isPixel, page.dpiY, page.heightPx);
  const int bottom = pxOf(edge.fourth, edge.isPixel, page.dpiY, page.heightPx);
  if (left == 0 && right == 0 && top == 0 && bottom == 0) return false;
  const std::uint8_t value = edge.fifth == 0 ? 0xFF : 0;
  for (int y = 0; y < page.heightPx; ++y) {
    if (y < top || y >= page.heightPx - bottom) {
      fill(page, y, 0, page.widthPx, value);
    } else {
      fill(page, y, 0, left, value);
      fill(page, y, page.widthPx - right, page.widthPx, value);
    }
  }
  return true;
}

}  // namespace image_enhance
