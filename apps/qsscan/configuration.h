// The configuration files: devices by name, presets, and the ids of USB devices.
//
//   default-device = "office"
//   usb-ids = ["fff0:00a1"]
//
//   [device.office]
//   name = "192.0.2.7:9480"
//   note = "second floor"
//
//   [preset.contract]
//   mode = "gray"
//   duplex = true
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace qsscan {

// Where a value was written, for messages: "FILE, line 3".
using Place = std::string;

struct ConfiguredDevice {
  std::string name;
  std::string address;  // as -d takes it
  std::string note;     // for people, may be empty
};

// An option by its name without the dashes. A switch has the value "true" or "false".
struct OptionValue {
  std::string option;
  std::string value;
  Place place;
};

struct Preset {
  std::string name;
  std::vector<OptionValue> values;
  Place place;
};

struct UsbIds {
  unsigned vendor, product;
  bool operator==(const UsbIds&) const = default;
};

struct Configuration {
  std::vector<ConfiguredDevice> devices;  // by name within each file
  std::vector<Preset> presets;
  std::string defaultDevice;  // empty: none
  std::vector<UsbIds> usbIds;

  // The address of a configured device; any other name is an address itself.
  std::string addressOf(const std::string& name) const;
  // Null where there is none of that name.
  const Preset* findPreset(const std::string& name) const;
};

// What a file says. fileName is for messages. Throws CommandError (configuration) with a sentence that names file and
// line for what is not understood.
Configuration parseConfiguration(const std::string& text, const std::string& fileName);

// The files that are read: that of the machine and that of the user.
std::vector<std::string> configurationFiles();

// The named file alone, which must be there; where none is named, configurationFiles(), of which the later ones win and
// any may be missing. Throws CommandError (configuration).
Configuration loadConfiguration(const std::string& named);

}  // namespace qsscan
