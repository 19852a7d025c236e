// The settings of the device's panel.
#include "fuzz/parse/body_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedBody body(data, size);
  orvalle_scan_api::CParseCmdRes_v2 parser;
  const auto response = parser.GetGKPcommandResponse(body.data(), body.size());
  touchRecord(response);
  const auto push = parser.ParseDeviceKeyInfoResponse(body.data(), body.size());
  touchRecord(push);
  return 0;
}
