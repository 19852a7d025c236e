#include "reception/ReadThread_v1.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/fakes/refused_arrays.h"
#include "tests/reception/reader_bench.h"
#include "tests/reception/stream_records_v1.h"

namespace reception_test {
namespace {

using Bench = BenchOf<FirstGeneration>;
using OpenReader = OpenReaderOf<CReadThread_v1>;

// --- What the device's error bytes mean ----------------------------------------------------------------------------

TEST(ReadThread_v1, EveryDeviceErrorHasItsCode) {
  const std::map<unsigned, QSRSLT> known = {
      {0xC2, 0x50000001}, {0xC3, 0x50000002}, {0xC4, 0x50000003}, {0xC5, 0x50000004}, {0xC6, 0x50000005},
      {0xC7, 0x50000008}, {0xC8, 0x50000006}, {0xC9, 0x50000007}, {0xCA, 0x50000008}, {0xCB, 0x50000009},
      {0xCC, 0x5000000A}, {0xCD, 0x5000000B}, {0xCE, 0x5000000C}, {0xCF, 0x5000000D}, {0xE8, 0x5000000E},
      {0xE9, 0x5000000F}, {0xEA, 0x50000010}, {0xEB, 0x50000011}, {0xEC, 0x50000012}, {0xED, 0x50000013},
      {0xEE, 0x50000014}, {0xEF, 0x50000015}};
  OpenReader reader;
  for (unsigned code = 0; code <= 0xFFFF; ++code) {
    const auto row = known.find(code);
    const QSRSLT expected = row != known.end() ? row->second : 0x500000FF;
    ASSERT_EQ(reader.ConvertDeviceErrorToQSRSLT(static_cast<unsigned short>(code)), expected) << std::hex << code;
  }
}

// --- The six cases of a parsed record -------------------------------------------------------------------------------

TEST(ReadThread_v1, ARecordIsSortedByWhatItIsAndByWhatFollows) {
  std::uint8_t byte = 0;
  const struct {
    const char* name;
    std::uint32_t recordKind;
    bool isIncomplete;
    std::uint8_t* next;
    int value;
  } rows[] = {{"line, incomplete", 1, true, nullptr, 0},   {"line, incomplete, with a next", 1, true, &byte, 0},
              {"line, last", 1, false, nullptr, 1},        {"line, more follows", 1, false, &byte, 2},
              {"status, incomplete", 0, true, nullptr, 3}, {"status, incomplete, with a next", 0, true, &byte, 3},
              {"status, last", 0, false, nullptr, 4},      {"status, more follows", 0, false, &byte, 5}};
  for (const auto& row : rows) {
    SCANIMAGEINFO info{};
    info.recordKind = row.recordKind;
    info.isIncomplete = row.isIncomplete;
    info.next = row.next;
    EXPECT_EQ(CReadThread_v1::GetReceivedImageInfoStatus(info), row.value) << row.name;
    info.statusCode = 0x80;
    info.lineData.isWhiteLine = true;
    EXPECT_EQ(CReadThread_v1::GetReceivedImageInfoStatus(info), row.value) << row.name;
  }
}

// --- Lines -----------------------------------------------------------------------------------------------------------

TEST(ReadThread_v1, TheHeaderByteTellsKindAndCompressionOfALine) {
  constexpr std::uint32_t kKinds[] = {1, 2, 3, 4, 5, 6, 1, 7};  // by the bits of 0x1C
  for (unsigned header = 0x40; header < 0x80; ++header) {
    Bench bench;
    ASSERT_EQ(bench.start(), 0u);
    const SCANSTATUS status = bench.dispatch(v1::line(static_cast<std::uint8_t>(header), 1, {9, 8, 7}));
    EXPECT_EQ(status.status, 0u);
    EXPECT_EQ(bench.result, 0u);
    const bool isJpeg = (header & 0x20) != 0;
    const std::uint32_t kind = isJpeg ? 5 : kKinds[(header >> 2) & 7];
    const std::uint32_t code = isJpeg ? 5 : (header & 3) == 2 ? 3 : 2;
    EXPECT_EQ(&bench.store(1), isJpeg ? &bench.page(1).m_jpegData : &bench.page(1).m_rawData) << std::hex << header;
    EXPECT_EQ(bench.bytesOf(1), isJpeg ? (ByteString{9, 8, 7}) : lineRecord(kind, code, {9, 8, 7}))
        << std::hex << header;
    EXPECT_EQ(bench.store(1).GetDataType(), kind) << std::hex << header;
    EXPECT_EQ(bench.store(1).GetCompressType(), code) << std::hex << header;
    EXPECT_EQ(bench.store(1).GetStatus(), IMAGEDATA_WRITING) << std::hex << header;
  }
}

TEST(ReadThread_v1, APageStartsWithWhatTheDeviceWillSendAndCountsOnFromItsHeight) {
  for (const int bits : {1, 8, 24}) {
    Bench bench(settingsFor(8, 4, bits));
    bench.actual = FirstGeneration::actual(150, 200, 2550, 3300);
    ASSERT_EQ(bench.start(), 0u);
    const int height = bench.reader.m_deviceParam.scanArea.bottom;
    const int width = bench.reader.m_deviceParam.scanArea.right;
    ASSERT_GT(height, 0);
    bench.dispatch(v1::line(v1::kMono, 1, {1}) + v1::line(v1::kMono, 1, {2}));
    EXPECT_EQ(bench.page(1).GetPageNo(), 1u);
    EXPECT_EQ(bench.store(1).GetResolutionX(), 150);
    EXPECT_EQ(bench.store(1).GetResolutionY(), 200);
    EXPECT_EQ(bench.store(1).GetWidthPixel(), width);
    EXPECT_EQ(bench.store(1).GetHeightPixel(), height + 2) << "two lines beyond the height asked for";
    EXPECT_EQ(bench.store(1).GetColorType(), bits == 24  ? COLORTYPE_COLOR24BIT
                                             : bits == 8 ? COLORTYPE_TRUEGRAY
                                                         : COLORTYPE_BLACKANDWHITE);
    EXPECT_EQ(bench.store(1).GetDataType(), 1u) << "of the record, whatever the colour type";
    EXPECT_EQ(bench.store(1).GetCompressType(), 2u);
  }
}

TEST(ReadThread_v1, AJpegPageStartsAtTheHeightAskedForAndKeepsIt) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(v1::line(v1::kJpeg, 1, {1, 2}) + v1::line(v1::kJpeg, 1, {3}, 99));
  EXPECT_EQ(bench.bytesOf(1), (ByteString{1, 2, 3}));
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 4);
  EXPECT_EQ(bench.store(1).GetWidthPixel(), 8);
}

