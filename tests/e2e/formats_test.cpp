// Every format holds the same page.
#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

constexpr int kWidthPx = 709;
constexpr int kHeightPx = 947;
constexpr int kDpi = 300;

struct Device {
  const char* profile;
  const char* mode;
  int channels, bits;
};

class Formats : public ScanTest, public ::testing::WithParamInterface<Device> {};

TEST_P(Formats, HoldTheSamePixelsAndTheSameResolution) {
  const Device& device = GetParam();
  VirtualScanner& scanner =
      startScanner({"--profile", device.profile, "--reload", sheet("a.png", drawColor(kWidthPx, kHeightPx, kDpi, 1)),
                    sheet("b.png", drawText(kWidthPx, kHeightPx, kDpi, 2))});
  const auto scanTo = [&](const std::string& path) {
    return scan(scanner.address(), {"--mode", device.mode, "--compression", "lossless", "--page-size",
                                    paperOf(kWidthPx, kHeightPx, kDpi), "-o", file(path)});
  };
  for (const char* path : {"page.png", "page.tif", "page.pnm", "page.pdf"}) ASSERT_TRUE(endedWith(0, scanTo(path)));
  const auto tiff = readTiffPages(file("page.tif"));
  const auto pdf = readPdf(file("page.pdf"));
  ASSERT_EQ(tiff.size(), 2u);
  ASSERT_EQ(pdf.size(), 2u);
  for (std::size_t i = 0; i < 2; ++i) {
    SCOPED_TRACE(i);
    const std::string number = i == 0 ? "page-001" : "page-002";
    const Picture png = readPng(file(number + ".png"));
    const Picture pnm = readPnm(file(number + ".pnm"));
    EXPECT_EQ(png.channels, device.channels);
    EXPECT_EQ(png.widthPx, kWidthPx);
    EXPECT_EQ(png.heightPx, kHeightPx);
    EXPECT_EQ(difference(png, tiff[i]), "");
    EXPECT_EQ(difference(png, pnm), "");
    EXPECT_EQ(difference(png, pdf[i].picture), "");
    for (const Picture* picture : {&png, &tiff[i], &pnm}) {
      EXPECT_EQ(picture->bitsPerSample, device.bits);
      EXPECT_EQ(picture->dpi, kDpi);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Devices, Formats,
                         ::testing::Values(Device{"office", "color", 3, 8}, Device{"office", "gray", 1, 8},
                                           Device{"office", "mono", 1, 1}, Device{"office", "dither", 1, 1},
                                           Device{"classic", "color", 3, 8}, Device{"classic", "gray", 1, 8},
                                           Device{"classic", "mono", 1, 1}, Device{"classic", "dither", 1, 1}),
                         [](const auto& info) { return std::string(info.param.profile) + "_" + info.param.mode; });

class Profiles : public ScanTest {};

TEST_F(Profiles, TheDevicesColourProfileStandsInEveryFormatThatHoldsOne) {
  VirtualScanner& scanner = startScanner({"--reload", sheet("a.png", drawColor(kWidthPx, kHeightPx, kDpi, 1))});
  for (const char* mode : {"color", "gray"}) {
    SCOPED_TRACE(mode);
    const std::string space = mode[0] == 'c' ? "RGB " : "GRAY";
    for (const char* path : {"page.pdf", "page.tif", "page.jpg", "page.png"}) {
      SCOPED_TRACE(path);
      const Finished run =
          scan(scanner.address(), {"--mode", mode, "--icc-profile", "--page-size", "a6", "--json", "-o", file(path)});
      ASSERT_TRUE(endedWith(0, run));
      EXPECT_NE(run.out.find("\"colorProfile\": true"), std::string::npos) << run.out;
      // The head of a profile: its colour space, 20 bytes before its signature. PNG packs it.
      const std::string content = contentOf(file(path));
      if (std::string(path) == "page.png") {
        EXPECT_NE(content.find("iCCP"), std::string::npos);
        continue;
      }
      const auto signature = content.find("acsp");
      ASSERT_NE(signature, std::string::npos);
      ASSERT_GT(signature, 20u);
      EXPECT_EQ(content.substr(signature - 20, 4), space);
    }
    ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", mode, "--page-size", "a6", "-o", file("plain.tif")})));
    EXPECT_EQ(contentOf(file("plain.tif")).find("acsp"), std::string::npos) << "only where it was asked for";
  }
}

TEST_F(Profiles, ADeviceWithoutOneIsToldBeforeTheScan) {
  VirtualScanner& scanner =
      startScanner({"--profile", "classic", sheet("a.png", drawColor(kWidthPx, kHeightPx, kDpi, 1))});
  const Finished run = scan(scanner.address(), {"--icc-profile", "-o", file("page.pdf")});
  EXPECT_TRUE(endedWith(12, run));
  EXPECT_NE(run.err.find("The device gives no colour profile"), std::string::npos) << run.err;
  EXPECT_FALSE(exists("page.pdf"));
}

TEST_F(Profiles, StandardOutputTakesATiff) {
  VirtualScanner& scanner = startScanner({"--reload", sheet("a.png", drawText(kWidthPx, kHeightPx, kDpi, 3)),
                                          sheet("b.png", drawText(kWidthPx, kHeightPx, kDpi, 4))});
  const Arguments arguments = {"--mode", "mono", "--page-size", "a6", "--format", "tiff", "-o"};
  const auto to = [&](const std::string& path) {
    Arguments all = arguments;
    all.push_back(path);
    return scan(scanner.address(), all);
  };
  const Finished run = to("-");
  ASSERT_TRUE(endedWith(0, run));
  ASSERT_TRUE(endedWith(0, to(file("page.tif"))));
  EXPECT_EQ(run.out, contentOf(file("page.tif")));
}

}  // namespace
}  // namespace e2e
