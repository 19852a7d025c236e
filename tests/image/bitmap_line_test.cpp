// Single lines of CBitmapImage.
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "image/BitmapImage.h"
#include "tests/fakes/test_bmp.h"

using fakes::ByteVector;

namespace {

// The plain form that the fast mirror of one-bit lines must equal: spread, swap, pack.
ByteVector mirroredBits(const ByteVector& line, unsigned width) {
  ByteVector packed((width + 7) / 8);
  for (unsigned i = 0; i < width; ++i) {
    const unsigned from = width - 1 - i;
    packed[i / 8] = static_cast<std::uint8_t>(packed[i / 8] | (line[from / 8] >> (7 - from % 8) & 1) << (7 - i % 8));
  }
  return packed;
}

ByteVector randomLine(std::mt19937& random, std::size_t bytes) {
  ByteVector line(bytes);
  for (auto& byte : line) byte = static_cast<std::uint8_t>(random());
  return line;
}

}  // namespace

TEST(BitmapLine, MirroredBitsEqualThePlainFormAtEveryWidth) {
  std::mt19937 random(3);
  for (unsigned width = 2; width <= 67; ++width) {
    ByteVector line((width + 7) / 8);
    for (auto& byte : line) byte = static_cast<std::uint8_t>(random());
    ByteVector fast = line;
    EXPECT_TRUE(CBitmapImage(nullptr, 0).Invert1BitLine(fast.data(), width));
    EXPECT_EQ(fast, mirroredBits(line, width)) << width;
  }
}

TEST(BitmapLine, BelowTwoPixelsThereIsNothingToMirror) {
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

TEST(BitmapLine, BitsSpreadToBytesAndBack) {
  CBitmapImage image(nullptr, 0);
  const ByteVector line = {0xA5, 0xC0};
  const std::unique_ptr<unsigned char[]> bytes(image.Get8BitFrom1bitLineData(line.data(), 10));
  const ByteVector expected = {1, 0, 1, 0, 0, 1, 0, 1, 1, 1};
  EXPECT_EQ(ByteVector(bytes.get(), bytes.get() + 10), expected);
  const std::unique_ptr<unsigned char[]> packed(image.Get1bitFrom8bitLineData(bytes.get(), 10));
  EXPECT_EQ(ByteVector(packed.get(), packed.get() + 2), line);
}

TEST(BitmapLine, AByteOf0xFFSetsEveryBitToItsLeftInTheSameOutputByte) {
  CBitmapImage image(nullptr, 0);
  ByteVector bytes(16);
  bytes[3] = 0xFF;
  bytes[15] = 0xFF;
  const std::unique_ptr<unsigned char[]> packed(image.Get1bitFrom8bitLineData(bytes.data(), 16));
  EXPECT_EQ(packed[0], 0xF0);
  EXPECT_EQ(packed[1], 0xFF);
}

TEST(BitmapLine, SpreadingAndPackingIsTheLineAgainAtEveryWidth) {
  CBitmapImage image(nullptr, 0);
  std::mt19937 random(7);
  for (unsigned width = 1; width <= 67; ++width) {
    ByteVector line = randomLine(random, (width + 7) / 8);
    // The bits behind the last pixel are not taken along.
    line.back() = static_cast<std::uint8_t>(line.back() & 0xFF << (line.size() * 8 - width));
    const std::unique_ptr<unsigned char[]> pixels(image.Get8BitFrom1bitLineData(line.data(), width));
    const std::unique_ptr<unsigned char[]> packed(image.Get1bitFrom8bitLineData(pixels.get(), width));
    EXPECT_EQ(ByteVector(packed.get(), packed.get() + line.size()), line) << width;
  }
}

TEST(BitmapLine, LinesOfBytesAndTriplesAreMirroredFromBothEnds) {
  CBitmapImage image(nullptr, 0);
  ByteVector gray = {1, 2, 3, 4, 5};
  EXPECT_TRUE(image.Invert8BitLine(gray.data(), 5));
  EXPECT_EQ(gray, (ByteVector{5, 4, 3, 2, 1}));
  ByteVector color = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_TRUE(image.Invert24BitLine(color.data(), 3));
  EXPECT_EQ(color, (ByteVector{7, 8, 9, 4, 5, 6, 1, 2, 3}));
  EXPECT_FALSE(image.Invert8BitLine(gray.data(), 1));
  EXPECT_FALSE(image.Invert24BitLine(color.data(), 1));
}

TEST(BitmapLine, InvertLineChoosesByDepth) {
  CBitmapImage image(nullptr, 0);
  ByteVector line = {0x80, 0, 0, 0, 0, 1};
  EXPECT_TRUE(image.InvertLine(line.data(), 48, 1));
  EXPECT_EQ(line, (ByteVector{0x80, 0, 0, 0, 0, 1}));
  EXPECT_TRUE(image.InvertLine(line.data(), 6, 8));
  EXPECT_EQ(line, (ByteVector{1, 0, 0, 0, 0, 0x80}));
  EXPECT_TRUE(image.InvertLine(line.data(), 2, 24));
  EXPECT_EQ(line, (ByteVector{0, 0, 0x80, 1, 0, 0}));
}

TEST(BitmapLine, AByteHasItsBitsReversedAndRead) {
  CBitmapImage image(nullptr, 0);
  for (unsigned value = 0; value < 256; ++value) {
    auto byte = static_cast<unsigned char>(value);
    EXPECT_TRUE(image.InvertBits(&byte));
    for (unsigned number = 1; number <= 8; ++number) {
      EXPECT_EQ(image.GetBitValue(&byte, number), value >> (8 - number) & 1) << value << " bit " << number;
    }
    EXPECT_EQ(image.GetBitValue(&byte, 0), 0);
    EXPECT_EQ(image.GetBitValue(&byte, 9), 0);
    EXPECT_TRUE(image.InvertBits(&byte));
    EXPECT_EQ(byte, value);
  }
  EXPECT_FALSE(image.InvertBits(nullptr));
  EXPECT_EQ(image.GetBitValue(nullptr, 1), 0);
}

TEST(BitmapLine, ShiftingMovesThePaddingFromTheRightEndToTheLeft) {
  CBitmapImage image(nullptr, 0);
  ByteVector line = {0xA5, 0xDF};  // 1010 0101 11, and six bits behind the last pixel
  EXPECT_TRUE(image.Shift1BitLineToRight(line.data(), 10));
  EXPECT_EQ(line, (ByteVector{0x02, 0x97}));
  EXPECT_FALSE(image.Shift1BitLineToRight(line.data(), 0));
  EXPECT_FALSE(image.Shift1BitLineToRight(nullptr, 10));
}

TEST(BitmapLine, AShiftedLineEndsWithItsLastPixelAndStartsWithZerosAtEveryWidth) {
  CBitmapImage image(nullptr, 0);
  std::mt19937 random(9);
  for (unsigned width = 1; width <= 67; ++width) {
    const ByteVector line = randomLine(random, (width + 7) / 8);
    const unsigned padding = static_cast<unsigned>(line.size()) * 8 - width;
    ByteVector expected(line.size());
    for (unsigned i = 0; i < width; ++i) {
      const unsigned to = i + padding;
      expected[to / 8] = static_cast<std::uint8_t>(expected[to / 8] | (line[i / 8] >> (7 - i % 8) & 1) << (7 - to % 8));
    }
    ByteVector shifted = line;
    EXPECT_TRUE(image.Shift1BitLineToRight(shifted.data(), width));
    EXPECT_EQ(shifted, expected) << width;
  }
}
