// Single lines: the operations of CBitmapImage that mirror, spread and shift one line, and look at its bits.
#include <algorithm>
#include <array>
#include <utility>

#include "image/BitmapImage.h"

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
constexpr auto kReversedBits = makeReversedBits();

}  // namespace

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

bool CBitmapImage::InvertBits(unsigned char* byte) {
  if (byte == nullptr) return false;
  *byte = kReversedBits[*byte];
  return true;
}

unsigned char CBitmapImage::GetBitValue(const unsigned char* byte, unsigned int number) {
  if (byte == nullptr || number < 1 || number > 8) return 0;
  return *byte >> (number - 1) & 1;
}

// Bytes move from the last to the first, each taking the low bits of the one before it.
bool CBitmapImage::Shift1BitLineToRight(unsigned char* line, unsigned int width) {
  if (line == nullptr || width < 1) return false;
  const std::size_t bytes = (std::size_t{width} + 7) / 8;
  const unsigned padding = static_cast<unsigned>(bytes * 8 - width);
  for (std::size_t i = bytes; i-- > 0;) {
    const unsigned before = i > 0 ? line[i - 1] : 0U;
    line[i] = static_cast<unsigned char>((before << 8 | line[i]) >> padding);
  }
  return true;
}
