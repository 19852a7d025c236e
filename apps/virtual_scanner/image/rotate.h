// Turns a picture by a small angle, as a sheet that lies askew.
// Threads: reentrant.
#pragma once
#include "image/raster.h"

namespace vscan {

// Clockwise about the middle; the size stays, the corners that come in are white.
Raster rotate(const Raster& source, double degrees);

}  // namespace vscan
