#include "device/page_encoder.h"

#include "image/encode_jpeg.h"
#include "image/palette.h"
#include "image/tone.h"

namespace vscan {
namespace {

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

}  // namespace

void encodePage(const GrantedScan& scan, Raster pixels, const PageOptions& options, Page& page) {
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

}  // namespace vscan
