// Which field of the settings and of the capabilities can change which field of the command record: every byte of both
// records is changed in turn, in many surroundings, and what changes is compared with the table of ties.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "settings/ScanParam.h"

namespace orvalle_scan_api {
namespace {

using Settings = QS_SCANNER_PARAMETERS;
using Capability = QS_SCANNER_CAPABILITY;
using Command = _SCANCMD_SCANPARAM;

struct CommandField {
  const char* name;
  std::int64_t (*get)(const Command&);
};
#define FIELD(path)                                                           \
  {                                                                           \
#path, [](const Command& c) { return static_cast<std::int64_t>(c.path); } \
  }
constexpr CommandField kFields[] = {
    FIELD(osInfo),
    FIELD(paperSource),
    FIELD(resolution.x),
    FIELD(resolution.y),
    FIELD(resolution.isAuto),
    FIELD(colorType),
    FIELD(scanArea.areaType),
    FIELD(scanArea.left),
    FIELD(scanArea.top),
    FIELD(scanArea.width),
    FIELD(scanArea.height),
    FIELD(marginArea.left),
    FIELD(marginArea.top),
    FIELD(marginArea.right),
    FIELD(marginArea.bottom),
    FIELD(duplexScan.isDuplex),
    FIELD(duplexScan.isBackSideOnly),
    FIELD(brightness),
    FIELD(contrast),
    FIELD(autoColorLevelOn),
    FIELD(autoColorLevel.first),
    FIELD(autoColorLevel.second),
    FIELD(monoThreshold.threshold),
    FIELD(monoThreshold.useDeviceValue),
    FIELD(monoThreshold.isValid),
    FIELD(compressionType),
    FIELD(jpegCompressionRate),
    FIELD(jpegSamplingFactor),
    FIELD(imageProcessing),
    FIELD(paperType),
    FIELD(scanPage),
    FIELD(userName[0]),
    FIELD(specialScan),
    FIELD(longPaperMode),
    FIELD(landscapeMode),
    FIELD(vertexDetection),
    FIELD(autoDeskew),
    FIELD(groundColorRemoval.isOn),
    FIELD(groundColorRemoval.hasLevel),
    FIELD(groundColorRemoval.level),
    FIELD(gammaAdjust.isOn),
    FIELD(gammaAdjust.value),
    FIELD(carrierSheetMode.isOn),
    FIELD(carrierSheetMode.isAuto),
    FIELD(blankPageRemoval.isOn),
    FIELD(blankPageRemoval.hasLevel),
    FIELD(blankPageRemoval.level),
    FIELD(quietScan),
    FIELD(doubleFeedDetection.isOn),
    FIELD(doubleFeedDetection.hasLevel),
    FIELD(doubleFeedDetection.level),
    FIELD(feedMotion.isOn),
    FIELD(feedMotion.hasValue),
    FIELD(feedMotion.isContinue),
    FIELD(moireRemoval),
    FIELD(toneAdjust),
};
#undef FIELD
constexpr std::size_t kFieldCount = std::size(kFields);

using Snapshot = std::array<std::int64_t, kFieldCount>;
Snapshot convert(const Settings& settings, const Capability& capability) {
  const Command command = CScanParam().ConvertScanPramToCmdParam(settings, capability);
  Snapshot values{};
  for (std::size_t i = 0; i < kFieldCount; ++i) values[i] = kFields[i].get(command);
  return values;
}

// One field of an input record, and the fields of the command record that it may change.
struct Tie {
  const char* name;
  std::size_t offset;
  std::size_t size;
  std::vector<std::string_view> changes;
};
#define TIE(Record, path, ...) \
  Tie { #path, offsetof(Record, path), sizeof(Record::path), __VA_ARGS__ }

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
const std::vector<std::string_view> kThreshold = {"monoThreshold.threshold", "monoThreshold.isValid"};
const std::vector<std::string_view> kMargin = {"marginArea.left", "marginArea.top", "marginArea.right",
                                               "marginArea.bottom"};
const std::vector<std::string_view> kMotion = {"feedMotion.isOn", "feedMotion.hasValue", "feedMotion.isContinue"};
const std::vector<std::string_view> kMultifeed = {"doubleFeedDetection.isOn", "doubleFeedDetection.hasLevel",
                                                  "feedMotion.isOn", "feedMotion.hasValue", "feedMotion.isContinue"};
const std::vector<std::string_view> kBlank = {"blankPageRemoval.isOn", "blankPageRemoval.hasLevel",
                                              "blankPageRemoval.level"};
const std::vector<std::string_view> kCarrier = {"carrierSheetMode.isOn", "carrierSheetMode.isAuto"};

const std::vector<Tie> kSettingsTies = {
    TIE(Settings, resolution.x, {"resolution.x"}),
    TIE(Settings, resolution.y, {"resolution.y"}),
    TIE(Settings, colorType, kByColor),
    TIE(Settings, paperType, {"scanArea.areaType", "longPaperMode"}),
    TIE(Settings, customPaperSize.y, {"longPaperMode"}),
    TIE(Settings, brightness, {"brightness"}),
    TIE(Settings, contrast, {"contrast"}),
    TIE(Settings, duplexType, {"duplexScan.isDuplex"}),
    TIE(Settings, autoDeskew, {"autoDeskew"}),
    TIE(Settings, autoThreshold, kByAutoThreshold),
    TIE(Settings, threshold, kThreshold),
    TIE(Settings, autoColorLevel.first, {"autoColorLevel.first"}),
    TIE(Settings, autoColorLevel.second, {"autoColorLevel.second"}),
    TIE(Settings, removeBackground.enable, kGround),
    TIE(Settings, removeBackground.level, kGroundLevel),
    TIE(Settings, smoothing.enable, kByColor),
    TIE(Settings, colorDrop.enable, kByColor),
    TIE(Settings, punchHoleRemoval.enable, kByColor),
    TIE(Settings, carrierSheet, kCarrier),
    TIE(Settings, plasticCard, {"duplexScan.isDuplex"}),
    TIE(Settings, edgeCut.enable, kMargin),
    TIE(Settings, edgeCut.left, {"marginArea.left"}),
    TIE(Settings, edgeCut.top, {"marginArea.top"}),
    TIE(Settings, edgeCut.right, {"marginArea.right"}),
    TIE(Settings, edgeCut.bottom, {"marginArea.bottom"}),
    TIE(Settings, edgeCut.unit, kMargin),
    TIE(Settings, blankPageRemoval.enable, kBlank),
    TIE(Settings, blankPageRemoval.level, {"blankPageRemoval.level"}),
    TIE(Settings, scanPageCount, {"scanPage"}),
    TIE(Settings, quietScan, {"quietScan"}),
    TIE(Settings, multifeedDetect, kMultifeed),
};

const std::vector<Tie> kCapabilityTies = {
    TIE(Capability, generation, {"groundColorRemoval.hasLevel", "groundColorRemoval.level"}),
    TIE(Capability, baseFunc.errorSystem.feed.cap, kMotion),
    TIE(Capability, baseFunc.errorSystem.feed.stop, kMotion),
    TIE(Capability, baseFunc.errorSystem.feed.keepOn, {"feedMotion.isOn", "feedMotion.isContinue"}),
    TIE(Capability, imageProcFunc.supportCompresssionType.trueGray.jpeg, {"compressionType", "jpegCompressionRate"}),
    TIE(Capability, imageProcFunc.monoThreshold.manuanThresholdCap, kThreshold),
    TIE(Capability, imageProcFunc.monoThreshold.manualThresholdLevelMax, kThreshold),
    TIE(Capability, imageProcFunc.monoThreshold.manualThresholdLevelMin, kThreshold),
    TIE(Capability, advancedFunc.autoSize.deviceDetectSize.cap, {"scanArea.areaType"}),
    TIE(Capability, advancedFunc.autoSize.deviceDetectSize.detectSystem, {"scanArea.areaType"}),
    TIE(Capability, advancedFunc.autoSize.deviceDetectSize.detectOverScan, {"scanArea.areaType"}),
    TIE(Capability, advancedFunc.carrierSheet.cap, kCarrier),
    TIE(Capability, advancedFunc.carrierSheet.skipOffsetSystem, {"carrierSheetMode.isAuto"}),
    TIE(Capability, advancedFunc.multifeedDetect.cap, kMultifeed),
    TIE(Capability, advancedFunc.multifeedDetect.systemType, {"doubleFeedDetection.hasLevel"}),
    TIE(Capability, advancedFunc.backgroundRemove, kGround),
    TIE(Capability, advancedFunc.deskew.cap, {"scanArea.areaType", "autoDeskew"}),
    TIE(Capability, advancedFunc.deskew.systemType[0], {"autoDeskew"}),
    TIE(Capability, advancedFunc.blankRemoval.cap, kBlank),
    TIE(Capability, advancedFunc.blankRemoval.levelCap, {"blankPageRemoval.hasLevel", "blankPageRemoval.level"}),
    TIE(Capability, advancedFunc.autoColor.cap, {"autoColorLevelOn", "autoColorLevel.first", "autoColorLevel.second"}),
};

// Changes each byte of record by turns and notes which fields of the command record change with which tie.
template <class Record, class Convert>
void changeEveryByte(Record& record, const std::vector<Tie>& ties, std::mt19937& random, Convert convertRecord,
                     std::vector<std::set<std::string_view>>& seen) {
  // Values that mean something somewhere, and any other.
  constexpr unsigned char kMeanings[] = {0, 1, 2, 3, 5, 23, 26, 100};
  const Snapshot before = convertRecord();
  auto* const bytes = reinterpret_cast<unsigned char*>(&record);
  for (std::size_t at = 0; at < sizeof record; ++at) {
    const unsigned char kept = bytes[at];
    const unsigned pick = random() % 16;
    bytes[at] = pick < std::size(kMeanings) ? kMeanings[pick] : static_cast<unsigned char>(random());
    const Snapshot after = convertRecord();
    bytes[at] = kept;
    const auto tie = std::ranges::find_if(ties, [&](const Tie& t) { return at >= t.offset && at < t.offset + t.size; });
    for (std::size_t i = 0; i < kFieldCount; ++i) {
      if (before[i] == after[i]) continue;
      ASSERT_TRUE(tie != ties.end()) << "byte " << at << " changes " << kFields[i].name;
      ASSERT_TRUE(std::ranges::count(tie->changes, kFields[i].name) == 1)
          << tie->name << " changes " << kFields[i].name;
      seen[static_cast<std::size_t>(tie - ties.begin())].insert(kFields[i].name);
    }
  }
}

void expectAllSeen(const std::vector<Tie>& ties, const std::vector<std::set<std::string_view>>& seen) {
  for (std::size_t i = 0; i < ties.size(); ++i) {
    for (const std::string_view field : ties[i].changes) {
      EXPECT_EQ(seen[i].count(field), 1u) << ties[i].name << " never changed " << field;
    }
  }
}

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

TEST(ScanParamTies, SettingsThatDifferInOneFieldChangeOnlyWhatIsTiedToIt) {
  std::mt19937 random(63);
  std::vector<std::set<std::string_view>> seen(kSettingsTies.size());
  for (int n = 0; n < 1500; ++n) {
    Settings settings = randomSettings(random);
    const Capability capability = randomCapability(random);
    ASSERT_NO_FATAL_FAILURE(changeEveryByte(
        settings, kSettingsTies, random, [&] { return convert(settings, capability); }, seen));
  }
  expectAllSeen(kSettingsTies, seen);
}

TEST(ScanParamTies, CapabilitiesThatDifferInOneFieldChangeOnlyWhatIsTiedToIt) {
  std::mt19937 random(64);
  std::vector<std::set<std::string_view>> seen(kCapabilityTies.size());
  for (int n = 0; n < 400; ++n) {
    const Settings settings = randomSettings(random);
    Capability capability = randomCapability(random);
    ASSERT_NO_FATAL_FAILURE(changeEveryByte(
        capability, kCapabilityTies, random, [&] { return convert(settings, capability); }, seen));
  }
  expectAllSeen(kCapabilityTies, seen);
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
      const Snapshot values = convert(settings, capability);
      for (std::size_t i = 0; i < kFieldCount; ++i) {
        if (values[i] != 0) told.insert(kFields[i].name);
      }
    }
  }
  EXPECT_EQ(told, toldAnyway);
}

}  // namespace
}  // namespace orvalle_scan_api