TEST(ReadThread_v1, AColourScanKeepsTheKindOfTheRecord) {
  for (const COLORTYPE colorType : {COLORTYPE_AUTO, COLORTYPE_TRUEGRAY, COLORTYPE_COLOR24BIT}) {
    auto settings = settingsFor(8, 4, 24);
    settings.colorType = colorType;
    Bench bench(settings);
    ASSERT_EQ(bench.start(), 0u);
    bench.dispatch(v1::line(v1::kGray | v1::kPackBits, 1, {1}));
    EXPECT_EQ(bench.store(1).GetDataType(), 7u) << colorType;
    EXPECT_EQ(bench.store(1).GetCompressType(), 3u) << colorType;
  }
}

TEST(ReadThread_v1, TheStoresCompressionIsThatOfTheFirstRecord) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(v1::line(v1::kColor | v1::kPackBits, 1, {1}) + v1::line(v1::kColor, 1, {2}));
  EXPECT_EQ(bench.bytesOf(1), lineRecord(5, 3, {1}) + lineRecord(5, 2, {2}));
  EXPECT_EQ(bench.store(1).GetCompressType(), 3u);
}

TEST(ReadThread_v1, ALineOfNoBytesCounts) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(v1::line(v1::kColor, 1, {}) + v1::line(v1::kColor, 1, {}));
  ASSERT_EQ(bench.reader.pageCount(), 1u);
  EXPECT_EQ(bench.bytesOf(1), lineRecord(5, 2, {}));
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 5);
  EXPECT_EQ(bench.escaped, v1::line(v1::kColor, 1, {})) << "as the very last it is not seen to be whole";
}

TEST(ReadThread_v1, NoLineIsTooMany) {
  Bench bench(settingsFor(8, 4, 24));
  ASSERT_EQ(bench.start(), 0u);
  for (int i = 0; i < 9; ++i) bench.dispatch(v1::line(v1::kColor, 1, {1}));
  EXPECT_EQ(bench.bytesOf(1).size(), 9u * 13);
}

