#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "device/fault.h"

namespace vscan {
namespace {

using namespace std::string_literals;

constexpr const char* kScannerOption = "--scanner";

void declareSheets(CLI::App& app, ScannerOptions& options) {
  app.add_option("sheets", options.sheets, "Files for the feeder, in order: PNG, JPEG, TIFF (all pages), PNM, PDF")
      ->type_name("FILE");
  app.add_option("--feeder", options.moreSheets, "More files for the feeder")->type_name("FILE");
  app.add_option("--bed", options.bed, "The sheet on the bed")->type_name("FILE");
  app.add_flag("--blank-backs", options.blankBacks, "Each page is a sheet with a white back");
  app.add_option("--skew", options.skewDegrees, "How far off the sheets lie, clockwise; -45 to 45")
      ->type_name("DEGREES")
      ->check(CLI::Range(-45.0, 45.0).description(""));
  app.add_flag("--reload", options.reloads, "Fill the feeder again after each scan");
}

void declareDevice(CLI::App& app, ScannerOptions& options) {
  app.add_option("--profile", options.profile, "What scanner to be: a shipped profile or a JSON file")
      ->type_name("PROFILE")
      ->capture_default_str();
  app.add_option("--set", options.overrides, "Override a value of the profile, e.g. compressType[2]=3")
      ->type_name("KEY=VALUE")
      ->allow_extra_args(false);  // what follows is a sheet
  app.add_option("--button", options.button, "A button pressed on the panel, e.g. \"image resolution=300\"")
      ->type_name("BUTTON");
  app.add_option("--control", options.controlPath, "Unix socket on which the owner presses buttons")->type_name("PATH");
}

void declareLine(CLI::App& app, ScannerOptions& options) {
  app.add_option("--listen", options.listen, "TCP address to listen on (127.0.0.1:9480); port 0 takes a free one")
      ->type_name("HOST:PORT")
      ->allow_extra_args(false);
  app.add_option("--unix", options.unixPath, "Unix socket to listen on (TCP then only with --listen)")
      ->type_name("PATH");
  app.add_option("--place", options.place, "Where the scanner stands, told over mDNS")->type_name("TEXT");
  app.add_option("--id", options.id, "What tells this scanner from all others over mDNS")->type_name("TEXT");
  app.add_flag("--hidden", options.isHidden, "Tell the network nothing over mDNS");
  app.add_option("--ppm", options.pagesPerMinute, "Pages per minute; 0 is as fast as the line allows")
      ->type_name("N")
      ->check(CLI::Range(0.0, 1e6).description(""));
  app.add_option("--drip", options.dripBytes, "Send in pieces of that many bytes")->type_name("BYTES");
  app.add_option("--drip-ms", options.dripMs, "Wait that long after each piece")
      ->type_name("MS")
      ->check(CLI::Range(0, 60000).description(""));
  app.add_option("--lines", options.lines, "How lines go out where run-length coding is asked for")
      ->check(CLI::IsMember({"packbits", "raw"}))
      ->capture_default_str();
  app.add_option("--color-lines", options.colorLines, "The order of colour in lines of the first generation")
      ->check(CLI::IsMember({"rgb", "bgr", "planes"}))
      ->capture_default_str();
  app.add_option("--white-lines", options.whiteLines, "Which pages send white lines as records without data")
      ->check(CLI::IsMember({"none", "mono", "all"}))
      ->capture_default_str();
  app.add_option("--fault", options.faults, "Something that goes wrong, e.g. jam@page=2 or silence@command=SSP")
      ->type_name("FAULT")
      ->allow_extra_args(false);
  app.add_flag("-v,--verbose", options.verbose, "Tell each command and each answer on stderr");
}

std::string footer() {
  return "--scanner NAME begins a scanner of its own; what stands before the first is for all of them.\n\n"
         "PROFILE is office, flatbed, classic or a JSON file.\n\n"
         "BUTTON is image, ocr, email or file, and settings: resolution, color, paper, landscape, turn, duplex,\n"
         "binding, crop, deskew, blank, bleed, brightness, contrast, background, format, compression, quality.\n\n"
         "FAULT is KIND[=VALUE]@page=N[,line=N|,byte=N][,times=N] or KIND[=VALUE]@command=NAME[,byte=N][,times=N].\n"
         "KIND is one of " +
         faultNames() +
         ".\n\nWhat each of them means stands in docs/virtual-scanner.md.\n"
         "Exit codes: 0 ended by a signal, 2 a request that cannot be met, above 100 options that cannot be read.";
}

// One scanner's arguments, first to last.
struct Part {
  std::string name;
  std::vector<std::string> arguments;
};

// What stands before the first --scanner is for all of them.
std::vector<Part> splitAtScanners(int argc, const char* const* argv) {
  std::vector<Part> parts{{}};
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == kScannerOption && i + 1 < argc) {
      parts.push_back({argv[++i], parts.front().arguments});
    } else if (argument.starts_with(kScannerOption + "="s)) {
      parts.push_back({argument.substr(argument.find('=') + 1), parts.front().arguments});
    } else {
      parts.back().arguments.push_back(argument);
    }
  }
  if (parts.size() > 1) parts.erase(parts.begin());
  return parts;
}

}  // namespace

std::variant<ProgramOptions, int> readOptions(int argc, const char* const* argv) {
  ProgramOptions program;
  for (Part& part : splitAtScanners(argc, argv)) {
    CLI::App app{"A scanner made of files: serves sheets to programs that drive scanners", "qs-virtual-scanner"};
    app.footer(footer());
    ScannerOptions options;
    options.name = part.name;
    declareSheets(app, options);
    declareDevice(app, options);
    declareLine(app, options);
    std::vector<std::string> tell;
    app.add_option("--tell", tell, "Say a line to the running scanner with that control socket, e.g. \"button none\"")
        ->type_name("PATH LINE")
        ->expected(2);
    std::reverse(part.arguments.begin(), part.arguments.end());  // the order in which the reader takes them
    try {
      app.parse(part.arguments);
    } catch (const CLI::ParseError& error) {
      return app.exit(error);
    }
    if (!tell.empty()) {
      program.tellPath = tell[0];
      program.tellLine = tell[1];
    }
    program.scanners.push_back(std::move(options));
  }
  return program;
}

}  // namespace vscan
