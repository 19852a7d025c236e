#include "image/judge.h"

#include <algorithm>
#include <cstddef>

namespace vscan {
namespace {

// Shares of a million pixels or samples, by level.
constexpr std::size_t kDirtPerMillion[kJudgeLevels] = {50, 100, 200, 500, 1000};
constexpr std::size_t kColorPerMillion[kJudgeLevels] = {5000, 2000, 500, 200, 50};
constexpr std::size_t kMiddlePerMillion[kJudgeLevels] = {200'000, 100'000, 50'000, 20'000, 5'000};

constexpr std::uint8_t kDark = 160;
constexpr int kColorful = 48;  // between the strongest and the weakest channel
constexpr std::uint8_t kMiddleFrom = 64, kMiddleTo = 192;

std::size_t clamped(int level) { return static_cast<std::size_t>(std::clamp(level, 0, kJudgeLevels - 1)); }

bool isMoreThan(std::size_t count, std::size_t perMillion, std::size_t all) {
  return count * 1'000'000 > perMillion * all;
}

}  // namespace

bool isBlank(const Raster& raster, int level) {
  const auto dark = std::count_if(raster.pixels.begin(), raster.pixels.end(), [](auto pixel) { return pixel < kDark; });
  return !isMoreThan(static_cast<std::size_t>(dark), kDirtPerMillion[clamped(level)], raster.pixels.size());
}

PageColor judgeColor(const Raster& raster, int colorLevel, int greyLevel) {
  std::size_t colorful = 0, middle = 0;
  const auto step = static_cast<std::size_t>(raster.channels);
  for (std::size_t i = 0; i < raster.pixels.size(); i += step) {
    const auto [low, high] = std::minmax_element(raster.pixels.begin() + static_cast<std::ptrdiff_t>(i),
                                                 raster.pixels.begin() + static_cast<std::ptrdiff_t>(i + step));
    if (*high - *low >= kColorful) ++colorful;
    if (*low >= kMiddleFrom && *high <= kMiddleTo) ++middle;
  }
  const std::size_t all = raster.pixels.size() / step;
  if (isMoreThan(colorful, kColorPerMillion[clamped(colorLevel)], all)) return PageColor::Color;
  return isMoreThan(middle, kMiddlePerMillion[clamped(greyLevel)], all) ? PageColor::Grey : PageColor::Mono;
}

}  // namespace vscan
