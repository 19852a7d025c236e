// A page turned by quarters, for sheets that are fed on their side or upside down.
#pragma once

#include "page.h"

namespace qsscan {

// Turns the page clockwise by 0, 90, 180 or 270 degrees; every pixel stays what it is. Resolutions change places with
// the sides.
Page turned(Page page, int degrees);

}  // namespace qsscan
