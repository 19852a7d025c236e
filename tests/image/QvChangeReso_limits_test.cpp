// What holds for every image, and what happens to settings and buffers out of bounds.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>

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

constexpr Ratio kRatios[] = {{300, 300}, {300, 600}, {150, 600}, {100, 300}, {200, 300}, {300, 400}, {600, 300},
                             {300, 200}, {400, 300}, {600, 200}, {300, 199}, {75, 2400}, {2400, 75}};
constexpr std::uint32_t kFormats[] = {kBits, kGrey, kGreySimple, kColor};

Bytes someLine(std::size_t size, unsigned seed) {
  Bytes bytes(size);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>((seed = seed * 1664525U + 1013904223U) >> 24);
  return bytes;
}

std::size_t lineBytes(std::uint32_t format, std::size_t width) {
  return format == kColor ? 3 * width : format == kBits ? (width + 7) / 8 : width;
}

// Calls check(format, x, y, order) for every conversion that is served.
template <class Check>
void forEachConversion(Check check) {
  int served = 0;
  for (const std::uint32_t format : kFormats) {
    for (const Ratio x : kRatios) {
      for (const Ratio y : kRatios) {
        for (const int order : {1, 3, 0}) {
          if (format != kColor && order != 1) continue;
          CHRESO_OPEN open = openRecord(format, x, y, 48, order);
          if (!CQvChangeReso().ChangeResoInit(&open)) continue;
          ++served;
          SCOPED_TRACE(testing::Message() << std::hex << format << std::dec << " x " << x.in << ":" << x.out << " y "
                                          << y.in << ":" << y.out << " order " << order);
          check(openRecord(format, x, y, 48, order));
          if (testing::Test::HasFatalFailure()) return;
        }
      }
    }
  }
  EXPECT_GT(served, 400);
}

TEST(ResoProperties, AConstantImageStaysConstantOffTheCubicPathAndFollowsTheWeightsOnIt) {
  for (const int value : {0, 1, 77, 254, 255}) {
    forEachConversion([value](const CHRESO_OPEN& open) {
      if ((open.formatFlags & 0x100U) != 0 && value != 0 && value != 255) return;
      Feed feed(open, static_cast<std::uint8_t>(value));
      const ChangeResoSetup& setup = feed.resampler().setup();
      const auto lines =
          feed.image(std::vector<Bytes>(5, Bytes(lineBytes(open.formatFlags, 48), static_cast<std::uint8_t>(value))));
      ASSERT_FALSE(lines.empty());
      if (setup.path != ResoPath::kEnlarge || (open.formatFlags & 0x100U) != 0) {
        for (const Bytes& line : lines) ASSERT_EQ(line, Bytes(line.size(), static_cast<std::uint8_t>(value)));
        return;
      }
      // Every sum of weights that some phase has, and the value itself where an output line falls on an input line.
      const auto sumOf = [](const ChangeResoSetup::CubicRow& row) { return row.w[0] + row.w[1] + row.w[2] + row.w[3]; };
      std::vector<bool> allowed(256);
      allowed[static_cast<std::size_t>(value)] = true;
      for (int i = 0; i < setup.rateXM; ++i) {
        for (int j = 0; j < setup.rateYM; ++j) {
          const long sum = static_cast<long>(value) * sumOf(setup.tblX[i]) * sumOf(setup.tblY[j]);
          allowed[static_cast<std::size_t>(std::clamp(sum / 1000000, 0L, 255L))] = true;
        }
      }
      for (const Bytes& line : lines) {
        for (const std::uint8_t byte : line) ASSERT_TRUE(allowed[byte]) << int{byte};
      }
    });
  }
}

TEST(ResoProperties, WhiteBecomes254WhereTheWeightsMissAThousandth) {
  Feed feed(openRecord(kGrey, {200, 300}, {300, 300}, 6));
  EXPECT_EQ(feed.image({3, Bytes(6, 255)})[0], (Bytes{255, 254, 254, 255, 254, 254, 255, 254, 254}));
}

TEST(ResoProperties, EqualResolutionsCopyTheImage) {
  for (const std::uint32_t format : kFormats) {
    for (const int order : {1, 3}) {
      Feed feed(openRecord(format, {300, 300}, {600, 600}, 33, order));
      std::vector<Bytes> lines;
      for (unsigned i = 0; i < 7; ++i) lines.push_back(someLine(lineBytes(format, 33), i));
      EXPECT_EQ(feed.image(lines, order == 1 ? 5 : 6), lines) << std::hex << format;
    }
  }
}

