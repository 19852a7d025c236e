// A whole picture in one go.
// Threads: reentrant.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bmp_page.h"

namespace jpeg_decode {

// Decodes straight into page. Where data is damaged or ends early, the rest is mid-grey if at least the first lines
// came. On Failed and NoMemory page is empty.
Step decodePage(const std::uint8_t* data, std::size_t size, BmpPage& page);

}  // namespace jpeg_decode
