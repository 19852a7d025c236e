// Files that show a sheet at its true size, whatever the resolution, the paper and the format.
#include <cmath>

#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

constexpr double kToleranceMm = 0.5;

double mm(int px, double dpi) { return px * 25.4 / dpi; }

void expectSize(const Picture& picture, int dpi, double widthMm, double heightMm) {
  ASSERT_EQ(picture.dpi, dpi);
  EXPECT_NEAR(mm(picture.widthPx, dpi), widthMm, kToleranceMm);
  EXPECT_NEAR(mm(picture.heightPx, dpi), heightMm, kToleranceMm);
}

class Documents : public ScanTest {};

class DocumentsAtResolution : public ScanTest, public ::testing::WithParamInterface<int> {};

TEST_P(DocumentsAtResolution, ShowTheSheetAtItsTrueSize) {
  const int dpi = GetParam();
  const std::string dpiText = std::to_string(dpi);
  VirtualScanner& scanner = startScanner({sheet("a6.png", drawColor(1240, 1748, 300, 1)), "--reload"});
  for (const char* mode : {"color", "mono"}) {
    SCOPED_TRACE(mode);
    for (const char* name : {"page.pdf", "page.png", "page.jpg"}) {
      ASSERT_TRUE(endedWith(0, scan(scanner.address(),
                                    {"--mode", mode, "--page-size", "a6", "--resolution", dpiText, "-o", file(name)})));
    }
    const auto pages = readPdf(file("page.pdf"));
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_NEAR(pages[0].widthMm, 105, kToleranceMm);
    EXPECT_NEAR(pages[0].heightMm, 148, kToleranceMm);
    expectSize(pages[0].picture, dpi, 105, 148);
    expectSize(readPng(file("page.png")), dpi, 105, 148);
    expectSize(readJpeg(file("page.jpg")), dpi, 105, 148);
    EXPECT_EQ(pages[0].picture.widthPx, readPng(file("page.png")).widthPx);
    EXPECT_EQ(pages[0].picture.heightPx, readPng(file("page.png")).heightPx);
  }
}

INSTANTIATE_TEST_SUITE_P(Resolutions, DocumentsAtResolution, ::testing::Values(100, 150, 200, 300, 600),
                         [](const auto& info) { return std::to_string(info.param) + "Dpi"; });

struct NamedPaper {
  const char* name;
  double widthMm, heightMm;
};

TEST_F(Documents, EveryNamedPaperHasItsSize) {
  constexpr NamedPaper kPapers[] = {
      {"a4", 210, 297},          {"a5", 148, 210},
      {"a6", 105, 148},          {"jis-b5", 182, 257},
      {"jis-b6", 128, 182},      {"letter", 215.9, 279.4},
      {"legal", 215.9, 355.6},   {"executive", 184.15, 266.7},
      {"folio", 215.9, 330.2},   {"photo-4x6", 101.6, 152.4},
      {"photo-5x7", 127, 177.8}, {"index-card", 127, 203.2},
      {"postcard", 100, 148},
  };
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawText(850, 1400, 100, 1)), "--reload"});
  for (const NamedPaper& paper : kPapers) {
    SCOPED_TRACE(paper.name);
    ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "mono", "--resolution", "100", "--page-size",
                                                      paper.name, "-o", file("page.pdf")})));
    const auto pages = readPdf(file("page.pdf"));
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_NEAR(pages[0].widthMm, paper.widthMm, kToleranceMm);
    EXPECT_NEAR(pages[0].heightMm, paper.heightMm, kToleranceMm);
  }
}

TEST_F(Documents, ASheetOfUnknownSizeIsFoundByTheDevice) {
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawColor(709, 947, 300, 2)), "--reload"});
  for (const char* mode : {"color", "gray", "mono"}) {
    SCOPED_TRACE(mode);
    ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", mode, "--page-size", "auto", "-o", file("page.png")})));
    expectSize(readPng(file("page.png")), 300, mm(709, 300), mm(947, 300));
  }
}

TEST_F(Documents, AnAreaHasItsSizeAtEveryResolution) {
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawColor(1240, 1748, 300, 3)), "--reload"});
  for (const int dpi : {100, 150, 200, 300, 600}) {
    SCOPED_TRACE(dpi);
    ASSERT_TRUE(
        endedWith(0, scan(scanner.address(), {"--page-size", "a6", "--resolution", std::to_string(dpi), "-l", "10",
                                              "-t", "20", "-x", "61.5", "-y", "83.25", "-o", file("page.png")})));
    expectSize(readPng(file("page.png")), dpi, 61.5, 83.25);
  }
}

TEST_F(Documents, StandardOutputTakesTheFile) {
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawText(709, 947, 300, 5)), "--reload"});
  const Arguments arguments = {"--mode", "mono", "--page-size", paperOf(709, 947, 300), "-o"};
  const auto to = [&](const std::string& path, const std::string& format) {
    Arguments all = arguments;
    all.insert(all.end(), {path, "--format", format});
    return scan(scanner.address(), all);
  };
  const Finished png = to("-", "png");
  ASSERT_TRUE(endedWith(0, png));
  ASSERT_TRUE(endedWith(0, to(file("page.png"), "png")));
  EXPECT_EQ(png.out, contentOf(file("page.png")));

  const Finished pdf = to("-", "pdf");
  ASSERT_TRUE(endedWith(0, pdf));
  writeBytes(file("out.pdf"), {pdf.out.begin(), pdf.out.end()});
  EXPECT_EQ(difference(readPng(file("page.png")), readPdf(file("out.pdf")).at(0).picture), "");
}

// At a third of the sheet's resolution every dot is the mean of nine: words stay where they were.
TEST_F(Documents, ASheetScannedCoarselyStaysInPlace) {
  const Picture drawn = drawText(1200, 1800, 300, 4);
  Picture means(400, 600, 1, 100);
  for (int y = 0; y < 600; ++y) {
    for (int x = 0; x < 400; ++x) {
      int sum = 4;
      for (int i = 0; i < 9; ++i) sum += *drawn.at(3 * x + i % 3, 3 * y + i / 3);
      *means.at(x, y) = static_cast<std::uint8_t>(sum / 9);
    }
  }
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn), "--set", "compressType[2]=3"});
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "gray", "--resolution", "100", "--page-size", "photo-4x6",
                                                    "-o", file("page.png")})));
  EXPECT_GE(psnrDb(means, readPng(file("page.png"))), 45);
}

}  // namespace
}  // namespace e2e
