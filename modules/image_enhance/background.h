// Paper made evenly white, so that one threshold fits shaded and tinted parts of a page as well.
// Threads: none of its own.
#pragma once

#include "page.h"

namespace image_enhance {

// gray: an 8-bit page. In each tile of tileX by tileY pixels, which are brought into what makes sense, three quarters
// of the pixels at most are ink, so that the rest tells the paper; the tiles are averaged with so many neighbours to
// either side. Tiles that are dark altogether (a black box) take the paper of their neighbours.
void whitenPaper(Page& gray, int tileX, int tileY, int neighbours);

}  // namespace image_enhance
