// Pages of every kind through the whole pipeline on the real modules, each held against a BMP that the test puts
// together itself.
#include <gtest/gtest.h>

#include <string>

#include "tests/image/pipeline_run.h"
#include "tests/image/sent_page.h"

using namespace orvalle_scan_api;
using namespace fakes;

namespace {

constexpr int kWidth = 45;  // no multiple of eight
constexpr int kHeight = 21;
DrawnPage meanOf(DrawnPage page) {
  for (std::size_t i = 0; i < page.rgb.size(); i += 3) {
    const int mean = (page.rgb[i] + page.rgb[i + 1] + page.rgb[i + 2]) / 3;
    std::fill_n(&page.rgb[i], 3, static_cast<std::uint8_t>(mean));
  }
  page.bpp = 8;
  return page;
}

struct Road {
  const char* name;
  COLORTYPE color;  // of the settings
  // Sends a page into the stores and returns the picture that it shows.
  DrawnPage (*send)(CImageData& page, unsigned seed);
};
void PrintTo(const Road& road, std::ostream* out) { *out << road.name; }

template <int kBpp, COLORTYPE kColor, int kKind, int kCode>
DrawnPage plainLines(CImageData& page, unsigned seed) {
  const DrawnPage drawn = drawPage(kWidth, kHeight, kBpp, seed);
  sendLines(page, drawn, kColor, kKind, kCode);
  return drawn;
}

template <int kCode>
DrawnPage planes(CImageData& page, unsigned seed) {
  const DrawnPage drawn = drawPage(kWidth, kHeight, 24, seed);
  sendPlanes(page, drawn, kCode);
  return drawn;
}

// The store of a grey page is labelled 5 and 3 while its records are of kind 7.
DrawnPage packedGrayUnderTheLabelOfColour(CImageData& page, unsigned seed) {
  const DrawnPage drawn = drawPage(kWidth, kHeight, 8, seed);
  startLines(page, kWidth, COLORTYPE_TRUEGRAY, 5, kPacked);
  for (int y = 0; y < kHeight; ++y) writeRecord(page.m_rawData, 7, kPacked, lineOf(drawn, y));
  page.m_rawData.FinishWriteData(false, 0);
  return drawn;
}

// One white line as the last record turns the store's code to that of a BMP.
DrawnPage whiteLinesAmongOthers(CImageData& page, unsigned seed) {
  DrawnPage drawn = drawPage(kWidth, kHeight, 24, seed);
  startLines(page, kWidth, COLORTYPE_COLOR24BIT, 5, kPacked);
  for (int y = 0; y < kHeight; ++y) {
    if (y % 4 == 0) {
      page.m_rawData.WriteLineData(1, kRaw, nullptr, 0);
      std::fill_n(drawn.pixel(0, y), kWidth * 3, std::uint8_t{0xFF});
    } else {
      writeRecord(page.m_rawData, 5, kPacked, lineOf(drawn, y));
    }
  }
  static_assert((kHeight - 1) % 4 == 0);
  page.m_rawData.UpdateCompressType(kRaw);
  page.m_rawData.FinishWriteData(false, 0);
  return drawn;
}

// What automatic colour brings: lines of every depth in one page of colour.
DrawnPage linesOfEveryDepth(CImageData& page, unsigned seed) {
  DrawnPage drawn = drawPage(kWidth, kHeight, 24, seed);
  const DrawnPage gray = drawPage(kWidth, kHeight, 8, seed + 1);
  const DrawnPage mono = drawPage(kWidth, kHeight, 1, seed + 2);
  startLines(page, kWidth, COLORTYPE_AUTO, 5, kPacked);
  for (int y = 0; y < kHeight; ++y) {
    const DrawnPage& source = y % 3 == 0 ? drawn : y % 3 == 1 ? gray : mono;
    writeRecord(page.m_rawData, y % 3 == 0 ? 5 : y % 3 == 1 ? 7 : 1, y % 2 == 0 ? kPacked : kRaw, lineOf(source, y));
    std::copy_n(source.pixel(0, y), kWidth * 3, drawn.pixel(0, y));
  }
  page.m_rawData.FinishWriteData(false, 0);
  return drawn;
}

// The lines of the older devices are as long as the width rounded up to sixteen pixels.
template <int kBpp, COLORTYPE kColor, int kKind, int kCode>
DrawnPage linesOfRoundedWidth(CImageData& page, unsigned seed) {
  const DrawnPage drawn = drawPage(48, kHeight, kBpp, seed);
  sendLines(page, drawn, kColor, kKind, kCode);
  page.m_rawData.UpdateWidthPixel(kWidth);
  return withWidth(drawn, kWidth);
}

DrawnPage shortAndLongLines(CImageData& page, unsigned seed) {
  DrawnPage drawn = drawPage(kWidth, kHeight, 24, seed);
  startLines(page, kWidth, COLORTYPE_COLOR24BIT, 5, kPacked);
  for (int y = 0; y < kHeight; ++y) {
    ByteVector line = lineOf(drawn, y);
    const auto keptPx = static_cast<std::size_t>(y * 5 % kWidth);
    if (y % 2 == 0) {
      line.resize(line.size() + 100, 0x33);
    } else {
      line.resize(keptPx * 3);
      std::fill(drawn.pixel(static_cast<int>(keptPx), y), drawn.pixel(0, y) + kWidth * 3, std::uint8_t{0xFF});
    }
    writeRecord(page.m_rawData, 5, kPacked, line);
  }
  page.m_rawData.FinishWriteData(false, 0);
  return drawn;
}

// A code that promises more bytes than its line has: what there is of them, then white.
DrawnPage damagedLines(CImageData& page, unsigned seed) {
  DrawnPage drawn = drawPage(kWidth, kHeight, 8, seed);
  startLines(page, kWidth, COLORTYPE_TRUEGRAY, 7, kPacked);
  for (int y = 0; y < kHeight; ++y) {
    if (y % 3 != 1) {
      writeRecord(page.m_rawData, 7, kPacked, lineOf(drawn, y));
      continue;
    }
    const ByteVector damaged = {127, 1, 2, 3};
    page.m_rawData.WriteLineData(7, kPacked, damaged.data(), 4);
    std::fill_n(drawn.pixel(0, y), kWidth * 3, std::uint8_t{0xFF});
    for (int x = 0; x < 3; ++x) std::fill_n(drawn.pixel(x, y), 3, static_cast<std::uint8_t>(x + 1));
  }
  page.m_rawData.FinishWriteData(false, 0);
  return drawn;
}

DrawnPage fewerLinesThanAnnounced(CImageData& page, unsigned seed) {
  const DrawnPage drawn = drawPage(kWidth, 7, 24, seed);
  sendLines(page, drawn, COLORTYPE_COLOR24BIT, 5, kPacked);
  page.m_rawData.UpdateHeightPixel(kHeight);
  return drawn;
}

DrawnPage moreLinesThanAnnounced(CImageData& page, unsigned seed) {
  const DrawnPage drawn = drawPage(kWidth, kHeight + 9, 24, seed);
  sendLines(page, drawn, COLORTYPE_COLOR24BIT, 5, kPacked);
  page.m_rawData.UpdateHeightPixel(kHeight);
  return withHeight(drawn, kHeight);
}

DrawnPage noLineAtAll(CImageData& page, unsigned) {
  startLines(page, kWidth, COLORTYPE_COLOR24BIT, 5, kPacked);
  page.m_rawData.FinishWriteData(false, kHeight);
  return withHeight(DrawnPage{kWidth, 0, 24, {}}, kHeight);
}

// The height is that of the picture while three records make a line: a third of the page comes.
DrawnPage planesUnderThePicturesHeight(CImageData& page, unsigned seed) {
  const DrawnPage drawn = drawPage(kWidth, kHeight, 24, seed);
  sendPlanes(page, drawn, kRaw);
  page.m_rawData.UpdateHeightPixel(kHeight);
  return withHeight(drawn, kHeight / 3);
}

template <int kBpp>
DrawnPage jpegPage(CImageData& page, unsigned seed) {
  const ByteVector jpeg = jpegOf(drawPage(kWidth, kHeight, kBpp, seed));
  sendJpeg(page, jpeg, kWidth, kHeight);
  return decoded(jpeg);
}

DrawnPage colourJpegInAGreyScan(CImageData& page, unsigned seed) { return meanOf(jpegPage<24>(page, seed)); }

// Its bytes came before the device said that they are JPEG: they lie in the store of lines.
DrawnPage jpegInTheLineStore(CImageData& page, unsigned seed) {
  const ByteVector jpeg = jpegOf(drawPage(kWidth, kHeight, 24, seed));
  page.m_pCurrentStore = &page.m_rawData;
  page.m_rawData.StartWriteData(300, 300, kWidth, 0, COLORTYPE_COLOR24BIT, 5, kJpeg);
  page.m_rawData.WriteJpegBlock(jpeg.data(), static_cast<unsigned>(jpeg.size()));
  page.m_rawData.FinishWriteData(false, 0);
  return decoded(jpeg);
}

DrawnPage jpegOfRoundedWidth(CImageData& page, unsigned seed) {
  const ByteVector jpeg = jpegOf(drawPage(48, kHeight, 24, seed));
  sendJpeg(page, jpeg, kWidth, kHeight);
  return withWidth(decoded(jpeg), kWidth);
}

// The page ended early: the height in the picture's header is lowered when the page is finished.
DrawnPage jpegThatEndedEarly(CImageData& page, unsigned seed) {
  const ByteVector jpeg = jpegOf(drawPage(kWidth, 40, 24, seed));
  sendJpeg(page, jpeg, kWidth, kHeight);
  return withHeight(decoded(jpeg), kHeight);
}

DrawnPage cutJpeg(CImageData& page, unsigned seed) {
  ByteVector jpeg = jpegOf(drawPage(kWidth, kHeight, 24, seed));
  jpeg.resize(jpeg.size() - 200);
  sendJpeg(page, jpeg, kWidth, kHeight);
  DrawnPage left = decoded(jpeg);
  const std::uint8_t* const last = left.pixel(kWidth - 1, kHeight - 1);
  EXPECT_EQ(ByteVector(last, last + 3), ByteVector(3, 128)) << "what never came is mid-grey";
  return left;
}

const Road kLineRoads[] = {
    {"RawRgb", COLORTYPE_COLOR24BIT, plainLines<24, COLORTYPE_COLOR24BIT, 5, kRaw>},
    {"RawBgr", COLORTYPE_COLOR24BIT, plainLines<24, COLORTYPE_COLOR24BIT, 6, kRaw>},
    {"PackedRgb", COLORTYPE_COLOR24BIT, plainLines<24, COLORTYPE_COLOR24BIT, 5, kPacked>},
    {"PackedBgr", COLORTYPE_COLOR24BIT, plainLines<24, COLORTYPE_COLOR24BIT, 6, kPacked>},
    {"RawPlanes", COLORTYPE_COLOR24BIT, planes<kRaw>},
    {"PackedPlanes", COLORTYPE_COLOR24BIT, planes<kPacked>},
    {"PlanesUnderThePicturesHeight", COLORTYPE_COLOR24BIT, planesUnderThePicturesHeight},
    {"RawGray", COLORTYPE_TRUEGRAY, plainLines<8, COLORTYPE_TRUEGRAY, 7, kRaw>},
    {"PackedGray", COLORTYPE_TRUEGRAY, plainLines<8, COLORTYPE_TRUEGRAY, 7, kPacked>},
    {"PackedGrayUnderTheLabelOfColour", COLORTYPE_TRUEGRAY, packedGrayUnderTheLabelOfColour},
    {"Raw256Colours", COLORTYPE_COLOR256, plainLines<8, COLORTYPE_COLOR256, 7, kRaw>},
    {"RawMono", COLORTYPE_BLACKANDWHITE, plainLines<1, COLORTYPE_BLACKANDWHITE, 1, kRaw>},
    {"PackedMono", COLORTYPE_BLACKANDWHITE, plainLines<1, COLORTYPE_BLACKANDWHITE, 1, kPacked>},
    {"RawHalftone", COLORTYPE_ERRORDIFFUSION, plainLines<1, COLORTYPE_ERRORDIFFUSION, 1, kRaw>},
    {"PackedHalftone", COLORTYPE_ERRORDIFFUSION, plainLines<1, COLORTYPE_ERRORDIFFUSION, 1, kPacked>},
    {"AutomaticColour", COLORTYPE_AUTO, linesOfEveryDepth},
    {"WhiteLinesAmongOthers", COLORTYPE_COLOR24BIT, whiteLinesAmongOthers},
    {"RoundedPackedColour", COLORTYPE_COLOR24BIT, linesOfRoundedWidth<24, COLORTYPE_COLOR24BIT, 5, kPacked>},
    {"RoundedPackedGray", COLORTYPE_TRUEGRAY, linesOfRoundedWidth<8, COLORTYPE_TRUEGRAY, 7, kPacked>},
    {"RoundedPackedMono", COLORTYPE_BLACKANDWHITE, linesOfRoundedWidth<1, COLORTYPE_BLACKANDWHITE, 1, kPacked>},
    {"RoundedRawMono", COLORTYPE_BLACKANDWHITE, linesOfRoundedWidth<1, COLORTYPE_BLACKANDWHITE, 1, kRaw>},
    {"ShortAndLongLines", COLORTYPE_COLOR24BIT, shortAndLongLines},
    {"DamagedLines", COLORTYPE_TRUEGRAY, damagedLines},
    {"FewerLinesThanAnnounced", COLORTYPE_COLOR24BIT, fewerLinesThanAnnounced},
    {"MoreLinesThanAnnounced", COLORTYPE_COLOR24BIT, moreLinesThanAnnounced},
    {"NoLineAtAll", COLORTYPE_COLOR24BIT, noLineAtAll},
};

const Road kJpegRoads[] = {
    {"ColourJpeg", COLORTYPE_COLOR24BIT, jpegPage<24>},
    {"GrayJpeg", COLORTYPE_TRUEGRAY, jpegPage<8>},
    {"GrayJpegInAColourScan", COLORTYPE_COLOR24BIT, jpegPage<8>},
    {"ColourJpegInAGreyScan", COLORTYPE_TRUEGRAY, colourJpegInAGreyScan},
    {"AutomaticColourJpeg", COLORTYPE_AUTO, jpegPage<24>},
    {"JpegInTheLineStore", COLORTYPE_COLOR24BIT, jpegInTheLineStore},
    {"JpegOfRoundedWidth", COLORTYPE_COLOR24BIT, jpegOfRoundedWidth},
    {"JpegThatEndedEarly", COLORTYPE_COLOR24BIT, jpegThatEndedEarly},
    {"CutJpeg", COLORTYPE_COLOR24BIT, cutJpeg},
};

// What the finished page says of itself besides its bytes.
void expectPage(CImageData& page, const DrawnPage& expected) {
  SCOPED_TRACE("page " + std::to_string(page.GetPageNo()));
  const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
  ASSERT_NE(image.data, nullptr);
  EXPECT_EQ(withoutSpareBits(ByteVector(image.data, image.data + image.dataSize), expected),
            withoutSpareBits(bmpOf(expected), expected));
  EXPECT_EQ(image.bitPerPixel, expected.bpp);
  EXPECT_EQ(image.widthPixel, expected.width);
  EXPECT_EQ(image.heightPixel, expected.height);
  EXPECT_EQ(image.resolutionX, 300);
  EXPECT_EQ(image.resolutionY, 300);
  EXPECT_EQ(image.pixelData, image.data + headerBytesOf(expected.bpp));
  EXPECT_EQ(image.pixelDataSize, image.dataSize - headerBytesOf(expected.bpp));
  EXPECT_FALSE(image.pageScanIsTerminated);
  EXPECT_EQ(image.imageEnhanceTerminated, IMAGEENHANCE_NOT_TERMINATED);
  const bool isMono = expected.bpp == 1;
  const bool isGray = expected.bpp == 8;
  EXPECT_EQ(page.m_finalData.GetDataType(), isMono ? 1u : isGray ? 7u : 6u);
  EXPECT_EQ(page.m_finalData.GetColorType(), isMono   ? COLORTYPE_BLACKANDWHITE
                                             : isGray ? COLORTYPE_TRUEGRAY
                                                      : COLORTYPE_COLOR24BIT);
  EXPECT_EQ(page.m_pCurrentStore, &page.m_finalData);
  EXPECT_TRUE(page.m_jpegData.IsEmpty() && page.m_rawData.IsEmpty() && page.m_decodedData.IsEmpty());
}

class PageOfTheRoad : public testing::TestWithParam<Road> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(run_.initialize());
    run_.settings.user.colorType = run_.settings.device.colorType = GetParam().color;
    run_.settings.device.scanArea = {0, 0, kWidth, kHeight, UNIT_PIXEL};
  }
  // Puts the page in and returns the picture that it shows.
  DrawnPage send(unsigned seed = 1) {
    CImageData& page = run_.newPage();
    const DrawnPage shown = GetParam().send(page, seed);
    EXPECT_TRUE(run_.manage.WriteImage(&page));
    return shown;
  }
  void expectNoError() {
    EXPECT_EQ(run_.scanError.Get().status, 0u);
    EXPECT_EQ(run_.scanError.Get().errPageNo, 0u);
  }
  PipelineRun run_;
};

