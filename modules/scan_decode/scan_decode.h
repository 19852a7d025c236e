// IScanDec: raw and PackBits lines of every kind to lines of the page's depth. README.md tells the rules.
//
// Every line that comes in finishes one line, except the first two of a line that comes as red, green and blue parts.
// Nothing is read ahead. Threads: one caller at a time.
#pragma once

#include <vector>

#include "line_convert.h"
#include "modules/ScanDec.h"
#include "plane_line.h"

namespace scan_decode {

class ScanDecode final : public orvalle_scan_api::IScanDec {
 public:
  unsigned char Open(int mode) override;
  unsigned char SetOpenParam(orvalle_scan_api::SCANDEC_OPEN* param) override;
  int Write(orvalle_scan_api::SCANDEC_WRITE* param, int* outLines, int* outBytes) override;
  int PageEnd(orvalle_scan_api::SCANDEC_WRITE* param, int* outLines, int* outBytes) override;
  void Close() override;

 private:
  // Each takes one call's input and returns the bytes of the finished line, 0 if there is none yet.
  std::size_t takeLine(const orvalle_scan_api::SCANDEC_WRITE& line);
  std::size_t takePart(const orvalle_scan_api::SCANDEC_WRITE& line, PlaneLine::Part part);
  std::size_t writePlanes(std::uint8_t* out);

  bool canWrite(const orvalle_scan_api::SCANDEC_WRITE* param, int* outLines, int* outBytes) const;
  LineForm formOfSize(const orvalle_scan_api::SCANDEC_WRITE& line) const;
  const std::uint8_t* wholeLine(const orvalle_scan_api::SCANDEC_WRITE& line, LineForm form, std::uint8_t* room) const;
  std::size_t fillRest(std::uint8_t* out, std::size_t usedBytes) const;

  bool opened_ = false;
  std::size_t widthPx_ = 0;  // 0 until the page's format is known
  LineForm outForm_ = LineForm::Bgr;
  std::size_t outLineBytes_ = 0;
  std::vector<std::uint8_t> scratch_;  // one line of any form
  PlaneLine planes_;
};

}  // namespace scan_decode
