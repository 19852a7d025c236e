// PackBits lines against the plainest decoder that can be written, whole, cut and random.
#include <gtest/gtest.h>

#include <random>

#include "scan_decode_harness.h"

namespace {

using namespace orvalle_scan_api;
using module_test::Bytes;
using module_test::DecodedPage;

constexpr std::int32_t kGrayPage = 0x208;

// One code after the other, one byte after the other; what is missing at the end is white.
Bytes plainlyUnpacked(const Bytes& packed, std::size_t wanted) {
  Bytes line;
  std::size_t i = 0;
  while (i < packed.size()) {
    const int code = packed[i++];
    if (code == 128) continue;
    const int count = code < 128 ? code + 1 : 257 - code;
    for (int k = 0; k < count && i < packed.size(); ++k) line.push_back(code < 128 ? packed[i++] : packed[i]);
    if (code > 128) ++i;
  }
  line.resize(wanted, 0xFF);
  return line;
}

class PackBits : public testing::Test {
 protected:
  Bytes decoded(const Bytes& packed, std::size_t widthPx) {
    DecodedPage page(*decoder_, kGrayPage, widthPx);
    page.write({kCompressPackBits, kLineKindGray, packed});
    EXPECT_EQ(page.lines, 1);
    return page.pixels;
  }

  std::unique_ptr<IScanDec> decoder_ = module_test::createInstance<IScanDec>("QsScanDecode");
};

TEST_F(PackBits, EveryCodeExpandsAtEveryDistanceFromTheEnds) {
  for (int code = 0; code < 256; ++code) {
    for (const std::size_t widthPx : {1u, 2u, 15u, 16u, 17u, 127u, 128u, 129u, 143u, 144u, 145u, 300u}) {
      Bytes packed{static_cast<std::uint8_t>(code)};
      for (int i = 0; i < 300; ++i) packed.push_back(static_cast<std::uint8_t>(i));
      ASSERT_EQ(decoded(packed, widthPx), plainlyUnpacked(packed, widthPx)) << code << " in " << widthPx;
    }
  }
}

TEST_F(PackBits, EveryCutOfALineIsThatLineAndThenWhite) {
  std::mt19937 random(1);
  Bytes line(700);
  for (auto& value : line) value = static_cast<std::uint8_t>(random() % 3);
  const Bytes packed = module_test::packBits(line);
  ASSERT_EQ(decoded(packed, line.size()), line);
  for (std::size_t size = 0; size < packed.size(); ++size) {
    const Bytes cut(packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(size));
    ASSERT_EQ(decoded(cut, line.size()), plainlyUnpacked(cut, line.size())) << size;
  }
}

TEST_F(PackBits, RandomBytesGiveALineAndStayInTheirBuffers) {
  std::mt19937 random(2);
  for (int round = 0; round < 20000; ++round) {
    Bytes packed(random() % 300);
    for (auto& value : packed) value = static_cast<std::uint8_t>(random());
    const std::size_t widthPx = 1 + random() % 600;
    ASSERT_EQ(decoded(packed, widthPx), plainlyUnpacked(packed, widthPx)) << "round " << round;
  }
}

TEST_F(PackBits, RandomRecordsNeverLeaveTheirBuffers) {
  constexpr std::int32_t kPages[] = {0x101, 0x102, 0x208, 0x210, 0x420};
  std::mt19937 random(3);
  for (int round = 0; round < 2000; ++round) {
    DecodedPage page(*decoder_, kPages[random() % 5], 1 + random() % 100);
    ASSERT_TRUE(page.accepted);
    for (int i = 0; i < 10; ++i) {
      Bytes bytes(random() % 400);
      for (auto& value : bytes) value = static_cast<std::uint8_t>(random());
      page.write({static_cast<std::int32_t>(random() % 7), static_cast<std::int32_t>(random() % 10) - 1, bytes});
      ASSERT_GE(page.lines, 0);
      ASSERT_LE(page.lines, 1);
    }
    page.end();
  }
}

}  // namespace
