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
