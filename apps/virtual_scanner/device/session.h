// One host's conversation with the scanner: reads its commands, answers each, runs its scans.
// The settings of a scan belong to the connection that sent them; the paper belongs to the device.
// Threads: used by the thread that serves the connection.
#pragma once
#include <optional>

#include "device/device.h"
#include "net/connection.h"
#include "protocol/key_table.h"

namespace vscan {

class Session {
 public:
  Session(Device& device, Connection& connection, Log& log);

  // Returns when the host is gone or the scanner is to stop.
  void run();

 private:
  struct CommandRow;
  static const CommandRow kCommands[];

  // False when the answer could not be sent.
  bool answer(const Frame& frame);
  bool refuse(const Frame& frame, const Refusal& refusal);
  bool send(const Bytes& bytes, const char* what);

  bool answerCapability(const Frame& frame);
  bool answerDeviceInformation(const Frame& frame);
  bool answerDocumentCheck(const Frame& frame);
  bool answerScanSettings(const Frame& frame);
  bool startScan(const Frame& frame);
  bool ignoreAbort(const Frame& frame);

  Device& device_;
  Connection& connection_;
  Log& log_;
  std::optional<GrantedScan> granted_;
};

}  // namespace vscan
