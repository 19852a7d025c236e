// A stream is the same stream whatever pieces it comes in.
#include <gtest/gtest.h>

#include "tests/reception/dialect.h"
#include "tests/reception/jpeg_pages.h"
#include "tests/reception/scan_harness.h"

namespace reception_test {
namespace {

using fakes::MemoryDevice;

using CutStreams = BothGenerations;
INSTANTIATE_TEST_SUITE_P(Generations, CutStreams, testing::ValuesIn(kGenerations), nameOfGeneration);

const QS_SCANNER_PARAMETERS kSettings = settingsFor(4, 3, 24);

// Pages of raw and of PackBits lines, a page that is blank, and what else the generation has to say.
ByteString smallBatch(const Dialect& dialect) {
  const Picture first = drawPicture(4, 2, 24, 1);
  const Picture second = drawPicture(4, 2, 24, 2);
  if (dialect.isFirst()) {
    return dialect.rawLines(first, 1) + dialect.rawLine(24, 1, {}) + v1::pageEnd(1) + dialect.packedLines(second, 2) +
           v1::pageEnd(2, 2) + v1::line(v1::kColor, 4, second.lines[0], 9) + v1::pageEnd(4) + v1::allPagesEnd();
  }
  return pageSize(1, 4, 0) + rawLines(first, 1) + whiteLine(1) + pageEnd(1) + packedLines(second, 2) + pageEnd(2) +
         line(3, kColor, first.lines[0]) + blankPageEnd(3) + line(4, kColor, second.lines[0]) + pageEnd(4) +
         allPagesEnd();
}

TEST_P(CutStreams, ACutAtAnyByteChangesNothing) {
  const ByteString stream = smallBatch(GetParam());
  ScanHarness harness(GetParam().generation());
  const Outcome whole = harness.scan(kSettings, stream);
  expectEnded(whole, 4, "whole");
  EXPECT_TRUE(whole.deliveries[2].record.isBlankPage);
  for (std::size_t cut = 1; cut < stream.size(); ++cut) {
    const auto middle = stream.begin() + static_cast<std::ptrdiff_t>(cut);
    harness.device.stream({MemoryDevice::data(ByteString(stream.begin(), middle)),
                           MemoryDevice::quiet(cut % 2 == 0 ? 1 : 2),
                           MemoryDevice::data(ByteString(middle, stream.end()))});
    const Outcome outcome = harness.scan(kSettings);
    expectEnded(outcome, 4, "cut at " + std::to_string(cut));
    EXPECT_EQ(outcome.pages(), whole.pages()) << "cut at " << cut;
    if (HasFailure()) return;
  }
}

TEST_P(CutStreams, ByteByByteChangesNothing) {
  const ByteString stream = smallBatch(GetParam());
  ScanHarness harness(GetParam().generation());
  const Outcome whole = harness.scan(kSettings, stream);
  std::vector<MemoryDevice::Part> parts;
  for (const std::uint8_t byte : stream) parts.push_back(MemoryDevice::data({byte}));
  harness.device.stream(parts);
  const Outcome outcome = harness.scan(kSettings);
  expectEnded(outcome, 4, "byte by byte");
  EXPECT_EQ(outcome.pages(), whole.pages());
}

TEST_P(CutStreams, AJpegPageInPiecesOfAnySizeIsTheSame) {
  const Dialect& dialect = GetParam();
  const JpegPage jpeg = makeJpegPage(24, 16, 3);
  const ByteString stream = dialect.jpegBlock(24, 1, jpeg.file, 16) + dialect.pageEnd(1) + dialect.allPagesEnd();
  ScanHarness harness(dialect.generation());
  const auto settings = settingsFor(24, 16, 24);
  for (std::size_t piece = 1; piece < 40; piece += 3) {
    std::vector<MemoryDevice::Part> parts;
    for (std::size_t at = 0; at < stream.size(); at += piece) {
      parts.push_back(MemoryDevice::data(
          ByteString(stream.begin() + static_cast<std::ptrdiff_t>(at),
                     stream.begin() + static_cast<std::ptrdiff_t>(std::min(stream.size(), at + piece)))));
    }
    harness.device.stream(parts);
    const Outcome outcome = harness.scan(settings);
    expectEnded(outcome, 1, "pieces of " + std::to_string(piece));
    EXPECT_EQ(outcome.deliveries[0].bytes, jpeg.bmp) << "pieces of " << piece;
  }
}

}  // namespace
}  // namespace reception_test
