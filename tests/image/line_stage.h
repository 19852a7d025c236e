// Drives one page through the line stage, with a decoder under the test's control.
#pragma once

#include "image/ScanDecThread.h"
#include "tests/fakes/fake_scan_dec.h"
#include "tests/fakes/test_bmp.h"
#include "tests/image/stage_run.h"

namespace fakes {

using namespace orvalle_scan_api;

struct LineStage : ::testing::Test {
  Settings settings;
  CScanError scanError;
  FakeScanDec decoder;
  CScanDecThread stage;  // ended before the decoder goes
  CImageData page;

  LineStage() { page.SetPageNo(1); }

  // PackBits records of one kind; each line is filled with its number.
  void receiveLines(int count, int width, COLORTYPE color = COLORTYPE_COLOR24BIT, int kind = 5, int code = 3) {
    const auto lineBytes = lineBytesOf(width, bitsOfColorType(color));
    page.m_rawData.StartWriteData(300, 300, width, 0, color, static_cast<std::uint32_t>(kind),
                                  static_cast<std::uint32_t>(code));
    for (int i = 1; i <= count; ++i) {
      const ByteVector line(lineBytes, static_cast<std::uint8_t>(i));
      ASSERT_EQ(page.m_rawData.WriteLineData(kind, code, line.data(), static_cast<unsigned>(lineBytes)), 0u);
    }
    page.m_rawData.FinishWriteData(false, 0);
  }
  void receiveBmp(int width, int height, int bpp, const ByteVector& pixels, int kind) {
    const COLORTYPE color = bpp == 24 ? COLORTYPE_COLOR24BIT : COLORTYPE_TRUEGRAY;
    const ByteVector bmp = makeBmp(width, height, bpp, pixels);
    page.m_rawData.StartWriteData(300, 300, width, height, color, static_cast<std::uint32_t>(kind), 2);
    ASSERT_EQ(page.m_rawData.WriteDataBlock(bmp.data(), static_cast<unsigned>(bmp.size())), 0u);
    page.m_rawData.FinishWriteData(false, 0);
  }
  SCANSTATUS run() {
    stage.WriteImage(&page);
    EXPECT_EQ(stage.Start1Image(settings.user, settings.device, &scanError, &decoder), 0u);
    EXPECT_EQ(collect(stage), &page);
    return scanError.Get();
  }
  ByteVector decoded() const {
    const CImageDataStore& store = page.m_decodedData;
    return store.IsEmpty() ? ByteVector() : ByteVector(store.GetData(), store.GetData() + store.GetDataSize());
  }
};

// The bytes of lines filled with their numbers, from first to last, up or down.
inline ByteVector numberedLines(int first, int last, std::size_t lineBytes) {
  ByteVector pixels;
  const int step = first <= last ? 1 : -1;
  for (int i = first; i != last + step; i += step) pixels.insert(pixels.end(), lineBytes, static_cast<std::uint8_t>(i));
  return pixels;
}

}  // namespace fakes
