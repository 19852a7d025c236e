// Making, assigning, appending, comparing.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

#include "tests/foundation/string_parts.h"

using foundation_test::expectHolds;
using qvtcl::CTString;

namespace {

constexpr unsigned long kEnd = CTString::nposi;
constexpr unsigned long kLast = CTString::nposi - 1;
const char* const kNull = nullptr;
const std::string kLong = "a text longer than the small storage";

}  // namespace

TEST(TString, PositionAndLengthConstantsAreTheGreatestValue) {
  EXPECT_EQ(CTString::nposi, UINT64_MAX);
  EXPECT_EQ(CTString::nolen, UINT64_MAX);
  EXPECT_TRUE(std::has_virtual_destructor_v<CTString>);
}

TEST(TString, IsMadeInEveryForm) {
  expectHolds(CTString(), "");
  expectHolds(CTString("abc"), "abc");
  expectHolds(CTString(kLong.c_str()), kLong);
  expectHolds(CTString(""), "");
  expectHolds(CTString(kNull), "");
  expectHolds(CTString(kNull, 0, 3), "");
  expectHolds(CTString(100UL), "");
  expectHolds(CTString(3UL, 'x'), "xxx");
  expectHolds(CTString(20UL, 'x'), std::string(20, 'x'));
  expectHolds(CTString(0UL, 'x'), "");
  const CTString small("abc");
  const CTString big(kLong.c_str());
  expectHolds(CTString(small), "abc");
  expectHolds(CTString(big), kLong);
  EXPECT_NE(CTString(big).C_str(), big.C_str());
}

TEST(TString, MovingLeavesTheSourceEmpty) {
  for (const std::string& text : {std::string(), std::string("abc"), kLong}) {
    CTString source(text.c_str());
    CTString made(std::move(source));
    expectHolds(made, text);
    expectHolds(source, "");
    CTString assigned("what was here before, long enough");
    assigned = std::move(made);
    expectHolds(assigned, text);
    expectHolds(made, "");
    source = "used again after the move";
    expectHolds(source, "used again after the move");
  }
}

TEST(TString, IsMadeFromAPartOfAText) {
  struct Row {
    const char* name;
    unsigned long position, count;
    const char* expected;
  };
  const Row rows[] = {
      {"from the start", 0, 3, "012"},
      {"from the middle", 4, 3, "456"},
      {"all the rest", 4, CTString::nolen, "456789abcd"},
      {"count beyond the text", 10, 100, "abcd"},
      {"no bytes", 4, 0, ""},
      {"at the end", 14, 3, ""},
      {"the end by name", kEnd, 3, ""},
      {"the last byte by name", kLast, 3, "d"},
      {"beyond the text", 15, 3, ""},
      {"far beyond the text", kLast - 1, 3, ""},
  };
  const char* text = "0123456789abcd";
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    expectHolds(CTString(text, row.position, row.count), row.expected);
    expectHolds(CTString(CTString(text), row.position, row.count), row.expected);
  }
  expectHolds(CTString(text, 8), "89abcd");
  expectHolds(CTString(CTString(text), 8), "89abcd");
}

TEST(TString, IsAssignedInEveryForm) {
  for (const std::string& before : {std::string(), std::string("old"), kLong}) {
    CTString text(before.c_str());
    EXPECT_EQ(&(text = CTString("seven77")), &text);
    expectHolds(text, "seven77");
    const CTString other("eight888");
    EXPECT_EQ(&(text = other), &text);
    expectHolds(text, "eight888");
    EXPECT_EQ(&(text = "abc"), &text);
    expectHolds(text, "abc");
    text = kLong.c_str();
    expectHolds(text, kLong);
    EXPECT_EQ(&(text = 'x'), &text);
    expectHolds(text, "x");
  }
}

TEST(TString, ANulByteANullAndAnEmptyTextEmptyIt) {
  for (const std::string& before : {std::string("old"), kLong}) {
    CTString text(before.c_str());
    text = '\0';
    expectHolds(text, "");
    text = before.c_str();
    text = kNull;
    expectHolds(text, "");
    text = before.c_str();
    text = "";
    expectHolds(text, "");
    text = before.c_str();
    text = CTString();
    expectHolds(text, "");
  }
}

TEST(TString, AppendsEveryKindOfOperand) {
  CTString text;
  EXPECT_EQ(&(text += CTString("ab")), &text);
  EXPECT_EQ(&(text += "cd"), &text);
  EXPECT_EQ(&(text += 'e'), &text);
  expectHolds(text, "abcde");
  EXPECT_EQ(&(text += -12), &text);
  EXPECT_EQ(&(text += 4294967295U), &text);
  EXPECT_EQ(&(text += -9223372036854775807LL - 1), &text);
  EXPECT_EQ(&(text += 18446744073709551615ULL), &text);
  const std::string all = "abcde-124294967295-922337203685477580818446744073709551615";
  expectHolds(text, all);
  text += '\0';
  text += kNull;
  text += "";
  text += CTString();
  expectHolds(text, all);
}

