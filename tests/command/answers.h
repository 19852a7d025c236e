// Answers of a device, byte by byte.
#pragma once

#include <cstdint>
#include <string>

namespace answers {

inline std::string u32(std::uint32_t value) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  return bytes;
}

// A framed answer of the second generation.
inline std::string framed(const std::string& signature, const std::string& body, int result = 0) {
  return static_cast<char>(result) + signature + u32(static_cast<std::uint32_t>(body.size())) + body;
}

// The answer to Q: its length counts itself. A body has at most 254 bytes.
inline std::string qAnswer(const std::string& body) {
  return std::string("\xC1\x00", 2) + static_cast<char>(body.size() + 1) + body;
}

// Bytes that differ from their neighbours.
inline std::string pattern(std::size_t size) {
  std::string bytes;
  for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(i * 7 + i / 256 + 1);
  return bytes;
}

// The bytes of a kept answer, and the 8 behind them.
template <class Record>
std::string bodyOf(const Record& record) {
  if (record.data == nullptr) return "";
  return std::string(reinterpret_cast<const char*>(record.data), static_cast<std::size_t>(record.size));
}
template <class Record>
std::string slackOf(const Record& record) {
  return std::string(reinterpret_cast<const char*>(record.data) + record.size, 8);
}

}  // namespace answers
