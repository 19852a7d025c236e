#include "image/BitmapHeader.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "foundation/bytes.h"

namespace {

using orvalle_scan_api::loadU16le;
using orvalle_scan_api::loadU32le;
using orvalle_scan_api::storeU16le;
using orvalle_scan_api::storeU32le;

constexpr unsigned kFileHeaderBytes = 14;
constexpr unsigned kInfoHeaderBytes = 40;
constexpr unsigned kPaletteOffset = kFileHeaderBytes + kInfoHeaderBytes;
constexpr unsigned kFileSizeAt = 2;
// From the start of the information header.
constexpr unsigned kWidthAt = 4;
constexpr unsigned kHeightAt = 8;
constexpr unsigned kBitPerPixelAt = 14;
constexpr unsigned kPixelBytesAt = 20;
constexpr unsigned kPixPerMeterXAt = 24;
constexpr unsigned kPixPerMeterYAt = 28;

std::uint32_t sizeField(std::uint64_t bytes) {
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(bytes, std::numeric_limits<std::uint32_t>::max()));
}

int clampedInt(double value) { return static_cast<int>(std::min<double>(value, std::numeric_limits<int>::max())); }

int infoField(const unsigned char* info, unsigned at) {
  return info == nullptr ? 0 : static_cast<int>(loadU32le(info + at));
}

}  // namespace

unsigned char* CBitmapHeader::CreateBmpHeader(int resolutionX, int resolutionY, int bpp, int width, int height,
                                              const tagRGBQUAD* palette, int* headerSize) {
  FreeBmpHeader();
  const unsigned headerBytes = CalcBmpHeaderSize(bpp);
  m_header = std::make_unique<unsigned char[]>(headerBytes);
  unsigned char* const file = m_header.get();
  unsigned char* const info = file + kFileHeaderBytes;
  const std::uint64_t pixelBytes = CalcPixelDataSize(width, height, bpp);
  file[0] = 'B';
  file[1] = 'M';
  storeU32le(file + kFileSizeAt, sizeField(CalcBmpSize(bpp, width, height)));
  storeU32le(file + 10, headerBytes);
  storeU32le(info, kInfoHeaderBytes);
  storeU32le(info + kWidthAt, static_cast<std::uint32_t>(width));
  storeU32le(info + kHeightAt, static_cast<std::uint32_t>(height));
  storeU16le(info + 12, 1);
  storeU16le(info + kBitPerPixelAt, static_cast<std::uint32_t>(bpp));
  storeU32le(info + kPixelBytesAt, sizeField(pixelBytes));
  storeU32le(info + kPixPerMeterXAt, static_cast<std::uint32_t>(ConvertDotPerInchToPixPerMeter(resolutionX)));
  storeU32le(info + kPixPerMeterYAt, static_cast<std::uint32_t>(ConvertDotPerInchToPixPerMeter(resolutionY)));
  storeU32le(info + 32, static_cast<std::uint32_t>(CalcColorPaletteNum(bpp)));
  if (palette != nullptr) std::memcpy(file + kPaletteOffset, palette, headerBytes - kPaletteOffset);
  if (headerSize != nullptr) *headerSize = static_cast<int>(headerBytes);
  return file;
}

void CBitmapHeader::FreeBmpHeader() { m_header.reset(); }

bool CBitmapHeader::IsBmpData(unsigned char* data, unsigned int size) {
  return data != nullptr && size >= 2 && data[0] == 'B' && data[1] == 'M';
}

unsigned char* CBitmapHeader::GetBmpFileHeader(unsigned char* data, unsigned int size) {
  return data != nullptr && size >= kFileHeaderBytes ? data : nullptr;
}

unsigned char* CBitmapHeader::GetBmpInfoHeader(unsigned char* data, unsigned int size) {
  return data != nullptr && size >= kPaletteOffset ? data + kFileHeaderBytes : nullptr;
}

bool CBitmapHeader::IsColorPaletteContain(unsigned char* data, unsigned int size) {
  return data != nullptr && size >= kPaletteOffset && GetBitPerPixel(data, size) < 9;
}

