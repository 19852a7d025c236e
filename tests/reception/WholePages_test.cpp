// One picture down every road of the second generation, whole and in pieces.
#include <gtest/gtest.h>

#include "tests/modules/jpeg_pictures.h"
#include "tests/reception/scan_harness.h"
#include "tests/reception/scan_pictures.h"

namespace reception_test {
namespace {

void expectEnded(const Outcome& outcome, std::size_t pages, const char* road) {
  EXPECT_EQ(outcome.started, 0u) << road;
  EXPECT_FALSE(outcome.isLate) << road;
  EXPECT_EQ(outcome.last, ALLEND) << road;
  EXPECT_EQ(outcome.result, 0u) << road;
  ASSERT_EQ(outcome.deliveries.size(), pages) << road;
  for (std::size_t i = 0; i < pages; ++i) EXPECT_EQ(outcome.deliveries[i].pageNo, static_cast<int>(i) + 1) << road;
}

struct Depth {
  const char* name;
  int bits;
};

class EveryDepth : public testing::TestWithParam<Depth> {};

TEST_P(EveryDepth, ARawPictureComesOutAsItsBottomUpFile) {
  const Picture picture = drawPicture(13, 7, GetParam().bits);
  ScanHarness harness;
  const Outcome outcome =
      harness.scan(settingsFor(13, 7, picture.bits), rawLines(picture) + pageEnd(1) + allPagesEnd());
  expectEnded(outcome, 1, "raw");
  const Delivery& page = outcome.deliveries[0];
  EXPECT_EQ(page.bytes, expectedBmp(picture));
  EXPECT_EQ(page.record.bitPerPixel, picture.bits);
  EXPECT_EQ(page.record.widthPixel, 13);
  EXPECT_EQ(page.record.heightPixel, 7);
  EXPECT_EQ(page.record.widthBytes, (13 * picture.bits + 7) / 8);
  EXPECT_EQ(page.record.resolutionX, 300);
  EXPECT_EQ(page.record.resolutionY, 300);
  EXPECT_EQ(page.record.pixelDataSize, static_cast<std::uint32_t>(page.record.widthBytes * 7));
  EXPECT_EQ(page.record.pixelData, page.record.data + (page.bytes.size() - page.record.pixelDataSize));
  EXPECT_FALSE(page.record.isBlankPage);
  EXPECT_FALSE(page.record.pageScanIsTerminated);
  EXPECT_EQ(page.record.imageEnhanceTerminated, IMAGEENHANCE_NOT_TERMINATED);
}

TEST_P(EveryDepth, PackBitsLinesGiveTheBytesOfTheRawLines) {
  const Picture picture = drawPicture(29, 11, GetParam().bits);
  ScanHarness harness;
  const auto settings = settingsFor(29, 11, picture.bits);
  const Outcome raw = harness.scan(settings, rawLines(picture) + pageEnd(1) + allPagesEnd());
  const Outcome packed = harness.scan(settings, packedLines(picture) + pageEnd(1) + allPagesEnd());
  expectEnded(raw, 1, "raw");
  expectEnded(packed, 1, "packed");
  EXPECT_EQ(raw.deliveries[0].bytes, expectedBmp(picture));
  EXPECT_EQ(packed.deliveries[0].bytes, expectedBmp(picture));
}

TEST_P(EveryDepth, AWhiteLineIsALineOfWhitePixels) {
  Picture picture = drawPicture(16, 5, GetParam().bits);
  ScanHarness harness;
  for (const bool packed : {false, true}) {
    ByteString stream;
    for (unsigned y = 0; y < 5; ++y) {
      const bool isWhite = y == 1 || y == 4;
      if (isWhite) picture.lines[y].assign(picture.lines[y].size(), 0xFF);
      const ByteString& bytes = picture.lines[y];
      stream = stream + (isWhite  ? whiteLine(1)
                         : packed ? line(1, picture.format() | kPackBits, packBits(bytes))
                                  : line(1, picture.format(), bytes));
    }
    const Outcome outcome = harness.scan(settingsFor(16, 5, picture.bits), stream + pageEnd(1) + allPagesEnd());
    expectEnded(outcome, 1, packed ? "packed" : "raw");
    EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture)) << packed;
  }
}

