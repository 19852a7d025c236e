// One picture down every road of both generations.
#include <gtest/gtest.h>

#include "tests/reception/dialect.h"
#include "tests/reception/jpeg_pages.h"
#include "tests/reception/scan_harness.h"

namespace reception_test {
namespace {

struct Road {
  Dialect dialect;
  int bits;
};

std::string nameOfRoad(const testing::TestParamInfo<Road>& info) {
  const int bits = info.param.bits;
  return info.param.dialect.name() + (bits == 24 ? "Color" : bits == 8 ? "Gray" : "Mono");
}

class EveryDepth : public testing::TestWithParam<Road> {
 protected:
  const Dialect& dialect() const { return GetParam().dialect; }
  int bits() const { return GetParam().bits; }

  ScanHarness harness{GetParam().dialect.generation()};
};

TEST_P(EveryDepth, ARawPictureComesOutAsItsBottomUpFile) {
  const Picture picture = drawPicture(13, 7, bits());
  const Outcome outcome = harness.scan(settingsFor(13, 7, bits()),
                                       dialect().rawLines(picture) + dialect().pageEnd(1) + dialect().allPagesEnd());
  expectEnded(outcome, 1, "raw");
  const Delivery& page = outcome.deliveries[0];
  EXPECT_EQ(page.bytes, expectedBmp(picture));
  EXPECT_EQ(page.record.bitPerPixel, bits());
  EXPECT_EQ(page.record.widthPixel, 13);
  EXPECT_EQ(page.record.heightPixel, 7);
  EXPECT_EQ(page.record.widthBytes, (13 * bits() + 7) / 8);
  EXPECT_EQ(page.record.resolutionX, 300);
  EXPECT_EQ(page.record.resolutionY, 300);
  EXPECT_EQ(page.record.pixelDataSize, static_cast<std::uint32_t>(page.record.widthBytes * 7));
  EXPECT_EQ(page.record.pixelData, page.record.data + (page.bytes.size() - page.record.pixelDataSize));
  EXPECT_FALSE(page.record.isBlankPage);
  EXPECT_FALSE(page.record.pageScanIsTerminated);
  EXPECT_EQ(page.record.imageEnhanceTerminated, IMAGEENHANCE_NOT_TERMINATED);
}

TEST_P(EveryDepth, PackBitsLinesGiveTheBytesOfTheRawLines) {
  const Picture picture = drawPicture(29, 11, bits());
  const auto settings = settingsFor(29, 11, bits());
  const ByteString end = dialect().pageEnd(1) + dialect().allPagesEnd();
  const Outcome raw = harness.scan(settings, dialect().rawLines(picture) + end);
  const Outcome packed = harness.scan(settings, dialect().packedLines(picture) + end);
  expectEnded(raw, 1, "raw");
  expectEnded(packed, 1, "packed");
  EXPECT_EQ(raw.deliveries[0].bytes, expectedBmp(picture));
  EXPECT_EQ(packed.deliveries[0].bytes, expectedBmp(picture));
}

// A white line is a record of its own in the second generation; in the first a line may come without any bytes.
TEST_P(EveryDepth, AWhiteLineIsALineOfWhitePixels) {
  Picture picture = drawPicture(16, 5, bits());
  for (const bool packed : {false, true}) {
    ByteString stream;
    for (unsigned y = 0; y < 5; ++y) {
      const bool isWhite = y == 1 || y == 4;
      if (isWhite) picture.lines[y].assign(picture.lines[y].size(), 0xFF);
      const ByteString& bytes = picture.lines[y];
      stream = stream + (isWhite  ? dialect().isFirst() ? dialect().rawLine(bits(), 1, {}) : whiteLine(1)
                          : packed ? dialect().packedLine(bits(), 1, bytes)
                                  : dialect().rawLine(bits(), 1, bytes));
    }
    const Outcome outcome =
        harness.scan(settingsFor(16, 5, bits()), stream + dialect().pageEnd(1) + dialect().allPagesEnd());
    expectEnded(outcome, 1, packed ? "packed" : "raw");
    EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture)) << packed;
  }
}

TEST_P(EveryDepth, ThePagesOfABatchComeInTheirOrder) {
  ByteString stream;
  std::vector<ByteString> expected;
  for (unsigned page = 1; page <= 8; ++page) {
    const Picture picture = drawPicture(20, 6, bits(), page);
    expected.push_back(expectedBmp(picture));
    stream = stream + (page % 2 == 0 ? dialect().packedLines(picture, page) : dialect().rawLines(picture, page)) +
             dialect().pageEnd(page);
  }
  const Outcome outcome = harness.scan(settingsFor(20, 6, bits()), stream + dialect().allPagesEnd());
  expectEnded(outcome, 8, "batch");
  EXPECT_EQ(outcome.pages(), expected);
}

