// How pages of the second generation end, and what may come behind an end.
#include <gtest/gtest.h>

#include "tests/reception/jpeg_pages.h"
#include "tests/reception/scan_harness.h"
#include "tests/reception/scan_pictures.h"

namespace reception_test {
namespace {

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

// In a colour scan every page behind the first of such a gap is made for JPEG, with the height asked for: a JPEG fills
// it, lines count as too many from the first one on.
TEST(PageEnds, InAColourScanThePageBehindAGapTakesAJpegAndNoLines) {
  const JpegPage jpeg = makeJpegPage(16, 8, 3);
  ScanHarness harness;
  const Outcome asJpeg =
      harness.scan(settingsFor(16, 8, 24), block(2, kJpeg | kColor, jpeg.file, 8) + pageEnd(2) + allPagesEnd());
  expectEnded(asJpeg, 2, "JPEG");
  EXPECT_TRUE(asJpeg.deliveries[0].record.isBlankPage);
  EXPECT_EQ(asJpeg.deliveries[1].bytes, jpeg.bmp);
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

TEST(PageEnds, TheEndOfAPageThatWasNeverSeenIsIgnored) {
  const Picture picture = drawPicture(8, 4, 24);
  ScanHarness harness;
  const Outcome outcome =
      harness.scan(settingsFor(8, 4, 24), rawLines(picture, 1) + pageEnd(1) + pageEnd(5) + pageEnd(0) + allPagesEnd());
  expectEnded(outcome, 1, "unseen page");
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
