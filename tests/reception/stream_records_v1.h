// The records of the first-generation image stream, spelled out from the device's side.
#pragma once

#include "tests/fakes/MemoryDevice.h"

namespace reception_test::v1 {

using fakes::ByteString;
using fakes::u16;
using fakes::u32;
using fakes::operator+;

// Header bytes of lines.
inline constexpr std::uint8_t kMono = 0x40;
inline constexpr std::uint8_t kRed = 0x44;
inline constexpr std::uint8_t kGreen = 0x48;
inline constexpr std::uint8_t kBlue = 0x4C;
inline constexpr std::uint8_t kColor = 0x50;  // R,G,B
inline constexpr std::uint8_t kColorBgr = 0x54;
inline constexpr std::uint8_t kGray = 0x5C;
inline constexpr std::uint8_t kPackBits = 0x02;  // added to the above
inline constexpr std::uint8_t kJpeg = 0x60;

// The page's number and the marker; with the height behind them.
inline ByteString added(std::uint8_t header, int pageNo) {
  return ByteString{header} + u16(3) + u16(static_cast<std::uint32_t>(pageNo)) + ByteString{0};
}
inline ByteString added(std::uint8_t header, int pageNo, std::uint32_t heightPx) {
  return ByteString{header} + u16(7) + u16(static_cast<std::uint32_t>(pageNo)) + ByteString{0} + u32(heightPx);
}
inline ByteString sized(const ByteString& bytes) { return u16(static_cast<std::uint32_t>(bytes.size())) + bytes; }

inline ByteString line(std::uint8_t header, int pageNo, const ByteString& bytes) {
  return added(header, pageNo) + sized(bytes);
}
inline ByteString line(std::uint8_t header, int pageNo, const ByteString& bytes, std::uint32_t heightPx) {
  return added(header, pageNo, heightPx) + sized(bytes);
}
inline ByteString whiteLine(int pageNo, std::uint8_t header = 0x00) { return added(header, pageNo); }
inline ByteString pageEnd(int pageNo) { return added(0x82, pageNo); }
inline ByteString pageEnd(int pageNo, std::uint32_t heightPx) { return added(0x82, pageNo, heightPx); }
inline ByteString allPagesEnd() { return {0x80}; }
inline ByteString canceled() { return {0x83}; }
// 0x82 and 0x87 carry a page, every other code stands alone.
inline ByteString status(std::uint8_t code, int pageNo = 1) {
  return code == 0x82 || code == 0x87 ? added(code, pageNo) : ByteString{code};
}

}  // namespace reception_test::v1
