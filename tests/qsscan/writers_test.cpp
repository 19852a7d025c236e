#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <sstream>
// After <cstdio>, which it needs.
#include <jpeglib.h>

#include "apps/qsscan/document_writer.h"
#include "apps/qsscan/exit_codes.h"
#include "apps/qsscan/pdf_writer.h"
#include "made_page.h"
#include "temporary_folder.h"

namespace {

using namespace qsscan;
using namespace qsscan_test;

// Writes the pages as one document and gives the file's name.
std::string write(const TemporaryFolder& folder, Format format, const std::vector<Page>& pages,
                  WriterOptions options = {}) {
  options.scratchDir = folder.file("");
  const std::string name = folder.file("document");
  std::FILE* stream = std::fopen(name.c_str(), "wb");
  const auto writer = makeWriter(format, stream, options);
  for (const Page& page : pages) writer->addPage(page);
  writer->finish();
  std::fclose(stream);
  return name;
}

// The picture as samples in reading order, R,G,B for colour; what a reader of any format must see.
std::vector<std::uint8_t> samplesOf(const Page& page) {
  std::vector<std::uint8_t> samples;
  for (int y = 0; y < page.heightPx; ++y) {
    const std::uint8_t* line = page.line(y);
    for (int x = 0; x < page.widthPx; ++x) {
      if (page.bitsPerPixel == 24) {
        samples.insert(samples.end(), {line[3 * x + 2], line[3 * x + 1], line[3 * x]});
      } else if (page.bitsPerPixel == 8) {
        samples.push_back(line[x]);
      } else {
        samples.push_back((line[x / 8] >> (7 - x % 8)) & 1 ? 255 : 0);
      }
    }
  }
  return samples;
}

struct Picture {
  unsigned widthPx = 0, heightPx = 0;
  int channels = 0, bitDepth = 0;
  double dpiX = 0, dpiY = 0;
  std::vector<std::uint8_t> samples;
};

Picture readPng(const std::string& name) {
  std::FILE* stream = std::fopen(name.c_str(), "rb");
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  Picture picture;
  png_init_io(png, stream);
  png_read_png(png, info, PNG_TRANSFORM_EXPAND, nullptr);
  picture.widthPx = png_get_image_width(png, info);
  picture.heightPx = png_get_image_height(png, info);
  picture.channels = png_get_channels(png, info);
  picture.dpiX = png_get_x_pixels_per_meter(png, info) * 0.0254;
  picture.dpiY = png_get_y_pixels_per_meter(png, info) * 0.0254;
  png_bytepp rows = png_get_rows(png, info);
  for (unsigned y = 0; y < picture.heightPx; ++y) {
    picture.samples.insert(picture.samples.end(), rows[y], rows[y] + png_get_rowbytes(png, info));
  }
  png_destroy_read_struct(&png, &info, nullptr);
  std::fclose(stream);
  // The depth in the file, from its header.
  std::FILE* again = std::fopen(name.c_str(), "rb");
  std::fseek(again, 24, SEEK_SET);
  picture.bitDepth = std::fgetc(again);
  std::fclose(again);
  return picture;
}

Picture readJpeg(const std::string& name) {
  std::FILE* stream = std::fopen(name.c_str(), "rb");
  jpeg_decompress_struct info;
  jpeg_error_mgr errors;
  info.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&info);
  jpeg_stdio_src(&info, stream);
  jpeg_read_header(&info, TRUE);
  Picture picture;
  EXPECT_EQ(info.density_unit, 1);
  picture.dpiX = info.X_density;
  picture.dpiY = info.Y_density;
  jpeg_start_decompress(&info);
  picture.widthPx = info.output_width;
  picture.heightPx = info.output_height;
  picture.channels = info.output_components;
  picture.samples.resize(std::size_t{info.output_width} * info.output_height *
                         static_cast<unsigned>(info.output_components));
  while (info.output_scanline < info.output_height) {
    JSAMPROW row = picture.samples.data() + std::size_t{info.output_scanline} * info.output_width *
                                                static_cast<unsigned>(info.output_components);
    jpeg_read_scanlines(&info, &row, 1);
  }
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  std::fclose(stream);
  return picture;
}

