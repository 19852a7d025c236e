// Taking ink off a page: what lies under a mask becomes what lies around it.
// Threads: none of their own.
#pragma once

#include "histogram.h"
#include "pix.h"

namespace image_enhance {

// Calls paint(x, y) for each masked pixel, from the top. False: the mask is empty.
template <class Paint>
bool forEachMasked(const PageForm& page, const Pix& mask, Paint paint) {
  bool hasAny = false;
  for (int y = 0; y < page.heightPx; ++y) {
    const BitLine line(mask, y);
    for (int x = 0; x < page.widthPx; ++x) {
      if (x % 32 == 0 && !line.anyAround(x)) {
        x += 31;
      } else if (line[x]) {
        paint(x, y);
        hasAny = true;
      }
    }
  }
  return hasAny;
}

// Every masked pixel becomes the brightest of the nearest unmasked ones in eight directions (where two lines cross, the
// four straight ones all lead along a line), no more than reachPx steps away; where there are none, white. On a mono
// page, white. False: the mask is empty.
bool paintFromAround(Page& page, const Pix& mask, int reachPx);

// Every masked pixel becomes this colour; on a mono page, white.
bool paintFlat(Page& page, const Pix& mask, const Color& color);

}  // namespace image_enhance
