// What the library makes of a page that the device sent, asked for by options of qsscan.
#include <algorithm>
#include <cmath>
#include <random>

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

// How far the samples of a part of the page lie apart.
int contrastOf(const Picture& page, int left, int top, int widthPx, int heightPx) {
  const Picture part = cutOut(page, left, top, widthPx, heightPx);
  const auto [darkest, brightest] = std::minmax_element(part.pixels.begin(), part.pixels.end());
  return *brightest - *darkest;
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

// A part of a letter that lies on its side comes out as wide as it was high.
TEST_P(Enhancement, PagesOnTheirSideChangeTheirFormat) {
  VirtualScanner& upright = startWith({QS_EXAMPLES "/letter.pdf"});
  Picture letter = scanned(upright, {"--mode", "gray", "--resolution", "200", "--pages", "1"}, "a4");
  letter.heightPx = 1100;
  letter.pixels.resize(letter.size());
  Picture onItsSide(letter.heightPx, letter.widthPx, 1, 200);
  for (int y = 0; y < letter.heightPx; ++y) {
    for (int x = 0; x < letter.widthPx; ++x) *onItsSide.at(letter.heightPx - 1 - y, x) = *letter.at(x, y);
  }
  VirtualScanner& scanner = startWith({sheet("on-its-side.png", onItsSide)});
  for (const char* dpi : {"200", "400"}) {
    SCOPED_TRACE(dpi);
    const Picture page = scanned(scanner, {"--mode", "gray", "--resolution", dpi, "--auto-rotate"},
                                 paperOf(onItsSide.widthPx, onItsSide.heightPx, 200));
    EXPECT_NEAR(page.dpi, std::stod(dpi), 1);
    EXPECT_NEAR(page.widthPx / page.dpi, letter.widthPx / 200.0, 0.02);
    EXPECT_NEAR(page.heightPx / page.dpi, letter.heightPx / 200.0, 0.02);
    if (std::string(dpi) == "200") {
      EXPECT_GE(psnrDb(letter, page), 25);
    }
  }
}

TEST_P(Enhancement, StrokesBecomeThicker) {
  const Picture drawn = drawText(kWidthPx, kHeightPx, kDpi, 2);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const auto ink = [](const Picture& page) { return std::count(page.pixels.begin(), page.pixels.end(), 0); };
  const auto plain = ink(scanned(scanner, {"--mode", "mono"}));
  const auto thick = ink(scanned(scanner, {"--mode", "mono", "--thicken-text=2"}));
  EXPECT_GT(thick, plain * 5 / 4);
}

// A round dark spot near the left edge, and text.
TEST_P(Enhancement, PunchedHolesAreFilledAndTheTextStays) {
  Picture drawn = drawText(kWidthPx, kHeightPx, kDpi, 3);
  constexpr int kMiddleX = 120, kMiddleY = 500, kRadiusPx = 35;  // 10 mm from the edge, 6 mm across
  for (int y = kMiddleY - 60; y < kMiddleY + 60; ++y) {
    for (int x = kMiddleX - 60; x < kMiddleX + 60; ++x) {
      const int dx = x - kMiddleX, dy = y - kMiddleY;
      *drawn.at(x, y) = dx * dx + dy * dy <= kRadiusPx * kRadiusPx ? 40 : 255;
    }
  }
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const Picture plain = scanned(scanner, {"--mode", "gray"});
  EXPECT_LT(*plain.at(kMiddleX, kMiddleY), 80);
  for (const char* fill : {"--remove-holes", "--remove-holes=page", "--remove-holes=white"}) {
    SCOPED_TRACE(fill);
    const Picture page = scanned(scanner, {"--mode", "gray", fill});
    EXPECT_GT(*page.at(kMiddleX, kMiddleY), 230);
    EXPECT_LT(shareOfChanges(cutOut(plain, 300, 0, 400, kHeightPx), cutOut(page, 300, 0, 400, kHeightPx)), 0.001);
  }
}

TEST_P(Enhancement, TheEdgesArePaintedOver) {
  const Picture drawn(kWidthPx, kHeightPx, 1, kDpi);
  Picture gray = drawn;
  std::fill(gray.pixels.begin(), gray.pixels.end(), std::uint8_t{150});
  VirtualScanner& scanner = startWith({sheet("sheet.png", gray)});
  // 5.08 mm are 60 pixels, 2.54 mm 30.
  const Picture page = scanned(scanner, {"--mode", "gray", "--edge-fill", "5.08,2.54,0,2.54", "--edge-color", "black"});
  EXPECT_EQ(*page.at(58, 400), 0) << "left";
  EXPECT_NEAR(*page.at(62, 400), 150, 5);
  EXPECT_EQ(*page.at(400, 28), 0) << "top";
  EXPECT_NEAR(*page.at(400, 32), 150, 5);
  EXPECT_NEAR(*page.at(kWidthPx - 1, 400), 150, 5) << "right";
  EXPECT_EQ(*page.at(400, page.heightPx - 28), 0) << "bottom";
  EXPECT_EQ(*scanned(scanner, {"--mode", "gray", "--edge-fill", "2"}).at(2, 2), 255) << "white without a colour";
}

TEST_P(Enhancement, PrintedDotsBecomeAShade) {
  Picture drawn(kWidthPx, kHeightPx, 1, kDpi);
  for (int y = 0; y < kHeightPx; ++y) {
    for (int x = 0; x < kWidthPx; ++x) *drawn.at(x, y) = x % 4 < 2 && y % 4 < 2 ? 0 : 255;
  }
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const int plain = contrastOf(scanned(scanner, {"--mode", "gray"}), 300, 300, 40, 40);
  EXPECT_GT(plain, 150);
  EXPECT_LT(contrastOf(scanned(scanner, {"--mode", "gray", "--descreen"}), 300, 300, 40, 40), plain / 2);
}

TEST_P(Enhancement, GrainIsTakenFromThePaperAndEdgesStaySharp) {
  std::mt19937 random(1);
  Picture drawn(kWidthPx, kHeightPx, 1, kDpi);
  for (int y = 0; y < kHeightPx; ++y) {
    for (int x = 0; x < kWidthPx; ++x) {
      *drawn.at(x, y) = static_cast<std::uint8_t>(x < 350 ? 225 + random() % 25 : 30);
    }
  }
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const auto grainOf = [](const Picture& page) {
    int sum = 0;
    for (int x = 100; x < 300; ++x) sum += std::abs(*page.at(x + 1, 400) - *page.at(x, 400));
    return sum;
  };
  const Picture page = scanned(scanner, {"--mode", "gray", "--smooth", "50"});
  EXPECT_LT(grainOf(page), grainOf(scanned(scanner, {"--mode", "gray"})) / 2);
  EXPECT_GT(contrastOf(page, 345, 300, 10, 10), 150) << "the edge";
}

TEST_P(Enhancement, SoftEdgesBecomeSharper) {
  Picture drawn(kWidthPx, kHeightPx, 1, kDpi);
  for (int y = 0; y < kHeightPx; ++y) {
    for (int x = 0; x < kWidthPx; ++x) *drawn.at(x, y) = static_cast<std::uint8_t>(std::clamp((x - 345) * 50, 60, 180));
  }
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const int plain = contrastOf(scanned(scanner, {"--mode", "gray"}), 340, 400, 40, 1);
  EXPECT_GT(contrastOf(scanned(scanner, {"--mode", "gray", "--sharpen=5"}), 340, 400, 40, 1), plain + 10);
}

TEST_P(Enhancement, AutomaticToneMakesInkBlackAndPaperWhite) {
  Picture drawn = drawText(kWidthPx, kHeightPx, kDpi, 5);
  for (auto& sample : drawn.pixels) sample = static_cast<std::uint8_t>(70 + sample * 120 / 255);
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  EXPECT_LT(contrastOf(scanned(scanner, {"--mode", "gray"}), 0, 0, kWidthPx, kHeightPx), 160);
  const Picture page = scanned(scanner, {"--mode", "gray", "--auto-tone"});
  EXPECT_GT(contrastOf(page, 0, 0, kWidthPx, kHeightPx), 220);
  EXPECT_GT(*page.at(kWidthPx - 5, kHeightPx - 5), 240) << "paper";
}

// A stroke of dots 1/72 inch apart, as a printer with needles makes it.
TEST_P(Enhancement, DotsOfNeedlePrintersAreJoined) {
  Picture drawn(kWidthPx, kHeightPx, 1, kDpi);
  for (int letter = 0; letter < 8; ++letter) {
    for (int dot = 0; dot < 7; ++dot) {
      const int top = 400 + dot * kDpi / 72, left = 200 + letter * 30;
      for (int y = top; y < top + 3; ++y) {
        for (int x = left; x < left + 3; ++x) *drawn.at(x, y) = 0;
      }
    }
  }
  VirtualScanner& scanner = startWith({sheet("sheet.png", drawn)});
  const auto inkOf = [](const Picture& page) {
    const Picture stroke = cutOut(page, 201, 400, 1, 27);
    return std::count(stroke.pixels.begin(), stroke.pixels.end(), 0);
  };
  const auto plain = inkOf(scanned(scanner, {"--mode", "mono"}));
  EXPECT_LT(plain, 24);
  EXPECT_GT(inkOf(scanned(scanner, {"--mode", "mono", "--join-dots"})), plain + 3);
}

INSTANTIATE_TEST_SUITE_P(Scanners, Enhancement, ::testing::Values("office", "classic"),
                         [](const auto& info) { return std::string(info.param); });

// What the library does for devices of the newer command version alone.
class Cleaning : public ScanTest {
 protected:
  Picture scanned(VirtualScanner& scanner, const Arguments& options) {
    Arguments arguments = {"--mode", "mono", "--page-size", paperOf(kWidthPx, kHeightPx, kDpi), "-o", file("page.png")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_TRUE(endedWith(0, scan(scanner.address(), arguments)));
    return readPng(file("page.png"));
  }
};

TEST_F(Cleaning, SpecksGoAndTheTextStays) {
  const Picture text = blackAndWhite(drawText(kWidthPx, kHeightPx, kDpi, 4), 128);
  Picture drawn(kWidthPx, kHeightPx, 1, kDpi);
  for (int y = 0; y < 600; ++y) std::copy_n(text.at(0, y), kWidthPx, drawn.at(0, y));
  for (int y = 640; y < kHeightPx - 20; y += 37) {
    for (int x = 20; x < kWidthPx - 20; x += 41) *drawn.at(x, y) = *drawn.at(x + 1, y) = 0;
  }
  VirtualScanner& scanner = startScanner({"--reload", sheet("sheet.png", drawn)});
  const auto inkBelow = [](const Picture& page) {
    return std::count(page.at(0, 620), page.at(0, 620) + std::ptrdiff_t{kWidthPx} * (kHeightPx - 640), 0);
  };
  const Picture plain = scanned(scanner, {});
  const Picture page = scanned(scanner, {"--despeckle"});
  EXPECT_GT(inkBelow(plain), 100);
  EXPECT_EQ(inkBelow(page), 0);
  EXPECT_LT(shareOfChanges(cutOut(plain, 0, 0, kWidthPx, 600), cutOut(page, 0, 0, kWidthPx, 600)), 0.001);
}

TEST_F(Cleaning, LinesGoInTheDirectionThatIsNamed) {
  Picture drawn(kWidthPx, kHeightPx, 1, kDpi);
  for (int along = 50; along < 650; ++along) {
    for (int thick = 0; thick < 4; ++thick) *drawn.at(along, 300 + thick) = *drawn.at(500 + thick, along) = 0;
  }
  VirtualScanner& scanner = startScanner({"--reload", sheet("sheet.png", drawn)});
  const struct {
    const char* option;
    bool horizontalStays, verticalStays;
  } rows[] = {{"--skip-blank", true, true},
              {"--remove-lines=horizontal", false, true},
              {"--remove-lines=vertical", true, false},
              {"--remove-lines", false, false}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.option);
    const Picture page = scanned(scanner, {row.option});
    EXPECT_EQ(*page.at(200, 302) == 0, row.horizontalStays);
    EXPECT_EQ(*page.at(502, 500) == 0, row.verticalStays);
  }
}

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
