// Turns a picture: by a small angle, as a sheet that lies askew, or by a quarter.
// Threads: reentrant.
#pragma once
#include "image/raster.h"

namespace vscan {

// Clockwise about the middle; the size stays, the corners that come in show the backing.
Raster rotate(const Raster& source, double degrees, std::uint8_t backing = 255);

// A quarter clockwise: what was on the left is on top.
Raster turnRight(const Raster& source);

}  // namespace vscan
