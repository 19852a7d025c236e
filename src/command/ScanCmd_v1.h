// Carries out the commands of the first command generation.
// Threads: one thread at a time.
#pragma once

#include "command/CmdDevAccess.h"
#include "command/CmdString_v1.h"
#include "command/command_exchange.h"
#include "command/scancmd_param.h"

namespace orvalle_scan_api {

class CScanCmd_v1 {
 public:
  explicit CScanCmd_v1(CCmdDevAccess* access) : access_(access) {}
  ~CScanCmd_v1() { FreeResCmdData(); }
  CScanCmd_v1(const CScanCmd_v1&) = delete;
  CScanCmd_v1& operator=(const CScanCmd_v1&) = delete;

  // Document check and choice of the paper source.
  //   0  the device answered 0x80    0x10240000 plus the byte  it answered otherwise    or the transport's code
  QSRSLT ExeDcmd(SCANCMD_PAPERSOURCE_TYPE source);
  QSRSLT ExeScmd(SCANCMD_PAPERSOURCE_TYPE source);

  // Each frees the stored answer of its kind, asks the device, and gives the caller what is stored then, also after a
  // failure. The bytes stay owned here until the same command runs again.
  //   0x10240000 plus the byte  not the result byte that the command expects    or the transport's code
  QSRSLT ExeKcmd(_SCANCMD_RESPONSE_INFO* response);
  QSRSLT ExeIcmd(_SCANCMD_RESPONSE_INFO* response, _SCANCMD_SCANPARAM* param);
  QSRSLT ExePcmd(_SCANCMD_RESPONSE_INFO* response);
  QSRSLT ExeEcmd(_SCANCMD_RESPONSE_INFO* response, _SCANCMD_SCANPARAM* param);

  // Sent without an answer here: it comes in the image stream.
  QSRSLT ExeXcmd(_SCANCMD_SCANPARAM* param);
  QSRSLT ExeRcmd();

  void FreeResCmdData();

 private:
  QSRSLT query(unsigned char expected, command_exchange::Arguments arguments,
               const command_exchange::MakeFrame& makeFrame, _SCANCMD_RESPONSE_INFO& stored,
               _SCANCMD_RESPONSE_INFO* response);
  QSRSLT checkStatus(const command_exchange::MakeFrame& makeFrame);
  QSRSLT RecvCmdResStatus(unsigned char expected, long timeOutMs);
  QSRSLT RecvCmdResponseData(unsigned char expected, _SCANCMD_RESPONSE_INFO& stored, long timeOutMs);
  QSRSLT recvPalette(long timeOutMs);

  _SCANCMD_RESPONSE_INFO k_{};  // each owns its data
  _SCANCMD_RESPONSE_INFO i_{};
  _SCANCMD_RESPONSE_INFO p_{};
  _SCANCMD_RESPONSE_INFO e_{};
  CCmdDevAccess* access_;  // not owned
  CCmdString_v1 strings_;
};

}  // namespace orvalle_scan_api
