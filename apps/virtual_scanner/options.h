// The command line: one scanner, or several of them behind --scanner NAME.
// Threads: one.
#pragma once
#include <string>
#include <variant>
#include <vector>

namespace vscan {

struct ScannerOptions {
  std::string name;  // empty unless given by --scanner
  std::vector<std::string> listen;
  std::string unixPath;
  std::string controlPath;
  std::string place;
  std::string id;
  bool isHidden = false;  // not announced
  std::string profile = "office";
  std::vector<std::string> overrides;
  std::vector<std::string> sheets;
  std::vector<std::string> moreSheets;
  std::string bed;
  bool blankBacks = false;
  bool reloads = false;
  double skewDegrees = 0;
  std::string lines = "packbits";
  std::string whiteLines = "mono";
  std::string colorLines = "rgb";
  std::vector<std::string> faults;
  std::size_t dripBytes = 0;
  unsigned dripMs = 0;
  double pagesPerMinute = 0;
  std::string button;
  bool verbose = false;
};

struct ProgramOptions {
  std::vector<ScannerOptions> scanners;
  // Instead of being a scanner: what to say to the one behind that control socket.
  std::string tellPath;
  std::string tellLine;
};

// The options, or the exit code with which the program is to end because it has told all there is to tell.
std::variant<ProgramOptions, int> readOptions(int argc, const char* const* argv);

}  // namespace vscan