TEST_P(EveryDepth, ThePagesOfABatchComeInTheirOrder) {
  ScanHarness harness;
  ByteString stream;
  std::vector<ByteString> expected;
  for (unsigned page = 1; page <= 8; ++page) {
    const Picture picture = drawPicture(20, 6, GetParam().bits, page);
    expected.push_back(expectedBmp(picture));
    stream = stream + (page % 2 == 0 ? packedLines(picture, page) : rawLines(picture, page)) + pageEnd(page);
  }
  const Outcome outcome = harness.scan(settingsFor(20, 6, GetParam().bits), stream + allPagesEnd());
  expectEnded(outcome, 8, "batch");
  EXPECT_EQ(outcome.pages(), expected);
}

INSTANTIATE_TEST_SUITE_P(WholePages, EveryDepth,
                         testing::Values(Depth{"Mono", 1}, Depth{"Gray", 8}, Depth{"Color", 24}),
                         [](const auto& row) { return std::string(row.param.name); });

// The two sides of a sheet may be sent turn by turn.
TEST(WholePages, PagesWhoseLinesComeInTurnAreKeptApart) {
  const Picture front = drawPicture(10, 6, 24, 1);
  const Picture back = drawPicture(10, 6, 24, 2);
  ByteString stream;
  for (unsigned y = 0; y < 6; ++y) {
    stream = stream + line(1, kColor, front.lines[y]) + line(2, kColor | kPackBits, packBits(back.lines[y]));
  }
  ScanHarness harness;
  const Outcome outcome = harness.scan(settingsFor(10, 6, 24), stream + pageEnd(1) + pageEnd(2) + allPagesEnd());
  expectEnded(outcome, 2, "turns");
  EXPECT_EQ(outcome.pages(), (std::vector<ByteString>{expectedBmp(front), expectedBmp(back)}));
}

TEST(WholePages, SizeRecordsAndCheckRecordsLeaveThePageAsItIs) {
  const Picture picture = drawPicture(12, 4, 24);
  const ByteString lines = rawLines(picture);
  ScanHarness harness;
  const Outcome outcome =
      harness.scan(settingsFor(12, 4, 24), pageSize(1, 12, 0) + lines + pageStatus(0x72, 1) + pageStatus(0x73, 1) +
                                               pageStatus(0x74, 1) + colorCheck(1, 0x05) + pageEnd(1) + allPagesEnd());
  expectEnded(outcome, 1, "records between");
  EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture));
}

// --- JPEG ---------------------------------------------------------------------------------------------------------

ByteString toRgbBmp(const module_test::Pixels& pixels) {
  Picture picture{pixels.widthPx, pixels.heightPx, pixels.parts * 8, {}};
  for (int y = 0; y < pixels.heightPx; ++y) {
    const auto start = pixels.bytes.begin() + static_cast<std::ptrdiff_t>(pixels.lineBytes()) * y;
    picture.lines.emplace_back(start, start + static_cast<std::ptrdiff_t>(pixels.lineBytes()));
  }
  return expectedBmp(picture);
}

TEST(WholePages, AJpegPageIsTheDecodedJpeg) {
  ScanHarness harness;
  for (const int parts : {3, 1}) {
    const auto jpeg = module_test::encodeJpeg(module_test::drawPicture(40, 24, parts));
    module_test::Pixels decoded;
    ASSERT_TRUE(module_test::decodeWithLibjpeg(jpeg, decoded));
    const auto format = static_cast<std::uint8_t>(kJpeg | (parts == 3 ? kColor : kGray));
    for (const std::size_t blockBytes : {jpeg.size(), std::size_t{100}, std::size_t{7}}) {
      ByteString stream;
      for (std::size_t at = 0; at < jpeg.size(); at += blockBytes) {
        const std::size_t end = std::min(jpeg.size(), at + blockBytes);
        stream = stream + block(1, format,
                                ByteString(jpeg.begin() + static_cast<std::ptrdiff_t>(at),
                                           jpeg.begin() + static_cast<std::ptrdiff_t>(end)),
                                static_cast<std::uint32_t>(24 * end / jpeg.size()));
      }
      const Outcome outcome = harness.scan(settingsFor(40, 24, parts * 8), stream + pageEnd(1) + allPagesEnd());
      expectEnded(outcome, 1, parts == 3 ? "colour JPEG" : "grey JPEG");
      EXPECT_EQ(outcome.deliveries[0].bytes, toRgbBmp(decoded)) << parts << " parts, blocks of " << blockBytes;
      EXPECT_EQ(outcome.deliveries[0].record.bitPerPixel, parts * 8);
    }
  }
}

