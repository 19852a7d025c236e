#include "background.h"

#include <array>
#include <vector>

namespace image_enhance {
namespace {

constexpr std::uint32_t kPaperPart = 4;     // at least a quarter of a tile is paper
constexpr double kDarkestPaperShare = 0.4;  // of the usual paper; darker tiles are ink

// Tiles of a page, each with the brightness of its paper; 0 is not known.
struct PaperMap {
  int columns;
  int rows;
  std::vector<float> levels;

  std::size_t index(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(column);
  }
  float& at(int column, int row) { return levels[index(column, row)]; }
};

// The brightness that a quarter of the pixels reach.
int brightQuarter(const Page& gray, int left, int top, int right, int bottom) {
  std::array<std::uint32_t, 256> counts{};
  for (int y = top; y < bottom; ++y) {
    const std::uint8_t* const line = gray.line(y);
    for (int x = left; x < right; ++x) ++counts[line[x]];
  }
  const std::uint32_t wanted = static_cast<std::uint32_t>((right - left) * (bottom - top)) / kPaperPart;
  std::uint32_t above = 0;
  int level = 255;
  while (level > 0 && (above += counts[static_cast<std::size_t>(level)]) <= wanted) --level;
  return level;
}

// The mean of the known tiles about one tile, itself included; 0 where there are none.
float meanAround(PaperMap& map, int column, int row, int reach) {
  float sum = 0;
  int count = 0;
  for (int r = std::max(0, row - reach); r <= std::min(map.rows - 1, row + reach); ++r) {
    for (int c = std::max(0, column - reach); c <= std::min(map.columns - 1, column + reach); ++c) {
      if (map.at(c, r) == 0) continue;
      sum += map.at(c, r);
      ++count;
    }
  }
  return count == 0 ? 0 : sum / static_cast<float>(count);
}

PaperMap measure(const Page& gray, int tileX, int tileY) {
  PaperMap map{(gray.widthPx + tileX - 1) / tileX, (gray.heightPx + tileY - 1) / tileY, {}};
  map.levels.resize(static_cast<std::size_t>(map.columns) * static_cast<std::size_t>(map.rows));
  for (int row = 0; row < map.rows; ++row) {
    for (int column = 0; column < map.columns; ++column) {
      map.at(column, row) = static_cast<float>(brightQuarter(gray, column * tileX, row * tileY,
                                                             std::min(gray.widthPx, (column + 1) * tileX),
                                                             std::min(gray.heightPx, (row + 1) * tileY)));
    }
  }
  return map;
}

void forgetInk(PaperMap& map) {
  std::vector<float> sorted = map.levels;
  const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
  std::nth_element(sorted.begin(), middle, sorted.end());
  const auto darkest = static_cast<float>(*middle * kDarkestPaperShare);
  for (float& level : map.levels) {
    if (level < darkest) level = 0;
  }
}

// From the known tiles outwards, one ring with each round.
void fillUnknown(PaperMap& map) {
  for (bool hasFilled = true; hasFilled;) {
    hasFilled = false;
    std::vector<float> filled = map.levels;
    for (int row = 0; row < map.rows; ++row) {
      for (int column = 0; column < map.columns; ++column) {
        if (map.at(column, row) != 0) continue;
        const float mean = meanAround(map, column, row, 1);
        filled[map.index(column, row)] = mean;
        hasFilled = hasFilled || mean != 0;
      }
    }
    map.levels = std::move(filled);
  }
}

void average(PaperMap& map, int reach) {
  std::vector<float> averaged(map.levels.size());
  for (int row = 0; row < map.rows; ++row) {
    for (int column = 0; column < map.columns; ++column) {
      averaged[map.index(column, row)] = meanAround(map, column, row, reach);
    }
  }
  map.levels = std::move(averaged);
}

// Where a pixel lies between the middles of two tiles: the first of them, and the share of the second.
struct Between {
  int first;
  float share;
};
Between between(int px, int tilePx, int tiles) {
  const float at = std::clamp((static_cast<float>(px) + 0.5F) / static_cast<float>(tilePx) - 0.5F, 0.0F,
                              static_cast<float>(tiles - 1));
  const int first = std::min(static_cast<int>(at), std::max(0, tiles - 2));
  return {first, at - static_cast<float>(first)};
}

// Values of one line between the middles of two tiles, in whose gains they have these shares.
void raise(std::uint8_t* __restrict line, const float* __restrict shares, int count, float left, float right) {
  for (int x = 0; x < count; ++x) {
    const float white = static_cast<float>(line[x]) * (left + (right - left) * shares[x]);
    line[x] = static_cast<std::uint8_t>(std::min(white, 255.0F));
  }
}

}  // namespace

void whitenPaper(Page& gray, int tileX, int tileY, int neighbours) {
  tileX = std::clamp(tileX, 16, 400);
  tileY = std::clamp(tileY, 16, 400);
  PaperMap map = measure(gray, tileX, tileY);
  forgetInk(map);
  fillUnknown(map);
  average(map, std::clamp(neighbours, 0, 8));
  for (float& level : map.levels) level = 255 / std::max(level, 16.0F);  // a gain from here on

  std::vector<float> shares(static_cast<std::size_t>(gray.widthPx));
  std::vector<int> ends(static_cast<std::size_t>(map.columns));  // of the pixels that lie right of each tile's middle
  for (int x = 0; x < gray.widthPx; ++x) {
    const auto [first, share] = between(x, tileX, map.columns);
    shares[static_cast<std::size_t>(x)] = share;
    ends[static_cast<std::size_t>(first)] = x + 1;
  }
  std::vector<float> gains(static_cast<std::size_t>(map.columns) + 1);
  for (int y = 0; y < gray.heightPx; ++y) {
    const Between row = between(y, tileY, map.rows);
    const int next = std::min(row.first + 1, map.rows - 1);
    for (int column = 0; column < map.columns; ++column) {
      gains[static_cast<std::size_t>(column)] =
          map.at(column, row.first) * (1 - row.share) + map.at(column, next) * row.share;
    }
    gains.back() = gains[gains.size() - 2];  // a map of one column
    std::uint8_t* const line = gray.line(y);
    int x = 0;
    for (std::size_t column = 0; column < ends.size() && x < gray.widthPx; ++column) {
      raise(line + x, &shares[static_cast<std::size_t>(x)], ends[column] - x, gains[column], gains[column + 1]);
      x = ends[column];
    }
  }
}

}  // namespace image_enhance
