// Positions, access, searching, substrings and fields.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/foundation/string_parts.h"

using foundation_test::expectHolds;
using qvtcl::CTString;

namespace {

constexpr unsigned long kEnd = CTString::nposi;
constexpr unsigned long kLast = CTString::nposi - 1;
constexpr unsigned long kNone = CTString::nposi;
const char* const kNull = nullptr;

}  // namespace

TEST(TStringSearch, PositionsMapToIndexes) {
  struct Row {
    const char* name;
    unsigned long position, index;
    bool valid;
  };
  const Row rows[] = {
      {"first", 0, 0, true},       {"fourth", 3, 3, true},
      {"last", 4, 4, true},        {"last by name", kLast, 4, true},
      {"end", 5, 5, false},        {"end by name", kEnd, 5, false},
      {"beyond", 6, kNone, false}, {"far beyond", kLast - 1, kNone, false},
  };
  const CTString text("01234");
  for (const Row& row : rows) {
    EXPECT_EQ(text.GetProcPosi(row.position), row.index) << row.name;
    EXPECT_EQ(text.IsValidPosi(row.position), row.valid) << row.name;
  }
  const CTString empty;
  EXPECT_EQ(empty.GetProcPosi(0), 0u);
  EXPECT_EQ(empty.GetProcPosi(kEnd), 0u);
  EXPECT_EQ(empty.GetProcPosi(kLast), kNone);
  EXPECT_FALSE(empty.IsValidPosi(0) || empty.IsValidPosi(kEnd) || empty.IsValidPosi(kLast));
}

TEST(TStringSearch, LengthsAreCutToEndWithTheText) {
  const CTString text("01234");
  EXPECT_EQ(text.GetProcStrLen(1, 2), 2u);
  EXPECT_EQ(text.GetProcStrLen(1, 4), 4u);
  EXPECT_EQ(text.GetProcStrLen(1, 5), 4u);
  EXPECT_EQ(text.GetProcStrLen(1, CTString::nolen), 4u);
  EXPECT_EQ(text.GetProcStrLen(1, CTString::nolen - 1), 4u);
  EXPECT_EQ(text.GetProcStrLen(kLast, CTString::nolen), 1u);
  EXPECT_EQ(text.GetProcStrLen(5, 1), 0u);
  EXPECT_EQ(text.GetProcStrLen(kEnd, 1), 0u);
  EXPECT_EQ(text.GetProcStrLen(6, 1), 0u);
  EXPECT_EQ(CTString().GetProcStrLen(kLast, CTString::nolen), 0u);
}

TEST(TStringSearch, BytesAreReadAndSetByPosition) {
  for (const char* content : {"abcde", "a text on the heap"}) {
    std::string expected = content;
    CTString text(content);
    EXPECT_EQ(text.GetAt(0), 'a');
    EXPECT_EQ(text.GetAt(kLast), expected.back());
    EXPECT_EQ(text.GetAt(text.Length()), 0);
    for (const unsigned long invalid : {kEnd, text.Length() + 1, 1000UL, kLast - 1}) {
      EXPECT_EQ(text.GetAt(invalid), 0);
      text.SetAt(invalid, 'X');
    }
    text.SetAt(text.Length(), 'X');
    expectHolds(text, expected);
    text.SetAt(1, 'B');
    expected[1] = 'B';
    text.SetAt(kLast, 'Z');
    expected.back() = 'Z';
    expectHolds(text, expected);
  }
  CTString empty;
  empty.SetAt(0, 'x');
  empty.SetAt(kLast, 'x');
  expectHolds(empty, "");
  EXPECT_EQ(empty.GetAt(0), 0);
  EXPECT_EQ(empty.GetAt(kLast), 0);
}

