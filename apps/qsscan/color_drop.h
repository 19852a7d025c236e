// Colours that a scan leaves out: the coloured print of forms, stamps.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "scan_features.h"

namespace qsscan {

// A colour that the library knows by name.
struct DropPreset {
  const char* name;
  orvalle_scan_api::QSBOOL orvalle_scan_api::COLORDROP::*field;
  orvalle_scan_api::FLAG orvalle_scan_api::COLORDROPSUPPORT::*offered;
};

struct ColorDropWish {
  const DropPreset* preset = nullptr;  // null: the colour below
  std::array<std::uint8_t, 3> rgb{};
};

// "red", "green", "blue", "all", or a colour as RRGGBB in hexadecimal, with or without "#". Nothing for anything else.
std::optional<ColorDropWish> findColorDrop(std::string_view text);

// How many degrees of hue beside a colour of one's own are dropped too.
constexpr int kUsualDropRange = 40;

// Throws CommandError (not served) where the colour is not offered; the sentence names those that are.
void setColorDrop(const ColorDropWish& wish, int range, const Capability& capability,
                  orvalle_scan_api::QS_SCANNER_PARAMETERS& settings);

}  // namespace qsscan
