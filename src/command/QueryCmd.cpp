#include "command/QueryCmd.h"

#include "command/ScanCmdCom.h"
#include "command/command_exchange.h"
#include "foundation/trace.h"

namespace orvalle_scan_api {
namespace {

constexpr char kQFrame[] = {0x1B, 'Q', 0x0A, '\x80'};
constexpr char kQDIFrame[] = {0x1B, 'Q', 'D', 'I', 0x0A, '\x80'};
constexpr char kQSignature[] = {'\xC1', 0x00};
constexpr char kQDISignature[] = "QDI";
constexpr long kCapabilityTimeOutMs = 35000;
constexpr int kLastFirstGenerationVersion = 15;

}  // namespace

CQueryCmd::~CQueryCmd() {
  FreeQcmdResponseData();
  FreeQDIcmdResponseData();
}

QSRSLT CQueryCmd::ExeQcmd(_SCANCMD_DEVICECAP_INFO* info) {
  Trace trace("ExeQcmd");
  if (access_ == nullptr) {
    if (info != nullptr) *info = qAnswer_;
    return trace.result(command_exchange::noAccess());
  }
  if (info == nullptr) return trace.result(QSRSLT_CMD_BAD_ARGUMENT);
  FreeQcmdResponseData();
  const QSRSLT result = queryQ();
  *info = qAnswer_;
  return trace.result(result);
}

QSRSLT CQueryCmd::queryQ() {
  if (const QSRSLT sent = access_->SendCommand(kQFrame, sizeof kQFrame); sent != 0) return sent;
  CCmdDevAccess::CMDRESINFO answer{};
  answer.signatureSize = sizeof kQSignature;
  answer.lengthSize = 1;
  if (const QSRSLT got = access_->RecvCmdResponse(answer, kCapabilityTimeOutMs, true); got != 0) return got;
  if (const QSRSLT valid = CScanCmdCom().ValidateCmdResSignature(answer.signature, kQSignature, sizeof kQSignature);
      valid != 0) {
    return valid;
  }
  if (const QSRSLT copied = CopyCmdResDataFromRxBuff(answer.data, answer.dataSize, qAnswer_); copied != 0) {
    return copied;
  }
  // Read as signed: a first byte of 0x80 or above means the first generation.
  qAnswer_.version = static_cast<std::int8_t>(qAnswer_.data[0]);
  qAnswer_.generation =
      qAnswer_.version > kLastFirstGenerationVersion ? SCANCMD_GENERATION_2ND : SCANCMD_GENERATION_1ST;
  return QSRSLT_SUCCESS;
}

QSRSLT CQueryCmd::ExeQDIcmd(_SCANCMD_DEVICECAP_INFO* info) {
  Trace trace("ExeQDIcmd");
  if (access_ == nullptr) {
    if (info != nullptr) *info = qdiAnswer_;
    return trace.result(command_exchange::noAccess());
  }
  if (info == nullptr) return trace.result(QSRSLT_CMD_BAD_ARGUMENT);
  FreeQDIcmdResponseData();
  const QSRSLT result = queryQDI();
  *info = qdiAnswer_;
  return trace.result(result);
}

QSRSLT CQueryCmd::queryQDI() {
  if (const QSRSLT sent = access_->SendCommand(kQDIFrame, sizeof kQDIFrame); sent != 0) return sent;
  CCmdDevAccess::CMDRESINFO answer{};
  answer.resultSize = 1;
  answer.signatureSize = 3;
  answer.lengthSize = 4;
  if (const QSRSLT got = access_->RecvCmdResponse(answer, kCapabilityTimeOutMs, false); got != 0) return got;
  if (answer.result != 0) return command_exchange::errorResult(answer.result);
  if (const QSRSLT valid = CScanCmdCom().ValidateCmdResSignature(answer.signature, kQDISignature, 3); valid != 0) {
    return valid;
  }
  const QSRSLT copied = CopyCmdResDataFromRxBuff(answer.data, answer.dataSize, qdiAnswer_);
  if (copied != 0) return copied;
  qdiAnswer_.generation = SCANCMD_GENERATION_2ND;
  qdiAnswer_.version = 0;
  return QSRSLT_SUCCESS;
}

_SCANCMD_DEVICECAP_INFO CQueryCmd::GetDeviceCapInfo() const {
  return qdiAnswer_.data != nullptr ? qdiAnswer_ : qAnswer_;
}

void CQueryCmd::FreeQcmdResponseData() { FreeCmdResponseData(qAnswer_); }

void CQueryCmd::FreeQDIcmdResponseData() { FreeCmdResponseData(qdiAnswer_); }

void CQueryCmd::FreeCmdResponseData(_SCANCMD_DEVICECAP_INFO& info) {
  delete[] info.data;
  info = {};
}

QSRSLT CQueryCmd::CopyCmdResDataFromRxBuff(const unsigned char* data, int size, _SCANCMD_DEVICECAP_INFO& info) {
  if (data == nullptr || size < 1) return QSRSLT_CMD_BAD_ARGUMENT;
  FreeCmdResponseData(info);
  info.data = newResponseBody(data, size);
  info.size = info.data == nullptr ? 0 : size;
  return info.data == nullptr ? QSRSLT_CMD_TOO_LARGE : QSRSLT_SUCCESS;
}

}  // namespace orvalle_scan_api