TEST(ReadThread_v1, AFirstRecordForPageTwoMakesTwo) {
  for (const std::uint8_t header : {v1::kColor, v1::kJpeg}) {
    Bench bench;
    ASSERT_EQ(bench.start(), 0u);
    bench.dispatch(v1::line(header, 2, {1}));
    ASSERT_EQ(bench.reader.pageCount(), 2u);
    EXPECT_TRUE(bench.page(1).IsEmpty());
    EXPECT_EQ(bench.page(1).GetPageNo(), 1u);
    EXPECT_EQ(bench.page(2).GetPageNo(), 2u);
    EXPECT_EQ(bench.bytesOf(2), header == v1::kJpeg ? ByteString{1} : lineRecord(5, 2, {1}));
    for (const unsigned page : {1u, 2u}) {
      EXPECT_EQ(bench.store(page).GetCompressType(), header == v1::kJpeg ? 5u : 2u);
      EXPECT_EQ(&bench.store(page), header == v1::kJpeg ? &bench.page(page).m_jpegData : &bench.page(page).m_rawData);
    }
  }
}

// The store of a page behind a gap is that of its own record, not one that the gap brought.
TEST(ReadThread_v1, APageBehindAGapTakesTheLinesThatComeForIt) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(v1::line(v1::kColor, 1, {1}) + v1::line(v1::kColor | v1::kPackBits, 4, {1}));
  ASSERT_EQ(bench.reader.pageCount(), 4u);
  EXPECT_EQ(&bench.store(4), &bench.page(4).m_rawData);
  EXPECT_EQ(bench.store(4).GetCompressType(), 3u);
  EXPECT_EQ(bench.bytesOf(4), lineRecord(5, 3, {1}));
  bench.dispatch(v1::line(v1::kColor, 3, {7}));
  EXPECT_EQ(bench.bytesOf(3), lineRecord(5, 2, {7}));
}

TEST(ReadThread_v1, DropsALineForPageZeroOrANegativeOne) {
  for (const int pageNo : {0, -1, -32768}) {
    Bench bench;
    ASSERT_EQ(bench.start(), 0u);
    for (const std::uint8_t header : {v1::kColor, v1::kJpeg}) {
      const SCANSTATUS status = bench.dispatch(v1::line(header, pageNo, {1}));
      EXPECT_EQ(bench.result, 0u) << pageNo;
      EXPECT_EQ(status.status, 0u) << pageNo;
      EXPECT_EQ(bench.reader.pageCount(), 0u) << pageNo;
    }
    bench.dispatch(v1::line(v1::kColor, pageNo, {1}) + v1::line(v1::kColor, 1, {2}));
    EXPECT_EQ(bench.bytesOf(1), lineRecord(5, 2, {2})) << "the next record is taken";
  }
}

// A page of 60000 by 60000 pixels does not fit a store.
TEST(ReadThread_v1, ALineThatFindsNoMemoryIsPassedOver) {
  Bench bench(settingsFor(60000, 60000, 24));
  bench.actual = FirstGeneration::actual(300, 300, 60000, 60000);
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_EQ(bench.reader.m_deviceParam.scanArea.right, 60000);
  SCANSTATUS status = bench.dispatch(v1::line(v1::kColor, 1, {1, 2, 3}));
  EXPECT_EQ(bench.result, 0u);
  EXPECT_EQ(status.status, 0u);
  EXPECT_EQ(status.errPageNo, 0u);
  ASSERT_EQ(bench.reader.pageCount(), 1u);
  EXPECT_TRUE(bench.page(1).IsEmpty());
  status = bench.dispatch(v1::line(v1::kColor, 1, {1, 2, 3}) + v1::line(v1::kJpeg, 2, {4}));
  EXPECT_EQ(status.status, 0u);
  EXPECT_EQ(bench.bytesOf(2), ByteString{4}) << "the loop goes on";
}

// --- Ends ------------------------------------------------------------------------------------------------------------

