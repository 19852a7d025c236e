// IImageEnhance on Leptonica. README.md tells what each item of the record does to a page.
// Threads: one caller at a time; several objects are independent of each other.
#pragma once

#include "bmp.h"
#include "modules/ImageEnhance.h"

namespace image_enhance {

// What Process answers besides 0, in the shape of the core's result codes.
inline constexpr unsigned int kNotEnhanced = 0x10701001;  // a picture routine gave no result
inline constexpr unsigned int kNoMemory = 0x30701002;
inline constexpr unsigned int kNoPage = 0x70701003;  // null, or a store that does not hold the page it promises

class ImageEnhance final : public orvalle_scan_api::IImageEnhance {
 public:
  unsigned int Process(orvalle_scan_api::CImageDataStore* source, orvalle_scan_api::_IE_PARAM* parameters,
                       int autoColorMode) override;
  orvalle_scan_api::tagQS_SCAN_IMAGEDATA GetResult() override;

 private:
  Result result_;
};

}  // namespace image_enhance
