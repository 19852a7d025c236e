// Sheets that are shorter or longer than the page asked for, in both generations.
#include <cmath>

#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

constexpr int kDpi = 100;
constexpr int kLongWidthPx = 850;  // 8.5 inches, as wide as long paper is by name

class Lengths : public ScanTest, public ::testing::WithParamInterface<const char*> {
 protected:
  VirtualScanner& startWith(const Picture& drawn) {
    return startScanner({"--profile", GetParam(), "--reload", "--set",
                         std::string(GetParam()) == "office" ? "compressType[2]=3" : "version=11",
                         sheet("sheet.png", drawn)});
  }

  Picture scanned(VirtualScanner& scanner, const std::string& paper, const char* mode = "gray") {
    const Finished run = scan(scanner.address(), {"--mode", mode, "--resolution", std::to_string(kDpi), "--source",
                                                  "adf", "--page-size", paper, "-o", file("page.png")});
    EXPECT_TRUE(endedWith(0, run));
    return readPng(file("page.png"));
  }
};

TEST_P(Lengths, AShortSheetIsFilledUpWithWhite) {
  const Picture drawn = drawText(kLongWidthPx, 500, kDpi, 1);
  VirtualScanner& scanner = startWith(drawn);
  for (const char* mode : {"gray", "mono"}) {
    SCOPED_TRACE(mode);
    const Picture page = scanned(scanner, "letter", mode);
    EXPECT_NEAR(page.heightPx, 1100, 1);
    const Picture expected = onWhite(drawn, kLongWidthPx, page.heightPx);
    EXPECT_EQ(difference(mode[0] == 'm' ? blackAndWhite(expected, 128) : expected, page), "");
  }
}

TEST_P(Lengths, ALongSheetIsCutAtThePage) {
  const Picture drawn = drawText(kLongWidthPx, 1390, kDpi, 2);
  VirtualScanner& scanner = startWith(drawn);
  const Picture page = scanned(scanner, "letter");
  EXPECT_NEAR(page.heightPx, 1100, 1);
  EXPECT_EQ(difference(cutOut(drawn, 0, 0, kLongWidthPx, page.heightPx), page), "");
}

TEST_P(Lengths, LongPaperEndsWhereItsSheetEnds) {
  for (const int heightPx : {600, 2400, 3300}) {  // 838 mm at most
    SCOPED_TRACE(heightPx);
    const Picture drawn = drawText(kLongWidthPx, heightPx, kDpi, 3);
    VirtualScanner& scanner = startWith(drawn);
    EXPECT_EQ(difference(drawn, scanned(scanner, "long")), "");
    EXPECT_EQ(difference(blackAndWhite(drawn, 128), scanned(scanner, "long", "mono")), "");
  }
}

TEST_P(Lengths, LongPaperOfAnyWidthEndsWhereItsSheetEnds) {
  const Picture drawn = drawText(600, 2000, kDpi, 4);
  VirtualScanner& scanner = startWith(drawn);
  EXPECT_EQ(difference(drawn, scanned(scanner, "152.4xlong")), "");
}

TEST_P(Lengths, LongColorPaperEndsWhereItsSheetEnds) {
  const Picture drawn = drawColor(kLongWidthPx, 2400, kDpi, 5);
  VirtualScanner& scanner = startWith(drawn);
  // So coarse, colour loses more by JPEG than at 300 dpi.
  EXPECT_GE(psnrDb(drawn, scanned(scanner, "long", "color")), 28);
}

INSTANTIATE_TEST_SUITE_P(Scanners, Lengths, ::testing::Values("office", "classic"),
                         [](const auto& info) { return std::string(info.param); });

class AutomaticLength : public ScanTest {};

// A feeder that ends the page before the area that was asked for is full.
TEST_F(AutomaticLength, APageThatTheDeviceEndsIsNotFilledUp) {
  const Picture drawn = drawText(kLongWidthPx, 1100, kDpi, 6);
  VirtualScanner& scanner = startScanner({"--reload", "--set", "compressType[2]=3", "--lines", "raw", "--fault",
                                          "too-long@page=1,line=500", sheet("sheet.png", drawn)});
  const Arguments gray = {"--mode", "gray", "--resolution", "100", "--page-size", "letter", "-o", file("page.png")};
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), gray)));
  const Picture top = cutOut(drawn, 0, 0, kLongWidthPx, 500);
  EXPECT_EQ(difference(onWhite(top, kLongWidthPx, 1100), readPng(file("page.png"))), "");
  Arguments automatic = gray;
  automatic.push_back("--auto-length");
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), automatic)));
  EXPECT_EQ(difference(top, readPng(file("page.png"))), "");
}

}  // namespace
}  // namespace e2e
