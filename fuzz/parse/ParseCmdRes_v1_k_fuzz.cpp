// The panel's settings.
#include "fuzz/parse/body_fuzz.h"
#include "parse/ParseCmdRes_v1.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedBody body(data, size);
  const auto keys = orvalle_scan_api::CParseCmdRes_v1().ParseDeviceKeyInfoResponse(body.data(), body.size());
  touchRecord(keys);
  return 0;
}