// A soft gradient that JPEG keeps nearly as it is.
Page gradient(int widthPx, int heightPx, int bitsPerPixel) {
  Page page = makePage(widthPx, heightPx, bitsPerPixel);
  for (int y = 0; y < heightPx; ++y) {
    std::uint8_t* line = page.pixels.data() + static_cast<std::size_t>(heightPx - 1 - y) * page.lineBytes;
    const int channels = bitsPerPixel / 8;
    for (int x = 0; x < widthPx; ++x) {
      line[channels * x] = static_cast<std::uint8_t>(40 + x);
      if (channels < 3) continue;
      line[3 * x + 1] = static_cast<std::uint8_t>(200 - y);
      line[3 * x + 2] = 90;
    }
  }
  return page;
}

int largestDifference(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
  if (a.size() != b.size()) return 1000;
  int largest = 0;
  for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(int{a[i]} - int{b[i]}));
  return largest;
}

class PngDepth : public testing::TestWithParam<int> {};

TEST_P(PngDepth, HoldsThePictureAndItsResolution) {
  const TemporaryFolder folder;
  Page page = makePage(37, 11, GetParam(), 300);
  page.dpiY = 600;
  const Picture picture = readPng(write(folder, Format::kPng, {page}));
  EXPECT_EQ(picture.widthPx, 37u);
  EXPECT_EQ(picture.heightPx, 11u);
  EXPECT_EQ(picture.channels, GetParam() == 24 ? 3 : 1);
  EXPECT_EQ(picture.bitDepth, GetParam() == 1 ? 1 : 8);
  EXPECT_NEAR(picture.dpiX, 300, 0.02);
  EXPECT_NEAR(picture.dpiY, 600, 0.02);
  EXPECT_EQ(picture.samples, samplesOf(page));
}

INSTANTIATE_TEST_SUITE_P(Writers, PngDepth, testing::Values(1, 8, 24));

class JpegDepth : public testing::TestWithParam<int> {};

TEST_P(JpegDepth, HoldsThePictureAndItsResolution) {
  const TemporaryFolder folder;
  Page page = gradient(64, 48, GetParam());
  page.dpiX = 150;
  page.dpiY = 300;
  const Picture picture = readJpeg(write(folder, Format::kJpeg, {page}));
  EXPECT_EQ(picture.widthPx, 64u);
  EXPECT_EQ(picture.heightPx, 48u);
  EXPECT_EQ(picture.channels, GetParam() == 24 ? 3 : 1);
  EXPECT_EQ(picture.dpiX, 150);
  EXPECT_EQ(picture.dpiY, 300);
  EXPECT_LE(largestDifference(picture.samples, samplesOf(page)), 8);
}

INSTANTIATE_TEST_SUITE_P(Writers, JpegDepth, testing::Values(8, 24));

TEST(Writers, ABlackAndWhitePageBecomesAGreyJpeg) {
  const TemporaryFolder folder;
  Page page = makePage(40, 16, 1);
  for (std::size_t i = 0; i < page.pixels.size(); ++i) page.pixels[i] = i % page.lineBytes < 3 ? 0xFF : 0;
  const Picture picture = readJpeg(write(folder, Format::kJpeg, {page}));
  EXPECT_EQ(picture.channels, 1);
  EXPECT_LE(largestDifference(picture.samples, samplesOf(page)), 8);
}

TEST(Writers, JpegQualityChangesTheSize) {
  const TemporaryFolder low;
  const TemporaryFolder high;
  WriterOptions options;
  options.jpegQuality = 20;
  write(low, Format::kJpeg, {makePage(200, 200, 24)}, options);
  options.jpegQuality = 95;
  write(high, Format::kJpeg, {makePage(200, 200, 24)}, options);
  EXPECT_LT(2 * low.content("document").size(), high.content("document").size());
}

