#include "color_drop.h"

#include <strings.h>

#include <charconv>
#include <string>

#include "exit_codes.h"

namespace qsscan {
namespace {

using namespace orvalle_scan_api;

constexpr CAP kPresent = 2;

constexpr DropPreset kPresets[] = {
    {"red", &COLORDROP::red, &COLORDROPSUPPORT::red},
    {"green", &COLORDROP::green, &COLORDROPSUPPORT::green},
    {"blue", &COLORDROP::blue, &COLORDROPSUPPORT::blue},
    {"all", &COLORDROP::chromatic, &COLORDROPSUPPORT::chromatic},
};

std::string offeredColors(const COLORDROPSUPPORT& support) {
  std::string names;
  const auto add = [&names](const char* name) { names += (names.empty() ? "" : ", ") + std::string(name); };
  for (const DropPreset& preset : kPresets) {
    if (support.*preset.offered) add(preset.name);
  }
  if (support.custom != 0) add("a colour as RRGGBB");
  return names;
}

}  // namespace

std::optional<ColorDropWish> findColorDrop(std::string_view text) {
  for (const DropPreset& preset : kPresets) {
    if (strcasecmp(preset.name, std::string(text).c_str()) == 0) return ColorDropWish{&preset, {}};
  }
  if (text.starts_with('#')) text.remove_prefix(1);
  std::uint32_t rgb = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), rgb, 16);
  if (text.size() != 6 || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return ColorDropWish{nullptr,
                       {static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8 & 0xFF),
                        static_cast<std::uint8_t>(rgb & 0xFF)}};
}

void setColorDrop(const ColorDropWish& wish, int range, const Capability& capability, QS_SCANNER_PARAMETERS& settings) {
  const COLORDROPSUPPORT& support = capability.colorDrop;
  const bool offered = wish.preset != nullptr ? support.*wish.preset->offered != 0 : support.custom != 0;
  if (support.cap != kPresent || !offered) {
    const std::string names = support.cap == kPresent ? offeredColors(support) : "";
    throw CommandError(ExitCode::kNotServed, names.empty()
                                                 ? "Colours cannot be dropped. Leave out --color-drop."
                                                 : "This colour cannot be dropped. There are: " + names + ".");
  }
  COLORDROP& drop = settings.colorDrop;
  drop.enable = 1;
  if (wish.preset != nullptr) {
    drop.*wish.preset->field = 1;
    return;
  }
  drop.customRed = wish.rgb[0];
  drop.customGreen = wish.rgb[1];
  drop.customBlue = wish.rgb[2];
  drop.customRange = range;
  drop.customFlag = 1;  // as the named colours have it
}

}  // namespace qsscan
