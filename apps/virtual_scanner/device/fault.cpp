#include "device/fault.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "protocol/device_errors.h"
#include "protocol/stream.h"
#include "protocol/values.h"
#include "support/failure.h"

namespace vscan {
namespace {

using Text = std::string_view;

enum class ValueForm { None, Code, Number, Seconds, Hex, Drip, Check };
enum Places : unsigned { kOnPage = 1, kOnCommand = 2, kBoth = 3 };

struct KindRow {
  Text name;
  FaultKind kind;
  ValueForm value;
  unsigned places;
  bool secondOnly;  // the first generation has no such record
};

constexpr KindRow kKinds[] = {
    {"disconnect", FaultKind::Disconnect, ValueForm::None, kBoth, false},
    {"reset", FaultKind::Reset, ValueForm::None, kBoth, false},
    {"silence", FaultKind::Silence, ValueForm::None, kBoth, false},
    {"device", FaultKind::Device, ValueForm::Code, kBoth, false},
    {"double-feed", FaultKind::DoubleFeed, ValueForm::None, kOnPage, false},
    {"stop-key", FaultKind::StopKey, ValueForm::None, kOnPage, false},
    {"too-long", FaultKind::TooLong, ValueForm::None, kOnPage, true},
    {"timer-restart", FaultKind::TimerRestart, ValueForm::Seconds, kOnPage, true},
    {"timer-extend", FaultKind::TimerExtend, ValueForm::Seconds, kOnPage, true},
    {"failed-check", FaultKind::FailedCheck, ValueForm::Check, kOnPage, true},
    {"garbage", FaultKind::Garbage, ValueForm::Hex, kBoth, false},
    {"wrong-length", FaultKind::WrongLength, ValueForm::Number, kBoth, false},
    {"wrong-signature", FaultKind::WrongSignature, ValueForm::None, kOnCommand, false},
    {"short", FaultKind::Short, ValueForm::None, kBoth, false},
    {"pause", FaultKind::Pause, ValueForm::Number, kBoth, false},
    {"drip", FaultKind::Drip, ValueForm::Drip, kBoth, false},
};

// Reads one --fault; every Failure names its text.
class Reader {
 public:
  Reader(const std::string& text, Generation generation) : text_(text), generation_(generation) {}

  Fault read() {
    fault_.text = text_;
    Text place = text_;
    Text value = cutFront(place, '@');
    const Text name = cutFront(value, '=');
    readKind(name, value);
    while (!place.empty()) readPlace(cutFront(place, ','));
    if ((fault_.page == 0) == fault_.command.empty()) fail("either page or command tells the place");
    if (fault_.line && fault_.byte) fail("line and byte exclude each other");
    if (fault_.line && fault_.page == 0) fail("only a page has lines");
    const unsigned wanted = fault_.page != 0 ? kOnPage : kOnCommand;
    if ((places_ & wanted) == 0) {
      fail(std::string(name) + (wanted == kOnPage ? " strikes at a command" : " strikes on a page") + " only");
    }
    return fault_;
  }

 private:
  [[noreturn]] void fail(const std::string& why) const {
    throw Failure("--fault " + text_ + ": " + why +
                  "; it is written as KIND[=VALUE]@page=N[,line=N|,byte=N][,times=N] or "
                  "KIND[=VALUE]@command=NAME[,byte=N][,times=N]");
  }

  // Cuts the part before the mark off the front of text; the whole text when there is no mark.
  static Text cutFront(Text& text, char mark) {
    const auto place = text.find(mark);
    const Text front = text.substr(0, place);
    text.remove_prefix(place == Text::npos ? text.size() : place + 1);
    return front;
  }

  std::int64_t number(Text digits, std::int64_t minimum, std::int64_t maximum) const {
    const bool isHex = digits.starts_with("0x");
    const Text bare = isHex ? digits.substr(2) : digits;
    std::int64_t value = 0;
    const auto [stop, error] = std::from_chars(bare.data(), bare.data() + bare.size(), value, isHex ? 16 : 10);
    if (error != std::errc() || stop != bare.data() + bare.size() || value < minimum || value > maximum) {
      fail("\"" + std::string(digits) + "\" is no number between " + std::to_string(minimum) + " and " +
           std::to_string(maximum));
    }
    return value;
  }

