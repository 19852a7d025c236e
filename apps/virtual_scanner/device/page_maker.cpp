#include "device/page_maker.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "device/page_encoder.h"
#include "image/judge.h"
#include "image/resample.h"
#include "image/rotate.h"
#include "image/smooth.h"
#include "image/tone.h"
#include "support/failure.h"

namespace vscan {
namespace {

constexpr std::uint8_t kDarkBacking = 40;
constexpr int kMaxRimPx = 1'000'000;  // more than any area has

// One axis of a sheet at the granted resolution. What does not fit on the device is not drawn: such a sheet lies
// against the left or the top edge, so that it is its beginning that stays.
struct Axis {
  int targetPx = 0;
  double spanPx = 0;  // of the sheet's own pixels
};

Axis axisAt(int sheetPx, double sheetDpi, int dpi, int maximumPx) {
  const double wholePx = std::max(1.0, std::round(sheetPx * dpi / sheetDpi));
  const int targetPx = static_cast<int>(std::min<double>(wholePx, maximumPx));
  return {targetPx, sheetPx * (targetPx / wholePx)};
}

// Tenths of a millimetre as pixels between two bounds.
int toPixels(std::int64_t tenths, int dpi, int minimum, int maximum) {
  return static_cast<int>(std::clamp<std::int64_t>(tenths * dpi / 254, minimum, maximum));
}

// Margins belong to the sheet: its guides hide them.
void whitenMargins(Raster& sheet, const std::array<std::int64_t, 4>& margins, int dpiX, int dpiY) {
  const auto px = [](std::int64_t tenths, int dpi, int limit) { return toPixels(tenths, dpi, 0, limit); };
  const int left = px(margins[0], dpiX, sheet.widthPx), right = px(margins[1], dpiX, sheet.widthPx - left);
  const int top = px(margins[2], dpiY, sheet.heightPx), bottom = px(margins[3], dpiY, sheet.heightPx - top);
  for (int y = 0; y < sheet.heightPx; ++y) {
    std::uint8_t* const line = sheet.line(y);
    const bool isHidden = y < top || y >= sheet.heightPx - bottom;
    const int leftPx = isHidden ? sheet.widthPx : left;
    std::fill(line, line + leftPx * sheet.channels, std::uint8_t{255});
    std::fill(line + (sheet.widthPx - right) * sheet.channels, line + sheet.lineBytes(), std::uint8_t{255});
  }
}

// What is scanned beyond the area on its left, right, top and bottom: as many tenths of a millimetre as the host asks
// for; around a sheet that is to be scanned with its surroundings never nothing.
Rim rimOf(const GrantedScan& scan, AreaKind kind) {
  constexpr std::int64_t kOverScanTenths = 50;
  std::array<std::int64_t, 4> tenths = scan.settings.margins;
  if (kind == AreaKind::Over && tenths == std::array<std::int64_t, 4>{}) tenths.fill(kOverScanTenths);
  const auto px = [](std::int64_t side, int dpi) { return toPixels(side, dpi, -kMaxRimPx, kMaxRimPx); };
  return {px(tenths[0], scan.dpiX), px(tenths[1], scan.dpiX), px(tenths[2], scan.dpiY), px(tenths[3], scan.dpiY)};
}

// The sheet's pixels at the granted resolution; a bed or a back with nothing on it is white all over.
Raster pixelsOf(const GrantedScan& scan, const PageSource& source, bool* isTooLong = nullptr) {
  const Face& measured = source.face.file ? source.face : source.sizeFrom;
  if (!measured.file) return Raster(scan.maximum.widthPx, scan.maximum.heightPx, 1, 255);
  const bool isTurned = scan.settings.isLandscape;
  Sheet sheet = measured.file->load(measured.page, isTurned ? scan.dpiY : scan.dpiX, isTurned ? scan.dpiX : scan.dpiY);
  if (isTurned) {  // with its left edge first
    sheet.pixels = turnRight(sheet.pixels);
    std::swap(sheet.dpiX, sheet.dpiY);
  }
  const Axis x = axisAt(sheet.pixels.widthPx, sheet.dpiX, scan.dpiX, scan.maximum.widthPx);
  const Axis y = axisAt(sheet.pixels.heightPx, sheet.dpiY, scan.dpiY, scan.maximum.heightPx);
  if (isTooLong != nullptr) *isTooLong = y.spanPx < sheet.pixels.heightPx;
  if (!source.face.file) return Raster(x.targetPx, y.targetPx, 1, 255);
  if (x.targetPx == sheet.pixels.widthPx && y.targetPx == sheet.pixels.heightPx) return std::move(sheet.pixels);
  return resample(sheet.pixels, {x.spanPx, y.spanPx}, x.targetPx, y.targetPx);
}

int judgeLevel(std::optional<std::int64_t> wanted) {
  return static_cast<int>(std::clamp<std::int64_t>(wanted.value_or(kJudgeLevels / 2), 0, kJudgeLevels - 1));
}

// Where a sheet of that size lies; one in a carrier sheet begins behind the beginning of the carrier.
Rect place(const Profile& profile, const GrantedScan& scan, const Raster& sheet) {
  Rect rect = placeSheet(profile, scan.path, {sheet.widthPx, sheet.heightPx}, scan.maximum);
  if (scan.settings.carrierSheet == CarrierSheet::Used) {
    const int offset = toPixels(profile.abilities().carrierOffset, scan.dpiY, 0, scan.maximum.heightPx);
    rect.top += offset;
    rect.bottom += offset;
  }
  return rect;
}

std::int64_t contrastOf(const ScanSettings& settings) {
  constexpr std::int64_t kMore[] = {0, 10, 30, -15, 15};  // as plain, copy, OCR, photo, text and graphics
  const std::int64_t contrast = settings.appliesTone ? settings.contrast : kNeutralTone;
  return std::clamp<std::int64_t>(contrast + kMore[static_cast<std::size_t>(settings.imageProcessing)], 0, 100);
}

// What the device does to a picture on its way out.
void improve(const Abilities& can, const GrantedScan& scan, Raster& pixels) {
  const ScanSettings& settings = scan.settings;
  if (settings.backgroundRemoval.isOn) {
    constexpr std::int64_t kUsualStrength = 96;
    const auto level = settings.backgroundRemoval.level;
    removeBackground(pixels, static_cast<int>(level ? std::clamp<std::int64_t>(*level, 0, scan.backgroundLevels) * 255 /
                                                          scan.backgroundLevels
                                                    : kUsualStrength));
  }
  if (settings.removesMoire) pixels = smooth(pixels);
  Tone tone;
  tone.contrast = static_cast<int>(contrastOf(settings));
  if (settings.appliesTone) {
    constexpr std::int64_t kUsualGamma = 180;
    tone.brightness = static_cast<int>(settings.brightness);
    if (settings.gamma.isOn) {
      tone.gamma = static_cast<int>(settings.gamma.level.value_or(std::min(kUsualGamma, can.gammaMax)));
    }
  }
  adjustTone(pixels, tone);
}

}  // namespace

Raster drawArea(const Raster& sheet, const Rect& sheetRect, const Rect& area, std::uint8_t backing) {
  Raster drawn(area.widthPx(), area.heightPx(), sheet.channels, backing);
  const int left = std::max(area.left, sheetRect.left);
  const int right = std::min(area.right, sheetRect.right);
  if (left >= right) return drawn;
  const auto channels = static_cast<std::size_t>(sheet.channels);
  const std::size_t bytes = static_cast<std::size_t>(right - left) * channels;
  for (int y = std::max(area.top, sheetRect.top); y < std::min(area.bottom, sheetRect.bottom); ++y) {
    std::memcpy(drawn.line(y - area.top) + static_cast<std::size_t>(left - area.left) * channels,
                sheet.line(y - sheetRect.top) + static_cast<std::size_t>(left - sheetRect.left) * channels, bytes);
  }
  return drawn;
}

Rect placeFace(const Profile& profile, const GrantedScan& scan, const Face& face) {
  return place(profile, scan, pixelsOf(scan, {face, {}}));
}

Page makePage(const Profile& profile, const GrantedScan& scan, const StartSettings& start, const PageSource& source,
              const PageOptions& options) {
  const ScanSettings& settings = scan.settings;
  const Abilities can = profile.abilities();
  // Where a host looks for edges, what lies beside the sheet is dark.
  const std::uint8_t backing = start.reading == Reading::Edges ? kDarkBacking : 255;
  const bool isStraightened = settings.deskew || start.areaKind == AreaKind::AutomaticDeskewed;
  const bool isFed = scan.path != Path::Flatbed;
  Page page;
  Raster sheet = pixelsOf(scan, source, &page.isTooLong);
  if (options.skewDegrees != 0 && !isStraightened && source.face.file) {
    const bool isBack = source.sizeFrom.file != nullptr;  // from there the sheet leans the other way
    sheet = rotate(sheet, isBack ? -options.skewDegrees : options.skewDegrees, backing);
  }
  whitenMargins(sheet, can.of(scan.path).margins, scan.dpiX, scan.dpiY);
  const Rect sheetRect = place(profile, scan, sheet);
  Rect area = scannedArea(start.areaKind, start.area, sheetRect, scan.reach, rimOf(scan, start.areaKind));
  if (start.reading == Reading::Corners || (start.areaKind == AreaKind::Full && isFed)) {
    area.bottom = std::clamp(sheetRect.bottom, area.top + 1, area.bottom);
  }
  checkSheetSize("the area to be scanned", area.widthPx(), area.heightPx());

  page.widthPx = area.widthPx();
  page.heightPx = area.heightPx();
  page.tellsSize = start.areaKind != AreaKind::Normal;
  // Of a fixed area the host knows the end; the device has nothing to say about what lies behind it.
  page.isTooLong = page.isTooLong && page.tellsSize && isFed;
  Raster pixels = area == sheetRect ? std::move(sheet) : drawArea(sheet, sheetRect, area, backing);
  const Switch& blanks = settings.blankRemoval;
  if (blanks.isOn && isBlank(pixels, judgeLevel(blanks.level))) {
    page.isBlank = true;
    return page;
  }
  if (settings.color == ColorMode::Automatic) {
    page.tellsColor = true;
    std::optional<std::int64_t> forColor, forGrey;
    if (settings.colorLevel) forColor = (*settings.colorLevel)[0];
    if (settings.colorLevel && can.gradesGrey) forGrey = (*settings.colorLevel)[1];
    page.foundColor = judgeColor(pixels, judgeLevel(forColor), judgeLevel(forGrey));
  }
  if (start.reading != Reading::Original) improve(can, scan, pixels);
  encodePage(scan, std::move(pixels), options, page);
  return page;
}

}  // namespace vscan
