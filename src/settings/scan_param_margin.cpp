// Margins, and the two lengths that a device may leave open.
#include <initializer_list>

#include "settings/ConvertUnit.h"
#include "settings/ScanParam.h"

namespace orvalle_scan_api {

namespace {

constexpr std::int32_t kDefaultLongPaperMm = 86300;          // 1/100 mm
constexpr std::int32_t kDefaultCarrierSheetOffsetMm = 3200;  // 1/100 mm

std::uint32_t millimeterToPixel(std::uint32_t resolution, std::int32_t mm) {
  std::int32_t pixels = 0;
  CConvertUnit().ConvMillimeterToPixles(resolution, mm, &pixels);
  return static_cast<std::uint32_t>(pixels);
}

}  // namespace

MARGIN CScanParam::GetScanMargin(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const {
  const auto& margins = capability.baseFunc.marginSize;
  if (settings.paperSource == PAPERSOURCE_CARDSLOT) return margins.cardslot;
  if (settings.paperSource != PAPERSOURCE_ADF) return margins.flatbed;
  return settings.duplexType != DUPLEXTYPE_SIMPLEX ? margins.adfDuplex : margins.adfSimplex;
}

MARGIN CScanParam::GetScanMarginPixel(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability,
                                      std::uint32_t resolution) const {
  MARGIN margin = GetScanMargin(settings, capability);
  for (std::int32_t* side : {&margin.left, &margin.right, &margin.top, &margin.bottom}) {
    CConvertUnit().ConvertToPixles(resolution, *side, margin.unit, side);
  }
  margin.unit = UNIT_PIXEL;
  return margin;
}

MARGIN CScanParam::GetScanMarginMm(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const {
  MARGIN margin = GetScanMargin(settings, capability);
  for (std::int32_t* side : {&margin.left, &margin.top, &margin.right, &margin.bottom}) {
    CConvertUnit().ConvertUnit(*side, margin.unit, side, UNIT_MILLIMETER);
  }
  margin.unit = UNIT_MILLIMETER;
  return margin;
}

bool CScanParam::IsLongPaperScanSetting(const QS_SCANNER_PARAMETERS* settings) const {
  if (settings == nullptr) return false;
  switch (settings->paperType) {
    case PAPERTYPE_LONG_NARROW:
    case PAPERTYPE_LONG:
      return true;
    case PAPERTYPE_CUSTOM:
      return settings->customPaperSize.y == 0;
    default:
      return settings->useScanArea != 0 && settings->scanArea.bottom == 0;
  }
}

std::uint32_t CScanParam::GetLongPaperSizePixel(std::uint32_t resolution, DUPLEXTYPE duplexType,
                                                LONGPAPERSUPPORTSIZE support) const {
  const std::int32_t length = duplexType != DUPLEXTYPE_SIMPLEX ? support.duplexMaxLength : support.simplexMaxLength;
  return millimeterToPixel(resolution, length != 0 ? length : kDefaultLongPaperMm);
}

std::uint32_t CScanParam::GetCarrierSheetOffsetSizePixel(std::uint32_t resolution, CARRIERSHEETSUPPORT support) const {
  const std::int32_t top = support.offsetSizeMm.top;
  return millimeterToPixel(resolution, top != 0 ? top : kDefaultCarrierSheetOffsetMm);
}

}  // namespace orvalle_scan_api
