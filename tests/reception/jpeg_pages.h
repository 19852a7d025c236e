// JPEG files as pages.
#pragma once

#include "tests/modules/jpeg_pictures.h"
#include "tests/reception/scan_pictures.h"

namespace reception_test {

// The file image that the caller must get of a decoded JPEG.
inline ByteString toRgbBmp(const module_test::Pixels& pixels) {
  Picture picture{pixels.widthPx, pixels.heightPx, pixels.parts * 8, {}};
  for (int y = 0; y < pixels.heightPx; ++y) {
    const auto start = pixels.bytes.begin() + static_cast<std::ptrdiff_t>(pixels.lineBytes()) * y;
    picture.lines.emplace_back(start, start + static_cast<std::ptrdiff_t>(pixels.lineBytes()));
  }
  return expectedBmp(picture);
}

// A JPEG with what libjpeg itself makes of it.
struct JpegPage {
  ByteString file;
  ByteString bmp;
};
inline JpegPage makeJpegPage(int widthPx, int heightPx, int parts) {
  JpegPage page;
  page.file = module_test::encodeJpeg(module_test::drawPicture(widthPx, heightPx, parts));
  module_test::Pixels decoded;
  if (module_test::decodeWithLibjpeg(page.file, decoded)) page.bmp = toRgbBmp(decoded);
  return page;
}

}  // namespace reception_test
