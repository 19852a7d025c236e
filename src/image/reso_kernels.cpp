#include "image/reso_kernels.h"

#include <algorithm>
#include <cstring>

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

// The number of cells is known to the compiler, so that the sums stay in registers from cell to cell.
template <std::size_t Planes, std::size_t Count>
QS_INLINE void addCountedCells(const ResoKernels::Cells& cells, std::size_t count, float* __restrict total,
                               float (*sums)[ResoKernels::kSumsStep]) {
  float* __restrict const s0 = sums[0];
  float* __restrict const s1 = sums[Planes == 3 ? 1 : 0];
  float* __restrict const s2 = sums[Planes == 3 ? 2 : 0];
  const float height = cells.height;
  const float* const widths = cells.widths;
  const std::uint8_t* const b0 = cells.bytes[0];
  const std::uint8_t* const b1 = cells.bytes[1];
  const std::uint8_t* const b2 = cells.bytes[2];
  const std::size_t step = cells.cellStep;
  for (std::size_t i = 0; i < count; ++i) {
    float sum = total[i];
    float sum0 = s0[i];
    float sum1 = Planes == 3 ? s1[i] : 0.0F;
    float sum2 = Planes == 3 ? s2[i] : 0.0F;
#pragma GCC unroll 4
    for (std::size_t k = 0; k < Count; ++k) {
      const float share = widths[k * step + i] * height;
      sum += share;
      sum0 += static_cast<float>(b0[k * step + i]) * share;
      if constexpr (Planes == 3) {
        sum1 += static_cast<float>(b1[k * step + i]) * share;
        sum2 += static_cast<float>(b2[k * step + i]) * share;
      }
    }
    total[i] = sum;
    s0[i] = sum0;
    if constexpr (Planes == 3) {
      s1[i] = sum1;
      s2[i] = sum2;
    }
  }
}

template <std::size_t Planes>
QS_INLINE void addCells(const ResoKernels::Cells& cells, std::size_t count, float* total,
                        float (*sums)[ResoKernels::kSumsStep]) {
  switch (cells.count) {
    case 1:
      return addCountedCells<Planes, 1>(cells, count, total, sums);
    case 2:
      return addCountedCells<Planes, 2>(cells, count, total, sums);
    case 3:
      return addCountedCells<Planes, 3>(cells, count, total, sums);
    default:
      return addCountedCells<Planes, 4>(cells, count, total, sums);
  }
}

QS_INLINE void splitTriples(const std::uint8_t* triples, std::size_t count, std::uint8_t* __restrict first,
                            std::uint8_t* __restrict second, std::uint8_t* __restrict third) {
  for (std::size_t i = 0; i < count; ++i) {
    first[i] = triples[3 * i];
    second[i] = triples[3 * i + 1];
    third[i] = triples[3 * i + 2];
  }
}

QS_INLINE void joinTriples(const std::uint8_t* first, const std::uint8_t* second, const std::uint8_t* third,
                           std::size_t count, std::uint8_t* __restrict triples) {
  for (std::size_t i = 0; i < count; ++i) {
    triples[3 * i] = first[i];
    triples[3 * i + 1] = second[i];
    triples[3 * i + 2] = third[i];
  }
}

QS_INLINE void means(const float* sums, const float* total, std::size_t count, std::uint8_t* __restrict out) {
  for (std::size_t i = 0; i < count; ++i) {
    const float mean = sums[i] / (total[i] != 0.0F ? total[i] : 1.0F);
    const auto whole = static_cast<std::int32_t>(mean);
    // What is behind the point is exact, so that halves go up as in any wider type.
    out[i] = static_cast<std::uint8_t>(whole + (mean - static_cast<float>(whole) >= 0.5F ? 1 : 0));
  }
}

QS_INLINE void halve(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t count,
                     std::uint8_t* __restrict out) {
  for (std::size_t i = 0; i < count; ++i) {
    std::uint16_t a = 0;  // a pair, in whichever order
    std::uint16_t b = 0;
    std::memcpy(&a, upper + 2 * i, sizeof(a));
    std::memcpy(&b, lower + 2 * i, sizeof(b));
    const auto sum = static_cast<std::uint16_t>((a & 0xFF) + (a >> 8) + (b & 0xFF) + (b >> 8) + 2);
    out[i] = static_cast<std::uint8_t>(sum >> 2);
  }
}

// NOLINTBEGIN(bugprone-macro-parentheses): an attribute cannot stand in parentheses.
// One set: the loops above, compiled for what `target` names.
#define QS_KERNEL_SET(set, target)                                                                                  \
  target void mixRows_##set(const std::uint8_t* const rows[4], const std::int32_t weights[4], std::size_t count,    \
                            std::int32_t* mixed) {                                                                  \
    mixRows(rows, weights, count, mixed);                                                                           \
  }                                                                                                                 \
  target void mixColumns_##set(const std::int32_t* const taps[4], const std::int32_t weights[4], std::size_t count, \
                               std::uint8_t* out) {                                                                 \
    mixColumns(taps, weights, count, out);                                                                          \
  }                                                                                                                 \
  target void addCells1_##set(const ResoKernels::Cells& cells, std::size_t count, float* total,                     \
                              float(*sums)[ResoKernels::kSumsStep]) {                                               \
    addCells<1>(cells, count, total, sums);                                                                         \
  }                                                                                                                 \
  target void addCells3_##set(const ResoKernels::Cells& cells, std::size_t count, float* total,                     \
                              float(*sums)[ResoKernels::kSumsStep]) {                                               \
    addCells<3>(cells, count, total, sums);                                                                         \
  }                                                                                                                 \
  target void splitTriples_##set(const std::uint8_t* triples, std::size_t count, std::uint8_t* first,               \
                                 std::uint8_t* second, std::uint8_t* third) {                                       \
    splitTriples(triples, count, first, second, third);                                                             \
  }                                                                                                                 \
  target void joinTriples_##set(const std::uint8_t* first, const std::uint8_t* second, const std::uint8_t* third,   \
                                std::size_t count, std::uint8_t* triples) {                                         \
    joinTriples(first, second, third, count, triples);                                                              \
  }                                                                                                                 \
  target void means_##set(const float* sums, const float* total, std::size_t count, std::uint8_t* out) {            \
    means(sums, total, count, out);                                                                                 \
  }                                                                                                                 \
  target void halve_##set(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t count,                  \
                          std::uint8_t* out) {                                                                      \
    halve(upper, lower, count, out);                                                                                \
  }                                                                                                                 \
  constexpr ResoKernels kSet_##set = {#set,                                                                         \
                                      mixRows_##set,                                                                \
                                      mixColumns_##set,                                                             \
                                      addCells1_##set,                                                              \
                                      addCells3_##set,                                                              \
                                      splitTriples_##set,                                                           \
                                      joinTriples_##set,                                                            \
                                      means_##set,                                                                  \
                                      halve_##set};

// NOLINTEND(bugprone-macro-parentheses)
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
