#include "apps/qsscan/scan_features.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <utility>

#include "apps/qsscan/exit_codes.h"
#include "apps/qsscan/settings.h"
#include "fake_scan_core.h"

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;
using Settings = QS_SCANNER_PARAMETERS;

// A device that can do everything.
Capability ableCapability() {
  Capability c = qsscan_test::officeCapability();
  c.autoDeskew = c.multifeed = c.carrierSheet = c.quietMode = c.iccProfile = c.dotTextCombine = 2;
  c.blankRemoval = {2, 0, 2, 1, 4, 0, 2};
  c.backgroundRemoval = {{2, 255}, {2, 255}, {2, 255}, {2, 255}};
  c.colorTone.cap = 2;
  c.edgeEnhance = c.thickText = {2, 0, {5, 1, 1}};
  c.smoothing = {2, 0, 2, 0, {50, -50, 0}};
  c.detectEndOfPage = 2;
  return c;
}

const Feature* find(const std::string& option) {
  for (const Feature& feature : featureTable()) {
    if (feature.option == option) return &feature;
  }
  return nullptr;
}

Settings settingsWith(const char* option, std::optional<int> level = {},
                      const Capability& capability = ableCapability(), COLORTYPE mode = COLORTYPE_COLOR24BIT) {
  Settings settings;
  std::memset(&settings, 0, sizeof settings);  // the gaps between members too, since records are compared as bytes
  settings.colorType = mode;
  const FeatureWish wish{find(option), level};
  setFeatures({&wish, 1}, capability, settings);
  return settings;
}

void expectRefused(const char* option, std::optional<int> level, const Capability& capability, COLORTYPE mode,
                   ExitCode code, const std::string& partOfSentence) {
  try {
    settingsWith(option, level, capability, mode);
    FAIL() << option << " was accepted";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), code) << error.what();
    EXPECT_NE(std::string(error.what()).find(partOfSentence), std::string::npos) << error.what();
  }
}

struct Row {
  const char* option;
  std::optional<int> level;
  void (*expect)(Settings&);
};

// Nothing but what the option is for is changed.
TEST(ScanFeatures, EachSetsItsFieldsOfTheRecord) {
  const Row kRows[] = {
      {"--deskew", {}, [](Settings& s) { s.autoDeskew = 1; }},
      {"--auto-rotate", {}, [](Settings& s) { s.autoRotate = 1; }},
      {"--skip-blank",
       {},
       [](Settings& s) {
         s.blankPageRemoval = {1, 2};
       }},
      {"--skip-blank", 4,
       [](Settings& s) {
         s.blankPageRemoval = {1, 4};
       }},
      {"--detect-multifeed", {}, [](Settings& s) { s.multifeedDetect = 1; }},
      {"--remove-background",
       {},
       [](Settings& s) {
         s.removeBackground = {1, 128};
       }},
      {"--remove-background", 255,
       [](Settings& s) {
         s.removeBackground = {1, 255};
       }},
      {"--carrier-sheet", {}, [](Settings& s) { s.carrierSheet = 1; }},
      {"--quiet", {}, [](Settings& s) { s.quietScan = 1; }},
      {"--icc-profile", {}, [](Settings& s) { s.wantColorProfile = 1; }},
      {"--auto-tone", {}, [](Settings& s) { s.colorTone.enable = s.colorTone.autoMode = 1; }},
      {"--sharpen",
       {},
       [](Settings& s) {
         s.edgeEnhance = {1, 1};
       }},
      {"--sharpen", 5,
       [](Settings& s) {
         s.edgeEnhance = {1, 5};
       }},
      {"--smooth", -20,
       [](Settings& s) {
         s.smoothing = {1, 1, -20};
       }},
      {"--thicken-text", 3,
       [](Settings& s) {
         s.thickText = {1, 3};
       }},
      {"--join-dots", {}, [](Settings& s) { s.dotTextCombine = 1; }},
      {"--auto-length", {}, [](Settings& s) { s.detectEndOfPage = 1; }},
      {"--descreen",
       {},
       [](Settings& s) {
         s.smoothing = {1, 0, 0};
       }},
      {"--despeckle",
       {},
       [](Settings& s) {
         s.noiseRemoval = {1, 3};
       }},
      {"--despeckle", 5,
       [](Settings& s) {
         s.noiseRemoval = {1, 5};
       }},
      {"--remove-lines",
       {},
       [](Settings& s) {
         s.lineRemoval = {1, 2, 0, 0, 0};
       }},
      {"--remove-lines", 0,
       [](Settings& s) {
         s.lineRemoval = {1, 0, 0, 0, 0};
       }},
      {"--remove-holes",
       {},
       [](Settings& s) {
         s.punchHoleRemoval = {1, 0};
       }},
      {"--remove-holes", 1,
       [](Settings& s) {
         s.punchHoleRemoval = {1, 1};
       }},
      {"--remove-holes", 2,
       [](Settings& s) {
         s.punchHoleRemoval = {1, 6};
       }},
  };
  for (const Feature& feature : featureTable()) {
    EXPECT_TRUE(std::any_of(std::begin(kRows), std::end(kRows),
                            [&](const Row& row) { return std::strcmp(row.option, feature.option) == 0; }))
        << feature.option << " has no row here";
  }
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.option);
    Settings expected;
    std::memset(&expected, 0, sizeof expected);
    expected.colorType = COLORTYPE_COLOR24BIT;
    row.expect(expected);
    Settings made = settingsWith(row.option, row.level);
    // A group that is set as a whole leaves anything in the gaps between its members.
    __builtin_clear_padding(&expected);
    __builtin_clear_padding(&made);
    EXPECT_EQ(std::memcmp(&made, &expected, sizeof made), 0);
  }
}

