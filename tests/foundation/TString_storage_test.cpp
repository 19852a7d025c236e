// Where the text is stored: in the object, in a heap block, and what happens beyond the largest block.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/foundation/string_parts.h"

using foundation_test::expectFreeBytesAreZero;
using foundation_test::expectHolds;
using foundation_test::partsOf;
using foundation_test::StringParts;
using qvtcl::CTString;

namespace {

constexpr unsigned long kEnd = CTString::nposi;
constexpr unsigned long kLast = CTString::nposi - 1;
constexpr unsigned long kCap = 65520;
const std::string kLong = "a text longer than the small storage";

}  // namespace

TEST(TStringStorage, SevenBytesAreSmallAndEightNeedABlock) {
  const StringParts seven = partsOf(CTString("1234567"));
  EXPECT_TRUE(seven.isSmall);
  EXPECT_EQ(seven.capacity, 0u);
  EXPECT_EQ(seven.heap, nullptr);
  struct Row {
    unsigned long length, block;
  };
  for (const Row& row : {Row{8, 16}, Row{15, 16}, Row{16, 32}, Row{31, 32}, Row{32, 48}, Row{1000, 1008}}) {
    const CTString text(row.length, 'x');
    EXPECT_FALSE(partsOf(text).isSmall);
    EXPECT_EQ(partsOf(text).capacity, row.block) << row.length;
    EXPECT_EQ(text.Capacity(), row.block - 1);
    expectHolds(text, std::string(row.length, 'x'));
  }
}

TEST(TStringStorage, GrowthGoesToTheExactRoundedSize) {
  CTString text;
  for (unsigned long length = 1; length <= 200; ++length) {
    text += 'x';
    EXPECT_EQ(partsOf(text).capacity, length < 8 ? 0 : (length + 1 + 15) / 16 * 16) << length;
  }
}

TEST(TStringStorage, TheBlockSizeIsTheNextMultipleOf16AboveUpToTheCap) {
  struct Row {
    unsigned long wanted, expected;
  };
  const Row rows[] = {{0, 16},        {14, 16},       {15, 16},       {16, 32},       {31, 32},       {32, 48},
                      {65503, 65504}, {65504, 65520}, {65519, 65520}, {65520, 65520}, {65521, 65520}, {kEnd, 65520}};
  for (const Row& row : rows) EXPECT_EQ(CTString::CalcStrMemSize(row.wanted), row.expected) << row.wanted;
}

TEST(TStringStorage, ReserveGivesTheOldStorageOrTheNewBlock) {
  CTString text("abc");
  EXPECT_EQ(text.Reserve(0), 8u);
  EXPECT_EQ(text.Reserve(7), 8u);
  EXPECT_EQ(partsOf(text).capacity, 0u);
  EXPECT_EQ(text.Reserve(20), 32u);
  EXPECT_EQ(text.Capacity(), 31u);
  expectHolds(text, "abc");
  EXPECT_EQ(text.Reserve(31), 32u);
  EXPECT_EQ(text.Reserve(5), 32u) << "never shrinks";
  text = "a text of 22 bytes ...";
  const char* block = text.C_str();
  EXPECT_EQ(text.Reserve(31), 32u);
  EXPECT_EQ(text.C_str(), block);
  EXPECT_EQ(text.Reserve(32), 48u);
  expectHolds(text, "a text of 22 bytes ...");
  EXPECT_EQ(text.Reserve(kEnd), kCap);
  EXPECT_EQ(text.Reserve(kEnd), kCap);
  expectHolds(text, "a text of 22 bytes ...");
  EXPECT_EQ(CTString(100UL).Capacity(), 111u);
  EXPECT_EQ(CTString(7UL).Capacity(), 7u);
}

