// One colour line that arrives as three lines: its red, green and blue parts, in any order.
// Threads: one caller at a time.
#pragma once

#include <cstdint>
#include <vector>

namespace scan_decode {

class PlaneLine {
 public:
  enum Part : unsigned { Blue = 0, Green = 1, Red = 2 };  // place within a B,G,R pixel

  // Starts a page. May throw std::bad_alloc.
  void open(std::size_t widthPx);

  bool has(Part part) const { return (held_ & (1u << part)) != 0; }
  bool empty() const { return held_ == 0; }
  bool complete() const { return held_ == 7; }

  // Takes a part of one byte for each pixel.
  void put(Part part, const std::uint8_t* values);

  // The line as B,G,R; parts that have not come are full, so that a line without any would be white.
  const std::uint8_t* bgr() const { return bgr_.data(); }

  // Ready for the next line.
  void clear();

 private:
  std::vector<std::uint8_t> bgr_;
  unsigned held_ = 0;  // a bit for each Part
};

}  // namespace scan_decode
