#include "image/reso_area_whole.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t kMostParts = 1U << 24;  // whole numbers of single precision
constexpr int kMostRate = 1024;

bool isPowerOfTwo(int value) { return (value & (value - 1)) == 0; }

// sums[group * M] = the parts of `Columns` columns of that group.
template <std::size_t Columns>
void sumBoxes(const std::int32_t* columns, std::size_t n, const std::int32_t* parts, std::size_t groups, std::size_t m,
              float* sums) {
  for (std::size_t group = 0; group < groups; ++group) {
    std::int32_t sum = 0;
    for (std::size_t k = 0; k < Columns; ++k) sum += columns[group * n + k] * parts[k];
    sums[group * m] = static_cast<float>(sum);
  }
}

}  // namespace

bool ResoWholeArea::prepare(const ChangeResoSetup& setup) {
  m_n = static_cast<std::size_t>(setup.rateXN);
  m_m = static_cast<std::size_t>(setup.rateXM);
  m_yN = setup.rateYN;
  m_yM = setup.rateYM;
  m_pixels = setup.outPixels;
  m_width = (m_pixels * m_n + m_m - 1) / m_m;
  if (!isPowerOfTwo(setup.rateXM) || !isPowerOfTwo(setup.rateYM)) return false;
  if (setup.rateXN > kMostRate || m_yN > kMostRate || m_yM > kMostRate) return false;
  if (255 * m_n * static_cast<std::size_t>(m_yN) >= kMostParts || m_pixels * m_n >= kMostParts) return false;
  if (m_width > setup.open.inLinePixels) return false;  // a cut line can ask for columns behind the last one
  m_boxes.clear();
  for (std::size_t i = 0; i < m_m; ++i) {
    const std::size_t begin = i * m_n;  // in parts, M to a column
    const std::size_t end = begin + m_n;
    Box box{begin / m_m, {}};
    for (std::size_t column = box.column; column * m_m < end; ++column) {
      box.parts.push_back(static_cast<std::int32_t>(std::min(end, (column + 1) * m_m) - std::max(begin, column * m_m)));
    }
    m_boxes.push_back(std::move(box));
  }
  m_columns.reset(new std::int32_t[m_width]);
  m_sums.reset(new float[m_pixels]);
  m_totals.reset(new float[m_pixels]);
  std::fill_n(m_totals.get(), m_pixels, static_cast<float>(m_n) * static_cast<float>(m_yN));
  return true;
}

void ResoWholeArea::writePlane(const ResoRing& ring, const ResoKernels& kernels, float y, unsigned plane,
                               std::uint8_t* out) {
  // Rows in parts, M to a row; a box spans at most three.
  const int begin = static_cast<int>(y * static_cast<float>(m_yM));
  const int end = begin + m_yN;
  const std::uint8_t* rows[4];
  std::int32_t parts[4];
  for (int k = 0; k < 4; ++k) {
    const int row = begin / m_yM + k;
    parts[k] = std::max(0, std::min(end, (row + 1) * m_yM) - std::max(begin, row * m_yM));
    rows[k] = ring.plane(ring.slotOfRow(static_cast<unsigned>(row)), plane);
  }
  // Pairs of one row, or of two with equal shares.
  if (m_n == 2 && m_m == 1 && (parts[1] == 0 || parts[0] == parts[1]) && parts[2] == 0) {
    kernels.halve(rows[0], rows[parts[1] == 0 ? 0 : 1], m_pixels, out);
    return;
  }
  kernels.mixRows(rows, parts, m_width, m_columns.get());
  for (std::size_t i = 0; i < std::min(m_m, m_pixels); ++i) sumBox(m_boxes[i], i);
  kernels.means(m_sums.get(), m_totals.get(), m_pixels, out);
}

// The box of pixel `pixel` in every group that has this pixel.
void ResoWholeArea::sumBox(const Box& box, std::size_t pixel) {
  const std::size_t groups = (m_pixels - pixel + m_m - 1) / m_m;
  const std::int32_t* const columns = m_columns.get() + box.column;
  const std::int32_t* const parts = box.parts.data();
  float* const sums = m_sums.get() + pixel;
  switch (box.parts.size()) {
    case 2:
      return sumBoxes<2>(columns, m_n, parts, groups, m_m, sums);
    case 3:
      return sumBoxes<3>(columns, m_n, parts, groups, m_m, sums);
    case 4:
      return sumBoxes<4>(columns, m_n, parts, groups, m_m, sums);
    default:
      for (std::size_t group = 0; group < groups; ++group) {
        std::int32_t sum = 0;
        for (std::size_t k = 0; k < box.parts.size(); ++k) sum += columns[group * m_n + k] * parts[k];
        sums[group * m_m] = static_cast<float>(sum);
      }
  }
}
