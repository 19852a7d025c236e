#include "protocol/answers.h"

#include <string>

namespace vscan::gen2 {
namespace {

constexpr std::uint16_t kTerminator = 0xF0F0;
constexpr std::uint8_t kDocumentThere = 0x80;

}  // namespace

Bytes capabilityAnswer(std::uint8_t firstBodyByte) { return {0xC1, 0x00, 0x02, firstBodyByte}; }

Bytes framedAnswer(std::uint8_t result, std::string_view signature, const Bytes& body) {
  Bytes answer;
  answer.reserve(1 + signature.size() + 4 + body.size());
  appendU8(answer, result);
  answer.insert(answer.end(), signature.begin(), signature.end());
  appendU32(answer, static_cast<std::uint32_t>(body.size()));
  answer.insert(answer.end(), body.begin(), body.end());
  return answer;
}

Bytes framedRefusal(DeviceError result, std::string_view mnemonic) {
  std::string signature(mnemonic.substr(0, 3));
  signature.resize(3, '?');
  return framedAnswer(result, signature, {result});
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

Bytes documentAnswer(bool hasDocument) {
  if (hasDocument) return {0x00, kDocumentThere};
  return {kFeederEmpty, 0x00};
}

}  // namespace vscan::gen2
