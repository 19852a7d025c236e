#include "line_convert.h"

#include <array>
#include <cstring>

namespace scan_decode {
namespace {

constexpr std::uint8_t kWhite = 0xFF;

// The eight pixels of each mono byte, kParts bytes for a pixel.
template <std::size_t kParts>
constexpr auto makeWideningTable() {
  std::array<std::array<std::uint8_t, 8 * kParts>, 256> table{};
  for (std::size_t bits = 0; bits < table.size(); ++bits) {
    for (std::size_t i = 0; i < 8 * kParts; ++i) {
      table[bits][i] = (bits & (0x80u >> (i / kParts))) != 0 ? kWhite : std::uint8_t{0};
    }
  }
  return table;
}
constexpr auto kMonoToGray = makeWideningTable<1>();
constexpr auto kMonoToColor = makeWideningTable<3>();

template <class Table>
void widenMono(const Table& table, const std::uint8_t* in, std::uint8_t* out, std::size_t widthPx) {
  constexpr std::size_t kStep = sizeof(table[0]);
  const std::size_t whole = widthPx / 8;
  for (std::size_t i = 0; i < whole; ++i) std::memcpy(out + i * kStep, table[in[i]].data(), kStep);
  const std::size_t rest = widthPx % 8;
  if (rest != 0) std::memcpy(out + whole * kStep, table[in[whole]].data(), rest * kStep / 8);
}

void grayToColor(const std::uint8_t* in, std::uint8_t* out, std::size_t widthPx) {
  for (std::size_t i = 0; i < widthPx; ++i) {
    out[3 * i] = out[3 * i + 1] = out[3 * i + 2] = in[i];
  }
}

// Red and blue change places; in may be out.
void rgbToBgr(const std::uint8_t* in, std::uint8_t* out, std::size_t widthPx) {
  for (std::size_t i = 0; i < 3 * widthPx; i += 3) {
    const std::uint8_t red = in[i];
    const std::uint8_t blue = in[i + 2];
    out[i] = blue;
    out[i + 1] = in[i + 1];
    out[i + 2] = red;
  }
}

std::uint8_t meanOfParts(const std::uint8_t* pixel) {
  return static_cast<std::uint8_t>((pixel[0] + pixel[1] + pixel[2]) / 3);
}

void colorToGray(const std::uint8_t* in, std::uint8_t* out, std::size_t widthPx) {
  for (std::size_t i = 0; i < widthPx; ++i) out[i] = meanOfParts(in + 3 * i);
}

// Bits beyond the last pixel are white.
template <class GrayAt>
void packMono(std::uint8_t* out, std::size_t widthPx, GrayAt grayAt) {
  std::memset(out, kWhite, (widthPx + 7) / 8);
  for (std::size_t i = 0; i < widthPx; ++i) {
    if (grayAt(i) < 128) out[i / 8] = static_cast<std::uint8_t>(out[i / 8] & ~(0x80u >> (i % 8)));
  }
}

void toGray(LineForm from, const std::uint8_t* in, std::uint8_t* out, std::size_t widthPx) {
  if (from == LineForm::Mono) return widenMono(kMonoToGray, in, out, widthPx);
  colorToGray(in, out, widthPx);
}

void toColor(LineForm from, const std::uint8_t* in, std::uint8_t* out, std::size_t widthPx) {
  if (from == LineForm::Mono) return widenMono(kMonoToColor, in, out, widthPx);
  if (from == LineForm::Gray) return grayToColor(in, out, widthPx);
  rgbToBgr(in, out, widthPx);
}

void toMono(LineForm from, const std::uint8_t* in, std::uint8_t* out, std::size_t widthPx) {
  if (from == LineForm::Gray) return packMono(out, widthPx, [in](std::size_t i) { return in[i]; });
  packMono(out, widthPx, [in](std::size_t i) { return meanOfParts(in + 3 * i); });
}

}  // namespace

void convertLine(LineForm from, const std::uint8_t* in, LineForm to, std::uint8_t* out, std::size_t widthPx) {
  if (from == to) {
    if (in != out) std::memcpy(out, in, lineBytes(to, widthPx));
    return;
  }
  if (to == LineForm::Mono) return toMono(from, in, out, widthPx);
  if (to == LineForm::Gray) return toGray(from, in, out, widthPx);
  toColor(from, in, out, widthPx);
}

}  // namespace scan_decode
