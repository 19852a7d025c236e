// A black-and-white page in CCITT group 4 coding, by libtiff.
#pragma once

#include <cstdint>
#include <vector>

#include "page.h"

namespace qsscan {

// The coded lines of a 1-bit page, top line first, without any file around them. Throws CommandError (cannot write).
std::vector<std::uint8_t> codeFaxG4(const Page& page);

}  // namespace qsscan
