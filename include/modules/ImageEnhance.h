// What the core requires of QsImageEnhance.so.
//
// The module exports `extern "C" IImageEnhance* CreateInstance()`.
// Threads: one caller at a time, the enhancement worker.
#pragma once

#include "../scan_image.h"
#include "enhance_param.h"
#include "page_store_view.h"

namespace orvalle_scan_api {

class IImageEnhance {
 public:
  virtual ~IImageEnhance() = default;

  // Applies what parameters selects to the page in source: a BMP, bottom line first, B,G,R or 8 or 1 bit, lines not
  // padded. autoColorMode: 2 the device found the page mono, 1 grey, 0 colour or not asked. 0 is success; a failure
  // leaves the page as it is.
  virtual unsigned int Process(CImageDataStore* source, _IE_PARAM* parameters, int autoColorMode) = 0;

  // Describes the result of the last Process: a BMP of the same form, every field filled, owned by the module until the
  // next Process. data is null when there was nothing to do; the core then keeps the page.
  virtual tagQS_SCAN_IMAGEDATA GetResult() = 0;
};

}  // namespace orvalle_scan_api
