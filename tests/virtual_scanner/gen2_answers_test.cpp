#include "protocol/gen2_answers.h"

#include <gtest/gtest.h>

namespace vscan::gen2 {
namespace {

TEST(Gen2Answers, TheGenerationIsToldBehindALengthThatCountsItself) {
  EXPECT_EQ(answerOf(kGenerationShape, 0, {0x12}), (Bytes{0xC1, 0x00, 0x02, 0x12}));
}

TEST(Gen2Answers, AFramedAnswerIsResultSignatureLengthBody) {
  EXPECT_EQ(answerOf(framedShape("QDI"), 0x00, {0xF0, 0xF0, 0x00, 0x00}),
            (Bytes{0x00, 'Q', 'D', 'I', 0x04, 0x00, 0x00, 0x00, 0xF0, 0xF0, 0x00, 0x00}));
}

TEST(Gen2Answers, ARefusalHasABodyOfOneByte) {
  EXPECT_EQ(refusalOf(framedShape("SSP"), 0xA4), (Bytes{0xA4, 'S', 'S', 'P', 1, 0, 0, 0, 0xA4}));
  EXPECT_EQ(refusalOf(framedShape("Z"), 0xA4), (Bytes{0xA4, 'Z', '?', '?', 1, 0, 0, 0, 0xA4}));
  EXPECT_EQ(refusalOf(framedShape("HELLO"), 0xA4), (Bytes{0xA4, 'H', 'E', 'L', 1, 0, 0, 0, 0xA4}));
  EXPECT_EQ(refusalOf(kGenerationShape, 0xA4), (Bytes{0xA4, 0x00, 0x02, 0xA4}));
}

TEST(Gen2Answers, TheGrantedSettingsAreThreeTagsAndTheTerminator) {
  const Bytes body{0x01, 0x20, 0x02, 0x00, 0x01, 0x00,                                      // feeder
                   0x02, 0x20, 0x04, 0x00, 0x2C, 0x01, 0x58, 0x02,                          // 300 x 600
                   0x03, 0x20, 0x08, 0x00, 0xF6, 0x09, 0x00, 0x00, 0xD0, 0x20, 0x00, 0x00,  // 2550 x 8400
                   0xF0, 0xF0, 0x00, 0x00};
  EXPECT_EQ(grantedBody({true, 300, 600, 2550, 8400}), body);
  EXPECT_EQ(grantedBody({false, 300, 600, 2550, 8400}).at(4), 2);
}

TEST(Gen2Answers, TheColourProfilesAreTwoTagsAndTheTerminator) {
  EXPECT_EQ(profilesBody({1, 2, 3}, {4}),
            (Bytes{0x01, 0x31, 3, 0, 1, 2, 3, 0x02, 0x31, 1, 0, 4, 0xF0, 0xF0, 0x00, 0x00}));
}

TEST(Gen2Answers, ADocumentIsItsSizeAtAResolution) {
  EXPECT_EQ(documentBody({300, 200, 2480, 3507}),
            (Bytes{0x02, 0x20, 4, 0, 0x2C, 0x01, 0xC8, 0x00, 0x03, 0x20, 8,    0,
                   0xB0, 0x09, 0, 0, 0xB3, 0x0D, 0,    0,    0xF0, 0xF0, 0x00, 0x00}));
}

TEST(Gen2Answers, ADocumentCheckIsTwoBytes) {
  EXPECT_EQ(answerOf(kTwoBytes, 0, {kDocumentThere}), (Bytes{0x00, 0x80}));
  EXPECT_EQ(answerOf(kTwoBytes, 0x90, {}), (Bytes{0x90, 0x00}));
  EXPECT_EQ(refusalOf(kTwoBytes, 0xA4), (Bytes{0xA4, 0x00}));
}

}  // namespace
}  // namespace vscan::gen2
