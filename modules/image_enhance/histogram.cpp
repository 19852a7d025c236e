#include "histogram.h"

#include <algorithm>
#include <cstdlib>

namespace image_enhance {
namespace {

constexpr int kDarkestPaper = 128;
constexpr int kPaperGrain = 8;  // levels about the paper's own that belong to it

}  // namespace

Histogram histogramOf(const Page& page) {
  // Two tables, taken in turn: equal neighbours, which paper is full of, would wait for one another's count.
  std::array<Histogram, 2> counts{};
  for (int y = 0; y < page.heightPx; ++y) {
    const std::uint8_t* at = page.line(y);
    if (page.isColor()) {
      for (int x = 0; x < page.widthPx; ++x, at += 3) ++counts[static_cast<unsigned>(x) % 2][luma(at)];
    } else {
      for (int x = 0; x < page.widthPx; ++x) ++counts[static_cast<unsigned>(x) % 2][at[x]];
    }
  }
  for (std::size_t i = 0; i < 256; ++i) counts[0][i] += counts[1][i];
  return counts[0];
}

int automaticThreshold(const Histogram& histogram, int distinctLevels) {
  double total = 0;
  double sum = 0;
  for (std::size_t i = 0; i < 256; ++i) {
    total += histogram[i];
    sum += static_cast<double>(i) * histogram[i];
  }
  double darkCount = 0;
  double darkSum = 0;
  double best = 0;
  double bestDistance = 0;
  int first = 0;
  int last = 0;
  for (std::size_t i = 0; i < 255; ++i) {
    darkCount += histogram[i];
    darkSum += static_cast<double>(i) * histogram[i];
    const double brightCount = total - darkCount;
    if (darkCount == 0 || brightCount == 0) continue;
    const double distance = (sum - darkSum) / brightCount - darkSum / darkCount;
    const double between = darkCount * brightCount * distance * distance;
    if (between > best) {
      best = between;
      bestDistance = distance;
      first = static_cast<int>(i);
    }
    // Levels that no pixel has leave the value as it was: the threshold stands in their middle.
    if (between == best) last = static_cast<int>(i);
  }
  return bestDistance < distinctLevels ? 128 : (first + last) / 2 + 1;
}

int paperLevel(const Histogram& histogram) {
  std::uint64_t total = 0;
  for (const std::uint32_t count : histogram) total += count;
  std::uint64_t most = 0;
  int level = 255;
  for (int i = kDarkestPaper; i < 256; ++i) {
    std::uint64_t around = 0;
    for (int j = std::max(0, i - 2); j <= std::min(255, i + 2); ++j) around += histogram[static_cast<std::size_t>(j)];
    if (around > most) {
      most = around;
      level = i;
    }
  }
  return most * 20 >= total ? level : 255;
}

Color paperColor(const Page& page) {
  if (page.isMono()) return {};
  const int level = paperLevel(histogramOf(page));
  const auto gray = static_cast<std::uint8_t>(level);
  if (!page.isColor()) return {gray, gray, gray};
  std::uint64_t sums[3] = {};
  std::uint64_t count = 0;
  for (int y = 0; y < page.heightPx; y += 2) {  // half of the paper tells its colour as well
    const std::uint8_t* at = page.line(y);
    for (int x = 0; x < page.widthPx; ++x, at += 3) {
      if (std::abs(luma(at) - level) > kPaperGrain) continue;
      for (std::size_t i = 0; i < 3; ++i) sums[i] += at[i];
      ++count;
    }
  }
  if (count == 0) return {};
  const auto mean = [&](std::size_t i) { return static_cast<std::uint8_t>((sums[i] + count / 2) / count); };
  return {mean(0), mean(1), mean(2)};
}

}  // namespace image_enhance
