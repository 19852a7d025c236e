#include "command/ScanCmd_v2.h"

#include "command/ScanCmdCom.h"
#include "foundation/trace.h"

namespace orvalle_scan_api {
namespace {

constexpr long kAnswerTimeOutMs = 5000;
constexpr int kSignatureBytes = 3;

// Commands without lines, sent as constant bytes.
const std::string kGKPFrame = "\x1BGKP\n\x80";
const std::string kGCTFrame = "\x1BGCT\n\x80";
const std::string kGCPFrame = "\x1BGCP\n\x80";
const std::string kGDSFrame = "\x1BGDS\n\x80";

void logErrorResult(unsigned code) {
  g_ScanDevApiLog.WriteLog(0, "Return error result from device. Result Code = 0x%02X", code);
}

}  // namespace

QSRSLT CScanCmd_v2::ExeCKDcmd(SCANCMD_PAPERSOURCE_TYPE source) {
  Trace trace("ExeCKDcmd");
  if (const QSRSLT refused = refusal(true); refused != 0) return trace.result(refused);
  if (const QSRSLT sent = send(strings_.MakeCKDcmdString(source)); sent != 0) return trace.result(sent);
  unsigned char result = 0;
  unsigned char status = 0;
  const QSRSLT got = access_->RecvCmdResult(&result, &status, kAnswerTimeOutMs);
  if (got != 0) return trace.result(got);
  if (result != 0) {
    logErrorResult(result);
    return trace.result(QSRSLT_DEVICE_STATUS | result);
  }
  return trace.result(QSRSLT_DOCUMENT_STATUS | status);
}

QSRSLT CScanCmd_v2::ExeGKPcmd(_SCANCMD_RESPONSE_INFO* response) {
  Trace trace("ExeGKPcmd");
  return trace.result(queryConstant("GKP", kGKPFrame, gkp_, response));
}

QSRSLT CScanCmd_v2::ExeSSPcmd(_SCANCMD_RESPONSE_INFO* response, _SCANCMD_SCANPARAM* param) {
  Trace trace("ExeSSPcmd");
  if (const QSRSLT refused = refusal(response != nullptr && param != nullptr); refused != 0) {
    return trace.result(refused);
  }
  return trace.result(query("SSP", strings_.MakeSSPcmdString(param), ssp_, *response));
}

QSRSLT CScanCmd_v2::ExeGCTcmd(_SCANCMD_RESPONSE_INFO* response) {
  Trace trace("ExeGCTcmd");
  return trace.result(queryConstant("GCT", kGCTFrame, gct_, response));
}

QSRSLT CScanCmd_v2::ExeGCPcmd(_SCANCMD_RESPONSE_INFO* response) {
  Trace trace("ExeGCPcmd");
  return trace.result(queryConstant("GCP", kGCPFrame, gcp_, response));
}

QSRSLT CScanCmd_v2::ExeGDScmd(_SCANCMD_RESPONSE_INFO* response) {
  Trace trace("ExeGDScmd");
  return trace.result(queryConstant("GDS", kGDSFrame, gds_, response));
}

QSRSLT CScanCmd_v2::ExeXSCcmd(_SCANCMD_SCANPARAM* param) {
  Trace trace("ExeXSCcmd");
  if (const QSRSLT refused = refusal(param != nullptr); refused != 0) return trace.result(refused);
  return trace.result(send(strings_.MakeXSCcmdString(param)));
}

QSRSLT CScanCmd_v2::ExeABTcmd(SCANCMD_EJECTION_TYPE ejection) {
  Trace trace("ExeABTcmd");
  if (const QSRSLT refused = refusal(true); refused != 0) return trace.result(refused);
  return trace.result(send(strings_.MakeABTcmdString(ejection)));
}

QSRSLT CScanCmd_v2::refusal(bool argumentsGiven) const {
  if (access_ == nullptr) {
    g_ScanDevApiLog.WriteLog(0, "CCmdDevAccess instance does not exist.");
    return QSRSLT_CMD_NO_DEVICE_ACCESS;
  }
  return argumentsGiven ? QSRSLT_SUCCESS : QSRSLT_CMD_BAD_ARGUMENT;
}

QSRSLT CScanCmd_v2::send(const std::string& frame) {
  if (frame.empty()) return QSRSLT_CMD_EMPTY;
  return access_->SendCommand(frame.data(), static_cast<int>(frame.size()));
}

QSRSLT CScanCmd_v2::queryConstant(const char* signature, const std::string& frame, _SCANCMD_RESPONSE_INFO& stored,
                                  _SCANCMD_RESPONSE_INFO* response) {
  const QSRSLT refused = refusal(response != nullptr);
  return refused != 0 ? refused : query(signature, frame, stored, *response);
}

QSRSLT CScanCmd_v2::query(const char* signature, const std::string& frame, _SCANCMD_RESPONSE_INFO& stored,
                          _SCANCMD_RESPONSE_INFO& response) {
  CScanCmdCom().FreeCmdResponseData(stored);
  QSRSLT result = send(frame);
  if (result == 0) result = RecvCmdResponseData(signature, stored, kAnswerTimeOutMs);
  response = stored;
  return result;
}

QSRSLT CScanCmd_v2::RecvCmdResponseData(const char* signature, _SCANCMD_RESPONSE_INFO& stored, long timeOutMs) {
  CCmdDevAccess::CMDRESINFO answer{};
  answer.resultSize = 1;
  answer.signatureSize = kSignatureBytes;
  answer.lengthSize = 4;
  if (const QSRSLT got = access_->RecvCmdResponse(answer, timeOutMs, false); got != 0) return got;
  if (answer.result != 0) {
    logErrorResult(answer.result);
    return QSRSLT_DEVICE_STATUS + answer.result;
  }
  const CScanCmdCom common;
  const QSRSLT valid = common.ValidateCmdResSignature(answer.signature, signature, kSignatureBytes);
  return valid != 0 ? valid : common.CopyCmdResDataFromRxBuff(answer.data, answer.dataSize, stored);
}

void CScanCmd_v2::FreeResCmdData() {
  const CScanCmdCom common;
  for (_SCANCMD_RESPONSE_INFO* stored : {&gkp_, &ssp_, &gct_, &gcp_, &gds_}) common.FreeCmdResponseData(*stored);
}

}  // namespace orvalle_scan_api
