#include "connect.h"

#include "device_name.h"
#include "results.h"

namespace qsscan {
namespace {

using orvalle_scan_api::QSRSLT;

void check(QSRSLT result) {
  if (result == orvalle_scan_api::QSRSLT_SUCCESS) return;
  const ResultText text = describeResult(result, Phase::kConnecting);
  throw CommandError(text.exit, text.sentence, result);
}

}  // namespace

Capability connect(orvalle_scan_api::IScanCoreApi& core, const std::string& deviceName) {
  constexpr unsigned kFlatRecord = 1;
  auto device = parseDeviceName(deviceName);
  check(core.Initialize());
  check(core.SelectDevice(device));
  Capability capability{};
  check(core.QueryDeviceCapabilities(kFlatRecord, &capability));
  return capability;
}

}  // namespace qsscan
