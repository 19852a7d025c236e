#include "plane_line.h"

#include <algorithm>

namespace scan_decode {

void PlaneLine::open(std::size_t widthPx) {
  bgr_.resize(widthPx * 3);
  clear();
}

void PlaneLine::put(Part part, const std::uint8_t* values) {
  for (std::size_t i = part; i < bgr_.size(); i += 3) bgr_[i] = *values++;
  held_ |= 1u << part;
}

void PlaneLine::clear() {
  std::fill(bgr_.begin(), bgr_.end(), std::uint8_t{0xFF});
  held_ = 0;
}

}  // namespace scan_decode
