// Reads the lines of a frame against a table whose row order is wire order.
#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "protocol/frame.h"

namespace vscan {

template <class Settings>
struct KeyRow {
  std::string_view key;  // empty: a line that is one word
  bool isOptional;
  // False when the value is none that the key can have.
  bool (*read)(std::string_view value, Settings& settings);
};

struct Refusal {
  std::string sentence;
  Bytes bytes;  // the offending line, or the whole frame
};

inline Refusal refuseLine(const FrameLine& line, const std::string& sentence) {
  const std::string text = line.key.empty() ? line.value : line.key + "=" + line.value;
  return {sentence, Bytes(text.begin(), text.end())};
}

// Fills settings from the lines, strictly: every required key once, in the order of the rows, nothing else.
// On a refusal settings are partly filled and not to be used.
template <class Settings>
std::optional<Refusal> readLines(std::span<const KeyRow<Settings>> rows, const Frame& frame, Settings& settings) {
  auto row = rows.begin();
  for (const FrameLine& line : frame.lines) {
    while (row != rows.end() && row->isOptional && row->key != line.key) ++row;
    if (row == rows.end() || row->key != line.key) {
      bool known = false;
      for (const auto& any : rows) known = known || any.key == line.key;
      if (!known) {
        return refuseLine(line,
                          frame.mnemonic + (line.key.empty() ? " has no line of one word" : " has no key " + line.key));
      }
      const std::string expected = row == rows.end() ? "the end of the command" : std::string(row->key);
      return refuseLine(line, "key " + line.key + " stands in the wrong place; expected " + expected);
    }
    if (!row->read(line.value, settings)) {
      return refuseLine(
          line, "\"" + line.value + "\" is no value of " + (line.key.empty() ? frame.mnemonic : "key " + line.key));
    }
    ++row;
  }
  while (row != rows.end() && row->isOptional) ++row;
  if (row != rows.end()) return Refusal{frame.mnemonic + " lacks the key " + std::string(row->key), frame.bytes};
  return std::nullopt;
}

}  // namespace vscan
