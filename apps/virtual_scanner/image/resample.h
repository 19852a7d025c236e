// Changes the number of pixels of a picture: the mean of the covered area downwards, linear interpolation upwards.
// Threads: reentrant.
#pragma once
#include "image/raster.h"

namespace vscan {

// The part of a picture, from its top left corner, that becomes the target: in pixels, and above 0.
struct Span {
  double widthPx = 0;
  double heightPx = 0;
};

// Both sizes have to be above 0. A span of just as many pixels gives these pixels.
Raster resample(const Raster& source, Span span, int widthPx, int heightPx);

}  // namespace vscan
