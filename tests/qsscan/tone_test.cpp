#include "apps/qsscan/tone.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "apps/qsscan/exit_codes.h"

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;

Capability toneCapability() {
  Capability capability{};
  capability.colorTone = {2, 0, {50, -50, 0}, {50, -50, 0}, {254, 0, 0}, {255, 1, 220}, {1000, 10, 100}};
  return capability;
}

QS_SCANNER_PARAMETERS toned(const ToneWish& wish, COLORTYPE mode = COLORTYPE_COLOR24BIT,
                            const Capability& capability = toneCapability()) {
  QS_SCANNER_PARAMETERS settings{};
  settings.colorType = mode;
  setTone(wish, capability, settings);
  return settings;
}

void expectRefused(const ToneWish& wish, ExitCode code, const char* partOfSentence,
                   COLORTYPE mode = COLORTYPE_COLOR24BIT, const Capability& capability = toneCapability()) {
  try {
    toned(wish, mode, capability);
    FAIL() << "accepted; expected " << partOfSentence;
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), code) << error.what();
    EXPECT_NE(std::string(error.what()).find(partOfSentence), std::string::npos) << error.what();
  }
}

TEST(Tone, WithoutAnOptionNothingIsCorrected) {
  const auto settings = toned({});
  EXPECT_EQ(settings.colorTone.enable, 0);
  EXPECT_EQ(settings.colorTone.highlight, 0);
}

TEST(Tone, ValuesGoIntoTheRecordAndTheOthersStayNeutral) {
  auto tone = toned({20.0, 230.0, 1.4}).colorTone;
  EXPECT_EQ(tone.enable, 1);
  EXPECT_EQ(tone.autoMode, 0);
  EXPECT_EQ(tone.shadow, 20);
  EXPECT_EQ(tone.highlight, 230);
  EXPECT_EQ(tone.gamma, 140);
  EXPECT_EQ(tone.brightness, 0);
  EXPECT_EQ(tone.contrast, 0);

  tone = toned({std::nullopt, std::nullopt, 0.1}, COLORTYPE_TRUEGRAY).colorTone;
  EXPECT_EQ(tone.shadow, 0);
  EXPECT_EQ(tone.highlight, 255);
  EXPECT_EQ(tone.gamma, 10);
  EXPECT_EQ(toned({1.0, std::nullopt, std::nullopt}, COLORTYPE_AUTO).colorTone.gamma, 100);
}

TEST(Tone, ValuesBeyondTheDevicesRangeAreRefused) {
  expectRefused({255.0, std::nullopt, std::nullopt}, ExitCode::kNotServed, "--shadow must lie between 0 and 254.");
  expectRefused({std::nullopt, 0.0, std::nullopt}, ExitCode::kNotServed, "--highlight must lie between 1 and 255.");
  expectRefused({std::nullopt, std::nullopt, 0.05}, ExitCode::kNotServed, "--gamma must lie between 0.1 and 10.");
  expectRefused({std::nullopt, std::nullopt, 1e300}, ExitCode::kNotServed, "--gamma");
  expectRefused({std::nullopt, std::nullopt, std::nan("")}, ExitCode::kNotServed, "--gamma");
}

TEST(Tone, ContradictionsAreRefused) {
  expectRefused({200.0, 200.0, std::nullopt}, ExitCode::kUsage, "below --highlight");
  expectRefused({1.0, std::nullopt, std::nullopt}, ExitCode::kUsage, "color, gray or auto", COLORTYPE_BLACKANDWHITE);
  expectRefused({1.0, std::nullopt, std::nullopt}, ExitCode::kUsage, "color, gray or auto", COLORTYPE_ERRORDIFFUSION);
  QS_SCANNER_PARAMETERS automatic{};
  automatic.colorType = COLORTYPE_COLOR24BIT;
  automatic.colorTone.autoMode = 1;
  EXPECT_THROW(setTone({1.0, std::nullopt, std::nullopt}, toneCapability(), automatic), CommandError);
}

TEST(Tone, ADeviceWithoutToneIsToldApart) {
  expectRefused({1.0, std::nullopt, std::nullopt}, ExitCode::kNotServed, "--brightness", COLORTYPE_COLOR24BIT,
                Capability{});
}

}  // namespace
