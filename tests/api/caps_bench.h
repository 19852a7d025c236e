// Capabilities over a command that answers with bytes, over a record of the test's own, and over a dead device.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>

#include "api/DeviceCaps.h"
#include "tests/fakes/FakeCompanions.h"
#include "tests/fakes/MemoryDevice.h"

// The way to the cached record, so that a question can be asked of any record, also of one that no parser gives.
template <auto Member>
struct MemberAccess {
  friend auto& cachedRecord(orvalle_scan_api::CDeviceCaps& caps) { return caps.*Member; }
};
auto& cachedRecord(orvalle_scan_api::CDeviceCaps& caps);
template struct MemberAccess<&orvalle_scan_api::CDeviceCaps::m_pCapability>;

namespace caps_test {

using namespace orvalle_scan_api;

using fakes::ByteString;
using fakes::tag;
using fakes::u16;
using fakes::operator+;

using Record = QS_SCANNER_CAPABILITY;

// Of records without padding.
template <class T>
bool sameBytes(const T& one, const T& other) {
  return std::memcmp(&one, &other, sizeof(T)) == 0;
}

// Caps over a command that answers with a body, or fails.
struct Bench {
  fakes::CallList calls;
  fakes::FakeScanCommand command{calls};
  ByteString body = tag(0x0001, u16(0x0102)) + tag(0x0101, u16(3)) + fakes::endTag();
  CDeviceCaps caps;

  Bench() {
    answerBody();
    caps.Initialize(command);
  }
  void answerBody() {
    command.capabilityAnswer = {SCANCMD_GENERATION_2ND, 0, static_cast<long>(body.size()), body.data()};
  }
  long queries() {
    const auto all = calls.take();
    return std::count(all.begin(), all.end(), "command.QueryDeviceCapability 1");
  }
};

// Caps that hold the record that change has worked on.
struct Known : Bench {
  template <class Change>
  explicit Known(Change change) {
    cachedRecord(caps) = std::make_unique<Record>(Record{});
    change(*cachedRecord(caps));
  }
  Record& record() { return *cachedRecord(caps); }
};

// Caps of a device that cannot be asked.
struct Dead : Bench {
  Dead() { command.results["QueryDeviceCapability"] = 0x40500031; }
};

}  // namespace caps_test
