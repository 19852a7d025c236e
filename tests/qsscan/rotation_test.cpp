#include "apps/qsscan/rotation.h"

#include <gtest/gtest.h>

#include "made_page.h"

namespace {

using namespace qsscan;
using namespace qsscan_test;

// The pixel as a number, whatever its depth.
unsigned pixelAt(const Page& page, int x, int y) {
  const std::uint8_t* line = page.line(y);
  if (page.bitsPerPixel == 1) return line[x / 8] >> (7 - x % 8) & 1U;
  if (page.bitsPerPixel == 8) return line[x];
  return line[3 * x] | line[3 * x + 1] * 0x100U | line[3 * x + 2] * 0x10000U;
}

class Rotation : public testing::TestWithParam<int> {};

// Larger than the tiles in which pages are turned, and no multiple of them.
TEST_P(Rotation, EveryPixelGoesToItsPlace) {
  Page page = makePage(203, 131, GetParam(), 300, 7);
  page.dpiY = 600;
  for (const int degrees : {0, 90, 180, 270}) {
    SCOPED_TRACE(degrees);
    const Page result = turned(page, degrees);
    const bool isOnItsSide = degrees == 90 || degrees == 270;
    ASSERT_EQ(result.widthPx, isOnItsSide ? 131 : 203);
    ASSERT_EQ(result.heightPx, isOnItsSide ? 203 : 131);
    EXPECT_EQ(result.dpiX, isOnItsSide ? 600 : 300);
    EXPECT_EQ(result.dpiY, isOnItsSide ? 300 : 600);
    EXPECT_EQ(result.number, 7);
    ASSERT_EQ(result.bitsPerPixel, GetParam());
    ASSERT_EQ(result.pixels.size(), result.lineBytes * static_cast<std::size_t>(result.heightPx));
    for (int y = 0; y < page.heightPx; ++y) {
      for (int x = 0; x < page.widthPx; ++x) {
        const int right = page.widthPx - 1 - x;
        const int below = page.heightPx - 1 - y;
        const unsigned there = degrees == 0     ? pixelAt(result, x, y)
                               : degrees == 90  ? pixelAt(result, below, x)
                               : degrees == 180 ? pixelAt(result, right, below)
                                                : pixelAt(result, y, right);
        ASSERT_EQ(there, pixelAt(page, x, y)) << x << ", " << y;
      }
    }
  }
}

TEST_P(Rotation, FourQuartersAreTheWholeAgain) {
  const Page page = makePage(70, 33, GetParam());
  const Page round = turned(turned(turned(turned(page, 90), 90), 90), 90);
  for (int y = 0; y < page.heightPx; ++y) {
    for (int x = 0; x < page.widthPx; ++x) ASSERT_EQ(pixelAt(round, x, y), pixelAt(page, x, y));
  }
}

INSTANTIATE_TEST_SUITE_P(Depths, Rotation, testing::Values(1, 8, 24));

TEST(Rotation, TheProfileStays) {
  Page page = makePage(10, 5, 24);
  page.profile = std::make_shared<IccProfile>();
  EXPECT_EQ(turned(page, 90).profile, page.profile);
}

}  // namespace
