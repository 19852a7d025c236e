// The bodies of the answers of the second generation, byte for byte.
// Threads: reentrant.
#pragma once
#include <cstdint>

#include "protocol/answer.h"

namespace vscan::gen2 {

// Shapes: result byte, the letters of the command, four length bytes, body; the document check answers two bytes.
AnswerShape framedShape(const std::string& mnemonic);
inline const AnswerShape kTwoBytes{.bareBytes = 2};
inline const AnswerShape kGenerationShape{.signature = {'\xC1', '\x00'}, .lengthBytes = 1, .lengthCountsItself = true};

struct GrantedValues {
  bool fromFeeder = false;
  std::uint16_t resolutionX = 0;
  std::uint16_t resolutionY = 0;
  std::uint32_t maxWidthPx = 0;
  std::uint32_t maxHeightPx = 0;
};

// The body of the answer to SSP.
Bytes grantedBody(const GrantedValues& granted);

// The body of the answer to GCP: a colour and a grey profile.
Bytes profilesBody(const Bytes& color, const Bytes& grey);

struct DocumentSize {
  std::uint16_t resolutionX = 0;
  std::uint16_t resolutionY = 0;
  std::uint32_t widthPx = 0;
  std::uint32_t heightPx = 0;
};

// The body of the answer to GDS. No host is known that reads it; the tags are those of SSP's answer.
Bytes documentBody(const DocumentSize& size);

// What follows a good result in the answer to CKD: a document is there.
inline constexpr std::uint8_t kDocumentThere = 0x80;

}  // namespace vscan::gen2
