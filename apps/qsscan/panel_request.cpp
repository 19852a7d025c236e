#include "panel_request.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string_view>

#include "format.h"
#include "paper.h"
#include "scan_features.h"

namespace qsscan {
namespace {

using namespace orvalle_scan_api;
using Json = nlohmann::ordered_json;

constexpr CAP kPresent = 2;
constexpr const char* kButtons[] = {"image", "ocr", "email", "file"};
constexpr const char* kFormats[] = {"bmp", "jpeg", "tiff", "png", "pdf",  "pdf",
                                    "pdf", "pdf",  "xps",  "txt", "html", "rtf"};

// The papers of a panel that have no name of their own here.
constexpr struct {
  PAPERTYPE type;
  const char* size;
} kUnnamedPapers[] = {{PAPERTYPE_AUTO, "auto"}, {PAPERTYPE_8_5X13_38, "215.9x339.8"}, {PAPERTYPE_215X345, "215x345"}};

template <std::size_t N>
Json nameJson(const char* const (&names)[N], bool valid, std::int32_t value) {
  return valid && value >= 0 && value < static_cast<std::int32_t>(N) ? Json(names[value]) : Json(nullptr);
}

Json buttonJson(const PanelRecord& r) { return nameJson(kButtons, r.event.valid, r.event.value); }

Json duplexJson(const PanelRecord& r) { return r.duplex.valid ? Json(r.duplex.value != 0) : Json(nullptr); }

Json bindingJson(const PanelRecord& r) {
  if (!r.duplex.valid || r.duplex.value == DUPLEXTYPE_SIMPLEX) return nullptr;
  return r.duplex.value == DUPLEXTYPE_SHORT_EDGE ? "short" : "long";
}

Json resolutionJson(const PanelRecord& r) {
  const PUSHSCAN_RESOLUTION& dpi = r.resolution;
  if (!dpi.xValid || !dpi.yValid) return nullptr;
  if (dpi.xAuto || dpi.yAuto) return "auto";
  return Json{{"x", dpi.x}, {"y", dpi.y}};
}

Json modeJson(const PanelRecord& r) {
  if (!r.colorType.valid) return nullptr;
  if (r.colorType.value == COLORTYPE_COLOR256) return "256 colours";
  return modeName(static_cast<COLORTYPE>(r.colorType.value));
}

const PaperRow* rowOf(PAPERTYPE type) {
  const auto rows = paperTable();
  const auto row = std::find_if(rows.begin(), rows.end(), [&](const PaperRow& one) { return one.paper.type == type; });
  return row == rows.end() ? nullptr : &*row;
}

Json paperJson(const PanelRecord& r) {
  if (!r.paperType.valid) return nullptr;
  const auto type = static_cast<PAPERTYPE>(r.paperType.value);
  for (const auto& paper : kUnnamedPapers) {
    if (paper.type == type) return paper.size;
  }
  const PaperRow* row = rowOf(type);
  return row == nullptr ? Json(nullptr) : Json(row->name);
}

Json stateJson(const PUSHSCAN_STATE& state) { return state.valid ? Json(state.on) : Json(nullptr); }
Json valueJson(const PUSHSCAN_VALUE& value) { return value.valid ? Json(value.value) : Json(nullptr); }

Json backgroundJson(const PanelRecord& r) {
  const PUSHSCAN_REMOVEBACKGROUND& background = r.removeBackground;
  if (!background.valid) return nullptr;
  return background.on && background.hasLevel ? Json(background.level) : Json(background.on);
}

// The two generations count the angle in different units.
bool isTurned(const PUSHSCAN_ORIENT& orient) { return orient.valid && orient.angle != 0; }

struct Row {
  const char* key;
  const char* label;
  Json (*value)(const PanelRecord&);
};

constexpr Row kRows[] = {
    {"button", "Button", buttonJson},
    {"mode", "Mode", modeJson},
    {"resolution", "Resolution (dpi)", resolutionJson},
    {"duplex", "Both sides", duplexJson},
    {"binding", "Binding", bindingJson},
    {"pageSize", "Page size", paperJson},
    {"landscape", "Landscape",
     [](const PanelRecord& r) { return r.orient.valid ? Json(r.orient.isLandscape) : Json(nullptr); }},
    {"turn", "Turned by (degrees)",
     [](const PanelRecord& r) { return r.orient.valid ? Json(isTurned(r.orient) ? 90 : 0) : Json(nullptr); }},
    {"brightness", "Brightness", [](const PanelRecord& r) { return valueJson(r.brightness); }},
    {"contrast", "Contrast", [](const PanelRecord& r) { return valueJson(r.contrast); }},
    {"automaticCrop", "Automatic crop", [](const PanelRecord& r) { return stateJson(r.autoCrop); }},
    {"deskew", "Deskew", [](const PanelRecord& r) { return stateJson(r.deskew); }},
    {"blankPageRemoval", "Blank-page removal", [](const PanelRecord& r) { return stateJson(r.blankPageRemove); }},
    {"bleedThroughRemoval", "Bleed-through removal",
     [](const PanelRecord& r) { return stateJson(r.removeBleedThrough); }},
    {"backgroundRemoval", "Background removal", backgroundJson},
    {"format", "Format", [](const PanelRecord& r) { return nameJson(kFormats, r.fileType.valid, r.fileType.format); }},
    {"compression", "Compression",
     [](const PanelRecord& r) { return r.fileType.compressValid ? Json(r.fileType.compress) : Json(nullptr); }},
};

std::string words(const Json& value) {
  if (value.is_null()) return "not given";
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (value.is_string()) return value.get<std::string>();
  if (value.is_object()) return value["x"].dump() + " by " + value["y"].dump();
  return value.dump();
}

std::string sizeText(double widthMm, double heightMm) {
  char text[40];
  std::snprintf(text, sizeof text, "%.1fx%.1f", widthMm, heightMm);
  return text;
}

// Gathers the options, one item of the record after the other.
class Wishes {
 public:
  Wishes(const PanelRecord& record, const Capability& capability) : record_(record), capability_(capability) {
    takeMode();
    takeResolution();
    takeSides();
    takePaper();
    takeLevel("brightness", record.brightness);
    takeLevel("contrast", record.contrast);
    takeFeature("deskew", record.deskew, "straighten pages");
    takeFeature("skip-blank", record.blankPageRemove, "leave blank pages out");
    takeBackground();
    takeFormat();
    takeRest();
  }

