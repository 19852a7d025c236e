// Writes the shrunk lines of a conversion: every output pixel is the mean over its box of input pixels.
//
// Which columns a box covers, and how much of each, is the same for every line and told once. A box has at most K
// cells in a row, so the saved lines are kept a second time as K arrays: array k holds, for every output pixel, the
// byte under cell k of its box. The sums then run along whole arrays. All of it is single precision in one order: rows,
// then columns, the share of a cell being width times height; a cell that a box does not have adds nothing. Threads:
// belongs to one conversion.
#pragma once

#include <cstdint>
#include <vector>

#include "image/change_reso_setup.h"
#include "image/reso_area_whole.h"
#include "image/reso_kernels.h"
#include "image/reso_ring.h"

class ResoArea {
 public:
  // False without memory.
  bool prepare(const ChangeResoSetup& setup);
  // A slot of the ring has changed.
  void refresh(const ResoRing& ring, unsigned slot);
  // The output line that starts at row y of the ring. dest has room for lineExtent bytes; a pixel whose box is empty is
  // left alone, and in a one-bit line repeats the one before.
  void writeLine(const ResoRing& ring, const ResoKernels& kernels, float y, std::uint8_t* dest);
  std::size_t lineExtent() const;

 private:
  // Output pixels that are worked on together, so that their sums stay close by.
  static constexpr std::size_t kChunkPixels = ResoKernels::kSumsStep;

  void prepareBoxes();
  std::uint8_t* cells(unsigned slot, unsigned plane, std::size_t cell) {
    return m_cellBytes.data() + ((slot * m_planes + plane) * m_cells + cell) * m_pixels;
  }
  void takeLastBoxes(const ResoRing& ring, unsigned slot);
  void writeWholeLine(const ResoRing& ring, const ResoKernels& kernels, float y, std::uint8_t* dest);
  void place(const ResoKernels& kernels, std::size_t first, std::size_t count, std::uint8_t* dest);

  const ChangeResoSetup* m_setup = nullptr;
  std::size_t m_pixels = 0;       // of an output line
  std::size_t m_cells = 0;        // of the widest box: K
  std::size_t m_firstBehind = 0;  // the first output pixel whose box reaches behind the input line
  unsigned m_planes = 1;
  std::vector<std::uint32_t> m_columns;   // first column of each box
  std::vector<float> m_widths;            // [cell][pixel]
  std::vector<std::uint8_t> m_cellBytes;  // [slot][plane][cell][pixel]
  std::vector<std::uint8_t> m_values;     // a line of one-bit values
  std::uint8_t m_lastValue = 0;
  ResoWholeArea m_whole;
  bool m_isWhole = false;                   // it makes the means, and nothing here but m_wholePlanes is used
  std::vector<std::uint8_t> m_wholePlanes;  // [plane][pixel]
  float m_total[kChunkPixels];
  float m_sums[3][kChunkPixels];
  std::uint8_t m_means[3][kChunkPixels];
};
