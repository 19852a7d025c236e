// Pages through the whole pipeline to a higher resolution than the device's.
#include <gtest/gtest.h>

#include "tests/image/pipeline_run.h"
#include "tests/image/raised_lines.h"
#include "tests/image/sent_page.h"

using namespace orvalle_scan_api;
using namespace fakes;

namespace {

constexpr int kWidth = 44;
constexpr int kHeight = 21;

struct RaisedPages : testing::Test {
  PipelineRun run;

  void SetUp() override {
    ASSERT_TRUE(run.initialize());
    run.settings.user.duplexType = DUPLEXTYPE_SHORT_EDGE;
    run.settings.device.scanArea = {0, 0, kWidth, kHeight, UNIT_PIXEL};
  }
  void wish(COLORTYPE color, AXIS resolution) {
    run.settings.user.colorType = run.settings.device.colorType = color;
    run.settings.user.resolution = resolution;
  }
  ByteVector finalBmp(std::size_t page) {
    const tagQS_SCAN_IMAGEDATA image = run.pages[page]->GetFinalImage();
    return image.data == nullptr ? ByteVector() : ByteVector(image.data, image.data + image.dataSize);
  }
};

void setResolution(ByteVector& bmp, unsigned pixPerMeterX, unsigned pixPerMeterY) {
  put32(bmp, 38, pixPerMeterX);
  put32(bmp, 42, pixPerMeterY);
}

DrawnPage repeated(const DrawnPage& page, int timesX, int timesY) {
  DrawnPage large = withHeight(withWidth(page, page.width * timesX), page.height * timesY);
  for (int y = 0; y < large.height; ++y) {
    for (int x = 0; x < large.width; ++x) std::copy_n(page.pixel(x / timesX, y / timesY), 3, large.pixel(x, y));
  }
  return large;
}

// A whole ratio of a one-bit page repeats its pixels.
TEST_F(RaisedPages, OfOneBitRepeatTheirPixels) {
  wish(COLORTYPE_BLACKANDWHITE, {600, 900});
  const DrawnPage drawn = drawPage(kWidth, kHeight, 1);
  for (int side = 0; side < 2; ++side) {
    CImageData& page = run.newPage();
    sendLines(page, drawn, COLORTYPE_BLACKANDWHITE, 1, kPacked);
    run.manage.WriteImage(&page);
  }
  run.runAll();
  for (std::size_t side = 0; side < 2; ++side) {
    const DrawnPage expected = repeated(side == 0 ? drawn : rotatedByHalf(drawn), 2, 3);
    ByteVector bmp = bmpOf(expected);
    setResolution(bmp, 23622, 35433);
    EXPECT_EQ(withoutSpareBits(finalBmp(side), expected), withoutSpareBits(bmp, expected));
    EXPECT_EQ(run.pages[side]->GetFinalImage().resolutionX, 600);
    EXPECT_EQ(run.pages[side]->GetFinalImage().resolutionY, 900);
  }
}

ByteVector raised(const DrawnPage& page, unsigned resolution) {
  const RaisedLines lines =
      raiseLines(page.width, page.bpp, pixelsOf(bmpOf(page)), {300, 300}, {resolution, resolution});
  ByteVector bmp = makeBmp(lines.width, lines.height, page.bpp, lines.pixels);
  const unsigned pixPerMeter = resolution == 600 ? 23622 : 17716;
  setResolution(bmp, pixPerMeter, pixPerMeter);
  return bmp;
}

TEST_F(RaisedPages, OfEveryKindAtWholeAndFractionalRatiosOnBothSides) {
  const struct {
    COLORTYPE color;
    int bpp, kind;
  } kRows[] = {{COLORTYPE_COLOR24BIT, 24, 5}, {COLORTYPE_AUTO, 24, 6},         {COLORTYPE_TRUEGRAY, 8, 7},
               {COLORTYPE_COLOR256, 8, 7},    {COLORTYPE_BLACKANDWHITE, 1, 1}, {COLORTYPE_ERRORDIFFUSION, 1, 1}};
  for (const auto& row : kRows) {
    for (const unsigned resolution : {600u, 450u}) {
      SCOPED_TRACE(std::to_string(row.color) + " at " + std::to_string(resolution));
      wish(row.color, {resolution, resolution});
      const DrawnPage drawn = drawPage(kWidth, kHeight, row.bpp, resolution);
      const std::size_t first = run.pages.size();
      for (int side = 0; side < 2; ++side) {
        CImageData& page = run.newPage();
        sendLines(page, drawn, row.color, row.kind, kRaw);
        run.manage.WriteImage(&page);
      }
      run.runAll();
      EXPECT_EQ(finalBmp(first), raised(drawn, resolution));
      EXPECT_EQ(finalBmp(first + 1), raised(rotatedByHalf(drawn), resolution));
    }
  }
  EXPECT_EQ(run.scanError.Get().status, 0u);
}

// Padded first, at the device's resolution, then raised.
TEST_F(RaisedPages, OfAJpegThatEndedEarlyArePaddedFirst) {
  wish(COLORTYPE_COLOR24BIT, {450, 450});
  run.settings.user.detectEndOfPage = 0;
  run.settings.device.scanArea.bottom = kHeight + 7;
  const ByteVector jpeg = jpegOf(drawPage(kWidth, kHeight, 24));
  for (int side = 0; side < 2; ++side) {
    CImageData& page = run.newPage();
    sendJpeg(page, jpeg, kWidth, kHeight);
    run.manage.WriteImage(&page);
  }
  run.runAll();
  const DrawnPage shown = decoded(jpeg);
  EXPECT_EQ(finalBmp(0), raised(withHeight(shown, kHeight + 7), 450));
  EXPECT_EQ(finalBmp(1), raised(withHeight(rotatedByHalf(shown), kHeight + 7), 450));
}

}  // namespace
