// The listing of the capability record in the log: every field of it, in its order, under its own name.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "api/DeviceCaps.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using Names = std::vector<std::string>;

namespace {

// A field: its path, with a sign in front that tells where it lies. "#" a number, which starts on a word of four bytes;
// "." a flag byte behind the field before it; ":" a flag byte that starts on such a word, as the first of a structure
// that follows one with a number.
const Names kAxis = {"#x", "#y"};
const Names kMargin = {"#left", "#right", "#top", "#bottom", "#unit"};
const Names kSizes = {"#flatbed.x", "#flatbed.y", "#simplex.x", "#simplex.y", "#duplex.x", "#duplex.y", "#unit"};
const Names kColors = {".blackAndWhite", ".errorDiffusion", ".trueGray", ".color256",
                       ".color24bit",    ".color256table",  ".autoColor"};
const Names kSources = {".flatbed", ".adfSimplex", ".adfDuplex", ".cardslot"};
const Names kExclusion = {".detectDocSize",         ".detectMultifeed",        ".removeBackgroundByDevice",
                          ".deskewByDevice",        ".autoColorByDevice",      ".blankRemovalByDevice",
                          ".detectDocSizeByDevice", ".autoResolutionByDevice", ".autoRotateByDevice"};
const Names kCompression = {".noCompress", ".packbits", ".mh", ".jpeg"};
const Names kLevels = {"#blackAndWhite.cap", "#blackAndWhite.level", "#errorDiffusion.cap", "#errorDiffusion.level",
                       "#trueGray.cap",      "#trueGray.level",      "#color24bit.cap",     "#color24bit.level"};

Names in(const std::string& path, const Names& names) {
  Names all;
  for (const std::string& name : names) all.push_back(name.substr(0, 1) + path + "." + name.substr(1));
  return all;
}

Names joined(std::initializer_list<Names> parts) {
  Names all;
  for (const Names& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

const Names kFunc = joined({
    in("pushScan.supportPushScanEvent", {".scanToImage", ".scanToCOR", ".scanToEmail", ".scanToFile"}),
    in("pushScan", {"#continuousScan.cap", ".continuousScan.supportScanSystem.pushScan",
                    ".continuousScan.supportScanSystem.otherSystem", "#paramSetting.cap", ".paramSetting.dupScanOnly",
                    ":deviceSupportScanFunc.officeDocCreator"}),
    {"#qciCommandSupport"},
});

const Names kBase = joined({
    in("resolutionOptical.flatbed", kAxis),
    in("resolutionOptical.adfSimplex", kAxis),
    in("resolutionOptical.adfDuplex", kAxis),
    in("colorType", kColors),
    {":paperSource.supportPaperSource.flatbed", ".paperSource.supportPaperSource.adfSimplex",
     ".paperSource.supportPaperSource.adfDuplex", ".paperSource.supportPaperSource.cardslot"},
    in("paperSource", {"#duplexScanSystem", "#adfStackCapacity"}),
    in("deviceScanSizeMax", kSizes),
    in("deviceScanSizeMin", kSizes),
    in("supportDocSizeMax", kSizes),
    in("longPaperLengthMax", {"#cap", "#simplexMaxLength", "#duplexMaxLength", "#unit"}),
    in("startOffset.flatbed", kAxis),
    in("startOffset.simplex", kAxis),
    in("startOffset.duplex", kAxis),
    in("startOffset.cardslot", kAxis),
    {"#startOffset.unit"},
    in("marginSize.flatbed", kMargin),
    in("marginSize.adfSimplex", kMargin),
    in("marginSize.adfDuplex", kMargin),
    in("marginSize.cardslot", kMargin),
    in("marginAdjust.flatbed_plus", kMargin),
    in("marginAdjust.flatbed_minus", kMargin),
    in("marginAdjust.adfSimplex_plus", kMargin),
    in("marginAdjust.adfSimplex_minus", kMargin),
    in("marginAdjust.adfDuplex_plus", kMargin),
    in("marginAdjust.adfDuplex_minus", kMargin),
    in("marginAdjust.cardslot_plus", kMargin),
    in("marginAdjust.cardslot_minus", kMargin),
    in("paperPosition", {"#flatbedX", "#flatbedY", "#adfX", "#adfY", "#cardslotX", "#cardslotY"}),
    in("cardSizeOrient", {"#capFlatbed", "#orientFlatbed", "#capAdf", "#orientAdf"}),
    in("multipageScanSystem", {".scan1Paper", ".definingPageNums"}),
    {"#overScanSystem.capOverScan"},
    in("overScanSystem.colorType", kColors),
    in("overScanSystem.funcExclusion", kExclusion),
    in("cancelSystem", {"#cap", ".ejectAll", ".ejectOne", ".ejectNone"}),
    in("errorSystem.first", {"#cap", ".flagA", ".flagB"}),
    in("errorSystem.feed", {"#cap", ".stop", ".resume", ".keepOn"}),
    in("errorSystem.third", {"#cap", ".flagA", ".flagB"}),
    in("colorTape", {"#cap", "#red", "#green", "#blue", "#upperRange", "#lowerRange"}),
});

const Names kImageProc = joined({
    in("supportCompresssionType.blackAndWhite", kCompression),
    in("supportCompresssionType.errorDiffusion", kCompression),
    in("supportCompresssionType.trueGray", kCompression),
    in("supportCompresssionType.color256", kCompression),
    in("supportCompresssionType.color24bit", kCompression),
    {"#supportCompresssionType.jpegCompression.compressLevel"},
    in("supportCompresssionType.jpegCompression.jpegSamplingFactor",
       {".ycbcr444", ".ycbcr422", ".ycbcr411", ".ycbcr420", ".ycbcr400"}),
    in("monoThreshold", {"#autoThresholdCap", ".autoThresholdFlag", "#manuanThresholdCap", "#manualThresholdLevelMax",
                         "#manualThresholdLevelMin", "#manualThresholdLevelDefault"}),
    in("specialDocumentImageProcs", {".ocr", ".photo", ".textandgraph", ".copy"}),
    {"#colorProfileOutput", "#gammaRange", "#moireRemoval.moireCap"},
    in("moireRemoval.moireMaxResolution", kAxis),
    {"#toneAdjust"},
});

const Names kAdvanced = joined({
    {"#autoSize.paperWidthDetect.cap"},
    in("autoSize.paperWidthDetect.supportColorType", kColors),
    in("autoSize.paperWidthDetect.supportPaperSource", kSources),
    {"#autoSize.autoCrop.cap"},
    in("autoSize.autoCrop.supportColorType", kColors),
    in("autoSize.autoCrop.resolutionDpiMax", kAxis),
    in("autoSize.autoCrop.resolutionDpiMin", kAxis),
    {"#autoSize.cornerDetect.cap"},
    in("autoSize.cornerDetect.supportColorType", kColors),
    in("autoSize.cornerDetect.supportPaperSource", kSources),
    {"#autoSize.cornerDetect.cornerInfoOutputSystem"},
    in("autoSize.cornerDetect.resolutionDpiMin", kAxis),
    in("autoSize.cornerDetect.resolutionDpiMax", kAxis),
    {"#autoSize.deviceDetectSize.cap"},
    in("autoSize.deviceDetectSize.supportPaperSource", kSources),
    in("autoSize.deviceDetectSize", {".detectSystem", ".detectOverScan"}),
    in("idCardMode", {"#cap", ".deviceFunc.scanFromFlatbed", ".deviceFunc.showGuidsOnPanel"}),
    {"#landscape.cap"},
    in("landscape.ladscapeCapablePaperSource", kSources),
    in("carrierSheet", {"#cap", "#skipOffsetSystem"}),
    in("carrierSheet.supportColorType", kColors),
    in("carrierSheet.offsetSizeMm", {"#top", "#bottom"}),
    in("carrierSheet.resolutionDpiMax", kAxis),
    in("carrierSheet.resolutionDpiMin", kAxis),
    in("carrierSheet.exclusion", kExclusion),
    {"#plasticCard.cap"},
    in("plasticCard.supportColorType", kColors),
    in("plasticCard.resolutionDpiMin", kAxis),
    in("plasticCard.resolutionDpiMax", kAxis),
    in("plasticCard.exclusion", kExclusion),
    in("multifeedDetect", {"#cap", "#systemType", "#level"}),
    in("backgroundRemove", kLevels),
    in("breedthroughRemove", kLevels),
    {"#deskew.cap"},
    in("deskew.suportPaperSource", kSources),
    {"#deskew.systemType"},
    in("blankRemoval", {"#cap", "#systemType", "#levelCap", "#levelFixed", "#levelMax", "#levelMin", "#levelDefault"}),
    in("autoColor", {"#cap", "#firstMax", "#firstMin", "#firstDefault", "#secondMax", "#secondMin", "#secondDefault"}),
    {"#detectResolution", "#adfOnlyBackScan"},
    in("quietScan", {"#cap", "#level", "#levelAlt"}),
});

// A group whose bytes are all different from their neighbours, and what its listing must be.
template <class Group>
void expectListing(const char* header, const Names& names, void (*write)(const Group&)) {
  std::array<unsigned char, sizeof(Group)> bytes;
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i * 7 + i / 256 + 0x81);
  std::vector<LogLine> wanted = {{1, std::string("<-- ") + header + " -->"}};
  std::size_t at = 0;
  for (const std::string& name : names) {
    if (name[0] != '.') at = (at + 3) / 4 * 4;
    std::int32_t value = bytes.at(at);
    if (name[0] == '#') std::memcpy(&value, &bytes.at(at), 4);
    at += name[0] == '#' ? 4 : 1;
    wanted.push_back({1, name.substr(1) + " = " + std::to_string(value)});
  }
  EXPECT_EQ((at + 3) / 4 * 4, sizeof(Group)) << "the list has every field";
  Group group;
  std::memcpy(static_cast<void*>(&group), bytes.data(), sizeof group);
  LogCapture log;
  write(group);
  ASSERT_EQ(log.lines.size(), wanted.size()) << log.all();
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    EXPECT_EQ(log.lines[i].text, wanted[i].text);
    EXPECT_EQ(log.lines[i].level, 1);
  }
}

}  // namespace

