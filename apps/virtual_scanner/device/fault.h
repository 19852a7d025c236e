// Something that goes wrong on purpose, at a place in the stream:
//   KIND[=VALUE]@page=N[,line=N|,byte=N]
// disconnect  the connection is closed          reset   it is cut off without a goodbye
// silence     nothing more is ever sent         device  the device error VALUE ends the scan
// Without line or byte it happens before the page's first record. Faults are for every scan, not just the first.
// Threads: reentrant.
#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace vscan {

enum class FaultKind { Disconnect, Reset, Silence, Device };

struct Fault {
  FaultKind kind = FaultKind::Disconnect;
  std::uint8_t deviceError = 0;
  int page = 0;
  std::optional<std::int64_t> line;  // when so many lines have been sent
  std::optional<std::int64_t> byte;  // when so many bytes of the page's records have been sent
};

// Throws Failure with a sentence.
Fault parseFault(const std::string& text);

// One record of the faulty page: where it begins and how far it takes the page.
struct RecordSpan {
  std::int64_t firstByte = 0;
  std::int64_t bytes = 0;
  std::int64_t linesBefore = 0;
  std::int64_t linesAfter = 0;
};

// How many bytes of this record go out before the fault strikes; nothing when it strikes later. A device error is a
// record itself and waits for none to be cut.
std::optional<std::size_t> strikesWithin(const Fault& fault, const RecordSpan& record);

}  // namespace vscan
