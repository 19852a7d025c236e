// The image stream, walked record by record as its reader does.
#include <cstdlib>
#include <vector>

#include "command/ParseExeCmdRes_v2.h"
#include "fuzz/touch.h"

using namespace orvalle_scan_api;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<unsigned char> stream(data, data + size);
  std::size_t at = 0;
  while (at < size) {
    IMAGE_HEADER header;
    PARSE_RESULT result;
    unsigned char* next = nullptr;
    unsigned char* const start = stream.data() + at;
    const int parsed = CParseExeCmdRes_v2().ParseXSCcmdImageDataInfo(start, size - at, &header, &result, &next);
    touchAll(reinterpret_cast<const std::uint8_t*>(&header), sizeof header);
    touchAll(reinterpret_cast<const std::uint8_t*>(&result), sizeof result);
    if (parsed != kParsedRecord) break;
    touchAll(header.data, header.dataSize);
    const auto step = static_cast<std::size_t>(next - start);
    if (step < 2 || at + step > size + 1) std::abort();
    at += step;
  }
  return 0;
}
