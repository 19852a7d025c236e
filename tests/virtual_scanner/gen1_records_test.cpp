#include "protocol/gen1_records.h"

#include <gtest/gtest.h>

#include "support/failure.h"

namespace vscan::gen1 {
namespace {

Page linesPage(PageColor color, Compression compression, std::size_t lineBytes, Bytes data) {
  Page page;
  page.color = color;
  page.compression = compression;
  page.heightPx = static_cast<int>(data.size() / lineBytes);
  page.lineBytes = lineBytes;
  page.data = std::move(data);
  return page;
}

std::vector<Bytes> recordsOf(std::uint16_t number, const Page& page) {
  const auto records = stream().cut(number, page, true);
  std::vector<Bytes> all;
  Bytes record;
  while (records->next(record)) {
    all.push_back(record);
    record.clear();
  }
  return all;
}

TEST(Gen1Records, StatusesAreSpelledSo) {
  Page page;
  page.heightPx = 0x1234;
  EXPECT_EQ(stream().pageEnd(2, page), (Bytes{0x82, 7, 0, 2, 0, 0x85, 0x34, 0x12, 0, 0}));
  EXPECT_EQ(stream().allPagesEnd(), Bytes{0x80});
  EXPECT_EQ(stream().stoppedByHost(), Bytes{0x83});
  EXPECT_EQ(stream().stoppedByKey(), Bytes{0x86});
  EXPECT_EQ(stream().deviceError(0xC3), Bytes{0xC3});
  page.tellsSize = true;
  page.isBlank = true;
  EXPECT_TRUE(stream().findings(2, page).empty());
}

TEST(Gen1Records, ALineTellsItsKindAndItsPacking) {
  const struct {
    const char* name;
    PageColor color;
    Compression compression;
    int header;
  } rows[] = {
      {"mono", PageColor::Mono, Compression::None, 0x40},
      {"mono packed", PageColor::Mono, Compression::RunLength, 0x42},
      {"grey", PageColor::Grey, Compression::None, 0x5C},
      {"grey packed", PageColor::Grey, Compression::RunLength, 0x5E},
      {"colour", PageColor::Color, Compression::None, 0x50},
      {"colour packed", PageColor::Color, Compression::RunLength, 0x52},
  };
  for (const auto& row : rows) {
    const auto records = recordsOf(3, linesPage(row.color, row.compression, 3, {7, 7, 7}));
    ASSERT_EQ(records.size(), 1u) << row.name;
    Bytes expected{static_cast<std::uint8_t>(row.header), 3, 0, 3, 0, 0x00};
    const Bytes data = row.compression == Compression::None ? Bytes{3, 0, 7, 7, 7} : Bytes{2, 0, 254, 7};
    expected.insert(expected.end(), data.begin(), data.end());
    EXPECT_EQ(records[0], expected) << row.name;
  }
}

TEST(Gen1Records, AWhiteLineGoesWithItsDataLikeAnyOther) {
  const auto records = recordsOf(1, linesPage(PageColor::Mono, Compression::None, 1, {0xFF, 0xFF}));
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[1], (Bytes{0x40, 3, 0, 1, 0, 0, 1, 0, 0xFF}));
}

TEST(Gen1Records, ColourLinesCanGoInTheirThreeOrders) {
  Page page = linesPage(PageColor::Color, Compression::None, 6, {1, 2, 3, 4, 5, 6});
  page.colorLines = ColorLines::Bgr;
  EXPECT_EQ(recordsOf(1, page), (std::vector<Bytes>{{0x54, 3, 0, 1, 0, 0, 6, 0, 3, 2, 1, 6, 5, 4}}));
  page.colorLines = ColorLines::Planes;
  EXPECT_EQ(recordsOf(1, page), (std::vector<Bytes>{{0x44, 3, 0, 1, 0, 0, 2, 0, 1, 4},
                                                    {0x48, 3, 0, 1, 0, 0, 2, 0, 2, 5},
                                                    {0x4C, 3, 0, 1, 0, 0, 2, 0, 3, 6}}));
}

TEST(Gen1Records, ALineOfPlanesIsDoneWithItsThirdRecord) {
  Page page = linesPage(PageColor::Color, Compression::None, 3, {1, 2, 3, 4, 5, 6});
  page.colorLines = ColorLines::Planes;
  const auto records = stream().cut(1, page, true);
  std::vector<int> done;
  Bytes record;
  while (records->next(record)) done.push_back(records->linesDone());
  EXPECT_EQ(done, (std::vector<int>{0, 0, 1, 1, 1, 2}));
}

TEST(Gen1Records, AJpegIsCutIntoBlocksThatJoinToTheFile) {
  Page page;
  page.compression = Compression::Jpeg;
  page.heightPx = 100;
  for (std::size_t i = 0; i < 2 * kJpegBlockBytes + 17; ++i) page.data.push_back(static_cast<std::uint8_t>(i * 31));
  const auto records = recordsOf(0x0102, page);
  ASSERT_EQ(records.size(), 3u);
  Bytes joined;
  for (const Bytes& record : records) {
    EXPECT_EQ(Bytes(record.begin(), record.begin() + 6), (Bytes{0x60, 3, 0, 0x02, 0x01, 0x00}));
    EXPECT_EQ(static_cast<std::size_t>(record[6] | record[7] << 8), record.size() - 8);
    EXPECT_EQ(stream().sizeField(record).at, 6u);
    EXPECT_EQ(stream().sizeField(record).bytes, 2u);
    joined.insert(joined.end(), record.begin() + 8, record.end());
  }
  EXPECT_EQ(joined, page.data);
}

TEST(Gen1Records, OnlyLinesHaveASize) {
  EXPECT_EQ(stream().sizeField(stream().allPagesEnd()).bytes, 0u);
  EXPECT_EQ(stream().sizeField(stream().pageEnd(1, Page{})).bytes, 0u);
}

TEST(Gen1Records, ALineThatDoesNotFitTwoBytesOfSizeIsAFailure) {
  EXPECT_NO_THROW(stream().cut(1, linesPage(PageColor::Grey, Compression::None, 65000, Bytes(65000)), true));
  EXPECT_THROW(stream().cut(1, linesPage(PageColor::Grey, Compression::None, 65400, Bytes(65400)), true), Failure);
}

}  // namespace
}  // namespace vscan::gen1
