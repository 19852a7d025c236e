#include "image/BitmapImage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/image/image_of.h"

using fakes::ByteVector;
using fakes::imageOf;

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

TEST(BitmapImage, InvertRgbArraySwapsTheOuterBytesOfEachColourPixel) {
  ByteVector bmp = fakes::makeBmp(2, 2, 24, {1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, 16});
  EXPECT_TRUE(imageOf(bmp).InvertRgbArray());
  EXPECT_EQ(fakes::pixelsOf(bmp), (ByteVector{3, 2, 1, 6, 5, 4, 13, 12, 11, 16, 15, 14}));
}

TEST(BitmapImage, InvertRgbArrayLeavesOtherDepthsAlone) {
  for (int bpp : {1, 8}) {
    const ByteVector before = fakes::makeBmp(13, 3, bpp, fakes::countingPixels(13, 3, bpp));
    ByteVector bmp = before;
    EXPECT_TRUE(imageOf(bmp).InvertRgbArray());
    EXPECT_EQ(bmp, before) << bpp;
  }
}

TEST(BitmapImage, TheFirstPaletteEntryTellsTheFlavor) {
  struct Row {
    const char* name;
    int bpp;
    unsigned entry;
    bool chocolate, vanilla;
  };
  const Row kRows[] = {{"0 is black", 1, 0, true, false},
                       {"0 is white", 1, 0x00FFFFFF, false, true},
                       {"0 is grey", 1, 0x00808080, false, false},
                       {"one colour short of white", 1, 0x00FEFFFF, false, false},
                       {"the reserved byte does not count", 1, 0xFF000000, true, false},
                       {"grey page from black", 8, 0, false, false},
                       {"grey page from white", 8, 0x00FFFFFF, false, false}};
  for (const Row& row : kRows) {
    ByteVector bmp = fakes::makeBmp(8, 1, row.bpp, ByteVector(8));
    fakes::put32(bmp, 54, row.entry);
    EXPECT_EQ(imageOf(bmp).IsChocolatePixelFlavor(), row.chocolate) << row.name;
    EXPECT_EQ(imageOf(bmp).IsVanillaPixelFlavor(), row.vanilla) << row.name;
  }
}

TEST(BitmapImage, AColourPageWithoutAPaletteHasNoFlavorToInvert) {
  const ByteVector before = fakes::makeBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  ByteVector bmp = before;
  EXPECT_FALSE(imageOf(bmp).IsVanillaPixelFlavor());
  EXPECT_FALSE(imageOf(bmp).IsChocolatePixelFlavor());
  EXPECT_FALSE(imageOf(bmp).InvertPixelFlavor());
  EXPECT_EQ(bmp, before);
}

TEST(BitmapImage, InvertPixelFlavorComplementsPaletteAndPixels) {
  const ByteVector before = fakes::makeBmp(12, 2, 1, {0xA5, 0xC0, 0x0F, 0x00});
  ByteVector bmp = before;
  bmp[57] = 7;  // the reserved byte of an entry is no colour
  EXPECT_TRUE(imageOf(bmp).IsChocolatePixelFlavor());
  EXPECT_TRUE(imageOf(bmp).InvertPixelFlavor());
  EXPECT_TRUE(imageOf(bmp).IsVanillaPixelFlavor());
  ByteVector expected = fakes::makeBmp(12, 2, 1, {0x5A, 0x3F, 0xF0, 0xFF});
  fakes::put32(expected, 54, 0x07FFFFFF);
  fakes::put32(expected, 58, 0x00000000);
  EXPECT_EQ(bmp, expected);
}

TEST(BitmapImage, InvertPixelFlavorChangesNothingWhereAPartIsMissing) {
  struct Row {
    const char* name;
    std::size_t size;
    unsigned fileBytes;
  };
  const ByteVector whole = fakes::makeBmp(16, 2, 1, {1, 2, 3, 4});
  for (const Row& row : {Row{"no pixel bytes there", 62, 66}, Row{"half a palette", 58, 66}, Row{"no palette", 54, 66},
                         Row{"half a header", 20, 66}, Row{"a file that ends with its header", 66, 62}}) {
    ByteVector bmp(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(row.size));
    fakes::put32(bmp, 2, row.fileBytes);
    const ByteVector before = bmp;
    EXPECT_FALSE(imageOf(bmp).InvertPixelFlavor()) << row.name;
    EXPECT_EQ(bmp, before) << row.name;
  }
  ByteVector gray = fakes::makeBmp(4, 1, 8, {1, 2, 3, 4});
  EXPECT_FALSE(imageOf(gray).InvertPixelFlavor());
  ByteVector unsignedBytes = whole;
  unsignedBytes[0] = 'X';
  const ByteVector before = unsignedBytes;
  EXPECT_FALSE(imageOf(unsignedBytes).InvertPixelFlavor());
  EXPECT_EQ(unsignedBytes, before);
}

