// A Q block becomes the capability record: the functions beyond the plain scan.
#include "parse/ParseCmdRes_v1.h"

namespace orvalle_scan_api {
namespace {

constexpr CAP kMissing = 1;
constexpr CAP kPresent = 2;

constexpr AXIS kCropDpi{300, 300};
constexpr AXIS kLowestDpi{100, 100};
constexpr std::int32_t kCarrierOffsetTop = 3200;  // 1/100 mm

bool hasBit(int value, int number) { return (value >> number & 1) != 0; }
CAP capIf(bool present) { return present ? kPresent : kMissing; }

// What the feeder resolves, where there is one.
AXIS feederOptical(const QCMDRESPONSE& r) { return r.hasFeeder() ? AXIS{r.adfOpticalX, r.adfOpticalY} : AXIS{}; }

}  // namespace

// --- what scanFunc says

CAP CParseCmdRes_v1::IsEdgeDetectScanSupported(QCMDRESPONSE r) const { return capIf(hasBit(r.scanFunc, 0)); }
CAP CParseCmdRes_v1::IsDetectDocSizeSupported(QCMDRESPONSE r) const { return capIf(hasBit(r.scanFunc, 1)); }
CAP CParseCmdRes_v1::IsDetectCornerSupported(QCMDRESPONSE r) const { return capIf(hasBit(r.scanFunc, 2)); }
CAP CParseCmdRes_v1::IsAdfDeskewSupported(QCMDRESPONSE r) const { return capIf(hasBit(r.scanFunc, 3)); }
CAP CParseCmdRes_v1::IsFbDeskewSupported(QCMDRESPONSE r) const { return capIf(hasBit(r.scanFunc, 4)); }
CAP CParseCmdRes_v1::IsOverScanSupported(QCMDRESPONSE r) const {
  return capIf(hasBit(r.scanFunc, 0) || hasBit(r.scanFunc, 4));
}

// --- finding the paper's size

SUPPORTAUTOPAPERSIZEMODE CParseCmdRes_v1::GetDetectDocumentMode(QCMDRESPONSE r) const {
  return {GetDetectDocumentSizeInfo(r), GetEdgeEnhanceInfo(r), GetCornerOutputInfo(r), {}};
}

// Kept: the first two groups stay 0 altogether without their bit, while the third then says that it is missing. Clients
// tell "not reported" from "missing". Pinned by q_capability_test "AMissingWayToFindTheSizeIsToldInTwoWays".
decltype(SUPPORTAUTOPAPERSIZEMODE::paperWidthDetect) CParseCmdRes_v1::GetDetectDocumentSizeInfo(QCMDRESPONSE r) const {
  if (IsDetectDocSizeSupported(r) == kMissing) return {};
  return {kPresent, GetColorType(r), GetPaperSource(r).supportPaperSource};
}

decltype(SUPPORTAUTOPAPERSIZEMODE::autoCrop) CParseCmdRes_v1::GetEdgeEnhanceInfo(QCMDRESPONSE r) const {
  if (IsEdgeDetectScanSupported(r) == kMissing) return {};
  return {kPresent, {0, 0, 0, 0, 1, 0, 0}, kCropDpi, kCropDpi};
}

decltype(SUPPORTAUTOPAPERSIZEMODE::cornerDetect) CParseCmdRes_v1::GetCornerOutputInfo(QCMDRESPONSE r) const {
  if (IsDetectCornerSupported(r) == kMissing) return {kMissing, {}, {}, 0, {}, {}};
  return {kPresent, {0, 0, 1, 1, 1, 0, 0}, {0, 1, 1, 0}, 1, kLowestDpi, feederOptical(r)};
}

// --- modes

decltype(DEVINFO_ADVANCEDFUNC::idCardMode) CParseCmdRes_v1::GetIdCardMode(QCMDRESPONSE) const { return {kMissing, {}}; }

decltype(DEVINFO_ADVANCEDFUNC::landscape) CParseCmdRes_v1::GetLandscapeOrientationMode(QCMDRESPONSE r) const {
  if (r.landscape == 0) return {kMissing, {}};
  return {kPresent, {0, r.hasFeeder(), r.scansBothSides(), 0}};
}

CARRIERSHEETSUPPORT CParseCmdRes_v1::GetCarrierSheetMode(QCMDRESPONSE r) const {
  CARRIERSHEETSUPPORT carrier{};
  carrier.cap = capIf(hasBit(r.carrierSheet, 0));
  if (carrier.cap == kMissing) return carrier;
  carrier.supportColorType = {1, 1, 1, 1, 1, 0, 0};
  carrier.offsetSizeMm = {kCarrierOffsetTop, 0};
  carrier.resolutionDpiMax = feederOptical(r);
  carrier.resolutionDpiMin = kLowestDpi;
  return carrier;
}

decltype(DEVINFO_ADVANCEDFUNC::plasticCard) CParseCmdRes_v1::GetPlasticCardMode(QCMDRESPONSE) const {
  return {kMissing, {}, {}, {}, {}};
}

decltype(DEVINFO_ADVANCEDFUNC::multifeedDetect) CParseCmdRes_v1::GetMultiFeedMode(QCMDRESPONSE r) const {
  return {capIf(r.multifeed != 0), 1, 0};
}

BACKGROUNDREMOVALSUPPORT CParseCmdRes_v1::GetRemoveBackgroundMode(QCMDRESPONSE r) const {
  constexpr SUPPORTADJUSTLEVEL kNone{kMissing, 0};
  const SUPPORTADJUSTLEVEL mono = r.removeBackground != 0 ? SUPPORTADJUSTLEVEL{kPresent, 255} : kNone;
  return {mono, mono, kNone, kNone};
}

decltype(DEVINFO_ADVANCEDFUNC::deskew) CParseCmdRes_v1::GetDeskewMode(QCMDRESPONSE r) const {
  const bool flatbed = IsFbDeskewSupported(r) == kPresent;
  const bool feeder = IsAdfDeskewSupported(r) == kPresent;
  return {capIf(flatbed || feeder), {flatbed, feeder, feeder && r.scansBothSides(), 0}, {}};
}

BLANKREMOVALSUPPORT CParseCmdRes_v1::GetBlankPageRemoveMode(QCMDRESPONSE) const { return {kMissing, 0, 0, 0, 0, 0, 0}; }

AUTOCOLORLEVELSUPPORT CParseCmdRes_v1::GetAutoColorMode(QCMDRESPONSE) const { return {kMissing, 0, 0, 0, 0, 0, 0}; }

CAP CParseCmdRes_v1::GetDetectResolutionMode(QCMDRESPONSE) const { return kMissing; }

}  // namespace orvalle_scan_api
