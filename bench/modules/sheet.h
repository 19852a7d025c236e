// A drawn sheet at 300 dpi: white paper with lines of letters above and a picture with grain below.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace bench_sheet {

inline constexpr int kWidthPx = 2480;
inline constexpr int kHeightPx = 3508;

using Bytes = std::vector<std::uint8_t>;

inline Bytes drawGray() {
  std::mt19937 random(11);
  Bytes sheet(std::size_t{kWidthPx} * kHeightPx, 255);
  for (int y = 200; y < 3300; ++y) {
    for (int x = 200; x < 2280; ++x) {
      std::uint8_t& pixel = sheet[static_cast<std::size_t>(y) * kWidthPx + static_cast<std::size_t>(x)];
      const bool letter = y % 60 < 34 && (x / 5 * 7919 + y / 5 * 104729) % 11 < 4;
      const unsigned slope = static_cast<unsigned>(x / 16 + y / 24);
      if (y < 2300) {
        pixel = letter ? 20 : 255;
      } else {
        pixel = static_cast<std::uint8_t>((slope + random() % 8) % 256);
      }
    }
  }
  return sheet;
}

inline Bytes drawRgb() {
  const Bytes gray = drawGray();
  Bytes sheet;
  sheet.reserve(gray.size() * 3);
  for (const std::uint8_t value : gray) {
    sheet.push_back(value);
    sheet.push_back(static_cast<std::uint8_t>(value * 3 / 4 + 63));
    sheet.push_back(static_cast<std::uint8_t>(value / 2 + 127));
  }
  return sheet;
}

inline Bytes drawMono() {
  const Bytes gray = drawGray();
  Bytes sheet((gray.size() + 7) / 8);
  for (std::size_t i = 0; i < gray.size(); ++i) {
    if (gray[i] >= 128) sheet[i / 8] = static_cast<std::uint8_t>(sheet[i / 8] | 0x80u >> (i % 8));
  }
  return sheet;
}
static_assert(kWidthPx % 8 == 0, "mono lines begin on a byte");

}  // namespace bench_sheet
