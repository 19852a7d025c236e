// What a device finds out about a page by looking at it.
// Threads: reentrant.
#pragma once
#include "image/raster.h"
#include "protocol/page.h"

namespace vscan {

inline constexpr int kJudgeLevels = 5;  // 0 the least, 2 the usual, 4 the most

// True when next to nothing on the page is dark. The higher the level, the more dirt passes for blank.
bool isBlank(const Raster& raster, int level = 2);

// Colour, grey or mono. The higher a level, the less of colour, or of tones between black and white, it takes.
PageColor judgeColor(const Raster& raster, int colorLevel = 2, int greyLevel = 2);

}  // namespace vscan
