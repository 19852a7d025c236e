// Options that reach the device, and what it makes of them.
#include <algorithm>

#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

constexpr int kWidthPx = 709;
constexpr int kHeightPx = 947;
constexpr int kDpi = 300;

// What a device is told for an option, and without it.
struct Told {
  const char* profile;
  Arguments device;
  Arguments options;
  const char* line;       // of a command
  const char* otherwise;  // the same line of a scan without the options
};

const Told kTold[] = {
    {"office", {}, {"--deskew"}, "DSKW=ON", "DSKW=OFF"},
    {"office", {}, {"--skip-blank"}, "RMBP=2", "RMBP=OFF"},
    {"office", {}, {"--skip-blank=4"}, "RMBP=4", "RMBP=OFF"},
    {"office", {"--set", "blankRemove=1"}, {"--skip-blank"}, "RMBP=ON", "RMBP=OFF"},
    {"office", {}, {"--detect-multifeed"}, "DTDF=ON", "DTDF=OFF"},
    {"office", {}, {"--remove-background=200"}, "RMGC=200", "RMGC=OFF"},
    {"office", {"--set", "carrierSheet=1"}, {"--carrier-sheet"}, "CARR=ON", "CARR=OFF"},
    {"office", {"--set", "quietScan=1"}, {"--quiet"}, "QTFD=ON", "QTFD=OFF"},
    {"office", {}, {"--sheets", "1"}, "PAGE=1", "PAGE=0"},
    {"office", {}, {"--page-size", "long"}, "LONG=ON", "LONG=OFF"},
    {"office", {}, {"--page-size", "100xlong"}, "LONG=ON", "LONG=OFF"},
    {"office", {}, {"--mode", "mono", "--threshold", "77"}, "THRS=77", nullptr},
    {"office", {}, {"--mode", "mono", "--threshold", "auto"}, "CLR=C24BIT", "CLR=C24BIT"},
    {"office", {}, {"--mode", "gray", "--color-drop", "red"}, "CLR=C24BIT", "CLR=C24BIT"},
    {"office", {}, {"--mode", "mono", "--remove-holes"}, "CLR=C24BIT", "CLR=C24BIT"},
    {"office", {}, {"--mode", "gray", "--descreen"}, "CLR=C24BIT", "CLR=C24BIT"},
    {"office", {}, {"--mode", "auto"}, "CLR=AUTO", "CLR=C24BIT"},
    {"classic", {}, {"--detect-multifeed"}, "E=1", "E=0"},
    {"classic", {}, {"--mode", "mono", "--remove-background=9"}, "L=9", "L=0"},
    {"classic", {"--set", "scanFunc=24"}, {"--deskew"}, "S=SKEW_ADJUST", "S=NORMAL_SCAN"},
};

