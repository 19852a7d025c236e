// IImageEnhance that leaves every page as it is. See README.md for what that means to a page.
// Threads: one caller at a time.
#pragma once

#include "modules/ImageEnhance.h"

namespace image_enhance {

class ImageEnhance final : public orvalle_scan_api::IImageEnhance {
 public:
  unsigned int Process(orvalle_scan_api::CImageDataStore* source, orvalle_scan_api::_IE_PARAM* parameters,
                       int autoColorMode) override;
  orvalle_scan_api::tagQS_SCAN_IMAGEDATA GetResult() override;
};

}  // namespace image_enhance
