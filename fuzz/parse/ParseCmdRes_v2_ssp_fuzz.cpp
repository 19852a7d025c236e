// What the device says it will do.
#include "fuzz/parse/body_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedBody body(data, size);
  orvalle_scan_api::CParseCmdRes_v2 parser;
  const auto response = parser.GetSSPcommandResponse(body.data(), body.size());
  touchRecord(response);
  const auto actual = parser.ParseActualParameterResponse(body.data(), body.size());
  touchRecord(actual);
  return 0;
}