TEST(capability_log, EveryFieldOfTheFunctions) {
  expectListing("DEVINFO_FUNC", kFunc, CDeviceCaps::WriteLogDevInfoFunc);
}

TEST(capability_log, EveryFieldOfTheBasicFunctions) {
  expectListing("DEVINFO_BASEFUNC", kBase, CDeviceCaps::WriteLogDevInfoBaseFunc);
}

TEST(capability_log, EveryFieldOfTheImageProcessing) {
  expectListing("DEVINFO_IMAGEPROCFUNC", kImageProc, CDeviceCaps::WriteLogDevInfoImageProcFunc);
}

TEST(capability_log, EveryFieldOfTheAdvancedFunctions) {
  expectListing("DEVINFO_ADVANCEDFUNC", kAdvanced, CDeviceCaps::WriteLogDevInfoAdvancedFunc);
}

TEST(capability_log, TheModelByCategoryAndName) {
  DEVINFO_MODELINFO info{};
  info.category = 3;
  std::strcpy(info.modelName, "Office 50");
  LogCapture log;
  CDeviceCaps::WriteLogModelInfo(info);
  EXPECT_EQ(log.lines,
            (std::vector<LogLine>{{1, "<-- DEVINFO_MODELINFO -->"}, {1, "category = 3"}, {1, "modelName = Office 50"}}))
      << log.all();
  std::memset(info.modelName, 'm', sizeof info.modelName);
  log.lines.clear();
  CDeviceCaps::WriteLogModelInfo(info);
  EXPECT_TRUE(log.has(1, "modelName = " + std::string(128, 'm'))) << "a full name has no end of its own";
}

TEST(capability_log, ForgettingTheRecordIsToldByName) {
  CDeviceCaps caps;
  LogCapture log;
  EXPECT_EQ(caps.UnInitialize(), 0u);
  EXPECT_EQ(log.lines, (std::vector<LogLine>{{1, "UnInitialize"}})) << log.all();
}
