// The sizes of the paper types, and what a device can deliver of an area.
// Threads: reentrant; pure functions over constant tables.
#pragma once

#include <cstdint>

#include "scan_types.h"
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

class CPaperSize {
 public:
  // The paper's size, truncated where the unit is not the paper's own. 0 by 0 for UNIT_PIXEL and for a type without a
  // row.
  AXIS GetPaperSize(PAPERTYPE paperType, UNITTYPE unit) const;

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
