#include "scan_features.h"

#include <algorithm>
#include <string>

#include "exit_codes.h"
#include "scan_wish.h"
#include "settings.h"

namespace qsscan {
namespace {

using namespace orvalle_scan_api;
using Settings = QS_SCANNER_PARAMETERS;

constexpr CAP kPresent = 2;
constexpr char kProfileOption[] = "--icc-profile";
constexpr int kMiddleOfBackground = 128;

std::optional<LevelRange> rangeOf(const VALUERANGE& range) { return LevelRange{range.min, range.max, range.def}; }

std::optional<LevelRange> blankLevels(const Capability& c) {
  if (c.blankRemoval.levelCap != kPresent) return std::nullopt;
  return LevelRange{c.blankRemoval.levelMin, c.blankRemoval.levelMax, c.blankRemoval.levelDefault};
}

bool removesBackground(const Capability& c, COLORTYPE mode) {
  switch (mode) {
    case COLORTYPE_BLACKANDWHITE:
      return c.backgroundRemoval.blackAndWhite.cap == kPresent;
    case COLORTYPE_ERRORDIFFUSION:
      return c.backgroundRemoval.errorDiffusion.cap == kPresent;
    case COLORTYPE_TRUEGRAY:
      return c.backgroundRemoval.trueGray.cap == kPresent;
    default:
      return c.backgroundRemoval.color24bit.cap == kPresent;
  }
}

constexpr Feature kFeatures[] = {
    {"--deskew", "Straighten pages that were fed askew", false, false, "The device cannot straighten pages",
     [](const Capability& c, COLORTYPE) { return c.autoDeskew == kPresent; }, nullptr,
     [](Settings& s, int) { s.autoDeskew = 1; }},
    // The record has no device that turns pages: the library turns them, by what it reads on them.
    {"--auto-rotate", "Turn pages upright by the text on them", false, false, "", nullptr, nullptr,
     [](Settings& s, int) { s.autoRotate = 1; }},
    {"--skip-blank", "Leave blank pages out; a higher LEVEL takes more pages for blank", true, false,
     "The device cannot tell blank pages",
     [](const Capability& c, COLORTYPE) { return c.blankRemoval.cap == kPresent; }, blankLevels,
     [](Settings& s, int level) {
       s.blankPageRemoval = {1, static_cast<std::uint32_t>(level)};
     }},
    {"--detect-multifeed", "Stop where two sheets are fed at once", false, false,
     "The device cannot detect two sheets fed at once",
     [](const Capability& c, COLORTYPE) { return c.multifeed == kPresent; }, nullptr,
     [](Settings& s, int) { s.multifeedDetect = 1; }},
    {"--remove-background", "Make tinted paper white; LEVEL 0 to 255", true, false,
     "The device cannot remove the background", removesBackground,
     [](const Capability&) -> std::optional<LevelRange> {
       return LevelRange{0, 255, kMiddleOfBackground};
     },
     [](Settings& s, int level) {
       s.removeBackground = {1, level};
     }},
    {"--carrier-sheet", "The sheet lies in a carrier sheet", false, false, "The device takes no carrier sheet",
     [](const Capability& c, COLORTYPE) { return c.carrierSheet == kPresent; }, nullptr,
     [](Settings& s, int) { s.carrierSheet = 1; }},
    {"--quiet", "Scan slowly and quietly", false, false, "The device has no quiet mode",
     [](const Capability& c, COLORTYPE) { return c.quietMode == kPresent; }, nullptr,
     [](Settings& s, int) { s.quietScan = 1; }},
    {kProfileOption, "Attach the device's colour profile to the pages", false, true,
     "The device gives no colour profile", [](const Capability& c, COLORTYPE) { return c.iccProfile == kPresent; },
     nullptr, [](Settings& s, int) { s.wantColorProfile = 1; }},
    {"--auto-tone", "Make the darkest ink black and the paper white", false, true, "Tone cannot be corrected",
     [](const Capability& c, COLORTYPE) { return c.colorTone.cap == kPresent; }, nullptr,
     [](Settings& s, int) { s.colorTone.enable = s.colorTone.autoMode = 1; }},
    {"--sharpen", "Sharpen edges; LEVEL 1 to 5", true, true, "Edges cannot be sharpened",
     [](const Capability& c, COLORTYPE) { return c.edgeEnhance.cap == kPresent; },
     [](const Capability& c) { return rangeOf(c.edgeEnhance.level); },
     [](Settings& s, int level) {
       s.edgeEnhance = {1, level};
     }},
    {"--smooth", "Even out paper and print; LEVEL -50 to 50", true, false, "Pages cannot be smoothed",
     [](const Capability& c, COLORTYPE) { return c.smoothing.cap == kPresent; },
     [](const Capability& c) { return rangeOf(c.smoothing.level); },
     [](Settings& s, int level) {
       constexpr std::uint8_t kKeepEdges = 1;
       s.smoothing = {1, kKeepEdges, level};
     }},
    {"--thicken-text", "Make thin strokes thicker; LEVEL 1 to 5", true, false, "Text cannot be thickened",
     [](const Capability& c, COLORTYPE) { return c.thickText.cap == kPresent; },
     [](const Capability& c) { return rangeOf(c.thickText.level); },
     [](Settings& s, int level) {
       s.thickText = {1, level};
     }},
    {"--join-dots", "Join the dots of needle-printed letters", false, false, "Dots cannot be joined",
     [](const Capability& c, COLORTYPE) { return c.dotTextCombine == kPresent; }, nullptr,
     [](Settings& s, int) { s.dotTextCombine = 1; }},
};

[[noreturn]] void refuse(const std::string& sentence) { throw CommandError(ExitCode::kNotServed, sentence); }

bool hasShades(COLORTYPE mode) { return mode != COLORTYPE_BLACKANDWHITE && mode != COLORTYPE_ERRORDIFFUSION; }

void checkServed(const Feature& feature, const Capability& capability, COLORTYPE mode) {
  if (feature.isServed == nullptr || feature.isServed(capability, mode)) return;
  std::string others;
  for (const COLORTYPE other : offeredModes(capability)) {
    if (!feature.isServed(capability, other) || (feature.needsShades && !hasShades(other))) continue;
    others += std::string(others.empty() ? "" : ", ") + modeName(other);
  }
  const std::string lack = feature.lack;
  if (others.empty()) refuse(lack + ". Leave out " + feature.option + ".");
  refuse(lack + " in the mode " + modeName(mode) + ". It can in: " + others + ".");
}

int levelFor(const FeatureWish& wish, const Capability& capability) {
  const std::string option = wish.feature->option;
  const auto range = wish.feature->levels != nullptr ? wish.feature->levels(capability) : std::nullopt;
  if (!range) {
    if (wish.level) refuse("The device has no levels for " + option + ": leave the number out.");
    return 0;
  }
  const int level = wish.level.value_or(range->usual);
  if (level < range->min || level > range->max) {
    refuse("The level of " + option + " must lie between " + std::to_string(range->min) + " and " +
           std::to_string(range->max) + ".");
  }
  return level;
}

}  // namespace

std::span<const Feature> featureTable() { return kFeatures; }

bool wishesProfile(std::span<const FeatureWish> wishes) {
  return std::any_of(wishes.begin(), wishes.end(),
                     [](const FeatureWish& wish) { return std::string_view(wish.feature->option) == kProfileOption; });
}

void setFeatures(std::span<const FeatureWish> wishes, const Capability& capability, Settings& settings) {
  for (const FeatureWish& wish : wishes) {
    if (wish.feature->needsShades && !hasShades(settings.colorType)) {
      throw CommandError(ExitCode::kUsage, std::string(wish.feature->option) +
                                               " needs the mode color, gray or auto, since a page of the "
                                               "mode " +
                                               modeName(settings.colorType) + " has no shades.");
    }
    checkServed(*wish.feature, capability, settings.colorType);
    wish.feature->set(settings, levelFor(wish, capability));
  }
}

}  // namespace qsscan
