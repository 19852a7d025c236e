// Roads without loss: what the sheet shows arrives sample for sample.
#include <algorithm>

#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

// Widths that are no multiple of 2, 4 or 8: lines are nowhere padded.
constexpr int kOddWidthPx = 709;
constexpr int kOddHeightPx = 947;

// What the device offers for grey: 3 is lines only, raw or PackBits, so that hosts do not ask for JPEG.
constexpr char kGreyByLines[] = "compressType[2]=3";

enum class Drawing { kText, kRuns, kGradient };

struct Road {
  const char* name;
  Drawing drawing;
  Arguments scanner;
  Arguments scan;
  int blackBelow;  // 0 for a grey page
};

Picture draw(Drawing drawing, int widthPx, int heightPx) {
  switch (drawing) {
    case Drawing::kText:
      return drawText(widthPx, heightPx, 300, 7);
    case Drawing::kRuns:
      return drawRuns(widthPx, heightPx, 300, 7);
    case Drawing::kGradient:
      break;
  }
  return drawGradient(widthPx, heightPx, 300);
}

class LosslessRoad : public ScanTest, public ::testing::WithParamInterface<Road> {};

TEST_P(LosslessRoad, GivesTheSheetsPixels) {
  const Road& road = GetParam();
  const Picture drawn = draw(road.drawing, kOddWidthPx, kOddHeightPx);
  Arguments arguments = {sheet("sheet.png", drawn)};
  arguments.insert(arguments.end(), road.scanner.begin(), road.scanner.end());
  VirtualScanner& scanner = startScanner(arguments);

  arguments = {"--page-size", paperOf(kOddWidthPx, kOddHeightPx, 300), "-o", file("page.png")};
  arguments.insert(arguments.end(), road.scan.begin(), road.scan.end());
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), arguments)));

  const Picture page = readPng(file("page.png"));
  EXPECT_EQ(difference(road.blackBelow == 0 ? drawn : blackAndWhite(drawn, road.blackBelow), page), "");
  EXPECT_EQ(page.bitsPerSample, road.blackBelow == 0 ? 8 : 1);
  EXPECT_TRUE(scanner.wasTold("COMP=RLENGTH"));
}

INSTANTIATE_TEST_SUITE_P(
    Roads, LosslessRoad,
    ::testing::Values(
        Road{"GreyTextAsPackBits", Drawing::kText, {"--set", kGreyByLines}, {"--mode", "gray"}, 0},
        Road{"GreyRunsAsPackBits", Drawing::kRuns, {"--set", kGreyByLines}, {"--mode", "gray"}, 0},
        Road{"GreyTextAsRawLines", Drawing::kText, {"--set", kGreyByLines, "--lines", "raw"}, {"--mode", "gray"}, 0},
        Road{"GreyRunsAsRawLines", Drawing::kRuns, {"--set", kGreyByLines, "--lines", "raw"}, {"--mode", "gray"}, 0},
        Road{"GreyWithWhiteLineRecords",
             Drawing::kText,
             {"--set", kGreyByLines, "--white-lines", "all"},
             {"--mode", "gray"},
             0},
        Road{"MonoTextAsPackBits", Drawing::kText, {}, {"--mode", "mono"}, 128},
        Road{"MonoRunsAsPackBits", Drawing::kRuns, {}, {"--mode", "mono"}, 128},
        Road{"MonoWithoutWhiteLineRecords", Drawing::kText, {"--white-lines", "none"}, {"--mode", "mono"}, 128},
        Road{"MonoTextAsRawLines", Drawing::kText, {"--lines", "raw"}, {"--mode", "mono"}, 128},
        Road{"MonoRunsAsRawLines", Drawing::kRuns, {"--lines", "raw"}, {"--mode", "mono"}, 128},
        Road{"MonoAtAThresholdOfOnesOwn", Drawing::kGradient, {}, {"--mode", "mono", "--threshold", "200"}, 200}),
    [](const auto& info) { return std::string(info.param.name); });

class Lossless : public ScanTest {};

TEST_F(Lossless, AWholeA4SheetArrivesExactly) {
  const Picture drawn = drawText(2480, 3508, 300, 2);
  VirtualScanner& scanner = startScanner({sheet("a4.png", drawn), "--set", kGreyByLines});
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "gray", "--page-size", "a4", "-o", file("page.png")})));
  EXPECT_EQ(difference(drawn, readPng(file("page.png"))), "");
}

TEST_F(Lossless, AWholeLetterSheetArrivesExactly) {
  const Picture drawn = drawText(2550, 3300, 300, 3);
  VirtualScanner& scanner = startScanner({sheet("letter.png", drawn)});
  ASSERT_TRUE(
      endedWith(0, scan(scanner.address(), {"--mode", "mono", "--page-size", "letter", "-o", file("page.png")})));
  EXPECT_EQ(difference(blackAndWhite(drawn, 128), readPng(file("page.png"))), "");
}

TEST_F(Lossless, ASheetOnTheBedArrivesExactly) {
  const Picture drawn = drawText(1200, 1800, 300, 4);
  VirtualScanner& scanner = startScanner({"--bed", sheet("bed.png", drawn), "--set", kGreyByLines});
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "gray", "--source", "flatbed", "--page-size", "photo-4x6",
                                                    "-o", file("page.png")})));
  EXPECT_EQ(difference(drawn, readPng(file("page.png"))), "");
}

