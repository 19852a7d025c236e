#include "protocol/values.h"

#include <charconv>

namespace vscan {

bool readNumber(std::string_view text, std::int64_t minimum, std::int64_t maximum, std::int64_t& out) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  const std::string_view digits = text.front() == '-' ? text.substr(1) : text;
  const bool oddZero = digits.front() == '0' && (digits.size() > 1 || text.size() > 1);  // 007 and -0
  if (oddZero || value < minimum || value > maximum) return false;
  out = value;
  return true;
}

bool readNumbers(std::string_view text, std::int64_t minimum, std::int64_t maximum, std::span<std::int64_t> out) {
  for (std::size_t i = 0; i < out.size(); ++i) {
    const auto comma = text.find(',');
    const bool isLast = i + 1 == out.size();
    if ((comma == std::string_view::npos) != isLast) return false;
    if (!readNumber(text.substr(0, comma), minimum, maximum, out[i])) return false;
    if (!isLast) text.remove_prefix(comma + 1);
  }
  return true;
}

}  // namespace vscan
