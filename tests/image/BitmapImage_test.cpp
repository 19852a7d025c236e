#include "image/BitmapImage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "tests/fakes/test_bmp.h"

using fakes::ByteVector;

namespace {

unsigned sizeOf(const ByteVector& bytes) { return static_cast<unsigned>(bytes.size()); }
CBitmapImage imageOf(ByteVector& bmp) { return {bmp.data(), sizeOf(bmp)}; }

// The plain form that the fast mirror of one-bit lines must equal: spread, swap, pack.
ByteVector mirroredBits(const ByteVector& line, unsigned width) {
  ByteVector packed((width + 7) / 8);
  for (unsigned i = 0; i < width; ++i) {
    const unsigned from = width - 1 - i;
    packed[i / 8] = static_cast<std::uint8_t>(packed[i / 8] | (line[from / 8] >> (7 - from % 8) & 1) << (7 - i % 8));
  }
  return packed;
}

}  // namespace

TEST(BitmapImage, InvertHeightSwapsTheLinesFromBothEnds) {
  for (int bpp : {1, 8, 24}) {
    for (int height : {0, 1, 2, 5, 6}) {
      const ByteVector pixels = fakes::countingPixels(13, height, bpp);
      ByteVector bmp = fakes::makeBmp(13, height, bpp, pixels);
      const ByteVector before = bmp;
      EXPECT_TRUE(imageOf(bmp).InvertHeight());
      EXPECT_EQ(bmp, fakes::makeBmp(13, height, bpp, fakes::upsideDown(pixels, fakes::lineBytesOf(13, bpp))));
      EXPECT_TRUE(imageOf(bmp).InvertHeight());
      EXPECT_EQ(bmp, before);
    }
  }
}

TEST(BitmapImage, InvertHeightTurnsTheLinesThatAreThere) {
  const ByteVector pixels = fakes::countingPixels(4, 3, 24);
  ByteVector bmp = fakes::makeBmp(4, 9, 24, pixels);
  EXPECT_TRUE(imageOf(bmp).InvertHeight());
  EXPECT_EQ(fakes::pixelsOf(bmp), fakes::upsideDown(pixels, 12));
}

TEST(BitmapImage, InvertWidthMirrorsColourPixelsAsTriples) {
  ByteVector bmp = fakes::makeBmp(3, 2, 24, {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 16, 17, 18, 19});
  EXPECT_TRUE(imageOf(bmp).InvertWidth());
  EXPECT_EQ(fakes::pixelsOf(bmp), (ByteVector{7, 8, 9, 4, 5, 6, 1, 2, 3, 17, 18, 19, 14, 15, 16, 11, 12, 13}));
}

TEST(BitmapImage, InvertWidthMirrorsGreyPixels) {
  ByteVector bmp = fakes::makeBmp(4, 2, 8, {1, 2, 3, 4, 5, 6, 7, 8});
  EXPECT_TRUE(imageOf(bmp).InvertWidth());
  EXPECT_EQ(fakes::pixelsOf(bmp), (ByteVector{4, 3, 2, 1, 8, 7, 6, 5}));
}

TEST(BitmapImage, MirroredBitsEqualThePlainFormAtEveryWidth) {
  std::mt19937 random(3);
  for (unsigned width = 2; width <= 67; ++width) {
    ByteVector line((width + 7) / 8);
    for (auto& byte : line) byte = static_cast<std::uint8_t>(random());
    ByteVector fast = line;
    EXPECT_TRUE(CBitmapImage(nullptr, 0).Invert1BitLine(fast.data(), width));
    EXPECT_EQ(fast, mirroredBits(line, width)) << width;
  }
}

TEST(BitmapImage, BelowTwoPixelsThereIsNothingToMirror) {
  CBitmapImage image(nullptr, 0);
  unsigned char line[3] = {0x80, 2, 3};
  for (int bpp : {1, 8, 24}) {
    EXPECT_FALSE(image.InvertLine(line, 1, bpp));
    EXPECT_FALSE(image.InvertLine(line, 0, bpp));
  }
  EXPECT_EQ(line[0], 0x80);
  EXPECT_FALSE(image.InvertLine(line, 3, 4));
  EXPECT_FALSE(image.InvertLine(line, 3, 32));
}

TEST(BitmapImage, InvertWidthAnswersForTheLastLineAndTrueWithoutLines) {
  ByteVector narrow = fakes::makeBmp(1, 2, 24, fakes::countingPixels(1, 2, 24));
  EXPECT_FALSE(imageOf(narrow).InvertWidth());
  ByteVector empty = fakes::makeBmp(5, 0, 24, {});
  EXPECT_TRUE(imageOf(empty).InvertWidth());
}

TEST(BitmapImage, MirroringTwiceIsTheImageAgain) {
  for (int bpp : {1, 8, 24}) {
    // 16 pixels: no bits behind the last one.
    const ByteVector before = fakes::makeBmp(16, 5, bpp, fakes::countingPixels(16, 5, bpp));
    ByteVector bmp = before;
    EXPECT_TRUE(imageOf(bmp).InvertWidth());
    EXPECT_NE(bmp, before);
    EXPECT_TRUE(imageOf(bmp).InvertWidth());
    EXPECT_EQ(bmp, before);
  }
}

