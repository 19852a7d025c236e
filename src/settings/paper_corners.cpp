// The part of CPaperSize that works from corners. Floating point stands in the order of operations that is written:
// hosts compare the numbers.
#include <cmath>
#include <limits>

#include "settings/ConvertUnit.h"
#include "settings/PaperSize.h"

namespace orvalle_scan_api {
namespace {

// row order is width
constexpr DETECTPAPERTABLE tblDetectPaperTypeMm[] = {
    {6900, PAPERTYPE_PHOTOL, PAPERTYPE_PHOTOL},     // 0
    {9400, PAPERTYPE_POSTCARD, PAPERTYPE_PHOTO},    // 1
    {10400, PAPERTYPE_PHOTO2L, PAPERTYPE_PHOTO2L},  // 2
    {13200, PAPERTYPE_A5, PAPERTYPE_A5},            // 3
    {15300, PAPERTYPE_A4, PAPERTYPE_A4},            // 4
    {21300, PAPERTYPE_LETTER, PAPERTYPE_LETTER},    // 5
    {22090, PAPERTYPE_JISB4, PAPERTYPE_JISB4},      // 6
    {26200, PAPERTYPE_LEDGER, PAPERTYPE_LEDGER},    // 7
    {28440, PAPERTYPE_A3, PAPERTYPE_A3},            // 8
};
// Kept: the search ends after four rows, so that every edge from the fifth row's bound on is A5 and the rows behind it
// name nothing. It looks like a wrong count; with all rows searched, pages that clients know as A5 would change their
// name. Pinned by paper_corners_test "EveryEdgeFrom153MillimetresOnIsA5".
constexpr int kSearchedRows = 4;
constexpr PAPERTYPE kPaperOfNoRow = PAPERTYPE_A5;

// A device that takes more than this is wide. 1/100 mm.
constexpr std::uint32_t kNarrowWidth = 21590;

// Truncates; what does not fit becomes the nearest number that does, and no number becomes 0.
template <class Integer>
Integer truncated(double value) {
  if (std::isnan(value)) return 0;
  if (value <= static_cast<double>(std::numeric_limits<Integer>::min())) return std::numeric_limits<Integer>::min();
  if (value >= static_cast<double>(std::numeric_limits<Integer>::max())) return std::numeric_limits<Integer>::max();
  return static_cast<Integer>(value);
}

// A difference wraps in 32 bits; what is computed from it does not.
double difference(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

double distanceOf(double dx, double dy) { return std::sqrt(dx * dx + dy * dy); }

AXIS leadingMargin(const MARGIN& margin) {
  return {static_cast<std::uint32_t>(margin.left), static_cast<std::uint32_t>(margin.top)};
}

bool isWideDevice(const DEVICESCANSIZES& maximum, PAPERSOURCESELECT source) {
  if (source == PAPERSOURCE_ADF) return maximum.simplex.x > kNarrowWidth;
  if (source == PAPERSOURCE_FLATBED) return maximum.flatbed.x > kNarrowWidth;
  return false;
}

}  // namespace

std::int32_t CPaperSize::GetDistanceOfCorners(AXIS_SIGNED first, AXIS_SIGNED second, AXIS resolution,
                                              UNITTYPE unit) const {
  const double d = distanceOf(difference(first.x, second.x), difference(first.y, second.y));
  if (unit == UNIT_PIXEL) return truncated<std::int32_t>(d);
  if (resolution.x == 0) return 0;
  if (unit == UNIT_INCH) return truncated<std::int32_t>(d / resolution.x * 1000.0);
  if (unit == UNIT_MILLIMETER) return truncated<std::int32_t>(d / resolution.x * 25.4 * 100.0);
  return 0;
}

std::int32_t CPaperSize::AddMarginSize(std::int32_t size, UNITTYPE unit, DEVICESCANSIZES margins,
                                       PAPERSOURCESELECT source) const {
  AXIS margin{};
  CConvertUnit().ConvertUnit(source == PAPERSOURCE_FLATBED ? margins.flatbed : margins.simplex, margins.unit, &margin,
                             unit);
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(size) + 2 * margin.x);
}

PAPERTYPE CPaperSize::GetPaperType(DETECTPAPERTABLE row, UNITTYPE unit) const {
  return unit == UNIT_MILLIMETER ? row.metricType : row.inchType;
}

PAPERTYPE CPaperSize::GetPaperTypeFromVertex(AXIS_SIGNED first, AXIS_SIGNED second, AXIS resolution,
                                             QS_SCANNER_CAPABILITY capability, ACTUALSCANPARAM actual,
                                             UNITTYPE unit) const {
  const auto& marginSize = capability.baseFunc.marginSize;
  const DEVICESCANSIZES margins{leadingMargin(marginSize.flatbed), leadingMargin(marginSize.adfSimplex),
                                leadingMargin(marginSize.adfDuplex), marginSize.flatbed.unit};
  const std::int32_t distance = GetDistanceOfCorners(first, second, resolution, UNIT_MILLIMETER);
  const auto edge = static_cast<std::uint32_t>(AddMarginSize(distance, UNIT_MILLIMETER, margins, actual.paperSource));

  // An edge shorter than any paper is no leading edge: the page is what the device is made for.
  if (edge < tblDetectPaperTypeMm[0].fromWidth) {
    const bool wide = isWideDevice(capability.baseFunc.deviceScanSizeMax, actual.paperSource);
    if (unit == UNIT_MILLIMETER) return wide ? PAPERTYPE_A3 : PAPERTYPE_A4;
    return wide ? PAPERTYPE_LEDGER : PAPERTYPE_LETTER;
  }
  for (int row = 0; row < kSearchedRows; ++row) {
    if (tblDetectPaperTypeMm[row].fromWidth <= edge && edge < tblDetectPaperTypeMm[row + 1].fromWidth) {
      return GetPaperType(tblDetectPaperTypeMm[row], unit);
    }
  }
  return kPaperOfNoRow;
}

AXIS CPaperSize::GetScanSizeFromVertex(AXIS_SIGNED first, AXIS_SIGNED second, AXIS resolution,
                                       QS_SCANNER_CAPABILITY capability, ACTUALSCANPARAM actual, UNITTYPE unit) const {
  const PAPERTYPE paperType = GetPaperTypeFromVertex(first, second, resolution, capability, actual, unit);
  const double dx = difference(first.x, second.x);
  const double dy = difference(first.y, second.y);
  const auto hyp = truncated<std::uint32_t>(distanceOf(dx, dy));
  if (hyp == 0) return {};

  const double sine = std::fabs(dy) / hyp;
  const double cosine = std::fabs(dx) / hyp;
  const AXIS paper = GetPaperSize(paperType, UNIT_INCH);
  return {truncated<std::uint32_t>(resolution.x * (cosine * paper.x + sine * paper.y) / 1000.0),
          truncated<std::uint32_t>(resolution.y * (cosine * paper.y + sine * paper.x) / 1000.0)};
}

}  // namespace orvalle_scan_api
