// The JPEG decoder on good pictures, and its calls out of order.
#include "modules/JpegDecode.h"

#include <gtest/gtest.h>

#include "jpeg_decode_harness.h"
#include "jpeg_pictures.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;

struct PictureCase {
  const char* name;
  int widthPx;
  int heightPx;
  int parts;
  Encoding how;
};
void PrintTo(const PictureCase& row, std::ostream* out) { *out << row.name; }

const PictureCase kPictures[] = {
    {"OnePixel", 1, 1, 3, {}},
    {"ThreeByTwo", 3, 2, 3, {}},
    {"Colour", 101, 77, 3, {}},
    {"ColourWithFullParts", 101, 77, 3, {.fullColor = true}},
    {"ColourStoredAsRgb", 50, 40, 3, {.colors = JCS_RGB}},
    {"ColourWithRestarts", 101, 77, 3, {.restartRows = 1}},
    {"ProgressiveColour", 101, 77, 3, {.progressive = true}},
    {"Gray", 101, 77, 1, {}},
    {"ProgressiveGray", 33, 20, 1, {.progressive = true}},
    {"WiderThanOneFeed", 1000, 900, 3, {.quality = 100, .fullColor = true}},
};

class GoodPicture : public testing::TestWithParam<PictureCase> {
 protected:
  void SetUp() override {
    const PictureCase& row = GetParam();
    jpeg_ = encodeJpeg(drawPicture(row.widthPx, row.heightPx, row.parts), row.how);
    ASSERT_TRUE(decodeWithLibjpeg(jpeg_, expected_));
    ASSERT_NE(decoder_, nullptr);
  }

  std::unique_ptr<IJpegDecode> decoder_ = jpegModule();
  std::vector<std::uint8_t> jpeg_;
  Pixels expected_;
};

TEST_P(GoodPicture, IsTheLibrarysOwnInPageMode) {
  const Decoded page = decodePage(*decoder_, jpeg_);
  EXPECT_EQ(page.status, 0);
  EXPECT_EQ(page.bitsPerPixel, expected_.parts * 8);
  EXPECT_EQ(page.bytes, expected_.bytes);
}

TEST_P(GoodPicture, IsTheLibrarysOwnInBandModeHoweverItIsFed) {
  for (const std::size_t span : {0u, 1u, 13u, 1000u}) {
    if (span == 1 && jpeg_.size() > 100000) continue;
    const Decoded band = decodeBand(*decoder_, jpeg_, span);
    EXPECT_EQ(band.status, 0) << span;
    EXPECT_EQ(band.bitsPerPixel, expected_.parts * 8);
    EXPECT_EQ(band.heightPx, expected_.heightPx);
    EXPECT_EQ(band.widthPx, expected_.widthPx);
    ASSERT_EQ(band.bytes, expected_.bytes) << span;
  }
}

INSTANTIATE_TEST_SUITE_P(JpegDecode, GoodPicture, testing::ValuesIn(kPictures),
                         [](const auto& row) { return std::string(row.param.name); });

class JpegDecode : public testing::Test {
 protected:
  std::unique_ptr<IJpegDecode> decoder_ = jpegModule();
};

std::uint32_t word(const tagQS_SCAN_IMAGEDATA& image, std::size_t at) {
  const std::uint8_t* p = image.data + at;
  return p[0] | static_cast<std::uint32_t>(p[1]) << 8 | static_cast<std::uint32_t>(p[2]) << 16 |
         static_cast<std::uint32_t>(p[3]) << 24;
}

TEST_F(JpegDecode, APageIsACompleteBmpWithLinesThatAreNotPadded) {
  const auto jpeg = encodeJpeg(drawPicture(5, 7, 3), {.dpi = 200});
  tagQS_SCAN_IMAGEDATA image{};
  ASSERT_EQ(decoder_->DecodePage(jpeg.data(), static_cast<unsigned>(jpeg.size()), &image), JPEGDECODE_OK);
  EXPECT_EQ(image.dataSize, 54u + 5 * 3 * 7);
  EXPECT_EQ(image.pixelData, image.data + 54);
  EXPECT_EQ(image.pixelDataSize, 5u * 3 * 7);
  EXPECT_EQ(image.resolutionX, 200);
  EXPECT_EQ(image.resolutionY, 200);
  EXPECT_EQ(image.bitPerPixel, 24);
  EXPECT_EQ(image.widthPixel, 5);
  EXPECT_EQ(image.heightPixel, 7);
  EXPECT_EQ(image.widthBytes, 15);
  EXPECT_FALSE(image.isBlankPage);

  EXPECT_EQ(image.data[0], 'B');
  EXPECT_EQ(image.data[1], 'M');
  EXPECT_EQ(word(image, 2), 54u + 5 * 3 * 7) << "file size";
  EXPECT_EQ(word(image, 10), 54u) << "offset of the pixels";
  EXPECT_EQ(word(image, 14), 40u) << "size of the information header";
  EXPECT_EQ(word(image, 18), 5u) << "width";
  EXPECT_EQ(word(image, 22), 7u) << "height, positive: the first line is the bottom";
  EXPECT_EQ(word(image, 26), 1u | 24u << 16) << "planes and bits";
  EXPECT_EQ(word(image, 30), 0u) << "compression";
  EXPECT_EQ(word(image, 34), 5u * 3 * 7) << "pixel data size";
  EXPECT_EQ(word(image, 38), 7874u) << "pixels per metre";
  EXPECT_EQ(word(image, 42), 7874u) << "pixels per metre";
  EXPECT_EQ(word(image, 46), 0u) << "colours used";
  decoder_->EndPage();
  decoder_->EndPage();
}

