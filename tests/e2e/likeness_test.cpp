// Every road from a sheet to a page shows the sheet: shipped scanners, kinds of colour, compressions, resolutions, both
// sides. How alike they are is measured by a library; where the pixels are the very same, other tests say so.
#include <algorithm>
#include <cmath>

#include "parallel.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

constexpr int kOddWidthPx = 421;
constexpr int kOddHeightPx = 533;
constexpr int kWidthPx = 420;  // whole pixels at each resolution: a page turned around its middle lies where it lay
constexpr int kHeightPx = 540;
constexpr int kSheetDpi = 300;
constexpr int kBoldDpi = 900;                          // strokes of nine pixels, which a page of 100 dpi still has
constexpr int kResolutions[] = {100, 200, 600, 1200};  // at the sheet's own, other tests compare pixel by pixel
constexpr std::size_t kAtOnce = 3;
// What JPEG and resampling leave of a page.
constexpr double kAlikeDb = 27;
constexpr double kMeansAlikeDb = 25;
constexpr int kMeansDpi = 25;
constexpr double kOverlooked = 0.005;
constexpr double kToleranceMm = 0.5;

Picture bold(Picture (*draw)(int, int, double, unsigned), int widthPx, int heightPx, unsigned seed) {
  Picture picture = draw(widthPx, heightPx, kBoldDpi, seed);
  picture.dpi = kSheetDpi;
  return picture;
}

struct Road {
  std::string profile;
  std::string name;
  Arguments scanner;  // sheets apart
  std::string gray;   // how the scanner is asked for grey and black-and-white pages
  std::string mono;
};

// Colour is always asked for as JPEG, grey where the device offers it, all else as PackBits, which a device answers
// with plain lines where it likes.
const std::vector<Road> kRoads = {
    {"office", "officeJpeg", {}, "COMP=JPEG", "COMP=RLENGTH"},
    {"office", "officePackBits", {"--set", "compressType[2]=3"}, "COMP=RLENGTH", "COMP=RLENGTH"},
    {"office", "officeRaw", {"--set", "compressType[2]=3", "--lines", "raw"}, "COMP=RLENGTH", "COMP=RLENGTH"},
    {"flatbed", "flatbedJpeg", {}, "COMP=JPEG", "COMP=RLENGTH"},
    {"flatbed", "flatbedPackBits", {"--set", "compressType[2]=3"}, "COMP=RLENGTH", "COMP=RLENGTH"},
    {"classic", "classicPackBits", {}, "C=RLENGTH", "C=RLENGTH"},
    {"classic", "classicRaw", {"--lines", "raw"}, "C=RLENGTH", "C=RLENGTH"},
};

class Likeness : public ScanTest {
 protected:
  std::unique_ptr<VirtualScanner> scannerOf(const std::string& profile, const Arguments& sheets,
                                            const Arguments& more) const {
    Arguments arguments = {"--hidden", "--profile", profile, profile == "flatbed" ? "--bed" : "--reload"};
    arguments.insert(arguments.end(), sheets.begin(), sheets.end());
    arguments.insert(arguments.end(), more.begin(), more.end());
    return std::make_unique<VirtualScanner>(folder_, arguments);
  }

