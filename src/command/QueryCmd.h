// The two capability commands: Q, which tells the generation, and QDI of the second generation.
// Threads: one thread at a time.
#pragma once

#include "command/CmdDevAccess.h"
#include "command/scancmd_param.h"

namespace orvalle_scan_api {

class CQueryCmd {
 public:
  explicit CQueryCmd(CCmdDevAccess* access) : access_(access) {}
  ~CQueryCmd();
  CQueryCmd(const CQueryCmd&) = delete;
  CQueryCmd& operator=(const CQueryCmd&) = delete;

  // Each frees the stored answer of its kind, asks the device, and copies what is stored then to *info, also after a
  // failure.
  QSRSLT ExeQcmd(_SCANCMD_DEVICECAP_INFO* info);
  QSRSLT ExeQDIcmd(_SCANCMD_DEVICECAP_INFO* info);

  // The QDI answer if there is one, otherwise the Q answer.
  _SCANCMD_DEVICECAP_INFO GetDeviceCapInfo() const;
  void FreeQcmdResponseData();
  void FreeQDIcmdResponseData();
  void FreeCmdResponseData(_SCANCMD_DEVICECAP_INFO& info);
  QSRSLT CopyCmdResDataFromRxBuff(const unsigned char* data, int size, _SCANCMD_DEVICECAP_INFO& info);

 private:
  QSRSLT queryQ();
  QSRSLT queryQDI();

  CCmdDevAccess* access_;                // not owned
  _SCANCMD_DEVICECAP_INFO qAnswer_{};    // owns its data
  _SCANCMD_DEVICECAP_INFO qdiAnswer_{};  // owns its data
};

}  // namespace orvalle_scan_api
