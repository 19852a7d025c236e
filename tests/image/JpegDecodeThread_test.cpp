#include "image/JpegDecodeThread.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/fakes/fake_jpeg_decode.h"
#include "tests/fakes/test_bmp.h"
#include "tests/image/stage_run.h"

using namespace orvalle_scan_api;
using fakes::ByteVector;
using fakes::FakeJpegDecode;

namespace {

const ByteVector kJpeg = {0xFF, 0xD8, 1, 2, 3, 4, 5, 6, 7, 8};

struct JpegStage : ::testing::Test {
  fakes::Settings settings;
  CScanError scanError;
  FakeJpegDecode decoder;
  CJpegDecodeThread stage;
  CImageData page;

  JpegStage() {
    page.SetPageNo(1);
    page.m_pCurrentStore = &page.m_jpegData;
  }
  void receiveJpeg(int width, int height, CImageDataStore* store = nullptr, const ByteVector& jpeg = kJpeg) {
    if (store == nullptr) store = &page.m_jpegData;
    page.m_pCurrentStore = store;
    store->StartWriteData(300, 200, width, height, COLORTYPE_COLOR24BIT, 5, 5);
    if (!jpeg.empty()) {
      ASSERT_EQ(store->WriteJpegBlock(jpeg.data(), static_cast<unsigned>(jpeg.size())), 0u);
    }
    store->FinishWriteData(false, 0);
  }
  SCANSTATUS run() {
    stage.WriteImage(&page);
    EXPECT_EQ(stage.Start1Image(settings.user, settings.device, &scanError, &decoder), 0u);
    EXPECT_EQ(fakes::collect(stage), &page);
    return scanError.Get();
  }
  void bands(int width, int height, int bpp, std::size_t lines) {
    decoder.decodeMode = 2;
    decoder.bandInfo = {300, 200, bpp, width, height, 0, 4};
    decoder.bandSteps.clear();
    for (std::size_t i = 0; i < lines; ++i) {
      decoder.bandSteps.push_back({i + 1 < lines ? JPEGDECODE_MORE_LINES : JPEGDECODE_OK,
                                   ByteVector(fakes::lineBytesOf(width, bpp), static_cast<std::uint8_t>(i + 1))});
    }
  }
  ByteVector raw() const {
    const CImageDataStore& store = page.m_rawData;
    return store.IsEmpty() ? ByteVector() : ByteVector(store.GetData(), store.GetData() + store.GetDataSize());
  }
};

TEST_F(JpegStage, AWholePageIsDecodedAndTurnedTopLineFirst) {
  const ByteVector pixels = fakes::countingPixels(5, 3, 24);
  decoder.pageBmp = fakes::makeBmp(5, 3, 24, pixels);
  receiveJpeg(5, 3);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.seenJpeg, kJpeg);
  EXPECT_EQ(decoder.modeQuestions, std::vector<unsigned>{45});
  EXPECT_EQ(fakes::pixelsOf(raw()), fakes::upsideDown(pixels, 15));
  EXPECT_EQ(page.m_pCurrentStore, &page.m_rawData);
  EXPECT_EQ(page.m_rawData.GetStatus(), 2);
  EXPECT_EQ(page.m_rawData.GetResolutionX(), 300);
  EXPECT_EQ(page.m_rawData.GetResolutionY(), 200);
  EXPECT_EQ(page.m_rawData.GetColorType(), COLORTYPE_COLOR24BIT);
  EXPECT_EQ(page.m_rawData.GetDataType(), 5u);
  EXPECT_EQ(page.m_rawData.GetCompressType(), 2u);
  EXPECT_TRUE(page.m_jpegData.IsEmpty());
  EXPECT_EQ(decoder.endPages, 1);
}

TEST_F(JpegStage, AGreyJpegIsLabelledGreyWithTheKindOfMono) {
  decoder.pageBmp = fakes::makeBmp(5, 3, 8, fakes::countingPixels(5, 3, 8));
  decoder.pageBitPerPixel = 8;
  receiveJpeg(5, 3);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_rawData.GetColorType(), COLORTYPE_TRUEGRAY);
  EXPECT_EQ(page.m_rawData.GetDataType(), 1u);
}

