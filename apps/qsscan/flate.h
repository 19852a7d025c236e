// Pages in Flate coding, by zlib.
#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

#include "page.h"

namespace qsscan {

// The lines as one zlib stream, as PDF takes them: top line first, colours R,G,B, each line behind a PNG filter byte
// (PDF predictor 15). Throws CommandError (cannot write).
void writeFlate(const Page& page, std::FILE* stream);

// The bytes as one zlib stream, as TIFF takes them.
std::vector<std::uint8_t> deflated(const std::vector<std::uint8_t>& bytes);

}  // namespace qsscan
