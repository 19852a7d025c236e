// The 256 colours of the palette mode: six steps of red, seven of green, six of blue; the rest is black.
// Threads: reentrant.
#pragma once
#include "image/raster.h"
#include "support/little_endian.h"

namespace vscan {

// Red, green, blue of each of the 256 colours.
Bytes paletteTriples();

// The nearest colour's number for each pixel, as a raster of one channel.
Raster toPalette(const Raster& raster);

}  // namespace vscan
