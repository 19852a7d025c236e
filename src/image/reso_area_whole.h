// The means of a shrunk line where every share is a whole number of parts: M and the vertical M are powers of two.
//
// Then each sum is a whole number that single precision holds exactly, whatever the order of its terms: the rows can be
// added first, for all columns at once, and the columns of each box after them. Threads: belongs to one conversion.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "image/change_reso_setup.h"
#include "image/reso_kernels.h"
#include "image/reso_ring.h"

class ResoWholeArea {
 public:
  // False where the ratios do not allow it. Throws std::bad_alloc.
  bool prepare(const ChangeResoSetup& setup);
  // One plane of the output line at row y of the ring: all its pixels.
  void writePlane(const ResoRing& ring, const ResoKernels& kernels, float y, unsigned plane, std::uint8_t* out);

 private:
  // The box of pixel i of a group: its first column, from the group's own, and the columns' parts.
  struct Box {
    std::size_t column;
    std::vector<std::int32_t> parts;
  };
  void sumBox(const Box& box, std::size_t pixel);

  std::size_t m_n = 1, m_m = 1;
  int m_yN = 1, m_yM = 1;
  std::size_t m_pixels = 0;
  std::size_t m_width = 0;  // input columns under the boxes
  std::vector<Box> m_boxes;
  std::unique_ptr<std::int32_t[]> m_columns;
  std::unique_ptr<float[]> m_sums, m_totals;
};