TEST(ResoProperties, TheNumberOfLinesIsThatOfTheRatio) {
  forEachConversion([](const CHRESO_OPEN& open) {
    for (const long count : {3L, 4L, 7L, 40L}) {
      Feed feed(open);
      const ChangeResoSetup& setup = feed.resampler().setup();
      const auto n = static_cast<long>(setup.rateYN);
      const auto m = static_cast<long>(setup.rateYM);
      long want = (count * m + n - 1) / n;
      if (setup.path == ResoPath::kCopy) want = count;
      const Bytes line = someLine(lineBytes(open.formatFlags, 48), 1);
      long lines = 0;
      for (long i = 0; i < count; ++i) lines += feed.line(line).lines;
      const Call last = feed.flush();
      ASSERT_EQ(lines + last.lines, want) << count << " lines";
      ASSERT_EQ(last.bytes, last.lines * static_cast<int>(feed.record().outStrideBytes));
    }
  });
}

TEST(ResoProperties, TheAnswerDoesNotDependOnWhatTheBufferHeld) {
  forEachConversion([](const CHRESO_OPEN& open) {
    CHRESO_OPEN padded = open;
    padded.leftPadPixels = 9;
    padded.alignOutLine = true;
    Feed zeros(padded, 0x00);
    Feed ones(padded, 0xFF);
    for (unsigned i = 0; i < 6; ++i) {
      const Bytes line = someLine(lineBytes(open.formatFlags, 48), i);
      const Call a = i < 5 ? zeros.line(line) : zeros.flush();
      const Call b = i < 5 ? ones.line(line) : ones.flush();
      ASSERT_EQ(a.lines, b.lines);
      for (std::size_t at = 0; at < a.buffer.size(); ++at) {
        // What differs was not written, in either.
        ASSERT_TRUE(a.buffer[at] == b.buffer[at] || (a.buffer[at] == 0x00 && b.buffer[at] == 0xFF)) << at;
      }
      const std::size_t lineEnd = zeros.record().outStrideBytes;
      const std::size_t left = zeros.resampler().setup().leftOffsetBytes;
      const ChangeResoSetup& setup = zeros.resampler().setup();
      std::size_t used = setup.outPixels;
      // The rest of an enlarged one-bit line need not start a byte.
      if (open.formatFlags == kBits) used = setup.fullBlocksX * static_cast<std::size_t>(setup.rateXM) / 8;
      if (open.formatFlags == kColor && open.colorOrder != 0) used *= 3;
      for (int row = 0; row < a.lines; ++row) {
        for (std::size_t at = left; at < left + used; ++at) {
          const std::size_t byte = lineEnd * static_cast<std::size_t>(row) + at;
          ASSERT_EQ(a.buffer[byte], b.buffer[byte]) << "line " << row << " byte " << at;
        }
      }
    }
  });
}

// Bounds.

TEST(ResoLimits, WidthZeroGivesEmptyLines) {
  for (const std::uint32_t format : kFormats) {
    for (const Ratio x : kRatios) {
      CHRESO_OPEN open = openRecord(format, x, {300, 600}, 0);
      Feed feed(open);
      if (!feed.ready()) continue;
      for (int i = 0; i < 5; ++i) {
        const Call call = i < 4 ? feed.line(Bytes(3, 255)) : feed.flush();
        if (format == kBits && x.in == x.out) continue;  // copies the bytes of the line, whatever the width
        EXPECT_TRUE(std::all_of(call.buffer.begin(), call.buffer.end(), [](auto byte) { return byte == 0xA5; }));
      }
    }
  }
}

TEST(ResoLimits, WidthsBeyondAnyPageAreRefused) {
  for (const unsigned long width : {1UL << 24, 1UL << 31, 1UL << 32, 1UL << 62, ULONG_MAX / 3, ULONG_MAX}) {
    for (const std::uint32_t format : kFormats) {
      for (const Ratio ratio : {Ratio{300, 300}, Ratio{300, 600}, Ratio{600, 300}, Ratio{200, 300}, Ratio{300, 200}}) {
        CHRESO_OPEN open = openRecord(format, ratio, ratio, width);
        EXPECT_FALSE(CQvChangeReso().ChangeResoInit(&open)) << width;
      }
    }
  }
}

TEST(ResoLimits, NothingIsWrittenOutsideATinyBuffer) {
  forEachConversion([](const CHRESO_OPEN& open) {
    for (const bool bottomUp : {false, true}) {
      for (const std::size_t size : {0U, 1U, 7U, 60U}) {
        CHRESO_OPEN record = open;
        CQvChangeReso resampler;
        ASSERT_TRUE(resampler.ChangeResoInit(&record));
        ASSERT_EQ(resampler.ChangeResoWriteStart(), 1);
        // A block of just that size: a sanitizer sees every byte outside it.
        const std::unique_ptr<unsigned char[]> buffer(new unsigned char[size + 1]);
        const Bytes line = someLine(lineBytes(open.formatFlags, 48), 5);
        unsigned char* const at = buffer.get() + (bottomUp ? size + 1 : 0);
        CHRESO_WRITE write{5, line.data(), line.size(), at, size, bottomUp};
        unsigned char& guard = bottomUp ? buffer[0] : buffer[size];
        guard = 0x5A;
        int lines = 0;
        for (int i = 0; i < 4; ++i) resampler.ChangeResoWrite(&write, &lines);
        resampler.ChangeResoWriteEnd(&write, &lines);
        ASSERT_EQ(guard, 0x5A);
      }
    }
  });
}

