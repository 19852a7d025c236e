// Small BMP file images for tests, written out by hand: lines unpadded, as the library has them.
#pragma once

#include <cstdint>
#include <vector>

namespace fakes {

using ByteVector = std::vector<std::uint8_t>;

inline void put16(ByteVector& bytes, std::size_t at, unsigned value) {
  bytes[at] = static_cast<std::uint8_t>(value);
  bytes[at + 1] = static_cast<std::uint8_t>(value >> 8);
}
inline void put32(ByteVector& bytes, std::size_t at, unsigned value) {
  put16(bytes, at, value & 0xFFFF);
  put16(bytes, at + 2, value >> 16);
}

inline std::size_t headerBytesOf(int bpp) { return bpp == 1 ? 62 : bpp == 8 ? 54 + 1024 : 54; }
inline std::size_t lineBytesOf(int width, int bpp) { return static_cast<std::size_t>((width * bpp + 7) / 8); }

// pixels: as they shall lie in memory; 300 dpi both ways.
inline ByteVector makeBmp(int width, int height, int bpp, const ByteVector& pixels) {
  ByteVector bmp(headerBytesOf(bpp));
  bmp[0] = 'B';
  bmp[1] = 'M';
  put32(bmp, 2, static_cast<unsigned>(bmp.size() + pixels.size()));
  put32(bmp, 10, static_cast<unsigned>(bmp.size()));
  put32(bmp, 14, 40);
  put32(bmp, 18, static_cast<unsigned>(width));
  put32(bmp, 22, static_cast<unsigned>(height));
  put16(bmp, 26, 1);
  put16(bmp, 28, static_cast<unsigned>(bpp));
  put32(bmp, 34, static_cast<unsigned>(pixels.size()));
  put32(bmp, 38, 11811);
  put32(bmp, 42, 11811);
  put32(bmp, 46, bpp == 1 ? 2 : bpp == 8 ? 256 : 0);
  if (bpp == 1) put32(bmp, 58, 0x00FFFFFF);
  for (unsigned i = 0; bpp == 8 && i < 256; ++i) put32(bmp, 54 + 4 * i, i * 0x010101);
  bmp.insert(bmp.end(), pixels.begin(), pixels.end());
  return bmp;
}

// Pixels that all differ from each other as far as bytes can: value = seed + index.
inline ByteVector countingPixels(int width, int height, int bpp, unsigned seed = 1) {
  ByteVector pixels(lineBytesOf(width, bpp) * static_cast<std::size_t>(height));
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint8_t>(seed + i);
  return pixels;
}

// The same lines in the opposite order.
inline ByteVector upsideDown(const ByteVector& pixels, std::size_t lineBytes) {
  ByteVector turned;
  for (std::size_t at = pixels.size(); at >= lineBytes && at > 0; at -= lineBytes) {
    turned.insert(turned.end(), pixels.begin() + static_cast<std::ptrdiff_t>(at - lineBytes),
                  pixels.begin() + static_cast<std::ptrdiff_t>(at));
  }
  return turned;
}

inline ByteVector pixelsOf(const ByteVector& bmp) {
  const std::size_t header = headerBytesOf(bmp[28]);
  return {bmp.begin() + static_cast<std::ptrdiff_t>(header), bmp.end()};
}

}  // namespace fakes
