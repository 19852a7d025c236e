// From the colours of a sheet to what the scan mode asks for.
// Threads: reentrant.
#pragma once
#include <cstdint>
#include <vector>

#include "image/raster.h"

namespace vscan {

// Applies brightness and contrast (0 to 100); 50 and 50 leave every pixel as it is.
void adjustTone(Raster& raster, int brightness, int contrast);

// The luminance of a colour picture; a grey one comes through unchanged.
Raster toGrey(Raster raster);

// R, G, B; a grey picture gets three equal channels.
Raster toColor(Raster raster);

// One-bit lines of (width + 7) / 8 bytes, the leftmost pixel in the highest bit. A set bit is white, and so are the
// bits behind the last pixel.
std::vector<std::uint8_t> threshold(const Raster& grey, int level);  // white from this level on
std::vector<std::uint8_t> diffuseError(const Raster& grey);          // Floyd and Steinberg

// Makes what is as light as the background white. level 0 to 255: the higher, the darker the background may be.
void removeBackground(Raster& raster, int level);

}  // namespace vscan
