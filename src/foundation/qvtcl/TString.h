// The library's own byte string: path names, parts of answers, formatted numbers.
//
// A text is a run of single bytes ended by NUL, of no particular encoding. Up to 7 bytes live in the object itself,
// longer texts in one heap block that grows to the exact rounded size.
//
// A position is an index, or nposi for the end, or nposi - 1 for the last byte; any other one above the length is
// invalid: the call does nothing, or returns nposi. nolen as a length means all the rest. A null text counts as empty.
//
// Kept: the copy step refuses a text that does not fit the largest block (65520 bytes and more): length is then as
// asked, while no byte arrives, and reading finds zero bytes or nothing. Callers stay below. Pinned by
// TString_storage_test "TheCapKeepsTheLengthAndRefusesTheBytes".
//
// Nothing throws: where memory is short the block stays unset and the text reads as empty.
// Threads: an object belongs to one thread.
#pragma once

#include <compare>
#include <concepts>
#include <cstdarg>
#include <cstddef>
#include <string_view>

namespace qvtcl {

enum numbase_t : int { kOctal = 8, kDecimal = 10, kHexadecimal = 16 };  // any other value acts as 10

class CTString {
 public:
  static constexpr unsigned long nposi = ~0UL;
  static constexpr unsigned long nolen = ~0UL;

  CTString() noexcept = default;
  CTString(const CTString& other);
  CTString(CTString&& other) noexcept;    // leaves other empty
  explicit CTString(unsigned long size);  // empty, with room for size bytes
  // From position on, at most count bytes; an invalid position gives an empty string.
  CTString(const char* text, unsigned long position = 0, unsigned long count = nolen);
  CTString(const CTString& text, unsigned long position, unsigned long count = nolen);
  CTString(unsigned long count, char c);  // c count times
  virtual ~CTString();

  CTString& operator=(const CTString& other);
  CTString& operator=(CTString&& other) noexcept;  // leaves other empty
  CTString& operator=(const char* text);
  CTString& operator=(char c);

  // Numbers are appended in decimal.
  CTString& operator+=(const CTString& text);
  CTString& operator+=(const char* text);
  CTString& operator+=(char c);
  CTString& operator+=(int value);
  CTString& operator+=(unsigned int value);
  CTString& operator+=(long long value);
  CTString& operator+=(unsigned long long value);

  // Kept: an empty side is not compared as text: empty against full gives minus the other's length, full against empty
  // its own length. Everything else is strcmp's answer. Pinned by TString_test "AnEmptySideIsComparedByLength".
  int Compare(const CTString& other) const;
  int Compare(const char* other) const;
  int Compare(char other) const;
  int CompareNoCase(const CTString& other) const;
  int CompareNoCase(const char* other) const;
  int CompareNoCase(char other) const;

  // Makes room for size bytes. Returns the size of the storage afterwards, ending NUL included.
  unsigned long Reserve(unsigned long size);
  unsigned long Capacity() const;  // bytes of text that fit without another block
  void Clear();                    // a heap block is kept, zeroed
  void Swap(CTString& other) noexcept;
  const char* C_str() const;  // never null
  unsigned long Length() const { return length; }
  bool IsEmpty() const { return length == 0; }

  char GetAt(unsigned long position) const;  // 0 for an invalid position
  void SetAt(unsigned long position, char c);

  // Position of the first (RFind: last) match that begins at position or behind (RFind: before) it, or nposi. A NUL
  // byte or an empty text is never found.
  unsigned long Find(char c, unsigned long position = 0) const;
  unsigned long Find(const char* text, unsigned long position = 0) const;
  unsigned long Find(const CTString& text, unsigned long position = 0) const;
  unsigned long FindNoCase(char c, unsigned long position = 0) const;
  unsigned long FindNoCase(const char* text, unsigned long position = 0) const;
  unsigned long FindNoCase(const CTString& text, unsigned long position = 0) const;
  unsigned long RFind(char c, unsigned long position = nposi) const;
  unsigned long RFind(const char* text, unsigned long position = nposi) const;
  unsigned long RFind(const CTString& text, unsigned long position = nposi) const;
  unsigned long RFindNoCase(char c, unsigned long position = nposi) const;
  unsigned long RFindNoCase(const char* text, unsigned long position = nposi) const;
  unsigned long RFindNoCase(const CTString& text, unsigned long position = nposi) const;

