#include "api/DeviceCaps.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "foundation/trace.h"
#include "parse/ParseScanCmd.h"
#include "settings/ConvertUnit.h"

namespace orvalle_scan_api {
namespace {

constexpr CAP kMissing = 1;
constexpr CAP kPresent = 2;
constexpr std::uint16_t kDefaultCommandVersion = 0x101;

bool allSidesSet(const MARGIN& m) { return m.left != 0 && m.right != 0 && m.top != 0 && m.bottom != 0; }

}  // namespace

QSRSLT CDeviceCaps::Initialize(IScanCmd& command) {
  if (!m_initialized) {
    m_pScanCmd = &command;
    m_initialized = true;
  }
  return QSRSLT_SUCCESS;
}

QSRSLT CDeviceCaps::UnInitialize() {
  m_pCapability.reset();
  m_initialized = false;
  g_ScanDevApiLog.WriteLog(1, "%s", "UnInitialize");
  return QSRSLT_SUCCESS;
}

QSRSLT CDeviceCaps::GetDeviceCapability(QS_SCANNER_CAPABILITY* out) {
  if (!m_initialized) return QSRSLT_CAPS_NOT_INITIALIZED;
  if (m_pCapability == nullptr) {
    Trace trace(Trace::NoEntryLine{}, "GetDeviceCapability");
    g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>> pDeviceCap = 0x%X", "GetDeviceCapability", logAddress(out));
    if (const QSRSLT result = trace.ret(fetch()); result != 0) return result;
  }
  if (out != nullptr) *out = *m_pCapability;
  return QSRSLT_SUCCESS;
}

QSRSLT CDeviceCaps::fetch() {
  _SCANCMD_DEVICECAP_INFO info{};
  if (const QSRSLT result = m_pScanCmd->QueryDeviceCapability(&info, true); result != 0) {
    g_ScanDevApiLog.WriteLog(0, "QueryDeviceCapability failed. result = 0x%X", result);
    return result;
  }
  if (info.size <= 0) return QSRSLT_CAPS_EMPTY;
  m_pCapability = std::make_unique<QS_SCANNER_CAPABILITY>(CParseScanCmd().ParseDeviceInfoData(&info));
  WriteLogScannerCapabilities();
  return QSRSLT_SUCCESS;
}

void CDeviceCaps::WriteLogScannerCapabilities() {
  g_ScanDevApiLog.WriteLog(1, "QS_SCANNER_CAPABILITY Info");
  g_ScanDevApiLog.WriteLog(1, "QS_SCANNER_CAPABILITY Info");
}

const QS_SCANNER_CAPABILITY* CDeviceCaps::record() {
  return GetDeviceCapability(nullptr) == QSRSLT_SUCCESS ? m_pCapability.get() : nullptr;
}

std::uint16_t CDeviceCaps::GetScannerCommandVersion() {
  const auto* r = record();
  return r == nullptr ? kDefaultCommandVersion : r->commandVersion;
}

OPTICALRESOLUTIONS CDeviceCaps::GetOpticalResolution() {
  const auto* r = record();
  return r == nullptr ? OPTICALRESOLUTIONS{{1200, 1200}, {1200, 1200}, {1200, 1200}} : r->baseFunc.resolutionOptical;
}

std::uint64_t CDeviceCaps::GetColorTypes() {
  const auto* r = record();
  if (r == nullptr) return GetDefaultColorTypes();
  std::uint64_t packed = 0;
  std::memcpy(&packed, &r->baseFunc.colorType, sizeof r->baseFunc.colorType);
  return packed;
}

SUPPORTPAPERSOURCES CDeviceCaps::GetPaperSource() {
  const auto* r = record();
  return r == nullptr ? GetDefaultPaperSource() : r->baseFunc.paperSource.supportPaperSource;
}

// Kept: without a record the default sources are bed and feeder while the three questions below say no. Pinned by
// DeviceCaps_test "ADeadDeviceLooksLikeAnA4MachineOf1200Dpi".
bool CDeviceCaps::IsFlatbedSupported() {
  const auto* r = record();
  return r != nullptr && r->baseFunc.paperSource.supportPaperSource.flatbed != 0;
}

bool CDeviceCaps::IsAdfSupported() {
  const auto* r = record();
  return r != nullptr && r->baseFunc.paperSource.supportPaperSource.adfSimplex != 0;
}

bool CDeviceCaps::IsDuplexSupport() {
  const auto* r = record();
  return r != nullptr && r->baseFunc.paperSource.supportPaperSource.adfDuplex != 0;
}

// Kept: the default sizes are numbers of 1/100 mm under the unit of inches, as hosts have always been told them.
DEVICESCANSIZES CDeviceCaps::GetMaxSize() {
  const auto* r = record();
  constexpr AXIS kA4{21000, 29700};
  return r == nullptr ? DEVICESCANSIZES{kA4, kA4, kA4, UNIT_INCH} : r->baseFunc.supportDocSizeMax;
}

DEVICESCANSIZES CDeviceCaps::GetMinSize() {
  const auto* r = record();
  constexpr AXIS kSmallest{1000, 1000};
  return r == nullptr ? DEVICESCANSIZES{kSmallest, kSmallest, kSmallest, UNIT_INCH} : r->baseFunc.deviceScanSizeMin;
}

decltype(DEVINFO_BASEFUNC::marginSize) CDeviceCaps::GetMarginSize() {
  const auto* r = record();
  return r == nullptr ? GetDefaultMarginSize() : r->baseFunc.marginSize;
}

decltype(DEVINFO_BASEFUNC::marginSize) CDeviceCaps::GetDefaultMarginSize() {
  constexpr MARGIN kThreeMillimeters{300, 300, 300, 300, UNIT_MILLIMETER};
  return {kThreeMillimeters, kThreeMillimeters, kThreeMillimeters, {}};
}

PAPERSETTINGPOSITIONS CDeviceCaps::GetPaperPosition() {
  const auto* r = record();
  return r == nullptr ? PAPERSETTINGPOSITIONS{0, 3, 1, 3, 1, 3} : r->baseFunc.paperPosition;
}

CARDSIZEORIENT CDeviceCaps::GetCardSizeOrientation() {
  const auto* r = record();
  return r == nullptr ? CARDSIZEORIENT{2, 2, 2, 1} : r->baseFunc.cardSizeOrient;
}

bool CDeviceCaps::IsLongPaperSupport() {
  const auto* r = record();
  return r != nullptr && r->baseFunc.longPaperLengthMax.cap == kPresent;
}

int CDeviceCaps::GetLongPaperMaxLength(UNITTYPE unit) {
  const auto* r = record();
  if (r == nullptr || r->baseFunc.longPaperLengthMax.cap != kPresent) return 0;
  const LONGPAPERSUPPORTSIZE& size = r->baseFunc.longPaperLengthMax;
  int length = 0;
  CConvertUnit().ConvertUnit(std::max(size.simplexMaxLength, size.duplexMaxLength), size.unit, &length, unit);
  return length;
}

bool CDeviceCaps::IsAutoCropSupport() {
  const auto* r = record();
  return r != nullptr && r->advancedFunc.autoSize.autoCrop.cap == kPresent;
}

CAP CDeviceCaps::GetAutoPaperSizeCapability(SUPPORTAUTOPAPERSIZEMODE* mode) {
  const auto* r = record();
  if (r == nullptr) return kMissing;
  const SUPPORTAUTOPAPERSIZEMODE& autoSize = r->advancedFunc.autoSize;
  if (autoSize.paperWidthDetect.cap != kPresent && autoSize.cornerDetect.cap != kPresent &&
      autoSize.deviceDetectSize.cap != kPresent) {
    return kMissing;
  }
  if (mode != nullptr) *mode = autoSize;
  return kPresent;
}

CAP CDeviceCaps::GetAutoDeskewCapability(SUPPORTPAPERSOURCES* sources) {
  const auto* r = record();
  if (r == nullptr) return kMissing;
  if (sources != nullptr) *sources = r->advancedFunc.deskew.suportPaperSource;
  return r->advancedFunc.deskew.cap;
}

bool CDeviceCaps::IsRemoveBackgroundColorSupport(BACKGROUNDREMOVALSUPPORT* support) {
  const auto* r = record();
  if (r == nullptr) return false;
  const BACKGROUNDREMOVALSUPPORT& remove = r->advancedFunc.backgroundRemove;
  if (support != nullptr) *support = remove;
  return remove.blackAndWhite.cap == kPresent || remove.errorDiffusion.cap == kPresent ||
         remove.trueGray.cap == kPresent || remove.color24bit.cap == kPresent;
}

bool CDeviceCaps::IsCarrierSheetSupport() {
  const auto* r = record();
  return r != nullptr && r->advancedFunc.carrierSheet.cap == kPresent;
}

bool CDeviceCaps::IsPlasticCardModeSupport() {
  const auto* r = record();
  return r != nullptr && r->advancedFunc.plasticCard.cap == kPresent;
}

bool CDeviceCaps::IsMultifeedDetectSupport() {
  const auto* r = record();
  return r != nullptr && r->advancedFunc.multifeedDetect.cap == kPresent;
}

bool CDeviceCaps::IsIccProfileSupport() {
  const auto* r = record();
  return r != nullptr && r->imageProcFunc.colorProfileOutput == kPresent;
}

bool CDeviceCaps::IsQuietModeSupport() {
  const auto* r = record();
  return r != nullptr && r->advancedFunc.quietScan.cap == kPresent;
}

CAP CDeviceCaps::GetQuietModeCapability(QUIETSCANSUPPORT* support) {
  const auto* r = record();
  if (r == nullptr) return kMissing;
  if (support != nullptr) *support = r->advancedFunc.quietScan;
  return r->advancedFunc.quietScan.cap;
}

bool CDeviceCaps::IsAutoColorSupport() {
  const auto* r = record();
  return r != nullptr && r->advancedFunc.autoColor.cap == kPresent;
}

CAP CDeviceCaps::GetAutoColorCapability(AUTOCOLORLEVELSUPPORT* support) {
  const auto* r = record();
  if (r == nullptr) return kMissing;
  if (support != nullptr) {
    *support = r->advancedFunc.autoColor;
    support->firstDefault = (support->firstMax + support->firstMin) / 2;
    support->secondDefault = (support->secondMax + support->secondMin) / 2;
  }
  return r->advancedFunc.autoColor.cap;
}

CAP CDeviceCaps::GetBlankRemovalCapability(BLANKREMOVALSUPPORT* support) {
  const auto* r = record();
  if (r == nullptr) return kMissing;
  if (support != nullptr) {
    *support = r->advancedFunc.blankRemoval;
    support->levelFixed = 1;
    support->levelMin = 0;
    support->levelDefault = support->levelMax / 2;
  }
  return r->advancedFunc.blankRemoval.cap;
}

int CDeviceCaps::GetXferCountCapability() {
  const auto* r = record();
  if (r == nullptr) return 0;
  const auto& system = r->baseFunc.multipageScanSystem;
  return system.definingPageNums != 0 ? 2 : system.scan1Paper != 0 ? 1 : 0;
}

bool CDeviceCaps::IsEdgeCutSupport() {
  const auto* r = record();
  if (r == nullptr) return false;
  const SUPPORTPAPERSOURCES& source = r->baseFunc.paperSource.supportPaperSource;
  const auto& adjust = r->baseFunc.marginAdjust;
  if (source.flatbed != 0) return allSidesSet(adjust.flatbed_plus) && allSidesSet(adjust.flatbed_minus);
  return source.adfSimplex != 0 && allSidesSet(adjust.adfSimplex_plus) && allSidesSet(adjust.adfSimplex_minus);
}

// Kept: the version is asked for and not used, so that the first question of a session reaches the device whichever it
// is. Pinned by DeviceCaps_test "ThreeFixedQuestionsAskTheDeviceFirst".
bool CDeviceCaps::IsMonochromizeAutoThresholdSupport() {
  GetScannerCommandVersion();
  return false;
}

bool CDeviceCaps::IsDustRemovalSupport() {
  GetScannerCommandVersion();
  return false;
}

bool CDeviceCaps::IsLineRemovalSupport() {
  GetScannerCommandVersion();
  return false;
}

CAP CDeviceCaps::GetMonochromizeThresholdCapability(MONOTHRESHOLDSUPPORT* support) {
  if (support == nullptr) return kMissing;
  *support = {kMissing, 0, kPresent, 254, 1, 128};
  return kPresent;
}

CAP CDeviceCaps::GetColorToneCapability(COLORTONESUPPORT* support) {
  if (support == nullptr) return kMissing;
  *support = {kPresent, 0, {50, -50, 0}, {50, -50, 0}, {254, 0, 0}, {255, 1, 220}, {1000, 10, 100}};
  return kPresent;
}

CAP CDeviceCaps::GetSmoothingCapability(SMOOTHINGSUPPORT* support) {
  if (support != nullptr) *support = {kPresent, 0, kPresent, 0, {50, -50, 0}};
  return kPresent;
}

CAP CDeviceCaps::GetColorDropCapability(COLORDROPSUPPORT* support) {
  if (support != nullptr) *support = {kPresent, 1, 1, 1, 0, 1};
  return kPresent;
}

CAP CDeviceCaps::GetThickTextCapability(THICKTEXTSUPPORT* support) {
  if (support != nullptr) *support = {kPresent, 0, {5, 1, 1}};
  return kPresent;
}

// Kept: the record says missing and the result present, in all three.
CAP CDeviceCaps::GetDustRemovalCapability(DUSTREMOVALSUPPORT* support) {
  if (support != nullptr) support->cap = kMissing;
  return kPresent;
}

CAP CDeviceCaps::GetLineRemovalCapability(REMOVELINESUPPORT* support) {
  if (support != nullptr) support->cap = kMissing;
  return kPresent;
}

CAP CDeviceCaps::GetPunchHoleRemovalCapability(PUNCHHOLESUPPORT* support) {
  if (support != nullptr) support->cap = kMissing;
  return kPresent;
}

CAP CDeviceCaps::GetEdgeFillCapability(EDGEFILLSUPPORT* support) {
  if (support != nullptr) *support = {kPresent, 1, 1};
  return kPresent;
}

}  // namespace orvalle_scan_api
