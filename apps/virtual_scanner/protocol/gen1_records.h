// The image stream of the first generation: line records and one-byte status codes.
//   line    header byte, added information, 2 bytes size, data
//   status  code; the end of a page carries added information
//   added information: 2 bytes length of what follows, 2 bytes page, 1 byte marker, where told 4 bytes height
// Threads: reentrant.
#pragma once
#include "protocol/stream.h"

namespace vscan::gen1 {

// A record's size has two bytes.
inline constexpr std::size_t kMaxDataBytes = 0xFFFF;
inline constexpr std::size_t kJpegBlockBytes = 32 * 1024;

const Stream& stream();

}  // namespace vscan::gen1