  // Position of the first (last) byte that is one of the set, or nposi.
  unsigned long FindOneOf(const char* set, unsigned long position = 0) const;
  unsigned long FindOneOf(const CTString& set, unsigned long position = 0) const;
  unsigned long RFindOneOf(const char* set, unsigned long position = nposi) const;
  unsigned long RFindOneOf(const CTString& set, unsigned long position = nposi) const;
  bool IsDelimiter(const char* set, unsigned long position) const;

  // True if the text changed. Replace and Remove act on the first match from position on, RReplace and RRemove on the
  // last one up to it: one occurrence, never all. A character replaced by NUL cuts the text there. Inserting into an
  // empty string works at position 0 only.
  bool Erase(unsigned long position, unsigned long count = nolen);
  bool Insert(unsigned long position, char c);
  bool Insert(unsigned long position, const char* text);
  bool Insert(unsigned long position, const CTString& text);
  bool Replace(char from, char to, unsigned long position = 0);
  bool Replace(const char* from, const char* to, unsigned long position = 0);
  bool Replace(const CTString& from, const CTString& to, unsigned long position = 0);
  bool RReplace(char from, char to, unsigned long position = nposi);
  bool RReplace(const char* from, const char* to, unsigned long position = nposi);
  bool RReplace(const CTString& from, const CTString& to, unsigned long position = nposi);
  bool Remove(char c, unsigned long position = 0);
  bool Remove(const char* text, unsigned long position = 0);
  bool Remove(const CTString& text, unsigned long position = 0);
  bool RRemove(char c, unsigned long position = nposi);
  bool RRemove(const char* text, unsigned long position = nposi);
  bool RRemove(const CTString& text, unsigned long position = nposi);

  CTString& ToUpper();
  CTString& ToLower();

  // Without a set: whitespace as isspace has it.
  CTString& Trim();
  CTString& TrimLeft();
  CTString& TrimRight();
  CTString& Trim(const char* set);
  CTString& TrimLeft(const char* set);
  CTString& TrimRight(const char* set);

  CTString Left(unsigned long count) const;
  CTString Right(unsigned long count) const;
  CTString Mid(unsigned long position, unsigned long count = nolen) const;
  CTString LeftFrom(unsigned long position) const;   // up to and including position
  CTString RightFrom(unsigned long position) const;  // from position on

  // The field at position, a delimiter there being stepped over; position moves to the delimiter behind the field, or
  // to nposi behind the last one. A delimiter between a pair of double quotes does not count; the quotes stay. trim
  // takes whitespace off both ends of the field.
  CTString GetToken(const char* delimiters, unsigned long& position, bool trim) const;

  // As printf. Nothing to print leaves the string empty.
  CTString& Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
  CTString& FormatV(const char* format, std::va_list arguments) __attribute__((format(printf, 2, 0)));

  // Replaces the text by the number; the result is C_str(), valid until the string changes. Base 16 writes "0x" and
  // upper-case digits, base 8 a leading "0"; both print the bits as unsigned.
  const char* ToString(int value, numbase_t base = kDecimal);
  const char* ToString(unsigned int value, numbase_t base = kDecimal);
  const char* ToString(long long value, numbase_t base = kDecimal);
  const char* ToString(unsigned long long value, numbase_t base = kDecimal);

