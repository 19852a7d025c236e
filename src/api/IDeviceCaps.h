// What is asked of a device's capabilities.
// Threads: the caller's thread.
#pragma once

#include "command/IScanCmd.h"
#include "scanner_capability_v1.h"

namespace orvalle_scan_api {

// There is no virtual destructor: an object is destroyed as what it is.
class ICDeviceCaps {
 public:
  virtual QSRSLT Initialize(IScanCmd& command) = 0;
  virtual QSRSLT UnInitialize() = 0;
  virtual bool IsInitialized() = 0;
  virtual QSRSLT GetDeviceCapability(QS_SCANNER_CAPABILITY* out) = 0;
  virtual std::uint16_t GetScannerCommandVersion() = 0;
  virtual OPTICALRESOLUTIONS GetOpticalResolution() = 0;
  virtual bool CreateResolutionList(unsigned int* list, QS_SCANNER_CAPABILITY* capability) = 0;
  virtual std::uint64_t GetColorTypes() = 0;
  virtual SUPPORTPAPERSOURCES GetPaperSource() = 0;
  virtual bool IsDuplexSupport() = 0;
  virtual DEVICESCANSIZES GetMaxSize() = 0;
  virtual DEVICESCANSIZES GetMinSize() = 0;
  virtual decltype(DEVINFO_BASEFUNC::marginSize) GetMarginSize() = 0;
  virtual PAPERSETTINGPOSITIONS GetPaperPosition() = 0;
  virtual CARDSIZEORIENT GetCardSizeOrientation() = 0;
  virtual bool IsLongPaperSupport() = 0;
  virtual int GetLongPaperMaxLength(UNITTYPE unit) = 0;
  virtual bool IsAutoCropSupport() = 0;
  virtual bool IsAutoPaperSizeSupport() = 0;
  virtual CAP GetAutoPaperSizeCapability(SUPPORTAUTOPAPERSIZEMODE* mode) = 0;
  virtual bool IsAutoDeskewSupport() = 0;
  virtual CAP GetAutoDeskewCapability(SUPPORTPAPERSOURCES* sources) = 0;
  virtual bool IsRemoveBackgroundColorSupport(BACKGROUNDREMOVALSUPPORT* support) = 0;
  virtual bool IsCarrierSheetSupport() = 0;
  virtual bool IsPlasticCardModeSupport() = 0;
  virtual bool IsMultifeedDetectSupport() = 0;
  virtual bool IsInkAio() = 0;
  virtual bool IsLaserAio() = 0;
  virtual bool IsDocumentScanner() = 0;
  virtual QSRSLT ScanCap2ScanCapV1(tagQS_SCANNER_CAPABILITY_VER1* older, QS_SCANNER_CAPABILITY* capability) = 0;

 protected:
  ~ICDeviceCaps() = default;
};

}  // namespace orvalle_scan_api
