// One scan process: starts the read thread of the device's generation, answers the status questions, and hands out the
// finished pages in order.
// Threads: the caller's thread.
#pragma once

#include "api/IDeviceCaps.h"
#include "command/IScanCmd.h"
#include "modules/DeviceAccess.h"
#include "push_scan.h"
#include "scan_image.h"
#include "scanner_parameters.h"

namespace orvalle_scan_api {

class IScanProc {
 public:
  virtual ~IScanProc() = default;
  virtual QSRSLT Initialize(IScanCmd* command, ICDeviceCaps* caps, IDeviceAccess* device) = 0;
  virtual bool IsInitialized() = 0;
  virtual void UnInitialize() = 0;
  virtual QSRSLT QueryPushScanSettings(tagQS_PUSHSCAN_PARAMETERS* parameters) = 0;
  virtual QSRSLT GetIccProfile(void** data, int* size) = 0;
  virtual QSRSLT StartScan(QS_SCANNER_PARAMETERS parameters, QS_SCANNER_CAPABILITY capability) = 0;
  virtual bool AbortScan() = 0;
  virtual SCANAPISTATUS GetReadStatus() = 0;
  virtual QSRSLT ReadImageData(tagQS_SCAN_IMAGEDATA* image, int* pageNo) = 0;
  virtual void FreeImageData(int pageNo) = 0;
  virtual int GetCurrentReceivedLines(int pageNo) = 0;
  virtual QS_BITMAP_IMAGE_INFO GetScanBitmapImageInfo() = 0;
};

}  // namespace orvalle_scan_api
