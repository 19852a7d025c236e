// Which field of the settings and of the capabilities can change which field of the command record: every byte of both
// records is changed in turn, in many surroundings, and what changes is compared with the table of ties.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>
#include <string_view>
#include <vector>

#include "settings/ScanParam.h"
#include "tests/settings/command_fields.h"
#include "tests/settings/ties.h"

namespace orvalle_scan_api {
namespace {

using Settings = QS_SCANNER_PARAMETERS;
using Capability = QS_SCANNER_CAPABILITY;

// Mutated as one: no field of the one may do what the other is for.
struct Inputs {
  Settings settings;
  Capability capability;
};

CommandValues convert(const Inputs& in) {
  return valuesOf(CScanParam().ConvertScanPramToCmdParam(in.settings, in.capability));
}

const std::vector<std::string_view> kByColor = {"colorType",
                                                "contrast",
                                                "compressionType",
                                                "jpegCompressionRate",
                                                "monoThreshold.threshold",
                                                "monoThreshold.isValid",
                                                "groundColorRemoval.isOn",
                                                "groundColorRemoval.hasLevel",
                                                "groundColorRemoval.level"};
const std::vector<std::string_view> kByAutoThreshold = [] {
  std::vector<std::string_view> fields = kByColor;
  fields.emplace_back("monoThreshold.useDeviceValue");
  return fields;
}();
const std::vector<std::string_view> kGround = {"groundColorRemoval.isOn", "groundColorRemoval.hasLevel",
                                               "groundColorRemoval.level"};
const std::vector<std::string_view> kGroundLevel = {"groundColorRemoval.level"};
const std::vector<std::string_view> kGroundHasLevel = {"groundColorRemoval.hasLevel", "groundColorRemoval.level"};
const std::vector<std::string_view> kThreshold = {"monoThreshold.threshold", "monoThreshold.isValid"};
const std::vector<std::string_view> kMargin = {"marginArea.left", "marginArea.top", "marginArea.right",
                                               "marginArea.bottom"};
const std::vector<std::string_view> kMotion = {"feedMotion.isOn", "feedMotion.hasValue", "feedMotion.isContinue"};
const std::vector<std::string_view> kMultifeed = {"doubleFeedDetection.isOn", "doubleFeedDetection.hasLevel",
                                                  "feedMotion.isOn", "feedMotion.hasValue", "feedMotion.isContinue"};
const std::vector<std::string_view> kBlank = {"blankPageRemoval.isOn", "blankPageRemoval.hasLevel",
                                              "blankPageRemoval.level"};
const std::vector<std::string_view> kCarrier = {"carrierSheetMode.isOn", "carrierSheetMode.isAuto"};

// When a field is looked at.
COLORTYPE effectiveColor(const Inputs& in) {
  Settings settings = in.settings;
  CScanParam().ConvertColorTypeForSpecialScanParam(settings);
  return settings.colorType;
}
template <COLORTYPE color>
bool groundOf(const Inputs& in) {
  return in.settings.removeBackground.enable != 0 && effectiveColor(in) == color;
}
bool groundOf24Bit(const Inputs& in) {
  const COLORTYPE color = effectiveColor(in);
  return in.settings.removeBackground.enable != 0 && (color < 1 || color > 4);
}
bool ground(const Inputs& in) { return in.settings.removeBackground.enable != 0; }
bool manualThreshold(const Inputs& in) {
  return in.settings.autoThreshold == 0 && effectiveColor(in) == COLORTYPE_BLACKANDWHITE;
}
bool grey(const Inputs& in) { return effectiveColor(in) == COLORTYPE_TRUEGRAY; }
bool custom(const Inputs& in) { return in.settings.paperType == PAPERTYPE_CUSTOM; }
bool automaticSize(const Inputs& in) { return in.settings.paperType == PAPERTYPE_AUTO; }
bool deskewOrAutomaticSize(const Inputs& in) { return in.settings.autoDeskew != 0 || automaticSize(in); }
bool edgeCut(const Inputs& in) { return in.settings.edgeCut.enable != 0; }
bool edgeCutInLength(const Inputs& in) { return edgeCut(in) && in.settings.edgeCut.unit != UNIT_PIXEL; }
bool simplex(const Inputs& in) { return in.settings.duplexType == DUPLEXTYPE_SIMPLEX; }
bool noCard(const Inputs& in) { return in.settings.plasticCard == 0; }
bool deskew(const Inputs& in) { return in.settings.autoDeskew != 0; }
bool carrier(const Inputs& in) { return in.settings.carrierSheet != 0; }
bool blank(const Inputs& in) { return in.settings.blankPageRemoval.enable != 0; }
bool multifeed(const Inputs& in) { return in.settings.multifeedDetect != 0; }
bool autoColor(const Inputs& in) { return in.capability.advancedFunc.autoColor.cap == 2; }

#define S(path, ...) QS_TIE(Inputs, settings.path, __VA_ARGS__)
#define C(path, ...) QS_TIE(Inputs, capability.path, __VA_ARGS__)
const std::vector<Tie<Inputs>> kTies = {

    S(resolution.x, {"resolution.x"}),
    S(resolution.y, {"resolution.y"}),
    S(colorType, kByColor),
    S(paperType, {"scanArea.areaType", "longPaperMode"}),
    S(customPaperSize.y, {"longPaperMode"}, custom),
    S(brightness, {"brightness"}),
    S(contrast, {"contrast"}, [](const Inputs& in) { return effectiveColor(in) != COLORTYPE_BLACKANDWHITE; }),
    S(duplexType, {"duplexScan.isDuplex"}, noCard),
    S(autoDeskew, {"autoDeskew"}),
    S(autoThreshold, kByAutoThreshold),
    S(threshold, kThreshold, manualThreshold),
    S(autoColorLevel.first, {"autoColorLevel.first"}, autoColor),
    S(autoColorLevel.second, {"autoColorLevel.second"}, autoColor),
    S(removeBackground.enable, kGround),
    S(removeBackground.level, kGroundLevel, ground),
    S(smoothing.enable, kByColor),
    S(colorDrop.enable, kByColor),
    S(punchHoleRemoval.enable, kByColor),
    S(carrierSheet, kCarrier),
    S(plasticCard, {"duplexScan.isDuplex"}, simplex),
    S(edgeCut.enable, kMargin),
    S(edgeCut.left, {"marginArea.left"}, edgeCutInLength),
    S(edgeCut.top, {"marginArea.top"}, edgeCutInLength),
    S(edgeCut.right, {"marginArea.right"}, edgeCutInLength),
    S(edgeCut.bottom, {"marginArea.bottom"}, edgeCutInLength),
    S(edgeCut.unit, kMargin, edgeCut),
    S(blankPageRemoval.enable, kBlank),
    S(blankPageRemoval.level, {"blankPageRemoval.level"}, blank),
    S(scanPageCount, {"scanPage"}),
    S(quietScan, {"quietScan"}),
    S(multifeedDetect, kMultifeed),
    C(generation, {"groundColorRemoval.hasLevel", "groundColorRemoval.level"}, ground),
    C(baseFunc.errorSystem.feed.cap, kMotion, multifeed),
    C(baseFunc.errorSystem.feed.stop, kMotion, multifeed),
    C(baseFunc.errorSystem.feed.keepOn, {"feedMotion.isOn", "feedMotion.isContinue"}, multifeed),
    C(imageProcFunc.supportCompresssionType.trueGray.jpeg, {"compressionType", "jpegCompressionRate"}, grey),
    C(imageProcFunc.monoThreshold.manuanThresholdCap, kThreshold, manualThreshold),
    C(imageProcFunc.monoThreshold.manualThresholdLevelMax, kThreshold, manualThreshold),
    C(imageProcFunc.monoThreshold.manualThresholdLevelMin, kThreshold, manualThreshold),
    C(advancedFunc.autoSize.deviceDetectSize.cap, {"scanArea.areaType"}, automaticSize),
    C(advancedFunc.autoSize.deviceDetectSize.detectSystem, {"scanArea.areaType"}, automaticSize),
    C(advancedFunc.autoSize.deviceDetectSize.detectOverScan, {"scanArea.areaType"}, automaticSize),
    C(advancedFunc.carrierSheet.cap, kCarrier, carrier),
    C(advancedFunc.carrierSheet.skipOffsetSystem, {"carrierSheetMode.isAuto"}, carrier),
    C(advancedFunc.multifeedDetect.cap, kMultifeed, multifeed),
    C(advancedFunc.multifeedDetect.systemType, {"doubleFeedDetection.hasLevel"}, multifeed),
    C(advancedFunc.backgroundRemove.blackAndWhite.cap, kGround, groundOf<COLORTYPE_BLACKANDWHITE>),
    C(advancedFunc.backgroundRemove.blackAndWhite.level, kGroundHasLevel, groundOf<COLORTYPE_BLACKANDWHITE>),
    C(advancedFunc.backgroundRemove.errorDiffusion.cap, kGround, groundOf<COLORTYPE_ERRORDIFFUSION>),
    C(advancedFunc.backgroundRemove.errorDiffusion.level, kGroundHasLevel, groundOf<COLORTYPE_ERRORDIFFUSION>),
    C(advancedFunc.backgroundRemove.trueGray.cap, kGround, groundOf<COLORTYPE_TRUEGRAY>),
    C(advancedFunc.backgroundRemove.trueGray.level, kGroundHasLevel, groundOf<COLORTYPE_TRUEGRAY>),
    C(advancedFunc.backgroundRemove.color24bit.cap, kGround, groundOf24Bit),
    C(advancedFunc.backgroundRemove.color24bit.level, kGroundHasLevel, groundOf24Bit),
    C(advancedFunc.deskew.cap, {"scanArea.areaType", "autoDeskew"}, deskewOrAutomaticSize),
    C(advancedFunc.deskew.systemType[0], {"autoDeskew"}, deskew),
    C(advancedFunc.blankRemoval.cap, kBlank, blank),
    C(advancedFunc.blankRemoval.levelCap, {"blankPageRemoval.hasLevel", "blankPageRemoval.level"}, blank),
    C(advancedFunc.autoColor.cap, {"autoColorLevelOn", "autoColorLevel.first", "autoColorLevel.second"}),
};
#undef S
#undef C

int any(std::mt19937& random, std::initializer_list<int> choices) {
  return *(choices.begin() + random() % choices.size());
}

// Settings with most wishes set, in range.
Settings randomSettings(std::mt19937& random) {
  Settings s{};
  s.resolution = {300, 300};
  s.colorType = static_cast<COLORTYPE>(any(random, {0, 1, 1, 2, 3, 4, 5}));
  s.paperType = static_cast<PAPERTYPE>(any(random, {0, 0, 1, 23, 24, 26}));
  s.customPaperSize.y = any(random, {0, 1});
  s.contrast = any(random, {-7, 7});
  s.duplexType = static_cast<DUPLEXTYPE>(any(random, {0, 0, 1}));
  s.autoDeskew = static_cast<QSBOOL>(any(random, {0, 1}));
  s.autoThreshold = static_cast<QSBOOL>(any(random, {0, 0, 1}));
  s.threshold = static_cast<std::uint32_t>(any(random, {2, 100, 250}));
  s.autoColorLevel = {3, 4};
  s.removeBackground.enable = static_cast<QSBOOL>(any(random, {0, 1}));
  s.removeBackground.level = any(random, {1, 100, 200});
  s.smoothing.enable = static_cast<QSBOOL>(any(random, {0, 0, 0, 1}));
  s.carrierSheet = static_cast<QSBOOL>(any(random, {0, 1}));
  s.plasticCard = static_cast<QSBOOL>(any(random, {0, 0, 1}));
  s.edgeCut = {static_cast<QSBOOL>(any(random, {0, 1})),     100, 200, 300, 400,
               static_cast<UNITTYPE>(any(random, {0, 1, 2}))};
  s.blankPageRemoval = {static_cast<QSBOOL>(any(random, {0, 1})), 5};
  s.multifeedDetect = static_cast<QSBOOL>(any(random, {0, 1}));
  return s;
}

Capability randomCapability(std::mt19937& random) {
  const auto cap = [&] { return any(random, {0, 1, 2, 2, 2}); };
  const auto flag = [&] { return static_cast<FLAG>(any(random, {0, 1})); };
  Capability c{};
  c.generation = static_cast<SCANCMD_GENERATION>(any(random, {1, 2}));
  c.baseFunc.errorSystem.feed = {cap(), flag(), flag(), flag()};
  c.imageProcFunc.supportCompresssionType.trueGray.jpeg = flag();
  c.imageProcFunc.monoThreshold = {0, 0, cap(), any(random, {99, 254}), any(random, {1, 101}), 128};
  c.advancedFunc.autoSize.deviceDetectSize.cap = cap();
  c.advancedFunc.autoSize.deviceDetectSize.detectSystem = flag();
  c.advancedFunc.autoSize.deviceDetectSize.detectOverScan = flag();
  c.advancedFunc.carrierSheet.cap = any(random, {0, 1, 2});
  c.advancedFunc.carrierSheet.skipOffsetSystem = any(random, {0, 1, 2});
  c.advancedFunc.multifeedDetect = {cap(), any(random, {1, 2}), 0};
  c.advancedFunc.backgroundRemove = {{cap(), 4}, {cap(), 3}, {cap(), 0}, {cap(), 2}};
  c.advancedFunc.deskew.cap = cap();
  c.advancedFunc.deskew.systemType[0] = flag();
  c.advancedFunc.blankRemoval.cap = cap();
  c.advancedFunc.blankRemoval.levelCap = cap();
  c.advancedFunc.autoColor.cap = cap();
  return c;
}

TEST(ScanParamTies, RecordsThatDifferInOneFieldChangeOnlyWhatIsTiedToIt) {
  std::mt19937 random(63);
  TieCheck check(kCommandFields, kTies, convert);
  for (int n = 0; n < 1500; ++n) {
    Inputs inputs{randomSettings(random), randomCapability(random)};
    ASSERT_NO_FATAL_FAILURE(check.changeEveryByte(inputs, random, anyByte));
  }
  check.expectAllSeen();
}

TEST(ScanParamTies, WishesThatTheDeviceDoesNotSupportLeaveZeros) {
  // What a device without any capability is told all the same.
  const std::set<std::string_view> toldAnyway = {"osInfo",
                                                 "resolution.x",
                                                 "resolution.y",
                                                 "colorType",
                                                 "marginArea.left",
                                                 "marginArea.top",
                                                 "marginArea.right",
                                                 "marginArea.bottom",
                                                 "brightness",
                                                 "contrast",
                                                 "compressionType",
                                                 "jpegSamplingFactor",
                                                 "duplexScan.isDuplex",
                                                 "scanPage",
                                                 "longPaperMode",
                                                 "monoThreshold.useDeviceValue",
                                                 "jpegCompressionRate",
                                                 "quietScan",
                                                 "toneAdjust"};
  std::set<std::string_view> told;
  for (int color = 0; color <= 6; ++color) {
    for (const CAP cap : {0, 1}) {
      Settings settings;
      std::memset(&settings, 1, sizeof settings);
      settings.colorType = static_cast<COLORTYPE>(color);
      settings.paperType = PAPERTYPE_LONG;
      settings.edgeCut.unit = UNIT_INCH;
      settings.edgeCut.left = settings.edgeCut.top = settings.edgeCut.right = settings.edgeCut.bottom = 100;
      Capability capability{};
      capability.generation = SCANCMD_GENERATION_2ND;
      capability.baseFunc.errorSystem.feed = {cap, 1, 1, 1};
      capability.imageProcFunc.monoThreshold = {cap, 1, cap, 255, 1, 128};
      auto& advanced = capability.advancedFunc;
      advanced.autoSize.deviceDetectSize.cap = cap;
      advanced.multifeedDetect = {cap, 2, 5};
      advanced.backgroundRemove = {{cap, 4}, {cap, 4}, {cap, 4}, {cap, 4}};
      advanced.deskew.cap = cap;
      advanced.blankRemoval.cap = cap;
      advanced.blankRemoval.levelCap = 2;
      advanced.autoColor.cap = cap;
      const CommandValues values = convert({settings, capability});
      for (std::size_t i = 0; i < kCommandFieldCount; ++i) {
        if (values[i] != 0) told.insert(kCommandFields[i].name);
      }
    }
  }
  EXPECT_EQ(told, toldAnyway);
}

}  // namespace
}  // namespace orvalle_scan_api
