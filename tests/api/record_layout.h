// Compares the layout of a record with one that a test spells out.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

// Of the type Record at the place of use.
#define FIELD(path, offset, width) \
  { #path, offsetof(Record, path), sizeof(static_cast <Record*>(nullptr)->path), offset, width }

namespace api_test {

struct Field {
  const char* path;
  std::size_t offset;
  std::size_t width;
  std::size_t expectedOffset;
  std::size_t expectedWidth;
};

// The record has that size, and each field lies where it is told. Fields follow each other with no more than the gap
// that alignment asks for, so that none is missing from the list.
inline void expectLayout(std::size_t size, std::size_t expectedSize, const std::vector<Field>& fields) {
  EXPECT_EQ(size, expectedSize);
  std::size_t end = 0;
  for (const Field& field : fields) {
    EXPECT_EQ(field.offset, field.expectedOffset) << field.path;
    EXPECT_EQ(field.width, field.expectedWidth) << field.path;
    EXPECT_GE(field.offset, end) << field.path;
    EXPECT_LT(field.offset, end + 8) << "a field in front of " << field.path << " is not in the list";
    end = field.offset + field.width;
  }
  EXPECT_LT(size, end + 8) << "a field at the end is not in the list";
}

}  // namespace api_test
