#include "image/judge.h"

#include <gtest/gtest.h>

namespace vscan {
namespace {

TEST(Judge, ALittleDustDoesNotMakeAPage) {
  Raster page(100, 100, 1, 250);
  EXPECT_TRUE(isBlank(page));
  page.pixels[5] = 0;
  page.pixels[500] = 0;
  EXPECT_TRUE(isBlank(page));
  page.pixels[5000] = 0;
  EXPECT_FALSE(isBlank(page));
}

TEST(Judge, EachLevelLetsMoreDirtPass) {
  const int darkest[] = {5, 10, 20, 50, 100};  // of 100 000 pixels
  for (int level = 0; level < kJudgeLevels; ++level) {
    Raster page(1000, 100, 1, 255);
    for (int i = 0; i < darkest[level]; ++i) page.pixels[static_cast<std::size_t>(i)] = 0;
    EXPECT_TRUE(isBlank(page, level)) << level;
    page.pixels[500] = 0;
    EXPECT_FALSE(isBlank(page, level)) << level;
  }
  EXPECT_EQ(isBlank(Raster(10, 10, 1, 0), 99), false);
}

TEST(Judge, APageIsColourGreyOrMono) {
  Raster mono(100, 100, 3, 255);
  for (std::size_t i = 0; i < 3000; ++i) mono.pixels[i] = 0;
  EXPECT_EQ(judgeColor(mono), PageColor::Mono);
  Raster grey = mono;
  for (std::size_t i = 0; i < 3000; ++i) grey.pixels[i] = 128;
  EXPECT_EQ(judgeColor(grey), PageColor::Grey);
  Raster color = mono;
  for (std::size_t i = 6000; i < 6030; ++i) color.pixels[i] = i % 3 == 0 ? 255 : 0;  // ten red pixels
  EXPECT_EQ(judgeColor(color), PageColor::Color);
  EXPECT_EQ(judgeColor(color, 0), PageColor::Mono);
  EXPECT_EQ(judgeColor(Raster(10, 10, 1, 128)), PageColor::Grey);
}

}  // namespace
}  // namespace vscan
