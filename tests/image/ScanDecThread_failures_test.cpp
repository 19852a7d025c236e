// Pages that fail in the line stage, and decoders that say what is not so.
#include <stdexcept>

#include "tests/image/line_stage.h"

using namespace orvalle_scan_api;
using fakes::ByteVector;
using fakes::FakeScanDec;
using fakes::LineStage;
using fakes::numberedLines;

namespace {

TEST_F(LineStage, AFailureOnALineCancelsThePage) {
  receiveLines(4, 5);
  decoder.writeAnswers = {{0, 1, -1}, {-1, 1, -1}};
  const SCANSTATUS status = run();
  EXPECT_EQ(status.status, 0x01000000u);
  EXPECT_EQ(status.errPageNo, 1u);
  EXPECT_TRUE(page.m_decodedData.IsEmpty());
  EXPECT_EQ(page.m_decodedData.GetStatus(), 2) << "finishing turns the cancelled store into a finished one";
  EXPECT_EQ(page.m_pCurrentStore, &page.m_decodedData);
  EXPECT_TRUE(page.m_rawData.IsEmpty());
  EXPECT_EQ(decoder.pageEnds, 0);
  EXPECT_EQ(decoder.closes, 1);
}

TEST_F(LineStage, LinesWithoutBytesAreAnError) {
  receiveLines(4, 5);
  decoder.writeAnswers = {{0, 1, 0}};
  EXPECT_EQ(run().status, 0x70406007u);
  EXPECT_EQ(decoder.closes, 1);
}

TEST_F(LineStage, APageThatFailsKeepsTheLinesThatCameInTheirOrder) {
  for (const std::size_t linesOfBuffer : {std::size_t{1}, std::size_t{4}}) {
    scanError.Reset();
    page.m_pCurrentStore = &page.m_rawData;
    decoder.linesOfBuffer = linesOfBuffer;
    receiveLines(4, 5);
    decoder.writeAnswers = {{0, 1, -1}, {0, 1, -1}, {0, 1, 0}};
    EXPECT_EQ(run().status, 0x70406007u);
    EXPECT_EQ(decoded(), fakes::makeBmp(5, 2, 24, numberedLines(1, 2, 15)));
    EXPECT_EQ(page.m_decodedData.GetStatus(), 2);
  }
}

TEST_F(LineStage, ADecoderThatCannotBeOpenedLeavesThePageAsItIs) {
  receiveLines(4, 5);
  decoder.openAnswer = 0;
  EXPECT_EQ(run().status, 0x20406001u);
  EXPECT_EQ(page.m_pCurrentStore, &page.m_rawData);
  EXPECT_FALSE(page.m_rawData.IsEmpty());
  EXPECT_EQ(decoder.closes, 0);
}

TEST_F(LineStage, ADecoderThatRefusesTheSettingsOrNeedsNoBufferEndsThePage) {
  receiveLines(4, 5);
  decoder.setOpenAnswer = 0;
  EXPECT_EQ(run().status, 0x30406003u);
  EXPECT_EQ(decoder.closes, 1);
  scanError.Reset();
  decoder.setOpenAnswer = 1;
  decoder.bufferBytes = 0;
  EXPECT_EQ(run().status, 0x30406003u);
  EXPECT_EQ(decoder.closes, 2);
  EXPECT_EQ(page.m_pCurrentStore, &page.m_rawData);
}

TEST_F(LineStage, WhatTheDecoderClaimsIsHeldAgainstItsBuffer) {
  struct Row {
    const char* name;
    FakeScanDec::Answer answer;
    std::size_t bufferBytes;
  };
  // Every line of the page comes from this one answer; what is not there is white.
  const Row kRows[] = {{"more lines than the buffer holds", {0, 3, 45}, 20},
                       {"strides shorter than a line", {0, 3, 30}, 60},
                       {"fewer bytes than lines", {0, 3, 2}, 60},
                       {"bytes beyond the buffer", {0, 3, 0x7FFFFFFF}, 60},
                       {"lines without end", {0, 0x7FFFFFFF, 0x7FFFFFFF}, 60},
                       {"negative bytes", {0, 3, -5}, 60},
                       {"more lines than the place of one holds", {0, 3, 45}, 15},
                       {"short strides in the place of one line", {0, 3, 12}, 15},
                       {"a buffer that is shorter than a line", {0, 3, 45}, 7}};
  for (const Row& row : kRows) {
    page.m_pCurrentStore = &page.m_rawData;
    receiveLines(1, 5);
    page.m_rawData.UpdateHeightPixel(3);
    decoder.bufferBytes = row.bufferBytes;
    decoder.writeAnswers = {row.answer};
    EXPECT_EQ(run().status, 0u) << row.name;
    EXPECT_EQ(page.m_decodedData.GetHeightPixel(), 3) << row.name;
    EXPECT_EQ(decoded().size(), 54u + 45) << row.name;
  }
  // The first row in full: 15 bytes of the line, 5 bytes of the next, then white, upside down.
  page.m_pCurrentStore = &page.m_rawData;
  receiveLines(1, 5);
  page.m_rawData.UpdateHeightPixel(3);
  decoder.bufferBytes = 20;
  decoder.writeAnswers = {{0, 3, 45}};
  EXPECT_EQ(run().status, 0u);
  ByteVector expected(15, 0xFF);
  expected.insert(expected.end(), 5, 0x5A);
  expected.insert(expected.end(), 10, 0xFF);
  expected.insert(expected.end(), 15, 1);
  EXPECT_EQ(fakes::pixelsOf(decoded()), expected);

  // Three lines of four bytes each in the place of one.
  page.m_pCurrentStore = &page.m_rawData;
  receiveLines(1, 5);
  page.m_rawData.UpdateHeightPixel(3);
  decoder.bufferBytes = 15;
  decoder.writeAnswers = {{0, 3, 12}};
  EXPECT_EQ(run().status, 0u);
  ByteVector line(4, 1);
  line.insert(line.end(), 11, 0xFF);
  expected = line;
  expected.insert(expected.end(), line.begin(), line.end());
  expected.insert(expected.end(), line.begin(), line.end());
  EXPECT_EQ(fakes::pixelsOf(decoded()), expected);
}

TEST_F(LineStage, AResolutionOfZeroIsSurvived) {
  settings.device.resolution = {0, 0};
  receiveLines(2, 5);
  EXPECT_EQ(run().status, 0u);
  EXPECT_EQ(decoder.seenOpen.dwOutLineByteCnt, 15u);
}

TEST_F(LineStage, APageThatNobodyWantsIsLeftAlone) {
  for (int round = 0; round < 2; ++round) {
    scanError.Reset();
    SCANSTATUS status{};
    if (round == 0) {
      status.status = 0x30402001;
      status.errPageNo = 1;
    } else {
      status.canceled = true;
      status.cancelPageNo = 1;
    }
    scanError.Set(status);
    receiveLines(2, 5);
    run();
    EXPECT_EQ(decoder.opens, 0);
    EXPECT_FALSE(page.m_rawData.IsEmpty());
  }
}

TEST_F(LineStage, TheFirstFailureOfTheScanIsKept) {
  SCANSTATUS earlier{};
  earlier.status = 0x1040100B;
  earlier.errPageNo = 7;
  scanError.Set(earlier);
  receiveLines(2, 5);
  decoder.openAnswer = 0;
  const SCANSTATUS status = run();
  EXPECT_EQ(status.status, 0x1040100Bu);
  EXPECT_EQ(status.errPageNo, 7u);
}

TEST_F(LineStage, NothingIsThrownOutOfTheThread) {
  receiveLines(2, 5);
  decoder.onWrite = [] { throw std::bad_alloc(); };
  EXPECT_EQ(run().status, 0x30402001u);
  EXPECT_EQ(decoder.closes, 1);
  scanError.Reset();
  page.m_pCurrentStore = &page.m_rawData;
  receiveLines(2, 5);
  decoder.onWrite = [] { throw std::runtime_error("no"); };
  const SCANSTATUS status = run();
  EXPECT_EQ(status.status, 0x30406003u);
  EXPECT_EQ(status.errPageNo, 1u);
}

TEST_F(LineStage, APageTooLargeForMemoryIsAnErrorOfThatPage) {
  receiveLines(1, 5);
  page.m_rawData.UpdateWidthPixel(0x7FFFFFFF);
  page.m_rawData.UpdateHeightPixel(0x7FFFFFFF);
  decoder.bufferBytes = 100;
  const SCANSTATUS status = run();
  EXPECT_EQ(status.status, 0x30402001u);
  EXPECT_EQ(status.errPageNo, 1u);
}

TEST_F(LineStage, RandomRecordsAndAnswersAreSurvived) {
  std::uint32_t seed = 17;
  const auto random = [&seed] { return seed = seed * 1664525 + 1013904223, static_cast<int>(seed >> 8 & 0xFFFF); };
  for (int round = 0; round < 300; ++round) {
    CImageData other;
    other.SetPageNo(1);
    scanError.Reset();
    const auto color = static_cast<COLORTYPE>(random() % 6);
    settings.device.colorType = static_cast<COLORTYPE>(random() % 6);
    settings.device.scanArea.right = random() % 40;
    settings.device.scanArea.bottom = random() % 40;
    settings.user.duplexType = static_cast<DUPLEXTYPE>(random() % 3);
    other.m_rawData.StartWriteData(300, 300, random() % 40, random() % 10, color,
                                   static_cast<std::uint32_t>(random() % 9), static_cast<std::uint32_t>(random() % 6));
    ByteVector garbage(static_cast<std::size_t>(1 + random() % 300));
    for (auto& byte : garbage) byte = static_cast<std::uint8_t>(random() % 9);
    if (random() % 3 == 0) garbage = fakes::makeBmp(random() % 50, random() % 50, 24, garbage);
    ASSERT_EQ(other.m_rawData.WriteDataBlock(garbage.data(), static_cast<unsigned>(garbage.size())), 0u);
    other.m_rawData.FinishWriteData(false, random() % 20);
    decoder.bufferBytes = static_cast<std::size_t>(1 + random() % 200);
    decoder.writeAnswers.clear();
    for (int i = 0; i < 5; ++i) decoder.writeAnswers.push_back({random() % 20 - 1, random() % 6 - 1, random() % 300});
    decoder.pageEndAnswer = {0, random() % 3, random() % 300};
    stage.WriteImage(&other);
    ASSERT_EQ(stage.Start1Image(settings.user, settings.device, &scanError, &decoder), 0u);
    ASSERT_EQ(fakes::collect(stage), &other);
    const CImageDataStore& store = other.m_decodedData;
    if (scanError.Get().status == 0) {
      const auto header = fakes::headerBytesOf(store.GetBitPerPixel());
      EXPECT_EQ(store.GetDataSize(), header + store.GetWidthBytes() * static_cast<unsigned>(store.GetHeightPixel()));
    }
  }
}

TEST(ScanDecThread, NullPointersAreRefused) {
  FakeScanDec decoder;
  CScanError scanError;
  CScanDecThread stage;
  const QS_SCANNER_PARAMETERS none{};
  EXPECT_EQ(stage.Start1Image(none, none, nullptr, &decoder), 0x30406007u);
  EXPECT_EQ(stage.Start1Image(none, none, &scanError, nullptr), 0x30406007u);
  EXPECT_EQ(stage.Start1Image(none, none, &scanError, &decoder), 0u) << "an empty queue";
  EXPECT_FALSE(stage.IsStarted());
  EXPECT_EQ(stage.GetResultImageData(), nullptr);
}

TEST(ScanDecThread, AStageThatIsDestroyedInTheMiddleOfAPageJoinsItsWorker) {
  fakes::Settings settings;
  FakeScanDec decoder;
  CScanError scanError;
  CImageData page;
  page.SetPageNo(1);
  page.m_rawData.StartWriteData(300, 300, 2, 0, COLORTYPE_COLOR24BIT, 5, 3);
  const ByteVector line(6, 1);
  for (int i = 0; i < 100000; ++i) ASSERT_EQ(page.m_rawData.WriteLineData(5, 3, line.data(), 6), 0u);
  std::atomic<int> writes{0};
  decoder.onWrite = [&] {
    ++writes;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  };
  {
    CScanDecThread stage;
    stage.WriteImage(&page);
    ASSERT_EQ(stage.Start1Image(settings.user, settings.device, &scanError, &decoder), 0u);
    while (writes < 3) std::this_thread::yield();
  }
  EXPECT_LT(writes, 100000);
  EXPECT_EQ(decoder.closes, 1);
}

}  // namespace
