// How the last stage leads a page through the change of resolution: what it asks, what it feeds, what it makes of the
// answers. The linker leads its calls of the resampler and its writes over here.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "image/ImageEnhanceThread.h"
#include "tests/fakes/fake_image_enhance.h"
#include "tests/fakes/test_bmp.h"
#include "tests/image/raised_lines.h"
#include "tests/image/stage_run.h"

using namespace orvalle_scan_api;
using fakes::ByteVector;

namespace {

// Of the last page; written by its worker, read after it was collected.
struct Calls {
  int inits = 0;
  int starts = 0;
  int ends = 0;
  int failedStart = 0;  // the start of this number answers 0
  CHRESO_OPEN open{};
  std::vector<CHRESO_WRITE> writes;
  CHRESO_WRITE end{};
} calls;

// Writes to any store by anything but the store itself.
struct StoreWrites {
  int count = 0;
  int failed = 0;  // the write of this number finds no memory
} storeWrites;

}  // namespace

extern "C" {
QSRSLT __real__ZN16orvalle_scan_api15CImageDataStore14WriteDataBlockEPKhj(CImageDataStore*, const unsigned char*,
                                                                          unsigned);
QSRSLT __wrap__ZN16orvalle_scan_api15CImageDataStore14WriteDataBlockEPKhj(CImageDataStore* self,
                                                                          const unsigned char* data, unsigned size) {
  if (++storeWrites.count == storeWrites.failed) return 0x30402001;
  return __real__ZN16orvalle_scan_api15CImageDataStore14WriteDataBlockEPKhj(self, data, size);
}

bool __real__ZN13CQvChangeReso14ChangeResoInitEP11CHRESO_OPEN(CQvChangeReso*, CHRESO_OPEN*);
int __real__ZN13CQvChangeReso20ChangeResoWriteStartEv(CQvChangeReso*);
int __real__ZN13CQvChangeReso15ChangeResoWriteEP12CHRESO_WRITEPi(CQvChangeReso*, CHRESO_WRITE*, int*);
int __real__ZN13CQvChangeReso18ChangeResoWriteEndEP12CHRESO_WRITEPi(CQvChangeReso*, CHRESO_WRITE*, int*);

bool __wrap__ZN13CQvChangeReso14ChangeResoInitEP11CHRESO_OPEN(CQvChangeReso* self, CHRESO_OPEN* open) {
  ++calls.inits;
  calls.open = *open;
  return __real__ZN13CQvChangeReso14ChangeResoInitEP11CHRESO_OPEN(self, open);
}
int __wrap__ZN13CQvChangeReso20ChangeResoWriteStartEv(CQvChangeReso* self) {
  if (++calls.starts == calls.failedStart) return 0;
  return __real__ZN13CQvChangeReso20ChangeResoWriteStartEv(self);
}
int __wrap__ZN13CQvChangeReso15ChangeResoWriteEP12CHRESO_WRITEPi(CQvChangeReso* self, CHRESO_WRITE* write, int* lines) {
  calls.writes.push_back(*write);
  return __real__ZN13CQvChangeReso15ChangeResoWriteEP12CHRESO_WRITEPi(self, write, lines);
}
int __wrap__ZN13CQvChangeReso18ChangeResoWriteEndEP12CHRESO_WRITEPi(CQvChangeReso* self, CHRESO_WRITE* write,
                                                                    int* lines) {
  ++calls.ends;
  calls.end = *write;
  return __real__ZN13CQvChangeReso18ChangeResoWriteEndEP12CHRESO_WRITEPi(self, write, lines);
}
}

namespace {

// One page through a stage of its own.
struct RaisedPage {
  fakes::Settings settings;
  CScanError scanError;
  fakes::FakeImageEnhance enhancer;
  CImageEnhanceThread stage;
  CImageData page;

