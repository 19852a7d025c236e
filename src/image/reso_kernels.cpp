#include "image/reso_kernels.h"

#include <algorithm>

// Built with full optimisation: the loops are written for the compiler to put into vector registers.
#define QS_INLINE inline __attribute__((always_inline))

namespace {

QS_INLINE void mixRows(const std::uint8_t* const rows[4], const std::int32_t weights[4], std::size_t count,
                       std::int32_t* __restrict mixed) {
  const std::uint8_t* const r0 = rows[0];
  const std::uint8_t* const r1 = rows[1];
  const std::uint8_t* const r2 = rows[2];
  const std::uint8_t* const r3 = rows[3];
  // Whole numbers below 2^24: exact in single precision, for which every processor has a vector product.
  const auto w0 = static_cast<float>(weights[0]);
  const auto w1 = static_cast<float>(weights[1]);
  const auto w2 = static_cast<float>(weights[2]);
  const auto w3 = static_cast<float>(weights[3]);
  for (std::size_t i = 0; i < count; ++i) {
    const float sum = static_cast<float>(r0[i]) * w0 + static_cast<float>(r1[i]) * w1 + static_cast<float>(r2[i]) * w2 +
                      static_cast<float>(r3[i]) * w3;
    mixed[i] = static_cast<std::int32_t>(sum);
  }
}

QS_INLINE void mixColumns(const std::int32_t* const taps[4], const std::int32_t weights[4], std::size_t count,
                          std::uint8_t* __restrict out) {
  const std::int32_t* const t0 = taps[0];
  const std::int32_t* const t1 = taps[1];
  const std::int32_t* const t2 = taps[2];
  const std::int32_t* const t3 = taps[3];
  const std::int32_t w0 = weights[0];
  const std::int32_t w1 = weights[1];
  const std::int32_t w2 = weights[2];
  const std::int32_t w3 = weights[3];
  for (std::size_t i = 0; i < count; ++i) {
    const std::int32_t sum = t0[i] * w0 + t1[i] * w1 + t2[i] * w2 + t3[i] * w3;
    // A million is 64 times 15625; what is left after the shift is exact in single precision, and half a step keeps the
    // product with the rounded reciprocal on its side of every whole number.
    const std::int32_t cut = std::min(std::max(sum, 0), 255999999) >> 6;
    out[i] = static_cast<std::uint8_t>(static_cast<std::int32_t>((static_cast<float>(cut) + 0.5F) * (1.0F / 15625.0F)));
  }
}

QS_INLINE void addCells(const std::int32_t* columns, const float* cellWidths, float rowHeight, std::size_t count,
                        std::size_t planes, const float* const rows[3], float* __restrict total, float* const sums[3]) {
  if (planes == 1) {
    const float* const r0 = rows[0];
    float* __restrict const s0 = sums[0];
    for (std::size_t i = 0; i < count; ++i) {
      const float share = cellWidths[i] * rowHeight;
      total[i] += share;
      s0[i] += r0[columns[i]] * share;
    }
    return;
  }
  const float* const r0 = rows[0];
  const float* const r1 = rows[1];
  const float* const r2 = rows[2];
  float* __restrict const s0 = sums[0];
  float* __restrict const s1 = sums[1];
  float* __restrict const s2 = sums[2];
  for (std::size_t i = 0; i < count; ++i) {
    const float share = cellWidths[i] * rowHeight;
    total[i] += share;
    s0[i] += r0[columns[i]] * share;
    s1[i] += r1[columns[i]] * share;
    s2[i] += r2[columns[i]] * share;
  }
}

// One set: the loops above, compiled for what `target` names.
#define QS_KERNEL_SET(set, target)                                                                                     \
  target void mixRows_##set(const std::uint8_t* const rows[4], const std::int32_t weights[4], std::size_t count,       \
                            std::int32_t* mixed) {                                                                     \
    mixRows(rows, weights, count, mixed);                                                                              \
  }                                                                                                                    \
  target void mixColumns_##set(const std::int32_t* const taps[4], const std::int32_t weights[4], std::size_t count,    \
                               std::uint8_t* out) {                                                                    \
    mixColumns(taps, weights, count, out);                                                                             \
  }                                                                                                                    \
  target void addCells_##set(const std::int32_t* columns, const float* cellWidths, float rowHeight, std::size_t count, \
                             std::size_t planes, const float* const rows[3], float* total, float* const sums[3]) {     \
    addCells(columns, cellWidths, rowHeight, count, planes, rows, total, sums);                                        \
  }                                                                                                                    \
  constexpr ResoKernels kSet_##set = {#set, mixRows_##set, mixColumns_##set, addCells_##set};

QS_KERNEL_SET(baseline, )
#if defined(__x86_64__)
QS_KERNEL_SET(sse41, __attribute__((target("sse4.1"))))
QS_KERNEL_SET(avx2, __attribute__((target("avx2"))))
constexpr ResoKernels kSets[] = {kSet_baseline, kSet_sse41, kSet_avx2};

std::size_t supportedSets() {
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx2")) return 3;
  return __builtin_cpu_supports("sse4.1") ? 2 : 1;
}
#else
constexpr ResoKernels kSets[] = {kSet_baseline};

std::size_t supportedSets() { return 1; }
#endif

}  // namespace

std::span<const ResoKernels> resoKernels() {
  static const std::size_t count = supportedSets();
  return {kSets, count};
}

const ResoKernels& bestResoKernels() { return resoKernels().back(); }