INSTANTIATE_TEST_SUITE_P(WholePages, EveryDepth,
                         testing::Values(Road{kFirstGeneration, 1}, Road{kFirstGeneration, 8},
                                         Road{kFirstGeneration, 24}, Road{kSecondGeneration, 1},
                                         Road{kSecondGeneration, 8}, Road{kSecondGeneration, 24}),
                         nameOfRoad);

using WholePages = BothGenerations;
INSTANTIATE_TEST_SUITE_P(Generations, WholePages, testing::ValuesIn(kGenerations), nameOfGeneration);

// The two sides of a sheet may be sent turn by turn.
TEST_P(WholePages, PagesWhoseLinesComeInTurnAreKeptApart) {
  const Dialect& dialect = GetParam();
  const Picture front = drawPicture(10, 6, 24, 1);
  const Picture back = drawPicture(10, 6, 24, 2);
  ByteString stream;
  for (unsigned y = 0; y < 6; ++y) {
    stream = stream + dialect.rawLine(24, 1, front.lines[y]) + dialect.packedLine(24, 2, back.lines[y]);
  }
  ScanHarness harness(dialect.generation());
  const Outcome outcome =
      harness.scan(settingsFor(10, 6, 24), stream + dialect.pageEnd(1) + dialect.pageEnd(2) + dialect.allPagesEnd());
  expectEnded(outcome, 2, "turns");
  EXPECT_EQ(outcome.pages(), (std::vector<ByteString>{expectedBmp(front), expectedBmp(back)}));
}

TEST(WholePagesOfTheSecond, SizeRecordsAndCheckRecordsLeaveThePageAsItIs) {
  const Picture picture = drawPicture(12, 4, 24);
  const ByteString lines = rawLines(picture);
  ScanHarness harness;
  const Outcome outcome =
      harness.scan(settingsFor(12, 4, 24), pageSize(1, 12, 0) + lines + pageStatus(0x72, 1) + pageStatus(0x73, 1) +
                                               pageStatus(0x74, 1) + colorCheck(1, 0x05) + pageEnd(1) + allPagesEnd());
  expectEnded(outcome, 1, "records between");
  EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture));
}

// --- What only the first generation sends ----------------------------------------------------------------------------

ByteString planes(const Picture& picture, bool packed) {
  ByteString records;
  for (const ByteString& bytes : picture.lines) {
    for (std::size_t part = 0; part < 3; ++part) {
      const std::uint8_t headers[] = {v1::kRed, v1::kGreen, v1::kBlue};
      ByteString plane;
      for (std::size_t x = part; x < bytes.size(); x += 3) plane.push_back(bytes[x]);
      records = records + (packed ? v1::line(headers[part] | v1::kPackBits, 1, packBits(plane))
                                  : v1::line(headers[part], 1, plane));
    }
  }
  return records;
}

ByteString blueFirst(const Picture& picture, bool packed) {
  ByteString records;
  for (ByteString bytes : picture.lines) {
    for (std::size_t x = 0; x + 2 < bytes.size(); x += 3) std::swap(bytes[x], bytes[x + 2]);
    records = records + (packed ? v1::line(v1::kColorBgr | v1::kPackBits, 1, packBits(bytes))
                                : v1::line(v1::kColorBgr, 1, bytes));
  }
  return records;
}

TEST(WholePagesOfTheFirst, OnePictureIsTheSameDownEveryRoad) {
  const Picture picture = drawPicture(13, 9, 24);
  const struct {
    const char* name;
    ByteString lines;
  } roads[] = {{"raw", kFirstGeneration.rawLines(picture)}, {"packed", kFirstGeneration.packedLines(picture)},
               {"planes", planes(picture, false)},          {"packed planes", planes(picture, true)},
               {"blue first", blueFirst(picture, false)},   {"packed blue first", blueFirst(picture, true)}};
  ScanHarness harness(SCANCMD_GENERATION_1ST);
  for (const auto& road : roads) {
    const Outcome outcome = harness.scan(settingsFor(13, 9, 24), road.lines + v1::pageEnd(1) + v1::allPagesEnd());
    expectEnded(outcome, 1, road.name);
    EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture)) << road.name;
  }
}

