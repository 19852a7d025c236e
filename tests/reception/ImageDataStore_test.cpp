#include "reception/ImageDataStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>

#include "image/JpegHeader.h"
#include "image/ScanDecType.h"
#include "tests/fakes/test_bmp.h"

using namespace orvalle_scan_api;
using fakes::ByteVector;

namespace {

constexpr std::uint32_t kStep = 26214400;
constexpr std::uint32_t kMiB = 1024 * 1024;

ByteVector bytesOf(const CImageDataStore& store) {
  return store.IsEmpty() ? ByteVector() : ByteVector(store.GetData(), store.GetData() + store.GetDataSize());
}

void start(CImageDataStore& store, std::uint32_t code, int width = 0, int height = 0,
           COLORTYPE color = COLORTYPE_COLOR24BIT) {
  store.StartWriteData(300, 200, width, height, color, 5, code);
}

void fill(CImageDataStore& store, const ByteVector& bmp, int width, int height,
          COLORTYPE color = COLORTYPE_COLOR24BIT) {
  start(store, 2, width, height, color);
  ASSERT_EQ(store.WriteDataBlock(bmp.data(), static_cast<unsigned>(bmp.size())), 0u);
}

// SOI, an APP0, SOF0 with the height, some bytes behind it.
ByteVector jpegOfHeight(unsigned height) {
  ByteVector jpeg = {0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 1, 1, 1, 44, 1, 44, 0, 0};
  const ByteVector sof = {0xFF,
                          0xC0,
                          0,
                          17,
                          8,
                          static_cast<std::uint8_t>(height >> 8),
                          static_cast<std::uint8_t>(height),
                          0,
                          100,
                          3,
                          1,
                          0x22,
                          0,
                          2,
                          0x11,
                          1,
                          3,
                          0x11,
                          1,
                          0,
                          0};
  jpeg.insert(jpeg.end(), sof.begin(), sof.end());
  return jpeg;
}

}  // namespace

TEST(ImageDataStore, ANewStoreIsEmptyAndOf24Bits) {
  const CImageDataStore store;
  EXPECT_TRUE(store.IsEmpty());
  EXPECT_EQ(store.GetStatus(), 0);
  EXPECT_EQ(store.GetColorType(), 5);
  EXPECT_EQ(store.GetBitPerPixel(), 24);
  EXPECT_FALSE(store.IsWriteDataFinished());
}

TEST(ImageDataStore, AModuleSeesTheMembersThroughItsView) {
  CImageDataStore store;
  store.StartWriteData(300, 200, 7, 9, COLORTYPE_TRUEGRAY, 7, 3);
  const ByteVector line(5, 0xAB);
  ASSERT_EQ(store.WriteDataBlock(line.data(), 5), 0u);
  const PAGE_STORE_VIEW& view = ViewPageStore(&store);
  EXPECT_EQ(view.data, store.GetData());
  EXPECT_EQ(view.dataSize, 5u);
  EXPECT_EQ(view.blockSize, kStep);
  EXPECT_EQ(view.resolutionX, 300);
  EXPECT_EQ(view.resolutionY, 200);
  EXPECT_EQ(view.widthPixel, 7);
  EXPECT_EQ(view.heightPixel, 9);
  EXPECT_EQ(view.colorType, COLORTYPE_TRUEGRAY);
  EXPECT_EQ(view.dataKind, 7u);
  EXPECT_EQ(view.compressCode, 3u);
  EXPECT_EQ(view.status, 1);
  EXPECT_EQ(view.readPosition, 0u);
}

TEST(ImageDataStore, AFirstWriteOf30MiBToAJpegStoreTakesExactlyThat) {
  CImageDataStore store;
  start(store, 5, 100, 100);
  const ByteVector data(30 * kMiB, 1);
  ASSERT_EQ(store.WriteJpegBlock(data.data(), static_cast<unsigned>(data.size())), 0u);
  EXPECT_EQ(store.GetBuffSize(), 30 * kMiB);
}