TEST(TStringSearch, FindGoesForwardFromThePosition) {
  struct Row {
    const char* what;
    unsigned long position, expected;
  };
  const CTString text("banana-band");
  for (const Row& row :
       {Row{"ban", 0, 0}, Row{"ban", 1, 7}, Row{"ana", 0, 1}, Row{"ana", 1, 1}, Row{"ana", 2, 3}, Row{"ana", 4, kNone},
        Row{"band", 0, 7}, Row{"band-", 0, kNone}, Row{"Ban", 0, kNone}, Row{"d", kLast, 10}, Row{"n", kLast, kNone},
        Row{"d", kEnd, kNone}, Row{"d", 11, kNone}, Row{"b", 12, kNone}, Row{"b", kLast - 1, kNone}, Row{"", 0, kNone},
        Row{nullptr, 0, kNone}, Row{"banana-band", 0, 0}, Row{"banana-bandx", 0, kNone}}) {
    SCOPED_TRACE(std::string(row.what == nullptr ? "null" : row.what) + " from " + std::to_string(row.position));
    EXPECT_EQ(text.Find(row.what, row.position), row.expected);
    EXPECT_EQ(text.Find(CTString(row.what), row.position), row.expected);
    if (row.what != nullptr && std::string(row.what).size() < 2) {
      EXPECT_EQ(text.Find(row.what[0], row.position), row.expected);
    }
  }
  EXPECT_EQ(text.Find('n'), 2u);
  EXPECT_EQ(text.Find("an"), 1u);
  EXPECT_EQ(text.Find(CTString("an")), 1u);
  EXPECT_EQ(text.Find(text), 0u);
  EXPECT_EQ(text.Find('\0'), kNone);
  EXPECT_EQ(text.Find('x', kEnd), kNone);
  for (const unsigned long at : {0UL, 1UL, kEnd, kLast}) EXPECT_EQ(CTString().Find("a", at), kNone);
}

TEST(TStringSearch, RFindGoesBackwardFromThePositionItselfIncluded) {
  struct Row {
    const char* what;
    unsigned long position, expected;
  };
  const CTString text("banana-band");
  for (const Row& row : {Row{"ban", kEnd, 7},
                         Row{"ban", 7, 7},
                         Row{"ban", 6, 0},
                         Row{"ban", 0, 0},
                         Row{"ana", kEnd, 3},
                         Row{"ana", 3, 3},
                         Row{"ana", 2, 1},
                         Row{"ana", 0, kNone},
                         Row{"d", kLast, 10},
                         Row{"d", 11, 10},
                         Row{"d", 9, kNone},
                         Row{"b", 0, 0},
                         Row{"band", kLast, 7},
                         Row{"band-", kEnd, kNone},
                         Row{"BAN", kEnd, kNone},
                         Row{"b", 12, kNone},
                         Row{"b", kLast - 1, kNone},
                         Row{"", kEnd, kNone},
                         Row{nullptr, kEnd, kNone},
                         Row{"banana-band", kEnd, 0},
                         Row{"xbanana-band", kEnd, kNone}}) {
    SCOPED_TRACE(std::string(row.what == nullptr ? "null" : row.what) + " from " + std::to_string(row.position));
    EXPECT_EQ(text.RFind(row.what, row.position), row.expected);
    EXPECT_EQ(text.RFind(CTString(row.what), row.position), row.expected);
    if (row.what != nullptr && std::string(row.what).size() < 2) {
      EXPECT_EQ(text.RFind(row.what[0], row.position), row.expected);
    }
  }
  EXPECT_EQ(text.RFind('n'), 9u);
  EXPECT_EQ(text.RFind("an"), 8u);
  EXPECT_EQ(text.RFind(CTString("an")), 8u);
  EXPECT_EQ(text.RFind('\0'), kNone);
  for (const unsigned long at : {0UL, 1UL, kEnd, kLast}) EXPECT_EQ(CTString().RFind("a", at), kNone);
}

TEST(TStringSearch, NoCaseFindsEitherCaseInEveryForm) {
  const CTString text("Banana-bAND\xE4");
  EXPECT_EQ(text.FindNoCase('N'), 2u);
  EXPECT_EQ(text.FindNoCase('b', 1), 7u);
  EXPECT_EQ(text.FindNoCase("BAN"), 0u);
  EXPECT_EQ(text.FindNoCase("ban", 1), 7u);
  EXPECT_EQ(text.FindNoCase(CTString("AND")), 8u);
  EXPECT_EQ(text.FindNoCase(CTString("AND"), 9), kNone);
  EXPECT_EQ(text.RFindNoCase('B'), 7u);
  EXPECT_EQ(text.RFindNoCase('b', 6), 0u);
  EXPECT_EQ(text.RFindNoCase("ban"), 7u);
  EXPECT_EQ(text.RFindNoCase("BAN", 6), 0u);
  EXPECT_EQ(text.RFindNoCase(CTString("aNa")), 3u);
  EXPECT_EQ(text.RFindNoCase(CTString("aNa"), 2), 1u);
  EXPECT_EQ(text.FindNoCase("\xE4"), 11u);
  EXPECT_EQ(text.FindNoCase('\0'), kNone);
  EXPECT_EQ(text.FindNoCase(""), kNone);
  EXPECT_EQ(text.FindNoCase(kNull), kNone);
  EXPECT_EQ(text.FindNoCase("b", kEnd), kNone);
  EXPECT_EQ(text.FindNoCase("b", 13), kNone);
  EXPECT_EQ(text.RFindNoCase('\0'), kNone);
  EXPECT_EQ(text.RFindNoCase(CTString()), kNone);
  EXPECT_EQ(text.RFindNoCase(kNull), kNone);
  EXPECT_EQ(text.RFindNoCase("b", 13), kNone);
  expectHolds(text, "Banana-bAND\xE4");
}

