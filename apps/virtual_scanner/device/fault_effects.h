// What a fault does to the connection, whether it strikes in the image stream or at an answer.
// Threads: used by the thread that serves the connection.
#pragma once
#include <span>
#include <string>
#include <vector>

#include "device/fault.h"
#include "net/connection.h"
#include "protocol/answer.h"
#include "support/log.h"

namespace vscan {

// Closes, breaks or silences the connection; returns when it is over.
void breakOff(Connection& connection, const Fault& fault, Log& log);

// The faults at the answer to this command that are not spent, in the order of their bytes.
std::vector<Fault*> faultsAt(std::vector<Fault>& faults, const std::string& command);

// Sends the answer as the faults leave it. False when the connection is over. Device errors are not its business.
bool sendWithFaults(Connection& connection, Log& log, const std::vector<Fault*>& faults, const AnswerShape& shape,
                    Bytes answer);

}  // namespace vscan