TEST(Writers, APageTooLongForJpegIsASentence) {
  const TemporaryFolder folder;
  try {
    write(folder, Format::kJpeg, {makePage(1, 65501, 8)});
    FAIL() << "written";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kCannotWrite);
    EXPECT_NE(std::string(error.what()).find("Page 1 cannot be written as JPEG"), std::string::npos) << error.what();
  }
}

struct PnmRow {
  int bitsPerPixel;
  const char* head;
};

TEST(Writers, PnmHoldsThePictureWithItsResolutionInAComment) {
  for (const PnmRow& row : {PnmRow{1, "P4\n# 300 x 600 dpi\n37 11\n"}, PnmRow{8, "P5\n# 300 x 600 dpi\n37 11\n255\n"},
                            PnmRow{24, "P6\n# 300 x 600 dpi\n37 11\n255\n"}}) {
    SCOPED_TRACE(row.bitsPerPixel);
    const TemporaryFolder folder;
    Page page = makePage(37, 11, row.bitsPerPixel, 300);
    page.dpiY = 600;
    write(folder, Format::kPnm, {page});
    const std::string file = folder.content("document");
    const std::size_t head = std::strlen(row.head);
    ASSERT_EQ(file.substr(0, head), row.head);
    std::vector<std::uint8_t> expected = samplesOf(page);
    if (row.bitsPerPixel == 1) {
      // Lines of whole bytes, a set bit for black.
      expected.clear();
      for (int y = 0; y < page.heightPx; ++y) {
        for (std::size_t i = 0; i < page.lineBytes; ++i) expected.push_back(page.line(y)[i] ^ 0xFF);
      }
    }
    EXPECT_EQ(file.substr(head), std::string(expected.begin(), expected.end()));
  }
}

TEST(Writers, AFullDiskIsASentenceInEachFormat) {
  for (const Format format : {Format::kPdf, Format::kTiff, Format::kPng, Format::kJpeg, Format::kPnm}) {
    const TemporaryFolder folder;
    WriterOptions options;
    options.scratchDir = folder.file("");
    std::FILE* full = std::fopen("/dev/full", "wb");
    ASSERT_NE(full, nullptr);
    std::setvbuf(full, nullptr, _IONBF, 0);
    const auto writer = makeWriter(format, full, options);
    std::string sentence;
    try {
      writer->addPage(makePage(300, 300, 24));
      const Finished finished = writer->finish();
      EXPECT_EQ(finished.pages, 0);
      if (finished.failure) sentence = finished.failure->what();
    } catch (const CommandError& error) {
      sentence = error.what();
    }
    EXPECT_NE(sentence.find("cannot be written: No space left on device. Make room"), std::string::npos) << sentence;
    std::fclose(full);
  }
}

// One image of a page of a PDF.
struct PdfPage {
  double widthPt = 0, heightPt = 0;
  std::string filter, colorSpace;
  int widthPx = 0, heightPx = 0, bitsPerComponent = 0;
  QPDFObjectHandle image;

  std::string data(qpdf_stream_decode_level_e level) {
    const auto buffer = level == qpdf_dl_none ? image.getRawStreamData() : image.getStreamData(level);
    return {reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize()};
  }
};

std::vector<PdfPage> readPdf(QPDF& pdf, const std::string& name) {
  pdf.setSuppressWarnings(true);
  pdf.setAttemptRecovery(false);
  pdf.processFile(name.c_str());
  EXPECT_TRUE(pdf.getWarnings().empty());
  std::vector<PdfPage> pages;
  for (auto& helper : QPDFPageDocumentHelper(pdf).getAllPages()) {
    const auto images = helper.getImages();
    EXPECT_EQ(images.size(), 1u) << "one image a page";
    PdfPage page;
    auto box = helper.getMediaBox().getArrayAsVector();
    EXPECT_EQ(box.at(0).getNumericValue(), 0);
    page.widthPt = box.at(2).getNumericValue();
    page.heightPt = box.at(3).getNumericValue();
    page.image = images.begin()->second;
    auto dictionary = page.image.getDict();
    page.filter = dictionary.getKey("/Filter").getName();
    page.colorSpace = dictionary.getKey("/ColorSpace").getName();
    page.widthPx = dictionary.getKey("/Width").getIntValueAsInt();
    page.heightPx = dictionary.getKey("/Height").getIntValueAsInt();
    page.bitsPerComponent = dictionary.getKey("/BitsPerComponent").getIntValueAsInt();
    pages.push_back(page);
  }
  return pages;
}

