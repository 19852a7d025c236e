#include "tone.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "exit_codes.h"

namespace qsscan {
namespace {

using namespace orvalle_scan_api;

constexpr CAP kPresent = 2;

[[noreturn]] void refuseUsage(const std::string& sentence) { throw CommandError(ExitCode::kUsage, sentence); }

std::string scaled(std::int32_t value, int scale) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", static_cast<double>(value) / scale);
  return text;
}

}  // namespace

void setTone(const ToneWish& wish, const Capability& capability, QS_SCANNER_PARAMETERS& settings) {
  if (std::none_of(wish.begin(), wish.end(), [](const auto& value) { return value.has_value(); })) return;
  const bool hasShades =
      settings.colorType != COLORTYPE_BLACKANDWHITE && settings.colorType != COLORTYPE_ERRORDIFFUSION;
  if (!hasShades) refuseUsage("--shadow, --highlight and --gamma need the mode color, gray or auto.");
  if (settings.colorTone.autoMode) refuseUsage("--auto-tone excludes --shadow, --highlight and --gamma.");
  if (capability.colorTone.cap != kPresent) {
    throw CommandError(ExitCode::kNotServed, "Tone cannot be corrected. Use --brightness and --contrast.");
  }
  settings.colorTone.enable = 1;
  for (std::size_t i = 0; i < wish.size(); ++i) {
    const ToneControl& control = kToneControls[i];
    const VALUERANGE& range = capability.colorTone.*control.range;
    std::int32_t& field = settings.colorTone.*control.field;
    field = control.neutral;
    if (!wish[i]) continue;
    const double value = *wish[i] * control.scale;
    // Written so that "not a number" is refused too.
    if (!(value >= range.min && value <= range.max)) {
      throw CommandError(ExitCode::kNotServed, std::string(control.option) + " must lie between " +
                                                   scaled(range.min, control.scale) + " and " +
                                                   scaled(range.max, control.scale) + ".");
    }
    field = static_cast<std::int32_t>(std::lround(value));
  }
  if (settings.colorTone.shadow >= settings.colorTone.highlight) refuseUsage("--shadow must be below --highlight.");
}

}  // namespace qsscan