TEST(WholePagesOfTheFirst, ThePagesEndMayTellTheHeight) {
  const Picture picture = drawPicture(13, 9, 24);
  Picture cut = picture;
  cut.heightPx = 5;
  cut.lines.resize(5);
  ScanHarness harness(SCANCMD_GENERATION_1ST);
  for (const std::uint32_t height : {9u, 5u, 200u}) {
    for (const bool packed : {false, true}) {
      const ByteString lines = packed ? kFirstGeneration.packedLines(picture) : kFirstGeneration.rawLines(picture);
      const Outcome outcome = harness.scan(settingsFor(13, 9, 24), lines + v1::pageEnd(1, height) + v1::allPagesEnd());
      expectEnded(outcome, 1, std::to_string(height));
      EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(height == 5 ? cut : picture)) << height;
    }
  }
}

// Each plane is a record, and a height that is told bounds the records.
TEST(WholePagesOfTheFirst, AHeightThatIsToldCutsPlanesToAThird) {
  const Picture picture = drawPicture(13, 9, 24);
  Picture third = picture;
  third.heightPx = 3;
  third.lines.resize(3);
  ScanHarness harness(SCANCMD_GENERATION_1ST);
  const Outcome outcome =
      harness.scan(settingsFor(13, 9, 24), planes(picture, false) + v1::pageEnd(1, 9) + v1::allPagesEnd());
  expectEnded(outcome, 1, "planes");
  EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(third));
}

// The device was asked for a width that is a multiple of sixteen and sends it.
TEST(WholePagesOfTheFirst, LinesOfTheRoundedWidthAreCutToTheOneAskedFor) {
  for (const int bits : {1, 8, 24}) {
    const Picture sent = drawPicture(32, 6, bits);
    Picture kept = sent;
    kept.widthPx = 21;
    for (ByteString& bytes : kept.lines) {
      bytes.resize(static_cast<std::size_t>((21 * bits + 7) / 8));
    }
    ScanHarness harness(SCANCMD_GENERATION_1ST);
    for (const bool packed : {false, true}) {
      const ByteString lines = packed ? kFirstGeneration.packedLines(sent) : kFirstGeneration.rawLines(sent);
      const Outcome outcome = harness.scan(settingsFor(21, 6, bits), lines + v1::pageEnd(1) + v1::allPagesEnd());
      expectEnded(outcome, 1, std::to_string(bits));
      const Delivery& page = outcome.deliveries[0];
      EXPECT_EQ(page.record.widthPixel, 21);
      ByteString bytes = page.bytes;
      if (bits == 1) {  // bits behind the last pixel mean nothing
        const std::size_t lineBytes = 3;
        for (std::size_t at = bytes.size() - 6 * lineBytes; at < bytes.size(); at += lineBytes) bytes[at + 2] &= 0xF8;
        for (ByteString& line : kept.lines) line[2] &= 0xF8;
      }
      EXPECT_EQ(bytes, expectedBmp(kept)) << bits << " packed " << packed;
    }
  }
}

TEST(WholePagesOfTheFirst, AJpegOfTheRoundedWidthIsCutToTheOneAskedFor) {
  for (const int parts : {3, 1}) {
    const auto jpeg = module_test::encodeJpeg(module_test::drawPicture(32, 16, parts));
    module_test::Pixels decoded;
    ASSERT_TRUE(module_test::decodeWithLibjpeg(jpeg, decoded));
    Picture kept{21, 16, parts * 8, {}};
    for (std::size_t y = 0; y < 16; ++y) {
      const auto start = decoded.bytes.begin() + static_cast<std::ptrdiff_t>(y * decoded.lineBytes());
      kept.lines.emplace_back(start, start + 21 * parts);
    }
    ScanHarness harness(SCANCMD_GENERATION_1ST);
    const Outcome outcome = harness.scan(settingsFor(21, 16, parts * 8),
                                         v1::line(v1::kJpeg, 1, jpeg) + v1::pageEnd(1, 16) + v1::allPagesEnd());
    expectEnded(outcome, 1, std::to_string(parts));
    EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(kept)) << parts;
  }
}

TEST(WholePagesOfTheFirst, LinesBeyondTheHeightAskedForAreKept) {
  const Picture picture = drawPicture(8, 9, 24);
  ScanHarness harness(SCANCMD_GENERATION_1ST);
  const Outcome outcome =
      harness.scan(settingsFor(8, 6, 24), kFirstGeneration.rawLines(picture) + v1::pageEnd(1) + v1::allPagesEnd());
  expectEnded(outcome, 1, "more lines");
  EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture));
}

// --- JPEG ------------------------------------------------------------------------------------------------------------

