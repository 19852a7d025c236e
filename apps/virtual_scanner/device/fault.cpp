#include "device/fault.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "support/failure.h"

namespace vscan {
namespace {

struct KindRow {
  std::string_view name;
  FaultKind kind;
  bool hasValue;
};

constexpr KindRow kKinds[] = {
    {"disconnect", FaultKind::Disconnect, false},
    {"reset", FaultKind::Reset, false},
    {"silence", FaultKind::Silence, false},
    {"device", FaultKind::Device, true},
};

Failure badFault(const std::string& text, const std::string& why) {
  return Failure("--fault " + text + ": " + why + "; it is written as KIND[=VALUE]@page=N[,line=N|,byte=N]");
}

std::int64_t number(const std::string& text, std::string_view digits, std::int64_t minimum, std::int64_t maximum) {
  const bool isHex = digits.starts_with("0x");
  if (isHex) digits.remove_prefix(2);
  std::int64_t value = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, isHex ? 16 : 10);
  if (error != std::errc() || stop != digits.data() + digits.size() || value < minimum || value > maximum) {
    throw badFault(text, "\"" + std::string(digits) + "\" is no number between " + std::to_string(minimum) + " and " +
                             std::to_string(maximum));
  }
  return value;
}

// Cuts the part before the mark off the front of text; the whole text when there is no mark.
std::string_view cutFront(std::string_view& text, char mark) {
  const auto place = text.find(mark);
  const std::string_view front = text.substr(0, place);
  text.remove_prefix(place == std::string_view::npos ? text.size() : place + 1);
  return front;
}

}  // namespace

Fault parseFault(const std::string& text) {
  constexpr std::int64_t kMax = 1'000'000'000;
  std::string_view place = text;
  std::string_view value = cutFront(place, '@');
  const std::string_view name = cutFront(value, '=');
  Fault fault;
  const KindRow* kind = nullptr;
  for (const KindRow& row : kKinds) kind = row.name == name ? &row : kind;
  if (kind == nullptr) throw badFault(text, "there is no fault \"" + std::string(name) + "\"");
  if (kind->hasValue == value.empty()) {
    throw badFault(text, std::string(name) + (kind->hasValue ? " needs a value" : " has no value"));
  }
  fault.kind = kind->kind;
  if (kind->hasValue) fault.deviceError = static_cast<std::uint8_t>(number(text, value, 1, 255));
  while (!place.empty()) {
    std::string_view item = cutFront(place, ',');
    const std::string_view key = cutFront(item, '=');
    if (key == "page") {
      fault.page = static_cast<int>(number(text, item, 1, 65535));
    } else if (key == "line") {
      fault.line = number(text, item, 0, kMax);
    } else if (key == "byte") {
      fault.byte = number(text, item, 0, kMax);
    } else {
      throw badFault(text, "there is no place \"" + std::string(key) + "\"");
    }
  }
  if (fault.page == 0) throw badFault(text, "the page is missing");
  if (fault.line && fault.byte) throw badFault(text, "line and byte exclude each other");
  return fault;
}

std::optional<std::size_t> strikesWithin(const Fault& fault, const RecordSpan& record) {
  std::int64_t cut = 0;
  if (fault.byte) {
    if (*fault.byte >= record.firstByte + record.bytes) return std::nullopt;
    cut = *fault.byte - record.firstByte;
  } else if (fault.line) {
    if (*fault.line >= record.linesAfter) return std::nullopt;
    // Lines inside a block have no place of their own in it; their share of its bytes stands in.
    cut = record.bytes * (*fault.line - record.linesBefore) /
          std::max<std::int64_t>(1, record.linesAfter - record.linesBefore);
  }
  return fault.kind == FaultKind::Device || cut < 0 ? 0 : static_cast<std::size_t>(cut);
}

}  // namespace vscan
