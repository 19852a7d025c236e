// One side of a sheet in the form in which its records carry it.
#pragma once
#include <cstddef>

#include "protocol/scan_settings.h"
#include "support/little_endian.h"

namespace vscan {

enum class PageColor { Mono, Grey, Color };

struct Page {
  PageColor color = PageColor::Color;
  Compression compression = Compression::None;
  int widthPx = 0;
  int heightPx = 0;
  Bytes data;                 // the JPEG file, or the lines without padding, not packed yet
  std::size_t lineBytes = 0;  // of lines
  bool isBlank = false;       // only looked at when the host wants blank pages removed; no data then
  bool tellsSize = false;     // the host left the size to the device
};

}  // namespace vscan