TEST_P(WholePages, AJpegPageIsTheDecodedJpeg) {
  const Dialect& dialect = GetParam();
  ScanHarness harness(dialect.generation());
  for (const int parts : {3, 1}) {
    const JpegPage jpeg = makeJpegPage(40, 24, parts);
    ASSERT_FALSE(jpeg.bmp.empty());
    const std::size_t size = jpeg.file.size();
    for (const std::size_t blockBytes : {size, std::size_t{100}, std::size_t{7}}) {
      ByteString stream;
      for (std::size_t at = 0; at < size; at += blockBytes) {
        const std::size_t end = std::min(size, at + blockBytes);
        stream = stream + dialect.jpegBlock(parts * 8, 1,
                                            ByteString(jpeg.file.begin() + static_cast<std::ptrdiff_t>(at),
                                                       jpeg.file.begin() + static_cast<std::ptrdiff_t>(end)),
                                            static_cast<std::uint32_t>(24 * end / size));
      }
      const Outcome outcome =
          harness.scan(settingsFor(40, 24, parts * 8), stream + dialect.pageEnd(1) + dialect.allPagesEnd());
      expectEnded(outcome, 1, parts == 3 ? "colour JPEG" : "grey JPEG");
      EXPECT_EQ(outcome.deliveries[0].bytes, jpeg.bmp) << parts << " parts, blocks of " << blockBytes;
      EXPECT_EQ(outcome.deliveries[0].record.bitPerPixel, parts * 8);
    }
  }
}

TEST_P(WholePages, AColourJpegInAGreyScanBecomesTheMeanOfItsParts) {
  const Dialect& dialect = GetParam();
  const auto jpeg = module_test::encodeJpeg(module_test::drawPicture(16, 8, 3));
  module_test::Pixels decoded;
  ASSERT_TRUE(module_test::decodeWithLibjpeg(jpeg, decoded));
  module_test::Pixels gray{16, 8, 1, {}};
  for (std::size_t i = 0; i + 2 < decoded.bytes.size(); i += 3) {
    gray.bytes.push_back(
        static_cast<std::uint8_t>((decoded.bytes[i] + decoded.bytes[i + 1] + decoded.bytes[i + 2]) / 3));
  }
  ScanHarness harness(dialect.generation());
  const Outcome outcome = harness.scan(settingsFor(16, 8, 8),
                                       dialect.jpegBlock(24, 1, jpeg, 8) + dialect.pageEnd(1) + dialect.allPagesEnd());
  expectEnded(outcome, 1, "colour JPEG as grey");
  EXPECT_EQ(outcome.deliveries[0].bytes, toRgbBmp(gray));
}

TEST_P(WholePages, ABrokenJpegFailsItsPageAndTheScanCanBeRepeated) {
  const Dialect& dialect = GetParam();
  const JpegPage jpeg = makeJpegPage(16, 8, 3);
  const ByteString end = dialect.pageEnd(1) + dialect.allPagesEnd();
  ScanHarness harness(dialect.generation());
  const Outcome broken = harness.scan(settingsFor(16, 8, 24), dialect.jpegBlock(24, 1, {1, 2, 3, 4}, 8) + end);
  EXPECT_FALSE(broken.isLate);
  EXPECT_EQ(broken.result & 0xFFFFF000u, 0x10403000u) << std::hex << broken.result;
  const Outcome good = harness.scan(settingsFor(16, 8, 24), dialect.jpegBlock(24, 1, jpeg.file, 8) + end);
  expectEnded(good, 1, "after the broken one");
  EXPECT_EQ(good.deliveries[0].bytes, jpeg.bmp);
}

// --- Ends and sides --------------------------------------------------------------------------------------------------

TEST_P(WholePages, AShortPageStaysShortUnlessItMustBeFilled) {
  const Dialect& dialect = GetParam();
  const Picture picture = drawPicture(8, 3, 24);
  Picture filled = picture;
  filled.heightPx = 6;
  filled.lines.resize(6, ByteString(24, 0xFF));
  for (const bool mayEndEarly : {true, false}) {
    auto settings = settingsFor(8, 6, 24);
    settings.detectEndOfPage = mayEndEarly;
    ScanHarness harness(dialect.generation());
    const Outcome outcome =
        harness.scan(settings, dialect.rawLines(picture) + dialect.pageEnd(1) + dialect.allPagesEnd());
    expectEnded(outcome, 1, "short");
    EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(mayEndEarly ? picture : filled)) << mayEndEarly;
  }
}

