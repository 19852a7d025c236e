#include "image_enhance.h"

namespace image_enhance {

unsigned int ImageEnhance::Process(orvalle_scan_api::CImageDataStore*, orvalle_scan_api::_IE_PARAM*, int) { return 0; }

// No data: there was nothing to do, and the core keeps the page that it has.
orvalle_scan_api::tagQS_SCAN_IMAGEDATA ImageEnhance::GetResult() { return {}; }

}  // namespace image_enhance
