#include "list_command.h"

#include <cstdio>

#include "device_list.h"
#include "exit_codes.h"
#include "scan_report.h"

namespace qsscan {
namespace {

void print(const std::string& text) { std::fputs(text.c_str(), stdout); }

nlohmann::ordered_json presetsJson(const std::vector<Preset>& presets) {
  auto json = nlohmann::ordered_json::array();
  for (const Preset& preset : presets) {
    auto values = nlohmann::ordered_json::object();
    for (const OptionValue& value : preset.values) values[value.option] = value.value;
    json.push_back({{"name", preset.name}, {"options", values}});
  }
  return {{"presets", json}};
}

void listPresets(const Options& options) {
  const auto& presets = options.configuration.presets;
  if (options.json) return print(jsonText(presetsJson(presets), 2) + "\n");
  for (const Preset& preset : presets) {
    std::string line = preset.name;
    if (!options.onlyNames) {
      line += ":";
      for (const OptionValue& value : preset.values) line += " " + value.option + "=" + value.value;
    }
    print(line + "\n");
  }
}

}  // namespace

int runList(const Options& options) {
  constexpr int kDone = static_cast<int>(ExitCode::kDone);
  if (options.listsPresets) {
    listPresets(options);
    return kDone;
  }
  const DeviceList list = listDevices(options.configuration, options.searches);
  if (options.json) {
    print(jsonText(deviceListJson(list), 2) + "\n");
    return kDone;
  }
  print(options.onlyNames ? deviceNames(list) : deviceListText(list));
  if (options.onlyNames) return kDone;
  for (const std::string& problem : list.problems) std::fprintf(stderr, "qsscan: %s\n", problem.c_str());
  if (list.devices.empty()) std::fputs(noDeviceText().c_str(), stderr);
  return kDone;
}

}  // namespace qsscan
