// What the device says of itself in the answer to QDI: a run of tags, each with fields of fixed width. The tags, and
// the names by which a profile sets their fields, stand in one table (capability.cpp) in wire order.
// Threads: reentrant; a Capability is read-only once the device runs.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/little_endian.h"

namespace vscan {

class Capability {
 public:
  static constexpr std::size_t kMaxModelNameBytes = 128;

  // The number at one place of a field; every field starts at 0. The key has to be one of the table.
  std::int64_t at(std::string_view key, std::size_t place = 0) const;

  // True when the key names a field of numbers.
  static bool hasField(std::string_view key);
  static std::size_t places(std::string_view key);

  // Throws Failure for a key or a place that the table does not have, and for a value too wide for its place.
  void set(std::string_view key, std::size_t place, std::int64_t value);

  const std::string& modelName() const { return modelName_; }
  void setModelName(std::string name);  // throws Failure above kMaxModelNameBytes

  // All tags in table order, then the terminator.
  Bytes body() const;

 private:
  std::map<std::string, std::vector<std::int64_t>, std::less<>> values_;
  std::string modelName_;
};

}  // namespace vscan