  RaisedPage(AXIS from, AXIS to) {
    page.SetPageNo(3);
    settings.device.resolution = from;
    settings.user.resolution = to;
    enhancer.processAnswer = 1;  // the page keeps the label that it came with
    calls = {};
  }
  void decoded(int width, int height, COLORTYPE color, const ByteVector& pixels) {
    const ByteVector bmp = fakes::makeBmp(width, height, bitsOfColorType(color), pixels);
    page.m_pCurrentStore = &page.m_decodedData;
    page.m_decodedData.StartWriteData(300, 300, width, height, color, 5, 2);
    ASSERT_EQ(page.m_decodedData.WriteDataBlock(bmp.data(), static_cast<unsigned>(bmp.size())), 0u);
    page.m_decodedData.FinishWriteData(false, 0);
  }
  QSRSLT run(int failedWrite = 0) {
    storeWrites = {0, failedWrite};
    stage.WriteImage(&page);
    EXPECT_EQ(stage.Start1Image(settings.user, settings.device, &scanError, &enhancer, {}), 0u);
    EXPECT_EQ(fakes::collect(stage), &page);
    return scanError.Get().status;
  }
  ByteVector finalPixels() const {
    const CImageDataStore& store = page.m_finalData;
    if (store.IsEmpty()) return {};
    return fakes::pixelsOf({store.GetData(), store.GetData() + store.GetDataSize()});
  }
};

TEST(ChangeOfResolution, IsAskedInTheTermsOfThePage) {
  const struct {
    COLORTYPE color;
    unsigned code;
  } kRows[] = {{COLORTYPE_BLACKANDWHITE, 0x101}, {COLORTYPE_ERRORDIFFUSION, 0x102}, {COLORTYPE_TRUEGRAY, 0x208},
               {COLORTYPE_COLOR256, 0x420},      {COLORTYPE_COLOR24BIT, 0x420},     {COLORTYPE_AUTO, 0x420}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.color);
    RaisedPage raised({200, 100}, {300, 150});
    const int bpp = bitsOfColorType(row.color);
    const std::size_t lineBytes = fakes::lineBytesOf(13, bpp);
    raised.decoded(13, 5, row.color, fakes::countingPixels(13, 5, bpp));
    const unsigned char* const pixels = raised.page.m_decodedData.GetData() + fakes::headerBytesOf(bpp);
    EXPECT_EQ(raised.run(), 0u);
    EXPECT_EQ(calls.inits, 1);
    EXPECT_EQ(calls.open.inResoX, 200);
    EXPECT_EQ(calls.open.inResoY, 100);
    EXPECT_EQ(calls.open.outResoX, 300);
    EXPECT_EQ(calls.open.outResoY, 150);
    EXPECT_EQ(calls.open.formatFlags, row.code);
    EXPECT_EQ(calls.open.inLinePixels, 13u);
    EXPECT_EQ(calls.open.colorOrder, 3);
    EXPECT_FALSE(calls.open.alignOutLine);
    EXPECT_EQ(calls.open.leftPadPixels, 0u);
    EXPECT_EQ(calls.starts, 2);
    ASSERT_EQ(calls.writes.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i) {
      const CHRESO_WRITE& write = calls.writes[i];
      EXPECT_EQ(write.lineKind, static_cast<int>(row.code));
      EXPECT_EQ(write.lineData, pixels + i * lineBytes) << "from the first line in memory on";
      EXPECT_EQ(write.lineBytes, lineBytes);
      EXPECT_FALSE(write.bottomUp);
    }
    EXPECT_EQ(calls.ends, 1);
    EXPECT_EQ(calls.end.lineData, calls.writes.back().lineData) << "the flush repeats the last line";
    EXPECT_EQ(raised.page.m_finalData.GetColorType(), row.color);
    EXPECT_EQ(raised.page.m_finalData.GetDataType(), 5u);
    EXPECT_EQ(raised.page.m_finalData.GetResolutionX(), 300);
    EXPECT_EQ(raised.page.m_finalData.GetResolutionY(), 150);
  }
}

// The same lines through a resampler of the test's own, put together line by line.
TEST(ChangeOfResolution, IsTheResamplersLinesOneAfterTheOtherAndItsFlushBehindThem) {
  const AXIS kWishes[] = {{600, 600}, {900, 600}, {450, 450}, {400, 300}, {300, 400}, {310, 330}, {450, 200}};
  for (const COLORTYPE color : {COLORTYPE_BLACKANDWHITE, COLORTYPE_TRUEGRAY, COLORTYPE_COLOR24BIT}) {
    for (const AXIS& wish : kWishes) {
      for (const int width : {24, 45}) {
        SCOPED_TRACE(std::to_string(color) + " to " + std::to_string(wish.x) + " by " + std::to_string(wish.y));
        constexpr int kHeight = 17;
        const int bpp = bitsOfColorType(color);
        const ByteVector pixels = fakes::countingPixels(width, kHeight, bpp);
        RaisedPage raised({300, 300}, wish);
        raised.decoded(width, kHeight, color, pixels);
        ASSERT_EQ(raised.run(), 0u);

        const fakes::RaisedLines expected = fakes::raiseLines(width, bpp, pixels, {300, 300}, wish);
        EXPECT_EQ(raised.page.m_finalData.GetWidthPixel(), expected.width);
        EXPECT_EQ(raised.page.m_finalData.GetHeightPixel(), expected.height);
        EXPECT_EQ(raised.finalPixels(), expected.pixels);
      }
    }
  }
}

