#include "image/BitmapImage.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "foundation/bytes.h"
#include "image/bmp_lines.h"

using orvalle_scan_api::BmpLines;
using orvalle_scan_api::bmpLines;

namespace {

constexpr std::array<std::uint8_t, 256> makeReversedBits() {
  std::array<std::uint8_t, 256> table{};
  for (unsigned value = 0; value < 256; ++value) {
    unsigned reversed = 0;
    for (unsigned bit = 0; bit < 8; ++bit) reversed |= (value >> bit & 1U) << (7 - bit);
    table[value] = static_cast<std::uint8_t>(reversed);
  }
  return table;
}
constexpr std::uint64_t kMaxFileBytes = 0xFFFFFFFF;
constexpr auto kReversedBits = makeReversedBits();

}  // namespace

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

bool CBitmapImage::InvertLine(unsigned char* line, unsigned int width, int bpp) {
  switch (bpp) {
    case 1:
      return Invert1BitLine(line, width);
    case 8:
      return Invert8BitLine(line, width);
    case 24:
      return Invert24BitLine(line, width);
    default:
      return false;
  }
}

// Whole bytes are swapped with their bits reversed, which leaves the padding in front; one shift over the line brings
// it back behind the last pixel. Same as spreading the line to bytes, swapping these and packing them, at a fraction of
// the cost.
bool CBitmapImage::Invert1BitLine(unsigned char* line, unsigned int width) {
  if (line == nullptr || width < 2) return false;
  const std::size_t bytes = (std::size_t{width} + 7) / 8;
  const unsigned padding = static_cast<unsigned>(bytes * 8 - width);
  std::reverse(line, line + bytes);
  for (std::size_t i = 0; i < bytes; ++i) line[i] = kReversedBits[line[i]];
  if (padding == 0) return true;
  for (std::size_t i = 0; i < bytes; ++i) {
    const unsigned next = i + 1 < bytes ? line[i + 1] : 0;
    line[i] = static_cast<unsigned char>(line[i] << padding | next >> (8 - padding));
  }
  return true;
}

bool CBitmapImage::Invert8BitLine(unsigned char* line, unsigned int width) {
  if (line == nullptr || width < 2) return false;
  std::reverse(line, line + width);
  return true;
}

bool CBitmapImage::Invert24BitLine(unsigned char* line, unsigned int width) {
  if (line == nullptr || width < 2) return false;
  unsigned char* left = line;
  unsigned char* right = line + (std::size_t{width} - 1) * 3;
  for (; left < right; left += 3, right -= 3) {
    std::swap(left[0], right[0]);
    std::swap(left[1], right[1]);
    std::swap(left[2], right[2]);
  }
  return true;
}

unsigned int CBitmapImage::TrimBmpPageHeight(int height, bool keepFirstLines) {
  const BmpLines lines = bmpLines(m_data, m_size);
  if (lines.offset == 0 || height < 0 || lines.promised < static_cast<std::size_t>(height)) return 0;
  if (!keepFirstLines && lines.count > 0) {
    const std::size_t dropped = lines.promised - static_cast<std::size_t>(height);
    if (dropped < lines.count) {
      const std::size_t kept = std::min(lines.count - dropped, static_cast<std::size_t>(height));
      std::memmove(lines.first, lines.line(dropped), kept * lines.lineBytes);
    }
  }
  const std::uint64_t bytes = std::min(lines.lineBytes * static_cast<std::uint64_t>(height), kMaxFileBytes);
  const auto fileBytes = static_cast<unsigned>(std::min(bytes + lines.offset, kMaxFileBytes));
  orvalle_scan_api::storeU32le(m_data + 2, fileBytes);
  orvalle_scan_api::storeU32le(GetBmpInfoHeader(m_data, m_size) + 8, static_cast<std::uint32_t>(height));
  return fileBytes;
}

unsigned char* CBitmapImage::Get8BitFrom1bitLineData(const unsigned char* line, unsigned int width) {
  auto bytes = std::make_unique<unsigned char[]>(width);
  for (std::size_t i = 0; i < width; ++i) bytes[i] = line[i / 8] >> (7 - i % 8) & 1;
  return bytes.release();
}

unsigned char* CBitmapImage::Get1bitFrom8bitLineData(const unsigned char* bytes, unsigned int width) {
  auto line = std::make_unique<unsigned char[]>((std::size_t{width} + 7) / 8);
  for (std::size_t i = 0; i < width; ++i) line[i / 8] |= static_cast<unsigned char>(bytes[i] << (7 - i % 8));
  return line.release();
}
