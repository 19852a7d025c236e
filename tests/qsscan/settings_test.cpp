#include "apps/qsscan/settings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "apps/qsscan/exit_codes.h"
#include "fake_scan_core.h"

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;
using qsscan_test::officeCapability;

ScanWish a4Wish() {
  ScanWish wish;
  wish.paper = *findPaper("a4");
  return wish;
}

QS_SCANNER_PARAMETERS make(const ScanWish& wish, bool paperInFeeder = false) {
  return makeSettings(wish, officeCapability(), paperInFeeder);
}

void expectRefused(const ScanWish& wish, const Capability& capability, ExitCode code, const char* partOfSentence) {
  try {
    makeSettings(wish, capability, false);
    FAIL() << "accepted; expected " << partOfSentence;
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), code) << error.what();
    EXPECT_NE(std::string(error.what()).find(partOfSentence), std::string::npos) << error.what();
  }
}

TEST(Settings, APlainWishIsANamedPaperPaddedToItsSize) {
  const auto settings = make(a4Wish());
  EXPECT_EQ(settings.resolution.x, 300u);
  EXPECT_EQ(settings.resolution.y, 300u);
  EXPECT_EQ(settings.colorType, COLORTYPE_COLOR24BIT);
  EXPECT_EQ(settings.paperType, PAPERTYPE_A4);
  EXPECT_EQ(settings.useScanArea, 0);
  EXPECT_EQ(settings.detectEndOfPage, 0);
  EXPECT_EQ(settings.duplexType, DUPLEXTYPE_SIMPLEX);
  EXPECT_EQ(settings.scanPageCount, 0);
  EXPECT_EQ(settings.brightness, 0);
  EXPECT_EQ(settings.autoColorLevel.first, 127);
  EXPECT_EQ(settings.autoColorLevel.second, 128);
}

struct AreaRow {
  const char* name;
  unsigned dpi;
  double left, top, width, height;
  std::int32_t leftPx, topPx, widthPx, heightPx;
};
class Area : public testing::TestWithParam<AreaRow> {};

TEST_P(Area, BecomesPixelsAtTheWishedResolutionWithSizesInRightAndBottom) {
  const AreaRow& row = GetParam();
  ScanWish wish = a4Wish();
  wish.resolutionDpi = row.dpi;
  wish.leftMm = row.left;
  wish.topMm = row.top;
  wish.widthMm = row.width;
  wish.heightMm = row.height;
  const auto settings = make(wish);
  EXPECT_EQ(settings.useScanArea, 1);
  EXPECT_EQ(settings.scanArea.unit, UNIT_PIXEL);
  EXPECT_EQ(settings.scanArea.left, row.leftPx);
  EXPECT_EQ(settings.scanArea.top, row.topPx);
  EXPECT_EQ(settings.scanArea.right, row.widthPx);
  EXPECT_EQ(settings.scanArea.bottom, row.heightPx);
  EXPECT_EQ(settings.paperType, PAPERTYPE_A4);
}

