#include "device/page_maker.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "image/encode_jpeg.h"
#include "image/judge.h"
#include "image/palette.h"
#include "image/resample.h"
#include "image/rotate.h"
#include "image/tone.h"
#include "support/failure.h"

namespace vscan {
namespace {

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

// Margins belong to the sheet: its guides hide them.
void whitenMargins(Raster& sheet, const std::array<std::int64_t, 4>& margins, int dpiX, int dpiY) {
  const auto px = [](std::int64_t tenths, int dpi, int limit) {
    return static_cast<int>(std::clamp<std::int64_t>(tenths * dpi / 254, 0, limit));
  };
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

// The sheet's pixels at the granted resolution; a bed or a back with nothing on it is white all over.
Raster pixelsOf(const GrantedScan& scan, const PageSource& source, bool* isTooLong = nullptr) {
  const Face& measured = source.face.file ? source.face : source.sizeFrom;
  if (!measured.file) return Raster(scan.maximum.widthPx, scan.maximum.heightPx, 1, 255);
  Sheet sheet = measured.file->load(measured.page, scan.dpiX, scan.dpiY);
  const Axis x = axisAt(sheet.pixels.widthPx, sheet.dpiX, scan.dpiX, scan.maximum.widthPx);
  const Axis y = axisAt(sheet.pixels.heightPx, sheet.dpiY, scan.dpiY, scan.maximum.heightPx);
  if (isTooLong != nullptr) *isTooLong = y.spanPx < sheet.pixels.heightPx;
  if (!source.face.file) return Raster(x.targetPx, y.targetPx, 1, 255);
  if (x.targetPx == sheet.pixels.widthPx && y.targetPx == sheet.pixels.heightPx) return std::move(sheet.pixels);
  return resample(sheet.pixels, {x.spanPx, y.spanPx}, x.targetPx, y.targetPx);
}

PageColor colorOf(const ScanSettings& settings) {
  switch (settings.color) {
    case ColorMode::Text:
    case ColorMode::ErrorDiffusion:
      return PageColor::Mono;
    case ColorMode::Grey:
    case ColorMode::Palette:  // a byte for each pixel, the number of its colour
      return PageColor::Grey;
    case ColorMode::Color:
    case ColorMode::Automatic:
      break;
  }
  return PageColor::Color;
}

int judgeLevel(std::optional<std::int64_t> wanted) {
  return static_cast<int>(std::clamp<std::int64_t>(wanted.value_or(kJudgeLevels / 2), 0, kJudgeLevels - 1));
}

void encode(const GrantedScan& scan, Raster pixels, const PageOptions& options, Page& page) {
  const ScanSettings& settings = scan.settings;
  page.color = page.foundColor == PageColor::Color ? colorOf(settings) : PageColor::Grey;
  page.compression = settings.compression;
  if (settings.compression == Compression::Jpeg) {
    if (page.color == PageColor::Color && settings.jpegSampling == JpegSampling::Grey) page.color = PageColor::Grey;
    pixels = page.color == PageColor::Grey ? toGrey(std::move(pixels)) : toColor(std::move(pixels));
    page.data = encodeJpeg(pixels, jpegQuality(static_cast<int>(settings.jpegRate)), settings.jpegSampling, scan.dpiX,
                           scan.dpiY);
    return;
  }
  if (options.rawLines) page.compression = Compression::None;
  page.colorLines = options.colorLines;
  if (page.color == PageColor::Color) {
    pixels = toColor(std::move(pixels));
    page.lineBytes = pixels.lineBytes();
    page.data = std::move(pixels.pixels);
    return;
  }
  pixels = settings.color == ColorMode::Palette ? toPalette(pixels) : toGrey(std::move(pixels));
  if (page.color == PageColor::Grey) {
    page.lineBytes = pixels.lineBytes();
    page.data = std::move(pixels.pixels);
    return;
  }
  page.lineBytes = (pixels.lineBytes() + 7) / 8;
  page.data = settings.color == ColorMode::Text ? threshold(pixels, scan.threshold) : diffuseError(pixels);
}

}  // namespace

Raster drawArea(const Raster& sheet, const Rect& sheetRect, const Rect& area) {
  Raster drawn(area.widthPx(), area.heightPx(), sheet.channels, 255);
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
  const Raster sheet = pixelsOf(scan, {face, {}});
  return placeSheet(profile, scan.path, {sheet.widthPx, sheet.heightPx}, scan.maximum);
}

Page makePage(const Profile& profile, const GrantedScan& scan, const StartSettings& start, const PageSource& source,
              const PageOptions& options) {
  const ScanSettings& settings = scan.settings;
  Page page;
  Raster sheet = pixelsOf(scan, source, &page.isTooLong);
  if (options.skewDegrees != 0 && !settings.deskew && source.face.file) sheet = rotate(sheet, options.skewDegrees);
  whitenMargins(sheet, profile.abilities().of(scan.path).margins, scan.dpiX, scan.dpiY);
  const Rect sheetRect = placeSheet(profile, scan.path, {sheet.widthPx, sheet.heightPx}, scan.maximum);
  Rect area = scannedArea(start.areaKind, start.area, sheetRect, scan.reach);
  if (start.endsWithSheet) area.bottom = std::clamp(sheetRect.bottom, area.top + 1, area.bottom);
  checkSheetSize("the area to be scanned", area.widthPx(), area.heightPx());

  page.widthPx = area.widthPx();
  page.heightPx = area.heightPx();
  page.tellsSize = start.areaKind != AreaKind::Normal;
  // Of a fixed area the host knows the end; the device has nothing to say about what lies behind it.
  page.isTooLong = page.isTooLong && page.tellsSize && scan.path != Path::Flatbed;
  Raster pixels = area == sheetRect ? std::move(sheet) : drawArea(sheet, sheetRect, area);
  const Switch& blanks = settings.blankRemoval;
  if (blanks.isOn && isBlank(pixels, judgeLevel(blanks.level))) {
    page.isBlank = true;
    return page;
  }
  if (settings.color == ColorMode::Automatic) {
    page.tellsColor = true;
    page.foundColor =
        judgeColor(pixels, judgeLevel(settings.colorLevel ? std::optional((*settings.colorLevel)[0]) : std::nullopt));
  }
  if (settings.backgroundRemoval.isOn) {
    constexpr std::int64_t kUsualLevel = 96;
    removeBackground(pixels, static_cast<int>(std::clamp<std::int64_t>(
                                 settings.backgroundRemoval.level.value_or(kUsualLevel), 0, 255)));
  }
  adjustTone(pixels, static_cast<int>(settings.brightness), static_cast<int>(settings.contrast));
  encode(scan, std::move(pixels), options, page);
  return page;
}

}  // namespace vscan
