// Colour drop: ink of one hue, or of any, vanishes; black, grey and the paper stay.
#include <array>
#include <cstdlib>
#include <numeric>
#include <tuple>

#include "histogram.h"
#include "steps.h"

namespace image_enhance {
namespace {

constexpr int kLeastChroma = 10;  // less is a grey, whatever its hue

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
  const int degrees = brightest == red     ? 60 * (green - blue) / chroma
                      : brightest == green ? 120 + 60 * (blue - red) / chroma
                                           : 240 + 60 * (red - green) / chroma;
  return {brightest, chroma, degrees < 0 ? degrees + 360 : degrees};
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

// How bright the dropped inks are in their strongest channel, by hue: dark blue and pale pink are both an ink that has
// the paper's place, and half as bright as its ink is a pixel that black text covers half.
class InkLevels {
 public:
  void count(const Hue& hue) { ++counts_[sectorOf(hue)][static_cast<std::size_t>(hue.brightest)]; }
  void finish() {
    constexpr std::uint32_t kLeastPixels = 100;  // fewer are stray fringes
    constexpr std::size_t kSectors = std::tuple_size_v<decltype(counts_)>;
    for (std::size_t sector = 0; sector < kSectors; ++sector) {
      // With both neighbours: an ink whose hue lies where two sectors meet is one ink.
      Histogram around = counts_[sector];
      for (const std::size_t other : {(sector + 1) % kSectors, (sector + kSectors - 1) % kSectors}) {
        for (std::size_t i = 0; i < around.size(); ++i) around[i] += counts_[other][i];
      }
      const std::uint32_t total = std::accumulate(around.begin(), around.end(), 0u);
      std::uint32_t below = 0;
      int level = 0;
      while (level < 255 && (below += around[static_cast<std::size_t>(level)]) < total / 10) ++level;
      levels_[sector] = total < kLeastPixels ? 255 : std::max(level, 1);
    }
  }
  int of(const Hue& hue) const { return levels_[sectorOf(hue)]; }

 private:
  static std::size_t sectorOf(const Hue& hue) { return static_cast<std::size_t>((hue.degrees + 15) % 360 / 30); }

  std::array<Histogram, 12> counts_{};
  std::array<int, 12> levels_{};
};

void mix(std::uint8_t* bgr, const Color& paper, int brightness, int share) {
  const int towards[3] = {paper.blue * brightness / 256, paper.green * brightness / 256, paper.red * brightness / 256};
  for (int i = 0; i < 3; ++i) bgr[i] = static_cast<std::uint8_t>(bgr[i] + (towards[i] - bgr[i]) * share / 256);
}

// Calls visit(pixel, hue, share) for every pixel of which a share, of 256, is ink of a hue to drop.
template <class Visit>
void forEachDropped(Page& page, const orvalle_scan_api::IE_COLORDROP& drop, Visit visit) {
  const int wanted = hueOf(drop.blue, drop.green, drop.red).degrees;
  const int range = drop.isChromatic != 0 ? 180 : std::clamp(drop.range, 0, 180);
  for (int y = 0; y < page.heightPx; ++y) {
    std::uint8_t* at = page.line(y);
    for (int x = 0; x < page.widthPx; ++x, at += 3) {
      if (std::max({at[0], at[1], at[2]}) - std::min({at[0], at[1], at[2]}) < kLeastChroma) continue;
      const Hue hue = hueOf(at[0], at[1], at[2]);
      if (distance(hue.degrees, wanted) > range) continue;
      if (const int share = inkShare(hue); share > 0) visit(at, hue, share);
    }
  }
}

bool dropHue(Page& page, const orvalle_scan_api::IE_COLORDROP& drop, const Color& paper) {
  InkLevels levels;
  forEachDropped(page, drop, [&](std::uint8_t*, const Hue& hue, int share) {
    if (share == 256) levels.count(hue);
  });
  levels.finish();
  bool hasChanged = false;
  forEachDropped(page, drop, [&](std::uint8_t* pixel, const Hue& hue, int share) {
    mix(pixel, paper, std::min(256, 256 * hue.brightest / levels.of(hue)), share);
    hasChanged = true;
  });
  return hasChanged;
}

// A grey has no hue: what is dropped then is what looks like it.
bool dropGray(Page& page, const orvalle_scan_api::IE_COLORDROP& drop, const Color& paper) {
  const int range = std::clamp(drop.range, 0, 255);
  bool hasChanged = false;
  for (int y = 0; y < page.heightPx; ++y) {
    std::uint8_t* at = page.line(y);
    for (int x = 0; x < page.widthPx; ++x, at += 3) {
      if (std::abs(at[0] - drop.blue) > range || std::abs(at[1] - drop.green) > range ||
          std::abs(at[2] - drop.red) > range) {
        continue;
      }
      mix(at, paper, 256, 256);
      hasChanged = true;
    }
  }
  return hasChanged;
}

}  // namespace

// flag: dropped ink takes the colour of the paper; without it, white.
bool dropColor(Page& page, const Request& request) {
  const orvalle_scan_api::IE_COLORDROP& drop = request.param.colorDrop;
  const Color paper = drop.flag != 0 ? paperColor(page) : Color{};
  const bool isGray = drop.isChromatic == 0 && hueOf(drop.blue, drop.green, drop.red).chroma < kLeastChroma;
  return isGray ? dropGray(page, drop, paper) : dropHue(page, drop, paper);
}

}  // namespace image_enhance
