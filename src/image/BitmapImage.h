// One BMP file image in memory whose pixels are changed in place.
//
// The image is borrowed. Every walk goes over the lines that are really there: the header's height or what the bytes
// hold, whichever is less; data that is no BMP has none. "First" and "last" lines are those of memory: the first line
// of the file is the bottom of the picture. Threads: the caller owns the image during an operation.
#pragma once

#include "image/BitmapHeader.h"

class CBitmapImage : public CBitmapHeader {
 public:
  CBitmapImage(unsigned char* data, unsigned int size) : m_data(data), m_size(size) {}

  // Mirrors every line left to right. True for an image without lines, otherwise the answer for the last line.
  bool InvertWidth();
  // Mirrors one line of width pixels; false below 2 pixels and for a depth other than 1, 8 and 24. The bits behind the
  // last pixel of a one-bit line become 0.
  bool InvertLine(unsigned char* line, unsigned int width, int bpp);
  // Turns the image upside down. Always true.
  bool InvertHeight();
  // Swaps the first and the third byte of each pixel at 24 bits; leaves any other depth alone. Always true.
  bool InvertRgbArray();

  // What a 0 bit of a one-bit image means: black is chocolate, white is vanilla. Both false without a palette entry.
  bool IsChocolatePixelFlavor();
  bool IsVanillaPixelFlavor();
  // Complements both palette entries and all pixel bytes of a one-bit image, so that the picture looks the same.
  // False, with nothing changed, for any other depth and without a whole palette or pixel bytes.
  bool InvertPixelFlavor();
  // Complements the three colours of count entries; false below 1.
  bool InvertColorPalettePixelFlavor(tagRGBQUAD* palette, int count);
  // Complements size bytes; false for 0.
  bool InvertAllBits(unsigned char* data, unsigned int size);

  // Cuts off the right part of every line, with width, file size and pixel data size. Returns the new file size, or 0,
  // with nothing changed, when the image is narrower or has no pixels.
  unsigned int TrimBmpPageWidth(int width);
  // Cuts the image to height lines, the first or the last ones in memory, and returns the new file size, or 0 when the
  // image is lower. Kept: the field with the size of the pixel data is left as it was, unlike file size and height; a
  // reader that trusted it would run past the end. Pinned by bitmap_trim_test "TrimBmpPageHeight leaves".
  unsigned int TrimBmpPageHeight(int height, bool keepFirstLines);

  // Paints a frame: left and right in pixels, top and bottom in lines, each cut to the page. The colour is the
  // palette's black or white, without a palette 0 or 255. The top edge is the last lines in memory. Always true.
  bool FillEdge(bool fillBlack, unsigned int left, unsigned int right, unsigned int top, unsigned int bottom);
  // Kept: with a fill of set bits the right edge reaches up to 7 pixels further left, to the start of the byte that it
  // begins in; see Get1bitFrom8bitLineData. Pinned by bitmap_fill_edge_test "a right edge of set bits".
  bool FillEdgeOf1BitsImage(bool fillBlack, unsigned int left, unsigned int right, unsigned int top,
                            unsigned int bottom);
  // At depths other than 8 and 24 only top and bottom are painted.
  bool FillEdgeOfMultiBitsImage(bool fillBlack, unsigned int left, unsigned int right, unsigned int top,
                                unsigned int bottom);

  // A line of bits spread to one byte for each pixel, 0 or 1, and back. Both return a new array for the caller to
  // delete[]. Kept: bytes are shifted without being reduced to one bit, so that a byte of 0xFF also sets every bit to
  // its left in the same output byte. Pinned by bitmap_line_test "a byte of 0xFF".
  unsigned char* Get8BitFrom1bitLineData(const unsigned char* line, unsigned int width);
  unsigned char* Get1bitFrom8bitLineData(const unsigned char* bytes, unsigned int width);

  // Bytes of so many pixels at 24 and 8 bits; 0 for any other depth and below 1 pixel.
  std::size_t CalcFillWidthBytes(int pixels, int bpp);

  bool Invert1BitLine(unsigned char* line, unsigned int width);
  bool Invert8BitLine(unsigned char* line, unsigned int width);
  bool Invert24BitLine(unsigned char* line, unsigned int width);

  // Reverses the order of the eight bits; false for null.
  bool InvertBits(unsigned char* byte);
  // Bit number - 1 of the byte; 0 for a number outside 1 to 8.
  unsigned char GetBitValue(const unsigned char* byte, unsigned int number);
  // Moves the bits behind the last pixel to the front of the line, where they are 0. False without a pixel.
  bool Shift1BitLineToRight(unsigned char* line, unsigned int width);

 private:
  bool firstColorIs(std::uint8_t value);

  unsigned char* m_data;
  unsigned int m_size;
};