TEST_P(PageOfTheRoad, ComesOutAsItsPicture) {
  const DrawnPage shown = send();
  run_.runAll();
  expectPage(*run_.pages[0], shown);
  expectNoError();
}

TEST_P(PageOfTheRoad, IsTurnedAsItsSideOfTheSheetAsksFor) {
  for (const DUPLEXTYPE type : {DUPLEXTYPE_LONG_EDGE, DUPLEXTYPE_SHORT_EDGE}) {
    run_.settings.user.duplexType = type;
    std::vector<DrawnPage> shown;
    const std::size_t first = run_.pages.size();
    for (unsigned i = 0; i < 4; ++i) shown.push_back(send(10 + i));
    run_.runAll();
    for (std::size_t i = 0; i < 4; ++i) {
      const bool isTurned = type == DUPLEXTYPE_SHORT_EDGE && i % 2 == 1;
      expectPage(*run_.pages[first + i], isTurned ? rotatedByHalf(shown[i]) : shown[i]);
    }
  }
  expectNoError();
}

TEST_P(PageOfTheRoad, IsPaddedAtItsBottomOnBothSides) {
  run_.settings.user.duplexType = DUPLEXTYPE_SHORT_EDGE;
  run_.settings.user.detectEndOfPage = 0;
  run_.settings.device.scanArea.bottom = kHeight + 5;
  const DrawnPage front = send(20);
  const DrawnPage back = send(21);
  run_.runAll();
  expectPage(*run_.pages[0], withHeight(front, kHeight + 5));
  expectPage(*run_.pages[1], withHeight(rotatedByHalf(back), kHeight + 5));
  expectNoError();
}

