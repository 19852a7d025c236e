// Every number in an answer goes out with its lowest byte first.
#pragma once
#include <cstdint>
#include <vector>

namespace vscan {

using Bytes = std::vector<std::uint8_t>;

inline void appendLe(Bytes& out, std::uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}
inline void appendU8(Bytes& out, std::uint8_t value) { out.push_back(value); }
inline void appendU16(Bytes& out, std::uint16_t value) { appendLe(out, value, 2); }
inline void appendU32(Bytes& out, std::uint32_t value) { appendLe(out, value, 4); }

}  // namespace vscan