  // The pages of one scan at the size of the sheet.
  std::vector<Picture> pagesOf(const VirtualScanner& scanner, const Picture& drawn, const std::string& mode, int dpi,
                               const Arguments& more = {}) const {
    const TemporaryFolder folder;
    Arguments arguments = {"--mode",       mode,
                           "--resolution", std::to_string(dpi),
                           "--page-size",  paperOf(drawn.widthPx, drawn.heightPx, kSheetDpi),
                           "-o",           folder.file("page.tif")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Finished run = scan(scanner.address(), arguments);
    EXPECT_TRUE(endedWith(0, run));
    return run.exit.code == 0 ? readTiffPages(folder.file("page.tif")) : std::vector<Picture>{};
  }
};

// A resolution in which both can be had by shrinking.
int commonDpi(int dpi) { return dpi % kSheetDpi == 0 ? kSheetDpi : kSheetDpi % dpi == 0 ? dpi : 100; }

void expectAlike(const Picture& sheet, const Picture& page, const std::string& mode, int dpi) {
  EXPECT_EQ(page.dpi, dpi);
  EXPECT_NEAR(page.widthPx * 25.4 / dpi, sheet.widthPx * 25.4 / kSheetDpi, kToleranceMm);
  EXPECT_NEAR(page.heightPx * 25.4 / dpi, sheet.heightPx * 25.4 / kSheetDpi, kToleranceMm);
  // Dots are as bright as the sheet only when one does not look too closely.
  const int common = mode == "dither" ? kMeansDpi : commonDpi(dpi);
  Picture expected = shrunk(mode == "mono" ? blackAndWhite(sheet, 128) : sheet, kSheetDpi / common);
  Picture actual = shrunk(page, dpi / common);
  const int widthPx = std::min(expected.widthPx, actual.widthPx);
  const int heightPx = std::min(expected.heightPx, actual.heightPx);
  expected = cutOut(expected, 0, 0, widthPx, heightPx);
  actual = cutOut(actual, 0, 0, widthPx, heightPx);
  const double alikeDb = mode == "dither" ? kMeansAlikeDb : mode == "mono" ? 0 : kAlikeDb;
  EXPECT_GE(psnrDb(expected, actual), alikeDb);
  EXPECT_LE(visiblyDifferent(expected, actual), kOverlooked);
}

TEST_F(Likeness, EachRoadShowsTheSheetAtEachResolution) {
  const Picture color = bold(drawColor, kOddWidthPx, kOddHeightPx, 21);
  const Picture grey = bold(drawText, kOddWidthPx, kOddHeightPx, 22);
  const std::string colorFile = sheet("color.png", color);
  const std::string greyFile = sheet("grey.png", grey);
  forEachAtOnce(kRoads, kAtOnce, [&](const Road& road) {
    for (const std::string mode : {"color", "gray", "mono", "dither"}) {
      const bool isColor = mode == "color";
      const Picture& drawn = isColor ? color : grey;
      const auto scanner = scannerOf(road.profile, {isColor ? colorFile : greyFile}, road.scanner);
      for (const int dpi : kResolutions) {
        SCOPED_TRACE(road.name + ", " + mode + ", " + std::to_string(dpi) + " dpi");
        const auto pages = pagesOf(*scanner, drawn, mode, dpi);
        ASSERT_EQ(pages.size(), 1u);
        expectAlike(drawn, pages[0], mode, dpi);
      }
      const std::string key = road.profile == "classic" ? "C=" : "COMP=";
      const std::string asked = isColor ? key + "JPEG" : mode == "gray" ? road.gray : road.mono;
      EXPECT_TRUE(scanner->wasTold(asked)) << road.name << ", " << mode << ": " << asked;
    }
  });
}

struct Binding {
  std::string profile;
  std::string mode;
  std::string edge;
  int dpi;
};

TEST_F(Likeness, BothSidesAreTurnedAsTheyAreBoundAtEachResolution) {
  std::vector<Binding> rows;
  for (const char* profile : {"office", "classic"}) {
    for (const char* mode : {"color", "gray", "mono", "dither"}) {
      for (const char* edge : {"long", "short"}) {
        for (const int dpi : {150, 400, 1200}) rows.push_back({profile, mode, edge, dpi});
      }
    }
  }
  std::vector<Picture> sides;
  Arguments files;
  for (unsigned i = 0; i < 4; ++i) {
    sides.push_back(bold(i < 2 ? drawColor : drawText, kWidthPx, kHeightPx, 30 + i));
    files.push_back(sheet("side" + std::to_string(i) + ".png", sides.back()));
  }
  forEachAtOnce(rows, kAtOnce, [&](const Binding& row) {
    SCOPED_TRACE(row.profile + ", " + row.mode + ", " + row.edge + ", " + std::to_string(row.dpi) + " dpi");
    const std::size_t first = row.mode == "color" ? 0 : 2;
    const auto scanner = scannerOf(row.profile, {files[first], files[first + 1]}, {});
    const auto pages = pagesOf(*scanner, sides[first], row.mode, row.dpi, {"--duplex", "--binding", row.edge});
    ASSERT_EQ(pages.size(), 2u);
    expectAlike(sides[first], pages[0], row.mode, row.dpi);
    const Picture& back = sides[first + 1];
    expectAlike(row.edge == "short" ? turnedHalfway(back) : back, pages[1], row.mode, row.dpi);
  });
}

struct Length {
  std::string profile;
  std::string mode;
  int sheetPx;        // height at 300 dpi
  std::string paper;  // width of the sheet, height in mm or "long"
  int pagePx;         // height at 300 dpi
};

// A sheet that is shorter than its page is filled up with white, a longer one is cut, long paper ends with its sheet.
TEST_F(Likeness, ShortAndLongSheetsKeepTheirPlace) {
  constexpr int kPagePx = 1500;  // 127 mm
  std::vector<Length> rows;
  for (const char* profile : {"office", "classic"}) {
    for (const char* mode : {"color", "gray", "mono"}) {
      for (const int sheetPx : {900, 2100}) rows.push_back({profile, mode, sheetPx, "x127", kPagePx});
      for (const int sheetPx : {900, 5000}) rows.push_back({profile, mode, sheetPx, "xlong", sheetPx});
    }
  }
  forEachAtOnce(rows, kAtOnce, [&](const Length& row) {
    constexpr int kSheetWidthPx = 900;
    constexpr double kWidthMm = kSheetWidthPx * 25.4 / kSheetDpi;
    const bool isColor = row.mode == "color";
    const Picture drawn = bold(isColor ? drawColor : drawText, kSheetWidthPx, row.sheetPx, 40);
    const TemporaryFolder folder;
    writePng(folder.file("sheet.png"), drawn);
    const auto scanner = scannerOf(row.profile, {folder.file("sheet.png")}, {});
    for (const int dpi : {100, 200}) {
      SCOPED_TRACE(row.profile + ", " + row.mode + ", " + std::to_string(row.sheetPx) + " lines on " + row.paper +
                   ", " + std::to_string(dpi) + " dpi");
      ASSERT_TRUE(
          endedWith(0, scan(scanner->address(),
                            {"--mode", row.mode, "--source", "adf", "--resolution", std::to_string(dpi), "--page-size",
                             std::to_string(kWidthMm) + row.paper, "-o", folder.file("page.tif")})));
      const Picture page = readTiffPages(folder.file("page.tif")).at(0);
      const Picture expected =
          cutOut(onWhite(drawn, kSheetWidthPx, std::max(row.sheetPx, row.pagePx)), 0, 0, kSheetWidthPx, row.pagePx);
      expectAlike(expected, page, row.mode, dpi);
    }
  });
}

}  // namespace
}  // namespace e2e
