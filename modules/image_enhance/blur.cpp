#include "blur.h"

#include <cmath>
#include <cstring>

namespace image_enhance {
namespace {

std::vector<std::uint16_t> gaussWeights(double sigmaPx) {
  const double sigma = std::clamp(sigmaPx, 0.3, 16.0);
  const auto reach = static_cast<std::size_t>(std::ceil(2.5 * sigma));
  std::vector<double> exact(reach + 1);
  double sum = 0;
  for (std::size_t i = 0; i <= reach; ++i) {
    exact[i] = std::exp(-0.5 * static_cast<double>(i * i) / (sigma * sigma));
    sum += i == 0 ? exact[i] : 2 * exact[i];
  }
  std::vector<std::uint16_t> weights(reach + 1);
  int left = 256;
  for (std::size_t i = 1; i <= reach; ++i) {
    weights[i] = static_cast<std::uint16_t>(std::lround(256 * exact[i] / sum));
    left -= 2 * weights[i];
  }
  weights[0] = static_cast<std::uint16_t>(left);
  return weights;
}

// What is written lies apart from what is read, so that many values are worked on at a time.
template <class From, class Sum>
void weigh(const From* __restrict from, unsigned weight, Sum* __restrict sums, std::size_t count) {
  for (std::size_t x = 0; x < count; ++x) sums[x] = static_cast<Sum>(weight * from[x]);
}

template <class From, class Sum>
void addWeighted(const From* before, const From* after, unsigned weight, Sum* __restrict sums, std::size_t count) {
  for (std::size_t x = 0; x < count; ++x) {
    sums[x] = static_cast<Sum>(sums[x] + weight * (before[x] + unsigned{after[x]}));
  }
}

void roundOff(const std::uint32_t* __restrict sums, std::uint8_t* __restrict out, std::size_t count) {
  for (std::size_t x = 0; x < count; ++x) out[x] = static_cast<std::uint8_t>((sums[x] + (1u << 15)) >> 16);
}

}  // namespace

Blur::Blur(const Page& page, double sigmaMm)
    : page_(page),
      sideways_(gaussWeights(sigmaMm / 25.4 * page.dpi(Along::Width))),
      downwards_(gaussWeights(sigmaMm / 25.4 * page.dpi(Along::Height))),
      ring_(2 * downwards_.size() - 1, Line(page.lineBytes())),
      padded_(page.lineBytes() + 2 * (sideways_.size() - 1) * static_cast<std::size_t>(page.channels())),
      sums_(page.lineBytes()),
      line_(page.lineBytes()) {}

void Blur::blurSideways(int y, Line& out) {
  const auto channels = static_cast<std::size_t>(page_.channels());
  const std::size_t lineBytes = page_.lineBytes();
  const std::size_t reach = sideways_.size() - 1;
  const std::uint8_t* const line = page_.line(y);
  for (std::size_t i = 0; i < reach; ++i) {
    std::memcpy(&padded_[i * channels], line, channels);
    std::memcpy(&padded_[(reach + i) * channels + lineBytes], line + lineBytes - channels, channels);
  }
  std::memcpy(&padded_[reach * channels], line, lineBytes);

  const std::uint8_t* const center = &padded_[reach * channels];
  weigh(center, sideways_[0], out.data(), lineBytes);
  for (std::size_t i = 1; i <= reach; ++i) {
    addWeighted(center - i * channels, center + i * channels, sideways_[i], out.data(), lineBytes);
  }
}

const std::uint8_t* Blur::nextLine() {
  const int reach = static_cast<int>(downwards_.size()) - 1;
  const int size = static_cast<int>(ring_.size());
  // The line beyond the last one is the last one again, and so is the one before the first.
  while (read_ <= std::min(next_ + reach, page_.heightPx - 1)) {
    blurSideways(read_, ring_[static_cast<std::size_t>(read_ % size)]);
    ++read_;
  }
  const auto lineAt = [&](int y) -> const Line& {
    return ring_[static_cast<std::size_t>(std::clamp(y, 0, page_.heightPx - 1) % size)];
  };
  const std::size_t lineBytes = page_.lineBytes();
  weigh(lineAt(next_).data(), downwards_[0], sums_.data(), lineBytes);
  for (int i = 1; i <= reach; ++i) {
    addWeighted(lineAt(next_ - i).data(), lineAt(next_ + i).data(), downwards_[static_cast<std::size_t>(i)],
                sums_.data(), lineBytes);
  }
  roundOff(sums_.data(), line_.data(), lineBytes);
  ++next_;
  return line_.data();
}

}  // namespace image_enhance
