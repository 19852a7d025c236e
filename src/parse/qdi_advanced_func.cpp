// The advanced functions of a device, out of its QDI body.
#include <algorithm>

#include "parse/qdi_groups.h"

namespace orvalle_scan_api::qdi {
namespace {

SUPPORTADJUSTLEVEL GetAdjustLevel(std::uint8_t level) {
  if (level == 0) return {kMissing, 0};
  return {kPresent, level};
}

decltype(SUPPORTAUTOPAPERSIZEMODE::autoCrop) GetAutoCrop(const Response& r) {
  decltype(SUPPORTAUTOPAPERSIZEMODE::autoCrop) crop{};
  crop.cap = capIf(r.autoCrop == 1);
  if (crop.cap == kMissing) return crop;
  // A single value, not a mask: any other value supports none.
  switch (r.autoCropColor) {
    case 1:
    case 2:
    case 4:
    case 8:
    case 16:
      crop.supportColorType = GetColorTypeSupport(r.autoCropColor);
      break;
    default:
      break;
  }
  const auto dpi = words<std::uint16_t, 4>(r, offsetof(Response, autoCropDpi));
  crop.resolutionDpiMax = {dpi[0], dpi[1]};
  crop.resolutionDpiMin = {dpi[2], dpi[3]};
  return crop;
}

SUPPORTPAPERSOURCES sourcesOf(int mask) { return {bit(mask, 0), bit(mask, 1), bit(mask, 2), bit(mask, 3)}; }

decltype(SUPPORTAUTOPAPERSIZEMODE::deviceDetectSize) GetAutoDocumentSize(const Response& r) {
  if (r.autoDocSize == 0) return {kMissing, {}, 0, 0};
  return {kPresent, sourcesOf(r.autoDocSize), bit(r.autoDocSizeOption, 0), bit(r.autoDocSizeOption, 1)};
}

CARRIERSHEETSUPPORT GetCarrierSheetMode(const Response& r) {
  CARRIERSHEETSUPPORT carrier{};
  carrier.cap = capIf(r.carrierSheet == 1);
  carrier.supportColorType = GetColorTypeSupport(r.carrierColor);
  carrier.offsetSizeMm = {conv(r.carrierOffsetTop), conv(r.carrierOffsetBottom)};
  carrier.resolutionDpiMax = {r.carrierDpiMax[0], r.carrierDpiMax[1]};
  carrier.resolutionDpiMin = {r.carrierDpiMin[0], r.carrierDpiMin[1]};
  carrier.exclusion = GetFuncExclusionSupport(r.carrierExclusion);
  return carrier;
}

// A device with this mode describes it in the carrier-sheet tag.
decltype(DEVINFO_ADVANCEDFUNC::plasticCard) GetPlasticCardMode(const Response& r, const CARRIERSHEETSUPPORT& carrier) {
  if (r.plasticCard == 0) return {kMissing, {}, {}, {}, {}};
  return {kPresent, carrier.supportColorType, carrier.resolutionDpiMin, carrier.resolutionDpiMax, carrier.exclusion};
}

decltype(DEVINFO_ADVANCEDFUNC::multifeedDetect) GetMultiFeedDetect(const Response& r) {
  if (bit(r.multifeed, 0) == 0) return {kMissing, 0, 0};
  const bool adjustable = bit(r.multifeed, 1) != 0;
  return {kPresent, adjustable ? 2 : 1, adjustable ? r.multifeedLevel : 0};
}

// bytes: black and white, error diffusion, grey, one without meaning, 24-bit colour.
BACKGROUNDREMOVALSUPPORT removalLevels(const std::uint8_t* bytes) {
  return {GetAdjustLevel(bytes[0]), GetAdjustLevel(bytes[1]), GetAdjustLevel(bytes[2]), GetAdjustLevel(bytes[4])};
}

decltype(DEVINFO_ADVANCEDFUNC::deskew) GetDeskewSupport(const Response& r) {
  if (r.deskew == 0) return {kMissing, {}, {}};
  return {kPresent, sourcesOf(r.deskew), {bit(r.deskewOption, 0), bit(r.deskewOption, 1), 0, 0}};
}

BLANKREMOVALSUPPORT GetBlankRemove(const Response& r) {
  BLANKREMOVALSUPPORT blank{};
  blank.cap = capIf(r.blankRemove != 0);
  if (bit(r.blankRemove, 0) == 0) return blank;
  blank.systemType = bit(r.blankRemove, 1);
  blank.levelCap = capIf(bit(r.blankRemove, 2) != 0);
  if (blank.levelCap == kPresent) blank.levelMax = r.blankRemoveLevel - 1;
  return blank;
}

AUTOCOLORLEVELSUPPORT GetAutoColorLevelSupport(const Response& r) {
  AUTOCOLORLEVELSUPPORT level{};
  if (bit(r.autoColorLevel, 0) == 0) return level;  // cap too stays 0
  level.cap = kPresent;
  if (r.autoColorRangeA >= 2) level.firstMax = r.autoColorRangeA - 1;
  if (r.autoColorRangeB >= 2) level.secondMax = r.autoColorRangeB - 1;
  return level;
}

QUIETSCANSUPPORT GetQuietScanMode(const Response& r) {
  const auto smaller = [](std::uint16_t a, std::uint16_t b) { return static_cast<std::int32_t>(std::min(a, b)); };
  return {capIf(r.quietScan == 1), smaller(r.quietFirst[0], r.quietFirst[1]),
          smaller(r.quietSecond[0], r.quietSecond[1])};
}

BACKGROUNDREMOVALSUPPORT GetBackGroundRemove(const Response& r) { return removalLevels(r.backgroundRemove); }

BACKGROUNDREMOVALSUPPORT GetBreedthroughRemove(const Response& r) { return removalLevels(r.bleedThroughRemove); }

decltype(DEVINFO_ADVANCEDFUNC::idCardMode) GetIdCard(const Response& r) {
  return {capIf(r.idCard != 0), {bit(r.idCard, 0), bit(r.idCard, 1)}};
}

decltype(DEVINFO_ADVANCEDFUNC::landscape) GetLandScapeMode(const Response& r) {
  return {capIf(r.landscape != 0), {bit(r.landscape, 0), bit(r.landscape, 1), bit(r.landscape, 2), 0}};
}

CAP GetAdfOnlyBackScanMode(const Response& r) { return capIf(r.adfOnlyBackScan == 1); }

CAP GetDetectResolution(const Response& r) { return capIf(r.detectResolution == 1); }

}  // namespace

DEVINFO_ADVANCEDFUNC advancedFunc(const Response& r) {
  DEVINFO_ADVANCEDFUNC f{};
  f.autoSize.autoCrop = GetAutoCrop(r);
  f.autoSize.deviceDetectSize = GetAutoDocumentSize(r);
  f.idCardMode = GetIdCard(r);
  f.landscape = GetLandScapeMode(r);
  f.carrierSheet = GetCarrierSheetMode(r);
  f.plasticCard = GetPlasticCardMode(r, f.carrierSheet);
  f.multifeedDetect = GetMultiFeedDetect(r);
  f.backgroundRemove = GetBackGroundRemove(r);
  f.breedthroughRemove = GetBreedthroughRemove(r);
  f.deskew = GetDeskewSupport(r);
  f.blankRemoval = GetBlankRemove(r);
  f.autoColor = GetAutoColorLevelSupport(r);
  f.detectResolution = GetDetectResolution(r);
  f.adfOnlyBackScan = GetAdfOnlyBackScanMode(r);
  f.quietScan = GetQuietScanMode(r);
  return f;
}

}  // namespace orvalle_scan_api::qdi
