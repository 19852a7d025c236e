// From the body of an answer to its record.
#include <benchmark/benchmark.h>

#include <cstring>

#include "parse/ParseCmdRes_v2.h"
#include "tests/parse/tag_body.h"

namespace {

using namespace orvalle_scan_api;

// An office device with bed and feeder that tells everything a device can tell.
BodyBytes deviceInformation() {
  TagBody body;
  body.tag(0x0001, u16s({0x0102})).tag(0x0101, u16s({3})).tag(0x0102, "Office 50").tag(0x0201, {15, 0});
  body.tag(0x0202, {1, 2}).tag(0x0203, u16s({1})).tag(0x0204, {1, 0}).tag(0x0301, {0x1F, 0}).tag(0x0302, {3, 2});
  body.tag(0x0303, u16s({50})).tag(0x0304, u16s({1200, 1200, 600, 600, 600, 600}));
  body.tag(0x0305, u16s({2159, 2970, 2159, 3556, 2159, 3556})).tag(0x0306, u16s({8630, 8630}));
  body.tag(0x0307, u16s({10, 10, 500, 700, 500, 700})).tag(0x0308, u16s({2159, 2970, 2159, 3556, 2159, 3556}));
  body.tag(0x0309, BodyBytes(32)).tag(0x030A, BodyBytes(64)).tag(0x030B, {1, 1, 2, 1, 0, 0}).tag(0x030C, {1, 2});
  body.tag(0x030D, {3, 0}).tag(0x030E, {1, 31, 0, 0}).tag(0x030F, {7, 0}).tag(0x0310, {3, 7, 3, 0});
  body.tag(0x0311, BodyBytes(6)).tag(0x0401, {3, 3, 5, 5, 5, 0}).tag(0x0402, {100, 31}).tag(0x0403, {3, 1, 254, 0});
  body.tag(0x0404, u16s({15})).tag(0x0405, u16s({1})).tag(0x0406, {18, 0}).tag(0x0407, BodyBytes(6));
  body.tag(0x0408, {1, 0}).tag(0x0501, {1, 0}).tag(0x0502, BodyBytes(10)).tag(0x0503, BodyBytes(10));
  body.tag(0x0504, BodyBytes(4)).tag(0x0505, BodyBytes(16)).tag(0x0506, BodyBytes(12)).tag(0x0507, {3, 2});
  body.tag(0x0508, {5, 5, 5, 0, 5, 0}).tag(0x0509, {5, 5, 5, 0, 5, 0}).tag(0x050A, {7, 3}).tag(0x050B, {7, 1});
  body.tag(0x050C, {7, 10}).tag(0x050D, {1, 9, 9, 0}).tag(0x050E, {1, 0}).tag(0x050F, BodyBytes(10, 1));
  return body.end().bytes;
}

void deviceInformationToRecord(benchmark::State& state) {
  BodyBytes body = deviceInformation();
  const auto size = static_cast<long>(body.size());
  const QS_SCANNER_CAPABILITY c = CParseCmdRes_v2().ParseDeviceInfoResponse(body.data(), size);
  if (c.commandVersion != 0x0102 || std::strcmp(c.modelInfo.modelName, "Office 50") != 0 ||
      c.baseFunc.deviceScanSizeMax.simplex.y != 35560 || c.baseFunc.paperSource.duplexScanSystem != 1 ||
      c.advancedFunc.blankRemoval.levelMax != 9 || c.advancedFunc.quietScan.level != 0x0101) {
    return state.SkipWithError("wrong record");
  }
  for (auto _ : state) benchmark::DoNotOptimize(CParseCmdRes_v2().ParseDeviceInfoResponse(body.data(), size));
  state.SetBytesProcessed(state.iterations() * size);
}

void panelSettingsToRecord(benchmark::State& state) {
  BodyBytes body = TagBody()
                       .tag(0x1001, {2, 0})
                       .tag(0x1002, {0x2C, 0x01, 0x2C, 0x01, 4, 0x24, 0, 50, 50, 0})
                       .tag(0x1003, {1, 1})
                       .tag(0x1004, {1, 1, 0, 1, 0, 1, 5, 0})
                       .tag(0x1005, {0x21, 1, 4, 80})
                       .tag(0x1006, BodyBytes(4))
                       .end()
                       .bytes;
  const auto size = static_cast<long>(body.size());
  const tagQS_PUSHSCAN_PARAMETERS p = CParseCmdRes_v2().ParseDeviceKeyInfoResponse(body.data(), size);
  if (p.event.value != 1 || p.paperType.value != PAPERTYPE_LETTER || p.fileType.qualityArg != 80) {
    return state.SkipWithError("wrong record");
  }
  for (auto _ : state) benchmark::DoNotOptimize(CParseCmdRes_v2().ParseDeviceKeyInfoResponse(body.data(), size));
}

BENCHMARK(deviceInformationToRecord)->Unit(benchmark::kMicrosecond);
BENCHMARK(panelSettingsToRecord)->Unit(benchmark::kMicrosecond);

}  // namespace
