// The colour profiles, which point into the body.
#include "fuzz/parse/body_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedBody body(data, size);
  orvalle_scan_api::CParseCmdRes_v2 parser;
  for (const auto& profiles : {parser.GetGCPcommandResponse(body.data(), body.size()),
                               parser.ParsePDFaColorProfileResponse(body.data(), body.size())}) {
    touchAll(profiles.colorProfile, static_cast<std::size_t>(profiles.colorProfileSize));
    touchAll(profiles.grayProfile, static_cast<std::size_t>(profiles.grayProfileSize));
  }
  return 0;
}
