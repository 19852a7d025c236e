// Drawn sheets, and their way through QsImageEnhance.so. With the environment variable QSSCAN_PICTURES_DIR set, tests
// leave the picture of what they drew and what came of it there: those of docs/enhancement.md are made in this way.
#pragma once

#include <gtest/gtest.h>
#include <leptonica/allheaders.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "module_loader.h"
#include "modules/ImageEnhance.h"
#include "tests/fakes/test_bmp.h"

namespace module_test {

using orvalle_scan_api::_IE_PARAM;
using Ink = std::array<std::uint8_t, 3>;  // red, green, blue

inline constexpr Ink kWhite = {255, 255, 255};
inline constexpr Ink kBlack = {20, 20, 24};
inline constexpr Ink kRed = {198, 32, 44};
inline constexpr Ink kGreen = {30, 140, 60};
inline constexpr Ink kBlue = {36, 60, 170};

struct Rect {
  int x, y, width, height;
};

// A page, top line first; a set mono bit is white.
struct Sheet {
  int widthPx = 0;
  int heightPx = 0;
  int bits = 24;
  std::vector<std::uint8_t> pixels;  // B,G,R
  int dpi = 300;
  int linesPerInch = 0;  // where the resolution down the page is another one

  Sheet() = default;
  Sheet(int width, int height, Ink paper = kWhite) : widthPx(width), heightPx(height) {
    pixels.resize(lineBytes() * static_cast<std::size_t>(height));
    fill({0, 0, width, height}, paper);
  }

  bool operator==(const Sheet&) const = default;

  std::size_t lineBytes() const { return fakes::lineBytesOf(widthPx, bits); }
  int dpiY() const { return linesPerInch == 0 ? dpi : linesPerInch; }
  Rect whole() const { return {0, 0, widthPx, heightPx}; }

  Ink at(int x, int y) const {
    const std::uint8_t* const line = &pixels[static_cast<std::size_t>(y) * lineBytes()];
    if (bits == 24) return {line[3 * x + 2], line[3 * x + 1], line[3 * x]};
    const std::uint8_t level = bits == 8 ? line[x] : (line[x / 8] >> (7 - x % 8) & 1) != 0 ? 255 : 0;
    return {level, level, level};
  }
  int level(int x, int y) const {
    const Ink ink = at(x, y);
    return (306 * ink[0] + 601 * ink[1] + 117 * ink[2]) >> 10;
  }