int CBitmapHeader::GetColorPaletteNum(unsigned char* data, unsigned int size) {
  if (!IsColorPaletteContain(data, size)) return 0;
  switch (GetBitPerPixel(data, size)) {
    case 1:
      return 2;
    case 4:
      return 16;
    case 8:
      return 256;
    default:
      return 0;
  }
}

tagRGBQUAD* CBitmapHeader::GetBmpColorPaletterPointer(unsigned char* data, unsigned int size) {
  if (size <= kPaletteOffset || !IsColorPaletteContain(data, size)) return nullptr;
  return reinterpret_cast<tagRGBQUAD*>(data + kPaletteOffset);
}

unsigned char* CBitmapHeader::GetBmpPixelDataPointer(unsigned char* data, unsigned int size, unsigned int* pixelBytes) {
  if (data == nullptr || !IsBmpData(data, size)) return data;
  unsigned char* pixels = nullptr;
  unsigned bytes = 0;
  const unsigned offset = kPaletteOffset + 4U * static_cast<unsigned>(GetColorPaletteNum(data, size));
  if (size > kPaletteOffset && size >= offset) {
    pixels = data + offset;
    const unsigned fileBytes = loadU32le(data + kFileSizeAt);
    bytes = fileBytes > offset ? std::min(fileBytes, size) - offset : 0;
  }
  if (pixelBytes != nullptr) {
    *pixelBytes = bytes;
    if (bytes == 0) return nullptr;
  }
  return pixels;
}

unsigned char CBitmapHeader::GetWhiteDataValue(unsigned char* data, unsigned int size) {
  const int bpp = GetBitPerPixel(data, size);
  if (GetBmpColorPaletterPointer(data, size) != nullptr) {
    if (bpp == 1) return findColor(data, size, 1, 255) == 0 ? 0 : 0xFF;
    const int white = bpp == 8 ? findColor(data, size, 255, 255) : -1;
    if (white >= 0) return static_cast<unsigned char>(white);
  }
  return GetDefaultWhiteDataValue(bpp);
}

unsigned char CBitmapHeader::GetDefaultWhiteDataValue(int bpp) { return bpp == 1 ? 1 : 0xFF; }

int CBitmapHeader::GetResolutionX(unsigned char* data, unsigned int size) {
  return ConvertPixPerMeterToDotPerInch(infoField(GetBmpInfoHeader(data, size), kPixPerMeterXAt));
}

int CBitmapHeader::GetResolutionY(unsigned char* data, unsigned int size) {
  return ConvertPixPerMeterToDotPerInch(infoField(GetBmpInfoHeader(data, size), kPixPerMeterYAt));
}

int CBitmapHeader::GetBitPerPixel(unsigned char* data, unsigned int size) {
  const unsigned char* info = GetBmpInfoHeader(data, size);
  return info == nullptr ? 0 : loadU16le(info + kBitPerPixelAt);
}

int CBitmapHeader::GetWidthPixel(unsigned char* data, unsigned int size) {
  return infoField(GetBmpInfoHeader(data, size), kWidthAt);
}

int CBitmapHeader::GetHeightPixel(unsigned char* data, unsigned int size) {
  return infoField(GetBmpInfoHeader(data, size), kHeightAt);
}

std::uint64_t CBitmapHeader::GetPixelDataSize(unsigned char* data, unsigned int size) {
  return CalcPixelDataSize(GetWidthPixel(data, size), GetHeightPixel(data, size), GetBitPerPixel(data, size));
}

bool CBitmapHeader::SetHeightPixel(unsigned char* data, unsigned int size, int height) {
  unsigned char* const info = GetBmpInfoHeader(data, size);
  const int bpp = GetBitPerPixel(data, size);
  if (info == nullptr || bpp < 1) return false;
  const int width = GetWidthPixel(data, size);
  storeU32le(info + kHeightAt, static_cast<std::uint32_t>(height));
  storeU32le(info + kPixelBytesAt, sizeField(CalcPixelDataSize(width, height, bpp)));
  storeU32le(data + kFileSizeAt, sizeField(CalcBmpSize(bpp, width, height)));
  return true;
}

int CBitmapHeader::GetColorPaletteIndexOfBlack(unsigned char* data, unsigned int size) {
  return std::max(0, findColor(data, size, 256, 0));
}

