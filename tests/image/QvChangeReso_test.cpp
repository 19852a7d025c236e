#include "image/QvChangeReso.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/image/reso_feed.h"

using reso_feed::Bytes;
using reso_feed::Call;
using reso_feed::Feed;
using reso_feed::kBits;
using reso_feed::kColor;
using reso_feed::kGrey;
using reso_feed::kGreySimple;
using reso_feed::openRecord;
using reso_feed::Ratio;

namespace {

constexpr Ratio kSame = {300, 300};

// The first bytes of what a call wrote.
Bytes head(const Call& call, std::size_t count) {
  return {call.buffer.begin(), call.buffer.begin() + static_cast<std::ptrdiff_t>(count)};
}
bool untouched(const Call& call) {
  return std::all_of(call.buffer.begin(), call.buffer.end(), [](std::uint8_t byte) { return byte == 0xA5; });
}

// The ring: when lines come.

TEST(QvChangeReso, TheFirstOutputComesWithTheThirdInputLineAndTheLastTwoWithANullFlush) {
  Feed feed(openRecord(kGrey, kSame, {200, 300}, 4));
  ASSERT_TRUE(feed.ready());
  std::vector<int> counts;
  for (int i = 0; i < 10; ++i) counts.push_back(feed.line(Bytes(4, static_cast<std::uint8_t>(i * 10))).lines);
  EXPECT_EQ(counts, (std::vector<int>{0, 0, 2, 1, 2, 1, 2, 1, 2, 1}));
  const Call last = feed.flushNull();
  EXPECT_EQ(last.lines, 2);
  EXPECT_EQ(last.bytes, 8);
}

TEST(QvChangeReso, AFlushThatStillHoldsTheLastLineFeedsItTwiceMore) {
  Feed feed(openRecord(kGrey, kSame, {200, 300}, 4));
  ASSERT_TRUE(feed.ready());
  int lines = 0;
  for (int i = 0; i < 10; ++i) lines += feed.line(Bytes(4, static_cast<std::uint8_t>(i * 10))).lines;
  EXPECT_EQ(lines, 12);
  const Call last = feed.flush();
  EXPECT_EQ(last.lines, 3);
  EXPECT_EQ(last.bytes, 12);
  EXPECT_EQ(head(last, 4), Bytes(4, 80));  // on the ninth line
  // A third past the tenth, which is in the ring three times.
  EXPECT_EQ(Bytes(last.buffer.begin() + 8, last.buffer.begin() + 12),
            Bytes(4, (-148 * 80 + 814 * 90 + 407 * 90 - 74 * 90) / 1000));
}

TEST(QvChangeReso, FewerThanThreeLinesGiveNothingOnTheRingPaths) {
  for (const std::uint32_t format : {kBits, kGrey, kColor}) {
    for (const Ratio x : {Ratio{200, 300}, Ratio{300, 200}}) {
      for (int lines = 0; lines < 3; ++lines) {
        Feed feed(openRecord(format, x, {200, 300}, 8));
        ASSERT_TRUE(feed.ready());
        for (int i = 0; i < lines; ++i) EXPECT_TRUE(untouched(feed.line(Bytes(24, 255))));
        const Call last = feed.flush();
        EXPECT_EQ(last.bytes, 0);
        EXPECT_EQ(last.lines, 0);
        EXPECT_TRUE(untouched(last));
      }
    }
  }
}

TEST(QvChangeReso, TheTopEdgeRepeatsTheFirstLine) {
  Feed feed(openRecord(kGrey, kSame, {200, 300}, 4));
  ASSERT_TRUE(feed.ready());
  feed.line(Bytes(4, 100));
  feed.line(Bytes(4, 50));
  const Call call = feed.line(Bytes(4, 20));
  ASSERT_EQ(call.lines, 2);
  EXPECT_EQ(head(call, 4), Bytes(4, 100));
  // At two thirds: -74 * 100 + 407 * 100 + 814 * 50 - 148 * 20, the first two rows being the first line.
  EXPECT_EQ(Bytes(call.buffer.begin() + 4, call.buffer.begin() + 8), Bytes(4, 71));
}

TEST(QvChangeReso, ANullLineRepeatsAndCountsForColorOnly) {
  Feed grey(openRecord(kGrey, kSame, {300, 600}, 4));
  Feed color(openRecord(kColor, kSame, {300, 600}, 4));
  ASSERT_TRUE(grey.ready() && color.ready());
  grey.line(Bytes(4, 60));
  color.line(Bytes(12, 60));
  for (int i = 0; i < 5; ++i) EXPECT_EQ(grey.nullLine().lines, 0);
  EXPECT_EQ(color.nullLine().lines, 0);
  EXPECT_EQ(color.nullLine().lines, 2);
  // Of the repeated line there are four in the ring by now.
  const Call call = color.nullLine();
  ASSERT_EQ(call.lines, 2);
  EXPECT_EQ(head(call, 24), Bytes(24, 60));
}

TEST(QvChangeReso, TheCountOfLinesStartsAnewAfter65536) {
  Feed feed(openRecord(kGrey, kSame, {300, 600}, 1));
  ASSERT_TRUE(feed.ready());
  for (int i = 0; i < 65535; ++i) {
    ASSERT_EQ(feed.line(Bytes(1, static_cast<std::uint8_t>(i % 200))).lines, i < 2 ? 0 : 2) << i;
  }
  for (int i = 0; i < 3; ++i) EXPECT_EQ(feed.line(Bytes(1, 77)).lines, 0) << i;
  EXPECT_EQ(feed.line(Bytes(1, 77)).lines, 2);
}

TEST(QvChangeReso, StartingAgainForgetsTheLinesBefore) {
  Feed feed(openRecord(kGrey, kSame, {300, 600}, 4));
  ASSERT_TRUE(feed.ready());
  for (int i = 0; i < 7; ++i) feed.line(Bytes(4, 200));
  feed.flush();
  EXPECT_EQ(feed.resampler().ChangeResoWriteStart(), 1);
  EXPECT_EQ(feed.resampler().ChangeResoWriteStart(), 1);
  EXPECT_EQ(feed.line(Bytes(4, 10)).lines, 0);
  EXPECT_EQ(feed.line(Bytes(4, 10)).lines, 0);
  const Call call = feed.line(Bytes(4, 10));
  EXPECT_EQ(call.lines, 2);
  EXPECT_EQ(head(call, 8), Bytes(8, 10));
}

// Enlarging.

TEST(QvChangeReso, AllPixelsOfAGroupComeFromTheWindowAtItsStart) {
  Feed feed(openRecord(kGrey, {200, 300}, kSame, 6));
  ASSERT_TRUE(feed.ready());
  const std::vector<Bytes> out = feed.image({3, Bytes{10, 200, 30, 90, 60, 120}});
  ASSERT_EQ(out.size(), 3U);
  // Second group, columns 1 to 4 (200 30 90 60): taken, at 2/3, and at 1/3, though its place is past the next column.
  EXPECT_EQ(out[0][3], 30);
  EXPECT_EQ(out[0][4], (-74 * 200 + 407 * 30 + 814 * 90 - 148 * 60) / 1000);
  EXPECT_EQ(out[0][5], (-148 * 200 + 814 * 30 + 407 * 90 - 74 * 60) / 1000);
}

TEST(QvChangeReso, BothEdgesRepeatTheirColumn) {
  Feed feed(openRecord(kGrey, {300, 600}, kSame, 5));
  ASSERT_TRUE(feed.ready());
  const std::vector<Bytes> out = feed.image({3, Bytes{40, 80, 60, 100, 20}});
  ASSERT_EQ(out.size(), 3U);
  const auto half = [](int a, int b, int c, int d) {
    return static_cast<std::uint8_t>((-125 * a + 625 * b + 625 * c - 125 * d) / 1000);
  };
  EXPECT_EQ(out[0], (Bytes{40, half(40, 40, 80, 60), 80, half(40, 80, 60, 100), 60, half(80, 60, 100, 20), 100,
                           half(60, 100, 20, 20), 20, half(100, 20, 20, 20)}));
}

TEST(QvChangeReso, OvershootIsCutAtBlackAndWhite) {
  for (const std::uint32_t format : {kGrey, kColor}) {
    const std::size_t planes = format == kColor ? 3 : 1;
    Feed feed(openRecord(format, {300, 600}, kSame, 8));
    ASSERT_TRUE(feed.ready());
    Bytes line;
    for (const int value : {0, 0, 255, 255, 0, 0, 255, 255})
      line.insert(line.end(), planes, static_cast<std::uint8_t>(value));
    const std::vector<Bytes> out = feed.image({3, line});
    ASSERT_EQ(out.size(), 3U);
    EXPECT_EQ(out[0][5 * planes], 255);  // between the two white ones: 318
    EXPECT_EQ(out[0][9 * planes], 0);    // between the two black ones: -63
  }
}

TEST(QvChangeReso, AnUnchangedWidthCopiesTheLinesThatFallOnInputLines) {
  Feed feed(openRecord(kGrey, kSame, {300, 600}, 5));
  ASSERT_TRUE(feed.ready());
  const std::vector<Bytes> lines = {{1, 2, 3, 4, 5}, {60, 70, 80, 90, 99}, {200, 0, 200, 0, 200}, {7, 7, 7, 7, 7}};
  const std::vector<Bytes> out = feed.image(lines);
  ASSERT_EQ(out.size(), 8U);
  for (std::size_t i = 0; i < lines.size(); ++i) EXPECT_EQ(out[2 * i], lines[i]);
}

TEST(QvChangeReso, ALineThatIsNoWholeNumberOfGroupsIsComputedToItsEnd) {
  Feed feed(openRecord(kGrey, {300, 400}, kSame, 5));  // six pixels: a group of four and two more
  ASSERT_TRUE(feed.ready());
  EXPECT_EQ(feed.record().outPixels, 6U);
  const std::vector<Bytes> out = feed.image({3, Bytes{10, 20, 30, 40, 50}});
  ASSERT_EQ(out.size(), 3U);
  EXPECT_EQ(out[0][4], 40);  // on column 3
  // Three quarters on, columns 2 to 4 and the last one again, in truncated weights.
  EXPECT_EQ(out[0][5], (-46 * 30 + 296 * 40 + 890 * 50 - 140 * 50) / 1000);
}

TEST(QvChangeReso, ALineOfOneOrTwoPixelsReadsTheBytesBehindIt) {
  // Twice as wide: pixel 1 is -125 a + 625 b + 625 c - 125 d, its window being columns 0 0 1 2 of the block.
  Feed one(openRecord(kGrey, {300, 600}, kSame, 1));
  ASSERT_TRUE(one.ready());
  one.line({80});
  one.line({40});
  // The ring holds 80 (slot 0), 40, 120 and the first line again. Row 1 is slot 0: next to it lie 40 and 120.
  // Row 0, the last slot, has no weight.
  EXPECT_EQ(head(one.line({120}), 2), (Bytes{80, (-125 * 80 + 625 * 80 + 625 * 40 - 125 * 120) / 1000}));

  Feed two(openRecord(kGrey, {300, 600}, kSame, 2));
  ASSERT_TRUE(two.ready());
  two.line({80, 100});
  two.line({40, 60});
  EXPECT_EQ(head(two.line({120, 20}), 4), (Bytes{80, (-125 * 80 + 625 * 80 + 625 * 100 - 125 * 40) / 1000, 100,
                                                 (-125 * 80 + 625 * 100 + 625 * 100 - 125 * 100) / 1000}));
}

// One bit.

TEST(QvChangeReso, AWhiteOneBitLineStaysWhiteAndABlackOneBlack) {
  for (const Ratio x : {Ratio{200, 300}, Ratio{300, 400}, Ratio{300, 200}, Ratio{100, 3200}}) {
    for (const int value : {255, 0}) {
      Feed feed(openRecord(kBits, x, {200, 300}, 48));
      ASSERT_TRUE(feed.ready());
      const std::vector<Bytes> out = feed.image({6, Bytes(6, static_cast<std::uint8_t>(value))});
      ASSERT_EQ(out.size(), 9U);
      for (const Bytes& line : out) EXPECT_EQ(line, Bytes(line.size(), static_cast<std::uint8_t>(value))) << x.in;
    }
  }
}

TEST(QvChangeReso, TheRestOfAOneBitLineAsksOnceWhetherBytesStart) {
  // Four groups of three and one pixel: 4 + 12 is a multiple of 8, so the thirteenth pixel starts a byte of its own.
  Feed starts(openRecord(kBits, {200, 300}, kSame, 9));
  ASSERT_TRUE(starts.ready());
  EXPECT_EQ(starts.record().outPixels, 13U);
  EXPECT_EQ(starts.image({3, Bytes{0, 0}})[0], (Bytes{0x00, 0x0F, 0xF7}));

  // Two groups of four and two pixels: 2 + 8 is not, so the two clear the top bits of the byte before.
  CHRESO_OPEN open = openRecord(kBits, {300, 400}, kSame, 8);
  open.fixedOutLineBytes = 4;
  Feed stays(open);
  ASSERT_TRUE(stays.ready());
  EXPECT_EQ(stays.record().outPixels, 10U);
  EXPECT_EQ(stays.image({3, Bytes{0xFC}})[0], (Bytes{0x3F, 0xA5, 0xA5, 0xA5}));

  // Eight groups of four and two pixels: 8 + 32 is, so each of the two starts a byte.
  open = openRecord(kBits, {300, 400}, kSame, 26);
  open.fixedOutLineBytes = 10;
  Feed each(open);
  ASSERT_TRUE(each.ready());
  EXPECT_EQ(each.record().outPixels, 34U);
  EXPECT_EQ(each.image({3, Bytes(4, 0)})[0], (Bytes{0, 0, 0, 0, 0x7F, 0xBF, 0xA5, 0xA5, 0xA5, 0xA5}));
}

TEST(QvChangeReso, TwoToOneCountsTheBytesOfTheLine) {
  CHRESO_OPEN open = openRecord(kBits, {600, 300}, {600, 300}, 64);
  open.fixedOutLineBytes = 9;
  Feed feed(open);
  ASSERT_TRUE(feed.ready());
  EXPECT_EQ(feed.line(Bytes(8, 0xFF)).bytes, 4);
  open.outResoX = 1200;  // and any other ratio the distance of lines
  Feed larger(open);
  ASSERT_TRUE(larger.ready());
  EXPECT_EQ(larger.line(Bytes(8, 0xFF)).bytes, 9);
}

TEST(QvChangeReso, TwoToOneDownKeepsTheFirstOfEveryTwoLines) {
  Feed feed(openRecord(kBits, {300, 600}, {300, 150}, 8));
  ASSERT_TRUE(feed.ready());
  for (int i = 0; i < 6; ++i) {
    const Call call = feed.line({static_cast<std::uint8_t>(i % 2 == 0 ? 0xFF : 0x00)});
    EXPECT_EQ(call.lines, i % 2 == 0 ? 1 : 0) << i;
    EXPECT_EQ(call.bytes, i % 2 == 0 ? 2 : 0) << i;
    EXPECT_TRUE(i % 2 == 0 ? head(call, 2) == Bytes(2, 0xFF) : untouched(call)) << i;
  }
  EXPECT_EQ(feed.flush().lines, 0);
}

TEST(QvChangeReso, AnExactRatioDownRepeatsTheLine) {
  Feed feed(openRecord(kGreySimple, {300, 600}, {300, 900}, 2));
  ASSERT_TRUE(feed.ready());
  const Call call = feed.line({5, 6});
  EXPECT_EQ(call.lines, 3);
  EXPECT_EQ(call.bytes, 12);
  EXPECT_EQ(head(call, 12), (Bytes{5, 5, 6, 6, 5, 5, 6, 6, 5, 5, 6, 6}));
}

// Color.

TEST(QvChangeReso, NothingComesBeforeTheThirdPlaneOfALine) {
  for (const Ratio x : {kSame, Ratio{300, 600}, Ratio{600, 300}}) {
    Feed feed(openRecord(kColor, x, kSame, 4));
    ASSERT_TRUE(feed.ready());
    const bool copies = x.in == x.out;
    for (int line = 0; line < 3; ++line) {
      for (const int kind : {4, 2, 3}) {
        const Call call = feed.line(Bytes(4, static_cast<std::uint8_t>(kind * 10)), kind);
        const int lines = kind == 3 && (copies || line == 2) ? 1 : 0;
        EXPECT_EQ(call.lines, lines) << line << " " << kind;
        EXPECT_EQ(call.bytes, lines * static_cast<int>(feed.record().outStrideBytes));
        if (!copies && lines == 0) {
          EXPECT_TRUE(untouched(call));
        } else if (!copies) {
          EXPECT_EQ(head(call, 6), (Bytes{20, 30, 40, 20, 30, 40}));
        }
      }
    }
  }
}

struct Order {
  std::int32_t colorOrder;
  int lineKind;
  Bytes out;  // of two pixels, red 1 and 4, green 2 and 5, blue 3 and 6
};
const Order kOrders[] = {
    {1, 5, {1, 2, 3, 4, 5, 6}}, {1, 6, {1, 2, 3, 4, 5, 6}}, {3, 5, {3, 2, 1, 6, 5, 4}},
    {3, 6, {3, 2, 1, 6, 5, 4}}, {0, 5, {1, 4, 2, 5, 3, 6}}, {0, 6, {1, 4, 2, 5, 3, 6}},
};

TEST(QvChangeReso, ColorsComeOutInTheOrderAskedForOnEveryPath) {
  for (const Order& row : kOrders) {
    const Bytes line = row.lineKind == 5 ? Bytes{1, 2, 3, 4, 5, 6} : Bytes{3, 2, 1, 6, 5, 4};
    for (const Ratio y : {kSame, Ratio{300, 600}}) {
      Feed feed(openRecord(kColor, kSame, y, 2, row.colorOrder));
      ASSERT_TRUE(feed.ready());
      EXPECT_EQ(feed.image({3, line}, row.lineKind)[0], row.out) << row.colorOrder << " " << row.lineKind;
    }
    Feed shrunk(openRecord(kColor, {600, 300}, kSame, 4, row.colorOrder));
    ASSERT_TRUE(shrunk.ready());
    Bytes wide;
    for (const std::size_t at : {0U, 0U, 3U, 3U})
      wide.insert(wide.end(), line.begin() + static_cast<std::ptrdiff_t>(at),
                  line.begin() + static_cast<std::ptrdiff_t>(at) + 3);
    EXPECT_EQ(shrunk.image({3, wide}, row.lineKind)[0], row.out) << row.colorOrder << " " << row.lineKind;
  }
}

TEST(QvChangeReso, PlanesThatComeOneByOneAreNotCompletedByTheFlush) {
  Feed feed(openRecord(kColor, {300, 600}, kSame, 4));
  ASSERT_TRUE(feed.ready());
  for (int line = 0; line < 4; ++line) {
    for (const int kind : {2, 3, 4}) feed.line(Bytes(4, 9), kind);
  }
  EXPECT_EQ(feed.flush(4).lines, 0);  // two more blue lines
}

// Shrinking.

TEST(QvChangeReso, AShrunkPixelIsTheRoundedMeanOfItsBox) {
  Feed feed(openRecord(kGrey, {600, 300}, {600, 300}, 4));
  ASSERT_TRUE(feed.ready());
  const std::vector<Bytes> out = feed.image({{10, 20, 1, 2}, {30, 41, 2, 1}, {0, 0, 0, 0}, {0, 0, 0, 0}});
  ASSERT_EQ(out.size(), 2U);
  EXPECT_EQ(out[0], (Bytes{25, 2}));  // 101 / 4 and 6 / 4, to the nearest, halves up
  EXPECT_EQ(out[1], (Bytes{0, 0}));
}

TEST(QvChangeReso, ABoxThatCutsPixelsTakesTheirShare) {
  Feed feed(openRecord(kGrey, {300, 200}, kSame, 3));
  ASSERT_TRUE(feed.ready());
  // Boxes 0 to 1.5 and 1.5 to 3.
  EXPECT_EQ(feed.image({3, Bytes{30, 90, 210}})[0], (Bytes{(30 * 2 + 90) / 3, (90 + 210 * 2) / 3}));
}

// Where lines go.

TEST(QvChangeReso, BottomUpLinesGoDownFromTheBuffer) {
  for (const Ratio x : {kSame, Ratio{300, 600}}) {
    CHRESO_OPEN open = openRecord(kGreySimple, x, {300, x.out}, 3);
    open.leftPadPixels = 2;
    CQvChangeReso resampler;
    ASSERT_TRUE(resampler.ChangeResoInit(&open));
    ASSERT_EQ(resampler.ChangeResoWriteStart(), 1);
    Bytes memory(64, 0xA5);
    const Bytes line = {1, 2, 3};
    CHRESO_WRITE write{5, line.data(), 3, memory.data() + 40, 40, true};
    int lines = 0;
    const int bytes = resampler.ChangeResoWrite(&write, &lines);
    Bytes want(64, 0xA5);
    for (int i = 0; i < lines; ++i) {
      std::uint8_t* at = want.data() + 40 - static_cast<int>(open.outStrideBytes) * (i + 1) + 2;
      for (unsigned long p = 0; p < open.outPixels; ++p) at[p] = line[p * 3 / open.outPixels];
    }
    EXPECT_EQ(lines, x.out / 300);
    EXPECT_EQ(bytes, lines * static_cast<int>(open.outStrideBytes));
    EXPECT_EQ(memory, want);
  }
}

TEST(QvChangeReso, TheInnerProductIsInThousandthsTowardsZero) {
  const std::int32_t a[4] = {1, 2, 3, 4};
  const std::int32_t b[4] = {1000, 1000, 1000, -2001};
  EXPECT_EQ(CQvChangeReso::naiseki(a, b), -2);  // -2004 / 1000
}

}  // namespace
