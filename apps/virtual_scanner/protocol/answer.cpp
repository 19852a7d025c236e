#include "protocol/answer.h"

#include <stdexcept>

namespace vscan {

Bytes answerOf(const AnswerShape& shape, std::uint8_t result, const Bytes& body) {
  Bytes answer;
  if (!shape.isFramed()) {
    answer.push_back(result);
    answer.insert(answer.end(), body.begin(), body.end());
    answer.resize(shape.bareBytes);
    return answer;
  }
  if (body.empty()) throw std::logic_error("a framed answer needs a body");
  answer.reserve(shape.lengthAt() + shape.lengthBytes + body.size());
  if (shape.hasResult) answer.push_back(result);
  answer.insert(answer.end(), shape.signature.begin(), shape.signature.end());
  appendLe(answer, body.size() + (shape.lengthCountsItself ? shape.lengthBytes : 0),
           static_cast<int>(shape.lengthBytes));
  answer.insert(answer.end(), body.begin(), body.end());
  return answer;
}

Bytes refusalOf(AnswerShape shape, std::uint8_t code) {
  if (!shape.isFramed()) return answerOf(shape, code, {});
  if (!shape.hasResult && !shape.signature.empty()) shape.signature.front() = static_cast<char>(code);
  return answerOf(shape, code, {code});
}

void putLe(Bytes& bytes, std::size_t at, std::size_t count, std::uint64_t value) {
  for (std::size_t i = 0; i < count; ++i) bytes.at(at + i) = static_cast<std::uint8_t>(value >> (8 * i));
}

}  // namespace vscan