TEST_P(WholePages, APageWithoutAnEndOfItsOwnIsFinishedWhenAllPagesEnd) {
  const Dialect& dialect = GetParam();
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness(dialect.generation());
  const Outcome outcome = harness.scan(settingsFor(8, 4, 24), dialect.rawLines(picture) + dialect.allPagesEnd());
  expectEnded(outcome, 1, "no page end");
  EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture));
}

TEST_P(WholePages, APageThatOnlyFillsAGapIsDeliveredBlank) {
  const Dialect& dialect = GetParam();
  const Picture picture = drawPicture(8, 4, 1);
  ScanHarness harness(dialect.generation());
  const Outcome outcome =
      harness.scan(settingsFor(8, 4, 1), dialect.rawLines(picture, 2) + dialect.pageEnd(2) + dialect.allPagesEnd());
  expectEnded(outcome, 2, "page 2 alone");
  EXPECT_TRUE(outcome.deliveries[0].record.isBlankPage);
  EXPECT_EQ(outcome.deliveries[1].bytes, expectedBmp(picture));
}

TEST_P(WholePages, AScanOfNoPagesEndsAtOnce) {
  ScanHarness harness(GetParam().generation());
  expectEnded(harness.scan(settingsFor(8, 4, 24), GetParam().allPagesEnd()), 0, "nothing");
}

TEST_P(WholePages, WhatStillComesBehindTheEndIsFinishedToo) {
  const Dialect& dialect = GetParam();
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness(dialect.generation());
  const Outcome late = harness.scan(settingsFor(8, 4, 24), dialect.rawLines(picture, 1) + dialect.pageEnd(1) +
                                                               dialect.allPagesEnd() + dialect.rawLines(picture, 3));
  expectEnded(late, 3, "a late page");
  EXPECT_TRUE(late.deliveries[1].record.isBlankPage);
  const Outcome repeated =
      harness.scan(settingsFor(8, 4, 24), dialect.rawLines(picture, 1) + dialect.pageEnd(1) + dialect.allPagesEnd() +
                                              dialect.pageEnd(1) + dialect.allPagesEnd());
  expectEnded(repeated, 1, "two ends");
  EXPECT_EQ(repeated.deliveries[0].bytes, expectedBmp(picture));
}

TEST_P(WholePages, DataAndASecondEndAfterAPagesEndAreDropped) {
  const Dialect& dialect = GetParam();
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness(dialect.generation());
  const Outcome outcome =
      harness.scan(settingsFor(8, 9, 24),
                   dialect.rawLines(picture, 1) + dialect.pageEnd(1) + dialect.rawLines(picture, 1) +
                       dialect.pageEnd(1) + dialect.rawLines(picture, 2) + dialect.pageEnd(2) + dialect.allPagesEnd());
  expectEnded(outcome, 2, "late data");
  EXPECT_EQ(outcome.pages(), (std::vector<ByteString>{expectedBmp(picture), expectedBmp(picture)}));
}

TEST_P(WholePages, TheBackOfASheetBoundOnTheShortEdgeIsTurned) {
  const Dialect& dialect = GetParam();
  const Picture picture = drawPicture(9, 5, 24);
  Picture turned = picture;
  std::reverse(turned.lines.begin(), turned.lines.end());
  for (ByteString& bytes : turned.lines) {
    ByteString mirrored;
    for (std::size_t x = bytes.size(); x >= 3; x -= 3) {
      mirrored.insert(mirrored.end(), {bytes[x - 3], bytes[x - 2], bytes[x - 1]});
    }
    bytes = mirrored;
  }
  ByteString stream;
  for (unsigned n = 1; n <= 3; ++n) stream = stream + dialect.rawLines(picture, n) + dialect.pageEnd(n);
  ScanHarness harness(dialect.generation());
  for (const DUPLEXTYPE type : {DUPLEXTYPE_SIMPLEX, DUPLEXTYPE_LONG_EDGE, DUPLEXTYPE_SHORT_EDGE}) {
    auto settings = settingsFor(9, 5, 24);
    settings.duplexType = type;
    const Outcome outcome = harness.scan(settings, stream + dialect.allPagesEnd());
    expectEnded(outcome, 3, "duplex");
    EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture)) << type;
    EXPECT_EQ(outcome.deliveries[1].bytes, expectedBmp(type == DUPLEXTYPE_SHORT_EDGE ? turned : picture)) << type;
    EXPECT_EQ(outcome.deliveries[2].bytes, expectedBmp(picture)) << type;
  }
}

}  // namespace
}  // namespace reception_test
