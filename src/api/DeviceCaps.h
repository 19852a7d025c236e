// Asks the device once what it can do, keeps the answer, and offers it as a full record, as answers to single
// questions, and as the older flat record.
//
// Where the device says nothing of a feature, or cannot be asked, the answer is a fixed default; the single questions
// swallow failures. A failed query is not cached: the next question asks again.
// Threads: the caller's thread.
#pragma once

#include <memory>

#include "api/IDeviceCaps.h"

namespace orvalle_scan_api {

inline constexpr int kResolutionListEntries = 11;

class CDeviceCaps final : public ICDeviceCaps {
 public:
  // command is not owned. A second call changes nothing.
  QSRSLT Initialize(IScanCmd& command) override;
  // Forgets the record: the next question asks the device again.
  QSRSLT UnInitialize() override;
  bool IsInitialized() override { return m_initialized; }

  //   0x10300001  not initialised    0x1030000A  empty answer    or the command's code
  QSRSLT GetDeviceCapability(QS_SCANNER_CAPABILITY* out) override;
  std::uint16_t GetScannerCommandVersion() override;

  // Each answers its default when the record cannot be had.
  OPTICALRESOLUTIONS GetOpticalResolution() override;
  // The seven flags, one byte each, the first one lowest.
  std::uint64_t GetColorTypes() override;
  SUPPORTPAPERSOURCES GetPaperSource() override;
  bool IsFlatbedSupported();
  bool IsAdfSupported();
  bool IsDuplexSupport() override;
  DEVICESCANSIZES GetMaxSize() override;
  DEVICESCANSIZES GetMinSize() override;
  decltype(DEVINFO_BASEFUNC::marginSize) GetMarginSize() override;
  PAPERSETTINGPOSITIONS GetPaperPosition() override;
  CARDSIZEORIENT GetCardSizeOrientation() override;
  bool IsLongPaperSupport() override;
  int GetLongPaperMaxLength(UNITTYPE unit) override;
  bool IsAutoCropSupport() override;
  bool IsAutoPaperSizeSupport() override { return GetAutoPaperSizeCapability(nullptr) == 2; }
  CAP GetAutoPaperSizeCapability(SUPPORTAUTOPAPERSIZEMODE* mode) override;
  bool IsAutoDeskewSupport() override { return GetAutoDeskewCapability(nullptr) == 2; }
  CAP GetAutoDeskewCapability(SUPPORTPAPERSOURCES* sources) override;
  bool IsRemoveBackgroundColorSupport(BACKGROUNDREMOVALSUPPORT* support) override;
  bool IsCarrierSheetSupport() override;
  bool IsPlasticCardModeSupport() override;
  bool IsMultifeedDetectSupport() override;
  bool IsIccProfileSupport();
  bool IsQuietModeSupport();
  CAP GetQuietModeCapability(QUIETSCANSUPPORT* support);
  bool IsAutoColorSupport();
  CAP GetAutoColorCapability(AUTOCOLORLEVELSUPPORT* support);
  CAP GetBlankRemovalCapability(BLANKREMOVALSUPPORT* support);
  int GetXferCountCapability();
  bool IsEdgeCutSupport();

  // The machine type is told by two features on purpose; the device's category plays no part.
  bool IsInkAio() override { return IsAutoCropSupport(); }
  bool IsLaserAio() override { return !IsInkAio() && !IsDocumentScanner(); }
  bool IsDocumentScanner() override { return IsLongPaperSupport(); }

  // Fixed, whatever the device says.
  bool IsAutoRotateSupport() { return false; }
  bool IsDetectEndOfPageSupport() { return true; }
  bool IsMonochromizeAutoThresholdSupport();
  bool IsDustRemovalSupport();
  bool IsLineRemovalSupport();
  bool IsMonochromizeCustomThresholdSupport() { return true; }
  bool IsColorToneSupport() { return true; }
  bool IsSmoothingSupport() { return true; }
  bool IsDotTextCombineSupport() { return true; }
  CAP GetMonochromizeThresholdCapability(MONOTHRESHOLDSUPPORT* support);
  CAP GetColorToneCapability(COLORTONESUPPORT* support);
  CAP GetSmoothingCapability(SMOOTHINGSUPPORT* support);
  CAP GetColorDropCapability(COLORDROPSUPPORT* support);
  CAP GetThickTextCapability(THICKTEXTSUPPORT* support);
  CAP GetEdgeEnhanceCapability(EDGEENHANCESUPPORT* support) { return GetThickTextCapability(support); }
  CAP GetDustRemovalCapability(DUSTREMOVALSUPPORT* support);
  CAP GetLineRemovalCapability(REMOVELINESUPPORT* support);
  CAP GetPunchHoleRemovalCapability(PUNCHHOLESUPPORT* support);
  CAP GetEdgeFillCapability(EDGEFILLSUPPORT* support);

  // Fills the 11 places; unused ones are 0. False for a null argument.
  bool CreateResolutionList(unsigned int* list, QS_SCANNER_CAPABILITY* capability) override;
  //   0x70100012  null argument
  QSRSLT ScanCap2ScanCapV1(tagQS_SCANNER_CAPABILITY_VER1* older, QS_SCANNER_CAPABILITY* capability) override;

  // The fields of each group into the log, at level 1, one line each. For debugging: nothing calls them.
  static void WriteLogModelInfo(const DEVINFO_MODELINFO& info);
  static void WriteLogDevInfoFunc(const DEVINFO_FUNC& func);
  static void WriteLogDevInfoBaseFunc(const DEVINFO_BASEFUNC& base);
  static void WriteLogDevInfoImageProcFunc(const DEVINFO_IMAGEPROCFUNC& imageProc);
  static void WriteLogDevInfoAdvancedFunc(const DEVINFO_ADVANCEDFUNC& advanced);

 private:
  // The record, or null when it cannot be had.
  const QS_SCANNER_CAPABILITY* record();
  QSRSLT fetch();
  static void WriteLogScannerCapabilities();

  // What the questions answer without a record.
  static std::uint64_t GetDefaultColorTypes() { return 0x100010101; }  // mono, error diffusion, grey, 24-bit colour
  static SUPPORTPAPERSOURCES GetDefaultPaperSource() { return {1, 1, 1, 0}; }
  static decltype(DEVINFO_BASEFUNC::marginSize) GetDefaultMarginSize();

  std::unique_ptr<QS_SCANNER_CAPABILITY> m_pCapability;  // null until fetched
  bool m_initialized = false;
  IScanCmd* m_pScanCmd = nullptr;  // not owned
};

}  // namespace orvalle_scan_api
