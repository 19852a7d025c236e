// One host's conversation with the scanner: reads its commands, answers each, runs its scans.
// Threads: used by the thread that serves the connection.
#pragma once
#include "device/dialogue.h"

namespace vscan {

class Session {
 public:
  Session(Device& device, Connection& connection, Log& log);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Returns when the host is gone or the scanner is to stop.
  void run();

 private:
  // All false when the connection is over.
  bool answer(const Frame& frame);
  bool carryOut(const CommandRow& row, const Frame& frame);
  bool refuse(const AnswerShape& shape, const std::string& what, const Refusal& refusal,
              DeviceError error = DeviceError::SettingsNotPossible);
  bool send(const Bytes& bytes, const char* what);

  Dialogue dialogue_;
  const Generation generation_;
};

}  // namespace vscan
