#include "image/BitmapImage.h"

#include <cstring>
#include <utility>

#include "image/bmp_lines.h"

using orvalle_scan_api::BmpLines;
using orvalle_scan_api::bmpLines;

bool CBitmapImage::InvertWidth() {
  const BmpLines lines = bmpLines(m_data, m_size);
  bool inverted = true;
  for (std::size_t i = 0; i < lines.count; ++i) {
    inverted = InvertLine(lines.line(i), static_cast<unsigned>(lines.widthPx), lines.bitPerPixel);
  }
  return inverted;
}

bool CBitmapImage::InvertHeight() {
  const BmpLines lines = bmpLines(m_data, m_size);
  if (lines.count < 2) return true;
  const auto saved = std::make_unique<unsigned char[]>(lines.lineBytes);
  for (std::size_t i = 0; i < lines.count / 2; ++i) {
    unsigned char* const upper = lines.line(i);
    unsigned char* const lower = lines.line(lines.count - 1 - i);
    std::memcpy(saved.get(), upper, lines.lineBytes);
    std::memcpy(upper, lower, lines.lineBytes);
    std::memcpy(lower, saved.get(), lines.lineBytes);
  }
  return true;
}

bool CBitmapImage::InvertRgbArray() {
  const BmpLines lines = bmpLines(m_data, m_size);
  if (lines.bitPerPixel != 24) return true;
  for (std::size_t i = 0; i < lines.count; ++i) {
    unsigned char* const line = lines.line(i);
    for (std::size_t at = 0; at < lines.lineBytes; at += 3) std::swap(line[at], line[at + 2]);
  }
  return true;
}

bool CBitmapImage::IsChocolatePixelFlavor() { return firstColorIs(0); }

bool CBitmapImage::IsVanillaPixelFlavor() { return firstColorIs(255); }

bool CBitmapImage::InvertPixelFlavor() {
  if (GetBitPerPixel(m_data, m_size) != 1) return false;
  tagRGBQUAD* const palette = GetBmpColorPaletterPointer(m_data, m_size);
  unsigned int pixelBytes = 0;
  unsigned char* const pixels = GetBmpPixelDataPointer(m_data, m_size, &pixelBytes);
  if (palette == nullptr || pixels == nullptr || pixelBytes == 0) return false;
  return InvertColorPalettePixelFlavor(palette, 2) && InvertAllBits(pixels, pixelBytes);
}

bool CBitmapImage::InvertColorPalettePixelFlavor(tagRGBQUAD* palette, int count) {
  if (palette == nullptr || count < 1) return false;
  for (tagRGBQUAD* entry = palette; entry != palette + count; ++entry) {
    entry->rgbBlue ^= 0xFF;
    entry->rgbGreen ^= 0xFF;
    entry->rgbRed ^= 0xFF;
  }
  return true;
}

bool CBitmapImage::InvertAllBits(unsigned char* data, unsigned int size) {
  if (data == nullptr || size == 0) return false;
  for (unsigned char* byte = data; byte != data + size; ++byte) *byte ^= 0xFF;
  return true;
}

bool CBitmapImage::firstColorIs(std::uint8_t value) {
  return GetBitPerPixel(m_data, m_size) == 1 && findColor(m_data, m_size, 1, value) == 0;
}
