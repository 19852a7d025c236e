#include "image/ImageEnhanceThread.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

#include "image/BitmapHeader.h"
#include "tests/fakes/fake_image_enhance.h"
#include "tests/fakes/test_bmp.h"
#include "tests/image/stage_run.h"

using namespace orvalle_scan_api;
using fakes::ByteVector;
using fakes::FakeImageEnhance;

namespace {

struct EnhanceStage : ::testing::Test {
  fakes::Settings settings;
  CScanError scanError;
  FakeImageEnhance enhancer;
  _IE_PARAM param{};
  CImageEnhanceThread stage;
  CImageData page;

  EnhanceStage() { page.SetPageNo(1); }

  void decodedBmp(int width, int height, int bpp, const ByteVector& pixels) {
    const ByteVector bmp = fakes::makeBmp(width, height, bpp, pixels);
    page.m_pCurrentStore = &page.m_decodedData;
    page.m_decodedData.StartWriteData(300, 300, width, height,
                                      bpp == 1   ? COLORTYPE_BLACKANDWHITE
                                      : bpp == 8 ? COLORTYPE_COLOR256
                                                 : COLORTYPE_COLOR24BIT,
                                      5, 2);
    ASSERT_EQ(page.m_decodedData.WriteDataBlock(bmp.data(), static_cast<unsigned>(bmp.size())), 0u);
    page.m_decodedData.FinishWriteData(false, 0);
  }
  SCANSTATUS run() {
    stage.WriteImage(&page);
    EXPECT_EQ(stage.Start1Image(settings.user, settings.device, &scanError, &enhancer, param), 0u);
    EXPECT_EQ(fakes::collect(stage), &page);
    return scanError.Get();
  }
  ByteVector finalBmp() const {
    const CImageDataStore& store = page.m_finalData;
    return store.IsEmpty() ? ByteVector() : ByteVector(store.GetData(), store.GetData() + store.GetDataSize());
  }
  void setResult(int width, int height, int bpp, const ByteVector& pixels) {
    enhancer.resultBmp = fakes::makeBmp(width, height, bpp, pixels);
    enhancer.result.bitPerPixel = bpp;
    enhancer.result.resolutionX = 240;
    enhancer.result.resolutionY = 120;
    enhancer.result.widthPixel = width;
    enhancer.result.heightPixel = height;
  }
  void padTo(int height) {
    settings.user.detectEndOfPage = 0;
    settings.device.scanArea.bottom = height;
  }
};

TEST_F(EnhanceStage, WithNothingToDoTheBlockMovesOnWithoutACopy) {
  const ByteVector pixels = fakes::countingPixels(5, 3, 24);
  decodedBmp(5, 3, 24, pixels);
  const unsigned char* const block = page.m_decodedData.GetData();
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_finalData.GetData(), block);
  EXPECT_EQ(finalBmp(), fakes::makeBmp(5, 3, 24, pixels));
  EXPECT_EQ(page.m_pCurrentStore, &page.m_finalData);
  EXPECT_EQ(page.m_finalData.GetStatus(), 2);
  EXPECT_TRUE(page.m_decodedData.IsEmpty());
  EXPECT_EQ(enhancer.seenBmp, fakes::makeBmp(5, 3, 24, pixels));
}

TEST_F(EnhanceStage, AKeptPageIsLabelledByItsDepth) {
  struct Row {
    int bpp;
    COLORTYPE color;
    unsigned kind;
  };
  for (const Row& row :
       {Row{1, COLORTYPE_BLACKANDWHITE, 1}, Row{8, COLORTYPE_TRUEGRAY, 7}, Row{24, COLORTYPE_COLOR24BIT, 6}}) {
    decodedBmp(5, 3, row.bpp, fakes::countingPixels(5, 3, row.bpp));
    EXPECT_EQ(run().status, 0u);
    EXPECT_EQ(page.m_finalData.GetColorType(), row.color);
    EXPECT_EQ(page.m_finalData.GetDataType(), row.kind);
  }
}

