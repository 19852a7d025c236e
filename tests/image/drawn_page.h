// A page drawn pixel by pixel, the ways in which a device sends it, and the BMP that has to come of it. The BMP is put
// together from the pixels alone; nothing of the library is asked.
#pragma once

#include <algorithm>
#include <random>

#include "reception/ImageData.h"
#include "tests/fakes/test_bmp.h"
#include "tests/modules/packbits_lines.h"

namespace fakes {

// Top line first. The value of a pixel is red, green, blue; or grey three times; or 0 or 255 three times.
struct DrawnPage {
  int width = 0;
  int height = 0;
  int bpp = 24;
  ByteVector rgb;

  const std::uint8_t* pixel(int x, int y) const { return &rgb[static_cast<std::size_t>((y * width + x) * 3)]; }
  std::uint8_t* pixel(int x, int y) { return &rgb[static_cast<std::size_t>((y * width + x) * 3)]; }
};

inline DrawnPage drawPage(int width, int height, int bpp, unsigned seed = 1) {
  DrawnPage page{width, height, bpp, ByteVector(static_cast<std::size_t>(width * height * 3))};
  std::mt19937 random(seed);
  for (std::size_t i = 0; i < page.rgb.size(); i += 3) {
    // Runs and single pixels, so that packed lines hold both.
    const bool repeat = i > 0 && random() % 2 == 0;
    for (std::size_t part = 0; part < 3; ++part) {
      const std::uint8_t fresh = bpp == 1 ? static_cast<std::uint8_t>(random() % 2 * 255) : std::uint8_t(random());
      page.rgb[i + part] = repeat ? page.rgb[i + part - 3] : bpp == 24 || part == 0 ? fresh : page.rgb[i];
    }
  }
  return page;
}

inline DrawnPage rotatedByHalf(const DrawnPage& page) {
  DrawnPage turned = page;
  for (int y = 0; y < page.height; ++y) {
    for (int x = 0; x < page.width; ++x) {
      std::copy_n(page.pixel(x, y), 3, turned.pixel(page.width - 1 - x, page.height - 1 - y));
    }
  }
  return turned;
}

// White below; or cut there.
inline DrawnPage withHeight(DrawnPage page, int height) {
  page.rgb.resize(static_cast<std::size_t>(page.width * height * 3), 0xFF);
  page.height = height;
  return page;
}

// Cut on the right; or white there.
inline DrawnPage withWidth(const DrawnPage& page, int width) {
  DrawnPage cut{width, page.height, page.bpp, ByteVector(static_cast<std::size_t>(width * page.height * 3), 0xFF)};
  for (int y = 0; y < page.height; ++y) {
    for (int x = 0; x < std::min(width, page.width); ++x) std::copy_n(page.pixel(x, y), 3, cut.pixel(x, y));
  }
  return cut;
}

// One line as bytes. order: which of red, green and blue stands where.
inline ByteVector lineOf(const DrawnPage& page, int y, const char* order = "rgb") {
  ByteVector line;
  if (page.bpp == 1) line.resize(lineBytesOf(page.width, 1));
  for (int x = 0; x < page.width; ++x) {
    const std::uint8_t* const pixel = page.pixel(x, y);
    const auto at = static_cast<std::size_t>(x);
    if (page.bpp == 1 && pixel[0] != 0) line[at / 8] = static_cast<std::uint8_t>(line[at / 8] | 0x80 >> at % 8);
    if (page.bpp == 8) line.push_back(pixel[0]);
    for (const char* part = order; page.bpp == 24 && *part != '\0'; ++part) {
      line.push_back(pixel[*part == 'r' ? 0 : *part == 'g' ? 1 : 2]);
    }
  }
  return line;
}

// The file image, bottom line first.
inline ByteVector bmpOf(const DrawnPage& page) {
  ByteVector pixels;
  for (int y = page.height - 1; y >= 0; --y) {
    const ByteVector line = lineOf(page, y, "bgr");
    pixels.insert(pixels.end(), line.begin(), line.end());
  }
  return makeBmp(page.width, page.height, page.bpp, pixels);
}

// The same picture: bytes equal, but for the bits behind the last pixel of a one-bit line, which are no picture.
inline ByteVector withoutSpareBits(ByteVector bmp, const DrawnPage& page) {
  if (page.bpp != 1 || page.width % 8 == 0) return bmp;
  const std::size_t lineBytes = lineBytesOf(page.width, 1);
  const auto kept = static_cast<std::uint8_t>(0xFF << (8 - page.width % 8));
  for (std::size_t at = headerBytesOf(1) + lineBytes - 1; at < bmp.size(); at += lineBytes) bmp[at] &= kept;
  return bmp;
}

// Writes the records of a page's lines to its raw store, as the readers do; the store's label is set before.
inline void writeRecord(orvalle_scan_api::CImageDataStore& store, int kind, int code, ByteVector line) {
  if (code == 3) line = module_test::packBits(line);
  store.WriteLineData(kind, code, line.data(), static_cast<unsigned>(line.size()));
}

}  // namespace fakes
