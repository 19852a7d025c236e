// The colour profiles that the scanner hands out: what its pixels mean.
// Threads: reentrant.
#pragma once
#include "support/little_endian.h"

namespace vscan {

Bytes colorProfile();  // sRGB
Bytes greyProfile();   // D50 white, gamma 2.2

}  // namespace vscan
