#include "image/BitmapHeader.h"

#include <gtest/gtest.h>

#include <random>

#include "image/bmp_lines.h"
#include "tests/fakes/test_bmp.h"

using fakes::ByteVector;

namespace {
unsigned sizeOf(const ByteVector& bytes) { return static_cast<unsigned>(bytes.size()); }
}  // namespace

TEST(BitmapHeader, AOneBitPageOf100PixelsHasLinesOf13BytesAndAHeaderOf62) {
  CBitmapHeader header;
  EXPECT_EQ(header.CalcWidthBytes(100, 1), 13u);
  EXPECT_EQ(header.CalcBmpHeaderSize(1), 62u);
  EXPECT_EQ(header.CalcPixelDataSize(100, 7, 1), 91u);
  EXPECT_EQ(header.CalcBmpSize(1, 100, 7), 153u);
}

TEST(BitmapHeader, PaletteCountsByDepth) {
  CBitmapHeader header;
  const int kRows[][2] = {{1, 2}, {2, 4}, {3, 0}, {4, 16}, {8, 256}, {16, 0}, {24, 0}, {32, 0}};
  for (const auto& row : kRows) EXPECT_EQ(header.CalcColorPaletteNum(row[0]), row[1]) << row[0];
}

TEST(BitmapHeader, TheHeaderIsWrittenByteForByte) {
  struct Row {
    int width, height, bpp;
  };
  for (const Row& row : {Row{100, 7, 1}, Row{5, 3, 8}, Row{5, 3, 24}}) {
    CBitmapHeader header;
    int size = 0;
    unsigned char* const built =
        header.CreateBmpHeader(300, 300, row.bpp, row.width, row.height, header.CreateColorTable(row.bpp), &size);
    const ByteVector pixels = fakes::countingPixels(row.width, row.height, row.bpp);
    ByteVector expected = fakes::makeBmp(row.width, row.height, row.bpp, pixels);
    expected.resize(fakes::headerBytesOf(row.bpp));
    EXPECT_EQ(ByteVector(built, built + size), expected) << row.bpp;
  }
}

TEST(BitmapHeader, WithoutAPaletteTheEntriesAreZero) {
  CBitmapHeader header;
  unsigned char* const built = header.CreateBmpHeader(300, 300, 8, 5, 3, nullptr, nullptr);
  for (int i = 54; i < 54 + 1024; ++i) ASSERT_EQ(built[i], 0);
  for (int i = 6; i < 10; ++i) EXPECT_EQ(built[i], 0);
}

TEST(BitmapHeader, ResolutionsConvertToPixelsPerMetreAndBack) {
  CBitmapHeader header;
  const int kRows[][2] = {{0, 0},      {-300, 0},    {1, 39},      {100, 3937},
                          {200, 7874}, {300, 11811}, {600, 23622}, {1200, 47244}};
  for (const auto& row : kRows) EXPECT_EQ(header.ConvertDotPerInchToPixPerMeter(row[0]), row[1]) << row[0];
  for (int dpi : {100, 200, 300, 400, 600, 1200}) {
    EXPECT_EQ(header.ConvertPixPerMeterToDotPerInch(header.ConvertDotPerInchToPixPerMeter(dpi)), dpi);
  }
  // Truncated twice.
  EXPECT_EQ(header.ConvertPixPerMeterToDotPerInch(header.ConvertDotPerInchToPixPerMeter(150)), 149);
  EXPECT_EQ(header.ConvertPixPerMeterToDotPerInch(0), 0);
  EXPECT_EQ(header.ConvertPixPerMeterToDotPerInch(-11811), 0);
  EXPECT_GT(header.ConvertDotPerInchToPixPerMeter(0x7FFFFFFF), 0);
}

TEST(BitmapHeader, AccessorsReadTheFields) {
  CBitmapHeader header;
  ByteVector bmp = fakes::makeBmp(5, 3, 8, fakes::countingPixels(5, 3, 8));
  fakes::put32(bmp, 42, 7874);
  EXPECT_TRUE(header.IsBmpData(bmp.data(), sizeOf(bmp)));
  EXPECT_EQ(header.GetBmpFileHeader(bmp.data(), sizeOf(bmp)), bmp.data());
  EXPECT_EQ(header.GetBmpInfoHeader(bmp.data(), sizeOf(bmp)), bmp.data() + 14);
  EXPECT_EQ(header.GetWidthPixel(bmp.data(), sizeOf(bmp)), 5);
  EXPECT_EQ(header.GetHeightPixel(bmp.data(), sizeOf(bmp)), 3);
  EXPECT_EQ(header.GetBitPerPixel(bmp.data(), sizeOf(bmp)), 8);
  EXPECT_EQ(header.GetResolutionX(bmp.data(), sizeOf(bmp)), 300);
  EXPECT_EQ(header.GetResolutionY(bmp.data(), sizeOf(bmp)), 200);
  EXPECT_EQ(header.GetPixelDataSize(bmp.data(), sizeOf(bmp)), 15u);
  EXPECT_TRUE(header.IsColorPaletteContain(bmp.data(), sizeOf(bmp)));
  EXPECT_EQ(header.GetColorPaletteNum(bmp.data(), sizeOf(bmp)), 256);
  EXPECT_EQ(reinterpret_cast<unsigned char*>(header.GetBmpColorPaletterPointer(bmp.data(), sizeOf(bmp))),
            bmp.data() + 54);
}

