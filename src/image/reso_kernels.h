// The inner loops of the resampler, one set for each kind of processor.
//
// Every set gives the same bytes: the sums are whole numbers that fit their type, or single-precision steps in one
// fixed order. Threads: reentrant.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

struct ResoKernels {
  const char* name;

  // mixed[i] = the four rows at i, weighted. Weights within +-4000 add up exactly.
  void (*mixRows)(const std::uint8_t* const rows[4], const std::int32_t weights[4], std::size_t count,
                  std::int32_t* mixed);

  // out[i] = the four taps at i, weighted, cut to 0..255999999 and divided by 1000000, towards zero; above 255 is 255.
  void (*mixColumns)(const std::int32_t* const taps[4], const std::int32_t weights[4], std::size_t count,
                     std::uint8_t* out);

  // For one row and one cell of each of count boxes: total and the planes' sums grow by the cell's share. columns are
  // offsets into the rows.
  void (*addCells)(const std::int32_t* columns, const float* cellWidths, float rowHeight, std::size_t count,
                   std::size_t planes, const float* const rows[3], float* total, float* const sums[3]);
};

// The sets that this processor can run, the plainest first.
std::span<const ResoKernels> resoKernels();
// The fastest of them.
const ResoKernels& bestResoKernels();
