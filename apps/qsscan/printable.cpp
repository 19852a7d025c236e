#include "printable.h"

#include <algorithm>

namespace qsscan {
namespace {

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The length of the character that text begins with; 0 where it is no well-formed one or a control character.
std::size_t goodLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x80) return first < 0x20 || first == 0x7F ? 0 : 1;
  const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
  if (length == 0 || text.size() < length) return 0;
  if (!std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length), isContinuation)) return 0;
  const auto second = static_cast<unsigned char>(text[1]);
  const bool isControl = first == 0xC2 && second < 0xA0;
  const bool isOverlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool isSurrogate = first == 0xED && second >= 0xA0;
  const bool isBeyond = first == 0xF4 && second >= 0x90;
  return isControl || isOverlong || isSurrogate || isBeyond ? 0 : length;
}

}  // namespace

std::string printable(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t length = goodLength(text);
    out += length == 0 ? "?" : std::string(text.substr(0, length));
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return out;
}

std::size_t columnsOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return !isContinuation(c); }));
}

}  // namespace qsscan