TEST(ReadThread_v1, ThePagesEndHandsItToTheDecoderWithTheHeightItTells) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(v1::line(v1::kColor, 1, {1}) + v1::pageEnd(1, 3));
  EXPECT_EQ(status.lastReceivePageNo, 1u);
  EXPECT_EQ(status.status, 0u);
  EXPECT_TRUE(bench.page(1).IsHandedOver());
  EXPECT_EQ(bench.store(1).GetStatus(), IMAGEDATA_FINISHED);
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 3);
  EXPECT_EQ(bench.reader.GetCountOfNotXferedImageData(), 1u);
  EXPECT_TRUE(bench.device.IsOpen());
}

TEST(ReadThread_v1, APageEndWithoutAHeightLeavesTheOneThatWasCounted) {
  for (const ByteString& end : {v1::pageEnd(1), v1::pageEnd(1, 0)}) {
    Bench bench;
    ASSERT_EQ(bench.start(), 0u);
    bench.dispatch(v1::line(v1::kColor, 1, {1}) + end);
    EXPECT_TRUE(bench.page(1).IsHandedOver());
    EXPECT_EQ(bench.store(1).GetHeightPixel(), 4 + 1);
  }
}

TEST(ReadThread_v1, AHeightThatCannotBeIsNotTakenAsNegative) {
  for (const std::uint32_t height : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    Bench bench;
    ASSERT_EQ(bench.start(), 0u);
    bench.dispatch(v1::line(v1::kColor, 1, {1}) + v1::pageEnd(1, height));
    EXPECT_TRUE(bench.page(1).IsHandedOver());
    EXPECT_GT(bench.store(1).GetHeightPixel(), 0) << std::hex << height;
  }
}

TEST(ReadThread_v1, TheEndOfAPageThatThereIsNotOnlyCounts) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  SCANSTATUS status = bench.dispatch(v1::pageEnd(4));
  EXPECT_EQ(status.lastReceivePageNo, 4u);
  EXPECT_EQ(bench.reader.pageCount(), 0u);
  EXPECT_EQ(status.status, 0u);
  EXPECT_EQ(bench.result, 0u);
  status = bench.dispatch(v1::pageEnd(2, 50) + v1::pageEnd(5, 50));
  EXPECT_EQ(status.lastReceivePageNo, 5u) << "the highest";
  EXPECT_EQ(status.status, 0u);
}

TEST(ReadThread_v1, TheEndOfPageZeroOrOfANegativeOneCountsForNothing) {
  for (const int pageNo : {0, -1, -32768}) {
    Bench bench;
    ASSERT_EQ(bench.start(), 0u);
    SCANSTATUS status = bench.dispatch(v1::line(v1::kColor, 1, {1}) + v1::pageEnd(1) + v1::pageEnd(pageNo) +
                                       v1::line(v1::kColor, 2, {1}));
    EXPECT_EQ(status.status, 0u) << pageNo;
    EXPECT_EQ(status.lastReceivePageNo, 1u) << pageNo << ": it is below every page";
    EXPECT_EQ(bench.reader.pageCount(), 2u) << pageNo;
    status = bench.dispatch(v1::status(0xC3));
    EXPECT_EQ(status.errPageNo, 2u) << pageNo;
  }
}

TEST(ReadThread_v1, DataAndASecondEndAfterAPagesEndAreDropped) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(v1::line(v1::kColor, 1, {1}) + v1::pageEnd(1, 7) +
                                           v1::line(v1::kColor, 1, {2}) + v1::pageEnd(1, 9));
  EXPECT_EQ(status.status, 0u);
  EXPECT_EQ(bench.bytesOf(1), lineRecord(5, 2, {1}));
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 7);
}

TEST(ReadThread_v1, TheEndOfAllPagesClosesTheDevice) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(v1::allPagesEnd());
  EXPECT_TRUE(status.scanFinished);
  EXPECT_EQ(status.status, 0u);
  EXPECT_FALSE(status.canceled);
  EXPECT_FALSE(bench.device.IsOpen());
}

TEST(ReadThread_v1, TheEndOfAllPagesEndsThePagesThatHaveNoEndOfTheirOwn) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(v1::line(v1::kColor, 2, {1}) + v1::allPagesEnd());
  EXPECT_TRUE(bench.page(1).GetIsBlankPage()) << "it never had any data";
  EXPECT_TRUE(bench.page(1).IsSettled());
  EXPECT_TRUE(bench.page(2).IsHandedOver());
}

