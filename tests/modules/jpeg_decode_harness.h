// Drives a JPEG decoder in both modes, as the JPEG stage of the core does.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "module_loader.h"
#include "modules/JpegDecode.h"

namespace module_test {

// The outcome of either mode: lines top line first.
struct Decoded {
  int status = 0;
  int widthPx = 0;
  int heightPx = 0;  // as told by the header
  int bitsPerPixel = 0;
  std::vector<std::uint8_t> bytes;
};

inline std::unique_ptr<orvalle_scan_api::IJpegDecode> jpegModule() {
  return createInstance<orvalle_scan_api::IJpegDecode>("QsJpegDecode");
}

// A heap block of exactly these bytes, so that a sanitizer sees every read beyond.
inline std::unique_ptr<std::uint8_t[]> exactCopy(const std::vector<std::uint8_t>& bytes) {
  std::unique_ptr<std::uint8_t[]> copy(new std::uint8_t[bytes.size()]);
  std::copy(bytes.begin(), bytes.end(), copy.get());
  return copy;
}

inline Decoded decodePage(orvalle_scan_api::IJpegDecode& decoder, const std::vector<std::uint8_t>& jpeg) {
  const auto data = exactCopy(jpeg);
  orvalle_scan_api::tagQS_SCAN_IMAGEDATA image{};
  Decoded decoded;
  decoded.status = decoder.DecodePage(data.get(), static_cast<unsigned>(jpeg.size()), &image);
  if (decoded.status == 0) {
    decoded.widthPx = image.widthPixel;
    decoded.heightPx = image.heightPixel;
    decoded.bitsPerPixel = image.bitPerPixel;
    const std::size_t lineBytes = static_cast<std::size_t>(image.widthBytes);
    for (std::size_t i = static_cast<std::size_t>(image.heightPixel); i-- > 0;) {
      const std::uint8_t* line = image.pixelData + i * lineBytes;
      decoded.bytes.insert(decoded.bytes.end(), line, line + lineBytes);
    }
  }
  decoder.EndPage();
  return decoded;
}

// span 0 feeds as many bytes at a time as the decoder asks for.
inline Decoded decodeBand(orvalle_scan_api::IJpegDecode& decoder, const std::vector<std::uint8_t>& jpeg,
                          std::size_t span = 0) {
  using namespace orvalle_scan_api;
  const auto data = exactCopy(jpeg);
  JPEGBANDINFO info{};
  Decoded decoded;
  decoded.status = decoder.OpenBand(data.get(), static_cast<unsigned>(jpeg.size()), &info);
  if (decoded.status != 0) return decoded;
  decoded.widthPx = info.widthPixel;
  decoded.heightPx = info.heightPixel;
  decoded.bitsPerPixel = info.bitPerPixel;
  EXPECT_GT(info.writeSizeSpan, 0);
  if (span == 0) span = static_cast<std::size_t>(info.writeSizeSpan);
  for (std::size_t fed = 0; fed < jpeg.size();) {
    const std::size_t count = std::min(span, jpeg.size() - fed);
    // The bytes of one call are gone before the next.
    const auto piece = exactCopy({data.get() + fed, data.get() + fed + count});
    decoded.status = decoder.WriteBand(piece.get(), static_cast<unsigned>(count));
    if (decoded.status != 0) break;
    fed += count;
    do {
      void* line = nullptr;
      unsigned size = 0;
      decoded.status = decoder.ReadBandLine(&line, &size);
      const auto* bytes = static_cast<const std::uint8_t*>(line);
      if (size != 0) decoded.bytes.insert(decoded.bytes.end(), bytes, bytes + size);
    } while (decoded.status == JPEGDECODE_MORE_LINES);
    if (decoded.status != JPEGDECODE_NEED_INPUT) break;
  }
  decoder.CloseBand();
  return decoded;
}

}  // namespace module_test