TEST_F(JpegStage, ATallerBmpIsKeptAtTheStoresHeight) {
  const ByteVector pixels = fakes::countingPixels(5, 6, 24);
  decoder.pageBmp = fakes::makeBmp(5, 6, 24, pixels);
  receiveJpeg(5, 4);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_rawData.GetHeightPixel(), 4);
  const ByteVector bmp = raw();
  EXPECT_EQ(bmp[22], 4);
  // The first four lines in memory, the bottom of the picture, turned.
  const ByteVector kept(pixels.begin(), pixels.begin() + 60);
  const ByteVector left = fakes::pixelsOf(bmp);
  EXPECT_EQ(ByteVector(left.begin(), left.begin() + 60), fakes::upsideDown(kept, 15));
}

TEST_F(JpegStage, AStoreWithoutAHeightTakesTheBmps) {
  decoder.pageBmp = fakes::makeBmp(5, 6, 24, fakes::countingPixels(5, 6, 24));
  receiveJpeg(5, 0);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_rawData.GetHeightPixel(), 6);
  EXPECT_EQ(raw()[22], 6);
}

TEST_F(JpegStage, AJpegThatLandedInTheLineStoreIsDecodedAllTheSame) {
  const ByteVector pixels = fakes::countingPixels(5, 3, 24);
  decoder.pageBmp = fakes::makeBmp(5, 3, 24, pixels);
  receiveJpeg(5, 0, &page.m_rawData);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.seenJpeg, kJpeg);
  EXPECT_EQ(fakes::pixelsOf(raw()), fakes::upsideDown(pixels, 15));
  EXPECT_EQ(page.m_pCurrentStore, &page.m_rawData);

  bands(5, 3, 24, 3);
  decoder.seenJpeg.clear();
  receiveJpeg(5, 0, &page.m_rawData);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(fakes::pixelsOf(raw()).size(), 45u);
  EXPECT_EQ(raw()[22], 3);
}

TEST_F(JpegStage, AFailedPageKeepsItsCodeAndTheJpeg) {
  struct Row {
    int status;
    QSRSLT code;
  };
  const Row kRows[] = {{3, 0x10403003}, {4, 0x70403004}, {5, 0x30403005}, {6, 0x30403006},
                       {7, 0x10403007}, {8, 0x10403008}, {9, 0x10403009}, {14, 0x1040300A}};
  settings.device.colorType = COLORTYPE_TRUEGRAY;  // the grey conversion must not turn a failure into success
  for (const Row& row : kRows) {
    scanError.Reset();
    decoder.pageStatus = static_cast<JPEGDECODESTATUS>(row.status);
    receiveJpeg(5, 3);
    const SCANSTATUS status = run();
    EXPECT_EQ(status.status, row.code);
    EXPECT_EQ(status.errPageNo, 1u);
    EXPECT_EQ(page.m_pCurrentStore, &page.m_jpegData);
    EXPECT_FALSE(page.m_jpegData.IsEmpty());
  }
  EXPECT_EQ(decoder.endPages, 8);
}

TEST(JpegDecodeThread, StatusesConvertByTheTableAndAllOthersTo0) {
  const QSRSLT kExpected[] = {0,          0, 0, 0x10403003, 0x70403004, 0x30403005, 0x30403006, 0x10403007, 0x10403008,
                              0x10403009, 0, 0, 0,          0,          0x1040300A, 0,          0};
  for (int status = 0; status < 17; ++status) {
    EXPECT_EQ(CJpegDecodeThread::ConvertJpegDecErrToQSRSLT(static_cast<JPEGDECODESTATUS>(status)), kExpected[status])
        << status;
  }
  EXPECT_EQ(CJpegDecodeThread::ConvertJpegDecErrToQSRSLT(static_cast<JPEGDECODESTATUS>(-1)), 0u);
}

TEST_F(JpegStage, ADecodedPageWithoutDataIsAnError) {
  receiveJpeg(5, 3);
  EXPECT_EQ(run().status, 0x70402003u);
  EXPECT_EQ(decoder.endPages, 1);
}

