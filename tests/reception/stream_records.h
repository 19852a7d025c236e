// The records of the second-generation image stream, spelled out from the device's side.
#pragma once

#include "tests/fakes/MemoryDevice.h"

namespace reception_test {

using fakes::ByteString;
using fakes::u16;
using fakes::u32;
using fakes::operator+;
using fakes::operator+=;

// Format bytes.
inline constexpr std::uint8_t kMono = 0x00;
inline constexpr std::uint8_t kGray = 0x04;
inline constexpr std::uint8_t kColor = 0x05;
inline constexpr std::uint8_t kPackBits = 0x08;
inline constexpr std::uint8_t kJpeg = 0x10;

inline ByteString status(std::uint8_t code) { return {0x00, code}; }
inline ByteString pageStatus(std::uint8_t code, unsigned pageNo) { return status(code) + u16(pageNo); }
inline ByteString dataRecord(std::uint8_t code, unsigned pageNo, std::uint8_t format, std::uint32_t height,
                             const ByteString& bytes) {
  return pageStatus(code, pageNo) + ByteString{format, 0} + u32(static_cast<std::uint32_t>(bytes.size())) +
         u32(height) + bytes;
}
inline ByteString whiteLine(unsigned pageNo) { return pageStatus(0x00, pageNo); }
inline ByteString line(unsigned pageNo, std::uint8_t format, const ByteString& bytes, std::uint32_t height = 0) {
  return dataRecord(0x01, pageNo, format, height, bytes);
}
inline ByteString block(unsigned pageNo, std::uint8_t format, const ByteString& bytes, std::uint32_t height = 0) {
  return dataRecord(0x02, pageNo, format, height, bytes);
}
inline ByteString pageSize(unsigned pageNo, std::uint32_t widthPx, std::uint32_t heightPx) {
  return pageStatus(0x11, pageNo) + u32(widthPx) + u32(heightPx);
}
inline ByteString colorCheck(unsigned pageNo, std::uint8_t format) {
  return pageStatus(0x12, pageNo) + ByteString{format, 0};
}
inline ByteString pageEnd(unsigned pageNo) { return pageStatus(0x21, pageNo); }
inline ByteString blankPageEnd(unsigned pageNo) { return pageStatus(0x22, pageNo); }
inline ByteString tooLongPageEnd(unsigned pageNo) { return pageStatus(0x23, pageNo); }
inline ByteString allPagesEnd() { return status(0x20); }
inline ByteString stoppedByCommand() { return status(0x40); }
inline ByteString stoppedByKey() { return status(0x41); }
inline ByteString timer(std::uint8_t code, unsigned seconds) { return status(code) + u16(seconds); }
inline ByteString deviceError(std::uint8_t code) { return {code, 0}; }

}  // namespace reception_test
