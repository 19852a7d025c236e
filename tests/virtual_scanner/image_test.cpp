#include <gtest/gtest.h>

#include <cmath>

#include "image/encode_jpeg.h"
#include "image/resample.h"
#include "image/rotate.h"
#include "image/tone.h"
#include "sheet_makers.h"
#include "support/failure.h"

namespace vscan {
namespace {

using test::decodeJpeg;
using test::differenceOf;
using test::patternOf;

Raster resampled(const Raster& source, int widthPx, int heightPx) {
  return resample(source, {static_cast<double>(source.widthPx), static_cast<double>(source.heightPx)}, widthPx,
                  heightPx);
}

TEST(Resample, TheSameSizeGivesTheSamePixels) {
  const Raster picture = patternOf(31, 17, 3);
  EXPECT_EQ(resampled(picture, 31, 17).pixels, picture.pixels);
}

TEST(Resample, HalfTheSizeIsTheMeanOfFour) {
  Raster picture(4, 2, 1);
  picture.pixels = {0, 100, 10, 30, 200, 100, 50, 30};
  const Raster half = resampled(picture, 2, 1);
  EXPECT_EQ(half.pixels, (Bytes{100, 30}));
}

TEST(Resample, AFlatPictureStaysFlatAtAnySize) {
  constexpr struct { int w, h; } kSizes[] = {{1, 1}, {7, 5}, {36, 22}, {38, 24}, {100, 3}, {3, 100}, {301, 299}};
  for (const int value : {0, 1, 128, 254, 255}) {
    const Raster picture(37, 23, 3, static_cast<std::uint8_t>(value));
    for (const auto& size : kSizes) {
      const Raster other = resampled(picture, size.w, size.h);
      ASSERT_EQ(other.widthPx, size.w);
      ASSERT_EQ(other.heightPx, size.h);
      for (const auto pixel : other.pixels) ASSERT_EQ(pixel, value) << size.w << "x" << size.h;
    }
  }
}

TEST(Resample, UpwardsAStepBecomesASlope) {
  Raster picture(2, 1, 1);
  picture.pixels = {0, 200};
  EXPECT_EQ(resampled(picture, 4, 1).pixels, (Bytes{0, 50, 150, 200}));
}

TEST(Resample, ASpanIsTheBeginningOfThePicture) {
  const Raster picture = patternOf(40, 30, 3);
  const Raster part = resample(picture, {10, 7}, 10, 7);
  for (int y = 0; y < 7; ++y) {
    EXPECT_EQ(Bytes(part.line(y), part.line(y) + 30), Bytes(picture.line(y), picture.line(y) + 30)) << y;
  }
}

TEST(Resample, UpAndDownAgainShowsTheSamePicture) {
  Raster smooth(60, 40, 1);
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 60; ++x)
      smooth.line(y)[x] = static_cast<std::uint8_t>(127 + 60 * std::sin(x / 9.0) + 50 * std::cos(y / 7.0));
  }
  const Raster back = resampled(resampled(smooth, 150, 100), 60, 40);
  EXPECT_LE(differenceOf(back, smooth).largest, 6);
}

TEST(Tone, FiftyAndFiftyLeaveEachPixelAlone) {
  Raster picture = patternOf(64, 64, 3);
  const auto before = picture.pixels;
  adjustTone(picture, {});
  EXPECT_EQ(picture.pixels, before);
}

TEST(Tone, BrightnessShiftsAndContrastSpreads) {
  Raster picture(3, 1, 1);
  picture.pixels = {60, 128, 200};
  Raster bright = picture;
  adjustTone(bright, {.brightness = 70});
  EXPECT_EQ(bright.pixels, (Bytes{111, 179, 251}));
  Raster harsh = picture;
  adjustTone(harsh, {.contrast = 75});
  EXPECT_EQ(harsh.pixels, (Bytes{0, 129, 255}));
  Raster soft = picture;
  adjustTone(soft, {.contrast = 0});
  EXPECT_EQ(soft.pixels, (Bytes{94, 128, 164}));
}

