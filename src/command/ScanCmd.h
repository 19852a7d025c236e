// Chooses the command generation that serves each operation and opens the device when it is needed.
//
// The generation is unknown until Q has told it, or until the read thread selects that of the capability record. The
// device is closed again by the capability query and reopened by whatever operation comes next.
// An operation that the generation does not have answers 0x10210022.
// Threads: no lock; the caller's thread before a scan, the read thread while one is set up and running.
#pragma once

#include <functional>

#include "command/CmdDevAccess.h"
#include "command/IScanCmd.h"
#include "command/QueryCmd.h"
#include "command/ScanCmd_v1.h"
#include "command/ScanCmd_v2.h"

namespace orvalle_scan_api {

class CScanCmd : public IScanCmd {
 public:
  CScanCmd() = default;
  // device is not owned. identifier.name must outlive this object.
  CScanCmd(IDeviceAccess* device, _DEV_IDENTIFIER& identifier) : identifier_(identifier), device_(device) {}
  ~CScanCmd() override;

  bool SelectCommandVersion(SCANCMD_GENERATION generation) override;
  bool GetConnectionStatus() override;
  QSRSLT SetScanParam(_SCANCMD_SCANPARAM* param) override;
  QSRSLT QueryDeviceCapability(_SCANCMD_DEVICECAP_INFO* info, bool query) override;
  QSRSLT CheckDocument(SCANCMD_PAPERSOURCE_TYPE source) override;
  QSRSLT SelectPaperSource(SCANCMD_PAPERSOURCE_TYPE source) override;
  QSRSLT GetPushScanParameter(_SCANCMD_RESPONSE_INFO* response) override;
  QSRSLT QueryDeviceScanParameter(_SCANCMD_RESPONSE_INFO* response) override;
  QSRSLT GetPaletteTable(_SCANCMD_RESPONSE_INFO* response) override;
  QSRSLT GetColorProfile(_SCANCMD_RESPONSE_INFO* response) override;
  QSRSLT GetDocumentSizeOnPaperSource(_SCANCMD_RESPONSE_INFO* response) override;
  QSRSLT StartScanning() override;
  QSRSLT AbortScanning(SCANCMD_EJECTION_TYPE ejection) override;

 private:
  bool OpenDeviceIfNecessary();
  QSRSLT queryDevice(_SCANCMD_DEVICECAP_INFO* info);
  // One generation's command of an operation; no message: the generation does not have the operation.
  struct Command {
    const char* startMessage;
    std::function<QSRSLT()> execute;
  };
  QSRSLT run(const char* operation, const Command& first, const Command& second);
  QSRSLT query(const char* operation, const _SCANCMD_RESPONSE_INFO* response, const Command& first,
               const Command& second);

  _DEV_IDENTIFIER identifier_{};
  SCANCMD_GENERATION generation_ = SCANCMD_GENERATION_UNKNOWN;
  _SCANCMD_SCANPARAM param_{};
  bool paramSet_ = false;
  IDeviceAccess* device_ = nullptr;  // not owned
  CCmdDevAccess access_;
  CQueryCmd query_{&access_};
  CScanCmd_v1 v1_{&access_};
  CScanCmd_v2 v2_{&access_};
};

}  // namespace orvalle_scan_api