  // Drawing is in colour.
  void set(int x, int y, Ink ink) {
    if (x < 0 || y < 0 || x >= widthPx || y >= heightPx) return;
    std::uint8_t* const at = &pixels[static_cast<std::size_t>(y) * lineBytes() + static_cast<std::size_t>(x) * 3];
    for (std::size_t i = 0; i < 3; ++i) at[i] = ink[2 - i];
  }
  void fill(Rect rect, Ink ink) {
    for (int y = rect.y; y < rect.y + rect.height; ++y) {
      for (int x = rect.x; x < rect.x + rect.width; ++x) set(x, y, ink);
    }
  }
  void disc(int centerX, int centerY, int radius, Ink ink) {
    for (int y = -radius; y <= radius; ++y) {
      for (int x = -radius; x <= radius; ++x) {
        if (x * x + y * y <= radius * radius) set(centerX + x, centerY + y, ink);
      }
    }
  }
  // One line of text, its baseline at y; returns its width. Points at 300 dpi, even, 4 to 20.
  int text(int x, int y, const std::string& words, int points, Ink ink = kBlack) {
    L_Bmf* font = bmfCreate(nullptr, points);
    Pix* pix = pixCreate(widthPx, heightPx, 1);
    l_int32 width = 0;
    pixSetTextline(pix, font, words.c_str(), 1, x, y, &width, nullptr);
    for (int atY = std::max(0, y - 120); atY < std::min(heightPx, y + 60); ++atY) {
      for (int atX = std::max(0, x); atX < std::min(widthPx, x + width); ++atX) {
        l_uint32 value = 0;
        pixGetPixel(pix, atX, atY, &value);
        if (value != 0) set(atX, atY, ink);
      }
    }
    pixDestroy(&pix);
    bmfDestroy(&font);
    return width;
  }
};

// Lines of ordinary words from y down to the given height, as wide as rect.
inline void writeText(Sheet& sheet, Rect rect, int points = 10, Ink ink = kBlack) {
  static constexpr const char* kWords[] = {
      "thank",   "you",   "for",      "the",    "boxes,", "which",        "arrived", "dry",    "and",    "complete.",
      "We",      "have",  "collated", "every",  "volume", "against",      "your",    "list.",  "Three",  "are",
      "missing", "their", "title",    "pages;", "we",     "photographed", "the",     "leaves", "beside", "them",
      "and",     "will",  "bind",     "blanks", "in",     "their",        "place,"};
  std::size_t next = 0;
  const int leading = points * 300 / 72 * 13 / 10;
  for (int y = rect.y + leading; y <= rect.y + rect.height; y += leading) {
    std::string line;
    const auto widthOf = [&](const std::string& words) { return static_cast<int>(words.size()) * points * 2; };
    while (widthOf(line + kWords[next % std::size(kWords)]) < rect.width)
      line += std::string(kWords[next++ % std::size(kWords)]) + " ";
    sheet.text(rect.x, y, line, points, ink);
  }
}

// Every channel shifted by up to levels either way, the same in every run.
inline void addGrain(Sheet& sheet, int levels) {
  std::minstd_rand random(7);
  for (std::uint8_t& value : sheet.pixels) {
    const int shift = static_cast<int>(random() >> 8) % (2 * levels + 1) - levels;
    value = static_cast<std::uint8_t>(std::clamp(value + shift, 0, 255));
  }
}

inline Sheet toGray(const Sheet& color) {
  Sheet gray;
  gray.widthPx = color.widthPx;
  gray.heightPx = color.heightPx;
  gray.bits = 8;
  gray.dpi = color.dpi;
  gray.linesPerInch = color.linesPerInch;
  for (int y = 0; y < color.heightPx; ++y) {
    for (int x = 0; x < color.widthPx; ++x) gray.pixels.push_back(static_cast<std::uint8_t>(color.level(x, y)));
  }
  return gray;
}

inline Sheet toMono(const Sheet& color, int threshold = 128) {
  Sheet mono;
  mono.widthPx = color.widthPx;
  mono.heightPx = color.heightPx;
  mono.bits = 1;
  mono.dpi = color.dpi;
  mono.linesPerInch = color.linesPerInch;
  mono.pixels.resize(mono.lineBytes() * static_cast<std::size_t>(mono.heightPx));
  for (int y = 0; y < color.heightPx; ++y) {
    for (int x = 0; x < color.widthPx; ++x) {
      std::uint8_t& byte =
          mono.pixels[static_cast<std::size_t>(y) * mono.lineBytes() + static_cast<std::size_t>(x / 8)];
      if (color.level(x, y) >= threshold) byte = static_cast<std::uint8_t>(byte | 0x80 >> (x % 8));
    }
  }
  return mono;
}

// Quarter turns clockwise, of a colour sheet.
inline Sheet turned(const Sheet& sheet, int quarters) {
  if (quarters == 0) return sheet;
  Sheet result(sheet.heightPx, sheet.widthPx);
  result.dpi = sheet.dpi;
  for (int y = 0; y < sheet.heightPx; ++y) {
    for (int x = 0; x < sheet.widthPx; ++x) result.set(sheet.heightPx - 1 - y, x, sheet.at(x, y));
  }
  return turned(result, quarters - 1);
}

// The same sheet at another resolution.
inline Sheet scannedAt(const Sheet& sheet, int dpiX, int dpiY) {
  Sheet result(sheet.widthPx * dpiX / sheet.dpi, sheet.heightPx * dpiY / sheet.dpiY());
  result.dpi = dpiX;
  if (dpiY != dpiX) result.linesPerInch = dpiY;
  for (int y = 0; y < result.heightPx; ++y) {
    for (int x = 0; x < result.widthPx; ++x) {
      result.set(x, y, sheet.at(x * sheet.dpi / dpiX, y * sheet.dpiY() / dpiY));
    }
  }
  return result;
}

// Pixels of rect that are darker than level.
inline int countDark(const Sheet& sheet, Rect rect, int level = 128) {
  int count = 0;
  for (int y = rect.y; y < rect.y + rect.height; ++y) {
    for (int x = rect.x; x < rect.x + rect.width; ++x) count += sheet.level(x, y) < level ? 1 : 0;
  }
  return count;
}

inline double meanLevel(const Sheet& sheet, Rect rect) {
  double sum = 0;
  for (int y = rect.y; y < rect.y + rect.height; ++y) {
    for (int x = rect.x; x < rect.x + rect.width; ++x) sum += sheet.level(x, y);
  }
  return sum / rect.width / rect.height;
}

// Pixels of rect that differ between the two by more than tolerance.
inline int countDifferent(const Sheet& one, const Sheet& other, Rect rect, int tolerance = 0) {
  int count = 0;
  for (int y = rect.y; y < rect.y + rect.height; ++y) {
    for (int x = rect.x; x < rect.x + rect.width; ++x) {
      const Ink a = one.at(x, y);
      const Ink b = other.at(x, y);
      bool isDifferent = false;
      for (std::size_t i = 0; i < 3; ++i) isDifferent = isDifferent || std::abs(a[i] - b[i]) > tolerance;
      count += isDifferent ? 1 : 0;
    }
  }
  return count;
}

// The file image of a sheet, as the store has it.
inline std::vector<std::uint8_t> bmpOf(const Sheet& sheet) {
  return fakes::makeBmp(sheet.widthPx, sheet.heightPx, sheet.bits, fakes::upsideDown(sheet.pixels, sheet.lineBytes()));
}

inline orvalle_scan_api::PAGE_STORE_VIEW storeOf(std::vector<std::uint8_t>& bmp, const Sheet& sheet) {
  orvalle_scan_api::PAGE_STORE_VIEW store{};
  store.data = bmp.data();
  store.dataSize = store.blockSize = static_cast<std::uint32_t>(bmp.size());
  store.resolutionX = sheet.dpi;
  store.resolutionY = sheet.dpiY();
  store.widthPixel = sheet.widthPx;
  store.heightPixel = sheet.heightPx;
  store.compressCode = 2;
  return store;
}

struct Outcome {
  unsigned code = 0;
  bool hasChanged = false;
  Sheet sheet;  // as it came where nothing changed
};

// Sends a sheet through the module and checks what every result has to fulfil.
inline Outcome enhance(const Sheet& sheet, _IE_PARAM param, int autoColorMode = 0) {
  Outcome outcome;
  outcome.sheet = sheet;
  const auto module = createInstance<orvalle_scan_api::IImageEnhance>("QsImageEnhance");
  if (module == nullptr) {
    ADD_FAILURE() << "the module was not loaded";
    return outcome;
  }
  std::vector<std::uint8_t> bmp = bmpOf(sheet);
  const std::vector<std::uint8_t> before = bmp;
  orvalle_scan_api::PAGE_STORE_VIEW store = storeOf(bmp, sheet);
  outcome.code = module->Process(reinterpret_cast<orvalle_scan_api::CImageDataStore*>(&store), &param, autoColorMode);
  EXPECT_EQ(outcome.code, 0u);
  EXPECT_TRUE(bmp == before) << "the module wrote into the core's store";
  const orvalle_scan_api::tagQS_SCAN_IMAGEDATA result = module->GetResult();
  outcome.hasChanged = result.data != nullptr;
  if (!outcome.hasChanged) {
    EXPECT_EQ(result.dataSize, 0u);
    return outcome;
  }
  Sheet& after = outcome.sheet;
  after.widthPx = result.widthPixel;
  after.heightPx = result.heightPixel;
  after.bits = result.bitPerPixel;
  EXPECT_EQ(static_cast<std::size_t>(result.widthBytes), after.lineBytes());
  EXPECT_EQ(result.pixelDataSize, after.lineBytes() * static_cast<std::size_t>(after.heightPx));
  EXPECT_EQ(result.pixelData, result.data + fakes::headerBytesOf(after.bits));
  EXPECT_EQ(result.dataSize, fakes::headerBytesOf(after.bits) + result.pixelDataSize);
  EXPECT_EQ(result.resolutionX, sheet.dpi);
  EXPECT_EQ(result.resolutionY, sheet.dpiY());
  EXPECT_FALSE(result.isBlankPage || result.pageScanIsTerminated);
  EXPECT_EQ(result.imageEnhanceTerminated, 0);
  after.pixels = fakes::upsideDown({result.pixelData, result.pixelData + result.pixelDataSize}, after.lineBytes());
  EXPECT_TRUE(std::equal(result.data, result.data + result.dataSize, bmpOf(after).begin())) << "header";
  return outcome;
}

inline Pix* pixOf(const Sheet& sheet, Rect rect) {
  Pix* pix = pixCreate(rect.width, rect.height, 32);
  for (int y = 0; y < rect.height; ++y) {
    for (int x = 0; x < rect.width; ++x) {
      const Ink ink = sheet.at(rect.x + x, rect.y + y);
      pixSetRGBPixel(pix, x, y, ink[0], ink[1], ink[2]);
    }
  }
  return pix;
}

// Leaves name.png, before and after side by side, where QSSCAN_PICTURES_DIR points.
inline void leavePicture(const std::string& name, const Sheet& before, Rect shownBefore, const Sheet& after,
                         Rect shownAfter, float scale = 0.5F) {
  const char* const folder = std::getenv("QSSCAN_PICTURES_DIR");
  if (folder == nullptr) return;
  constexpr int kFramePx = 8;
  Pix* parts[2] = {pixOf(before, shownBefore), pixOf(after, shownAfter)};
  for (Pix*& part : parts) {
    Pix* const scaled = pixScale(part, scale, scale);
    pixDestroy(&part);
    part = scaled;
  }
  const int height = std::max(pixGetHeight(parts[0]), pixGetHeight(parts[1]));
  Pix* const pair = pixCreate(pixGetWidth(parts[0]) + pixGetWidth(parts[1]) + 3 * kFramePx, height + 2 * kFramePx, 32);
  pixSetAllArbitrary(pair, 0x90909000);
  int x = kFramePx;
  for (Pix* part : parts) {
    pixRasterop(pair, x, kFramePx, pixGetWidth(part), pixGetHeight(part), PIX_SRC, part, 0, 0);
    x += pixGetWidth(part) + kFramePx;
  }
  // Few shades make a small file.
  l_float32 seen = 0;
  l_float32 colored = 0;
  pixColorFraction(pair, 0, 255, 30, 1, &seen, &colored);
  Pix* const gray = pixConvertRGBToLuminance(pair);
  Pix* const small = colored > 0 ? pixOctreeColorQuant(pair, 128, 0) : pixThresholdOn8bpp(gray, 32, 1);
  pixWrite((std::string(folder) + "/" + name + ".png").c_str(), small, IFF_PNG);
  Pix* all[] = {parts[0], parts[1], pair, gray, small};
  for (Pix* pix : all) pixDestroy(&pix);
}

inline void leavePicture(const std::string& name, const Sheet& before, const Sheet& after, Rect shown,
                         float scale = 0.5F) {
  leavePicture(name, before, shown, after, shown, scale);
}

}  // namespace module_test
