// From colour to grey, from either to mono by a threshold or by error diffusion.
#include <cstring>

#include "histogram.h"
#include "pix.h"
#include "steps.h"

namespace image_enhance {
namespace {

// Brightness that is meant for the reduced page alone: an automatic-colour page has its own.
int grayShift(const Request& request) {
  return request.param.colorClass == 0 && request.param.doToneAdjust ? request.param.grayBrightness - 128 : 0;
}

// The paper between the ink made equally bright, so that one threshold fits shaded and tinted parts as well. Null where
// too little of the page is paper to tell.
PixPtr evenBackground(const Page& page, const Histogram& histogram, const orvalle_scan_api::IE_AUTOTHRESHOLD& wanted) {
  constexpr int kInkBelow = 60;
  constexpr int kPaperValue = 220;
  const int tileX = std::clamp<int>(wanted.first[0], 16, 200);
  const int tileY = std::clamp<int>(wanted.first[1], 16, 200);
  const int smoothX = std::clamp<int>(wanted.second[0], 0, 8);
  const int smoothY = std::clamp<int>(wanted.second[1], 0, 8);
  // The library averages the map of tiles over so many of them to either side.
  const auto isWideEnough = [](int sidePx, int tilePx, int tiles) {
    return sidePx / tilePx >= std::max(4, 2 * tiles + 2);
  };
  if (!isWideEnough(page.widthPx, tileX, smoothX) || !isWideEnough(page.heightPx, tileY, smoothY)) return nullptr;
  std::uint64_t bright = 0;
  for (std::size_t i = kInkBelow + 20; i < 256; ++i) bright += histogram[i];
  const std::uint64_t all = static_cast<std::uint64_t>(page.widthPx) * static_cast<std::uint64_t>(page.heightPx);
  if (bright * 5 < all * 4) return nullptr;
  return owned(pixBackgroundNorm(grayPix(page).get(), nullptr, nullptr, tileX, tileY, kInkBelow, tileX * tileY / 3,
                                 kPaperValue, smoothX, smoothY));
}

void reduceColor(Page& page) {
  PageForm form = page;
  form.bitsPerPixel = 8;
  Page gray(form);
  for (int y = 0; y < page.heightPx; ++y) {
    const std::uint8_t* from = page.line(y);
    std::uint8_t* const to = gray.line(y);
    for (int x = 0; x < page.widthPx; ++x) to[x] = luma(from + 3 * static_cast<std::ptrdiff_t>(x));
  }
  page = std::move(gray);
}

}  // namespace

bool reduceToGray(Page& page, const Request& request) {
  reduceColor(page);
  // For a mono page the shift becomes part of the threshold.
  if (const int shift = request.target() == Target::Gray ? grayShift(request) : 0; shift != 0) {
    for (std::size_t i = 0; i < page.pixelBytes(); ++i) {
      page.pixels[i] = static_cast<std::uint8_t>(std::clamp(page.pixels[i] + shift, 0, 255));
    }
  }
  return true;
}

bool reduceToMono(Page& page, const Request& request) {
  const orvalle_scan_api::_IE_PARAM& param = request.param;
  const bool isManual = !param.doAutoThreshold && param.threshold >= 1 && param.threshold <= 254;
  int threshold = param.threshold;
  if (!isManual) {
    Histogram histogram = histogramOf(page);
    if (param.doAutoThreshold) {
      if (const PixPtr even = evenBackground(page, histogram, param.autoThreshold)) {
        takeGray(*even, page);
        histogram = histogramOf(page);
      }
    }
    threshold = automaticThreshold(histogram);
    // The threshold has followed the brightness that the tone was given, which would be without effect.
    if (param.doToneAdjust) threshold -= param.toneAdjust.brightness - 128;
  }
  threshold = std::clamp(threshold - grayShift(request), 1, 255);
  page = monoPage(page, *inkBelow(page, threshold));
  return true;
}

bool diffuse(Page& page, const Request&) {
  page = monoPage(page, *owned(pixDitherToBinary(grayPix(page).get())));
  return true;
}

}  // namespace image_enhance
