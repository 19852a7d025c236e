#include "foundation/qvtcl/TString.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <utility>

namespace qvtcl {
namespace {

constexpr unsigned long kLargestBlock = 65520;
constexpr unsigned long kBlockStep = 16;
constexpr char kSpaces[] = " \t\n\v\f\r";  // what isspace knows

std::string_view viewOf(const char* text) { return text == nullptr ? std::string_view() : text; }

// A NUL is no character.
std::string_view viewOf(const char& c) { return c == '\0' ? std::string_view() : std::string_view(&c, 1); }

char upper(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }
char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

int compareTexts(std::string_view left, std::string_view right, const char* leftText, const char* rightText) {
  if (left.empty() || right.empty()) return static_cast<int>(left.size()) - static_cast<int>(right.size());
  return std::strcmp(leftText, rightText);
}

}  // namespace

// --- storage

unsigned long CTString::CalcStrMemSize(unsigned long n) {
  return n >= kLargestBlock ? kLargestBlock : (n + kBlockStep) / kBlockStep * kBlockStep;
}

unsigned long CTString::CopyString(char* destination, unsigned long destinationOffset, unsigned long destinationSize,
                                   const char* source, unsigned long sourceOffset, unsigned long count,
                                   bool terminate) {
  if (destination == nullptr || source == nullptr || count == 0) return 0;
  if (destinationOffset > destinationSize || destinationSize - destinationOffset <= count) return 0;
  std::memmove(destination + destinationOffset, source + sourceOffset, count);
  if (terminate) destination[destinationOffset + count] = '\0';
  return count;
}

unsigned long CTString::AllocStrMem(unsigned long n) {
  std::free(heap);
  heap = nullptr;
  capacity = 0;
  if (n < kSmallBytes) return kSmallBytes;
  heap = static_cast<char*>(std::calloc(CalcStrMemSize(n), 1));
  if (heap != nullptr) capacity = CalcStrMemSize(n);
  return CalcStrMemSize(n);
}

unsigned long CTString::ExpandStrMem(unsigned long n) {
  if (capacity > n) return capacity;
  char* const old = std::exchange(heap, nullptr);
  const unsigned long oldBytes = std::exchange(capacity, 0UL);
  const unsigned long size = AllocStrMem(n);
  if (old != nullptr && heap != nullptr) std::memcpy(heap, old, std::min(oldBytes, capacity));
  std::free(old);
  return size;
}

void CTString::AssignString(const char* text, unsigned long n) {
  length = n;
  isSmall = n < kSmallBytes;
  if (isSmall) {
    char kept[kSmallBytes] = {};  // text may lie in the block that is freed
    CopyString(kept, 0, kSmallBytes, text, 0, n, true);
    AllocStrMem(n);
    std::memcpy(small, kept, kSmallBytes);
    return;
  }
  char* const old = capacity > n ? nullptr : std::exchange(heap, nullptr);
  if (heap == nullptr) AllocStrMem(n);
  if (CopyString(heap, 0, capacity, text, 0, n, false) != 0) {
    std::memset(heap + n, 0, capacity - n);
  } else if (heap != nullptr) {
    std::memset(heap, 0, capacity);
  }
  std::free(old);
}

void CTString::AppendString(const char* text, unsigned long n) { spliceString(length, 0, text, n); }

void CTString::spliceString(unsigned long index, unsigned long count, const char* text, unsigned long n) {
  const std::string_view whole = view();
  if (text != nullptr && n != 0 && std::greater_equal<>()(text, whole.data()) &&
      std::less<>()(text, whole.data() + whole.size() + 1)) {
    const CTString copy(text, 0, n);  // the bytes are about to move
    return spliceString(index, count, copy.C_str(), copy.view().size());
  }
  const unsigned long newLength = length - count + n;
  const unsigned long behind = whole.size() - std::min<unsigned long>(index + count, whole.size());
  if (newLength >= kSmallBytes) {
    ExpandStrMem(newLength);
    if (isSmall) CopyString(heap, 0, capacity, small, 0, length, true);
    isSmall = false;
  }
  const unsigned long room = isSmall ? kSmallBytes : capacity;
  if (newLength < room) {
    char* const bytes = storage();
    std::memmove(bytes + index + n, bytes + index + count, behind);
    CopyString(bytes, index, room, text, 0, n, false);
    std::memset(bytes + index + n + behind, 0, room - index - n - behind);
  }
  length = newLength;
  shrinkToSmall();
}

// A text that has fallen below 8 bytes moves into the object.
void CTString::shrinkToSmall() {
  if (isSmall || length >= kSmallBytes) return;
  std::memset(small, 0, kSmallBytes);
  CopyString(small, 0, kSmallBytes, heap, 0, length, true);
  isSmall = true;
  AllocStrMem(0);
}

std::string_view CTString::view() const {
  if (isSmall) return {small, length};
  return heap == nullptr ? std::string_view("") : std::string_view(heap, std::min(length, capacity - 1));
}

const char* CTString::wholeText() const { return view().size() == length ? C_str() : nullptr; }

// --- life

CTString::CTString(const CTString& other) { AssignString(other.wholeText(), other.length); }

CTString::CTString(CTString&& other) noexcept { Swap(other); }

CTString::CTString(unsigned long size) { Reserve(size); }

CTString::CTString(const char* text, unsigned long position, unsigned long count) {
  const std::string_view all = viewOf(text);
  if (position == nposi - 1 && !all.empty()) position = all.size() - 1;
  if (position >= all.size()) return;
  AssignString(text + position, std::min<unsigned long>(count, all.size() - position));
}

CTString::CTString(const CTString& text, unsigned long position, unsigned long count) {
  const unsigned long index = text.GetProcPosi(position);
  if (index >= text.view().size()) return;
  AssignString(text.C_str() + index, std::min<unsigned long>(count, text.view().size() - index));
}

CTString::CTString(unsigned long count, char c) {
  if (c == '\0') return;
  length = count;
  isSmall = count < kSmallBytes;
  if (!isSmall) AllocStrMem(count);
  if (count < (isSmall ? kSmallBytes : capacity)) std::memset(storage(), c, count);
}

CTString::~CTString() { std::free(heap); }

CTString& CTString::operator=(const CTString& other) {
  if (this != &other) AssignString(other.wholeText(), other.length);
  return *this;
}

CTString& CTString::operator=(CTString&& other) noexcept {
  if (this == &other) return *this;
  Swap(other);
  other.AssignString(nullptr, 0);
  return *this;
}

CTString& CTString::operator=(const char* text) {
  AssignString(text, viewOf(text).size());
  return *this;
}

CTString& CTString::operator=(char c) {
  AssignString(&c, viewOf(c).size());
  return *this;
}

unsigned long CTString::Reserve(unsigned long size) {
  if (size <= Capacity()) return Capacity() + 1;
  return ExpandStrMem(size);
}

unsigned long CTString::Capacity() const { return capacity == 0 ? kSmallBytes - 1 : capacity - 1; }

void CTString::Clear() {
  length = 0;
  isSmall = true;
  std::memset(small, 0, kSmallBytes);
  if (heap != nullptr) std::memset(heap, 0, capacity);
}

void CTString::Swap(CTString& other) noexcept {
  std::swap(length, other.length);
  std::swap(capacity, other.capacity);
  std::swap(heap, other.heap);
  std::swap(small, other.small);
  std::swap(isSmall, other.isSmall);
}

const char* CTString::C_str() const {
  if (length == 0 || (!isSmall && heap == nullptr)) return "";
  return isSmall ? small : heap;
}

// --- appending and comparing

CTString& CTString::operator+=(const CTString& text) {
  AppendString(text.C_str(), text.view().size());
  return *this;
}

CTString& CTString::operator+=(const char* text) {
  AppendString(text, viewOf(text).size());
  return *this;
}

CTString& CTString::operator+=(char c) {
  AppendString(&c, viewOf(c).size());
  return *this;
}

int CTString::Compare(const CTString& other) const {
  return compareTexts(view(), other.view(), C_str(), other.C_str());
}

int CTString::Compare(const char* other) const { return compareTexts(view(), viewOf(other), C_str(), other); }

int CTString::Compare(char other) const {
  const char text[] = {other, '\0'};
  return Compare(text);
}

int CTString::CompareNoCase(const CTString& other) const { return upperCopy().Compare(other.upperCopy()); }

int CTString::CompareNoCase(const char* other) const { return CompareNoCase(CTString(other)); }

int CTString::CompareNoCase(char other) const { return upperCopy().Compare(upper(other)); }

// --- positions and bytes

unsigned long CTString::GetProcPosi(unsigned long position) const {
  if (position == nposi) return length;
  if (position == nposi - 1) return length == 0 ? nposi : length - 1;
  return position > length ? nposi : position;
}

unsigned long CTString::GetProcStrLen(unsigned long position, unsigned long count) const {
  const unsigned long index = GetProcPosi(position);
  return index == nposi ? 0 : std::min(count, length - index);
}

bool CTString::IsValidPosi(unsigned long position) const { return GetProcPosi(position) < length; }

char CTString::GetAt(unsigned long position) const {
  const unsigned long index = GetProcPosi(position);
  return index < view().size() ? view()[index] : '\0';
}

void CTString::SetAt(unsigned long position, char c) {
  const unsigned long index = GetProcPosi(position);
  if (index < view().size()) storage()[index] = c;
}

// --- searching

unsigned long CTString::find(std::string_view text, unsigned long position) const {
  const unsigned long index = GetProcPosi(position);
  if (index == nposi || text.empty()) return nposi;
  return view().find(text, index);  // npos is all bits set, as nposi is
}

unsigned long CTString::rfind(std::string_view text, unsigned long position) const {
  const unsigned long index = GetProcPosi(position);
  if (index == nposi || text.empty()) return nposi;
  return view().rfind(text, index);
}

CTString CTString::upperCopy() const { return CTString(*this).ToUpper(); }

unsigned long CTString::Find(char c, unsigned long position) const { return find(viewOf(c), position); }
unsigned long CTString::Find(const char* text, unsigned long position) const { return find(viewOf(text), position); }
unsigned long CTString::Find(const CTString& text, unsigned long position) const { return find(text.view(), position); }
unsigned long CTString::RFind(char c, unsigned long position) const { return rfind(viewOf(c), position); }
unsigned long CTString::RFind(const char* text, unsigned long position) const { return rfind(viewOf(text), position); }
unsigned long CTString::RFind(const CTString& text, unsigned long position) const {
  return rfind(text.view(), position);
}

unsigned long CTString::FindNoCase(char c, unsigned long position) const {
  return upperCopy().Find(upper(c), position);
}
unsigned long CTString::FindNoCase(const char* text, unsigned long position) const {
  return FindNoCase(CTString(text), position);
}
unsigned long CTString::FindNoCase(const CTString& text, unsigned long position) const {
  return upperCopy().Find(text.upperCopy(), position);
}
unsigned long CTString::RFindNoCase(char c, unsigned long position) const {
  return upperCopy().RFind(upper(c), position);
}
unsigned long CTString::RFindNoCase(const char* text, unsigned long position) const {
  return RFindNoCase(CTString(text), position);
}
unsigned long CTString::RFindNoCase(const CTString& text, unsigned long position) const {
  return upperCopy().RFind(text.upperCopy(), position);
}

unsigned long CTString::FindOneOf(const char* set, unsigned long position) const {
  const unsigned long index = GetProcPosi(position);
  return index == nposi ? nposi : view().find_first_of(viewOf(set), index);
}
unsigned long CTString::FindOneOf(const CTString& set, unsigned long position) const {
  return FindOneOf(set.C_str(), position);
}
unsigned long CTString::RFindOneOf(const char* set, unsigned long position) const {
  const unsigned long index = GetProcPosi(position);
  return index == nposi ? nposi : view().find_last_of(viewOf(set), index);
}
unsigned long CTString::RFindOneOf(const CTString& set, unsigned long position) const {
  return RFindOneOf(set.C_str(), position);
}

bool CTString::IsDelimiter(const char* set, unsigned long position) const {
  const char c = GetAt(position);
  return c != '\0' && viewOf(set).find(c) != std::string_view::npos;
}

// --- editing

bool CTString::Erase(unsigned long position, unsigned long count) {
  const unsigned long index = GetProcPosi(position);
  if (index >= length || count == 0) return false;
  spliceString(index, GetProcStrLen(index, count), nullptr, 0);
  return true;
}

bool CTString::Insert(unsigned long position, const CTString& text) {
  const unsigned long index = IsEmpty() && position != 0 ? nposi : GetProcPosi(position);
  if (index == nposi || text.IsEmpty()) return false;
  spliceString(index, 0, text.C_str(), text.view().size());
  return true;
}

bool CTString::Insert(unsigned long position, const char* text) { return Insert(position, CTString(text)); }

bool CTString::Insert(unsigned long position, char c) { return Insert(position, CTString(1, c)); }

bool CTString::Replace(const CTString& from, const CTString& to, unsigned long position) {
  const unsigned long index = Find(from, position);
  if (index == nposi) return false;
  spliceString(index, from.length, to.C_str(), to.view().size());
  return true;
}

bool CTString::RReplace(const CTString& from, const CTString& to, unsigned long position) {
  const unsigned long index = RFind(from, position);
  if (index == nposi) return false;
  spliceString(index, from.length, to.C_str(), to.view().size());
  return true;
}

bool CTString::Replace(char from, char to, unsigned long position) {
  if (to == '\0') return Erase(Find(from, position));
  return Replace(CTString(1, from), CTString(1, to), position);
}

bool CTString::RReplace(char from, char to, unsigned long position) {
  if (to == '\0') return Erase(RFind(from, position));
  return RReplace(CTString(1, from), CTString(1, to), position);
}

bool CTString::Replace(const char* from, const char* to, unsigned long position) {
  return Replace(CTString(from), CTString(to), position);
}
bool CTString::RReplace(const char* from, const char* to, unsigned long position) {
  return RReplace(CTString(from), CTString(to), position);
}
bool CTString::Remove(char c, unsigned long position) { return Replace(CTString(1, c), CTString(), position); }
bool CTString::Remove(const char* text, unsigned long position) {
  return Replace(CTString(text), CTString(), position);
}
bool CTString::Remove(const CTString& text, unsigned long position) { return Replace(text, CTString(), position); }
bool CTString::RRemove(char c, unsigned long position) { return RReplace(CTString(1, c), CTString(), position); }
bool CTString::RRemove(const char* text, unsigned long position) {
  return RReplace(CTString(text), CTString(), position);
}
bool CTString::RRemove(const CTString& text, unsigned long position) { return RReplace(text, CTString(), position); }

CTString& CTString::ToUpper() {
  std::transform(storage(), storage() + view().size(), storage(), upper);
  return *this;
}

CTString& CTString::ToLower() {
  std::transform(storage(), storage() + view().size(), storage(), lower);
  return *this;
}

// Keeps the bytes from begin up to end; none where these have crossed.
void CTString::keepRange(unsigned long begin, unsigned long end) {
  spliceString(end, length - end, nullptr, 0);
  spliceString(0, std::min(begin, end), nullptr, 0);
}

CTString& CTString::TrimLeft(const char* set) {
  if (set == nullptr) return *this;
  keepRange(std::min<unsigned long>(view().find_first_not_of(set), length), length);
  return *this;
}

CTString& CTString::TrimRight(const char* set) {
  if (set == nullptr) return *this;
  keepRange(0, view().find_last_not_of(set) + 1);  // npos + 1 is 0: nothing is left
  return *this;
}

CTString& CTString::Trim(const char* set) {
  if (set == nullptr) return *this;
  keepRange(view().find_first_not_of(set), view().find_last_not_of(set) + 1);  // set may lie in the block that goes
  return *this;
}

CTString& CTString::Trim() { return Trim(kSpaces); }
CTString& CTString::TrimLeft() { return TrimLeft(kSpaces); }
CTString& CTString::TrimRight() { return TrimRight(kSpaces); }

// --- parts

CTString CTString::Left(unsigned long count) const { return CTString(*this, 0, count); }

CTString CTString::Right(unsigned long count) const { return CTString(*this, length - std::min(count, length), nolen); }

CTString CTString::Mid(unsigned long position, unsigned long count) const { return CTString(*this, position, count); }

CTString CTString::LeftFrom(unsigned long position) const {
  const unsigned long index = GetProcPosi(position);
  return index == nposi ? CTString() : Left(index + 1);
}

CTString CTString::RightFrom(unsigned long position) const { return Mid(position); }

CTString CTString::GetToken(const char* delimiters, unsigned long& position, bool trim) const {
  const std::string_view text = view();
  const std::string_view set = viewOf(delimiters);
  const unsigned long index = position == nposi ? nposi : GetProcPosi(position);
  position = nposi;
  if (index == nposi || text.empty() || set.empty()) return {};
  const unsigned long start = index + (IsDelimiter(delimiters, index) ? 1 : 0);
  unsigned long end = text.find_first_of(set, start);
  const unsigned long open = text.find('"', start);
  const unsigned long close = open == nposi ? nposi : text.find('"', open + 1);
  if (end != nposi && close != nposi && end >= open && end <= close) end = text.find_first_of(set, close + 1);
  position = end;
  CTString token(*this, start, end == nposi ? nolen : end - start);
  if (trim) token.Trim();
  return token;
}

CTString& CTString::Format(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  FormatV(format, arguments);
  va_end(arguments);
  return *this;
}

CTString& CTString::FormatV(const char* format, std::va_list arguments) {
  Clear();
  if (format == nullptr || format[0] == '\0') return *this;
  std::va_list measured;
  va_copy(measured, arguments);
  const int size = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  if (size <= 0) return *this;
  const auto bytes = static_cast<std::size_t>(size) + 2;
  char* const scratch = static_cast<char*>(std::calloc(bytes, 1));
  if (scratch == nullptr) return *this;
  const int printed = std::vsnprintf(scratch, bytes - 1, format, arguments);
  if (printed > 0 && static_cast<std::size_t>(printed) < bytes) AssignString(scratch, std::strlen(scratch));
  std::free(scratch);
  return *this;
}

}  // namespace qvtcl
