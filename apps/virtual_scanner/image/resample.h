// Changes the number of pixels of a picture: the mean of the covered area downwards, linear interpolation upwards.
// Threads: reentrant.
#pragma once
#include "image/raster.h"

namespace vscan {

// Both sizes have to be above 0. The same size gives the same pixels.
Raster resample(const Raster& source, int widthPx, int heightPx);

}  // namespace vscan
