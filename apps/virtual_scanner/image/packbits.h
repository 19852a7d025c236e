// PackBits: a count byte n of 0 to 127 and n + 1 bytes as they are, or a count byte of 129 to 255 and one byte that
// stands for 257 - n of the same.
// Threads: reentrant.
#pragma once
#include <span>

#include "support/little_endian.h"

namespace vscan {

// Appends the packed form of one line to out.
void packBits(std::span<const std::uint8_t> line, Bytes& out);

}  // namespace vscan
