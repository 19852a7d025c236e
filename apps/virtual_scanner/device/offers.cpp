#include "device/offers.h"

namespace vscan {
namespace {

bool hasBit(std::int64_t mask, int bit) { return (mask >> bit & 1) != 0; }

// What of a scan's settings, when it is asked for, needs an ability of the device.
struct OfferRow {
  bool (*isAsked)(const ScanSettings& wanted);
  bool (*isOffered)(const Abilities& can, const GrantedScan& scan);
  const char* refusal;
};

constexpr OfferRow kOffers[] = {
    {[](const ScanSettings& s) { return s.color == ColorMode::Automatic; },
     [](const Abilities& can, const GrantedScan&) { return can.judgesColor; },
     "the profile does not offer automatic colour"},
    {[](const ScanSettings& s) { return s.color == ColorMode::Automatic; },
     [](const Abilities&, const GrantedScan& scan) { return scan.settings.compression == Compression::Jpeg; },
     "automatic colour needs JPEG"},
    {[](const ScanSettings& s) { return s.colorLevel.has_value(); },
     [](const Abilities& can, const GrantedScan&) { return can.judgesColor; },
     "the profile does not offer levels of automatic colour"},
    {[](const ScanSettings& s) { return s.compression == Compression::Jpeg; },
     [](const Abilities& can, const GrantedScan& scan) {
       return hasBit(can.jpegSamplings, static_cast<int>(scan.settings.jpegSampling));
     },
     "the profile does not offer this JPEG sampling"},
    {[](const ScanSettings& s) { return s.threshold.has_value(); },
     [](const Abilities& can, const GrantedScan& scan) {
       return *scan.settings.threshold >= can.thresholdMin && *scan.settings.threshold <= can.thresholdMax;
     },
     "the profile does not offer this threshold"},
    {[](const ScanSettings& s) { return s.sides == Sides::BackOnly; },
     [](const Abilities& can, const GrantedScan&) { return can.scansBacksOnly; },
     "the profile does not offer to scan backs only"},
    {[](const ScanSettings& s) { return s.imageProcessing != ImageProcessing::Normal; },
     [](const Abilities& can, const GrantedScan& scan) {
       return hasBit(can.imageProcessings, static_cast<int>(scan.settings.imageProcessing) - 1);
     },
     "the profile does not offer this image processing"},
    {[](const ScanSettings& s) { return s.paperType == PaperType::PlasticCard; },
     [](const Abilities& can, const GrantedScan&) { return can.takesPlasticCards; },
     "this device takes no plastic cards"},
    {[](const ScanSettings& s) { return s.longPaper; },
     [](const Abilities& can, const GrantedScan&) {
       return can.of(Path::FeederOneSide).longLength != 0 || can.of(Path::FeederBothSides).longLength != 0;
     },
     "this device takes no long paper"},
    {[](const ScanSettings& s) { return s.carrierSheet != CarrierSheet::None; },
     [](const Abilities& can, const GrantedScan&) { return can.takesCarrierSheets; },
     "this device takes no carrier sheets"},
    {[](const ScanSettings& s) { return s.backgroundRemoval.isOn; },
     [](const Abilities&, const GrantedScan& scan) { return scan.backgroundLevels != 0; },
     "the profile does not offer to remove the background in this colour mode"},
    {[](const ScanSettings& s) { return s.doubleFeedDetection.isOn; },
     [](const Abilities& can, const GrantedScan&) { return can.findsDoubleFeeds; },
     "the profile does not offer to find double feeds"},
    {[](const ScanSettings& s) { return s.doubleFeedDetection.level.has_value(); },
     [](const Abilities& can, const GrantedScan&) { return can.gradesDoubleFeeds; },
     "the profile does not offer levels of finding double feeds"},
    {[](const ScanSettings& s) { return s.deskew; },
     [](const Abilities& can, const GrantedScan& scan) { return can.of(scan.path).straightens; },
     "this device does not straighten sheets there"},
    {[](const ScanSettings& s) { return s.isLandscape; },
     [](const Abilities& can, const GrantedScan& scan) { return can.of(scan.path).takesLandscape; },
     "this device takes no landscape sheets there"},
    {[](const ScanSettings& s) { return s.blankRemoval.isOn; },
     [](const Abilities& can, const GrantedScan&) { return can.findsBlankPages; },
     "the profile does not offer to remove blank pages"},
    {[](const ScanSettings& s) { return s.blankRemoval.level.has_value(); },
     [](const Abilities& can, const GrantedScan&) { return can.gradesBlankPages; },
     "the profile does not offer levels of removing blank pages"},
    {[](const ScanSettings& s) { return s.removesMoire; },
     [](const Abilities& can, const GrantedScan& scan) {
       return can.removesMoire && (can.moireDpi[0] == 0 || scan.dpiX <= can.moireDpi[0]) &&
              (can.moireDpi[1] == 0 || scan.dpiY <= can.moireDpi[1]);
     },
     "the profile does not offer to remove moire at this resolution"},
    {[](const ScanSettings& s) { return s.gamma.isOn; },
     [](const Abilities& can, const GrantedScan& scan) {
       return scan.settings.gamma.level.value_or(1) <= can.gammaMax;
     },
     "the profile does not offer this gamma"},
    {[](const ScanSettings& s) { return s.isQuiet; },
     [](const Abilities& can, const GrantedScan&) { return can.isQuietOnWish; }, "the profile offers no quiet scan"},
};

std::optional<std::string> areaNotOffered(const Abilities& can, Path path, AreaKind kind) {
  switch (kind) {
    case AreaKind::Over:
      if (!can.overScans) return "the profile does not offer to scan beyond the sheet";
      break;
    case AreaKind::AutomaticDeskewed:
      if (!can.of(path).straightens) return "this device does not straighten sheets there";
      [[fallthrough]];
    case AreaKind::Automatic:
      if (!can.of(path).findsSize) return "this device does not find out the size of sheets there";
      break;
    case AreaKind::Normal:
    case AreaKind::Full:
      break;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> notOffered(const Abilities& can, const GrantedScan& scan) {
  for (const OfferRow& row : kOffers) {
    if (row.isAsked(scan.settings) && !row.isOffered(can, scan)) return row.refusal;
  }
  return areaNotOffered(can, scan.path, scan.settings.areaKind);
}

std::optional<std::string> notOffered(const Abilities& can, const GrantedScan& scan, const StartSettings& start) {
  if (start.reading == Reading::Edges && !can.findsEdges) return "this device finds no edges";
  if (start.reading == Reading::Corners && !can.findsCorners) return "this device finds no corners";
  if (auto reason = areaNotOffered(can, scan.path, start.areaKind)) return reason;
  return notOffered(can, scan);
}

}  // namespace vscan
