#include "picture.h"

#include <algorithm>
#include <cstring>

namespace e2e {

std::string difference(const Picture& expected, const Picture& actual) {
  const auto size = [](const Picture& p) {
    return std::to_string(p.widthPx) + " x " + std::to_string(p.heightPx) + " with " + std::to_string(p.channels) +
           " channel(s)";
  };
  if (size(expected) != size(actual)) return size(expected) + " expected, but it is " + size(actual);
  const auto [mine, theirs] =
      std::mismatch(expected.pixels.begin(), expected.pixels.end(), actual.pixels.begin(), actual.pixels.end());
  if (mine == expected.pixels.end()) return "";
  const auto index = static_cast<std::size_t>(mine - expected.pixels.begin());
  const std::size_t line = index / expected.lineBytes();
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < expected.pixels.size(); ++i) wrong += expected.pixels[i] != actual.pixels[i];
  return std::to_string(wrong) + " samples differ, the first in line " + std::to_string(line) + ", byte " +
         std::to_string(index % expected.lineBytes()) + ": " + std::to_string(*mine) + " expected, but it is " +
         std::to_string(*theirs);
}

Picture turnedHalfway(const Picture& picture) {
  Picture turned = picture;
  for (int y = 0; y < picture.heightPx; ++y) {
    for (int x = 0; x < picture.widthPx; ++x) {
      std::memcpy(turned.at(picture.widthPx - 1 - x, picture.heightPx - 1 - y), picture.at(x, y),
                  static_cast<std::size_t>(picture.channels));
    }
  }
  return turned;
}

Picture cutOut(const Picture& picture, int left, int top, int widthPx, int heightPx) {
  Picture cut(widthPx, heightPx, picture.channels, picture.dpi);
  for (int y = 0; y < heightPx; ++y) std::memcpy(cut.at(0, y), picture.at(left, top + y), cut.lineBytes());
  return cut;
}

Picture withoutIdleColor(const Picture& picture) {
  if (picture.channels == 1) return picture;
  Picture grey(picture.widthPx, picture.heightPx, 1, picture.dpi);
  for (std::size_t i = 0; i < grey.pixels.size(); ++i) {
    const std::uint8_t* rgb = picture.pixels.data() + 3 * i;
    if (rgb[0] != rgb[1] || rgb[1] != rgb[2]) return picture;
    grey.pixels[i] = rgb[0];
  }
  return grey;
}

Picture meansOf(const Picture& grey, int squarePx) {
  Picture means(grey.widthPx / squarePx, grey.heightPx / squarePx, 1, grey.dpi / squarePx);
  for (int y = 0; y < means.heightPx; ++y) {
    for (int x = 0; x < means.widthPx; ++x) {
      int sum = 0;
      for (int i = 0; i < squarePx * squarePx; ++i) {
        sum += *grey.at(x * squarePx + i % squarePx, y * squarePx + i / squarePx);
      }
      *means.at(x, y) = static_cast<std::uint8_t>(sum / (squarePx * squarePx));
    }
  }
  return means;
}

Picture onWhite(const Picture& picture, int widthPx, int heightPx) {
  Picture white(widthPx, heightPx, picture.channels, picture.dpi);
  const auto bytes = static_cast<std::size_t>(std::min(widthPx, picture.widthPx) * picture.channels);
  for (int y = 0; y < std::min(heightPx, picture.heightPx); ++y) std::memcpy(white.at(0, y), picture.at(0, y), bytes);
  return white;
}

Picture blackAndWhite(const Picture& grey, int level) {
  Picture cut = grey;
  for (auto& sample : cut.pixels) sample = sample < level ? 0 : 255;
  return cut;
}

}  // namespace e2e
