// The facade behind CreateInstance: makes its companions lazily, keeps the selected device, enforces the calling order
// and forwards. It holds no scanning logic.
//
// A companion that came through a Set operation is injected: it is used and never destroyed here. The injected flags
// survive UnInitialize.
// Threads: one calling thread at a time.
#pragma once

#include "ScanCoreApi.h"
#include "api/IDeviceCaps.h"
#include "api/IScanProc.h"
#include "api/ModuleInstances.h"
#include "command/IScanCmd.h"

namespace orvalle_scan_api {

class CScanProtocol : public IScanCoreApi {
 public:
  CScanProtocol();
  ~CScanProtocol() override;
  CScanProtocol(const CScanProtocol&) = delete;
  CScanProtocol& operator=(const CScanProtocol&) = delete;

  QSRSLT Initialize() override;
  void UnInitialize() override;
  QSRSLT EnumerateDevice(_QS_SELECT_DEVICE_INFO** list, int* count) override;
  void ReleaseDeviceList() override;
  QSRSLT SelectDevice(_QS_SELECT_DEVICE_INFO& info) override;
  QSRSLT GetSelectedDevInfo(_QS_SELECT_DEVICE_INFO* info) override;
  bool CheckConnection() override;
  QSRSLT QueryDeviceCapabilities(unsigned int generation, void* capability) override;
  QSRSLT GetIccProfile(void** data, int* size) override;
  QSRSLT GetPushScanParameter(unsigned int generation, void* parameters) override;
  bool IsAdfInserted() override;
  QSRSLT StartScanning(QS_SCANNER_PARAMETERS* parameters) override;
  QSRSLT ReadImageData(tagQS_SCAN_IMAGEDATA* image, int* pageNo) override;
  bool AbortScanning() override;
  void FreeImageData(int pageNo) override;
  SCANAPISTATUS GetScanStatus() override;
  int GetCurrentReceivedLines(int pageNo) override;
  QS_BITMAP_IMAGE_INFO GetScanBitmapImageInfo() override;

  bool IsInitialized() const { return m_initialized; }
  // The full record, reached through the class alone.
  QSRSLT QueryDeviceCapabilities(QS_SCANNER_CAPABILITY* capability);

  // Each ignores null, parts with the old object (an old device is closed, old caps and scan process are uninitialised,
  // an old command is just forgotten) and uses the new one, which the embedder keeps.
  void SetDeviceAccess(IDeviceAccess* device);
  void SetScanCommand(IScanCmd* command);
  void SetDeviceCaps(ICDeviceCaps* caps);
  void SetScanProc(IScanProc* proc);

 private:
  IDeviceAccess* GetDeviceAccessInstance();
  IScanCmd* GetScanCmdInstance(IDeviceAccess* device, _QS_SELECT_DEVICE_INFO& info);
  ICDeviceCaps* GetDeviceCapsInstance();
  IScanProc* GetScanProcInstance();
  QSRSLT InitScanCmd();
  QSRSLT InitDeviceCaps(_QS_SELECT_DEVICE_INFO& info);
  QSRSLT InitScanProc(IScanCmd* command, ICDeviceCaps* caps);
  QSRSLT PrepareQueryCapabilities(_QS_SELECT_DEVICE_INFO& info);
  QSRSLT PrepareScanning(_QS_SELECT_DEVICE_INFO& info);
  QSRSLT GetCapability(QS_SCANNER_CAPABILITY* record);
  static QSRSLT ConvertDevInfoToDevIdentifier(const _QS_SELECT_DEVICE_INFO& info, _DEV_IDENTIFIER& identifier);

  IScanCmd* m_pScanCmd = nullptr;      // each owned unless injected
  IDeviceAccess* m_pDevAcs = nullptr;  // from m_modules unless injected
  ICDeviceCaps* m_pDevCaps = nullptr;
  IScanProc* m_pScanProc = nullptr;
  CModuleInstances m_modules;
  bool m_initialized = false;
  bool m_scanCmdInjected = false;
  bool m_devAcsInjected = false;
  bool m_devCapsInjected = false;
  bool m_scanProcInjected = false;
  bool m_scanProcIsOurs = false;  // made here, whatever the flag above says
  _QS_SELECT_DEVICE_INFO m_selectedDevice{};
};

}  // namespace orvalle_scan_api
