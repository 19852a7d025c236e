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

  // A few cells of every box of a run of output pixels, in one row.
  struct Cells {
    const float* widths;           // [cell][pixel], cellStep apart
    const std::uint8_t* bytes[3];  // by plane, likewise
    std::size_t cellStep;
    std::size_t count;  // 1 to kCellsAtOnce
    float height;
  };
  static constexpr std::size_t kCellsAtOnce = 4;
  static constexpr std::size_t kSumsStep = 512;

  // total and the planes' sums grow by the cells' shares, cell after cell; for one plane and for three.
  void (*addCells1)(const Cells& cells, std::size_t count, float* total, float (*sums)[kSumsStep]);
  void (*addCells3)(const Cells& cells, std::size_t count, float* total, float (*sums)[kSumsStep]);
  // Triples to three planes and back.
  void (*splitTriples)(const std::uint8_t* triples, std::size_t count, std::uint8_t* first, std::uint8_t* second,
                       std::uint8_t* third);
  void (*joinTriples)(const std::uint8_t* first, const std::uint8_t* second, const std::uint8_t* third,
                      std::size_t count, std::uint8_t* triples);
  // sum / total, halves up. Anything where the total is 0.
  void (*means)(const float* sums, const float* total, std::size_t count, std::uint8_t* out);
  // out[i] = the mean of pair i of two rows, halves up.
  void (*halve)(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t count, std::uint8_t* out);
};

// The sets that this processor can run, the plainest first.
std::span<const ResoKernels> resoKernels();
// The fastest of them.
const ResoKernels& bestResoKernels();
