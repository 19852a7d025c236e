// Generation-independent records that the response parsers produce.
#pragma once

#include <type_traits>

#include "foundation/rgbquad.h"
#include "scan_types.h"

namespace orvalle_scan_api {

// What the device says it will do with the settings it was sent.
struct ACTUALSCANPARAM {
  PAPERSOURCESELECT paperSource;
  AXIS resolution;    // dots per inch
  AXIS maxSizeMm;     // 1/100 mm; 0 from a second-generation device
  AXIS maxSizePixel;  // at resolution
  std::uint32_t reserved[7];
};
static_assert(std::is_standard_layout_v<ACTUALSCANPARAM> && sizeof(ACTUALSCANPARAM) == 56);

// The device's colour profiles. The pointers lead into the response body they were parsed from.
struct ICCPROFIE {
  const std::uint8_t* colorProfile;
  std::int32_t colorProfileSize;
  const std::uint8_t* grayProfile;
  std::int32_t grayProfileSize;
};

// A device's colour table.
struct PALETTE {
  std::uint32_t valid;
  std::uint32_t count;
  tagRGBQUAD entries[256];
};

// A paper that the device detected, by two of its corners in pixels.
struct DETECTEDPAPER {
  AXIS resolution;  // dots per inch
  AXIS_SIGNED vertex1;
  AXIS_SIGNED vertex2;
  PAPERTYPE paperType;
};

}  // namespace orvalle_scan_api
