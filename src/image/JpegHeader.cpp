#include "image/JpegHeader.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

constexpr unsigned kApp0FieldBytes = 18;
constexpr unsigned kSofFieldBytes = 10;
constexpr std::uint8_t kUnitsPerCentimetre = 2;

std::uint16_t loadU16be(const unsigned char* p) { return static_cast<std::uint16_t>(p[0] << 8 | p[1]); }
void storeU16be(unsigned char* p, unsigned value) {
  p[0] = static_cast<unsigned char>(value >> 8);
  p[1] = static_cast<unsigned char>(value);
}

bool hasMarker(const unsigned char* p, short marker) {
  const auto value = static_cast<unsigned short>(marker);
  return p[0] == (value & 0xFF) && p[1] == value >> 8;
}

// Lengths are signed here: one of 0x8000 and more leads backward.
int signedLength(const unsigned char* segment) { return static_cast<std::int16_t>(loadU16be(segment + 2)); }

}  // namespace

unsigned char* CJpegHeader::GetSegment(short marker, unsigned char* data, unsigned int size) {
  if (data == nullptr) return nullptr;
  // The first marker is skipped without a look at it.
  for (std::size_t at = 2; at + 4 <= size;) {
    unsigned char* const segment = data + at;
    if (hasMarker(segment, marker)) return IsThereEnoughSegmentData(data, segment, size) ? segment : nullptr;
    const int length = signedLength(segment);
    if (length < 0) return nullptr;
    at += static_cast<std::size_t>(length) + 2;
  }
  return nullptr;
}

JPEG_APP0 CJpegHeader::GetAPP0Segment(unsigned char* segment) {
  JPEG_APP0 app0{};
  unsigned char name[5];
  std::memcpy(name, segment + 4, sizeof name);
  InvertEndian(name, sizeof name);
  std::memcpy(app0.identifier, name, sizeof app0.identifier);
  app0.version = loadU16be(segment + 9);
  app0.units = segment[11];
  app0.densityX = loadU16be(segment + 12);
  app0.densityY = loadU16be(segment + 14);
  app0.thumbnailWidth = segment[16];
  app0.thumbnailHeight = segment[17];
  app0.thumbnail = segment + 18;
  return app0;
}

// Kept: the fields do not go back where GetAPP0Segment found them: the version lies one byte too early with the
// identifier's first byte between its halves, and the densities are in host byte order. Nothing in the library calls
// this. Pinned by JpegHeader_test "SetAPP0Segment".
bool CJpegHeader::SetAPP0Segment(JPEG_APP0 app0, unsigned char* segment) {
  if (app0.units == kUnitsPerCentimetre) {
    app0.densityX = static_cast<std::uint16_t>(app0.densityX * 10 / 25.4);
    app0.densityY = static_cast<std::uint16_t>(app0.densityY * 10 / 25.4);
  }
  std::memcpy(segment + 4, app0.identifier, sizeof app0.identifier);
  segment[8] = static_cast<unsigned char>(app0.version);
  segment[9] = app0.identifier[0];
  segment[10] = static_cast<unsigned char>(app0.version >> 8);
  segment[11] = app0.units;
  std::memcpy(segment + 12, &app0.densityX, sizeof app0.densityX);
  std::memcpy(segment + 14, &app0.densityY, sizeof app0.densityY);
  segment[16] = app0.thumbnailWidth;
  segment[17] = app0.thumbnailHeight;
  return true;
}

JPEG_SOF CJpegHeader::GetSOFSegment(unsigned char* segment) {
  return {segment[4], loadU16be(segment + 5), loadU16be(segment + 7), segment[9]};
}

bool CJpegHeader::SetSOFSegment(JPEG_SOF sof, unsigned char* segment) {
  segment[4] = sof.precision;
  storeU16be(segment + 5, sof.height);
  storeU16be(segment + 7, sof.width);
  segment[9] = sof.components;
  return true;
}

int CJpegHeader::GetResolutionX(unsigned char* data, unsigned int size) { return density(false, data, size); }

int CJpegHeader::GetResolutionY(unsigned char* data, unsigned int size) { return density(true, data, size); }

int CJpegHeader::GetBitPerPixel(unsigned char* data, unsigned int size) {
  unsigned char* const segment = wholeSegment(kSof0, kSofFieldBytes, data, size);
  if (segment == nullptr) return 0;
  const JPEG_SOF sof = GetSOFSegment(segment);
  return static_cast<std::int8_t>(sof.components) * static_cast<std::int8_t>(sof.precision);
}

int CJpegHeader::GetWidthPix(unsigned char* data, unsigned int size) {
  unsigned char* const segment = wholeSegment(kSof0, kSofFieldBytes, data, size);
  return segment == nullptr ? 0 : GetSOFSegment(segment).width;
}

int CJpegHeader::GetHeightPix(unsigned char* data, unsigned int size) {
  unsigned char* const segment = wholeSegment(kSof0, kSofFieldBytes, data, size);
  return segment == nullptr ? 0 : GetSOFSegment(segment).height;
}

bool CJpegHeader::SetWidthPix(unsigned char* data, unsigned int size, int value) {
  return SetHeightPix(data, size, value);
}

bool CJpegHeader::SetHeightPix(unsigned char* data, unsigned int size, int value) {
  unsigned char* const segment = wholeSegment(kSof0, kSofFieldBytes, data, size);
  if (segment == nullptr) return false;
  JPEG_SOF sof = GetSOFSegment(segment);
  sof.height = static_cast<std::uint16_t>(value);
  return SetSOFSegment(sof, segment);
}

bool CJpegHeader::IsThereEnoughSegmentData(unsigned char* data, unsigned char* segment, unsigned int size) {
  if (data == nullptr || segment < data || segment - data > static_cast<std::ptrdiff_t>(size)) return false;
  const std::ptrdiff_t left = static_cast<std::ptrdiff_t>(size) - (segment - data);
  if (left < 4) return false;
  const int length = signedLength(segment);
  return length >= 1 && length < left;
}

int CJpegHeader::GetSegmentDataLength(unsigned char* segment, unsigned int size) {
  return segment == nullptr || size < 4 ? 0 : loadU16be(segment + 2);
}

void CJpegHeader::InvertEndian(unsigned char* bytes, int size) {
  if (bytes != nullptr && size > 1) std::reverse(bytes, bytes + size);
}

unsigned char* CJpegHeader::wholeSegment(short marker, unsigned fieldBytes, unsigned char* data, unsigned int size) {
  unsigned char* const segment = GetSegment(marker, data, size);
  if (segment == nullptr || data + size - segment < static_cast<std::ptrdiff_t>(fieldBytes)) return nullptr;
  return segment;
}

int CJpegHeader::density(bool vertical, unsigned char* data, unsigned int size) {
  unsigned char* const segment = wholeSegment(kApp0, kApp0FieldBytes, data, size);
  if (segment == nullptr) return 0;
  const JPEG_APP0 app0 = GetAPP0Segment(segment);
  const int value = vertical ? app0.densityY : app0.densityX;
  return app0.units == kUnitsPerCentimetre ? static_cast<int>(value * 25.4 / 10.0) : value;
}
