// Lines of every compression and kind into pages of every depth.
// Input: page format, width, then records of compression, kind, length and that many bytes.
#include <algorithm>
#include <memory>
#include <vector>

#include "fuzz/touch.h"
#include "modules/ScanDec.h"

using namespace orvalle_scan_api;

extern "C" IScanDec* CreateInstance();

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3 || size > 100000) return 0;
  constexpr std::int32_t kFormats[] = {0x101, 0x102, 0x208, 0x210, 0x420};
  constexpr std::size_t kBits[] = {1, 1, 8, 8, 24};
  const std::size_t format = data[0] % 5;
  SCANDEC_OPEN open{};
  open.nColorType = kFormats[format];
  open.dwInLinePixCnt = static_cast<std::size_t>(data[1]) * 4 + data[2] % 4;
  open.dwOutLineByteCnt = (open.dwInLinePixCnt * kBits[format] + 7) / 8;
  const std::unique_ptr<IScanDec> decoder(CreateInstance());
  if (decoder->Open(0) != 1 || decoder->SetOpenParam(&open) != 1) return 0;

  const std::uint8_t* next = data + 3;
  for (std::size_t left = size - 3; left >= 3;) {
    std::vector<std::uint8_t> line(next + 3, next + 3 + std::min<std::size_t>(left - 3, next[2]));
    std::vector<std::uint8_t> out(open.dwWriteBuffSize);
    SCANDEC_WRITE write{next[0] % 7, next[1] % 10, line.data(), line.size(), out.data(), out.size(), 0, 0};
    int lines = 0;
    int bytes = 0;
    if (decoder->Write(&write, &lines, &bytes) >= 0 && (lines < 0 || lines > 1)) __builtin_trap();
    touchAll(out.data(), static_cast<std::size_t>(bytes));
    next += 3 + line.size();
    left -= 3 + line.size();
  }
  return 0;
}
