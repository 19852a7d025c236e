#include "settings/PaperSize.h"

#include <algorithm>
#include <iterator>

#include "settings/ConvertUnit.h"

namespace orvalle_scan_api {

namespace {

constexpr PaperListRow tblPaperList[] = {
    // row order is PAPERTYPE
    {0, 0, UNIT_INCH},                // 0 automatic
    {21000, 29700, UNIT_MILLIMETER},  // 1 A4
    {8500, 11000, UNIT_INCH},         // 2 Letter
    {8500, 14000, UNIT_INCH},         // 3 Legal
    {29700, 42000, UNIT_MILLIMETER},  // 4 A3
    {11000, 17000, UNIT_INCH},        // 5 Ledger
    {25700, 36400, UNIT_MILLIMETER},  // 6 JIS B4
    {18200, 25700, UNIT_MILLIMETER},  // 7 JIS B5
    {14800, 21000, UNIT_MILLIMETER},  // 8 A5
    {12800, 18200, UNIT_MILLIMETER},  // 9 JIS B6
    {10500, 14800, UNIT_MILLIMETER},  // 10 A6
    {7250, 10500, UNIT_INCH},         // 11 Executive
    {4000, 6000, UNIT_INCH},          // 12 photo
    {5000, 8000, UNIT_INCH},          // 13 index card
    {3503, 5000, UNIT_INCH},          // 14 photo L
    {5000, 7000, UNIT_INCH},          // 15 photo 2L
    {10000, 14800, UNIT_MILLIMETER},  // 16 postcard
    {14800, 20000, UNIT_MILLIMETER},  // 17 double postcard
    {9000, 6000, UNIT_MILLIMETER},    // 18 business card, lying
    {6000, 9000, UNIT_MILLIMETER},    // 19 business card, upright
    {8500, 13000, UNIT_INCH},         // 20 Folio
    {8500, 13380, UNIT_INCH},         // 21
    {21500, 34500, UNIT_MILLIMETER},  // 22
    {4250, 0, UNIT_INCH},             // 23 long paper, narrow
    {8500, 0, UNIT_INCH},             // 24 long paper
};
static_assert(std::size(tblPaperList) == PAPERTYPE_LONG + 1);

struct LongPaperLimit {
  std::uint32_t resolution;  // dots per inch
  std::uint32_t maxLength;   // 0 no limit
  UNITTYPE unit;
};
constexpr LongPaperLimit tblLongPaperMaxHeight[] = {
    {100, 500000, UNIT_MILLIMETER}, {150, 500000, UNIT_MILLIMETER}, {200, 500000, UNIT_MILLIMETER},
    {300, 500000, UNIT_MILLIMETER}, {400, 277400, UNIT_MILLIMETER}, {600, 100000, UNIT_MILLIMETER},
    {1200, 14000, UNIT_INCH},
};

// Kept: the table converts in double precision, not by CConvertUnit, which gives other last digits for other sizes.
// Hosts compare these numbers with their own. Pinned by PaperSize_test, row by row.
std::uint32_t inchToMm(std::uint32_t v) { return static_cast<std::uint32_t>(v * 100.0 / 1000.0 * 25.4); }
std::uint32_t mmToInch(std::uint32_t v) { return static_cast<std::uint32_t>(v * 1000.0 / 100.0 / 25.4); }

std::int32_t minusTwice(std::int32_t size, std::uint32_t margin) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(size) - 2 * margin);
}

}  // namespace

PaperListRow paperListRow(PAPERTYPE paperType) {
  const auto index = static_cast<std::uint32_t>(paperType);
  return index < std::size(tblPaperList) ? tblPaperList[index] : PaperListRow{};
}

AXIS CPaperSize::GetPaperSize(PAPERTYPE paperType, UNITTYPE unit) const {
  const PaperListRow row = paperListRow(paperType);
  if (unit == row.unit) return {row.width, row.height};
  if (unit == UNIT_MILLIMETER) return {inchToMm(row.width), inchToMm(row.height)};
  if (unit == UNIT_INCH) return {mmToInch(row.width), mmToInch(row.height)};
  return {};
}

SCANAREA CPaperSize::CutOutMarginSize(SCANAREA area, AXIS margin) const {
  area.right = minusTwice(area.right, margin.x);
  area.bottom = minusTwice(area.bottom, margin.y);
  return area;
}

// Kept: a corner beyond the maximum goes back to 0 instead of being clamped, a negative value stays, and a corner plus
// a size beyond the maximum is not corrected. The device has the last word on those. Pinned by PaperSize_test "a corner
// beyond the maximum goes back to the edge".
SCANAREA CPaperSize::ReviseArea(SCANAREA area, AXIS maxSize) const {
  const auto maxX = static_cast<std::int32_t>(maxSize.x);
  const auto maxY = static_cast<std::int32_t>(maxSize.y);
  if (maxX != 0) {
    if (area.left > maxX) area.left = 0;
    area.right = std::min(area.right, maxX);
  }
  if (maxY != 0) {
    if (area.top > maxY) area.top = 0;
    area.bottom = std::min(area.bottom, maxY);
  }
  return area;
}

bool CPaperSize::IsSupportImageSize(std::uint32_t resolution, std::uint32_t deviceResolution, std::uint32_t heightPixel,
                                    const QS_SCANNER_PARAMETERS* settings) const {
  if (settings == nullptr) return true;
  if (settings->paperType != PAPERTYPE_LONG_NARROW && settings->paperType != PAPERTYPE_LONG) return true;
  const auto* const limit = std::ranges::find(tblLongPaperMaxHeight, resolution, &LongPaperLimit::resolution);
  if (limit == std::end(tblLongPaperMaxHeight) || limit->maxLength == 0) return true;

  std::uint32_t length = 0;
  CConvertUnit().ConvertPixlesTo(resolution, heightPixel, &length, limit->unit);
  // The page is counted in device lines, of which fewer make up one line of the user's.
  if (resolution > deviceResolution && deviceResolution != 0) length *= resolution / deviceResolution;
  return length <= limit->maxLength;
}

}  // namespace orvalle_scan_api