TEST(ResoLimits, StridesAndPadsOfAnySizeStayWithinTheBuffer) {
  for (const unsigned long value : {1UL, 5UL, 1UL << 31, 1UL << 63, ULONG_MAX / 3, ULONG_MAX - 3, ULONG_MAX}) {
    for (const bool asPad : {false, true}) {
      for (const bool bottomUp : {false, true}) {
        forEachConversion([&](const CHRESO_OPEN& open) {
          CHRESO_OPEN record = open;
          (asPad ? record.leftPadPixels : record.fixedOutLineBytes) = value;
          CQvChangeReso resampler;
          if (!resampler.ChangeResoInit(&record)) return;
          ASSERT_EQ(resampler.ChangeResoWriteStart(), 1);
          const std::unique_ptr<unsigned char[]> buffer(new unsigned char[200]());
          const Bytes line = someLine(lineBytes(open.formatFlags, 48), 5);
          CHRESO_WRITE write{5, line.data(), line.size(), buffer.get() + (bottomUp ? 200 : 0), 200, bottomUp};
          int lines = 0;
          for (int i = 0; i < 4; ++i) resampler.ChangeResoWrite(&write, &lines);
          resampler.ChangeResoWriteEnd(&write, &lines);
        });
      }
    }
  }
}

TEST(ResoLimits, ABufferIsNotNeededForTheFlushNorForALine) {
  forEachConversion([](const CHRESO_OPEN& open) {
    CHRESO_OPEN record = open;
    CQvChangeReso resampler;
    ASSERT_TRUE(resampler.ChangeResoInit(&record));
    ASSERT_EQ(resampler.ChangeResoWriteStart(), 1);
    const Bytes line = someLine(lineBytes(open.formatFlags, 48), 5);
    CHRESO_WRITE write{5, line.data(), line.size(), nullptr, 0, false};
    int lines = 0;
    for (int i = 0; i < 4; ++i) resampler.ChangeResoWrite(&write, &lines);
    lines = 9;
    EXPECT_EQ(resampler.ChangeResoWriteEnd(&write, &lines), 0);
    EXPECT_EQ(lines, 0);
  });
}

TEST(ResoLimits, CallsOutOfOrderDoNothing) {
  Bytes buffer(4000, 0xA5);
  const Bytes line(144, 7);
  CHRESO_WRITE write{5, line.data(), line.size(), buffer.data(), buffer.size(), false};
  int lines = 9;
  CQvChangeReso resampler;
  EXPECT_EQ(resampler.ChangeResoWrite(&write, &lines), 0);  // before the set-up
  EXPECT_EQ(lines, 0);
  EXPECT_EQ(resampler.ChangeResoWriteEnd(&write, &lines), 0);
  EXPECT_FALSE(resampler.ChangeResoInit(nullptr));

  CHRESO_OPEN open = openRecord(kColor, {300, 600}, {300, 600}, 48);
  ASSERT_TRUE(resampler.ChangeResoInit(&open));
  for (int i = 0; i < 5; ++i) EXPECT_EQ(resampler.ChangeResoWrite(&write, &lines), 0);  // before the start
  EXPECT_EQ(resampler.ChangeResoWriteStart(), 1);
  for (int i = 0; i < 5; ++i) resampler.ChangeResoWrite(&write, &lines);
  EXPECT_GT(resampler.ChangeResoWriteEnd(&write, &lines), 0);
  EXPECT_EQ(resampler.ChangeResoWriteEnd(&write, &lines), 0);  // a second flush
  EXPECT_EQ(resampler.ChangeResoClose(), 1);
  EXPECT_EQ(resampler.ChangeResoClose(), 1);
  EXPECT_EQ(resampler.ChangeResoWrite(&write, &lines), 0);  // after the end
  open = openRecord(kColor, {300, 600}, {600, 100}, 48);
  EXPECT_FALSE(resampler.ChangeResoInit(&open));
  EXPECT_EQ(resampler.ChangeResoWrite(&write, &lines), 0);  // after a refusal
}

TEST(ResoLimits, AShortLineEndsInZeros) {
  Feed grey(openRecord(kGrey, {300, 300}, {300, 600}, 6));
  EXPECT_EQ(grey.image({3, Bytes{9, 8, 7}})[0], (Bytes{9, 8, 7, 0, 0, 0}));
  // A grey line where color is expected fills the first third.
  Feed color(openRecord(kColor, {300, 300}, {300, 600}, 6));
  EXPECT_EQ(color.image({3, Bytes(7, 50)})[0], (Bytes{50, 50, 50, 50, 50, 50, 50, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  Feed bits(openRecord(kBits, {300, 300}, {200, 300}, 24));
  EXPECT_EQ(bits.image({3, Bytes{0xFF}})[0], (Bytes{0xFF, 0, 0}));
}

}  // namespace
