// The frame that CBitmapImage paints.
#include <gtest/gtest.h>

#include <limits>

#include "tests/image/image_of.h"

using fakes::ByteVector;
using fakes::imageOf;

namespace {

constexpr unsigned kHuge = std::numeric_limits<unsigned>::max();

ByteVector filled(const ByteVector& pixels, int width, int height, int bpp, bool black, unsigned left, unsigned right,
                  unsigned top, unsigned bottom) {
  ByteVector bmp = fakes::makeBmp(width, height, bpp, pixels);
  EXPECT_TRUE(imageOf(bmp).FillEdge(black, left, right, top, bottom));
  return fakes::pixelsOf(bmp);
}

}  // namespace

TEST(BitmapFillEdge, GreyPixelsTakeThePaletteIndexOfTheColour) {
  const ByteVector page(12, 9);
  EXPECT_EQ(filled(page, 4, 3, 8, true, 1, 2, 0, 0), (ByteVector{0, 9, 0, 0, 0, 9, 0, 0, 0, 9, 0, 0}));
  EXPECT_EQ(filled(page, 4, 3, 8, false, 1, 0, 0, 0), (ByteVector{255, 9, 9, 9, 255, 9, 9, 9, 255, 9, 9, 9}));
  ByteVector turned = fakes::makeBmp(4, 1, 8, ByteVector(4, 9));
  fakes::put32(turned, 54, 0x00FFFFFF);
  fakes::put32(turned, 54 + 4 * 200, 0);
  EXPECT_TRUE(imageOf(turned).FillEdge(false, 1, 0, 0, 0));
  EXPECT_TRUE(imageOf(turned).FillEdge(true, 0, 1, 0, 0));
  EXPECT_EQ(fakes::pixelsOf(turned), (ByteVector{0, 9, 9, 200}));
}

TEST(BitmapFillEdge, ColourPixelsAreFilledAsTriples) {
  const ByteVector page(9, 9);
  EXPECT_EQ(filled(page, 3, 1, 24, false, 1, 0, 0, 0), (ByteVector{255, 255, 255, 9, 9, 9, 9, 9, 9}));
  EXPECT_EQ(filled(page, 3, 1, 24, true, 0, 1, 0, 0), (ByteVector{9, 9, 9, 9, 9, 9, 0, 0, 0}));
}

TEST(BitmapFillEdge, TopIsTheLastLinesInMemoryAndBottomTheFirst) {
  EXPECT_EQ(filled({1, 2, 3, 4, 5}, 1, 5, 8, true, 0, 0, 1, 0), (ByteVector{1, 2, 3, 4, 0}));
  EXPECT_EQ(filled({1, 2, 3, 4, 5}, 1, 5, 8, true, 0, 0, 0, 2), (ByteVector{0, 0, 3, 4, 5}));
  EXPECT_EQ(filled({0x51, 0x52, 0x53}, 8, 3, 1, false, 0, 0, 1, 0), (ByteVector{0x51, 0x52, 0xFF}));
  EXPECT_EQ(filled({0x51, 0x52, 0x53}, 8, 3, 1, true, 0, 0, 0, 1), (ByteVector{0x00, 0x52, 0x53}));
}

TEST(BitmapFillEdge, EdgesLargerThanThePageFillAllOfIt) {
  for (int bpp : {1, 8, 24}) {
    for (bool black : {true, false}) {
      const ByteVector page = fakes::countingPixels(16, 5, bpp);
      const ByteVector expected(page.size(), black ? 0 : 255);
      for (unsigned edge : {17u, 1000u, 0x80000000u, kHuge}) {
        EXPECT_EQ(filled(page, 16, 5, bpp, black, edge, 0, 0, 0), expected) << bpp;
        EXPECT_EQ(filled(page, 16, 5, bpp, black, 0, edge, 0, 0), expected) << bpp;
        EXPECT_EQ(filled(page, 16, 5, bpp, black, 0, 0, edge, 0), expected) << bpp;
        EXPECT_EQ(filled(page, 16, 5, bpp, black, 0, 0, 0, edge), expected) << bpp;
        EXPECT_EQ(filled(page, 16, 5, bpp, black, edge, edge, edge, edge), expected) << bpp;
      }
    }
  }
}

TEST(BitmapFillEdge, NothingOutsideTheLinesChanges) {
  for (int bpp : {1, 8, 24}) {
    ByteVector bmp = fakes::makeBmp(13, 3, bpp, fakes::countingPixels(13, 3, bpp));
    bmp.insert(bmp.end(), 20, 0x77);  // bytes behind the last line
    const ByteVector before = bmp;
    EXPECT_TRUE(imageOf(bmp).FillEdge(false, kHuge, kHuge, kHuge, kHuge));
    const auto header = static_cast<std::ptrdiff_t>(fakes::headerBytesOf(bpp));
    EXPECT_TRUE(std::equal(bmp.begin(), bmp.begin() + header, before.begin()));
    EXPECT_TRUE(std::equal(bmp.end() - 20, bmp.end(), before.end() - 20));
  }
}

