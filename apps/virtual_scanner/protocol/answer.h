// The shapes that answers have on the wire.
//   framed  result byte (or none), signature (or none), length of the body, body
//   bare    a fixed number of bytes, the first of which tells how it went
// Every framed answer has a body of at least one byte: a host that waits for more than nothing would otherwise wait
// until its time is up.
// Threads: reentrant.
#pragma once
#include <cstddef>
#include <string>

#include "support/little_endian.h"

namespace vscan {

struct AnswerShape {
  bool hasResult = false;
  std::string signature{};
  std::size_t lengthBytes = 0;  // of the length field; 0 = bare
  bool lengthCountsItself = false;
  std::size_t bareBytes = 0;  // 0 in a bare shape: no answer at all

  bool isFramed() const { return lengthBytes != 0; }
  std::size_t signatureAt() const { return hasResult ? 1 : 0; }
  std::size_t lengthAt() const { return signatureAt() + signature.size(); }
};

// The answer of that shape. Of a bare one: the result, then the body, filled up with zeros.
Bytes answerOf(const AnswerShape& shape, std::uint8_t result, const Bytes& body);

// The answer that refuses: the code in the place of the result or, where there is none, of the signature, and once
// more as the body.
Bytes refusalOf(AnswerShape shape, std::uint8_t code);

// Overwrites the bytes at that place with a number, lowest byte first.
void putLe(Bytes& bytes, std::size_t at, std::size_t count, std::uint64_t value);

}  // namespace vscan