std::string asString(const std::vector<std::uint8_t>& bytes) { return {bytes.begin(), bytes.end()}; }

TEST(PdfWriter, PagesHaveTheirPhysicalSizeWhateverTheirResolution) {
  const TemporaryFolder folder;
  Page uneven = makePage(300, 300, 8, 300);
  uneven.dpiY = 600;
  QPDF pdf;
  const auto pages =
      readPdf(pdf, write(folder, Format::kPdf, {makePage(2480, 3508, 24, 300), makePage(850, 1100, 8, 100), uneven}));
  ASSERT_EQ(pages.size(), 3u);
  EXPECT_NEAR(pages[0].widthPt, 595.2, 0.0001);
  EXPECT_NEAR(pages[0].heightPt, 841.92, 0.0001);
  EXPECT_NEAR(pages[1].widthPt, 612, 0.0001);
  EXPECT_NEAR(pages[1].heightPt, 792, 0.0001);
  EXPECT_NEAR(pages[2].widthPt, 72, 0.0001);
  EXPECT_NEAR(pages[2].heightPt, 36, 0.0001);
}

TEST(PdfWriter, TellsProducerAndDate) {
  const TemporaryFolder folder;
  QPDF pdf;
  readPdf(pdf, write(folder, Format::kPdf, {makePage(10, 10, 8)}));
  auto information = pdf.getTrailer().getKey("/Info");
  EXPECT_EQ(information.getKey("/Producer").getUTF8Value(), "qsscan " QSSCAN_VERSION);
  const std::string date = information.getKey("/CreationDate").getUTF8Value();
  ASSERT_EQ(date.size(), 23u) << date;
  EXPECT_EQ(date.substr(0, 4), "D:20");
  EXPECT_EQ(date.back(), '\'');
}

TEST(PdfWriter, ColourAndGreyAreJpegPicturesAsTheyStandInAJpegFile) {
  const TemporaryFolder folder;
  for (const int depth : {8, 24}) {
    const Page page = makePage(50, 40, depth);
    const TemporaryFolder alone;
    write(alone, Format::kJpeg, {page});
    QPDF pdf;
    auto pages = readPdf(pdf, write(folder, Format::kPdf, {page}));
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_EQ(pages[0].filter, "/DCTDecode");
    EXPECT_EQ(pages[0].colorSpace, depth == 24 ? "/DeviceRGB" : "/DeviceGray");
    EXPECT_EQ(pages[0].bitsPerComponent, 8);
    EXPECT_EQ(pages[0].widthPx, 50);
    EXPECT_EQ(pages[0].heightPx, 40);
    EXPECT_EQ(pages[0].data(qpdf_dl_none), alone.content("document"));
  }
}

TEST(PdfWriter, LosslessPagesHoldExactlyTheirPixels) {
  const TemporaryFolder folder;
  WriterOptions options;
  options.lossless = true;
  const std::vector<Page> given = {makePage(37, 41, 24), makePage(37, 41, 8)};
  QPDF pdf;
  auto pages = readPdf(pdf, write(folder, Format::kPdf, given, options));
  ASSERT_EQ(pages.size(), 2u);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(pages[i].filter, "/FlateDecode");
    EXPECT_EQ(pages[i].data(qpdf_dl_generalized), asString(samplesOf(given[i])));
  }
}

