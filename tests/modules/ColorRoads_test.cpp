// One page of six colours down every road that a 24-bit page can take: each ends in the same B,G,R bytes.
#include <gtest/gtest.h>

#include "jpeg_decode_harness.h"
#include "jpeg_pictures.h"
#include "scan_decode_harness.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;

constexpr std::int32_t kColorPage = 0x420;
constexpr std::int32_t kRaw = kCompressNone;
constexpr std::int32_t kPacked = kCompressPackBits;
constexpr std::size_t kWidthPx = 3;
constexpr std::size_t kHeightPx = 2;

// Top line first: red, green, blue; cyan, magenta, yellow, none of them quite full.
const Bytes kRgbLines[kHeightPx] = {{250, 10, 20, 30, 240, 40, 50, 60, 230}, {5, 200, 210, 190, 15, 180, 170, 160, 25}};
const Bytes kExpectedBgr = {20, 10, 250, 40, 240, 30, 230, 60, 50, 210, 200, 5, 180, 15, 190, 25, 160, 170};

Bytes swapped(Bytes line) {
  for (std::size_t i = 0; i < line.size(); i += 3) std::swap(line[i], line[i + 2]);
  return line;
}

Bytes plane(const Bytes& rgb, std::size_t part) {
  Bytes values;
  for (std::size_t i = part; i < rgb.size(); i += 3) values.push_back(rgb[i]);
  return values;
}

Line asIs(std::int32_t kind, const Bytes& bytes) { return {kRaw, kind, bytes}; }
Line packed(std::int32_t kind, const Bytes& bytes) { return {kPacked, kind, packBits(bytes)}; }

using Road = std::vector<Line> (*)(const Bytes& rgb);

struct RoadCase {
  const char* name;
  Road lines;
};
void PrintTo(const RoadCase& row, std::ostream* out) { *out << row.name; }

const RoadCase kRoads[] = {
    {"RawRgb", [](const Bytes& rgb) { return std::vector{asIs(5, rgb)}; }},
    {"RawBgr", [](const Bytes& rgb) { return std::vector{asIs(6, swapped(rgb))}; }},
    {"PackedRgb", [](const Bytes& rgb) { return std::vector{packed(5, rgb)}; }},
    {"PackedBgr", [](const Bytes& rgb) { return std::vector{packed(6, swapped(rgb))}; }},
    {"RawPlanes",
     [](const Bytes& rgb) {
       return std::vector{asIs(2, plane(rgb, 0)), asIs(3, plane(rgb, 1)), asIs(4, plane(rgb, 2))};
     }},
    {"PackedPlanes",
     [](const Bytes& rgb) {
       return std::vector{packed(2, plane(rgb, 0)), packed(3, plane(rgb, 1)), packed(4, plane(rgb, 2))};
     }},
    {"PlanesInAnotherOrder",
     [](const Bytes& rgb) {
       return std::vector{asIs(4, plane(rgb, 2)), packed(2, plane(rgb, 0)), asIs(3, plane(rgb, 1))};
     }},
};

class ColorRoad : public testing::TestWithParam<RoadCase> {};

TEST_P(ColorRoad, EndsInTheSamePixels) {
  const auto decoder = createInstance<IScanDec>("QsScanDecode");
  ASSERT_NE(decoder, nullptr);
  DecodedPage page(*decoder, kColorPage, kWidthPx);
  for (const Bytes& rgb : kRgbLines) {
    for (const Line& line : GetParam().lines(rgb)) page.write(line);
  }
  page.end();
  EXPECT_EQ(page.pixels, kExpectedBgr);
}

INSTANTIATE_TEST_SUITE_P(ColorRoads, ColorRoad, testing::ValuesIn(kRoads),
                         [](const auto& row) { return std::string(row.param.name); });

// The JPEG stage hands its R,G,B lines to the line decoder as uncompressed ones of kind 5.
TEST(ColorRoads, BothJpegModesEndInTheDecodedJpegsPixels) {
  Pixels picture{kWidthPx, kHeightPx, 3, kRgbLines[0]};
  picture.bytes.insert(picture.bytes.end(), kRgbLines[1].begin(), kRgbLines[1].end());
  const Bytes jpeg = encodeJpeg(picture, {.quality = 100, .fullColor = true});
  Pixels reference;
  ASSERT_TRUE(decodeWithLibjpeg(jpeg, reference));
  const Bytes expected = swapped(reference.bytes);
  for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_NEAR(expected[i], kExpectedBgr[i], 40) << i;

  const auto jpegDecoder = jpegModule();
  const auto lineDecoder = createInstance<IScanDec>("QsScanDecode");
  ASSERT_NE(jpegDecoder, nullptr);
  ASSERT_NE(lineDecoder, nullptr);
  for (const Decoded& decoded : {decodePage(*jpegDecoder, jpeg), decodeBand(*jpegDecoder, jpeg)}) {
    ASSERT_EQ(decoded.bytes.size(), kWidthPx * kHeightPx * 3);
    DecodedPage page(*lineDecoder, kColorPage, kWidthPx);
    for (std::size_t y = 0; y < kHeightPx; ++y) {
      const auto line = decoded.bytes.begin() + static_cast<std::ptrdiff_t>(y * kWidthPx * 3);
      page.write({kRaw, kLineKindRgb, Bytes(line, line + kWidthPx * 3)});
    }
    EXPECT_EQ(page.pixels, expected);
  }
}

}  // namespace
