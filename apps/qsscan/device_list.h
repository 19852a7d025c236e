// qsscan list: the devices that are known or found, for people and for programs.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "configuration.h"
#include "found_device.h"

namespace qsscan {

struct ListedDevice {
  enum class Origin { kConfigured, kNetwork, kUsb, kRemembered };
  std::string name;  // as -d takes it
  std::string address;
  Origin origin;
  std::string about;    // for people, may be empty
  std::string problem;  // a sentence, where it cannot be used as it is
};

struct DeviceList {
  std::vector<ListedDevice> devices;  // configured, found, remembered
  std::vector<std::string> problems;  // sentences
};

// What is configured and remembered and, where searches is set, what USB and the network show. A device is listed once,
// under the name that says most.
DeviceList listDevices(const Configuration& configuration, bool searches);

nlohmann::ordered_json deviceListJson(const DeviceList& list);
// A table; empty where there is no device.
std::string deviceListText(const DeviceList& list);
// A name a line.
std::string deviceNames(const DeviceList& list);

// What to do where no device is known.
std::string noDeviceText();

}  // namespace qsscan