TEST(WholePages, AColourJpegInAGreyScanBecomesTheMeanOfItsParts) {
  const auto jpeg = module_test::encodeJpeg(module_test::drawPicture(16, 8, 3));
  module_test::Pixels decoded;
  ASSERT_TRUE(module_test::decodeWithLibjpeg(jpeg, decoded));
  module_test::Pixels gray{16, 8, 1, {}};
  for (std::size_t i = 0; i + 2 < decoded.bytes.size(); i += 3) {
    gray.bytes.push_back(
        static_cast<std::uint8_t>((decoded.bytes[i] + decoded.bytes[i + 1] + decoded.bytes[i + 2]) / 3));
  }
  ScanHarness harness;
  const Outcome outcome =
      harness.scan(settingsFor(16, 8, 8), block(1, kJpeg | kColor, jpeg, 8) + pageEnd(1) + allPagesEnd());
  expectEnded(outcome, 1, "colour JPEG as grey");
  EXPECT_EQ(outcome.deliveries[0].bytes, toRgbBmp(gray));
}

TEST(WholePages, ABrokenJpegFailsItsPageAndTheScanCanBeRepeated) {
  auto jpeg = module_test::encodeJpeg(module_test::drawPicture(16, 8, 3));
  ScanHarness harness;
  const Outcome broken =
      harness.scan(settingsFor(16, 8, 24), block(1, kJpeg | kColor, {1, 2, 3, 4}, 8) + pageEnd(1) + allPagesEnd());
  EXPECT_FALSE(broken.isLate);
  EXPECT_EQ(broken.result & 0xFFFFF000u, 0x10403000u) << std::hex << broken.result;
  const Outcome good =
      harness.scan(settingsFor(16, 8, 24), block(1, kJpeg | kColor, jpeg, 8) + pageEnd(1) + allPagesEnd());
  expectEnded(good, 1, "after the broken one");
}

// --- The two sides of a sheet ---------------------------------------------------------------------------------------

TEST(WholePages, TheBackOfASheetBoundOnTheShortEdgeIsTurned) {
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
  ScanHarness harness;
  for (const DUPLEXTYPE type : {DUPLEXTYPE_SIMPLEX, DUPLEXTYPE_LONG_EDGE, DUPLEXTYPE_SHORT_EDGE}) {
    auto settings = settingsFor(9, 5, 24);
    settings.duplexType = type;
    const Outcome outcome = harness.scan(settings, rawLines(picture, 1) + pageEnd(1) + rawLines(picture, 2) +
                                                       pageEnd(2) + rawLines(picture, 3) + pageEnd(3) + allPagesEnd());
    expectEnded(outcome, 3, "duplex");
    EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture)) << type;
    EXPECT_EQ(outcome.deliveries[1].bytes, expectedBmp(type == DUPLEXTYPE_SHORT_EDGE ? turned : picture)) << type;
    EXPECT_EQ(outcome.deliveries[2].bytes, expectedBmp(picture)) << type;
  }
}

// --- Cut streams ----------------------------------------------------------------------------------------------------

// Two pages: raw lines with a white one, PackBits, a size record and a blank page behind them.
ByteString smallBatch() {
  const Picture first = drawPicture(4, 2, 24, 1);
  const Picture second = drawPicture(4, 2, 24, 2);
  return pageSize(1, 4, 0) + rawLines(first, 1) + whiteLine(1) + pageEnd(1) + packedLines(second, 2) + pageEnd(2) +
         line(3, kColor, first.lines[0]) + blankPageEnd(3) + allPagesEnd();
}

