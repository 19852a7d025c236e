// Lines that go to their final place, against a page that is put together line by line and then turned.
#include "image/decoded_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "image/BitmapHeader.h"
#include "reception/ImageDataStore.h"
#include "tests/fakes/test_bmp.h"

using namespace orvalle_scan_api;
using fakes::ByteVector;
using Order = DecodedLines::Order;

namespace {

struct Page {
  CImageDataStore store;

  Page(int width, int height, COLORTYPE color) {
    const int bpp = bitsOfColorType(color);
    store.StartWriteData(300, 300, width, height, color, 5, 2);
    CBitmapHeader bitmap;
    int headerBytes = 0;
    const unsigned char* const header =
        bitmap.CreateBmpHeader(300, 300, bpp, width, height, bitmap.CreateColorTable(bpp), &headerBytes);
    EXPECT_EQ(store.WriteDataBlock(header, static_cast<unsigned>(headerBytes)), 0u);
  }
  ByteVector pixels() const { return fakes::pixelsOf({store.GetData(), store.GetData() + store.GetDataSize()}); }
};

// The plain form: what the buffer holds, line after line, white where the decoder cannot have written.
void takePlainly(ByteVector& pixels, const ByteVector& buffer, int lines, int bytes, std::size_t lineBytes, int left) {
  const std::size_t stride = static_cast<std::size_t>(std::max(0, bytes) / lines);
  for (int i = 0; i < std::min(lines, left); ++i) {
    for (std::size_t x = 0; x < lineBytes; ++x) {
      const std::size_t at = static_cast<std::size_t>(i) * stride + x;
      pixels.push_back(x < stride && at < buffer.size() ? buffer[at] : 0xFF);
    }
  }
}

TEST(DecodedLines, AreThePageThatWasPutTogetherLineByLineAndTurned) {
  std::mt19937 random(3);
  const auto upTo = [&random](int most) { return static_cast<int>(random() % static_cast<unsigned>(most + 1)); };
  for (int round = 0; round < 3000; ++round) {
    SCOPED_TRACE(round);
    const COLORTYPE color = round % 3 == 0   ? COLORTYPE_BLACKANDWHITE
                            : round % 3 == 1 ? COLORTYPE_TRUEGRAY
                                             : COLORTYPE_COLOR24BIT;
    const int height = upTo(7);
    Page page(1 + upTo(20), height, color);
    const std::size_t lineBytes = page.store.GetWidthBytes();
    const Order order = round % 2 == 0 ? Order::BottomFirst : Order::TopFirst;
    // As long as a line in half of the rounds: the decoder then writes to the page itself.
    ByteVector buffer(round % 4 < 2 ? lineBytes : static_cast<std::size_t>(1 + upTo(100)));
    DecodedLines lines(buffer.data(), buffer.size(), order);
    ASSERT_EQ(lines.open(&page.store), 0u);
    ByteVector expected;
    for (int call = upTo(6); call > 0; --call) {
      ByteVector written(buffer.size());
      for (auto& byte : written) byte = static_cast<std::uint8_t>(random());
      std::copy(written.begin(), written.end(), lines.room());
      const int count = 1 + (upTo(3) == 0 ? upTo(5) : 0);
      const int bytes = upTo(1) == 0 ? count * static_cast<int>(lineBytes) : upTo(120) - 10;
      if (bytes == 0) continue;
      takePlainly(expected, written, count, bytes, lineBytes, height - lines.total());
      ASSERT_EQ(lines.take(count, bytes), 0u);
    }
    lines.finish();
    ASSERT_EQ(expected.size(), static_cast<std::size_t>(lines.total()) * lineBytes);
    if (order == Order::BottomFirst) expected = fakes::upsideDown(expected, lineBytes);
    ASSERT_EQ(page.pixels(), expected);
  }
}

TEST(DecodedLines, AreWrittenToTheirPlaceByADecoderThatFinishesOneLineAtATime) {
  Page page(5, 3, COLORTYPE_COLOR24BIT);
  ByteVector buffer(15);
  DecodedLines lines(buffer.data(), buffer.size(), Order::BottomFirst);
  ASSERT_EQ(lines.open(&page.store), 0u);
  const unsigned char* const pixels = page.store.GetData() + 54;
  for (int i = 2; i >= 0; --i) {
    EXPECT_EQ(lines.room(), pixels + 15 * i);
    EXPECT_EQ(lines.take(1, 15), 0u);
  }
  EXPECT_EQ(lines.room(), buffer.data()) << "a full page has no place for what a decoder may still write";
}

TEST(DecodedLines, AreAnErrorWhereThereAreNone) {
  Page page(5, 3, COLORTYPE_COLOR24BIT);
  ByteVector buffer(15);
  DecodedLines lines(buffer.data(), buffer.size(), Order::TopFirst);
  ASSERT_EQ(lines.open(&page.store), 0u);
  EXPECT_EQ(lines.take(0, 15), 0x70406007u);
  EXPECT_EQ(lines.take(1, 0), 0x70406007u);
  EXPECT_EQ(lines.total(), 0);
  page.store.CancelProc();
  lines.finish();
  EXPECT_EQ(page.store.GetDataSize(), 0u) << "a cancelled page stays empty";
}

}  // namespace