TEST(TStringSearch, FindOneOfFindsTheFirstByteOfTheSet) {
  const CTString text("a,b;c,d");
  EXPECT_EQ(text.FindOneOf(";,"), 1u);
  EXPECT_EQ(text.FindOneOf(";,", 1), 1u);
  EXPECT_EQ(text.FindOneOf(";,", 2), 3u);
  EXPECT_EQ(text.FindOneOf(CTString(";,"), 4), 5u);
  EXPECT_EQ(text.FindOneOf(CTString("x")), kNone);
  EXPECT_EQ(text.FindOneOf("d", kLast), 6u);
  EXPECT_EQ(text.RFindOneOf(";,"), 5u);
  EXPECT_EQ(text.RFindOneOf(";,", 5), 5u);
  EXPECT_EQ(text.RFindOneOf(";,", 4), 3u);
  EXPECT_EQ(text.RFindOneOf(CTString(";,"), 2), 1u);
  EXPECT_EQ(text.RFindOneOf(CTString(";,"), 0), kNone);
  EXPECT_EQ(text.RFindOneOf("d", kLast), 6u);
  for (const char* none : {kNull, "", "xyz"}) {
    EXPECT_EQ(text.FindOneOf(none), kNone);
    EXPECT_EQ(text.FindOneOf(CTString(none)), kNone);
    EXPECT_EQ(text.RFindOneOf(none), kNone);
    EXPECT_EQ(text.RFindOneOf(CTString(none)), kNone);
  }
  for (const unsigned long invalid : {8UL, kLast - 1}) {
    EXPECT_EQ(text.FindOneOf(",", invalid), kNone);
    EXPECT_EQ(text.RFindOneOf(",", invalid), kNone);
  }
  EXPECT_EQ(text.FindOneOf(",", kEnd), kNone);
  EXPECT_EQ(CTString().FindOneOf(","), kNone);
  EXPECT_EQ(CTString().RFindOneOf(","), kNone);
}

TEST(TStringSearch, IsDelimiterAsksForOneByte) {
  const CTString text("a,b;");
  EXPECT_FALSE(text.IsDelimiter(",;", 0));
  EXPECT_TRUE(text.IsDelimiter(",;", 1));
  EXPECT_FALSE(text.IsDelimiter(";", 1));
  EXPECT_TRUE(text.IsDelimiter(",;", kLast));
  EXPECT_FALSE(text.IsDelimiter(",;", kEnd)) << "the ending NUL is no delimiter";
  EXPECT_FALSE(text.IsDelimiter(",;", 4));
  EXPECT_FALSE(text.IsDelimiter(",;", 5));
  EXPECT_FALSE(text.IsDelimiter("", 1));
  EXPECT_FALSE(text.IsDelimiter(nullptr, 1));
  EXPECT_FALSE(CTString().IsDelimiter(",", 0));
}

TEST(TStringSearch, SubstringsAreClippedToTheText) {
  for (const std::string& content : {std::string("01234"), std::string("a text on the heap")}) {
    const CTString text(content.c_str());
    const unsigned long length = content.size();
    for (unsigned long count = 0; count <= length + 2; ++count) {
      expectHolds(text.Left(count), content.substr(0, count));
      expectHolds(text.Right(count), content.substr(length - std::min(count, length)));
      if (count <= length) expectHolds(text.Mid(count), content.substr(count));
      if (count <= length) expectHolds(text.Mid(count, 2), content.substr(count, 2));
      expectHolds(text.LeftFrom(count), count <= length ? content.substr(0, count + 1) : "");
      expectHolds(text.RightFrom(count), count <= length ? content.substr(count) : "");
    }
    expectHolds(text.Left(CTString::nolen), content);
    expectHolds(text.Right(CTString::nolen), content);
    expectHolds(text.Mid(1, CTString::nolen), content.substr(1));
    expectHolds(text.Mid(1, 0), "");
    expectHolds(text.Mid(kLast), content.substr(length - 1));
    expectHolds(text.Mid(kEnd), "");
    expectHolds(text.Mid(length + 1), "");
    expectHolds(text.LeftFrom(kLast), content);
    expectHolds(text.LeftFrom(kEnd), content);
    expectHolds(text.RightFrom(kLast), content.substr(length - 1));
    expectHolds(text.RightFrom(kEnd), "");
    expectHolds(text, content);
  }
  expectHolds(CTString("ab").Left(3), "ab");
  const CTString empty;
  for (const unsigned long at : {0UL, 1UL, kEnd, kLast}) {
    for (const CTString& part :
         {empty.Left(at), empty.Right(at), empty.Mid(at), empty.LeftFrom(at), empty.RightFrom(at)}) {
      expectHolds(part, "");
    }
  }
}

