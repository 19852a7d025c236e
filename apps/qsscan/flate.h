// The lines of a page as one zlib stream, as PDF takes them.
#pragma once

#include <cstdio>

#include "page.h"

namespace qsscan {

// Top line first, colours R,G,B, each line behind a PNG filter byte (PDF predictor 15). Throws CommandError (cannot
// write).
void writeFlate(const Page& page, std::FILE* stream);

}  // namespace qsscan