TEST(BitmapHeader, TheHeaderSizesDecideWhatCanBeRead) {
  CBitmapHeader header;
  ByteVector bmp = fakes::makeBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  EXPECT_FALSE(header.IsBmpData(bmp.data(), 1));
  EXPECT_TRUE(header.IsBmpData(bmp.data(), 2));
  EXPECT_FALSE(header.IsBmpData(nullptr, 100));
  EXPECT_EQ(header.GetBmpFileHeader(bmp.data(), 13), nullptr);
  EXPECT_EQ(header.GetBmpInfoHeader(bmp.data(), 53), nullptr);
  EXPECT_NE(header.GetBmpInfoHeader(bmp.data(), 54), nullptr);
  EXPECT_EQ(header.GetWidthPixel(bmp.data(), 53), 0);
  EXPECT_EQ(header.GetBitPerPixel(bmp.data(), 53), 0);
  EXPECT_EQ(header.GetResolutionX(bmp.data(), 53), 0);
  EXPECT_EQ(header.GetBmpPixelDataPointer(bmp.data(), 54, nullptr), nullptr);
  EXPECT_EQ(header.GetBmpPixelDataPointer(bmp.data(), 55, nullptr), bmp.data() + 54);
  EXPECT_FALSE(header.SetHeightPixel(bmp.data(), 53, 9));
  EXPECT_EQ(header.GetColorPaletteNum(bmp.data(), sizeOf(bmp)), 0);
  EXPECT_EQ(header.GetBmpColorPaletterPointer(bmp.data(), sizeOf(bmp)), nullptr);
  // The information header is taken as it is, without a look at the signature.
  bmp[0] = 'X';
  EXPECT_EQ(header.GetBmpInfoHeader(bmp.data(), sizeOf(bmp)), bmp.data() + 14);
}

TEST(BitmapHeader, NoDataGive0FromEveryAccessor) {
  CBitmapHeader header;
  for (unsigned size : {0u, 1000u}) {
    EXPECT_FALSE(header.IsBmpData(nullptr, size));
    EXPECT_EQ(header.GetBmpFileHeader(nullptr, size), nullptr);
    EXPECT_EQ(header.GetBmpInfoHeader(nullptr, size), nullptr);
    EXPECT_FALSE(header.IsColorPaletteContain(nullptr, size));
    EXPECT_EQ(header.GetColorPaletteNum(nullptr, size), 0);
    EXPECT_EQ(header.GetBmpColorPaletterPointer(nullptr, size), nullptr);
    EXPECT_EQ(header.GetWhiteDataValue(nullptr, size), 0xFF);
    EXPECT_EQ(header.GetResolutionX(nullptr, size) + header.GetResolutionY(nullptr, size), 0);
    EXPECT_EQ(header.GetWidthPixel(nullptr, size) + header.GetHeightPixel(nullptr, size), 0);
    EXPECT_EQ(header.GetPixelDataSize(nullptr, size), 0u);
    EXPECT_FALSE(header.SetHeightPixel(nullptr, size, 5));
    EXPECT_EQ(header.GetColorPaletteIndexOfBlack(nullptr, size), 0);
    EXPECT_EQ(header.GetColorPaletteIndexOfWhite(nullptr, size), 0);
  }
}

TEST(BitmapHeader, TwoBitsHaveFourEntriesWhenWrittenAndNoneWhenRead) {
  CBitmapHeader header;
  ByteVector bmp = fakes::makeBmp(8, 1, 24, ByteVector(40));
  bmp[28] = 2;
  EXPECT_EQ(header.CalcColorPaletteNum(2), 4);
  EXPECT_TRUE(header.IsColorPaletteContain(bmp.data(), sizeOf(bmp)));
  EXPECT_EQ(header.GetColorPaletteNum(bmp.data(), sizeOf(bmp)), 0);
}

