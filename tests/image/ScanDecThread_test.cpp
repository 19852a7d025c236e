// Pages that come out of the line stage.
#include "tests/image/line_stage.h"

using namespace orvalle_scan_api;
using fakes::ByteVector;
using fakes::FakeScanDec;
using fakes::LineStage;
using fakes::numberedLines;

namespace {

TEST_F(LineStage, LinesBecomeABmpWithTheBottomLineFirst) {
  receiveLines(4, 5);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 4, 24, numberedLines(4, 1, 15)));
  EXPECT_EQ(page.m_pCurrentStore, &page.m_decodedData);
  EXPECT_EQ(page.m_decodedData.GetStatus(), 2);
  EXPECT_EQ(page.m_decodedData.GetCompressType(), 2u);
  EXPECT_EQ(page.m_decodedData.GetDataType(), 5u);
  EXPECT_TRUE(page.m_rawData.IsEmpty());
  EXPECT_EQ(decoder.opens, 1);
  EXPECT_EQ(decoder.closes, 1);
  EXPECT_EQ(decoder.pageEnds, 1);
  ASSERT_EQ(decoder.inputs.size(), 4u);
  EXPECT_EQ(decoder.inputs[0].comp, 3);
  EXPECT_EQ(decoder.inputs[0].kind, 5);
  EXPECT_EQ(decoder.inputs[3].bytes, ByteVector(15, 4));
}

TEST_F(LineStage, EveryDepthGetsItsHeaderAndPalette) {
  struct Row {
    COLORTYPE color;
    int kind, bpp;
  };
  for (const Row& row :
       {Row{COLORTYPE_BLACKANDWHITE, 1, 1}, Row{COLORTYPE_ERRORDIFFUSION, 1, 1}, Row{COLORTYPE_TRUEGRAY, 7, 8},
        Row{COLORTYPE_COLOR256, 7, 8}, Row{COLORTYPE_COLOR24BIT, 6, 24}, Row{COLORTYPE_AUTO, 6, 24}}) {
    page.m_pCurrentStore = &page.m_rawData;
    settings.device.colorType = row.color;
    receiveLines(3, 13, row.color, row.kind);
    EXPECT_EQ(run().status, 0u);
    EXPECT_EQ(decoded(), fakes::makeBmp(13, 3, row.bpp, numberedLines(3, 1, fakes::lineBytesOf(13, row.bpp))))
        << row.color;
  }
}

TEST_F(LineStage, ABmpIsReadLineByLineFromTheFirstInMemory) {
  receiveBmp(5, 3, 24, numberedLines(1, 3, 15), 5);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 3, 24, numberedLines(3, 1, 15)));
  EXPECT_EQ(decoder.inputs[0].comp, 2);
  EXPECT_EQ(decoder.inputs[0].kind, 5);
  EXPECT_EQ(decoder.inputs[0].bytes, ByteVector(15, 1));
}

TEST_F(LineStage, UncompressedLineRecordsAreNotTakenForABmp) {
  settings.device.colorType = COLORTYPE_COLOR256;
  receiveLines(3, 8, COLORTYPE_COLOR256, 7, 2);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.seenOpen.dwInLinePixCnt, 8u);
  EXPECT_EQ(decoder.seenOpen.dwInHeightPixCnt, 3u);
  EXPECT_EQ(decoded(), fakes::makeBmp(8, 3, 8, numberedLines(3, 1, 8)));
}

