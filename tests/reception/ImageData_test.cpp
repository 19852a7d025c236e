#include "reception/ImageData.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/fakes/test_bmp.h"

using namespace orvalle_scan_api;

namespace {

void finish(CImageData& page) {
  const auto bmp = fakes::makeBmp(2, 2, 24, fakes::countingPixels(2, 2, 24));
  page.m_finalData.StartWriteData(300, 300, 2, 2, COLORTYPE_COLOR24BIT, 6, 2);
  ASSERT_EQ(page.m_finalData.WriteDataBlock(bmp.data(), static_cast<unsigned>(bmp.size())), 0u);
  page.m_finalData.FinishWriteData(false, 0);
}

}  // namespace

TEST(ImageData, TheFinalImageCarriesThePageFlags) {
  CImageData page;
  finish(page);
  page.SetPageScanIsTerminated(true);
  page.SetImageEnhanceTerminated(IMAGEENHANCE_FAILED);
  const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
  EXPECT_EQ(image.data, page.m_finalData.GetData());
  EXPECT_EQ(image.heightPixel, 2);
  EXPECT_TRUE(image.pageScanIsTerminated);
  EXPECT_EQ(image.imageEnhanceTerminated, IMAGEENHANCE_FAILED);
  EXPECT_FALSE(image.isBlankPage);
}

TEST(ImageData, ABlankPageIsAZeroedRecordWithItsFlag) {
  CImageData page;
  finish(page);
  page.SetPageScanIsTerminated(true);
  page.SetIsBlankPage(true);
  const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
  EXPECT_TRUE(image.isBlankPage);
  EXPECT_EQ(image.data, nullptr);
  EXPECT_EQ(image.bitPerPixel, 0);
  EXPECT_FALSE(image.pageScanIsTerminated);
}

TEST(ImageData, AnUnfinishedPageIsTheRecordOfAnEmptyStore) {
  CImageData page;
  const unsigned char byte = 1;
  ASSERT_EQ(page.m_finalData.WriteDataBlock(&byte, 1), 0u);
  const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
  EXPECT_EQ(image.data, nullptr);
  EXPECT_EQ(image.dataSize, 0u);
  EXPECT_EQ(image.bitPerPixel, 24);
}

TEST(ImageData, APageIsEmptyWhenAllFourStoresAre) {
  CImageData page;
  EXPECT_TRUE(page.IsEmpty());
  const unsigned char byte = 1;
  for (CImageDataStore* store : {&page.m_jpegData, &page.m_rawData, &page.m_decodedData, &page.m_finalData}) {
    ASSERT_EQ(store->WriteDataBlock(&byte, 1), 0u);
    EXPECT_FALSE(page.IsEmpty());
    page.FreeImageDatas();
    EXPECT_TRUE(page.IsEmpty());
  }
}

TEST(ImageData, APageIsHandedOverOnce) {
  CImageData page;
  EXPECT_FALSE(page.IsHandedOver());
  EXPECT_TRUE(page.HandOverToDecoder());
  EXPECT_TRUE(page.IsHandedOver());
  EXPECT_FALSE(page.HandOverToDecoder());
}

TEST(ImageData, APageThatWasGivenUpIsNotHandedOver) {
  CImageData page;
  page.Settle();
  EXPECT_FALSE(page.HandOverToDecoder());
}

TEST(ImageData, FreeingASettledPageFreesAtOnce) {
  CImageData page;
  finish(page);
  page.Settle();
  EXPECT_TRUE(page.IsSettled());
  page.FreeWhenSettled();
  EXPECT_TRUE(page.IsEmpty());
}

TEST(ImageData, FreeingAPageInThePipelineWaitsUntilItIsSettled) {
  CImageData page;
  ASSERT_TRUE(page.HandOverToDecoder());
  page.FreeWhenSettled();
  finish(page);
  EXPECT_FALSE(page.IsEmpty());
  EXPECT_EQ(page.GetFinalImage().data, nullptr) << "it is about to be freed";
  page.Settle();
  EXPECT_TRUE(page.IsEmpty());
}

TEST(ImageData, ACallerThatFreesWhileAWorkerWritesRacesNothing) {
  for (int round = 0; round < 200; ++round) {
    CImageData page;
    ASSERT_TRUE(page.HandOverToDecoder());
    std::thread worker([&] {
      finish(page);
      page.Settle();
    });
    unsigned sum = 0;
    while (!page.m_finalData.IsWriteDataFinished()) sum += page.IsEmpty() ? 1U : 0U;
    const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
    ASSERT_NE(image.data, nullptr);
    for (std::size_t i = 0; i < image.dataSize; ++i) sum += image.data[i];
    page.FreeWhenSettled();
    page.FreeWhenSettled();
    EXPECT_GT(sum, 0u);
    worker.join();
    EXPECT_TRUE(page.IsEmpty());
  }
}
