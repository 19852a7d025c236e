#include "command/ScanCmd_v1.h"

#include "command/ScanCmdCom.h"
#include "foundation/trace.h"

namespace orvalle_scan_api {
namespace {

constexpr long kAnswerTimeOutMs = 5000;
constexpr int kLengthBytes = 2;

// What a device answers when all is well.
constexpr unsigned char kStatusGood = 0x80;   // D, S
constexpr unsigned char kKeysResult = 0x30;   // K
constexpr unsigned char kParamResult = 0x00;  // I, E

// Commands without lines, sent as constant bytes.
const std::string kKFrame = "\x1BK\n\x80";
const std::string kPFrame = "\x1BP\n\x80";
const std::string kRFrame = "\x1BR\n\x80";

}  // namespace

QSRSLT CScanCmd_v1::ExeDcmd(SCANCMD_PAPERSOURCE_TYPE source) {
  Trace trace("ExeDcmd");
  return trace.result(checkStatus([&] { return strings_.MakeDcmdString(source); }));
}

QSRSLT CScanCmd_v1::ExeScmd(SCANCMD_PAPERSOURCE_TYPE source) {
  Trace trace("ExeScmd");
  return trace.result(checkStatus([&] { return strings_.MakeScmdString(source); }));
}

QSRSLT CScanCmd_v1::ExeKcmd(_SCANCMD_RESPONSE_INFO* response) {
  Trace trace("ExeKcmd");
  return trace.result(query(
      kKeysResult, {}, [] { return kKFrame; }, k_, response));
}

QSRSLT CScanCmd_v1::ExeIcmd(_SCANCMD_RESPONSE_INFO* response, _SCANCMD_SCANPARAM* param) {
  Trace trace("ExeIcmd");
  return trace.result(query(
      kParamResult, {param}, [&] { return strings_.MakeIcmdString(param); }, i_, response));
}

QSRSLT CScanCmd_v1::ExePcmd(_SCANCMD_RESPONSE_INFO* response) {
  Trace trace("ExePcmd");
  return trace.result(command_exchange::query(
      access_, {}, [] { return kPFrame; }, [&] { return recvPalette(kAnswerTimeOutMs); }, p_, response));
}

QSRSLT CScanCmd_v1::ExeEcmd(_SCANCMD_RESPONSE_INFO* response, _SCANCMD_SCANPARAM* param) {
  Trace trace("ExeEcmd");
  // Kept: the document size is asked for with an I frame, logged as such, and its answer is kept as E's. It looks like
  // a slip beside MakeEcmdString, but the frame with the mnemonic E has never been on the wire and devices answer this
  // one. Pinned by ScanCmd_v1_test "TheDocumentSizeIsAskedForWithAnIFrame".
  return trace.result(query(
      kParamResult, {param}, [&] { return strings_.MakeIcmdString(param); }, e_, response));
}

QSRSLT CScanCmd_v1::ExeXcmd(_SCANCMD_SCANPARAM* param) {
  Trace trace("ExeXcmd");
  return trace.result(command_exchange::send(access_, {param}, [&] { return strings_.MakeXcmdString(param); }));
}

QSRSLT CScanCmd_v1::ExeRcmd() {
  Trace trace("ExeRcmd");
  return trace.result(command_exchange::send(access_, {}, [] { return kRFrame; }));
}

QSRSLT CScanCmd_v1::checkStatus(const command_exchange::MakeFrame& makeFrame) {
  const QSRSLT sent = command_exchange::send(access_, {}, makeFrame);
  return sent != 0 ? sent : RecvCmdResStatus(kStatusGood, kAnswerTimeOutMs);
}

QSRSLT CScanCmd_v1::query(unsigned char expected, command_exchange::Arguments arguments,
                          const command_exchange::MakeFrame& makeFrame, _SCANCMD_RESPONSE_INFO& stored,
                          _SCANCMD_RESPONSE_INFO* response) {
  return command_exchange::query(
      access_, arguments, makeFrame, [&] { return RecvCmdResponseData(expected, stored, kAnswerTimeOutMs); }, stored,
      response);
}

QSRSLT CScanCmd_v1::RecvCmdResStatus(unsigned char expected, long timeOutMs) {
  unsigned char status = 0;
  if (const QSRSLT got = access_->RecvCmdResult(nullptr, &status, timeOutMs); got != 0) return got;
  if (status == expected) return QSRSLT_SUCCESS;
  g_ScanDevApiLog.WriteLog(0, "Return error result from device. Status Code = 0x%02X", status);
  return QSRSLT_DEVICE_STATUS + status;
}

QSRSLT CScanCmd_v1::RecvCmdResponseData(unsigned char expected, _SCANCMD_RESPONSE_INFO& stored, long timeOutMs) {
  CCmdDevAccess::CMDRESINFO answer{};
  answer.resultSize = 1;
  answer.lengthSize = kLengthBytes;
  if (const QSRSLT got = access_->RecvCmdResponse(answer, timeOutMs, false); got != 0) return got;
  if (answer.result != expected) return command_exchange::errorResult(answer.result);
  return CScanCmdCom().CopyCmdResDataFromRxBuff(answer.data, answer.dataSize, stored);
}

QSRSLT CScanCmd_v1::recvPalette(long timeOutMs) {
  CCmdDevAccess::CMDRESINFO answer{};
  answer.lengthSize = kLengthBytes;
  if (const QSRSLT got = access_->RecvCmdResponse(answer, timeOutMs, false); got != 0) return got;
  return CScanCmdCom().CopyCmdResDataFromRxBuff(answer.data, answer.dataSize, p_);
}

void CScanCmd_v1::FreeResCmdData() {
  const CScanCmdCom common;
  for (_SCANCMD_RESPONSE_INFO* stored : {&k_, &i_, &p_, &e_}) common.FreeCmdResponseData(*stored);
}

}  // namespace orvalle_scan_api
