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

  // out[i] = sums[i] / totals[i] to the nearest, halves up. The quotients lie within 0..255.49.
  void (*divide)(const float* sums, const float* totals, std::size_t count, std::uint8_t* out);

  // out[i] = the mean of pair i of two rows, halves up.
  void (*halve)(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t count, std::uint8_t* out);

  // count triples to three planes, and back.
  void (*splitTriples)(const std::uint8_t* triples, std::size_t count, std::uint8_t* const planes[3]);
  void (*joinTriples)(const std::uint8_t* const planes[3], std::size_t count, std::uint8_t* triples);
};

// The sets that this processor can run, the plainest first.
std::span<const ResoKernels> resoKernels();
// The fastest of them.
const ResoKernels& bestResoKernels();