TEST(ImageDataStore, AFirstWriteToAnUncompressedStoreOfKnownSizeTakesTheWholeBmp) {
  CImageDataStore store;
  start(store, 2, 100, 50);
  const ByteVector data(10, 1);
  ASSERT_EQ(store.WriteDataBlock(data.data(), 10), 0u);
  EXPECT_EQ(store.GetBuffSize(), 54u + 300 * 50);
  EXPECT_EQ(store.GetDataSize(), 10u);
}

TEST(ImageDataStore, AFirstWriteToAnUncompressedStoreWithoutAHeightTakesTheStep) {
  CImageDataStore store;
  start(store, 2, 100, 0);
  const ByteVector data(10, 1);
  ASSERT_EQ(store.WriteDataBlock(data.data(), 10), 0u);
  EXPECT_EQ(store.GetBuffSize(), kStep);
}

TEST(ImageDataStore, CodeZeroCountsAsUncompressed) {
  CImageDataStore store;
  start(store, 0, 100, 50);
  EXPECT_TRUE(store.IsNoComp());
  EXPECT_EQ(store.CalcReallocBuffSize(0, 0, 10), 54u + 300 * 50);
}

TEST(ImageDataStore, TheGrowthRuleHolds) {
  struct Row {
    const char* name;
    std::uint32_t code;
    std::uint32_t buff, used, add;
    std::uint64_t expected;
  };
  // A BMP of 100 by 50 pixels of 24 bits is 15054 bytes.
  const Row kRows[] = {
      {"first write, compressed", 3, 0, 0, 10, kStep},
      {"first write of exactly the step", 3, 0, 0, kStep, kStep},
      {"first write above the step", 3, 0, 0, kStep + 1, kStep + 1},
      {"first write, known size", 2, 0, 0, 15054, 15054},
      {"first write above the known size adds a step to it", 2, 0, 0, 15055, 15054 + kStep},
      {"first write above the known size and the step", 2, 0, 0, kStep + 1, kStep + 1},
      {"room is left", 3, kStep, 100, 100, kStep},
      {"the room is just enough", 3, kStep, kStep - 100, 100, kStep},
      {"one byte too many", 3, kStep, kStep - 100, 101, 2 * kStep},
      {"a large write takes exactly what it needs", 3, kStep, 100, kStep + 1, kStep + 101},
      {"a large write that fits", 3, 4 * kStep, 100, kStep + 1, 4 * kStep},
      {"sums beyond 32 bits do not wrap", 3, 0xF0000000, 0xF0000000, 0x20000000, 0x110000000},
  };
  for (const Row& row : kRows) {
    CImageDataStore store;
    start(store, row.code, 100, 50);
    EXPECT_EQ(store.CalcReallocBuffSize(row.buff, row.used, row.add), row.expected) << row.name;
  }
}

TEST(ImageDataStore, APageThatCannotFitInto4GiBIsRefusedAndTheBlockKept) {
  CImageDataStore store;
  start(store, 2, 0x7FFFFFFF, 0x7FFFFFFF);
  const ByteVector data(10, 1);
  EXPECT_EQ(store.WriteDataBlock(data.data(), 10), 0x30402001u);
  EXPECT_TRUE(store.IsEmpty());
  start(store, 3);
  ASSERT_EQ(store.WriteDataBlock(data.data(), 10), 0u);
  EXPECT_EQ(store.WriteDataBlock(data.data(), 0xFFFFFFFF), 0x30402001u);
  EXPECT_EQ(bytesOf(store), data);
}

TEST(ImageDataStore, NegativeDimensionsCountAsUnknown) {
  CImageDataStore store;
  start(store, 2, -5, 100);
  EXPECT_EQ(store.CalcReallocBuffSize(0, 0, 10), kStep);
  start(store, 2, 5, -100);
  EXPECT_EQ(store.CalcReallocBuffSize(0, 0, 10), kStep);
  EXPECT_EQ(store.GetWidthBytes(), 15u);
}

TEST(ImageDataStore, NullDataIsRefusedBeforeTheStatusChanges) {
  CImageDataStore store;
  EXPECT_EQ(store.WriteDataBlock(nullptr, 4), 0x70402003u);
  EXPECT_EQ(store.WriteLineData(1, 3, nullptr, 4), 0x70402003u);
  EXPECT_EQ(store.GetStatus(), 0);
  EXPECT_EQ(store.GetHeightPixel(), 0);
}

