// The fields of a CTString, read from its bytes: their order is fixed, and so is what they hold in each state.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "foundation/qvtcl/TString.h"

namespace foundation_test {

struct StringParts {
  unsigned long length;
  unsigned long capacity;  // size of the heap block, 0 without one
  const char* heap;
  char small[8];
  bool isSmall;
};
static_assert(sizeof(qvtcl::CTString) == sizeof(void*) + sizeof(StringParts));

inline StringParts partsOf(const qvtcl::CTString& text) {
  StringParts parts;
  std::memcpy(&parts, reinterpret_cast<const std::byte*>(&text) + sizeof(void*), sizeof parts);
  return parts;
}

// Holds text, in the storage that a text of this length has to live in.
inline void expectHolds(const qvtcl::CTString& actual, const std::string& expected) {
  const StringParts parts = partsOf(actual);
  ASSERT_EQ(std::string(actual.C_str()), expected.c_str());
  ASSERT_EQ(actual.Length(), expected.size());
  EXPECT_EQ(parts.length, expected.size());
  EXPECT_EQ(actual.IsEmpty(), expected.empty());
  EXPECT_EQ(parts.isSmall, expected.size() < 8) << expected;
  EXPECT_EQ(parts.capacity == 0, parts.heap == nullptr);
  EXPECT_EQ(parts.capacity % 16, 0u);
  EXPECT_EQ(actual.Capacity(), parts.capacity == 0 ? 7 : parts.capacity - 1);
  if (parts.isSmall) {
    EXPECT_EQ(std::string(parts.small, expected.size()), expected);
    if (!expected.empty()) {
      EXPECT_EQ(parts.small[expected.size()], 0);
    }
  } else {
    ASSERT_GT(parts.capacity, expected.size());
    EXPECT_EQ(std::string(parts.heap, expected.size()), expected);
    EXPECT_EQ(actual.C_str(), parts.heap);
  }
}

// Bytes of the heap block behind the text are all 0.
inline void expectFreeBytesAreZero(const qvtcl::CTString& text) {
  const StringParts parts = partsOf(text);
  for (unsigned long i = parts.isSmall ? 0 : parts.length; i < parts.capacity; ++i) {
    ASSERT_EQ(parts.heap[i], 0) << "at " << i;
  }
}

}  // namespace foundation_test
