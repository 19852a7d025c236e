// The options of a scan, from the command line to the wish, the output and the writer.
#pragma once

#include <string>
#include <vector>

#include "options.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace qsscan {

// What the parser fills; names are turned into values afterwards, by tables that know the usual spellings.
struct RawScanOptions {
  explicit RawScanOptions(Options& filled) : options(filled) {}

  Options& options;
  std::string mode;
  std::string source = "auto";
  std::string binding;
  std::string paper;
  std::string format;
  std::string path;
  std::string batch;
  std::string compression = "auto";
  std::string progress;
  CLI::Option* progressOption = nullptr;  // Not owned, like the others.
  std::string threshold;
  std::string colorDrop;
  std::string edgeCut;
  std::string edgeFill;
  std::string edgeColor;
  struct Switch {
    const Feature* feature;
    CLI::Option* option = nullptr;
    std::string level;
  };
  std::vector<Switch> features;
};

// Adds the options to a command of the parser. Both must outlive the parsing.
void addScanOptions(CLI::App& command, RawScanOptions& raw);

// Turns what was parsed into the options. Throws CommandError (usage).
void finishScanOptions(RawScanOptions& raw);

}  // namespace qsscan
