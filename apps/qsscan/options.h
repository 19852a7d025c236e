// The command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "configuration.h"
#include "document_writer.h"
#include "output_set.h"
#include "scan_wish.h"

namespace qsscan {

enum class ProgressStyle { kNone, kText, kJson };

struct Options {
  enum class Command { kList, kInfo, kScan, kPanel };
  Command command = Command::kScan;
  Configuration configuration;
  std::string device;   // an address; empty for list
  std::string library;  // empty: looked for
  bool json = false;
  // For list only.
  bool listsPresets = false;
  bool onlyNames = false;
  bool searches = true;  // USB and the network
  // For panel only.
  bool onlyShows = false;  // does not wait, and does not scan
  // For scan and panel.
  ScanWish wish;
  OutputPlan output;
  WriterOptions writer;
  ProgressStyle progress = ProgressStyle::kNone;
};

// The command line, completed by the configuration: what is named on the command line wins over the preset, and the
// preset over what the device's panel asks for. Nothing where there is nothing left to do, help having been shown.
// Throws CommandError (usage, configuration).
std::optional<Options> parseCommandLine(int argc, const char* const* argv,
                                        const std::vector<OptionValue>& askedByPanel = {});

}  // namespace qsscan
