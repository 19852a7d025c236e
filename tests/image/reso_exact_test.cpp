#include "image/reso_exact.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

// Bit i of a run of bytes, the most significant bit of the first one being bit 0.
bool bitAt(const Bytes& bytes, std::size_t i) { return (bytes[i / 8] >> (7 - i % 8) & 1) != 0; }

// What the writer leaves in outBytes bytes of 0xA5 and one more behind them, and what it says that it wrote.
struct Result {
  Bytes out;
  std::size_t bytes;
};
Result write(int writer, const Bytes& source, std::size_t outBytes) {
  Result result{Bytes(outBytes + 1, 0xA5), 0};
  result.bytes = writeExact2Bit(writer, {source.data(), source.size(), result.out.data(), outBytes});
  EXPECT_EQ(result.out.back(), 0xA5);
  result.out.pop_back();
  return result;
}

TEST(ResoExactWriters, EveryByteIsDoubledAndTripledBitByBit) {
  for (unsigned b = 0; b < 256; ++b) {
    const Bytes source = {static_cast<std::uint8_t>(b)};
    for (const int times : {2, 3}) {
      const Result result = write(times - 1, source, static_cast<std::size_t>(times));
      EXPECT_EQ(result.bytes, static_cast<std::size_t>(times));
      for (std::size_t i = 0; i < static_cast<std::size_t>(times) * 8; ++i) {
        ASSERT_EQ(bitAt(result.out, i), bitAt(source, i / static_cast<std::size_t>(times))) << b << " bit " << i;
      }
    }
  }
}

TEST(ResoExactWriters, OneToFourWritesTheLowHalfFirst) {
  EXPECT_EQ(write(3, {0xF0}, 4).out, (Bytes{0x00, 0x00, 0xFF, 0xFF}));
  EXPECT_EQ(write(3, {0x81}, 4).out, (Bytes{0x00, 0x0F, 0xF0, 0x00}));
  for (unsigned b = 0; b < 256; ++b) {
    const Bytes swapped = {static_cast<std::uint8_t>(b << 4 | b >> 4)};
    const Result result = write(3, {static_cast<std::uint8_t>(b)}, 4);
    for (std::size_t i = 0; i < 32; ++i) ASSERT_EQ(bitAt(result.out, i), bitAt(swapped, i / 4)) << b << " bit " << i;
  }
}

TEST(ResoExactWriters, TwoToOneJoinsEveryPairOfBits) {
  for (unsigned b = 0; b < 256; ++b) {
    const Bytes source = {static_cast<std::uint8_t>(b), static_cast<std::uint8_t>(b ^ 0x5A)};
    const Result result = write(0, source, 1);
    EXPECT_EQ(result.bytes, 1U);
    for (std::size_t i = 0; i < 8; ++i) {
      ASSERT_EQ(bitAt(result.out, i), bitAt(source, 2 * i) || bitAt(source, 2 * i + 1)) << b << " bit " << i;
    }
  }
}

struct Rest {
  const char* name;
  int writer;
  Bytes source;
  std::size_t outBytes;
  Bytes out;
};
const Rest kRests[] = {
    {"1:2, half a group takes the later half", 1, {0xFF, 0x0F}, 3, {0xFF, 0xFF, 0xFF}},
    {"1:2, half a group takes the later half, not the earlier", 1, {0xFF, 0xF0}, 3, {0xFF, 0xFF, 0x00}},
    {"1:2, no input for the half", 1, {0xFF}, 3, {0xFF, 0xFF, 0xA5}},
    {"1:2, more input than room", 1, {0x00, 0x00, 0xFF}, 2, {0x00, 0x00}},
    {"1:3, one more byte is the first of three", 2, {0x00, 0x9F}, 4, {0x00, 0x00, 0x00, 0xE0}},
    {"1:3, two more bytes", 2, {0x00, 0x99}, 5, {0x00, 0x00, 0x00, 0xE0, 0x7E}},
    {"1:3, no input for them", 2, {0x00}, 5, {0x00, 0x00, 0x00, 0xA5, 0xA5}},
    {"1:4, one more byte is the second of the low half", 3, {0x00, 0xC2}, 5, {0x00, 0x00, 0x00, 0x00, 0xF0}},
    {"1:4, two more bytes are the low half", 3, {0x00, 0x36}, 6, {0x00, 0x00, 0x00, 0x00, 0x0F, 0xF0}},
    {"1:4, three more bytes end with the later half of the high half",
     3,
     {0x00, 0x36},
     7,
     {0x00, 0x00, 0x00, 0x00, 0x0F, 0xF0, 0xFF}},
    {"1:4, no input for them", 3, {0x00}, 7, {0x00, 0x00, 0x00, 0x00, 0xA5, 0xA5, 0xA5}},
    {"2:1, an odd byte of input is left out", 0, {0xFF, 0xFF, 0xFF}, 2, {0xFF, 0xA5}},
    {"2:1, more input than room", 0, {0xFF, 0xFF, 0x00, 0x00}, 1, {0xFF}},
};

TEST(ResoExactWriters, TheRestOfALineThatIsNoWholeGroup) {
  for (const Rest& row : kRests) EXPECT_EQ(write(row.writer, row.source, row.outBytes).out, row.out) << row.name;
}

TEST(ResoExactWriters, OneToOneCopiesTheLine) {
  Bytes out(5, 0xA5);
  const Bytes source = {1, 2, 3};
  EXPECT_EQ(writeExact2Bit(4, {source.data(), source.size(), out.data(), 5}), 3U);
  EXPECT_EQ(out, (Bytes{1, 2, 3, 0xA5, 0xA5}));
}

struct Grey {
  const char* name;
  bool larger;
  std::size_t factor;
  Bytes source;
  std::size_t outBytes;
  Bytes out;
};
const Grey kGreys[] = {
    {"each pixel twice", true, 2, {1, 2, 3}, 6, {1, 1, 2, 2, 3, 3}},
    {"each pixel four times, then what there is room for", true, 4, {1, 2, 3}, 10, {1, 1, 1, 1, 2, 2, 2, 2, 3, 3}},
    {"no pixel is left for the room", true, 3, {1, 2}, 8, {1, 1, 1, 2, 2, 2, 0xA5, 0xA5}},
    {"room for less than a pixel", true, 3, {1, 2}, 2, {1, 1}},
    {"every second pixel", false, 2, {1, 2, 3, 4, 5}, 3, {1, 3, 0xA5}},
    {"every pixel", false, 1, {1, 2, 3}, 3, {1, 2, 3}},
    {"more pixels than room", false, 1, {1, 2, 3}, 2, {1, 2}},
    {"no pixels", true, 2, {}, 3, {0xA5, 0xA5, 0xA5}},
};

TEST(ResoExactWriters, GreyPixelsAreRepeatedOrLeftOut) {
  for (const Grey& row : kGreys) {
    Bytes out(row.outBytes + 1, 0xA5);
    const ExactLine line{row.source.data(), row.source.size(), out.data(), row.outBytes};
    row.larger ? write8BitX_1toN(line, row.factor) : write8BitX_Nto1(line, row.factor);
    EXPECT_EQ(out.back(), 0xA5) << row.name;
    out.pop_back();
    EXPECT_EQ(out, row.out) << row.name;
  }
}

}  // namespace
