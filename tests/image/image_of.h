// The image whose bytes a test holds.
#pragma once

#include "image/BitmapImage.h"
#include "tests/fakes/test_bmp.h"

namespace fakes {

inline unsigned sizeOf(const ByteVector& bytes) { return static_cast<unsigned>(bytes.size()); }
inline CBitmapImage imageOf(ByteVector& bmp) { return {bmp.data(), sizeOf(bmp)}; }

}  // namespace fakes
