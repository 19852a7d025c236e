// A whole JPEG picture: a failure, or a BMP of which every byte can be read.
#include <memory>

#include "fuzz/touch.h"
#include "modules/JpegDecode.h"

using namespace orvalle_scan_api;

extern "C" IJpegDecode* CreateInstance();

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 1000000) return 0;
  const std::unique_ptr<IJpegDecode> decoder(CreateInstance());
  JPEGBANDINFO info{};
  if (decoder->OpenBand(data, static_cast<unsigned>(size), &info) == JPEGDECODE_OK) {
    // Large pictures only cost time here.
    if (std::int64_t{info.widthPixel} * info.heightPixel > 4000000) return 0;
  }
  tagQS_SCAN_IMAGEDATA image{};
  if (decoder->DecodePage(data, static_cast<unsigned>(size), &image) == JPEGDECODE_OK) {
    touchAll(image.data, image.dataSize);
    if (image.pixelData + image.pixelDataSize != image.data + image.dataSize) __builtin_trap();
  }
  return 0;
}