  void readKind(Text name, Text value) {
    const auto* const row =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](const KindRow& one) { return one.name == name; });
    if (row != std::end(kKinds)) {
      if (row->secondOnly && generation_ == Generation::First) fail("the first generation has no record for it");
      if ((row->value == ValueForm::None) != value.empty()) {
        fail(std::string(name) + (value.empty() ? " needs a value" : " has no value"));
      }
      fault_.kind = row->kind;
      places_ = row->places;
      readValue(row->value, value);
      return;
    }
    const auto error = deviceErrorNamed(name);
    if (!error) fail("there is no fault \"" + std::string(name) + "\"");
    if (!value.empty()) fail(std::string(name) + " has no value");
    fault_.kind = FaultKind::Device;
    fault_.value = codeOf(*error, generation_);
    places_ = kBoth;
  }

  void readValue(ValueForm form, Text value) {
    constexpr std::int64_t kMaxU32 = 0xFFFFFFFF;
    constexpr std::int64_t kMaxPauseMs = 3'600'000;
    switch (form) {
      case ValueForm::None:
        break;
      case ValueForm::Code:
        fault_.value = number(value, 1, 255);
        break;
      case ValueForm::Seconds:
        fault_.value = number(value, 0, 65535);
        break;
      case ValueForm::Number:
        fault_.value = number(value, 0, fault_.kind == FaultKind::Pause ? kMaxPauseMs : kMaxU32);
        break;
      case ValueForm::Hex:
        if (value.size() % 2 != 0) fail("garbage is an even number of hexadecimal digits");
        for (; !value.empty(); value.remove_prefix(2)) {
          fault_.bytes.push_back(static_cast<std::uint8_t>(number("0x" + std::string(value.substr(0, 2)), 0, 255)));
        }
        break;
      case ValueForm::Drip:
        fault_.value = number(cutFront(value, ':'), 1, kMaxU32);
        fault_.pauseMs = number(value, 0, kMaxPauseMs);
        break;
      case ValueForm::Check: {
        auto check = FailedCheck::Size;
        if (!readWord<FailedCheck>(value,
                                   {{"size", FailedCheck::Size},
                                    {"color", FailedCheck::Color},
                                    {"blank", FailedCheck::Blank},
                                    {"deskew", FailedCheck::Deskew}},
                                   check)) {
          fail("the checks are size, color, blank and deskew");
        }
        fault_.value = static_cast<std::int64_t>(check);
        break;
      }
    }
  }

  void readPlace(Text item) {
    constexpr std::int64_t kMax = 1'000'000'000;
    const Text key = cutFront(item, '=');
    if (key == "page") {
      fault_.page = static_cast<int>(number(item, 1, 32767));
    } else if (key == "command") {
      fault_.command = item;
    } else if (key == "line") {
      fault_.line = number(item, 0, kMax);
    } else if (key == "byte") {
      fault_.byte = number(item, 0, kMax);
    } else if (key == "times") {
      fault_.times = number(item, 1, kMax);
    } else {
      fail("there is no place \"" + std::string(key) + "\"");
    }
  }

  const std::string text_;
  const Generation generation_;
  unsigned places_ = kBoth;
  Fault fault_;
};

}  // namespace

bool Fault::needsWholeRecord() const {
  switch (kind) {
    case FaultKind::Device:
    case FaultKind::DoubleFeed:
    case FaultKind::StopKey:
    case FaultKind::TooLong:
    case FaultKind::TimerRestart:
    case FaultKind::TimerExtend:
    case FaultKind::FailedCheck:
    case FaultKind::WrongLength:
      return true;
    default:
      return false;
  }
}

std::string faultNames() {
  constexpr std::size_t kLineBytes = 100;
  std::string names;
  std::size_t lineBegin = 0;
  const auto add = [&](Text name) {
    if (!names.empty()) names += ", ";
    if (names.size() - lineBegin + name.size() > kLineBytes) {
      names.back() = '\n';
      lineBegin = names.size();
    }
    names += name;
  };
  for (const KindRow& row : kKinds) add(row.name);
  for (const Text name : deviceErrorNames()) {
    if (name != "double-feed") add(name);  // a kind of its own, for it depends on the host's settings
  }
  return names;
}

Fault parseFault(const std::string& text, Generation generation) { return Reader(text, generation).read(); }

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
  return fault.needsWholeRecord() || cut < 0 ? 0 : static_cast<std::size_t>(cut);
}

}  // namespace vscan
