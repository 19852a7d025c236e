// Cuts one record at a time out of the image stream of a second-generation device.
//
// A record is a result byte, a status code and the fields that the code calls for, little-endian. A record with a
// non-zero result byte is exactly two bytes long, whatever its second byte is. The parser owns nothing, copies nothing
// and keeps no state between calls.
// Threads: reentrant.
#pragma once

#include <cstdint>

namespace orvalle_scan_api {

enum IMAGE_COMPRESS : std::int32_t {
  IMAGE_COMPRESS_NONE = 0,
  IMAGE_COMPRESS_PACKBITS = 1,
  IMAGE_COMPRESS_JPEG = 2,
};
// 0 and 1 mean one bit per pixel, 2 8-bit grey, 3 24-bit colour.
using IMAGE_COLOR = std::int32_t;

inline constexpr std::uint32_t kRecordWhiteLine = 0;
inline constexpr std::uint32_t kRecordLine = 1;
inline constexpr std::uint32_t kRecordBlock = 2;
inline constexpr std::uint32_t kRecordAllPagesEnded = 3;
inline constexpr std::uint32_t kRecordPageEnded = 4;
inline constexpr std::uint32_t kRecordBlankPageEnded = 5;
inline constexpr std::uint32_t kRecordPageTooLong = 6;

// Describes a record.
struct IMAGE_HEADER {
  std::uint32_t dataType;   // one of the kRecord values
  std::uint32_t direction;  // read by nobody
  IMAGE_COMPRESS compress;
  IMAGE_COLOR color;
  std::uint32_t pageNo;       // from 1; 0 if the record has none
  std::uint32_t dataSize;     // bytes at data
  std::uint32_t heightSoFar;  // lines
  std::uint8_t* data;         // inside the caller's buffer; without data the start of the record
  std::uint32_t widthPixel;
  std::uint32_t heightPixel;
};

// Classifies a record.
struct PARSE_RESULT {
  bool isImageRecord;
  bool isStop;
  std::int32_t stopKind;  // 0 cancel command, 1 stop key
  bool isInfo;
  std::int32_t infoKind;  // 0 size, 1 colour check
  bool isFail;
  std::int32_t failKind;  // 0 document size, 1 colour check, 2 blank page, 3 deskew
  bool isTimer;
  std::int32_t timerKind;  // 0 restart, 1 extend
  std::int32_t timerSeconds;
  bool isError;
  std::uint8_t errorCode;  // the non-zero result byte
};

// Which fields follow the status code, in this order.
struct IMAGE_FORMATTYPE {
  bool hasPageNo;
  bool hasFormat;
  bool hasData;
  bool hasSize;
  bool hasTimer;
};

inline constexpr int kParsedRecord = 0;
inline constexpr int kParsedUnknown = 1;
inline constexpr int kParsedIncomplete = 2;

class IParseExeCmdRes_v2 {
 public:
  // 0 a complete record, *next behind it; 1 an unknown record or a null argument; 2 too few bytes. After 1 and 2 header
  // and result must not be used. After an error record at the end of the bytes *next lies one byte behind them.
  virtual int ParseXSCcmdImageDataInfo(unsigned char* bytes, unsigned long size, IMAGE_HEADER* header,
                                       PARSE_RESULT* result, unsigned char** next) = 0;

 protected:
  ~IParseExeCmdRes_v2() = default;
};

class CParseExeCmdRes_v2 final : public IParseExeCmdRes_v2 {
 public:
  int ParseXSCcmdImageDataInfo(unsigned char* bytes, unsigned long size, IMAGE_HEADER* header, PARSE_RESULT* result,
                               unsigned char** next) override;

  static std::uint32_t GetImageDirectionType(std::uint8_t format);
  static IMAGE_COMPRESS GetImageCompressType(std::uint8_t format);
  static IMAGE_COLOR GetImageColorType(std::uint8_t format);

 private:
  static bool SetImageDataFormat(const unsigned char* status, IMAGE_FORMATTYPE* format, IMAGE_HEADER* header,
                                 PARSE_RESULT* result);
};

}  // namespace orvalle_scan_api
