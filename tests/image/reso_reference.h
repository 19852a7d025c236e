// The plain form of the resampler: each pixel is computed by itself, in the words of its definition and in their order,
// with no regard to speed. The tests hold the product to it bit for bit, and the benchmarks measure against it.
//
// It shares nothing with the product but the two records of a call.
// Threads: an object belongs to one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "image/QvChangeReso.h"

namespace reso_reference {

// Weights of one phase, in thousandths, for the four pixels around a position.
struct CubicRow {
  float frac = 0;
  std::int32_t w[4] = {0, 0, 0, 0};
};

// The kernel of the cubic convolution for a magnitude.
float kernel(float t);
// False where in or out is below 1, or m would not fit.
bool GetRateNM(int in, int out, int* n, int* m);
int SetTblRate(int n, int m);

// Bit tables, by their rules.
struct TwoBytes {
  std::uint8_t first, second;
};
TwoBytes dbl(std::uint8_t b);
std::uint8_t B1to3_3(std::uint8_t b);
std::uint8_t B1to3_2(std::uint8_t b);
std::uint8_t B1to3_1(std::uint8_t b);
std::uint8_t Cmp2t1H(std::uint8_t b);

// What lies where: lines go up from the buffer or, bottomUp, down from it. Offsets count from the buffer's address; a
// byte outside the buffer is neither written nor there to be read.
class Destination {
 public:
  explicit Destination(const CHRESO_WRITE& write);
  void put(std::ptrdiff_t offset, std::uint8_t value);
  void clearBit(std::ptrdiff_t offset, int bit);

 private:
  unsigned char* base_;
  std::ptrdiff_t first_, end_;
};

class ChangeReso {
 public:
  bool ChangeResoInit(CHRESO_OPEN* record);
  int ChangeResoWriteStart();
  int ChangeResoWrite(CHRESO_WRITE* write, int* outLines);
  int ChangeResoWriteEnd(CHRESO_WRITE* write, int* outLines);

  CHRESO_OPEN open{};
  unsigned long outStride = 0, outStridePixels = 0, outLineBytes = 0, outPixels = 0, leftOffsetBytes = 0;
  int rateXN = 0, rateXM = 0, rateYN = 0, rateYM = 0;
  int tblRateX = 0, tblRateY = 0;
  float stepY = 0;
  std::int32_t stepX1000 = 0;
  std::uint16_t inLineCount = 0;
  unsigned long fullBlocksX = 0, restPixelsX = 0;
  int kind = 0, writeKind = 0, writer2Bit = 0, writer8Bit = 0, writerNtoM = 0;
  CubicRow tblX[32], tblY[32];
  std::int32_t tblElement[32][4][4] = {};
  unsigned long saveLineCount = 0, saveLineBytes = 0;

 private:
  unsigned depth() const { return open.formatFlags & 0xFF00; }
  void ChangeResoSetParam();
  bool SetFunctionPointer();
  bool SetCubicTbl();
  static bool fillRows(CubicRow* table, int m, float step);

  // A byte of the input line; beyond its end there are zeros.
  static std::uint8_t in(const CHRESO_WRITE& write, std::size_t at);

  // The ring: four slots in one block, behind which there are zeros.
  std::uint8_t block(std::size_t at) const { return at < block_.size() ? block_[at] : std::uint8_t{0}; }
  void copySlot(std::size_t from, std::size_t to);
  void SetSaveImg8Bit(const CHRESO_WRITE& write);
  void SetSaveImg2Bit(const CHRESO_WRITE& write);
  bool SetSaveImg24Bit(const CHRESO_WRITE& write);
  template <class PixelAt>
  void saveOnePlane(bool hasLine, PixelAt pixelAt);
  // GetSaveImg for a plane that starts `plane` bytes into the slot.
  std::uint8_t GetSaveImg(long x, long row, std::size_t plane) const;
  void GetSaveImg4x4(long x, std::size_t plane, std::size_t planeBytes, std::uint8_t* window) const;
  std::int32_t weigh(const std::uint8_t* window) const;

  int run(const CHRESO_WRITE& write, int* outLines);
  int ChWriteCpy(const CHRESO_WRITE& write, int* outLines);
  int ChWriteExact(const CHRESO_WRITE& write, int* outLines);
  int ChWriteRing(const CHRESO_WRITE& write, int* outLines);
  bool SetImg24Bit(const CHRESO_WRITE& write, Destination& to, std::ptrdiff_t dest);
  void Write8BitSinple(const CHRESO_WRITE& write, Destination& to, std::ptrdiff_t dest) const;
  int Write2Bit(const CHRESO_WRITE& write, Destination& to, std::ptrdiff_t dest) const;
  std::ptrdiff_t GetWriteBuff(bool bottomUp, int line) const;

  void pixelXL(std::size_t base, int i, float y, bool rest, std::uint8_t* value);
  void WriteXL_NtoM(float y, Destination& to, std::ptrdiff_t dest);
  void Write2BitXL_NtoM(float y, Destination& to, std::ptrdiff_t dest);
  bool toSmall(float x0, float y0, float x1, float y1, std::uint8_t* value) const;
  void WriteXS_NtoM(float y, Destination& to, std::ptrdiff_t dest) const;
  void putPixel(std::size_t p, const std::uint8_t* value, Destination& to, std::ptrdiff_t dest) const;

  std::vector<std::uint8_t> block_;
  std::size_t planes_ = 1, planeBytes_ = 0;
  bool locked_ = false;  // between the start and the end
  std::size_t saveLineIndex_ = 0;
  int planeCount_ = 0;
  int indexX_ = 0, indexY_ = 0;
};

}  // namespace reso_reference
