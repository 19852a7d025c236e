#include "scan_features.h"

#include <algorithm>
#include <charconv>
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

// Each member by itself, so that nothing comes into the gaps between them.
template <typename Group>
void switchOn(Group& group, int level) {
  group.enable = 1;
  group.level = static_cast<decltype(group.level)>(level);
}

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

template <int min, int max, int usual>
std::optional<LevelRange> fixedLevels(const Capability&) {
  return LevelRange{min, max, usual};
}

// A level is a place in one of these lists.
constexpr const char* kLineWords[] = {"horizontal", "vertical", "both"};  // as the record counts directions
constexpr const char* kHoleWords[] = {"around", "page", "white"};
constexpr std::int32_t kHoleFills[] = {0, 1, 6};  // in the record

// How a page is smoothed.
constexpr std::uint8_t kEvenOut = 0;
constexpr std::uint8_t kKeepEdges = 1;

void smooth(Settings& s, std::uint8_t mode, int level) {
  s.smoothing.mode = mode;
  switchOn(s.smoothing, level);
}
bool canSmooth(const Capability& c, COLORTYPE) { return c.smoothing.cap == kPresent; }
std::optional<LevelRange> smoothLevels(const Capability& c) { return rangeOf(c.smoothing.level); }

constexpr Feature kFeatures[] = {
    {.option = "--deskew",
     .group = kPageGroup,
     .help = "Straighten pages that were fed askew",
     .isDroppedOnLongPaper = true,
     .lack = "The device cannot straighten pages",
     .isServed = [](const Capability& c, COLORTYPE) { return c.autoDeskew == kPresent; },
     .set = [](Settings& s, int) { s.autoDeskew = 1; }},
    // The record has no device that turns pages: the library turns them, by what it reads on them.
    {.option = "--auto-rotate",
     .group = kPageGroup,
     .help = "Turn pages upright by the text on them",
     .isDroppedOnLongPaper = true,
     .set = [](Settings& s, int) { s.autoRotate = 1; }},
    {.option = "--auto-length",
     .group = kPageGroup,
     .help = "End a page where the device ends it, instead of filling it up with white",
     .lack = "The end of a sheet cannot be told",
     .isServed = [](const Capability& c, COLORTYPE) { return c.detectEndOfPage == kPresent; },
     .set = [](Settings& s, int) { s.detectEndOfPage = 1; }},
    {.option = "--skip-blank",
     .group = kFeedGroup,
     .help = "Leave blank pages out; a higher LEVEL takes more pages for blank",
     .takesLevel = true,
     .lack = "The device cannot tell blank pages",
     .isServed = [](const Capability& c, COLORTYPE) { return c.blankRemoval.cap == kPresent; },
     .levels = blankLevels,
     .set = [](Settings& s, int level) { switchOn(s.blankPageRemoval, level); }},
    {.option = "--detect-multifeed",
     .group = kFeedGroup,
     .help = "Stop where two sheets are fed at once",
     .lack = "The device cannot detect two sheets fed at once",
     .isServed = [](const Capability& c, COLORTYPE) { return c.multifeed == kPresent; },
     .set = [](Settings& s, int) { s.multifeedDetect = 1; }},
    {.option = "--carrier-sheet",
     .group = kFeedGroup,
     .help = "The sheet lies in a carrier sheet",
     .isDroppedOnLongPaper = true,
     .lack = "The device takes no carrier sheet",
     .isServed = [](const Capability& c, COLORTYPE) { return c.carrierSheet == kPresent; },
     .set = [](Settings& s, int) { s.carrierSheet = 1; }},
    {.option = "--quiet",
     .group = kFeedGroup,
     .help = "Scan slowly and quietly",
     .lack = "The device has no quiet mode",
     .isServed = [](const Capability& c, COLORTYPE) { return c.quietMode == kPresent; },
     .set = [](Settings& s, int) { s.quietScan = 1; }},
    {.option = "--auto-tone",
     .group = kPictureGroup,
     .help = "Make the darkest ink black and the paper white",
     .needsShades = true,
     .isDroppedOnLongPaper = true,
     .lack = "Tone cannot be corrected",
     .isServed = [](const Capability& c, COLORTYPE) { return c.colorTone.cap == kPresent; },
     .set = [](Settings& s, int) { s.colorTone.enable = s.colorTone.autoMode = 1; }},
    {.option = "--remove-background",
     .group = kPictureGroup,
     .help = "Make tinted paper white; LEVEL 0 to 255",
     .takesLevel = true,
     .lack = "The device cannot remove the background",
     .isServed = removesBackground,
     .levels = fixedLevels<0, 255, kMiddleOfBackground>,
     .set = [](Settings& s, int level) { switchOn(s.removeBackground, level); }},
    {.option = kProfileOption,
     .group = kPictureGroup,
     .help = "Attach the device's colour profile to the pages",
     .needsShades = true,
     .lack = "The device gives no colour profile",
     .isServed = [](const Capability& c, COLORTYPE) { return c.iccProfile == kPresent; },
     .set = [](Settings& s, int) { s.wantColorProfile = 1; }},
    {.option = "--sharpen",
     .group = kCleaningGroup,
     .help = "Sharpen edges; LEVEL 1 to 5",
     .takesLevel = true,
     .needsShades = true,
     .isDroppedOnLongPaper = true,
     .lack = "Edges cannot be sharpened",
     .isServed = [](const Capability& c, COLORTYPE) { return c.edgeEnhance.cap == kPresent; },
     .levels = [](const Capability& c) { return rangeOf(c.edgeEnhance.level); },
     .set = [](Settings& s, int level) { switchOn(s.edgeEnhance, level); }},
    {.option = "--smooth",
     .group = kCleaningGroup,
     .help = "Take the grain from the paper and leave edges sharp; LEVEL -50 to 50",
     .takesLevel = true,
     .excludes = "--descreen",
     .lack = "Pages cannot be smoothed",
     .isServed = canSmooth,
     .levels = smoothLevels,
     .set = [](Settings& s, int level) { smooth(s, kKeepEdges, level); }},
    {.option = "--descreen",
     .group = kCleaningGroup,
     .help = "Turn printed dots into shades, against moire; LEVEL -50 to 50",
     .takesLevel = true,
     .lack = "Pages cannot be smoothed",
     .isServed = canSmooth,
     .levels = smoothLevels,
     .set = [](Settings& s, int level) { smooth(s, kEvenOut, level); }},
    {.option = "--thicken-text",
     .group = kCleaningGroup,
     .help = "Make thin strokes thicker; LEVEL 1 to 5",
     .takesLevel = true,
     .excludes = "--join-dots",
     .lack = "Text cannot be thickened",
     .isServed = [](const Capability& c, COLORTYPE) { return c.thickText.cap == kPresent; },
     .levels = [](const Capability& c) { return rangeOf(c.thickText.level); },
     .set = [](Settings& s, int level) { switchOn(s.thickText, level); }},
    {.option = "--join-dots",
     .group = kCleaningGroup,
     .help = "Join the dots of needle-printed letters",
     .lack = "Dots cannot be joined",
     .isServed = [](const Capability& c, COLORTYPE) { return c.dotTextCombine == kPresent; },
     .set = [](Settings& s, int) { s.dotTextCombine = 1; }},
    // The record says of the next three for every device that it lacks them: they are the library's own work.
    {.option = "--despeckle",
     .group = kCleaningGroup,
     .help = "Take specks away; LEVEL 1 to 5, from the finest to the coarsest",
     .takesLevel = true,
     .isDroppedOnLongPaper = true,
     .levels = fixedLevels<1, 5, 3>,
     .set = [](Settings& s, int level) { switchOn(s.noiseRemoval, level); }},
    {.option = "--remove-lines",
     .group = kCleaningGroup,
     .help = "Take ruled lines away, but not the strokes across them",
     .words = kLineWords,
     .isDroppedOnLongPaper = true,
     .levels = fixedLevels<0, 2, 2>,
     .set =
         [](Settings& s, int direction) {
           s.lineRemoval.enable = 1;
           s.lineRemoval.direction = direction;
         }},
    {.option = "--remove-holes",
     .group = kCleaningGroup,
     .help = "Fill punched holes: with the paper around them, the colour of the page, or white",
     .words = kHoleWords,
     .levels = fixedLevels<0, 2, 0>,
     .set =
         [](Settings& s, int word) {
           s.punchHoleRemoval.enable = 1;
           s.punchHoleRemoval.fill = kHoleFills[word];
         }},
};

