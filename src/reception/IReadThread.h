// What the scan process uses of a read thread.
#pragma once

#include "api/ScanError.h"
#include "command/IScanCmd.h"
#include "modules/DeviceAccess.h"
#include "reception/Thread.h"
#include "scanner_capability.h"
#include "scanner_parameters.h"

namespace orvalle_scan_api {

class CImageData;

class IReadThread : public CThread_Base {
 public:
  virtual ~IReadThread() = default;

  // Loads the image modules and starts the thread. command, device and error are not owned and outlive the thread.
  // A thread that runs already is left alone, with result 0.
  virtual QSRSLT Start(QS_SCANNER_PARAMETERS user, IScanCmd* command, IDeviceAccess* device, CScanError* error,
                       QS_SCANNER_CAPABILITY capability) = 0;
  // Asks the thread to abort the scan and returns at once.
  virtual void Abort() = 0;
  // The state of page pageNo, from 1.
  virtual SCANAPISTATUS GetReadStatus(unsigned int pageNo) = 0;
  // Waits until page pageNo is final, or will never be. Null with *canceled or *result set when it will not.
  virtual CImageData* GetScanData(unsigned int pageNo, bool* canceled, unsigned int* result) = 0;
  virtual void FreeScanData(unsigned int pageNo) = 0;
  // The colour profile for pages of that depth; the bytes are valid until the next scan.
  virtual QSRSLT GetColorProfile(void** data, int* size, int bpp) = 0;
};

}  // namespace orvalle_scan_api