int CBitmapHeader::GetColorPaletteIndexOfWhite(unsigned char* data, unsigned int size) {
  return std::max(0, findColor(data, size, 256, 255));
}

std::uint64_t CBitmapHeader::CalcBmpSize(int bpp, int width, int height) {
  const std::uint64_t pixelBytes = CalcPixelDataSize(width, height, bpp);
  const std::uint64_t headerBytes = CalcBmpHeaderSize(bpp);
  return pixelBytes > std::numeric_limits<std::uint64_t>::max() - headerBytes ? pixelBytes : pixelBytes + headerBytes;
}

unsigned int CBitmapHeader::CalcBmpHeaderSize(int bpp) {
  return kPaletteOffset + 4U * static_cast<unsigned>(CalcColorPaletteNum(bpp));
}

std::uint64_t CBitmapHeader::CalcPixelDataSize(int width, int height, int bpp) {
  if (height < 1) return 0;
  std::uint64_t bytes = 0;
  const bool tooMuch = __builtin_mul_overflow(CalcWidthBytes(width, bpp), static_cast<std::uint64_t>(height), &bytes);
  return tooMuch ? std::numeric_limits<std::uint64_t>::max() : bytes;
}

std::uint64_t CBitmapHeader::CalcWidthBytes(int width, int bpp) {
  if (width < 1 || bpp < 1) return 0;
  return (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(bpp) + 7) / 8;
}

tagRGBQUAD* CBitmapHeader::CreateColorTable(int bpp) {
  if (bpp == 1) return CreateMonochromeColorTable();
  return bpp == 8 ? CreateGrayColorTable() : nullptr;
}

void CBitmapHeader::FreeColorTable() {
  FreeMonochromeColorTable();
  FreeGrayColorTable();
}

tagRGBQUAD* CBitmapHeader::CreateMonochromeColorTable() {
  if (m_monochromeTable == nullptr) {
    m_monochromeTable = std::make_unique<tagRGBQUAD[]>(2);
    m_monochromeTable[1] = {255, 255, 255, 0};
  }
  return m_monochromeTable.get();
}

void CBitmapHeader::FreeMonochromeColorTable() { m_monochromeTable.reset(); }

tagRGBQUAD* CBitmapHeader::CreateGrayColorTable() {
  if (m_grayTable == nullptr) {
    m_grayTable = std::make_unique<tagRGBQUAD[]>(256);
    for (unsigned i = 0; i < 256; ++i) {
      const auto level = static_cast<std::uint8_t>(i);
      m_grayTable[i] = {level, level, level, 0};
    }
  }
  return m_grayTable.get();
}

void CBitmapHeader::FreeGrayColorTable() { m_grayTable.reset(); }

int CBitmapHeader::CalcColorPaletteNum(int bpp) {
  switch (bpp) {
    case 1:
      return 2;
    case 2:
      return 4;
    case 4:
      return 16;
    case 8:
      return 256;
    default:
      return 0;
  }
}

int CBitmapHeader::ConvertDotPerInchToPixPerMeter(int dpi) {
  if (dpi < 1) return 0;
  const auto scaled = static_cast<float>(static_cast<std::int64_t>(dpi) * 10000 + 9);
  return clampedInt(scaled / 254.0);
}

int CBitmapHeader::ConvertPixPerMeterToDotPerInch(int ppm) {
  if (ppm < 1) return 0;
  const auto scaled = static_cast<float>(ppm * 254.0 + 25.4);
  return clampedInt(scaled / 10000.0);
}

int CBitmapHeader::paletteEntriesPresent(unsigned char* data, unsigned int size) {
  if (GetBmpColorPaletterPointer(data, size) == nullptr) return 0;
  return std::min(GetColorPaletteNum(data, size), static_cast<int>((size - kPaletteOffset) / 4));
}

int CBitmapHeader::findColor(unsigned char* data, unsigned int size, int limit, std::uint8_t value) {
  const int count = std::min(limit, paletteEntriesPresent(data, size));
  for (int i = 0; i < count; ++i) {
    const unsigned char* const entry = data + kPaletteOffset + 4 * i;
    if (entry[0] == value && entry[1] == value && entry[2] == value) return i;
  }
  return -1;
}
