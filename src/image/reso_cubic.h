// Writes the enlarged lines of a conversion: cubic convolution over the four saved lines.
//
// The output of a line is made in groups of M pixels, one group for N input pixels, and all pixels of a group share the
// window at its start: input columns N*group - 1 to N*group + 2. So the saved lines are kept a second time, sorted by
// what the windows read: array j holds column N*entry + j - 1, and tap k of a group is array k % D at entry
// group + k / D, D being min(N, 4). The sum over the rows is then made once for each column, and the sum over the
// columns runs along whole arrays. Threads: belongs to one conversion.
#pragma once

#include <cstdint>
#include <memory>

#include "image/change_reso_setup.h"
#include "image/reso_kernels.h"
#include "image/reso_ring.h"

class ResoCubic {
 public:
  // False without memory.
  bool prepare(const ChangeResoSetup& setup);
  // A slot of the ring has changed.
  void refresh(const ResoRing& ring, unsigned slot);
  // The output line at row y of the ring, with row indexY of the vertical weights. dest has room for lineExtent bytes.
  void writeLine(const ResoRing& ring, const ResoKernels& kernels, float y, int indexY, std::uint8_t* dest);
  std::size_t lineExtent() const;

 private:
  // Where a plane of the ring lies in the arrays.
  struct Place {
    std::size_t group;
    std::size_t component;
  };
  Place placeOf(unsigned plane) const;
  std::uint8_t* arrays(unsigned slot, std::size_t group) const {
    return m_rows.get() + (slot * m_groups + group) * m_groupBytes;
  }
  std::uint8_t* phase(std::size_t i) const { return m_phases.get() + i * m_phaseBytes; }
  void fixNarrowLine(const ResoRing& ring, const std::int32_t* wy, std::size_t group);
  void copyGroupStarts(const ResoRing& ring, unsigned row, std::size_t group);
  void spread(std::uint8_t* dest) const;
  void spreadTriples(std::uint8_t* dest) const;

  const ChangeResoSetup* m_setup = nullptr;
  std::size_t m_n = 1, m_m = 1;  // N input pixels give M output pixels
  std::size_t m_width = 0;
  std::size_t m_blocks = 0;      // groups of output pixels, a last one that is not whole included
  std::size_t m_arrays = 1;      // D
  std::size_t m_groups = 1;      // separate runs of bytes: 3 for plane output
  std::size_t m_components = 1;  // bytes side by side for a pixel: 3 for interleaved output
  std::size_t m_arrayBytes = 0, m_groupBytes = 0, m_phaseBytes = 0;
  std::unique_ptr<std::uint8_t[]> m_rows;    // [slot][group][array][entry][component]
  std::unique_ptr<std::int32_t[]> m_mixed;   // [array][entry][component]
  std::unique_ptr<std::uint8_t[]> m_phases;  // [pixel of the group][block][component]
  std::unique_ptr<std::uint8_t[]> m_values;  // a line of one-bit values
};
