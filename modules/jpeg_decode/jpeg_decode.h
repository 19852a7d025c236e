// IJpegDecode on libjpeg: pages in one go, or bands. README.md tells what comes of damaged pictures.
// Threads: one caller at a time.
#pragma once

#include <optional>

#include "band_decoder.h"
#include "bmp_page.h"
#include "modules/JpegDecode.h"

namespace jpeg_decode {

// A page with more bytes of pixels is better decoded in bands.
inline constexpr unsigned int kMaxPageModeBytes = 256u << 20;
// Bytes that a caller feeds with each WriteBand.
inline constexpr std::int32_t kBandFeedBytes = 0x40000;

class JpegDecode final : public orvalle_scan_api::IJpegDecode {
 public:
  using Status = orvalle_scan_api::JPEGDECODESTATUS;

  Status DecodePage(const void* data, unsigned int size, orvalle_scan_api::tagQS_SCAN_IMAGEDATA* result) override;
  void EndPage() override;
  Status OpenBand(const void* data, unsigned int size, orvalle_scan_api::JPEGBANDINFO* info) override;
  Status WriteBand(const void* data, unsigned int size) override;
  Status ReadBandLine(void** line, unsigned int* size) override;
  void CloseBand() override;
  int GetDecodeMode(unsigned int pixelDataSize) override;

 private:
  BmpPage page_;
  std::optional<BandDecoder> band_;
};

}  // namespace jpeg_decode
