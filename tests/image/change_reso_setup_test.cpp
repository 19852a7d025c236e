#include "image/change_reso_setup.h"

#include <gtest/gtest.h>

#include <cctype>
#include <climits>
#include <string>

#include "tests/image/reso_feed.h"

using reso_feed::kBits;
using reso_feed::kColor;
using reso_feed::kGrey;
using reso_feed::kGreySimple;
using reso_feed::openRecord;

namespace {

TEST(ChangeResoSetup, RatesAreReducedToTheSmallestWholePair) {
  struct Row {
    int in, out, n, m;
  };
  for (const Row& row : {Row{300, 300, 1, 1}, Row{300, 400, 3, 4}, Row{300, 200, 3, 2}, Row{300, 600, 1, 2},
                         Row{600, 300, 2, 1}, Row{75, 2400, 1, 32}, Row{2400, 75, 32, 1}, Row{100, 3300, 1, 33},
                         Row{200, 150, 4, 3}, Row{99, 98, 99, 98}, Row{199, 398, 1, 2},
                         // No n below 100 gives a whole number: the pair stays as it is.
                         Row{199, 300, 199, 300}, Row{300, 199, 300, 199}, Row{202, 200, 202, 200}}) {
    int n = 0;
    int m = 0;
    EXPECT_TRUE(ChangeResoSetup::GetRateNM(row.in, row.out, &n, &m));
    EXPECT_EQ(n, row.n) << row.in << " to " << row.out;
    EXPECT_EQ(m, row.m) << row.in << " to " << row.out;
  }
}

TEST(ChangeResoSetup, ResolutionsBelowOneAreRefused) {
  int n = 0;
  int m = 0;
  for (const int bad : {0, -1, -300, INT_MIN}) {
    EXPECT_FALSE(ChangeResoSetup::GetRateNM(bad, 300, &n, &m)) << bad;
    EXPECT_FALSE(ChangeResoSetup::GetRateNM(300, bad, &n, &m)) << bad;
    EXPECT_FALSE(ChangeResoSetup::GetRateNM(bad, bad, &n, &m)) << bad;
    for (const std::uint32_t format : {kBits, kGrey, kGreySimple, kColor}) {
      for (int field = 0; field < 4; ++field) {
        CHRESO_OPEN open = openRecord(format, {300, 300}, {300, 300}, 10);
        (field == 0 ? open.inResoX : field == 1 ? open.inResoY : field == 2 ? open.outResoX : open.outResoY) = bad;
        ChangeResoSetup setup;
        EXPECT_FALSE(setup.ChangeResoInit(&open)) << std::hex << format << std::dec << " field " << field;
      }
    }
  }
}

TEST(ChangeResoSetup, RatesBeyondAnIntegerAreRefused) {
  int n = 0;
  int m = 0;
  EXPECT_FALSE(ChangeResoSetup::GetRateNM(1, INT_MAX, &n, &m));  // 2147483648 in single precision
  EXPECT_TRUE(ChangeResoSetup::GetRateNM(INT_MAX, INT_MAX, &n, &m));
  EXPECT_EQ(n, 1);
  EXPECT_EQ(m, 1);
}

TEST(ChangeResoSetup, ExactRatesHaveCodes) {
  struct Row {
    int n, m, code;
  };
  for (const Row& row : {Row{1, 1, 1}, Row{1, 2, 2}, Row{1, 3, 3}, Row{1, 4, 4}, Row{2, 1, 5}, Row{1, 5, 0},
                         Row{3, 1, 0}, Row{4, 1, 0}, Row{2, 3, 0}, Row{3, 2, 0}}) {
    int code = -1;
    ChangeResoSetup::SetTblRate(row.n, row.m, &code);
    EXPECT_EQ(code, row.code) << row.n << ":" << row.m;
  }
}

struct Choice {
  const char* name;
  std::uint32_t format;
  reso_feed::Ratio x, y;
  std::int32_t order;
  bool served;
  int writeKind, second, path;
};
// second is writer2Bit, writer8Bit or writerNtoM, whichever the path uses.
constexpr Choice kChoices[] = {
    {"equal resolutions, R,G,B", kColor, {300, 300}, {300, 300}, 1, true, 5, 0, 1},
    {"equal resolutions, B,G,R", kColor, {300, 300}, {300, 300}, 3, true, 6, 0, 1},
    {"equal resolutions, planes", kColor, {300, 300}, {300, 300}, 0, true, 7, 0, 1},
    {"equal resolutions, order 2", kColor, {300, 300}, {300, 300}, 2, true, 7, 0, 1},
    {"equal resolutions, grey", kGrey, {300, 300}, {300, 300}, 1, true, 5, 0, 1},
    {"equal resolutions, one bit", kBits, {199, 199}, {600, 600}, 3, true, 6, 0, 1},
    {"equal resolutions, simple grey", kGreySimple, {300, 300}, {300, 300}, 4, true, 7, 0, 1},

    {"one bit 1:2", kBits, {300, 600}, {300, 600}, 1, true, 0, 1, 2},
    {"one bit 1:3", kBits, {100, 300}, {300, 600}, 1, true, 0, 2, 2},
    {"one bit 1:4", kBits, {150, 600}, {300, 300}, 1, true, 0, 3, 2},
    {"one bit 2:1", kBits, {300, 150}, {300, 150}, 1, true, 0, 0, 2},
    {"one bit 1:1 across", kBits, {300, 300}, {300, 150}, 1, true, 0, 4, 2},
    {"one bit, 2:3 down", kBits, {300, 600}, {200, 300}, 1, true, 1, 0, 3},
    {"one bit, 1:1 and 2:3", kBits, {300, 300}, {200, 300}, 1, true, 1, 0, 3},
    {"one bit, 2:3 across", kBits, {200, 300}, {300, 600}, 1, true, 1, 0, 3},
    {"one bit, 1:5 has no table", kBits, {100, 500}, {300, 300}, 1, true, 1, 0, 3},
    {"one bit, 3:2 across", kBits, {300, 200}, {300, 600}, 1, true, 1, 1, 4},
    {"one bit, 2:1 across and 2:3 down", kBits, {600, 300}, {200, 300}, 1, true, 1, 1, 4},
    {"one bit, 3:1 down", kBits, {300, 600}, {600, 200}, 1, false, 0, 0, 0},
    {"one bit, 3:1 across", kBits, {600, 200}, {300, 300}, 1, true, 1, 1, 4},

    {"simple grey 1:2", kGreySimple, {300, 600}, {300, 300}, 1, true, 2, 0, 2},
    {"simple grey 1:3", kGreySimple, {100, 300}, {300, 600}, 1, true, 2, 0, 2},
    {"simple grey 1:4", kGreySimple, {150, 600}, {600, 300}, 1, true, 2, 0, 2},
    {"simple grey 2:1", kGreySimple, {600, 300}, {300, 300}, 1, true, 2, 1, 2},
    {"simple grey 1:1 across", kGreySimple, {300, 300}, {300, 600}, 1, true, 2, 1, 2},
    {"simple grey, 2:3 across", kGreySimple, {200, 300}, {300, 600}, 1, false, 0, 0, 0},
    {"simple grey, 2:3 down", kGreySimple, {300, 600}, {200, 300}, 1, false, 0, 0, 0},
    {"simple grey, 3:1 down", kGreySimple, {300, 300}, {600, 200}, 1, false, 0, 0, 0},

    {"grey 1:2", kGrey, {300, 600}, {300, 600}, 1, true, 3, 2, 3},
    {"grey 1:1 across", kGrey, {300, 300}, {300, 600}, 1, true, 3, 2, 3},
    {"grey 2:1 down", kGrey, {300, 600}, {600, 300}, 1, true, 3, 2, 3},
    {"grey 2:1", kGrey, {600, 300}, {600, 300}, 1, true, 3, 3, 4},
    {"grey 3:2 across, 1:2 down", kGrey, {300, 200}, {300, 600}, 1, true, 3, 3, 4},
    {"grey 3:1 down", kGrey, {300, 300}, {600, 200}, 1, false, 0, 0, 0},
    {"grey 3:1 across", kGrey, {600, 200}, {300, 300}, 1, true, 3, 3, 4},

    {"color 1:2, R,G,B", kColor, {300, 600}, {300, 600}, 1, true, 4, 4, 3},
    {"color 1:2, B,G,R", kColor, {300, 600}, {300, 600}, 3, true, 4, 5, 3},
    {"color 1:2, planes", kColor, {300, 600}, {300, 600}, 0, true, 4, 6, 3},
    {"color 1:1 across, planes", kColor, {300, 300}, {300, 600}, -1, true, 4, 6, 3},
    {"color 2:1, R,G,B", kColor, {600, 300}, {600, 300}, 1, true, 4, 7, 4},
    {"color 2:1, B,G,R", kColor, {600, 300}, {600, 300}, 3, true, 4, 8, 4},
    {"color 2:1, planes", kColor, {600, 300}, {600, 300}, 2, true, 4, 9, 4},
    {"color 3:1 down", kColor, {300, 600}, {600, 200}, 1, false, 0, 0, 0},
};

class WriterChoice : public testing::TestWithParam<Choice> {};

TEST_P(WriterChoice, FollowsRatioDepthAndOrder) {
  const Choice& row = GetParam();
  CHRESO_OPEN open = openRecord(row.format, row.x, row.y, 40, row.order);
  ChangeResoSetup setup;
  ASSERT_EQ(setup.ChangeResoInit(&open), row.served);
  if (!row.served) return;
  EXPECT_EQ(static_cast<int>(setup.writeKind), row.writeKind);
  EXPECT_EQ(static_cast<int>(setup.path), row.path);
  EXPECT_EQ(row.writeKind == 0   ? setup.writer2Bit
            : row.writeKind == 2 ? setup.writer8Bit
                                 : setup.writerNtoM,
            row.second);
  EXPECT_EQ(setup.hasRing(), row.path >= 3);
  EXPECT_EQ(setup.saveLineCount, row.path >= 3 ? 4U : 0U);
  EXPECT_EQ(setup.saveLineBytes, row.path < 3 ? 0U : row.format == kColor ? 120U : 40U);
}

INSTANTIATE_TEST_SUITE_P(Rows, WriterChoice, testing::ValuesIn(kChoices), [](const auto& row) {
  std::string name;
  for (const char* c = row.param.name; *c != 0; ++c) name += std::isalnum(static_cast<unsigned char>(*c)) ? *c : '_';
  return name;
});

TEST(ChangeResoSetup, UnknownDepthsAreRefused) {
  for (const std::uint32_t format : {0U, 0x1U, 0x300U, 0x500U, 0x800U}) {
    for (const reso_feed::Ratio ratio : {reso_feed::Ratio{300, 300}, {300, 600}, {600, 300}}) {
      CHRESO_OPEN open = openRecord(format, ratio, ratio, 10);
      ChangeResoSetup setup;
      EXPECT_FALSE(setup.ChangeResoInit(&open)) << std::hex << format;
    }
  }
}

TEST(ChangeResoSetup, ThirtyTwoPhasesAreServedAndThirtyThreeAreNot) {
  struct Row {
    reso_feed::Ratio x, y;
    bool served;
  };
  for (const Row& row :
       {Row{{100, 3200}, {100, 100}, true}, Row{{100, 3300}, {100, 100}, false}, Row{{100, 100}, {100, 3200}, true},
        Row{{100, 100}, {100, 3300}, false}, Row{{199, 300}, {300, 300}, false}, Row{{300, 300}, {199, 300}, false},
        // Where the line gets smaller no table is built, and any number of phases will do.
        Row{{300, 199}, {300, 300}, true}, Row{{300, 199}, {300, 199}, true}, Row{{300, 150}, {100, 3300}, true},
        Row{{300, 199}, {199, 300}, true}}) {
    for (const std::uint32_t format : {kBits, kGrey, kColor}) {
      CHRESO_OPEN open = openRecord(format, row.x, row.y, 10);
      ChangeResoSetup setup;
      EXPECT_EQ(setup.ChangeResoInit(&open), row.served)
          << row.x.in << ":" << row.x.out << " " << row.y.in << ":" << row.y.out << std::hex << " " << format;
    }
  }
}

TEST(ChangeResoSetup, TheStepAcrossIsZeroWhereTheLineGetsLargerAndAThousandWhereItStays) {
  struct Row {
    reso_feed::Ratio x;
    int step;
  };
  for (const Row& row : {Row{{300, 600}, 0}, Row{{200, 300}, 0}, Row{{300, 400}, 0}, Row{{300, 300}, 1000},
                         Row{{300, 200}, 1000}, Row{{600, 200}, 3000}}) {
    CHRESO_OPEN open = openRecord(kGrey, row.x, {300, 600}, 10);
    ChangeResoSetup setup;
    ASSERT_TRUE(setup.ChangeResoInit(&open));
    EXPECT_EQ(setup.stepX1000, row.step) << row.x.in << ":" << row.x.out;
    EXPECT_EQ(setup.stepY, 0.5F);
  }
}

struct Geometry {
  const char* name;
  std::uint32_t format;
  reso_feed::Ratio x;
  unsigned long width;
  bool align;
  unsigned long fixed, pad;
  unsigned long lineBytes, pixels, left, stride, stridePixels;
};
constexpr Geometry kGeometries[] = {
    {"24 bits", kColor, {200, 300}, 7, false, 0, 0, 31, 10, 0, 31, 10},
    {"24 bits, aligned", kColor, {200, 300}, 7, true, 0, 2, 36, 10, 6, 42, 14},
    {"24 bits, a wide stride", kColor, {300, 600}, 4, false, 50, 1, 24, 8, 3, 50, 16},
    {"24 bits, cut", kColor, {300, 600}, 4, false, 20, 1, 17, 5, 3, 20, 6},
    {"24 bits, aligned and cut to more pixels than the ratio gives",
     kColor,
     {300, 300},
     5,
     true,
     23,
     0,
     23,
     7,
     0,
     23,
     7},
    {"8 bits", kGrey, {200, 300}, 7, false, 0, 5, 10, 10, 5, 15, 15},
    {"8 bits, aligned", kGrey, {200, 300}, 7, true, 0, 5, 12, 10, 5, 17, 17},
    {"8 bits, cut", kGrey, {300, 600}, 7, false, 10, 1, 9, 9, 1, 10, 10},
    {"1 bit", kBits, {300, 600}, 9, false, 0, 9, 4, 18, 2, 6, 48},
    {"1 bit, aligned", kBits, {300, 900}, 9, true, 0, 0, 8, 27, 0, 8, 64},
    {"1 bit, cut", kBits, {300, 600}, 9, false, 4, 3, 3, 24, 1, 4, 32},
};

TEST(ChangeResoSetup, TheLineFollowsWidthRatioAlignmentStrideAndPad) {
  for (const Geometry& row : kGeometries) {
    SCOPED_TRACE(row.name);
    CHRESO_OPEN open = openRecord(row.format, row.x, {300, 600}, row.width);
    open.alignOutLine = row.align;
    open.fixedOutLineBytes = row.fixed;
    open.leftPadPixels = row.pad;
    ChangeResoSetup setup;
    ASSERT_TRUE(setup.ChangeResoInit(&open));
    EXPECT_EQ(setup.outLineBytes, row.lineBytes);
    EXPECT_EQ(setup.outPixels, row.pixels);
    EXPECT_EQ(setup.leftOffsetBytes, row.left);
    EXPECT_EQ(setup.outStride, row.stride);
    EXPECT_EQ(setup.outStridePixels, row.stridePixels);
    EXPECT_EQ(open.outStrideBytes, row.stride);
    EXPECT_EQ(open.outPixels, row.pixels);
    EXPECT_EQ(setup.fullBlocksX, row.pixels / static_cast<unsigned long>(setup.rateXM));
    EXPECT_EQ(setup.restPixelsX, row.pixels % static_cast<unsigned long>(setup.rateXM));
  }
}

TEST(ChangeResoSetup, AOneBitLineCanBeAByteShortOfItsPixels) {
  struct Row {
    unsigned long width;
    reso_feed::Ratio x;
    unsigned long lineBytes, pixels;
  };
  for (const Row& row : {Row{2480, {300, 400}, 413, 3306}, Row{2550, {200, 300}, 478, 3825}}) {
    CHRESO_OPEN open = openRecord(kBits, row.x, {300, 300}, row.width);
    ChangeResoSetup setup;
    ASSERT_TRUE(setup.ChangeResoInit(&open));
    EXPECT_EQ(open.outStrideBytes, row.lineBytes);
    EXPECT_EQ(open.outPixels, row.pixels);
    EXPECT_EQ((row.pixels + 7) / 8, row.lineBytes + 1);
  }
}

TEST(ChangeResoSetup, TheBufferHoldsTheLinesOfOneInputLineAndTwiceThatOnTheRingPaths) {
  struct Row {
    std::uint32_t format;
    reso_feed::Ratio x, y;
    unsigned long size;
  };
  for (const Row& row : {Row{kGrey, {300, 300}, {300, 300}, 40}, Row{kGreySimple, {300, 600}, {300, 900}, 3 * 80},
                         Row{kBits, {300, 600}, {600, 300}, 10}, Row{kGrey, {300, 600}, {300, 600}, 2 * 2 * 80},
                         Row{kGrey, {300, 600}, {200, 300}, 2 * 2 * 80}, Row{kGrey, {300, 150}, {600, 300}, 2 * 20},
                         Row{kColor, {300, 600}, {300, 400}, 2 * 2 * 240}}) {
    CHRESO_OPEN open = openRecord(row.format, row.x, row.y, 40);
    ChangeResoSetup setup;
    ASSERT_TRUE(setup.ChangeResoInit(&open));
    EXPECT_EQ(open.writeBufferSize, row.size);
  }
}

TEST(ChangeResoSetup, WeightsAreTheKernelInTruncatedThousandths) {
  CHRESO_OPEN open = openRecord(kGrey, {200, 300}, {300, 600}, 40);
  ChangeResoSetup setup;
  ASSERT_TRUE(setup.ChangeResoInit(&open));
  // Thirds do not add up to a thousand: white does not stay white.
  const std::int32_t thirds[3][4] = {{0, 1000, 0, 0}, {-74, 407, 814, -148}, {-148, 814, 407, -74}};
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 4; ++k) EXPECT_EQ(setup.tblX[i].w[k], thirds[i][k]) << i << " " << k;
  }
  EXPECT_FLOAT_EQ(setup.tblX[2].frac, 1.0F / 3);
  const std::int32_t halves[2][4] = {{0, 1000, 0, 0}, {-125, 625, 625, -125}};
  for (int i = 0; i < 2; ++i) {
    for (int k = 0; k < 4; ++k) EXPECT_EQ(setup.tblY[i].w[k], halves[i][k]) << i << " " << k;
  }
}