TEST(Tone, GreyOfEqualChannelsIsThatChannel) {
  Raster grey(256, 1, 1);
  for (int i = 0; i < 256; ++i) grey.pixels[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(i);
  EXPECT_EQ(toGrey(toColor(grey)).pixels, grey.pixels);
}

TEST(Tone, GreyWeighsTheColours) {
  Raster colors(3, 1, 3);
  colors.pixels = {255, 0, 0, 0, 255, 0, 0, 0, 255};
  EXPECT_EQ(toGrey(colors).pixels, (Bytes{76, 150, 29}));
}

TEST(Tone, ASetBitIsWhiteAndSoIsTheRestOfTheLine) {
  Raster grey(10, 2, 1, 255);
  grey.line(0)[0] = 127;
  grey.line(0)[1] = 128;
  grey.line(1)[9] = 0;
  EXPECT_EQ(threshold(grey, 128), (Bytes{0x7F, 0xFF, 0xFF, 0xBF}));
  EXPECT_EQ(threshold(grey, 129), (Bytes{0x3F, 0xFF, 0xFF, 0xBF}));
}

TEST(Tone, ErrorDiffusionKeepsTheMean) {
  for (const int value : {0, 30, 64, 128, 200, 255}) {
    const Raster grey(128, 128, 1, static_cast<std::uint8_t>(value));
    int white = 0;
    for (const auto byte : diffuseError(grey)) white += __builtin_popcount(byte);
    EXPECT_NEAR(white / (128.0 * 128.0) * 255, value, 3) << value;
  }
}

TEST(Tone, ErrorDiffusionLeavesBlackAndWhiteAlone) {
  Raster grey(9, 3, 1, 255);
  for (std::size_t i = 0; i < grey.pixels.size(); i += 2) grey.pixels[i] = 0;
  EXPECT_EQ(diffuseError(grey), threshold(grey, 128));
}

TEST(Tone, WhatIsAsLightAsTheBackgroundBecomesWhite) {
  Raster page(4, 1, 3);
  page.pixels = {240, 230, 220, 240, 230, 200, 206, 206, 206, 207, 207, 207};
  Raster grey(3, 1, 1);
  grey.pixels = {206, 207, 255};
  removeBackground(page, 96);
  removeBackground(grey, 96);
  EXPECT_EQ(page.pixels, (Bytes{255, 255, 255, 240, 230, 200, 206, 206, 206, 255, 255, 255}));
  EXPECT_EQ(grey.pixels, (Bytes{206, 255, 255}));
  removeBackground(grey, 0);
  EXPECT_EQ(grey.pixels, (Bytes{206, 255, 255}));
}

TEST(Rotate, NoTurnLeavesEachPixel) {
  const Raster picture = test::patternOf(30, 20, 3);
  EXPECT_EQ(rotate(picture, 0).pixels, picture.pixels);
}

TEST(Rotate, AHalfTurnTurnsThePictureRound) {
  const Raster picture = test::patternOf(30, 20, 1);
  const Raster turned = rotate(picture, 180);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 30; ++x) EXPECT_EQ(turned.line(y)[x], picture.line(19 - y)[29 - x]) << x << "," << y;
  }
}

TEST(Rotate, ASmallTurnIsClockwiseAndItsCornersAreWhite) {
  Raster picture(101, 101, 1, 0);
  for (int x = 0; x < 101; ++x) picture.line(50)[x] = 200;  // a level bar through the middle
  const Raster turned = rotate(picture, 10);
  EXPECT_EQ(turned.line(0)[0], 255);
  EXPECT_EQ(turned.line(50)[50], 200);
  EXPECT_GT(turned.line(50 + 7)[90], 100);  // 40 * tan(10) = 7: the right side goes down
  EXPECT_GT(turned.line(50 - 7)[10], 100);
  EXPECT_LT(turned.line(50 - 7)[90], 100);
}

TEST(EncodeJpeg, TheFileShowsThePictureWithItsResolution) {
  Raster smooth(50, 40, 3);
  for (std::size_t i = 0; i < smooth.pixels.size(); ++i) smooth.pixels[i] = static_cast<std::uint8_t>(i / 30);
  const auto decoded = decodeJpeg(encodeJpeg(smooth, 95, JpegSampling::Yuv444, 300, 150));
  EXPECT_EQ(decoded.dpiX, 300);
  EXPECT_EQ(decoded.dpiY, 150);
  EXPECT_LE(differenceOf(decoded.picture, smooth).largest, 8);
}

TEST(EncodeJpeg, TheSamplingIsTheOneAskedFor) {
  const struct {
    JpegSampling sampling;
    int horizontal, vertical;
  } rows[] = {{JpegSampling::Yuv444, 1, 1},
              {JpegSampling::Yuv422, 2, 1},
              {JpegSampling::Yuv411, 4, 1},
              {JpegSampling::Yuv420, 2, 2}};
  for (const auto& row : rows) {
    const auto decoded = decodeJpeg(encodeJpeg(patternOf(33, 33, 3), 85, row.sampling, 300, 300));
    EXPECT_EQ(decoded.horizontalFactor, row.horizontal);
    EXPECT_EQ(decoded.verticalFactor, row.vertical);
    EXPECT_EQ(decoded.picture.widthPx, 33);
  }
}

TEST(EncodeJpeg, AGreyPictureHasOneComponent) {
  EXPECT_EQ(decodeJpeg(encodeJpeg(patternOf(20, 20, 1), 85, JpegSampling::Yuv420, 300, 300)).picture.channels, 1);
}

TEST(EncodeJpeg, HarderCompressionMeansLowerQuality) {
  EXPECT_EQ(jpegQuality(0), 95);
  EXPECT_EQ(jpegQuality(50), 85);
  EXPECT_EQ(jpegQuality(100), 50);
}

TEST(EncodeJpeg, APictureTooLargeForAJpegIsRefused) {
  EXPECT_THROW(encodeJpeg(Raster(1, 65501, 1), 85, JpegSampling::Yuv444, 300, 300), Failure);
}

}  // namespace
}  // namespace vscan
