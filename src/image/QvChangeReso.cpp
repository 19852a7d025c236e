#include "image/QvChangeReso.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <new>

#include "image/reso_exact.h"

namespace {

int asInt(unsigned long bytes) { return static_cast<int>(std::min<unsigned long>(bytes, INT_MAX)); }

// Lays one input line into an output line of triples. kind 2 to 4 is one colour, which goes to its place in the triple;
// sameOrder says that triples come in the order that they go out in.
void layTriples(const CHRESO_WRITE& write, bool red1st, std::uint8_t* dest) {
  const std::uint8_t* const line = write.lineData;
  const unsigned long bytes = write.lineBytes;
  if (write.lineKind >= 2 && write.lineKind <= 4) {
    const auto plane = static_cast<std::size_t>(write.lineKind - 2);
    const std::size_t place = red1st ? plane : 2 - plane;
    for (unsigned long i = 0; i < bytes; ++i) dest[3 * i + place] = line[i];
  } else if ((write.lineKind == 5) == red1st) {
    std::memcpy(dest, line, bytes);
  } else {
    for (unsigned long i = 0; i + 3 <= bytes; i += 3) {
      dest[i] = line[i + 2];
      dest[i + 1] = line[i + 1];
      dest[i + 2] = line[i];
    }
  }
}

void layPlanes(const CHRESO_WRITE& write, std::size_t planeStep, std::uint8_t* dest) {
  const std::uint8_t* const line = write.lineData;
  if (write.lineKind >= 2 && write.lineKind <= 4) {
    std::memcpy(dest + static_cast<std::size_t>(write.lineKind - 2) * planeStep, line, write.lineBytes);
    return;
  }
  const std::size_t first = write.lineKind == 5 ? 0 : 2;
  for (unsigned long i = 0; i < write.lineBytes / 3; ++i) {
    dest[first * planeStep + i] = line[3 * i];
    dest[planeStep + i] = line[3 * i + 1];
    dest[(2 - first) * planeStep + i] = line[3 * i + 2];
  }
}

}  // namespace

std::int32_t CQvChangeReso::naiseki(const std::int32_t* a, const std::int32_t* b) {
  return (a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3]) / 1000;
}

bool CQvChangeReso::ChangeResoInit(CHRESO_OPEN* open) {
  ChangeResoClose();
  if (open == nullptr || !m_setup.ChangeResoInit(open) || !m_ring.allocate(m_setup)) return false;
  if (m_setup.path == ResoPath::kEnlarge && !m_cubic.prepare(m_setup)) return false;
  if (m_setup.path == ResoPath::kShrink && !m_area.prepare(m_setup)) return false;
  m_ready = true;
  return true;
}

int CQvChangeReso::ChangeResoWriteStart() {
  m_ring.restart();
  return m_ring.lock() ? 1 : 0;
}

int CQvChangeReso::ChangeResoWrite(CHRESO_WRITE* write, int* outLines) {
  *outLines = 0;
  return runWriter(*write, outLines);
}

int CQvChangeReso::ChangeResoWriteEnd(CHRESO_WRITE* write, int* outLines) {
  *outLines = 0;
  unsigned long bytes = 0;
  if (write->writeBuffer != nullptr && m_ring.isLocked() && m_ring.inLineCount >= 3) {
    for (int i = 0; i < 2; ++i) bytes += static_cast<unsigned long>(runWriter(*write, outLines));
  }
  m_ring.unlock();
  return asInt(bytes);
}

int CQvChangeReso::ChangeResoClose() {
  m_ring.release();
  m_ready = false;
  return 1;
}

int CQvChangeReso::runWriter(const CHRESO_WRITE& write, int* outLines) {
  if (!m_ready) return 0;
  if (m_setup.hasRing()) return ChWriteRing(write, outLines);
  if (write.lineData == nullptr) return 0;
  return m_setup.path == ResoPath::kCopy ? ChWriteCopy(write, outLines) : ChWriteExact(write, outLines);
}

template <class Draw>
void CQvChangeReso::drawLine(const CHRESO_WRITE& write, int line, std::size_t extent, Draw draw) {
  if (write.writeBuffer == nullptr || extent == 0) return;
  const auto size = static_cast<__int128>(write.writeBufferBytes);
  const auto stride = static_cast<__int128>(m_setup.outStride);
  const __int128 begin = (write.bottomUp ? size - stride * (line + 1) : stride * line) + m_setup.leftOffsetBytes;
  unsigned char* const buffer = write.bottomUp ? write.writeBuffer - write.writeBufferBytes : write.writeBuffer;
  if (begin >= 0 && begin + extent <= size) {
    draw(buffer + static_cast<std::size_t>(begin));
    return;
  }
  // A line that lies partly outside is drawn aside.
  const __int128 from = std::max<__int128>(begin, 0);
  const __int128 to = std::min<__int128>(begin + extent, size);
  if (from >= to) return;
  const std::unique_ptr<std::uint8_t[]> aside(new (std::nothrow) std::uint8_t[extent]());
  if (aside == nullptr) return;
  unsigned char* const inside = buffer + static_cast<std::size_t>(from);
  std::uint8_t* const part = aside.get() + static_cast<std::size_t>(from - begin);
  const auto bytes = static_cast<std::size_t>(to - from);
  std::memcpy(part, inside, bytes);
  draw(aside.get());
  std::memcpy(inside, part, bytes);
}

