// Threads: reentrant.
#pragma once
#include "image/raster.h"
#include "protocol/scan_settings.h"
#include "support/little_endian.h"

namespace vscan {

// The quality for a RATE of 0 to 100, which says how hard to compress: 95 at 0, 85 at 50, 50 at 100.
int jpegQuality(int rate);

// A baseline JPEG file with the resolution in its header. A grey raster gives one component whatever the sampling.
// Throws Failure when the encoder cannot do it, so for a side above 65500 pixels.
Bytes encodeJpeg(const Raster& raster, int quality, JpegSampling sampling, int dpiX, int dpiY);

}  // namespace vscan
