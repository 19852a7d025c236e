#include "image/tone.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vscan {
namespace {

std::size_t bitLineBytes(const Raster& raster) { return (static_cast<std::size_t>(raster.widthPx) + 7) / 8; }

void clearBit(std::uint8_t* line, int x) { line[x / 8] = static_cast<std::uint8_t>(line[x / 8] & ~(0x80 >> (x % 8))); }

}  // namespace

void adjustTone(Raster& raster, const Tone& tone) {
  const auto [brightness, contrast, gamma] = tone;
  if (brightness == kNeutralTone && contrast == kNeutralTone && gamma == kNeutralGamma) return;
  const double factor = contrast < kNeutralTone ? 0.5 + contrast / 100.0 : 1.0 + (contrast - kNeutralTone) / 25.0;
  const double shift = (brightness - kNeutralTone) * 2.55;
  const double exponent = static_cast<double>(kNeutralGamma) / gamma;
  std::array<std::uint8_t, 256> table{};
  for (int value = 0; value < 256; ++value) {
    const double curved = gamma == kNeutralGamma ? value : 255 * std::pow(value / 255.0, exponent);
    const double toned = (curved - 127.5) * factor + 127.5 + shift;
    table[static_cast<std::size_t>(value)] = static_cast<std::uint8_t>(std::clamp(std::lround(toned), 0L, 255L));
  }
  for (auto& pixel : raster.pixels) pixel = table[pixel];
}

Raster toGrey(Raster raster) {
  if (raster.channels == 1) return raster;
  Raster grey(raster.widthPx, raster.heightPx, 1);
  const std::uint8_t* in = raster.pixels.data();
  for (auto& pixel : grey.pixels) {
    pixel = static_cast<std::uint8_t>((299u * in[0] + 587u * in[1] + 114u * in[2] + 500u) / 1000u);
    in += 3;
  }
  return grey;
}

Raster toColor(Raster raster) {
  if (raster.channels == 3) return raster;
  Raster color(raster.widthPx, raster.heightPx, 3);
  std::uint8_t* out = color.pixels.data();
  for (const auto pixel : raster.pixels) {
    out[0] = out[1] = out[2] = pixel;
    out += 3;
  }
  return color;
}

std::vector<std::uint8_t> threshold(const Raster& grey, int level) {
  const std::size_t bytes = bitLineBytes(grey);
  std::vector<std::uint8_t> bits(bytes * static_cast<std::size_t>(grey.heightPx), 0xFF);
  for (int y = 0; y < grey.heightPx; ++y) {
    const std::uint8_t* in = grey.line(y);
    std::uint8_t* out = bits.data() + static_cast<std::size_t>(y) * bytes;
    for (int x = 0; x < grey.widthPx; ++x) {
      if (in[x] < level) clearBit(out, x);
    }
  }
  return bits;
}

std::vector<std::uint8_t> diffuseError(const Raster& grey) {
  const std::size_t bytes = bitLineBytes(grey);
  std::vector<std::uint8_t> bits(bytes * static_cast<std::size_t>(grey.heightPx), 0xFF);
  // Errors in sixteenths, one place of margin on both sides.
  std::vector<int> above(static_cast<std::size_t>(grey.widthPx) + 2);
  std::vector<int> below(above.size());
  for (int y = 0; y < grey.heightPx; ++y) {
    const std::uint8_t* in = grey.line(y);
    std::uint8_t* out = bits.data() + static_cast<std::size_t>(y) * bytes;
    std::fill(below.begin(), below.end(), 0);
    int ahead = 0;
    for (int x = 0; x < grey.widthPx; ++x) {
      //          x   7
      //      3   5   1      of sixteen parts of the error
      const auto i = static_cast<std::size_t>(x) + 1;
      const int wanted = in[x] + (above[i] + ahead) / 16;
      const bool isWhite = wanted >= 128;
      if (!isWhite) clearBit(out, x);
      const int error = wanted - (isWhite ? 255 : 0);
      ahead = 7 * error;
      below[i - 1] += 3 * error;
      below[i] += 5 * error;
      below[i + 1] += error;
    }
    std::swap(above, below);
  }
  return bits;
}

void removeBackground(Raster& raster, int level) {
  const int lightest = 255 - std::clamp(level, 0, 255) / 2;
  const auto step = static_cast<std::ptrdiff_t>(raster.channels);
  for (auto pixel = raster.pixels.begin(); pixel != raster.pixels.end(); pixel += step) {
    if (std::all_of(pixel, pixel + step, [&](auto channel) { return channel >= lightest; })) {
      std::fill(pixel, pixel + step, std::uint8_t{255});
    }
  }
}

}  // namespace vscan
