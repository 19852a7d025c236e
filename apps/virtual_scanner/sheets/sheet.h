// One side of a sheet of paper: pixels and how large they are.
#pragma once
#include "image/raster.h"

namespace vscan {

struct Sheet {
  Raster pixels;
  double dpiX = 0;
  double dpiY = 0;
};

}  // namespace vscan
