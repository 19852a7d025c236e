// Trimming: the operations of CBitmapImage that cut lines off a page, or the right part off its lines.
#include <algorithm>
#include <cstring>

#include "foundation/bytes.h"
#include "image/BitmapImage.h"
#include "image/bmp_lines.h"

using orvalle_scan_api::BmpLines;
using orvalle_scan_api::bmpLines;
using orvalle_scan_api::storeU32le;

namespace {

constexpr unsigned kFileSizeAt = 2;
constexpr unsigned kWidthAt = 18;
constexpr unsigned kHeightAt = 22;
constexpr unsigned kPixelBytesAt = 34;

// Pixel bytes of so many lines, at most what the file size field can hold beside the headers.
unsigned pixelBytesOf(const BmpLines& lines, std::size_t lineBytes, std::size_t count) {
  const std::uint64_t most = 0xFFFFFFFF - lines.offset;
  std::uint64_t bytes = 0;
  const bool tooMuch = __builtin_mul_overflow(std::uint64_t{lineBytes}, std::uint64_t{count}, &bytes);
  return static_cast<unsigned>(tooMuch ? most : std::min(bytes, most));
}

}  // namespace

unsigned int CBitmapImage::TrimBmpPageWidth(int width) {
  const BmpLines lines = bmpLines(m_data, m_size);
  unsigned int pixelBytes = 0;
  GetBmpPixelDataPointer(m_data, m_size, &pixelBytes);
  if (lines.offset == 0 || pixelBytes == 0 || width < 0 || lines.widthPx < width) return 0;
  const auto keptBytes = static_cast<std::size_t>(CalcWidthBytes(width, lines.bitPerPixel));
  for (std::size_t i = 1; i < lines.count; ++i) std::memmove(lines.first + i * keptBytes, lines.line(i), keptBytes);
  const unsigned newPixelBytes = pixelBytesOf(lines, keptBytes, lines.promised);
  const unsigned fileBytes = static_cast<unsigned>(lines.offset) + newPixelBytes;
  storeU32le(m_data + kFileSizeAt, fileBytes);
  storeU32le(m_data + kWidthAt, static_cast<std::uint32_t>(width));
  storeU32le(m_data + kPixelBytesAt, newPixelBytes);
  return fileBytes;
}

unsigned int CBitmapImage::TrimBmpPageHeight(int height, bool keepFirstLines) {
  const BmpLines lines = bmpLines(m_data, m_size);
  if (lines.offset == 0 || height < 0 || lines.promised < static_cast<std::size_t>(height)) return 0;
  const std::size_t dropped = lines.promised - static_cast<std::size_t>(height);
  if (!keepFirstLines && dropped < lines.count) {
    std::memmove(lines.first, lines.line(dropped), (lines.count - dropped) * lines.lineBytes);
  }
  const unsigned fileBytes =
      static_cast<unsigned>(lines.offset) + pixelBytesOf(lines, lines.lineBytes, static_cast<std::size_t>(height));
  storeU32le(m_data + kFileSizeAt, fileBytes);
  storeU32le(m_data + kHeightAt, static_cast<std::uint32_t>(height));
  return fileBytes;
}
