#include "command/ParseExeCmdRes_v2.h"

#include "foundation/OutputLog.h"
#include "foundation/bytes.h"

namespace orvalle_scan_api {
namespace {

enum class Kind { kImage, kNothing, kInfo, kStop, kTimer, kFail };

struct StatusRow {
  std::uint8_t code;
  Kind kind;
  std::uint8_t number;  // data type of an image record, otherwise the kind's own number
  IMAGE_FORMATTYPE fields;
  int logLevel;
  const char* words;  // null: logged with nothing
};

constexpr IMAGE_FORMATTYPE kNoFields{};
constexpr IMAGE_FORMATTYPE kPage{true, false, false, false, false};
constexpr IMAGE_FORMATTYPE kPageData{true, true, true, false, false};
constexpr IMAGE_FORMATTYPE kPageSize{true, false, false, true, false};
constexpr IMAGE_FORMATTYPE kPageFormat{true, true, false, false, false};
constexpr IMAGE_FORMATTYPE kTimer{false, false, false, false, true};

constexpr StatusRow kStatusRows[] = {
    {0x00, Kind::kImage, kRecordWhiteLine, kPage, 2, "white line data"},
    {0x01, Kind::kImage, kRecordLine, kPageData, 2, "line data"},
    {0x02, Kind::kImage, kRecordBlock, kPageData, 2, "block data"},
    {0x10, Kind::kNothing, 0, kNoFields, 1, nullptr},
    {0x11, Kind::kInfo, 0, kPageSize, 2, "width and height size info"},
    {0x12, Kind::kInfo, 1, kPageFormat, 2, "result of color number check info"},
    {0x20, Kind::kImage, kRecordAllPagesEnded, kNoFields, 1, "all page end"},
    {0x21, Kind::kImage, kRecordPageEnded, kPage, 1, "1 page end"},
    {0x22, Kind::kImage, kRecordBlankPageEnded, kPage, 1, "blank 1 page end"},
    {0x23, Kind::kImage, kRecordPageTooLong, kPage, 1, "1 page too long end"},
    {0x40, Kind::kStop, 0, kNoFields, 1, "scan stop by cancel command"},
    {0x41, Kind::kStop, 1, kNoFields, 1, "scan stop by stop-key"},
    {0x50, Kind::kTimer, 0, kTimer, 1, "timer restart"},
    {0x51, Kind::kTimer, 1, kTimer, 1, "timer extend"},
    {0x71, Kind::kFail, 0, kPageSize, 1, "fail in detect of document size"},
    {0x72, Kind::kFail, 1, kPage, 1, "fail in color auto check"},
    {0x73, Kind::kFail, 2, kPage, 1, "fail in remove blank page check"},
    {0x74, Kind::kFail, 3, kPage, 1, "fail in analize deskew"},
};

void classify(const StatusRow& row, IMAGE_HEADER& header, PARSE_RESULT& result) {
  switch (row.kind) {
    case Kind::kImage:
      result.isImageRecord = true;
      header.dataType = row.number;
      break;
    case Kind::kNothing:
      break;
    case Kind::kInfo:
      result.isInfo = true;
      result.infoKind = row.number;
      break;
    case Kind::kStop:
      result.isStop = true;
      result.stopKind = row.number;
      break;
    case Kind::kTimer:
      result.isTimer = true;
      result.timerKind = row.number;
      break;
    case Kind::kFail:
      result.isFail = true;
      result.failKind = row.number;
      break;
  }
}

int incomplete() {
  g_ScanDevApiLog.WriteLog(1, "Response Data is not enough");
  return kParsedIncomplete;
}

}  // namespace

int CParseExeCmdRes_v2::ParseXSCcmdImageDataInfo(unsigned char* bytes, unsigned long size, IMAGE_HEADER* header,
                                                 PARSE_RESULT* result, unsigned char** next) {
  if (bytes == nullptr || header == nullptr || result == nullptr || next == nullptr) return kParsedUnknown;
  *header = {};
  *result = {};
  header->data = bytes;
  *next = bytes;
  if (size == 0) return incomplete();
  if (bytes[0] != 0) {
    // Kept: two bytes, of which the second is neither read nor asked for. A device that reports an error may send the
    // one byte as its last; waiting for the second would lose the error. Pinned by ParseExeCmdRes_v2_test
    // "AnErrorByteAtTheEndMovesOneBytePastTheBuffer".
    result->isError = true;
    result->errorCode = bytes[0];
    g_ScanDevApiLog.WriteLog(1, "Error: Result Code = 0x%02x", bytes[0]);
    *next = bytes + 2;
    return kParsedRecord;
  }
  if (size < 2) return incomplete();
  IMAGE_FORMATTYPE fields{};
  if (!SetImageDataFormat(bytes + 1, &fields, header, result)) return kParsedUnknown;

  ByteCursor in(Bytes(bytes, size).subspan(2));
  if (fields.hasPageNo) {
    std::uint16_t pageNo = 0;
    if (!in.u16le(pageNo)) return incomplete();
    header->pageNo = pageNo;
  }
  if (fields.hasFormat) {
    Bytes format;
    if (!in.take(2, format)) return incomplete();
    header->direction = GetImageDirectionType(format[0]);
    header->compress = GetImageCompressType(format[0]);
    header->color = GetImageColorType(format[0]);
  }
  if (fields.hasData) {
    Bytes data;
    if (!(in.u32le(header->dataSize) && in.u32le(header->heightSoFar) && in.take(header->dataSize, data))) {
      return incomplete();
    }
    header->data = bytes + (data.data() - bytes);
  }
  if (fields.hasSize && !(in.u32le(header->widthPixel) && in.u32le(header->heightPixel))) return incomplete();
  if (fields.hasTimer) {
    std::uint16_t seconds = 0;
    if (!in.u16le(seconds)) return incomplete();
    result->timerSeconds = seconds;
  }
  *next = bytes + (size - in.remaining());
  return kParsedRecord;
}

bool CParseExeCmdRes_v2::SetImageDataFormat(const unsigned char* status, IMAGE_FORMATTYPE* format, IMAGE_HEADER* header,
                                            PARSE_RESULT* result) {
  for (const StatusRow& row : kStatusRows) {
    if (row.code != *status) continue;
    *format = row.fields;
    classify(row, *header, *result);
    if (row.words != nullptr) {
      g_ScanDevApiLog.WriteLog(row.logLevel, "%sXSC Status Code = 0x%02x : Status is [ %s ]",
                               row.kind == Kind::kFail ? "Error: " : "", *status, row.words);
    }
    return true;
  }
  return false;
}

std::uint32_t CParseExeCmdRes_v2::GetImageDirectionType(std::uint8_t format) { return format >> 7; }

IMAGE_COMPRESS CParseExeCmdRes_v2::GetImageCompressType(std::uint8_t format) {
  switch (format & 0x18) {
    case 0x08:
      return IMAGE_COMPRESS_PACKBITS;
    case 0x10:
      return IMAGE_COMPRESS_JPEG;
    default:
      return IMAGE_COMPRESS_NONE;
  }
}

IMAGE_COLOR CParseExeCmdRes_v2::GetImageColorType(std::uint8_t format) {
  switch (format & 0x07) {
    case 1:
      return 1;
    case 4:
      return 2;
    case 5:
      return 3;
    default:
      return 0;
  }
}

}  // namespace orvalle_scan_api
