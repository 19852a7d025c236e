// Every shipped scanner gives the sheet, whichever generation of commands it speaks.
#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

// Widths that are no multiple of 16, to which the first generation rounds up on the wire.
constexpr int kWidthPx = 709;
constexpr int kHeightPx = 947;
constexpr int kDpi = 300;
constexpr double kCloseDb = 30;

struct Road {
  const char* profile;
  const char* name;
  Arguments scanner;  // sheets apart
  bool hasFeeder;
};

// Grey by lines, so that pages can be compared exactly.
const Road kRoads[] = {
    {"office", "office", {"--set", "compressType[2]=3"}, true},
    {"office", "officeRaw", {"--set", "compressType[2]=3", "--lines", "raw"}, true},
    {"flatbed", "flatbed", {"--set", "compressType[2]=3"}, false},
    {"classic", "classic", {}, true},
    {"classic", "classicRaw", {"--lines", "raw"}, true},
};

class Generations : public ScanTest, public ::testing::WithParamInterface<Road> {
 protected:
  VirtualScanner& startWith(const Arguments& sheets) {
    Arguments arguments = {"--profile", GetParam().profile};
    arguments.insert(arguments.end(), GetParam().scanner.begin(), GetParam().scanner.end());
    arguments.push_back(GetParam().hasFeeder ? "--reload" : "--bed");
    arguments.insert(arguments.end(), sheets.begin(), sheets.end());
    return startScanner(arguments);
  }

