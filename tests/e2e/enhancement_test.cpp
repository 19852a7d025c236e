// What the library makes of a page that the device sent, asked for by options of qsscan.
#include <algorithm>
#include <cmath>

#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

constexpr int kWidthPx = 709;
constexpr int kHeightPx = 947;
constexpr int kDpi = 300;

// The share of samples that differ by more than half the way from black to white.
double shareOfChanges(const Picture& a, const Picture& b) {
  if (a.widthPx != b.widthPx || a.heightPx != b.heightPx || a.channels != b.channels) return 1;
  std::size_t changed = 0;
  for (std::size_t i = 0; i < a.pixels.size(); ++i) changed += std::abs(int{a.pixels[i]} - int{b.pixels[i]}) > 127;
  return static_cast<double>(changed) / static_cast<double>(a.pixels.size());
}

class Enhancement : public ScanTest, public ::testing::WithParamInterface<const char*> {
 protected:
  VirtualScanner& startWith(const Arguments& sheets) {
    Arguments arguments = {"--profile", GetParam(), "--reload"};
    arguments.insert(arguments.end(), sheets.begin(), sheets.end());
    return startScanner(arguments);
  }
  Picture scanned(VirtualScanner& scanner, const Arguments& options, const std::string& paper) {
    Arguments arguments = {"--page-size", paper, "-o", file("page.png")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_TRUE(endedWith(0, scan(scanner.address(), arguments)));
    return readPng(file("page.png"));
  }
  Picture scanned(VirtualScanner& scanner, const Arguments& options) {
    return scanned(scanner, options, paperOf(kWidthPx, kHeightPx, kDpi));
  }
};

TEST_P(Enhancement, TheThresholdIsFoundOnDarkPaper) {
  Picture drawn = drawText(kWidthPx, kHeightPx, kDpi, 1);
  for (auto& sample : drawn.pixels) sample = static_cast<std::uint8_t>(sample * 2 / 5);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const Picture expected = blackAndWhite(drawn, 70);
  const Picture found = scanned(scanner, {"--mode", "mono", "--threshold", "auto"});
  EXPECT_EQ(found.bitsPerSample, 1);
  EXPECT_LT(shareOfChanges(expected, found), 0.02);
  EXPECT_GT(shareOfChanges(expected, scanned(scanner, {"--mode", "mono"})), 0.5) << "it is all black otherwise";
}

TEST_P(Enhancement, AColourIsLeftOutAndTheTextStays) {
  Picture drawn(kWidthPx, kHeightPx, 3, kDpi);
  for (int y = 100; y < 800; ++y) {
    for (int x = 100; x < 600; ++x) {
      const bool isText = x < 300;
      drawn.at(x, y)[0] = isText ? 20 : 230;
      drawn.at(x, y)[1] = isText ? 20 : 30;
      drawn.at(x, y)[2] = isText ? 20 : 40;
    }
  }
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  for (const char* color : {"red", "E61E28"}) {
    SCOPED_TRACE(color);
    const Picture page = scanned(scanner, {"--mode", "gray", "--color-drop", color});
    ASSERT_EQ(page.channels, 1);
    EXPECT_LT(*page.at(200, 400), 60) << "the black part";
    EXPECT_GT(*page.at(450, 400), 200) << "the red part";
  }
  EXPECT_LT(*scanned(scanner, {"--mode", "gray", "--color-drop", "blue"}).at(450, 400), 150) << "red is not blue";
}

TEST_P(Enhancement, ToneMovesTheLevelsOfThePage) {
  const Picture drawn = drawGradient(kWidthPx, kHeightPx, kDpi);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const Picture gamma = scanned(scanner, {"--mode", "gray", "--gamma", "2"});
  const Picture cut = scanned(scanner, {"--mode", "gray", "--shadow", "50", "--highlight", "200"});
  for (const int x : {100, 250, 400, 550}) {
    const double level = *drawn.at(x, 400);
    EXPECT_NEAR(*gamma.at(x, 400), 255 * std::sqrt(level / 255), 5) << x;
    EXPECT_NEAR(*cut.at(x, 400), std::clamp((level - 50) / 150, 0.0, 1.0) * 255, 6) << x;
  }
}

// A letter that lies upside down comes out as it does when it lies the right way.
TEST_P(Enhancement, PagesAreTurnedUpright) {
  VirtualScanner& upright = startWith({QS_EXAMPLES "/letter.pdf"});
  const Arguments oneGreyPage = {"--mode", "gray", "--resolution", "200", "--pages", "1"};
  const Picture letter = scanned(upright, oneGreyPage, "a4");
  Picture turned = turnedHalfway(letter);
  VirtualScanner& scanner = startWith({sheet("turned.png", turned)});
  Arguments turning = oneGreyPage;
  turning.push_back("--auto-rotate");
  const Picture page = scanned(scanner, turning, "a4");
  EXPECT_GE(psnrDb(letter, page), 25);
  EXPECT_LT(psnrDb(letter, scanned(scanner, oneGreyPage, "a4")), 20);
}

TEST_P(Enhancement, StrokesBecomeThicker) {
  const Picture drawn = drawText(kWidthPx, kHeightPx, kDpi, 2);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const auto ink = [](const Picture& page) { return std::count(page.pixels.begin(), page.pixels.end(), 0); };
  const auto plain = ink(scanned(scanner, {"--mode", "mono"}));
  const auto thick = ink(scanned(scanner, {"--mode", "mono", "--thicken-text=2"}));
  EXPECT_GT(thick, plain * 5 / 4);
}

INSTANTIATE_TEST_SUITE_P(Scanners, Enhancement, ::testing::Values("office", "classic"),
                         [](const auto& info) { return std::string(info.param); });

class AutomaticColor : public ScanTest {};

TEST_F(AutomaticColor, EachPageIsWhatItsSheetIs) {
  const Picture text = blackAndWhite(drawText(kWidthPx, kHeightPx, kDpi, 4), 128);
  VirtualScanner& scanner =
      startScanner({sheet("color.png", drawColor(kWidthPx, kHeightPx, kDpi, 3)),
                    sheet("grey.png", drawGradient(kWidthPx, kHeightPx, kDpi)), sheet("text.png", text)});
  const Finished run = scan(scanner.address(), {"--mode", "auto", "--icc-profile", "--page-size",
                                                paperOf(kWidthPx, kHeightPx, kDpi), "-o", file("page.tif")});
  ASSERT_TRUE(endedWith(0, run));
  const auto pages = readTiffPages(file("page.tif"));
  ASSERT_EQ(pages.size(), 3u);
  EXPECT_EQ(pages[0].channels, 3);
  EXPECT_EQ(pages[1].channels, 1);
  EXPECT_EQ(pages[1].bitsPerSample, 8);
  EXPECT_EQ(pages[2].channels, 1);
  EXPECT_GE(psnrDb(drawColor(kWidthPx, kHeightPx, kDpi, 3), pages[0]), 30);
  EXPECT_LT(shareOfChanges(text, pages[2]), 0.02);
}

}  // namespace
}  // namespace e2e