TEST(TStringSearch, FieldsAreTakenOneByOne) {
  struct Row {
    const char* name;
    const char* text;
    const char* delimiters;
    bool trim;
    std::vector<std::string> fields;
  };
  const Row rows[] = {
      {"no delimiter", "abc", ",", false, {"abc"}},
      {"three fields", "a,bb,ccc", ",", false, {"a", "bb", "ccc"}},
      {"an empty field", "a,,b", ",", false, {"a", "", "b"}},
      {"a delimiter in front is stepped over", ",a,b", ",", false, {"a", "b"}},
      {"two in front leave an empty field", ",,a", ",", false, {"", "a"}},
      {"a delimiter at the end leaves an empty field", "a,", ",", false, {"a", ""}},
      {"only a delimiter", ",", ",", false, {""}},
      {"several delimiters", "a=1;b=2", "=;", false, {"a", "1", "b", "2"}},
      {"white space stays", " a , b ", ",", false, {" a ", " b "}},
      {"white space goes", " a\t,\r\n b ", ",", true, {"a", "b"}},
      {"white space as delimiter", "a b", " ", true, {"a", "b"}},
      {"quotes hide a delimiter", "one,\"two,2\",three", ",", false, {"one", "\"two,2\"", "three"}},
      {"quotes hide several", "\"a,b,c\",d", ",", false, {"\"a,b,c\"", "d"}},
      {"quotes within a field", "x\"a,b\"y,d", ",", false, {"x\"a,b\"y", "d"}},
      {"quotes behind the delimiter", "a,\"b,c\"", ",", false, {"a", "\"b,c\""}},
      {"a second pair hides nothing", "\"a,b\"\"c,d\",e", ",", false, {"\"a,b\"\"c", "d\"", "e"}},
      {"one quote hides nothing", "\"a,b", ",", false, {"\"a", "b"}},
      {"quotes keep their white space", " \" a , b \" ,c", ",", true, {"\" a , b \"", "c"}},
      {"the last field in quotes", "a,\"b,c", ",", false, {"a", "\"b", "c"}},
      {"a hidden delimiter and no other", "\"a,b\"", ",", false, {"\"a,b\""}},
      {"a quote as delimiter hides itself", "a\"b\"c", "\"", false, {"a\"b\"c"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const CTString text(row.text);
    std::vector<std::string> fields;
    unsigned long position = 0;
    while (position != kEnd && fields.size() < 20) {
      fields.emplace_back(text.GetToken(row.delimiters, position, row.trim).C_str());
    }
    EXPECT_EQ(fields, row.fields);
  }
}

TEST(TStringSearch, APositionOfAFieldIsItsDelimiter) {
  const CTString text("one,\"two,2\",three");
  unsigned long position = 0;
  text.GetToken(",", position, false);
  EXPECT_EQ(position, 3u);
  text.GetToken(",", position, false);
  EXPECT_EQ(position, 11u);
  text.GetToken(",", position, false);
  EXPECT_EQ(position, kEnd);
  position = 5;
  expectHolds(text.GetToken(",", position, false), "two");
  EXPECT_EQ(position, 8u);
}

TEST(TStringSearch, NoFieldIsTakenFromNothing) {
  const CTString text("a,b");
  unsigned long position = kEnd;
  expectHolds(text.GetToken(",", position, false), "");
  EXPECT_EQ(position, kEnd);
  for (const char* none : {kNull, ""}) {
    position = 0;
    expectHolds(text.GetToken(none, position, false), "");
    EXPECT_EQ(position, kEnd);
  }
  position = 0;
  expectHolds(CTString().GetToken(",", position, false), "");
  EXPECT_EQ(position, kEnd);
  for (const unsigned long beyond : {3UL, 4UL, 1000UL}) {
    position = beyond;
    expectHolds(text.GetToken(",", position, false), "");
    EXPECT_EQ(position, kEnd);
  }
}
