#include "image/packbits.h"

#include <gtest/gtest.h>

#include <random>

#include "host.h"

namespace vscan {
namespace {

Bytes packed(const Bytes& line) {
  Bytes out;
  packBits(line, out);
  return out;
}

TEST(PackBits, KnownLinesComeOutAsExpected) {
  const struct {
    Bytes line;
    Bytes expected;
  } rows[] = {
      {{}, {}},
      {{7}, {0, 7}},
      {{7, 7}, {255, 7}},
      {{1, 2, 3}, {2, 1, 2, 3}},
      {{1, 2, 2, 3}, {3, 1, 2, 2, 3}},
      {{1, 2, 2, 2}, {0, 1, 254, 2}},
      {Bytes(128, 9), {129, 9}},
      {Bytes(129, 9), {129, 9, 0, 9}},
      {Bytes(130, 9), {129, 9, 255, 9}},
  };
  for (const auto& row : rows) EXPECT_EQ(packed(row.line), row.expected) << testing::PrintToString(row.line);
}

TEST(PackBits, EachLineComesBackWhenUnpacked) {
  std::mt19937 random(1);
  for (int trial = 0; trial < 3000; ++trial) {
    Bytes line(random() % 600);
    const unsigned values = 1 + random() % 4;  // few values make runs of every length
    for (auto& byte : line) byte = static_cast<std::uint8_t>(random() % 5 == 0 ? random() % values : line.front());
    const Bytes coded = packed(line);
    ASSERT_EQ(test::unpackBits(coded), line);
    ASSERT_LE(coded.size(), line.size() + line.size() / 64 + 2);
    for (std::size_t i = 0; i < coded.size();) {  // 128 means nothing and is never sent
      ASSERT_NE(coded[i], 128);
      i += coded[i] < 128 ? coded[i] + 2u : 2u;
    }
  }
}

TEST(PackBits, OutputIsAppended) {
  Bytes out{1, 2, 3};
  packBits(Bytes{5, 5}, out);
  EXPECT_EQ(out, (Bytes{1, 2, 3, 255, 5}));
}

}  // namespace
}  // namespace vscan
