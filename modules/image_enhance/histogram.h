// How bright a page is: the numbers that thresholds and paper colours are taken from.
// Threads: none of its own.
#pragma once

#include <array>
#include <cstdint>

#include "page.h"

namespace image_enhance {

// Pixels of each brightness.
using Histogram = std::array<std::uint32_t, 256>;

// Of a grey or colour page.
Histogram histogramOf(const Page& page);

// Two kinds of brightness whose means are closer than this are the grain of one and the same paper.
inline constexpr int kDistinctLevels = 22;

// The threshold that parts ink from paper best (Otsu): darker is ink. 128 where the page has no two kinds of brightness
// that are so distinct, so that a blank page stays blank.
int automaticThreshold(const Histogram& histogram, int distinctLevels = kDistinctLevels);

// The brightness that most of the paper has. 255 where nothing bright covers as much as a sheet shows between its
// lines.
int paperLevel(const Histogram& histogram);

struct Color {
  std::uint8_t blue = 255;
  std::uint8_t green = 255;
  std::uint8_t red = 255;
};

// The colour of the paper; of a grey page, three times its brightness; of a mono page, white.
Color paperColor(const Page& page);

}  // namespace image_enhance
