#include "image/reso_exact.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

// Every bit of b as often as times says, the most significant bit first.
constexpr std::uint32_t repeatBits(unsigned b, int times) {
  std::uint32_t bits = 0;
  for (int bit = 7; bit >= 0; --bit) {
    for (int i = 0; i < times; ++i) bits = bits << 1 | (b >> bit & 1U);
  }
  return bits;
}

// Four bits, each the OR of a pair.
constexpr std::uint8_t orPairs(unsigned b) {
  unsigned bits = 0;
  for (int pair = 6; pair >= 0; pair -= 2) bits = bits << 1 | ((b >> pair & 3U) != 0 ? 1U : 0U);
  return static_cast<std::uint8_t>(bits);
}

template <class T>
constexpr std::array<T, 256> tableOf(T (*rule)(unsigned)) {
  std::array<T, 256> table{};
  for (unsigned b = 0; b < 256; ++b) table[b] = rule(b);
  return table;
}

constexpr auto kDouble =
    tableOf<std::uint16_t>([](unsigned b) { return static_cast<std::uint16_t>(repeatBits(b, 2)); });
constexpr auto kTriple = tableOf<std::uint32_t>([](unsigned b) { return repeatBits(b, 3); });
constexpr auto kHalf = tableOf<std::uint8_t>(orPairs);

std::uint8_t first(std::uint32_t bits) { return static_cast<std::uint8_t>(bits >> 8); }
std::uint8_t second(std::uint32_t bits) { return static_cast<std::uint8_t>(bits); }

std::size_t write2BitX_2to1(const ExactLine& line) {
  const std::size_t bytes = std::min(line.sourceBytes / 2, line.outBytes);
  for (std::size_t i = 0; i < bytes; ++i) {
    line.dest[i] = static_cast<std::uint8_t>(kHalf[line.source[2 * i]] << 4 | kHalf[line.source[2 * i + 1]]);
  }
  return bytes;
}

std::size_t write2BitX_1to2(const ExactLine& line) {
  const std::size_t whole = std::min(line.outBytes / 2, line.sourceBytes);
  std::uint8_t* dest = line.dest;
  for (std::size_t i = 0; i < whole; ++i) {
    const unsigned bits = kDouble[line.source[i]];
    *dest++ = first(bits);
    *dest++ = second(bits);
  }
  // Kept: half a group repeats the later half of the next pixels, not the earlier. Pinned by reso_exact_test "The
  // rest".
  if (whole < line.sourceBytes && line.outBytes % 2 != 0) *dest++ = second(kDouble[line.source[whole]]);
  return static_cast<std::size_t>(dest - line.dest);
}

std::size_t write2BitX_1to3(const ExactLine& line) {
  const std::size_t whole = std::min(line.outBytes / 3, line.sourceBytes);
  std::uint8_t* dest = line.dest;
  for (std::size_t i = 0; i < whole; ++i) {
    const std::uint32_t bits = kTriple[line.source[i]];
    *dest++ = static_cast<std::uint8_t>(bits >> 16);
    *dest++ = first(bits);
    *dest++ = second(bits);
  }
  if (whole < line.sourceBytes) {
    const std::uint32_t bits = kTriple[line.source[whole]];
    if (line.outBytes % 3 != 0) *dest++ = static_cast<std::uint8_t>(bits >> 16);
    if (line.outBytes % 3 == 2) *dest++ = first(bits);
  }
  return static_cast<std::size_t>(dest - line.dest);
}

// Kept: the low half of the source byte comes first, which turns each group of eight pixels. Pinned by reso_exact_test
// "One to four".
std::size_t write2BitX_1to4(const ExactLine& line) {
  const std::size_t whole = std::min(line.outBytes / 4, line.sourceBytes);
  std::uint8_t* dest = line.dest;
  for (std::size_t i = 0; i < whole; ++i) {
    const unsigned high = kDouble[first(kDouble[line.source[i]])];
    const unsigned low = kDouble[second(kDouble[line.source[i]])];
    *dest++ = first(low);
    *dest++ = second(low);
    *dest++ = first(high);
    *dest++ = second(high);
  }
  if (whole < line.sourceBytes) {
    const unsigned high = kDouble[first(kDouble[line.source[whole]])];
    const unsigned low = kDouble[second(kDouble[line.source[whole]])];
    const std::size_t rest = line.outBytes % 4;
    if (rest >= 2) *dest++ = first(low);
    if (rest >= 1) *dest++ = second(low);
    if (rest == 3) *dest++ = second(high);
  }
  return static_cast<std::size_t>(dest - line.dest);
}

}  // namespace

std::size_t writeExact2Bit(int writer, const ExactLine& line) {
  switch (writer) {
    case 0:
      return write2BitX_2to1(line);
    case 1:
      return write2BitX_1to2(line);
    case 2:
      return write2BitX_1to3(line);
    case 3:
      return write2BitX_1to4(line);
    default:
      std::memcpy(line.dest, line.source, line.sourceBytes);
      return line.sourceBytes;
  }
}

void write8BitX_1toN(const ExactLine& line, std::size_t factor) {
  const std::size_t whole = std::min(line.outBytes / factor, line.sourceBytes);
  std::uint8_t* dest = line.dest;
  for (std::size_t i = 0; i < whole; ++i, dest += factor) std::memset(dest, line.source[i], factor);
  if (whole < line.sourceBytes) std::memset(dest, line.source[whole], line.outBytes % factor);
}

void write8BitX_Nto1(const ExactLine& line, std::size_t factor) {
  const std::size_t bytes = std::min(line.sourceBytes / factor, line.outBytes);
  for (std::size_t i = 0; i < bytes; ++i) line.dest[i] = line.source[i * factor];
}
