#include "image/palette.h"

namespace vscan {
namespace {

constexpr unsigned kRedSteps = 6, kGreenSteps = 7, kBlueSteps = 6;

constexpr unsigned nearestStep(unsigned value, unsigned steps) { return (value * (steps - 1) + 127) / 255; }

constexpr std::uint8_t valueOf(unsigned step, unsigned steps) {
  return static_cast<std::uint8_t>((step * 255 + (steps - 1) / 2) / (steps - 1));
}

}  // namespace

Bytes paletteTriples() {
  Bytes triples;
  for (unsigned red = 0; red < kRedSteps; ++red) {
    for (unsigned green = 0; green < kGreenSteps; ++green) {
      for (unsigned blue = 0; blue < kBlueSteps; ++blue) {
        triples.push_back(valueOf(red, kRedSteps));
        triples.push_back(valueOf(green, kGreenSteps));
        triples.push_back(valueOf(blue, kBlueSteps));
      }
    }
  }
  triples.resize(256 * 3);
  return triples;
}

Raster toPalette(const Raster& raster) {
  Raster numbers(raster.widthPx, raster.heightPx, 1);
  const std::uint8_t* in = raster.pixels.data();
  const bool isColor = raster.channels == 3;
  for (auto& number : numbers.pixels) {
    const unsigned red = in[0], green = isColor ? in[1] : in[0], blue = isColor ? in[2] : in[0];
    number = static_cast<std::uint8_t>((nearestStep(red, kRedSteps) * kGreenSteps + nearestStep(green, kGreenSteps)) *
                                           kBlueSteps +
                                       nearestStep(blue, kBlueSteps));
    in += raster.channels;
  }
  return numbers;
}

}  // namespace vscan
