// A BMP that is turned on its way into the store, against one that is stored, finished and turned then.
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "reception/ImageDataStore.h"
#include "tests/fakes/test_bmp.h"

using namespace orvalle_scan_api;
using fakes::ByteVector;

namespace {

struct Stored {
  QSRSLT result;
  ByteVector bytes;
  int height;
  std::uint32_t buffSize;
};

Stored store(const ByteVector& data, int height, bool onTheWay) {
  // A block of exactly these bytes, so that a sanitizer sees every read beyond.
  const std::unique_ptr<unsigned char[]> exact(new unsigned char[data.size()]);
  std::copy(data.begin(), data.end(), exact.get());
  CImageDataStore store;
  store.StartWriteData(300, 200, 9, height, COLORTYPE_COLOR24BIT, 5, 2);
  const auto size = static_cast<unsigned>(data.size());
  const QSRSLT result =
      onTheWay ? store.WriteBmpUpsideDown(exact.get(), size) : store.WriteDataBlock(exact.get(), size);
  EXPECT_EQ(store.GetStatus(), 1);
  store.FinishWriteData(false, 0);
  if (!onTheWay) store.InvertImageHeight();
  return {
      result, {store.GetData(), store.GetData() + store.GetDataSize()}, store.GetHeightPixel(), store.GetBuffSize()};
}

void expectTheSame(const ByteVector& data, int height) {
  const Stored direct = store(data, height, true);
  const Stored later = store(data, height, false);
  EXPECT_EQ(direct.result, later.result);
  EXPECT_EQ(direct.bytes, later.bytes);
  EXPECT_EQ(direct.height, later.height);
  EXPECT_EQ(direct.buffSize, later.buffSize);
}

TEST(BmpTurnedOnItsWay, IsWhatTurningTheStoredOneGives) {
  for (const int bpp : {1, 8, 24}) {
    for (const int lines : {1, 2, 5, 6}) {
      const ByteVector bmp = fakes::makeBmp(9, lines, bpp, fakes::countingPixels(9, lines, bpp));
      for (int height = -1; height < 8; ++height) {
        SCOPED_TRACE(std::to_string(bpp) + " bits, " + std::to_string(lines) + " lines for " + std::to_string(height));
        expectTheSame(bmp, height);
      }
    }
  }
}

TEST(BmpTurnedOnItsWay, HasItsFirstLinesInTheOppositeOrderAndTheRestBehindThem) {
  const ByteVector pixels = fakes::countingPixels(9, 4, 24);
  ByteVector expected(pixels.begin(), pixels.begin() + 3 * 27);
  expected = fakes::upsideDown(expected, 27);
  expected.insert(expected.end(), pixels.begin() + 3 * 27, pixels.end());
  const Stored turned = store(fakes::makeBmp(9, 4, 24, pixels), 3, true);
  EXPECT_EQ(fakes::pixelsOf(turned.bytes), expected);
  EXPECT_EQ(turned.bytes[22], 3);
}

TEST(BmpTurnedOnItsWay, MayBeAnythingElse) {
  std::mt19937 random(9);
  const ByteVector whole = fakes::makeBmp(9, 5, 8, fakes::countingPixels(9, 5, 8));
  for (std::size_t size = 1; size <= whole.size(); size += size < 70 || size > 1070 ? 1 : 50) {
    SCOPED_TRACE("cut at " + std::to_string(size));
    expectTheSame({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}, 5);
  }
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    ByteVector bmp = fakes::makeBmp(9, 5, 24, fakes::countingPixels(9, 5, 24));
    for (std::size_t at = 0; at < 54; ++at) {
      if (random() % 12 == 0) bmp[at] = static_cast<std::uint8_t>(random());
    }
    expectTheSame(bmp, static_cast<int>(random() % 8));
  }
}

TEST(BmpTurnedOnItsWay, FailsAsAWriteDoes) {
  CImageDataStore store;
  store.StartWriteData(300, 200, 9, 5, COLORTYPE_COLOR24BIT, 5, 2);
  EXPECT_EQ(store.WriteBmpUpsideDown(nullptr, 5), 0x70402003u);
  EXPECT_EQ(store.GetStatus(), 0);
  store.StartWriteData(300, 200, 0x7FFFFFFF, 0x7FFFFFFF, COLORTYPE_COLOR24BIT, 5, 2);
  const ByteVector bmp = fakes::makeBmp(1, 1, 24, {1, 2, 3});
  EXPECT_EQ(store.WriteBmpUpsideDown(bmp.data(), static_cast<unsigned>(bmp.size())), 0x30402001u);
  EXPECT_TRUE(store.IsEmpty());
}

}  // namespace
