#include "device_list.h"

#include <algorithm>
#include <array>

#include "network_devices.h"
#include "printable.h"
#include "remembered_devices.h"
#include "usb_devices.h"

namespace qsscan {
namespace {

using Json = nlohmann::ordered_json;
using Origin = ListedDevice::Origin;

const char* nameOf(Origin origin) {
  switch (origin) {
    case Origin::kConfigured:
      return "configured";
    case Origin::kNetwork:
      return "network";
    case Origin::kUsb:
      return "usb";
    case Origin::kRemembered:
      break;
  }
  return "remembered";
}

void addUnlessListed(DeviceList& list, const ListedDevice& device) {
  const bool isListed = std::any_of(list.devices.begin(), list.devices.end(),
                                    [&](const ListedDevice& one) { return one.address == device.address; });
  if (!isListed) list.devices.push_back(device);
}

void addSearch(DeviceList& list, Origin origin, const Search& search) {
  for (const FoundDevice& found : search.devices) {
    addUnlessListed(list, {found.address, found.address, origin, found.about, found.problem});
  }
  if (!search.problem.empty()) list.problems.push_back(search.problem);
}

std::string padded(const std::string& text, std::size_t columns) {
  const std::size_t taken = columnsOf(text);
  return text + std::string(taken < columns ? columns - taken : 0, ' ');
}

}  // namespace

DeviceList listDevices(const Configuration& configuration, bool searches) {
  DeviceList list;
  for (const ConfiguredDevice& device : configuration.devices) {
    const std::string about = device.note.empty() ? device.address : device.address + ", " + device.note;
    list.devices.push_back({device.name, device.address, Origin::kConfigured, printable(about), ""});
  }
  if (searches) {
    addSearch(list, Origin::kNetwork, findNetworkDevices());
    addSearch(list, Origin::kUsb, findUsbDevices(configuration.usbIds));
  }
  const RememberedDevices remembered = readRememberedDevices();
  for (const RememberedDevice& device : remembered.devices) {
    const std::string about = device.lastAnswer.empty() ? "" : "last answer " + printable(device.lastAnswer);
    addUnlessListed(list, {device.address, device.address, Origin::kRemembered, about, ""});
  }
  if (!remembered.problem.empty()) list.problems.push_back(remembered.problem);
  return list;
}

Json deviceListJson(const DeviceList& list) {
  const auto orNull = [](const std::string& text) { return text.empty() ? Json(nullptr) : Json(text); };
  Json devices = Json::array();
  for (const ListedDevice& device : list.devices) {
    devices.push_back({{"name", device.name},
                       {"device", device.address},
                       {"origin", nameOf(device.origin)},
                       {"about", orNull(device.about)},
                       {"problem", orNull(device.problem)}});
  }
  return Json{{"devices", devices}, {"problems", list.problems}};
}

std::string deviceListText(const DeviceList& list) {
  using Line = std::array<std::string, 3>;
  if (list.devices.empty()) return "";
  std::vector<Line> lines = {{"NAME", "KNOWN FROM", "ABOUT"}};
  for (const ListedDevice& device : list.devices) {
    const std::string about = device.problem.empty() || device.about.empty() ? device.about : device.about + ". ";
    lines.push_back({device.name, nameOf(device.origin), about + device.problem});
  }
  std::array<std::size_t, 2> columns{};
  for (const Line& line : lines) {
    for (std::size_t i = 0; i < columns.size(); ++i) columns[i] = std::max(columns[i], columnsOf(line[i]));
  }
  std::string text;
  for (const Line& line : lines) {
    std::string row = padded(line[0], columns[0]) + "  " + padded(line[1], columns[1]) + "  " + line[2];
    row.erase(row.find_last_not_of(' ') + 1);
    text += row + "\n";
  }
  return text;
}

std::string deviceNames(const DeviceList& list) {
  std::string text;
  for (const ListedDevice& device : list.devices) text += device.name + "\n";
  return text;
}

std::string noDeviceText() {
  std::string files;
  for (const std::string& file : configurationFiles()) files += (files.empty() ? "" : " or ") + file;
  return "qsscan: No device is known. Name one by its address, such as qsscan info -d scanner.local, or give it a name "
         "in " +
         files +
         ", in two lines:\n"
         "  [device.office]\n"
         "  name = \"scanner.local\"\n"
         "Devices that answer are remembered. A USB device shows once its ids stand in usb-ids there.\n";
}

}  // namespace qsscan
