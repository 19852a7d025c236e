#include "device/page_maker.h"

#include <gtest/gtest.h>

#include "sheet_makers.h"
#include "support/failure.h"

namespace vscan {
namespace {

using test::patternOf;

class PageMakerTest : public testing::Test {
 protected:
  // A sheet in the feeder, scanned with these settings over this area.
  Page make(const Raster& picture, double dpi, const ScanSettings& settings, std::array<std::int64_t, 4> area,
            AreaKind kind = AreaKind::Normal) {
    const std::string path = folder_.file("sheet.png");
    test::writePng(path, picture, dpi);
    return makePage(profile_, granted(settings), {settings.resolution, kind, area}, {{openSheetFile(path), 0}, {}}, {});
  }

  GrantedScan granted(const ScanSettings& settings) {
    auto result = grantScan(profile_, settings, true, false);
    if (const auto* reason = std::get_if<std::string>(&result)) throw Failure(*reason);
    return std::get<GrantedScan>(result);
  }

  static ScanSettings settingsOf(ColorMode color, Compression compression, std::int64_t dpi) {
    ScanSettings settings;
    settings.color = color;
    settings.compression = compression;
    settings.resolution = {false, dpi, dpi};
    return settings;
  }

  const test::TempFolder folder_;
  Profile profile_ = loadProfile(QS_PROFILES "/office.json");
};

TEST_F(PageMakerTest, AtTheSheetsOwnResolutionEachPixelComesThrough) {
  const Raster picture = patternOf(2480, 300, 3);
  const Page page = make(picture, 300, settingsOf(ColorMode::Color, Compression::None, 300), {35, 0, 2515, 300});
  EXPECT_EQ(page.lineBytes, 2480u * 3);
  EXPECT_EQ(page.heightPx, 300);
  EXPECT_EQ(page.data, picture.pixels);
}

TEST_F(PageMakerTest, WhatLiesBesideTheSheetIsWhite) {
  const Raster picture(1000, 100, 1, 0);
  const Page page = make(picture, 300, settingsOf(ColorMode::Grey, Compression::None, 300), {774, 98, 1777, 103});
  ASSERT_EQ(page.lineBytes, 1003u);
  ASSERT_EQ(page.heightPx, 5);
  for (int y = 0; y < 5; ++y) {
    for (int x = 0; x < 1003; ++x) {
      const bool isOnSheet = y < 2 && x >= 1 && x < 1001;
      ASSERT_EQ(page.data[static_cast<std::size_t>(y * 1003 + x)], isOnSheet ? 0 : 255) << x << "," << y;
    }
  }
}

TEST_F(PageMakerTest, ASheetLargerThanTheDeviceIsCutToItsBeginning) {
  const Raster picture = patternOf(500, 600, 1);  // at 50 dpi 10 x 12 inches, 3000 x 3600 pixels at 300 dpi
  const ScanSettings coarse = settingsOf(ColorMode::Grey, Compression::None, 50);
  const Page page = make(picture, 50, coarse, {}, AreaKind::Automatic);
  ASSERT_EQ(page.lineBytes, 425u);
  ASSERT_EQ(page.heightPx, 600);
  for (int y = 0; y < 600; ++y) {
    ASSERT_EQ(Bytes(page.data.begin() + y * 425, page.data.begin() + y * 425 + 425),
              Bytes(picture.line(y), picture.line(y) + 425));
  }
  const Page fine = make(picture, 50, settingsOf(ColorMode::Grey, Compression::None, 300), {}, AreaKind::Automatic);
  EXPECT_EQ(fine.widthPx, 2550);
  EXPECT_EQ(fine.heightPx, 3600);
}

TEST_F(PageMakerTest, TheAutomaticAreaIsTheSheetAndTellsItsSize) {
  const Raster picture = patternOf(200, 100, 1);
  const Page page = make(picture, 300, settingsOf(ColorMode::Grey, Compression::None, 300), {}, AreaKind::Automatic);
  EXPECT_EQ(page.data, picture.pixels);
  EXPECT_TRUE(page.tellsSize);
  EXPECT_EQ(page.widthPx, 200);
}

TEST_F(PageMakerTest, TheSamePictureHasTheSamePhysicalSizeAtEachResolution) {
  const Raster picture = patternOf(600, 300, 1);
  for (const int dpi : {50, 75, 150, 200, 300, 600}) {
    const Page page = make(picture, 300, settingsOf(ColorMode::Grey, Compression::None, dpi), {}, AreaKind::Automatic);
    EXPECT_EQ(page.widthPx, 600 * dpi / 300) << dpi;
    EXPECT_EQ(page.heightPx, 300 * dpi / 300) << dpi;
  }
}

TEST_F(PageMakerTest, AColourSheetInAGreyScanBecomesGrey) {
  Raster picture(2, 1, 3);
  picture.pixels = {255, 0, 0, 9, 9, 9};
  const Page page = make(picture, 300, settingsOf(ColorMode::Grey, Compression::None, 300), {}, AreaKind::Automatic);
  EXPECT_EQ(page.color, PageColor::Grey);
  EXPECT_EQ(page.data, (Bytes{76, 9}));
}

TEST_F(PageMakerTest, AGreySheetInAColourScanHasThreeChannels) {
  Raster picture(2, 1, 1);
  picture.pixels = {7, 200};
  const Page page = make(picture, 300, settingsOf(ColorMode::Color, Compression::None, 300), {}, AreaKind::Automatic);
  EXPECT_EQ(page.data, (Bytes{7, 7, 7, 200, 200, 200}));
}

TEST_F(PageMakerTest, MonoUsesTheThresholdOfTheHostOrTheDevice) {
  Raster picture(9, 1, 1, 255);
  picture.pixels[0] = 110;
  ScanSettings settings = settingsOf(ColorMode::Text, Compression::RunLength, 300);
  const Page byDevice = make(picture, 300, settings, {}, AreaKind::Automatic);
  EXPECT_EQ(byDevice.data, (Bytes{0x7F, 0xFF}));
  settings.threshold = 100;
  EXPECT_EQ(make(picture, 300, settings, {}, AreaKind::Automatic).data, (Bytes{0xFF, 0xFF}));
}

TEST_F(PageMakerTest, AJpegIsMadeFromThePixelsOfTheArea) {
  Raster picture(100, 80, 3);
  for (std::size_t i = 0; i < picture.pixels.size(); ++i) picture.pixels[i] = static_cast<std::uint8_t>(i / 100);
  const Page page = make(picture, 300, settingsOf(ColorMode::Color, Compression::Jpeg, 300), {}, AreaKind::Automatic);
  const auto decoded = test::decodeJpeg(page.data);
  EXPECT_EQ(decoded.dpiX, 300);
  EXPECT_LT(test::differenceOf(decoded.picture, picture).mean, 3);
}

TEST_F(PageMakerTest, AColourJpegSampledAsGreyIsSentAsGrey) {
  ScanSettings settings = settingsOf(ColorMode::Color, Compression::Jpeg, 300);
  settings.jpegSampling = JpegSampling::Grey;
  const Page page = make(patternOf(20, 20, 3), 300, settings, {}, AreaKind::Automatic);
  EXPECT_EQ(page.color, PageColor::Grey);
  EXPECT_EQ(test::decodeJpeg(page.data).picture.channels, 1);
}

TEST_F(PageMakerTest, BrightnessIsAppliedBeforeTheThreshold) {
  Raster picture(8, 1, 1, 120);
  ScanSettings settings = settingsOf(ColorMode::Text, Compression::None, 300);
  EXPECT_EQ(make(picture, 300, settings, {}, AreaKind::Automatic).data, Bytes{0x00});
  settings.brightness = 60;
  EXPECT_EQ(make(picture, 300, settings, {}, AreaKind::Automatic).data, Bytes{0xFF});
}

TEST_F(PageMakerTest, ABlankPageIsFoundOnlyWhenAskedFor) {
  const Raster picture(300, 200, 1, 255);
  ScanSettings settings = settingsOf(ColorMode::Grey, Compression::None, 300);
  EXPECT_FALSE(make(picture, 300, settings, {}, AreaKind::Automatic).isBlank);
  settings.blankRemoval.isOn = true;
  const Page page = make(picture, 300, settings, {}, AreaKind::Automatic);
  EXPECT_TRUE(page.isBlank);
  EXPECT_TRUE(page.data.empty());
  EXPECT_FALSE(make(patternOf(300, 200, 1), 300, settings, {}, AreaKind::Automatic).isBlank);
}

TEST_F(PageMakerTest, AWhiteBackHasTheSizeOfTheFront) {
  const std::string path = folder_.file("front.png");
  test::writePng(path, patternOf(120, 90, 3), 300);
  ScanSettings settings = settingsOf(ColorMode::Grey, Compression::None, 150);
  const Page page = makePage(profile_, granted(settings), {settings.resolution, AreaKind::Automatic, {}},
                             {{}, {openSheetFile(path), 0}}, {});
  EXPECT_EQ(page.widthPx, 60);
  EXPECT_EQ(page.heightPx, 45);
  EXPECT_EQ(page.data, Bytes(60 * 45, 255));
}

TEST_F(PageMakerTest, AnEmptyBedIsWhiteAllOver) {
  ScanSettings settings = settingsOf(ColorMode::Grey, Compression::None, 50);
  settings.source = PaperSource::Flatbed;
  const Page page = makePage(profile_, granted(settings), {settings.resolution, AreaKind::Automatic, {}}, {{}, {}}, {});
  EXPECT_EQ(page.widthPx, 425);
  EXPECT_EQ(page.heightPx, 585);
}

TEST(GrantScan, ResolutionsAreBroughtIntoTheBoundsOfTheDevice) {
  const Profile profile = loadProfile(QS_PROFILES "/office.json");
  const struct {
    Resolution wanted;
    int x, y;
  } rows[] = {{{false, 300, 200}, 300, 200},
              {{false, 49, 50}, 50, 50},
              {{false, 601, 4294967295}, 600, 600},
              {{false, 0, 1}, 50, 50},
              {{true, 0, 0}, 300, 300}};
  for (const auto& row : rows) {
    ScanSettings settings;
    settings.resolution = row.wanted;
    const auto scan = std::get<GrantedScan>(grantScan(profile, settings, true, false));
    EXPECT_EQ(scan.dpiX, row.x);
    EXPECT_EQ(scan.dpiY, row.y);
  }
}

TEST(GrantScan, TheSourceIsChosenByWhatIsLoaded) {
  const Profile profile = loadProfile(QS_PROFILES "/office.json");
  const struct {
    PaperSource source;
    Sides sides;
    bool feederLoaded, bedLoaded;
    Path path;
  } rows[] = {
      {PaperSource::Automatic, Sides::Front, true, true, Path::FeederOneSide},
      {PaperSource::Automatic, Sides::Both, true, false, Path::FeederBothSides},
      {PaperSource::Automatic, Sides::Both, false, true, Path::Flatbed},
      {PaperSource::Automatic, Sides::Front, false, false, Path::FeederOneSide},
      {PaperSource::Feeder, Sides::BackOnly, false, true, Path::FeederBothSides},
      {PaperSource::Flatbed, Sides::Both, true, false, Path::Flatbed},
  };
  for (const auto& row : rows) {
    ScanSettings settings;
    settings.source = row.source;
    settings.sides = row.sides;
    settings.resolution = {false, 300, 300};
    EXPECT_EQ(std::get<GrantedScan>(grantScan(profile, settings, row.feederLoaded, row.bedLoaded)).path, row.path);
  }
}

TEST(GrantScan, WhatTheProfileDoesNotOfferIsRefused) {
  const struct {
    const char* name;
    const char* override;  // of the profile
    ColorMode color;
    Compression compression;
    bool isGranted;
  } rows[] = {
      {"colour as JPEG", "threshold=128", ColorMode::Color, Compression::Jpeg, true},
      {"colour as PackBits", "threshold=128", ColorMode::Color, Compression::RunLength, true},
      {"grey as JPEG", "threshold=128", ColorMode::Grey, Compression::Jpeg, true},
      {"grey as JPEG without the flag", "compressType[2]=3", ColorMode::Grey, Compression::Jpeg, false},
      {"grey as PackBits without the JPEG flag", "compressType[2]=3", ColorMode::Grey, Compression::RunLength, true},
      {"mono as JPEG", "threshold=128", ColorMode::Text, Compression::Jpeg, false},
      {"mono uncompressed", "threshold=128", ColorMode::Text, Compression::None, true},
      {"256 colours", "threshold=128", ColorMode::Palette, Compression::None, false},
      {"automatic colour as JPEG", "threshold=128", ColorMode::Automatic, Compression::Jpeg, true},
      {"automatic colour as lines", "threshold=128", ColorMode::Automatic, Compression::RunLength, false},
      {"colour on a device without", "colorType=0x07", ColorMode::Color, Compression::Jpeg, false},
      {"a sampling that is not offered", "jpegSampling=0x08", ColorMode::Color, Compression::Jpeg, false},
  };
  for (const auto& row : rows) {
    Profile profile = loadProfile(QS_PROFILES "/office.json");
    overrideProfile(profile, row.override);
    ScanSettings settings;
    settings.color = row.color;
    settings.compression = row.compression;
    EXPECT_EQ(std::holds_alternative<GrantedScan>(grantScan(profile, settings, true, false)), row.isGranted)
        << row.name;
  }
}

TEST(GrantScan, AThresholdHasToLieInTheRangeOfTheProfile) {
  Profile profile = loadProfile(QS_PROFILES "/office.json");
  ScanSettings settings;
  settings.color = ColorMode::Text;
  const auto isGranted = [&](std::int64_t threshold) {
    settings.threshold = threshold;
    return std::holds_alternative<GrantedScan>(grantScan(profile, settings, true, false));
  };
  EXPECT_TRUE(isGranted(1) && isGranted(255));
  EXPECT_FALSE(isGranted(0));
  profile.capability.set("monoThreshold", 0, 0);
  EXPECT_FALSE(isGranted(100));
}

TEST(GrantScan, BothSidesNeedADuplexFeederAndASourceHasToBeThere) {
  Profile profile = loadProfile(QS_PROFILES "/office.json");
  profile.capability.set("duplex", 0, 0);
  ScanSettings settings;
  settings.sides = Sides::Both;
  EXPECT_TRUE(std::holds_alternative<std::string>(grantScan(profile, settings, true, false)));
  settings.sides = Sides::Front;
  settings.source = PaperSource::Feeder;
  profile.capability.set("paperSource", 0, 2);
  EXPECT_TRUE(std::holds_alternative<std::string>(grantScan(profile, settings, false, false)));
  settings.source = PaperSource::Flatbed;
  profile.capability.set("paperSource", 0, 1);
  EXPECT_TRUE(std::holds_alternative<std::string>(grantScan(profile, settings, true, false)));
}

TEST_F(PageMakerTest, WhatTheMarginsHideIsWhite) {
  for (const std::size_t side : {0u, 1u, 2u, 3u}) profile_.capability.set("marginSize", 4 + side, 10);  // a millimetre
  const Raster picture(60, 50, 1, 7);
  const Page page = make(picture, 254, settingsOf(ColorMode::Grey, Compression::None, 254), {}, AreaKind::Automatic);
  ASSERT_EQ(page.widthPx, 60);
  for (int y = 0; y < 50; ++y) {
    for (int x = 0; x < 60; ++x) {
      const bool isSeen = x >= 10 && x < 50 && y >= 10 && y < 40;
      ASSERT_EQ(page.data[static_cast<std::size_t>(y * 60 + x)], isSeen ? 7 : 255) << x << "," << y;
    }
  }
}

TEST_F(PageMakerTest, MarginsWiderThanTheSheetHideIt) {
  for (const std::size_t side : {0u, 1u, 2u, 3u}) profile_.capability.set("marginSize", 4 + side, 32767);
  const Page page =
      make(Raster(60, 50, 1, 7), 254, settingsOf(ColorMode::Grey, Compression::None, 254), {}, AreaKind::Automatic);
  EXPECT_EQ(page.data, Bytes(3000, 255));
}

TEST_F(PageMakerTest, ASheetLiesAskewUnlessTheDeviceStraightensIt) {
  Raster picture(200, 100, 1, 255);
  for (int x = 0; x < 200; ++x) picture.line(50)[x] = 0;
  const std::string path = folder_.file("sheet.png");
  test::writePng(path, picture, 300);
  ScanSettings settings = settingsOf(ColorMode::Grey, Compression::None, 300);
  PageOptions options;
  options.skewDegrees = 5;
  const StartSettings start{settings.resolution, AreaKind::Automatic, {}};
  const PageSource source{{openSheetFile(path), 0}, {}};
  const Page askew = makePage(profile_, granted(settings), start, source, options);
  EXPECT_NE(askew.data, picture.pixels);
  settings.deskew = true;
  EXPECT_EQ(makePage(profile_, granted(settings), start, source, options).data, picture.pixels);
  profile_.capability.set("deskew", 0, 1);  // on the bed only
  EXPECT_THROW(granted(settings), Failure);
}

TEST_F(PageMakerTest, AnAutomaticColourPageIsSentAsWhatItIs) {
  ScanSettings settings = settingsOf(ColorMode::Automatic, Compression::Jpeg, 300);
  const struct {
    const char* name;
    Raster picture;
    PageColor found;
    PageColor sent;
  } rows[] = {
      {"black and white", Raster(40, 40, 3, 255), PageColor::Mono, PageColor::Grey},
      {"grey", Raster(40, 40, 3, 128), PageColor::Grey, PageColor::Grey},
      {"colour", patternOf(40, 40, 3), PageColor::Color, PageColor::Color},
  };
  for (const auto& row : rows) {
    const Page page = make(row.picture, 300, settings, {}, AreaKind::Automatic);
    EXPECT_TRUE(page.tellsColor) << row.name;
    EXPECT_EQ(page.foundColor, row.found) << row.name;
    EXPECT_EQ(page.color, row.sent) << row.name;
    EXPECT_EQ(page.compression, Compression::Jpeg) << row.name;
  }
  profile_.capability.set("autoColorLevel", 0, 0);
  EXPECT_THROW(granted(settings), Failure);
}

TEST_F(PageMakerTest, TheLevelOfBlankRemovalCounts) {
  Raster dirty(1000, 100, 1, 255);
  for (std::size_t i = 0; i < 30; ++i) dirty.pixels[i] = 0;
  ScanSettings settings = settingsOf(ColorMode::Grey, Compression::None, 300);
  settings.blankRemoval = {true, {}};
  EXPECT_FALSE(make(dirty, 300, settings, {}, AreaKind::Automatic).isBlank);
  settings.blankRemoval.level = 4;
  EXPECT_TRUE(make(dirty, 300, settings, {}, AreaKind::Automatic).isBlank);
}

TEST_F(PageMakerTest, AnAutomaticPageThatGoesOnBehindTheDevicesLengthIsTooLong) {
  const Raster long400mm(100, 800, 1, 9);  // at 50 dpi 406 mm; the feeder takes 355.6
  ScanSettings settings = settingsOf(ColorMode::Grey, Compression::None, 50);
  EXPECT_TRUE(make(long400mm, 50, settings, {}, AreaKind::Automatic).isTooLong);
  EXPECT_FALSE(make(long400mm, 50, settings, {0, 0, 100, 700}).isTooLong);
  settings.longPaper = true;
  const Page page = make(long400mm, 50, settings, {}, AreaKind::Automatic);
  EXPECT_FALSE(page.isTooLong);
  EXPECT_EQ(page.heightPx, 800);
}

TEST_F(PageMakerTest, TheBackgroundIsRemovedWhereAskedFor) {
  ScanSettings settings = settingsOf(ColorMode::Grey, Compression::None, 300);
  EXPECT_EQ(make(Raster(2, 1, 1, 220), 300, settings, {}, AreaKind::Automatic).data, Bytes(2, 220));
  settings.backgroundRemoval = {true, {}};
  EXPECT_EQ(make(Raster(2, 1, 1, 220), 300, settings, {}, AreaKind::Automatic).data, Bytes(2, 255));
  settings.backgroundRemoval.level = 10;
  EXPECT_EQ(make(Raster(2, 1, 1, 220), 300, settings, {}, AreaKind::Automatic).data, Bytes(2, 220));
}

}  // namespace
}  // namespace vscan