TEST(CutStreams, ACutAtAnyByteChangesNothing) {
  const ByteString stream = smallBatch();
  ScanHarness harness;
  const auto settings = settingsFor(4, 3, 24);
  const Outcome whole = harness.scan(settings, stream);
  expectEnded(whole, 3, "whole");
  EXPECT_TRUE(whole.deliveries[2].record.isBlankPage);
  for (std::size_t cut = 1; cut < stream.size(); ++cut) {
    const auto middle = stream.begin() + static_cast<std::ptrdiff_t>(cut);
    harness.device.stream({fakes::MemoryDevice::data(ByteString(stream.begin(), middle)),
                           fakes::MemoryDevice::quiet(cut % 2 == 0 ? 1 : 2),
                           fakes::MemoryDevice::data(ByteString(middle, stream.end()))});
    const Outcome outcome = harness.scan(settings);
    expectEnded(outcome, 3, ("cut at " + std::to_string(cut)).c_str());
    EXPECT_EQ(outcome.pages(), whole.pages()) << "cut at " << cut;
    if (HasFailure()) return;
  }
}

TEST(CutStreams, ByteByByteChangesNothing) {
  const ByteString stream = smallBatch();
  ScanHarness harness;
  const auto settings = settingsFor(4, 3, 24);
  const Outcome whole = harness.scan(settings, stream);
  std::vector<fakes::MemoryDevice::Part> parts;
  for (const std::uint8_t byte : stream) parts.push_back(fakes::MemoryDevice::data({byte}));
  harness.device.stream(parts);
  const Outcome outcome = harness.scan(settings);
  expectEnded(outcome, 3, "byte by byte");
  EXPECT_EQ(outcome.pages(), whole.pages());
}

TEST(CutStreams, AJpegPageInPiecesOfAnySizeIsTheSame) {
  const auto jpeg = module_test::encodeJpeg(module_test::drawPicture(24, 16, 3));
  const ByteString stream = block(1, kJpeg | kColor, jpeg, 16) + pageEnd(1) + allPagesEnd();
  ScanHarness harness;
  const auto settings = settingsFor(24, 16, 24);
  const Outcome whole = harness.scan(settings, stream);
  expectEnded(whole, 1, "whole");
  for (std::size_t piece = 1; piece < 40; piece += 3) {
    std::vector<fakes::MemoryDevice::Part> parts;
    for (std::size_t at = 0; at < stream.size(); at += piece) {
      parts.push_back(fakes::MemoryDevice::data(
          ByteString(stream.begin() + static_cast<std::ptrdiff_t>(at),
                     stream.begin() + static_cast<std::ptrdiff_t>(std::min(stream.size(), at + piece)))));
    }
    harness.device.stream(parts);
    EXPECT_EQ(harness.scan(settings).pages(), whole.pages()) << "pieces of " << piece;
  }
}

// --- Ends of pages --------------------------------------------------------------------------------------------------

TEST(PageEnds, ABlankPageIsDeliveredWithoutData) {
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness;
  const Outcome outcome =
      harness.scan(settingsFor(8, 4, 24), rawLines(picture, 1) + pageEnd(1) + rawLines(picture, 2) + blankPageEnd(2) +
                                              rawLines(picture, 3) + pageEnd(3) + allPagesEnd());
  expectEnded(outcome, 3, "blank");
  EXPECT_FALSE(outcome.deliveries[0].record.isBlankPage);
  EXPECT_TRUE(outcome.deliveries[1].record.isBlankPage);
  EXPECT_EQ(outcome.deliveries[1].record.data, nullptr);
  EXPECT_EQ(outcome.deliveries[1].record.dataSize, 0u);
  EXPECT_EQ(outcome.deliveries[2].bytes, expectedBmp(picture));
}

TEST(PageEnds, APageAtTheDevicesLengthLimitSaysSo) {
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness;
  const Outcome outcome = harness.scan(settingsFor(8, 4, 24), rawLines(picture, 1) + tooLongPageEnd(1) + allPagesEnd());
  expectEnded(outcome, 1, "too long");
  EXPECT_TRUE(outcome.deliveries[0].record.pageScanIsTerminated);
  EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture));
}

TEST(PageEnds, LinesBeyondTheHeightAskedForAreDropped) {
  const Picture picture = drawPicture(8, 9, 24);
  Picture kept = picture;
  kept.heightPx = 6;
  kept.lines.resize(6);
  ScanHarness harness;
  const Outcome outcome = harness.scan(settingsFor(8, 6, 24), rawLines(picture, 1) + pageEnd(1) + allPagesEnd());
  expectEnded(outcome, 1, "more lines");
  EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(kept));
}

