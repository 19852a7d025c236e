#include "apps/qsscan/tiff_writer.h"

#include <gtest/gtest.h>
#include <tiffio.h>

#include <array>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "apps/qsscan/exit_codes.h"
#include "made_page.h"
#include "temporary_folder.h"

namespace {

using namespace qsscan;
using namespace qsscan_test;

// What a reader of TIFF files sees of one page.
struct ReadPage {
  std::uint32_t widthPx = 0, heightPx = 0;
  std::uint16_t bits = 0, channels = 0, compression = 0, unit = 0, photometric = 0;
  float dpiX = 0, dpiY = 0;
  std::vector<std::uint32_t> pixels;  // top line first
};

std::vector<ReadPage> readTiff(const std::string& name) {
  std::vector<ReadPage> pages;
  const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(name.c_str(), "r"), TIFFClose);
  EXPECT_NE(tiff, nullptr);
  if (!tiff) return pages;
  do {
    ReadPage page;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &page.widthPx);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &page.heightPx);
    TIFFGetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, &page.bits);
    TIFFGetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &page.channels);
    TIFFGetField(tiff.get(), TIFFTAG_COMPRESSION, &page.compression);
    TIFFGetField(tiff.get(), TIFFTAG_PHOTOMETRIC, &page.photometric);
    TIFFGetField(tiff.get(), TIFFTAG_RESOLUTIONUNIT, &page.unit);
    TIFFGetField(tiff.get(), TIFFTAG_XRESOLUTION, &page.dpiX);
    TIFFGetField(tiff.get(), TIFFTAG_YRESOLUTION, &page.dpiY);
    page.pixels.resize(std::size_t{page.widthPx} * page.heightPx);
    EXPECT_EQ(
        TIFFReadRGBAImageOriented(tiff.get(), page.widthPx, page.heightPx, page.pixels.data(), ORIENTATION_TOPLEFT, 1),
        1);
    pages.push_back(std::move(page));
  } while (TIFFReadDirectory(tiff.get()) == 1);
  return pages;
}

std::string write(const TemporaryFolder& folder, const std::vector<Page>& pages) {
  WriterOptions options;
  options.scratchDir = folder.file("");
  const std::string name = folder.file("document.tif");
  std::FILE* stream = std::fopen(name.c_str(), "wb");
  TiffWriter writer(stream, options);
  for (const Page& page : pages) writer.addPage(page);
  writer.finish();
  std::fclose(stream);
  return name;
}

// The colour of a pixel as any reader must see it.
std::array<std::uint8_t, 3> colorAt(const Page& page, int x, int y) {
  const std::uint8_t* line = page.line(y);
  if (page.bitsPerPixel == 24) return {line[3 * x + 2], line[3 * x + 1], line[3 * x]};
  const std::uint8_t grey =
      page.bitsPerPixel == 8 ? line[x] : static_cast<std::uint8_t>((line[x / 8] >> (7 - x % 8)) & 1 ? 255 : 0);
  return {grey, grey, grey};
}

void expectSame(const Page& page, const ReadPage& read) {
  ASSERT_EQ(read.widthPx, static_cast<std::uint32_t>(page.widthPx));
  ASSERT_EQ(read.heightPx, static_cast<std::uint32_t>(page.heightPx));
  for (int y = 0; y < page.heightPx; ++y) {
    for (int x = 0; x < page.widthPx; ++x) {
      const std::uint32_t pixel = read.pixels[static_cast<std::size_t>(y) * read.widthPx + static_cast<std::size_t>(x)];
      const std::array<std::uint8_t, 3> seen = {static_cast<std::uint8_t>(TIFFGetR(pixel)),
                                                static_cast<std::uint8_t>(TIFFGetG(pixel)),
                                                static_cast<std::uint8_t>(TIFFGetB(pixel))};
      ASSERT_EQ(seen, colorAt(page, x, y)) << x << ", " << y;
    }
  }
}

TEST(TiffWriter, HoldsEveryPageWithItsPixelsItsDepthAndItsResolution) {
  const TemporaryFolder folder;
  std::vector<Page> pages = {makePage(37, 41, 24, 300, 1), makePage(203, 90, 1, 600, 2), makePage(50, 9, 8, 150, 3),
                             makePage(2000, 300, 24, 300, 4)};
  pages[0].dpiY = 600;
  const auto read = readTiff(write(folder, pages));
  ASSERT_EQ(read.size(), pages.size());
  for (std::size_t i = 0; i < pages.size(); ++i) {
    SCOPED_TRACE(i);
    expectSame(pages[i], read[i]);
    EXPECT_EQ(read[i].bits, pages[i].bitsPerPixel == 1 ? 1 : 8);
    EXPECT_EQ(read[i].channels, pages[i].bitsPerPixel == 24 ? 3 : 1);
    EXPECT_EQ(read[i].compression == COMPRESSION_LZW, pages[i].bitsPerPixel != 1);
    EXPECT_EQ(read[i].unit, RESUNIT_INCH);
    EXPECT_EQ(std::lround(read[i].dpiX), pages[i].dpiX);
    EXPECT_EQ(std::lround(read[i].dpiY), pages[i].dpiY);
  }
}

