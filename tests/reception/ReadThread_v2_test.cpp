#include "reception/ReadThread_v2.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/reception/reader_bench.h"

namespace reception_test {
namespace {

using Bench = BenchOf<SecondGeneration>;
using OpenReader = OpenReaderOf<CReadThread_v2>;

// --- What the device's error bytes mean ----------------------------------------------------------------------------

TEST(ReadThread_v2, EveryDeviceErrorHasItsCode) {
  const std::map<unsigned, QSRSLT> known = {
      {0x84, 0x50000007}, {0x86, 0x50000016}, {0x90, 0x50000001}, {0x91, 0x50000002}, {0x92, 0x50000006},
      {0x93, 0x50000010}, {0x94, 0x5000000D}, {0x95, 0x50000013}, {0x96, 0x50000014}, {0x97, 0x50000015},
      {0xA0, 0x50000003}, {0xA1, 0x50000008}, {0xA2, 0x50000008}, {0xA3, 0x5000000E}, {0xA4, 0x50000009},
      {0xA5, 0x5000000A}, {0xA6, 0x5000000B}, {0xA7, 0x5000000C}, {0xA8, 0x50000011}, {0xA9, 0x50000012},
      {0xB0, 0x50000004}, {0xB1, 0x50000005}, {0xB2, 0x5000000F}};
  OpenReader reader;
  for (unsigned code = 0; code <= 0xFFFF; ++code) {
    const auto row = known.find(code);
    const QSRSLT expected = row != known.end() ? row->second : 0x500000FF;
    ASSERT_EQ(reader.ConvertDeviceErrorToQSRSLT(static_cast<unsigned short>(code)), expected) << std::hex << code;
  }
}

// --- Data ------------------------------------------------------------------------------------------------------------

TEST(ReadThread_v2, TheFormatByteTellsKindAndCompressionOfALine) {
  for (unsigned format = 0; format < 0x100; ++format) {
    if ((format & 0x18) == 0x10) continue;  // JPEG
    Bench bench(settingsFor(8, 4, 1));
    ASSERT_EQ(bench.start(), 0u);
    const SCANSTATUS status = bench.dispatch(line(1, static_cast<std::uint8_t>(format), {9, 8, 7}));
    EXPECT_EQ(status.status, 0u);
    const std::uint32_t kind = (format & 7) == 5 ? 5 : (format & 7) == 4 ? 7 : 1;
    const std::uint32_t code = (format & 0x18) == 0x08 ? 3 : 2;
    EXPECT_EQ(bench.bytesOf(1), lineRecord(kind, code, {9, 8, 7})) << std::hex << format;
    EXPECT_EQ(bench.store(1).GetCompressType(), code) << std::hex << format;
    EXPECT_EQ(&bench.store(1), &bench.page(1).m_rawData);
  }
}

TEST(ReadThread_v2, AWhiteLineIsAnEmptyLineThatCounts) {
  Bench bench(settingsFor(8, 4, 1));
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(whiteLine(1) + line(1, kMono | kPackBits, {1, 2}) + whiteLine(1));
  EXPECT_EQ(bench.bytesOf(1), lineRecord(1, 2, {}) + lineRecord(1, 3, {1, 2}) + lineRecord(1, 2, {}));
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 3);
  EXPECT_EQ(bench.store(1).GetCompressType(), 2u) << "of the last record";
}

TEST(ReadThread_v2, APageStartsWithWhatTheDeviceWillSend) {
  Bench bench(settingsFor(8, 4, 1));
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(line(1, kMono, {1}));
  EXPECT_EQ(bench.page(1).GetPageNo(), 1u);
  EXPECT_EQ(bench.store(1).GetResolutionX(), 300);
  EXPECT_EQ(bench.store(1).GetResolutionY(), 300);
  EXPECT_EQ(bench.store(1).GetWidthPixel(), 8);
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 1);
  EXPECT_EQ(bench.store(1).GetColorType(), COLORTYPE_BLACKANDWHITE);
  EXPECT_EQ(bench.store(1).GetDataType(), 1u);
}

