#include "image/reso_bits.h"

#include <cstring>

#include "image/reso_ring.h"

namespace {

bool startsBytes(std::size_t groups, std::size_t before) { return ((groups + before) & 7U) == 0; }

}  // namespace

void packResoBits(const std::uint8_t* values, std::size_t count, std::uint8_t* dest) {
  std::size_t i = 0;
  for (; i + 8 <= count; i += 8) {
    unsigned bits = 0;
    for (std::size_t k = 0; k < 8; ++k) bits |= (values[i + k] >= ResoRing::kThreshold ? 0x80U : 0U) >> k;
    *dest++ = static_cast<std::uint8_t>(bits);
  }
  if (i == count) return;
  unsigned bits = 0xFF;
  for (std::size_t k = 0; i < count; ++i, ++k) {
    if (values[i] < ResoRing::kThreshold) bits &= ~(0x80U >> k);
  }
  *dest = static_cast<std::uint8_t>(bits);
}

void packResoRest(const std::uint8_t* values, std::size_t count, std::size_t groups, std::size_t before,
                  std::uint8_t* dest) {
  const bool fresh = startsBytes(groups, before);
  std::size_t current = (before + 7) / 8;  // one behind the byte in work
  for (std::size_t i = 0; i < count; ++i) {
    if (fresh) dest[current++] = 0xFF;
    if (current == 0 || values[i] >= ResoRing::kThreshold) continue;
    const unsigned bit = 0x80U >> ((before + i) & 7U);
    dest[current - 1] = static_cast<std::uint8_t>(dest[current - 1] & ~bit);
  }
}

std::size_t packedResoBytes(std::size_t count, std::size_t groups, std::size_t before) {
  return (before + 7) / 8 + (startsBytes(groups, before) ? count : 0);
}