TEST(ScanFeatures, WhatTheDeviceLacksIsRefused) {
  for (const Feature& feature : featureTable()) {
    if (feature.isServed == nullptr) continue;
    SCOPED_TRACE(feature.option);
    expectRefused(feature.option, {}, Capability{}, COLORTYPE_COLOR24BIT, ExitCode::kNotServed,
                  std::string(feature.lack) + ". Leave out " + feature.option + ".");
  }
}

TEST(ScanFeatures, TheLibrarysOwnWorkNeedsNothingOfTheDevice) {
  EXPECT_EQ(settingsWith("--auto-rotate", {}, Capability{}).autoRotate, 1);
  // The record of every device says that it lacks these.
  Capability capability = ableCapability();
  capability.dustRemoval.cap = capability.lineRemoval.cap = capability.punchHole.cap = 1;
  EXPECT_EQ(settingsWith("--despeckle", {}, capability).noiseRemoval.enable, 1);
  EXPECT_EQ(settingsWith("--remove-lines", {}, capability).lineRemoval.enable, 1);
  EXPECT_EQ(settingsWith("--remove-holes", {}, capability).punchHoleRemoval.enable, 1);
}

TEST(ScanFeatures, AWordStandsForItsPlaceInTheList) {
  EXPECT_EQ(parseLevel(*find("--remove-lines"), "horizontal"), 0);
  EXPECT_EQ(parseLevel(*find("--remove-lines"), "both"), 2);
  EXPECT_EQ(parseLevel(*find("--remove-holes"), "white"), 2);
  EXPECT_EQ(parseLevel(*find("--smooth"), "-20"), -20);
  for (const auto& [option, text] : {std::pair("--remove-lines", "1"), std::pair("--remove-lines", "Both"),
                                     std::pair("--sharpen", "1.5"), std::pair("--sharpen", "")}) {
    EXPECT_THROW(parseLevel(*find(option), text), CommandError) << option << " " << text;
  }
}

