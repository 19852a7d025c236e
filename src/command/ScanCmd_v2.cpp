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

}  // namespace

QSRSLT CScanCmd_v2::ExeCKDcmd(SCANCMD_PAPERSOURCE_TYPE source) {
  Trace trace("ExeCKDcmd");
  const QSRSLT sent = command_exchange::send(access_, {}, [&] { return strings_.MakeCKDcmdString(source); });
  if (sent != 0) return trace.result(sent);
  unsigned char result = 0;
  unsigned char status = 0;
  const QSRSLT got = access_->RecvCmdResult(&result, &status, kAnswerTimeOutMs);
  if (got != 0) return trace.result(got);
  return trace.result(result != 0 ? command_exchange::errorResult(result) : QSRSLT_DOCUMENT_STATUS | status);
}

QSRSLT CScanCmd_v2::ExeGKPcmd(_SCANCMD_RESPONSE_INFO* response) {
  Trace trace("ExeGKPcmd");
  return trace.result(query(
      "GKP", {}, [] { return kGKPFrame; }, gkp_, response));
}

QSRSLT CScanCmd_v2::ExeSSPcmd(_SCANCMD_RESPONSE_INFO* response, _SCANCMD_SCANPARAM* param) {
  Trace trace("ExeSSPcmd");
  const auto makeFrame = [&] { return strings_.MakeSSPcmdString(param); };
  return trace.result(query("SSP", {param}, makeFrame, ssp_, response));
}

QSRSLT CScanCmd_v2::ExeGCTcmd(_SCANCMD_RESPONSE_INFO* response) {
  Trace trace("ExeGCTcmd");
  return trace.result(query(
      "GCT", {}, [] { return kGCTFrame; }, gct_, response));
}

QSRSLT CScanCmd_v2::ExeGCPcmd(_SCANCMD_RESPONSE_INFO* response) {
  Trace trace("ExeGCPcmd");
  return trace.result(query(
      "GCP", {}, [] { return kGCPFrame; }, gcp_, response));
}

QSRSLT CScanCmd_v2::ExeGDScmd(_SCANCMD_RESPONSE_INFO* response) {
  Trace trace("ExeGDScmd");
  return trace.result(query(
      "GDS", {}, [] { return kGDSFrame; }, gds_, response));
}

QSRSLT CScanCmd_v2::ExeXSCcmd(_SCANCMD_SCANPARAM* param) {
  Trace trace("ExeXSCcmd");
  return trace.result(command_exchange::send(access_, {param}, [&] { return strings_.MakeXSCcmdString(param); }));
}

QSRSLT CScanCmd_v2::ExeABTcmd(SCANCMD_EJECTION_TYPE ejection) {
  Trace trace("ExeABTcmd");
  return trace.result(command_exchange::send(access_, {}, [&] { return strings_.MakeABTcmdString(ejection); }));
}

QSRSLT CScanCmd_v2::query(const char* signature, command_exchange::Arguments arguments,
                          const command_exchange::MakeFrame& makeFrame, _SCANCMD_RESPONSE_INFO& stored,
                          _SCANCMD_RESPONSE_INFO* response) {
  return command_exchange::query(
      access_, arguments, makeFrame, [&] { return RecvCmdResponseData(signature, stored, kAnswerTimeOutMs); }, stored,
      response);
}

QSRSLT CScanCmd_v2::RecvCmdResponseData(const char* signature, _SCANCMD_RESPONSE_INFO& stored, long timeOutMs) {
  CCmdDevAccess::CMDRESINFO answer{};
  answer.resultSize = 1;
  answer.signatureSize = kSignatureBytes;
  answer.lengthSize = 4;
  if (const QSRSLT got = access_->RecvCmdResponse(answer, timeOutMs, false); got != 0) return got;
  if (answer.result != 0) return command_exchange::errorResult(answer.result);
  const CScanCmdCom common;
  const QSRSLT valid = common.ValidateCmdResSignature(answer.signature, signature, kSignatureBytes);
  return valid != 0 ? valid : common.CopyCmdResDataFromRxBuff(answer.data, answer.dataSize, stored);
}

void CScanCmd_v2::FreeResCmdData() {
  const CScanCmdCom common;
  for (_SCANCMD_RESPONSE_INFO* stored : {&gkp_, &ssp_, &gct_, &gcp_, &gds_}) common.FreeCmdResponseData(*stored);
}

}  // namespace orvalle_scan_api
