// The commands and options as the parser knows them: for the program, and for the pages that are made of its help.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "options.h"
#include "scan_options.h"

namespace qsscan {

// Members refer to each other: it stays where it was made.
struct CommandLine {
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  Options options;
  CLI::App app;
  CLI::App* list;  // Not owned, like the others.
  CLI::App* info;
  CLI::App* scan;
  CLI::App* panel;
  std::string configuration;  // the file that was named
  std::string preset;
  // Each command has options of its own, which fill the same wish: one command is run.
  RawScanOptions scanOptions;
  RawScanOptions panelOptions;
};

}  // namespace qsscan