TEST(TString, AddsEveryKindOfOperandOnEitherSide) {
  const CTString text("<text>");
  char writable[] = "rw";
  expectHolds(text + CTString("b"), "<text>b");
  expectHolds(text + "b", "<text>b");
  expectHolds("b" + text, "b<text>");
  expectHolds(text + writable, "<text>rw");
  expectHolds(writable + text, "rw<text>");
  expectHolds(text + 'b', "<text>b");
  expectHolds('b' + text, "b<text>");
  expectHolds(text + -1, "<text>-1");
  expectHolds(-1 + text, "-1<text>");
  expectHolds(text + 1U, "<text>1");
  expectHolds(1U + text, "1<text>");
  expectHolds(text + -2LL, "<text>-2");
  expectHolds(-2LL + text, "-2<text>");
  expectHolds(text + 2ULL, "<text>2");
  expectHolds(2ULL + text, "2<text>");
  expectHolds(text + kNull, "<text>");
  expectHolds(kNull + text, "<text>");
  expectHolds(text, "<text>");
}

TEST(TString, ComparesAsStrcmpDoes) {
  const CTString text("mango");
  for (const char* same : {"mango"}) {
    EXPECT_EQ(text.Compare(same), 0);
    EXPECT_EQ(text.Compare(CTString(same)), 0);
  }
  for (const char* lesser : {"lango", "mang", "mangO", "M", "mang\x01"}) {
    EXPECT_GT(text.Compare(lesser), 0) << lesser;
    EXPECT_GT(text.Compare(CTString(lesser)), 0) << lesser;
    EXPECT_LT(CTString(lesser).Compare(text), 0) << lesser;
  }
  EXPECT_GT(CTString("\xE4").Compare("z"), 0) << "bytes compare as unsigned";
  EXPECT_EQ(CTString("m").Compare('m'), 0);
  EXPECT_GT(text.Compare('m'), 0);
  EXPECT_LT(text.Compare('n'), 0);
}

TEST(TString, ComparesWithoutCaseByUpperCaseCopies) {
  const CTString text("Mango");
  EXPECT_EQ(text.CompareNoCase("mANGO"), 0);
  EXPECT_EQ(text.CompareNoCase(CTString("MANGO")), 0);
  EXPECT_NE(text.CompareNoCase("mang"), 0);
  EXPECT_EQ(CTString("m").CompareNoCase('M'), 0);
  EXPECT_LT(text.CompareNoCase('N'), 0);
  EXPECT_LT(CTString("a").CompareNoCase("_"), 0) << "'_' lies between the upper and the lower case letters";
  expectHolds(text, "Mango");
}

TEST(TString, AnEmptySideIsComparedByLength) {
  const CTString empty;
  const CTString text("abcde");
  EXPECT_EQ(empty.Compare(text), -5);
  EXPECT_EQ(empty.Compare("abc"), -3);
  EXPECT_EQ(empty.Compare('a'), -1);
  EXPECT_EQ(text.Compare(empty), 5);
  EXPECT_EQ(text.Compare(""), 5);
  EXPECT_EQ(text.Compare(kNull), 5);
  EXPECT_EQ(text.Compare('\0'), 5);
  EXPECT_EQ(empty.Compare(empty), 0);
  EXPECT_EQ(empty.Compare(""), 0);
  EXPECT_EQ(empty.Compare(kNull), 0);
  EXPECT_EQ(empty.Compare('\0'), 0);
  EXPECT_EQ(empty.CompareNoCase(text), -5);
  EXPECT_EQ(empty.CompareNoCase("abc"), -3);
  EXPECT_EQ(empty.CompareNoCase('a'), -1);
  EXPECT_EQ(text.CompareNoCase(empty), 5);
  EXPECT_EQ(text.CompareNoCase(kNull), 5);
  EXPECT_EQ(text.CompareNoCase('\0'), 5);
  EXPECT_EQ(empty.CompareNoCase(kNull), 0);
}

TEST(TString, OperatorsCompareOnEitherSide) {
  const CTString b("b");
  EXPECT_TRUE(b == CTString("b") && b == "b" && "b" == b && b == 'b' && 'b' == b);
  EXPECT_TRUE(b != CTString("a") && b != "a" && "a" != b && b != 'a' && 'a' != b);
  EXPECT_TRUE(b < CTString("c") && b < "c" && "a" < b && b < 'c' && 'a' < b);
  EXPECT_TRUE(b <= CTString("b") && b <= "c" && "b" <= b && b <= 'b' && 'a' <= b);
  EXPECT_TRUE(b > CTString("a") && b > "a" && "c" > b && b > 'a' && 'c' > b);
  EXPECT_TRUE(b >= CTString("b") && b >= "a" && "b" >= b && b >= 'b' && 'c' >= b);
  EXPECT_FALSE(b == "a" || b != "b" || b < "b" || b > "b" || b <= "a" || b >= "c");
  EXPECT_FALSE("a" == b || "b" != b || "b" < b || "b" > b || "c" <= b || "a" >= b);
  EXPECT_TRUE(CTString() < "a" && CTString() == "" && CTString() == kNull && kNull < b);
}
