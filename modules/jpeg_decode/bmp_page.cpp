#include "bmp_page.h"

#include <cstring>

namespace jpeg_decode {
namespace {

constexpr std::size_t kHeadersBytes = 54;
constexpr std::size_t kPaletteColors = 256;
constexpr int kMidGray = 128;

void put16(std::uint8_t* at, std::uint32_t value) {
  at[0] = static_cast<std::uint8_t>(value);
  at[1] = static_cast<std::uint8_t>(value >> 8);
}

void put32(std::uint8_t* at, std::size_t value) {
  put16(at, static_cast<std::uint32_t>(value));
  put16(at + 2, static_cast<std::uint32_t>(value >> 16));
}

// 300 dots per inch are 11811 pixels per metre.
std::uint32_t pixelsPerMetre(std::uint32_t dpi) { return dpi == 0 ? 0 : (dpi * 10000 + 9) / 254; }

}  // namespace

bool BmpPage::create(const Picture& picture) {
  clear();
  const std::size_t pixelBytes = picture.lineBytes() * picture.heightPx;
  if (pixelBytes == 0 || pixelBytes > kMaxPageBytes) return false;
  const std::size_t colors = picture.bitsPerPixel == 8 ? kPaletteColors : 0;
  const std::size_t headerBytes = kHeadersBytes + 4 * colors;
  file_.reset(static_cast<std::uint8_t*>(std::malloc(headerBytes + pixelBytes)));
  if (!file_) return false;
  picture_ = picture;
  headerBytes_ = headerBytes;
  pixelBytes_ = pixelBytes;

  std::uint8_t* const file = file_.get();
  std::memset(file, 0, headerBytes);
  put16(file, 0x4D42);  // 'B', 'M'
  put32(file + 2, headerBytes + pixelBytes);
  put32(file + 10, headerBytes);
  put32(file + 14, 40);  // size of the information header
  put32(file + 18, picture.widthPx);
  put32(file + 22, picture.heightPx);
  put16(file + 26, 1);  // planes
  put16(file + 28, picture.bitsPerPixel);
  put32(file + 34, pixelBytes);
  put32(file + 38, pixelsPerMetre(picture.dpiX));
  put32(file + 42, pixelsPerMetre(picture.dpiY));
  put32(file + 46, colors);
  for (std::size_t i = 0; i < colors; ++i) std::memset(file + kHeadersBytes + 4 * i, static_cast<int>(i), 3);
  return true;
}

void BmpPage::clear() { file_.reset(); }

std::uint8_t* BmpPage::line(std::size_t fromTop) {
  return file_.get() + headerBytes_ + (picture_.heightPx - 1 - fromTop) * picture_.lineBytes();
}

void BmpPage::fillFrom(std::size_t fromTop) {
  std::memset(file_.get() + headerBytes_, kMidGray, (picture_.heightPx - fromTop) * picture_.lineBytes());
}

orvalle_scan_api::tagQS_SCAN_IMAGEDATA BmpPage::describe() const {
  orvalle_scan_api::tagQS_SCAN_IMAGEDATA image{};
  image.data = file_.get();
  image.dataSize = headerBytes_ + pixelBytes_;
  image.pixelData = file_.get() + headerBytes_;
  image.pixelDataSize = static_cast<std::uint32_t>(pixelBytes_);
  image.resolutionX = static_cast<std::int32_t>(picture_.dpiX);
  image.resolutionY = static_cast<std::int32_t>(picture_.dpiY);
  image.bitPerPixel = static_cast<std::int32_t>(picture_.bitsPerPixel);
  image.widthPixel = static_cast<std::int32_t>(picture_.widthPx);
  image.heightPixel = static_cast<std::int32_t>(picture_.heightPx);
  image.widthBytes = static_cast<std::int32_t>(picture_.lineBytes());
  return image;
}

}  // namespace jpeg_decode
