// A line decoder under a test's control: copies lines, or answers what it was told to.
// Threads: set up before the stage starts, read after its page was collected.
#pragma once

#include <algorithm>
#include <cstring>
#include <deque>
#include <functional>
#include <vector>

#include "modules/ScanDec.h"

namespace fakes {

class FakeScanDec : public orvalle_scan_api::IScanDec {
 public:
  struct Answer {
    int result = 0;
    int lines = 1;
    int bytes = -1;  // -1: lines times the line length asked for
  };
  struct Input {
    int comp;
    int kind;
    std::vector<std::uint8_t> bytes;
  };

  unsigned char openAnswer = 1;
  unsigned char setOpenAnswer = 1;
  std::size_t linesOfBuffer = 4;       // dwWriteBuffSize in lines
  std::size_t bufferBytes = SIZE_MAX;  // or in bytes, where it is set
  std::deque<Answer> writeAnswers;     // used up first; then one line for each line
  Answer pageEndAnswer = {0, 0, 0};
  std::function<void()> onWrite;  // runs on the worker

  int opens = 0;
  int closes = 0;
  int pageEnds = 0;
  orvalle_scan_api::SCANDEC_OPEN seenOpen{};
  std::vector<Input> inputs;

  unsigned char Open(int) override {
    ++opens;
    return openAnswer;
  }
  unsigned char SetOpenParam(orvalle_scan_api::SCANDEC_OPEN* param) override {
    param->dwWriteBuffSize = bufferBytes != SIZE_MAX ? bufferBytes : linesOfBuffer * param->dwOutLineByteCnt;
    seenOpen = *param;
    return setOpenAnswer;
  }
  int Write(orvalle_scan_api::SCANDEC_WRITE* param, int* outLines, int* outBytes) override {
    if (onWrite) onWrite();
    inputs.push_back({param->nInDataComp, param->nInDataKind, {param->pLineData, param->pLineData + param->inSize}});
    Answer answer;
    if (!writeAnswers.empty()) {
      answer = writeAnswers.front();
      writeAnswers.pop_front();
    }
    // Each line of the buffer is the input line; a short one is followed by 0x5A.
    std::memset(param->pWriteBuff, 0x5A, param->writeBuffSize);
    const std::size_t stride = seenOpen.dwOutLineByteCnt;
    for (std::size_t at = 0; stride > 0 && at + stride <= param->writeBuffSize; at += stride) {
      std::memcpy(param->pWriteBuff + at, param->pLineData, std::min(stride, param->inSize));
    }
    return give(answer, outLines, outBytes);
  }
  int PageEnd(orvalle_scan_api::SCANDEC_WRITE* param, int* outLines, int* outBytes) override {
    ++pageEnds;
    if (pageEndAnswer.lines > 0) std::memset(param->pWriteBuff, 0xE0, param->writeBuffSize);
    return give(pageEndAnswer, outLines, outBytes);
  }
  void Close() override { ++closes; }

 private:
  int give(const Answer& answer, int* outLines, int* outBytes) const {
    *outLines = answer.lines;
    *outBytes = answer.bytes >= 0 ? answer.bytes : answer.lines * static_cast<int>(seenOpen.dwOutLineByteCnt);
    return answer.result;
  }
};

}  // namespace fakes
