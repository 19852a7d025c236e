// From the colours of a sheet to what the scan mode asks for.
// Threads: reentrant.
#pragma once
#include <cstdint>
#include <vector>

#include "image/raster.h"

namespace vscan {

inline constexpr int kNeutralTone = 50;
inline constexpr int kNeutralGamma = 100;

// As it is made, it leaves every pixel as it is.
struct Tone {
  int brightness = kNeutralTone;  // 0 to 100
  int contrast = kNeutralTone;    // 0 to 100
  int gamma = kNeutralGamma;      // hundredths, above 0; more makes the middle tones lighter
};

void adjustTone(Raster& raster, const Tone& tone);

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
