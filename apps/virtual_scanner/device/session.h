// One host's conversation with the scanner: reads its commands, answers each, runs its scans.
// Threads: used by the thread that serves the connection.
#pragma once
#include "device/dialogue.h"

namespace vscan {

class Session {
 public:
  Session(Device& device, Connection& connection, Log& log);

  // Returns when the host is gone or the scanner is to stop.
  void run();

 private:
  // All false when the connection is over.
  bool answer(const Frame& frame);
  bool carryOut(const CommandRow& row, const Frame& frame, std::vector<Fault*> faults);
  bool refuse(const AnswerShape& shape, const std::string& what, const Refusal& refusal);
  bool send(const Bytes& bytes, const char* what);

  Dialogue dialogue_;
  const Generation generation_;
};

}  // namespace vscan
