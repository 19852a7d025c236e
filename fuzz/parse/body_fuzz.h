// What the fuzzers of tagged bodies share.
#pragma once

#include <vector>

#include "fuzz/touch.h"
#include "parse/ParseCmdRes_v2.h"

// A copy that may be handed to the parsers, which take bytes that are not constant.
struct FuzzedBody {
  FuzzedBody(const std::uint8_t* data, std::size_t size) : bytes(data, data + size) {}
  unsigned char* data() { return bytes.data(); }
  long size() const { return static_cast<long>(bytes.size()); }

  std::vector<unsigned char> bytes;
};

template <class Record>
void touchRecord(const Record& record) {
  touchAll(reinterpret_cast<const std::uint8_t*>(&record), sizeof record);
}
