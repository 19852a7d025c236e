#include "protocol/gen2_answers.h"

namespace vscan::gen2 {
namespace {

constexpr std::uint16_t kTerminator = 0xF0F0;

}  // namespace

AnswerShape framedShape(const std::string& mnemonic) {
  constexpr std::size_t kSignatureBytes = 3;
  std::string signature = mnemonic.substr(0, kSignatureBytes);
  signature.resize(kSignatureBytes, '?');
  return {.hasResult = true, .signature = signature, .lengthBytes = 4};
}

Bytes grantedBody(const GrantedValues& granted) {
  Bytes body;
  appendU16(body, 0x2001);  // paper source: 1 feeder, 2 bed
  appendU16(body, 2);
  appendU8(body, granted.fromFeeder ? 1 : 2);
  appendU8(body, 0);
  appendU16(body, 0x2002);  // resolution
  appendU16(body, 4);
  appendU16(body, granted.resolutionX);
  appendU16(body, granted.resolutionY);
  appendU16(body, 0x2003);  // the widest and longest picture at that resolution
  appendU16(body, 8);
  appendU32(body, granted.maxWidthPx);
  appendU32(body, granted.maxHeightPx);
  appendU16(body, kTerminator);
  appendU16(body, 0);
  return body;
}

}  // namespace vscan::gen2
