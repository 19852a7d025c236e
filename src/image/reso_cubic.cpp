#include "image/reso_cubic.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "image/reso_bits.h"

namespace {

constexpr std::size_t kTaps = 4;
constexpr std::size_t kTripleOverrun = 1;  // triples are moved four bytes at a time

// out[b * M + i] = phase i at b.
template <std::size_t M>
void interleave(const std::uint8_t* phases, std::size_t phaseBytes, std::size_t count, std::uint8_t* __restrict out) {
  for (std::size_t b = 0; b < count; ++b) {
    for (std::size_t i = 0; i < M; ++i) out[b * M + i] = phases[i * phaseBytes + b];
  }
}

std::uint8_t cubicByte(const std::int32_t* wx, const std::int32_t* mixed) {
  std::int32_t sum = 0;
  for (std::size_t k = 0; k < kTaps; ++k) sum += wx[k] * mixed[k];
  return static_cast<std::uint8_t>(std::clamp(sum, 0, 255999999) / 1000000);
}

}  // namespace

bool ResoCubic::prepare(const ChangeResoSetup& setup) {
  m_setup = &setup;
  m_n = static_cast<std::size_t>(setup.rateXN);
  m_m = static_cast<std::size_t>(setup.rateXM);
  m_width = setup.open.inLinePixels;
  m_blocks = setup.fullBlocksX + (setup.restPixelsX != 0 ? 1 : 0);
  m_arrays = std::min(m_n, kTaps);
  const bool interleaved = setup.is24Bit() && (setup.open.colorOrder == 1 || setup.open.colorOrder == 3);
  m_components = interleaved ? 3 : 1;
  m_groups = setup.is24Bit() && !interleaved ? 3 : 1;
  m_arrayBytes = (m_blocks + (kTaps - 1) / m_arrays) * m_components;
  m_groupBytes = m_arrayBytes * m_arrays;
  m_phaseBytes = m_blocks * m_components + kTripleOverrun;
  m_rows.reset(new (std::nothrow) std::uint8_t[ResoRing::kSlots * m_groups * m_groupBytes]());
  m_mixed.reset(new (std::nothrow) std::int32_t[m_groupBytes]());
  m_phases.reset(new (std::nothrow) std::uint8_t[m_m * m_phaseBytes]());
  m_values.reset(setup.is1Bit() ? new (std::nothrow) std::uint8_t[setup.outPixels + 1]() : nullptr);
  return m_rows && m_mixed && m_phases && (m_values || !setup.is1Bit());
}

ResoCubic::Place ResoCubic::placeOf(unsigned plane) const {
  if (m_groups == 3) return {plane, 0};
  if (m_components == 3) return {0, m_setup->open.colorOrder == 1 ? plane : 2 - plane};
  return {0, 0};
}

void ResoCubic::refresh(const ResoRing& ring, unsigned slot) {
  if (m_width == 0) return;
  const std::size_t entries = m_arrayBytes / m_components;
  for (unsigned plane = 0; plane < ring.planes(); ++plane) {
    const Place place = placeOf(plane);
    const std::uint8_t* const source = ring.plane(slot, plane);
    for (std::size_t j = 0; j < m_arrays; ++j) {
      std::uint8_t* const array = arrays(slot, place.group) + j * m_arrayBytes + place.component;
      // Entry e holds column N*e + j - 1, the first column to the left of the line, the last one to its right.
      const std::size_t inside = j > m_width ? 0 : std::min((m_width - j + m_n) / m_n, entries);
      for (std::size_t e = j == 0 ? 1 : 0; e < inside; ++e) array[e * m_components] = source[m_n * e + j - 1];
      for (std::size_t e = inside; e < entries; ++e) array[e * m_components] = source[m_width - 1];
      if (j == 0) array[0] = source[0];
    }
  }
}

std::size_t ResoCubic::lineExtent() const {
  if (m_setup->is1Bit()) {
    return packedResoBytes(m_setup->restPixelsX, m_setup->fullBlocksX, m_setup->fullBlocksX * m_m);
  }
  if (m_groups == 3) return 2 * (m_setup->outLineBytes / 3) + m_setup->outPixels;
  return m_setup->outPixels * m_components;
}

