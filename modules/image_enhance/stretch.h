// A page brought to other numbers of pixels, so that its two resolutions can be exchanged.
// Threads: none of its own.
#pragma once

#include "page.h"

namespace image_enhance {

// The same picture with sides of 1 or more pixels; its depth and resolutions are those of the page. A pixel is the mean
// of what it covers; of a mono page it is black where at least half of that is.
Page stretched(const Page& page, int widthPx, int heightPx);

}  // namespace image_enhance