  PanelWish take() { return std::move(wish_); }

 private:
  void add(const char* option, const std::string& value) {
    wish_.options.push_back({option, value, "What the panel asks for"});
  }
  void leaveOut(const std::string& what) { wish_.leftOut.push_back("The panel asks " + what + ", which is left out."); }

  void takeMode() {
    const auto offered = offeredModes(capability_);
    mode_ = offered.empty() ? COLORTYPE_COLOR24BIT : offered.front();
    if (!record_.colorType.valid) return;
    auto asked = static_cast<COLORTYPE>(record_.colorType.value);
    if (asked == COLORTYPE_COLOR256) asked = COLORTYPE_COLOR24BIT;
    if (!offered.empty() && std::find(offered.begin(), offered.end(), asked) == offered.end()) {
      return leaveOut(std::string("for the mode ") + modeName(asked) + ", although the device does not offer it");
    }
    mode_ = asked;
    add("mode", modeName(asked));
  }

  void takeResolution() {
    const PUSHSCAN_RESOLUTION& dpi = record_.resolution;
    if (!dpi.xValid || dpi.xAuto || dpi.x == 0) return;
    const auto offered = offeredResolutions(capability_);
    if (!offered.empty() && std::find(offered.begin(), offered.end(), dpi.x) == offered.end()) {
      return leaveOut("for " + std::to_string(dpi.x) + " dpi, although the device does not offer them");
    }
    add("resolution", std::to_string(dpi.x));
  }

  void takeSides() {
    if (!record_.duplex.valid || record_.duplex.value == DUPLEXTYPE_SIMPLEX) return;
    add("duplex", "true");
    add("binding", bindingJson(record_).get<std::string>());
  }

