// The scan process.
//
//   ready    --StartScan-->                                            scanning
//   scanning --GetReadStatus sees ALLEND or XFERCANCELED-->            ready
//   scanning --ReadImageData gets an error, or a cancel, and no page-> ready
//   any      --Initialize on an initialised object-->                  ready
//
// The page number advances with every ReadImageData, whether or not a page could be delivered.
// Threads: the caller's thread; the read thread and the workers write the scan status.
#pragma once

#include <memory>

#include "api/IScanProc.h"
#include "api/ScanError.h"
#include "reception/IReadThread.h"

namespace orvalle_scan_api {

class CScanProc : public IScanProc {
 public:
  ~CScanProc() override { StopReadThread(); }

  //   0x70100004, 0x30100007, 0x70100003  null argument     0x10100008  caps not initialised
  // An initialised object becomes ready again and ignores the arguments, of which none is owned.
  QSRSLT Initialize(IScanCmd* command, ICDeviceCaps* caps, IDeviceAccess* device) override;
  bool IsInitialized() override { return m_initialized; }
  void UnInitialize() override;
  QSRSLT QueryPushScanSettings(tagQS_PUSHSCAN_PARAMETERS* parameters) override;
  QSRSLT GetIccProfile(void** data, int* size) override;
  //   0x10100001  not initialised, or a scan is running    0x1010000D  no command object
  //   0x1010000E  no read thread for that generation       or the code of the failed start
  QSRSLT StartScan(QS_SCANNER_PARAMETERS parameters, QS_SCANNER_CAPABILITY capability) override;
  // False without a read thread. The device is told later, by the read thread.
  bool AbortScan() override;
  SCANAPISTATUS GetReadStatus() override;
  QSRSLT ReadImageData(tagQS_SCAN_IMAGEDATA* image, int* pageNo) override;
  void FreeImageData(int pageNo) override;
  int GetCurrentReceivedLines(int) override { return 0; }
  QS_BITMAP_IMAGE_INFO GetScanBitmapImageInfo() override;

  // For embedders; the library itself calls none of the three.
  void SetUserScanParam(const QS_SCANNER_PARAMETERS& parameters) { m_userParam = parameters; }
  // The settings with their scan area in pixels, by their own resolution.
  static QS_SCANNER_PARAMETERS ConvertScanAreaToPixel(const QS_SCANNER_PARAMETERS& parameters);
  // Waits while GetReadStatus answers status, and returns the first other answer.
  SCANAPISTATUS WaitForXferStatus(SCANAPISTATUS status);

  // Ends and joins the read thread without a word in the log; its pages stay.
  void StopReadThread();

 private:
  bool CreateScanReadClassInstances(SCANCMD_GENERATION generation);
  void DeleteScanReadClassInstances();
  void FreeLastXferImageData() { m_lastXferImage = {}; }
  QSRSLT ReadImageFromReadThread(tagQS_SCAN_IMAGEDATA* image, int pageNo);
  void ReadImageForPlasticCardProc();
  AXIS forecastSize() const;

  bool m_initialized = false;
  std::int32_t m_status = 0;      // 0 ready, 1 scanning
  std::int32_t m_xferPageNo = 0;  // pages handed out in this scan
  QS_SCANNER_PARAMETERS m_userParam{};
  tagQS_SCAN_IMAGEDATA m_lastXferImage{};
  std::int32_t m_firstPageBpp = 0;     // of the first page that had any; selects the colour profile
  IScanCmd* m_pScanCmd = nullptr;      // not owned
  ICDeviceCaps* m_pDevCaps = nullptr;  // not owned
  IDeviceAccess* m_pDevAcs = nullptr;  // not owned
  CScanError m_scanError;              // outlives the read thread below
  std::unique_ptr<IReadThread> m_pReadThread;
};

}  // namespace orvalle_scan_api
