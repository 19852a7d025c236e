// Builds and reads the headers of a BMP file image in memory.
//
//   0 'B' 'M'   2 file size   10 offset of the pixels   14 information header: 40 bytes, width 18, height 22, planes
//   26, bits per pixel 28, compression 30, pixel bytes 34, pixels per metre 38 and 42, colours used 46   54 palette
//
// Kept: lines are (width * bpp + 7) / 8 bytes and not padded to a multiple of four, unlike the common form of the
// format. Every line length of the library rests on it. Pinned by BitmapHeader_test "a one-bit page of 100 pixels".
// Sizes are 64-bit, so that no header can make one wrap; negative widths and heights count as nothing.
// Threads: an object belongs to one thread; accessors only read the bytes they are given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/rgbquad.h"

class CBitmapHeader {
 public:
  CBitmapHeader() = default;
  CBitmapHeader(const CBitmapHeader&) = delete;
  CBitmapHeader& operator=(const CBitmapHeader&) = delete;

  // Returns a block of CalcBmpHeaderSize(bpp) bytes that stays owned by this object until the next call or
  // FreeBmpHeader. palette may be null: the entries are then zero. headerSize may be null.
  virtual unsigned char* CreateBmpHeader(int resolutionX, int resolutionY, int bpp, int width, int height,
                                         const tagRGBQUAD* palette, int* headerSize);
  virtual void FreeBmpHeader();

  // 'B' 'M' at the start.
  virtual bool IsBmpData(unsigned char* data, unsigned int size);
  // Null when the header is not whole. GetBmpInfoHeader does not look at the signature.
  virtual unsigned char* GetBmpFileHeader(unsigned char* data, unsigned int size);
  virtual unsigned char* GetBmpInfoHeader(unsigned char* data, unsigned int size);
  virtual bool IsColorPaletteContain(unsigned char* data, unsigned int size);
  virtual int GetColorPaletteNum(unsigned char* data, unsigned int size);
  virtual tagRGBQUAD* GetBmpColorPaletterPointer(unsigned char* data, unsigned int size);
  // First pixel byte. pixelBytes, if not null, receives the file size field less the header, at most what is there; 0
  // bytes make the pointer null. Data without a signature are raw pixels: data is returned, pixelBytes left alone.
  virtual unsigned char* GetBmpPixelDataPointer(unsigned char* data, unsigned int size, unsigned int* pixelBytes);
  // The byte that fills a line with white.
  virtual unsigned char GetWhiteDataValue(unsigned char* data, unsigned int size);
  virtual unsigned char GetDefaultWhiteDataValue(int bpp);
  // Dots per inch. These and the next four give 0 without a header.
  virtual int GetResolutionX(unsigned char* data, unsigned int size);
  virtual int GetResolutionY(unsigned char* data, unsigned int size);
  virtual int GetBitPerPixel(unsigned char* data, unsigned int size);
  virtual int GetWidthPixel(unsigned char* data, unsigned int size);
  virtual int GetHeightPixel(unsigned char* data, unsigned int size);
  // Computed from width, height and depth, not read from the field.
  virtual std::uint64_t GetPixelDataSize(unsigned char* data, unsigned int size);
  // Sets height, pixel data size and file size. False, with nothing changed, without headers or a depth.
  virtual bool SetHeightPixel(unsigned char* data, unsigned int size, int height);
  // First palette index of the colour; 0 without a palette or a match.
  virtual int GetColorPaletteIndexOfBlack(unsigned char* data, unsigned int size);
  virtual int GetColorPaletteIndexOfWhite(unsigned char* data, unsigned int size);

  virtual std::uint64_t CalcBmpSize(int bpp, int width, int height);
  virtual unsigned int CalcBmpHeaderSize(int bpp);
  virtual std::uint64_t CalcPixelDataSize(int width, int height, int bpp);
  virtual std::uint64_t CalcWidthBytes(int width, int bpp);

  // The tables stay owned by this object; a second call returns the same block. CreateColorTable: null for a depth
  // other than 1 and 8.
  virtual tagRGBQUAD* CreateColorTable(int bpp);
  virtual void FreeColorTable();
  virtual tagRGBQUAD* CreateMonochromeColorTable();
  virtual void FreeMonochromeColorTable();
  virtual tagRGBQUAD* CreateGrayColorTable();
  virtual void FreeGrayColorTable();
  virtual int CalcColorPaletteNum(int bpp);

  virtual int ConvertDotPerInchToPixPerMeter(int dpi);
  virtual int ConvertPixPerMeterToDotPerInch(int ppm);

 protected:
  // First palette index below limit whose three colours have the value; -1 if there is none.
  int findColor(unsigned char* data, unsigned int size, int limit, std::uint8_t value);

 private:
  // Palette entries that lie inside the data.
  int paletteEntriesPresent(unsigned char* data, unsigned int size);

  std::unique_ptr<unsigned char[]> m_header;
  std::unique_ptr<tagRGBQUAD[]> m_monochromeTable;
  std::unique_ptr<tagRGBQUAD[]> m_grayTable;
};
