#include "tests/fakes/MemoryDevice.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

namespace fakes {

using namespace std::chrono_literals;

ByteString& operator+=(ByteString& left, const ByteString& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

ByteString operator+(ByteString left, const ByteString& right) { return std::move(left += right); }

ByteString u16(std::uint32_t value) {
  return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8)};
}

ByteString u32(std::uint32_t value) { return u16(value) + u16(value >> 16); }

ByteString text(std::string_view characters) { return {characters.begin(), characters.end()}; }

ByteString tag(std::uint32_t id, const ByteString& value) {
  return u16(id) + u16(static_cast<std::uint32_t>(value.size())) + value;
}

ByteString endTag() { return {0xF0, 0xF0, 0, 0}; }

ByteString framed(std::string_view signature, const ByteString& body, std::uint8_t result) {
  return ByteString{result} + text(signature) + u32(static_cast<std::uint32_t>(body.size())) + body;
}

ByteString qAnswer(std::uint8_t version) { return {0xC1, 0x00, 2, version}; }

ByteString sspAnswer(std::uint32_t dpiX, std::uint32_t dpiY, std::uint32_t maxWidthPx, std::uint32_t maxHeightPx,
                     std::uint8_t source) {
  return framed("SSP", tag(0x2001, {source, 0}) + tag(0x2002, u16(dpiX) + u16(dpiY)) +
                           tag(0x2003, u32(maxWidthPx) + u32(maxHeightPx)) + endTag());
}

ByteString iAnswer(std::uint32_t dpiX, std::uint32_t dpiY, std::uint32_t maxWidthPx, std::uint32_t maxHeightPx) {
  const ByteString body = text(std::to_string(dpiX) + "," + std::to_string(dpiY) + ",0,2159," +
                               std::to_string(maxWidthPx) + ",2794," + std::to_string(maxHeightPx));
  return ByteString{0} + u16(static_cast<std::uint32_t>(body.size())) + body;
}

MemoryDevice::MemoryDevice(int generation)
    : startMnemonic_(generation == 1 ? "X" : "XSC"), abortMnemonic_(generation == 1 ? "R" : "ABT") {
  if (generation == 1) {
    abortAnswer_ = {0x83};
    answer("Q", qAnswer(11));
    answer("I", iAnswer(300, 300));
    return;
  }
  abortAnswer_ = {0x00, 0x40};
  const ByteString dpi = u16(600) + u16(600);
  const ByteString size = u16(2159) + u16(3556);
  answer("Q", qAnswer());
  answer("QDI", framed("QDI", tag(0x0001, u16(0x0102)) + tag(0x0102, text("Memory 1")) + tag(0x0301, {0x17, 0}) +
                                  tag(0x0302, {3, 1}) + tag(0x0304, dpi + dpi + dpi) + tag(0x0305, size + size + size) +
                                  tag(0x030F, {7, 0}) + tag(0x0401, {7, 7, 7, 7, 7, 0}) + endTag()));
  answer("SSP", sspAnswer(300, 300));
}

void MemoryDevice::stream(std::vector<Part> parts) {
  const std::lock_guard lock(mutex_);
  script_ = std::move(parts);
  awaitedStart_ = starts_ + 1;
}

void MemoryDevice::failCall(int n, bool isGone) {
  const std::lock_guard lock(mutex_);
  failingCall_ = n;
  failingCallIsGone_ = isGone;
}

void MemoryDevice::refuseAborts(bool refuse) {
  const std::lock_guard lock(mutex_);
  refusesAborts_ = refuse;
}

int MemoryDevice::calls() const {
  const std::lock_guard lock(mutex_);
  return calls_;
}

int MemoryDevice::reads() const {
  const std::lock_guard lock(mutex_);
  return reads_;
}

int MemoryDevice::closes() const {
  const std::lock_guard lock(mutex_);
  return closes_;
}

long MemoryDevice::lastTimeOutMs() const {
  const std::lock_guard lock(mutex_);
  return lastTimeOutMs_;
}

std::vector<unsigned> MemoryDevice::askedSizes() const {
  const std::lock_guard lock(mutex_);
  return askedSizes_;
}

std::vector<std::string> MemoryDevice::frames() const {
  const std::lock_guard lock(mutex_);
  return frames_;
}

std::vector<std::string> MemoryDevice::mnemonics() const {
  std::vector<std::string> names;
  for (const std::string& frame : frames()) names.push_back(frame.substr(0, frame.find('\n')));
  return names;
}

std::string MemoryDevice::clientId() const {
  const std::lock_guard lock(mutex_);
  return clientId_;
}

orvalle_scan_api::_DEV_IDENTIFIER MemoryDevice::opened() const {
  const std::lock_guard lock(mutex_);
  return opened_;
}

std::string MemoryDevice::openedName() const {
  const std::lock_guard lock(mutex_);
  return openedName_;
}

bool MemoryDevice::waitUntilQuiet() {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, 10s, [&] { return quietSeen_ && starts_ >= awaitedStart_; });
}

bool MemoryDevice::isQuiet() const {
  const std::lock_guard lock(mutex_);
  return quietSeen_ && starts_ >= awaitedStart_;
}

