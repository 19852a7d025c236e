// Small pictures as the device sends them and as the finished page holds them.
#pragma once

#include <random>

#include "tests/reception/stream_records.h"

namespace reception_test {

// Top line first; colour is R,G,B; mono has the first pixel in the highest bit; no padding.
struct Picture {
  int widthPx;
  int heightPx;
  int bits;  // 1, 8, 24
  std::vector<ByteString> lines;

  std::uint8_t format() const { return bits == 24 ? kColor : bits == 8 ? kGray : kMono; }
};

// No line is like another, and no column like its neighbour.
inline Picture drawPicture(int widthPx, int heightPx, int bits, unsigned seed = 1) {
  std::mt19937 random(seed);
  Picture picture{widthPx, heightPx, bits, {}};
  const int lineBytes = (widthPx * bits + 7) / 8;
  for (int y = 0; y < heightPx; ++y) {
    ByteString line;
    for (int i = 0; i < lineBytes; ++i) line.push_back(static_cast<std::uint8_t>(random()));
    if (bits == 1 && widthPx % 8 != 0) line.back() &= static_cast<std::uint8_t>(0xFF << (8 - widthPx % 8));
    picture.lines.push_back(line);
  }
  return picture;
}

// Runs and literals in turn, so that both forms are decoded.
inline ByteString packBits(const ByteString& line) {
  ByteString packed;
  for (std::size_t i = 0; i < line.size();) {
    std::size_t run = 1;
    while (i + run < line.size() && run < 128 && line[i + run] == line[i]) ++run;
    if (run > 1) {
      packed.push_back(static_cast<std::uint8_t>(257 - run));
      packed.push_back(line[i]);
      i += run;
      continue;
    }
    std::size_t literal = 1;
    while (i + literal < line.size() && literal < 5 && line[i + literal] != line[i + literal - 1]) ++literal;
    packed.push_back(static_cast<std::uint8_t>(literal - 1));
    packed.insert(packed.end(), line.begin() + static_cast<std::ptrdiff_t>(i),
                  line.begin() + static_cast<std::ptrdiff_t>(i + literal));
    i += literal;
  }
  return packed;
}

// The records of one page without its end.
inline ByteString rawLines(const Picture& picture, unsigned pageNo = 1) {
  ByteString records;
  for (const ByteString& bytes : picture.lines) records += line(pageNo, picture.format(), bytes);
  return records;
}
inline ByteString packedLines(const Picture& picture, unsigned pageNo = 1) {
  ByteString records;
  for (const ByteString& bytes : picture.lines) {
    records += line(pageNo, picture.format() | kPackBits, packBits(bytes));
  }
  return records;
}

// The whole file image that the caller must get: bottom line first, colour as B,G,R, grey and mono with a palette.
inline ByteString expectedBmp(const Picture& picture, int dpi = 300) {
  const std::size_t colors = picture.bits == 24 ? 0 : std::size_t{1} << picture.bits;
  const auto headerBytes = static_cast<std::uint32_t>(54 + 4 * colors);
  const auto pixelBytes = static_cast<std::uint32_t>((picture.widthPx * picture.bits + 7) / 8 * picture.heightPx);
  const auto dotsPerMeter = static_cast<std::uint32_t>(static_cast<float>(dpi * 10000 + 9) / 254.0F);
  ByteString bmp = fakes::text("BM") + u32(headerBytes + pixelBytes) + u32(0) + u32(headerBytes) + u32(40) +
                   u32(static_cast<std::uint32_t>(picture.widthPx)) +
                   u32(static_cast<std::uint32_t>(picture.heightPx)) + u16(1) +
                   u16(static_cast<std::uint32_t>(picture.bits)) + u32(0) + u32(pixelBytes) + u32(dotsPerMeter) +
                   u32(dotsPerMeter) + u32(static_cast<std::uint32_t>(colors)) + u32(0);
  for (std::size_t i = 0; i < colors; ++i) {
    const auto value = static_cast<std::uint8_t>(255 * i / (colors - 1));
    bmp = bmp + ByteString{value, value, value, 0};
  }
  for (auto bytes = picture.lines.rbegin(); bytes != picture.lines.rend(); ++bytes) {
    ByteString line = *bytes;
    if (picture.bits == 24) {
      for (std::size_t i = 0; i + 2 < line.size(); i += 3) std::swap(line[i], line[i + 2]);
    }
    bmp += line;
  }
  return bmp;
}

}  // namespace reception_test
