// Builds tagged bodies of the second generation byte by byte: u16 tag, u16 declared length, value.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

using BodyBytes = std::vector<unsigned char>;

inline BodyBytes u16s(const std::vector<int>& words) {
  BodyBytes bytes;
  for (const int word : words) {
    bytes.push_back(static_cast<unsigned char>(word & 0xFF));
    bytes.push_back(static_cast<unsigned char>(word >> 8 & 0xFF));
  }
  return bytes;
}

class TagBody {
 public:
  // The declared length is that of the value.
  TagBody& tag(int id, const BodyBytes& value) { return tagDeclaring(id, static_cast<int>(value.size()), value); }
  TagBody& tag(int id, std::string_view text) { return tag(id, BodyBytes(text.begin(), text.end())); }
  TagBody& tagDeclaring(int id, int length, const BodyBytes& value) {
    const BodyBytes header = u16s({id, length});
    bytes.insert(bytes.end(), header.begin(), header.end());
    bytes.insert(bytes.end(), value.begin(), value.end());
    return *this;
  }
  // The terminator.
  TagBody& end() { return tag(0xF0F0, BodyBytes{}); }

  BodyBytes bytes;
};
