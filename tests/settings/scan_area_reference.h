// The area of a scan, computed a second time: plain steps one after another, with nothing taken from the product but
// the records. scan_area_random_test compares the product with it.
//
// Every number is a 32-bit pattern (Word), so that sums, differences and products wrap; what is meant with a sign is
// read through asSigned.
#pragma once

#include <cstdint>

#include "command/scancmd_param.h"
#include "scanner_capability.h"
#include "scanner_parameters.h"

namespace orvalle_scan_api::reference {

using Word = std::uint32_t;

inline std::int32_t asSigned(Word word) { return static_cast<std::int32_t>(word); }
inline Word pattern(std::int64_t value) { return static_cast<Word>(static_cast<std::uint64_t>(value)); }
inline bool isNegative(Word word) { return word >= 0x80000000u; }
inline Word magnitude(Word word) { return isNegative(word) ? 0u - word : word; }
inline Word withSignOf(Word sign, Word word) { return isNegative(sign) ? 0u - word : word; }

inline Word mmToInch(Word mm) {
  if (mm == 0x80000000u) return 0;
  const std::int64_t t = asSigned(magnitude(mm) * 10000u);
  return withSignOf(mm, pattern((t / 254 + 5) / 100));
}

inline Word inchToMm(Word inch) {
  if (inch == 0x80000000u) return 0;
  return withSignOf(inch, pattern(std::int64_t{magnitude(inch)} * 25400 / 10000));
}

inline Word inchToPixels(Word dpi, Word inch) {
  return withSignOf(inch, (magnitude(inch) * dpi * 10u + 5000u) / 10000u);
}

inline Word toPixels(Word dpi, Word value, UNITTYPE from) {
  if (from == UNIT_INCH) return inchToPixels(dpi, value);
  if (from == UNIT_MILLIMETER) return inchToPixels(dpi, mmToInch(value));
  return value;
}

// A length in pixels, or one that is wanted in pixels, stays as it is.
inline Word toUnit(Word value, UNITTYPE from, UNITTYPE to) {
  if (from == UNIT_MILLIMETER && to == UNIT_INCH) return mmToInch(value);
  if (from == UNIT_INCH && to == UNIT_MILLIMETER) return inchToMm(value);
  return value;
}

struct Margin {
  Word left, top, right, bottom;
  UNITTYPE unit;
};

inline Margin marginOf(const QS_SCANNER_PARAMETERS& settings, const QS_SCANNER_CAPABILITY& capability) {
  const auto& all = capability.baseFunc.marginSize;
  MARGIN m = all.flatbed;
  if (settings.paperSource == 3) m = all.cardslot;
  if (settings.paperSource == 2 && settings.duplexType != 0) m = all.adfDuplex;
  if (settings.paperSource == 2 && settings.duplexType == 0) m = all.adfSimplex;
  return {pattern(m.left), pattern(m.top), pattern(m.right), pattern(m.bottom), m.unit};
}

struct Paper {
  Word width, height;
  UNITTYPE unit;
};

inline Paper paperOf(int type) {
  constexpr UNITTYPE in = UNIT_INCH;
  constexpr UNITTYPE mm = UNIT_MILLIMETER;
  constexpr Paper kPapers[] = {
      {0, 0, in},         {21000, 29700, mm},                                          // automatic, A4
      {8500, 11000, in},  {8500, 14000, in},  {29700, 42000, mm}, {11000, 17000, in},  // Letter to Ledger
      {25700, 36400, mm}, {18200, 25700, mm}, {14800, 21000, mm}, {12800, 18200, mm},  // JIS B4 to JIS B6
      {10500, 14800, mm}, {7250, 10500, in},  {4000, 6000, in},   {5000, 8000, in},    // A6 to index card
      {3503, 5000, in},   {5000, 7000, in},                                            // photo L, 2L
      {10000, 14800, mm}, {14800, 20000, mm},                                          // postcards
      {9000, 6000, mm},   {6000, 9000, mm},                                            // business cards
      {8500, 13000, in},  {8500, 13380, in},  {21500, 34500, mm},                      // Folio and the unnamed ones
      {4250, 0, in},      {8500, 0, in},                                               // long
  };
  return type >= 0 && type <= 24 ? kPapers[type] : Paper{0, 0, in};
}

// value * to / from; the value itself where there is nothing to divide by.
inline Word scaled(Word value, Word to, Word from) { return from == 0 ? value : value * to / from; }

inline Word offset(Word size, Word maxSize, int position) {
  const Word d = maxSize - size;
  if (d == 0 || isNegative(d)) return 0;
  if (position == 2) return d;
  if (position == 1) return d / 2;
  return 0;
}

inline _SCANCMD_SCANAREA commandArea(Word resolutionX, Word resolutionY, int source, AXIS maxPixel,
                                     const QS_SCANNER_PARAMETERS& settings, const QS_SCANNER_CAPABILITY& capability) {
  _SCANCMD_SCANAREA result{};

  // 1. Where the paper lies.
  const auto& positions = capability.baseFunc.paperPosition;
  int posX = positions.flatbedX;
  int posY = positions.flatbedY;
  if (source == 2) posX = positions.adfX, posY = positions.adfY;
  if (source == 3) posX = positions.cardslotX, posY = positions.cardslotY;

  // 2. Automatic size: the device decides.
  if (settings.paperType == 0) {
    const auto& detect = capability.advancedFunc.autoSize.deviceDetectSize;
    if (detect.cap == 2) {
      if (detect.detectSystem == 0) {
        result.areaType = SCANCMD_SCAN_AREA_AUTO;
      } else if (capability.advancedFunc.deskew.cap == 2 && detect.detectOverScan != 0) {
        result.areaType = SCANCMD_SCAN_AREA_ATDSKW;
      }
    }
    return result;
  }

  // 3. to 5. The page without its margins, in device pixels.
  Margin m = marginOf(settings, capability);
  Paper page{};
  if (settings.paperType == 26) {
    page = {pattern(settings.customPaperSize.x), pattern(settings.customPaperSize.y), settings.customPaperSize.unit};
  } else {
    page = paperOf(settings.paperType);
    if (source != 1 && settings.paperType == 18) page = {page.height, page.width, page.unit};
  }
  if (settings.paperType == 26 && page.unit == UNIT_PIXEL) {
    // All four at the horizontal resolution.
    m.left = toPixels(resolutionX, m.left, m.unit);
    m.top = toPixels(resolutionX, m.top, m.unit);
    m.right = toPixels(resolutionX, m.right, m.unit);
    m.bottom = toPixels(resolutionX, m.bottom, m.unit);
  } else {
    m.left = toUnit(m.left, m.unit, page.unit);
    m.top = toUnit(m.top, m.unit, page.unit);
    m.right = toUnit(m.right, m.unit, page.unit);
    m.bottom = toUnit(m.bottom, m.unit, page.unit);
  }
  Word w = page.width - m.left - m.right;
  Word h = page.height - m.bottom - m.top;
  if (settings.paperType == 26 && page.unit == UNIT_PIXEL) {
    w = scaled(w, resolutionX, settings.resolution.x);
    h = scaled(h, resolutionY, settings.resolution.y);
  }
  const Word areaW = toPixels(resolutionX, w, page.unit);
  const Word areaH = toPixels(resolutionY, h, page.unit);

  // 6. to 8. Where the page begins. The length of a long page is told by no number.
  result.left = offset(areaW, maxPixel.x, posX);
  result.top = offset(areaH, maxPixel.y, posY);
  if (settings.carrierSheet != 0) {
    const Word below = pattern(capability.advancedFunc.carrierSheet.offsetSizeMm.top);
    result.top += toPixels(resolutionY, below == 0 ? 3200 : below, UNIT_MILLIMETER);
  }

  // 9. The whole page, or a part of it.
  if (settings.useScanArea == 0) {
    result.width = areaW;
    result.height = areaH;
    return result;
  }
  const SCANAREA& part = settings.scanArea;
  result.left += scaled(toPixels(resolutionX, pattern(part.left), part.unit), resolutionX, settings.resolution.x);
  result.top += scaled(toPixels(resolutionY, pattern(part.top), part.unit), resolutionY, settings.resolution.y);
  result.width = scaled(toPixels(resolutionX, pattern(part.right), part.unit), resolutionX, settings.resolution.x);
  result.height = scaled(toPixels(resolutionY, pattern(part.bottom), part.unit), resolutionY, settings.resolution.y);
  return result;
}

// One side of the trim: a start beyond the maximum becomes 0, a length beyond it the maximum; 0 is no maximum.
inline void trim(Word& start, Word& length, Word maximum) {
  if (maximum == 0) return;
  if (asSigned(start) > asSigned(maximum)) start = 0;
  if (asSigned(length) > asSigned(maximum)) length = maximum;
}

inline _SCANCMD_SCANAREA revisedArea(_SCANCMD_SCANAREA area, AXIS maxPixel) {
  trim(area.left, area.width, maxPixel.x);
  trim(area.top, area.height, maxPixel.y);
  return area;
}

inline QS_SCANNER_PARAMETERS deviceSettings(const QS_SCANNER_PARAMETERS& settings, const _SCANCMD_SCANPARAM& command,
                                            AXIS maxPixel) {
  QS_SCANNER_PARAMETERS device = settings;
  device.resolution = {command.resolution.x, command.resolution.y};
  switch (command.colorType) {
    case 0:
      device.colorType = COLORTYPE_BLACKANDWHITE;
      break;
    case 1:
      device.colorType = COLORTYPE_ERRORDIFFUSION;
      break;
    case 2:
      device.colorType = COLORTYPE_TRUEGRAY;
      break;
    case 3:
      device.colorType = COLORTYPE_COLOR256;
      break;
    default:
      device.colorType = COLORTYPE_COLOR24BIT;
      break;
  }
  Margin cut{};
  if (settings.edgeCut.enable != 0 && settings.paperType != 0) {
    const EDGECUT& wish = settings.edgeCut;
    cut.left = toPixels(command.resolution.x, pattern(wish.left), wish.unit);
    cut.right = toPixels(command.resolution.x, pattern(wish.right), wish.unit);
    cut.top = toPixels(command.resolution.y, pattern(wish.top), wish.unit);
    cut.bottom = toPixels(command.resolution.y, pattern(wish.bottom), wish.unit);
  }
  Word left = command.scanArea.left;
  Word top = command.scanArea.top;
  Word width = cut.left + command.scanArea.width + cut.right;
  Word height = cut.top + command.scanArea.height + cut.bottom;
  if (isNegative(width)) width = 0;
  if (isNegative(height)) height = 0;
  trim(left, width, maxPixel.x);
  trim(top, height, maxPixel.y);
  device.scanArea = {asSigned(left), asSigned(top), asSigned(width), asSigned(height), UNIT_PIXEL};
  return device;
}

inline MARGIN marginInPixels(const QS_SCANNER_PARAMETERS& settings, const QS_SCANNER_CAPABILITY& capability,
                             Word resolution) {
  const Margin m = marginOf(settings, capability);
  const auto convert = [&](Word side) { return asSigned(toPixels(resolution, side, m.unit)); };
  return {convert(m.left), convert(m.right), convert(m.top), convert(m.bottom), UNIT_PIXEL};
}

inline MARGIN marginInMm(const QS_SCANNER_PARAMETERS& settings, const QS_SCANNER_CAPABILITY& capability) {
  const Margin m = marginOf(settings, capability);
  const auto convert = [&](Word side) { return asSigned(toUnit(side, m.unit, UNIT_MILLIMETER)); };
  return {convert(m.left), convert(m.right), convert(m.top), convert(m.bottom), UNIT_MILLIMETER};
}

inline Word longPaperLength(Word resolution, int duplexType, const LONGPAPERSUPPORTSIZE& support) {
  const Word length = pattern(duplexType != 0 ? support.duplexMaxLength : support.simplexMaxLength);
  return toPixels(resolution, length == 0 ? 86300 : length, UNIT_MILLIMETER);
}

inline SCANAREA areaInUnit(const QS_SCANNER_PARAMETERS& settings, UNITTYPE to) {
  const SCANAREA& area = settings.scanArea;
  const auto convert = [&](std::int32_t value, Word dpi) {
    const Word word = pattern(value);
    if (to == UNIT_PIXEL) return asSigned(toPixels(dpi, word, area.unit));
    if (area.unit != UNIT_PIXEL) return asSigned(toUnit(word, area.unit, to));
    if (to != UNIT_INCH && to != UNIT_MILLIMETER) return value;
    const Word inch = dpi == 0 ? 0 : word * 1000u / dpi;
    return asSigned(to == UNIT_INCH ? inch : inchToMm(inch));
  };
  const AXIS dpi = settings.resolution;
  return {convert(area.left, dpi.x), convert(area.top, dpi.y), convert(area.right, dpi.x), convert(area.bottom, dpi.y),
          to};
}

}  // namespace orvalle_scan_api::reference
