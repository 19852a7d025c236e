// Numbers to text and back.
#include <gtest/gtest.h>

#include <cinttypes>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>

#include "tests/foundation/string_parts.h"

using foundation_test::expectHolds;
using qvtcl::CTString;
using qvtcl::numbase_t;

namespace {

constexpr numbase_t kBases[] = {qvtcl::kOctal, qvtcl::kDecimal, qvtcl::kHexadecimal};

template <class T>
std::string toString(T value, numbase_t base) {
  CTString text("what was here before");
  const char* result = text.ToString(value, base);
  EXPECT_STREQ(result, text.C_str());
  expectHolds(text, result);
  return result;
}

// The same with the C library's formats.
template <class T>
std::string printed(T value, numbase_t base) {
  using Unsigned = std::make_unsigned_t<T>;
  const auto bits = static_cast<unsigned long long>(static_cast<Unsigned>(value));
  char text[40];
  if (base == qvtcl::kHexadecimal) {
    std::snprintf(text, sizeof text, "0x%llX", bits);
  } else if (base == qvtcl::kOctal) {
    std::snprintf(text, sizeof text, "0%llo", bits);
  } else if (std::is_signed_v<T>) {
    std::snprintf(text, sizeof text, "%lld", static_cast<long long>(value));
  } else {
    std::snprintf(text, sizeof text, "%llu", bits);
  }
  return text;
}

}  // namespace

TEST(TStringNumber, NumbersPrintInThreeBases) {
  EXPECT_EQ(toString(-1, qvtcl::kHexadecimal), "0xFFFFFFFF");
  EXPECT_EQ(toString(-1, qvtcl::kOctal), "037777777777");
  EXPECT_EQ(toString(-1, qvtcl::kDecimal), "-1");
  EXPECT_EQ(toString(-1LL, qvtcl::kHexadecimal), "0xFFFFFFFFFFFFFFFF");
  EXPECT_EQ(toString(-1LL, qvtcl::kOctal), "01777777777777777777777");
  EXPECT_EQ(toString(INT_MIN, qvtcl::kDecimal), "-2147483648");
  EXPECT_EQ(toString(INT_MIN, qvtcl::kHexadecimal), "0x80000000");
  EXPECT_EQ(toString(INT_MAX, qvtcl::kDecimal), "2147483647");
  EXPECT_EQ(toString(UINT_MAX, qvtcl::kDecimal), "4294967295");
  EXPECT_EQ(toString(LLONG_MIN, qvtcl::kDecimal), "-9223372036854775808");
  EXPECT_EQ(toString(LLONG_MAX, qvtcl::kDecimal), "9223372036854775807");
  EXPECT_EQ(toString(ULLONG_MAX, qvtcl::kDecimal), "18446744073709551615");
  EXPECT_EQ(toString(0xabcdef, qvtcl::kHexadecimal), "0xABCDEF");
  CTString text;
  EXPECT_STREQ(text.ToString(-12), "-12");
  EXPECT_STREQ(text.ToString(12U), "12");
  EXPECT_STREQ(text.ToString(-12LL), "-12");
  EXPECT_STREQ(text.ToString(12ULL), "12");
}

TEST(TStringNumber, ZeroKeepsItsPrefix) {
  EXPECT_EQ(toString(0, qvtcl::kDecimal), "0");
  EXPECT_EQ(toString(0, qvtcl::kHexadecimal), "0x0");
  EXPECT_EQ(toString(0, qvtcl::kOctal), "00");
  EXPECT_EQ(toString(0U, qvtcl::kHexadecimal), "0x0");
  EXPECT_EQ(toString(0LL, qvtcl::kOctal), "00");
  EXPECT_EQ(toString(0ULL, qvtcl::kDecimal), "0");
}

TEST(TStringNumber, AnyOtherBaseIsTen) {
  for (const int base : {0, 1, 2, 7, 9, 11, 17, 36, -8, -16}) {
    EXPECT_EQ(toString(-1234, static_cast<numbase_t>(base)), "-1234") << base;
    EXPECT_EQ(toString(1234ULL, static_cast<numbase_t>(base)), "1234") << base;
  }
}