int CQvChangeReso::ChWriteCopy(const CHRESO_WRITE& write, int* outLines) {
  if (m_setup.is24Bit()) {
    if (!writeImg24Bit(write)) return 0;
  } else {
    drawLine(write, 0, write.lineBytes,
             [&](std::uint8_t* dest) { std::memcpy(dest, write.lineData, write.lineBytes); });
  }
  *outLines = 1;
  return asInt(m_setup.outStride);
}

// True when the line is complete.
bool CQvChangeReso::writeImg24Bit(const CHRESO_WRITE& write) {
  const bool onePlane = write.lineKind >= 2 && write.lineKind <= 4;
  if (m_setup.writeKind == ResoWriter::kCopyPlane) {
    const std::size_t step = m_setup.outPixels;
    drawLine(write, 0, 2 * step + (onePlane ? write.lineBytes : write.lineBytes / 3),
             [&](std::uint8_t* dest) { layPlanes(write, step, dest); });
  } else {
    drawLine(write, 0, onePlane ? 3 * write.lineBytes : write.lineBytes,
             [&](std::uint8_t* dest) { layTriples(write, m_setup.writeKind == ResoWriter::kCopyRgb, dest); });
  }
  m_ring.planeCount += onePlane ? 1 : 3;
  if (m_ring.planeCount < 3) return false;
  m_ring.planeCount = 0;
  ++m_ring.inLineCount;
  return true;
}

int CQvChangeReso::ChWriteExact(const CHRESO_WRITE& write, int* outLines) {
  ++m_ring.inLineCount;
  if (m_setup.tblRateY == 5 && m_ring.inLineCount % 2 == 0) return 0;
  const bool bits = m_setup.is1Bit();
  const bool plain = bits && m_setup.writer2Bit == 4;
  const auto factor = static_cast<std::size_t>(m_setup.rateXN == 1 ? m_setup.rateXM : m_setup.rateXN);
  const std::size_t extent = plain ? write.lineBytes : m_setup.outLineBytes;
  unsigned long total = 0;
  while (*outLines < m_setup.rateYM) {
    std::size_t written = m_setup.outStride;
    drawLine(write, *outLines, extent, [&](std::uint8_t* dest) {
      const ExactLine line{write.lineData, write.lineBytes, dest, m_setup.outLineBytes};
      if (!bits) {
        m_setup.writer8Bit == 0 ? write8BitX_1toN(line, factor) : write8BitX_Nto1(line, factor);
      } else {
        writeExact2Bit(m_setup.writer2Bit, line);
      }
    });
    // Kept: two to one counts the bytes of the line, every other ratio the distance of lines. Pinned by
    // QvChangeReso_test "Two to one counts".
    if (bits && m_setup.writer2Bit == 0) written = std::min<std::size_t>(write.lineBytes / 2, m_setup.outLineBytes);
    total += written;
    ++*outLines;
  }
  return asInt(total);
}

bool CQvChangeReso::saveLine(const CHRESO_WRITE& write) {
  unsigned changed = 0;
  if (m_setup.is24Bit()) {
    changed = m_ring.SetSaveImg24Bit(m_kernels, write.lineData, write.lineBytes, write.lineKind);
    if (changed == 0) return false;
  } else if (m_setup.is1Bit()) {
    changed = m_ring.SetSaveImg2Bit(write.lineData, write.lineBytes);
  } else {
    changed = m_ring.SetSaveImg8Bit(write.lineData, write.lineBytes);
  }
  for (unsigned slot = 0; slot < ResoRing::kSlots; ++slot) {
    if ((changed >> slot & 1U) == 0) continue;
    m_setup.path == ResoPath::kEnlarge ? m_cubic.refresh(m_ring, slot) : m_area.refresh(m_ring, slot);
  }
  return true;
}

int CQvChangeReso::ChWriteRing(const CHRESO_WRITE& write, int* outLines) {
  if (!m_ring.isLocked() || !saveLine(write)) return 0;
  const int count = m_ring.inLineCount;
  if (count < 3) return 0;
  const int n = m_setup.rateYN;
  const int m = m_setup.rateYM;
  const int phase = (count - 3) % n;
  // The first output line of this input line, in ring rows: between 1 and 2, row 1 being the line three back. The way
  // there adds up in single precision.
  int indexY = 0;
  float y = 1.0F;
  if (phase != 0) {
    float reached = 0.0F;
    for (; static_cast<float>(phase) > reached; ++indexY) reached += m_setup.stepY;
    y = (reached + 1.0F) - static_cast<float>(phase);
  }
  // The output lines j of a cycle with j * n / m equal to the phase.
  const auto firstLine = [&](int input) { return (static_cast<std::int64_t>(input) * m + n - 1) / n; };
  const std::int64_t lines = firstLine(phase + 1) - firstLine(phase);
  const bool enlarges = m_setup.path == ResoPath::kEnlarge;
  const std::size_t extent = enlarges ? m_cubic.lineExtent() : m_area.lineExtent();
  unsigned long total = 0;
  for (std::int64_t i = 0; i < lines; ++i) {
    drawLine(write, *outLines, extent, [&](std::uint8_t* dest) {
      if (enlarges) {
        m_cubic.writeLine(m_ring, m_kernels, y, indexY, dest);
      } else {
        m_area.writeLine(m_ring, m_kernels, y, dest);
      }
    });
    total += m_setup.outStride;
    y += m_setup.stepY;
    ++indexY;
    ++*outLines;
  }
  return asInt(total);
}
