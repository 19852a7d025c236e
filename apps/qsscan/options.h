// The command line.
#pragma once

#include <optional>
#include <string>

#include "document_writer.h"
#include "output_set.h"
#include "scan_wish.h"

namespace qsscan {

enum class ProgressStyle { kNone, kText, kJson };

struct Options {
  enum class Command { kInfo, kScan };
  Command command = Command::kScan;
  std::string device;
  std::string library;  // empty: looked for
  bool json = false;
  // For scan only.
  ScanWish wish;
  OutputPlan output;
  WriterOptions writer;
  ProgressStyle progress = ProgressStyle::kNone;
};

// Nothing where there is nothing left to do, help having been shown. Throws CommandError (usage).
std::optional<Options> parseCommandLine(int argc, const char* const* argv);

}  // namespace qsscan