[[noreturn]] void refuse(const std::string& sentence) { throw CommandError(ExitCode::kNotServed, sentence); }
[[noreturn]] void refuseUsage(const std::string& sentence) { throw CommandError(ExitCode::kUsage, sentence); }

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

bool isWished(std::span<const FeatureWish> wishes, std::string_view option) {
  return std::any_of(wishes.begin(), wishes.end(),
                     [option](const FeatureWish& wish) { return wish.feature->option == option; });
}

}  // namespace

std::span<const Feature> featureTable() { return kFeatures; }

int parseLevel(const Feature& feature, std::string_view text) {
  if (feature.words.empty()) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc{} && end == text.data() + text.size()) return value;
    refuseUsage(std::string("The level of ") + feature.option + " is a whole number.");
  }
  std::string names;
  for (std::size_t i = 0; i < feature.words.size(); ++i) {
    if (text == feature.words[i]) return static_cast<int>(i);
    names += (i == 0 ? "" : ", ") + std::string(feature.words[i]);
  }
  refuseUsage(std::string("Write ") + feature.option + " alone or with one of: " + names + ".");
}

bool wishesProfile(std::span<const FeatureWish> wishes) { return isWished(wishes, kProfileOption); }

void setFeatures(std::span<const FeatureWish> wishes, const Capability& capability, Settings& settings) {
  for (const FeatureWish& wish : wishes) {
    const Feature& feature = *wish.feature;
    const std::string option = feature.option;
    if (feature.needsShades && !hasShades(settings.colorType)) {
      refuseUsage(option + " needs the mode color, gray or auto, since a page of the mode " +
                  modeName(settings.colorType) + " has no shades.");
    }
    if (feature.isDroppedOnLongPaper && isLongByName(settings.paperType)) {
      refuseUsage(option + " does not go with long paper: leave it out, or name the length of the paper.");
    }
    if (feature.excludes != nullptr && isWished(wishes, feature.excludes)) {
      refuseUsage(option + " and " + feature.excludes + " exclude each other.");
    }
    checkServed(feature, capability, settings.colorType);
    feature.set(settings, levelFor(wish, capability));
  }
}

}  // namespace qsscan