TEST_F(LineStage, TheBackOfASheetBoundOnTheShortEdgeIsMirroredAndNothingElse) {
  struct Row {
    DUPLEXTYPE type;
    unsigned pageNo;
    bool mirrored;
  };
  const Row kRows[] = {{DUPLEXTYPE_SIMPLEX, 1, false},    {DUPLEXTYPE_SIMPLEX, 2, false},
                       {DUPLEXTYPE_LONG_EDGE, 1, false},  {DUPLEXTYPE_LONG_EDGE, 2, false},
                       {DUPLEXTYPE_SHORT_EDGE, 1, false}, {DUPLEXTYPE_SHORT_EDGE, 2, true},
                       {DUPLEXTYPE_SHORT_EDGE, 3, false}, {DUPLEXTYPE_SHORT_EDGE, 4, true}};
  const ByteVector pixels = {1, 2, 3, 4, 5, 6};  // 2 by 3 grey pixels
  settings.device.colorType = COLORTYPE_TRUEGRAY;
  for (const Row& row : kRows) {
    settings.user.duplexType = row.type;
    page.SetPageNo(row.pageNo);
    page.m_pCurrentStore = &page.m_rawData;
    receiveBmp(2, 3, 8, pixels, 7);
    EXPECT_EQ(run().status, 0u);
    // Read from its end, as a BMP is, the mirrored page stands on its head: turned by 180 degrees.
    EXPECT_EQ(fakes::pixelsOf(decoded()),
              row.mirrored ? (ByteVector{2, 1, 4, 3, 6, 5}) : (ByteVector{5, 6, 3, 4, 1, 2}))
        << row.type << " page " << row.pageNo;
    EXPECT_EQ(CScanDecThread::IsImageWidthInvertStatus(row.type, static_cast<int>(row.pageNo)), row.mirrored);
    EXPECT_EQ(CScanDecThread::IsImageHeightInvertStatus(row.type, static_cast<int>(row.pageNo)), !row.mirrored);
  }
}

TEST_F(LineStage, ExcessLinesAreDropped) {
  receiveLines(3, 5);
  decoder.writeAnswers = {{0, 1, -1}, {0, 4, -1}};  // 5 lines for a page of 3
  EXPECT_EQ(run().status, 0u);
  ByteVector expected = numberedLines(2, 2, 15);
  expected.insert(expected.end(), 15, 2);
  expected.insert(expected.end(), 15, 1);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 3, 24, expected));
}

TEST_F(LineStage, AShortPageIsAShortBmp) {
  receiveLines(5, 5);
  page.m_rawData.UpdateHeightPixel(20);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 5, 24, numberedLines(5, 1, 15)));
  EXPECT_EQ(page.m_decodedData.GetHeightPixel(), 5);
}

TEST_F(LineStage, APageWithoutALineIsWhiteInItsAnnouncedHeight) {
  receiveLines(0, 5);
  page.m_rawData.UpdateHeightPixel(4);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 4, 24, ByteVector(60, 0xFF)));
  EXPECT_EQ(decoder.pageEnds, 1);
}

TEST_F(LineStage, LinesThatTheDecoderHoldsBackComeLater) {
  receiveLines(4, 5);
  decoder.writeAnswers = {{0, 0, 0}, {0, 2, -1}, {0, 0, 0}, {0, 2, -1}};
  EXPECT_EQ(run().status, 0u);
  ByteVector expected(30, 4);
  expected.insert(expected.end(), 30, 2);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 4, 24, expected));
}

TEST_F(LineStage, FlushedLinesCountOnlyWhenTheLastLineCameOut) {
  receiveLines(2, 5);
  decoder.writeAnswers = {{0, 0, 0}, {0, 1, -1}};
  decoder.pageEndAnswer = {0, 1, -1};
  EXPECT_EQ(run().status, 0u);
  ByteVector expected(15, 0xE0);
  expected.insert(expected.end(), 15, 2);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 2, 24, expected));

  page.m_pCurrentStore = &page.m_rawData;
  receiveLines(2, 5);
  decoder.writeAnswers = {{0, 1, -1}, {0, 0, 0}};  // the last line is held back for ever
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 1, 24, ByteVector(15, 1)));
}

TEST_F(LineStage, ADecoderOfOneLineAtATimeGivesTheSamePages) {
  decoder.linesOfBuffer = 1;
  receiveLines(4, 5);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 4, 24, numberedLines(4, 1, 15)));

  page.m_pCurrentStore = &page.m_rawData;
  receiveLines(3, 5);
  page.m_rawData.UpdateHeightPixel(20);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 3, 24, numberedLines(3, 1, 15))) << "a short one";

  page.m_pCurrentStore = &page.m_rawData;
  receiveLines(3, 5);
  decoder.writeAnswers = {{0, 1, -1}, {0, 0, 0}, {0, 1, -1}};
  decoder.pageEndAnswer = {0, 1, -1};
  EXPECT_EQ(run().status, 0u);
  ByteVector expected(15, 0xE0);
  const ByteVector others = numberedLines(3, 3, 15);
  expected.insert(expected.end(), others.begin(), others.end());
  expected.insert(expected.end(), 15, 1);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 3, 24, expected)) << "one whose last line is flushed";

  page.m_pCurrentStore = &page.m_rawData;
  receiveLines(3, 5);
  decoder.pageEndAnswer = {0, 5, -1};
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 3, 24, numberedLines(3, 1, 15))) << "a full one, whatever is flushed";

  settings.user.duplexType = DUPLEXTYPE_SHORT_EDGE;
  page.SetPageNo(2);
  page.m_pCurrentStore = &page.m_rawData;
  decoder.pageEndAnswer = {0, 0, 0};
  receiveLines(3, 5);
  page.m_rawData.UpdateHeightPixel(20);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoded(), fakes::makeBmp(5, 3, 24, numberedLines(1, 3, 15))) << "the back of a sheet";
}

