#include "sheets/sheet_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>

#include "image/encode_jpeg.h"
#include "sheet_makers.h"
#include "support/failure.h"

namespace vscan {
namespace {

using test::patternOf;

std::string contentOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

std::string stringOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

class SheetFileTest : public testing::Test {
 protected:
  const test::TempFolder folder_;
};

TEST_F(SheetFileTest, APngHasItsPixelsAndItsResolution) {
  for (const int channels : {1, 3}) {
    const Raster picture = patternOf(40, 30, channels);
    const std::string path = folder_.file("sheet.png");
    test::writePng(path, picture, 300);
    const auto file = openSheetFile(path);
    EXPECT_EQ(file->pages(), 1);
    EXPECT_TRUE(file->hasResolution());
    const Sheet sheet = file->load(0, 100, 100);
    EXPECT_EQ(sheet.dpiX, 300);
    EXPECT_EQ(sheet.dpiY, 300);
    EXPECT_EQ(sheet.pixels.channels, channels);
    EXPECT_EQ(sheet.pixels.pixels, picture.pixels);
  }
}

TEST_F(SheetFileTest, APictureWithoutAResolutionCountsAs300Dpi) {
  const std::string path = folder_.file("sheet.png");
  test::writePng(path, patternOf(4, 3, 1), 0);
  EXPECT_FALSE(openSheetFile(path)->hasResolution());
  EXPECT_EQ(openSheetFile(path)->load(0, 100, 100).dpiX, 300);
}

TEST_F(SheetFileTest, AJpegHasItsDecodedPixelsAndItsDensity) {
  const std::string path = folder_.file("sheet.jpg");
  for (const int channels : {1, 3}) {
    const Bytes bytes = encodeJpeg(patternOf(40, 30, channels), 90, JpegSampling::Yuv444, 150, 200);
    test::writeFile(path, stringOf(bytes));
    const Sheet sheet = openSheetFile(path)->load(0, 300, 300);
    EXPECT_EQ(sheet.dpiX, 150);
    EXPECT_EQ(sheet.dpiY, 200);
    EXPECT_EQ(sheet.pixels.pixels, test::decodeJpeg(bytes).picture.pixels);
  }
}

TEST_F(SheetFileTest, EachDirectoryOfATiffIsAPage) {
  const std::string path = folder_.file("sheet.tif");
  test::writeTiff(path, {patternOf(40, 30, 3), patternOf(20, 50, 1)}, 200);
  const auto file = openSheetFile(path);
  ASSERT_EQ(file->pages(), 2);
  EXPECT_TRUE(file->hasResolution());
  EXPECT_EQ(file->load(0, 1, 1).pixels.pixels, patternOf(40, 30, 3).pixels);
  const Sheet second = file->load(1, 1, 1);
  EXPECT_EQ(second.pixels.pixels, patternOf(20, 50, 1).pixels);
  EXPECT_EQ(second.dpiX, 200);
  test::writeTiff(path, {patternOf(40, 30, 3)}, 0);
  EXPECT_FALSE(openSheetFile(path)->hasResolution());
}

TEST_F(SheetFileTest, APdfPageIsDrawnAtTheResolutionAskedFor) {
  const std::string path = folder_.file("sheet.pdf");
  test::writePdf(path, 2, 144, 216);
  const auto file = openSheetFile(path);
  ASSERT_EQ(file->pages(), 2);
  const Sheet sheet = file->load(1, 100, 50);
  EXPECT_EQ(sheet.pixels.widthPx, 200);
  EXPECT_EQ(sheet.pixels.heightPx, 150);
  EXPECT_EQ(sheet.dpiX, 100);
  EXPECT_EQ(sheet.dpiY, 50);
  EXPECT_EQ(sheet.pixels.line(25)[300], 0);     // in the bar along the top, an inch high
  EXPECT_EQ(sheet.pixels.line(100)[300], 255);  // below it
}

TEST_F(SheetFileTest, EachKindOfPnmIsRead) {
  const struct {
    const char* name;
    std::string bytes;
    int channels;
    Bytes pixels;
  } rows[] = {
      {"bits as text", "P1\n# a comment\n3 2\n1 0 1\n001", 1, {0, 255, 0, 255, 255, 0}},
      {"grey as text", "P2 3 2 9 0 3 9 9 9 0", 1, {0, 85, 255, 255, 255, 0}},
      {"colour as text", "P3\n1 2\n255\n1 2 3\n4 5 6\n", 3, {1, 2, 3, 4, 5, 6}},
      {"bits", "P4\n9 1\n\x55\x80", 1, {255, 0, 255, 0, 255, 0, 255, 0, 0}},
      {"grey", std::string("P5\n2 2\n255\n\x00\x20#\xFF", 15), 1, {0, 0x20, '#', 255}},
      {"grey of 16 bits", std::string("P5 2 1 65535 \x00\xFF\xFF\xFF", 17), 1, {1, 255}},
      {"colour", std::string("P6 1 1 255\n\n \x0D", 14), 3, {'\n', ' ', '\r'}},
  };
  const std::string path = folder_.file("sheet.pnm");
  for (const auto& row : rows) {
    test::writeFile(path, row.bytes);
    const auto file = openSheetFile(path);
    EXPECT_FALSE(file->hasResolution());
    const Sheet sheet = file->load(0, 100, 100);
    EXPECT_EQ(sheet.pixels.channels, row.channels) << row.name;
    EXPECT_EQ(sheet.pixels.pixels, row.pixels) << row.name;
    EXPECT_EQ(sheet.dpiX, 300);
  }
}

TEST_F(SheetFileTest, ABrokenPnmIsSaidInASentence) {
  const std::string path = folder_.file("sheet.pnm");
  for (const char* bytes : {"P5", "P5 2", "P5 0 2 255 ", "P5 2 2 0 ", "P5 2 2 65536 ", "P5 99999999 1 255 ",
                            "P5 500000 500001 255 ", "P6 x 1 255 "}) {
    test::writeFile(path, bytes);
    EXPECT_THROW(openSheetFile(path), Failure) << bytes;
  }
  for (const char* bytes : {"P5 2 2 255 abc", "P2 2 1 9 5 10", "P2 2 1 9 5", "P1 2 1 02", "P4 9 1 a"}) {
    test::writeFile(path, bytes);
    EXPECT_THROW(openSheetFile(path)->load(0, 1, 1), Failure) << bytes;
  }
}

TEST_F(SheetFileTest, AMissingOrUnknownFileIsSaidInASentence) {
  test::writeFile(folder_.file("sheet.txt"), "hello");
  test::writeFile(folder_.file("empty.png"), "");
  for (const char* name : {"nosuch.png", "sheet.txt", "empty.png"}) {
    try {
      openSheetFile(folder_.file(name));
      ADD_FAILURE() << name;
    } catch (const Failure& failure) {
      EXPECT_NE(std::string(failure.what()).find(name), std::string::npos);
    }
  }
}

// Each beginning of a good file is either refused or gives pixels of the size that its header tells.
TEST_F(SheetFileTest, ACutFileNeverDoesMoreHarmThanBeingRefused) {
  test::writePng(folder_.file("a.png"), patternOf(30, 20, 3), 300);
  test::writeTiff(folder_.file("a.tif"), {patternOf(30, 20, 3)}, 300);
  test::writePdf(folder_.file("a.pdf"), 1, 72, 72);
  test::writeFile(folder_.file("a.jpg"),
                  stringOf(encodeJpeg(patternOf(30, 20, 3), 90, JpegSampling::Yuv420, 300, 300)));
  for (const char* name : {"a.png", "a.tif", "a.pdf", "a.jpg"}) {
    const std::string whole = contentOf(folder_.file(name));
    ASSERT_FALSE(whole.empty()) << name;
    const std::string cut = folder_.file("cut");
    int refused = 0;
    for (std::size_t length = 0; length < whole.size(); ++length) {
      test::writeFile(cut, whole.substr(0, length));
      try {
        const Sheet sheet = openSheetFile(cut)->load(0, 30, 20);
        EXPECT_EQ(sheet.pixels.widthPx, 30) << name << " cut to " << length;
        EXPECT_EQ(sheet.pixels.heightPx, 20) << name << " cut to " << length;
      } catch (const Failure&) {
        ++refused;
      }
    }
    EXPECT_GT(refused, 8) << name;
  }
}

TEST_F(SheetFileTest, AJpegThatEndsEarlyIsNotTakenForGrey) {
  const std::string whole = stringOf(encodeJpeg(patternOf(300, 200, 3), 90, JpegSampling::Yuv420, 300, 300));
  const std::string path = folder_.file("cut.jpg");
  test::writeFile(path, whole.substr(0, whole.size() / 2));
  try {
    openSheetFile(path)->load(0, 300, 300);
    ADD_FAILURE() << "it was taken";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.what(), path + " is broken: it ends before its picture does");
  }
}

TEST(CheckSheetSize, NothingAndTooMuchAreRefused) {
  EXPECT_NO_THROW(checkSheetSize("a", 1, 1));
  EXPECT_NO_THROW(checkSheetSize("a", 10000, 20000));
  EXPECT_THROW(checkSheetSize("a", 0, 1), Failure);
  EXPECT_THROW(checkSheetSize("a", 1, 0), Failure);
  EXPECT_THROW(checkSheetSize("a", 1, kMaxSheetPixels + 1), Failure);
  EXPECT_THROW(checkSheetSize("a", 4294967295, 4294967295), Failure);
}

}  // namespace
}  // namespace vscan
