// Real scanned pages, where a folder of them lies beside the checkout.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <filesystem>

#include "parallel.h"
#include "pdf_file.h"
#include "scan_test.h"

namespace e2e {
namespace {

// What the device's feeder takes, and what it assumes of a picture that tells no resolution.
constexpr int kMaxWidthTenthsOfMm = 2159;
constexpr int kMaxHeightTenthsOfMm = 3556;
constexpr int kAssumedDpi = 300;
// Of means over a millimetre; upside down, the same pages have less than 20.
constexpr double kMeansAlikeDb = 25;

std::vector<std::string> samples() {
  std::vector<std::string> paths;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(QS_SAMPLES, missing)) {
    const std::string ending = entry.path().extension().string();
    if (ending == ".png" || ending == ".jpg" || ending == ".tif") paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

Picture readSheet(const std::string& path) {
  Picture picture = path.ends_with(".png") ? readPng(path) : path.ends_with(".tif") ? readTiff(path) : readJpeg(path);
  if (picture.dpi < 10) picture.dpi = kAssumedDpi;
  return withoutIdleColor(picture);
}

bool isBlackAndWhite(const Picture& picture) {
  return picture.channels == 1 && std::all_of(picture.pixels.begin(), picture.pixels.end(),
                                              [](auto sample) { return sample == 0 || sample == 255; });
}

Picture cutToTheFeeder(const Picture& sheet) {
  const auto pixels = [&](int tenthsOfMm) { return static_cast<int>(tenthsOfMm * sheet.dpi / 254); };
  return cutOut(sheet, 0, 0, std::min(sheet.widthPx, pixels(kMaxWidthTenthsOfMm)),
                std::min(sheet.heightPx, pixels(kMaxHeightTenthsOfMm)));
}

class Samples : public ScanTest {
 protected:
  void SetUp() override {
    if (samples().empty()) GTEST_SKIP() << "there is no folder of real pages beside this checkout";
  }

  std::atomic<int> compared_{0};
};

// At the sheet's own resolution: black and white and grey pages exactly, colour by JPEG closely.
TEST_F(Samples, ArriveAsTheyAre) {
  for (const std::string& path : samples()) {
    SCOPED_TRACE(path);
    const Picture drawn = readSheet(path);
    constexpr int kOffered[] = {100, 150, 200, 300, 400, 600};
    if (std::find(std::begin(kOffered), std::end(kOffered), static_cast<int>(drawn.dpi)) == std::end(kOffered))
      continue;
    const Picture expected = cutToTheFeeder(drawn);
    const bool isMono = isBlackAndWhite(expected);
    const VirtualScanner scanner(folder_, {path, "--set", "compressType[2]=3"});
    ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode",
                                                      isMono                   ? "mono"
                                                      : expected.channels == 1 ? "gray"
                                                                               : "color",
                                                      "--resolution", std::to_string(static_cast<int>(drawn.dpi)),
                                                      "--page-size", "auto", "-o", file("page.png")})));
    const Picture page = readPng(file("page.png"));
    if (expected.channels == 1) {
      EXPECT_EQ(difference(expected, page), "");
    } else {
      EXPECT_GE(psnrDb(expected, page), 30);
    }
    ++compared_;
  }
  EXPECT_GT(compared_, 0);
}

// In grey at other resolutions, from the feeders of both generations and from a bed.
TEST_F(Samples, ShowTheSheetAtOtherResolutions) {
  struct Sample {
    std::string profile;
    std::string path;
  };
  std::vector<Sample> rows;
  for (const std::string profile : {"office", "classic", "flatbed"}) {
    for (const std::string& path : samples()) rows.push_back({profile, path});
  }
  forEachAtOnce(rows, 2, [&](const Sample& row) {
    constexpr int kCoarseDpi = 25;
    const Picture drawn = readSheet(row.path);
    const double widthMm = drawn.widthPx * 25.4 / drawn.dpi;
    const double heightMm = drawn.heightPx * 25.4 / drawn.dpi;
    // What the papers by size allow, and what shrinks by whole numbers.
    if (widthMm < 55 || heightMm < 55 || widthMm > 215.9 || heightMm > 297 || std::fmod(drawn.dpi, kCoarseDpi) != 0) {
      return;
    }
    const Picture expected = shrunk(greyOf(drawn), static_cast<int>(drawn.dpi) / kCoarseDpi);
    const VirtualScanner scanner(
        folder_, {"--hidden", "--profile", row.profile, row.profile == "flatbed" ? "--bed" : "--reload", row.path});
    for (const int dpi : {100, 200}) {
      SCOPED_TRACE(row.profile + ", " + row.path + ", " + std::to_string(dpi) + " dpi");
      const TemporaryFolder folder;
      ASSERT_TRUE(endedWith(
          0, scan(scanner.address(),
                  {"--mode", "gray", "--resolution", std::to_string(dpi), "--page-size",
                   std::to_string(widthMm) + "x" + std::to_string(heightMm), "-o", folder.file("page.png")})));
      const Picture page = readPng(folder.file("page.png"));
      EXPECT_NEAR(page.widthPx * 25.4 / dpi, widthMm, 0.5);
      EXPECT_NEAR(page.heightPx * 25.4 / dpi, heightMm, 0.5);
      const Picture actual = shrunk(page, dpi / kCoarseDpi);
      const int widthPx = std::min(expected.widthPx, actual.widthPx);
      const int heightPx = std::min(expected.heightPx, actual.heightPx);
      EXPECT_GE(psnrDb(cutOut(expected, 0, 0, widthPx, heightPx), cutOut(actual, 0, 0, widthPx, heightPx)),
                kMeansAlikeDb);
      ++compared_;
    }
  });
  EXPECT_GT(compared_, 10);
}

TEST_F(Samples, AllFillOnePdfAtTheirTrueSize) {
  const auto paths = samples();
  VirtualScanner& scanner = startScanner(paths);
  ASSERT_TRUE(
      endedWith(0, scan(scanner.address(), {"--resolution", "200", "--page-size", "auto", "-o", file("samples.pdf")})));
  const auto pages = readPdf(file("samples.pdf"));
  ASSERT_EQ(pages.size(), paths.size());
  for (std::size_t i = 0; i < pages.size(); ++i) {
    SCOPED_TRACE(paths[i]);
    const Picture drawn = readSheet(paths[i]);
    EXPECT_NEAR(pages[i].widthMm, std::min(drawn.widthPx * 25.4 / drawn.dpi, kMaxWidthTenthsOfMm / 10.0), 0.5);
    EXPECT_NEAR(pages[i].heightMm, std::min(drawn.heightPx * 25.4 / drawn.dpi, kMaxHeightTenthsOfMm / 10.0), 0.5);
  }
}

}  // namespace
}  // namespace e2e