TEST(TStringStorage, ClearKeepsTheBlockAndZeroesIt) {
  CTString text(kLong.c_str());
  const StringParts before = partsOf(text);
  text.Clear();
  const StringParts after = partsOf(text);
  expectHolds(text, "");
  EXPECT_EQ(after.heap, before.heap);
  EXPECT_EQ(after.capacity, before.capacity);
  expectFreeBytesAreZero(text);
  text = "ten bytes!";
  EXPECT_EQ(partsOf(text).heap, before.heap) << "the block is used again";
  CTString small("abc");
  small.Clear();
  expectHolds(small, "");
}

TEST(TStringStorage, AssignmentFreesTheBlockForASmallTextAndUsesItAgainForABigOne) {
  CTString text(40UL, 'x');
  const char* block = partsOf(text).heap;
  text = "twenty bytes of text";
  EXPECT_EQ(partsOf(text).heap, block);
  EXPECT_EQ(partsOf(text).capacity, 48u);
  text = std::string(47, 'y').c_str();
  EXPECT_EQ(partsOf(text).heap, block);
  text = std::string(48, 'y').c_str();
  EXPECT_EQ(partsOf(text).capacity, 64u);
  text = "1234567";
  EXPECT_EQ(partsOf(text).capacity, 0u);
  expectHolds(text, "1234567");
}

TEST(TStringStorage, SwapsEveryMixOfStorages) {
  const std::string contents[] = {"", "abc", kLong};
  for (const std::string& left : contents) {
    for (const std::string& right : contents) {
      CTString a(left.c_str());
      CTString b(right.c_str());
      a.Swap(b);
      expectHolds(a, right);
      expectHolds(b, left);
    }
  }
}

TEST(TStringStorage, TheEmptyTextIsNeverNull) {
  EXPECT_STREQ(CTString().C_str(), "");
  EXPECT_STREQ(CTString(100UL).C_str(), "");
  EXPECT_EQ(CTString().C_str(), CTString().C_str()) << "one static text";
}

TEST(TStringStorage, TheCopyStepRefusesWhatDoesNotFitWithItsNul) {
  char to[16];
  const auto copy = [&to](unsigned long toOffset, unsigned long toSize, const char* from, unsigned long fromOffset,
                          unsigned long count, bool terminate) {
    std::memset(to, '.', sizeof to);
    return CTString::CopyString(to, toOffset, toSize, from, fromOffset, count, terminate);
  };
  const char from[] = "0123456789abcdef";
  EXPECT_EQ(copy(0, 16, from, 0, 8, true), 8u);  // whole words
  EXPECT_EQ(std::string(to, 16), std::string("01234567\0.......", 16));
  EXPECT_EQ(copy(4, 16, from, 8, 4, false), 4u);
  EXPECT_EQ(std::string(to, 16), "....89ab........");
  EXPECT_EQ(copy(3, 16, from, 5, 7, true), 7u);  // bytes
  EXPECT_EQ(std::string(to, 16), std::string("...56789ab\0.....", 16));
  EXPECT_EQ(copy(0, 8, from, 0, 7, true), 7u);
  for (const unsigned long count : {0UL, 8UL, 9UL}) EXPECT_EQ(copy(0, 8, from, 0, count, true), 0u) << count;
  EXPECT_EQ(copy(5, 8, from, 0, 3, true), 0u);
  EXPECT_EQ(copy(0, 8, nullptr, 0, 3, true), 0u);
  EXPECT_EQ(CTString::CopyString(nullptr, 0, 8, from, 0, 3, true), 0u);
  EXPECT_EQ(std::string(to, 16), "................");
}

TEST(TStringStorage, JustBelowTheCapATextIsWhole) {
  const std::string content(65518, 'q');
  expectHolds(CTString(content.c_str()), content);
  CTString grown(65510UL, 'q');
  grown += "qqqqqqqq";
  expectHolds(grown, content);
}