TEST_F(EnhanceStage, AResultReplacesThePageWithItsOwnFormat) {
  struct Row {
    int bpp;
    COLORTYPE color;
    unsigned kind;
  };
  for (const Row& row :
       {Row{1, COLORTYPE_BLACKANDWHITE, 1}, Row{8, COLORTYPE_TRUEGRAY, 7}, Row{24, COLORTYPE_COLOR24BIT, 6}}) {
    decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
    setResult(7, 2, row.bpp, fakes::countingPixels(7, 2, row.bpp, 50));
    EXPECT_EQ(run().status, 0u);
    EXPECT_EQ(finalBmp(), fakes::makeBmp(7, 2, row.bpp, fakes::countingPixels(7, 2, row.bpp, 50)));
    EXPECT_EQ(page.m_finalData.GetColorType(), row.color);
    EXPECT_EQ(page.m_finalData.GetDataType(), row.kind);
    EXPECT_EQ(page.m_finalData.GetCompressType(), 2u);
    EXPECT_EQ(page.m_finalData.GetResolutionX(), 240);
    EXPECT_EQ(page.m_finalData.GetResolutionY(), 120);
    EXPECT_EQ(page.m_finalData.GetWidthPixel(), 7);
    EXPECT_EQ(page.m_finalData.GetHeightPixel(), 2);
  }
}

TEST_F(EnhanceStage, AResultInsideThePageItselfIsCopiedFirst) {
  const ByteVector bmp = fakes::makeBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  enhancer.onProcess = [this](CImageDataStore* store) { enhancer.result = store->GetImageData(); };
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(finalBmp(), bmp);
}