TEST(ImageDataStore, AnyRowOfWritesGivesTheirBytesAndTheCapacityOfTheRule) {
  std::mt19937 random(20240601);
  for (int round = 0; round < 30; ++round) {
    CImageDataStore store;
    const std::uint32_t code = round % 2 == 0 ? 2 : 3;
    start(store, code, static_cast<int>(random() % 3000), static_cast<int>(random() % 3000));
    ByteVector model;
    std::uint64_t capacity = 0;
    for (int i = 0; i < 12; ++i) {
      const ByteVector data(random() % (3 * kMiB), static_cast<std::uint8_t>(random()));
      const auto size = static_cast<unsigned>(data.size());
      const std::uint64_t wanted =
          store.CalcReallocBuffSize(store.GetBuffSize(), static_cast<std::uint32_t>(model.size()), size);
      capacity = std::max(capacity, wanted);
      ASSERT_EQ(store.WriteDataBlock(data.data() == nullptr ? model.data() + 1 : data.data(), size), 0u);
      model.insert(model.end(), data.begin(), data.end());
      ASSERT_EQ(store.GetBuffSize(), capacity);
    }
    ASSERT_EQ(bytesOf(store), model);
    store.FinishWriteData(false, 0);
    ASSERT_EQ(store.GetBuffSize(), model.size());
    ASSERT_EQ(bytesOf(store), model);
  }
}

TEST(ImageDataStore, LineRecordsComeBackAsTheyWereWritten) {
  CImageDataStore store;
  start(store, 3);
  const ByteVector first = {1, 2, 3};
  const ByteVector third = {9};
  ASSERT_EQ(store.WriteLineData(5, 3, first.data(), 3), 0u);
  ASSERT_EQ(store.WriteLineData(1, 2, nullptr, 0), 0u);
  ASSERT_EQ(store.WriteLineData(7, 3, third.data(), 1), 0u);
  EXPECT_EQ(store.GetHeightPixel(), 3);
  EXPECT_EQ(store.GetDataSize(), 3u * 12 + 4);
  for (int pass = 0; pass < 2; ++pass) {  // the end takes the cursor back to the start
    int kind = -1;
    int code = -1;
    unsigned size = 99;
    unsigned char* line = store.ReadLineData(&kind, &code, &size);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(ByteVector(line, line + size), first);
    EXPECT_EQ(kind, 5);
    EXPECT_EQ(code, 3);
    ASSERT_NE(store.ReadLineData(&kind, &code, &size), nullptr);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(kind, 1);
    EXPECT_EQ(code, 2);
    line = store.ReadLineData(&kind, &code, &size);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(ByteVector(line, line + size), third);
    EXPECT_EQ(store.ReadLineData(&kind, &code, &size), nullptr);
    EXPECT_EQ(kind, 0);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(size, 0u);
  }
  int kind = 0;
  unsigned size = 0;
  EXPECT_EQ(store.ReadLineData(&kind, nullptr, &size), nullptr);
}

TEST(ImageDataStore, ALineRecordThatIsCutAnywhereIsTheEnd) {
  const ByteVector line = {1, 2, 3, 4, 5};
  CImageDataStore whole;
  start(whole, 3);
  ASSERT_EQ(whole.WriteLineData(5, 3, line.data(), 5), 0u);
  const ByteVector record = bytesOf(whole);
  for (std::size_t cut = 0; cut < record.size(); ++cut) {
    CImageDataStore store;
    start(store, 3);
    const ByteVector part(record.begin(), record.begin() + static_cast<std::ptrdiff_t>(cut));
    ASSERT_EQ(store.WriteDataBlock(record.data(), static_cast<unsigned>(cut)), 0u);
    store.FinishWriteData(false, 0);
    int kind = 5;
    int code = 5;
    unsigned size = 5;
    EXPECT_EQ(store.ReadLineData(&kind, &code, &size), nullptr) << cut;
    EXPECT_EQ(size, 0u);
  }
}

