// Colour drop: ink of one hue, or of any, vanishes; black, grey and the paper stay.
#include <cmath>
#include <cstdlib>

#include "histogram.h"
#include "steps.h"

namespace image_enhance {
namespace {

// How coloured a pixel is, and in which direction, from its strongest and weakest channel.
struct Hue {
  int brightest;
  int chroma;   // 0: none, and then degrees means nothing
  int degrees;  // 0 red, 120 green, 240 blue
};

Hue hueOf(int blue, int green, int red) {
  const int brightest = std::max({blue, green, red});
  const int chroma = brightest - std::min({blue, green, red});
  if (chroma == 0) return {brightest, 0, 0};
  const int sector = brightest == red     ? 60 * (green - blue) / chroma
                     : brightest == green ? 120 + 60 * (blue - red) / chroma
                                          : 240 + 60 * (red - green) / chroma;
  return {brightest, chroma, sector < 0 ? sector + 360 : sector};
}

int distance(int degreesA, int degreesB) {
  const int apart = std::abs(degreesA - degreesB);
  return std::min(apart, 360 - apart);
}

// How much of a pixel is coloured ink, 0 to 256. Pale pixels count from little chroma on, so that no rim stays; dark
// ones need much, so that black text survives under a stamp.
int inkShare(const Hue& hue) {
  const int least = 40 - 30 * (hue.brightest - 40) / 215;
  if (hue.chroma <= least) return 0;
  return hue.chroma >= 2 * least ? 256 : 256 * (hue.chroma - least) / least;
}

void mix(std::uint8_t* bgr, const Color& paper, int share) {
  const int towards[3] = {paper.blue, paper.green, paper.red};
  for (int i = 0; i < 3; ++i) bgr[i] = static_cast<std::uint8_t>(bgr[i] + (towards[i] - bgr[i]) * share / 256);
}

}  // namespace

// flag: dropped ink takes the colour of the paper; without it, white.
bool dropColor(Page& page, const Request& request) {
  constexpr int kLeastChroma = 10;  // less is a grey, whatever its hue
  const orvalle_scan_api::IE_COLORDROP& drop = request.param.colorDrop;
  const Color paper = drop.flag != 0 ? paperColor(page) : Color{};
  const Hue wanted = hueOf(drop.blue, drop.green, drop.red);
  const int range = std::clamp(drop.range, 0, 255);
  // A grey has no hue: what is dropped then is what looks like it.
  const bool isGray = drop.isChromatic == 0 && wanted.chroma < kLeastChroma;
  bool hasChanged = false;
  for (int y = 0; y < page.heightPx; ++y) {
    std::uint8_t* at = page.line(y);
    for (int x = 0; x < page.widthPx; ++x, at += 3) {
      int share = 0;
      if (isGray) {
        const bool isNear = std::abs(at[0] - drop.blue) <= range && std::abs(at[1] - drop.green) <= range &&
                            std::abs(at[2] - drop.red) <= range;
        share = isNear ? 256 : 0;
      } else {
        const int chroma = std::max({at[0], at[1], at[2]}) - std::min({at[0], at[1], at[2]});
        if (chroma < kLeastChroma) continue;
        const Hue hue = hueOf(at[0], at[1], at[2]);
        if (drop.isChromatic == 0 && distance(hue.degrees, wanted.degrees) > range) continue;
        share = inkShare(hue);
      }
      if (share == 0) continue;
      mix(at, paper, share);
      hasChanged = true;
    }
  }
  return hasChanged;
}

}  // namespace image_enhance
