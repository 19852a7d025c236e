#include "protocol/gen1_answers.h"

#include <gtest/gtest.h>

namespace vscan::gen1 {
namespace {

TEST(Gen1Answers, EachShapeIsSpelledSo) {
  const struct {
    const char* name;
    AnswerShape shape;
    std::uint8_t result;
    Bytes body;
    Bytes bytes;
    Bytes refusal;
  } rows[] = {
      {"Q", kBlockShape, 0, {11, 0, 31}, {0xC1, 0x00, 0x04, 11, 0, 31}, {0xCB, 0x00, 0x02, 0xCB}},
      {"D and S", kStatusByte, kStatusGood, {}, {0x80}, {0xCB}},
      {"I and E", kTextAnswer, kResultGood, {'3', '0'}, {0x00, 2, 0, '3', '0'}, {0xCB, 1, 0, 0xCB}},
      {"K", kTextAnswer, kKeyResult, {'\n'}, {0x30, 1, 0, '\n'}, {0xCB, 1, 0, 0xCB}},
      {"P", kPlainAnswer, 0, {1, 2, 3}, {3, 0, 1, 2, 3}, {1, 0, 0xCB}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(answerOf(row.shape, row.result, row.body), row.bytes) << row.name;
    EXPECT_EQ(refusalOf(row.shape, 0xCB), row.refusal) << row.name;
  }
}

TEST(Gen1Answers, TheGrantedSettingsAreSevenNumbers) {
  EXPECT_EQ(grantedText({true, 300, 600, 2100, 2480, 2970, 7015}), "300,600,1,2100,2480,2970,7015");
  EXPECT_EQ(grantedText({false, 300, 600, 2100, 2480, 2970, 7015}), "300,600,2,2100,2480,2970,7015");
}

TEST(Gen1Answers, ADocumentIsTwoCornersAtAResolution) {
  EXPECT_EQ(documentText({300, 200, 35, 0, 2515, 3507}), "R=300,200\nV1=35,0\nV2=2515,3507\n");
}

}  // namespace
}  // namespace vscan::gen1