TEST_F(JpegStage, ADecodedPageAbove4GiBIsRefused) {
  decoder.pageBmp = fakes::makeBmp(5, 3, 24, fakes::countingPixels(5, 3, 24));
  decoder.pageDataSize = 0x100000000;
  receiveJpeg(5, 3);
  EXPECT_EQ(run().status, 0x30402001u);
  EXPECT_EQ(decoder.endPages, 1);
}

TEST_F(JpegStage, LongPaperIsDecodedInBandsWithoutAsking) {
  for (PAPERTYPE paper : {PAPERTYPE_LONG_NARROW, PAPERTYPE_LONG}) {
    settings.user.paperType = paper;
    bands(5, 3, 24, 3);
    decoder.decodeMode = 1;
    receiveJpeg(5, 3);
    EXPECT_EQ(run().status, 0u);
    EXPECT_TRUE(decoder.modeQuestions.empty());
    EXPECT_EQ(fakes::pixelsOf(raw()).size(), 45u);
  }
}

TEST_F(JpegStage, BandLinesStayInTheOrderOfTheJpeg) {
  bands(5, 3, 24, 3);
  receiveJpeg(5, 3);
  EXPECT_EQ(run().status, 0u);
  ByteVector pixels;
  for (std::uint8_t i = 1; i <= 3; ++i) pixels.insert(pixels.end(), 15, i);
  EXPECT_EQ(fakes::pixelsOf(raw()), pixels);
  EXPECT_EQ(raw()[22], 3);
  EXPECT_EQ(page.m_pCurrentStore, &page.m_rawData);
  EXPECT_EQ(page.m_rawData.GetColorType(), COLORTYPE_COLOR24BIT);
  EXPECT_EQ(page.m_rawData.GetDataType(), 5u);
  EXPECT_TRUE(page.m_jpegData.IsEmpty());
  EXPECT_EQ(decoder.closeBands, 1);
  EXPECT_EQ(decoder.endPages, 0);
}

// The height that the decoder told stands in the header, whatever the store said and however many lines came.
TEST_F(JpegStage, ABandPageHasTheDecodersHeightAndTheLinesThatCame) {
  bands(5, 4, 24, 3);
  receiveJpeg(5, 2);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(raw()[22], 4);
  EXPECT_EQ(page.m_rawData.GetHeightPixel(), 4);
  EXPECT_EQ(fakes::pixelsOf(raw()).size(), 45u);
  unsigned lineBytes = 0;
  for (int line = 0; line < 3; ++line) ASSERT_NE(page.m_rawData.ReadLineData(&lineBytes), nullptr);
  EXPECT_EQ(page.m_rawData.ReadLineData(&lineBytes), nullptr) << "readers stop at the bytes that are there";
}

TEST_F(JpegStage, ABandPageOfGreyIsLabelledAsAWholeOne) {
  bands(5, 3, 8, 3);
  receiveJpeg(5, 3);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_rawData.GetColorType(), COLORTYPE_TRUEGRAY);
  EXPECT_EQ(page.m_rawData.GetDataType(), 1u);
  EXPECT_EQ(raw().size(), 1078u + 15);
}

TEST_F(JpegStage, NothingIsThrownOutOfTheThread) {
  for (const int mode : {1, 2}) {
    bands(5, 3, 24, 3);
    decoder.decodeMode = mode;
    scanError.Reset();
    receiveJpeg(5, 3);
    decoder.onDecode = [] { throw std::bad_alloc(); };
    EXPECT_EQ(run().status, 0x30402001u);
    scanError.Reset();
    receiveJpeg(5, 3);
    decoder.onDecode = [] { throw std::runtime_error("no"); };
    const SCANSTATUS status = run();
    EXPECT_EQ(status.status, 0x10403003u);
    EXPECT_EQ(status.errPageNo, 1u);
  }
  EXPECT_EQ(decoder.endPages, 2);
  EXPECT_EQ(decoder.closeBands, 2);
}

