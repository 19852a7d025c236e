// Colour drop: ink of one hue, or of any, vanishes; black, grey and the paper stay.
#include <array>
#include <cstdlib>
#include <numeric>
#include <tuple>

#include "histogram.h"
#include "steps.h"

namespace image_enhance {
namespace {

constexpr int kLeastChroma = 10;   // less is a grey, whatever its hue
constexpr int kMeasuredLines = 2;  // every second line tells how bright the inks are

// How coloured a pixel is, and in which direction, from its strongest and weakest channel.
struct Hue {
  int brightest;
  int chroma;
  int degrees;  // 0 red, 120 green, 240 blue
};

// 2^24 / n and a little more: the quotients of numbers up to 60 * 255 by n come out as those of a division.
constexpr auto kReciprocals = [] {
  std::array<int, 256> reciprocals{};
  for (int n = 1; n < 256; ++n) reciprocals[static_cast<std::size_t>(n)] = (1 << 24) / n + 1;
  return reciprocals;
}();

// bgr: not of three equal channels.
Hue hueOf(const std::uint8_t* bgr, int brightest, int chroma) {
  const int blue = bgr[0];
  const int green = bgr[1];
  const int red = bgr[2];
  const int middle = brightest == red ? 0 : brightest == green ? 120 : 240;
  const int lean = brightest == red ? green - blue : brightest == green ? blue - red : red - green;
  const int off = 60 * std::abs(lean) * kReciprocals[static_cast<std::size_t>(chroma)] >> 24;
  const int degrees = lean < 0 ? middle - off : middle + off;
  return {brightest, chroma, degrees < 0 ? degrees + 360 : degrees};
}

int distance(int degreesA, int degreesB) {
  const int apart = std::abs(degreesA - degreesB);
  return std::min(apart, 360 - apart);
}

// The chroma up to which a pixel of this brightness is no ink. Pale pixels count from little chroma on, so that no rim
// stays; dark ones need much, so that black text survives under a stamp.
constexpr int leastChromaOf(int brightest) { return 40 - 30 * (brightest - 40) / 215; }
static_assert(leastChromaOf(255) == kLeastChroma);

// How much of a pixel is coloured ink, 1 to 256, when it is any at all.
int inkShare(const Hue& hue) {
  const int least = leastChromaOf(hue.brightest);
  return hue.chroma >= 2 * least ? 256 : 256 * (hue.chroma - least) / least;
}

// How bright the dropped inks are, by hue: dark blue and pale pink are both an ink that has the paper's place, and half
// as bright as its ink is a pixel that black text covers half. The brightness of the eye, which JPEG keeps for every
// pixel; the colour of a stamp it smears over the letters beneath.
class InkLevels {
 public:
  void count(const Hue& hue, std::uint8_t level) { ++counts_[sectorOf(hue)][level]; }
  void finish() {
    constexpr std::uint32_t kLeastPixels = 100 / kMeasuredLines;  // fewer are stray fringes
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

// What the record wants dropped, of the colours that have a hue.
struct Wanted {
  int degrees;
  int range;
};

constexpr int kStretchPx = 16;

// Whether no pixel of a stretch can be coloured, since all its values are alike: most paper is told apart so at little
// cost.
bool isPlain(const std::uint8_t* bgr) {
  std::uint8_t least = 255;
  std::uint8_t most = 0;
  for (int i = 0; i < 3 * kStretchPx; ++i) {
    least = std::min(least, bgr[i]);
    most = std::max(most, bgr[i]);
  }
  return most - least <= kLeastChroma;
}

// Calls visit(pixel, hue) for every pixel that is ink of a hue to drop, in every lineStep-th line.
template <class Visit>
void forEachDropped(Page& page, const Wanted& wanted, int lineStep, Visit visit) {
  for (int y = 0; y < page.heightPx; y += lineStep) {
    std::uint8_t* at = page.line(y);
    for (int x = 0; x < page.widthPx; ++x, at += 3) {
      if (x % kStretchPx == 0 && x + kStretchPx <= page.widthPx && isPlain(at)) {
        x += kStretchPx - 1;
        at += 3 * (kStretchPx - 1);
        continue;
      }
      const int brightest = std::max(std::max(at[0], at[1]), at[2]);
      const int chroma = brightest - std::min(std::min(at[0], at[1]), at[2]);
      if (chroma <= leastChromaOf(brightest)) continue;
      const Hue hue = hueOf(at, brightest, chroma);
      if (distance(hue.degrees, wanted.degrees) <= wanted.range) visit(at, hue);
    }
  }
}

bool dropHue(Page& page, const Wanted& wanted, const Color& paper) {
  InkLevels levels;
  forEachDropped(page, wanted, kMeasuredLines, [&](const std::uint8_t* pixel, const Hue& hue) {
    if (inkShare(hue) == 256) levels.count(hue, luma(pixel));
  });
  levels.finish();
  bool hasChanged = false;
  forEachDropped(page, wanted, 1, [&](std::uint8_t* pixel, const Hue& hue) {
    mix(pixel, paper, std::min(256, 256 * luma(pixel) / levels.of(hue)), inkShare(hue));
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
  const std::uint8_t bgr[3] = {drop.blue, drop.green, drop.red};
  const int brightest = std::max({bgr[0], bgr[1], bgr[2]});
  const int chroma = brightest - std::min({bgr[0], bgr[1], bgr[2]});
  if (drop.isChromatic != 0) return dropHue(page, {0, 180}, paper);
  if (chroma < kLeastChroma) return dropGray(page, drop, paper);
  return dropHue(page, {hueOf(bgr, brightest, chroma).degrees, std::clamp(drop.range, 0, 180)}, paper);
}

}  // namespace image_enhance
