#include <toml++/toml.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include "configuration.h"
#include "device_name.h"
#include "exit_codes.h"
#include "printable.h"

namespace qsscan {
namespace {

class Parser {
 public:
  Parser(const std::string& text, const std::string& fileName) : fileName_(fileName) {
    try {
      root_ = toml::parse(text, fileName);
    } catch (const toml::parse_error& error) {
      refuse(error.source(), "It is not understood: " + std::string(error.description()) + ".");
    }
  }

  Configuration read() {
    for (const auto& [key, value] : root_) {
      if (key == "default-device") {
        configuration_.defaultDevice = text(key, value);
        if (configuration_.defaultDevice.empty()) refuse(value.source(), "The default device has no name.");
      } else if (key == "usb-ids") {
        readUsbIds(value);
      } else if (key == "device") {
        forEachTable(key, value, [this](const toml::key& name, const toml::table& table) { readDevice(name, table); });
      } else if (key == "preset") {
        forEachTable(key, value, [this](const toml::key& name, const toml::table& table) { readPreset(name, table); });
      } else {
        refuse(key.source(), quoted(key) +
                                 " is unknown here. There are default-device, usb-ids, [device.NAME] and "
                                 "[preset.NAME].");
      }
    }
    checkDefaultDevice();
    return std::move(configuration_);
  }

 private:
  static std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

  Place place(const toml::source_region& source) const {
    return fileName_ + ", line " + std::to_string(source.begin.line);
  }

  [[noreturn]] void refuse(const toml::source_region& source, const std::string& why) const {
    throw CommandError(ExitCode::kConfiguration, printable(place(source) + ": " + why));
  }

  std::string text(const toml::key& key, const toml::node& node) const {
    const auto value = node.value_exact<std::string>();
    if (!value) refuse(node.source(), "The value of " + quoted(key) + " must be text in quotes.");
    return *value;
  }

  // A name that people type after -d or --preset, and that is no address.
  void checkName(const toml::key& key, const char* what) const {
    const auto isPlain = [](char c) {
      return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '_' ||
             c == '.';
    };
    const std::string_view name = key;
    if (!name.empty() && name.front() != '-' && std::all_of(name.begin(), name.end(), isPlain)) return;
    refuse(key.source(), quoted(name) + " is no name of a " + what + ": use letters, digits, -, _ and dots.");
  }

  template <typename Read>
  void forEachTable(const toml::key& kind, const toml::node& node, Read read) const {
    const toml::table* tables = node.as_table();
    if (tables == nullptr) refuse(node.source(), "Write [" + std::string(kind) + ".NAME] above its lines.");
    for (const auto& [name, value] : *tables) {
      if (value.as_table() == nullptr) {
        refuse(value.source(),
               quoted(name) + " stands for itself here. Write [" + std::string(kind) + ".NAME] above it.");
      }
      checkName(name, std::string(kind).c_str());
      read(name, *value.as_table());
    }
  }

  void readDevice(const toml::key& name, const toml::table& table) {
    ConfiguredDevice device{std::string(name), "", ""};
    for (const auto& [key, value] : table) {
      if (key == "name") {
        device.address = text(key, value);
        checkAddress(device.address, value);
      } else if (key == "note") {
        device.note = text(key, value);
      } else {
        refuse(key.source(), quoted(key) + " is unknown for a device. There are name and note.");
      }
    }
    if (device.address.empty()) {
      refuse(table.source(), "The device " + device.name + " has no address: add a line such as name = \"192.0.2.7\".");
    }
    configuration_.devices.push_back(device);
  }

  void checkAddress(const std::string& address, const toml::node& node) const {
    try {
      parseDeviceName(address);
    } catch (const CommandError& error) {
      refuse(node.source(), error.what());
    }
  }

  void readPreset(const toml::key& name, const toml::table& table) {
    Preset preset{std::string(name), {}, place(table.source())};
    for (const auto& [key, value] : table) {
      preset.values.push_back({std::string(key), optionValue(key, value), place(key.source())});
    }
    configuration_.presets.push_back(preset);
  }

  std::string optionValue(const toml::key& key, const toml::node& node) const {
    if (const auto text = node.value_exact<std::string>()) return *text;
    if (const auto flag = node.value_exact<bool>()) return *flag ? "true" : "false";
    if (const auto number = node.value_exact<std::int64_t>()) return std::to_string(*number);
    if (const auto number = node.value_exact<double>()) {
      char digits[32];
      const auto [end, error] = std::to_chars(digits, digits + sizeof digits, *number);
      if (error == std::errc{}) return std::string(digits, end);
    }
    refuse(node.source(), "The value of " + quoted(key) + " must be text in quotes, a number, true or false.");
  }

  void readUsbIds(const toml::node& node) {
    const toml::array* list = node.as_array();
    if (list == nullptr) refuse(node.source(), kUsbIds);
    for (const toml::node& item : *list) {
      const auto text = item.value_exact<std::string>();
      const auto ids = text ? parseUsbIds(*text) : std::nullopt;
      if (!ids) refuse(item.source(), kUsbIds);
      configuration_.usbIds.push_back(*ids);
    }
  }

  static std::optional<UsbIds> parseUsbIds(std::string_view text) {
    UsbIds ids{};
    const auto hex = [](std::string_view digits, unsigned& value) {
      const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
      return error == std::errc{} && end == digits.data() + digits.size();
    };
    if (text.size() != 9 || text[4] != ':') return std::nullopt;
    if (!hex(text.substr(0, 4), ids.vendor) || !hex(text.substr(5), ids.product)) return std::nullopt;
    return ids;
  }

  // It may be configured in another file, so that a plain name is not refused.
  void checkDefaultDevice() const {
    const std::string& device = configuration_.defaultDevice;
    if (!device.empty()) checkAddress(configuration_.addressOf(device), *root_.get("default-device"));
  }

  static constexpr char kUsbIds[] = "usb-ids is a list of ids as lsusb shows them, such as [\"fff0:00a1\"].";

  const std::string fileName_;
  toml::table root_;
  Configuration configuration_;
};

}  // namespace

Configuration parseConfiguration(const std::string& text, const std::string& fileName) {
  return Parser(text, fileName).read();
}

}  // namespace qsscan
