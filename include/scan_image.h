// A finished page as ReadImageData hands it out, and the forecast of a page's format.
#pragma once

#include <cstddef>
#include <type_traits>

#include "scan_types.h"

namespace orvalle_scan_api {

// The page is a BMP file image in memory, the first line in memory being the bottom of the page, colours B,G,R.
// Lines are (widthPixel * bitPerPixel + 7) / 8 bytes and NOT padded to a multiple of four.
// data stays owned by the library until FreeImageData of that page.
struct tagQS_SCAN_IMAGEDATA {
  std::uint8_t* data;           // the whole file image; null for a blank page
  std::size_t dataSize;         // bytes at data
  std::uint8_t* pixelData;      // first pixel byte inside data
  std::uint32_t pixelDataSize;  // bytes of pixel data
  std::int32_t resolutionX;     // dots per inch
  std::int32_t resolutionY;
  std::int32_t bitPerPixel;  // 1 (a set bit is white), 8 (grey) or 24
  std::int32_t widthPixel;
  std::int32_t heightPixel;
  std::int32_t widthBytes;    // bytes of one line
  bool isBlankPage;           // the page was blank; data is null
  bool pageScanIsTerminated;  // the device ended the page at its maximum length
  IMAGEENHACETERMINATEREASON imageEnhanceTerminated;
};
static_assert(std::is_standard_layout_v<tagQS_SCAN_IMAGEDATA> && std::is_trivially_copyable_v<tagQS_SCAN_IMAGEDATA>);
static_assert(offsetof(tagQS_SCAN_IMAGEDATA, pixelDataSize) == 24 && offsetof(tagQS_SCAN_IMAGEDATA, bitPerPixel) == 36);
static_assert(offsetof(tagQS_SCAN_IMAGEDATA, isBlankPage) == 52);
static_assert(offsetof(tagQS_SCAN_IMAGEDATA, imageEnhanceTerminated) == 56 && sizeof(tagQS_SCAN_IMAGEDATA) == 64);

// What a page will look like, computed from the settings alone; nothing asks the device.
struct QS_BITMAP_IMAGE_INFO {
  std::int16_t bitPerPixel;
  std::int32_t resolutionX;  // dots per inch
  std::int32_t resolutionY;
  std::int32_t pixelsPerMeterX;
  std::int32_t pixelsPerMeterY;
  std::int32_t widthPixel;
  std::int32_t heightPixel;
  std::int32_t widthBytes;  // bytes of one line, not padded
};
static_assert(std::is_standard_layout_v<QS_BITMAP_IMAGE_INFO> && std::is_trivially_copyable_v<QS_BITMAP_IMAGE_INFO>);
static_assert(offsetof(QS_BITMAP_IMAGE_INFO, resolutionX) == 4 && sizeof(QS_BITMAP_IMAGE_INFO) == 32);

}  // namespace orvalle_scan_api