  Picture scanned(VirtualScanner& scanner, const std::string& mode, const Picture& drawn, const Arguments& more = {}) {
    Arguments arguments = {"--mode",        mode, "--page-size", paperOf(drawn.widthPx, drawn.heightPx, kDpi), "-o",
                           file("page.png")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Finished run = scan(scanner.address(), arguments);
    EXPECT_TRUE(endedWith(0, run));
    return readPng(file("page.png"));
  }
};

TEST_P(Generations, GreyAndBlackAndWhiteAreTheSheetsPixels) {
  const Picture drawn = drawRuns(kWidthPx, kHeightPx, kDpi, 7);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  EXPECT_EQ(difference(drawn, scanned(scanner, "gray", drawn)), "");
  EXPECT_EQ(difference(blackAndWhite(drawn, 128), scanned(scanner, "mono", drawn)), "");
}

TEST_P(Generations, ColorIsCloseToTheSheet) {
  const Picture drawn = drawColor(kWidthPx, kHeightPx, kDpi, 8);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  EXPECT_GE(psnrDb(drawn, scanned(scanner, "color", drawn)), kCloseDb);
}

// A dithered page has the brightness of the sheet wherever one looks.
TEST_P(Generations, DitherKeepsTheBrightness) {
  const Picture drawn = drawGradient(kWidthPx, kHeightPx, kDpi);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const Picture page = scanned(scanner, "dither", drawn);
  EXPECT_EQ(page.bitsPerSample, 1);
  EXPECT_GE(psnrDb(meansOf(drawn, 16), meansOf(page, 16)), kCloseDb);
}

TEST_P(Generations, BrightnessAndContrastAreAppliedOnce) {
  const Picture drawn = drawGradient(kWidthPx, kHeightPx, kDpi);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const Picture bright = scanned(scanner, "gray", drawn, {"--brightness", "20"});
  const Picture steep = scanned(scanner, "gray", drawn, {"--contrast", "30"});
  const int middle = kWidthPx / 2;
  EXPECT_GT(*bright.at(middle, 100), *drawn.at(middle, 100) + 10);
  EXPECT_LT(*bright.at(middle, 100), *drawn.at(middle, 100) + 100);
  EXPECT_LT(*steep.at(kWidthPx / 4, 100), *drawn.at(kWidthPx / 4, 100) - 5);
  EXPECT_GT(*steep.at(3 * kWidthPx / 4, 100), *drawn.at(3 * kWidthPx / 4, 100) + 5);
}

// One road for each device: what they do not depend on is how its lines come.
class Resolutions : public Generations {};

TEST_P(Resolutions, AllShowTheSheetAtItsSize) {
  constexpr int kSmallWidthPx = 301;
  constexpr int kSmallHeightPx = 401;
  const Picture drawn = drawColor(kSmallWidthPx, kSmallHeightPx, kDpi, 9);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  for (const int dpi : {100, 150, 200, 400, 600, 1200}) {
    for (const char* mode : {"gray", "mono", "color"}) {
      SCOPED_TRACE(std::string(mode) + " " + std::to_string(dpi));
      const Picture page = scanned(scanner, mode, drawn, {"--resolution", std::to_string(dpi)});
      EXPECT_EQ(page.dpi, dpi);
      EXPECT_NEAR(page.widthPx * 25.4 / dpi, kSmallWidthPx * 25.4 / kDpi, 0.5);
      EXPECT_NEAR(page.heightPx * 25.4 / dpi, kSmallHeightPx * 25.4 / kDpi, 0.5);
    }
  }
}

// Resolutions above the device's own are made from it, at the same place of the sheet.
TEST_P(Resolutions, AFineScanShowsThePictureOfTheSheet) {
  const Picture drawn = drawText(kWidthPx, kHeightPx, kDpi, 10);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const Picture page = scanned(scanner, "gray", drawn, {"--resolution", "1200"});
  Picture means = meansOf(page, 4);
  means = onWhite(means, kWidthPx, kHeightPx);
  EXPECT_GE(psnrDb(drawn, means), 25);
}

TEST_P(Generations, AnAreaIsCutOutToThePixel) {
  const Picture drawn = drawText(1200, 1800, kDpi, 5);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const auto mm = [](int px) { return std::to_string(px * 25.4 / kDpi); };
  for (const char* mode : {"gray", "mono"}) {
    SCOPED_TRACE(mode);
    const Finished run = scan(scanner.address(), {"--mode", mode, "--page-size", "photo-4x6", "-l", mm(123), "-t",
                                                  mm(457), "-x", mm(661), "-y", mm(777), "-o", file("page.png")});
    ASSERT_TRUE(endedWith(0, run));
    const Picture expected = cutOut(drawn, 123, 457, 661, 777);
    EXPECT_EQ(difference(mode[0] == 'g' ? expected : blackAndWhite(expected, 128), readPng(file("page.png"))), "");
  }
}

TEST_P(Generations, BothSidesAreTurnedAsTheSheetsAreBound) {
  const Road& road = GetParam();
  const Picture front = drawText(kWidthPx, kHeightPx, kDpi, 11);
  const Picture back = drawText(kWidthPx, kHeightPx, kDpi, 12);
  if (!road.hasFeeder) {
    VirtualScanner& scanner = startWith({sheet("front.png", front)});
    const Finished run = scan(scanner.address(), {"--duplex", "-o", file("page.tif")});
    EXPECT_TRUE(endedWith(12, run));
    EXPECT_NE(run.err.find("cannot scan both sides"), std::string::npos) << run.err;
    return;
  }
  VirtualScanner& scanner = startWith({sheet("front.png", front), sheet("back.png", back)});
  for (const char* mode : {"gray", "mono"}) {
    for (const char* binding : {"long", "short"}) {
      SCOPED_TRACE(std::string(mode) + " " + binding);
      ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", mode, "--duplex", "--binding", binding, "--page-size",
                                                        paperOf(kWidthPx, kHeightPx, kDpi), "-o", file("page.tif")})));
      const auto pages = readTiffPages(file("page.tif"));
      ASSERT_EQ(pages.size(), 2u);
      const Picture expected = binding[0] == 's' ? turnedHalfway(back) : back;
      const bool isMono = mode[0] == 'm';
      EXPECT_EQ(difference(isMono ? blackAndWhite(front, 128) : front, pages[0]), "");
      EXPECT_EQ(difference(isMono ? blackAndWhite(expected, 128) : expected, pages[1]), "");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Scanners, Resolutions, ::testing::Values(kRoads[0], kRoads[2], kRoads[3]),
                         [](const auto& info) { return std::string(info.param.name); });
INSTANTIATE_TEST_SUITE_P(Scanners, Generations, ::testing::ValuesIn(kRoads),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace e2e
