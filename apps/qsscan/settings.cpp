#include "settings.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "exit_codes.h"

namespace qsscan {
namespace {

using namespace orvalle_scan_api;

constexpr CAP kPresent = 2;
constexpr double kMmPerInch = 25.4;
// Sizes are reported rounded and margins are taken off them, so a paper that is this much larger still fits.
constexpr double kSlackMm = 5;
constexpr double kLargestMm = 10000;

[[noreturn]] void refuse(const std::string& sentence) { throw CommandError(ExitCode::kNotServed, sentence); }
[[noreturn]] void refuseUsage(const std::string& sentence) { throw CommandError(ExitCode::kUsage, sentence); }

std::string mmText(double mm) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4g", mm);
  return text;
}

template <typename Items, typename Print>
std::string listed(const Items& items, Print print) {
  std::string text;
  for (const auto& item : items) text += (text.empty() ? "" : ", ") + print(item);
  return text;
}

void checkResolution(unsigned wishedDpi, const Capability& capability) {
  if (wishedDpi == 0) refuseUsage("A resolution of 0 is not possible.");
  const auto offered = offeredResolutions(capability);
  if (offered.empty() || std::find(offered.begin(), offered.end(), wishedDpi) != offered.end()) return;
  refuse("The device does not offer " + std::to_string(wishedDpi) + " dpi. It offers " +
         listed(offered, [](unsigned dpi) { return std::to_string(dpi); }) + ".");
}

COLORTYPE chooseMode(const std::optional<COLORTYPE>& wished, const Capability& capability) {
  const auto offered = offeredModes(capability);
  if (!wished) return offered.empty() ? COLORTYPE_COLOR24BIT : offered.front();
  if (offered.empty() || std::find(offered.begin(), offered.end(), *wished) != offered.end()) return *wished;
  refuse(std::string("The device does not offer the mode ") + modeName(*wished) + ". It offers " +
         listed(offered, [](COLORTYPE m) { return std::string(modeName(m)); }) + ".");
}

struct Sources {
  bool known, flatbed, feeder, feederDuplex;
};

Sources sourcesOf(const Capability& capability) {
  const SUPPORTPAPERSOURCES& s = capability.paperSource.supportPaperSource;
  const bool feeder = s.adfSimplex != 0 || s.adfDuplex != 0;
  return {s.flatbed != 0 || feeder, s.flatbed != 0, feeder, s.adfDuplex != 0};
}

void checkSource(const ScanWish& wish, const Sources& device) {
  if (wish.source == Source::kFlatbed && wish.duplex) {
    refuseUsage("The flatbed scans one side only: leave out --duplex or choose --source adf-duplex.");
  }
  if (!device.known) return;
  if (wish.source == Source::kFlatbed && !device.flatbed) refuse("The device has no flatbed. Use --source adf.");
  if (wish.source != Source::kFlatbed && wish.source != Source::kAuto && !device.feeder) {
    refuse("The device has no feeder. Use --source flatbed.");
  }
  if (wish.duplex && !device.feederDuplex) refuse("The device cannot scan both sides. Leave out duplex.");
}

PAPERSOURCESELECT chooseSource(const ScanWish& wish, const Sources& device, bool paperInFeeder) {
  switch (wish.source) {
    case Source::kFlatbed:
      return PAPERSOURCE_FLATBED;
    case Source::kFeeder:
    case Source::kFeederDuplex:
      return PAPERSOURCE_ADF;
    case Source::kAuto:
      break;
  }
  const bool feeder = device.feeder && (wish.duplex || !device.flatbed || paperInFeeder);
  return feeder ? PAPERSOURCE_ADF : PAPERSOURCE_FLATBED;
}

struct SizeMm {
  double width, height;  // 0 not reported
};

// The largest document of the chosen source, or of any source where the device chooses.
SizeMm largestDocument(const ScanWish& wish, const Capability& capability) {
  const DEVICESCANSIZES& sizes = capability.supportDocSizeMax;
  const AXIS feeder = wish.duplex ? sizes.duplex : sizes.simplex;
  SizeMm largest{0, 0};
  const auto take = [&](AXIS size) {
    largest.width = std::max(largest.width, toMm(size.x, sizes.unit));
    largest.height = std::max(largest.height, toMm(size.y, sizes.unit));
  };
  const bool flatbed = wish.source == Source::kFlatbed || (wish.source == Source::kAuto && !wish.duplex);
  if (flatbed) take(sizes.flatbed);
  if (wish.source != Source::kFlatbed) take(feeder);
  return largest;
}

void checkSize(double widthMm, double heightMm, SizeMm largest, const char* what) {
  const bool fits = (largest.width <= 0 || widthMm <= largest.width + kSlackMm) &&
                    (largest.height <= 0 || heightMm <= largest.height + kSlackMm);
  if (fits) return;
  refuse(std::string("The ") + what + " of " + mmText(widthMm) + " by " + mmText(heightMm) +
         " mm is too large: the device takes up to " + mmText(largest.width) + " by " + mmText(largest.height) +
         " mm.");
}

void setPaper(const ScanWish& wish, const Capability& capability, QS_SCANNER_PARAMETERS& settings) {
  if (wish.paperIsAuto) {
    if (capability.autoPaperSize != kPresent) {
      refuse("The device cannot detect the paper size. Name it with --page-size, such as --page-size a4.");
    }
    settings.paperType = PAPERTYPE_AUTO;
    settings.detectEndOfPage = 1;
    return;
  }
  settings.paperType = wish.paper.type;
  if (wish.paper.heightMm == 0) {
    if (capability.longPaperLengthMax.cap != kPresent) refuse("The device does not take long paper.");
    settings.detectEndOfPage = 1;
  }
  if (wish.paper.type == PAPERTYPE_CUSTOM) {
    settings.customPaperSize = {static_cast<std::int32_t>(std::lround(wish.paper.widthMm * 100)),
                                static_cast<std::int32_t>(std::lround(wish.paper.heightMm * 100)), UNIT_MILLIMETER};
  }
  if (wish.paperIsWished) {
    checkSize(wish.paper.widthMm, wish.paper.heightMm, largestDocument(wish, capability), "page size");
  }
}

std::int32_t toPixels(double mm, unsigned dpi) { return static_cast<std::int32_t>(std::lround(mm * dpi / kMmPerInch)); }

void setArea(const ScanWish& wish, const Capability& capability, QS_SCANNER_PARAMETERS& settings) {
  if (!wish.hasArea()) return;
  if (wish.paperIsAuto || wish.paper.heightMm == 0) {
    refuseUsage("An area (-l -t -x -y) needs a page size that is known: name one with --page-size.");
  }
  const double left = wish.leftMm.value_or(0);
  const double top = wish.topMm.value_or(0);
  const double width = wish.widthMm.value_or(wish.paper.widthMm - left);
  const double height = wish.heightMm.value_or(wish.paper.heightMm - top);
  for (const double mm : {left, top, width, height}) {
    // Written so that "not a number" is refused too.
    if (!(std::abs(mm) <= kLargestMm)) refuseUsage("The area is larger than any device can scan.");
  }
  if (left < 0 || top < 0) refuseUsage("-l and -t must not be negative.");
  checkSize(left + width, top + height, largestDocument(wish, capability), "area");
  settings.useScanArea = 1;
  settings.scanArea = {toPixels(left, wish.resolutionDpi), toPixels(top, wish.resolutionDpi),
                       toPixels(width, wish.resolutionDpi), toPixels(height, wish.resolutionDpi), UNIT_PIXEL};
  if (settings.scanArea.right <= 0 || settings.scanArea.bottom <= 0) {
    refuseUsage("The area is empty: -x and -y must be above 0, and -l and -t must lie on the page.");
  }
}

void setBrightness(const ScanWish& wish, const Capability& capability, QS_SCANNER_PARAMETERS& settings) {
  if (wish.contrast != 0 && settings.colorType == COLORTYPE_BLACKANDWHITE) {
    refuse("The mode mono has no contrast. Use --threshold or --brightness.");
  }
  settings.brightness = wish.brightness;
  settings.contrast = wish.contrast;
  if (!wish.threshold && !wish.autoThreshold) return;
  if (settings.colorType != COLORTYPE_BLACKANDWHITE) refuseUsage("--threshold belongs to --mode mono.");
  // The library finds it on each page; what the record says of the device's own finding does not matter.
  settings.autoThreshold = wish.autoThreshold;
  if (wish.autoThreshold) {
    // The library drops the wish there, without a word.
    if (isLongByName(settings.paperType)) {
      refuseUsage("--threshold auto does not go with long paper: give a number, or name the length of the paper.");
    }
    return;
  }
  const MONOTHRESHOLDSUPPORT& support = capability.monoThreshold;
  const bool reported = support.manualThresholdLevelMax > 0;
  const auto value = static_cast<std::int32_t>(*wish.threshold);
  if (reported && (value < support.manualThresholdLevelMin || value > support.manualThresholdLevelMax)) {
    refuse("The threshold must lie between " + std::to_string(support.manualThresholdLevelMin) + " and " +
           std::to_string(support.manualThresholdLevelMax) + ".");
  }
  settings.threshold = *wish.threshold;
}

// The number of sheets that the device is asked to stop after. Where it cannot count them, --sheets is refused while
// --pages gives 0, the pages being counted on this side then.
std::int32_t sheetLimit(const ScanWish& wish, const Capability& capability) {
  constexpr int kOneSheet = 1;
  constexpr int kAnyCount = 2;
  const auto canCount = [&](int sheets) {
    return capability.xferCount == kAnyCount || (capability.xferCount == kOneSheet && sheets == 1);
  };
  if (wish.sheets > 0 && !canCount(wish.sheets)) {
    refuse(capability.xferCount == kOneSheet
               ? "The device can stop after one sheet and after no other number. Use --pages."
               : "The device cannot stop after a number of sheets. Use --pages, which stops the scan from here.");
  }
  const int ofPages = wish.duplex ? (wish.pages + 1) / 2 : wish.pages;
  const int sheets = wish.sheets > 0 && ofPages > 0 ? std::min(wish.sheets, ofPages) : wish.sheets + ofPages;
  return canCount(sheets) ? sheets : 0;
}

}  // namespace

