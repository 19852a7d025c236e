#include "scan_decode.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <exception>
#include <optional>

#include "packbits.h"

namespace scan_decode {
namespace {

using namespace orvalle_scan_api;

constexpr unsigned char kAccepted = 1;
constexpr unsigned char kRefused = 0;
constexpr int kFailed = -1;
constexpr std::uint8_t kWhite = 0xFF;
constexpr std::size_t kMaxWidthPx = 1u << 24;

// The high digit of nColorType is the depth of the page.
std::optional<LineForm> pageForm(std::int32_t colorType) {
  switch (colorType >> 8) {
    case 1:
      return LineForm::Mono;
    case 2:
      return LineForm::Gray;
    case 4:
      return LineForm::Bgr;
    default:
      return std::nullopt;
  }
}

std::optional<PlaneLine::Part> partOf(std::int32_t kind) {
  switch (kind) {
    case kLineKindRed:
      return PlaneLine::Red;
    case kLineKindGreen:
      return PlaneLine::Green;
    case kLineKindBlue:
      return PlaneLine::Blue;
    default:
      return std::nullopt;
  }
}

// PackBits lines have the form of their kind.
std::optional<LineForm> formOfKind(std::int32_t kind) {
  switch (kind) {
    case kLineKindMono:
      return LineForm::Mono;
    case kLineKindRgb:
      return LineForm::Rgb;
    case kLineKindBgr:
      return LineForm::Bgr;
    case kLineKindGray:
      return LineForm::Gray;
    default:
      return std::nullopt;
  }
}

}  // namespace

unsigned char ScanDecode::Open(int) {
  Close();
  opened_ = true;
  return kAccepted;
}

unsigned char ScanDecode::SetOpenParam(SCANDEC_OPEN* param) {
  widthPx_ = 0;
  if (!opened_ || param == nullptr) return kRefused;
  const std::optional<LineForm> form = pageForm(param->nColorType);
  const std::size_t width = param->dwInLinePixCnt;
  if (!form || width == 0 || width > kMaxWidthPx) return kRefused;
  const std::size_t stride = param->dwOutLineByteCnt;
  if (stride < lineBytes(*form, width) || stride > INT_MAX) return kRefused;
  try {
    scratch_.resize(lineBytes(LineForm::Bgr, width));
    planes_.open(width);
  } catch (const std::exception&) {
    return kRefused;
  }
  widthPx_ = width;
  outForm_ = *form;
  outLineBytes_ = stride;
  param->dwWriteBuffSize = stride;
  return kAccepted;
}

int ScanDecode::Write(SCANDEC_WRITE* param, int* outLines, int* outBytes) {
  if (!canWrite(param, outLines, outBytes) || param->nInDataComp == kCompressJpeg) return kFailed;
  const std::optional<PlaneLine::Part> part = partOf(param->nInDataKind);
  const std::size_t bytes = part ? takePart(*param, *part) : takeLine(*param);
  *outLines = bytes > 0 ? 1 : 0;
  *outBytes = static_cast<int>(bytes);
  return 0;
}

int ScanDecode::PageEnd(SCANDEC_WRITE* param, int* outLines, int* outBytes) {
  if (!canWrite(param, outLines, outBytes)) return kFailed;
  const std::size_t bytes = planes_.empty() ? 0 : writePlanes(param->pWriteBuff);
  *outLines = bytes > 0 ? 1 : 0;
  *outBytes = static_cast<int>(bytes);
  return 0;
}

void ScanDecode::Close() {
  opened_ = false;
  widthPx_ = 0;
}

bool ScanDecode::canWrite(const SCANDEC_WRITE* param, int* outLines, int* outBytes) const {
  if (outLines == nullptr || outBytes == nullptr) return false;
  *outLines = *outBytes = 0;
  return widthPx_ != 0 && param != nullptr && param->pWriteBuff != nullptr && param->writeBuffSize >= outLineBytes_ &&
         (param->pLineData != nullptr || param->inSize == 0);
}

std::size_t ScanDecode::takeLine(const SCANDEC_WRITE& line) {
  if (!planes_.empty()) planes_.clear();  // parts of a line that will not be completed any more
  std::uint8_t* const out = line.pWriteBuff;
  const bool packed = line.nInDataComp == kCompressPackBits;
  const std::optional<LineForm> form = packed ? formOfKind(line.nInDataKind) : formOfSize(line);
  if (!form || line.inSize == 0) return fillRest(out, 0);

  // A grey picture in a colour scan: its page has 8 bits, whatever the scan was set to.
  if (!packed && line.nInDataKind == kLineKindMono && form == LineForm::Gray && outForm_ == LineForm::Bgr) {
    std::memcpy(out, line.pLineData, widthPx_);
    return widthPx_;
  }
  const std::uint8_t* whole = wholeLine(line, *form, sameDepth(*form, outForm_) ? out : scratch_.data());
  convertLine(*form, whole, outForm_, out, widthPx_);
  return fillRest(out, lineBytes(outForm_, widthPx_));
}

std::size_t ScanDecode::takePart(const SCANDEC_WRITE& line, PlaneLine::Part part) {
  // A part that comes again belongs to the next line: the line before is as complete as it will ever be.
  std::size_t bytes = planes_.has(part) ? writePlanes(line.pWriteBuff) : 0;
  planes_.put(part, wholeLine(line, LineForm::Gray, scratch_.data()));
  if (planes_.complete()) bytes = writePlanes(line.pWriteBuff);
  return bytes;
}

std::size_t ScanDecode::writePlanes(std::uint8_t* out) {
  convertLine(LineForm::Bgr, planes_.bgr(), outForm_, out, widthPx_);
  planes_.clear();
  return fillRest(out, lineBytes(outForm_, widthPx_));
}

// An uncompressed line has the form of its size: a grey picture's lines come under the kind of mono ones.
LineForm ScanDecode::formOfSize(const SCANDEC_WRITE& line) const {
  if (line.inSize >= lineBytes(LineForm::Rgb, widthPx_)) {
    return line.nInDataKind == kLineKindRgb ? LineForm::Rgb : LineForm::Bgr;
  }
  return line.inSize >= widthPx_ ? LineForm::Gray : LineForm::Mono;
}

// The line expanded, clipped and filled up with white to lineBytes(form): in room, or where it is if it needs nothing.
const std::uint8_t* ScanDecode::wholeLine(const SCANDEC_WRITE& line, LineForm form, std::uint8_t* room) const {
  const std::size_t wanted = lineBytes(form, widthPx_);
  const bool packed = line.nInDataComp == kCompressPackBits;
  if (!packed && line.inSize >= wanted) return line.pLineData;
  std::size_t valid = 0;
  if (packed) {
    valid = unpackBits({line.pLineData, line.inSize}, {room, wanted});
  } else if (line.inSize > 0) {
    valid = line.inSize;
    std::memcpy(room, line.pLineData, valid);
  }
  std::memset(room + valid, kWhite, wanted - valid);
  return room;
}

std::size_t ScanDecode::fillRest(std::uint8_t* out, std::size_t usedBytes) const {
  std::memset(out + usedBytes, kWhite, outLineBytes_ - usedBytes);
  return outLineBytes_;
}

}  // namespace scan_decode