TEST(ReadThread_v2, AJpegPageGoesIntoTheJpegStoreWithTheHeightAskedFor) {
  Bench bench(settingsFor(8, 4, 24));
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(block(1, kJpeg | kColor, {1, 2, 3}));
  EXPECT_EQ(&bench.store(1), &bench.page(1).m_jpegData);
  EXPECT_EQ(bench.bytesOf(1), (ByteString{1, 2, 3}));
  EXPECT_EQ(bench.store(1).GetCompressType(), 5u);
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 4) << "a height of 0 leaves it";
  bench.dispatch(block(1, kJpeg | kColor, {4}, 3));
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 3);
  bench.dispatch(block(1, kJpeg | kColor, {5}, 9));
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 4) << "above the limit the limit counts";
  EXPECT_EQ(bench.bytesOf(1), (ByteString{1, 2, 3, 4, 5})) << "and the data is kept";
}

TEST(ReadThread_v2, AutomaticGreyAndColourPagesStartAsJpegWhateverComes) {
  const struct {
    COLORTYPE colorType;
    std::uint32_t dataType;
  } rows[] = {{COLORTYPE_AUTO, 5},
              {COLORTYPE_TRUEGRAY, 5},
              {COLORTYPE_COLOR24BIT, 5},
              {COLORTYPE_BLACKANDWHITE, 7},
              {COLORTYPE_ERRORDIFFUSION, 7}};
  for (const auto& row : rows) {
    auto settings = settingsFor(8, 4, 24);
    settings.colorType = row.colorType;
    Bench bench(settings);
    bench.reader.m_capability.imageProcFunc.supportCompresssionType.trueGray.jpeg = 1;
    ASSERT_EQ(bench.start(), 0u);
    bench.dispatch(colorCheck(1, kGray));
    EXPECT_EQ(bench.store(1).GetDataType(), row.dataType) << row.colorType;
    EXPECT_EQ(&bench.store(1), &bench.page(1).m_rawData) << "chosen before";
  }
}

TEST(ReadThread_v2, ARecordForPageTwoBeforeAnyForPageOneMakesBoth) {
  Bench bench(settingsFor(8, 4, 1));
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(line(2, kMono, {1}));
  ASSERT_EQ(bench.reader.pageCount(), 2u);
  EXPECT_TRUE(bench.page(1).IsEmpty());
  EXPECT_EQ(bench.bytesOf(2), lineRecord(1, 2, {1}));
  EXPECT_EQ(bench.page(1).GetPageNo(), 1u);
  EXPECT_EQ(bench.page(2).GetPageNo(), 2u);
}

TEST(ReadThread_v2, APageBehindAGapKeepsTheJpegStoreThatTheGapBrought) {
  Bench bench(settingsFor(8, 4, 24));
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(line(1, kColor | kPackBits, {1}) + line(3, kColor | kPackBits, {1}));
  EXPECT_EQ(&bench.store(1), &bench.page(1).m_rawData);
  EXPECT_EQ(&bench.store(2), &bench.page(2).m_rawData) << "the first of the call";
  EXPECT_EQ(&bench.store(3), &bench.page(3).m_jpegData);
}

TEST(ReadThread_v2, DropsARecordForPageZero) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status =
      bench.dispatch(line(0, kColor, {1}) + pageSize(0, 3, 3) + colorCheck(0, kColor) + line(1, kColor, {2}));
  EXPECT_EQ(status.status, 0u);
  EXPECT_EQ(bench.reader.pageCount(), 1u);
  EXPECT_EQ(bench.bytesOf(1), lineRecord(5, 2, {2}));
}

TEST(ReadThread_v2, TheHeightLimitHoldsForPapersOfAKnownLength) {
  const struct {
    const char* name;
    int paperType;
    std::int32_t scanBottom;
    std::int32_t customY;
    bool isLimited;
  } rows[] = {{"A4", 1, 4, 0, true},
              {"automatic", 0, 4, 0, false},
              {"25", 25, 4, 0, false},
              {"custom", 26, 4, 5000, true},
              {"custom long", 26, 4, 0, false},
              {"long", 24, 4, 0, false},
              {"area without an end", 1, 0, 0, false}};
  for (const auto& row : rows) {
    auto settings = settingsFor(8, row.scanBottom, 1);
    settings.paperType = static_cast<PAPERTYPE>(row.paperType);
    settings.customPaperSize = {5000, row.customY, UNIT_INCH};
    Bench bench(settings);
    ASSERT_EQ(bench.start(), 0u) << row.name;
    for (int i = 0; i < 7; ++i) bench.dispatch(line(1, kMono, {1}));
    EXPECT_EQ(bench.store(1).GetHeightPixel(), row.isLimited ? 4 : 7) << row.name;
    EXPECT_EQ(bench.bytesOf(1).size(), (row.isLimited ? 4u : 7u) * 13) << row.name;
  }
}