TEST(TStringNumber, RandomNumbersPrintAsTheCLibraryPrintsThemAndReadBack) {
  std::mt19937_64 random(20240611);
  for (int round = 0; round < 20000; ++round) {
    const std::uint64_t bits = random() >> (random() % 64);
    for (const numbase_t base : kBases) {
      const auto i = static_cast<int>(bits);
      const auto u = static_cast<unsigned int>(bits);
      const auto ll = static_cast<long long>(random() % 2 == 0 ? bits : ~bits);
      const auto ull = static_cast<unsigned long long>(bits);
      ASSERT_EQ(toString(i, base), printed(i, base));
      ASSERT_EQ(toString(u, base), printed(u, base));
      ASSERT_EQ(toString(ll, base), printed(ll, base));
      ASSERT_EQ(toString(ull, base), printed(ull, base));
      ASSERT_EQ(CTString(printed(i, base).c_str()).ToInteger(), i);
      ASSERT_EQ(CTString(printed(u, base).c_str()).ToUInteger(), u);
      ASSERT_EQ(CTString(printed(ll, base).c_str()).ToLonglong(), ll);
      ASSERT_EQ(CTString(printed(ull, base).c_str()).ToULonglong(), ull);
    }
  }
}

TEST(TStringNumber, TextReadsByItsPrefix) {
  struct Row {
    const char* text;
    long long expected;
  };
  const Row rows[] = {
      {"", 0},
      {"0", 0},
      {"7", 7},
      {"12", 12},
      {"12abc", 12},
      {"12 34", 12},
      {"abc", 0},
      {"017", 15},
      {"0178", 15},
      {"08", 0},
      {"00", 0},
      {"0a", 0},
      {"0 17", 0},
      {"0x1f", 31},
      {"0X1F", 31},
      {"0x1fg", 31},
      {"0x", 0},
      {"0xg", 0},
      {"0x 1", 0},
      {"0xdeadBEEF1", 0xDEADBEEF1},
      {" \t\v\f\r\n42", 42},
      {"  0x10", 16},
      {"  010", 8},
      {"+5", 5},
      {"-5", -5},
      {"+ 5", 0},
      {"- 5", 0},
      {"+-5", 0},
      {"-+5", 0},
      {"--5", 0},
      {"+", 0},
      {"-", 0},
      {"1.9", 1},
      {"1e3", 1},
      {"\xA0"
       "5",
       0},
      {"5\xB2", 5},
      {"1,000", 1},
      {".5", 0},
      {"/", 0},
      {"5:", 5},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const CTString text(row.text);
    EXPECT_EQ(text.ToLonglong(), row.expected);
    EXPECT_EQ(text.ToULonglong(), static_cast<unsigned long long>(row.expected));
    EXPECT_EQ(text.ToInteger(), static_cast<int>(row.expected));
    EXPECT_EQ(text.ToUInteger(), static_cast<unsigned int>(row.expected));
    expectHolds(text, row.text);
  }
}

TEST(TStringNumber, ASignHidesThePrefixAndADollarSignIsNone) {
  struct Row {
    const char* text;
    long long expected;
  };
  for (const Row& row : {Row{"-0x10", 0}, Row{"+0x10", 0}, Row{"-0X10", 0}, Row{"-017", -17}, Row{"+017", 17},
                         Row{"$1F", 0}, Row{"$17", 0}, Row{" $1F", 0}, Row{"-$1F", 0}, Row{"0$1F", 0}}) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(CTString(row.text).ToInteger(), row.expected);
    EXPECT_EQ(CTString(row.text).ToUInteger(), static_cast<unsigned int>(row.expected));
    EXPECT_EQ(CTString(row.text).ToLonglong(), row.expected);
    EXPECT_EQ(CTString(row.text).ToULonglong(), static_cast<unsigned long long>(row.expected));
  }
  EXPECT_TRUE(CTString("$1F").IsHexadecimal());
}

