#include "image/reso_area.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "image/reso_bits.h"

namespace {

constexpr std::size_t kSpanColumns = 2048;

float overlap(float begin, float end, float cell) { return std::min(end, cell + 1.0F) - std::max(begin, cell); }

// To the nearest, halves up: exact, as a fraction of single precision is.
std::uint8_t rounded(float value) {
  const float whole = std::trunc(value);
  return static_cast<std::uint8_t>(static_cast<int>(whole) + (value - whole >= 0.5F ? 1 : 0));
}

}  // namespace

bool ResoArea::prepare(const ChangeResoSetup& setup) {
  m_setup = &setup;
  m_planes = setup.is24Bit() ? 3 : 1;
  try {
    return prepareBoxes();
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool ResoArea::prepareBoxes() {
  const std::size_t pixels = m_setup->outPixels;
  const float dx = static_cast<float>(m_setup->rateXN) / static_cast<float>(m_setup->rateXM);
  std::vector<float> begins(pixels);
  std::vector<float> ends(pixels);
  float x0 = 0.0F;
  float x1 = dx + 0.0F;
  m_cells = 0;
  for (std::size_t p = 0; p < pixels; ++p, x0 += dx, x1 += dx) {
    begins[p] = x0;
    ends[p] = x1;
    m_cells = std::max(m_cells, static_cast<std::size_t>(std::ceil(x1) - std::trunc(x0)));
  }
  m_columns.reset(new std::int32_t[pixels]());
  m_widths.reset(new float[m_cells * pixels]());
  m_values.reset(m_setup->is1Bit() ? new std::uint8_t[pixels]() : nullptr);
  m_spanLimit = std::max(kSpanColumns, m_cells);
  m_span.reset(new float[m_planes * m_spanLimit]());
  m_chunks.clear();
  for (std::size_t p = 0; p < pixels; ++p) {
    const auto column = static_cast<std::size_t>(begins[p]);
    const auto end = static_cast<std::size_t>(std::ceil(ends[p]));
    if (m_chunks.empty() || m_chunks.back().count == kChunkPixels ||
        column + m_cells - m_chunks.back().column > m_spanLimit) {
      m_chunks.push_back({p, 0, column, 0});
    }
    Chunk& chunk = m_chunks.back();
    ++chunk.count;
    chunk.span = column + m_cells - chunk.column;
    m_columns[p] = static_cast<std::int32_t>(column - chunk.column);
    for (std::size_t cell = 0; column + cell < end; ++cell) {
      m_widths[cell * pixels + p] = overlap(begins[p], ends[p], static_cast<float>(column + cell));
    }
  }
  return true;
}

std::size_t ResoArea::lineExtent() const {
  if (m_setup->is1Bit()) return (m_setup->outPixels + 7) / 8;
  if (m_planes == 1) return m_setup->outPixels;
  const bool interleaved = m_setup->open.colorOrder == 1 || m_setup->open.colorOrder == 3;
  return interleaved ? 3 * m_setup->outPixels : 2 * (m_setup->outLineBytes / 3) + m_setup->outPixels;
}

void ResoArea::writeLine(const ResoRing& ring, const ResoKernels& kernels, float y, std::uint8_t* dest) {
  m_lastValue = 0;
  for (const Chunk& chunk : m_chunks) {
    sumChunk(ring, kernels, y, chunk);
    placeChunk(chunk, dest);
  }
  if (m_setup->is1Bit()) packResoBits(m_values.get(), m_setup->outPixels, dest);
}

void ResoArea::sumChunk(const ResoRing& ring, const ResoKernels& kernels, float y, const Chunk& chunk) {
  std::fill_n(m_total, chunk.count, 0.0F);
  for (std::size_t plane = 0; plane < m_planes; ++plane) std::fill_n(m_sums[plane], chunk.count, 0.0F);
  float* const sums[3] = {m_sums[0], m_sums[1], m_sums[2]};
  const float end = static_cast<float>(m_setup->rateYN) / static_cast<float>(m_setup->rateYM) + y;
  const auto lastRow = static_cast<unsigned>(std::ceil(end));
  for (auto row = static_cast<unsigned>(y); row < lastRow; ++row) {
    const unsigned slot = ring.slotOfRow(row);
    for (unsigned plane = 0; plane < m_planes; ++plane) {
      float* const span = m_span.get() + plane * m_spanLimit;
      const std::size_t behind = ring.bytesFrom(slot, plane);
      const std::size_t present = std::min(chunk.span, behind - std::min(chunk.column, behind));
      const std::uint8_t* const source = ring.plane(slot, plane) + std::min(chunk.column, behind);
      std::copy_n(source, present, span);
      std::fill_n(span + present, chunk.span - present, 0.0F);
    }
    const float height = overlap(y, end, static_cast<float>(row));
    for (std::size_t cell = 0; cell < m_cells; ++cell) {
      const float* const rows[3] = {m_span.get() + cell, m_span.get() + (m_planes > 1 ? m_spanLimit : 0) + cell,
                                    m_span.get() + (m_planes > 1 ? 2 * m_spanLimit : 0) + cell};
      kernels.addCells(m_columns.get() + chunk.first, m_widths.get() + cell * m_setup->outPixels + chunk.first, height,
                       chunk.count, m_planes, rows, m_total, sums);
    }
  }
}

void ResoArea::placeChunk(const Chunk& chunk, std::uint8_t* dest) {
  const int order = m_setup->open.colorOrder;
  const bool interleaved = order == 1 || order == 3;
  const std::size_t planeStep = m_setup->outLineBytes / 3;
  for (std::size_t i = 0; i < chunk.count; ++i) {
    const std::size_t p = chunk.first + i;
    const bool empty = m_total[i] == 0.0F;
    if (m_setup->is1Bit()) {
      if (!empty) m_lastValue = rounded(m_sums[0][i] / m_total[i]);
      m_values[p] = m_lastValue;
      continue;
    }
    if (empty) continue;
    for (std::size_t plane = 0; plane < m_planes; ++plane) {
      const std::uint8_t value = rounded(m_sums[plane][i] / m_total[i]);
      if (m_planes == 1) {
        dest[p] = value;
      } else if (interleaved) {
        dest[3 * p + (order == 1 ? plane : 2 - plane)] = value;
      } else {
        dest[planeStep * plane + p] = value;
      }
    }
  }
}
