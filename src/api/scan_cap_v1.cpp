// The older, flat capability record, and the list of resolutions in it.
#include <algorithm>

#include "api/DeviceCaps.h"

namespace orvalle_scan_api {
namespace {

constexpr unsigned int tblResolutionList[kResolutionListEntries] = {100,  150,  200,  300,  400,  600,
                                                                    1200, 2400, 4800, 9600, 19200};
constexpr unsigned int kDocumentScannerLimit = 1200;
constexpr unsigned int kOtherLimit = 19200;

CAP capOf(bool present) { return static_cast<CAP>(present) + 1; }

}  // namespace

// The device's optical resolution plays no part: what it cannot do itself is made up for.
bool CDeviceCaps::CreateResolutionList(unsigned int* list, QS_SCANNER_CAPABILITY* capability) {
  if (list == nullptr || capability == nullptr) return false;
  const unsigned int limit = IsDocumentScanner() ? kDocumentScannerLimit : kOtherLimit;
  std::transform(std::begin(tblResolutionList), std::end(tblResolutionList), list,
                 [limit](unsigned int entry) { return entry <= limit ? entry : 0U; });
  return true;
}

QSRSLT CDeviceCaps::ScanCap2ScanCapV1(tagQS_SCANNER_CAPABILITY_VER1* older, QS_SCANNER_CAPABILITY* capability) {
  if (older == nullptr || capability == nullptr) return QSRSLT_NULL_CAPABILITY;
  const DEVINFO_BASEFUNC& base = capability->baseFunc;
  *older = {};
  older->resolutionOptical = base.resolutionOptical;
  CreateResolutionList(older->resolutionList, capability);
  older->colorType = {base.colorType.blackAndWhite, base.colorType.errorDiffusion, base.colorType.trueGray,
                      base.colorType.color256, base.colorType.color24bit};
  older->autoColorFlag = 1;
  older->supportDocSizeMax = base.supportDocSizeMax;
  older->deviceScanSizeMin = base.deviceScanSizeMin;
  older->longPaperLengthMax = {base.longPaperLengthMax.cap, base.longPaperLengthMax.simplexMaxLength,
                               base.longPaperLengthMax.duplexMaxLength};
  older->paperSource = base.paperSource;
  older->paperPosition = base.paperPosition;
  older->marginSize =
      base.paperSource.supportPaperSource.flatbed != 0 ? base.marginSize.flatbed : base.marginSize.adfSimplex;
  older->autoPaperSize = capOf(IsAutoPaperSizeSupport());
  older->autoCrop = capOf(IsAutoCropSupport());
  older->autoDeskew = capOf(IsAutoDeskewSupport());
  older->autoRotate = capOf(IsAutoRotateSupport());
  older->detectEndOfPage = capOf(IsDetectEndOfPageSupport());
  GetMonochromizeThresholdCapability(&older->monoThreshold);
  GetColorToneCapability(&older->colorTone);
  GetAutoColorCapability(&older->autoColor);
  older->backgroundRemoval = capability->advancedFunc.backgroundRemove;
  GetSmoothingCapability(&older->smoothing);
  GetColorDropCapability(&older->colorDrop);
  GetThickTextCapability(&older->thickText);
  older->dotTextCombine = capOf(IsDotTextCombineSupport());
  GetEdgeEnhanceCapability(&older->edgeEnhance);
  older->firstEnhanceFlag = 2;
  GetDustRemovalCapability(&older->dustRemoval);
  GetLineRemovalCapability(&older->lineRemoval);
  GetPunchHoleRemovalCapability(&older->punchHole);
  older->carrierSheet = capOf(IsCarrierSheetSupport());
  older->plasticCard = capOf(IsPlasticCardModeSupport());
  older->edgeCut = capOf(IsEdgeCutSupport());
  GetEdgeFillCapability(&older->edgeFill);
  GetBlankRemovalCapability(&older->blankRemoval);
  older->xferCount = GetXferCountCapability();
  older->multifeed = capOf(IsMultifeedDetectSupport());
  older->quietMode = capOf(IsQuietModeSupport());
  older->iccProfile = capOf(IsIccProfileSupport());
  return QSRSLT_SUCCESS;
}

}  // namespace orvalle_scan_api