TEST(BitmapHeader, RawPixelsComeBackAsTheyAreAndTheirSizeIsLeftAlone) {
  CBitmapHeader header;
  ByteVector raw(100, 7);
  unsigned bytes = 4711;
  EXPECT_EQ(header.GetBmpPixelDataPointer(raw.data(), sizeOf(raw), &bytes), raw.data());
  EXPECT_EQ(bytes, 4711u);
  EXPECT_EQ(header.GetBmpPixelDataPointer(nullptr, 100, &bytes), nullptr);
}

TEST(BitmapHeader, AFileSizeUpToTheHeaderMeansNoPixels) {
  CBitmapHeader header;
  ByteVector bmp = fakes::makeBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  for (unsigned fileSize : {54u, 10u, 0u}) {
    fakes::put32(bmp, 2, fileSize);
    unsigned bytes = 4711;
    EXPECT_EQ(header.GetBmpPixelDataPointer(bmp.data(), sizeOf(bmp), &bytes), nullptr);
    EXPECT_EQ(bytes, 0u);
    EXPECT_EQ(header.GetBmpPixelDataPointer(bmp.data(), sizeOf(bmp), nullptr), bmp.data() + 54);
  }
}

TEST(BitmapHeader, PixelBytesComeFromTheFileSizeAndAreAtMostWhatIsThere) {
  CBitmapHeader header;
  ByteVector bmp = fakes::makeBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  unsigned bytes = 0;
  fakes::put32(bmp, 2, 54 + 20);
  EXPECT_EQ(header.GetBmpPixelDataPointer(bmp.data(), sizeOf(bmp), &bytes), bmp.data() + 54);
  EXPECT_EQ(bytes, 20u);
  fakes::put32(bmp, 2, 0xFFFFFFFF);
  EXPECT_EQ(header.GetBmpPixelDataPointer(bmp.data(), sizeOf(bmp), &bytes), bmp.data() + 54);
  EXPECT_EQ(bytes, 45u);
}

TEST(BitmapHeader, SetHeightPixelSetsHeightPixelBytesAndFileSize) {
  CBitmapHeader header;
  ByteVector bmp = fakes::makeBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  ASSERT_TRUE(header.SetHeightPixel(bmp.data(), sizeOf(bmp), 2));
  ByteVector expected = bmp;
  fakes::put32(expected, 2, 54 + 30);
  fakes::put32(expected, 22, 2);
  fakes::put32(expected, 34, 30);
  EXPECT_EQ(bmp, expected);
  EXPECT_EQ(header.GetHeightPixel(bmp.data(), sizeOf(bmp)), 2);
  bmp[28] = 0;
  EXPECT_FALSE(header.SetHeightPixel(bmp.data(), sizeOf(bmp), 1));
}

TEST(BitmapHeader, TheWhiteByteFollowsThePalette) {
  CBitmapHeader header;
  EXPECT_EQ(header.GetDefaultWhiteDataValue(1), 1);
  EXPECT_EQ(header.GetDefaultWhiteDataValue(8), 0xFF);
  EXPECT_EQ(header.GetDefaultWhiteDataValue(24), 0xFF);
  ByteVector mono = fakes::makeBmp(8, 1, 1, {0});
  EXPECT_EQ(header.GetWhiteDataValue(mono.data(), sizeOf(mono)), 0xFF);
  EXPECT_EQ(header.GetColorPaletteIndexOfBlack(mono.data(), sizeOf(mono)), 0);
  EXPECT_EQ(header.GetColorPaletteIndexOfWhite(mono.data(), sizeOf(mono)), 1);
  fakes::put32(mono, 54, 0x00FFFFFF);
  fakes::put32(mono, 58, 0);
  EXPECT_EQ(header.GetWhiteDataValue(mono.data(), sizeOf(mono)), 0);
  EXPECT_EQ(header.GetColorPaletteIndexOfBlack(mono.data(), sizeOf(mono)), 1);
  EXPECT_EQ(header.GetColorPaletteIndexOfWhite(mono.data(), sizeOf(mono)), 0);

  ByteVector gray = fakes::makeBmp(8, 1, 8, ByteVector(8));
  EXPECT_EQ(header.GetWhiteDataValue(gray.data(), sizeOf(gray)), 255);
  EXPECT_EQ(header.GetColorPaletteIndexOfWhite(gray.data(), sizeOf(gray)), 255);
  fakes::put32(gray, 54 + 4 * 17, 0x00FFFFFF);
  EXPECT_EQ(header.GetWhiteDataValue(gray.data(), sizeOf(gray)), 17);
  EXPECT_EQ(header.GetColorPaletteIndexOfWhite(gray.data(), sizeOf(gray)), 17);

  ByteVector color = fakes::makeBmp(8, 1, 24, ByteVector(24));
  EXPECT_EQ(header.GetWhiteDataValue(color.data(), sizeOf(color)), 0xFF);
  EXPECT_EQ(header.GetColorPaletteIndexOfBlack(color.data(), sizeOf(color)), 0);
}