TEST(ReadThread_v1, WhatComesBehindTheEndOfAllPagesDoesNotTouchThePagesBeforeIt) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(v1::line(v1::kColor, 1, {1}) + v1::allPagesEnd() +
                                           v1::line(v1::kColor, 1, {2}) + v1::status(0xC3));
  EXPECT_TRUE(bench.page(1).IsHandedOver());
  EXPECT_EQ(bench.bytesOf(1), lineRecord(5, 2, {1}));
  EXPECT_TRUE(status.scanFinished);
  EXPECT_EQ(status.deviceErr, 0xC3);
  EXPECT_EQ(status.errPageNo, 2u);
}

// --- Status codes ----------------------------------------------------------------------------------------------------

TEST(ReadThread_v1, EveryStatusCodeEndsTheScanAsItsRowSays) {
  for (unsigned code = 0x80; code <= 0xFF; ++code) {
    for (const bool isPageOpen : {true, false}) {
      Bench bench;
      ASSERT_EQ(bench.start(), 0u);
      const ByteString pages =
          v1::line(v1::kColor, 1, {1}) + v1::pageEnd(1) + (isPageOpen ? v1::line(v1::kColor, 2, {1}) : ByteString());
      const SCANSTATUS status = bench.dispatch(pages + v1::status(static_cast<std::uint8_t>(code), 2));
      const bool isCancel = code == 0x83 || code == 0x86;
      const bool isEnd = code == 0x80;
      const bool isPageEnd = code == 0x82;
      const bool isError = !isCancel && !isEnd && !isPageEnd;
      EXPECT_EQ(status.status, isCancel ? 0x01000000u : isError ? 0x1040100Bu : 0u) << std::hex << code;
      EXPECT_EQ(status.deviceErr, isError ? code : 0u) << std::hex << code;
      EXPECT_EQ(status.errPageNo, isError ? 2u : 0u) << std::hex << code;
      EXPECT_EQ(status.canceled, isCancel) << std::hex << code;
      EXPECT_EQ(status.cancelPageNo, isCancel ? 2u : 0u) << std::hex << code;
      EXPECT_EQ(status.scanFinished, isEnd) << std::hex << code;
      EXPECT_EQ(status.betweenPageErr, isError && !isPageOpen) << std::hex << code;
      EXPECT_EQ(bench.device.IsOpen(), isPageEnd || isError) << std::hex << code;
      if (isPageOpen) {
        EXPECT_EQ(bench.page(2).IsEmpty(), isError) << std::hex << code;
      }
      EXPECT_FALSE(bench.page(1).IsEmpty()) << std::hex << code;
      EXPECT_EQ(bench.result, 0u) << std::hex << code;
      EXPECT_TRUE(bench.escaped.empty()) << std::hex << code;
    }
  }
}

TEST(ReadThread_v1, AWhiteLineEndsTheScanAsADeviceErrorWithoutACode) {
  for (unsigned header = 0; header < 0x40; ++header) {
    for (const bool isPageOpen : {true, false}) {
      for (const bool isLast : {true, false}) {
        Bench bench;
        ASSERT_EQ(bench.start(), 0u);
        const ByteString pages =
            v1::line(v1::kColor, 1, {1}) + v1::pageEnd(1) + (isPageOpen ? v1::line(v1::kColor, 2, {1}) : ByteString());
        const SCANSTATUS status = bench.dispatch(pages + v1::whiteLine(2, static_cast<std::uint8_t>(header)) +
                                                 (isLast ? ByteString() : v1::pageEnd(1)));
        EXPECT_EQ(status.status, 0x1040100Bu) << header;
        EXPECT_EQ(status.deviceErr, 0) << header;
        EXPECT_EQ(status.errPageNo, 2u) << header;
        EXPECT_EQ(status.betweenPageErr, !isPageOpen) << header;
        EXPECT_FALSE(status.canceled);
        EXPECT_TRUE(bench.device.IsOpen());
      }
    }
  }
}

TEST(ReadThread_v1, ADeviceErrorThatIsRecordedStaysTheFirst) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(v1::status(0xC3) + v1::status(0xC4) + v1::canceled() + v1::allPagesEnd());
  EXPECT_EQ(status.deviceErr, 0xC3);
  EXPECT_EQ(status.status, 0x1040100Bu);
  EXPECT_FALSE(status.scanFinished);
  EXPECT_TRUE(status.canceled) << "a first cancellation is taken also after a failure";
}

