#include "device_name.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string>

#include "exit_codes.h"

namespace qsscan {
namespace {

constexpr int kDirect = 1;
constexpr int kNetwork = 2;

[[noreturn]] void refuse(std::string_view name, const char* reason) {
  throw CommandError(ExitCode::kUsage, "\"" + std::string(name) + "\" is no device name: " + reason);
}

bool isHex(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); });
}

void checkUsb(std::string_view name, std::string_view ids) {
  const bool wellFormed = ids.size() >= 9 && isHex(ids.substr(0, 4)) && ids[4] == ':' && isHex(ids.substr(5, 4)) &&
                          (ids.size() == 9 || (ids[9] == ':' && ids.size() > 10));
  if (!wellFormed) refuse(name, "write usb:VVVV:PPPP or usb:VVVV:PPPP:SERIAL, with four hexadecimal digits each.");
}

void checkPort(std::string_view name, std::string_view port) {
  unsigned value = 0;
  const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), value);
  if (error != std::errc{} || end != port.data() + port.size() || value < 1 || value > 65535) {
    refuse(name, "the port after the colon must be a number from 1 to 65535.");
  }
}

void checkHost(std::string_view name) {
  std::string_view rest;
  if (name.front() == '[') {
    const auto close = name.find(']');
    if (close == std::string_view::npos || close == 1) refuse(name, "write an IPv6 address as [ADDRESS]:PORT.");
    rest = name.substr(close + 1);
    if (!rest.empty() && rest.front() != ':') refuse(name, "write an IPv6 address as [ADDRESS]:PORT.");
  } else {
    const auto colon = name.find(':');
    if (colon == 0) refuse(name, "the host before the colon is missing.");
    if (colon != std::string_view::npos) rest = name.substr(colon);
    if (rest.find(':', 1) != std::string_view::npos) refuse(name, "write an IPv6 address as [ADDRESS]:PORT.");
  }
  if (!rest.empty()) checkPort(name, rest.substr(1));
}

}  // namespace

orvalle_scan_api::_QS_SELECT_DEVICE_INFO parseDeviceName(std::string_view name) {
  orvalle_scan_api::_QS_SELECT_DEVICE_INFO info{};
  if (name.empty()) throw CommandError(ExitCode::kUsage, "Name a device with -d, such as -d scanner.local.");
  if (name.size() >= sizeof(info.primaryName)) {
    throw CommandError(ExitCode::kUsage, "The device name is too long: it may have 127 bytes at most.");
  }
  for (const char c : name) {
    if (static_cast<unsigned char>(c) < 0x20) refuse(name, "it has a control character in it.");
  }

  info.connectionType = kDirect;
  if (name.starts_with("usb:")) {
    checkUsb(name, name.substr(4));
  } else if (name.starts_with("unix:")) {
    if (name.size() == 5) refuse(name, "write the path of the socket after unix:.");
  } else {
    checkHost(name);
    info.connectionType = kNetwork;
  }
  std::memcpy(info.primaryName, name.data(), name.size());
  return info;
}

}  // namespace qsscan