TEST_F(LineStage, TheDecoderIsToldTheDeviceFormat) {
  struct Row {
    COLORTYPE color;
    int code;
    std::size_t outBytes;
    int brightness, contrast;
  };
  const Row kRows[] = {{COLORTYPE_BLACKANDWHITE, 0x101, 2, 0, 0},   {COLORTYPE_ERRORDIFFUSION, 0x102, 2, 0, 0},
                       {COLORTYPE_TRUEGRAY, 0x208, 13, -7, 9},      {COLORTYPE_COLOR256, 0x210, 13, 0, 0},
                       {COLORTYPE_COLOR24BIT, 0x420, 39, 0, 0},     {COLORTYPE_AUTO, 0x420, 39, 0, 0},
                       {static_cast<COLORTYPE>(9), 0x420, 39, 0, 0}};
  settings.user.brightness = -7;
  settings.user.contrast = 9;
  settings.device.resolution = {200, 100};
  for (const Row& row : kRows) {
    page.m_pCurrentStore = &page.m_rawData;
    settings.device.colorType = row.color;
    receiveLines(2, 13, row.color);
    EXPECT_EQ(run().status, 0u);
    const SCANDEC_OPEN& open = decoder.seenOpen;
    EXPECT_EQ(open.reservedFirst, 0);
    EXPECT_EQ(open.nPageNum, 1);
    EXPECT_EQ(open.nInResoX, 200);
    EXPECT_EQ(open.nInResoY, 100);
    EXPECT_EQ(open.nOutResoX, 200);
    EXPECT_EQ(open.nOutResoY, 100);
    EXPECT_EQ(open.nColorType, row.code);
    EXPECT_EQ(open.dwInLinePixCnt, 13u);
    EXPECT_EQ(open.dwInHeightPixCnt, 2u);
    EXPECT_EQ(open.reservedOne, 1);
    EXPECT_EQ(open.nBrightness, row.brightness) << row.color;
    EXPECT_EQ(open.nContrast, row.contrast) << row.color;
    EXPECT_EQ(open.dwOutLineByteCnt, row.outBytes) << row.color;
    EXPECT_STREQ(open.reservedText, "");
  }
}

TEST_F(LineStage, OutputLinesHoldTheWholeInputWidthAndThePageIsCroppedOnTheRight) {
  settings.device.scanArea.right = 3;
  settings.device.colorType = COLORTYPE_TRUEGRAY;
  receiveBmp(5, 2, 8, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, 7);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.seenOpen.dwOutLineByteCnt, 5u);
  EXPECT_EQ(decoded(), fakes::makeBmp(3, 2, 8, {6, 7, 8, 1, 2, 3}));
}

// The store tells one width, the decoded picture another, the scan a third.
TEST_F(LineStage, ThreeWidthsLiveSideBySide) {
  settings.device.scanArea.right = 3;
  receiveBmp(5, 2, 24, fakes::countingPixels(5, 2, 24), 5);
  page.m_rawData.UpdateWidthPixel(4);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.seenOpen.dwInLinePixCnt, 5u) << "the picture's";
  EXPECT_EQ(decoder.seenOpen.dwOutLineByteCnt, 15u) << "the picture's";
  EXPECT_EQ(decoder.inputs.back().bytes.size(), 15u);
  EXPECT_EQ(decoded(), fakes::makeBmp(3, 2, 24, {16, 17, 18, 19, 20, 21, 22, 23, 24, 1, 2, 3, 4, 5, 6, 7, 8, 9}));

  settings.device.colorType = COLORTYPE_TRUEGRAY;
  page.m_pCurrentStore = &page.m_rawData;
  receiveBmp(5, 2, 8, fakes::countingPixels(5, 2, 8), 1);
  page.m_rawData.UpdateWidthPixel(4);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.seenOpen.dwInLinePixCnt, 4u) << "the store's, for a grey picture comes under the kind of mono";
  EXPECT_EQ(decoder.seenOpen.dwOutLineByteCnt, 4u);
  EXPECT_EQ(decoder.inputs.back().bytes.size(), 5u);
  EXPECT_EQ(decoded(), fakes::makeBmp(3, 2, 8, {6, 7, 8, 1, 2, 3}));

  settings.device.colorType = COLORTYPE_COLOR24BIT;
  settings.device.scanArea.right = 9;
  page.m_pCurrentStore = &page.m_rawData;
  receiveBmp(5, 2, 24, fakes::countingPixels(5, 2, 24), 5);
  page.m_rawData.UpdateWidthPixel(6);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_decodedData.GetWidthPixel(), 6) << "the store's; what the picture does not have is white";
  EXPECT_EQ(decoded(),
            fakes::makeBmp(6, 2, 24, {16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 255, 255, 255,
                                      1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 255, 255, 255}));
}

