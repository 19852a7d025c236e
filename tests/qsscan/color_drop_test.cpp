#include "apps/qsscan/color_drop.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "apps/qsscan/exit_codes.h"

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;

Capability dropping(FLAG red, FLAG green, FLAG blue, FLAG chromatic, std::int32_t custom) {
  Capability capability{};
  capability.colorDrop = {2, red, green, blue, chromatic, custom};
  return capability;
}

QS_SCANNER_PARAMETERS dropped(const char* text, const Capability& capability = dropping(1, 1, 1, 1, 1)) {
  QS_SCANNER_PARAMETERS settings{};
  setColorDrop(findColorDrop(text).value(), 25, capability, settings);
  return settings;
}

TEST(ColorDrop, NamesSelectThePresets) {
  EXPECT_TRUE(dropped("red").colorDrop.red);
  EXPECT_TRUE(dropped("Green").colorDrop.green);
  EXPECT_TRUE(dropped("BLUE").colorDrop.blue);
  EXPECT_TRUE(dropped("all").colorDrop.chromatic);
  QS_SCANNER_PARAMETERS expected{};
  expected.colorDrop.enable = expected.colorDrop.red = 1;
  const auto made = dropped("red");
  EXPECT_EQ(std::memcmp(&made, &expected, sizeof made), 0) << "nothing but the preset is set";
}

TEST(ColorDrop, AColourOfOnesOwnGoesWithItsRange) {
  for (const char* text : {"12AbF0", "#12abf0"}) {
    const COLORDROP drop = dropped(text).colorDrop;
    EXPECT_EQ(drop.enable, 1);
    EXPECT_FALSE(drop.red || drop.green || drop.blue || drop.chromatic);
    EXPECT_EQ(drop.customRed, 0x12);
    EXPECT_EQ(drop.customGreen, 0xAB);
    EXPECT_EQ(drop.customBlue, 0xF0);
    EXPECT_EQ(drop.customRange, 25);
    EXPECT_EQ(drop.customFlag, 1);
  }
}

TEST(ColorDrop, WhatIsNoColourIsUnknown) {
  for (const char* text : {"", "#", "pink", "12345", "1234567", "12345g", "-12345", "+12345", "0x1234", "##12345"}) {
    EXPECT_FALSE(findColorDrop(text)) << text;
  }
}

TEST(ColorDrop, TheRefusalNamesTheColoursThatAreOffered) {
  const auto sentence = [](const char* text, const Capability& capability) {
    try {
      dropped(text, capability);
      return std::string("accepted");
    } catch (const CommandError& error) {
      EXPECT_EQ(error.code(), ExitCode::kNotServed);
      return std::string(error.what());
    }
  };
  EXPECT_NE(sentence("all", dropping(1, 1, 1, 0, 1)).find("red, green, blue, a colour as RRGGBB"), std::string::npos);
  EXPECT_NE(sentence("112233", dropping(1, 0, 0, 0, 0)).find("There are: red."), std::string::npos);
  EXPECT_NE(sentence("red", Capability{}).find("Leave out --color-drop"), std::string::npos);
}

}  // namespace