TEST(TStringStorage, TheCapKeepsTheLengthAndRefusesTheBytes) {
  for (const unsigned long length : {kCap, kCap + 1, kCap * 2}) {
    SCOPED_TRACE(length);
    const CTString text(std::string(length, 'q').c_str());
    EXPECT_EQ(text.Length(), length);
    EXPECT_EQ(partsOf(text).capacity, kCap);
    EXPECT_STREQ(text.C_str(), "");
    for (const unsigned long at : {0UL, kCap - 1, kCap, length - 1, length, kEnd, kLast}) EXPECT_EQ(text.GetAt(at), 0);
    EXPECT_EQ(text.Find('q'), kEnd);
    EXPECT_EQ(text.RFind("q"), kEnd);
    EXPECT_EQ(text.FindOneOf("q"), kEnd);
    EXPECT_STREQ(text.Mid(kCap - 4).C_str(), "");
    EXPECT_STREQ(text.Left(8).C_str(), "");
    EXPECT_STREQ(CTString(text).C_str(), "");
    EXPECT_EQ(text.ToInteger(), 0);
    EXPECT_EQ(CTString(length, 'q').Length(), length);
  }
}

TEST(TStringStorage, NoLengthIsTooGreatToAskFor) {
  for (const unsigned long length : {kEnd, kLast, kLast - 1}) {
    CTString text(length, 'q');
    EXPECT_EQ(text.Length(), length);
    EXPECT_STREQ(text.C_str(), "");
    EXPECT_EQ(text.GetAt(0), 0);
    EXPECT_EQ(text.GetAt(kLast), 0);
    EXPECT_EQ(text.Find('q'), kEnd);
    EXPECT_STREQ(text.Mid(1).C_str(), "");
    EXPECT_STREQ(text.Right(3).C_str(), "");
    text += "abc";
    text.Insert(kLast, "abc");
    text.Erase(5);
    text += text;
    text.Trim();
  }
}

TEST(TStringStorage, AppendingBeyondTheCapKeepsWhatWasThere) {
  CTString text(65000UL, 'a');
  text += std::string(1000, 'b').c_str();
  EXPECT_EQ(text.Length(), 66000u);
  EXPECT_EQ(std::string(text.C_str()), std::string(65000, 'a'));
  EXPECT_EQ(text.GetAt(64999), 'a');
  for (const unsigned long at : {65000UL, kCap - 1, kCap, 65999UL, kLast}) EXPECT_EQ(text.GetAt(at), 0) << at;
  EXPECT_EQ(text.Find('b'), kEnd);
  EXPECT_EQ(text.RFind('a'), 64999u);
  EXPECT_EQ(std::string(text.Mid(64998).C_str()), "aa");
  EXPECT_EQ(std::string(text.Right(1001).C_str()), "a");
  text.SetAt(65999, 'x');
  text.SetAt(kLast, 'x');
  EXPECT_EQ(text.GetAt(65999), 0);
  text.ToUpper();
  EXPECT_EQ(text.GetAt(0), 'A');
  text.TrimRight("A");
  text.Trim();
  text.Insert(65990, "abc");
  text.Insert(kEnd, text);
  text.Replace('A', 'B', 65500);
  text.RReplace("AA", "B");
  unsigned long position = 65000;
  text.GetToken(",", position, true);
  text.Erase(100);
  EXPECT_EQ(std::string(text.C_str()), std::string(100, 'A'));
  EXPECT_EQ(text.Length(), 100u);
}

TEST(TStringStorage, AddsAndAssignsItself) {
  for (const std::string& content : {std::string("abcd"), std::string("0123456"), std::string("01234567"), kLong}) {
    SCOPED_TRACE(content);
    CTString text(content.c_str());
    const CTString& itself = text;
    text = itself;
    expectHolds(text, content);
    text += itself;
    expectHolds(text, content + content);
    text = text.C_str();
    expectHolds(text, content + content);
    text = text.C_str() + 1;
    expectHolds(text, (content + content).substr(1));
    text += text.C_str() + 2;
    expectHolds(text, (content + content).substr(1) + (content + content).substr(3));
    text = text.GetAt(0);
    expectHolds(text, content.substr(1, 1));
    text.Swap(text);
    expectHolds(text, content.substr(1, 1));
  }
}
