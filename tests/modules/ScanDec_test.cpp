// The line decoder: every kind of line into pages of every depth.
#include "modules/ScanDec.h"

#include <gtest/gtest.h>

#include "scan_decode_harness.h"

namespace {

using namespace orvalle_scan_api;
using module_test::Bytes;
using module_test::DecodedPage;
using module_test::Line;

constexpr std::int32_t kRaw = kCompressNone;
constexpr std::int32_t kPacked = kCompressPackBits;

constexpr std::int32_t kMonoPage = 0x101;
constexpr std::int32_t kHalftonePage = 0x102;
constexpr std::int32_t kGrayPage = 0x208;
constexpr std::int32_t k256Page = 0x210;
constexpr std::int32_t kColorPage = 0x420;

struct LineCase {
  const char* name;
  std::int32_t page;
  std::size_t widthPx;
  Line line;
  Bytes expected;
};
void PrintTo(const LineCase& row, std::ostream* out) { *out << row.name; }

const LineCase kLineCases[] = {
    // Lines of the page's own depth.
    {"RawMonoIsCopied", kMonoPage, 10, {kRaw, 1, {0xA5, 0x40}}, {0xA5, 0x40}},
    {"RawHalftoneIsCopied", kHalftonePage, 10, {kRaw, 1, {0xA5, 0x40}}, {0xA5, 0x40}},
    {"RawGrayIsCopied", kGrayPage, 3, {kRaw, 7, {1, 2, 3}}, {1, 2, 3}},
    {"Raw256ColoursAreCopied", k256Page, 3, {kRaw, 7, {1, 2, 3}}, {1, 2, 3}},
    {"RawRgbIsTurned", kColorPage, 2, {kRaw, 5, {1, 2, 3, 4, 5, 6}}, {3, 2, 1, 6, 5, 4}},
    {"RawBgrIsCopied", kColorPage, 2, {kRaw, 6, {1, 2, 3, 4, 5, 6}}, {1, 2, 3, 4, 5, 6}},
    {"PackedMonoIsExpanded", kMonoPage, 24, {kPacked, 1, {0xFE, 0x0F}}, {0x0F, 0x0F, 0x0F}},
    {"PackedGrayIsExpanded", kGrayPage, 4, {kPacked, 7, {0, 9, 0xFE, 7}}, {9, 7, 7, 7}},
    {"PackedRgbIsTurned", kColorPage, 2, {kPacked, 5, {5, 1, 2, 3, 4, 5, 6}}, {3, 2, 1, 6, 5, 4}},
    {"PackedBgrIsExpanded", kColorPage, 2, {kPacked, 6, {5, 1, 2, 3, 4, 5, 6}}, {1, 2, 3, 4, 5, 6}},

    // White lines.
    {"NoBytesAreAWhiteMonoLine", kMonoPage, 10, {kRaw, 1, {}}, {0xFF, 0xFF}},
    {"NoBytesAreAWhiteGrayLine", kGrayPage, 3, {kRaw, 1, {}}, {255, 255, 255}},
    {"NoBytesAreAWhiteColourLine", kColorPage, 2, {kRaw, 1, {}}, {255, 255, 255, 255, 255, 255}},
    {"NoPackedBytesAreAWhiteLine", kGrayPage, 3, {kPacked, 7, {}}, {255, 255, 255}},

    // Lines that are too long are clipped, short ones filled up with white.
    {"LongRawMonoIsClipped", kMonoPage, 10, {kRaw, 1, {1, 2, 3}}, {1, 2}},
    {"LongRawGrayIsClipped", kGrayPage, 3, {kRaw, 7, {1, 2, 3, 4}}, {1, 2, 3}},
    {"LongRawRgbIsClipped", kColorPage, 1, {kRaw, 5, {1, 2, 3, 4, 5, 6}}, {3, 2, 1}},
    {"LongPackedMonoIsClipped", kMonoPage, 10, {kPacked, 1, {2, 1, 2, 3}}, {1, 2}},
    {"LongPackedGrayRunIsClipped", kGrayPage, 3, {kPacked, 7, {0x81, 9}}, {9, 9, 9}},
    {"LongPackedRgbIsClipped", kColorPage, 1, {kPacked, 5, {3, 1, 2, 3, 4}}, {3, 2, 1}},
    {"ShortRawMonoIsFilled", kMonoPage, 20, {kRaw, 1, {0, 0}}, {0, 0, 0xFF}},
    {"ShortPackedGrayIsFilled", kGrayPage, 4, {kPacked, 7, {1, 1, 2}}, {1, 2, 255, 255}},
    {"ShortPackedRgbIsFilled", kColorPage, 2, {kPacked, 5, {2, 1, 2, 3}}, {3, 2, 1, 255, 255, 255}},

    // Lines of another depth than the page's.
    {"RawMonoInAGrayPageIsWidened", kGrayPage, 10, {kRaw, 1, {0xA0, 0x40}}, {255, 0, 255, 0, 0, 0, 0, 0, 0, 255}},
    {"PackedMonoInAGrayPageIsWidened", kGrayPage, 9, {kPacked, 1, {1, 0x01, 0x80}}, {0, 0, 0, 0, 0, 0, 0, 255, 255}},
    {"RawMonoInAColourPageIsWidened", kColorPage, 3, {kRaw, 1, {0x40}}, {0, 0, 0, 255, 255, 255, 0, 0, 0}},
    {"PackedMonoInAColourPageIsWidened", kColorPage, 3, {kPacked, 1, {0, 0x40}}, {0, 0, 0, 255, 255, 255, 0, 0, 0}},
    {"ShortMonoInAColourPageEndsWhite", kColorPage, 9, {kRaw, 1, {0x00}}, {0, 0, 0, 0, 0, 0, 0,   0,   0,
                                                                           0, 0, 0, 0, 0, 0, 0,   0,   0,
                                                                           0, 0, 0, 0, 0, 0, 255, 255, 255}},
    {"RawGrayInAColourPageIsWidened", kColorPage, 2, {kRaw, 7, {8, 9}}, {8, 8, 8, 9, 9, 9}},
    {"PackedGrayInAColourPageIsWidened", kColorPage, 2, {kPacked, 7, {1, 8, 9}}, {8, 8, 8, 9, 9, 9}},
    {"PackedRgbInAGrayPageBecomesTheMean", kGrayPage, 2, {kPacked, 5, {5, 255, 0, 0, 1, 2, 5}}, {85, 2}},
    {"RawGrayInAMonoPageIsCutAtHalf", kMonoPage, 9, {kRaw, 7, {0, 127, 128, 255, 0, 0, 0, 0, 200}}, {0x30, 0xFF}},

    // The kind does not tell the depth of an uncompressed line, its size does.
    {"GrayUnderTheMonoKindInAGrayPage", kGrayPage, 3, {kRaw, 1, {1, 2, 3}}, {1, 2, 3}},
    {"GrayUnderTheMonoKindInAColourPageKeepsItsDepth", kColorPage, 3, {kRaw, 1, {1, 2, 3}}, {1, 2, 3}},
    {"SuchALineIsClippedToo", kColorPage, 3, {kRaw, 1, {1, 2, 3, 4}}, {1, 2, 3}},

    // What no code book knows is a white line, never a lost page.
    {"UnknownPackedKindIsWhite", kGrayPage, 3, {kPacked, 99, {2, 1, 2, 3}}, {255, 255, 255}},
};

class LineOfAPage : public testing::TestWithParam<LineCase> {};

TEST_P(LineOfAPage, ComesOutAs) {
  const LineCase& row = GetParam();
  const auto decoder = module_test::createInstance<IScanDec>("QsScanDecode");
  ASSERT_NE(decoder, nullptr);
  DecodedPage page(*decoder, row.page, row.widthPx);
  ASSERT_TRUE(page.accepted);
  page.write(row.line);
  EXPECT_GE(page.result, 0);
  EXPECT_EQ(page.lines, 1);
  EXPECT_EQ(page.bytes, static_cast<int>(row.expected.size()));
  EXPECT_EQ(page.pixels, row.expected);
  page.end();
  EXPECT_EQ(page.lines, 0);
  EXPECT_EQ(page.bytes, 0);
}

INSTANTIATE_TEST_SUITE_P(ScanDec, LineOfAPage, testing::ValuesIn(kLineCases),
                         [](const auto& row) { return std::string(row.param.name); });

class ScanDec : public testing::Test {
 protected:
  std::unique_ptr<IScanDec> decoder_ = module_test::createInstance<IScanDec>("QsScanDecode");
};

TEST_F(ScanDec, PlaneLinesMakeOneLineOfThree) {
  DecodedPage page(*decoder_, kColorPage, 2);
  page.write({kRaw, kLineKindRed, {1, 2}});
  EXPECT_EQ(page.lines, 0);
  EXPECT_EQ(page.bytes, 0);
  page.write({kPacked, kLineKindGreen, {1, 3, 4}});
  EXPECT_EQ(page.lines, 0);
  page.write({kRaw, kLineKindBlue, {5, 6}});
  EXPECT_EQ(page.lines, 1);
  EXPECT_EQ(page.pixels, (Bytes{5, 3, 1, 6, 4, 2}));
  page.end();
  EXPECT_EQ(page.lines, 0);
}

TEST_F(ScanDec, PlaneLinesAreClippedAndFilledWhateverTheirSize) {
  DecodedPage page(*decoder_, kColorPage, 2);
  page.write({kRaw, kLineKindRed, {1, 2, 77, 77, 77, 77}});
  page.write({kRaw, kLineKindGreen, {3}});
  page.write({kRaw, kLineKindBlue, {}});
  EXPECT_EQ(page.pixels, (Bytes{255, 3, 1, 255, 255, 2}));
}

TEST_F(ScanDec, APartThatComesAgainBeginsTheNextLine) {
  DecodedPage page(*decoder_, kColorPage, 1);
  page.write({kRaw, kLineKindRed, {1}});
  page.write({kRaw, kLineKindBlue, {2}});
  page.write({kRaw, kLineKindRed, {3}});
  EXPECT_EQ(page.lines, 1);
  EXPECT_EQ(page.pixels, (Bytes{2, 255, 1}));
  page.write({kRaw, kLineKindGreen, {4}});
  page.write({kRaw, kLineKindBlue, {5}});
  EXPECT_EQ(page.pixels, (Bytes{2, 255, 1, 5, 4, 3}));
}

TEST_F(ScanDec, TheEndOfThePageBringsAnUnfinishedPlaneLine) {
  DecodedPage page(*decoder_, kColorPage, 1);
  page.write({kRaw, kLineKindGreen, {9}});
  page.end();
  EXPECT_EQ(page.lines, 1);
  EXPECT_EQ(page.pixels, (Bytes{255, 9, 255}));
  page.end();
  EXPECT_EQ(page.lines, 0);
}

TEST_F(ScanDec, PlaneLinesInAGrayPageBecomeTheMean) {
  DecodedPage page(*decoder_, kGrayPage, 1);
  for (const std::int32_t kind : {kLineKindRed, kLineKindGreen, kLineKindBlue}) {
    page.write({kRaw, kind, {static_cast<std::uint8_t>(kind * 10)}});
  }
  EXPECT_EQ(page.pixels, (Bytes{30}));
}

TEST_F(ScanDec, TheOutputBufferHoldsOneLine) {
  SCANDEC_OPEN param = module_test::openParam(kColorPage, 7);
  ASSERT_EQ(decoder_->Open(0), 1);
  ASSERT_EQ(decoder_->SetOpenParam(&param), 1);
  EXPECT_EQ(param.dwWriteBuffSize, 21u);
}

TEST_F(ScanDec, ALongerOutputLineEndsWhite) {
  SCANDEC_OPEN param = module_test::openParam(kGrayPage, 2);
  param.dwOutLineByteCnt = 4;
  ASSERT_EQ(decoder_->Open(0), 1);
  ASSERT_EQ(decoder_->SetOpenParam(&param), 1);
  ASSERT_EQ(param.dwWriteBuffSize, 4u);
  const Bytes line{1, 2};
  Bytes room(4);
  SCANDEC_WRITE write{kRaw, kLineKindGray, line.data(), line.size(), room.data(), room.size(), 0, 0};
  int lines = 0;
  int bytes = 0;
  EXPECT_EQ(decoder_->Write(&write, &lines, &bytes), 0);
  EXPECT_EQ(bytes, 4);
  EXPECT_EQ(room, (Bytes{1, 2, 255, 255}));
}

TEST_F(ScanDec, RefusesAFormatThatMakesNoPage) {
  struct {
    const char* name;
    std::int32_t colorType;
    std::size_t widthPx;
    std::size_t lineBytes;
  } const rows[] = {
      {"unknown depth", 0x300, 8, 8},
      {"no depth", 0, 8, 8},
      {"no width", kColorPage, 0, 0},
      {"width beyond reason", kColorPage, std::size_t{1} << 40, std::size_t{3} << 40},
      {"width that wraps", kMonoPage, SIZE_MAX, 0},
      {"line too small for its pixels", kColorPage, 8, 23},
      {"line larger than a count can tell", kGrayPage, 8, std::size_t{1} << 31},
  };
  for (const auto& row : rows) {
    SCANDEC_OPEN param = module_test::openParam(row.colorType, row.widthPx);
    param.dwOutLineByteCnt = row.lineBytes;
    EXPECT_EQ(decoder_->Open(0), 1) << row.name;
    EXPECT_NE(decoder_->SetOpenParam(&param), 1) << row.name;
    int lines = 0;
    int bytes = 0;
    std::uint8_t byte = 0;
    SCANDEC_WRITE write{kRaw, kLineKindGray, &byte, 1, &byte, 1, 0, 0};
    EXPECT_LT(decoder_->Write(&write, &lines, &bytes), 0) << row.name;
  }
}

TEST_F(ScanDec, FailsCleanlyWhereSomethingIsMissing) {
  SCANDEC_OPEN param = module_test::openParam(kGrayPage, 4);
  EXPECT_NE(decoder_->SetOpenParam(&param), 1) << "not open";
  ASSERT_EQ(decoder_->Open(0), 1);
  EXPECT_NE(decoder_->SetOpenParam(nullptr), 1);
  ASSERT_EQ(decoder_->SetOpenParam(&param), 1);

  const Bytes line(4);
  Bytes room(4);
  int lines = 0;
  int bytes = 0;
  const SCANDEC_WRITE good{kRaw, kLineKindGray, line.data(), line.size(), room.data(), room.size(), 0, 0};
  SCANDEC_WRITE write = good;
  EXPECT_GE(decoder_->Write(&write, &lines, &bytes), 0);
  EXPECT_LT(decoder_->Write(nullptr, &lines, &bytes), 0);
  EXPECT_LT(decoder_->Write(&write, nullptr, &bytes), 0);
  EXPECT_LT(decoder_->Write(&write, &lines, nullptr), 0);
  write.pWriteBuff = nullptr;
  EXPECT_LT(decoder_->Write(&write, &lines, &bytes), 0) << "no output buffer";
  write = good;
  write.writeBuffSize = 3;
  EXPECT_LT(decoder_->Write(&write, &lines, &bytes), 0) << "output buffer too small";
  write = good;
  write.pLineData = nullptr;
  EXPECT_LT(decoder_->Write(&write, &lines, &bytes), 0) << "no input, but a size";
  write = good;
  write.nInDataComp = kCompressJpeg;
  EXPECT_LT(decoder_->Write(&write, &lines, &bytes), 0) << "a JPEG is no line";
  EXPECT_EQ(lines, 0);
  EXPECT_EQ(bytes, 0);

  decoder_->Close();
  decoder_->Close();
  write = good;
  EXPECT_LT(decoder_->Write(&write, &lines, &bytes), 0) << "closed";
  EXPECT_LT(decoder_->PageEnd(&write, &lines, &bytes), 0) << "closed";
}

TEST_F(ScanDec, TheNextPageMayHaveAnotherFormat) {
  {
    DecodedPage page(*decoder_, kColorPage, 1);
    page.write({kRaw, kLineKindRed, {1}});
  }
  DecodedPage page(*decoder_, kGrayPage, 2);
  ASSERT_TRUE(page.accepted);
  page.write({kRaw, kLineKindGray, {1, 2}});
  page.end();
  EXPECT_EQ(page.pixels, (Bytes{1, 2})) << "nothing of the page before";
}

}  // namespace
