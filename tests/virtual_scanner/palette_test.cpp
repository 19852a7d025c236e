#include "image/palette.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "sheet_makers.h"

namespace vscan {
namespace {

TEST(Palette, ItHas256ColoursFromBlackToWhite) {
  const Bytes triples = paletteTriples();
  ASSERT_EQ(triples.size(), 768u);
  EXPECT_EQ(Bytes(triples.begin(), triples.begin() + 3), (Bytes{0, 0, 0}));
  EXPECT_EQ(Bytes(triples.begin() + 251 * 3, triples.begin() + 252 * 3), (Bytes{255, 255, 255}));
}

TEST(Palette, EachPixelGetsAColourNearIt) {
  const Raster picture = test::patternOf(64, 48, 3);
  const Raster numbers = toPalette(picture);
  const Bytes triples = paletteTriples();
  ASSERT_EQ(numbers.channels, 1);
  for (std::size_t i = 0; i < numbers.pixels.size(); ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      const int near = triples[numbers.pixels[i] * 3u + c];
      EXPECT_LE(std::abs(near - picture.pixels[3 * i + c]), 26) << i;  // half a step of six
    }
  }
}

TEST(Palette, AGreyPictureGetsColoursToo) {
  Raster grey(2, 1, 1);
  grey.pixels = {0, 255};
  EXPECT_EQ(toPalette(grey).pixels, (Bytes{0, 251}));
}

}  // namespace
}  // namespace vscan