TEST(ImageDataStore, AnEmptyStoreToleratesEveryOperation) {
  CImageDataStore store;
  start(store, 2, 10, 10);
  int value = 0;
  unsigned size = 1;
  EXPECT_EQ(store.ReadLineData(&value, &value, &size), nullptr);
  size = 1;
  EXPECT_EQ(store.ReadLineData(&size), nullptr);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(store.ReadLineData(nullptr), nullptr);
  EXPECT_EQ(store.GetPixelDataPtr(&size), nullptr);
  EXPECT_FALSE(store.InvertImageHeight());
  EXPECT_FALSE(store.InvertImageWidth());
  EXPECT_EQ(store.TrimImageHeight(5), 0);
  EXPECT_EQ(store.CompleteBmp(), 0u);
  EXPECT_FALSE(store.MoveDataBlockTo(nullptr));
  store.FinishWriteData(false, 5);
  EXPECT_EQ(store.GetStatus(), 2);
  EXPECT_EQ(store.GetImageData().data, nullptr);
}

TEST(ImageDataStore, TheLinesOfABmpAreReadFromTheFirstInMemory) {
  struct Row {
    int width, bpp;
    COLORTYPE color;
  };
  for (const Row& row :
       {Row{100, 1, COLORTYPE_BLACKANDWHITE}, Row{5, 8, COLORTYPE_TRUEGRAY}, Row{5, 24, COLORTYPE_COLOR24BIT}}) {
    CImageDataStore store;
    const ByteVector pixels = fakes::countingPixels(row.width, 3, row.bpp);
    fill(store, fakes::makeBmp(row.width, 3, row.bpp, pixels), row.width, 3, row.color);
    ByteVector read;
    unsigned size = 0;
    for (int i = 0; i < 3; ++i) {
      unsigned char* line = store.ReadLineData(&size);
      ASSERT_NE(line, nullptr);
      EXPECT_EQ(size, fakes::lineBytesOf(row.width, row.bpp));
      read.insert(read.end(), line, line + size);
    }
    EXPECT_EQ(read, pixels);
    EXPECT_EQ(store.ReadLineData(&size), nullptr);
    EXPECT_EQ(size, 0u);
    EXPECT_NE(store.ReadLineData(&size), nullptr);  // from the start again
  }
}

TEST(ImageDataStore, BmpLinesNeedTheCodeOfABmp) {
  CImageDataStore store;
  fill(store, fakes::makeBmp(2, 2, 24, fakes::countingPixels(2, 2, 24)), 2, 2);
  store.UpdateCompressType(3);
  unsigned size = 1;
  EXPECT_EQ(store.ReadLineData(&size), nullptr);
}

TEST(ImageDataStore, LineRecordsWithTheCodeOfABmpAreNotTakenForOne) {
  CImageDataStore store;
  start(store, 2, 4, 0);
  const ByteVector line(60, 'B');
  ASSERT_EQ(store.WriteLineData(7, 2, line.data(), 60), 0u);
  const ByteVector before = bytesOf(store);
  EXPECT_FALSE(store.IsBmp());
  unsigned size = 0;
  EXPECT_EQ(store.ReadLineData(&size), nullptr);
  store.FinishWriteData(false, 77);
  EXPECT_EQ(store.GetHeightPixel(), 77);
  EXPECT_EQ(store.InvertImageHeight(), false);
  EXPECT_EQ(store.TrimImageHeight(1), 0);
  EXPECT_EQ(bytesOf(store), before);
}

TEST(ImageDataStore, FinishingGivesBackWhatIsNotUsedAndSetsTheHeightOfABmp) {
  CImageDataStore store;
  fill(store, fakes::makeBmp(4, 5, 24, fakes::countingPixels(4, 3, 24)), 4, 5);
  EXPECT_GT(store.GetBuffSize(), store.GetDataSize());
  store.FinishWriteData(false, 3);
  EXPECT_EQ(store.GetBuffSize(), store.GetDataSize());
  EXPECT_EQ(store.GetHeightPixel(), 3);
  EXPECT_EQ(store.GetStatus(), 2);
  EXPECT_EQ(bytesOf(store), fakes::makeBmp(4, 3, 24, fakes::countingPixels(4, 3, 24)));
}

