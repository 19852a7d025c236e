// The one interface through which the rest of the library talks to a scanner.
// Threads: no lock; the caller's thread before a scan, the read thread while one is set up and running.
#pragma once

#include "command/scancmd_param.h"
#include "result_codes.h"

namespace orvalle_scan_api {

class IScanCmd {
 public:
  virtual ~IScanCmd() = default;

  // Stores the generation if none is known; otherwise tells whether it is the known one, which is never replaced.
  virtual bool SelectCommandVersion(SCANCMD_GENERATION generation) = 0;
  // Whether the device is open or could be opened.
  virtual bool GetConnectionStatus() = 0;
  // Copies the record; null makes the record unset.
  virtual QSRSLT SetScanParam(_SCANCMD_SCANPARAM* param) = 0;
  // query: asks the device (Q, then QDI). Otherwise the last answer, without sending anything.
  virtual QSRSLT QueryDeviceCapability(_SCANCMD_DEVICECAP_INFO* info, bool query) = 0;
  virtual QSRSLT CheckDocument(SCANCMD_PAPERSOURCE_TYPE source) = 0;
  virtual QSRSLT SelectPaperSource(SCANCMD_PAPERSOURCE_TYPE source) = 0;
  virtual QSRSLT GetPushScanParameter(_SCANCMD_RESPONSE_INFO* response) = 0;
  // Sends the stored scan parameters; the answer tells what the device will really do.
  virtual QSRSLT QueryDeviceScanParameter(_SCANCMD_RESPONSE_INFO* response) = 0;
  virtual QSRSLT GetPaletteTable(_SCANCMD_RESPONSE_INFO* response) = 0;
  virtual QSRSLT GetColorProfile(_SCANCMD_RESPONSE_INFO* response) = 0;
  virtual QSRSLT GetDocumentSizeOnPaperSource(_SCANCMD_RESPONSE_INFO* response) = 0;
  virtual QSRSLT StartScanning() = 0;
  virtual QSRSLT AbortScanning(SCANCMD_EJECTION_TYPE ejection) = 0;
};

}  // namespace orvalle_scan_api