TEST(ReadThread_v1, LinesBehindAFailureAreStillWrittenToTheBuffersEnd) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(v1::line(v1::kColor, 1, {1}) + v1::status(0xC3) +
                                           v1::line(v1::kColor, 2, {2}) + v1::line(v1::kColor, 2, {3}) +
                                           v1::pageEnd(2) + v1::line(v1::kColor, 3, {4}) + ByteString{v1::kColor});
  EXPECT_EQ(status.status, 0x1040100Bu);
  EXPECT_EQ(status.errPageNo, 1u);
  EXPECT_TRUE(bench.page(1).IsEmpty());
  ASSERT_EQ(bench.reader.pageCount(), 3u);
  EXPECT_EQ(bench.bytesOf(2), lineRecord(5, 2, {2}) + lineRecord(5, 2, {3}));
  EXPECT_TRUE(bench.page(2).IsHandedOver());
  EXPECT_EQ(bench.bytesOf(3), lineRecord(5, 2, {4}));
  EXPECT_EQ(bench.escaped, ByteString{v1::kColor});
}

// With six pages held at 600 dpi a line must wait, and the wait ends at once because the scan has failed.
TEST(ReadThread_v1, ALineThatMayNotBeWrittenEndsTheBufferOnlyAsItsLast) {
  auto settings = settingsFor(8, 4, 24);
  settings.resolution = {600, 600};
  ByteString stream;
  for (int n = 1; n <= 6; ++n) stream = stream + v1::line(v1::kJpeg, n, {1}) + v1::pageEnd(n);
  stream = stream + v1::status(0xC3);
  for (const bool isLast : {true, false}) {
    Bench bench(settings);
    bench.actual = FirstGeneration::actual(600, 600, 5100, 6600);
    ASSERT_EQ(bench.start(), 0u);
    const SCANSTATUS status =
        bench.dispatch(stream + v1::line(v1::kColor, 7, {1}) + (isLast ? ByteString() : v1::pageEnd(9)));
    EXPECT_EQ(status.status, 0x1040100Bu);
    EXPECT_EQ(status.errPageNo, 7u);
    EXPECT_EQ(bench.result, isLast ? 0x1040100Bu : 0u);
    ASSERT_EQ(bench.reader.pageCount(), 7u);
    EXPECT_TRUE(bench.page(7).IsEmpty());
  }
}

// --- Cut records -----------------------------------------------------------------------------------------------------

TEST(ReadThread_v1, ACutRecordIsKeptWholeAndWrittenOnce) {
  const ByteString records[] = {v1::line(v1::kColor, 1, {1, 2, 3, 4}),
                                v1::line(v1::kColor | v1::kPackBits, 1, {1, 2, 3, 4}, 9),
                                v1::line(v1::kJpeg, 2, {5, 6}),
                                v1::whiteLine(1),
                                v1::pageEnd(1),
                                v1::pageEnd(1, 3),
                                v1::status(0x87),
                                v1::allPagesEnd()};
  for (const ByteString& record : records) {
    for (std::size_t cut = 0; cut < record.size(); ++cut) {
      for (const ByteString& behind : {ByteString(), v1::line(v1::kColor, 3, {8})}) {
        Bench bench;
        ASSERT_EQ(bench.start(), 0u);
        const auto middle = record.begin() + static_cast<std::ptrdiff_t>(cut);
        const ByteString before = v1::line(v1::kColor, 1, {7});
        bench.dispatch(before + ByteString(record.begin(), middle));
        EXPECT_EQ(bench.escaped, ByteString(record.begin(), middle)) << int{record[0]} << " cut at " << cut;
        EXPECT_EQ(bench.bytesOf(1), lineRecord(5, 2, {7}));
        EXPECT_EQ(bench.result, 0u);
        const SCANSTATUS cutOff = bench.error.Get();
        EXPECT_EQ(cutOff.status, 0u);
        EXPECT_FALSE(cutOff.scanFinished);
        EXPECT_EQ(cutOff.lastReceivePageNo, 0u);

        bench.dispatch(bench.escaped + ByteString(middle, record.end()) + behind);
        EXPECT_TRUE(bench.escaped.empty());
        Bench whole;
        ASSERT_EQ(whole.start(), 0u);
        whole.dispatch(before + record + behind);
        EXPECT_EQ(bench.reader.pageCount(), whole.reader.pageCount());
        for (unsigned n = 1; n <= whole.reader.pageCount(); ++n) EXPECT_EQ(bench.bytesOf(n), whole.bytesOf(n));
        EXPECT_EQ(bench.error.Get().status, whole.error.Get().status);
        EXPECT_EQ(bench.error.Get().lastReceivePageNo, whole.error.Get().lastReceivePageNo);
        EXPECT_EQ(bench.error.Get().scanFinished, whole.error.Get().scanFinished);
      }
    }
  }
}