TEST_F(EnhanceStage, AResultWithFewerLinesThanItPromisesIsMadeUpInWhite) {
  decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  setResult(4, 3, 8, {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(fakes::pixelsOf(finalBmp()), (ByteVector{1, 2, 3, 4, 5, 6, 255, 255, 255, 255, 255, 255}));
  EXPECT_EQ(page.GetFinalImage().pixelDataSize, 12u);
}

TEST_F(EnhanceStage, AResultAbove4GiBIsRefused) {
  decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  std::uint8_t byte = 0;
  enhancer.result.data = &byte;
  enhancer.result.dataSize = 0x100000000;
  const SCANSTATUS status = run();
  EXPECT_EQ(status.status, 0x30402001u);
  EXPECT_EQ(status.errPageNo, 1u);
  EXPECT_EQ(page.m_finalData.GetStatus(), 0);
  EXPECT_EQ(page.GetFinalImage().imageEnhanceTerminated, 1);
}

TEST_F(EnhanceStage, AFailureOfTheModuleAloneGivesTheUnenhancedPage) {
  const ByteVector pixels = fakes::countingPixels(5, 3, 8);
  decodedBmp(5, 3, 8, pixels);
  setResult(7, 2, 24, fakes::countingPixels(7, 2, 24));
  for (unsigned failure : {1u, 0x10701002u}) {
    decodedBmp(5, 3, 8, pixels);
    enhancer.processAnswer = failure;
    EXPECT_EQ(run().status, 0u);
    EXPECT_EQ(finalBmp(), fakes::makeBmp(5, 3, 8, pixels));
    EXPECT_EQ(page.m_finalData.GetColorType(), COLORTYPE_COLOR256) << "the label stays";
    EXPECT_EQ(page.GetFinalImage().imageEnhanceTerminated, 0);
  }
}

TEST_F(EnhanceStage, TheModuleIsToldWhatTheDeviceFoundAndWhatTheUserWants) {
  const int kRows[][2] = {{0, 0}, {1, 2}, {8, 1}, {24, 0}};
  param.colorClass = 4;
  param.doSmoothing = true;
  for (const auto& row : kRows) {
    decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
    page.SetAutoColorBpp(row[0]);
    run();
    EXPECT_EQ(enhancer.seenAutoColorMode, row[1]) << row[0];
    EXPECT_EQ(enhancer.seenParam.colorClass, 4);
    EXPECT_TRUE(enhancer.seenParam.doSmoothing);
    EXPECT_EQ(enhancer.seenStore.widthPixel, 5);
    EXPECT_EQ(enhancer.seenStore.heightPixel, 3);
  }
}

TEST_F(EnhanceStage, AShortPageIsPaddedWithWhiteAtItsBottom) {
  for (int bpp : {1, 8, 24}) {
    const ByteVector pixels = fakes::countingPixels(13, 30, bpp);
    decodedBmp(13, 30, bpp, pixels);
    padTo(35);
    EXPECT_EQ(run().status, 0u);
    ByteVector expected(5 * fakes::lineBytesOf(13, bpp), 0xFF);  // the bottom of the picture is the first in memory
    expected.insert(expected.end(), pixels.begin(), pixels.end());
    EXPECT_EQ(finalBmp(), fakes::makeBmp(13, 35, bpp, expected));
    const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
    EXPECT_EQ(image.heightPixel, 35);
    EXPECT_EQ(image.pixelDataSize, expected.size());
    EXPECT_EQ(image.dataSize, fakes::headerBytesOf(bpp) + expected.size());
  }
}

TEST_F(EnhanceStage, PaddingIsDoneOnlyForAPageOfFixedSizeThatMayNotEnd) {
  struct Row {
    const char* name;
    QSBOOL detectEndOfPage, autoRotate;
    PAPERTYPE paper;
    int bottom;
    int expected;
  };
  const Row kRows[] = {
      {"a fixed size", 0, 0, PAPERTYPE_A4, 35, 35},      {"a custom size", 0, 0, PAPERTYPE_CUSTOM, 35, 35},
      {"the page may end", 1, 0, PAPERTYPE_A4, 35, 30},  {"the page is rotated", 0, 1, PAPERTYPE_A4, 35, 30},
      {"automatic size", 0, 0, PAPERTYPE_AUTO, 35, 30},  {"narrow long paper", 0, 0, PAPERTYPE_LONG_NARROW, 35, 30},
      {"long paper", 0, 0, PAPERTYPE_LONG, 35, 30},      {"no height known", 0, 0, PAPERTYPE_A4, 0, 30},
      {"a negative height", 0, 0, PAPERTYPE_A4, -5, 30}, {"as high already", 0, 0, PAPERTYPE_A4, 30, 30},
      {"higher already", 0, 0, PAPERTYPE_A4, 20, 30}};
  for (const Row& row : kRows) {
    decodedBmp(5, 30, 24, fakes::countingPixels(5, 30, 24));
    settings.user.detectEndOfPage = row.detectEndOfPage;
    settings.user.autoRotate = row.autoRotate;
    settings.user.paperType = row.paper;
    settings.device.scanArea.bottom = row.bottom;
    EXPECT_EQ(run().status, 0u);
    EXPECT_EQ(page.m_finalData.GetHeightPixel(), row.expected) << row.name;
    EXPECT_EQ(finalBmp().size(), 54u + 15u * static_cast<unsigned>(row.expected)) << row.name;
  }
}

TEST_F(EnhanceStage, AnA4PageOf3000LinesIsPaddedTo3500) {
  const ByteVector pixels = fakes::countingPixels(100, 3000, 8);
  decodedBmp(100, 3000, 8, pixels);
  padTo(3500);
  EXPECT_EQ(run().status, 0u);
  const ByteVector padded = fakes::pixelsOf(finalBmp());
  ASSERT_EQ(padded.size(), 350000u);
  EXPECT_EQ(ByteVector(padded.begin(), padded.begin() + 50000), ByteVector(50000, 0xFF));
  EXPECT_EQ(ByteVector(padded.begin() + 50000, padded.end()), pixels);
}

TEST_F(EnhanceStage, PaddingBeyondMemoryIsAnErrorOfThePage) {
  decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  padTo(0x7FFFFFFF);
  const SCANSTATUS status = run();
  EXPECT_EQ(status.status, 0x30402001u);
  EXPECT_EQ(status.errPageNo, 1u);
  EXPECT_FALSE(page.m_finalData.IsWriteDataFinished());
}

TEST_F(EnhanceStage, AHigherResolutionThanTheDevicesIsMadeFromThePage) {
  settings.user.resolution = {600, 600};
  decodedBmp(30, 12, 24, ByteVector(30 * 3 * 12, 0x77));
  EXPECT_EQ(run().status, 0u);
  ByteVector wanted = fakes::makeBmp(60, 24, 24, ByteVector(60 * 3 * 24, 0x77));
  fakes::put32(wanted, 38, 23622);
  fakes::put32(wanted, 42, 23622);
  EXPECT_EQ(finalBmp(), wanted);
  EXPECT_EQ(page.m_finalData.GetStatus(), 2);
  EXPECT_EQ(page.m_finalData.GetResolutionX(), 600);
  EXPECT_EQ(page.m_finalData.GetHeightPixel(), 24);
  EXPECT_EQ(page.m_finalData.GetDataType(), 6u);
  EXPECT_EQ(page.m_pCurrentStore, &page.m_finalData);
  EXPECT_TRUE(page.m_decodedData.IsEmpty());
}

TEST_F(EnhanceStage, EachPixelOfAOneBitPageIsRepeatedWhereTheRatioIsExact) {
  settings.user.resolution = {600, 900};
  decodedBmp(16, 2, 1, {0xA5, 0x0F, 0xFF, 0x00});
  EXPECT_EQ(run().status, 0u);
  const ByteVector upper = {0xCC, 0x33, 0x00, 0xFF};
  const ByteVector lower = {0xFF, 0xFF, 0x00, 0x00};
  ByteVector wanted;
  for (const ByteVector& line : {upper, upper, upper, lower, lower, lower}) {
    wanted.insert(wanted.end(), line.begin(), line.end());
  }
  EXPECT_EQ(fakes::pixelsOf(finalBmp()), wanted);
}

TEST_F(EnhanceStage, OneDirectionAloneCanBeRaised) {
  settings.user.resolution = {300, 600};
  decodedBmp(5, 10, 8, ByteVector(5 * 10, 0x40));
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_finalData.GetWidthPixel(), 5);
  EXPECT_EQ(page.m_finalData.GetHeightPixel(), 20);
  EXPECT_EQ(fakes::pixelsOf(finalBmp()), ByteVector(5 * 20, 0x40));
}

// A stage and a page of its own: a page goes through once.
struct OnePage : EnhanceStage {
  void TestBody() override {}
};

// The lines of these are one byte apart from what the width asks for, and the flush can be a line longer than planned.
TEST_F(EnhanceStage, HeaderSizesAndBytesAgreeAtEveryRatio) {
  for (const int bpp : {1, 8, 24}) {
    for (const int width : {1, 2, 3, 7, 50, 2480}) {
      for (const int height : {1, 2, 3, 4, 35}) {
        for (const AXIS& wish : {AXIS{400, 400}, AXIS{450, 400}, AXIS{600, 320}, AXIS{200, 450}}) {
          SCOPED_TRACE(std::to_string(bpp) + " bits, " + std::to_string(width) + " by " + std::to_string(height) +
                       " to " + std::to_string(wish.x) + " by " + std::to_string(wish.y));
          OnePage one;
          one.settings.user.resolution = wish;
          one.decodedBmp(width, height, bpp, fakes::countingPixels(width, height, bpp));
          const bool nothingLeft = width * static_cast<int>(wish.x) / 300 == 0;
          ASSERT_EQ(one.run().status, nothingLeft ? 0x10703001u : 0u);
          if (nothingLeft) continue;
          const ByteVector bmp = one.finalBmp();
          const CImageDataStore& store = one.page.m_finalData;
          ASSERT_GE(bmp.size(), fakes::headerBytesOf(bpp));
          CBitmapHeader header;
          ByteVector copy = bmp;
          const auto size = static_cast<unsigned>(copy.size());
          EXPECT_EQ(header.GetWidthPixel(copy.data(), size), store.GetWidthPixel());
          EXPECT_EQ(header.GetHeightPixel(copy.data(), size), store.GetHeightPixel());
          EXPECT_EQ(header.CalcBmpSize(bpp, store.GetWidthPixel(), store.GetHeightPixel()), bmp.size());
          EXPECT_GE(store.GetHeightPixel() + 1, height * static_cast<int>(wish.y) / 300);
        }
      }
    }
  }
}

// Three lines have to be known before the first comes out: a page of fewer is white, and as large as it was to be.
TEST_F(EnhanceStage, APageOfTwoLinesComesOutWhite) {
  settings.user.resolution = {600, 600};
  decodedBmp(5, 2, 8, ByteVector(10, 0x40));
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(fakes::pixelsOf(finalBmp()), ByteVector(10 * 4, 0xFF));
}

TEST_F(EnhanceStage, ARatioThatCannotBeServedIsAnErrorOfThePage) {
  settings.user.resolution = {300 * 33, 300};
  decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  const SCANSTATUS status = run();
  EXPECT_EQ(status.status, 0x10703001u);
  EXPECT_EQ(status.errPageNo, 1u);
  EXPECT_EQ(page.m_pCurrentStore, &page.m_finalData);
  EXPECT_FALSE(page.m_finalData.IsWriteDataFinished());
  EXPECT_TRUE(page.m_decodedData.IsEmpty());
  EXPECT_EQ(page.GetFinalImage().imageEnhanceTerminated, 1);
}

// The device's own type of 256 colours goes into the resampler as colour, of which two thirds are then missing.
TEST_F(EnhanceStage, AnUnenhancedPageOf256ColoursIsRaisedWithoutReadingBehindItsLines) {
  settings.user.resolution = {600, 600};
  decodedBmp(5, 8, 8, fakes::countingPixels(5, 8, 8));
  enhancer.processAnswer = 1;
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_finalData.GetWidthPixel(), 10);
}