class Settings : public ScanTest {
 protected:
  Arguments toPage(const Arguments& options) const {
    Arguments arguments = {"--resolution", "100", "--source", "adf", "-o", file("page.pdf")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return arguments;
  }
  Picture scannedPng(VirtualScanner& scanner, const Arguments& options) {
    Arguments arguments = {"--page-size", paperOf(kWidthPx, kHeightPx, kDpi), "-o", file("page.png")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_TRUE(endedWith(0, scan(scanner.address(), arguments)));
    return readPng(file("page.png"));
  }
};

TEST_F(Settings, ReachTheDevice) {
  const std::string drawn = sheet("sheet.png", drawColor(kWidthPx, kHeightPx, kDpi, 1));
  for (const Told& told : kTold) {
    SCOPED_TRACE(std::string(told.profile) + " " + told.line);
    Arguments arguments = {"--profile", told.profile, "--reload", drawn};
    arguments.insert(arguments.end(), told.device.begin(), told.device.end());
    const VirtualScanner with(folder_, arguments);
    ASSERT_TRUE(endedWith(0, scan(with.address(), toPage(told.options))));
    EXPECT_TRUE(with.wasTold(told.line)) << with.log();
    if (told.otherwise == nullptr) continue;
    const VirtualScanner without(folder_, arguments);
    ASSERT_TRUE(endedWith(0, scan(without.address(), toPage({}))));
    EXPECT_TRUE(without.wasTold(told.otherwise)) << without.log();
  }
}

TEST_F(Settings, WhatADeviceLacksIsRefusedBeforeItIsToldAnything) {
  const std::string drawn = sheet("sheet.png", drawText(kWidthPx, kHeightPx, kDpi, 1));
  VirtualScanner& scanner = startScanner({"--profile", "flatbed", "--bed", drawn});
  for (const char* option : {"--deskew", "--skip-blank", "--detect-multifeed", "--remove-background", "--carrier-sheet",
                             "--quiet", "--icc-profile"}) {
    const Finished run = scan(scanner.address(), {option, "-o", file("page.pdf")});
    EXPECT_TRUE(endedWith(12, run)) << option;
    EXPECT_NE(run.err.find(std::string("Leave out ") + option), std::string::npos) << run.err;
  }
  const Finished cut = scan(scanner.address(), {"--edge-cut", "2", "-o", file("page.pdf")});
  EXPECT_TRUE(endedWith(12, cut));
  EXPECT_NE(cut.err.find("Use -l -t -x -y"), std::string::npos) << cut.err;
  for (const Arguments& options :
       {Arguments{"--sheets", "2"}, Arguments{"--page-size", "long"}, Arguments{"--source", "adf"},
        Arguments{"--mode", "auto"}, Arguments{"--resolution", "250"}, Arguments{"--page-size", "a3"}}) {
    Arguments arguments = options;
    arguments.insert(arguments.end(), {"-o", file("page.pdf")});
    EXPECT_TRUE(endedWith(12, scan(scanner.address(), arguments))) << options[0];
  }
  for (const std::string& command : scanner.commands()) {
    EXPECT_EQ(command.find("SSP"), std::string::npos);
    EXPECT_EQ(command.find("XSC"), std::string::npos);
  }
  EXPECT_FALSE(exists("page.pdf"));
}

// Words on an askew sheet come out where they stand on a straight one.
TEST_F(Settings, DeskewStraightensASheetThatWasFedAskew) {
  const Picture drawn = drawText(kWidthPx, kHeightPx, kDpi, 3);
  VirtualScanner& scanner =
      startScanner({"--reload", "--skew", "3", "--set", "compressType[2]=3", sheet("sheet.png", drawn)});
  const Picture askew = scannedPng(scanner, {"--mode", "gray"});
  const Picture straight = scannedPng(scanner, {"--mode", "gray", "--deskew"});
  EXPECT_LT(psnrDb(drawn, askew), 15);
  EXPECT_EQ(difference(drawn, straight), "");
}

TEST_F(Settings, BlankPagesAreLeftOutAndCounted) {
  const Picture first = drawText(kWidthPx, kHeightPx, kDpi, 4);
  const Picture third = drawText(kWidthPx, kHeightPx, kDpi, 5);
  VirtualScanner& scanner =
      startScanner({"--reload", "--set", "compressType[2]=3", sheet("1.png", first),
                    sheet("2.png", Picture(kWidthPx, kHeightPx, 1, kDpi)), sheet("3.png", third)});
  const auto toTiff = [&](const Arguments& options) {
    Arguments arguments = {"--mode", "gray", "--page-size", paperOf(kWidthPx, kHeightPx, kDpi), "-o", file("page.tif")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return scan(scanner.address(), arguments);
  };
  ASSERT_TRUE(endedWith(0, toTiff({})));
  EXPECT_EQ(readTiffPages(file("page.tif")).size(), 3u);
  const Finished run = toTiff({"--skip-blank"});
  ASSERT_TRUE(endedWith(0, run));
  EXPECT_NE(run.err.find("1 blank page left out"), std::string::npos) << run.err;
  const auto pages = readTiffPages(file("page.tif"));
  ASSERT_EQ(pages.size(), 2u);
  EXPECT_EQ(difference(first, pages[0]), "");
  EXPECT_EQ(difference(third, pages[1]), "");
}

TEST_F(Settings, SheetsAreCountedByTheDevice) {
  VirtualScanner& scanner = startScanner({sheet("1.png", drawText(kWidthPx, kHeightPx, kDpi, 4)),
                                          sheet("2.png", drawText(kWidthPx, kHeightPx, kDpi, 5)),
                                          sheet("3.png", drawText(kWidthPx, kHeightPx, kDpi, 6))});
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "mono", "--sheets", "2", "-o", file("two.tif")})));
  EXPECT_EQ(readTiffPages(file("two.tif")).size(), 2u);
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "mono", "-o", file("rest.tif")})));
  EXPECT_EQ(readTiffPages(file("rest.tif")).size(), 1u) << "the third sheet was not fed before";
}

