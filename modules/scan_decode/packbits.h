// PackBits: a code byte n, then
//   0..127     n + 1 bytes that stand as they are
//   129..255   one byte that stands for 257 - n equal ones
//   128        nothing
// Threads: reentrant.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace scan_decode {

// Expands in to out and returns how many bytes of out are valid: fewer than out.size() where in ends early or inside a
// code. What would go beyond out is dropped.
std::size_t unpackBits(std::span<const std::uint8_t> in, std::span<std::uint8_t> out);

}  // namespace scan_decode
