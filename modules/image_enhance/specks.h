// Small pieces of ink that belong together: the dots of a printed screen, of needle print, of a leader (". . . .").
// Threads: none of its own.
#pragma once

#include <vector>

#include "pix.h"

namespace image_enhance {

struct SpeckReach {
  int gapX, gapY;    // specks with no more clear paper than this between them are together
  int rowStep;       // so are specks that follow one another evenly on one line, no further apart than this,
  int rowTolerance;  // with their feet and their steps equal to so many pixels
};

// A picture of those specks of the given one that are together with enough others to be no dust.
PixPtr specksInCompany(Pix& specks, const SpeckReach& reach);

}  // namespace image_enhance
