#include "sheets.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace e2e {
namespace {

constexpr std::uint8_t kInk = 60;
constexpr std::uint8_t kEdge = 150;

int between(std::mt19937& random, int low, int high) {
  return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
}

void fill(Picture& picture, int left, int top, int right, int bottom, std::uint8_t value) {
  for (int y = std::max(top, 0); y < std::min(bottom, picture.heightPx); ++y) {
    for (int x = std::max(left, 0); x < std::min(right, picture.widthPx); ++x) {
      std::fill_n(picture.at(x, y), picture.channels, value);
    }
  }
}

// One letter: a few strokes on a grid of four by six cells.
void drawLetter(Picture& picture, int left, int top, int cell, std::mt19937& random) {
  const auto stroke = [&](int x, int y, int width, int height) {
    fill(picture, left + x * cell - 1, top + y * cell - 1, left + (x + width) * cell + 1, top + (y + height) * cell + 1,
         kEdge);
    fill(picture, left + x * cell, top + y * cell, left + (x + width) * cell, top + (y + height) * cell, kInk);
  };
  const auto shape = random();
  if ((shape & 1) != 0) stroke(0, 0, 1, 6);
  if ((shape & 2) != 0) stroke(3, 2, 1, 4);
  if ((shape & 4) != 0) stroke(0, 2, 4, 1);
  if ((shape & 8) != 0) stroke(0, 5, 4, 1);
  if ((shape & 15) == 0) stroke(1, 0, 1, 6);
}

void drawWords(Picture& picture, unsigned seed) {
  std::mt19937 random(seed);
  const int cell = std::max(1, static_cast<int>(picture.dpi) / 100);
  const int margin = picture.widthPx / 10;
  for (int y = margin; y + 8 * cell < picture.heightPx - margin / 2; y += 12 * cell) {
    const int end = picture.widthPx - margin - between(random, 0, margin);
    for (int x = margin; x + 5 * cell < end; x += 5 * cell) {
      if (between(random, 0, 5) != 0) drawLetter(picture, x, y, cell, random);
    }
  }
  // A mark in one corner tells which way up the sheet lies.
  fill(picture, 2, 2, 2 + picture.widthPx / 8, 2 + picture.heightPx / 30, kInk);
}

}  // namespace

Picture drawText(int widthPx, int heightPx, double dpi, unsigned seed) {
  Picture picture(widthPx, heightPx, 1, dpi);
  drawWords(picture, seed);
  return picture;
}

Picture drawRuns(int widthPx, int heightPx, double dpi, unsigned seed) {
  Picture picture(widthPx, heightPx, 1, dpi);
  std::mt19937 random(seed);
  std::size_t run = 1;
  for (std::size_t i = 0; i < picture.pixels.size();) {
    const auto value = static_cast<std::uint8_t>(random());
    const bool noise = between(random, 0, 3) == 0;
    for (std::size_t n = 0; n < run && i < picture.pixels.size(); ++n, ++i) {
      picture.pixels[i] = noise ? static_cast<std::uint8_t>(random()) : value;
    }
    run = run % 300 + 1;
  }
  return picture;
}

Picture drawGradient(int widthPx, int heightPx, double dpi) {
  Picture picture(widthPx, heightPx, 1, dpi);
  for (int y = 0; y < heightPx; ++y) {
    for (int x = 0; x < widthPx; ++x) *picture.at(x, y) = static_cast<std::uint8_t>(x * 255 / std::max(1, widthPx - 1));
  }
  return picture;
}

Picture drawColor(int widthPx, int heightPx, double dpi, unsigned seed) {
  Picture picture(widthPx, heightPx, 3, dpi);
  std::mt19937 random(seed);
  // One wave along each side for each colour; tables, for the sake of slow builds.
  std::vector<double> across(static_cast<std::size_t>(widthPx) * 3);
  std::vector<double> down(static_cast<std::size_t>(heightPx) * 3);
  for (unsigned c = 0; c < 3; ++c) {
    const double wave = between(random, 2, 6);
    const double shift = between(random, 0, 628) / 100.0;
    for (unsigned x = 0; x < static_cast<unsigned>(widthPx); ++x)
      across[3 * x + c] = std::sin(wave * x / widthPx + shift);
    for (unsigned y = 0; y < static_cast<unsigned>(heightPx); ++y)
      down[3 * y + c] = std::sin(wave * y / heightPx - shift);
  }
  for (int y = 0; y < heightPx; ++y) {
    std::uint8_t* line = picture.at(0, y);
    for (std::size_t i = 0; i < across.size(); ++i) {
      line[i] = static_cast<std::uint8_t>(190 + 30 * across[i] + 30 * down[3 * static_cast<std::size_t>(y) + i % 3]);
    }
  }
  drawWords(picture, seed);
  return picture;
}

}  // namespace e2e
