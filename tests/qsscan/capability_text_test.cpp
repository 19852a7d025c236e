#include "apps/qsscan/capability_text.h"

#include <gtest/gtest.h>

#include "fake_scan_core.h"

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;
using qsscan_test::officeCapability;

TEST(CapabilityJson, TellsWhatTheRecordSays) {
  const auto json = capabilityJson("host:1", officeCapability());
  EXPECT_EQ(json["device"], "host:1");
  EXPECT_EQ(json["sources"], (std::vector<std::string>{"flatbed", "adf", "adf-duplex"}));
  EXPECT_EQ(json["feederCapacity"], 50);
  EXPECT_EQ(json["modes"], (std::vector<std::string>{"color", "gray", "mono", "dither", "auto"}));
  EXPECT_EQ(json["resolutions"], (std::vector<int>{100, 150, 200, 300, 400, 600, 1200}));
  EXPECT_EQ(json["opticalResolution"]["adf"]["x"], 600);
  EXPECT_EQ(json["largestDocument"]["adf"]["heightMm"], 355.6);
  EXPECT_TRUE(json["smallestScan"]["flatbed"].is_null()) << "a hundredth of a millimetre is no size";
  EXPECT_EQ(json["smallestScan"]["adf"]["widthMm"], 50.8);
  EXPECT_EQ(json["longPaper"]["oneSideMm"], 3000);
  EXPECT_TRUE(json["longPaper"]["bothSidesMm"].is_null());
  EXPECT_EQ(json["automaticPageSize"], true);
  EXPECT_EQ(json["quietMode"], false);
  EXPECT_TRUE(json["deskew"].is_null());
  EXPECT_EQ(json["threshold"]["max"], 254);
}

TEST(CapabilityJson, SizesInInchesBecomeMillimetres) {
  Capability capability = officeCapability();
  capability.supportDocSizeMax = {{8500, 14000}, {0, 0}, {0, 0}, UNIT_INCH};
  const auto json = capabilityJson("h", capability);
  EXPECT_EQ(json["largestDocument"]["flatbed"]["widthMm"], 215.9);
  EXPECT_EQ(json["largestDocument"]["flatbed"]["heightMm"], 355.6);
  EXPECT_TRUE(json["largestDocument"]["adf"].is_null());
}

TEST(CapabilityJson, ASilentRecordIsNullThroughout) {
  const auto json = capabilityJson("h", Capability{});
  for (const auto& [key, value] : json.items()) {
    EXPECT_EQ(value.is_null(), key != "device") << key;
  }
}

// Each row of the table: a record with one item in it, and what is told of it.
struct ItemRow {
  const char* name;
  void (*fill)(Capability&);
  const char* key;
  const char* json;
  const char* words;
};
void PrintTo(const ItemRow& row, std::ostream* out) { *out << row.name; }
class CapabilityItem : public testing::TestWithParam<ItemRow> {};

TEST_P(CapabilityItem, IsToldToProgramsAndToPeople) {
  const ItemRow& row = GetParam();
  Capability capability{};
  row.fill(capability);
  EXPECT_EQ(capabilityJson("h", capability)[row.key].dump(), row.json);
  EXPECT_NE(capabilityText("h", capability).find(row.words), std::string::npos) << capabilityText("h", capability);
}