TEST(BitmapHeader, ColorTablesAreMadeOnceAndOnlyForTwoDepths) {
  CBitmapHeader header;
  tagRGBQUAD* const mono = header.CreateColorTable(1);
  EXPECT_EQ(mono, header.CreateMonochromeColorTable());
  EXPECT_EQ(mono[0].rgbBlue + mono[0].rgbGreen + mono[0].rgbRed + mono[0].rgbReserved, 0);
  EXPECT_EQ(mono[1].rgbBlue + mono[1].rgbGreen + mono[1].rgbRed, 3 * 255);
  EXPECT_EQ(mono[1].rgbReserved, 0);
  tagRGBQUAD* const gray = header.CreateColorTable(8);
  EXPECT_EQ(gray, header.CreateGrayColorTable());
  for (int i = 0; i < 256; ++i) {
    ASSERT_EQ(gray[i].rgbBlue, i);
    ASSERT_EQ(gray[i].rgbGreen, i);
    ASSERT_EQ(gray[i].rgbRed, i);
    ASSERT_EQ(gray[i].rgbReserved, 0);
  }
  EXPECT_EQ(header.CreateColorTable(24), nullptr);
  EXPECT_EQ(header.CreateColorTable(4), nullptr);
  header.FreeColorTable();
}

TEST(BitmapHeader, FreedBlocksAreMadeAnew) {
  CBitmapHeader header;
  ASSERT_NE(header.CreateBmpHeader(300, 300, 24, 5, 3, nullptr, nullptr), nullptr);
  header.FreeBmpHeader();
  header.FreeBmpHeader();
  int size = 0;
  const unsigned char* const built = header.CreateBmpHeader(300, 300, 1, 5, 3, nullptr, &size);
  ASSERT_NE(built, nullptr);
  EXPECT_EQ(size, 62);
  EXPECT_EQ(built[28], 1);
  // A table that its user has scribbled on is whole again after it was freed.
  header.CreateMonochromeColorTable()[1] = {1, 2, 3, 4};
  header.FreeMonochromeColorTable();
  EXPECT_EQ(header.CreateMonochromeColorTable()[1].rgbRed, 255);
  header.CreateGrayColorTable()[7] = {1, 2, 3, 4};
  header.FreeGrayColorTable();
  EXPECT_EQ(header.CreateGrayColorTable()[7].rgbRed, 7);
}

TEST(BitmapHeader, EachWrittenHeaderIsReadBack) {
  std::mt19937 random(19);
  for (int bpp : {1, 8, 24}) {
    for (int round = 0; round < 50; ++round) {
      const int width = static_cast<int>(random() % 40000);
      const int height = static_cast<int>(random() % 40000);
      const int resolutions[] = {100, 200, 300, 400, 600, 1200};
      const int resolutionX = resolutions[random() % 6];
      const int resolutionY = resolutions[random() % 6];
      CBitmapHeader header;
      int built = 0;
      unsigned char* const data =
          header.CreateBmpHeader(resolutionX, resolutionY, bpp, width, height, header.CreateColorTable(bpp), &built);
      const auto size = static_cast<unsigned>(built);
      EXPECT_EQ(size, header.CalcBmpHeaderSize(bpp));
      EXPECT_EQ(header.GetWidthPixel(data, size), width);
      EXPECT_EQ(header.GetHeightPixel(data, size), height);
      EXPECT_EQ(header.GetBitPerPixel(data, size), bpp);
      EXPECT_EQ(header.GetResolutionX(data, size), resolutionX);
      EXPECT_EQ(header.GetResolutionY(data, size), resolutionY);
      EXPECT_EQ(header.GetPixelDataSize(data, size), header.CalcPixelDataSize(width, height, bpp));
      EXPECT_EQ(header.GetColorPaletteNum(data, size), header.CalcColorPaletteNum(bpp));
      const int newHeight = static_cast<int>(random() % 40000);
      EXPECT_TRUE(header.SetHeightPixel(data, size, newHeight));
      EXPECT_EQ(header.GetHeightPixel(data, size), newHeight);
    }
  }
}