TEST(ReadThread_v1, ARecordWhoseSizeMakesNoSenseIsHeldBack) {
  for (const std::uint32_t n : {0u, 1u, 2u, 4u, 5u, 6u, 0x8000u, 0xFFFFu}) {
    for (const std::uint8_t header : ByteString{0x00, 0x50, 0x82, 0x87}) {
      Bench bench;
      ASSERT_EQ(bench.start(), 0u);
      const ByteString held = ByteString{header} + u16(n) + ByteString(40, 0x11);
      const SCANSTATUS status = bench.dispatch(v1::line(v1::kColor, 1, {1}) + held);
      EXPECT_EQ(bench.escaped, held) << n;
      EXPECT_EQ(status.status, 0u) << n;
    }
  }
}

TEST(ReadThread_v1, NothingComesFromNothing) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch({});
  EXPECT_TRUE(bench.escaped.empty());
  EXPECT_FALSE(bench.error.IsErrorOccurred());
}

TEST(ReadThread_v1, ACopyOfTheRestThatFindsNoMemoryIsAFailure) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const ByteString stream =
      v1::line(v1::kColor, 1, {1}) + v1::pageEnd(1) + v1::line(v1::kColor, 2, {1}) + ByteString{v1::kColor};
  fakes::refusedArrayBytes = 1;
  const SCANSTATUS status = bench.dispatch(stream);
  fakes::refusedArrayBytes = 0;
  EXPECT_EQ(bench.result, 0x30401006u);
  EXPECT_EQ(status.status, 0x30401006u);
  EXPECT_EQ(status.errPageNo, 2u) << "the lowest page that can no longer finish";
  EXPECT_TRUE(bench.escaped.empty());
}

// --- What the caller meets -------------------------------------------------------------------------------------------

ByteString page(int pageNo) { return v1::line(v1::kColor, pageNo, ByteString(48, 0x55)) + v1::pageEnd(pageNo, 1); }

TEST(ReadThread_v1, AReadBufferThatFindsNoMemoryFailsTheScan) {
  for (const auto generation : {SCANCMD_GENERATION_1ST, SCANCMD_GENERATION_2ND}) {
    ScanHarness harness(generation);
    harness.device.stream({MemoryDevice::quietForEver()});
    fakes::refusedArrayBytes = 0xA00000;
    ASSERT_EQ(harness.start(settingsFor(8, 4, 24)), 0u);
    const Outcome outcome = harness.collect();
    fakes::refusedArrayBytes = 0;
    EXPECT_FALSE(outcome.isLate);
    EXPECT_EQ(outcome.result, 0x30401006u);
  }
}

TEST(ReadThread_v1, ARecordOfNoPossibleSizeFillsTheBufferAndEndsTheScan) {
  ScanHarness harness(SCANCMD_GENERATION_1ST);
  std::vector<MemoryDevice::Part> parts{MemoryDevice::data(page(1) + ByteString{v1::kColor} + u16(4))};
  for (int i = 0; i < 11; ++i) parts.push_back(MemoryDevice::data(ByteString(0x100000, 0x55)));
  harness.device.stream(parts);
  const Outcome outcome = harness.scan(settingsFor(8, 4, 24));
  EXPECT_FALSE(outcome.isLate);
  EXPECT_EQ(outcome.result, 0x6040100Fu);
}

TEST(ReadThread_v1, AWhiteLineReachesTheCallerAsTheDevicesStop) {
  ScanHarness harness(SCANCMD_GENERATION_1ST);
  const Outcome outcome = harness.scan(settingsFor(8, 4, 24), v1::line(v1::kColor, 1, {1}) + v1::whiteLine(1));
  EXPECT_FALSE(outcome.isLate);
  EXPECT_EQ(outcome.result, 0x1040100Bu);
}

}  // namespace
}  // namespace reception_test