TEST(ImageDataStore, FinishingASecondTimeChangesNothing) {
  CImageDataStore store;
  fill(store, fakes::makeBmp(4, 3, 24, fakes::countingPixels(4, 3, 24)), 4, 3);
  store.FinishWriteData(false, 0);
  const ByteVector before = bytesOf(store);
  store.FinishWriteData(true, 1);
  EXPECT_EQ(store.GetStatus(), 2);
  EXPECT_EQ(store.GetHeightPixel(), 3);
  EXPECT_EQ(bytesOf(store), before);
}

TEST(ImageDataStore, DiscardingFreesTheBlock) {
  CImageDataStore store;
  const ByteVector data(10, 1);
  ASSERT_EQ(store.WriteDataBlock(data.data(), 10), 0u);
  store.FinishWriteData(true, 0);
  EXPECT_TRUE(store.IsEmpty());
  EXPECT_EQ(store.GetStatus(), 3);
  EXPECT_TRUE(store.IsWriteDataFinished());
}

TEST(ImageDataStore, CancelFreesTheBlockAndFinishingTurnsItIntoFinished) {
  CImageDataStore store;
  const ByteVector data(10, 1);
  ASSERT_EQ(store.WriteDataBlock(data.data(), 10), 0u);
  store.CancelProc();
  EXPECT_TRUE(store.IsEmpty());
  EXPECT_EQ(store.GetStatus(), 4);
  EXPECT_FALSE(store.IsWriteDataFinished());
  store.FinishWriteData(false, 0);
  EXPECT_EQ(store.GetStatus(), 2);
}

TEST(ImageDataStore, StartingAnewKeepsTheStatus) {
  CImageDataStore store;
  const ByteVector data(10, 1);
  ASSERT_EQ(store.WriteDataBlock(data.data(), 10), 0u);
  store.FinishWriteData(false, 0);
  start(store, 3);
  EXPECT_TRUE(store.IsEmpty());
  EXPECT_EQ(store.GetStatus(), 2);
}

TEST(ImageDataStore, TheHeightOfAJpegIsLoweredAndNeverRaised) {
  struct Row {
    const char* name;
    unsigned announced;
    int height;
    int expected;
  };
  const Row kRows[] = {{"fewer lines than announced", 3500, 3000, 3000},
                       {"as many as announced", 3000, 3000, 3000},
                       {"more than announced", 3000, 3500, 3000},
                       {"no height announced", 0, 3000, 3000},
                       {"no height known", 3000, 0, 3000}};
  for (const Row& row : kRows) {
    CImageDataStore store;
    start(store, 5);
    const ByteVector jpeg = jpegOfHeight(row.announced);
    ASSERT_EQ(store.WriteJpegBlock(jpeg.data(), static_cast<unsigned>(jpeg.size())), 0u);
    store.FinishWriteData(false, row.height);
    EXPECT_EQ(CJpegHeader().GetHeightPix(store.GetData(), store.GetDataSize()), row.expected) << row.name;
  }
}

TEST(ImageDataStore, MovingABlockCopiesNothingAndLeavesTheSourceEmpty) {
  CImageDataStore source;
  CImageDataStore target;
  const ByteVector old(3, 1);
  ASSERT_EQ(target.WriteDataBlock(old.data(), 3), 0u);
  source.StartWriteData(300, 200, 7, 9, COLORTYPE_TRUEGRAY, 7, 3);
  const ByteVector data(10, 2);
  ASSERT_EQ(source.WriteDataBlock(data.data(), 10), 0u);
  unsigned char* const block = source.GetData();
  EXPECT_TRUE(source.MoveDataBlockTo(&target));
  EXPECT_EQ(target.GetData(), block);
  EXPECT_EQ(target.GetDataSize(), 10u);
  EXPECT_EQ(target.GetBuffSize(), 10u);
  EXPECT_EQ(target.GetStatus(), 2);
  EXPECT_EQ(target.GetResolutionX(), 300);
  EXPECT_EQ(target.GetResolutionY(), 200);
  EXPECT_EQ(target.GetWidthPixel(), 7);
  EXPECT_EQ(target.GetHeightPixel(), 9);
  EXPECT_EQ(target.GetColorType(), COLORTYPE_TRUEGRAY);
  EXPECT_EQ(target.GetDataType(), 7u);
  EXPECT_EQ(target.GetCompressType(), 3u);
  EXPECT_TRUE(source.IsEmpty());
  EXPECT_EQ(source.GetDataSize(), 0u);
}

