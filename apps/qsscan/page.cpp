#include "page.h"

#include <utility>

namespace qsscan {

std::optional<Page> copyPage(const orvalle_scan_api::tagQS_SCAN_IMAGEDATA& image, int number, int fallbackDpi,
                             std::vector<std::uint8_t> memory) {
  const bool depthKnown = image.bitPerPixel == 1 || image.bitPerPixel == 8 || image.bitPerPixel == 24;
  if (image.data == nullptr || image.pixelData == nullptr || !depthKnown) return std::nullopt;
  if (image.widthPixel <= 0 || image.heightPixel <= 0) return std::nullopt;

  const auto lineBits = static_cast<std::uint64_t>(image.widthPixel) * static_cast<std::uint64_t>(image.bitPerPixel);
  const std::uint64_t lineBytes = (lineBits + 7) / 8;
  const std::uint64_t pageBytes = lineBytes * static_cast<std::uint64_t>(image.heightPixel);
  const auto begin = reinterpret_cast<std::uintptr_t>(image.data);
  const auto pixels = reinterpret_cast<std::uintptr_t>(image.pixelData);
  if (pixels < begin || pixels - begin > image.dataSize) return std::nullopt;
  if (pageBytes > image.dataSize - (pixels - begin)) return std::nullopt;

  Page page;
  page.number = number;
  page.widthPx = image.widthPixel;
  page.heightPx = image.heightPixel;
  page.bitsPerPixel = image.bitPerPixel;
  page.dpiX = image.resolutionX > 0 ? image.resolutionX : fallbackDpi;
  page.dpiY = image.resolutionY > 0 ? image.resolutionY : fallbackDpi;
  page.lineBytes = static_cast<std::size_t>(lineBytes);
  // What a far larger page has left would be held by every page that follows.
  if (memory.capacity() / 2 <= pageBytes) page.pixels = std::move(memory);
  page.pixels.assign(image.pixelData, image.pixelData + pageBytes);
  page.cutAtMaximum = image.pageScanIsTerminated;
  return page;
}

}  // namespace qsscan
