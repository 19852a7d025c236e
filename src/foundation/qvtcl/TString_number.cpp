// Numbers to text and back.
#include <cctype>
#include <iterator>
#include <limits>
#include <string_view>

#include "foundation/qvtcl/TString.h"

namespace qvtcl {
namespace {

struct NumberText {
  explicit NumberText(unsigned long long magnitude, bool negative = false) {
    print(magnitude, 10, negative ? "-" : "");
  }
  NumberText(unsigned long long bits, numbase_t base) {
    print(bits, base == kOctal ? 8 : 16, base == kOctal ? "0" : "0x");
  }

  const char* text() const { return begin; }

 private:
  // From the last digit to the first.
  void print(unsigned long long value, unsigned base, std::string_view prefix) {
    do {
      *--begin = "0123456789ABCDEF"[value % base];
      value /= base;
    } while (value != 0);
    for (auto c = prefix.rbegin(); c != prefix.rend(); ++c) *--begin = *c;
  }

  char bytes[26] = {};  // 22 octal digits, a prefix, NUL
  char* begin = std::end(bytes) - 1;
};

bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isHexDigit(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

std::string_view withoutLeadingSpaces(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  return text;
}

bool allSpaces(std::string_view text) { return withoutLeadingSpaces(text).empty(); }

bool hasHexPrefix(std::string_view text) {
  return text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

// 16 and more for a byte that is no digit.
unsigned digitValue(char c) {
  if (isDigit(c)) return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
  return std::numeric_limits<unsigned>::max();
}

// The value, negated where a minus sign stood before it; overflow wraps.
unsigned long long ConvertStringToNumber(std::string_view text) {
  text = withoutLeadingSpaces(text);
  if (text.empty()) return 0;
  const bool negative = text.front() == '-';
  unsigned base = 10;
  if (negative || text.front() == '+') {
    text.remove_prefix(1);
  } else if (hasHexPrefix(text)) {
    base = 16;
    text.remove_prefix(2);
  } else if (text.front() == '0') {
    base = 8;
  }
  unsigned long long value = 0;
  for (const char c : text) {
    const unsigned digit = digitValue(c);
    if (digit >= base) break;
    value = value * base + digit;
  }
  return negative ? 0 - value : value;
}

}  // namespace

CTString& CTString::operator+=(int value) { return *this += static_cast<long long>(value); }
CTString& CTString::operator+=(unsigned int value) { return *this += static_cast<unsigned long long>(value); }
CTString& CTString::operator+=(long long value) {
  const auto bits = static_cast<unsigned long long>(value);
  return *this += NumberText(value < 0 ? 0 - bits : bits, value < 0).text();
}
CTString& CTString::operator+=(unsigned long long value) { return *this += NumberText(value).text(); }

const char* CTString::ToString(int value, numbase_t base) {
  if (base == kOctal || base == kHexadecimal) return ToString(static_cast<unsigned int>(value), base);
  return ToString(static_cast<long long>(value), base);
}

const char* CTString::ToString(unsigned int value, numbase_t base) {
  return ToString(static_cast<unsigned long long>(value), base);
}

const char* CTString::ToString(long long value, numbase_t base) {
  if (base == kOctal || base == kHexadecimal) return ToString(static_cast<unsigned long long>(value), base);
  Clear();
  return (*this += value).C_str();
}

const char* CTString::ToString(unsigned long long value, numbase_t base) {
  Clear();
  if (base == kOctal || base == kHexadecimal) return (*this += NumberText(value, base).text()).C_str();
  return (*this += value).C_str();
}

int CTString::ToInteger() const { return static_cast<int>(ConvertStringToNumber(view())); }
unsigned int CTString::ToUInteger() const { return static_cast<unsigned int>(ConvertStringToNumber(view())); }
long long CTString::ToLonglong() const { return static_cast<long long>(ConvertStringToNumber(view())); }
unsigned long long CTString::ToULonglong() const { return ConvertStringToNumber(view()); }

bool CTString::IsDecimal() const {
  std::string_view text = withoutLeadingSpaces(view());
  if (text.empty()) return false;
  if (text.front() == '+' || text.front() == '-') {
    text.remove_prefix(1);
  } else if (text.front() == '0') {
    return text.size() == 1;
  }
  while (!text.empty() && isDigit(text.front())) text.remove_prefix(1);
  return text.empty() || allSpaces(text.substr(1));
}

bool CTString::IsHexadecimal() const {
  std::string_view text = withoutLeadingSpaces(view());
  if (!text.empty() && text.front() == '$') {
    text.remove_prefix(1);
  } else if (hasHexPrefix(text)) {
    text.remove_prefix(2);
  } else {
    return false;
  }
  while (!text.empty() && isHexDigit(text.front())) text.remove_prefix(1);
  return allSpaces(text);
}

}  // namespace qvtcl
