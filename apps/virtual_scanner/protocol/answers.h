// The answers of the second generation, byte for byte. Every framed answer has a body of at least one byte: a host
// that waits for more than nothing would otherwise wait until its time is up.
#pragma once
#include <cstdint>
#include <string_view>

#include "support/little_endian.h"

namespace vscan::gen2 {

// Results of a refused command, and the device errors of the image stream.
enum DeviceError : std::uint8_t {
  kInternalFault = 0x84,
  kFeederEmpty = 0x90,
  kSettingsNotPossible = 0xA4,
};

struct GrantedValues {
  bool fromFeeder = false;
  std::uint16_t resolutionX = 0;
  std::uint16_t resolutionY = 0;
  std::uint32_t maxWidthPx = 0;
  std::uint32_t maxHeightPx = 0;
};

// C1 00, one length byte that counts itself, body. The first body byte tells the generation.
Bytes capabilityAnswer(std::uint8_t firstBodyByte);

// Result byte, three letters, four length bytes, body.
Bytes framedAnswer(std::uint8_t result, std::string_view signature, const Bytes& body);

// A framed answer whose body is the result once more. Signature: the first three letters of the command.
Bytes framedRefusal(DeviceError result, std::string_view mnemonic);

// The body of the answer to SSP.
Bytes grantedBody(const GrantedValues& granted);

// The two bytes that answer CKD.
Bytes documentAnswer(bool hasDocument);

}  // namespace vscan::gen2