  // The number at the start, behind whitespace; overflow wraps, reading ends silently at the first byte that does not
  // fit. "0x1f" is hexadecimal, "017" octal, everything else decimal.
  // Kept: a sign or a dollar sign keeps a prefix from being seen: "-0x10" and "$1F" read 0, although IsHexadecimal
  // takes the dollar sign. Pinned by TString_number_test
  // "ASignHidesThePrefixAndADollarSignIsNone".
  int ToInteger() const;
  unsigned int ToUInteger() const;
  long long ToLonglong() const;
  unsigned long long ToULonglong() const;
  // Kept: one stray byte behind the digits passes ("12a"), since the byte that ends the digits is never looked at; a
  // leading 0 with anything behind it fails. Pinned by TString_number_test
  // "IsDecimalLetsOneStrayByteAtTheEndPass".
  bool IsDecimal() const;
  bool IsHexadecimal() const;  // "$1F" or "0x1F"

  // Index of a position, or nposi for an invalid one.
  unsigned long GetProcPosi(unsigned long position) const;
  // count, cut to end with the text.
  unsigned long GetProcStrLen(unsigned long position, unsigned long count) const;
  bool IsValidPosi(unsigned long position) const;  // maps to an index below the length

  // Size of the block for n bytes: the next multiple of 16 above n, at most 65520.
  static unsigned long CalcStrMemSize(unsigned long n);
  // Copies count bytes, and a NUL behind them if asked, and returns count; 0, with nothing copied, for a null side, no
  // bytes, or a destination without more than count bytes behind the offset. The ranges may overlap.
  static unsigned long CopyString(char* destination, unsigned long destinationOffset, unsigned long destinationSize,
                                  const char* source, unsigned long sourceOffset, unsigned long count, bool terminate);

 private:
  static constexpr unsigned long kSmallBytes = 8;

  unsigned long AllocStrMem(unsigned long n);
  unsigned long ExpandStrMem(unsigned long n);
  void AssignString(const char* text, unsigned long n);
  void AppendString(const char* text, unsigned long n);
  // Puts n bytes of text in place of count bytes at index.
  void spliceString(unsigned long index, unsigned long count, const char* text, unsigned long n);
  void shrinkToSmall();
  void keepRange(unsigned long begin, unsigned long end);

  char* storage() { return isSmall ? small : heap; }
  // The bytes that are really there: fewer than length only where the copy step refused.
  std::string_view view() const;
  const char* wholeText() const;  // null where bytes are missing
  unsigned long find(std::string_view text, unsigned long position) const;
  unsigned long rfind(std::string_view text, unsigned long position) const;
  CTString upperCopy() const;

  unsigned long length = 0;    // bytes of text
  unsigned long capacity = 0;  // size of the heap block, 0 without one
  char* heap = nullptr;
  char small[kSmallBytes] = {};
  bool isSmall = true;
};

inline bool operator==(const CTString& left, const CTString& right) { return left.Compare(right) == 0; }
inline bool operator==(const CTString& left, const char* right) { return left.Compare(right) == 0; }
inline bool operator==(const CTString& left, char right) { return left.Compare(right) == 0; }
inline std::strong_ordering operator<=>(const CTString& left, const CTString& right) {
  return left.Compare(right) <=> 0;
}
inline std::strong_ordering operator<=>(const CTString& left, const char* right) { return left.Compare(right) <=> 0; }
inline std::strong_ordering operator<=>(const CTString& left, char right) { return left.Compare(right) <=> 0; }

// What can stand beside a CTString in a sum.
template <class T>
concept CTStringOperand =
    std::same_as<T, const char*> || std::same_as<T, char*> || std::same_as<T, char> || std::same_as<T, int> ||
    std::same_as<T, unsigned int> || std::same_as<T, long long> || std::same_as<T, unsigned long long>;

inline CTString operator+(const CTString& left, const CTString& right) {
  CTString sum(left);
  sum += right;
  return sum;
}
template <CTStringOperand T>
CTString operator+(const CTString& left, T right) {
  CTString sum(left);
  sum += right;
  return sum;
}
template <CTStringOperand T>
CTString operator+(T left, const CTString& right) {
  CTString sum;
  sum += left;
  sum += right;
  return sum;
}

}  // namespace qvtcl
