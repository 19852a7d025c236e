// The device information.
#include "fuzz/parse/body_fuzz.h"
#include "parse/ParseCmdRes_v1.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedBody body(data, size);
  orvalle_scan_api::CParseCmdRes_v1 parser;
  const auto response = parser.GetQcmdResponse(body.data(), body.size());
  touchRecord(response);
  const auto capability = parser.ParseDeviceInfoResponse(body.data(), body.size());
  touchRecord(capability);
  return 0;
}
