// The grammar of device names.
//
//   connection 1   unix:PATH                          a stream socket on this machine
//                  usb:VVVV:PPPP[:SERIAL]             a USB device: ids of four hexadecimal digits each, serial number
//   connection 2   HOST  HOST:PORT  [IPV6]  [IPV6]:PORT
//
// A name is taken as it stands or refused, never guessed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "device_result.h"

namespace device_access {

inline constexpr std::uint16_t kDefaultPort = 9480;

struct DeviceName {
  enum class Kind { Tcp, Unix, Usb };
  Kind kind = Kind::Tcp;
  std::string host;          // Tcp: a host name or an address without brackets
  bool numericHost = false;  // Tcp: host stood in brackets and is looked up nowhere
  std::uint16_t port = kDefaultPort;
  std::string path;             // Unix
  std::uint16_t vendorId = 0;   // Usb
  std::uint16_t productId = 0;  // Usb
  std::string serial;           // Usb: empty where the name has none
};

// Fills parsed and returns None, or says why the name is refused and leaves parsed unspecified.
NameFault parseDeviceName(std::int32_t connection, std::string_view text, DeviceName& parsed);

}  // namespace device_access
