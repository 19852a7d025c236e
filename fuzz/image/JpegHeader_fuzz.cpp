// The fields of a JPEG stream, read and set over any bytes.
#include <vector>

#include "image/JpegHeader.h"
#include "image/JpegImage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 100000) return 0;
  // A block of its own, so that a sanitizer sees every byte too far.
  std::vector<unsigned char> bytes(data, data + size);
  const auto streamBytes = static_cast<unsigned>(size);
  CJpegHeader header;
  header.GetResolutionX(bytes.data(), streamBytes);
  header.GetResolutionY(bytes.data(), streamBytes);
  header.GetBitPerPixel(bytes.data(), streamBytes);
  const int width = header.GetWidthPix(bytes.data(), streamBytes);
  const bool set = CJpegImage(bytes.data(), streamBytes).ReduceHeightInfo(0x1234);
  if (set && header.GetHeightPix(bytes.data(), streamBytes) != 0x1234) __builtin_trap();
  if (header.GetWidthPix(bytes.data(), streamBytes) != width) __builtin_trap();
  if (unsigned char* const segment = header.GetSegment(CJpegHeader::kSof0, bytes.data(), streamBytes)) {
    if (segment + header.GetSegmentDataLength(segment, 4) >= bytes.data() + size) __builtin_trap();
  }
  return 0;
}
