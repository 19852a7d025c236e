#include "parse/CmdStrParse.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

using orvalle_scan_api::CCmdStrParse;

namespace {

std::string between(const char* source, const char* begin, const char* end) {
  return CCmdStrParse().GetStrPart(source, begin, end).C_str();
}
std::string token(const char* source, const char* delimiter, int index) {
  return CCmdStrParse().GetStrPart(source, delimiter, index).C_str();
}

TEST(CmdStrParse, AValueRunsFromItsKeyToTheEndMarker) {
  EXPECT_EQ(between("F=IMAGE\nD=DUP\n", "D=", "\n"), "DUP");
  EXPECT_EQ(between("F=IMAGE\nD=DUP\n", "F=", "\n"), "IMAGE");
}

TEST(CmdStrParse, AValueWithoutItsEndMarkerRunsToTheEndOfTheSource) {
  EXPECT_EQ(between("F=IMAGE\nD=DUP", "D=", "\n"), "DUP");
  EXPECT_EQ(between("F=IMAGE\nD=DUP", "F=", ""), "IMAGE\nD=DUP");
}

TEST(CmdStrParse, AMissingKeyHasNoValue) {
  EXPECT_EQ(between("F=IMAGE\n", "D=", "\n"), "");
  EXPECT_EQ(between("", "D=", "\n"), "");
  EXPECT_EQ(between("F=IMAGE", "", "\n"), "");
  EXPECT_EQ(between("D=", "D=", "\n"), "");
  EXPECT_EQ(between("D=\nF=1", "D=", "\n"), "");
}

TEST(CmdStrParse, TheFirstHitWinsAlsoInsideAnotherKey) {
  EXPECT_EQ(between("DF=1\nF=2", "F=", "\n"), "1");
  EXPECT_EQ(between("T=F=3\nF=2", "F=", "\n"), "3");
}

TEST(CmdStrParse, AnEndMarkerBeforeTheKeyDoesNotCount) { EXPECT_EQ(between("]a[b]c", "[", "]"), "b"); }

TEST(CmdStrParse, MarkersMayBeLong) { EXPECT_EQ(between("x<begin>value</begin>y", "<begin>", "</begin>"), "value"); }

TEST(CmdStrParse, TokensAreCountedFromOne) {
  const struct {
    const char* source;
    int index;
    const char* wanted;
  } rows[] = {
      {"a,b,c", 1, "a"}, {"a,b,c", 2, "b"},     {"a,b,c", 3, "c"},
      {"a,b,c", 4, ""},  {"a,b", 3, ""},        {"a,b", 0, "a"},
      {"a,b", -7, "a"},  {"a,b", INT_MIN, "a"}, {"a,b", INT_MAX, ""},
      {"abc", 1, "abc"}, {"abc", 2, ""},        {"", 1, ""},
      {"", 2, ""},       {",", 1, ""},          {",", 2, ""},
      {",b", 1, ""},     {",b", 2, "b"},        {"a,,c", 2, ""},
      {"a,,c", 3, "c"},  {"a,", 2, ""},         {"300,600,1\n", 3, "1\n"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(token(row.source, ",", row.index), row.wanted) << row.source << " " << row.index;
}

TEST(CmdStrParse, AnEmptyDelimiterHasNoTokens) {
  for (const int index : {-1, 0, 1, 2}) EXPECT_EQ(token("a,b", "", index), "");
}

TEST(CmdStrParse, ALongDelimiterAtTheVeryStartIsNotSeen) {
  EXPECT_EQ(token("--b--c", "--", 1), "--b");
  EXPECT_EQ(token("--b--c", "--", 2), "c");
  EXPECT_EQ(token("a--b--c", "--", 1), "a");
  EXPECT_EQ(token("a--b--c", "--", 2), "b");
  EXPECT_EQ(token("a--b--c", "--", 3), "c");
  EXPECT_EQ(token("a----c", "--", 2), "");
  EXPECT_EQ(token("a", "-----", 1), "a");
}

TEST(CmdStrParse, DelimitersAreCountedNotTokens) {
  const struct {
    const char* source;
    const char* delimiter;
    int wanted;
  } rows[] = {
      {"aaa", "aa", 2}, {"a,b,c", ",", 2}, {"", ",", 0},   {",", ",", 1},
      {",,,", ",", 3},  {"abc", ",", 0},   {"abc", "", 0},
  };
  for (const auto& row : rows)
    EXPECT_EQ(CCmdStrParse().GetTokenCount(row.source, row.delimiter), row.wanted) << row.source;
}

}  // namespace
