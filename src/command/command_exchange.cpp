#include "command/command_exchange.h"

#include <algorithm>

#include "command/ScanCmdCom.h"
#include "foundation/OutputLog.h"

namespace orvalle_scan_api::command_exchange {

QSRSLT noAccess() {
  g_ScanDevApiLog.WriteLog(0, "CCmdDevAccess instance does not exist.");
  return QSRSLT_CMD_NO_DEVICE_ACCESS;
}

QSRSLT send(CCmdDevAccess* access, Arguments arguments, const MakeFrame& makeFrame) {
  if (access == nullptr) return noAccess();
  if (std::ranges::find(arguments, nullptr) != arguments.end()) return QSRSLT_CMD_BAD_ARGUMENT;
  const std::string frame = makeFrame();
  if (frame.empty()) return QSRSLT_CMD_EMPTY;
  return access->SendCommand(frame.data(), static_cast<int>(frame.size()));
}

QSRSLT query(CCmdDevAccess* access, Arguments arguments, const MakeFrame& makeFrame,
             const std::function<QSRSLT()>& receive, _SCANCMD_RESPONSE_INFO& stored, _SCANCMD_RESPONSE_INFO* response) {
  if (access != nullptr && response == nullptr) return QSRSLT_CMD_BAD_ARGUMENT;
  const QSRSLT sent = send(access, arguments, [&] {
    CScanCmdCom().FreeCmdResponseData(stored);
    return makeFrame();
  });
  const QSRSLT result = sent != 0 ? sent : receive();
  if (response != nullptr) *response = stored;
  return result;
}

QSRSLT errorResult(unsigned char result) {
  g_ScanDevApiLog.WriteLog(0, "Return error result from device. Result Code = 0x%02X", result);
  return QSRSLT_DEVICE_STATUS + result;
}

}  // namespace orvalle_scan_api::command_exchange