INSTANTIATE_TEST_SUITE_P(
    CapabilityText, CapabilityItem,
    testing::Values(
        ItemRow{"NegativeMargins",
                [](Capability& c) {
                  c.marginSize = {-300, -300, -250, 0, UNIT_MILLIMETER};
                },
                "margins", R"({"leftMm":3.0,"rightMm":3.0,"topMm":2.5,"bottomMm":0.0})",
                "left 3, right 3, top 2.5, bottom 0 mm"},
        ItemRow{"MarginsOfNothing",
                [](Capability& c) {
                  c.marginSize = {0, 0, 0, 0, UNIT_MILLIMETER};
                },
                "margins", R"({"leftMm":0.0,"rightMm":0.0,"topMm":0.0,"bottomMm":0.0})",
                "left 0, right 0, top 0, bottom 0 mm"},
        ItemRow{"PaperAtTheTop",
                [](Capability& c) {
                  c.paperSource.supportPaperSource = {1, 1, 0, 0};
                  c.paperPosition = {0, 3, 1, 4, 0, 0};
                },
                "paperPosition",
                R"({"flatbed":{"across":"left","along":"top"},"adf":{"across":"centred","along":"bottom"}})",
                "flatbed left, top; adf centred, bottom"},
        ItemRow{"BlankLevels", [](Capability& c) { c.blankRemoval = {2, 0, 2, 1, 4, 0, 2}; }, "blankPageLevel",
                R"({"min":0,"max":4,"default":2})", "Blank-page level:         0 to 4\n"},
        ItemRow{"BlankPagesWithoutLevel", [](Capability& c) { c.blankRemoval.cap = 2; }, "blankPageLevel", "true",
                "Blank-page level:         yes\n"},
        ItemRow{"AutomaticColor", [](Capability& c) { c.autoColor = {2, 255, 0, 127, 100, 0, 50}; }, "automaticColor",
                R"({"first":{"min":0,"max":255,"default":127},"second":{"min":0,"max":100,"default":50}})",
                "first 0 to 255; second 0 to 100"},
        ItemRow{"Gamma",
                [](Capability& c) {
                  c.colorTone.cap = 2;
                  c.colorTone.gamma = {1000, 10, 100};
                },
                "tone",
                R"({"brightness":{"min":0,"max":0,"default":0},"contrast":{"min":0,"max":0,"default":0},)"
                R"("shadow":{"min":0,"max":0,"default":0},"highlight":{"min":0,"max":0,"default":0},)"
                R"("gamma":{"min":0.1,"max":10.0,"default":1.0}})",
                "gamma 0.1 to 10"},
        ItemRow{"Background",
                [](Capability& c) {
                  c.backgroundRemoval = {{2, 255}, {1, 0}, {0, 0}, {2, 1}};
                },
                "backgroundRemoval", R"({"color":true,"gray":null,"mono":{"min":0,"max":255},"dither":false})",
                "color yes; gray not reported; mono 0 to 255; dither no"},
        ItemRow{"ColorDrop", [](Capability& c) { c.colorDrop = {2, 1, 0, 1, 1, 1}; }, "colorDrop",
                R"(["red","blue","all","any other"])", "red, blue, all, any other"},
        ItemRow{"NoColorDrop", [](Capability& c) { c.colorDrop.cap = 1; }, "colorDrop", "false",
                "Color drop:               no\n"},
        ItemRow{"Sharpening",
                [](Capability& c) {
                  c.edgeEnhance = {2, 0, {5, 1, 1}};
                },
                "edgeEnhancement", R"({"min":1,"max":5,"default":1})", "Sharpening:               1 to 5\n"},
        ItemRow{"NoNoiseRemoval", [](Capability& c) { c.dustRemoval.cap = 1; }, "noiseRemoval", "false",
                "Device removes noise:     no\n"},
        ItemRow{"ThresholdByTheDevice", [](Capability& c) { c.monoThreshold.autoThresholdCap = 2; },
                "automaticThreshold", "true", "Threshold by the device:  yes\n"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CapabilityText, HasALineForEachItem) {
  const std::string text = capabilityText("host:1", officeCapability());
  for (const char* line :
       {"Device:                   host:1\n", "Sources:                  flatbed, adf, adf-duplex\n",
        "Largest document:         flatbed 215.9 by 297 mm; adf 215.9 by 355.6 mm; adf-duplex 215.9 by 355.6 mm\n",
        "Optical resolution (dpi): flatbed 600 by 600; adf 600 by 600; adf-duplex 600 by 600\n",
        "Long paper:               one side up to 3000 mm; both sides not reported\n",
        "Threshold for mono:       1 to 254\n", "Quiet mode:               no\n",
        "Deskew:                   not reported\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << "is missing in\n" << text;
  }
}

TEST(CapabilityText, ASilentRecordIsNotReportedThroughout) {
  const std::string text = capabilityText("h", Capability{});
  std::size_t lines = 0, silent = 0;
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; ++at) ++lines;
  for (std::size_t at = 0; (at = text.find("not reported", at)) != std::string::npos; ++at) ++silent;
  EXPECT_EQ(silent + 1, lines) << text;
}

}  // namespace
