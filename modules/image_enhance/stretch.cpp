#include "stretch.h"

#include <cmath>
#include <new>
#include <vector>

#include "pix.h"

namespace image_enhance {
namespace {

// The pixels that one pixel of the result covers along one side: as many as the sides' ratio tells, and never less than
// the width of one, which lies between two neighbours then and so passes smoothly from the one to the other.
struct Cover {
  int first;
  std::vector<float> shares;  // all of them together 1
};

std::vector<Cover> coversOf(int fromPx, int toPx) {
  const double ratio = static_cast<double>(fromPx) / toPx;
  const double half = std::max(ratio, 1.0) / 2;
  std::vector<Cover> covers;
  covers.reserve(static_cast<std::size_t>(toPx));
  for (int i = 0; i < toPx; ++i) {
    const double middle = (i + 0.5) * ratio;
    const double begin = std::max(middle - half, 0.0);
    const double end = std::min(middle + half, static_cast<double>(fromPx));
    Cover cover{std::min(static_cast<int>(begin), fromPx - 1), {}};
    for (int at = cover.first; at < end; ++at) {
      const double covered = std::min(at + 1.0, end) - std::max(static_cast<double>(at), begin);
      cover.shares.push_back(static_cast<float>(covered / (end - begin)));
    }
    covers.push_back(std::move(cover));
  }
  return covers;
}

}  // namespace

Page stretched(const Page& page, int widthPx, int heightPx) {
  if (page.isMono()) {
    // For a moment the page has eight times its size.
    if (page.pixelBytes() > kMaxPageBytes / 8) throw std::bad_alloc();
    return monoPage(page, *inkBelow(stretched(grayOf(page), widthPx, heightPx), 128));
  }
  PageForm form = page;
  form.widthPx = widthPx;
  form.heightPx = heightPx;
  Page result(form);
  const auto channels = static_cast<std::size_t>(page.channels());
  const std::vector<Cover> columns = coversOf(page.widthPx, widthPx);
  std::vector<float> line(page.lineBytes());
  int y = 0;
  for (const Cover& rows : coversOf(page.heightPx, heightPx)) {
    std::fill(line.begin(), line.end(), 0.0F);
    int from = rows.first;
    for (const float share : rows.shares) {
      const std::uint8_t* const source = page.line(from++);
      for (std::size_t i = 0; i < line.size(); ++i) line[i] += share * static_cast<float>(source[i]);
    }
    std::uint8_t* to = result.line(y++);
    for (const Cover& cover : columns) {
      for (std::size_t channel = 0; channel < channels; ++channel) {
        const float* at = &line[static_cast<std::size_t>(cover.first) * channels + channel];
        float sum = 0.5F;
        for (const float share : cover.shares) {
          sum += share * *at;
          at += channels;
        }
        *to++ = static_cast<std::uint8_t>(sum);
      }
    }
  }
  return result;
}

}  // namespace image_enhance
