#include "options.h"

#include <cstdlib>

#include "command_line.h"
#include "exit_codes.h"
#include "option_values.h"

namespace qsscan {
namespace {

[[noreturn]] void refuse(const std::string& sentence) { throw CommandError(ExitCode::kUsage, sentence); }

const Preset& findPreset(const Configuration& configuration, const std::string& name) {
  const Preset* preset = configuration.findPreset(name);
  if (preset != nullptr) return *preset;
  std::string known;
  for (const Preset& one : configuration.presets) known += (known.empty() ? "" : ", ") + one.name;
  refuse("There is no preset " + name + ". " + (known.empty() ? "None is configured." : "There are: " + known + "."));
}

// The address of the device that was named, by the option, the environment or the configuration.
std::string findDevice(const std::string& named, const Configuration& configuration) {
  if (!named.empty()) return configuration.addressOf(named);
  const char* device = std::getenv("QSSCAN_DEVICE");
  if (device != nullptr && *device != '\0') return configuration.addressOf(device);
  if (!configuration.defaultDevice.empty()) return configuration.addressOf(configuration.defaultDevice);
  refuse(
      "Name a device with -d or in QSSCAN_DEVICE, such as -d scanner.local. qsscan list shows those that are known.");
}

// What a scan has to be told, from the command line and from elsewhere.
void finishScan(CommandLine& line, CLI::App& command, RawScanOptions& raw,
                const std::vector<OptionValue>& askedByPanel) {
  const Preset* preset = line.preset.empty() ? nullptr : &findPreset(line.options.configuration, line.preset);
  if (preset != nullptr) addOptionValues(command, preset->values);
  addOptionValues(command, askedByPanel);
  try {
    finishScanOptions(raw);
  } catch (const CommandError& error) {
    if (preset == nullptr) throw;
    refuse(std::string(error.what()) + " (With the preset " + preset->name + " of " + preset->place + ".)");
  }
}

Options::Command commandOf(const CommandLine& line) {
  using Command = Options::Command;
  if (line.list->parsed()) return Command::kList;
  if (line.info->parsed()) return Command::kInfo;
  return line.scan->parsed() ? Command::kScan : Command::kPanel;
}

}  // namespace

std::optional<Options> parseCommandLine(int argc, const char* const* argv,
                                        const std::vector<OptionValue>& askedByPanel) {
  CommandLine line;
  try {
    line.app.parse(argc, argv);
  } catch (const CLI::Success& success) {
    line.app.exit(success);
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    refuse(std::string(error.what()) + ". Try --help.");
  }
  Options& options = line.options;
  options.command = commandOf(line);
  options.configuration = loadConfiguration(line.configuration);
  for (const Preset& preset : options.configuration.presets) checkOptionNames(*line.scan, preset.values);
  if (options.command == Options::Command::kList) return options;
  if (line.scan->parsed()) finishScan(line, *line.scan, line.scanOptions, {});
  if (line.panel->parsed()) finishScan(line, *line.panel, line.panelOptions, askedByPanel);
  options.device = findDevice(options.device, options.configuration);
  return options;
}

}  // namespace qsscan
