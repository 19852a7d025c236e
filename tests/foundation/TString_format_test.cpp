// Printing into a string.
#include <gtest/gtest.h>

#include <cstdarg>
#include <cwchar>
#include <string>

#include "tests/foundation/string_parts.h"

using foundation_test::expectHolds;
using qvtcl::CTString;

namespace {

const char* const kNull = nullptr;
const std::string kLong = "0123456789abcdefghij";

// Not known to the compiler as a format, as when it comes from elsewhere.
__attribute__((format(printf, 2, 0))) void formatV(CTString& text, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  text.FormatV(format, arguments);
  va_end(arguments);
}

}  // namespace

TEST(TStringFormat, FormatPrintsInPlaceOfTheText) {
  CTString text("what was here before");
  EXPECT_EQ(&text.Format("%d-%s-%02X", 12, "ab", 10), &text);
  expectHolds(text, "12-ab-0A");
  text.Format("%s", kLong.c_str());
  expectHolds(text, kLong);
  text.Format("%c", 'x');
  expectHolds(text, "x");
  formatV(text, "%llu%%", 18446744073709551615ULL);
  expectHolds(text, "18446744073709551615%");
  text.Format("%*d", 60000, 1);
  expectHolds(text, std::string(59999, ' ') + "1");
}

TEST(TStringFormat, FormatOfNothingLeavesItEmpty) {
  for (const char* format : {kNull, "", "%s"}) {
    CTString text("what was here before");
    formatV(text, format, "");
    expectHolds(text, "");
  }
}

TEST(TStringFormat, FormatThatFailsLeavesItEmpty) {
  CTString text("what was here before");
  text.Format("%lc", static_cast<std::wint_t>(0x20AC));  // no such character in the "C" locale
  expectHolds(text, "");
  text.Format("%d", 1);
  expectHolds(text, "1");
}

TEST(TStringFormat, FormatClearsTheTextBeforeItReadsItsArguments) {
  for (const std::string& content : {std::string("abc"), kLong}) {
    CTString text(content.c_str());
    text.Format("<%s>", text.C_str());
    expectHolds(text, "<>");
    text = content.c_str();
    formatV(text, text.C_str());
    expectHolds(text, "");
  }
}
