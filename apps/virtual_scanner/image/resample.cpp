#include "image/resample.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vscan {
namespace {

constexpr int kWeightBits = 14;
constexpr std::uint32_t kOne = 1u << kWeightBits;

// The source pixels that make one target pixel; the weights add up to kOne.
struct Taps {
  int first = 0;
  std::vector<std::uint32_t> weights;
};

Taps normalised(int first, const std::vector<double>& shares) {
  double sum = 0;
  for (const double share : shares) sum += share;
  Taps taps{first, {}};
  std::uint32_t spent = 0;
  std::size_t largest = 0;
  for (std::size_t i = 0; i < shares.size(); ++i) {
    taps.weights.push_back(static_cast<std::uint32_t>(std::lround(shares[i] / sum * kOne)));
    spent += taps.weights.back();
    if (shares[i] > shares[largest]) largest = i;
  }
  taps.weights[largest] += kOne - spent;  // wraps to the right value also when too much was spent
  return taps;
}

std::vector<Taps> tapsFor(int sourcePx, double spanPx, int targetPx) {
  const double scale = spanPx / targetPx;
  std::vector<Taps> all;
  all.reserve(static_cast<std::size_t>(targetPx));
  for (int i = 0; i < targetPx; ++i) {
    // Downwards a target pixel covers [from, to) of the source; upwards it lies between two source centres.
    const double centre = (i + 0.5) * scale;
    const double from = scale >= 1 ? i * scale : centre - 0.5;
    const double to = scale >= 1 ? (i + 1) * scale : centre + 0.5;
    const int first = std::clamp(static_cast<int>(std::floor(from)), 0, sourcePx - 1);
    const int last = std::clamp(static_cast<int>(std::ceil(to)) - 1, first, sourcePx - 1);
    std::vector<double> shares;
    for (int s = first; s <= last; ++s) {
      shares.push_back(std::max(1e-9, std::min<double>(to, s + 1) - std::max<double>(from, s)));
    }
    all.push_back(normalised(first, shares));
  }
  return all;
}

template <int kChannels>
void resampleLine(const std::uint8_t* source, const std::vector<Taps>& taps, std::uint8_t* out) {
  for (const Taps& tap : taps) {
    const std::uint8_t* in = source + static_cast<std::size_t>(tap.first) * kChannels;
    std::array<std::uint32_t, kChannels> sums;
    sums.fill(kOne / 2);
    for (const std::uint32_t weight : tap.weights) {
      for (std::size_t c = 0; c < kChannels; ++c) sums[c] += weight * in[c];
      in += kChannels;
    }
    for (const std::uint32_t sum : sums) *out++ = static_cast<std::uint8_t>(sum >> kWeightBits);
  }
}

Raster resampleWidth(const Raster& source, double spanPx, int widthPx) {
  Raster target(widthPx, source.heightPx, source.channels);
  const auto taps = tapsFor(source.widthPx, spanPx, widthPx);
  const auto resampleOne = source.channels == 3 ? resampleLine<3> : resampleLine<1>;
  for (int y = 0; y < source.heightPx; ++y) resampleOne(source.line(y), taps, target.line(y));
  return target;
}

Raster resampleHeight(const Raster& source, double spanPx, int heightPx) {
  Raster target(source.widthPx, heightPx, source.channels);
  const auto taps = tapsFor(source.heightPx, spanPx, heightPx);
  const std::size_t bytes = source.lineBytes();
  std::vector<std::uint32_t> sums(bytes);
  for (int y = 0; y < heightPx; ++y) {
    const Taps& tap = taps[static_cast<std::size_t>(y)];
    std::fill(sums.begin(), sums.end(), kOne / 2);
    for (std::size_t t = 0; t < tap.weights.size(); ++t) {
      const std::uint8_t* in = source.line(tap.first + static_cast<int>(t));
      const std::uint32_t weight = tap.weights[t];
      for (std::size_t i = 0; i < bytes; ++i) sums[i] += weight * in[i];
    }
    std::uint8_t* out = target.line(y);
    for (std::size_t i = 0; i < bytes; ++i) out[i] = static_cast<std::uint8_t>(sums[i] >> kWeightBits);
  }
  return target;
}

}  // namespace

Raster resample(const Raster& source, Span span, int widthPx, int heightPx) {
  // The direction that leaves fewer pixels goes first.
  if (widthPx < source.widthPx) {
    return resampleHeight(resampleWidth(source, span.widthPx, widthPx), span.heightPx, heightPx);
  }
  return resampleWidth(resampleHeight(source, span.heightPx, heightPx), span.widthPx, widthPx);
}

}  // namespace vscan
