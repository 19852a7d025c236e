#include "remembered_devices.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "bounded_file.h"
#include "device_name.h"
#include "exit_codes.h"
#include "xdg_folders.h"

namespace qsscan {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostDevices = 20;
constexpr std::size_t kMaxBytes = std::size_t{64} << 10;

std::string stateFile() {
  const std::string folder = userStateFolder();
  return folder.empty() ? "" : folder + "/devices.json";
}

bool isDeviceName(const std::string& name) {
  try {
    parseDeviceName(name);
    return true;
  } catch (const CommandError&) {
    return false;
  }
}

std::string textOf(const Json& object, const char* key) {
  const auto member = object.find(key);
  return member != object.end() && member->is_string() ? member->get<std::string>() : "";
}

std::string nowText() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  ::gmtime_r(&now, &utc);
  char text[40];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text;
}

bool writeAll(int file, const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t put = ::write(file, text.data() + written, text.size() - written);
    if (put < 0) return false;
    written += static_cast<std::size_t>(put);
  }
  return true;
}

// Whoever reads the file sees the old content or the new one.
void replaceFile(const std::string& path, const std::string& text) {
  std::string temporary = path + ".XXXXXX";
  const int file = ::mkostemp(temporary.data(), O_CLOEXEC);
  if (file < 0) return;
  const bool isWritten = writeAll(file, text);
  const bool isClosed = ::close(file) == 0;
  if (!isWritten || !isClosed || ::rename(temporary.c_str(), path.c_str()) != 0) ::unlink(temporary.c_str());
}

// A path means the same socket wherever the program is started next.
std::string lastingAddress(const std::string& address) {
  constexpr std::string_view kUnix = "unix:";
  if (!address.starts_with(kUnix)) return address;
  return std::string(kUnix) + std::filesystem::absolute(address.substr(kUnix.size())).lexically_normal().string();
}

void remember(const std::string& address) {
  const std::string path = stateFile();
  if (path.empty()) return;
  RememberedDevice newest{lastingAddress(address), nowText()};
  if (!isDeviceName(newest.address)) return;
  std::vector<RememberedDevice> devices = readRememberedDevices().devices;
  std::erase_if(devices, [&](const RememberedDevice& one) { return one.address == newest.address; });
  devices.insert(devices.begin(), newest);
  devices.resize(std::min(devices.size(), kMostDevices));

  Json list = Json::array();
  for (const RememberedDevice& one : devices) list.push_back({{"device", one.address}, {"lastAnswer", one.lastAnswer}});
  std::error_code ignored;
  std::filesystem::create_directories(userStateFolder(), ignored);
  replaceFile(path, Json{{"devices", list}}.dump(2) + "\n");
}

}  // namespace

RememberedDevices readRememberedDevices() {
  RememberedDevices remembered;
  const std::string path = stateFile();
  if (path.empty()) return remembered;
  const FileText file = readBoundedFile(path, kMaxBytes);
  if (file.kind == FileText::Kind::kMissing) return remembered;
  if (file.kind == FileText::Kind::kFailed) {
    remembered.problem = "The remembered devices in " + path + " cannot be read: " + file.reason + ".";
    return remembered;
  }
  const Json json = Json::parse(file.text, nullptr, false);
  if (!json.is_object() || !json.contains("devices") || !json["devices"].is_array()) {
    remembered.problem = "The remembered devices in " + path + " are not understood; the next scan begins them anew.";
    return remembered;
  }
  for (const Json& one : json["devices"]) {
    if (!one.is_object() || remembered.devices.size() >= kMostDevices) continue;
    const std::string address = textOf(one, "device");
    if (isDeviceName(address)) remembered.devices.push_back({address, textOf(one, "lastAnswer")});
  }
  return remembered;
}

void rememberDevice(const std::string& address) noexcept {
  try {
    remember(address);
  } catch (...) {
    // Out of memory, a folder that is gone, a path that is no UTF-8: the scan is what counts.
  }
}

}  // namespace qsscan