// Areas of odd sizes at odd places, which no line of bytes begins with.
TEST_F(Lossless, AnAreaIsCutOutToThePixel) {
  const Picture drawn = drawText(1200, 1800, 300, 5);
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn), "--set", kGreyByLines, "--reload"});
  const auto mm = [](int px) { return std::to_string(px * 25.4 / 300); };
  for (const char* mode : {"gray", "mono"}) {
    SCOPED_TRACE(mode);
    ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", mode, "--page-size", "photo-4x6", "-l", mm(123), "-t",
                                                      mm(457), "-x", mm(661), "-y", mm(777), "-o", file("page.png")})));
    const Picture expected = cutOut(drawn, 123, 457, 661, 777);
    const bool grey = mode[0] == 'g';
    EXPECT_EQ(difference(grey ? expected : blackAndWhite(expected, 128), readPng(file("page.png"))), "");
  }
}

TEST_F(Lossless, APdfWithoutLossHoldsTheSheetsPixels) {
  const Picture drawn = drawText(kOddWidthPx, kOddHeightPx, 300, 6);
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn), "--set", kGreyByLines});
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "gray", "--compression", "lossless", "--page-size",
                                                    paperOf(kOddWidthPx, kOddHeightPx, 300), "-o", file("page.pdf")})));
  const auto pages = readPdf(file("page.pdf"));
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_EQ(pages[0].filter, "/FlateDecode");
  EXPECT_EQ(difference(drawn, pages[0].picture), "");
}

TEST_F(Lossless, ABlackAndWhitePdfHoldsTheSheetsPixels) {
  const Picture drawn = drawText(kOddWidthPx, kOddHeightPx, 300, 8);
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn)});
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "mono", "--page-size",
                                                    paperOf(kOddWidthPx, kOddHeightPx, 300), "-o", file("page.pdf")})));
  const auto pages = readPdf(file("page.pdf"));
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_EQ(pages[0].bitsPerSample, 1);
  EXPECT_EQ(difference(blackAndWhite(drawn, 128), pages[0].picture), "");
}

// The device scans at 600 dpi at most: what lies above is made from that, pixel by pixel where the ratio is exact.
TEST_F(Lossless, AResolutionAboveTheDevicesOwnIsMadeFromIt) {
  const Picture drawn = drawText(1417, 945, 600, 9);
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn), "--reload"});
  const std::string paper = paperOf(drawn.widthPx, drawn.heightPx, 600);
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "mono", "--resolution", "1200", "--page-size", paper,
                                                    "-o", file("page.png")})));
  const Picture page = readPng(file("page.png"));
  EXPECT_NEAR(page.dpi, 1200, 1);
  const Picture black = blackAndWhite(drawn, 128);
  ASSERT_NEAR(page.widthPx, 2 * drawn.widthPx, 2);
  ASSERT_NEAR(page.heightPx, 2 * drawn.heightPx, 2);
  for (int y = 0; y < std::min(page.heightPx, 2 * drawn.heightPx); ++y) {
    for (int x = 0; x < std::min(page.widthPx, 2 * drawn.widthPx); ++x) {
      ASSERT_EQ(*page.at(x, y), *black.at(x / 2, y / 2)) << x << ", " << y;
    }
  }

  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "gray", "--resolution", "1200", "--page-size", paper,
                                                    "-o", file("page.pdf")})));
  const auto pages = readPdf(file("page.pdf"));
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_NEAR(pages[0].widthMm, drawn.widthPx * 25.4 / 600, 0.5);
  EXPECT_NEAR(pages[0].heightMm, drawn.heightPx * 25.4 / 600, 0.5);
}

// Error diffusion keeps the mean: a block of dots is as bright as the grey it stands for.
TEST_F(Lossless, DitheredDotsKeepTheBrightness) {
  const Picture drawn = drawGradient(1200, 1800, 300);
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn), "--reload"});
  const Arguments arguments = {"--mode", "dither", "--page-size", "photo-4x6", "-o"};
  Arguments first = arguments;
  first.push_back(file("page.png"));
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), first)));
  const Picture page = readPng(file("page.png"));
  ASSERT_EQ(page.widthPx, drawn.widthPx);
  ASSERT_EQ(page.heightPx, drawn.heightPx);
  EXPECT_EQ(page.bitsPerSample, 1);
  constexpr int kBlockPx = 40;
  for (int left = 0; left < drawn.widthPx; left += kBlockPx) {
    for (int top = 0; top < drawn.heightPx; top += kBlockPx) {
      double sheetSum = 0;
      double pageSum = 0;
      for (int y = top; y < top + kBlockPx; ++y) {
        for (int x = left; x < left + kBlockPx; ++x) {
          sheetSum += *drawn.at(x, y);
          pageSum += *page.at(x, y);
        }
      }
      ASSERT_NEAR(pageSum / kBlockPx / kBlockPx, sheetSum / kBlockPx / kBlockPx, 8)
          << "block at " << left << ", " << top;
    }
  }

  Arguments second = arguments;
  second.push_back(file("page.pdf"));
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), second)));
  EXPECT_EQ(difference(page, readPdf(file("page.pdf")).at(0).picture), "");
}

}  // namespace
}  // namespace e2e