TEST_F(Settings, TwoSheetsFedAtOnceEndTheScanWhereTheyAreLookedFor) {
  for (const char* profile : {"office", "classic"}) {
    SCOPED_TRACE(profile);
    VirtualScanner& scanner = startScanner({"--profile", profile, "--reload", "--fault", "double-feed@page=2",
                                            sheet("1.png", drawText(kWidthPx, kHeightPx, kDpi, 4)),
                                            sheet("2.png", drawText(kWidthPx, kHeightPx, kDpi, 5))});
    ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "mono", "-o", file("all.tif")})));
    EXPECT_EQ(readTiffPages(file("all.tif")).size(), 2u);
    const Finished run = scan(scanner.address(), {"--mode", "mono", "--detect-multifeed", "-o", file("kept.tif")});
    EXPECT_TRUE(endedWith(4, run));
    EXPECT_EQ(readTiffPages(file("kept.tif")).size(), 1u) << "the page before it is kept";
  }
}

TEST_F(Settings, PagesAreTurnedByQuarters) {
  const Picture drawn = drawText(kWidthPx, kHeightPx, kDpi, 8);
  VirtualScanner& scanner = startScanner({"--reload", "--set", "compressType[2]=3", sheet("sheet.png", drawn)});
  EXPECT_EQ(difference(turnedHalfway(drawn), scannedPng(scanner, {"--mode", "gray", "--rotate", "180"})), "");
  const Picture quarter = scannedPng(scanner, {"--mode", "gray", "--rotate", "90"});
  ASSERT_EQ(quarter.widthPx, kHeightPx);
  ASSERT_EQ(quarter.heightPx, kWidthPx);
  const Picture other = scannedPng(scanner, {"--mode", "gray", "--rotate", "270"});
  EXPECT_EQ(difference(turnedHalfway(quarter), other), "");
  for (int y = 0; y < kHeightPx; y += 7) {
    for (int x = 0; x < kWidthPx; x += 5)
      ASSERT_EQ(*drawn.at(x, y), *quarter.at(kHeightPx - 1 - y, x)) << x << "," << y;
  }
}

TEST_F(Settings, EdgesAreLeftOutWhereTheDeviceCan) {
  const Picture drawn = drawText(kWidthPx, kHeightPx, kDpi, 9);
  Arguments arguments = {"--reload", "--set", "compressType[2]=3", sheet("sheet.png", drawn)};
  for (int i = 0; i < 8; ++i) {  // of the bed: each edge can be moved both ways
    arguments.insert(arguments.end(), {"--set", "marginAdjust[" + std::to_string(i) + "]=300"});
  }
  VirtualScanner& scanner = startScanner(arguments);
  // 150, 300 and 75 pixels.
  const Picture page = scannedPng(scanner, {"--mode", "gray", "--edge-cut", "12.7,25.4,0,6.35"});
  EXPECT_TRUE(scanner.wasTold("MRGN=-127,0,-254,-63")) << scanner.log();
  EXPECT_EQ(difference(cutOut(drawn, 150, 300, kWidthPx - 150, page.heightPx), page), "");
  EXPECT_NEAR(page.heightPx, kHeightPx - 300 - 75, 1);
  const Picture all = scannedPng(scanner, {"--mode", "gray", "--edge-cut", "12.7"});
  EXPECT_EQ(difference(cutOut(drawn, 150, 150, kWidthPx - 300, kHeightPx - 300), all), "");
}

TEST_F(Settings, ATintedBackgroundBecomesWhite) {
  Picture drawn = drawText(kWidthPx, kHeightPx, kDpi, 7);
  for (auto& sample : drawn.pixels) sample = static_cast<std::uint8_t>(std::min<int>(sample, 215));
  VirtualScanner& scanner = startScanner({"--reload", "--set", "compressType[2]=3", sheet("sheet.png", drawn)});
  EXPECT_EQ(difference(drawn, scannedPng(scanner, {"--mode", "gray"})), "");
  const Picture page = scannedPng(scanner, {"--mode", "gray", "--remove-background=255"});
  EXPECT_EQ(*page.at(kWidthPx - 5, kHeightPx - 5), 255);
  EXPECT_LT(*page.at(10, 10), 100) << "ink stays";
}

}  // namespace
}  // namespace e2e