// The strip of fax data as any TIFF reader decodes it: a set bit is black there.
std::vector<std::uint8_t> decodeFax(const TemporaryFolder& folder, const std::string& coded, int widthPx,
                                    int heightPx) {
  const std::string name = folder.file("fax.tif");
  TIFF* tiff = TIFFOpen(name.c_str(), "w");
  const auto setUp = [&] {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, widthPx);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, heightPx);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, heightPx);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
  };
  setUp();
  std::string bytes = coded;
  TIFFWriteRawStrip(tiff, 0, bytes.data(), static_cast<tmsize_t>(bytes.size()));
  TIFFClose(tiff);
  tiff = TIFFOpen(name.c_str(), "r");
  std::vector<std::uint8_t> lines(static_cast<std::size_t>((widthPx + 7) / 8 * heightPx));
  EXPECT_EQ(TIFFReadEncodedStrip(tiff, 0, lines.data(), static_cast<tmsize_t>(lines.size())),
            static_cast<tmsize_t>(lines.size()));
  TIFFClose(tiff);
  return lines;
}

TEST(PdfWriter, BlackAndWhitePagesAreFaxCodedBitByBit) {
  const TemporaryFolder folder;
  Page page = makePage(203, 90, 1);
  for (int y = 0; y < 90; ++y) {
    std::uint8_t* line = page.pixels.data() + static_cast<std::size_t>(89 - y) * page.lineBytes;
    std::memset(line, 0xFF, page.lineBytes);
    if (y % 9 < 4) line[y / 8 + 2] = static_cast<std::uint8_t>(0xC3 >> (y % 3));
  }
  QPDF pdf;
  auto pages = readPdf(pdf, write(folder, Format::kPdf, {page}));
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_EQ(pages[0].filter, "/CCITTFaxDecode");
  EXPECT_EQ(pages[0].colorSpace, "/DeviceGray");
  EXPECT_EQ(pages[0].bitsPerComponent, 1);
  auto parameters = pages[0].image.getDict().getKey("/DecodeParms");
  EXPECT_EQ(parameters.getKey("/K").getIntValue(), -1);
  EXPECT_EQ(parameters.getKey("/Columns").getIntValue(), 203);
  EXPECT_EQ(parameters.getKey("/Rows").getIntValue(), 90);
  EXPECT_FALSE(parameters.hasKey("/BlackIs1"));

  const auto decoded = decodeFax(folder, pages[0].data(qpdf_dl_none), 203, 90);
  for (int y = 0; y < 90; ++y) {
    for (int x = 0; x < 203; ++x) {
      const auto at = static_cast<std::size_t>(x / 8);
      const bool white = (page.line(y)[at] >> (7 - x % 8)) & 1;
      const bool black = (decoded[static_cast<std::size_t>(y) * page.lineBytes + at] >> (7 - x % 8)) & 1;
      ASSERT_NE(white, black) << x << ", " << y;
    }
  }
}

TEST(PdfWriter, DitheredPagesStayFlateWhereFaxCodingWouldGrow) {
  const TemporaryFolder folder;
  Page page = makePage(800, 600, 1);
  for (std::size_t i = 0; i < page.pixels.size(); ++i) {
    page.pixels[i] = i / page.lineBytes % 2 == 0 ? std::uint8_t{0x55} : std::uint8_t{0xAA};
  }
  QPDF pdf;
  auto pages = readPdf(pdf, write(folder, Format::kPdf, {page}));
  EXPECT_EQ(pages.at(0).filter, "/FlateDecode");
  EXPECT_EQ(pages.at(0).bitsPerComponent, 1);
  const std::string data = pages.at(0).data(qpdf_dl_generalized);
  ASSERT_EQ(data.size(), page.pixels.size());
  EXPECT_EQ(std::memcmp(data.data(), page.line(0), page.lineBytes), 0);
}

TEST(PdfWriter, APageTooLongForJpegIsFlate) {
  const TemporaryFolder folder;
  QPDF pdf;
  auto pages = readPdf(pdf, write(folder, Format::kPdf, {makePage(1, 65501, 8)}));
  EXPECT_EQ(pages.at(0).filter, "/FlateDecode");
}

