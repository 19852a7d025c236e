// Runs one conversion through the plain resampler and through the product on every kernel set that this processor has,
// call by call, and tells the first difference.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "image/QvChangeReso.h"

namespace reso_compare {

using Bytes = std::vector<std::uint8_t>;

struct Line {
  int kind = 5;
  bool null = false;
  Bytes bytes;
};

struct Job {
  CHRESO_OPEN open{};
  bool bottomUp = false;
  bool nullFlush = false;  // the flush repeats through the ring; otherwise the last line is fed again
  int pages = 1;           // through the same object, each with all lines
  std::vector<Line> lines;
  // The buffer: what ChangeResoInit asks for and this much more, or less.
  long spareBytes = 64;
  std::size_t guardBytes = 64;  // before and behind the buffer
  std::uint32_t fillSeed = 1;   // what lies in the buffer beforehand
};

struct Outcome {
  std::string difference;  // empty: all agree
  bool served = false;
  int path = 0;  // 1 copy, 2 exact, 3 enlarged, 4 shrunk
  long lines = 0;
};

Outcome compare(const Job& job);
// The settings in words.
std::string describe(const Job& job);

}  // namespace reso_compare
