// The last four input lines of a conversion, one byte for each pixel and plane.
//
// The oldest line is row 0. A 24-bit line lies in three planes; a one-bit pixel is 10 where it is set and 0 where not,
// which puts the threshold at 5. The first line is saved twice, so that the top edge repeats.
// Threads: belongs to one conversion.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/change_reso_setup.h"
#include "image/reso_kernels.h"

class ResoRing {
 public:
  static constexpr unsigned kSlots = 4;
  static constexpr std::uint8_t kSetBit = 10;
  static constexpr std::uint8_t kThreshold = 5;

  ResoRing() = default;
  ~ResoRing() { release(); }
  ResoRing(const ResoRing&) = delete;
  ResoRing& operator=(const ResoRing&) = delete;

  // The block; false without memory. Nothing for a set-up without a ring.
  bool allocate(const ChangeResoSetup& setup);
  // Locks the block; false if there is one that cannot be locked.
  bool lock();
  void unlock();
  void release();
  bool isLocked() const { return m_base != nullptr; }

  // A line goes into the ring; null repeats the line before. Missing bytes count as 0. Bits of the result: the slots
  // that changed. Kept: a null line counts in inLineCount for 24 bits only. Pinned by QvChangeReso_test "A null line".
  unsigned SetSaveImg8Bit(const std::uint8_t* line, unsigned long bytes);
  unsigned SetSaveImg2Bit(const std::uint8_t* line, unsigned long bytes);
  // 0 until the third plane of the line has come.
  unsigned SetSaveImg24Bit(const ResoKernels& kernels, const std::uint8_t* line, unsigned long bytes, int lineKind);

  unsigned slotOfRow(unsigned row) const { return (m_saveLineIndex + row) % kSlots; }
  unsigned long lineBytes() const { return m_lineBytes; }
  unsigned planes() const { return m_planes; }
  std::size_t planeBytes() const { return m_lineBytes / m_planes; }
  const std::uint8_t* plane(unsigned slot, unsigned plane) const {
    return m_base + slot * m_lineBytes + plane * planeBytes();
  }
  // The byte of a slot's plane. Kept: behind the last column the following bytes of the block are read, as a narrow
  // line's window does; behind the block they are 0. Pinned by QvChangeReso_test "A line of one or two pixels".
  std::uint8_t at(unsigned slot, unsigned plane, std::size_t column) const;
  // The bytes of the block from a slot's plane on.
  std::size_t bytesFrom(unsigned slot, unsigned plane) const {
    return kSlots * m_lineBytes - slot * m_lineBytes - plane * planeBytes();
  }

  unsigned planeCount = 0;        // colour lines received of the current 24-bit line
  std::uint16_t inLineCount = 0;  // lines since the start; wraps
  void restart();

 private:
  std::uint8_t* slot(unsigned index) { return m_base + index * m_lineBytes; }
  std::uint8_t* nextSlot(unsigned* index);
  unsigned repeatLine();
  unsigned countFirst(unsigned slotIndex);

  char** m_handle = nullptr;
  std::uint8_t* m_base = nullptr;
  unsigned long m_lineBytes = 0;
  unsigned m_planes = 1;
  unsigned m_saveLineIndex = 0;  // the slot that the next line goes to: the oldest line
};
