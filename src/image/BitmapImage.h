// One BMP file image in memory whose pixels are changed in place.
//
// The image is borrowed. Every walk goes over the lines that are really there: the header's height or what the bytes
// hold, whichever is less. Threads: the caller owns the image during an operation.
#pragma once

#include "image/BitmapHeader.h"

class CBitmapImage : public CBitmapHeader {
 public:
  CBitmapImage(unsigned char* data, unsigned int size) : m_data(data), m_size(size) {}

  // Mirrors every line left to right. True for an image without lines, otherwise the answer for the last line.
  bool InvertWidth();
  // Turns the image upside down. Always true.
  bool InvertHeight();
  // Mirrors one line of width pixels; false below 2 pixels and for a depth other than 1, 8 and 24. The bits behind the
  // last pixel of a one-bit line become 0.
  bool InvertLine(unsigned char* line, unsigned int width, int bpp);
  bool Invert1BitLine(unsigned char* line, unsigned int width);
  bool Invert8BitLine(unsigned char* line, unsigned int width);
  bool Invert24BitLine(unsigned char* line, unsigned int width);

  // Cuts the image to height lines, the first or the last ones in memory, and returns the new file size, or 0 when the
  // image is lower. Kept: the field with the size of the pixel data is left as it was, unlike file size and height; a
  // reader that trusted it would run past the end. Pinned by BitmapImage_test "TrimBmpPageHeight leaves".
  unsigned int TrimBmpPageHeight(int height, bool keepFirstLines);

  // A line of bits spread to one byte for each pixel, 0 or 1, and back. Both return a new array for the caller to
  // delete[]. Kept: bytes are shifted without being reduced to one bit, so that a byte of 0xFF also sets every bit to
  // its left in the same output byte. Pinned by BitmapImage_test "a byte of 0xFF".
  unsigned char* Get8BitFrom1bitLineData(const unsigned char* line, unsigned int width);
  unsigned char* Get1bitFrom8bitLineData(const unsigned char* bytes, unsigned int width);

 private:
  unsigned char* m_data;
  unsigned int m_size;
};
