#include "image/bmp_lines.h"

#include <algorithm>

#include "image/BitmapHeader.h"

namespace orvalle_scan_api {

bool isBmp(const unsigned char* data, std::size_t size) {
  return data != nullptr && size >= kBmpHeadersBytes && data[0] == 'B' && data[1] == 'M';
}

BmpLines bmpLines(unsigned char* data, std::size_t size) {
  BmpLines lines;
  if (!isBmp(data, size)) return lines;
  CBitmapHeader header;
  const auto headerBytes = static_cast<unsigned>(std::min<std::size_t>(size, kBmpHeadersBytes));
  lines.widthPx = header.GetWidthPixel(data, headerBytes);
  lines.bitPerPixel = header.GetBitPerPixel(data, headerBytes);
  lines.lineBytes = header.CalcWidthBytes(lines.widthPx, lines.bitPerPixel);
  lines.promised = static_cast<std::size_t>(std::max(0, header.GetHeightPixel(data, headerBytes)));
  lines.offset = kBmpHeadersBytes + 4U * static_cast<unsigned>(header.GetColorPaletteNum(data, headerBytes));
  if (size > lines.offset && lines.lineBytes > 0) {
    lines.count = std::min(lines.promised, (size - lines.offset) / lines.lineBytes);
  }
  if (lines.count > 0) lines.first = data + lines.offset;
  return lines;
}

}  // namespace orvalle_scan_api
