// A scanner of either generation played from memory, for whole scans through the core.
//
// It answers each command with the bytes that the test gave for its mnemonic, and after XSC, or X, serves a stream that
// is a list of parts: one part is what one read gets. Behind the last part it is silent. ABT, or R, drops the rest of
// the stream and puts the answer 00 40, or 83, in its place. Every call is counted, and the n-th can be made to fail.
// Threads: the script is set while no scan runs; the rest is thread-safe.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "include/modules/DeviceAccess.h"

namespace fakes {

using ByteString = std::vector<std::uint8_t>;

ByteString& operator+=(ByteString& left, const ByteString& right);
ByteString operator+(ByteString left, const ByteString& right);
ByteString u16(std::uint32_t value);
ByteString u32(std::uint32_t value);
ByteString text(std::string_view characters);
// One tagged value of an answer's body.
ByteString tag(std::uint32_t id, const ByteString& value);
// The tag that ends a body.
ByteString endTag();
// Result byte, signature, length and body: how every command but Q is answered.
ByteString framed(std::string_view signature, const ByteString& body, std::uint8_t result = 0);
// The answer to Q; 0x10 and above tells the second generation.
ByteString qAnswer(std::uint8_t version = 0x10);
// What the device says it will do: source (1 feeder, 2 bed), resolution and the largest area in pixels.
ByteString sspAnswer(std::uint32_t dpiX, std::uint32_t dpiY, std::uint32_t maxWidthPx = 2550,
                     std::uint32_t maxHeightPx = 3300, std::uint8_t source = 2);

// The answer to I: the resolution and the largest area in pixels; the source is the bed.
ByteString iAnswer(std::uint32_t dpiX, std::uint32_t dpiY, std::uint32_t maxWidthPx = 2550,
                   std::uint32_t maxHeightPx = 3300);

class MemoryDevice final : public orvalle_scan_api::IDeviceAccess {
 public:
  static constexpr std::uint32_t kTimeOut = 0x40500031;
  static constexpr std::uint32_t kFailure = 0x40500099;

  struct Part {
    enum Kind { Data, Quiet, QuietForEver, TimeOut, Failure, Gone, Made } kind = Data;
    ByteString bytes{};                   // Data
    int reads = 1;                        // Quiet: so many reads find nothing
    std::uint32_t lastResult = kFailure;  // Failure and Gone
    std::function<ByteString()> make{};   // Made
  };
  static Part data(ByteString bytes) { return {Part::Data, std::move(bytes)}; }
  static Part quiet(int reads = 1) { return {Part::Quiet, {}, reads}; }
  static Part quietForEver() { return {Part::QuietForEver}; }
  static Part timeOut() { return {Part::TimeOut}; }
  // Data that is made when it is read, for a stream too long to be held; nothing made is a read that finds nothing.
  // make runs on the thread that reads. The last part of a script.
  static Part made(std::function<ByteString()> make) { return {Part::Made, {}, 1, kFailure, std::move(make)}; }
  // A read that fails and leaves the device open.
  static Part failure(std::uint32_t lastResult) { return {Part::Failure, {}, 1, lastResult}; }
  // A read that fails because the device has gone.
  static Part gone(std::uint32_t lastResult = kFailure) { return {Part::Gone, {}, 1, lastResult}; }

  // A device with bed and feeder, 300 dpi, that answers Q, QDI and SSP, or Q and I.
  explicit MemoryDevice(int generation = 2);

  // The script.
  void answer(const std::string& mnemonic, ByteString bytes) { answers_[mnemonic] = std::move(bytes); }
  void stream(std::vector<Part> parts);
  void stream(const ByteString& bytes) { stream(std::vector<Part>{data(bytes)}); }
  void abortAnswer(ByteString bytes) { abortAnswer_ = std::move(bytes); }
  // Silence in the stream: answered at once as nothing (the default), or as a time-out after so many milliseconds.
  void blockInSilence(int waitMs) { silenceMs_ = waitMs; }
  // The n-th counted call (Open, Read, Write, from 1) fails, and the device is gone afterwards if isGone. 0: none.
  void failCall(int n, bool isGone = false);
  // Writing the abort fails, with the frame noted.
  void refuseAborts(bool refuse);
  void refuseToOpen(bool refuse) { refusesToOpen_ = refuse; }

  // What happened.
  int calls() const;
  int reads() const;
  int closes() const;
  long lastTimeOutMs() const;                  // of the last read
  std::vector<unsigned> askedSizes() const;    // of the reads of the stream
  std::vector<std::string> frames() const;     // without the leading 1B and the trailing 80
  std::vector<std::string> mnemonics() const;  // of the frames, in order
  std::string clientId() const;
  orvalle_scan_api::_DEV_IDENTIFIER opened() const;  // as the last Open was told; the name may be gone
  std::string openedName() const;
  // Waits until a read of the stream that was given last has found nothing; false after ten seconds.
  bool waitUntilQuiet();
  bool isQuiet() const;     // the same, asked
  bool wroteAbort() const;  // the abort came since the start
  bool waitForMnemonic(const std::string& mnemonic);
  void forgetCalls();

  void SetClientId(const char* id) override;
  void ReservedFirst() override {}
  void ReservedSecond() override {}
  int Open(orvalle_scan_api::_DEV_IDENTIFIER& id) override;
  void Close() override;
  bool IsOpen() override;
  int Read(void* buffer, unsigned int size, unsigned int wanted, long timeOutMs) override;
  int Write(const void* data, int size, int flags) override;

 private:
  bool failsNow();
  int fail(std::uint32_t result);
  int give(void* buffer, unsigned int size, ByteString& bytes);
  int readStream(void* buffer, unsigned int size, std::unique_lock<std::mutex>& lock);

  const std::string startMnemonic_;
  const std::string abortMnemonic_;
  std::map<std::string, ByteString> answers_;
  ByteString abortAnswer_;
  int silenceMs_ = -1;
  bool refusesToOpen_ = false;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  // Guarded by mutex_.
  bool open_ = false;
  bool streaming_ = false;
  int starts_ = 0;        // start commands
  int awaitedStart_ = 1;  // the one that serves the stream that was given last
  bool quietSeen_ = false;
  bool abortSeen_ = false;
  ByteString pending_;  // an answer that waits to be read
  std::vector<Part> script_;
  std::deque<Part> stream_;
  int calls_ = 0;
  int reads_ = 0;
  int closes_ = 0;
  long lastTimeOutMs_ = 0;
  std::vector<unsigned> askedSizes_;
  int failingCall_ = 0;
  bool failingCallIsGone_ = false;
  bool refusesAborts_ = false;
  std::vector<std::string> frames_;
  std::string clientId_;
  orvalle_scan_api::_DEV_IDENTIFIER opened_{};
  std::string openedName_;
};

}  // namespace fakes
