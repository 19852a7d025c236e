// How alike two pictures are, as Leptonica measures it.
#pragma once

#include "picture.h"

namespace e2e {

// Peak signal-to-noise ratio in dB; 0 for pictures of different size or kind, 1000 for equal ones.
double psnrDb(const Picture& a, const Picture& b);

// The share of pixels whose difference nobody could overlook: by more than a third of the range, also where edges may
// lie a pixel beside each other. 1 for pictures of different size or kind.
double visiblyDifferent(const Picture& a, const Picture& b);

// As bright as the colours are.
Picture greyOf(const Picture& picture);

// The picture at a lower resolution, a whole fraction of its own: each pixel is the mean of the area that it stands
// for.
Picture shrunk(const Picture& picture, int times);

}  // namespace e2e
