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
constexpr CAP kPresent = 2;

Json capJson(CAP cap) { return cap == kPresent ? Json(true) : cap == 1 ? Json(false) : Json(nullptr); }

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

bool anyTold(const Json& object) {
  return std::any_of(object.begin(), object.end(), [](const Json& member) { return !member.is_null(); });
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
  return anyTold(json) ? json : Json(nullptr);
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
  if (c.longPaperLengthMax.cap != kPresent) return capJson(c.longPaperLengthMax.cap);
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

Json rangeJson(const VALUERANGE& range, double scale = 1) {
  const auto scaled = [scale](std::int32_t value) { return scale == 1 ? Json(value) : Json(value / scale); };
  return Json{{"min", scaled(range.min)}, {"max", scaled(range.max)}, {"default", scaled(range.def)}};
}

// A feature with levels; without a range it is there or not.
Json levelJson(CAP cap, const VALUERANGE& range) {
  return cap == kPresent && range.max != range.min ? rangeJson(range) : capJson(cap);
}

Json thresholdJson(const MONOTHRESHOLDSUPPORT& support) {
  return levelJson(support.manuanThresholdCap, {support.manualThresholdLevelMax, support.manualThresholdLevelMin,
                                                support.manualThresholdLevelDefault});
}

Json blankLevelJson(const Capability& c) {
  const BLANKREMOVALSUPPORT& blank = c.blankRemoval;
  if (blank.cap != kPresent || blank.levelCap != kPresent) return capJson(blank.cap);
  return rangeJson({blank.levelMax, blank.levelMin, blank.levelDefault});
}

Json autoColorJson(const Capability& c) {
  const AUTOCOLORLEVELSUPPORT& a = c.autoColor;
  if (a.cap != kPresent) return capJson(a.cap);
  return Json{{"first", rangeJson({a.firstMax, a.firstMin, a.firstDefault})},
              {"second", rangeJson({a.secondMax, a.secondMin, a.secondDefault})}};
}

Json toneJson(const Capability& c) {
  constexpr double kGammaScale = 100;
  const COLORTONESUPPORT& tone = c.colorTone;
  if (tone.cap != kPresent) return capJson(tone.cap);
  return Json{{"brightness", rangeJson(tone.brightness)},
              {"contrast", rangeJson(tone.contrast)},
              {"shadow", rangeJson(tone.shadow)},
              {"highlight", rangeJson(tone.highlight)},
              {"gamma", rangeJson(tone.gamma, kGammaScale)}};
}

Json backgroundJson(const Capability& c) {
  const BACKGROUNDREMOVALSUPPORT& b = c.backgroundRemoval;
  // A single level is no choice.
  const auto mode = [](const SUPPORTADJUSTLEVEL& s) { return levelJson(s.cap, {s.level > 1 ? s.level : 0, 0, 0}); };
  Json json = {{"color", mode(b.color24bit)},
               {"gray", mode(b.trueGray)},
               {"mono", mode(b.blackAndWhite)},
               {"dither", mode(b.errorDiffusion)}};
  for (auto& [name, value] : json.items()) {
    if (value.is_object()) value.erase("default");  // not told
  }
  return anyTold(json) ? json : Json(nullptr);
}

Json colorDropJson(const Capability& c) {
  const COLORDROPSUPPORT& drop = c.colorDrop;
  if (drop.cap != kPresent) return capJson(drop.cap);
  Json colors = Json::array();
  if (drop.red) colors.push_back("red");
  if (drop.green) colors.push_back("green");
  if (drop.blue) colors.push_back("blue");
  if (drop.chromatic) colors.push_back("all");
  if (drop.custom) colors.push_back("any other");
  return colors;
}

Json positionJson(const Capability& c) {
  // Devices have two numbers for the top and two for the bottom.
  const auto across = [](std::int32_t x) { return x == 0 ? Json("left") : x == 1 ? Json("centred") : Json("right"); };
  const auto along = [](std::int32_t y) {
    return y == 0 || y == 3 ? Json("top") : y == 1 ? Json("centred") : Json("bottom");
  };
  const auto place = [&](std::int32_t x, std::int32_t y) { return Json{{"across", across(x)}, {"along", along(y)}}; };
  const SUPPORTPAPERSOURCES& s = c.paperSource.supportPaperSource;
  const PAPERSETTINGPOSITIONS& p = c.paperPosition;
  Json json = Json::object();
  if (s.flatbed) json["flatbed"] = place(p.flatbedX, p.flatbedY);
  if (s.adfSimplex || s.adfDuplex) json["adf"] = place(p.adfX, p.adfY);
  if (s.cardslot) json["card-slot"] = place(p.cardslotX, p.cardslotY);
  return json.empty() ? Json(nullptr) : json;
}

// Devices tell them as positive or as negative numbers; either way they are what cannot be scanned.
Json marginJson(const Capability& c) {
  const MARGIN& m = c.marginSize;
  const auto mm = [&](std::int32_t value) { return rounded(std::abs(toMm(value, m.unit))); };
  const bool isTold = m.unit == UNIT_MILLIMETER || m.left != 0 || m.right != 0 || m.top != 0 || m.bottom != 0;
  if (!isTold) return nullptr;
  return Json{{"leftMm", mm(m.left)}, {"rightMm", mm(m.right)}, {"topMm", mm(m.top)}, {"bottomMm", mm(m.bottom)}};
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
    {"margins", "Margins", marginJson},
    {"paperPosition", "Position of the paper", positionJson},
    {"automaticPageSize", "Automatic page size", [](const Capability& c) { return capJson(c.autoPaperSize); }},
    {"automaticCrop", "Automatic crop", [](const Capability& c) { return capJson(c.autoCrop); }},
    {"endOfPageDetection", "Finds the end of pages", [](const Capability& c) { return capJson(c.detectEndOfPage); }},
    {"deskew", "Deskew", [](const Capability& c) { return capJson(c.autoDeskew); }},
    {"rotationByDevice", "Rotation by the device", [](const Capability& c) { return capJson(c.autoRotate); }},
    {"multifeedDetection", "Double-feed detection", [](const Capability& c) { return capJson(c.multifeed); }},
    {"blankPageRemoval", "Blank-page removal", [](const Capability& c) { return capJson(c.blankRemoval.cap); }},
    {"blankPageLevel", "Blank-page level", blankLevelJson},
    {"automaticColor", "Automatic color levels", autoColorJson},
    {"threshold", "Threshold for mono", [](const Capability& c) { return thresholdJson(c.monoThreshold); }},
    {"automaticThreshold", "Threshold by the device",
     [](const Capability& c) { return capJson(c.monoThreshold.autoThresholdCap); }},
    {"backgroundRemoval", "Background removal", backgroundJson},
    {"tone", "Tone", toneJson},
    {"colorDrop", "Color drop", colorDropJson},
    {"smoothing", "Smoothing", [](const Capability& c) { return levelJson(c.smoothing.cap, c.smoothing.level); }},
    {"edgeEnhancement", "Sharpening",
     [](const Capability& c) { return levelJson(c.edgeEnhance.cap, c.edgeEnhance.level); }},
    {"thickText", "Thicker text", [](const Capability& c) { return levelJson(c.thickText.cap, c.thickText.level); }},
    {"dotTextJoining", "Dots joined", [](const Capability& c) { return capJson(c.dotTextCombine); }},
    {"noiseRemoval", "Device removes noise",
     [](const Capability& c) { return levelJson(c.dustRemoval.cap, c.dustRemoval.level); }},
    {"lineRemoval", "Device removes lines", [](const Capability& c) { return capJson(c.lineRemoval.cap); }},
    {"punchHoleRemoval", "Device removes holes", [](const Capability& c) { return capJson(c.punchHole.cap); }},
    {"edgeCut", "Edge cut", [](const Capability& c) { return capJson(c.edgeCut); }},
    {"edgeFill", "Edge fill", [](const Capability& c) { return capJson(c.edgeFill.cap); }},
    {"carrierSheet", "Carrier sheet", [](const Capability& c) { return capJson(c.carrierSheet); }},
    {"plasticCard", "Plastic card", [](const Capability& c) { return capJson(c.plasticCard); }},
    {"quietMode", "Quiet mode", [](const Capability& c) { return capJson(c.quietMode); }},
    {"colorProfile", "Color profile", [](const Capability& c) { return capJson(c.iccProfile); }},
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
  if (value.contains("across")) return words(value["across"]) + ", " + words(value["along"]);
  if (value.contains("leftMm")) {
    return "left " + words(value["leftMm"]) + ", right " + words(value["rightMm"]) + ", top " + words(value["topMm"]) +
           ", bottom " + words(value["bottomMm"]) + " mm";
  }
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
