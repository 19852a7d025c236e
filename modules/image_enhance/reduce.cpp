// From colour to grey, from either to mono by a threshold or by error diffusion.
#include "background.h"
#include "histogram.h"
#include "pix.h"
#include "steps.h"

namespace image_enhance {
namespace {

// Brightness that is meant for the reduced page alone: an automatic-colour page has its own.
int grayShift(const Request& request) {
  return request.param.colorClass == 0 && request.param.doToneAdjust ? request.param.grayBrightness - 128 : 0;
}

}  // namespace

bool reduceToGray(Page& page, const Request& request) {
  page = grayOf(page);
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
    int distinctLevels = kDistinctLevels;
    if (param.doAutoThreshold) {
      const orvalle_scan_api::IE_AUTOTHRESHOLD& wanted = param.autoThreshold;
      whitenPaper(page, wanted.first[0], wanted.first[1], wanted.second[1]);
      distinctLevels = std::clamp<int>(wanted.second[0], 1, 50) * 255 / 100;
    }
    threshold = automaticThreshold(histogramOf(page), distinctLevels);
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
