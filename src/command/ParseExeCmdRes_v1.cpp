#include "command/ParseExeCmdRes_v1.h"

#include <algorithm>
#include <cstring>

#include "foundation/bytes.h"

namespace orvalle_scan_api {
namespace {

constexpr unsigned char kStatusBit = 0x80;
constexpr unsigned char kFirstLineWithData = 0x40;
constexpr unsigned char kJpegBit = 0x20;
constexpr unsigned char kDataTypeMask = 0x1C;
constexpr unsigned char kCompressionMask = 0x03;

constexpr unsigned char kStatusPageEnd = 0x82;
constexpr unsigned char kStatusWithAddedInfo = 0x87;
constexpr unsigned char kMarker85 = 0x85;

constexpr std::uint32_t kCompressNone = 2;
constexpr std::uint32_t kCompressPackBits = 3;
constexpr std::uint32_t kCompressJpeg = 5;
constexpr std::uint32_t kDataTypeJpeg = 5;

// By the three bits of the mask. Kept: 0x18 is 1 again and not 7, which would follow in the row. Pinned by
// ParseExeCmdRes_v1_test "EveryHeaderByteIsReadAsItsBitsSay".
constexpr std::uint32_t kDataTypes[] = {1, 2, 3, 4, 5, 6, 1, 7};

constexpr int kAddedWithoutHeightBytes = 5;  // N, page number, marker
constexpr int kAddedWithHeightBytes = 9;     // and more

bool carriesAddedInfo(unsigned char statusCode) {
  return statusCode == kStatusPageEnd || statusCode == kStatusWithAddedInfo;
}

}  // namespace

int CParseExeCmdRes_v1::ParseXcmdImageDataInfo(unsigned char* bytes, unsigned long size, SCANIMAGEINFO* info) {
  if (info == nullptr) return 0;
  *info = {};
  if (bytes == nullptr || size == 0) {
    info->isIncomplete = true;
    return 0;
  }
  LINEDATA& line = info->lineData;
  const unsigned char header = *bytes;
  std::size_t recordBytes = 1;
  if (IsStatusCodeHeader(bytes)) {
    info->statusCode = header;
    if (!carriesAddedInfo(header)) {
      info->next = size > recordBytes ? bytes + recordBytes : nullptr;
      return 0;
    }
  } else if (IsAllWhiteLineHeader(header)) {
    line.isWhiteLine = true;
  } else {
    info->recordKind = kRecordKindLine;
    line.compressType = GetLineCompType(header);
    line.dataType = GetLineDataType(header);
  }
  info->isIncomplete = true;  // until all of it is found
  if (!GetImageDataAddedInfo(bytes + recordBytes, size - recordBytes, &line)) return 0;
  recordBytes += static_cast<std::size_t>(GetImageDataAddedInfoSize(bytes + recordBytes));
  if (info->recordKind == kRecordKindLine) {
    if (!GetImageDataInfo(bytes + recordBytes, size - recordBytes, &line)) return 0;
    recordBytes += 2 + line.lineSize;
  }
  info->isIncomplete = false;
  info->next = size > recordBytes ? bytes + recordBytes : nullptr;
  return 0;
}

DETECTEDVERTICES CParseExeCmdRes_v1::ParsePaperSizeDetectFrom4Vertex(unsigned char* bytes, long size) {
  DETECTEDVERTICES vertices{};
  if (bytes != nullptr && size > 0) {
    std::memcpy(&vertices, bytes, std::min(static_cast<std::size_t>(size), sizeof vertices));
  }
  return vertices;
}

bool CParseExeCmdRes_v1::IsStatusCodeHeader(const unsigned char* header) { return (*header & kStatusBit) != 0; }

bool CParseExeCmdRes_v1::IsAllWhiteLineHeader(unsigned char header) { return header < kFirstLineWithData; }

std::uint32_t CParseExeCmdRes_v1::GetLineCompType(unsigned char header) {
  if ((header & kJpegBit) != 0) return kCompressJpeg;
  return (header & kCompressionMask) == 2 ? kCompressPackBits : kCompressNone;
}

std::uint32_t CParseExeCmdRes_v1::GetLineDataType(unsigned char header) {
  if ((header & kJpegBit) != 0) return kDataTypeJpeg;
  return kDataTypes[(header & kDataTypeMask) >> 2];
}

int CParseExeCmdRes_v1::GetImageDataAddedInfoSize(const unsigned char* added) {
  return static_cast<std::int16_t>(loadU16le(added)) + 2;
}

bool CParseExeCmdRes_v1::GetImageDataAddedInfo(const unsigned char* added, std::size_t remaining, LINEDATA* line) {
  if (remaining < std::size_t{kAddedWithoutHeightBytes}) return false;
  const int addedBytes = GetImageDataAddedInfoSize(added);
  line->pageNo = static_cast<std::int16_t>(loadU16le(added + 2));
  line->markerIs85 = added[4] == kMarker85;
  if (addedBytes == kAddedWithoutHeightBytes) return true;
  if (addedBytes < kAddedWithHeightBytes || remaining < static_cast<std::size_t>(addedBytes)) return false;
  line->heightPixel = loadU32le(added + 5);
  return true;
}

bool CParseExeCmdRes_v1::GetImageDataInfo(unsigned char* bytes, std::size_t remaining, LINEDATA* line) {
  // Kept: three bytes are asked for although a line without data has but its two of size: it is incomplete until the
  // next record's first byte is there. Asking for two would tell such a line one read earlier. Pinned by
  // ParseExeCmdRes_v1_test "AnEmptyLineAtTheVeryEndWaitsForTheNextByte".
  if (remaining < 3) return false;
  line->lineSize = loadU16le(bytes);
  line->lineBytes = bytes + 2;
  return remaining - 2 >= line->lineSize;
}

}  // namespace orvalle_scan_api
