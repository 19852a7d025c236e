// What lastResult and lastDetail say. Every failure has the top digit 4, which marks a lost or absent connection.
#pragma once

#include <cstdint>

namespace device_access {

inline constexpr std::uint32_t kSuccess = 0;
//                                                              lastDetail
inline constexpr std::uint32_t kNameRefused = 0x40500001;     // a NameFault: the name was not understood
inline constexpr std::uint32_t kNameNotFound = 0x40500002;    // EAI_ code, sign removed: no address for the host
inline constexpr std::uint32_t kConnectFailed = 0x40500003;   // errno: unreachable, no permission, no such socket
inline constexpr std::uint32_t kConnectTimeout = 0x40500004;  // errno: an address did not answer
inline constexpr std::uint32_t kConnectRefused = 0x40500005;  // errno: the machine is there, nobody listens
inline constexpr std::uint32_t kNotOpen = 0x40500006;         // 0: no connection, or it was lost before
inline constexpr std::uint32_t kLost = 0x40500007;            // errno, or 0 when the device closed in good order
inline constexpr std::uint32_t kWriteTimeout = 0x40500008;    // bytes that had been taken when the time was up
inline constexpr std::uint32_t kBadArgument = 0x40500009;     // 0: no buffer, or a size below 0
inline constexpr std::uint32_t kNoResource = 0x4050000A;      // errno: no memory, no descriptor left
inline constexpr std::uint32_t kDeviceAbsent =
    0x4050000B;  // USB: 0 not plugged in, ENODEV unplugged, ENOSYS no USB here
inline constexpr std::uint32_t kDeviceBusy =
    0x4050000C;  // USB: EBUSY another program has it, EAGAIN it goes on sending
inline constexpr std::uint32_t kNoPermission = 0x4050000D;     // errno: this user may not open the USB device
inline constexpr std::uint32_t kSeveralDevices = 0x4050000E;   // number of USB devices that the name fits
inline constexpr std::uint32_t kNoBulkEndpoints = 0x4050000F;  // USB: 0 no interface of the kind, ENOENT not configured
inline constexpr std::uint32_t kReadTimeout = 0x40500031;      // 0

// Why a device name was refused.
enum class NameFault : std::uint32_t {
  None = 0,
  Empty = 1,            // no name at all
  UnknownKind = 2,      // connection 1 without "unix:" or "usb:", or a connection that is neither 1 nor 2
  BadHost = 3,          // a character that no host name has, or an IPv6 address outside brackets
  BadPort = 4,          // not a number from 1 to 65535
  BadAddress = 5,       // brackets without an IPv6 address in them
  BadPath = 6,          // a socket path that is empty or longer than the system takes
  BadUsb = 7,           // "usb:" without two ids of four hexadecimal digits, or with a serial number that is none
  MisplacedPrefix = 8,  // "unix:" or "usb:" on a network connection
};

struct Outcome {
  std::uint32_t result = kSuccess;
  std::uint32_t detail = 0;

  bool ok() const { return result == kSuccess; }
};

}  // namespace device_access
