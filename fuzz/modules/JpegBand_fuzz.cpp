// A JPEG picture in pieces: a failure, or all the lines that its header tells.
// Input: the size of a piece, then the picture.
#include <algorithm>
#include <memory>

#include "fuzz/touch.h"
#include "modules/JpegDecode.h"

using namespace orvalle_scan_api;

extern "C" IJpegDecode* CreateInstance();

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > 1000000) return 0;
  const std::size_t span = data[0] + std::size_t{1};
  ++data;
  --size;
  const std::unique_ptr<IJpegDecode> decoder(CreateInstance());
  JPEGBANDINFO info{};
  if (decoder->OpenBand(data, static_cast<unsigned>(size), &info) != JPEGDECODE_OK) return 0;
  if (std::int64_t{info.widthPixel} * info.heightPixel > 4000000) return 0;

  std::int32_t lines = 0;
  JPEGDECODESTATUS status = JPEGDECODE_NEED_INPUT;
  for (std::size_t fed = 0; fed < size && status == JPEGDECODE_NEED_INPUT; fed += span) {
    status = decoder->WriteBand(data + fed, static_cast<unsigned>(std::min(span, size - fed)));
    if (status != JPEGDECODE_OK) __builtin_trap();
    do {
      void* line = nullptr;
      unsigned lineBytes = 0;
      status = decoder->ReadBandLine(&line, &lineBytes);
      touchAll(static_cast<const std::uint8_t*>(line), lineBytes);
      if (lineBytes != 0) ++lines;
    } while (status == JPEGDECODE_MORE_LINES);
  }
  if (status == JPEGDECODE_OK ? lines != info.heightPixel : lines != 0) __builtin_trap();
  return 0;
}
