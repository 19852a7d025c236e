#include "device/grant.h"

#include <algorithm>

#include "device/offers.h"

namespace vscan {
namespace {

constexpr int kAutomaticDpi = 300;

// For each colour mode its bit of colorType and its place in lists that have one for each colour.
struct ColorRow {
  ColorMode mode;
  const char* name;
  int colorBit;
  std::size_t place;
};

// A scan with automatic colour arrives as colour: what each page really is gets decided from the whole page.
constexpr ColorRow kColors[] = {
    {ColorMode::Text, "TEXT", 0, 0},    {ColorMode::ErrorDiffusion, "ERRDIF", 1, 1},
    {ColorMode::Grey, "GRAY256", 2, 2}, {ColorMode::Palette, "C256", 3, 3},
    {ColorMode::Color, "C24BIT", 4, 4}, {ColorMode::Automatic, "AUTO", 4, 4},
};

const ColorRow* findColor(ColorMode mode) {
  const auto* const row = std::find_if(std::begin(kColors), std::end(kColors), [&](auto& r) { return r.mode == mode; });
  return row == std::end(kColors) ? nullptr : row;
}

bool hasBit(std::int64_t mask, int bit) { return (mask >> bit & 1) != 0; }

bool fromFeeder(const Abilities& can, PaperSource wanted, bool feederLoaded, bool bedLoaded) {
  if (wanted != PaperSource::Automatic) return wanted == PaperSource::Feeder;
  if (!can.hasFeeder || !can.hasFlatbed) return can.hasFeeder;
  // With nothing anywhere the feeder is the one to say that it is empty.
  return feederLoaded || !bedLoaded;
}

int grantedDpi(const Profile& profile, Path path, std::size_t axis, const Resolution& wanted) {
  const std::int64_t optical = profile.abilities().of(path).dpi[axis];
  const std::int64_t dpi = wanted.isAutomatic ? kAutomaticDpi : axis == 0 ? wanted.x : wanted.y;
  return static_cast<int>(std::clamp(dpi, profile.minResolution, optical));
}

}  // namespace

void regrantResolution(const Profile& profile, const Resolution& wanted, GrantedScan& scan) {
  scan.dpiX = grantedDpi(profile, scan.path, 0, wanted);
  scan.dpiY = grantedDpi(profile, scan.path, 1, wanted);
  scan.maximum = maxArea(profile, scan.path, scan.settings.longPaper, scan.dpiX, scan.dpiY);
  scan.reach = scan.maximum;
  if (profile.generation() == Generation::First) {
    // Hosts of this generation round the width of an area up to whole 16 pixels and count on lines of that width.
    constexpr int kWidthStepPx = 16;
    scan.reach.widthPx = (scan.maximum.widthPx + kWidthStepPx - 1) / kWidthStepPx * kWidthStepPx;
  }
}

std::variant<GrantedScan, std::string> grantScan(const Profile& profile, const ScanSettings& settings,
                                                 bool feederLoaded, bool bedLoaded) {
  const ColorRow* const color = findColor(settings.color);
  if (color == nullptr) return "the colour mode is not offered";
  const Abilities can = profile.abilities();
  if (!hasBit(can.colors, color->colorBit)) {
    return std::string("the profile does not offer the colour mode ") + color->name;
  }
  if (!hasBit(can.compressions[color->place], static_cast<int>(settings.compression))) {
    return std::string("the profile does not offer this compression for the colour mode ") + color->name;
  }
  const bool isFed = fromFeeder(can, settings.source, feederLoaded, bedLoaded);
  if (isFed && !can.hasFeeder) return "this device has no feeder";
  if (!isFed && !can.hasFlatbed) return "this device has no bed";
  if (isFed && settings.sides != Sides::Front && !can.hasDuplex) return "this device cannot scan both sides";

  GrantedScan scan;
  scan.settings = settings;
  if (!isFed) scan.settings.sides = Sides::Front;
  scan.path = !isFed                                ? Path::Flatbed
              : scan.settings.sides == Sides::Front ? Path::FeederOneSide
                                                    : Path::FeederBothSides;
  scan.threshold = static_cast<int>(settings.threshold.value_or(profile.threshold));
  scan.backgroundLevels = can.backgroundLevels[color->place];
  regrantResolution(profile, settings.resolution, scan);
  if (const auto reason = notOffered(can, scan)) return *reason;
  return scan;
}

}  // namespace vscan