void ResoCubic::writeLine(const ResoRing& ring, const ResoKernels& kernels, float y, int indexY, std::uint8_t* dest) {
  static constexpr std::int32_t kNoWeights[kTaps] = {};
  const std::int32_t* const wy = indexY < ChangeResoSetup::kPhases ? m_setup->tblY[indexY].w : kNoWeights;
  const float row = std::trunc(y);
  for (std::size_t group = 0; group < m_groups; ++group) {
    const std::uint8_t* rows[kTaps];
    for (unsigned r = 0; r < kTaps; ++r) rows[r] = arrays(ring.slotOfRow(r), group);
    kernels.mixRows(rows, wy, m_groupBytes, m_mixed.get());
    const std::int32_t* taps[kTaps];
    for (std::size_t k = 0; k < kTaps; ++k) {
      taps[k] = m_mixed.get() + k % m_arrays * m_arrayBytes + k / m_arrays * m_components;
    }
    for (std::size_t i = 0; i < m_m; ++i) {
      const std::size_t blocks = i < m_setup->restPixelsX ? m_blocks : m_setup->fullBlocksX;
      kernels.mixColumns(taps, m_setup->tblX[i].w, blocks * m_components, phase(i));
    }
    if (m_width < 3) fixNarrowLine(ring, wy, group);
    if (row == y) copyGroupStarts(ring, static_cast<unsigned>(row), group);
    if (m_setup->is1Bit()) {
      spread(m_values.get());
    } else if (m_components == 3) {
      spreadTriples(dest);
    } else {
      spread(dest + group * (m_setup->outLineBytes / 3));
    }
  }
  if (!m_setup->is1Bit()) return;
  const std::size_t before = m_setup->fullBlocksX * m_m;
  packResoBits(m_values.get(), before, dest);
  packResoRest(m_values.get() + before, m_setup->restPixelsX, m_setup->fullBlocksX, before, dest);
}

// The window of the first group reads on behind a line of one or two pixels instead of repeating its last one.
void ResoCubic::fixNarrowLine(const ResoRing& ring, const std::int32_t* wy, std::size_t group) {
  for (unsigned plane = 0; plane < ring.planes() && m_blocks > 0; ++plane) {
    const Place place = placeOf(plane);
    if (place.group != group) continue;
    std::int32_t mixed[kTaps] = {};
    for (std::size_t k = 0; k < kTaps; ++k) {
      for (unsigned r = 0; r < kTaps; ++r) mixed[k] += wy[r] * ring.at(ring.slotOfRow(r), plane, k == 0 ? 0 : k - 1);
    }
    for (std::size_t i = 0; i < m_m; ++i) phase(i)[place.component] = cubicByte(m_setup->tblX[i].w, mixed);
  }
}

// An output line that falls on an input line takes the first pixel of each whole group from it as it is. A line that
// was cut to the room of a fixed stride can have groups behind the last column: they take the bytes that follow it.
void ResoCubic::copyGroupStarts(const ResoRing& ring, unsigned row, std::size_t group) {
  const unsigned slot = ring.slotOfRow(row);
  const std::uint8_t* const starts = arrays(slot, group) + 1 % m_arrays * m_arrayBytes;
  std::memcpy(phase(0), starts + 1 / m_arrays * m_components, m_setup->fullBlocksX * m_components);
  for (std::size_t b = (m_width + m_n - 1) / m_n; b < m_setup->fullBlocksX; ++b) {
    for (unsigned plane = 0; plane < ring.planes(); ++plane) {
      const Place place = placeOf(plane);
      if (place.group == group) phase(0)[b * m_components + place.component] = ring.at(slot, plane, m_n * b);
    }
  }
}

void ResoCubic::spread(std::uint8_t* dest) const {
  const std::size_t whole = m_setup->fullBlocksX;
  switch (m_m) {
    case 1:
      std::memcpy(dest, phase(0), whole);
      break;
    case 2:
      interleave<2>(m_phases.get(), m_phaseBytes, whole, dest);
      break;
    case 3:
      interleave<3>(m_phases.get(), m_phaseBytes, whole, dest);
      break;
    case 4:
      interleave<4>(m_phases.get(), m_phaseBytes, whole, dest);
      break;
    default:
      for (std::size_t i = 0; i < m_m; ++i) {
        for (std::size_t b = 0; b < whole; ++b) dest[b * m_m + i] = phase(i)[b];
      }
  }
  for (std::size_t i = 0; i < m_setup->restPixelsX; ++i) dest[whole * m_m + i] = phase(i)[whole];
}

void ResoCubic::spreadTriples(std::uint8_t* dest) const {
  if (m_setup->outPixels == 0) return;
  // Four bytes at a time; the fourth is overwritten by the next triple, so that the last one goes by itself.
  const std::size_t last = m_setup->outPixels - 1;
  std::size_t pixel = 0;
  for (std::size_t b = 0; pixel < last; ++b) {
    const std::size_t end = std::min(last - pixel, m_m);
    for (std::size_t i = 0; i < end; ++i) std::memcpy(dest + 3 * (pixel + i), phase(i) + 3 * b, 4);
    pixel += end;
    if (end < m_m) break;
  }
  std::memcpy(dest + 3 * last, phase(last % m_m) + 3 * (last / m_m), 3);
}