TEST(BitmapFillEdge, EdgesOfNoWidthLeaveThePage) {
  for (int bpp : {1, 8, 24}) {
    const ByteVector page = fakes::countingPixels(16, 5, bpp);
    EXPECT_EQ(filled(page, 16, 5, bpp, true, 0, 0, 0, 0), page) << bpp;
  }
}

TEST(BitmapFillEdge, BitsAreFilledByThePixel) {
  EXPECT_EQ(filled({0xFF, 0xFF, 0xFF}, 24, 1, 1, true, 3, 0, 0, 0), (ByteVector{0x1F, 0xFF, 0xFF}));
  EXPECT_EQ(filled({0xFF, 0xFF, 0xFF}, 24, 1, 1, true, 0, 10, 0, 0), (ByteVector{0xFF, 0xFC, 0x00}));
  EXPECT_EQ(filled({0, 0, 0}, 24, 1, 1, false, 10, 0, 0, 0), (ByteVector{0xFF, 0xC0, 0}));
}

TEST(BitmapFillEdge, ARightEdgeOfSetBitsReachesBackToTheStartOfItsByte) {
  EXPECT_EQ(filled({0, 0, 0}, 24, 1, 1, false, 0, 1, 0, 0), (ByteVector{0, 0, 0xFF}));
  EXPECT_EQ(filled({0, 0, 0}, 24, 1, 1, false, 0, 9, 0, 0), (ByteVector{0, 0xFF, 0xFF}));
  // 20 pixels: the last byte holds four of them, and what lies behind them stays 0.
  EXPECT_EQ(filled({0, 0, 0}, 20, 1, 1, false, 0, 1, 0, 0), (ByteVector{0, 0, 0xF0}));
}

TEST(BitmapFillEdge, TheColourOfBitsFollowsThePalette) {
  ByteVector vanilla = fakes::makeBmp(16, 1, 1, {0x55, 0x55});
  fakes::put32(vanilla, 54, 0x00FFFFFF);
  fakes::put32(vanilla, 58, 0);
  EXPECT_TRUE(imageOf(vanilla).FillEdge(true, 4, 0, 0, 0));
  EXPECT_TRUE(imageOf(vanilla).FillEdge(false, 0, 4, 0, 0));
  EXPECT_EQ(fakes::pixelsOf(vanilla), (ByteVector{0xF5, 0x50}));
}

TEST(BitmapFillEdge, TheTwoFormsCanBeAskedForByName) {
  ByteVector mono = fakes::makeBmp(8, 1, 1, {0xFF});
  EXPECT_TRUE(imageOf(mono).FillEdgeOf1BitsImage(true, 2, 2, 0, 0));
  EXPECT_EQ(fakes::pixelsOf(mono), ByteVector{0x3C});
  ByteVector gray = fakes::makeBmp(4, 1, 8, ByteVector(4, 9));
  EXPECT_TRUE(imageOf(gray).FillEdgeOfMultiBitsImage(true, 1, 1, 0, 0));
  EXPECT_EQ(fakes::pixelsOf(gray), (ByteVector{0, 9, 9, 0}));
}

TEST(BitmapFillEdge, OnlyWholeLinesAreFilledOnATruncatedPage) {
  ByteVector bmp = fakes::makeBmp(4, 9, 8, ByteVector(10, 9));
  EXPECT_TRUE(imageOf(bmp).FillEdge(true, 1, 1, 3, 1));
  // The three top lines would be the last of nine; two and a half lines are there.
  EXPECT_EQ(fakes::pixelsOf(bmp), (ByteVector{0, 0, 0, 0, 0, 9, 9, 0, 9, 9}));
}

TEST(BitmapFillEdge, WidthsInBytesExistForTwoDepths) {
  CBitmapImage image(nullptr, 0);
  const struct {
    int pixels, bpp;
    std::size_t expected;
  } kRows[] = {{5, 24, 15}, {5, 8, 5},  {5, 1, 0},
               {5, 4, 0},   {5, 32, 0}, {0, 24, 0},
               {-1, 24, 0}, {-1, 8, 0}, {0x7FFFFFFF, 24, 6442450941u}};
  for (const auto& row : kRows) {
    EXPECT_EQ(image.CalcFillWidthBytes(row.pixels, row.bpp), row.expected) << row.pixels << " at " << row.bpp;
  }
}