TEST_F(LineStage, SizesThatAreNotKnownComeFromTheDeviceThenFromTheBmp) {
  settings.device.scanArea.right = 4;
  settings.device.scanArea.bottom = 3;
  settings.device.resolution = {150, 100};
  page.m_rawData.StartWriteData(0, 0, 0, 0, COLORTYPE_COLOR24BIT, 5, 3);
  for (int i = 1; i <= 3; ++i) {
    const ByteVector line(12, static_cast<std::uint8_t>(i));
    ASSERT_EQ(page.m_rawData.WriteLineData(5, 3, line.data(), 12), 0u);
  }
  page.m_rawData.UpdateHeightPixel(0);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(page.m_decodedData.GetResolutionX(), 150);
  EXPECT_EQ(page.m_decodedData.GetResolutionY(), 100);
  EXPECT_EQ(page.m_decodedData.GetWidthPixel(), 4);
  EXPECT_EQ(decoder.seenOpen.dwOutLineByteCnt, 12u);
  EXPECT_EQ(page.m_decodedData.GetHeightPixel(), 1) << "a height of 0 ends the loop with the first line";

  settings.device.scanArea = {};
  page.m_pCurrentStore = &page.m_rawData;
  receiveBmp(4, 3, 24, numberedLines(1, 3, 12), 5);
  page.m_rawData.UpdateWidthPixel(0);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.seenOpen.dwOutLineByteCnt, 12u);
  EXPECT_EQ(decoded(), fakes::makeBmp(4, 3, 24, numberedLines(3, 1, 12)));
}

TEST(ScanDecThread, WriteAnswersAreJudgedInOrder) {
  struct Row {
    int result, lines;
    std::int64_t remain;
    int expected;
  };
  const Row kRows[] = {{-1, 0, 5, 3}, {-1, 5, 0, 3}, {0, 0, 0, 0}, {0, -1, 5, 0},
                       {0, 1, 0, 2},  {0, 1, -3, 2}, {0, 1, 1, 1}, {7, 2, 9, 1}};
  for (const Row& row : kRows) {
    EXPECT_EQ(CScanDecThread::GetScanDecWriteStatus(row.result, row.lines, row.remain), row.expected);
  }
}

TEST(ScanDecThread, AFinishedPageWaitsAndTheNextOneStartsAfterItWasCollected) {
  fakes::Settings settings;
  FakeScanDec decoder;
  CScanError scanError;
  CScanDecThread stage;
  CImageData pages[3];
  for (unsigned i = 0; i < 3; ++i) {
    pages[i].SetPageNo(i + 1);
    pages[i].m_rawData.StartWriteData(300, 300, 2, 1, COLORTYPE_COLOR24BIT, 5, 3);
    stage.WriteImage(&pages[i]);
  }
  for (auto& page : pages) {
    ASSERT_EQ(stage.Start1Image(settings.user, settings.device, &scanError, &decoder), 0u);
    ASSERT_EQ(stage.Start1Image(settings.user, settings.device, &scanError, &decoder), 0u);  // nothing
    EXPECT_TRUE(stage.IsStarted());
    EXPECT_EQ(fakes::collect(stage), &page);
    EXPECT_FALSE(stage.IsStarted());
    EXPECT_EQ(stage.GetResultImageData(), nullptr);
  }
}

}  // namespace
