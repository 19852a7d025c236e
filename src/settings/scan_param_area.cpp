// Which pixels the device is told to deliver, and what the pages will therefore be.
#include <algorithm>
#include <initializer_list>
#include <utility>

#include "settings/ConvertUnit.h"
#include "settings/PaperSize.h"
#include "settings/ScanParam.h"

namespace orvalle_scan_api {

namespace {

std::uint32_t bits(std::int32_t value) { return static_cast<std::uint32_t>(value); }
std::int32_t number(std::uint32_t value) { return static_cast<std::int32_t>(value); }

// A count of the user's pixels in the device's. A user resolution of 0 leaves the count as it is.
std::uint32_t rescaled(std::uint32_t pixels, std::uint32_t deviceDpi, std::uint32_t userDpi) {
  return userDpi == 0 ? pixels : pixels * deviceDpi / userDpi;
}

// Calls convert(dpi, side) for the four sides.
template <class Convert>
void eachSide(SCANAREA& area, AXIS dpi, Convert convert) {
  convert(dpi.x, &area.left);
  convert(dpi.y, &area.top);
  convert(dpi.x, &area.right);
  convert(dpi.y, &area.bottom);
}

// The paper as it lies in a source: a business card goes through a feeder upright.
PaperListRow paperInSource(const QS_SCANNER_PARAMETERS& settings, PAPERSOURCESELECT source) {
  if (settings.paperType == PAPERTYPE_CUSTOM) {
    const CUSTOMPAPERSIZE& custom = settings.customPaperSize;
    return {bits(custom.x), bits(custom.y), custom.unit};
  }
  PaperListRow paper = paperListRow(settings.paperType);
  if (settings.paperType == PAPERTYPE_BCARD && source != PAPERSOURCE_FLATBED) std::swap(paper.width, paper.height);
  return paper;
}

// The paper less its margins, in pixels of the device.
AXIS netPaperPixel(AXIS deviceDpi, PaperListRow paper, MARGIN margin, AXIS userDpi) {
  const CConvertUnit units;
  for (std::int32_t* side : {&margin.left, &margin.top, &margin.right, &margin.bottom}) {
    // Kept: in pixels all four sides go by the horizontal resolution. It looks like a slip for top and bottom; pages at
    // unequal resolutions depend on it. Pinned by scan_area_test "a margin in pixels goes by the horizontal
    // resolution".
    if (paper.unit == UNIT_PIXEL) {
      units.ConvertToPixles(deviceDpi.x, *side, margin.unit, side);
    } else {
      units.ConvertUnit(*side, margin.unit, side, paper.unit);
    }
  }
  AXIS net{paper.width - bits(margin.left) - bits(margin.right), paper.height - bits(margin.bottom) - bits(margin.top)};
  if (paper.unit == UNIT_PIXEL)
    net = {rescaled(net.x, deviceDpi.x, userDpi.x), rescaled(net.y, deviceDpi.y, userDpi.y)};
  AXIS pixels{};
  units.ConvertToPixles(deviceDpi.x, net.x, paper.unit, &pixels.x);
  units.ConvertToPixles(deviceDpi.y, net.y, paper.unit, &pixels.y);
  return pixels;
}

COLORTYPE colorTypeOf(SCANCMD_COLOR_TYPE sent) {
  switch (sent) {
    case SCANCMD_COLOR_TEXT:
      return COLORTYPE_BLACKANDWHITE;
    case SCANCMD_COLOR_ERRDIF:
      return COLORTYPE_ERRORDIFFUSION;
    case SCANCMD_COLOR_GRAY256:
      return COLORTYPE_TRUEGRAY;
    case SCANCMD_COLOR_C256:
      return COLORTYPE_COLOR256;
    default:
      return COLORTYPE_COLOR24BIT;  // automatic colour too: it arrives as 24 bits
  }
}

}  // namespace

POSITION CScanParam::GetPaperPositionX(PAPERSOURCESELECT source, PAPERSETTINGPOSITIONS positions) const {
  if (source == PAPERSOURCE_CARDSLOT) return positions.cardslotX;
  return source == PAPERSOURCE_ADF ? positions.adfX : positions.flatbedX;
}

POSITION CScanParam::GetPaperPositionY(PAPERSOURCESELECT source, PAPERSETTINGPOSITIONS positions) const {
  if (source == PAPERSOURCE_CARDSLOT) return positions.cardslotY;
  return source == PAPERSOURCE_ADF ? positions.adfY : positions.flatbedY;
}

std::int32_t CScanParam::CalcOffsetValue(std::int32_t size, std::int32_t maxSize, POSITION position) const {
  const std::int32_t room = number(bits(maxSize) - bits(size));
  if (room <= 0) return 0;
  if (position == 2) return room;
  return position == 1 ? room / 2 : 0;
}

// Kept: long paper has a height of 0 in the table, so that its height here is minus the margins. No long-paper length
// goes to the device, which is told the mode alone. Pinned by scan_area_test "no length of long paper is sent".
// Kept: an area in inches or millimetres is at the device's resolution already and is scaled once more when the user's
// differs; only an area in pixels comes out as a true conversion. Pinned by scan_area_test "an area in inches is scaled
// twice".
_SCANCMD_SCANAREA CScanParam::CalcScanCmdArea(std::uint32_t resolutionX, std::uint32_t resolutionY,
                                              PAPERSOURCESELECT source, AXIS maxPixel, QS_SCANNER_PARAMETERS settings,
                                              QS_SCANNER_CAPABILITY capability) const {
  _SCANCMD_SCANAREA area = ConvertScanCmd_ScanArea(settings, capability);
  if (settings.paperType == PAPERTYPE_AUTO) return area;

  const AXIS paper = netPaperPixel({resolutionX, resolutionY}, paperInSource(settings, source),
                                   GetScanMargin(settings, capability), settings.resolution);
  const PAPERSETTINGPOSITIONS& positions = capability.baseFunc.paperPosition;
  area.left = bits(CalcOffsetValue(number(paper.x), number(maxPixel.x), GetPaperPositionX(source, positions)));
  area.top = bits(CalcOffsetValue(number(paper.y), number(maxPixel.y), GetPaperPositionY(source, positions)));
  if (settings.carrierSheet != 0) {
    area.top += GetCarrierSheetOffsetSizePixel(resolutionY, capability.advancedFunc.carrierSheet);
  }
  area.width = paper.x;
  area.height = paper.y;
  if (settings.useScanArea != 0) {
    const SCANAREA wanted = GetPixelArea(settings.scanArea, resolutionX, resolutionY);
    area.left += rescaled(bits(wanted.left), resolutionX, settings.resolution.x);
    area.top += rescaled(bits(wanted.top), resolutionY, settings.resolution.y);
    area.width = rescaled(bits(wanted.right), resolutionX, settings.resolution.x);
    area.height = rescaled(bits(wanted.bottom), resolutionY, settings.resolution.y);
  }
  return area;
}

_SCANCMD_SCANAREA CScanParam::ReviseScanCmd_Area(_SCANCMD_SCANAREA area, ACTUALSCANPARAM actual,
                                                 QS_SCANNER_CAPABILITY) const {
  const SCANAREA whole{number(area.left), number(area.top), number(area.width), number(area.height), UNIT_PIXEL};
  const SCANAREA revised = CPaperSize().ReviseArea(whole, actual.maxSizePixel);
  return {area.areaType, bits(revised.left), bits(revised.top), bits(revised.right), bits(revised.bottom)};
}

SCANAREA CScanParam::GetPixelArea(SCANAREA area, std::uint32_t resolutionX, std::uint32_t resolutionY) const {
  eachSide(area, {resolutionX, resolutionY}, [unit = area.unit](std::uint32_t dpi, std::int32_t* side) {
    CConvertUnit().ConvertToPixles(dpi, *side, unit, side);
  });
  area.unit = UNIT_PIXEL;
  return area;
}

QS_SCANNER_PARAMETERS CScanParam::CreateDeviceScanParam(QS_SCANNER_PARAMETERS settings, _SCANCMD_SCANPARAM cmdParam,
                                                        AXIS maxPixel) const {
  settings.resolution = {cmdParam.resolution.x, cmdParam.resolution.y};
  settings.colorType = colorTypeOf(cmdParam.colorType);
  SCANAREA cut{};
  if (settings.edgeCut.enable != 0 && settings.paperType != PAPERTYPE_AUTO) {
    const EDGECUT& edge = settings.edgeCut;
    cut = GetPixelArea({edge.left, edge.top, edge.right, edge.bottom, edge.unit}, cmdParam.resolution.x,
                       cmdParam.resolution.y);
  }
  const _SCANCMD_SCANAREA& sent = cmdParam.scanArea;
  const SCANAREA delivered{number(sent.left), number(sent.top),
                           std::max(0, number(bits(cut.left) + sent.width + bits(cut.right))),
                           std::max(0, number(bits(cut.top) + sent.height + bits(cut.bottom))), UNIT_PIXEL};
  settings.scanArea = CPaperSize().ReviseArea(delivered, maxPixel);
  return settings;
}

QS_SCANNER_PARAMETERS CScanParam::ConvertScanAreaValueUnit(const QS_SCANNER_PARAMETERS& settings, UNITTYPE to) const {
  QS_SCANNER_PARAMETERS converted = settings;
  const UNITTYPE from = settings.scanArea.unit;
  eachSide(converted.scanArea, settings.resolution, [from, to](std::uint32_t dpi, std::int32_t* side) {
    const CConvertUnit units;
    if (to == UNIT_PIXEL) {
      units.ConvertToPixles(dpi, *side, from, side);
    } else if (from == UNIT_PIXEL) {
      units.ConvertPixlesTo(dpi, *side, side, to);
    } else {
      units.ConvertUnit(*side, from, side, to);
    }
  });
  converted.scanArea.unit = to;
  return converted;
}

}  // namespace orvalle_scan_api