TEST_F(JpegDecode, AGrayPageHasAPaletteOfGrays) {
  const auto jpeg = encodeJpeg(drawPicture(5, 7, 1));
  tagQS_SCAN_IMAGEDATA image{};
  ASSERT_EQ(decoder_->DecodePage(jpeg.data(), static_cast<unsigned>(jpeg.size()), &image), JPEGDECODE_OK);
  EXPECT_EQ(image.dataSize, 1078u + 5 * 7);
  EXPECT_EQ(image.pixelData, image.data + 1078);
  EXPECT_EQ(image.bitPerPixel, 8);
  EXPECT_EQ(image.widthBytes, 5);
  EXPECT_EQ(word(image, 10), 1078u);
  EXPECT_EQ(word(image, 38), 11811u);
  EXPECT_EQ(word(image, 46), 256u);
  for (std::uint32_t i = 0; i < 256; ++i) EXPECT_EQ(word(image, 54 + 4 * i), i | i << 8 | i << 16);
}

TEST_F(JpegDecode, ThePixelsAreRedGreenBlue) {
  Pixels red{16, 16, 3, {}};
  for (int i = 0; i < 256; ++i) red.bytes.insert(red.bytes.end(), {250, 5, 5});
  const auto jpeg = encodeJpeg(red);
  for (const Decoded& decoded : {decodePage(*decoder_, jpeg), decodeBand(*decoder_, jpeg)}) {
    ASSERT_EQ(decoded.status, 0);
    EXPECT_GT(decoded.bytes[0], 200);
    EXPECT_LT(decoded.bytes[2], 60);
  }
}

TEST_F(JpegDecode, APictureThatDoesNotTellItsResolutionHasNone) {
  const auto jpeg = encodeJpeg(drawPicture(5, 7, 1), {.dpi = 0});
  tagQS_SCAN_IMAGEDATA image{};
  ASSERT_EQ(decoder_->DecodePage(jpeg.data(), static_cast<unsigned>(jpeg.size()), &image), JPEGDECODE_OK);
  EXPECT_EQ(image.resolutionX, 0);
  EXPECT_EQ(word(image, 38), 0u);
  JPEGBANDINFO info{};
  ASSERT_EQ(decoder_->OpenBand(jpeg.data(), static_cast<unsigned>(jpeg.size()), &info), JPEGDECODE_OK);
  EXPECT_EQ(info.resolutionX, 0);
}

TEST_F(JpegDecode, TheHeightInTheHeaderIsTheHeight) {
  const auto jpeg = encodeJpeg(drawPicture(40, 64, 3));
  for (const int heightPx : {1, 15, 16, 17, 63, 64}) {
    const auto lowered = withHeight(jpeg, heightPx);
    Pixels expected;
    ASSERT_TRUE(decodeWithLibjpeg(lowered, expected));
    ASSERT_EQ(expected.heightPx, heightPx);
    const Decoded page = decodePage(*decoder_, lowered);
    EXPECT_EQ(page.heightPx, heightPx);
    EXPECT_EQ(page.bytes, expected.bytes) << heightPx;
    const Decoded band = decodeBand(*decoder_, lowered);
    EXPECT_EQ(band.heightPx, heightPx);
    EXPECT_EQ(band.bytes, expected.bytes) << heightPx;
  }
}

