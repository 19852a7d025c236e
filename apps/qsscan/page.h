// A page of pixels, copied out of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "icc_profile.h"
#include "scan_image.h"

namespace qsscan {

// Lines lie bottom first and unpadded, as the library hands them out: a set mono bit is white, colours are B,G,R.
struct Page {
  int number = 0;  // from 1, blank pages counted
  int widthPx = 0;
  int heightPx = 0;
  int bitsPerPixel = 0;  // 1, 8 (grey) or 24
  int dpiX = 0;
  int dpiY = 0;
  std::size_t lineBytes = 0;
  std::vector<std::uint8_t> pixels;
  bool cutAtMaximum = false;                  // the device ended the page at its maximum length
  std::shared_ptr<const IccProfile> profile;  // null where none was asked for or given

  // Line y of the picture, counted from its top.
  const std::uint8_t* line(int y) const {
    return pixels.data() + static_cast<std::size_t>(heightPx - 1 - y) * lineBytes;
  }

  // The profile where it describes pages of this depth, else null. Black and white needs none.
  const IccProfile* fittingProfile() const {
    return profile && profile->channels * 8 == bitsPerPixel ? profile.get() : nullptr;
  }
};

// Copies the page out. Nothing when the description contradicts itself: sizes of 0, an unknown depth, or pixels that
// would lie outside the data. A resolution that the page does not tell becomes fallbackDpi. memory is used for the
// pixels where it has their size, which spares fresh memory its first touch.
std::optional<Page> copyPage(const orvalle_scan_api::tagQS_SCAN_IMAGEDATA& image, int number, int fallbackDpi,
                             std::vector<std::uint8_t> memory = {});

}  // namespace qsscan
