#include "image/reso_ring.h"

#include <algorithm>
#include <cstring>

#include "foundation/compat.h"

bool ResoRing::allocate(const ChangeResoSetup& setup) {
  release();
  if (setup.saveLineCount == 0) return true;
  m_lineBytes = setup.saveLineBytes;
  m_planes = setup.is24Bit() ? 3 : 1;
  m_handle = NewHandle(static_cast<long>(kSlots * m_lineBytes));
  return m_handle != nullptr;
}

bool ResoRing::lock() {
  if (m_handle == nullptr) return true;
  m_base = reinterpret_cast<std::uint8_t*>(GlobalLock(m_handle));
  if (m_base != nullptr) std::memset(m_base, 0, kSlots * m_lineBytes);
  return m_base != nullptr;
}

void ResoRing::unlock() {
  if (m_handle != nullptr) GlobalUnlock(m_handle);
  m_base = nullptr;
}

void ResoRing::release() {
  if (m_handle != nullptr) GlobalFree(m_handle);
  m_handle = nullptr;
  m_base = nullptr;
}

void ResoRing::restart() {
  m_saveLineIndex = 0;
  planeCount = 0;
  inLineCount = 0;
}

std::uint8_t ResoRing::at(unsigned slot, unsigned planeIndex, std::size_t column) const {
  return column < bytesFrom(slot, planeIndex) ? plane(slot, planeIndex)[column] : std::uint8_t{0};
}

// The slot of the line that comes now; the ring moves on behind it.
std::uint8_t* ResoRing::nextSlot(unsigned* index) {
  *index = m_saveLineIndex;
  m_saveLineIndex = (m_saveLineIndex + 1) % kSlots;
  return slot(*index);
}

unsigned ResoRing::repeatLine() {
  unsigned index = 0;
  std::uint8_t* const line = nextSlot(&index);
  std::memcpy(line, slot((index + kSlots - 1) % kSlots), m_lineBytes);
  return 1U << index;
}

// Counts the line in slotIndex; the first one is saved in the last slot, too.
unsigned ResoRing::countFirst(unsigned slotIndex) {
  if (inLineCount++ != 0) return 1U << slotIndex;
  std::memmove(slot(kSlots - 1), slot(slotIndex), m_lineBytes);
  return 1U << slotIndex | 1U << (kSlots - 1);
}

unsigned ResoRing::SetSaveImg8Bit(const std::uint8_t* line, unsigned long bytes) {
  if (line == nullptr) return repeatLine();
  unsigned index = 0;
  std::uint8_t* const saved = nextSlot(&index);
  const unsigned long present = std::min(bytes, m_lineBytes);
  std::memcpy(saved, line, present);
  std::memset(saved + present, 0, m_lineBytes - present);
  return countFirst(index);
}

unsigned ResoRing::SetSaveImg2Bit(const std::uint8_t* line, unsigned long bytes) {
  if (line == nullptr) return repeatLine();
  unsigned index = 0;
  std::uint8_t* const saved = nextSlot(&index);
  for (unsigned long i = 0; i < m_lineBytes; ++i) {
    const unsigned bits = i / 8 < bytes ? line[i / 8] : 0U;
    saved[i] = (bits << (i % 8) & 0x80U) != 0 ? kSetBit : std::uint8_t{0};
  }
  return countFirst(index);
}

unsigned ResoRing::SetSaveImg24Bit(const ResoKernels& kernels, const std::uint8_t* line, unsigned long bytes,
                                   int lineKind) {
  std::uint8_t* const saved = slot(m_saveLineIndex);
  const std::size_t width = planeBytes();
  if (line == nullptr) {
    std::memcpy(saved, slot((m_saveLineIndex + kSlots - 1) % kSlots), m_lineBytes);
    planeCount += 3;
  } else if (lineKind >= 2 && lineKind <= 4) {
    std::uint8_t* const plane = saved + static_cast<std::size_t>(lineKind - 2) * width;
    const std::size_t present = std::min<std::size_t>(bytes, width);
    std::memcpy(plane, line, present);
    std::memset(plane + present, 0, width - present);
    ++planeCount;
  } else {
    std::uint8_t* const first = saved + (lineKind == 5 ? 0 : 2 * width);
    std::uint8_t* const second = saved + width;
    std::uint8_t* const third = saved + (lineKind == 5 ? 2 * width : 0);
    const std::size_t whole = std::min<std::size_t>(bytes / 3, width);
    kernels.splitTriples(line, whole, first, second, third);
    for (std::size_t i = whole; i < width; ++i) {
      first[i] = 3 * i < bytes ? line[3 * i] : std::uint8_t{0};
      second[i] = 3 * i + 1 < bytes ? line[3 * i + 1] : std::uint8_t{0};
      third[i] = 0;
    }
    planeCount += 3;
  }
  if (planeCount < 3) return 0;
  planeCount = 0;
  const unsigned index = m_saveLineIndex;
  m_saveLineIndex = (m_saveLineIndex + 1) % kSlots;
  return countFirst(index);
}
