// A bounds-checked cursor over borrowed bytes, and little-endian stores.
//
// take is the one primitive; every getter goes through it and leaves the out value alone on failure.
// Threads: reentrant.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace orvalle_scan_api {

using Bytes = std::span<const std::uint8_t>;

inline std::uint16_t loadU16le(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | p[1] << 8); }
inline std::uint32_t loadU32le(const std::uint8_t* p) {
  return loadU16le(p) | static_cast<std::uint32_t>(loadU16le(p + 2)) << 16;
}
inline void storeU16le(std::uint8_t* p, std::uint32_t value) {
  p[0] = static_cast<std::uint8_t>(value);
  p[1] = static_cast<std::uint8_t>(value >> 8);
}
inline void storeU32le(std::uint8_t* p, std::uint32_t value) {
  storeU16le(p, value);
  storeU16le(p + 2, value >> 16);
}

class ByteCursor {
 public:
  explicit ByteCursor(Bytes bytes) : rest_(bytes) {}

  std::size_t remaining() const { return rest_.size(); }
  const std::uint8_t* position() const { return rest_.data(); }

  [[nodiscard]] bool take(std::size_t count, Bytes& out) {
    if (count > rest_.size()) return false;
    out = rest_.first(count);
    rest_ = rest_.subspan(count);
    return true;
  }
  [[nodiscard]] bool skip(std::size_t count) {
    Bytes ignored;
    return take(count, ignored);
  }
  [[nodiscard]] bool u8(std::uint8_t& out) {
    Bytes b;
    if (!take(1, b)) return false;
    out = b[0];
    return true;
  }
  [[nodiscard]] bool u16le(std::uint16_t& out) {
    Bytes b;
    if (!take(2, b)) return false;
    out = loadU16le(b.data());
    return true;
  }
  [[nodiscard]] bool u32le(std::uint32_t& out) {
    Bytes b;
    if (!take(4, b)) return false;
    out = loadU32le(b.data());
    return true;
  }

 private:
  Bytes rest_;
};

}  // namespace orvalle_scan_api
