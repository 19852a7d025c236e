// Cuts one record at a time out of the image stream of a first-generation device.
//
//   byte 0       header: below 0x40 a white line, below 0x80 a line with data, otherwise a status code
//        1..2    N, size of the added information behind it, signed: 3, or 7 and more
//        3..4    page number, signed, from 1
//        5       marker
//        6..9    height in pixels, with N of 7 and more
//        3+N..   u16 size and that many bytes, of a line with data
// All little-endian. A status code stands alone as one byte, but for 0x82 and 0x87, which carry added information. The
// parser owns nothing, copies nothing and keeps no state between calls.
// Threads: reentrant.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvalle_scan_api {

struct LINEDATA {
  bool isWhiteLine;
  std::uint32_t dataType;      // 0 without line data; the line decoder's kinds
  std::uint32_t compressType;  // 2 none, 3 PackBits, 5 JPEG
  std::int32_t pageNo;
  bool reserved;              // always false
  bool markerIs85;            // read by nobody
  std::uint32_t heightPixel;  // 0 if the record does not tell
  std::uint32_t lineSize;     // bytes at lineBytes
  std::uint8_t* lineBytes;    // inside the caller's buffer
};

// One parsed record. A record that is incomplete may be filled in part; its line must not be used.
struct SCANIMAGEINFO {
  bool isIncomplete;
  std::uint32_t recordKind;  // 0 status, white line or nothing; 1 line with data
  std::uint16_t statusCode;  // header byte of a status record, otherwise 0
  LINEDATA lineData;
  std::uint8_t* next;  // null if the record ends with the bytes given
};

inline constexpr std::uint32_t kRecordKindNoData = 0;
inline constexpr std::uint32_t kRecordKindLine = 1;

// The bytes of a paper that was detected by four vertices, as the device sent them.
struct DETECTEDVERTICES {
  std::uint32_t words[7];
};

class IParseExeCmdRes_v1 {
 public:
  // Parses the record at bytes; the outcome is *info, the result always 0. No record is bad: one whose size makes no
  // sense is incomplete for ever.
  virtual int ParseXcmdImageDataInfo(unsigned char* bytes, unsigned long size, SCANIMAGEINFO* info) = 0;
  // What does not fit into the record is left out; what is missing is 0.
  virtual DETECTEDVERTICES ParsePaperSizeDetectFrom4Vertex(unsigned char* bytes, long size) = 0;

 protected:
  ~IParseExeCmdRes_v1() = default;
};

class CParseExeCmdRes_v1 final : public IParseExeCmdRes_v1 {
 public:
  int ParseXcmdImageDataInfo(unsigned char* bytes, unsigned long size, SCANIMAGEINFO* info) override;
  DETECTEDVERTICES ParsePaperSizeDetectFrom4Vertex(unsigned char* bytes, long size) override;

  static bool IsStatusCodeHeader(const unsigned char* header);
  static bool IsAllWhiteLineHeader(unsigned char header);
  static std::uint32_t GetLineCompType(unsigned char header);
  static std::uint32_t GetLineDataType(unsigned char header);

 private:
  // Bytes of the added information with its own size field, of which at least 5 are there.
  static int GetImageDataAddedInfoSize(const unsigned char* added);
  // False if it is incomplete. remaining counts the bytes at added, 5 or more.
  static bool GetImageDataAddedInfo(const unsigned char* added, std::size_t remaining, LINEDATA* line);
  // False if the size and the data at bytes are incomplete.
  static bool GetImageDataInfo(unsigned char* bytes, std::size_t remaining, LINEDATA* line);
};

}  // namespace orvalle_scan_api
