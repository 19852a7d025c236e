// The image stream of the second generation: result byte, status byte, and what the status asks for: 2 bytes page,
// 2 bytes format, 4 bytes size and 4 bytes height so far with the data, 8 bytes width and height, 2 bytes seconds.
// Threads: reentrant.
#pragma once
#include "protocol/stream.h"

namespace vscan::gen2 {

// Far below what a host can hold, and small enough that an abort is heard soon.
inline constexpr std::size_t kBlockBytes = 64 * 1024;

// The first of the two format bytes: bits 3 and 4 compression, bits 0 to 2 colour.
std::uint8_t formatByte(PageColor color, Compression compression);

const Stream& stream();

}  // namespace vscan::gen2
