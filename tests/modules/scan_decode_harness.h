// Drives a line decoder over a page of lines, as the line stage of the core does.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "module_loader.h"
#include "modules/ScanDec.h"
#include "packbits_lines.h"

namespace module_test {

struct Line {
  std::int32_t compression;
  std::int32_t kind;
  Bytes bytes;
};

inline std::size_t pageLineBytes(std::int32_t colorType, std::size_t widthPx) {
  const std::size_t bits = (colorType >> 8) == 1 ? 1 : (colorType >> 8) == 2 ? 8 : 24;
  return (widthPx * bits + 7) / 8;
}

inline orvalle_scan_api::SCANDEC_OPEN openParam(std::int32_t colorType, std::size_t widthPx) {
  orvalle_scan_api::SCANDEC_OPEN param{};
  param.nPageNum = 1;
  param.nInResoX = param.nInResoY = param.nOutResoX = param.nOutResoY = 300;
  param.nColorType = colorType;
  param.dwInLinePixCnt = widthPx;
  param.dwInHeightPixCnt = 100;
  param.reservedOne = 1;
  param.dwOutLineByteCnt = pageLineBytes(colorType, widthPx);
  param.reservedText = "";
  return param;
}

// One page through one decoder. Buffers are exactly as large as they claim, so that a sanitizer sees every excess.
class DecodedPage {
 public:
  DecodedPage(orvalle_scan_api::IScanDec& decoder, std::int32_t colorType, std::size_t widthPx) : decoder_(decoder) {
    orvalle_scan_api::SCANDEC_OPEN param = openParam(colorType, widthPx);
    accepted = decoder.Open(0) == 1 && decoder.SetOpenParam(&param) == 1;
    room_ = Bytes(param.dwWriteBuffSize);
  }
  ~DecodedPage() { decoder_.Close(); }
  DecodedPage(const DecodedPage&) = delete;
  DecodedPage& operator=(const DecodedPage&) = delete;

  void write(const Line& line) {
    const std::unique_ptr<std::uint8_t[]> input(new std::uint8_t[line.bytes.size()]);
    std::copy(line.bytes.begin(), line.bytes.end(), input.get());
    orvalle_scan_api::SCANDEC_WRITE param{};
    param.nInDataComp = line.compression;
    param.nInDataKind = line.kind;
    param.pLineData = input.get();
    param.inSize = line.bytes.size();
    result = decoder_.Write(&fill(param), &lines, &bytes);
    append();
  }

  void end() {
    orvalle_scan_api::SCANDEC_WRITE param{};
    result = decoder_.PageEnd(&fill(param), &lines, &bytes);
    append();
  }

  // Of the last call.
  int result = 0;
  int lines = 0;
  int bytes = 0;
  // Of the page.
  bool accepted = false;
  Bytes pixels;

 private:
  orvalle_scan_api::SCANDEC_WRITE& fill(orvalle_scan_api::SCANDEC_WRITE& param) {
    lines = bytes = -1;
    std::fill(room_.begin(), room_.end(), std::uint8_t{0xA5});
    param.pWriteBuff = room_.data();
    param.writeBuffSize = room_.size();
    return param;
  }
  void append() {
    if (result >= 0 && lines > 0) pixels.insert(pixels.end(), room_.begin(), room_.begin() + bytes);
  }

  orvalle_scan_api::IScanDec& decoder_;
  Bytes room_;
};

}  // namespace module_test
