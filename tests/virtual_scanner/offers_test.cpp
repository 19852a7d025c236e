#include "device/offers.h"

#include <gtest/gtest.h>

namespace vscan {
namespace {

struct OfferCase {
  const char* name;
  std::vector<const char*> offering;     // of the office profile, which does not offer it without these
  std::vector<const char*> notOffering;  // which take the offer back
  void (*ask)(ScanSettings& settings);
};

void PrintTo(const OfferCase& one, std::ostream* out) { *out << one.name; }

const OfferCase kCases[] = {
    {"OCR", {"specialDocument=2"}, {}, [](auto& s) { s.imageProcessing = ImageProcessing::Ocr; }},
    {"Copy", {"specialDocument=1"}, {}, [](auto& s) { s.imageProcessing = ImageProcessing::Copy; }},
    {"Photo", {"specialDocument=4"}, {}, [](auto& s) { s.imageProcessing = ImageProcessing::Photo; }},
    {"Mixed", {"specialDocument=8"}, {}, [](auto& s) { s.imageProcessing = ImageProcessing::TextAndGraphics; }},
    {"PlasticCard", {"plasticCard=1"}, {}, [](auto& s) { s.paperType = PaperType::PlasticCard; }},
    {"LongPaper", {}, {"longPaperSimplex=0", "longPaperDuplex=0"}, [](auto& s) { s.longPaper = true; }},
    {"CarrierSheet", {"carrierSheet=1"}, {}, [](auto& s) { s.carrierSheet = CarrierSheet::Used; }},
    {"BackgroundRemoval", {}, {"backgroundRemove[2]=0"}, [](auto& s) { s.backgroundRemoval.isOn = true; }},
    {"DoubleFeeds", {}, {"multifeed=0"}, [](auto& s) { s.doubleFeedDetection.isOn = true; }},
    {"DoubleFeedLevel",
     {"multifeed=3"},
     {},
     [](auto& s) {
       s.doubleFeedDetection = {true, 2};
     }},
    {"Deskew", {}, {"deskew=5"}, [](auto& s) { s.deskew = true; }},
    {"Landscape", {"landscape=2"}, {}, [](auto& s) { s.isLandscape = true; }},
    {"BlankRemoval", {}, {"blankRemove=4"}, [](auto& s) { s.blankRemoval.isOn = true; }},
    {"BlankLevel",
     {},
     {"blankRemove=1"},
     [](auto& s) {
       s.blankRemoval = {true, 3};
     }},
    {"Moire", {"moire=1"}, {}, [](auto& s) { s.removesMoire = true; }},
    {"MoireUpToItsResolution",
     {"moire=1", "moireMaxX=300", "moireMaxY=300"},
     {"moireMaxX=299"},
     [](auto& s) { s.removesMoire = true; }},
    {"Gamma",
     {"gammaRange=200"},
     {"gammaRange=199"},
     [](auto& s) {
       s.gamma = {true, 200};
     }},
    {"GammaOfTheDevice",
     {"gammaRange=1"},
     {},
     [](auto& s) {
       s.gamma = {true, {}};
     }},
    {"Quiet", {"quietScan=1"}, {}, [](auto& s) { s.isQuiet = true; }},
    {"BacksOnly", {}, {"adfOnlyBackScan=0"}, [](auto& s) { s.sides = Sides::BackOnly; }},
    {"ColourLevels",
     {},
     {"autoColorLevel=0"},
     [](auto& s) {
       s.colorLevel = {{2, 0}};
     }},
    {"OverScan", {"overScan=1"}, {}, [](auto& s) { s.areaKind = AreaKind::Over; }},
    {"AutomaticSize", {}, {"autoDocSize=5"}, [](auto& s) { s.areaKind = AreaKind::Automatic; }},
    {"StraightenedSize", {}, {"deskew=5"}, [](auto& s) { s.areaKind = AreaKind::AutomaticDeskewed; }},
};

class Offers : public testing::TestWithParam<OfferCase> {
 protected:
  static bool isGranted(const Profile& profile) {
    ScanSettings settings;
    settings.color = ColorMode::Grey;
    settings.resolution = {false, 300, 300};
    GetParam().ask(settings);
    return std::holds_alternative<GrantedScan>(grantScan(profile, settings, true, false));
  }
};

TEST_P(Offers, WhatTheProfileDoesNotOfferIsRefused) {
  Profile profile = loadProfile(QS_PROFILES "/office.json");
  EXPECT_EQ(isGranted(profile), GetParam().offering.empty());
  for (const char* assignment : GetParam().offering) overrideProfile(profile, assignment);
  EXPECT_TRUE(isGranted(profile));
  for (const char* assignment : GetParam().notOffering) overrideProfile(profile, assignment);
  EXPECT_EQ(isGranted(profile), GetParam().notOffering.empty());
}

INSTANTIATE_TEST_SUITE_P(Settings, Offers, testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Offers, WhatHostsSendWithoutAskingIsGrantedToAllDevices) {
  for (const char* name : {"office", "flatbed"}) {
    const Profile profile = loadProfile(std::string(QS_PROFILES "/") + name + ".json");
    for (const bool appliesTone : {false, true}) {
      ScanSettings settings;
      settings.appliesTone = appliesTone;
      settings.compression = Compression::Jpeg;
      EXPECT_TRUE(std::holds_alternative<GrantedScan>(grantScan(profile, settings, false, true))) << name;
    }
  }
}

TEST(Offers, AStartCanAskForMoreThanItsSettingsDid) {
  const struct {
    Generation generation;
    const char* offering;
    Reading reading;
  } rows[] = {
      {Generation::Second, "autoCrop=1", Reading::Edges},
      {Generation::First, "scanFunc=1", Reading::Edges},
      {Generation::First, "scanFunc=2", Reading::Corners},
      {Generation::First, "scanFunc=4", Reading::Corners},
  };
  for (const auto& row : rows) {
    Profile profile =
        loadProfile(row.generation == Generation::First ? QS_PROFILES "/classic.json" : QS_PROFILES "/office.json");
    const auto scan = std::get<GrantedScan>(grantScan(profile, {}, true, false));
    StartSettings start;
    EXPECT_FALSE(notOffered(profile.abilities(), scan, start));
    start.reading = row.reading;
    EXPECT_TRUE(notOffered(profile.abilities(), scan, start)) << row.offering;
    overrideProfile(profile, row.offering);
    EXPECT_FALSE(notOffered(profile.abilities(), scan, start)) << row.offering;
    start.areaKind = AreaKind::Over;
    EXPECT_TRUE(notOffered(profile.abilities(), scan, start)) << row.offering;
  }
}

}  // namespace
}  // namespace vscan