TEST(BitmapImage, TrimBmpPageHeightKeepsTheFirstLinesInMemory) {
  ByteVector bmp = fakes::makeBmp(4, 5, 24, fakes::countingPixels(4, 5, 24));
  const ByteVector before = bmp;
  EXPECT_EQ(imageOf(bmp).TrimBmpPageHeight(2, true), 54u + 24);
  ByteVector expected = before;
  fakes::put32(expected, 2, 54 + 24);
  fakes::put32(expected, 22, 2);
  EXPECT_EQ(bmp, expected);
}

TEST(BitmapImage, TrimBmpPageHeightLeavesTheFieldWithThePixelBytes) {
  ByteVector bmp = fakes::makeBmp(4, 5, 24, fakes::countingPixels(4, 5, 24));
  imageOf(bmp).TrimBmpPageHeight(2, true);
  EXPECT_EQ(bmp[34], 60);
}

TEST(BitmapImage, TrimBmpPageHeightKeepsTheLastLinesInMemory) {
  for (int height : {4, 3, 1, 0}) {  // also more than one line dropped
    ByteVector bmp = fakes::makeBmp(4, 5, 24, fakes::countingPixels(4, 5, 24));
    const ByteVector pixels = fakes::pixelsOf(bmp);
    const auto kept = static_cast<std::size_t>(height) * 12;
    EXPECT_EQ(imageOf(bmp).TrimBmpPageHeight(height, false), 54u + kept);
    const ByteVector left = fakes::pixelsOf(bmp);
    EXPECT_TRUE(std::equal(pixels.end() - static_cast<std::ptrdiff_t>(kept), pixels.end(), left.begin())) << height;
  }
}

TEST(BitmapImage, TrimBmpPageHeightRefusesAnImageThatIsLower) {
  ByteVector bmp = fakes::makeBmp(4, 5, 24, fakes::countingPixels(4, 5, 24));
  const ByteVector before = bmp;
  EXPECT_EQ(imageOf(bmp).TrimBmpPageHeight(6, true), 0u);
  EXPECT_EQ(imageOf(bmp).TrimBmpPageHeight(-1, true), 0u);
  EXPECT_EQ(bmp, before);
  EXPECT_EQ(imageOf(bmp).TrimBmpPageHeight(5, false), 54u + 60);
  EXPECT_EQ(bmp, before);
  ByteVector raw(100, 7);
  EXPECT_EQ(imageOf(raw).TrimBmpPageHeight(0, true), 0u);
  EXPECT_EQ(raw, ByteVector(100, 7));
}

TEST(BitmapImage, BitsSpreadToBytesAndBack) {
  CBitmapImage image(nullptr, 0);
  const ByteVector line = {0xA5, 0xC0};
  const std::unique_ptr<unsigned char[]> bytes(image.Get8BitFrom1bitLineData(line.data(), 10));
  const ByteVector expected = {1, 0, 1, 0, 0, 1, 0, 1, 1, 1};
  EXPECT_EQ(ByteVector(bytes.get(), bytes.get() + 10), expected);
  const std::unique_ptr<unsigned char[]> packed(image.Get1bitFrom8bitLineData(bytes.get(), 10));
  EXPECT_EQ(ByteVector(packed.get(), packed.get() + 2), line);
}

TEST(BitmapImage, AByteOf0xFFSetsEveryBitToItsLeftInTheSameOutputByte) {
  CBitmapImage image(nullptr, 0);
  ByteVector bytes(16);
  bytes[3] = 0xFF;
  bytes[15] = 0xFF;
  const std::unique_ptr<unsigned char[]> packed(image.Get1bitFrom8bitLineData(bytes.data(), 16));
  EXPECT_EQ(packed[0], 0xF0);
  EXPECT_EQ(packed[1], 0xFF);
}

TEST(BitmapImage, TruncatedAndRandomImagesAreChangedWithinTheirBytes) {
  std::mt19937 random(5);
  for (int round = 0; round < 3000; ++round) {
    const int kDepths[] = {1, 8, 24, 0, 4, 32};
    ByteVector bmp = fakes::makeBmp(11, 6, kDepths[random() % 3], ByteVector(200, 1));
    bmp[28] = static_cast<std::uint8_t>(kDepths[random() % 6]);
    if (random() % 2 == 0) fakes::put32(bmp, 18, static_cast<unsigned>(random()));
    if (random() % 2 == 0) fakes::put32(bmp, 22, static_cast<unsigned>(random()));
    ByteVector cut(bmp.begin(), bmp.begin() + static_cast<std::ptrdiff_t>(random() % (bmp.size() + 1)));
    CBitmapImage image = imageOf(cut);
    image.InvertHeight();
    image.InvertWidth();
    image.TrimBmpPageHeight(static_cast<int>(random() % 9), random() % 2 == 0);
  }
}
