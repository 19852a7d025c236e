// What each setting does to the page.
#include <gtest/gtest.h>

#include "device/page_maker.h"
#include "sheet_makers.h"
#include "support/failure.h"

namespace vscan {
namespace {

using test::patternOf;

class PageSettingsTest : public testing::Test {
 protected:
  PageSettingsTest() {
    settings_.color = ColorMode::Grey;
    settings_.resolution = {false, 254, 254};  // a pixel is a tenth of a millimetre
    start_.areaKind = AreaKind::Automatic;
  }

  void offer(const std::string& assignment) { overrideProfile(profile_, assignment); }

  Page make(const Raster& picture) {
    const std::string path = folder_.file("sheet.png");
    test::writePng(path, picture, 254);
    auto result = grantScan(profile_, settings_, isFed_, !isFed_);
    if (const auto* reason = std::get_if<std::string>(&result)) throw Failure(*reason);
    return makePage(profile_, std::get<GrantedScan>(result), start_, {{openSheetFile(path), 0}, {}}, options_);
  }

  static Bytes framed(const Raster& picture, int left, int right, int top, int bottom, std::uint8_t backing) {
    const Rect sheet{0, 0, picture.widthPx, picture.heightPx};
    return drawArea(picture, sheet, {-left, -top, picture.widthPx + right, picture.heightPx + bottom}, backing).pixels;
  }

  const test::TempFolder folder_;
  Profile profile_ = loadProfile(QS_PROFILES "/office.json");
  bool isFed_ = false;  // from the bed, at whose top left corner sheets lie
  ScanSettings settings_;
  StartSettings start_;
  PageOptions options_;
  const Raster picture_ = patternOf(30, 20, 1);
};

TEST_F(PageSettingsTest, MarginsAreScannedBesideAFixedArea) {
  start_.areaKind = AreaKind::Normal;
  start_.area = {5, 5, 25, 15};
  settings_.margins = {1, 2, 3, 4};
  const Page page = make(picture_);
  EXPECT_EQ(page.widthPx, 23);
  EXPECT_EQ(page.heightPx, 17);
  EXPECT_EQ(page.data.front(), picture_.line(2)[4]);
  settings_.margins = {-1, -2, -3, -4};
  const Page smaller = make(picture_);
  EXPECT_EQ(smaller.widthPx, 17);
  EXPECT_EQ(smaller.heightPx, 3);
  EXPECT_EQ(smaller.data.front(), picture_.line(8)[6]);
}

TEST_F(PageSettingsTest, MarginsEndWithTheDeviceAndLeaveAPixel) {
  start_.areaKind = AreaKind::Normal;
  start_.area = {5, 5, 25, 15};
  settings_.margins = {2147483647, 2147483647, 2147483647, 2147483647};
  const Page all = make(picture_);
  EXPECT_EQ(all.widthPx, 2159);
  EXPECT_EQ(all.heightPx, 2972);
  settings_.margins = {-2147483648, -2147483648, -2147483648, -2147483648};
  const Page least = make(picture_);
  EXPECT_EQ(least.widthPx, 1);
  EXPECT_EQ(least.heightPx, 1);
}

TEST_F(PageSettingsTest, MarginsLeaveAnAutomaticAreaAlone) {
  settings_.margins = {1, 2, 3, 4};
  EXPECT_EQ(make(picture_).data, picture_.pixels);
}

TEST_F(PageSettingsTest, TheFullAreaIsTheBedOrTheFeedersWidthAsFarAsTheSheet) {
  start_.areaKind = AreaKind::Full;
  const Page bed = make(picture_);
  EXPECT_EQ(bed.widthPx, 2159);
  EXPECT_EQ(bed.heightPx, 2972);
  isFed_ = true;
  const Page fed = make(picture_);
  EXPECT_EQ(fed.widthPx, 2159);
  EXPECT_EQ(fed.heightPx, 20);
}

TEST_F(PageSettingsTest, AnOverScanGoesBeyondTheSheet) {
  offer("overScan=1");
  offer("paperPosition[0]=2");
  offer("paperPosition[1]=2");
  start_.areaKind = AreaKind::Over;
  EXPECT_EQ(make(picture_).data, framed(picture_, 50, 50, 50, 50, 255));
  settings_.margins = {1, 2, 3, 4};
  EXPECT_EQ(make(picture_).data, framed(picture_, 1, 2, 3, 4, 255));
}

TEST_F(PageSettingsTest, ALandscapeSheetGoesInWithItsLeftEdgeFirst) {
  offer("landscape=1");
  settings_.isLandscape = true;
  const Page page = make(picture_);
  ASSERT_EQ(page.widthPx, 20);
  ASSERT_EQ(page.heightPx, 30);
  for (int y = 0; y < 30; ++y) {
    for (int x = 0; x < 20; ++x) {
      ASSERT_EQ(page.data[static_cast<std::size_t>(y * 20 + x)], picture_.line(19 - x)[y]) << x << "," << y;
    }
  }
}

TEST_F(PageSettingsTest, ASheetInACarrierBeginsBehindTheCarriersBeginning) {
  offer("carrierSheet=1");
  offer("carrierOffset[0]=12");
  start_.areaKind = AreaKind::Normal;
  start_.area = {0, 0, 30, 32};
  EXPECT_EQ(make(picture_).data, framed(picture_, 0, 0, 0, 12, 255));
  settings_.carrierSheet = CarrierSheet::Used;
  EXPECT_EQ(make(picture_).data, framed(picture_, 0, 0, 12, 0, 255));
  settings_.carrierSheet = CarrierSheet::Automatic;  // there is none to be found
  EXPECT_EQ(make(picture_).data, framed(picture_, 0, 0, 0, 12, 255));
  offer("carrierOffset[0]=0");  // hosts then count on 32 mm
  settings_.carrierSheet = CarrierSheet::Used;
  start_.area = {0, 320, 30, 340};
  EXPECT_EQ(make(picture_).data, picture_.pixels);
}

TEST_F(PageSettingsTest, MoireIsSmoothedAway) {
  offer("moire=1");
  Raster screen(30, 20, 1);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 30; ++x) screen.line(y)[x] = (x + y) % 2 == 0 ? 255 : 0;
  }
  EXPECT_EQ(make(screen).data, screen.pixels);
  settings_.removesMoire = true;
  const Page page = make(screen);
  for (int y = 1; y < 19; ++y) {
    for (int x = 1; x < 29; ++x) {
      ASSERT_NEAR(page.data[static_cast<std::size_t>(y * 30 + x)], 128, 1) << x << "," << y;
    }
  }
}

