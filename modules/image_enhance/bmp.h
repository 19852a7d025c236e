// The BMP file image that a page comes in and goes out in: 54 bytes of headers, a palette of 2 or 256 greys below 24
// bits, then the lines, bottom line first and not padded.
// Threads: one caller at a time.
#pragma once

#include <optional>
#include <vector>

#include "modules/page_store_view.h"
#include "page.h"
#include "scan_image.h"

namespace image_enhance {

// A page in the store of the core. Borrowed: valid as long as the store is.
struct StoredPage {
  PageForm form;
  const std::uint8_t* pixels = nullptr;  // the bottom line
};

// Whether the store is empty or its page has a height of 0: there is nothing to enhance, and nothing wrong either.
bool hasNoLines(const orvalle_scan_api::PAGE_STORE_VIEW& store);

// The page in the store, read as the core reads it; nothing where its headers do not make sense, promise more than the
// store holds, or are larger than kMaxPageBytes.
std::optional<StoredPage> readStore(const orvalle_scan_api::PAGE_STORE_VIEW& store);

// A copy of its own.
Page copyOf(const StoredPage& stored);

// A finished page as GetResult hands it out.
class Result {
 public:
  void set(const Page& page);
  void clear();

  // Describes the file image, which stays owned by this object. Without a page, no data.
  orvalle_scan_api::tagQS_SCAN_IMAGEDATA describe();

 private:
  PageForm form_;
  std::vector<std::uint8_t> file_;
};

}  // namespace image_enhance
