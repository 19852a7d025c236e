// What the device says of itself: fields of fixed width in the order of one table for each generation.
//   second generation  the answer to QDI: a run of tags, each with its fields
//   first generation   the answer to Q: one block of fields in fixed places
// The tables, with the names by which a profile sets their fields, stand in gen2_capability.cpp and
// gen1_capability.cpp.
// Threads: reentrant; a Capability is read-only once the device runs.
#pragma once
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/generation.h"
#include "support/little_endian.h"

namespace vscan {

struct CapabilityField {
  std::uint16_t tag;  // 0 in the first generation
  std::string_view key;
  int bytes;  // of one place
  std::size_t places;
  bool isSigned = false;
  std::int64_t initial = 0;  // of every place
};

class Capability {
 public:
  static constexpr std::size_t kMaxModelNameBytes = 128;

  explicit Capability(Generation generation);

  // The number at one place of a field. The key has to be one of the table.
  std::int64_t at(std::string_view key, std::size_t place = 0) const;

  // True when the key names a field of numbers.
  bool hasField(std::string_view key) const { return findField(key) != nullptr; }

  // Throws Failure for a key or a place that the table does not have, and for a value too wide for its place.
  void set(std::string_view key, std::size_t place, std::int64_t value);

  Generation generation() const { return generation_; }
  const std::string& modelName() const { return modelName_; }
  // Throws Failure above kMaxModelNameBytes. The first generation keeps it for people and tells it to no host.
  void setModelName(std::string name);

  // All fields in table order; in the second generation with their tags, the model name and the terminator.
  Bytes body() const;

 private:
  const CapabilityField* findField(std::string_view key) const;

  Generation generation_;
  std::span<const CapabilityField> fields_;
  std::map<std::string, std::vector<std::int64_t>, std::less<>> values_;
  std::string modelName_;
};

namespace gen1 {
std::span<const CapabilityField> capabilityFields();
}
namespace gen2 {
inline constexpr std::uint16_t kModelNameTag = 0x0102;  // its row is a field without bytes
std::span<const CapabilityField> capabilityFields();
}  // namespace gen2

}  // namespace vscan
