#include "protocol/gen2_answers.h"

namespace vscan::gen2 {
namespace {

enum Tag : std::uint16_t {
  kSource = 0x2001,      // 1 feeder, 2 bed; a byte that means nothing
  kResolution = 0x2002,  // x, y
  kSize = 0x2003,        // the widest and longest picture at that resolution
  kColorProfile = 0x3101,
  kGreyProfile = 0x3102,
  kTerminator = 0xF0F0,
};

void appendTag(Bytes& body, Tag tag, const Bytes& value) {
  appendU16(body, tag);
  appendU16(body, static_cast<std::uint16_t>(value.size()));
  body.insert(body.end(), value.begin(), value.end());
}

Bytes resolution(std::uint16_t x, std::uint16_t y) {
  Bytes value;
  appendU16(value, x);
  appendU16(value, y);
  return value;
}

Bytes size(std::uint32_t widthPx, std::uint32_t heightPx) {
  Bytes value;
  appendU32(value, widthPx);
  appendU32(value, heightPx);
  return value;
}

}  // namespace

AnswerShape framedShape(const std::string& mnemonic) {
  constexpr std::size_t kSignatureBytes = 3;
  std::string signature = mnemonic.substr(0, kSignatureBytes);
  signature.resize(kSignatureBytes, '?');
  return {.hasResult = true, .signature = signature, .lengthBytes = 4};
}

Bytes grantedBody(const GrantedValues& granted) {
  Bytes source;
  appendU8(source, granted.fromFeeder ? 1 : 2);
  appendU8(source, 0);
  Bytes body;
  appendTag(body, kSource, source);
  appendTag(body, kResolution, resolution(granted.resolutionX, granted.resolutionY));
  appendTag(body, kSize, size(granted.maxWidthPx, granted.maxHeightPx));
  appendTag(body, kTerminator, {});
  return body;
}

Bytes profilesBody(const Bytes& color, const Bytes& grey) {
  Bytes body;
  appendTag(body, kColorProfile, color);
  appendTag(body, kGreyProfile, grey);
  appendTag(body, kTerminator, {});
  return body;
}

Bytes documentBody(const DocumentSize& document) {
  Bytes body;
  appendTag(body, kResolution, resolution(document.resolutionX, document.resolutionY));
  appendTag(body, kSize, size(document.widthPx, document.heightPx));
  appendTag(body, kTerminator, {});
  return body;
}

}  // namespace vscan::gen2