TEST(BitmapImage, PaletteEntriesAndBytesAreComplementedByCount) {
  CBitmapImage image(nullptr, 0);
  tagRGBQUAD palette[3] = {{1, 2, 3, 4}, {0, 128, 255, 9}, {5, 6, 7, 8}};
  EXPECT_TRUE(image.InvertColorPalettePixelFlavor(palette, 2));
  const ByteVector expected = {254, 253, 252, 4, 255, 127, 0, 9, 5, 6, 7, 8};
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(palette);
  EXPECT_EQ(ByteVector(bytes, bytes + sizeof palette), expected);
  EXPECT_FALSE(image.InvertColorPalettePixelFlavor(palette, 0));
  EXPECT_FALSE(image.InvertColorPalettePixelFlavor(palette, -1));
  EXPECT_FALSE(image.InvertColorPalettePixelFlavor(nullptr, 2));
  EXPECT_EQ(ByteVector(bytes, bytes + sizeof palette), expected);

  ByteVector data = {0, 1, 0xFF, 0x80};
  EXPECT_TRUE(image.InvertAllBits(data.data(), 3));
  EXPECT_EQ(data, (ByteVector{0xFF, 0xFE, 0, 0x80}));
  EXPECT_FALSE(image.InvertAllBits(data.data(), 0));
  EXPECT_FALSE(image.InvertAllBits(nullptr, 3));
}

TEST(BitmapImage, EveryInversionTwiceIsTheImageAgain) {
  using Operation = bool (CBitmapImage::*)();
  struct Row {
    const char* name;
    Operation operation;
    bool changes[3];  // at 1, 8 and 24 bits
  };
  const Row kRows[] = {{"width", &CBitmapImage::InvertWidth, {true, true, true}},
                       {"height", &CBitmapImage::InvertHeight, {true, true, true}},
                       {"colours", &CBitmapImage::InvertRgbArray, {false, false, true}},
                       {"flavor", &CBitmapImage::InvertPixelFlavor, {true, false, false}}};
  const int kDepths[] = {1, 8, 24};
  std::mt19937 random(17);
  for (const Row& row : kRows) {
    for (int depth = 0; depth < 3; ++depth) {
      for (int round = 0; round < 20; ++round) {
        // Whole bytes at one bit: what lies behind the last pixel does not come back.
        const int width = 8 + 8 * static_cast<int>(random() % 6);
        const int height = 2 + static_cast<int>(random() % 9);
        ByteVector pixels(fakes::lineBytesOf(width, kDepths[depth]) * static_cast<std::size_t>(height));
        for (auto& byte : pixels) byte = static_cast<std::uint8_t>(random());
        const ByteVector before = fakes::makeBmp(width, height, kDepths[depth], pixels);
        ByteVector bmp = before;
        (imageOf(bmp).*row.operation)();
        EXPECT_EQ(bmp != before, row.changes[depth]) << row.name << " at " << kDepths[depth];
        (imageOf(bmp).*row.operation)();
        EXPECT_EQ(bmp, before) << row.name << " at " << kDepths[depth];
      }
    }
  }
}

TEST(BitmapImage, TruncatedAndRandomImagesAreChangedWithinTheirBytes) {
  constexpr std::ptrdiff_t kGuard = 40;
  std::mt19937 random(5);
  const int kDepths[] = {1, 8, 24, 0, 2, 4, 16, 32};
  for (int round = 0; round < 6000; ++round) {
    ByteVector bmp = fakes::makeBmp(11, 6, kDepths[random() % 3], ByteVector(200, 1));
    if (random() % 3 == 0) bmp[28] = static_cast<std::uint8_t>(kDepths[random() % 8]);
    if (random() % 3 == 0) fakes::put32(bmp, 2, static_cast<unsigned>(random() % 300));
    if (random() % 3 == 0) fakes::put32(bmp, 18, static_cast<unsigned>(random()));
    if (random() % 3 == 0) fakes::put32(bmp, 22, static_cast<unsigned>(random()));
    const std::size_t size = random() % (bmp.size() + 1);
    // Between guards, or in a block of its own, so that a sanitizer sees the first byte too far.
    const std::ptrdiff_t guard = round % 2 == 0 ? kGuard : 0;
    ByteVector block(size + 2 * static_cast<std::size_t>(guard), 0xAB);
    std::copy_n(bmp.begin(), size, block.begin() + guard);
    CBitmapImage image(block.data() + guard, static_cast<unsigned>(size));
    const auto anyEdge = [&] { return static_cast<unsigned>(random() % 2 == 0 ? random() : random() % 12); };
    image.InvertHeight();
    image.InvertWidth();
    image.InvertRgbArray();
    image.InvertPixelFlavor();
    image.FillEdge(random() % 2 == 0, anyEdge(), anyEdge(), anyEdge(), anyEdge());
    image.FillEdgeOf1BitsImage(random() % 2 == 0, anyEdge(), anyEdge(), anyEdge(), anyEdge());
    image.FillEdgeOfMultiBitsImage(random() % 2 == 0, anyEdge(), anyEdge(), anyEdge(), anyEdge());
    image.TrimBmpPageWidth(static_cast<int>(random() % 14));
    image.TrimBmpPageHeight(static_cast<int>(random() % 9), random() % 2 == 0);
    ASSERT_EQ(std::count(block.begin(), block.begin() + guard, 0xAB), guard) << round;
    ASSERT_EQ(std::count(block.end() - guard, block.end(), 0xAB), guard) << round;
  }
}
