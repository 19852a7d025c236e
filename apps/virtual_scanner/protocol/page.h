// One side of a sheet in the form in which its records carry it.
#pragma once
#include <cstddef>

#include "protocol/scan_settings.h"
#include "support/little_endian.h"

namespace vscan {

enum class PageColor { Mono, Grey, Color };

// How a line of colour goes out in the first generation; the second knows only Rgb.
enum class ColorLines { Rgb, Bgr, Planes };

struct Page {
  PageColor color = PageColor::Color;
  Compression compression = Compression::None;
  int widthPx = 0;
  int heightPx = 0;
  Bytes data;                 // the JPEG file, or the lines without padding, not packed yet; colour as R, G, B
  std::size_t lineBytes = 0;  // of lines
  ColorLines colorLines = ColorLines::Rgb;
  bool isBlank = false;     // only looked at when the host wants blank pages removed; no data then
  bool isTooLong = false;   // the sheet goes on behind the device's length limit
  bool tellsSize = false;   // the host left the size to the device
  bool tellsColor = false;  // and the colour
  PageColor foundColor = PageColor::Color;
};

}  // namespace vscan