TEST_F(JpegDecode, OpeningABandUsesNothingOfTheData) {
  const auto jpeg = encodeJpeg(drawPicture(40, 64, 3), {.dpi = 150});
  JPEGBANDINFO info{};
  ASSERT_EQ(decoder_->OpenBand(jpeg.data(), static_cast<unsigned>(jpeg.size()), &info), JPEGDECODE_OK);
  EXPECT_EQ(info.resolutionX, 150);
  EXPECT_EQ(info.resolutionY, 150);
  EXPECT_EQ(info.bitPerPixel, 24);
  EXPECT_EQ(info.widthPixel, 40);
  EXPECT_EQ(info.heightPixel, 64);
  EXPECT_EQ(info.reserved, 0);
  void* line = &info;
  unsigned size = 1;
  EXPECT_EQ(decoder_->ReadBandLine(&line, &size), JPEGDECODE_NEED_INPUT);
  EXPECT_EQ(line, nullptr);
  EXPECT_EQ(size, 0u);
}

TEST_F(JpegDecode, AfterTheLastLineThereIsNone) {
  const auto jpeg = encodeJpeg(drawPicture(4, 2, 3));
  const auto size = static_cast<unsigned>(jpeg.size());
  JPEGBANDINFO info{};
  ASSERT_EQ(decoder_->OpenBand(jpeg.data(), size, &info), JPEGDECODE_OK);
  ASSERT_EQ(decoder_->WriteBand(jpeg.data(), size), JPEGDECODE_OK);
  void* line = nullptr;
  unsigned lineBytes = 0;
  EXPECT_EQ(decoder_->ReadBandLine(&line, &lineBytes), JPEGDECODE_MORE_LINES);
  EXPECT_EQ(lineBytes, 12u);
  EXPECT_EQ(decoder_->ReadBandLine(&line, &lineBytes), JPEGDECODE_OK);
  EXPECT_EQ(lineBytes, 12u);
  EXPECT_EQ(decoder_->ReadBandLine(&line, &lineBytes), JPEGDECODE_OK);
  EXPECT_EQ(lineBytes, 0u);
  EXPECT_EQ(decoder_->WriteBand(jpeg.data(), 1), JPEGDECODE_WRITE_BAND) << "more than the picture has";
}

TEST_F(JpegDecode, CallsWithoutABandAreToldSo) {
  const std::uint8_t byte = 0;
  void* line = nullptr;
  unsigned size = 0;
  EXPECT_EQ(decoder_->WriteBand(&byte, 1), JPEGDECODE_NOT_OPENED);
  EXPECT_EQ(decoder_->ReadBandLine(&line, &size), JPEGDECODE_NOT_OPENED);
  decoder_->CloseBand();
  decoder_->CloseBand();
  decoder_->EndPage();
}

TEST_F(JpegDecode, MissingArgumentsAreInvalid) {
  const auto jpeg = encodeJpeg(drawPicture(4, 2, 3));
  const auto size = static_cast<unsigned>(jpeg.size());
  tagQS_SCAN_IMAGEDATA image{};
  JPEGBANDINFO info{};
  EXPECT_EQ(decoder_->DecodePage(nullptr, size, &image), JPEGDECODE_INVALID_PARAMETER);
  EXPECT_EQ(decoder_->DecodePage(nullptr, 0, &image), JPEGDECODE_INVALID_PARAMETER);
  EXPECT_EQ(decoder_->DecodePage(jpeg.data(), 0, &image), JPEGDECODE_INVALID_PARAMETER);
  EXPECT_EQ(decoder_->DecodePage(jpeg.data(), size, nullptr), JPEGDECODE_INVALID_PARAMETER);
  EXPECT_EQ(decoder_->OpenBand(nullptr, size, &info), JPEGDECODE_INVALID_PARAMETER);
  EXPECT_EQ(decoder_->OpenBand(jpeg.data(), 0, &info), JPEGDECODE_INVALID_PARAMETER);
  EXPECT_EQ(decoder_->OpenBand(jpeg.data(), size, nullptr), JPEGDECODE_INVALID_PARAMETER);
  ASSERT_EQ(decoder_->OpenBand(jpeg.data(), size, &info), JPEGDECODE_OK);
  void* line = nullptr;
  EXPECT_EQ(decoder_->WriteBand(nullptr, 1), JPEGDECODE_INVALID_PARAMETER);
  EXPECT_EQ(decoder_->ReadBandLine(&line, nullptr), JPEGDECODE_INVALID_PARAMETER);
  EXPECT_EQ(decoder_->ReadBandLine(nullptr, nullptr), JPEGDECODE_INVALID_PARAMETER);
}

TEST_F(JpegDecode, AVeryLargePageAsksForBands) {
  EXPECT_EQ(decoder_->GetDecodeMode(0), 1);
  EXPECT_EQ(decoder_->GetDecodeMode(26u << 20), 1) << "A4 in colour at 300 dpi";
  EXPECT_EQ(decoder_->GetDecodeMode(256u << 20), 1);
  EXPECT_NE(decoder_->GetDecodeMode((256u << 20) + 1), 1);
  EXPECT_NE(decoder_->GetDecodeMode(UINT32_MAX), 1);
}

}  // namespace
