#include "protocol/answer.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace vscan {
namespace {

TEST(Answer, AnAnswerWithoutBytesIsNone) {
  EXPECT_TRUE(answerOf({}, 0, {}).empty());
  EXPECT_TRUE(refusalOf({}, 0xA4).empty());
}

TEST(Answer, AFramedAnswerWithoutABodyIsAMistakeOfOurs) {
  EXPECT_THROW(answerOf({.hasResult = true, .lengthBytes = 2}, 0, {}), std::logic_error);
}

TEST(Answer, ThePlacesOfSignatureAndLengthFollowTheShape) {
  const AnswerShape framed{.hasResult = true, .signature = "ABC", .lengthBytes = 4};
  EXPECT_EQ(framed.signatureAt(), 1u);
  EXPECT_EQ(framed.lengthAt(), 4u);
  const AnswerShape plain{.lengthBytes = 2};
  EXPECT_EQ(plain.lengthAt(), 0u);
}

TEST(Answer, ANumberIsPutLowestByteFirst) {
  Bytes bytes{1, 2, 3, 4, 5};
  putLe(bytes, 1, 3, 0xAABBCC);
  EXPECT_EQ(bytes, (Bytes{1, 0xCC, 0xBB, 0xAA, 5}));
  EXPECT_THROW(putLe(bytes, 4, 2, 0), std::out_of_range);
}

}  // namespace
}  // namespace vscan