  void takePaper() {
    const bool detects = capability_.autoPaperSize == kPresent;
    const Json paper = paperJson(record_);
    const bool asksToDetect = paper == "auto" || (record_.autoCrop.valid && record_.autoCrop.on);
    if (asksToDetect && detects) return add("page-size", "auto");
    if (asksToDetect) leaveOut("the device to find the size of the pages");
    if (paper.is_null() || paper == "auto") return;
    const auto size = findPaper(paper.get<std::string>());
    const bool lies = record_.orient.valid && record_.orient.isLandscape && size && size->heightMm > size->widthMm;
    if (lies && widestMm() >= size->heightMm) return add("page-size", sizeText(size->heightMm, size->widthMm));
    if (lies) leaveOut("for landscape, although the paper does not fit that way");
    add("page-size", paper.get<std::string>());
  }

  // 0 where it is not reported.
  double widestMm() const {
    const DEVICESCANSIZES& sizes = capability_.supportDocSizeMax;
    const bool bothSides = record_.duplex.valid && record_.duplex.value != DUPLEXTYPE_SIMPLEX;
    return toMm(bothSides ? sizes.duplex.x : std::max(sizes.flatbed.x, sizes.simplex.x), sizes.unit);
  }

  // On the panel 0 to 100 with 50 in the middle.
  void takeLevel(const char* option, const PUSHSCAN_VALUE& level) {
    if (!level.valid) return;
    if (level.value < 0 || level.value > 100) {
      return leaveOut(std::string("for a ") + option + " of " + std::to_string(level.value) + " on a scale of its own");
    }
    add(option, std::to_string(level.value - 50));
  }

  bool isServed(const std::string& option) const {
    const auto features = featureTable();
    const auto feature =
        std::find_if(features.begin(), features.end(), [&](const Feature& one) { return one.option == "--" + option; });
    return feature != features.end() && (feature->isServed == nullptr || feature->isServed(capability_, mode_));
  }

  void takeFeature(const char* option, const PUSHSCAN_STATE& state, const char* what) {
    if (!state.valid || !state.on) return;
    if (!isServed(option)) return leaveOut(std::string("to ") + what + ", although the device says that it cannot");
    add(option, "true");
  }

  void takeBackground() {
    const PUSHSCAN_REMOVEBACKGROUND& background = record_.removeBackground;
    takeFeature("remove-background", {background.valid, background.on}, "remove the background");
    if (!background.hasLevel || wish_.options.empty() || wish_.options.back().option != "remove-background") return;
    wish_.options.back().value = std::to_string(background.level);
  }

  void takeFormat() {
    const Json name = nameJson(kFormats, record_.fileType.valid, record_.fileType.format);
    if (name.is_null()) return;
    if (findFormat(name.get<std::string>())) return add("format", name.get<std::string>());
    leaveOut("for a file of the format " + name.get<std::string>());
  }

  void takeRest() {
    if (isTurned(record_.orient)) add("rotate", "90");
    if (record_.removeBleedThrough.valid && record_.removeBleedThrough.on) {
      leaveOut("to remove what shows through from the back");
    }
    const Json button = buttonJson(record_);
    if (button == "ocr") leaveOut("for text recognition");
    if (button == "email") leaveOut("to send an e-mail");
  }

  const PanelRecord& record_;
  const Capability& capability_;
  COLORTYPE mode_ = COLORTYPE_COLOR24BIT;
  PanelWish wish_;
};

}  // namespace

Json panelJson(const PanelRecord& record) {
  Json json = Json::object();
  for (const Row& row : kRows) json[row.key] = row.value(record);
  return json;
}

std::string panelText(const PanelRecord& record) {
  if (!record.event.valid) return "No button has been pressed.\n";
  constexpr int kLabelWidth = 23;
  std::string text;
  for (const Row& row : kRows) {
    char label[40];
    std::snprintf(label, sizeof label, "%-*s", kLabelWidth, (std::string(row.label) + ":").c_str());
    text += label + words(row.value(record)) + "\n";
  }
  return text;
}

PanelWish wishOfPanel(const PanelRecord& record, const Capability& capability) {
  return Wishes(record, capability).take();
}

}  // namespace qsscan
