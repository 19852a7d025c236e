// One JPEG stream in memory whose frame height can be corrected.
// Threads: the caller owns the bytes.
#pragma once

#include "image/JpegHeader.h"

class CJpegImage : public CJpegHeader {
 public:
  // Borrows data for the life of the object.
  CJpegImage(unsigned char* data, unsigned int size) : m_data(data), m_size(size) {}

  // Writes the low 16 bits of height into the frame header, in place. False without a frame header.
  bool ReduceHeightInfo(int height) { return SetHeightPix(m_data, m_size, height); }

 private:
  unsigned char* m_data;
  unsigned int m_size;
};
