// Reads and rewrites a few fields of a JPEG stream in place, without decoding it.
//
// A missing or short segment gives 0, null or false and leaves the stream as it is.
// Threads: stateless; the caller owns the bytes.
#pragma once

#include <cstdint>

// The JFIF segment.
struct JPEG_APP0 {
  std::uint8_t identifier[4];
  std::uint16_t version;
  std::uint8_t units;  // 1 dots per inch, 2 dots per centimetre
  std::uint16_t densityX;
  std::uint16_t densityY;
  std::uint8_t thumbnailWidth;
  std::uint8_t thumbnailHeight;
  unsigned char* thumbnail;  // borrowed: points into the stream
};

// The baseline frame header.
struct JPEG_SOF {
  std::uint8_t precision;
  std::uint16_t height;
  std::uint16_t width;
  std::uint8_t components;
};

class CJpegHeader {
 public:
  // Markers by the little-endian value of their two bytes.
  static constexpr short kApp0 = static_cast<short>(0xE0FF);
  static constexpr short kSof0 = static_cast<short>(0xC0FF);

  // Points to the marker of the first such segment, or null. The walk ends at a length that leads backward.
  unsigned char* GetSegment(short marker, unsigned char* data, unsigned int size);

  // segment points to at least 18 (APP0) or 10 (SOF) bytes from the marker on.
  JPEG_APP0 GetAPP0Segment(unsigned char* segment);
  bool SetAPP0Segment(JPEG_APP0 app0, unsigned char* segment);
  JPEG_SOF GetSOFSegment(unsigned char* segment);
  bool SetSOFSegment(JPEG_SOF sof, unsigned char* segment);

  // Dots per inch.
  int GetResolutionX(unsigned char* data, unsigned int size);
  int GetResolutionY(unsigned char* data, unsigned int size);
  int GetBitPerPixel(unsigned char* data, unsigned int size);
  int GetWidthPix(unsigned char* data, unsigned int size);
  int GetHeightPix(unsigned char* data, unsigned int size);

  // Kept: SetWidthPix writes the HEIGHT field and leaves the width alone, exactly as SetHeightPix does. It looks like a
  // slip of the pen; callers must not rely on it to change a width. Pinned by JpegHeader_test "SetWidthPix".
  bool SetWidthPix(unsigned char* data, unsigned int size, int value);
  bool SetHeightPix(unsigned char* data, unsigned int size, int value);

  // True when the length field is at least 1 and less than the bytes from segment to the end.
  bool IsThereEnoughSegmentData(unsigned char* data, unsigned char* segment, unsigned int size);
  // The length field; 0 with fewer than 4 bytes.
  int GetSegmentDataLength(unsigned char* segment, unsigned int size);
  // Reverses the bytes in place.
  void InvertEndian(unsigned char* bytes, int size);

 private:
  // The segment with all of its fields inside the stream, or null.
  unsigned char* wholeSegment(short marker, unsigned fieldBytes, unsigned char* data, unsigned int size);
  int density(bool vertical, unsigned char* data, unsigned int size);
};