TEST(ChangeOfResolution, MayGiveALineMoreThanTheRatioTells) {
  RaisedPage raised({200, 200}, {300, 300});
  raised.decoded(4, 3507, COLORTYPE_TRUEGRAY, ByteVector(4 * 3507, 0x40));
  EXPECT_EQ(raised.run(), 0u);
  // 3507 * 1.5 is 5260.5
  EXPECT_EQ(raised.page.m_finalData.GetHeightPixel(), 5261);
  const ByteVector pixels = raised.finalPixels();
  EXPECT_EQ(pixels.size(), 6u * 5261);
  for (const std::uint8_t value : pixels) ASSERT_NEAR(value, 0x40, 1);  // the last line in memory is one, too
  EXPECT_EQ(raised.page.GetFinalImage().pixelDataSize, 6u * 5261);
}

TEST(ChangeOfResolution, WithoutAFlushHasTheHeightOfTheRatioTruncated) {
  const struct {
    int height;
    unsigned wish;
    int expected;
  } kRows[] = {{1, 450, 1}, {2, 450, 3}, {1, 525, 1}, {2, 400, 2}, {2, 1000, 6}};
  for (const auto& row : kRows) {
    RaisedPage raised({300, 300}, {300, row.wish});
    raised.decoded(8, row.height, COLORTYPE_TRUEGRAY, ByteVector(static_cast<std::size_t>(8 * row.height), 0x40));
    EXPECT_EQ(raised.run(), 0u);
    EXPECT_EQ(raised.page.m_finalData.GetHeightPixel(), row.expected) << row.height << " at " << row.wish;
  }
}

TEST(ChangeOfResolution, OfWhichTheSecondStartFailsIsAnErrorOfAFinishedStore) {
  RaisedPage raised({300, 300}, {600, 600});
  raised.decoded(5, 8, COLORTYPE_TRUEGRAY, fakes::countingPixels(5, 8, 8));
  calls.failedStart = 2;
  EXPECT_EQ(raised.run(), 0x10703002u);
  EXPECT_EQ(raised.scanError.Get().errPageNo, 3u);
  EXPECT_TRUE(calls.writes.empty());
  EXPECT_EQ(calls.ends, 1) << "what was begun is ended";
  EXPECT_EQ(calls.end.lineData, nullptr);
  EXPECT_EQ(calls.end.lineKind, 0);
  EXPECT_EQ(raised.page.m_pCurrentStore, &raised.page.m_finalData);
  EXPECT_TRUE(raised.page.m_decodedData.IsEmpty());
  EXPECT_EQ(raised.page.m_finalData.GetStatus(), 2);
  EXPECT_EQ(raised.page.GetFinalImage().imageEnhanceTerminated, IMAGEENHANCE_FAILED);
}

// Header, lines and flush: whichever of them finds no memory is the last that is tried.
TEST(ChangeOfResolution, WhoseResultCannotBeWrittenIsAnErrorAndNothingIsWrittenBehindIt) {
  int writes = 0;
  ByteVector whole;
  {
    RaisedPage raised({300, 300}, {600, 600});
    raised.decoded(5, 8, COLORTYPE_TRUEGRAY, fakes::countingPixels(5, 8, 8));
    ASSERT_EQ(raised.run(), 0u);
    writes = storeWrites.count;
    whole = raised.finalPixels();
    ASSERT_GT(writes, 10);
    ASSERT_EQ(whole.size(), 160u);
  }
  for (int failed = 1; failed <= writes; ++failed) {
    SCOPED_TRACE("write " + std::to_string(failed) + " of " + std::to_string(writes));
    RaisedPage raised({300, 300}, {600, 600});
    raised.decoded(5, 8, COLORTYPE_TRUEGRAY, fakes::countingPixels(5, 8, 8));
    EXPECT_EQ(raised.run(failed), 0x30402001u);
    EXPECT_EQ(raised.scanError.Get().errPageNo, 3u);
    EXPECT_EQ(storeWrites.count, failed);
    EXPECT_EQ(calls.ends, 1) << "what was begun is ended";
    EXPECT_EQ(raised.page.m_pCurrentStore, &raised.page.m_finalData);
    EXPECT_TRUE(raised.page.m_decodedData.IsEmpty());
    EXPECT_EQ(raised.page.m_finalData.GetStatus(), 2);
    EXPECT_EQ(raised.page.GetFinalImage().imageEnhanceTerminated, IMAGEENHANCE_FAILED);
    const ByteVector present = raised.finalPixels();
    ASSERT_LT(present.size(), whole.size());
    EXPECT_TRUE(std::equal(present.begin(), present.end(), whole.begin()));
  }
}

TEST(ChangeOfResolution, IsJudgedByItsSecondStartAlone) {
  RaisedPage raised({300, 300}, {600, 600});
  raised.decoded(5, 8, COLORTYPE_TRUEGRAY, ByteVector(40, 0x40));
  calls.failedStart = 1;
  EXPECT_EQ(raised.run(), 0u);
  EXPECT_EQ(raised.finalPixels(), ByteVector(160, 0x40));
}

}  // namespace