TEST(TStringNumber, OverflowWraps) {
  EXPECT_EQ(CTString("4294967296").ToInteger(), 0);
  EXPECT_EQ(CTString("4294967301").ToUInteger(), 5u);
  EXPECT_EQ(CTString("2147483648").ToInteger(), INT_MIN);
  EXPECT_EQ(CTString("-2147483648").ToInteger(), INT_MIN);
  EXPECT_EQ(CTString("-2147483649").ToInteger(), INT_MAX);
  EXPECT_EQ(CTString("-1").ToUInteger(), UINT_MAX);
  EXPECT_EQ(CTString("0xFFFFFFFF").ToInteger(), -1);
  EXPECT_EQ(CTString("0x123456789").ToUInteger(), 0x23456789u);
  EXPECT_EQ(CTString("040000000001").ToUInteger(), 1u);
  EXPECT_EQ(CTString("18446744073709551616").ToULonglong(), 0u);
  EXPECT_EQ(CTString("18446744073709551617").ToLonglong(), 1);
  EXPECT_EQ(CTString("9223372036854775808").ToLonglong(), LLONG_MIN);
  EXPECT_EQ(CTString("-9223372036854775808").ToLonglong(), LLONG_MIN);
  EXPECT_EQ(CTString("-1").ToULonglong(), ULLONG_MAX);
  EXPECT_EQ(CTString("0x1FFFFFFFFFFFFFFFF").ToLonglong(), -1);
  EXPECT_EQ(CTString("99999999999999999999").ToULonglong(), 7766279631452241919ULL);
  EXPECT_EQ(CTString("0x123456789ABCDEF0123456789").ToULonglong(), 0xEF0123456789ULL | 0x9ABCDULL << 48);
}

TEST(TStringNumber, IsDecimalLetsOneStrayByteAtTheEndPass) {
  struct Row {
    const char* text;
    bool expected;
  };
  const Row rows[] = {
      {"12", true},     {"0", true},       {"+0", true},   {"-0", true},      {"+5", true},  {"-5", true},
      {" 12", true},    {"\t\r\n0", true}, {"12 ", true},  {"12 \t\n", true}, {"12a", true}, {"12a ", true},
      {"12a \t", true}, {"12\xE4", true},  {"+07", true},  {"-007", true},    {"9", true},   {"12ab", false},
      {"12 a", false},  {"12 34", false},  {"1a2", false}, {"007", false},    {"00", false}, {"0x1", false},
      {"0a", false},    {"0 ", false},     {" 0 ", false}, {"", false},       {"  ", false}, {"abc", false},
      {"$12", false},   {"+-5", false},    {"++5", false},
  };
  for (const Row& row : rows) EXPECT_EQ(CTString(row.text).IsDecimal(), row.expected) << '"' << row.text << '"';
}

TEST(TStringNumber, IsHexadecimalAsksForAPrefix) {
  struct Row {
    const char* text;
    bool expected;
  };
  const Row rows[] = {
      {"$1F", true},       {"0x1F", true},       {"0X1f", true},
      {" $1f", true},      {"\t0xabcDEF", true}, {"$1F ", true},
      {"0x1F \r\n", true}, {"0x0", true},        {"$0123456789abcdefABCDEF0123", true},
      {"1F", false},       {"12", false},        {"0", false},
      {"01F", false},      {"x1F", false},       {"$1G", false},
      {"0x1G", false},     {"$1F x", false},     {"$1 F", false},
      {"$$1", false},      {"0x0x1", false},     {"$0x1", false},
      {"+0x1", false},     {"-$1", false},       {"", false},
      {"  ", false},       {"$g", false},        {"$@", false},
      {"$`", false},       {"$\xE4", false},
  };
  for (const Row& row : rows) EXPECT_EQ(CTString(row.text).IsHexadecimal(), row.expected) << '"' << row.text << '"';
}
