#include "apps/qsscan/edges.h"

#include <gtest/gtest.h>

#include <string>

#include "apps/qsscan/exit_codes.h"

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;

Capability ableCapability() {
  Capability capability{};
  capability.edgeCut = 2;
  capability.edgeFill = {2, 1, 1};
  return capability;
}

QS_SCANNER_PARAMETERS a4() {
  QS_SCANNER_PARAMETERS settings{};
  settings.paperType = PAPERTYPE_A4;
  return settings;
}

TEST(Edges, OneWidthIsForAllFourAndFourAreForEachOfThem) {
  const auto all = findEdgeWidths("2.5");
  ASSERT_TRUE(all);
  for (const double mm : {all->leftMm, all->topMm, all->rightMm, all->bottomMm}) EXPECT_EQ(mm, 2.5);
  const auto each = findEdgeWidths("10,0,3.25,100");
  ASSERT_TRUE(each);
  EXPECT_EQ(each->leftMm, 10);
  EXPECT_EQ(each->topMm, 0);
  EXPECT_EQ(each->rightMm, 3.25);
  EXPECT_EQ(each->bottomMm, 100);
}

TEST(Edges, AnythingElseIsNoWidth) {
  for (const char* text : {"", ",", "1,2", "1,2,3", "1,2,3,4,5", "1,2,3,", "-1", "100.1", "3mm", " 3", "nan", "inf",
                           "1;2;3;4", "1,,3,4"}) {
    EXPECT_FALSE(findEdgeWidths(text)) << text;
  }
}

TEST(Edges, WhatIsCutIsTakenOffThePageInHundredthsOfAMillimetre) {
  auto settings = a4();
  EdgeWish wish;
  wish.cut = {10, 0, 3.25, 1};
  setEdges(wish, ableCapability(), settings);
  EXPECT_EQ(settings.edgeCut.enable, 1);
  EXPECT_EQ(settings.edgeCut.left, -1000);
  EXPECT_EQ(settings.edgeCut.top, 0);
  EXPECT_EQ(settings.edgeCut.right, -325);
  EXPECT_EQ(settings.edgeCut.bottom, -100);
  EXPECT_EQ(settings.edgeCut.unit, UNIT_MILLIMETER);
  EXPECT_EQ(settings.edgeFill.enable, 0);
}

TEST(Edges, WhatIsFilledIsMeasuredInHundredthsOfAMillimetre) {
  for (const bool isBlack : {false, true}) {
    auto settings = a4();
    EdgeWish wish;
    wish.fill = {10, 0, 3.25, 1};
    wish.fillIsBlack = isBlack;
    setEdges(wish, ableCapability(), settings);
    EXPECT_EQ(settings.edgeFill.enable, 1);
    EXPECT_NE(settings.edgeFill.mode, 2) << "that would be pixels";
    EXPECT_EQ(settings.edgeFill.first, 1000);
    EXPECT_EQ(settings.edgeFill.second, 0);
    EXPECT_EQ(settings.edgeFill.third, 325);
    EXPECT_EQ(settings.edgeFill.fourth, 100);
    EXPECT_EQ(settings.edgeFill.fifth != 0, isBlack);
    EXPECT_EQ(settings.edgeCut.enable, 0);
  }
}

void expectRefused(const EdgeWish& wish, const Capability& capability, QS_SCANNER_PARAMETERS settings, ExitCode code,
                   const char* partOfSentence) {
  try {
    setEdges(wish, capability, settings);
    FAIL() << "accepted; expected " << partOfSentence;
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), code);
    EXPECT_NE(std::string(error.what()).find(partOfSentence), std::string::npos) << error.what();
  }
}

TEST(Edges, WhatCannotBeServedIsRefused) {
  EdgeWish cut;
  cut.cut = {1, 1, 1, 1};
  EdgeWish fill;
  fill.fill = {1, 1, 1, 1};
  for (const int cap : {0, 1}) {
    Capability capability = ableCapability();
    capability.edgeCut = cap;
    expectRefused(cut, capability, a4(), ExitCode::kNotServed, "-l -t -x -y");
    capability.edgeFill.cap = cap;
    expectRefused(fill, capability, a4(), ExitCode::kNotServed, "--edge-fill");
  }
  QS_SCANNER_PARAMETERS automatic{};
  automatic.paperType = PAPERTYPE_AUTO;
  expectRefused(cut, ableCapability(), automatic, ExitCode::kUsage, "--page-size");
}

}  // namespace
