// Erasing, inserting, replacing, trimming, case; each also where the text changes its storage.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/foundation/string_parts.h"

using foundation_test::expectFreeBytesAreZero;
using foundation_test::expectHolds;
using foundation_test::partsOf;
using qvtcl::CTString;

namespace {

constexpr unsigned long kEnd = CTString::nposi;
constexpr unsigned long kLast = CTString::nposi - 1;
const char* const kNull = nullptr;
const std::string kLong = "0123456789abcdefghij";

}  // namespace

TEST(TStringEdit, EraseTakesBytesOut) {
  struct Row {
    const char* name;
    unsigned long position, count;
    const char* expected;
  };
  const Row rows[] = {
      {"the first", 0, 1, "123456789abcdefghij"},
      {"in the middle", 4, 6, "0123abcdefghij"},
      {"the rest", 9, CTString::nolen, "012345678"},
      {"more than there is", 9, 100, "012345678"},
      {"the last by name", kLast, 5, "0123456789abcdefghi"},
      {"the end", 20, 5, "0123456789abcdefghij"},
      {"the end by name", kEnd, 5, "0123456789abcdefghij"},
      {"beyond", 21, 1, "0123456789abcdefghij"},
      {"nothing", 4, 0, "0123456789abcdefghij"},
      {"down to eight", 8, CTString::nolen, "01234567"},
      {"down to seven", 7, CTString::nolen, "0123456"},
      {"the front, down to seven", 0, 13, "defghij"},
      {"all", 0, CTString::nolen, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CTString text(kLong.c_str());
    text.Erase(row.position, row.count);
    expectHolds(text, row.expected);
    expectFreeBytesAreZero(text);
    if (text.Length() < 8) {
      EXPECT_EQ(partsOf(text).capacity, 0u) << "the block is freed";
    }
  }
  CTString rest("abcdef");
  rest.Erase(2);
  expectHolds(rest, "ab");
  CTString empty;
  for (const unsigned long at : {0UL, 1UL, kEnd, kLast}) empty.Erase(at);
  expectHolds(empty, "");
}

TEST(TStringEdit, InsertPutsBytesInInEveryForm) {
  struct Row {
    const char* name;
    unsigned long position;
    const char* expected;
  };
  for (const Row& row : {Row{"in front", 0, "Xabc"}, Row{"inside", 1, "aXbc"}, Row{"at the end", 3, "abcX"},
                         Row{"at the end by name", kEnd, "abcX"}, Row{"before the last", kLast, "abXc"},
                         Row{"beyond", 4, "abc"}, Row{"far beyond", kLast - 1, "abc"}}) {
    SCOPED_TRACE(row.name);
    CTString byByte("abc");
    byByte.Insert(row.position, 'X');
    expectHolds(byByte, row.expected);
    CTString byText("abc");
    byText.Insert(row.position, "X");
    expectHolds(byText, row.expected);
    CTString byString("abc");
    byString.Insert(row.position, CTString("X"));
    expectHolds(byString, row.expected);
  }
  CTString text("abcdef");
  text.Insert(3, "-");
  expectHolds(text, "abc-def");
  text.Insert(3, "-");
  expectHolds(text, "abc--def");
  text.Insert(4, "0123456789");
  expectHolds(text, "abc-0123456789-def");
  text.Insert(4, kNull);
  text.Insert(4, "");
  text.Insert(4, CTString());
  text.Insert(4, '\0');
  expectHolds(text, "abc-0123456789-def");
}

TEST(TStringEdit, InsertIntoAnEmptyStringWorksAtZeroOnly) {
  for (const unsigned long at : {1UL, kLast, kEnd}) {
    CTString text;
    text.Insert(at, 'X');
    text.Insert(at, "X");
    text.Insert(at, CTString("X"));
    expectHolds(text, "");
  }
  CTString text;
  text.Insert(0, "0123456789");
  expectHolds(text, "0123456789");
  text.Clear();
  text.Insert(0, 'X');
  expectHolds(text, "X");
}

TEST(TStringEdit, InsertsAndReplacesWithItself) {
  for (const std::string& content : {std::string("abcd"), std::string("abcdef"), std::string("abcdefghij0123456789")}) {
    SCOPED_TRACE(content);
    CTString text(content.c_str());
    text.Insert(2, text);
    expectHolds(text, content.substr(0, 2) + content + content.substr(2));
    text = content.c_str();
    text.Insert(3, text.C_str() + 1);
    expectHolds(text, content.substr(0, 3) + content.substr(1) + content.substr(3));
    text = content.c_str();
    text.Replace(text, text);
    expectHolds(text, content);
    text.Replace("b", text.C_str());
    expectHolds(text, "a" + content + content.substr(2));
    text = content.c_str();
    text.RReplace(text.C_str() + 2, text.C_str() + 1);
    expectHolds(text, content.substr(0, 2) + content.substr(1));
    text = content.c_str();
    text.Trim(text.C_str());
    expectHolds(text, "");
    text = content.c_str();
    text.Remove(text);
    expectHolds(text, "");
    text = content.c_str();
    text.RRemove(text.C_str() + 1);
    expectHolds(text, "a");
  }
}

TEST(TStringEdit, ReplaceChangesTheFirstMatchOnly) {
  CTString text("one two one two");
  text.Replace("one", "1");
  expectHolds(text, "1 two one two");
  text.Replace(CTString("two"), CTString("second"), 3);
  expectHolds(text, "1 two one second");
  text.Replace('o', '0');
  expectHolds(text, "1 tw0 one second");
  text.Replace('o', '0', 7);
  expectHolds(text, "1 tw0 one sec0nd");
  text.Replace('d', 'D', kLast);
  expectHolds(text, "1 tw0 one sec0nD");
  for (const char* missing : {"three", "", kNull}) {
    text.Replace(missing, "x");
    text.Replace(CTString(missing), CTString("x"));
    text.RReplace(missing, "x");
    text.RReplace(CTString(missing), CTString("x"));
  }
  text.Replace('\0', 'x');
  text.RReplace('\0', 'x');
  text.Replace("1", "x", 1);
  text.Replace("1", "x", kEnd);
  text.Replace("1", "x", 1000);
  text.RReplace("1", "x", 1000);
  expectHolds(text, "1 tw0 one sec0nD");
  text.Replace("1 tw0 ", kNull);
  expectHolds(text, "one sec0nD");
  text.Replace(" sec0nD", "");
  expectHolds(text, "one");
}

TEST(TStringEdit, RReplaceChangesTheLastMatchOnly) {
  CTString text("one two one two");
  text.RReplace("one", "1");
  expectHolds(text, "one two 1 two");
  text.RReplace(CTString("two"), CTString("second"), 9);
  expectHolds(text, "one second 1 two");
  text.RReplace('o', '0');
  expectHolds(text, "one second 1 tw0");
  text.RReplace('o', '0', 6);
  expectHolds(text, "0ne second 1 tw0");
  text.RReplace("0ne", "", 0);
  expectHolds(text, " second 1 tw0");
}

TEST(TStringEdit, ReplaceOfAByteByNulCutsTheTextThere) {
  for (const auto& [content, expected] : {std::pair{"ab.cd.ef", "ab"}, std::pair{"abcdefghij.klm.nop", "abcdefghij"}}) {
    CTString text(content);
    text.Replace('.', '\0');
    expectHolds(text, expected);
    expectFreeBytesAreZero(text);
  }
  CTString text("abcdefghij.klm.nop");
  text.RReplace('.', '\0');
  expectHolds(text, "abcdefghij.klm");
  text.Replace('a', '\0');
  expectHolds(text, "");
}

TEST(TStringEdit, RemoveTakesOneMatchOut) {
  CTString text("a-b-c-d<>e<>f<>g");
  text.Remove('-');
  expectHolds(text, "ab-c-d<>e<>f<>g");
  text.Remove('-', 3);
  expectHolds(text, "ab-cd<>e<>f<>g");
  text.Remove("<>");
  expectHolds(text, "ab-cde<>f<>g");
  text.Remove(CTString("<>"), 7);
  expectHolds(text, "ab-cde<>fg");
  text = "a-b-c-d<>e<>f<>g";
  text.RRemove('-');
  expectHolds(text, "a-b-cd<>e<>f<>g");
  text.RRemove('-', 2);
  expectHolds(text, "ab-cd<>e<>f<>g");
  text.RRemove("<>");
  expectHolds(text, "ab-cd<>e<>fg");
  text.RRemove(CTString("<>"), 7);
  expectHolds(text, "ab-cde<>fg");
  for (const char* missing : {"xyz", "", kNull}) {
    text.Remove(missing);
    text.Remove(CTString(missing));
    text.RRemove(missing);
    text.RRemove(CTString(missing));
  }
  text.Remove('\0');
  text.RRemove('\0');
  text.Remove('a', 1);
  text.Remove("a", kEnd);
  text.RRemove("g", 8);
  text.RRemove("g", 100);
  expectHolds(text, "ab-cde<>fg");
}

TEST(TStringEdit, CaseChangesByteByByteInPlace) {
  for (const char* content : {"aBc", "zZ[{@`09 \xE4\xC4 aB"}) {
    std::string upper = content;
    std::string lower = content;
    for (char& c : upper) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    CTString text(content);
    const char* place = text.C_str();
    text.ToUpper();
    expectHolds(text, upper);
    text.ToLower();
    expectHolds(text, lower);
    EXPECT_EQ(text.C_str(), place);
  }
  CTString empty;
  empty.ToUpper();
  empty.ToLower();
  expectHolds(empty, "");
}

TEST(TStringEdit, TrimTakesWhiteSpaceOff) {
  const std::string white = " \t\n\v\f\r";
  for (const std::string& core : {std::string("a b"), std::string("0123456"), kLong, std::string("\xA0x\x85")}) {
    const std::string content = white + core + white;
    CTString left(content.c_str());
    left.TrimLeft();
    expectHolds(left, core + white);
    CTString right(content.c_str());
    right.TrimRight();
    expectHolds(right, white + core);
    CTString both(content.c_str());
    both.Trim();
    expectHolds(both, core);
    for (const CTString& text : {left, right, both}) expectFreeBytesAreZero(text);
    both.Trim();
    expectHolds(both, core);
  }
  for (const std::string& blank : {std::string(), std::string(" "), white + white}) {
    CTString left(blank.c_str());
    CTString right(blank.c_str());
    CTString both(blank.c_str());
    left.TrimLeft();
    right.TrimRight();
    both.Trim();
    for (const CTString& text : {left, right, both}) expectHolds(text, "");
  }
}

TEST(TStringEdit, TrimTakesTheBytesOfASetOff) {
  CTString text("xyyx a text yxx");
  text.TrimLeft("xy");
  expectHolds(text, " a text yxx");
  text.TrimRight("xy");
  expectHolds(text, " a text ");
  text.Trim(" a");
  expectHolds(text, "text");
  text.Trim("t");
  expectHolds(text, "ex");
  for (const char* none : {kNull, "", "q"}) {
    text.TrimLeft(none);
    text.TrimRight(none);
    text.Trim(none);
    expectHolds(text, "ex");
  }
  text.Trim("xe");
  expectHolds(text, "");
  text.Trim("x");
  expectHolds(text, "");
}

TEST(TStringEdit, ATrimmedTextFallsBackToTheSmallStorage) {
  CTString left("              seven77");
  CTString right("seven77              ");
  for (CTString* text : {&left, &right}) {
    EXPECT_EQ(partsOf(*text).capacity, 32u);
    text->Trim();
    expectHolds(*text, "seven77");
    EXPECT_EQ(partsOf(*text).capacity, 0u);
  }
}
