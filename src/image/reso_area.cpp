#include "image/reso_area.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "image/reso_bits.h"

namespace {

float overlap(float begin, float end, float cell) { return std::min(end, cell + 1.0F) - std::max(begin, cell); }

// Every Step-th byte; known steps let the compiler move whole registers.
template <std::size_t Step>
void takeEvery(const std::uint8_t* source, std::size_t count, std::uint8_t* __restrict dest) {
  for (std::size_t i = 0; i < count; ++i) dest[i] = source[i * Step];
}

}  // namespace

bool ResoArea::prepare(const ChangeResoSetup& setup) {
  m_setup = &setup;
  m_planes = setup.is24Bit() ? 3 : 1;
  m_pixels = setup.outPixels;
  try {
    m_isWhole = m_whole.prepare(setup);
    if (m_isWhole) {
      m_wholePlanes.assign(m_planes * m_pixels, 0);
    } else {
      prepareBoxes();
    }
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

void ResoArea::prepareBoxes() {
  const float dx = static_cast<float>(m_setup->rateXN) / static_cast<float>(m_setup->rateXM);
  std::vector<float> begins(m_pixels);
  std::vector<float> ends(m_pixels);
  float x0 = 0.0F;
  float x1 = dx + 0.0F;
  m_cells = 0;
  m_firstBehind = m_pixels;
  for (std::size_t p = 0; p < m_pixels; ++p, x0 += dx, x1 += dx) {
    begins[p] = x0;
    ends[p] = x1;
    m_cells = std::max(m_cells, static_cast<std::size_t>(std::ceil(x1) - std::trunc(x0)));
  }
  m_columns.resize(m_pixels);
  m_widths.assign(m_cells * m_pixels, 0.0F);
  m_cellBytes.assign(ResoRing::kSlots * m_planes * m_cells * m_pixels, 0);
  m_values.resize(m_setup->is1Bit() ? m_pixels : 0);
  for (std::size_t p = 0; p < m_pixels; ++p) {
    const auto column = static_cast<std::size_t>(begins[p]);
    const auto end = static_cast<std::size_t>(std::ceil(ends[p]));
    m_columns[p] = static_cast<std::uint32_t>(column);
    // Cells that the box does not have are read too, and count nothing.
    if (column + m_cells > m_setup->open.inLinePixels) m_firstBehind = std::min(m_firstBehind, p);
    for (std::size_t cell = 0; column + cell < end; ++cell) {
      m_widths[cell * m_pixels + p] = overlap(begins[p], ends[p], static_cast<float>(column + cell));
    }
  }
}

void ResoArea::refresh(const ResoRing& ring, unsigned slot) {
  if (m_isWhole) return;
  const bool evenSteps = m_setup->rateXM == 1;
  for (unsigned plane = 0; plane < m_planes; ++plane) {
    const std::uint8_t* const source = ring.plane(slot, plane);
    for (std::size_t cell = 0; cell < m_cells; ++cell) {
      std::uint8_t* const dest = cells(slot, plane, cell);
      if (evenSteps && m_setup->rateXN == 2) {
        takeEvery<2>(source + cell, m_firstBehind, dest);
      } else if (evenSteps && m_setup->rateXN == 4) {
        takeEvery<4>(source + cell, m_firstBehind, dest);
      } else {
        for (std::size_t p = 0; p < m_firstBehind; ++p) dest[p] = source[m_columns[p] + cell];
      }
    }
  }
}

// What lies behind the input line is another line's, which may have changed since.
void ResoArea::takeLastBoxes(const ResoRing& ring, unsigned slot) {
  for (unsigned plane = 0; plane < m_planes; ++plane) {
    for (std::size_t cell = 0; cell < m_cells; ++cell) {
      std::uint8_t* const dest = cells(slot, plane, cell);
      for (std::size_t p = m_firstBehind; p < m_pixels; ++p) dest[p] = ring.at(slot, plane, m_columns[p] + cell);
    }
  }
}

std::size_t ResoArea::lineExtent() const {
  if (m_setup->is1Bit()) return (m_pixels + 7) / 8;
  if (m_planes == 1) return m_pixels;
  const bool interleaved = m_setup->open.colorOrder == 1 || m_setup->open.colorOrder == 3;
  return interleaved ? 3 * m_pixels : 2 * (m_setup->outLineBytes / 3) + m_pixels;
}

void ResoArea::writeWholeLine(const ResoRing& ring, const ResoKernels& kernels, float y, std::uint8_t* dest) {
  const int order = m_setup->open.colorOrder;
  const bool interleaved = m_planes == 3 && (order == 1 || order == 3);
  const bool aside = m_setup->is1Bit() || interleaved;
  const std::uint8_t* planes[3] = {};
  for (unsigned plane = 0; plane < m_planes; ++plane) {
    std::uint8_t* const out =
        aside ? m_wholePlanes.data() + plane * m_pixels : dest + m_setup->outLineBytes / 3 * plane;
    m_whole.writePlane(ring, kernels, y, plane, out);
    planes[plane] = out;
  }
  if (m_setup->is1Bit()) packResoBits(planes[0], m_pixels, dest);
  if (interleaved)
    kernels.joinTriples(planes[order == 1 ? 0 : 2], planes[1], planes[order == 1 ? 2 : 0], m_pixels, dest);
}

void ResoArea::writeLine(const ResoRing& ring, const ResoKernels& kernels, float y, std::uint8_t* dest) {
  if (m_isWhole) return writeWholeLine(ring, kernels, y, dest);
  const float end = static_cast<float>(m_setup->rateYN) / static_cast<float>(m_setup->rateYM) + y;
  const auto firstRow = static_cast<unsigned>(y);
  const auto lastRow = static_cast<unsigned>(std::ceil(end));
  for (unsigned row = firstRow; row < lastRow; ++row) takeLastBoxes(ring, ring.slotOfRow(row));
  m_lastValue = 0;
  for (std::size_t first = 0; first < m_pixels; first += kChunkPixels) {
    const std::size_t count = std::min(kChunkPixels, m_pixels - first);
    std::fill_n(m_total, count, 0.0F);
    for (unsigned plane = 0; plane < m_planes; ++plane) std::fill_n(m_sums[plane], count, 0.0F);
    for (unsigned row = firstRow; row < lastRow; ++row) {
      const float height = overlap(y, end, static_cast<float>(row));
      const unsigned slot = ring.slotOfRow(row);
      for (std::size_t cell = 0; cell < m_cells; cell += ResoKernels::kCellsAtOnce) {
        ResoKernels::Cells at{m_widths.data() + cell * m_pixels + first,
                              {},
                              m_pixels,
                              std::min(ResoKernels::kCellsAtOnce, m_cells - cell),
                              height};
        for (unsigned plane = 0; plane < m_planes; ++plane) at.bytes[plane] = cells(slot, plane, cell) + first;
        if (m_planes == 1) {
          kernels.addCells1(at, count, m_total, m_sums);
        } else {
          kernels.addCells3(at, count, m_total, m_sums);
        }
      }
    }
    for (unsigned plane = 0; plane < m_planes; ++plane) kernels.means(m_sums[plane], m_total, count, m_means[plane]);
    place(kernels, first, count, dest);
  }
  if (m_setup->is1Bit()) packResoBits(m_values.data(), m_pixels, dest);
}

void ResoArea::place(const ResoKernels& kernels, std::size_t first, std::size_t count, std::uint8_t* dest) {
  const bool anyEmpty = std::find(m_total, m_total + count, 0.0F) != m_total + count;
  const auto isEmpty = [&](std::size_t i) { return anyEmpty && m_total[i] == 0.0F; };
  const int order = m_setup->open.colorOrder;
  if (m_setup->is1Bit()) {
    for (std::size_t i = 0; i < count; ++i) {
      if (!isEmpty(i)) m_lastValue = m_means[0][i];
      m_values[first + i] = m_lastValue;
    }
  } else if (m_planes == 3 && !anyEmpty && (order == 1 || order == 3)) {
    const std::uint8_t* const red = m_means[order == 1 ? 0 : 2];
    const std::uint8_t* const blue = m_means[order == 1 ? 2 : 0];
    kernels.joinTriples(red, m_means[1], blue, count, dest + 3 * first);
  } else {
    const bool interleaved = m_planes == 3 && (order == 1 || order == 3);
    for (std::size_t plane = 0; plane < m_planes; ++plane) {
      const std::size_t at = !interleaved ? m_setup->outLineBytes / 3 * plane : order == 1 ? plane : 2 - plane;
      const std::size_t step = interleaved ? 3 : 1;
      for (std::size_t i = 0; i < count; ++i) {
        if (!isEmpty(i)) dest[at + step * (first + i)] = m_means[plane][i];
      }
    }
  }
}