// Each wish by itself would be served.
TEST(ScanFeatures, WhatCannotBeDoneTogetherIsRefused) {
  for (const auto& [one, other] : {std::pair("--smooth", "--descreen"), std::pair("--thicken-text", "--join-dots")}) {
    for (const bool inOrder : {true, false}) {
      const FeatureWish wishes[] = {{find(inOrder ? one : other), {}}, {find(inOrder ? other : one), {}}};
      Settings settings{};
      try {
        setFeatures(wishes, ableCapability(), settings);
        ADD_FAILURE() << one << " and " << other << " were accepted";
      } catch (const CommandError& error) {
        EXPECT_EQ(error.code(), ExitCode::kUsage);
        EXPECT_NE(std::string(error.what()).find("exclude each other"), std::string::npos) << error.what();
      }
    }
  }
}

TEST(ScanFeatures, WhatTheLibraryDropsOnLongPaperIsRefusedThere) {
  const std::set<std::string> dropped = {"--deskew",    "--auto-rotate",  "--auto-tone",    "--sharpen",
                                         "--despeckle", "--remove-lines", "--carrier-sheet"};
  for (const Feature& feature : featureTable()) {
    for (const PAPERTYPE paper : {PAPERTYPE_LONG, PAPERTYPE_LONG_NARROW, PAPERTYPE_CUSTOM}) {
      SCOPED_TRACE(std::string(feature.option) + " on paper " + std::to_string(paper));
      Settings settings{};
      settings.colorType = COLORTYPE_COLOR24BIT;
      settings.paperType = paper;
      const FeatureWish wish{&feature, {}};
      if (paper != PAPERTYPE_CUSTOM && dropped.contains(feature.option)) {
        EXPECT_THROW(setFeatures({&wish, 1}, ableCapability(), settings), CommandError);
      } else {
        EXPECT_NO_THROW(setFeatures({&wish, 1}, ableCapability(), settings));
      }
    }
  }
}

TEST(ScanFeatures, TheRefusalNamesTheModesThatServeIt) {
  Capability capability = ableCapability();
  capability.backgroundRemoval = {{1, 0}, {2, 255}, {1, 0}, {2, 255}};
  expectRefused("--remove-background", {}, capability, COLORTYPE_TRUEGRAY, ExitCode::kNotServed,
                "in the mode gray. It can in: color, dither, auto.");
  EXPECT_EQ(settingsWith("--remove-background", 7, capability, COLORTYPE_AUTO).removeBackground.level, 7);
  EXPECT_EQ(settingsWith("--remove-background", 7, capability, COLORTYPE_ERRORDIFFUSION).removeBackground.level, 7);
  expectRefused("--remove-background", {}, capability, COLORTYPE_BLACKANDWHITE, ExitCode::kNotServed, "color");
}

TEST(ScanFeatures, LevelsAreThoseOfTheDevice) {
  Capability capability = ableCapability();
  expectRefused("--skip-blank", 5, capability, COLORTYPE_COLOR24BIT, ExitCode::kNotServed, "between 0 and 4");
  expectRefused("--sharpen", 0, capability, COLORTYPE_COLOR24BIT, ExitCode::kNotServed, "between 1 and 5");
  expectRefused("--smooth", 51, capability, COLORTYPE_COLOR24BIT, ExitCode::kNotServed, "between -50 and 50");
  expectRefused("--remove-background", -1, capability, COLORTYPE_COLOR24BIT, ExitCode::kNotServed, "between 0 and 255");
  capability.blankRemoval.levelCap = 1;
  expectRefused("--skip-blank", 1, capability, COLORTYPE_COLOR24BIT, ExitCode::kNotServed, "no levels");
  EXPECT_EQ(settingsWith("--skip-blank", {}, capability).blankPageRemoval.level, 0u);
}

TEST(ScanFeatures, WhatAPageOfTwoColoursWouldNotShowIsRefused) {
  for (const char* option : {"--sharpen", "--auto-tone", "--icc-profile"}) {
    for (const COLORTYPE mode : {COLORTYPE_BLACKANDWHITE, COLORTYPE_ERRORDIFFUSION}) {
      expectRefused(option, {}, ableCapability(), mode, ExitCode::kUsage, "needs the mode color, gray or auto");
    }
    settingsWith(option, {}, ableCapability(), COLORTYPE_TRUEGRAY);
    settingsWith(option, {}, ableCapability(), COLORTYPE_AUTO);
  }
}

}  // namespace
