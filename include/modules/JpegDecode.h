// What the core requires of QsJpegDecode.so.
//
// The module exports `extern "C" IJpegDecode* CreateInstance()`. Pixels leave as R,G,B in both modes.
// Threads: one caller at a time, the JPEG worker.
#pragma once

#include <cstddef>
#include <type_traits>

#include "../scan_image.h"

namespace orvalle_scan_api {

// 0 to 2 are no failure.
enum JPEGDECODESTATUS : std::int32_t {
  JPEGDECODE_OK = 0,
  JPEGDECODE_ERROR = 3,
  JPEGDECODE_INVALID_PARAMETER = 4,
  JPEGDECODE_LOW_MEMORY = 5,
  JPEGDECODE_MEMORY_PROC = 6,
  JPEGDECODE_CREATE_STREAM = 7,
  JPEGDECODE_WRITE_STREAM = 8,
  JPEGDECODE_NOT_OPENED = 9,
  JPEGDECODE_NEED_INPUT = 11,
  JPEGDECODE_MORE_LINES = 12,
  JPEGDECODE_WRITE_BAND = 14,
};

struct JPEGBANDINFO {
  std::int32_t resolutionX;  // dots per inch
  std::int32_t resolutionY;
  std::int32_t bitPerPixel;  // 8 or 24
  std::int32_t widthPixel;
  std::int32_t heightPixel;
  std::int32_t reserved;
  std::int32_t writeSizeSpan;  // bytes to feed with each WriteBand, above 0
};
static_assert(std::is_standard_layout_v<JPEGBANDINFO> && sizeof(JPEGBANDINFO) == 28);

class IJpegDecode {
 public:
  virtual ~IJpegDecode() = default;

  // Decodes a whole picture. result receives data, dataSize and bitPerPixel of a BMP file image, bottom line first,
  // that stays owned by the decoder until EndPage.
  virtual JPEGDECODESTATUS DecodePage(const void* data, unsigned int size, tagQS_SCAN_IMAGEDATA* result) = 0;

  // Releases that image; called whether decoding worked or not.
  virtual void EndPage() = 0;

  // Reads the header only.
  virtual JPEGDECODESTATUS OpenBand(const void* data, unsigned int size, JPEGBANDINFO* info) = 0;

  // Feeds compressed bytes, from the first byte of the picture on; 0 means accepted.
  virtual JPEGDECODESTATUS WriteBand(const void* data, unsigned int size) = 0;

  // Hands back the next decoded line, top line first; *size is 0 if there is none. 12: more lines are ready. 11: more
  // input is needed. The line stays valid until the next call.
  virtual JPEGDECODESTATUS ReadBandLine(void** line, unsigned int* size) = 0;

  virtual void CloseBand() = 0;

  // 1: a page with so many bytes of pixels may be decoded at once. Anything else asks for band decoding.
  virtual int GetDecodeMode(unsigned int pixelDataSize) = 0;
};

}  // namespace orvalle_scan_api
