// The walk over a tagged body of the second generation: u16 tag, u16 declared length, value, little-endian, ended by
// the tag 0xF0F0.
//
// A known tag reads its own fixed number of value bytes whatever its declared length says; the next tag starts behind
// the declared length or behind those bytes, whichever lies further, so that a newer device may append bytes to a tag.
// Bytes behind the body read as 0.
// Threads: reentrant.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>

#include "foundation/OutputLog.h"
#include "foundation/bytes.h"

namespace orvalle_scan_api {

inline constexpr std::uint16_t kTerminatorTag = 0xF0F0;
inline constexpr std::size_t kTagHeaderBytes = 4;

class TagValue {
 public:
  TagValue(unsigned char* data, std::size_t size, std::size_t start, std::size_t declaredLength)
      : data_(data), size_(size), start_(start), declaredLength_(declaredLength) {}

  std::size_t declaredLength() const { return declaredLength_; }
  // Byte of the value; 0 behind the body.
  std::uint8_t u8(std::size_t offset) const {
    return start_ + offset < size_ ? data_[start_ + offset] : std::uint8_t{0};
  }
  std::uint16_t u16(std::size_t offset) const { return static_cast<std::uint16_t>(u8(offset) | u8(offset + 1) << 8); }
  std::uint32_t u32(std::size_t offset) const {
    return u16(offset) | static_cast<std::uint32_t>(u16(offset + 2)) << 16;
  }
  // The declared value in place, as far as the body reaches. The address is that of the value also when it is empty.
  unsigned char* bytes() const { return data_ + std::min(start_, size_); }
  std::size_t bytesPresent() const { return std::min(declaredLength_, size_ - std::min(start_, size_)); }

 private:
  unsigned char* data_;
  std::size_t size_;
  std::size_t start_;
  std::size_t declaredLength_;
};

// Reads the tag header at *cursor, four bytes that must be there, and moves *cursor behind it. 0 for a null length or
// cursor.
inline std::uint16_t GetTagID(unsigned short* length, unsigned char** cursor) {
  if (length == nullptr || cursor == nullptr || *cursor == nullptr) return 0;
  const std::uint16_t tag = loadU16le(*cursor);
  *length = loadU16le(*cursor + 2);
  *cursor += kTagHeaderBytes;
  return tag;
}

static_assert(std::endian::native == std::endian::little, "values are stored as they stand on the wire");

// A known tag of a response whose fields lie in its record as they stand on the wire.
struct TagRow {
  static constexpr std::int16_t kNoFlag = -1;

  std::uint16_t tag;
  std::uint8_t readBytes;             // whatever the declared length says
  std::uint16_t recordOffset;         // of the first field
  std::int16_t flagOffset = kNoFlag;  // of the boolean that says that the tag came
};

// What take does for a response whose tags are all of that kind.
template <std::size_t N>
std::optional<std::size_t> storeTag(const TagRow (&rows)[N], std::uint16_t tag, const TagValue& value, void* record) {
  const auto row = std::find_if(std::begin(rows), std::end(rows), [tag](const TagRow& r) { return r.tag == tag; });
  if (row == std::end(rows)) return std::nullopt;
  auto* bytes = static_cast<std::uint8_t*>(record);
  for (std::size_t i = 0; i < row->readBytes; ++i) bytes[row->recordOffset + i] = value.u8(i);
  if (row->flagOffset != TagRow::kNoFlag) bytes[row->flagOffset] = 1;
  return row->readBytes;
}

// Calls take(tag, value) for each tag but the terminator. take returns the number of value bytes it read, or nothing
// for a tag that it does not know. logFormat names the response and takes the tag.
//
// Kept: the walk does not stop at the terminator, and an unknown tag behind it clears complete again; complete is not
// cleared at the start. Stopping early would accept bodies that devices mean to be refused. Pinned by ParseCmdRes_v2
// test "AnUnknownTagBehindTheTerminatorDiscardsTheRecord".
template <class Take>
void walkTags(unsigned char* data, long size, const char* responseName, bool& complete, Take take) {
  if (data == nullptr || size < 1) return;
  const auto end = static_cast<std::size_t>(size);
  std::size_t position = 0;
  while (position < end) {
    const TagValue atHeader(data, end, position, kTagHeaderBytes);
    unsigned char header[kTagHeaderBytes];
    for (std::size_t i = 0; i < kTagHeaderBytes; ++i) header[i] = atHeader.u8(i);
    unsigned char* cursor = header;
    unsigned short declaredLength = 0;
    const std::uint16_t tag = GetTagID(&declaredLength, &cursor);
    g_ScanDevApiLog.WriteLog(2, "%s Target TagID = 0x%04X", responseName, tag);
    const std::size_t start = position + kTagHeaderBytes;
    std::size_t consumed = 0;
    if (tag == kTerminatorTag) {
      complete = true;
    } else if (const std::optional<std::size_t> read = take(tag, TagValue(data, end, start, declaredLength))) {
      consumed = *read;
    } else {
      complete = false;
    }
    position = start + std::max<std::size_t>(declaredLength, consumed);
  }
}

}  // namespace orvalle_scan_api