TEST(PageEnds, AShortPageStaysShortUnlessItMustBeFilled) {
  const Picture picture = drawPicture(8, 3, 24);
  Picture filled = picture;
  filled.heightPx = 6;
  filled.lines.resize(6, ByteString(24, 0xFF));
  for (const bool mayEndEarly : {true, false}) {
    auto settings = settingsFor(8, 6, 24);
    settings.detectEndOfPage = mayEndEarly;
    ScanHarness harness;
    const Outcome outcome = harness.scan(settings, rawLines(picture, 1) + pageEnd(1) + allPagesEnd());
    expectEnded(outcome, 1, "short");
    EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(mayEndEarly ? picture : filled)) << mayEndEarly;
  }
}

TEST(PageEnds, APageWithoutAnEndOfItsOwnIsFinishedWhenAllPagesEnd) {
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness;
  const Outcome outcome = harness.scan(settingsFor(8, 4, 24), rawLines(picture, 1) + allPagesEnd());
  expectEnded(outcome, 1, "no page end");
  EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture));
}

TEST(PageEnds, APageThatOnlyFillsAGapIsDeliveredBlank) {
  const Picture picture = drawPicture(8, 4, 1);
  ScanHarness harness;
  const Outcome outcome = harness.scan(settingsFor(8, 4, 1), rawLines(picture, 2) + pageEnd(2) + allPagesEnd());
  expectEnded(outcome, 2, "page 2 alone");
  EXPECT_TRUE(outcome.deliveries[0].record.isBlankPage);
  EXPECT_EQ(outcome.deliveries[1].bytes, expectedBmp(picture));
}

// In a colour scan every page behind the first of such a gap is made for JPEG, with the height asked for: a JPEG fills
// it, lines count as too many from the first one on.
TEST(PageEnds, InAColourScanThePageBehindAGapTakesAJpegAndNoLines) {
  const auto jpeg = module_test::encodeJpeg(module_test::drawPicture(16, 8, 3));
  module_test::Pixels decoded;
  ASSERT_TRUE(module_test::decodeWithLibjpeg(jpeg, decoded));
  ScanHarness harness;
  const Outcome asJpeg =
      harness.scan(settingsFor(16, 8, 24), block(2, kJpeg | kColor, jpeg, 8) + pageEnd(2) + allPagesEnd());
  expectEnded(asJpeg, 2, "JPEG");
  EXPECT_TRUE(asJpeg.deliveries[0].record.isBlankPage);
  EXPECT_EQ(asJpeg.deliveries[1].bytes, toRgbBmp(decoded));
  const Outcome asLines =
      harness.scan(settingsFor(16, 8, 24), rawLines(drawPicture(16, 8, 24), 2) + pageEnd(2) + allPagesEnd());
  expectEnded(asLines, 2, "lines");
  EXPECT_TRUE(asLines.deliveries[1].record.isBlankPage);
}

TEST(PageEnds, APageThatEndsWithoutDataIsDeliveredBlank) {
  ScanHarness harness;
  const Outcome outcome = harness.scan(settingsFor(8, 4, 24), pageSize(1, 8, 4) + pageEnd(1) + allPagesEnd());
  expectEnded(outcome, 1, "no data");
  EXPECT_TRUE(outcome.deliveries[0].record.isBlankPage);
}

TEST(PageEnds, AScanOfNoPagesEndsAtOnce) {
  ScanHarness harness;
  expectEnded(harness.scan(settingsFor(8, 4, 24), allPagesEnd()), 0, "nothing");
}

TEST(PageEnds, TheEndOfAPageThatWasNeverSeenIsIgnored) {
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness;
  const Outcome outcome =
      harness.scan(settingsFor(8, 4, 24), rawLines(picture, 1) + pageEnd(1) + pageEnd(5) + pageEnd(0) + allPagesEnd());
  expectEnded(outcome, 1, "unseen page");
}

TEST(PageEnds, DataAndASecondEndAfterAPagesEndAreDropped) {
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness;
  const Outcome outcome =
      harness.scan(settingsFor(8, 9, 24), rawLines(picture, 1) + pageEnd(1) + rawLines(picture, 1) + pageEnd(1) +
                                              rawLines(picture, 2) + pageEnd(2) + allPagesEnd());
  expectEnded(outcome, 2, "late data");
  EXPECT_EQ(outcome.pages(), (std::vector<ByteString>{expectedBmp(picture), expectedBmp(picture)}));
}

