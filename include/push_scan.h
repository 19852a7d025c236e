// What the device's panel asks for. An item whose valid flag is clear was not given by the device; its other fields
// mean nothing.
#pragma once

#include <cstddef>
#include <type_traits>

#include "scan_types.h"

namespace orvalle_scan_api {

struct PUSHSCAN_VALUE {
  bool valid;
  std::int32_t value;
};
struct PUSHSCAN_STATE {
  bool valid;
  bool on;
};
// A valid axis whose automatic flag is set carries no value.
struct PUSHSCAN_RESOLUTION {
  bool xValid;
  bool yValid;
  bool xAuto;
  bool yAuto;
  std::uint32_t x;  // dots per inch
  std::uint32_t y;
};
struct PUSHSCAN_FILETYPE {
  bool valid;
  std::int32_t format;  // 1 JPEG, 2 TIFF, 3 PNG, 4 to 7 kinds of PDF, 8 XPS, 9 text, 10 HTML, 11 RTF; 0 BMP or other
  bool compressValid;
  std::int32_t compress;   // JPEG rate, 0 to 100
  bool tiffCompressValid;  // told by first-generation devices alone
  bool tiffCompressOn;
  bool qualityValid;
  std::int32_t quality;     // 1 one page to a file, 0 many; second generation also 2 to 4, the device's own
  std::int32_t qualityArg;  // of quality 4
};
struct PUSHSCAN_ORIENT {
  bool valid;
  bool isLandscape;
  std::int32_t angle;  // 0, or 90 from a second-generation and 9000 from a first-generation device
};
struct PUSHSCAN_REMOVEBACKGROUND {
  bool valid;
  bool on;
  bool hasLevel;
  std::int32_t level;  // 0 to 255
};

struct tagQS_PUSHSCAN_PARAMETERS {
  PUSHSCAN_VALUE event;   // 0 to image, 1 to OCR, 2 to e-mail, 3 to file
  PUSHSCAN_VALUE duplex;  // DUPLEXTYPE
  PUSHSCAN_RESOLUTION resolution;
  PUSHSCAN_VALUE colorType;   // COLORTYPE
  PUSHSCAN_VALUE paperType;   // PAPERTYPE
  PUSHSCAN_VALUE brightness;  // on the device's own scale: 0 to 100 in the first generation, 0 to 254 in the second
  PUSHSCAN_VALUE contrast;    // the same
  PUSHSCAN_STATE autoCrop;
  PUSHSCAN_FILETYPE fileType;
  PUSHSCAN_STATE blankPageRemove;
  PUSHSCAN_STATE removeBleedThrough;
  PUSHSCAN_ORIENT orient;
  PUSHSCAN_STATE deskew;
  PUSHSCAN_REMOVEBACKGROUND removeBackground;
};
static_assert(std::is_standard_layout_v<tagQS_PUSHSCAN_PARAMETERS> &&
              std::is_trivially_copyable_v<tagQS_PUSHSCAN_PARAMETERS>);
static_assert(sizeof(PUSHSCAN_FILETYPE) == 28);
static_assert(offsetof(tagQS_PUSHSCAN_PARAMETERS, resolution) == 16 &&
              offsetof(tagQS_PUSHSCAN_PARAMETERS, colorType) == 28);
static_assert(offsetof(tagQS_PUSHSCAN_PARAMETERS, autoCrop) == 60 &&
              offsetof(tagQS_PUSHSCAN_PARAMETERS, fileType) == 64);
static_assert(offsetof(tagQS_PUSHSCAN_PARAMETERS, orient) == 96 &&
              offsetof(tagQS_PUSHSCAN_PARAMETERS, removeBackground) == 108);
static_assert(sizeof(tagQS_PUSHSCAN_PARAMETERS) == 116);

}  // namespace orvalle_scan_api