TEST(ReadThread_v2, TheEdgesThatTheHostWillCutCountForTheHeight) {
  auto settings = settingsFor(8, 4, 1);
  settings.edgeCut = {1, 0, 1, 0, 2, UNIT_PIXEL};
  Bench bench(settings);
  ASSERT_EQ(bench.start(), 0u);
  for (int i = 0; i < 9; ++i) bench.dispatch(line(1, kMono, {1}));
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 7);
}

TEST(ReadThread_v2, ALongPageBeyondItsLimitIsCutAndStillCompletedByItsEnd) {
  auto settings = settingsFor(8, 0, 24);
  settings.paperType = PAPERTYPE_LONG;
  settings.resolution = {1200, 1200};  // 14 inches, 16800 lines
  Bench bench(settings);
  bench.actual =
      fakes::tag(0x2002, u16(1200) + u16(1200)) + fakes::tag(0x2003, u32(9999) + u32(9999)) + fakes::endTag();
  ASSERT_EQ(bench.start(), 0u);
  SCANSTATUS status = bench.dispatch(block(1, kJpeg | kColor, {1, 2}, 16800) + block(1, kJpeg | kColor, {3}, 16900));
  EXPECT_EQ(bench.bytesOf(1), (ByteString{1, 2}));
  EXPECT_EQ(status.status, 0u);
  status = bench.dispatch(pageEnd(1));
  EXPECT_EQ(status.lastReceivePageNo, 1u);
  EXPECT_TRUE(bench.page(1).IsHandedOver());
  EXPECT_EQ(bench.store(1).GetStatus(), IMAGEDATA_FINISHED);
}

// --- Sizes and checks ------------------------------------------------------------------------------------------------

TEST(ReadThread_v2, ASizeRecordChangesWhatIsNotZero) {
  Bench bench(settingsFor(8, 4, 1));
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch(pageSize(1, 20, 0));
  EXPECT_EQ(bench.store(1).GetWidthPixel(), 20);
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 0);
  bench.dispatch(pageSize(1, 0, 2));
  EXPECT_EQ(bench.store(1).GetWidthPixel(), 20);
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 2);
}

TEST(ReadThread_v2, TheColourCheckTellsTheDepthOfAnAutomaticPage) {
  const struct {
    std::uint8_t format;
    int bpp;
  } rows[] = {{0x00, 1}, {0x01, 8}, {0x04, 8}, {0x05, 24}, {0x02, 1}, {0x15, 24}};
  for (const auto& row : rows) {
    Bench bench;
    ASSERT_EQ(bench.start(), 0u);
    bench.dispatch(colorCheck(1, row.format));
    EXPECT_EQ(bench.page(1).GetAutoColorBpp(), row.bpp) << int{row.format};
  }
}

TEST(ReadThread_v2, AFailedCheckIsPassedOver) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status =
      bench.dispatch(line(1, kColor, {1}) + pageStatus(0x71, 1) + u32(3) + u32(4) + pageStatus(0x72, 1) +
                     pageStatus(0x73, 1) + pageStatus(0x74, 1) + line(1, kColor, {2}));
  EXPECT_EQ(status.status, 0u);
  EXPECT_EQ(bench.store(1).GetHeightPixel(), 2);
  EXPECT_EQ(bench.store(1).GetWidthPixel(), 8);
  EXPECT_TRUE(bench.escaped.empty());
}

// --- Ends ------------------------------------------------------------------------------------------------------------

TEST(ReadThread_v2, ThePagesEndHandsItToTheDecoder) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(line(1, kColor, {1}) + pageEnd(1));
  EXPECT_EQ(status.lastReceivePageNo, 1u);
  EXPECT_EQ(status.status, 0u);
  EXPECT_TRUE(bench.page(1).IsHandedOver());
  EXPECT_EQ(bench.store(1).GetStatus(), IMAGEDATA_FINISHED);
  EXPECT_EQ(bench.reader.GetCountOfNotXferedImageData(), 1u);
}

TEST(ReadThread_v2, ABlankPageNeverReachesTheDecoder) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(line(1, kColor, {1}) + blankPageEnd(1));
  EXPECT_EQ(status.lastReceivePageNo, 1u);
  EXPECT_TRUE(bench.page(1).GetIsBlankPage());
  EXPECT_TRUE(bench.page(1).IsEmpty());
  EXPECT_FALSE(bench.page(1).IsHandedOver());
  EXPECT_TRUE(bench.page(1).GetFinalImage().isBlankPage);
}

