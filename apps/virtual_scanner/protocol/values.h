// The forms that a value on the wire can have.
#pragma once
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <utility>

namespace vscan {

// Decimal ASCII without leading zeros and without a plus sign, between minimum and maximum. False leaves out alone.
bool readNumber(std::string_view text, std::int64_t minimum, std::int64_t maximum, std::int64_t& out);

// As many numbers as out has places, joined by commas.
bool readNumbers(std::string_view text, std::int64_t minimum, std::int64_t maximum, std::span<std::int64_t> out);

template <class T>
struct Word {
  std::string_view text;
  T value;
};

template <class T>
bool readWord(std::string_view text, std::initializer_list<Word<T>> words, T& out) {
  for (const auto& word : words) {
    if (word.text != text) continue;
    out = word.value;
    return true;
  }
  return false;
}

inline bool readOnOff(std::string_view text, bool& out) {
  return readWord<bool>(text, {{"OFF", false}, {"ON", true}}, out);
}

}  // namespace vscan