TEST_F(PageSettingsTest, GammaBendsTheMiddleTones) {
  offer("gammaRange=250");
  const struct {
    std::optional<std::int64_t> level;
    std::uint8_t from, to;
  } rows[] = {{100, 64, 64}, {200, 64, 128}, {50, 128, 64}, {200, 0, 0}, {200, 255, 255}, {{}, 64, 118}};
  for (const auto& row : rows) {
    settings_.gamma = {true, row.level};
    EXPECT_EQ(make(Raster(3, 2, 1, row.from)).data, Bytes(6, row.to)) << row.level.value_or(0);
  }
}

TEST_F(PageSettingsTest, WithoutToneThePictureKeepsItsTones) {
  offer("gammaRange=250");
  settings_.brightness = 80;
  settings_.contrast = 70;
  settings_.gamma = {true, 200};
  EXPECT_NE(make(picture_).data, picture_.pixels);
  settings_.appliesTone = false;
  EXPECT_EQ(make(picture_).data, picture_.pixels);
}

TEST_F(PageSettingsTest, EachKindOfImageProcessingHasAContrastOfItsOwn) {
  offer("specialDocument=15");
  const struct {
    ImageProcessing processing;
    std::uint8_t dark;  // of a grey of 100, darker with more contrast
  } rows[] = {{ImageProcessing::Normal, 100},
              {ImageProcessing::Copy, 89},
              {ImageProcessing::Ocr, 67},
              {ImageProcessing::Photo, 104},
              {ImageProcessing::TextAndGraphics, 84}};
  for (const auto& row : rows) {
    settings_.imageProcessing = row.processing;
    EXPECT_EQ(make(Raster(3, 2, 1, 100)).data, Bytes(6, row.dark));
  }
}

TEST_F(PageSettingsTest, AnOriginalIsLeftAsItIs) {
  offer("moire=1");
  settings_.brightness = 80;
  settings_.removesMoire = true;
  settings_.backgroundRemoval.isOn = true;
  start_.reading = Reading::Original;
  EXPECT_EQ(make(picture_).data, picture_.pixels);
}

TEST_F(PageSettingsTest, AScanForEdgesShowsThemOnADarkBacking) {
  start_.areaKind = AreaKind::Normal;
  start_.area = {0, 0, 40, 30};
  start_.reading = Reading::Edges;
  EXPECT_EQ(make(picture_).data, framed(picture_, 0, 10, 0, 10, 40));
  options_.skewDegrees = 20;
  EXPECT_EQ(make(Raster(30, 20, 1, 255)).data.front(), 40);
}

TEST_F(PageSettingsTest, TheBackOfASheetLeansTheOtherWay) {
  const std::string path = folder_.file("sheet.png");
  test::writePng(path, picture_, 254);
  const Face face{openSheetFile(path), 0};
  const auto scan = std::get<GrantedScan>(grantScan(profile_, settings_, false, true));
  const auto skewed = [&](double degrees, const Face& front) {
    options_.skewDegrees = degrees;
    return makePage(profile_, scan, start_, {face, front}, options_).data;
  };
  EXPECT_EQ(skewed(7, face), skewed(-7, {}));
  EXPECT_NE(skewed(7, face), skewed(7, {}));
}

TEST_F(PageSettingsTest, AnAreaThatStraightensNeedsNoDeskew) {
  options_.skewDegrees = 5;
  EXPECT_NE(make(picture_).data, picture_.pixels);
  start_.areaKind = AreaKind::AutomaticDeskewed;
  EXPECT_EQ(make(picture_).data, picture_.pixels);
}

TEST_F(PageSettingsTest, AFewLevelsOfBackgroundRemovalSpanTheWholeScale) {
  settings_.backgroundRemoval = {true, 4};
  EXPECT_EQ(make(Raster(3, 2, 1, 140)).data, Bytes(6, 140));
  offer("backgroundRemove[2]=4");
  EXPECT_EQ(make(Raster(3, 2, 1, 140)).data, Bytes(6, 255));
  settings_.backgroundRemoval.level = 1;
  EXPECT_EQ(make(Raster(3, 2, 1, 140)).data, Bytes(6, 140));
}

TEST_F(PageSettingsTest, TheSecondColourLevelTellsGreyFromMonoWhereItIsOffered) {
  Raster picture(100, 10, 3, 255);
  for (int i = 0; i < 90; ++i) picture.pixels[static_cast<std::size_t>(i)] = 128;  // three of a hundred pixels
  settings_.color = ColorMode::Automatic;
  settings_.compression = Compression::Jpeg;
  settings_.colorLevel = {{2, 4}};
  EXPECT_EQ(make(picture).foundColor, PageColor::Mono);
  offer("autoColorRangeB=5");
  EXPECT_EQ(make(picture).foundColor, PageColor::Grey);
}

}  // namespace
}  // namespace vscan
