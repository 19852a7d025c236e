// Takes the finest pattern out of a picture, as printed screens make it.
// Threads: reentrant.
#pragma once
#include "image/raster.h"

namespace vscan {

// Each pixel becomes the mean of itself and its eight neighbours, the nearer ones weighing more.
Raster smooth(const Raster& source);

}  // namespace vscan
