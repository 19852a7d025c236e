// The answers of the first generation, byte for byte.
// Threads: reentrant.
#pragma once
#include <cstdint>
#include <string>

#include "protocol/answer.h"

namespace vscan::gen1 {

inline constexpr std::uint8_t kStatusGood = 0x80;  // of D and S
inline constexpr std::uint8_t kResultGood = 0x00;  // of I and E
inline constexpr std::uint8_t kKeyResult = 0x30;   // of K

inline const AnswerShape kBlockShape{.signature = {'\xC1', '\x00'}, .lengthBytes = 1, .lengthCountsItself = true};  // Q
inline const AnswerShape kStatusByte{.bareBytes = 1};
inline const AnswerShape kTextAnswer{.hasResult = true, .lengthBytes = 2};  // K, I, E
inline const AnswerShape kPlainAnswer{.lengthBytes = 2};                    // P: no result byte

struct GrantedValues {
  bool fromFeeder = false;
  int resolutionX = 0;
  int resolutionY = 0;
  std::int64_t maxWidthTenths = 0;  // of a millimetre
  int maxWidthPx = 0;
  std::int64_t maxHeightTenths = 0;
  int maxHeightPx = 0;
};

// The body of the answer to I: seven numbers in one line.
std::string grantedText(const GrantedValues& granted);

struct DocumentCorners {
  int resolutionX = 0;
  int resolutionY = 0;
  int left = 0;  // pixels at that resolution
  int top = 0;
  int right = 0;
  int bottom = 0;
};

// The body of the answer to E: the resolution and two opposite corners of the document, a line each.
std::string documentText(const DocumentCorners& corners);

}  // namespace vscan::gen1
