// The answer to GKP: tags, in which a byte 0xFF or a word 0xFFFF leaves an item open.
#include "protocol/panel_settings.h"

namespace vscan::gen2 {
namespace {

constexpr std::uint8_t kOpen = 0xFF;

std::uint8_t byteOf(std::optional<int> value) { return value ? static_cast<std::uint8_t>(*value) : kOpen; }
std::uint8_t byteOf(std::optional<bool> value) { return value ? static_cast<std::uint8_t>(*value) : kOpen; }
std::uint16_t wordOf(std::optional<int> value) { return value ? static_cast<std::uint16_t>(*value) : 0xFFFF; }

void appendTag(Bytes& body, std::uint16_t tag, const Bytes& value) {
  appendU16(body, tag);
  appendU16(body, static_cast<std::uint16_t>(value.size()));
  body.insert(body.end(), value.begin(), value.end());
}

Bytes scanSettings(const PanelSettings& s) {
  Bytes value;
  appendU16(value, wordOf(s.resolutionX));
  appendU16(value, wordOf(s.resolutionY));
  const Bytes rest{byteOf(s.color),    s.paper == nullptr ? kOpen : s.paper->code,
                   byteOf(s.isTurned), byteOf(s.brightness),
                   byteOf(s.contrast), kOpen};
  value.insert(value.end(), rest.begin(), rest.end());
  return value;
}

Bytes fileSettings(const PanelSettings& s) {
  std::optional<bool> compresses;
  if (s.compression) compresses = *s.compression != 0;
  return {s.format == nullptr ? kOpen : s.format->code, byteOf(compresses), byteOf(s.quality), 0};
}

}  // namespace

Bytes keyBody(const std::optional<PanelSettings>& pressed) {
  constexpr std::uint8_t kLongEdge = 1, kShortEdge = 2;
  Bytes body;
  appendTag(body, 0x1001, {static_cast<std::uint8_t>(pressed ? static_cast<int>(pressed->event) : 0), kOpen});
  if (pressed) {
    const PanelSettings& s = *pressed;
    const std::uint8_t binding = !s.bindsShortEdge ? kOpen : *s.bindsShortEdge ? kShortEdge : kLongEdge;
    appendTag(body, 0x1002, scanSettings(s));
    appendTag(body, 0x1003, {byteOf(s.isDuplex), binding});
    appendTag(body, 0x1004,
              {byteOf(s.crops), byteOf(s.deskews), byteOf(s.isLandscape), byteOf(s.dropsBlankPages),
               byteOf(s.removesBleedThrough), byteOf(s.removesBackground), byteOf(s.backgroundLevel), kOpen});
    appendTag(body, 0x1005, fileSettings(s));
  }
  appendTag(body, 0xF0F0, {});
  return body;
}

}  // namespace vscan::gen2
