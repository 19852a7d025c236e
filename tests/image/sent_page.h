// The ways in which a drawn page gets into the stores of a received one.
#pragma once

#include <gtest/gtest.h>

#include "tests/image/drawn_page.h"
#include "tests/modules/jpeg_pictures.h"

namespace fakes {

inline constexpr int kRaw = 2;
inline constexpr int kPacked = 3;
inline constexpr int kJpeg = 5;

inline void startLines(orvalle_scan_api::CImageData& page, int width, orvalle_scan_api::COLORTYPE color, int kind,
                       int code) {
  page.m_pCurrentStore = &page.m_rawData;
  page.m_rawData.StartWriteData(300, 300, width, 0, color, static_cast<unsigned>(kind), static_cast<unsigned>(code));
}

// All lines of the drawing as records of one kind and code, under the store's label of the same.
inline void sendLines(orvalle_scan_api::CImageData& page, const DrawnPage& drawn, orvalle_scan_api::COLORTYPE color,
                      int kind, int code) {
  startLines(page, drawn.width, color, kind, code);
  for (int y = 0; y < drawn.height; ++y) {
    writeRecord(page.m_rawData, kind, code, lineOf(drawn, y, kind == 6 ? "bgr" : "rgb"));
  }
  page.m_rawData.FinishWriteData(false, 0);
}

inline void sendPlanes(orvalle_scan_api::CImageData& page, const DrawnPage& drawn, int code) {
  startLines(page, drawn.width, orvalle_scan_api::COLORTYPE_COLOR24BIT, 2, code);
  for (int y = 0; y < drawn.height; ++y) {
    writeRecord(page.m_rawData, 2, code, lineOf(drawn, y, "r"));
    writeRecord(page.m_rawData, 3, code, lineOf(drawn, y, "g"));
    writeRecord(page.m_rawData, 4, code, lineOf(drawn, y, "b"));
  }
  page.m_rawData.FinishWriteData(false, 0);
}

inline void sendJpeg(orvalle_scan_api::CImageData& page, const ByteVector& jpeg, int width, int height) {
  page.m_pCurrentStore = &page.m_jpegData;
  page.m_jpegData.StartWriteData(300, 300, width, height, orvalle_scan_api::COLORTYPE_COLOR24BIT, 5, kJpeg);
  page.m_jpegData.WriteJpegBlock(jpeg.data(), static_cast<unsigned>(jpeg.size()));
  page.m_jpegData.FinishWriteData(false, height);
}

inline ByteVector jpegOf(const DrawnPage& drawn) {
  module_test::Pixels picture{drawn.width, drawn.height, drawn.bpp == 8 ? 1 : 3, {}};
  for (int y = 0; y < drawn.height; ++y) {
    const ByteVector line = lineOf(drawn, y);
    picture.bytes.insert(picture.bytes.end(), line.begin(), line.end());
  }
  return module_test::encodeJpeg(picture);
}

// What the library of the format itself makes of the picture.
inline DrawnPage decoded(const ByteVector& jpeg) {
  module_test::Pixels picture;
  EXPECT_TRUE(module_test::decodeWithLibjpeg(jpeg, picture));
  DrawnPage page{picture.widthPx, picture.heightPx, picture.parts == 1 ? 8 : 24, {}};
  for (const std::uint8_t value : picture.bytes) page.rgb.insert(page.rgb.end(), picture.parts == 1 ? 3 : 1, value);
  return page;
}

}  // namespace fakes
