// The set-up of one resolution conversion: reduced ratios, line geometry, the choice of writer, the cubic weights.
//
// Names and codes of the fields are those of the trace and the tests. Threads: a value, computed once for each page.
#pragma once

#include <cstdint>

// What a conversion is asked for, and, below, what it answers.
struct CHRESO_OPEN {
  std::int32_t inResoX;  // dots per inch
  std::int32_t inResoY;
  std::int32_t outResoX;
  std::int32_t outResoY;
  // High byte: 0x100 one bit for each pixel, 0x200 eight, 0x400 twenty-four. 0x10: the simple 8-bit path, for exact
  // ratios. The rest of the low byte plays no part.
  std::uint32_t formatFlags;
  unsigned long inLinePixels;
  std::int32_t colorOrder;          // 24-bit output: 1 R,G,B, 3 B,G,R, anything else three planes
  bool alignOutLine;                // round the output line up to four bytes (twelve for 24 bits)
  unsigned long fixedOutLineBytes;  // distance of two output lines, or 0 for the line's own length
  unsigned long leftPadPixels;      // left offset in an output line

  unsigned long outStrideBytes;   // distance of two output lines
  unsigned long outPixels;        // pixels in an output line
  unsigned long writeBufferSize;  // bytes that the buffer of one ChangeResoWrite must hold
};

enum class ResoWriter { kExact1Bit = 0, kRing1Bit, kExact8Bit, kRing8Bit, kRing24Bit, kCopyRgb, kCopyBgr, kCopyPlane };
enum class ResoPath { kCopy = 1, kExact, kEnlarge, kShrink };

struct ChangeResoSetup {
  static constexpr int kPhases = 32;

  // Weights of one phase, in thousandths.
  struct CubicRow {
    float frac;
    std::int32_t w[4];
  };

  CHRESO_OPEN open{};
  // N input pixels (lines) give M output pixels (lines).
  int rateXN = 0, rateXM = 0, rateYN = 0, rateYM = 0;
  int tblRateX = 0, tblRateY = 0;  // codes of exact ratios, 0 for none
  float stepY = 0;
  std::int32_t stepX1000 = 0;
  ResoPath path = ResoPath::kCopy;
  ResoWriter writeKind = ResoWriter::kCopyRgb;
  int writer2Bit = 0;
  int writer8Bit = 0;
  int writerNtoM = 0;
  unsigned long outStride = 0, outStridePixels = 0, outLineBytes = 0, outPixels = 0, leftOffsetBytes = 0;
  unsigned long fullBlocksX = 0, restPixelsX = 0;  // whole groups of rateXM output pixels, and what is left
  unsigned long saveLineCount = 0, saveLineBytes = 0;
  CubicRow tblX[kPhases]{};
  CubicRow tblY[kPhases]{};
  // Kept: the products of the weights are filled and never read. Pinned by change_reso_setup_test "The table of
  // products".
  std::int32_t tblElement[kPhases][4][4]{};

  // Everything above from the record, and the record's result fields. False where the ratio is not served.
  bool ChangeResoInit(CHRESO_OPEN* record);

  bool is24Bit() const { return depth() == 0x400; }
  bool is1Bit() const { return depth() == 0x100; }
  bool hasRing() const { return path == ResoPath::kEnlarge || path == ResoPath::kShrink; }

  // The smallest whole ratio with n below 100, in single precision; in to out itself where there is none. False for a
  // resolution below 1 or beyond what a ratio can hold.
  static bool GetRateNM(int in, int out, int* n, int* m);
  // 1, 2, 3, 4 for that many times, 5 for half, otherwise 0.
  static void SetTblRate(int n, int m, int* code);
  // Cubic convolution with the parameter -1.
  static float kernel(float t);

 private:
  std::uint32_t depth() const { return open.formatFlags & 0xFF00U; }
  void ChangeResoSetParam();
  bool SetFunctionPointer();
  bool SetCubicTbl();
  void SetTblElementMultiply();
};
