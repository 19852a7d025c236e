// A detected paper, on a device whose margins and sizes are any too.
#include "fuzz/parse/body_fuzz.h"
#include "parse/ParseCmdRes_v1.h"
#include "settings/PaperSize.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace orvalle_scan_api;
  // The first bytes say what the device is, as far as naming a paper looks at it.
  constexpr std::size_t kDeviceBytes = 12;
  if (size < kDeviceBytes) return 0;
  const auto word = [data](std::size_t at) {
    return static_cast<std::int32_t>(data[at] | data[at + 1] << 8 | data[at + 2] << 16 |
                                     static_cast<std::uint32_t>(data[at + 3]) << 24);
  };
  ACTUALSCANPARAM actual{};
  actual.paperSource = static_cast<PAPERSOURCESELECT>(data[0] % 5);
  const auto unit = static_cast<UNITTYPE>(data[1] % 4);
  QS_SCANNER_CAPABILITY capability{};
  capability.baseFunc.marginSize.flatbed = {word(4), 0, 0, 0, static_cast<UNITTYPE>(data[2] % 4)};
  capability.baseFunc.marginSize.adfSimplex.left = word(8);
  capability.baseFunc.deviceScanSizeMax.flatbed.x = static_cast<std::uint32_t>(word(6));

  FuzzedBody body(data + kDeviceBytes, size - kDeviceBytes);
  const auto paper =
      CParseCmdRes_v1().ParsePaperSizeDetectFrom2Vertex(body.data(), body.size(), capability, actual, unit);
  touchRecord(paper);
  const auto area =
      CPaperSize().GetScanSizeFromVertex(paper.vertex1, paper.vertex2, paper.resolution, capability, actual, unit);
  touchRecord(area);
  return 0;
}