TEST(ImageDataStore, AnAdoptedBlockIsFinished) {
  CImageDataStore store;
  auto* block = static_cast<unsigned char*>(std::calloc(8, 1));
  store.SetDataMemAddress(block, 8);
  EXPECT_EQ(store.GetData(), block);
  EXPECT_EQ(store.GetDataSize(), 8u);
  EXPECT_EQ(store.GetBuffSize(), 8u);
  EXPECT_EQ(store.GetStatus(), 2);
}

TEST(ImageDataStore, TheCursorStartsAnewWithEveryBlock) {
  CImageDataStore store;
  start(store, 3);
  const ByteVector line = {1, 2, 3};
  for (int i = 0; i < 2; ++i) ASSERT_EQ(store.WriteLineData(5, 3, line.data(), 3), 0u);
  int kind = 0;
  int code = 0;
  unsigned size = 0;
  ASSERT_NE(store.ReadLineData(&kind, &code, &size), nullptr);
  store.DeleteData();
  start(store, 3);
  ASSERT_EQ(store.WriteLineData(6, 3, line.data(), 2), 0u);
  ASSERT_NE(store.ReadLineData(&kind, &code, &size), nullptr);
  EXPECT_EQ(kind, 6);
}

TEST(ImageDataStore, TrimmingToTheCurrentHeightOrToNothingDoesNothing) {
  CImageDataStore store;
  const ByteVector bmp = fakes::makeBmp(4, 3, 24, fakes::countingPixels(4, 3, 24));
  fill(store, bmp, 4, 3);
  for (int height : {3, 4, 0, -1}) {
    EXPECT_EQ(store.TrimImageHeight(height), 0);
    EXPECT_EQ(bytesOf(store), bmp);
    EXPECT_EQ(store.GetHeightPixel(), 3);
  }
}

TEST(ImageDataStore, TrimmingKeepsTheFirstLinesInMemory) {
  CImageDataStore store;
  fill(store, fakes::makeBmp(4, 3, 24, fakes::countingPixels(4, 3, 24)), 4, 3);
  EXPECT_EQ(store.TrimImageHeight(2), 0);
  EXPECT_EQ(store.GetHeightPixel(), 2);
  unsigned pixelBytes = 0;
  unsigned char* pixels = store.GetPixelDataPtr(&pixelBytes);
  ASSERT_NE(pixels, nullptr);
  EXPECT_EQ(ByteVector(pixels, pixels + pixelBytes), fakes::countingPixels(4, 2, 24));
}

TEST(ImageDataStore, PromisedLinesThatNeverCameAreMadeUpInWhite) {
  struct Row {
    int bpp;
    COLORTYPE color;
  };
  for (const Row& row : {Row{1, COLORTYPE_BLACKANDWHITE}, Row{8, COLORTYPE_TRUEGRAY}, Row{24, COLORTYPE_COLOR24BIT}}) {
    CImageDataStore store;
    fill(store, fakes::makeBmp(10, 4, row.bpp, fakes::countingPixels(10, 1, row.bpp)), 10, 4, row.color);
    store.FinishWriteData(false, 0);
    ASSERT_EQ(store.CompleteBmp(), 0u);
    ByteVector pixels = fakes::countingPixels(10, 1, row.bpp);
    pixels.resize(pixels.size() * 4, 0xFF);
    EXPECT_EQ(bytesOf(store), fakes::makeBmp(10, 4, row.bpp, pixels));
    EXPECT_EQ(store.GetStatus(), 2);
    EXPECT_EQ(store.GetImageData().pixelDataSize, pixels.size());
  }
}

