// The sizes of the paper types, the paper that lies between two corners, and what a device can deliver of an area.
// Threads: reentrant; pure functions over constant tables.
#pragma once

#include <cstdint>

#include "parse/parse_records.h"
#include "scan_types.h"
#include "scanner_capability.h"
#include "scanner_parameters.h"

namespace orvalle_scan_api {

// One paper in the unit that it is defined in, UNIT_INCH or UNIT_MILLIMETER.
struct PaperListRow {
  std::uint32_t width;
  std::uint32_t height;  // 0 for long paper
  UNITTYPE unit;
};

// The row of a paper type; 0 by 0 for a type without one (custom size, or no paper at all).
PaperListRow paperListRow(PAPERTYPE paperType);

// A width from which on an edge belongs to a paper, by what the client counts in.
struct DETECTPAPERTABLE {
  std::uint32_t fromWidth;  // 1/100 mm
  PAPERTYPE metricType;
  PAPERTYPE inchType;
};

class CPaperSize {
 public:
  // The paper's size, truncated where the unit is not the paper's own. 0 by 0 for UNIT_PIXEL and for a type without a
  // row.
  AXIS GetPaperSize(PAPERTYPE paperType, UNITTYPE unit) const;

  // The distance of two corners, given in pixels at resolution, in the unit; truncated. Only resolution.x counts.
  // 0 for a length at a resolution of 0 and for a unit that is not known.
  std::int32_t GetDistanceOfCorners(AXIS_SIGNED first, AXIS_SIGNED second, AXIS resolution, UNITTYPE unit) const;

  // Names a paper by the two corners of its leading edge, which are pixels at resolution, to a client that counts in
  // the unit: metric papers for UNIT_MILLIMETER, inch papers for any other. The device's margin at the source that
  // actual names is added to the edge.
  PAPERTYPE GetPaperTypeFromVertex(AXIS_SIGNED first, AXIS_SIGNED second, AXIS resolution,
                                   QS_SCANNER_CAPABILITY capability, ACTUALSCANPARAM actual, UNITTYPE unit) const;

  // The box, in pixels at resolution, around that paper as skewed as its edge; truncated. 0 by 0 where the corners are
  // one point, which has no direction.
  AXIS GetScanSizeFromVertex(AXIS_SIGNED first, AXIS_SIGNED second, AXIS resolution, QS_SCANNER_CAPABILITY capability,
                             ACTUALSCANPARAM actual, UNITTYPE unit) const;

  // The size with the margin's x, which is that of the flatbed or of one-sided feeding, added on both sides. Wraps.
  std::int32_t AddMarginSize(std::int32_t size, UNITTYPE unit, DEVICESCANSIZES margins, PAPERSOURCESELECT source) const;

  // The row's metric paper for UNIT_MILLIMETER, its inch paper for any other unit.
  PAPERTYPE GetPaperType(DETECTPAPERTABLE row, UNITTYPE unit) const;

  // Takes the margin off both sides of the size that right and bottom carry. Wraps below 0.
  SCANAREA CutOutMarginSize(SCANAREA area, AXIS margin) const;

  // Trims an area, whose right and bottom are a size, to maxSize; a maximum of 0 is no limit.
  SCANAREA ReviseArea(SCANAREA area, AXIS maxSize) const;

  // Whether a long page of heightPixel may go on growing. resolution is the user's and deviceResolution the device's,
  // in dots per inch. Paper that is not long, and a resolution that has no limit, always may; so does a null pointer.
  bool IsSupportImageSize(std::uint32_t resolution, std::uint32_t deviceResolution, std::uint32_t heightPixel,
                          const QS_SCANNER_PARAMETERS* settings) const;
};

}  // namespace orvalle_scan_api