TEST(ReadThread_v2, TheEndOfAPageBeyondTheArrayOnlyCounts) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  SCANSTATUS status = bench.dispatch(pageEnd(4));
  EXPECT_EQ(status.lastReceivePageNo, 4u);
  EXPECT_EQ(bench.reader.pageCount(), 0u);
  status = bench.dispatch(blankPageEnd(5) + tooLongPageEnd(6));
  EXPECT_EQ(status.lastReceivePageNo, 6u);
  EXPECT_EQ(bench.reader.pageCount(), 0u);
  EXPECT_EQ(status.status, 0u);
}

TEST(ReadThread_v2, APageAtTheLengthLimitIsMarked) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(line(1, kColor, {1}) + tooLongPageEnd(1));
  EXPECT_EQ(status.lastReceivePageNo, 1u);
  EXPECT_TRUE(bench.page(1).IsHandedOver());
}

TEST(ReadThread_v2, TheEndOfAllPagesClosesTheDevice) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(allPagesEnd());
  EXPECT_TRUE(status.scanFinished);
  EXPECT_EQ(status.status, 0u);
  EXPECT_FALSE(bench.device.IsOpen());
}

// --- Stops, errors, timers -------------------------------------------------------------------------------------------

TEST(ReadThread_v2, AStopCancelsThePageBehindTheLastOneReceived) {
  for (const ByteString& stop : {stoppedByCommand(), stoppedByKey()}) {
    Bench bench;
    ASSERT_EQ(bench.start(), 0u);
    SCANSTATUS status = bench.dispatch(line(1, kColor, {1}) + pageEnd(1) + line(2, kColor, {1}) + stop);
    EXPECT_EQ(status.status, 0x01000000u);
    EXPECT_TRUE(status.canceled);
    EXPECT_EQ(status.cancelPageNo, 2u);
    EXPECT_FALSE(status.betweenPageErr);
    EXPECT_FALSE(bench.page(1).IsEmpty());
    EXPECT_TRUE(bench.page(2).IsEmpty());
  }
}

TEST(ReadThread_v2, ADeviceErrorFailsThePageBehindTheLastOneReceived) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status =
      bench.dispatch(line(1, kColor, {1}) + pageEnd(1) + line(2, kColor, {1}) + ByteString{0x92, 0x21});
  EXPECT_EQ(status.status, 0x1040100Bu);
  EXPECT_EQ(status.deviceErr, 0x92);
  EXPECT_EQ(status.errPageNo, 2u);
  EXPECT_FALSE(status.betweenPageErr);
  EXPECT_TRUE(bench.page(2).IsEmpty());
}

TEST(ReadThread_v2, AnErrorWithoutAnOpenPageFallsBetweenPages) {
  const ByteString records[] = {deviceError(0x91), stoppedByKey(), status(0x10), timer(0x50, 1), timer(0x51, 1)};
  for (const ByteString& record : records) {
    Bench bench;
    ASSERT_EQ(bench.start(), 0u);
    EXPECT_TRUE(bench.dispatch(line(1, kColor, {1}) + pageEnd(1) + record).betweenPageErr) << int{record[1]};
    Bench open;
    ASSERT_EQ(open.start(), 0u);
    const bool isRestart = record[1] == 0x50;  // it has removed the page by then
    EXPECT_EQ(open.dispatch(line(1, kColor, {1}) + record).betweenPageErr, isRestart) << int{record[1]};
    EXPECT_TRUE(isRestart ? open.reader.pageCount() == 0 : open.page(1).IsEmpty()) << int{record[1]};
  }
}

TEST(ReadThread_v2, ARecordWithoutAMeaningEndsTheReadingWithItsCode) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(line(1, kColor, {1}) + ByteString{0x00, 0x10} + line(2, kColor, {2}));
  EXPECT_EQ(status.status, 0xD0u);
  EXPECT_EQ(status.deviceErr, 0);
  EXPECT_EQ(bench.reader.pageCount(), 1u) << "nothing behind it is looked at";
}

TEST(ReadThread_v2, AnUnknownRecordIsADeviceErrorAndItsBytesAreKept) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(line(1, kColor, {1}) + ByteString{0x00, 0x30, 5, 6, 7});
  EXPECT_EQ(bench.result, 0x6040100Fu);
  EXPECT_EQ(status.status, 0x6040100Fu);
  EXPECT_EQ(status.deviceErr, 1);
  EXPECT_EQ(bench.escaped, (ByteString{0x00, 0x30, 5, 6, 7}));
}