std::string outputOf(const std::string& command) {
  std::string text;
  std::FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
  for (int c = 0; (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
  ::pclose(pipe);
  return text;
}

// The programs that people check a PDF with, where they are installed.
TEST(PdfWriter, OtherReadersFindNoFaultAndTheRightResolution) {
  const TemporaryFolder folder;
  Page text = makePage(800, 600, 1, 600);
  std::memset(text.pixels.data(), 0xFF, text.pixels.size());
  const std::string name = write(folder, Format::kPdf, {makePage(300, 200, 24, 300), text, makePage(100, 100, 8, 150)});
  const std::string check = outputOf("qpdf --check '" + name + "'");
  const std::string list = outputOf("pdfimages -list '" + name + "'");
  if (check.find("not found") != std::string::npos || list.find("not found") != std::string::npos) {
    GTEST_SKIP() << "qpdf or pdfimages is not installed.";
  }
  EXPECT_NE(check.find("No syntax or stream encoding errors found"), std::string::npos) << check;
  EXPECT_EQ(check.find("WARNING"), std::string::npos) << check;
  std::istringstream lines(list.substr(list.find("---")));
  std::string line, page, number, type, width, height, color, channels, bits, coding, interpolated, object, id, dpiX,
      dpiY;
  std::getline(lines, line);
  const struct {
    const char *width, *color, *bits, *coding, *dpi;
  } rows[] = {
      {"300", "rgb", "8", "jpeg", "300"}, {"800", "gray", "1", "ccitt", "600"}, {"100", "gray", "8", "jpeg", "150"}};
  for (const auto& row : rows) {
    ASSERT_TRUE(std::getline(lines, line)) << list;
    std::istringstream words(line);
    words >> page >> number >> type >> width >> height >> color >> channels >> bits >> coding >> interpolated >>
        object >> id >> dpiX >> dpiY;
    EXPECT_EQ(width, row.width);
    EXPECT_EQ(color, row.color);
    EXPECT_EQ(bits, row.bits);
    EXPECT_EQ(coding, row.coding);
    EXPECT_EQ(dpiX, row.dpi);
    EXPECT_EQ(dpiY, row.dpi);
  }
}

TEST(PdfWriter, APageTooManyIsRefusedAndThePagesBeforeItStay) {
  const TemporaryFolder folder;
  WriterOptions options;
  options.scratchDir = folder.file("");
  options.isOwnFile = true;
  options.lossless = true;
  std::FILE* stream = std::fopen(folder.file("document").c_str(), "w+b");
  {
    PdfWriter writer(stream, options, 5000);
    int pages = 0;
    try {
      for (; pages < 100; ++pages) writer.addPage(makePage(100, 100, 24));
      FAIL() << "more than the limit was taken";
    } catch (const CommandError& error) {
      EXPECT_NE(std::string(error.what()).find("--batch"), std::string::npos) << error.what();
    }
    ASSERT_GT(pages, 1);
    const int kept = writer.finish().pages;
    EXPECT_LE(kept, pages);
    EXPECT_GE(kept, pages - 1) << "the end of the document takes the room of one page at most";
    std::fclose(stream);
    QPDF pdf;
    EXPECT_EQ(readPdf(pdf, folder.file("document")).size(), static_cast<std::size_t>(kept));
  }
  EXPECT_LE(folder.content("document").size(), 5000u);
}

TEST(PdfWriter, IntoAPipeIsTheSameDocument) {
  const TemporaryFolder folder;
  const std::vector<Page> pages = {makePage(37, 41, 24), makePage(203, 90, 1)};
  WriterOptions options;
  options.scratchDir = folder.file("");
  std::FILE* pipe = ::popen(("cat > '" + folder.file("piped") + "'").c_str(), "w");
  const auto writer = makeWriter(Format::kPdf, pipe, options);
  for (const Page& page : pages) writer->addPage(page);
  EXPECT_EQ(writer->finish().pages, 2);
  ::pclose(pipe);
  QPDF pdf;
  const auto read = readPdf(pdf, folder.file("piped"));
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(read[1].widthPx, 203);
}

TEST(PdfWriter, LeavesNothingButTheDocument) {
  const TemporaryFolder folder;
  write(folder, Format::kPdf, {makePage(10, 10, 8)});
  EXPECT_EQ(folder.names(), std::set<std::string>{"document"});
}

}  // namespace
