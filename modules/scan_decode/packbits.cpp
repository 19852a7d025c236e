#include "packbits.h"

#include <algorithm>
#include <cstring>

namespace scan_decode {
namespace {

constexpr std::ptrdiff_t kBlock = 16;  // bytes that one vector move takes

constexpr std::ptrdiff_t wholeBlocks(std::ptrdiff_t count) { return (count + kBlock - 1) / kBlock * kBlock; }

// The two fast forms move whole blocks and so touch up to a block more than count: the caller has made sure that
// wholeBlocks(count) bytes are there. They beat memcpy and memset with a variable count, whose call costs more than a
// short code's work.
void copyBlocks(std::uint8_t* out, const std::uint8_t* in, std::ptrdiff_t count) {
  for (std::ptrdiff_t i = 0; i < count; i += kBlock) std::memcpy(out + i, in + i, kBlock);
}

void fillBlocks(std::uint8_t* out, std::uint8_t value, std::ptrdiff_t count) {
  for (std::ptrdiff_t i = 0; i < count; i += kBlock) std::memset(out + i, value, kBlock);
}

}  // namespace

std::size_t unpackBits(std::span<const std::uint8_t> in, std::span<std::uint8_t> out) {
  const std::uint8_t* from = in.data();
  const std::uint8_t* const fromEnd = from + in.size();
  std::uint8_t* to = out.data();
  std::uint8_t* const toEnd = to + out.size();

  while (from != fromEnd && to != toEnd) {
    const std::uint8_t code = *from++;
    if (code < 128) {
      const std::ptrdiff_t count = code + 1;
      if (fromEnd - from >= wholeBlocks(count) && toEnd - to >= wholeBlocks(count)) {
        copyBlocks(to, from, count);
        from += count;
        to += count;
        continue;
      }
      const std::ptrdiff_t possible = std::min({count, fromEnd - from, toEnd - to});
      std::copy_n(from, possible, to);
      from += possible;
      to += possible;
      if (possible < count) break;
    } else if (code > 128) {
      if (from == fromEnd) break;
      const std::ptrdiff_t count = 257 - code;
      const std::uint8_t value = *from++;
      if (toEnd - to >= wholeBlocks(count)) {
        fillBlocks(to, value, count);
        to += count;
        continue;
      }
      const std::ptrdiff_t possible = std::min(count, toEnd - to);
      std::fill_n(to, possible, value);
      to += possible;
    }
  }
  return static_cast<std::size_t>(to - out.data());
}

}  // namespace scan_decode
