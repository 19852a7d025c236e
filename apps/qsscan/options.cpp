#include "options.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>

#include "exit_codes.h"
#include "scan_options.h"

namespace qsscan {
namespace {

[[noreturn]] void refuse(const std::string& sentence) { throw CommandError(ExitCode::kUsage, sentence); }

std::string footer() {
  std::string text = "Exit codes:\n";
  for (const ExitCodeRow& row : exitCodeTable()) {
    char line[120];
    std::snprintf(line, sizeof line, "  %3d  %s\n", static_cast<int>(row.code), row.meaning);
    text += line;
  }
  return text;
}

void addDeviceOptions(CLI::App& app, Options& options) {
  app.add_option("-d,--device", options.device,
                 "Device: HOST, HOST:PORT, [IPV6]:PORT, unix:PATH or usb:VVVV:PPPP[:SERIAL]; without it QSSCAN_DEVICE");
  app.add_option("--library", options.library, "The scanning library, where it is not in its usual place");
  app.add_flag("--json", options.json, "Print the result as JSON on standard output");
}

}  // namespace

std::optional<Options> parseCommandLine(int argc, const char* const* argv) {
  Options options;
  RawScanOptions raw(options);
  CLI::App app("qsscan scans documents from the command line.", "qsscan");
  app.require_subcommand(1);
  app.set_version_flag("--version", "qsscan " QSSCAN_VERSION);
  app.footer(footer());
  CLI::App* info = app.add_subcommand("info", "Show what a device can do");
  CLI::App* scan = app.add_subcommand("scan", "Scan pages into files");
  addDeviceOptions(*info, options);
  addDeviceOptions(*scan, options);
  addScanOptions(*scan, raw);
  scan->footer(footer());

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& success) {
    app.exit(success);
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    refuse(std::string(error.what()) + ". Try --help.");
  }
  if (options.device.empty()) {
    const char* device = std::getenv("QSSCAN_DEVICE");
    if (device == nullptr || *device == '\0') {
      refuse("Name a device with -d or in QSSCAN_DEVICE, such as -d scanner.local.");
    }
    options.device = device;
  }
  options.command = info->parsed() ? Options::Command::kInfo : Options::Command::kScan;
  if (scan->parsed()) finishScanOptions(raw);
  return options;
}

}  // namespace qsscan
