#include "device/grant.h"

#include <algorithm>

namespace vscan {
namespace {

constexpr int kAutomaticDpi = 300;

// One bit of colorType and one place of compressType for each colour mode.
struct ColorRow {
  ColorMode mode;
  const char* name;
  int colorBit;
  std::size_t compressPlace;
};

// A scan with automatic colour arrives as colour: what each page really is gets decided from the whole page.
constexpr ColorRow kColors[] = {
    {ColorMode::Text, "TEXT", 0, 0},    {ColorMode::ErrorDiffusion, "ERRDIF", 1, 1}, {ColorMode::Grey, "GRAY256", 2, 2},
    {ColorMode::Color, "C24BIT", 4, 4}, {ColorMode::Automatic, "AUTO", 4, 4},
};

const ColorRow* findColor(ColorMode mode) {
  const auto* const row = std::find_if(std::begin(kColors), std::end(kColors), [&](auto& r) { return r.mode == mode; });
  return row == std::end(kColors) ? nullptr : row;
}

bool hasBit(std::int64_t mask, int bit) { return (mask >> bit & 1) != 0; }

bool offersThreshold(const Capability& device, std::int64_t threshold) {
  constexpr int kManualBit = 0;
  return hasBit(device.at("monoThreshold"), kManualBit) && threshold >= device.at("monoThresholdMin") &&
         threshold <= device.at("monoThresholdMax");
}

bool fromFeeder(const Profile& profile, PaperSource wanted, bool feederLoaded, bool bedLoaded) {
  if (wanted != PaperSource::Automatic) return wanted == PaperSource::Feeder;
  if (!profile.hasFeeder() || !profile.hasFlatbed()) return profile.hasFeeder();
  // With nothing anywhere the feeder is the one to say that it is empty.
  return feederLoaded || !bedLoaded;
}

int grantedDpi(const Profile& profile, Path path, std::size_t axis, const Resolution& wanted) {
  const std::int64_t optical = profile.capability.at("opticalResolution", 2 * static_cast<std::size_t>(path) + axis);
  const std::int64_t dpi = wanted.isAutomatic ? kAutomaticDpi : axis == 0 ? wanted.x : wanted.y;
  return static_cast<int>(std::clamp(dpi, profile.minResolution, optical));
}

}  // namespace

void regrantResolution(const Profile& profile, const Resolution& wanted, GrantedScan& scan) {
  scan.dpiX = grantedDpi(profile, scan.path, 0, wanted);
  scan.dpiY = grantedDpi(profile, scan.path, 1, wanted);
  scan.maximum = maxArea(profile, scan.path, scan.settings.longPaper, scan.dpiX, scan.dpiY);
}

std::variant<GrantedScan, std::string> grantScan(const Profile& profile, const ScanSettings& settings,
                                                 bool feederLoaded, bool bedLoaded) {
  const ColorRow* const color = findColor(settings.color);
  if (color == nullptr) return "the colour mode is not offered";
  if (!hasBit(profile.capability.at("colorType"), color->colorBit)) {
    return std::string("colorType of the profile does not offer CLR=") + color->name;
  }
  const std::int64_t compressions = profile.capability.at("compressType", color->compressPlace);
  if (!hasBit(compressions, static_cast<int>(settings.compression))) {
    return "compressType of the profile does not offer this COMP for CLR=" + std::string(color->name);
  }
  if (settings.color == ColorMode::Automatic && settings.compression != Compression::Jpeg) {
    return "automatic colour needs COMP=JPEG";
  }
  if (settings.compression == Compression::Jpeg &&
      !hasBit(profile.capability.at("jpegSampling"), static_cast<int>(settings.jpegSampling))) {
    return "jpegSampling of the profile does not offer this JSF";
  }
  if (settings.threshold && !offersThreshold(profile.capability, *settings.threshold)) {
    return "monoThreshold of the profile does not offer this THRS";
  }
  const bool isFed = fromFeeder(profile, settings.source, feederLoaded, bedLoaded);
  if (isFed && !profile.hasFeeder()) return "this device has no feeder";
  if (!isFed && !profile.hasFlatbed()) return "this device has no bed";
  if (isFed && settings.sides != Sides::Front && !profile.hasDuplex()) return "this device cannot scan both sides";

  GrantedScan scan;
  scan.settings = settings;
  if (!isFed) scan.settings.sides = Sides::Front;
  scan.path = !isFed                                ? Path::Flatbed
              : scan.settings.sides == Sides::Front ? Path::FeederOneSide
                                                    : Path::FeederBothSides;
  scan.threshold = static_cast<int>(settings.threshold.value_or(profile.threshold));
  regrantResolution(profile, settings.resolution, scan);
  return scan;
}

}  // namespace vscan
