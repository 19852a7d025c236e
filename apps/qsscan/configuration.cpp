#include "configuration.h"

#include <algorithm>
#include <filesystem>

#include "bounded_file.h"
#include "exit_codes.h"
#include "program_folder.h"
#include "xdg_folders.h"

namespace qsscan {
namespace {

constexpr std::size_t kMaxBytes = std::size_t{256} << 10;

// The later one wins as a whole.
template <typename Item>
void mergeByName(std::vector<Item>& into, const std::vector<Item>& later) {
  for (const Item& item : later) {
    const auto same = std::find_if(into.begin(), into.end(), [&](const Item& one) { return one.name == item.name; });
    if (same != into.end()) {
      *same = item;
    } else {
      into.push_back(item);
    }
  }
}

void merge(Configuration& into, const Configuration& later) {
  mergeByName(into.devices, later.devices);
  mergeByName(into.presets, later.presets);
  if (!later.defaultDevice.empty()) into.defaultDevice = later.defaultDevice;
  for (const UsbIds& ids : later.usbIds) {
    if (std::find(into.usbIds.begin(), into.usbIds.end(), ids) == into.usbIds.end()) into.usbIds.push_back(ids);
  }
}

// False where there is no such file.
bool readInto(Configuration& configuration, const std::string& path) {
  const FileText file = readBoundedFile(path, kMaxBytes);
  if (file.kind == FileText::Kind::kFailed) {
    throw CommandError(ExitCode::kConfiguration, "The configuration file " + path + " cannot be read: " + file.reason +
                                                     ". Mend it, or name another one with --config.");
  }
  if (file.kind == FileText::Kind::kMissing) return false;
  merge(configuration, parseConfiguration(file.text, path));
  return true;
}

}  // namespace

std::string Configuration::addressOf(const std::string& name) const {
  for (const ConfiguredDevice& device : devices) {
    if (device.name == name) return device.address;
  }
  return name;
}

const Preset* Configuration::findPreset(const std::string& name) const {
  const auto found = std::find_if(presets.begin(), presets.end(), [&](const Preset& one) { return one.name == name; });
  return found == presets.end() ? nullptr : &*found;
}

std::vector<std::string> configurationFiles() {
  constexpr const char* kName = "/qsscan.conf";
  const std::filesystem::path system = programFolder() + "/" QSSCAN_SYSCONFDIR_FROM_BINDIR "/qsscan" + kName;
  std::vector<std::string> files = {system.lexically_normal().string()};
  if (const std::string folder = userConfigFolder(); !folder.empty()) files.push_back(folder + kName);
  return files;
}

Configuration loadConfiguration(const std::string& named) {
  Configuration configuration;
  if (named.empty()) {
    for (const std::string& path : configurationFiles()) readInto(configuration, path);
  } else if (!readInto(configuration, named)) {
    throw CommandError(ExitCode::kConfiguration, "There is no configuration file " + named + ".");
  }
  return configuration;
}

}  // namespace qsscan
