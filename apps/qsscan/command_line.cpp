#include "command_line.h"

#include <cstdio>

#include "exit_codes.h"

namespace qsscan {
namespace {

std::string footer() {
  std::string text = "Exit codes:\n";
  for (const ExitCodeRow& row : exitCodeTable()) {
    char line[120];
    std::snprintf(line, sizeof line, "  %3d  %s\n", static_cast<int>(row.code), row.meaning);
    text += line;
  }
  return text;
}

void addCommonOptions(CLI::App& app, CommandLine& line) {
  app.add_option("--config", line.configuration, "Read this configuration file and no other");
  app.add_flag("--json", line.options.json, "Print the result as JSON on standard output");
}

void addDeviceOptions(CLI::App& app, CommandLine& line) {
  app.add_option("-d,--device", line.options.device,
                 "Device: a name that list shows, or HOST, HOST:PORT, [IPV6]:PORT, unix:PATH, usb:VVVV:PPPP[:SERIAL]; "
                 "without it QSSCAN_DEVICE, then the default of the configuration");
  app.add_option("--library", line.options.library, "The scanning library, where it is not in its usual place");
  addCommonOptions(app, line);
}

void addListOptions(CLI::App& app, CommandLine& line) {
  app.add_flag("--names", line.options.onlyNames, "Print the names alone, a line each");
  app.add_flag("!--no-search", line.options.searches, "Leave out what USB and the network show: answer at once");
  app.add_flag("--presets", line.options.listsPresets, "Show the presets of the configuration instead of devices");
  addCommonOptions(app, line);
}

void addPresetOption(CLI::App& app, CommandLine& line) {
  app.add_option("--preset", line.preset,
                 "Take the options of this preset from the configuration, where none are given");
}

}  // namespace

CommandLine::CommandLine()
    : app("qsscan scans documents from the command line.", "qsscan"),
      list(app.add_subcommand("list", "List the devices that are known or found")),
      info(app.add_subcommand("info", "Show what a device can do")),
      scan(app.add_subcommand("scan", "Scan pages into files")),
      panel(app.add_subcommand("panel", "Wait for the button of a device, and scan as its panel asks")),
      scanOptions(options),
      panelOptions(options) {
  app.require_subcommand(1);
  app.set_version_flag("--version", "qsscan " QSSCAN_VERSION);
  app.footer(footer());
  addListOptions(*list, *this);
  addDeviceOptions(*info, *this);
  addDeviceOptions(*scan, *this);
  addPresetOption(*scan, *this);
  addScanOptions(*scan, scanOptions);
  scan->footer(footer());
  addDeviceOptions(*panel, *this);
  panel->add_flag("--show,--once", options.onlyShows, "Show what the panel asks for now; do not wait, do not scan");
  addPresetOption(*panel, *this);
  addScanOptions(*panel, panelOptions);
}

}  // namespace qsscan
