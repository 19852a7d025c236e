#include "image/stream_copy.h"

#include <gtest/gtest.h>

#include <vector>

using namespace orvalle_scan_api;

namespace {

TEST(StreamCopy, CopiesEveryLengthFromAndToEveryPlaceAndNothingBeside) {
  std::vector<unsigned char> source(512);
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<unsigned char>(i * 7 + 1);
  for (std::size_t to = 0; to < 64; ++to) {
    for (std::size_t length = 0; length < 300; length += length < 140 ? 1 : 13) {
      const std::size_t from = (to * 5 + length) % 64;
      std::vector<unsigned char> copy(512, 0xEE);
      std::vector<unsigned char> expected = copy;
      for (std::size_t i = 0; i < length; ++i) expected[to + i] = source[from + i];
      streamCopy(copy.data() + to, source.data() + from, length);
      streamCopyDone();
      ASSERT_EQ(copy, expected) << length << " bytes from " << from << " to " << to;
    }
  }
}

}  // namespace
