// A device that plays a script: it expects frames, answers with chosen bytes split at chosen places, times out, fails
// and goes away, and it writes down every call.
//
// Steps are played in the order in which they were added. A Read that finds no answer at the head of the script times
// out, as a silent device does. What the script did not foresee is collected and told by trouble().
// Threads: none; one test, one thread.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "modules/DeviceAccess.h"

class ScriptedDevice : public orvalle_scan_api::IDeviceAccess {
 public:
  static constexpr std::uint32_t kTimeOut = 0x40500031;
  static constexpr std::uint32_t kLost = 0x40500010;

  struct ReadCall {
    unsigned int size;
    unsigned int wanted;
    long timeOutMs;
  };
  struct WriteCall {
    std::string bytes;
    int flags;
  };

  explicit ScriptedDevice(bool isOpen = false) : open(isOpen) {}

  // The next Write carries exactly these bytes and succeeds.
  ScriptedDevice& expect(std::string frame);
  // The same, but Write returns written and leaves result and detail behind.
  ScriptedDevice& expectBut(std::string frame, int written, std::uint32_t result, std::uint32_t detail = 0);
  // One Read delivers these bytes, as many as it asks for; the following ones the rest. result is left behind.
  ScriptedDevice& answer(std::string bytes, std::uint32_t result = 0);
  // The bytes in one Read for each part, parts giving their sizes; what is left over comes in a last one.
  ScriptedDevice& answerInParts(std::string_view bytes, const std::vector<std::size_t>& parts);
  // Every Read from here on delivers these bytes. The last step of a script.
  ScriptedDevice& answerForever(std::string bytes);
  // One Read returns 0 and leaves result behind.
  ScriptedDevice& timeOut(std::uint32_t result = kTimeOut);
  // One Read returns a negative number.
  ScriptedDevice& failRead(std::uint32_t result, std::uint32_t detail = 0, int returned = -1);
  // One Read delivers bytes but claims to have delivered another number of them.
  ScriptedDevice& answerClaiming(std::string bytes, int returned);

  // State, open to the test.
  bool open;
  int openResult = 0;  // what Open returns; 0 opens
  std::uint32_t openDetail = 0;

  // What happened.
  int opens = 0;
  int closes = 0;
  orvalle_scan_api::_DEV_IDENTIFIER openedWith{};
  std::vector<ReadCall> reads;
  std::vector<WriteCall> writes;
  // Empty when the script was played to its end and nothing else was asked for.
  std::string trouble() const;

  void SetClientId(const char*) override { note("SetClientId"); }
  void ReservedFirst() override { note("ReservedFirst"); }
  void ReservedSecond() override { note("ReservedSecond"); }
  int Open(orvalle_scan_api::_DEV_IDENTIFIER& id) override;
  void Close() override;
  bool IsOpen() override { return open; }
  int Read(void* buffer, unsigned int size, unsigned int wanted, long timeOutMs) override;
  int Write(const void* data, int size, int flags) override;

 private:
  struct Step {
    enum Kind { kWrite, kRead, kReadForever } kind;
    std::string bytes;
    bool claims;   // returned stands for the number of bytes
    int returned;  // of Write; of Read where claims
    std::uint32_t result;
    std::uint32_t detail;
  };

  ScriptedDevice& add(Step step);
  int finish(int returned, std::uint32_t result, std::uint32_t detail);
  void note(const std::string& what) { trouble_ += what + "\n"; }

  std::deque<Step> script_;
  std::string trouble_;
};