bool MemoryDevice::wroteAbort() const {
  const std::lock_guard lock(mutex_);
  return abortSeen_;
}

bool MemoryDevice::waitForMnemonic(const std::string& mnemonic) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, 10s, [&] {
    return std::any_of(frames_.begin(), frames_.end(),
                       [&](const std::string& frame) { return frame.substr(0, frame.find('\n')) == mnemonic; });
  });
}

void MemoryDevice::forgetCalls() {
  const std::lock_guard lock(mutex_);
  calls_ = reads_ = closes_ = 0;
  quietSeen_ = false;
  frames_.clear();
  askedSizes_.clear();
}

void MemoryDevice::SetClientId(const char* id) {
  const std::lock_guard lock(mutex_);
  clientId_ = id;
}

int MemoryDevice::Open(orvalle_scan_api::_DEV_IDENTIFIER& id) {
  const std::lock_guard lock(mutex_);
  opened_ = id;
  openedName_ = id.name != nullptr ? id.name : "";
  if (failsNow() || refusesToOpen_) return fail(kFailure), 1;
  open_ = true;
  streaming_ = false;
  pending_.clear();
  lastResult = 0;
  return 0;
}

void MemoryDevice::Close() {
  const std::lock_guard lock(mutex_);
  ++closes_;
  open_ = streaming_ = false;
  lastResult = 0;
  changed_.notify_all();
}

bool MemoryDevice::IsOpen() {
  const std::lock_guard lock(mutex_);
  return open_;
}

int MemoryDevice::Write(const void* data, int size, int) {
  const std::lock_guard lock(mutex_);
  if (failsNow()) return fail(kFailure);
  if (!open_) return fail(kFailure);
  const std::string bytes(static_cast<const char*>(data), static_cast<std::size_t>(size));
  const std::string frame = bytes.size() < 2 ? std::string() : bytes.substr(1, bytes.size() - 2);
  const std::string mnemonic = frame.substr(0, frame.find('\n'));
  frames_.push_back(frame);
  if (mnemonic == startMnemonic_) {
    streaming_ = true;
    ++starts_;
    quietSeen_ = abortSeen_ = false;
    askedSizes_.clear();
    stream_.assign(script_.begin(), script_.end());
  } else if (mnemonic == abortMnemonic_) {
    abortSeen_ = true;
    if (refusesAborts_) return fail(kFailure);
    if (!abortAnswer_.empty()) stream_ = {MemoryDevice::data(abortAnswer_)};
  } else if (const auto found = answers_.find(mnemonic); found != answers_.end()) {
    pending_ = found->second;
  }
  lastResult = 0;
  changed_.notify_all();
  return size;
}

int MemoryDevice::Read(void* buffer, unsigned int size, unsigned int, long timeOutMs) {
  std::unique_lock lock(mutex_);
  if (timeOutMs != 0) ++reads_;
  lastTimeOutMs_ = timeOutMs;
  if (failsNow()) return fail(kFailure);
  if (!open_) return fail(kFailure);
  if (streaming_) return readStream(buffer, size, lock);
  if (pending_.empty()) {
    lastResult = kTimeOut;
    return 0;
  }
  return give(buffer, size, pending_);
}

int MemoryDevice::readStream(void* buffer, unsigned int size, std::unique_lock<std::mutex>& lock) {
  if (askedSizes_.size() < 1000) askedSizes_.push_back(size);
  if (!stream_.empty() && stream_.front().kind == Part::Made) {
    if (ByteString bytes = stream_.front().make(); !bytes.empty()) stream_.push_front(data(std::move(bytes)));
  }
  const Part::Kind kind = stream_.empty() ? Part::QuietForEver : stream_.front().kind;
  if (kind == Part::Data) {
    ByteString& bytes = stream_.front().bytes;
    const int given = give(buffer, size, bytes);
    if (bytes.empty()) stream_.pop_front();
    return given;
  }
  if (kind == Part::Failure || kind == Part::Gone) {
    open_ = kind == Part::Failure;
    const std::uint32_t result = stream_.front().lastResult;
    stream_.pop_front();
    return fail(result);
  }
  if (kind == Part::TimeOut) {
    stream_.pop_front();
    lastResult = kTimeOut;
    return 0;
  }
  if (kind == Part::Quiet && --stream_.front().reads < 1) stream_.pop_front();
  quietSeen_ = true;
  changed_.notify_all();
  lastResult = silenceMs_ < 0 ? 0 : kTimeOut;
  lock.unlock();
  std::this_thread::sleep_for(std::chrono::milliseconds(std::max(silenceMs_, 1)));
  return 0;
}

int MemoryDevice::give(void* buffer, unsigned int size, ByteString& bytes) {
  const std::size_t count = std::min<std::size_t>(size, bytes.size());
  std::memcpy(buffer, bytes.data(), count);
  bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
  lastResult = 0;
  return static_cast<int>(count);
}

bool MemoryDevice::failsNow() {
  if (++calls_ != failingCall_) return false;
  if (failingCallIsGone_) open_ = false;
  return true;
}

int MemoryDevice::fail(std::uint32_t result) {
  lastResult = result;
  lastDetail = 7;
  changed_.notify_all();
  return -1;
}

}  // namespace fakes
