#include "image/stream_copy.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace orvalle_scan_api {

#ifdef __SSE2__

void streamCopy(unsigned char* to, const unsigned char* from, std::size_t bytes) {
  // Whole cache lines only: one that is written both ways costs more than it saves.
  constexpr std::size_t kCacheLine = 64;
  constexpr std::size_t kVectors = kCacheLine / sizeof(__m128i);
  const std::size_t beside = reinterpret_cast<std::uintptr_t>(to) % kCacheLine;
  const std::size_t head = std::min(bytes, (kCacheLine - beside) % kCacheLine);
  std::memcpy(to, from, head);
  std::size_t at = head;
  for (; bytes - at >= kCacheLine; at += kCacheLine) {
    __m128i line[kVectors];
    std::memcpy(line, from + at, kCacheLine);
    auto* const place = reinterpret_cast<__m128i*>(to + at);
    for (std::size_t i = 0; i < kVectors; ++i) _mm_stream_si128(place + i, line[i]);
  }
  std::memcpy(to + at, from + at, bytes - at);
}

void streamCopyDone() { _mm_sfence(); }

#else

void streamCopy(unsigned char* to, const unsigned char* from, std::size_t bytes) { std::memcpy(to, from, bytes); }

void streamCopyDone() {}

#endif

}  // namespace orvalle_scan_api
