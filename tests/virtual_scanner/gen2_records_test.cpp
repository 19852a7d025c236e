#include "protocol/gen2_records.h"

#include <gtest/gtest.h>

namespace vscan::gen2 {
namespace {

Page linesPage(PageColor color, Compression compression, int widthPx, std::size_t lineBytes, Bytes data) {
  Page page;
  page.color = color;
  page.compression = compression;
  page.widthPx = widthPx;
  page.heightPx = static_cast<int>(data.size() / lineBytes);
  page.lineBytes = lineBytes;
  page.data = std::move(data);
  return page;
}

std::vector<Bytes> recordsOf(std::uint16_t number, const Page& page, bool whiteLines) {
  const auto records = stream().cut(number, page, whiteLines);
  std::vector<Bytes> all;
  Bytes record;
  while (records->next(record)) {
    all.push_back(record);
    record.clear();
  }
  return all;
}

TEST(Gen2Records, RecordsWithoutDataAreSpelledSo) {
  Page page;
  page.widthPx = 0x9B0;
  page.heightPx = 0xDB3;
  EXPECT_EQ(stream().pageEnd(1, page), (Bytes{0x00, 0x21, 0x01, 0x00}));
  EXPECT_TRUE(stream().findings(1, page).empty());
  page.tellsSize = true;
  EXPECT_EQ(stream().findings(2, page),
            (Bytes{0x00, 0x11, 0x02, 0x00, 0xB0, 0x09, 0x00, 0x00, 0xB3, 0x0D, 0x00, 0x00}));
  page.isTooLong = true;
  EXPECT_EQ(stream().pageEnd(3, page), (Bytes{0x00, 0x23, 0x03, 0x00}));
  page.isBlank = true;
  EXPECT_EQ(stream().pageEnd(0x1234, page), (Bytes{0x00, 0x22, 0x34, 0x12}));
  EXPECT_EQ(stream().allPagesEnd(), (Bytes{0x00, 0x20}));
  EXPECT_EQ(stream().stoppedByHost(), (Bytes{0x00, 0x40}));
  EXPECT_EQ(stream().stoppedByKey(), (Bytes{0x00, 0x41}));
  EXPECT_EQ(stream().deviceError(0x91), (Bytes{0x91, 0x00}));
}

TEST(Gen2Records, ABlankPageIsNamedByItsSizeEvenIfTheHostKnowsIt) {
  Page page;
  page.isBlank = true;
  EXPECT_EQ(stream().findings(1, page).size(), 12u);
}

TEST(Gen2Records, TheColourIsToldBeforeTheSize) {
  Page page;
  page.compression = Compression::Jpeg;
  page.tellsColor = true;
  page.foundColor = PageColor::Mono;
  EXPECT_EQ(stream().findings(3, page), (Bytes{0x00, 0x12, 0x03, 0x00, 0x11, 0x00}));
  page.tellsSize = true;
  EXPECT_EQ(stream().findings(3, page).size(), 6u + 12u);
}

TEST(Gen2Records, OnlyRecordsWithDataHaveASize) {
  const Page page = linesPage(PageColor::Grey, Compression::None, 1, 1, {0, 255});
  const auto records = recordsOf(1, page, true);
  EXPECT_EQ(stream().sizeField(records.at(0)).at, 6u);
  EXPECT_EQ(stream().sizeField(records.at(0)).bytes, 4u);
  EXPECT_EQ(stream().sizeField(records.at(1)).bytes, 0u);
  EXPECT_EQ(stream().sizeField(stream().allPagesEnd()).bytes, 0u);
}

TEST(Gen2Records, TheFormatByteTellsColourAndCompression) {
  const struct {
    PageColor color;
    Compression compression;
    int byte;
  } rows[] = {
      {PageColor::Mono, Compression::None, 0x01},      {PageColor::Grey, Compression::None, 0x04},
      {PageColor::Color, Compression::None, 0x05},     {PageColor::Mono, Compression::RunLength, 0x09},
      {PageColor::Grey, Compression::RunLength, 0x0C}, {PageColor::Color, Compression::RunLength, 0x0D},
      {PageColor::Grey, Compression::Jpeg, 0x14},      {PageColor::Color, Compression::Jpeg, 0x15},
  };
  for (const auto& row : rows) EXPECT_EQ(formatByte(row.color, row.compression), row.byte) << row.byte;
}

TEST(Gen2Records, EachLineIsARecordOfItsOwn) {
  const Page page = linesPage(PageColor::Color, Compression::None, 1, 3, {1, 2, 3, 255, 255, 255});
  const auto records = recordsOf(7, page, false);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0], (Bytes{0, 1, 7, 0, 0x05, 0, 3, 0, 0, 0, 1, 0, 0, 0, 1, 2, 3}));
  EXPECT_EQ(records[1], (Bytes{0, 1, 7, 0, 0x05, 0, 3, 0, 0, 0, 2, 0, 0, 0, 255, 255, 255}));
}

TEST(Gen2Records, PackedLinesTellTheirPackedSize) {
  const Page page = linesPage(PageColor::Grey, Compression::RunLength, 5, 5, {9, 9, 9, 9, 9});
  EXPECT_EQ(recordsOf(1, page, false).at(0), (Bytes{0, 1, 1, 0, 0x0C, 0, 2, 0, 0, 0, 1, 0, 0, 0, 252, 9}));
}

TEST(Gen2Records, AWhiteLineGoesWithoutDataAndCounts) {
  const Page page = linesPage(PageColor::Mono, Compression::RunLength, 8, 1, {0xFF, 0x0F, 0xFF});
  const auto records = recordsOf(1, page, true);
  ASSERT_EQ(records.size(), 3u);
  EXPECT_EQ(records[0], (Bytes{0x00, 0x00, 0x01, 0x00}));
  EXPECT_EQ(records[1], (Bytes{0, 1, 1, 0, 0x09, 0, 2, 0, 0, 0, 2, 0, 0, 0, 0, 0x0F}));
  EXPECT_EQ(records[2], records[0]);
}

TEST(Gen2Records, AJpegIsCutIntoBlocksThatJoinToTheFile) {
  Page page;
  page.color = PageColor::Color;
  page.compression = Compression::Jpeg;
  page.heightPx = 3300;
  for (std::size_t i = 0; i < 2 * kBlockBytes + 17; ++i) page.data.push_back(static_cast<std::uint8_t>(i * 31));
  const auto records = recordsOf(3, page, true);
  ASSERT_EQ(records.size(), 3u);
  Bytes joined;
  std::uint32_t heightBefore = 0;
  for (const Bytes& record : records) {
    EXPECT_EQ(Bytes(record.begin(), record.begin() + 6), (Bytes{0, 2, 3, 0, 0x15, 0}));
    const auto u32 = [&](std::size_t at) {
      return static_cast<std::uint32_t>(record[at] | record[at + 1] << 8 | record[at + 2] << 16);
    };
    EXPECT_EQ(u32(6), record.size() - 14);
    EXPECT_GT(u32(10), heightBefore);
    heightBefore = u32(10);
    joined.insert(joined.end(), record.begin() + 14, record.end());
  }
  EXPECT_EQ(joined, page.data);
  EXPECT_EQ(heightBefore, 3300u);
}

TEST(Gen2Records, APageWithoutDataHasNoRecords) { EXPECT_TRUE(recordsOf(1, Page{}, true).empty()); }

}  // namespace
}  // namespace vscan::gen2
