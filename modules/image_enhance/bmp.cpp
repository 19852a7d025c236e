#include "bmp.h"

#include <cstring>

namespace image_enhance {
namespace {

constexpr std::size_t kHeadersBytes = 54;
constexpr std::uint32_t kInfoHeaderBytes = 40;
// From the start of the file.
constexpr std::size_t kWidthAt = 18;
constexpr std::size_t kHeightAt = 22;
constexpr std::size_t kBitsAt = 28;
constexpr std::size_t kPixelsPerMetreAt = 38;

std::uint32_t get16(const std::uint8_t* at) { return at[0] | static_cast<std::uint32_t>(at[1]) << 8; }
std::uint32_t get32(const std::uint8_t* at) { return get16(at) | get16(at + 2) << 16; }

void put16(std::uint8_t* at, std::uint32_t value) {
  at[0] = static_cast<std::uint8_t>(value);
  at[1] = static_cast<std::uint8_t>(value >> 8);
}
void put32(std::uint8_t* at, std::size_t value) {
  put16(at, static_cast<std::uint32_t>(value));
  put16(at + 2, static_cast<std::uint32_t>(value >> 16));
}

std::size_t paletteColors(int bitsPerPixel) { return bitsPerPixel == 1 ? 2 : bitsPerPixel == 8 ? 256 : 0; }
std::size_t headerBytes(int bitsPerPixel) { return kHeadersBytes + 4 * paletteColors(bitsPerPixel); }

}  // namespace

bool hasNoLines(const orvalle_scan_api::PAGE_STORE_VIEW& store) {
  if (store.data == nullptr || store.dataSize == 0) return true;
  return store.dataSize >= kHeadersBytes && get32(store.data + kHeightAt) == 0;
}

std::optional<StoredPage> readStore(const orvalle_scan_api::PAGE_STORE_VIEW& store) {
  const std::uint8_t* const file = store.data;
  if (file == nullptr || store.dataSize < kHeadersBytes || file[0] != 'B' || file[1] != 'M') return std::nullopt;
  const std::uint32_t width = get32(file + kWidthAt);
  const std::uint32_t height = get32(file + kHeightAt);
  const std::uint32_t bits = get16(file + kBitsAt);
  if (width == 0 || width > kMaxSidePx || height == 0 || height > kMaxSidePx ||
      (bits != 1 && bits != 8 && bits != 24)) {
    return std::nullopt;
  }
  StoredPage page;
  page.form = {static_cast<int>(width),
               static_cast<int>(height),
               static_cast<int>(bits),
               store.resolutionX,
               store.resolutionY,
               get32(file + kPixelsPerMetreAt),
               get32(file + kPixelsPerMetreAt + 4)};
  const std::size_t offset = headerBytes(page.form.bitsPerPixel);
  if (page.form.pixelBytes() > kMaxPageBytes || store.dataSize < offset ||
      store.dataSize - offset < page.form.pixelBytes()) {
    return std::nullopt;
  }
  page.pixels = file + offset;
  return page;
}

Page copyOf(const StoredPage& stored) {
  Page page(stored.form);
  for (int y = 0; y < page.heightPx; ++y) {
    const auto fromBottom = static_cast<std::size_t>(page.heightPx - 1 - y);
    std::memcpy(page.line(y), stored.pixels + fromBottom * page.lineBytes(), page.lineBytes());
  }
  return page;
}

void Result::set(const Page& page) {
  const std::size_t headers = headerBytes(page.bitsPerPixel);
  const std::size_t colors = paletteColors(page.bitsPerPixel);
  file_.clear();
  file_.reserve(headers + page.pixelBytes());
  file_.resize(headers);
  form_ = page;

  std::uint8_t* const file = file_.data();
  put16(file, 0x4D42);  // 'B', 'M'
  put32(file + 2, headers + page.pixelBytes());
  put32(file + 10, headers);
  put32(file + 14, kInfoHeaderBytes);
  put32(file + kWidthAt, static_cast<std::size_t>(page.widthPx));
  put32(file + kHeightAt, static_cast<std::size_t>(page.heightPx));
  put16(file + 26, 1);  // planes
  put16(file + kBitsAt, static_cast<std::uint32_t>(page.bitsPerPixel));
  put32(file + 34, page.pixelBytes());
  put32(file + kPixelsPerMetreAt, page.pixelsPerMetreX);
  put32(file + kPixelsPerMetreAt + 4, page.pixelsPerMetreY);
  put32(file + 46, colors);
  for (std::size_t i = 0; i < colors; ++i) {
    std::memset(file + kHeadersBytes + 4 * i, static_cast<int>(i * 255 / (colors - 1)), 3);
  }
  for (int y = page.heightPx - 1; y >= 0; --y) {
    file_.insert(file_.end(), page.line(y), page.line(y) + page.lineBytes());
  }
}

void Result::clear() {
  file_.clear();
  file_.shrink_to_fit();
}

orvalle_scan_api::tagQS_SCAN_IMAGEDATA Result::describe() {
  orvalle_scan_api::tagQS_SCAN_IMAGEDATA image{};
  if (file_.empty()) return image;
  image.data = file_.data();
  image.dataSize = file_.size();
  image.pixelData = file_.data() + headerBytes(form_.bitsPerPixel);
  image.pixelDataSize = static_cast<std::uint32_t>(form_.pixelBytes());
  image.resolutionX = form_.dpiX;
  image.resolutionY = form_.dpiY;
  image.bitPerPixel = form_.bitsPerPixel;
  image.widthPixel = form_.widthPx;
  image.heightPixel = form_.heightPx;
  image.widthBytes = static_cast<std::int32_t>(form_.lineBytes());
  return image;
}

}  // namespace image_enhance