double toMm(double value, UNITTYPE unit) {
  switch (unit) {
    case UNIT_INCH:
      return value * kMmPerInch / 1000;
    case UNIT_MILLIMETER:
      return value / 100;
    default:
      return 0;
  }
}

std::vector<unsigned> offeredResolutions(const Capability& capability) {
  std::vector<unsigned> offered;
  for (const std::uint32_t dpi : capability.resolutionList) {
    if (dpi != 0) offered.push_back(dpi);
  }
  return offered;
}

std::vector<COLORTYPE> offeredModes(const Capability& capability) {
  std::vector<COLORTYPE> offered;
  if (capability.colorType.color24bit) offered.push_back(COLORTYPE_COLOR24BIT);
  if (capability.colorType.trueGray) offered.push_back(COLORTYPE_TRUEGRAY);
  if (capability.colorType.blackAndWhite) offered.push_back(COLORTYPE_BLACKANDWHITE);
  if (capability.colorType.errorDiffusion) offered.push_back(COLORTYPE_ERRORDIFFUSION);
  // The record's own flag for automatic colour is set for every device.
  if (capability.autoColor.cap == kPresent && capability.colorType.color24bit) offered.push_back(COLORTYPE_AUTO);
  return offered;
}

QS_SCANNER_PARAMETERS makeSettings(const ScanWish& wish, const Capability& capability, bool paperInFeeder) {
  checkResolution(wish.resolutionDpi, capability);
  const Sources device = sourcesOf(capability);
  checkSource(wish, device);

  QS_SCANNER_PARAMETERS settings{};
  settings.resolution = {wish.resolutionDpi, wish.resolutionDpi};
  settings.colorType = chooseMode(wish.mode, capability);
  settings.paperSource = chooseSource(wish, device, paperInFeeder);
  if (wish.duplex) settings.duplexType = wish.bindShortEdge ? DUPLEXTYPE_SHORT_EDGE : DUPLEXTYPE_LONG_EDGE;
  setPaper(wish, capability, settings);
  setArea(wish, capability, settings);
  setBrightness(wish, capability, settings);
  setFeatures(wish.features, capability, settings);
  setTone(wish.tone, capability, settings);
  setEdges(wish.edges, capability, settings);
  if (wish.colorDrop) {
    setColorDrop(*wish.colorDrop, wish.colorDropRange.value_or(kUsualDropRange), capability, settings);
  }
  if (settings.carrierSheet && wish.paperIsAuto) {
    refuseUsage("--carrier-sheet needs a page size that is known: name one with --page-size.");
  }
  settings.autoColorLevel = {capability.autoColor.firstDefault, capability.autoColor.secondDefault};
  settings.scanPageCount = sheetLimit(wish, capability);
  return settings;
}

}  // namespace qsscan
