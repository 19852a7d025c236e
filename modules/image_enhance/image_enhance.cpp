#include "image_enhance.h"

#include <exception>
#include <new>

#include "steps.h"

namespace image_enhance {

unsigned int ImageEnhance::Process(orvalle_scan_api::CImageDataStore* source, orvalle_scan_api::_IE_PARAM* parameters,
                                   int autoColorMode) {
  try {
    result_.clear();
    if (source == nullptr || parameters == nullptr) return kNoPage;
    const Request request{*parameters, autoColorMode};
    // A request that changes no kind of page is not worth a look at the page.
    if (!isAnythingAsked({.bitsPerPixel = 24}, request) && !isAnythingAsked({.bitsPerPixel = 1}, request)) return 0;
    const orvalle_scan_api::PAGE_STORE_VIEW& store = orvalle_scan_api::ViewPageStore(source);
    if (hasNoLines(store)) return 0;
    const std::optional<StoredPage> stored = readStore(store);
    if (!stored) return kNoPage;
    if (!isAnythingAsked(stored->form, request)) return 0;
    Page page = copyOf(*stored);
    if (enhance(page, request)) result_.set(page);
    return 0;
  } catch (const std::bad_alloc&) {
    return kNoMemory;
  } catch (const std::exception&) {
    return kNotEnhanced;
  }
}

orvalle_scan_api::tagQS_SCAN_IMAGEDATA ImageEnhance::GetResult() { return result_.describe(); }

}  // namespace image_enhance
