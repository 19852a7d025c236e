#include "capability_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace qsscan {
namespace {

using namespace orvalle_scan_api;
using Json = nlohmann::ordered_json;

constexpr const char* kSilent = "not reported";
// A smallest size of one hundredth of a millimetre stands for a device that told none.
constexpr double kSmallestToldMm = 0.1;

Json capJson(CAP cap) { return cap == 2 ? Json(true) : cap == 1 ? Json(false) : Json(nullptr); }

Json sourcesJson(const Capability& c) {
  const SUPPORTPAPERSOURCES& s = c.paperSource.supportPaperSource;
  Json sources = Json::array();
  if (s.flatbed) sources.push_back("flatbed");
  if (s.adfSimplex) sources.push_back("adf");
  if (s.adfDuplex) sources.push_back("adf-duplex");
  if (s.cardslot) sources.push_back("card-slot");
  return sources.empty() ? Json(nullptr) : sources;
}

Json modesJson(const Capability& c) {
  Json modes = Json::array();
  for (const COLORTYPE mode : offeredModes(c)) modes.push_back(modeName(mode));
  return modes.empty() ? Json(nullptr) : modes;
}

Json resolutionsJson(const Capability& c) {
  const auto offered = offeredResolutions(c);
  return offered.empty() ? Json(nullptr) : Json(offered);
}

double rounded(double mm) { return std::round(mm * 10) / 10; }

Json sizeJson(AXIS size, UNITTYPE unit) {
  const double width = toMm(size.x, unit);
  const double height = toMm(size.y, unit);
  if (width < kSmallestToldMm && height < kSmallestToldMm) return nullptr;
  return Json{{"widthMm", rounded(width)}, {"heightMm", rounded(height)}};
}

Json sizesJson(const Capability& c, const DEVICESCANSIZES& sizes) {
  const SUPPORTPAPERSOURCES& s = c.paperSource.supportPaperSource;
  Json json = Json::object();
  if (s.flatbed) json["flatbed"] = sizeJson(sizes.flatbed, sizes.unit);
  if (s.adfSimplex) json["adf"] = sizeJson(sizes.simplex, sizes.unit);
  if (s.adfDuplex) json["adf-duplex"] = sizeJson(sizes.duplex, sizes.unit);
  const bool told = std::any_of(json.begin(), json.end(), [](const Json& size) { return !size.is_null(); });
  return told ? json : Json(nullptr);
}

Json opticalJson(const Capability& c) {
  const auto axis = [](AXIS dpi) { return dpi.x == 0 ? Json(nullptr) : Json{{"x", dpi.x}, {"y", dpi.y}}; };
  const SUPPORTPAPERSOURCES& s = c.paperSource.supportPaperSource;
  Json json = Json::object();
  if (s.flatbed) json["flatbed"] = axis(c.resolutionOptical.flatbed);
  if (s.adfSimplex) json["adf"] = axis(c.resolutionOptical.adfSimplex);
  if (s.adfDuplex) json["adf-duplex"] = axis(c.resolutionOptical.adfDuplex);
  return json.empty() ? Json(nullptr) : json;
}

Json longPaperJson(const Capability& c) {
  if (c.longPaperLengthMax.cap != 2) return capJson(c.longPaperLengthMax.cap);
  const auto length = [](std::int32_t value) {
    return value > 0 ? Json(rounded(toMm(value, UNIT_MILLIMETER))) : Json(nullptr);
  };
  return Json{{"oneSideMm", length(c.longPaperLengthMax.simplexMaxLength)},
              {"bothSidesMm", length(c.longPaperLengthMax.duplexMaxLength)}};
}

Json pageLimitJson(const Capability& c) {
  switch (c.xferCount) {
    case 1:
      return "one sheet";
    case 2:
      return "any number of sheets";
    default:
      return nullptr;
  }
}

Json rangeJson(const VALUERANGE& range) { return Json{{"min", range.min}, {"max", range.max}, {"default", range.def}}; }

Json thresholdJson(const MONOTHRESHOLDSUPPORT& support) {
  if (support.manuanThresholdCap != 2) return capJson(support.manuanThresholdCap);
  return rangeJson(
      {support.manualThresholdLevelMax, support.manualThresholdLevelMin, support.manualThresholdLevelDefault});
}

struct Row {
  const char* key;
  const char* label;
  Json (*value)(const Capability&);
};

constexpr Row kRows[] = {
    {"sources", "Sources", sourcesJson},
    {"feederCapacity", "Feeder capacity",
     [](const Capability& c) {
       return c.paperSource.adfStackCapacity > 0 ? Json(c.paperSource.adfStackCapacity) : Json(nullptr);
     }},
    {"modes", "Modes", modesJson},
    {"resolutions", "Resolutions (dpi)", resolutionsJson},
    {"opticalResolution", "Optical resolution (dpi)", opticalJson},
    {"largestDocument", "Largest document", [](const Capability& c) { return sizesJson(c, c.supportDocSizeMax); }},
    {"smallestScan", "Smallest scan", [](const Capability& c) { return sizesJson(c, c.deviceScanSizeMin); }},
    {"longPaper", "Long paper", longPaperJson},
    {"countsSheets", "Stops by itself after", pageLimitJson},
    {"automaticPageSize", "Automatic page size", [](const Capability& c) { return capJson(c.autoPaperSize); }},
    {"automaticCrop", "Automatic crop", [](const Capability& c) { return capJson(c.autoCrop); }},
    {"deskew", "Deskew", [](const Capability& c) { return capJson(c.autoDeskew); }},
    {"multifeedDetection", "Double-feed detection", [](const Capability& c) { return capJson(c.multifeed); }},
    {"blankPageRemoval", "Blank-page removal", [](const Capability& c) { return capJson(c.blankRemoval.cap); }},
    {"threshold", "Threshold for mono", [](const Capability& c) { return thresholdJson(c.monoThreshold); }},
    {"carrierSheet", "Carrier sheet", [](const Capability& c) { return capJson(c.carrierSheet); }},
    {"plasticCard", "Plastic card", [](const Capability& c) { return capJson(c.plasticCard); }},
    {"quietMode", "Quiet mode", [](const Capability& c) { return capJson(c.quietMode); }},
    {"colorProfile", "Colour profile", [](const Capability& c) { return capJson(c.iccProfile); }},
};

// The value in words. Objects of sizes, resolutions and ranges are told by their members.
std::string words(const Json& value) {
  if (value.is_null()) return kSilent;
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (value.is_string()) return value.get<std::string>();
  if (value.is_number()) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value.get<double>());
    return text;
  }
  std::string text;
  if (value.is_array()) {
    for (const Json& item : value) text += (text.empty() ? "" : ", ") + words(item);
    return text;
  }
  if (value.contains("widthMm")) return words(value["widthMm"]) + " by " + words(value["heightMm"]) + " mm";
  if (value.contains("x")) return words(value["x"]) + " by " + words(value["y"]);
  if (value.contains("oneSideMm")) {
    const auto length = [](const Json& mm) {
      return mm.is_null() ? std::string(kSilent) : "up to " + words(mm) + " mm";
    };
    return "one side " + length(value["oneSideMm"]) + "; both sides " + length(value["bothSidesMm"]);
  }
  if (value.contains("min")) return words(value["min"]) + " to " + words(value["max"]);
  for (const auto& [name, member] : value.items()) text += (text.empty() ? "" : "; ") + name + " " + words(member);
  return text;
}

}  // namespace

Json capabilityJson(const std::string& deviceName, const Capability& capability) {
  Json json = {{"device", deviceName}};
  for (const Row& row : kRows) json[row.key] = row.value(capability);
  return json;
}

std::string capabilityText(const std::string& deviceName, const Capability& capability) {
  constexpr int kLabelWidth = 26;
  const auto line = [](const char* label, const std::string& value) {
    char text[64];
    std::snprintf(text, sizeof text, "%-*s", kLabelWidth, (std::string(label) + ":").c_str());
    return text + value + "\n";
  };
  std::string text = line("Device", deviceName);
  for (const Row& row : kRows) text += line(row.label, words(row.value(capability)));
  return text;
}

}  // namespace qsscan
