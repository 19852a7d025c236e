// Which field of the inputs may change which field of the outputs of a conversion: every byte of the inputs is changed
// by turns, in many surroundings, and what changes then is compared with a table of ties.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <set>
#include <span>
#include <string_view>
#include <vector>

namespace orvalle_scan_api {

// One field of the inputs, the fields of the outputs that it may change, and when it may; every change that is named
// must also occur.
template <class Inputs>
struct Tie {
  const char* name;
  std::size_t offset;
  std::size_t size;
  std::vector<std::string_view> changes;
  bool (*when)(const Inputs&) = [](const Inputs&) { return true; };
};
#define QS_TIE(Inputs, path, ...) \
  Tie<Inputs> { #path, offsetof(Inputs, path), sizeof(Inputs::path), __VA_ARGS__ }

// A value that means something somewhere, or any other.
inline unsigned char anyByte(unsigned char, std::mt19937& random) {
  constexpr unsigned char kMeanings[] = {0, 1, 2, 3, 5, 23, 26, 100};
  const auto pick = random() % 16;
  return pick < std::size(kMeanings) ? kMeanings[pick] : static_cast<unsigned char>(random());
}
// The other value of a flag, and a neighbour of any number.
inline unsigned char flippedByte(unsigned char byte, std::mt19937&) { return byte ^ 1; }

// Field has a name; values(inputs) gives the outputs, one for each field.
template <class Inputs, class Field, class Values>
class TieCheck {
 public:
  template <std::size_t count>
  TieCheck(const Field (&fields)[count], const std::vector<Tie<Inputs>>& ties, Values values)
      : fields_(fields), ties_(ties), values_(values), seen_(ties.size()) {}

  void changeEveryByte(Inputs& inputs, std::mt19937& random, unsigned char (*change)(unsigned char, std::mt19937&)) {
    const auto before = values_(inputs);
    auto* const bytes = reinterpret_cast<unsigned char*>(&inputs);
    for (std::size_t at = 0; at < sizeof inputs; ++at) {
      const unsigned char kept = bytes[at];
      bytes[at] = change(kept, random);
      const auto after = values_(inputs);
      bytes[at] = kept;
      if (after == before) continue;
      const auto tie =
          std::ranges::find_if(ties_, [&](const auto& t) { return at >= t.offset && at < t.offset + t.size; });
      for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (before[i] == after[i]) continue;
        ASSERT_TRUE(tie != ties_.end()) << "byte " << at << " changes " << fields_[i].name;
        ASSERT_EQ(std::ranges::count(tie->changes, fields_[i].name), 1) << tie->name << " changes " << fields_[i].name;
        ASSERT_TRUE(tie->when(inputs)) << tie->name << " changes " << fields_[i].name << " at the wrong time";
        seen_[static_cast<std::size_t>(tie - ties_.begin())].insert(fields_[i].name);
      }
    }
  }

  void expectAllSeen() const {
    for (std::size_t i = 0; i < ties_.size(); ++i) {
      for (const std::string_view field : ties_[i].changes) {
        EXPECT_EQ(seen_[i].count(field), 1u) << ties_[i].name << " never changed " << field;
      }
    }
  }

 private:
  std::span<const Field> fields_;
  const std::vector<Tie<Inputs>>& ties_;
  Values values_;
  std::vector<std::set<std::string_view>> seen_;
};

}  // namespace orvalle_scan_api
