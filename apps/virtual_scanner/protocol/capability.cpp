#include "protocol/capability.h"

#include <algorithm>

#include "support/failure.h"

namespace vscan {
namespace {

constexpr std::uint16_t kTerminator = 0xF0F0;

std::size_t widthOf(const CapabilityField& field) { return static_cast<std::size_t>(field.bytes) * field.places; }

}  // namespace

Capability::Capability(Generation generation)
    : generation_(generation),
      fields_(generation == Generation::First ? gen1::capabilityFields() : gen2::capabilityFields()) {}

const CapabilityField* Capability::findField(std::string_view key) const {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [&](const CapabilityField& field) { return field.places != 0 && field.key == key; });
  return found == fields_.end() ? nullptr : &*found;
}

std::int64_t Capability::at(std::string_view key, std::size_t place) const {
  const auto found = values_.find(key);
  if (found != values_.end()) return found->second.at(place);
  const CapabilityField* const field = findField(key);
  return field == nullptr ? 0 : field->initial;
}

void Capability::set(std::string_view key, std::size_t place, std::int64_t value) {
  const CapabilityField* field = findField(key);
  if (field == nullptr) throw Failure("\"" + std::string(key) + "\" is no field of the capability answer");
  if (place >= field->places) {
    throw Failure(std::string(key) + " has " + std::to_string(field->places) + " place(s), counted from 0");
  }
  const int bits = 8 * field->bytes;
  const std::int64_t minimum = field->isSigned ? -(std::int64_t{1} << (bits - 1)) : 0;
  const std::int64_t maximum = (std::int64_t{1} << (field->isSigned ? bits - 1 : bits)) - 1;
  if (value < minimum || value > maximum) {
    throw Failure(std::string(key) + " holds values from " + std::to_string(minimum) + " to " +
                  std::to_string(maximum) + ", not " + std::to_string(value));
  }
  auto& places = values_[std::string(key)];
  places.resize(field->places, field->initial);
  places[place] = value;
}

void Capability::setModelName(std::string name) {
  if (name.size() > kMaxModelNameBytes) throw Failure("modelName is longer than 128 bytes");
  modelName_ = std::move(name);
}

Bytes Capability::body() const {
  Bytes body;
  const bool hasTags = generation_ == Generation::Second;
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const CapabilityField& field = fields_[i];
    if (hasTags && (i == 0 || fields_[i - 1].tag != field.tag)) {
      std::size_t bytes = field.tag == gen2::kModelNameTag ? modelName_.size() : 0;
      for (std::size_t k = i; k < fields_.size() && fields_[k].tag == field.tag; ++k) bytes += widthOf(fields_[k]);
      appendU16(body, field.tag);
      appendU16(body, static_cast<std::uint16_t>(bytes));
    }
    if (hasTags && field.tag == gen2::kModelNameTag) body.insert(body.end(), modelName_.begin(), modelName_.end());
    for (std::size_t place = 0; place < field.places; ++place) {
      appendLe(body, static_cast<std::uint64_t>(at(field.key, place)), field.bytes);
    }
  }
  if (hasTags) {
    appendU16(body, kTerminator);
    appendU16(body, 0);
  }
  return body;
}

}  // namespace vscan