TEST(BitmapHeader, AHalfPaletteIsReadAsFarAsItGoes) {
  CBitmapHeader header;
  ByteVector gray = fakes::makeBmp(8, 1, 8, ByteVector(8));
  fakes::put32(gray, 54 + 4 * 17, 0x00FFFFFF);
  EXPECT_EQ(header.GetColorPaletteIndexOfWhite(gray.data(), 54 + 4 * 18), 17);
  EXPECT_EQ(header.GetColorPaletteIndexOfWhite(gray.data(), 54 + 4 * 18 - 1), 0);
  EXPECT_EQ(header.GetWhiteDataValue(gray.data(), 54 + 4 * 18 - 1), 0xFF);
  EXPECT_EQ(header.GetBmpPixelDataPointer(gray.data(), 54 + 1023, nullptr), nullptr);
}

TEST(BitmapHeader, NoSizeWrapsAround) {
  CBitmapHeader header;
  EXPECT_EQ(header.CalcWidthBytes(0x7FFFFFFF, 24), 6442450941u);
  EXPECT_EQ(header.CalcPixelDataSize(0x7FFFFFFF, 2, 24), 12884901882u);
  EXPECT_EQ(header.CalcPixelDataSize(0x7FFFFFFF, 0x7FFFFFFF, 0xFFFF), UINT64_MAX);
  EXPECT_EQ(header.CalcBmpSize(0xFFFF, 0x7FFFFFFF, 0x7FFFFFFF), UINT64_MAX);
  EXPECT_EQ(header.CalcWidthBytes(-1, 24), 0u);
  EXPECT_EQ(header.CalcPixelDataSize(10, -1, 24), 0u);
  int size = 0;
  ASSERT_NE(header.CreateBmpHeader(300, 300, 24, 0x7FFFFFFF, 0x7FFFFFFF, nullptr, &size), nullptr);
  EXPECT_EQ(size, 54);
}

TEST(BmpLines, NoMoreLinesThanTheBytesHold) {
  struct Row {
    const char* name;
    int headerHeight;
    std::size_t pixelBytes;
    std::size_t expected;
  };
  const Row kRows[] = {{"all there", 3, 45, 3},           {"one byte short", 3, 44, 2},
                       {"header says fewer", 2, 45, 2},   {"no pixels", 3, 0, 0},
                       {"height zero", 0, 45, 0},         {"negative height", -3, 45, 0},
                       {"huge height", 0x7FFFFFFF, 45, 3}};
  for (const Row& row : kRows) {
    ByteVector bmp = fakes::makeBmp(5, row.headerHeight, 24, ByteVector(row.pixelBytes));
    const auto lines = orvalle_scan_api::bmpLines(bmp.data(), bmp.size());
    EXPECT_EQ(lines.count, row.expected) << row.name;
    EXPECT_EQ(lines.first != nullptr, row.expected > 0) << row.name;
  }
  EXPECT_EQ(orvalle_scan_api::bmpLines(nullptr, 0).count, 0u);
}

TEST(BitmapHeader, RandomBytesAreReadWithoutLeavingThem) {
  std::mt19937 random(11);
  CBitmapHeader header;
  for (int round = 0; round < 5000; ++round) {
    // A block of its own for each size, so that a sanitizer sees the first byte too far.
    ByteVector bytes(random() % 80);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    if (bytes.size() > 30) {
      bytes[0] = 'B';
      bytes[1] = 'M';
      const std::uint8_t depths[] = {0, 1, 2, 4, 8, 24};
      bytes[28] = depths[random() % 6];
      bytes[29] = 0;
    }
    unsigned char* const data = bytes.data();
    const unsigned size = sizeOf(bytes);
    unsigned pixelBytes = 0;
    unsigned char* const pixels = header.GetBmpPixelDataPointer(data, size, &pixelBytes);
    if (header.IsBmpData(data, size) && pixels != nullptr) {
      ASSERT_LE(pixels + pixelBytes, data + size);
    }
    header.GetWhiteDataValue(data, size);
    header.GetColorPaletteIndexOfBlack(data, size);
    header.GetColorPaletteIndexOfWhite(data, size);
    header.GetPixelDataSize(data, size);
    header.GetResolutionX(data, size);
    header.GetResolutionY(data, size);
    header.SetHeightPixel(data, size, static_cast<int>(random()));
    const auto lines = orvalle_scan_api::bmpLines(data, size);
    if (lines.count > 0) {
      ASSERT_LE(lines.first + lines.count * lines.lineBytes, data + size);
    }
  }
}