TEST_F(JpegStage, InputIsFedInSpansAsLongAsMoreIsAskedFor) {
  bands(5, 2, 8, 0);
  decoder.bandSteps = {{JPEGDECODE_NEED_INPUT, {}},
                       {JPEGDECODE_MORE_LINES, ByteVector(5, 1)},
                       {JPEGDECODE_NEED_INPUT, ByteVector(5, 2)},
                       {JPEGDECODE_NEED_INPUT, {}}};
  receiveJpeg(5, 2);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.fedSpans, (std::vector<unsigned>{4, 4, 2}));
  EXPECT_EQ(decoder.seenJpeg, kJpeg);
  EXPECT_EQ(fakes::pixelsOf(raw()), (ByteVector{1, 1, 1, 1, 1, 2, 2, 2, 2, 2}));
}

TEST_F(JpegStage, FeedingStopsWhenTheDecoderAsksForNoMore) {
  bands(5, 1, 8, 1);  // one line, then status 0
  receiveJpeg(5, 1);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.fedSpans, std::vector<unsigned>{4});
}

TEST_F(JpegStage, TheFirstSpanIsNotLongerThanTheJpeg) {
  bands(5, 1, 8, 1);
  decoder.bandInfo.writeSizeSpan = 4096;
  receiveJpeg(5, 1);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.fedSpans, std::vector<unsigned>{10});
}

TEST_F(JpegStage, ASpanOfNothingFeedsNothing) {
  for (int span : {0, -4}) {
    bands(5, 3, 24, 3);
    decoder.bandInfo.writeSizeSpan = span;
    receiveJpeg(5, 3);
    EXPECT_EQ(run().status, 0u);
    EXPECT_TRUE(decoder.fedSpans.empty());
    EXPECT_EQ(raw().size(), 54u);
    EXPECT_TRUE(page.m_jpegData.IsEmpty());
  }
  EXPECT_EQ(decoder.closeBands, 2);
}

TEST_F(JpegStage, AShortBandLineIsMadeUpWithWhiteAndALongOneIsCut) {
  bands(5, 2, 8, 0);
  decoder.bandSteps = {{JPEGDECODE_MORE_LINES, ByteVector(3, 1)}, {JPEGDECODE_OK, ByteVector(9, 2)}};
  receiveJpeg(5, 2);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(fakes::pixelsOf(raw()), (ByteVector{1, 1, 1, 0xFF, 0xFF, 2, 2, 2, 2, 2}));
}

TEST_F(JpegStage, BandFailuresKeepTheirCode) {
  bands(5, 3, 24, 3);
  decoder.openStatus = JPEGDECODE_CREATE_STREAM;
  receiveJpeg(5, 3);
  EXPECT_EQ(run().status, 0x10403007u);
  EXPECT_EQ(decoder.closeBands, 0);
  EXPECT_FALSE(page.m_jpegData.IsEmpty());

  scanError.Reset();
  bands(5, 3, 24, 3);
  decoder.openStatus = JPEGDECODE_OK;
  decoder.writeBandStatus = JPEGDECODE_WRITE_BAND;
  receiveJpeg(5, 3);
  EXPECT_EQ(run().status, 0x1040300Au);
  EXPECT_EQ(decoder.closeBands, 1);
  EXPECT_TRUE(page.m_jpegData.IsEmpty());
  EXPECT_EQ(page.m_pCurrentStore, &page.m_jpegData);

  scanError.Reset();
  bands(5, 3, 24, 0);
  decoder.writeBandStatus = JPEGDECODE_OK;
  decoder.bandSteps = {{JPEGDECODE_MORE_LINES, ByteVector(15, 1)}, {JPEGDECODE_ERROR, {}}};
  receiveJpeg(5, 3);
  EXPECT_EQ(run().status, 0x10403003u);
  EXPECT_EQ(decoder.closeBands, 2);
}

TEST_F(JpegStage, AnEmptyPageIsToldByTheDecoder) {
  bands(5, 3, 24, 3);
  receiveJpeg(5, 3, nullptr, {});
  EXPECT_EQ(run().status, 0x70403004u);
}

