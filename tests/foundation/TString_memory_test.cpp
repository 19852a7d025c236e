// What a string does when calloc fails: the linker sends the core's calls here.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>

#include "tests/foundation/string_parts.h"

using foundation_test::partsOf;
using qvtcl::CTString;

namespace {

constexpr long kForEver = 1000000;

long firstFailing = -1;  // negative: every call succeeds
long failures = 0;       // how many calls fail from there on
long calls = 0;

}  // namespace

extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);

void* __wrap_calloc(std::size_t count, std::size_t size) {
  const long call = firstFailing < 0 ? -1 : calls++;
  if (firstFailing >= 0 && call >= firstFailing && call < firstFailing + failures) return nullptr;
  return __real_calloc(count, size);
}
}

namespace {

// While code runs, so many calls of calloc fail from the call of that number on.
void failingFrom(long call, const std::function<void()>& code, long count = kForEver) {
  calls = 0;
  failures = count;
  firstFailing = call;
  code();
  firstFailing = -1;
}

const char* const kTwenty = "a text of 20 bytes..";

// Whatever memory was to be had: the text can be read, and what it says about itself does not contradict itself.
void expectSound(const CTString& text) {
  const auto parts = partsOf(text);
  ASSERT_NE(text.C_str(), nullptr);
  const unsigned long readable = std::string(text.C_str()).size();
  EXPECT_LE(readable, std::max(text.Length(), 7UL));
  EXPECT_EQ(parts.capacity == 0, parts.heap == nullptr);
  for (unsigned long i = 0; i < text.Length(); ++i) text.GetAt(i);
  EXPECT_EQ(text.GetAt(text.Length()), 0);
  text.Find("zz");
  text.RFind("zz");
  text.FindNoCase("zz");
  text.FindOneOf("zz");
  text.Compare("zz");
  text.Mid(1);
  text.ToInteger();
  text.IsDecimal();
  unsigned long position = 0;
  text.GetToken(",", position, true);
}

}  // namespace

TEST(TStringMemory, AFailedBlockStaysUnsetAndNothingIsCopied) {
  failingFrom(0, [] {
    const CTString text(kTwenty);
    EXPECT_EQ(partsOf(text).heap, nullptr);
    EXPECT_EQ(partsOf(text).capacity, 0u);
    EXPECT_STREQ(text.C_str(), "");
    expectSound(text);
    const CTString copy(text);
    EXPECT_STREQ(copy.C_str(), "");
    expectSound(copy);
  });
}

TEST(TStringMemory, SmallTextsNeedNoBlock) {
  failingFrom(0, [] {
    CTString text("1234567");
    EXPECT_STREQ(text.C_str(), "1234567");
    text = "abc";
    text += 'd';
    text.Insert(0, "xy");
    EXPECT_STREQ(text.C_str(), "xyabcd");
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(text.Capacity(), 7u);
    text.Reserve(100);
    EXPECT_EQ(text.Capacity(), 7u);
    EXPECT_STREQ(text.C_str(), "xyabcd");
  });
}

TEST(TStringMemory, AStringIsUsedAgainAfterwards) {
  CTString text(kTwenty);
  failingFrom(0, [&text] { text = "a text of more than 32 bytes, which needs another block"; });
  expectSound(text);
  text = kTwenty;
  foundation_test::expectHolds(text, kTwenty);
  text = "abc";
  foundation_test::expectHolds(text, "abc");
}

TEST(TStringMemory, FormatWithoutMemoryIsEmpty) {
  CTString text("old");
  failingFrom(0, [&text] { text.Format("%d", 1); });
  foundation_test::expectHolds(text, "");
}

TEST(TStringMemory, EveryOperationStaysSoundWhereverMemoryEnds) {
  const std::pair<const char*, std::function<void(CTString&)>> operations[] = {
      {"assignment", [](CTString& text) { text = "a text of more than 32 bytes, which needs a block"; }},
      {"copy assignment", [](CTString& text) { text = CTString("a text of more than 32 bytes, which needs a block"); }},
      {"append", [](CTString& text) { text += "another text of more than sixteen bytes"; }},
      {"append itself", [](CTString& text) { text += text; }},
      {"append its own bytes", [](CTString& text) { text += text.C_str(); }},
      {"replace with its own bytes", [](CTString& text) { text.Replace("x", text.C_str()); }},
      {"append a number", [](CTString& text) { text += 18446744073709551615ULL; }},
      {"sum", [](CTString& text) { text = "<" + text + ">"; }},
      {"copy", [](CTString& text) { expectSound(CTString(text)); }},
      {"part", [](CTString& text) { text = text.Mid(1, 12); }},
      {"reserve", [](CTString& text) { text.Reserve(500); }},
      {"erase", [](CTString& text) { text.Erase(10); }},
      {"insert", [](CTString& text) { text.Insert(3, "another text of more than sixteen bytes"); }},
      {"insert itself", [](CTString& text) { text.Insert(3, text); }},
      {"replace", [](CTString& text) { text.Replace("e", "another text of more than sixteen bytes"); }},
      {"replace from behind", [](CTString& text) { text.RReplace("e", "another text of more than sixteen bytes"); }},
      {"trim", [](CTString& text) { text.Trim("a "); }},
      {"upper case", [](CTString& text) { text.ToUpper(); }},
      {"without case", [](CTString& text) { text.CompareNoCase("A TEXT"); }},
      {"number", [](CTString& text) { text.ToString(18446744073709551615ULL, qvtcl::kOctal); }},
      {"format", [](CTString& text) { text.Format("%040d", 1); }},
      {"swap", [](CTString& text) { CTString("a text of 20 bytes..").Swap(text); }},
      {"clear", [](CTString& text) { text.Clear(); }},
  };
  for (const auto& [name, operation] : operations) {
    for (const char* before : {"", "abcdefg", kTwenty}) {
      for (long call = 0; call < 6; ++call) {
        for (const long count : {1L, kForEver}) {
          SCOPED_TRACE(std::string(name) + " of '" + before + "' from call " + std::to_string(call));
          CTString text(before);
          const auto twice = [&text, &act = operation] {
            act(text);
            expectSound(text);
            act(text);  // on what the first one left
            expectSound(text);
          };
          failingFrom(call, twice, count);
          expectSound(text);
        }
      }
    }
  }
}