TEST(ChangeResoSetup, TheKernelIsOneAtItsCentreAndZeroAtWholeNumbers) {
  EXPECT_EQ(ChangeResoSetup::kernel(0.0F), 1.0F);
  EXPECT_EQ(ChangeResoSetup::kernel(0.5F), 0.625F);
  EXPECT_EQ(ChangeResoSetup::kernel(1.0F), 0.0F);
  EXPECT_EQ(ChangeResoSetup::kernel(1.5F), -0.125F);
  EXPECT_EQ(ChangeResoSetup::kernel(2.0F), 0.0F);
  EXPECT_EQ(ChangeResoSetup::kernel(7.0F), 0.0F);
}

TEST(ChangeResoSetup, TheTableOfProductsHoldsTheVerticalWeights) {
  CHRESO_OPEN open = openRecord(kGrey, {300, 300}, {100, 2400}, 40);
  ChangeResoSetup setup;
  ASSERT_TRUE(setup.ChangeResoInit(&open));
  EXPECT_EQ(setup.tblElement[0][1][1], 1000000);
  for (int row = 0; row < ChangeResoSetup::kPhases; ++row) {
    for (int a = 0; a < 4; ++a) {
      for (int b = 0; b < 4; ++b) {
        ASSERT_EQ(setup.tblElement[row][a][b], setup.tblY[row].w[a] * setup.tblY[row].w[b]) << row;
      }
    }
  }
}

TEST(ChangeResoSetup, ASecondSetUpKeepsNothingOfTheFirst) {
  CHRESO_OPEN large = openRecord(kColor, {100, 3200}, {100, 3200}, 400);
  ChangeResoSetup setup;
  ASSERT_TRUE(setup.ChangeResoInit(&large));
  CHRESO_OPEN copy = openRecord(kGrey, {300, 300}, {300, 300}, 10);
  ASSERT_TRUE(setup.ChangeResoInit(&copy));
  EXPECT_FALSE(setup.hasRing());
  EXPECT_EQ(setup.saveLineCount, 0U);
  EXPECT_EQ(setup.saveLineBytes, 0U);
  EXPECT_EQ(setup.tblX[5].w[1], 0);
}

}  // namespace
