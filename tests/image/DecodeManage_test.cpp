// Runs the pipeline on the real modules beside this program.
#include "image/DecodeManage.h"

#include <gtest/gtest.h>

#include "tests/fakes/test_bmp.h"
#include "tests/image/pipeline_run.h"
#include "tests/modules/jpeg_pictures.h"

using namespace orvalle_scan_api;
using fakes::ByteVector;

namespace {

constexpr int kWidth = 20;
constexpr int kHeight = 16;

struct Pipeline : ::testing::Test, fakes::PipelineRun {
  void SetUp() override {
    ASSERT_TRUE(initialize());
    ASSERT_EQ(manage.GetScanProcStatus(), &scanError);
    settings.device.scanArea = {0, 0, kWidth, kHeight, UNIT_PIXEL};
  }
  CImageData& newPage(CImageDataStore CImageData::*store, unsigned dataType, unsigned code, int height) {
    CImageData& page = PipelineRun::newPage();
    page.m_pCurrentStore = &(page.*store);
    page.m_pCurrentStore->StartWriteData(300, 300, kWidth, height, COLORTYPE_COLOR24BIT, dataType, code);
    return page;
  }
  // B,G,R lines that hold the page's number, its line and its column; uncompressed records.
  CImageData& linePage() {
    CImageData& page = newPage(&CImageData::m_rawData, 6, 2, 0);
    for (int y = 0; y < kHeight; ++y) {
      ByteVector line;
      for (int x = 0; x < kWidth; ++x) {
        for (unsigned value : {page.GetPageNo(), static_cast<unsigned>(y), static_cast<unsigned>(x)}) {
          line.push_back(static_cast<std::uint8_t>(value));
        }
      }
      EXPECT_EQ(page.m_rawData.WriteLineData(6, 2, line.data(), static_cast<unsigned>(line.size())), 0u);
    }
    page.m_rawData.FinishWriteData(false, 0);
    return page;
  }
  CImageData& jpegPage(const ByteVector& jpeg) {
    CImageData& page = newPage(&CImageData::m_jpegData, 5, 5, kHeight);
    EXPECT_EQ(page.m_jpegData.WriteJpegBlock(jpeg.data(), static_cast<unsigned>(jpeg.size())), 0u);
    page.m_jpegData.FinishWriteData(false, kHeight);
    return page;
  }
  void expectLinePage(CImageData& page) {
    ByteVector pixels;
    for (int y = kHeight - 1; y >= 0; --y) {
      for (int x = 0; x < kWidth; ++x) {
        pixels.push_back(static_cast<std::uint8_t>(page.GetPageNo()));
        pixels.push_back(static_cast<std::uint8_t>(y));
        pixels.push_back(static_cast<std::uint8_t>(x));
      }
    }
    const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
    ASSERT_NE(image.data, nullptr);
    EXPECT_EQ(ByteVector(image.data, image.data + image.dataSize), fakes::makeBmp(kWidth, kHeight, 24, pixels));
  }
};

TEST_F(Pipeline, PagesOfLinesComeOutInTheirOrderAsBmps) {
  for (int i = 0; i < 12; ++i) ASSERT_TRUE(manage.WriteImage(&linePage()));
  runAll();
  for (auto& page : pages) {
    expectLinePage(*page);
    EXPECT_EQ(page->m_pCurrentStore, &page->m_finalData);
    EXPECT_EQ(page->m_finalData.GetStatus(), 2);
  }
  EXPECT_EQ(scanError.Get().status, 0u);
}

TEST_F(Pipeline, AJpegPageEndsAsTheDecodedPictureBottomLineFirst) {
  module_test::Encoding encoding;
  encoding.fullColor = true;
  const auto jpeg = module_test::encodeJpeg(module_test::drawPicture(kWidth, kHeight, 3), encoding);
  module_test::Pixels reference;
  ASSERT_TRUE(module_test::decodeWithLibjpeg(jpeg, reference));
  CImageData& page = jpegPage(jpeg);
  ASSERT_TRUE(manage.WriteImage(&page));
  runAll();
  ByteVector pixels;
  for (int y = kHeight - 1; y >= 0; --y) {
    for (int x = 0; x < kWidth; ++x) {
      const auto* rgb = &reference.bytes[static_cast<std::size_t>(y * kWidth + x) * 3];
      for (int part = 2; part >= 0; --part) pixels.push_back(rgb[part]);
    }
  }
  const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
  ASSERT_NE(image.data, nullptr);
  EXPECT_EQ(ByteVector(image.data, image.data + image.dataSize), fakes::makeBmp(kWidth, kHeight, 24, pixels));
}

TEST_F(Pipeline, ABandDecodedPageEqualsAWholeOne) {
  const auto jpeg = module_test::encodeJpeg(module_test::drawPicture(kWidth, kHeight, 3));
  CImageData& whole = jpegPage(jpeg);
  ASSERT_TRUE(manage.WriteImage(&whole));
  runAll();
  settings.user.paperType = PAPERTYPE_LONG;
  CImageData& bands = jpegPage(jpeg);
  ASSERT_TRUE(manage.WriteImage(&bands));
  runAll();
  const tagQS_SCAN_IMAGEDATA a = whole.GetFinalImage();
  const tagQS_SCAN_IMAGEDATA b = bands.GetFinalImage();
  ASSERT_NE(b.data, nullptr);
  EXPECT_EQ(ByteVector(a.data, a.data + a.dataSize), ByteVector(b.data, b.data + b.dataSize));
}

TEST_F(Pipeline, APageOfLinesAfterAJpegPageTakesTheJpegRouteAndFailsThere) {
  ASSERT_TRUE(manage.WriteImage(&jpegPage(module_test::encodeJpeg(module_test::drawPicture(kWidth, kHeight, 3)))));
  ASSERT_TRUE(manage.WriteImage(&linePage()));
  runAll();
  EXPECT_TRUE(pages[0]->m_finalData.IsWriteDataFinished());
  EXPECT_FALSE(pages[1]->m_finalData.IsWriteDataFinished());
  EXPECT_EQ(scanError.Get().errPageNo, 2u);
  EXPECT_NE(scanError.Get().status, 0u);
}

TEST_F(Pipeline, APageThatFailsIsDroppedAndThePagesAfterItStillFlow) {
  const auto jpeg = module_test::encodeJpeg(module_test::drawPicture(kWidth, kHeight, 3));
  ASSERT_TRUE(manage.WriteImage(&jpegPage(jpeg)));
  ASSERT_TRUE(manage.WriteImage(&jpegPage({1, 2, 3, 4, 5, 6, 7, 8})));
  ASSERT_TRUE(manage.WriteImage(&jpegPage(jpeg)));
  runAll();
  EXPECT_TRUE(pages[0]->m_finalData.IsWriteDataFinished());
  EXPECT_FALSE(pages[1]->m_finalData.IsWriteDataFinished());
  EXPECT_TRUE(pages[2]->m_finalData.IsWriteDataFinished());
  EXPECT_EQ(scanError.Get().errPageNo, 2u);
}

TEST_F(Pipeline, ACancelledPageIsDroppedBeforeTheFirstStage) {
  SCANSTATUS status{};
  status.canceled = true;
  status.cancelPageNo = 1;
  scanError.Set(status);
  ASSERT_TRUE(manage.WriteImage(&linePage()));
  ASSERT_EQ(step(), 0u);
  EXPECT_TRUE(pages[0]->IsSettled());
  EXPECT_FALSE(pages[0]->m_finalData.IsWriteDataFinished());
}

TEST_F(Pipeline, APageIsQueuedOnce) {
  CImageData& page = linePage();
  EXPECT_TRUE(manage.WriteImage(&page));
  EXPECT_TRUE(manage.WriteImage(&page));
  runAll();
  EXPECT_FALSE(manage.WriteImage(nullptr));
  for (int i = 0; i < 5; ++i) ASSERT_EQ(step(), 0u);
  expectLinePage(page);
}

TEST_F(Pipeline, APageThatWasFreedOnItsWayIsFreedOnceItHasCome) {
  CImageData& page = linePage();
  ASSERT_TRUE(manage.WriteImage(&page));
  page.FreeWhenSettled();
  EXPECT_FALSE(page.IsEmpty());
  runAll();
  EXPECT_TRUE(page.IsEmpty());
  EXPECT_EQ(page.GetFinalImage().data, nullptr);
}

TEST_F(Pipeline, AShortPageIsPaddedToTheOrderedHeight) {
  settings.user.detectEndOfPage = 0;
  settings.device.scanArea.bottom = kHeight + 4;
  CImageData& page = linePage();
  ASSERT_TRUE(manage.WriteImage(&page));
  runAll();
  const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
  ASSERT_EQ(image.heightPixel, kHeight + 4);
  EXPECT_EQ(ByteVector(image.pixelData, image.pixelData + 4 * kWidth * 3), ByteVector(4 * kWidth * 3, 0xFF));
  EXPECT_EQ(image.pixelData[4 * kWidth * 3 + 1], kHeight - 1);
}

TEST_F(Pipeline, ItCanBeDestroyedAtAnyMoment) {
  for (int steps = 0; steps < 12; ++steps) {
    CDecodeManage other;
    other.SetScanProcStatus(&scanError);
    ASSERT_EQ(other.Initialize(), 0u);
    for (int i = 0; i < 4; ++i) {
      CImageData& page = linePage();
      ASSERT_TRUE(other.WriteImage(&page));
    }
    for (int i = 0; i < steps; ++i) ASSERT_EQ(other.DecodeProcess(settings.user, settings.device, capability), 0u);
    if (steps % 2 != 0) continue;
    other.EndStages();
    pages.clear();
    for (int i = 0; i < 3; ++i) ASSERT_EQ(other.DecodeProcess(settings.user, settings.device, capability), 0u);
  }
}

TEST(DecodeManage, WithoutModulesOrAStatusTheScanCannotGoOn) {
  CDecodeManage manage;
  CScanError scanError;
  EXPECT_EQ(manage.DecodeProcess({}, {}, {}), 0x30406007u);
  EXPECT_EQ(manage.Initialize(), 0u);
  EXPECT_EQ(manage.DecodeProcess({}, {}, {}), 0x30406007u);
  manage.SetScanProcStatus(&scanError);
  EXPECT_EQ(manage.DecodeProcess({}, {}, {}), 0u);
}

}  // namespace
