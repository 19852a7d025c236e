#include "device_name.h"

#include <arpa/inet.h>
#include <sys/un.h>

#include <algorithm>
#include <charconv>

namespace device_access {
namespace {

constexpr std::int32_t kDirect = 1;
constexpr std::int32_t kNetwork = 2;
constexpr std::string_view kUnixPrefix = "unix:";
constexpr std::string_view kUsbPrefix = "usb:";
constexpr std::size_t kMaxHostBytes = 253;
constexpr std::size_t kMaxSerialBytes = 126;  // the longest string that a USB device can have

bool isHostCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_';
}

bool isHostName(std::string_view host) {
  return !host.empty() && host.size() <= kMaxHostBytes && host.front() != '-' && host.front() != '.' &&
         std::all_of(host.begin(), host.end(), isHostCharacter);
}

// An IPv6 address, with an optional zone as in fe80::1%eth0.
bool isIpv6Address(std::string_view address) {
  in6_addr ignored;
  const std::string digits(address.substr(0, address.find('%')));
  const bool emptyZone = !address.empty() && address.back() == '%';
  return !emptyZone && inet_pton(AF_INET6, digits.c_str(), &ignored) == 1;
}

bool parsePort(std::string_view digits, std::uint16_t& port) {
  if (digits.empty() || digits.size() > 5) return false;
  unsigned value = 0;
  for (const char c : digits) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + static_cast<unsigned>(c - '0');
  }
  if (value < 1 || value > 65535) return false;
  port = static_cast<std::uint16_t>(value);
  return true;
}

// Four hexadecimal digits of either case.
bool parseUsbId(std::string_view digits, std::uint16_t& id) {
  const char* const end = digits.data() + digits.size();
  const auto parsed = std::from_chars(digits.data(), end, id, 16);
  return digits.size() == 4 && parsed.ec == std::errc() && parsed.ptr == end;
}

// What follows "usb:". A serial number may hold colons and is compared as it stands.
NameFault parseUsbName(std::string_view text, DeviceName& parsed) {
  constexpr std::size_t kIdsBytes = 9;  // VVVV:PPPP
  parsed.kind = DeviceName::Kind::Usb;
  if (text.size() < kIdsBytes || text[4] != ':') return NameFault::BadUsb;
  if (!parseUsbId(text.substr(0, 4), parsed.vendorId)) return NameFault::BadUsb;
  if (!parseUsbId(text.substr(5, 4), parsed.productId)) return NameFault::BadUsb;
  if (text.size() == kIdsBytes) return NameFault::None;
  const std::string_view serial = text.substr(kIdsBytes + 1);
  const auto printable = [](char c) { return c >= ' ' && c <= '~'; };
  if (text[kIdsBytes] != ':' || serial.empty() || serial.size() > kMaxSerialBytes) return NameFault::BadUsb;
  if (!std::all_of(serial.begin(), serial.end(), printable)) return NameFault::BadUsb;
  parsed.serial = serial;
  return NameFault::None;
}

NameFault parseNetworkName(std::string_view text, DeviceName& parsed) {
  parsed.kind = DeviceName::Kind::Tcp;
  if (text.starts_with(kUnixPrefix) || text.starts_with(kUsbPrefix)) return NameFault::MisplacedPrefix;

  std::string_view rest;  // what follows the host: empty, or a colon and the port
  if (text.front() == '[') {
    const std::size_t close = text.find(']');
    if (close == std::string_view::npos || !isIpv6Address(text.substr(1, close - 1))) return NameFault::BadAddress;
    parsed.numericHost = true;
    parsed.host = text.substr(1, close - 1);
    rest = text.substr(close + 1);
    if (!rest.empty() && rest.front() != ':') return NameFault::BadAddress;
  } else {
    const std::size_t colon = std::min(text.find(':'), text.size());
    parsed.host = text.substr(0, colon);
    rest = text.substr(colon);
    if (!isHostName(parsed.host) || std::count(rest.begin(), rest.end(), ':') > 1) return NameFault::BadHost;
  }
  if (!rest.empty() && !parsePort(rest.substr(1), parsed.port)) return NameFault::BadPort;
  return NameFault::None;
}

NameFault parseDirectName(std::string_view text, DeviceName& parsed) {
  if (text.starts_with(kUsbPrefix)) return parseUsbName(text.substr(kUsbPrefix.size()), parsed);
  if (!text.starts_with(kUnixPrefix)) return NameFault::UnknownKind;
  const std::string_view path = text.substr(kUnixPrefix.size());
  if (path.empty() || path.size() >= sizeof(sockaddr_un::sun_path)) return NameFault::BadPath;
  parsed.kind = DeviceName::Kind::Unix;
  parsed.path = path;
  return NameFault::None;
}

}  // namespace

NameFault parseDeviceName(std::int32_t connection, std::string_view text, DeviceName& parsed) {
  parsed = {};
  if (text.empty()) return NameFault::Empty;
  if (connection == kNetwork) return parseNetworkName(text, parsed);
  if (connection == kDirect) return parseDirectName(text, parsed);
  return NameFault::UnknownKind;
}

}  // namespace device_access