TEST(ReadThread_v2, ATimerRestartRemovesThePagesThatHaveNotEnded) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const ByteString stream = line(1, kColor, {1}) + pageEnd(1) + line(2, kColor, {1}) + line(3, kColor, {1});
  SCANSTATUS status = bench.dispatch(stream + timer(0x50, 5));
  EXPECT_EQ(bench.reader.pageCount(), 1u);
  EXPECT_EQ(status.status, 0u);
  status = bench.dispatch(line(2, kColor, {9}));
  EXPECT_EQ(bench.bytesOf(2), lineRecord(5, 2, {9}));

  Bench other;
  ASSERT_EQ(other.start(), 0u);
  other.dispatch(stream + timer(0x51, 5));
  EXPECT_EQ(other.reader.pageCount(), 3u);
  EXPECT_TRUE(other.page(2).IsEmpty());
  EXPECT_TRUE(other.page(3).IsEmpty());
}

TEST(ReadThread_v2, ATimerRecordSetsTheTimeOfTheReads) {
  const struct {
    ByteString records;
    long waitMs;
  } rows[] = {{timer(0x50, 30), 30000},
              {timer(0x51, 65535), 65535000},
              {timer(0x51, 0), 90000},
              {timer(0x51, 7) + timer(0x50, 0), 7000},
              {whiteLine(1), 90000}};
  ScanHarness harness;
  for (const auto& row : rows) {
    harness.device.stream({MemoryDevice::data(row.records), MemoryDevice::quietForEver()});
    ASSERT_EQ(harness.start(settingsFor(8, 4, 24)), 0u);
    ASSERT_TRUE(harness.device.waitUntilQuiet());
    EXPECT_EQ(harness.device.lastTimeOutMs(), row.waitMs);
  }
}

// --- Cut records -----------------------------------------------------------------------------------------------------

TEST(ReadThread_v2, ACutRecordIsKeptWholeAndWrittenOnce) {
  const ByteString records[] = {line(1, kMono, {1, 2, 3, 4}),
                                pageSize(1, 9, 9),
                                colorCheck(1, kColor),
                                whiteLine(1),
                                pageEnd(1),
                                timer(0x51, 3),
                                allPagesEnd()};
  for (const ByteString& record : records) {
    for (std::size_t cut = 0; cut < record.size(); ++cut) {
      Bench bench(settingsFor(8, 4, 1));
      ASSERT_EQ(bench.start(), 0u);
      const auto middle = record.begin() + static_cast<std::ptrdiff_t>(cut);
      const ByteString before = line(1, kMono, {7});
      bench.dispatch(before + ByteString(record.begin(), middle));
      EXPECT_EQ(bench.escaped, ByteString(record.begin(), middle)) << int{record[1]} << " cut at " << cut;
      EXPECT_EQ(bench.bytesOf(1), lineRecord(1, 2, {7}));
      const SCANSTATUS cutOff = bench.error.Get();
      EXPECT_EQ(cutOff.status, 0u);
      EXPECT_FALSE(cutOff.scanFinished);
      EXPECT_EQ(cutOff.lastReceivePageNo, 0u);

      bench.dispatch(bench.escaped + ByteString(middle, record.end()));
      EXPECT_TRUE(bench.escaped.empty());
      Bench whole(settingsFor(8, 4, 1));
      ASSERT_EQ(whole.start(), 0u);
      whole.dispatch(before + record);
      EXPECT_EQ(bench.bytesOf(1), whole.bytesOf(1));
      EXPECT_EQ(bench.error.Get().lastReceivePageNo, whole.error.Get().lastReceivePageNo);
      EXPECT_EQ(bench.error.Get().scanFinished, whole.error.Get().scanFinished);
    }
  }
}

TEST(ReadThread_v2, AnErrorByteAtTheVeryEndOfTheBytesIsAWholeRecord) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  const SCANSTATUS status = bench.dispatch(line(1, kColor, {1}) + ByteString{0x91});
  EXPECT_EQ(status.deviceErr, 0x91);
  EXPECT_TRUE(bench.escaped.empty());
}

TEST(ReadThread_v2, NothingComesFromNothing) {
  Bench bench;
  ASSERT_EQ(bench.start(), 0u);
  bench.dispatch({});
  EXPECT_TRUE(bench.escaped.empty());
  EXPECT_FALSE(bench.error.IsErrorOccurred());
}

}  // namespace
}  // namespace reception_test