TEST(TiffWriter, BlackAndWhiteIsFaxCodedUnlessThatGrows) {
  const TemporaryFolder folder;
  Page text = makePage(800, 600, 1);
  for (std::size_t i = 0; i < text.pixels.size(); ++i) {
    text.pixels[i] = i / text.lineBytes % 20 < 10 && i % 7 == 0 ? std::uint8_t{0x0F} : std::uint8_t{0xFF};
  }
  Page dithered = makePage(800, 600, 1);
  for (std::size_t i = 0; i < dithered.pixels.size(); ++i) {
    dithered.pixels[i] = i / dithered.lineBytes % 2 == 0 ? std::uint8_t{0x55} : std::uint8_t{0xAA};
  }
  const auto read = readTiff(write(folder, {text, dithered, text}));
  ASSERT_EQ(read.size(), 3u);
  EXPECT_EQ(read[0].compression, COMPRESSION_CCITTFAX4);
  EXPECT_EQ(read[1].compression, COMPRESSION_ADOBE_DEFLATE);
  EXPECT_EQ(read[2].compression, COMPRESSION_CCITTFAX4);
  for (const ReadPage& page : read) EXPECT_EQ(page.photometric, PHOTOMETRIC_MINISWHITE);
  expectSame(text, read[0]);
  expectSame(dithered, read[1]);
  expectSame(text, read[2]);
  EXPECT_LT(folder.content("document.tif").size(), dithered.pixels.size() / 2);
}

TEST(TiffWriter, IsTheSameInAFileOfItsOwnAsThroughASpoolFile) {
  const TemporaryFolder folder;
  const std::vector<Page> pages = {makePage(37, 41, 24), makePage(203, 90, 1), makePage(50, 9, 8)};
  write(folder, pages);
  WriterOptions options;
  options.isOwnFile = true;
  std::FILE* stream = std::fopen(folder.file("own.tif").c_str(), "w+b");
  {
    TiffWriter writer(stream, options);
    for (const Page& page : pages) writer.addPage(page);
    EXPECT_EQ(writer.finish().pages, 3);
  }
  std::fclose(stream);
  EXPECT_EQ(folder.content("own.tif"), folder.content("document.tif"));
}

TEST(TiffWriter, LeavesThePageAsItWas) {
  const TemporaryFolder folder;
  for (const int depth : {1, 8, 24}) {
    const Page page = makePage(37, 41, depth);
    const Page before = page;
    write(folder, {page});
    EXPECT_EQ(page.pixels, before.pixels);
  }
}

TEST(TiffWriter, LeavesNothingButTheDocument) {
  const TemporaryFolder folder;
  write(folder, {makePage(10, 10, 8)});
  EXPECT_EQ(folder.names(), std::set<std::string>{"document.tif"});
}

TEST(TiffWriter, WritesIntoAPipe) {
  const TemporaryFolder folder;
  const Page page = makePage(37, 41, 24);
  const std::string name = write(folder, {page, page});
  WriterOptions options;
  options.scratchDir = folder.file("");
  std::FILE* pipe = ::popen(("cat > " + folder.file("piped.tif")).c_str(), "w");
  ASSERT_NE(pipe, nullptr);
  {
    TiffWriter writer(pipe, options);
    writer.addPage(page);
    writer.addPage(page);
    writer.finish();
  }
  EXPECT_EQ(::pclose(pipe), 0);
  EXPECT_EQ(folder.content("piped.tif"), folder.content("document.tif"));
}

TEST(TiffWriter, APageTooManyIsRefusedAndThePagesBeforeItStay) {
  const TemporaryFolder folder;
  WriterOptions options;
  options.scratchDir = folder.file("");
  const std::string name = folder.file("document.tif");
  std::FILE* stream = std::fopen(name.c_str(), "wb");
  Page page = makePage(100, 100, 24);
  std::mt19937 random(1);
  for (auto& byte : page.pixels) byte = static_cast<std::uint8_t>(random());  // hardly to be coded shorter
  TiffWriter writer(stream, options, 150000);
  writer.addPage(page);
  writer.addPage(page);
  try {
    for (int i = 0; i < 10; ++i) writer.addPage(page);
    FAIL() << "more than the limit was taken";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kCannotWrite);
    EXPECT_NE(std::string(error.what()).find("--format pdf"), std::string::npos) << error.what();
  }
  writer.finish();
  std::fclose(stream);
  const auto read = readTiff(name);
  ASSERT_GE(read.size(), 2u);
  for (const ReadPage& one : read) expectSame(page, one);
}

}  // namespace
