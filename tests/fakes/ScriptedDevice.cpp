#include "tests/fakes/ScriptedDevice.h"

#include <algorithm>
#include <cstring>

namespace {

std::string readable(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes.substr(0, 400)) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7F) {
      text += c;
    } else {
      text += {'<', kDigits[byte >> 4], kDigits[byte & 15], '>'};
    }
  }
  return text;
}

}  // namespace

ScriptedDevice& ScriptedDevice::add(Step step) {
  script_.push_back(std::move(step));
  return *this;
}

ScriptedDevice& ScriptedDevice::expect(std::string frame) {
  const int size = static_cast<int>(frame.size());
  return expectBut(std::move(frame), size, 0);
}

ScriptedDevice& ScriptedDevice::expectBut(std::string frame, int written, std::uint32_t result, std::uint32_t detail) {
  return add({Step::kWrite, std::move(frame), false, written, result, detail});
}

ScriptedDevice& ScriptedDevice::answer(std::string bytes, std::uint32_t result) {
  return add({Step::kRead, std::move(bytes), false, 0, result, 0});
}

ScriptedDevice& ScriptedDevice::answerInParts(std::string_view bytes, const std::vector<std::size_t>& parts) {
  for (const std::size_t part : parts) {
    answer(std::string(bytes.substr(0, part)));
    bytes.remove_prefix(std::min(part, bytes.size()));
  }
  return bytes.empty() ? *this : answer(std::string(bytes));
}

ScriptedDevice& ScriptedDevice::answerForever(std::string bytes) {
  return add({Step::kReadForever, std::move(bytes), false, 0, 0, 0});
}

ScriptedDevice& ScriptedDevice::timeOut(std::uint32_t result) { return add({Step::kRead, "", true, 0, result, 0}); }

ScriptedDevice& ScriptedDevice::failRead(std::uint32_t result, std::uint32_t detail, int returned) {
  return add({Step::kRead, "", true, returned, result, detail});
}

ScriptedDevice& ScriptedDevice::answerClaiming(std::string bytes, int returned) {
  return add({Step::kRead, std::move(bytes), true, returned, 0, 0});
}

std::string ScriptedDevice::trouble() const {
  std::string text = trouble_;
  for (const Step& step : script_) {
    if (step.kind == Step::kWrite) text += "never written: " + readable(step.bytes) + "\n";
    if (step.kind == Step::kRead) text += "never read: " + readable(step.bytes) + "\n";
  }
  return text;
}

int ScriptedDevice::Open(orvalle_scan_api::_DEV_IDENTIFIER& id) {
  ++opens;
  openedWith = id;
  if (open) note("Open of an open device");
  open = openResult == 0;
  lastResult = static_cast<std::uint32_t>(openResult);
  lastDetail = openDetail;
  return openResult;
}

void ScriptedDevice::Close() {
  ++closes;
  open = false;
  lastResult = 0;
}

int ScriptedDevice::finish(int returned, std::uint32_t result, std::uint32_t detail) {
  lastResult = result;
  lastDetail = detail;
  return returned;
}

int ScriptedDevice::Read(void* buffer, unsigned int size, unsigned int wanted, long timeOutMs) {
  reads.push_back({size, wanted, timeOutMs});
  if (!open) {
    note("Read of a closed device");
    return finish(-1, kLost, 0);
  }
  if (size == 0) note("Read of 0 bytes");
  if (script_.empty() || script_.front().kind == Step::kWrite) return finish(0, kTimeOut, 0);
  Step& step = script_.front();
  const std::size_t count = std::min<std::size_t>(step.bytes.size(), size);
  std::memcpy(buffer, step.bytes.data(), count);
  const int returned = finish(step.claims ? step.returned : static_cast<int>(count), step.result, step.detail);
  if (step.kind == Step::kReadForever) return returned;
  if (!step.claims && count < step.bytes.size()) {
    step.bytes.erase(0, count);
  } else {
    script_.pop_front();
  }
  return returned;
}

int ScriptedDevice::Write(const void* data, int size, int flags) {
  const std::string bytes(static_cast<const char*>(data), static_cast<std::size_t>(std::max(size, 0)));
  writes.push_back({bytes, flags});
  if (flags != 0) note("Write with flags " + std::to_string(flags));
  if (!open) {
    note("Write to a closed device: " + readable(bytes));
    return finish(-1, kLost, 0);
  }
  if (script_.empty() || script_.front().kind != Step::kWrite) {
    note("unexpected Write: " + readable(bytes));
    return finish(size, 0, 0);
  }
  const Step step = script_.front();
  script_.pop_front();
  if (step.bytes != bytes) note("expected " + readable(step.bytes) + "\n but got " + readable(bytes));
  return finish(step.returned, step.result, step.detail);
}