INSTANTIATE_TEST_SUITE_P(Settings, Area,
                         testing::Values(AreaRow{"InchAt300", 300, 25.4, 25.4, 50.8, 76.2, 300, 300, 600, 900},
                                         AreaRow{"InchAt100", 100, 25.4, 0, 25.4, 25.4, 100, 0, 100, 100},
                                         AreaRow{"A5At600", 600, 0, 0, 148, 210, 0, 0, 3496, 4961},
                                         AreaRow{"RoundsToNearest", 200, 0.06, 0.07, 10, 10, 0, 1, 79, 79}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Settings, AnAreaWithoutASizeReachesToTheEdgeOfThePaper) {
  ScanWish wish = a4Wish();
  wish.leftMm = 110;
  wish.topMm = 97;
  const auto area = make(wish).scanArea;
  EXPECT_EQ(area.left, 1299);
  EXPECT_EQ(area.top, 1146);
  EXPECT_EQ(area.right, 1181);
  EXPECT_EQ(area.bottom, 2362);
}

TEST(Settings, AnEmptyOrNegativeOrHugeAreaIsRefused) {
  ScanWish wish = a4Wish();
  wish.widthMm = 0;
  expectRefused(wish, officeCapability(), ExitCode::kUsage, "empty");
  wish.widthMm = -3;
  expectRefused(wish, officeCapability(), ExitCode::kUsage, "empty");
  wish = a4Wish();
  wish.leftMm = 211;
  expectRefused(wish, officeCapability(), ExitCode::kUsage, "empty");
  wish = a4Wish();
  wish.leftMm = -1;
  expectRefused(wish, officeCapability(), ExitCode::kUsage, "negative");
  wish = a4Wish();
  wish.widthMm = 300;
  expectRefused(wish, officeCapability(), ExitCode::kNotServed, "too large");
  for (const double mm : {1e300, -1e300, std::nan("")}) {
    wish.widthMm = mm;
    expectRefused(wish, Capability{}, ExitCode::kUsage, "larger than any device");
  }
}

TEST(Settings, AnAreaNeedsAKnownPaper) {
  ScanWish wish;
  wish.paperIsAuto = true;
  wish.leftMm = 1;
  expectRefused(wish, officeCapability(), ExitCode::kUsage, "page size");
  wish.paperIsAuto = false;
  wish.paper = *findPaper("long");
  expectRefused(wish, officeCapability(), ExitCode::kUsage, "page size");
}

TEST(Settings, CustomPaperGoesInHundredthsOfAMillimetre) {
  ScanWish wish;
  wish.paper = *findPaper("148x210.5");
  const auto settings = make(wish);
  EXPECT_EQ(settings.paperType, PAPERTYPE_CUSTOM);
  EXPECT_EQ(settings.customPaperSize.x, 14800);
  EXPECT_EQ(settings.customPaperSize.y, 21050);
  EXPECT_EQ(settings.customPaperSize.unit, UNIT_MILLIMETER);
}

TEST(Settings, AutomaticAndLongPaperEndWhereTheSheetEndsAndNeedADeviceThatCan) {
  ScanWish automatic;
  automatic.paperIsAuto = true;
  EXPECT_EQ(make(automatic).paperType, PAPERTYPE_AUTO);
  EXPECT_EQ(make(automatic).detectEndOfPage, 1);
  ScanWish longPaper;
  longPaper.paper = *findPaper("long");
  EXPECT_EQ(make(longPaper).paperType, PAPERTYPE_LONG);
  EXPECT_EQ(make(longPaper).detectEndOfPage, 1);

  Capability capability = officeCapability();
  capability.autoPaperSize = 1;
  capability.longPaperLengthMax.cap = 1;
  expectRefused(automatic, capability, ExitCode::kNotServed, "--page-size a4");
  expectRefused(longPaper, capability, ExitCode::kNotServed, "long paper");
}

TEST(Settings, PaperThatWasNamedMustFitButTheDefaultPaperIsNeverRefused) {
  ScanWish wish;
  wish.paper = *findPaper("a3");
  wish.paperIsWished = true;
  expectRefused(wish, officeCapability(), ExitCode::kNotServed, "215.9 by 355.6");
  wish.paperIsWished = false;
  EXPECT_EQ(make(wish).paperType, PAPERTYPE_A3);
  wish.paperIsWished = true;
  EXPECT_EQ(makeSettings(wish, Capability{}, false).paperType, PAPERTYPE_A3) << "a silent record refuses nothing";
}

TEST(Settings, LegalPaperFitsTheFeederAndNotTheFlatbed) {
  ScanWish wish;
  wish.paper = *findPaper("legal");
  wish.paperIsWished = true;
  wish.source = Source::kFeeder;
  EXPECT_EQ(make(wish).paperType, PAPERTYPE_LEGAL);
  wish.source = Source::kFlatbed;
  expectRefused(wish, officeCapability(), ExitCode::kNotServed, "297");
}

TEST(Settings, OnlyListedResolutionsAreOffered) {
  ScanWish wish = a4Wish();
  wish.resolutionDpi = 250;
  expectRefused(wish, officeCapability(), ExitCode::kNotServed, "100, 150, 200, 300, 400, 600, 1200");
  wish.resolutionDpi = 0;
  expectRefused(wish, Capability{}, ExitCode::kUsage, "resolution");
  wish.resolutionDpi = 250;
  EXPECT_EQ(makeSettings(wish, Capability{}, false).resolution.x, 250u);
}

TEST(Settings, ModesAreThoseOfTheDeviceAndNever256Colours) {
  Capability capability = officeCapability();
  capability.colorType = {1, 0, 1, 1, 0};
  EXPECT_EQ(offeredModes(capability), (std::vector<COLORTYPE>{COLORTYPE_TRUEGRAY, COLORTYPE_BLACKANDWHITE}));
  ScanWish wish = a4Wish();
  EXPECT_EQ(makeSettings(wish, capability, false).colorType, COLORTYPE_TRUEGRAY) << "its best where none was named";
  wish.mode = COLORTYPE_COLOR24BIT;
  expectRefused(wish, capability, ExitCode::kNotServed, "gray, mono");
  wish.mode = COLORTYPE_BLACKANDWHITE;
  EXPECT_EQ(makeSettings(wish, capability, false).colorType, COLORTYPE_BLACKANDWHITE);
}

struct SourceRow {
  const char* name;
  Source source;
  bool duplex, paperInFeeder;
  FLAG flatbed, simplex, duplexFeeder;
  PAPERSOURCESELECT expected;
};
class SourceChoice : public testing::TestWithParam<SourceRow> {};

TEST_P(SourceChoice, Holds) {
  const SourceRow& row = GetParam();
  Capability capability = officeCapability();
  capability.paperSource.supportPaperSource = {row.flatbed, row.simplex, row.duplexFeeder, 0};
  ScanWish wish = a4Wish();
  wish.source = row.source;
  wish.duplex = row.duplex;
  EXPECT_EQ(makeSettings(wish, capability, row.paperInFeeder).paperSource, row.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Settings, SourceChoice,
    testing::Values(SourceRow{"AutoTakesTheBed", Source::kAuto, false, false, 1, 1, 1, PAPERSOURCE_FLATBED},
                    SourceRow{"AutoTakesALoadedFeeder", Source::kAuto, false, true, 1, 1, 1, PAPERSOURCE_ADF},
                    SourceRow{"AutoBothSides", Source::kAuto, true, false, 1, 1, 1, PAPERSOURCE_ADF},
                    SourceRow{"AutoWithoutBed", Source::kAuto, false, false, 0, 1, 0, PAPERSOURCE_ADF},
                    SourceRow{"AutoSilent", Source::kAuto, false, false, 0, 0, 0, PAPERSOURCE_FLATBED},
                    SourceRow{"Bed", Source::kFlatbed, false, true, 1, 1, 1, PAPERSOURCE_FLATBED},
                    SourceRow{"Feeder", Source::kFeeder, false, false, 1, 1, 1, PAPERSOURCE_ADF}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Settings, SourcesThatTheDeviceLacksAreRefused) {
  Capability bedOnly = officeCapability();
  bedOnly.paperSource.supportPaperSource = {1, 0, 0, 0};
  ScanWish wish = a4Wish();
  wish.source = Source::kFeeder;
  expectRefused(wish, bedOnly, ExitCode::kNotServed, "no feeder");
  wish.source = Source::kAuto;
  wish.duplex = true;
  expectRefused(wish, bedOnly, ExitCode::kNotServed, "both sides");
  wish.source = Source::kFlatbed;
  expectRefused(wish, officeCapability(), ExitCode::kUsage, "one side");
  Capability feederOnly = officeCapability();
  feederOnly.paperSource.supportPaperSource = {0, 1, 0, 0};
  wish.duplex = false;
  expectRefused(wish, feederOnly, ExitCode::kNotServed, "no flatbed");
}

TEST(Settings, BindingChoosesTheDuplexKind) {
  ScanWish wish = a4Wish();
  wish.duplex = true;
  EXPECT_EQ(make(wish).duplexType, DUPLEXTYPE_LONG_EDGE);
  wish.bindShortEdge = true;
  EXPECT_EQ(make(wish).duplexType, DUPLEXTYPE_SHORT_EDGE);
}

TEST(Settings, ThresholdBelongsToMonoAndLiesInTheDevicesRange) {
  ScanWish wish = a4Wish();
  wish.threshold = 100;
  expectRefused(wish, officeCapability(), ExitCode::kUsage, "--mode mono");
  wish.mode = COLORTYPE_BLACKANDWHITE;
  EXPECT_EQ(make(wish).threshold, 100u);
  EXPECT_EQ(make(wish).autoThreshold, 0);
  Capability capability = officeCapability();
  capability.monoThreshold.manualThresholdLevelMax = 90;
  expectRefused(wish, capability, ExitCode::kNotServed, "between 1 and 90");
}

// The library would drop the wish without a word.
TEST(Settings, AnAutomaticThresholdDoesNotGoWithLongPaper) {
  ScanWish wish = a4Wish();
  wish.mode = COLORTYPE_BLACKANDWHITE;
  wish.autoThreshold = true;
  EXPECT_EQ(make(wish).autoThreshold, 1);
  for (const char* paper : {"long", "long-narrow"}) {
    wish.paper = *findPaper(paper);
    expectRefused(wish, officeCapability(), ExitCode::kUsage, "long paper");
  }
  wish.paper = *findPaper("200xlong");
  EXPECT_EQ(make(wish).autoThreshold, 1);
}

TEST(Settings, EdgesKnowThePaper) {
  ScanWish wish;
  wish.paperIsAuto = true;
  wish.edges.cut = {1, 1, 1, 1};
  Capability capability = officeCapability();
  capability.edgeCut = 2;
  expectRefused(wish, capability, ExitCode::kUsage, "--edge-cut needs a page size");
  wish = a4Wish();
  wish.edges.cut = {1, 1, 1, 1};
  EXPECT_EQ(makeSettings(wish, capability, false).edgeCut.top, -100);
}

TEST(Settings, ToneIsPassedOnAndMonoHasNoContrast) {
  ScanWish wish = a4Wish();
  wish.brightness = -50;
  wish.contrast = 50;
  EXPECT_EQ(make(wish).brightness, -50);
  EXPECT_EQ(make(wish).contrast, 50);
  wish.mode = COLORTYPE_BLACKANDWHITE;
  expectRefused(wish, officeCapability(), ExitCode::kNotServed, "contrast");
}

TEST(Settings, TheDeviceIsAskedToCountSheetsWhereItCan) {
  ScanWish wish = a4Wish();
  wish.pages = 3;
  EXPECT_EQ(make(wish).scanPageCount, 3);
  wish.duplex = true;
  EXPECT_EQ(make(wish).scanPageCount, 2);
  Capability capability = officeCapability();
  capability.xferCount = 1;
  EXPECT_EQ(makeSettings(wish, capability, false).scanPageCount, 0);
  wish.pages = 2;
  EXPECT_EQ(makeSettings(wish, capability, false).scanPageCount, 1);
  capability.xferCount = 0;
  EXPECT_EQ(makeSettings(wish, capability, false).scanPageCount, 0);
}

TEST(Settings, SheetsAreCountedByTheDeviceOrRefused) {
  ScanWish wish = a4Wish();
  wish.sheets = 3;
  EXPECT_EQ(make(wish).scanPageCount, 3);
  wish.pages = 2;
  EXPECT_EQ(make(wish).scanPageCount, 2) << "whatever ends first";
  wish.duplex = true;
  EXPECT_EQ(make(wish).scanPageCount, 1);
  wish.pages = 0;
  Capability capability = officeCapability();
  capability.xferCount = 1;
  expectRefused(wish, capability, ExitCode::kNotServed, "after one sheet");
  wish.sheets = 1;
  EXPECT_EQ(makeSettings(wish, capability, false).scanPageCount, 1);
  capability.xferCount = 0;
  expectRefused(wish, capability, ExitCode::kNotServed, "--pages");
}

TEST(Settings, AThresholdForEachPageIsFoundByTheLibraryWhateverTheDevice) {
  ScanWish wish = a4Wish();
  wish.autoThreshold = true;
  expectRefused(wish, officeCapability(), ExitCode::kUsage, "--mode mono");
  wish.mode = COLORTYPE_BLACKANDWHITE;
  EXPECT_EQ(make(wish).autoThreshold, 1);
  EXPECT_EQ(make(wish).threshold, 0u);
}

TEST(Settings, FeaturesToneAndColourDropReachTheRecord) {
  Capability capability = officeCapability();
  capability.colorTone = {2, 0, {}, {}, {254, 0, 0}, {255, 1, 220}, {1000, 10, 100}};
  capability.colorDrop = {2, 1, 1, 1, 0, 1};
  ScanWish wish = a4Wish();
  for (const Feature& feature : featureTable()) {
    if (std::string(feature.option) == "--detect-multifeed") wish.features.push_back({&feature, {}});
  }
  wish.tone[0] = 12;
  wish.colorDrop = findColorDrop("112233");
  const auto settings = makeSettings(wish, capability, false);
  EXPECT_EQ(settings.multifeedDetect, 1);
  EXPECT_EQ(settings.colorTone.shadow, 12);
  EXPECT_EQ(settings.colorDrop.customBlue, 0x33);
  EXPECT_EQ(settings.colorDrop.customRange, 40);
  wish.colorDropRange = 9;
  EXPECT_EQ(makeSettings(wish, capability, false).colorDrop.customRange, 9);
}

TEST(Settings, ACarrierSheetNeedsAKnownPageSize) {
  Capability capability = officeCapability();
  capability.carrierSheet = 2;
  ScanWish wish;
  wish.paperIsAuto = true;
  for (const Feature& feature : featureTable()) {
    if (std::string(feature.option) == "--carrier-sheet") wish.features.push_back({&feature, {}});
  }
  expectRefused(wish, capability, ExitCode::kUsage, "--page-size");
}

TEST(Settings, AutomaticColourIsOfferedWhereTheDeviceTellsColours) {
  Capability capability = officeCapability();
  ScanWish wish = a4Wish();
  wish.mode = COLORTYPE_AUTO;
  EXPECT_EQ(makeSettings(wish, capability, false).colorType, COLORTYPE_AUTO);
  capability.autoColor.cap = 1;
  expectRefused(wish, capability, ExitCode::kNotServed, "color, gray, mono");
}

TEST(Settings, LengthsOfTheLibraryBecomeMillimetres) {
  EXPECT_DOUBLE_EQ(toMm(8500, UNIT_INCH), 215.9);
  EXPECT_DOUBLE_EQ(toMm(21000, UNIT_MILLIMETER), 210);
  EXPECT_DOUBLE_EQ(toMm(2480, UNIT_PIXEL), 0);
}

}  // namespace