TEST_F(JpegStage, AGreyScanTurnsA24BitJpegGrey) {
  settings.device.colorType = COLORTYPE_TRUEGRAY;
  decoder.pageBmp = fakes::makeBmp(4, 2, 24, {1,  2,  3,  0, 0,   0, 255, 255, 255, 255, 0, 0,  //
                                              10, 20, 31, 0, 255, 0, 0,   0,   255, 1,   1, 0});
  receiveJpeg(4, 2);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_rawData.GetColorType(), COLORTYPE_TRUEGRAY);
  EXPECT_EQ(page.m_rawData.GetDataType(), 7u);
  EXPECT_EQ(page.m_rawData.GetStatus(), 2);
  ByteVector expected = fakes::makeBmp(4, 2, 8, {20, 85, 85, 0, 2, 0, 255, 85});
  fakes::put32(expected, 42, 7874);  // 200 dpi
  EXPECT_EQ(raw(), expected);
}

TEST_F(JpegStage, AGreyJpegInAGreyScanIsLeftAsItIs) {
  settings.device.colorType = COLORTYPE_TRUEGRAY;
  decoder.pageBmp = fakes::makeBmp(5, 3, 8, fakes::countingPixels(5, 3, 8));
  decoder.pageBitPerPixel = 8;
  receiveJpeg(5, 3);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_rawData.GetDataType(), 1u);
}

TEST(JpegDecodeThread, GreyPixelsThatTheSourceDoesNotHaveAre0) {
  CImageDataStore store;
  const ByteVector bmp = fakes::makeBmp(2, 2, 24, {30, 30, 30, 60, 60, 60, 90, 90});
  store.StartWriteData(300, 300, 2, 2, COLORTYPE_COLOR24BIT, 5, 2);
  ASSERT_EQ(store.WriteDataBlock(bmp.data(), static_cast<unsigned>(bmp.size())), 0u);
  EXPECT_EQ(CJpegDecodeThread::Convert24BitColorToTrueGrayImageDataStore(&store), 0u);
  const ByteVector gray(store.GetData(), store.GetData() + store.GetDataSize());
  EXPECT_EQ(gray, fakes::makeBmp(2, 2, 8, {30, 60, 0, 0}));
  EXPECT_EQ(CJpegDecodeThread::Convert24BitColorToTrueGrayImageDataStore(nullptr), 0x70601001u);
}

TEST(JpegDecodeThread, AGreyPageAbove4GiBIsRefused) {
  CImageDataStore store;
  const ByteVector bmp = fakes::makeBmp(0x7FFFFFFF, 0x7FFFFFFF, 24, {30, 30, 30});
  store.StartWriteData(300, 300, 0, 0, COLORTYPE_COLOR24BIT, 5, 2);
  ASSERT_EQ(store.WriteDataBlock(bmp.data(), static_cast<unsigned>(bmp.size())), 0u);
  EXPECT_EQ(CJpegDecodeThread::Convert24BitColorToTrueGrayImageDataStore(&store), 0x30601002u);
}

TEST(JpegDecodeThread, NullPointersAreRefused) {
  FakeJpegDecode decoder;
  CScanError scanError;
  CJpegDecodeThread stage;
  const QS_SCANNER_PARAMETERS none{};
  EXPECT_EQ(stage.Start1Image(none, none, nullptr, &decoder), 0x1040300Bu);
  EXPECT_EQ(stage.Start1Image(none, none, &scanError, nullptr), 0x1040300Bu);
  EXPECT_EQ(stage.Start1Image(none, none, &scanError, &decoder), 0u);
}

TEST_F(JpegStage, APageThatNobodyWantsIsLeftAlone) {
  SCANSTATUS status{};
  status.status = 0x1040100B;
  status.errPageNo = 1;
  scanError.Set(status);
  receiveJpeg(5, 3);
  run();
  EXPECT_TRUE(decoder.modeQuestions.empty());
  EXPECT_FALSE(page.m_jpegData.IsEmpty());
}

TEST_F(JpegStage, ADecoderThatAlwaysPromisesMoreDoesNotHoldUpTheEnd) {
  bands(5, 3, 24, 0);
  decoder.bandSteps.assign(100000, {JPEGDECODE_MORE_LINES, {}});
  receiveJpeg(5, 3);
  {
    CJpegDecodeThread own;
    own.WriteImage(&page);
    ASSERT_EQ(own.Start1Image(settings.user, settings.device, &scanError, &decoder), 0u);
  }
  EXPECT_EQ(decoder.closeBands, 1);
}

}  // namespace
