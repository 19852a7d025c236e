// A module's view of the core's page store. The core asserts that its CImageDataStore has this layout.
#pragma once

#include <cstddef>
#include <type_traits>

#include "../scan_types.h"

namespace orvalle_scan_api {

class CImageDataStore;

struct PAGE_STORE_VIEW {
  std::uint8_t* data;       // the block: in the enhancement stage a BMP file image, bottom line first
  std::uint32_t dataSize;   // bytes in use
  std::uint32_t blockSize;  // bytes allocated
  std::int32_t resolutionX;
  std::int32_t resolutionY;
  std::int32_t widthPixel;
  std::int32_t heightPixel;
  COLORTYPE colorType;
  std::uint32_t dataKind;      // 1 mono, 7 grey, 5 and 6 colour
  std::uint32_t compressCode;  // 2 none, 3 PackBits, 5 JPEG
  std::int32_t status;
  std::size_t readPosition;
};
static_assert(std::is_standard_layout_v<PAGE_STORE_VIEW> && sizeof(PAGE_STORE_VIEW) == 56);
static_assert(offsetof(PAGE_STORE_VIEW, colorType) == 32 && offsetof(PAGE_STORE_VIEW, readPosition) == 48);

// Borrowed: the block belongs to the core and must not be changed in size.
inline const PAGE_STORE_VIEW& ViewPageStore(const CImageDataStore* store) {
  return *reinterpret_cast<const PAGE_STORE_VIEW*>(store);
}

}  // namespace orvalle_scan_api
