// A black-and-white page in CCITT group 4 coding, by libtiff.
#pragma once

#include <cstdio>

#include "page.h"

namespace qsscan {

// The coded lines of a 1-bit page, top line first, without any file around them. Throws CommandError (cannot write).
void writeFaxG4(const Page& page, std::FILE* stream);

}  // namespace qsscan
