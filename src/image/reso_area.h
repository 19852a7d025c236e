// Writes the shrunk lines of a conversion: every output pixel is the mean over its box of input pixels.
//
// Which columns a box covers, and how much of each, is the same for every line and told once. All of it is single
// precision in one order: rows, then columns, the share of a cell being width times height.
// Threads: belongs to one conversion.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "image/change_reso_setup.h"
#include "image/reso_kernels.h"
#include "image/reso_ring.h"

class ResoArea {
 public:
  // False without memory.
  bool prepare(const ChangeResoSetup& setup);
  // The output line that starts at row y of the ring. dest has room for lineExtent bytes; a pixel whose box is empty is
  // left alone, and in a one-bit line repeats the one before.
  void writeLine(const ResoRing& ring, const ResoKernels& kernels, float y, std::uint8_t* dest);
  std::size_t lineExtent() const;

 private:
  // Output pixels that are worked on together, so that what they read stays close by.
  struct Chunk {
    std::size_t first, count;
    std::size_t column;  // leftmost input column
    std::size_t span;    // input columns from there
  };
  static constexpr std::size_t kChunkPixels = 256;

  bool prepareBoxes();
  void sumChunk(const ResoRing& ring, const ResoKernels& kernels, float y, const Chunk& chunk);
  void placeChunk(const Chunk& chunk, std::uint8_t* dest);

  const ChangeResoSetup* m_setup = nullptr;
  std::size_t m_cells = 0;  // cells of the widest box
  std::size_t m_planes = 1;
  std::vector<Chunk> m_chunks;
  std::unique_ptr<std::int32_t[]> m_columns;  // first column of each box, from its chunk's leftmost one
  std::unique_ptr<float[]> m_widths;          // [cell][pixel]; 0 behind a box
  std::unique_ptr<float[]> m_span;            // [plane][column of the chunk]
  std::unique_ptr<std::uint8_t[]> m_values;   // a line of one-bit values
  std::size_t m_spanLimit = 0;
  std::uint8_t m_lastValue = 0;
  float m_total[kChunkPixels];
  float m_sums[3][kChunkPixels];
};