TEST_F(EnhanceStage, ALowerResolutionThanTheDevicesIsLeftAsItCame) {
  decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  settings.user.resolution = {150, 300};
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(finalBmp(), fakes::makeBmp(5, 3, 24, fakes::countingPixels(5, 3, 24)));
}

TEST_F(EnhanceStage, APageThatNobodyWantsIsLeftAlone) {
  SCANSTATUS status{};
  status.canceled = true;
  status.cancelPageNo = 1;
  scanError.Set(status);
  decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  run();
  EXPECT_EQ(enhancer.processes, 0);
  EXPECT_FALSE(page.m_finalData.IsWriteDataFinished());
}

TEST_F(EnhanceStage, NothingIsThrownOutOfTheThread) {
  decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  enhancer.onProcess = [](CImageDataStore*) { throw std::bad_alloc(); };
  EXPECT_EQ(run().status, 0x30402001u);
  scanError.Reset();
  decodedBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  enhancer.onProcess = [](CImageDataStore*) { throw std::runtime_error("no"); };
  const SCANSTATUS status = run();
  EXPECT_EQ(status.status, 0x10405005u);
  EXPECT_EQ(status.errPageNo, 1u);
}

TEST(ImageEnhanceThread, NullPointersAreRefused) {
  FakeImageEnhance enhancer;
  CScanError scanError;
  CImageEnhanceThread stage;
  const QS_SCANNER_PARAMETERS none{};
  EXPECT_EQ(stage.Start1Image(none, none, nullptr, &enhancer, {}), 0x10405005u);
  EXPECT_EQ(stage.Start1Image(none, none, &scanError, nullptr, {}), 0x10405005u);
  EXPECT_EQ(stage.Start1Image(none, none, &scanError, &enhancer, {}), 0u);
}

}  // namespace