TEST_P(PageOfTheRoad, IsCutOnItsRightToTheWidthOfTheScan) {
  run_.settings.device.scanArea.right = 30;
  const DrawnPage shown = send(30);
  run_.runAll();
  expectPage(*run_.pages[0], withWidth(shown, 30));
}

TEST_P(PageOfTheRoad, KeepsTheOrderOfItsScan) {
  std::vector<DrawnPage> shown;
  for (unsigned i = 0; i < 12; ++i) shown.push_back(send(50 + i));
  run_.runAll();
  for (std::size_t i = 0; i < shown.size(); ++i) expectPage(*run_.pages[i], shown[i]);
  expectNoError();
}

class JpegPageOfTheRoad : public PageOfTheRoad {};

TEST_P(JpegPageOfTheRoad, IsTheSameInBands) {
  run_.settings.user.paperType = PAPERTYPE_LONG;
  const DrawnPage shown = send(40);
  run_.runAll();
  expectPage(*run_.pages[0], shown);
  expectNoError();
}

std::string nameOf(const testing::TestParamInfo<Road>& row) { return row.param.name; }
INSTANTIATE_TEST_SUITE_P(Lines, PageOfTheRoad, testing::ValuesIn(kLineRoads), nameOf);
INSTANTIATE_TEST_SUITE_P(Jpegs, PageOfTheRoad, testing::ValuesIn(kJpegRoads), nameOf);
INSTANTIATE_TEST_SUITE_P(Jpegs, JpegPageOfTheRoad, testing::ValuesIn(kJpegRoads), nameOf);

}  // namespace
