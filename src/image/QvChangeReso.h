// Resamples an image, line by line, with independent horizontal and vertical ratios.
//
// Lines of 1, 8 or 24 bits go in as they arrive; output lines come out as soon as enough input lines are known. Equal
// resolutions copy, exact ratios of one-bit images are written from bit tables, and everything else goes through a ring
// of four saved lines, enlarged by cubic convolution or shrunk by averaging areas.
//
//   ChangeResoInit -> ChangeResoWriteStart -> ChangeResoWrite ... -> ChangeResoWriteEnd -> ChangeResoClose
//
// Every output byte comes from whole numbers or from single-precision steps in one fixed order, so that each processor
// gives the same image. Threads: an object belongs to one thread.
#pragma once

#include <cstdint>
#include <memory>

#include "image/change_reso_setup.h"
#include "image/reso_area.h"
#include "image/reso_cubic.h"
#include "image/reso_kernels.h"
#include "image/reso_ring.h"

// One call's line in and lines out.
struct CHRESO_WRITE {
  std::int32_t lineKind;          // 24-bit input: 2 red, 3 green, 4 blue line, 5 R,G,B triples, any other B,G,R triples
  const unsigned char* lineData;  // null repeats the last line; on the paths without a ring it writes nothing
  unsigned long lineBytes;        // pixels that the ring misses count as 0
  // Output lines go upward from writeBuffer or, bottomUp, downward from it: it is then the end of its bytes. What would
  // fall outside writeBufferBytes is not written.
  unsigned char* writeBuffer;
  unsigned long writeBufferBytes;
  bool bottomUp;
};

class CQvChangeReso {
 public:
  explicit CQvChangeReso(const ResoKernels& kernels = bestResoKernels()) : m_kernels(kernels) {}
  CQvChangeReso(const CQvChangeReso&) = delete;
  CQvChangeReso& operator=(const CQvChangeReso&) = delete;

  // Fills the result fields of open. False where the ratio is not served: a vertical reduction of more than 2 to 1 off
  // the exact paths, more than 32 output phases on the cubic path, resolutions below 1, no memory.
  bool ChangeResoInit(CHRESO_OPEN* open);
  // 1, or 0 when there is no block to save lines in.
  int ChangeResoWriteStart();
  // Bytes written to the buffer, and their lines.
  int ChangeResoWrite(CHRESO_WRITE* write, int* outLines);
  // The flush: two more calls with the same record move the last lines through the ring.
  // Kept: an image of fewer than three lines gives nothing on the ring paths, through either call. Pinned by
  // QvChangeReso_test "Fewer than three lines".
  int ChangeResoWriteEnd(CHRESO_WRITE* write, int* outLines);
  int ChangeResoClose();  // 1

  // The geometry and codes chosen by ChangeResoInit.
  const ChangeResoSetup& setup() const { return m_setup; }

  // An inner product over four terms in thousandths.
  static std::int32_t naiseki(const std::int32_t* a, const std::int32_t* b);

 private:
  int runWriter(const CHRESO_WRITE& write, int* outLines);
  int ChWriteCopy(const CHRESO_WRITE& write, int* outLines);
  int ChWriteExact(const CHRESO_WRITE& write, int* outLines);
  int ChWriteRing(const CHRESO_WRITE& write, int* outLines);
  bool saveLine(const CHRESO_WRITE& write);
  bool writeImg24Bit(const CHRESO_WRITE& write);

  // Calls draw(dest) for the given output line with dest good for extent bytes, and puts what fits into the buffer.
  template <class Draw>
  void drawLine(const CHRESO_WRITE& write, int line, std::size_t extent, Draw draw);

  const ResoKernels& m_kernels;
  ChangeResoSetup m_setup;
  ResoRing m_ring;
  ResoCubic m_cubic;
  ResoArea m_area;
  bool m_ready = false;
};
