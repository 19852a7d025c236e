// Filling the edges: the operations of CBitmapImage that paint a frame of one colour.
#include <algorithm>
#include <cstring>

#include "image/BitmapImage.h"
#include "image/bmp_lines.h"

using orvalle_scan_api::BmpLines;
using orvalle_scan_api::bmpLines;

namespace {

// Below the widest line either way, so that no number of the caller's can wrap.
int clippedPx(const BmpLines& lines, unsigned px) {
  return static_cast<int>(std::min(px, static_cast<unsigned>(std::max(0, lines.widthPx))));
}

// Top is the last lines of the file, bottom the first ones: files are bottom-up.
void fillTopAndBottom(const BmpLines& lines, unsigned char value, std::size_t top, std::size_t bottom) {
  for (std::size_t i = lines.promised - std::min(lines.promised, top); i < lines.count; ++i) {
    std::memset(lines.line(i), value, lines.lineBytes);
  }
  for (std::size_t i = 0; i < std::min(lines.count, bottom); ++i) std::memset(lines.line(i), value, lines.lineBytes);
}

}  // namespace

bool CBitmapImage::FillEdge(bool fillBlack, unsigned int left, unsigned int right, unsigned int top,
                            unsigned int bottom) {
  return GetBitPerPixel(m_data, m_size) == 1 ? FillEdgeOf1BitsImage(fillBlack, left, right, top, bottom)
                                             : FillEdgeOfMultiBitsImage(fillBlack, left, right, top, bottom);
}

bool CBitmapImage::FillEdgeOf1BitsImage(bool fillBlack, unsigned int left, unsigned int right, unsigned int top,
                                        unsigned int bottom) {
  const BmpLines lines = bmpLines(m_data, m_size);
  const int index =
      fillBlack ? GetColorPaletteIndexOfBlack(m_data, m_size) : GetColorPaletteIndexOfWhite(m_data, m_size);
  const unsigned char value = index == 0 ? 0 : 0xFF;
  const auto width = static_cast<unsigned>(std::max(0, lines.widthPx));
  const auto fillPixels = [&](unsigned char* line, std::size_t from, std::size_t count) {
    const std::unique_ptr<unsigned char[]> pixels(Get8BitFrom1bitLineData(line, width));
    std::memset(pixels.get() + from, value, count);
    const std::unique_ptr<unsigned char[]> packed(Get1bitFrom8bitLineData(pixels.get(), width));
    std::memcpy(line, packed.get(), std::min(lines.lineBytes, (std::size_t{width} + 7) / 8));
  };
  const std::size_t leftPx = std::min(width, left);
  const std::size_t rightPx = std::min(width, right);
  for (std::size_t i = 0; i < lines.count; ++i) fillPixels(lines.line(i), 0, leftPx);
  for (std::size_t i = 0; i < lines.count; ++i) fillPixels(lines.line(i), width - rightPx, rightPx);
  fillTopAndBottom(lines, value, top, bottom);
  return true;
}

bool CBitmapImage::FillEdgeOfMultiBitsImage(bool fillBlack, unsigned int left, unsigned int right, unsigned int top,
                                            unsigned int bottom) {
  const BmpLines lines = bmpLines(m_data, m_size);
  unsigned char value = fillBlack ? 0 : 255;
  if (lines.bitPerPixel == 8) {
    value = static_cast<unsigned char>(fillBlack ? GetColorPaletteIndexOfBlack(m_data, m_size)
                                                 : GetColorPaletteIndexOfWhite(m_data, m_size));
  }
  const std::size_t leftBytes = CalcFillWidthBytes(clippedPx(lines, left), lines.bitPerPixel);
  const std::size_t rightBytes = CalcFillWidthBytes(clippedPx(lines, right), lines.bitPerPixel);
  for (std::size_t i = 0; i < lines.count; ++i) {
    unsigned char* const line = lines.line(i);
    std::memset(line, value, leftBytes);
    std::memset(line + lines.lineBytes - rightBytes, value, rightBytes);
  }
  fillTopAndBottom(lines, value, top, bottom);
  return true;
}

std::size_t CBitmapImage::CalcFillWidthBytes(int pixels, int bpp) {
  if (pixels < 1) return 0;
  const auto count = static_cast<std::size_t>(pixels);
  return bpp == 24 ? 3 * count : bpp == 8 ? count : 0;
}