// --- Records behind the end -----------------------------------------------------------------------------------------

TEST(BehindTheEnd, WhatStillComesIsFinishedToo) {
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness;
  const Outcome late =
      harness.scan(settingsFor(8, 4, 24), rawLines(picture, 1) + pageEnd(1) + allPagesEnd() + rawLines(picture, 2));
  expectEnded(late, 2, "a late page");
  EXPECT_EQ(late.deliveries[1].bytes, expectedBmp(picture));
  const Outcome gap =
      harness.scan(settingsFor(8, 4, 24), rawLines(picture, 1) + pageEnd(1) + allPagesEnd() + pageSize(3, 8, 4));
  expectEnded(gap, 3, "late pages without data");
  EXPECT_TRUE(gap.deliveries[1].record.isBlankPage);
  EXPECT_TRUE(gap.deliveries[2].record.isBlankPage);
}

TEST(BehindTheEnd, ATimerRestartRemovesNothing) {
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness;
  for (int round = 0; round < 20; ++round) {
    const Outcome outcome = harness.scan(settingsFor(8, 4, 24), rawLines(picture, 1) + allPagesEnd() + timer(0x50, 5));
    expectEnded(outcome, 1, "restart behind the end");
    EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture));
  }
}

TEST(BehindTheEnd, ASecondEndChangesNothing) {
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness;
  const Outcome outcome = harness.scan(settingsFor(8, 4, 24),
                                       rawLines(picture, 1) + pageEnd(1) + allPagesEnd() + pageEnd(1) + allPagesEnd());
  expectEnded(outcome, 1, "two ends");
  EXPECT_EQ(outcome.deliveries[0].bytes, expectedBmp(picture));
}

// The caller has a blank page as soon as it is told of it, and may free it while the device repeats itself.
TEST(BehindTheEnd, ASecondEndOfABlankPageLeavesItToTheCaller) {
  const Picture picture = drawPicture(8, 4, 24);
  std::vector<fakes::MemoryDevice::Part> parts;
  for (unsigned n = 1; n <= 60; ++n) {
    parts.push_back(fakes::MemoryDevice::data(rawLines(picture, n) + blankPageEnd(n)));
    for (int i = 0; i < 3; ++i) {
      parts.push_back(fakes::MemoryDevice::data(blankPageEnd(n) + pageSize(n, 5, 5) + pageEnd(n)));
    }
  }
  parts.push_back(fakes::MemoryDevice::data(allPagesEnd()));
  ScanHarness harness;
  harness.device.stream(parts);
  expectEnded(harness.scan(settingsFor(8, 4, 24)), 60, "blank pages");
}

// --- Sizes that cannot be --------------------------------------------------------------------------------------------

TEST(Extremes, ASizeThatCannotBeEndsInAPageOrAFailure) {
  const Picture picture = drawPicture(8, 4, 24);
  const auto jpeg = module_test::encodeJpeg(module_test::drawPicture(16, 8, 3));
  const std::uint32_t extremes[] = {0, 1, 0xFFFF, 0x7FFFFFFF, 0xFFFFFFFF};
  ScanHarness harness;
  for (const int paper : {PAPERTYPE_A4, PAPERTYPE_AUTO}) {
    for (const std::uint32_t width : extremes) {
      for (const std::uint32_t height : extremes) {
        auto settings = settingsFor(8, 4, 24);
        settings.paperType = static_cast<PAPERTYPE>(paper);
        const ByteString streams[] = {
            pageSize(1, width, height) + rawLines(picture) + pageEnd(1) + allPagesEnd(),
            rawLines(picture) + pageSize(1, width, height) + pageEnd(1) + allPagesEnd(),
            block(1, kJpeg | kColor, jpeg, height) + pageSize(1, width, 0) + pageEnd(1) + allPagesEnd(),
            pageSize(1, width, height) + packedLines(picture) + allPagesEnd(),
        };
        for (const ByteString& stream : streams) {
          const Outcome outcome = harness.scan(settings, stream);
          EXPECT_FALSE(outcome.isLate) << std::hex << width << " by " << height;
          EXPECT_EQ(outcome.deliveries.size(), 1u) << std::hex << width << " by " << height;
          if (HasFailure()) return;
        }
      }
    }
  }
}

}  // namespace
}  // namespace reception_test
