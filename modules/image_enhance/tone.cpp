// Tone by hand and automatic tone: one table of 256 values for all channels, so that no colour changes its hue more
// than the curve itself asks for.
#include <array>
#include <cmath>

#include "histogram.h"
#include "steps.h"

namespace image_enhance {
namespace {

using Curve = std::array<std::uint8_t, 256>;

std::uint8_t levelOf(double zeroToOne) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(zeroToOne, 0.0, 1.0) * 255));
}

// Shadow becomes black and highlight white; then gamma, contrast about the middle grey, brightness.
Curve curveOf(const orvalle_scan_api::IE_TONEADJUST& tone) {
  const bool hasRange = tone.highlight > tone.shadow;  // a range that is none counts as the whole
  const double low = hasRange ? tone.shadow : 0;
  const double span = hasRange ? tone.highlight - tone.shadow : 255;
  const double exponent = tone.gamma > 0 ? 1 / std::clamp(tone.gamma, 0.1, 10.0) : 1;  // not a number: 1
  const double gain = std::exp2(2 * (tone.contrast - 128) / 127.0);                    // a quarter to four times
  const double shift = (tone.brightness - 128) / 255.0;
  Curve curve;
  for (std::size_t i = 0; i < curve.size(); ++i) {
    const double stretched = std::clamp((static_cast<double>(i) - low) / span, 0.0, 1.0);
    curve[i] = levelOf((std::pow(stretched, exponent) - 0.5) * gain + 0.5 + shift);
  }
  return curve;
}

// The level that so great a share of the pixels does not exceed.
int darkEnd(const Histogram& histogram, double share) {
  double wanted = 0;
  for (const std::uint32_t count : histogram) wanted += count * share;
  double below = 0;
  int level = 0;
  while (level < 255 && (below += histogram[static_cast<std::size_t>(level)]) < wanted) ++level;
  return level;
}

// What becomes white: the paper, grain included, which is a little darker than most of it. Where much is brighter than
// the level that is most frequent, that is no paper but a part of a picture, which would be washed out.
int whiteLevel(const Histogram& histogram) {
  constexpr int kDarkestWhite = 160;
  constexpr int kBrighterThanPaper = 16;
  const int paper = paperLevel(histogram);
  const bool isPicture = darkEnd(histogram, 0.95) > paper + kBrighterThanPaper;
  return std::max(kDarkestWhite, isPicture ? darkEnd(histogram, 0.995) : paper - 4);
}

// What becomes black: the darkest ink that matters, however pale it is. A page without ink, or a dark picture, is not
// stretched beyond what a page of the kind can have lost.
int blackLevel(const Histogram& histogram, int white) {
  constexpr int kBrightestBlack = 96;
  constexpr int kPalestInk = 64;  // levels below white
  const int black = darkEnd(histogram, 0.002);
  return black <= white - kPalestInk ? black : std::min(black, kBrightestBlack);
}

Curve curveOf(const Histogram& histogram) {
  const int white = whiteLevel(histogram);
  const int black = blackLevel(histogram, white);
  Curve curve;
  for (int i = 0; i < 256; ++i) {
    curve[static_cast<std::size_t>(i)] = levelOf(static_cast<double>(i - black) / (white - black));
  }
  return curve;
}

bool bend(const Curve& curve, Page& page) {
  bool isNeutral = true;
  for (std::size_t i = 0; i < curve.size(); ++i) isNeutral = isNeutral && curve[i] == i;
  if (isNeutral) return false;
  std::uint8_t* const pixels = page.pixels.get();
  for (std::size_t i = 0; i < page.pixelBytes(); ++i) pixels[i] = curve[pixels[i]];
  return true;
}

}  // namespace

bool adjustTone(Page& page, const Request& request) { return bend(curveOf(request.param.toneAdjust), page); }

bool stretchTone(Page& page, const Request&) { return bend(curveOf(histogramOf(page)), page); }

}  // namespace image_enhance
