// Brings the pixels of a page into the colour and the form in which its records carry them.
// Threads: reentrant.
#pragma once
#include "device/page_maker.h"

namespace vscan {

// Fills colour, compression and data of the page; its foundColor has to be what the host is to get. Throws Failure.
void encodePage(const GrantedScan& scan, Raster pixels, const PageOptions& options, Page& page);

}  // namespace vscan
