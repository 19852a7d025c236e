// The first-generation image stream, walked record by record as its reader does.
#include <cstdlib>
#include <vector>

#include "command/ParseExeCmdRes_v1.h"
#include "fuzz/touch.h"

using namespace orvalle_scan_api;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<unsigned char> stream(data, data + size);
  const unsigned char* const end = stream.data() + size;
  unsigned char* at = stream.data();
  while (at != nullptr) {
    const auto rest = static_cast<std::size_t>(end - at);
    SCANIMAGEINFO info;
    if (CParseExeCmdRes_v1().ParseXcmdImageDataInfo(at, rest, &info) != 0) std::abort();
    touchAll(reinterpret_cast<const std::uint8_t*>(&info), sizeof info);
    const LINEDATA& line = info.lineData;
    if (info.isIncomplete) {
      if (info.next != nullptr) std::abort();
      break;
    }
    if (info.recordKind == kRecordKindLine) touchAll(line.lineBytes, line.lineSize);
    if (info.next != nullptr && (info.next <= at || info.next >= end)) std::abort();
    at = info.next;
  }
  CParseExeCmdRes_v1().ParsePaperSizeDetectFrom4Vertex(stream.data(), static_cast<long>(size));
  return 0;
}
