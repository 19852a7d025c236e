// Something that goes wrong on purpose, at a place in the image stream or at the answer to a command:
//   KIND[=VALUE]@page=N[,line=N|,byte=N][,times=N]
//   KIND[=VALUE]@command=NAME[,byte=N][,times=N]
// On a page without line or byte it happens before the page's first record; at an answer without byte before it.
// Without times it happens every time, in every scan.
// Threads: reentrant.
#pragma once
#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "protocol/generation.h"
#include "support/little_endian.h"

namespace vscan {

// Counted by the threads of several hosts.
class Count {
 public:
  Count() = default;
  Count(const Count& other) : value_(other.value()) {}
  Count& operator=(const Count& other) {
    value_ = other.value();
    return *this;
  }
  std::int64_t value() const { return value_; }
  void operator++() { ++value_; }

 private:
  std::atomic<std::int64_t> value_{0};
};

enum class FaultKind {
  Disconnect,      // the connection is closed
  Reset,           // it breaks
  Silence,         // nothing more is ever sent
  Device,          // the device error `value` ends the scan or refuses the command
  DoubleFeed,      // two sheets as one: a device error where the host looks for it
  StopKey,         // somebody presses stop on the panel
  TooLong,         // the page ends at the length limit
  TimerRestart,    // a record for the host's timer, `value` seconds
  TimerExtend,     //
  FailedCheck,     // the device could not find something out; `value` is a FailedCheck of protocol/stream.h
  Garbage,         // `bytes` come in between
  WrongLength,     // the size or length field says `value`
  WrongSignature,  // the answer's signature, or the result where it has none, is not what it should be
  Short,           // the rest of the record or answer is left out
  Pause,           // nothing for `value` milliseconds; what came before is sent
  Drip,            // from here on pieces of `value` bytes with `pauseMs` behind each
};

struct Fault {
  std::string text;  // as the owner wrote it
  FaultKind kind = FaultKind::Disconnect;
  std::int64_t value = 0;
  std::int64_t pauseMs = 0;
  Bytes bytes{};
  std::string command{};  // empty: on a page
  int page = 0;
  std::optional<std::int64_t> line{};  // when so many lines have been sent
  std::optional<std::int64_t> byte{};  // when so many bytes of the page's records, or of the answer, have been sent
  std::optional<std::int64_t> times{};
  Count struck{};  // how often it has happened

  bool isSpent() const { return times && struck.value() >= *times; }

  // True when it closes, breaks or silences the connection.
  bool breaksOff() const {
    return kind == FaultKind::Disconnect || kind == FaultKind::Reset || kind == FaultKind::Silence;
  }

  // True when it stands before a record and never inside one.
  bool needsWholeRecord() const;
};

// Device errors have the number that they have in that generation. Throws Failure with a sentence.
Fault parseFault(const std::string& text, Generation generation);

// Every kind and every device error by name, with commas and line feeds as a help text wants them.
std::string faultNames();

// One record of the faulty page: where it begins and how far it takes the page.
struct RecordSpan {
  std::int64_t firstByte = 0;
  std::int64_t bytes = 0;
  std::int64_t linesBefore = 0;
  std::int64_t linesAfter = 0;
};

// How many bytes of this record go out before the fault strikes; nothing when it strikes later.
std::optional<std::size_t> strikesWithin(const Fault& fault, const RecordSpan& record);

}  // namespace vscan
