// Carries out the commands of the second command generation.
// Threads: one thread at a time.
#pragma once

#include "command/CmdDevAccess.h"
#include "command/CmdString_v2.h"
#include "command/command_exchange.h"
#include "command/scancmd_param.h"

namespace orvalle_scan_api {

class CScanCmd_v2 {
 public:
  explicit CScanCmd_v2(CCmdDevAccess* access) : access_(access) {}
  ~CScanCmd_v2() { FreeResCmdData(); }
  CScanCmd_v2(const CScanCmd_v2&) = delete;
  CScanCmd_v2& operator=(const CScanCmd_v2&) = delete;

  // 0x202000 OR the document status when the device answered with result 0; never 0.
  QSRSLT ExeCKDcmd(SCANCMD_PAPERSOURCE_TYPE source);

  // Each frees the stored answer of its kind, asks the device, and gives the caller what is stored then, also after a
  // failure. The bytes stay owned here until the same command runs again.
  //   0x10240000 plus the byte  the device refused     0x10210043  wrong signature     or the transport's code
  QSRSLT ExeGKPcmd(_SCANCMD_RESPONSE_INFO* response);
  QSRSLT ExeSSPcmd(_SCANCMD_RESPONSE_INFO* response, _SCANCMD_SCANPARAM* param);
  QSRSLT ExeGCTcmd(_SCANCMD_RESPONSE_INFO* response);
  QSRSLT ExeGCPcmd(_SCANCMD_RESPONSE_INFO* response);
  QSRSLT ExeGDScmd(_SCANCMD_RESPONSE_INFO* response);

  // Sent without an answer here: it comes in the image stream.
  QSRSLT ExeXSCcmd(_SCANCMD_SCANPARAM* param);
  QSRSLT ExeABTcmd(SCANCMD_EJECTION_TYPE ejection);

  void FreeResCmdData();

 private:
  QSRSLT query(const char* signature, command_exchange::Arguments arguments,
               const command_exchange::MakeFrame& makeFrame, _SCANCMD_RESPONSE_INFO& stored,
               _SCANCMD_RESPONSE_INFO* response);
  QSRSLT RecvCmdResponseData(const char* signature, _SCANCMD_RESPONSE_INFO& stored, long timeOutMs);

  _SCANCMD_RESPONSE_INFO gkp_{};  // each owns its data
  _SCANCMD_RESPONSE_INFO ssp_{};
  _SCANCMD_RESPONSE_INFO gct_{};
  _SCANCMD_RESPONSE_INFO gcp_{};
  _SCANCMD_RESPONSE_INFO gds_{};
  CCmdDevAccess* access_;  // not owned
  CCmdString_v2 strings_;
};

}  // namespace orvalle_scan_api
