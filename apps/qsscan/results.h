// What a result code of the library means to people: an exit code, and a sentence that says what happened and what to
// do, always with the number of the code.
#pragma once

#include <string>

#include "exit_codes.h"
#include "result_codes.h"

namespace qsscan {

enum class Phase {
  kConnecting,  // before the scan was started: a failed connection means that the device cannot be reached
  kScanning,    // a failed connection was lost
};

struct ResultText {
  ExitCode exit;
  std::string sentence;
};

// Any code has a text, also one that nobody knows.
ResultText describeResult(orvalle_scan_api::QSRSLT code, Phase phase);

// "0x50000002"
std::string hexCode(orvalle_scan_api::QSRSLT code);

}  // namespace qsscan
