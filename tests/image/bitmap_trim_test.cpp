// Trimming with CBitmapImage.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/image/image_of.h"

using fakes::ByteVector;
using fakes::imageOf;
using fakes::sizeOf;

TEST(BitmapTrim, TrimBmpPageHeightKeepsTheFirstLinesInMemory) {
  ByteVector bmp = fakes::makeBmp(4, 5, 24, fakes::countingPixels(4, 5, 24));
  const ByteVector before = bmp;
  EXPECT_EQ(imageOf(bmp).TrimBmpPageHeight(2, true), 54u + 24);
  ByteVector expected = before;
  fakes::put32(expected, 2, 54 + 24);
  fakes::put32(expected, 22, 2);
  EXPECT_EQ(bmp, expected);
}

TEST(BitmapTrim, TrimBmpPageHeightLeavesTheFieldWithThePixelBytes) {
  ByteVector bmp = fakes::makeBmp(4, 5, 24, fakes::countingPixels(4, 5, 24));
  imageOf(bmp).TrimBmpPageHeight(2, true);
  EXPECT_EQ(bmp[34], 60);
}

TEST(BitmapTrim, TrimBmpPageHeightKeepsTheLastLinesInMemory) {
  for (int height : {4, 3, 1, 0}) {  // also more than one line dropped
    ByteVector bmp = fakes::makeBmp(4, 5, 24, fakes::countingPixels(4, 5, 24));
    const ByteVector pixels = fakes::pixelsOf(bmp);
    const auto kept = static_cast<std::size_t>(height) * 12;
    EXPECT_EQ(imageOf(bmp).TrimBmpPageHeight(height, false), 54u + kept);
    const ByteVector left = fakes::pixelsOf(bmp);
    EXPECT_TRUE(std::equal(pixels.end() - static_cast<std::ptrdiff_t>(kept), pixels.end(), left.begin())) << height;
  }
}

TEST(BitmapTrim, TrimBmpPageHeightRefusesAnImageThatIsLower) {
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

TEST(BitmapTrim, TrimBmpPageWidthMovesTheLinesTogetherAndWritesThreeFields) {
  struct Row {
    int bpp, width;
    ByteVector pixels, expected;
  };
  const Row kRows[] = {
      {8, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, {1, 2, 5, 6, 9, 10}},
      {24,
       1,
       {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 18,
        19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36},
       {1, 2, 3, 13, 14, 15, 25, 26, 27}},
      // 3 pixels are one byte, as 4 are.
      {1, 3, {0xF1, 0xF2, 0xF3}, {0xF1, 0xF2, 0xF3}},
  };
  for (const Row& row : kRows) {
    ByteVector bmp = fakes::makeBmp(4, 3, row.bpp, row.pixels);
    const std::size_t header = fakes::headerBytesOf(row.bpp);
    const auto fileBytes = static_cast<unsigned>(header + row.expected.size());
    EXPECT_EQ(imageOf(bmp).TrimBmpPageWidth(row.width), fileBytes) << row.bpp;
    bmp.resize(fileBytes);
    EXPECT_EQ(bmp, fakes::makeBmp(row.width, 3, row.bpp, row.expected)) << row.bpp;
  }
}

TEST(BitmapTrim, TrimBmpPageWidthOfTwoBytesKeepsTheFirstOfThem) {
  ByteVector bmp = fakes::makeBmp(12, 3, 1, {0x11, 0x10, 0x22, 0x20, 0x33, 0x30});
  EXPECT_EQ(imageOf(bmp).TrimBmpPageWidth(8), 62u + 3);
  bmp.resize(65);
  EXPECT_EQ(bmp, fakes::makeBmp(8, 3, 1, {0x11, 0x22, 0x33}));
}

TEST(BitmapTrim, TrimBmpPageWidthToTheSameWidthChangesNothing) {
  for (int bpp : {1, 8, 24}) {
    const ByteVector before = fakes::makeBmp(13, 3, bpp, fakes::countingPixels(13, 3, bpp));
    ByteVector bmp = before;
    EXPECT_EQ(imageOf(bmp).TrimBmpPageWidth(13), sizeOf(before));
    EXPECT_EQ(bmp, before);
  }
}

TEST(BitmapTrim, TrimBmpPageWidthRefusesANarrowerImageAndOneWithoutPixels) {
  struct Row {
    const char* name;
    ByteVector bmp;
    int width;
  };
  const ByteVector whole = fakes::makeBmp(4, 3, 24, fakes::countingPixels(4, 3, 24));
  ByteVector raw = whole;
  raw[0] = 'X';
  ByteVector endsWithHeader = whole;
  fakes::put32(endsWithHeader, 2, 54);
  for (const Row& row :
       {Row{"narrower", whole, 5}, Row{"negative", whole, -1}, Row{"raw pixels", raw, 2},
        Row{"no lines", fakes::makeBmp(4, 0, 24, {}), 2}, Row{"file size of the header", endsWithHeader, 2},
        Row{"half a header", ByteVector(whole.begin(), whole.begin() + 30), 2}, Row{"nothing", {}, 0}}) {
    ByteVector bmp = row.bmp;
    EXPECT_EQ(imageOf(bmp).TrimBmpPageWidth(row.width), 0u) << row.name;
    EXPECT_EQ(bmp, row.bmp) << row.name;
  }
}

TEST(BitmapTrim, ATrimmedImageReadsBackItsNewSize) {
  for (int bpp : {1, 8, 24}) {
    ByteVector bmp = fakes::makeBmp(21, 9, bpp, fakes::countingPixels(21, 9, bpp));
    CBitmapImage image = imageOf(bmp);
    EXPECT_EQ(image.TrimBmpPageWidth(10), image.CalcBmpSize(bpp, 10, 9));
    EXPECT_EQ(image.TrimBmpPageHeight(4, true), image.CalcBmpSize(bpp, 10, 4));
    EXPECT_EQ(image.GetWidthPixel(bmp.data(), sizeOf(bmp)), 10);
    EXPECT_EQ(image.GetHeightPixel(bmp.data(), sizeOf(bmp)), 4);
    unsigned pixelBytes = 0;
    ASSERT_NE(image.GetBmpPixelDataPointer(bmp.data(), sizeOf(bmp), &pixelBytes), nullptr);
    EXPECT_EQ(pixelBytes, 4 * fakes::lineBytesOf(10, bpp));
  }
}

TEST(BitmapTrim, AHeaderThatPromisesMoreThanAFileCanHoldGetsTheLargestSize) {
  ByteVector bmp = fakes::makeBmp(4, 3, 24, fakes::countingPixels(4, 3, 24));
  fakes::put32(bmp, 18, 0x7FFFFFFF);
  fakes::put32(bmp, 22, 0x7FFFFFFF);
  EXPECT_EQ(imageOf(bmp).TrimBmpPageWidth(0x7FFFFFFF), 0xFFFFFFFFu);
  EXPECT_EQ(imageOf(bmp).TrimBmpPageHeight(0x7FFFFFFF, false), 0xFFFFFFFFu);
}
