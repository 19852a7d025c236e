#include "apps/qsscan/page.h"

#include <gtest/gtest.h>

#include <climits>
#include <utility>

#include "made_page.h"

namespace {

using namespace qsscan_test;
using qsscan::copyPage;
using qsscan::Page;

struct DepthRow {
  int widthPx, bitsPerPixel;
  std::size_t lineBytes;
};
class Depth : public testing::TestWithParam<DepthRow> {};

TEST_P(Depth, LinesAreUnpaddedAndCountedFromTheTop) {
  const Page page = makePage(GetParam().widthPx, 5, GetParam().bitsPerPixel);
  ASSERT_EQ(page.lineBytes, GetParam().lineBytes);
  for (int y = 0; y < 5; ++y) {
    for (std::size_t i = 0; i < page.lineBytes; ++i) ASSERT_EQ(page.line(y)[i], fakeByte(y, i)) << y << ", " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Page, Depth,
                         testing::Values(DepthRow{7, 1, 1}, DepthRow{8, 1, 1}, DepthRow{9, 1, 2}, DepthRow{5, 8, 5},
                                         DepthRow{3, 24, 9}));

TEST(Page, CarriesNumberResolutionAndTheCutFlag) {
  FakePage fake;
  fake.dpi = 200;
  fake.cutAtMaximum = true;
  auto bytes = fake.file();
  const Page page = copyPage(fake.describe(bytes), 7, 300).value();
  EXPECT_EQ(page.number, 7);
  EXPECT_EQ(page.dpiX, 200);
  EXPECT_EQ(page.dpiY, 200);
  EXPECT_TRUE(page.cutAtMaximum);
}

TEST(Page, WithoutAResolutionOfItsOwnTakesTheWishedOne) {
  FakePage fake;
  fake.dpi = 0;
  auto bytes = fake.file();
  EXPECT_EQ(copyPage(fake.describe(bytes), 1, 150)->dpiY, 150);
}

TEST(Page, UsesTheMemoryOfAnotherUnlessItIsFarTooLarge) {
  FakePage fake;
  auto bytes = fake.file();
  const auto image = fake.describe(bytes);
  const Page plain = copyPage(image, 1, 300).value();

  std::vector<std::uint8_t> fitting(plain.pixels.size() + 1, 0x55);
  const std::uint8_t* const place = fitting.data();
  const Page reused = copyPage(image, 1, 300, std::move(fitting)).value();
  EXPECT_EQ(reused.pixels.data(), place);
  EXPECT_EQ(reused.pixels, plain.pixels);

  std::vector<std::uint8_t> tooSmall(1, 0x55);
  EXPECT_EQ(copyPage(image, 1, 300, std::move(tooSmall))->pixels, plain.pixels);

  std::vector<std::uint8_t> tooLarge(4 * plain.pixels.size(), 0x55);
  const Page own = copyPage(image, 1, 300, std::move(tooLarge)).value();
  EXPECT_LT(own.pixels.capacity(), 3 * plain.pixels.size());
  EXPECT_EQ(own.pixels, plain.pixels);
}

struct BadRow {
  const char* name;
  void (*spoil)(tagQS_SCAN_IMAGEDATA&);
};
class BadPage : public testing::TestWithParam<BadRow> {};

TEST_P(BadPage, IsRefused) {
  FakePage fake;
  auto bytes = fake.file();
  auto image = fake.describe(bytes);
  ASSERT_TRUE(copyPage(image, 1, 300));
  GetParam().spoil(image);
  EXPECT_FALSE(copyPage(image, 1, 300));
}

INSTANTIATE_TEST_SUITE_P(Page, BadPage,
                         testing::Values(BadRow{"NoData", [](auto& i) { i.data = nullptr; }},
                                         BadRow{"NoPixels", [](auto& i) { i.pixelData = nullptr; }},
                                         BadRow{"NoWidth", [](auto& i) { i.widthPixel = 0; }},
                                         BadRow{"NegativeHeight", [](auto& i) { i.heightPixel = -30; }},
                                         BadRow{"UnknownDepth", [](auto& i) { i.bitPerPixel = 4; }},
                                         BadRow{"OneLineTooMany", [](auto& i) { ++i.heightPixel; }},
                                         BadRow{"OneByteShort", [](auto& i) { --i.dataSize; }},
                                         BadRow{"HugeSides", [](auto& i) { i.widthPixel = i.heightPixel = INT_MAX; }},
                                         BadRow{"PixelsBeforeTheData", [](auto& i) { i.pixelData = i.data - 1; }},
                                         BadRow{"PixelsBehindTheData",
                                                [](auto& i) { i.pixelData = i.data + i.dataSize + 1; }}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