TEST(ImageDataStore, BytesBehindTheLastLineAreGivenUp) {
  CImageDataStore store;
  ByteVector bmp = fakes::makeBmp(4, 3, 24, fakes::countingPixels(4, 3, 24));
  ByteVector longer = bmp;
  longer.resize(longer.size() + 7);
  fill(store, longer, 4, 3);
  ASSERT_EQ(store.CompleteBmp(), 0u);
  EXPECT_EQ(bytesOf(store), bmp);
}

TEST(ImageDataStore, ThePageRecordDescribesTheStore) {
  CImageDataStore store;
  store.StartWriteData(300, 200, 5, 2, COLORTYPE_TRUEGRAY, 7, 2);
  const ByteVector bmp = fakes::makeBmp(5, 2, 8, fakes::countingPixels(5, 2, 8));
  ASSERT_EQ(store.WriteDataBlock(bmp.data(), static_cast<unsigned>(bmp.size())), 0u);
  store.FinishWriteData(false, 0);
  const tagQS_SCAN_IMAGEDATA image = store.GetImageData();
  EXPECT_EQ(image.data, store.GetData());
  EXPECT_EQ(image.dataSize, bmp.size());
  EXPECT_EQ(image.pixelData, store.GetData() + 54 + 1024);
  EXPECT_EQ(image.pixelDataSize, 10u);
  EXPECT_EQ(image.resolutionX, 300);
  EXPECT_EQ(image.resolutionY, 200);
  EXPECT_EQ(image.bitPerPixel, 8);
  EXPECT_EQ(image.widthPixel, 5);
  EXPECT_EQ(image.heightPixel, 2);
  EXPECT_EQ(image.widthBytes, 5);
  EXPECT_FALSE(image.isBlankPage);
  EXPECT_FALSE(image.pageScanIsTerminated);
  EXPECT_EQ(image.imageEnhanceTerminated, 0);
}

TEST(ImageDataStore, RandomBmpHeadersLeadNowhereOutsideTheBlock) {
  std::mt19937 random(7);
  for (int round = 0; round < 3000; ++round) {
    ByteVector bmp = fakes::makeBmp(9, 5, 24, fakes::countingPixels(9, 5, 24));
    for (std::size_t at = 2; at < 54; ++at) {
      if (random() % 6 == 0) bmp[at] = static_cast<std::uint8_t>(random());
    }
    const int depths[] = {0, 1, 2, 4, 8, 24, 32};
    bmp[28] = static_cast<std::uint8_t>(depths[random() % 7]);
    bmp[29] = 0;
    bmp[20] = bmp[21] = bmp[24] = bmp[25] = 0;  // sizes that still fit into memory
    bmp.resize(random() % (bmp.size() + 1));
    CImageDataStore store;
    start(store, 2, 9, 5);
    ASSERT_EQ(store.WriteDataBlock(bmp.data() == nullptr ? fakes::makeBmp(1, 1, 24, {}).data() : bmp.data(),
                                   static_cast<unsigned>(bmp.size())),
              0u);
    store.FinishWriteData(false, static_cast<int>(random() % 8));
    unsigned size = 0;
    unsigned sum = 0;
    for (int i = 0; i < 100000; ++i) {
      const unsigned char* line = store.ReadLineData(&size);
      if (line == nullptr) break;
      sum += line[0] + line[size - 1];
    }
    store.InvertImageHeight();
    store.InvertImageWidth();
    store.TrimImageHeight(static_cast<int>(random() % 6));
    const tagQS_SCAN_IMAGEDATA image = store.GetImageData();
    if (image.pixelData != nullptr) {
      for (unsigned i = 0; i < image.pixelDataSize; ++i) sum += image.pixelData[i];
    }
    EXPECT_LE(sum, 0xFFFFFFFFu);
  }
}

TEST(ScanDecType, KindsHaveTheirDepthAndOthersNone) {
  const int kExpected[] = {0, 1, 24, 24, 24, 24, 24, 8, 0};
  for (unsigned kind = 0; kind < 9; ++kind) EXPECT_EQ(CScanDecType::GetBppFromDataType(kind), kExpected[kind]) << kind;
  EXPECT_TRUE(CScanDecType::IsNonCompress(2));
  EXPECT_TRUE(CScanDecType::IsPackBitsCompress(3));
  EXPECT_TRUE(CScanDecType::IsJpegCompress(5));
}
