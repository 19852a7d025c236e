// The lines of a page as one zlib stream, as PDF takes them.
#pragma once

#include <cstdio>

#include "page.h"

namespace qsscan {

// Top line first, colours R,G,B. Lines of 8 and 24 bits carry a PNG filter byte each (PDF predictor 15); those of one
// bit do not. Throws CommandError (cannot write).
void writeFlate(const Page& page, std::FILE* stream);

// Whether writeFlate gives lines of this depth a filter byte.
inline bool flateUsesPredictor(int bitsPerPixel) { return bitsPerPixel != 1; }

}  // namespace qsscan
