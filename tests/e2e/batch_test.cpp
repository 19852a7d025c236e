// Many pages: one side and both, long batches, scan after scan, several scanners.
#include <algorithm>
#include <cstdio>

#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

constexpr int kWidthPx = 709;
constexpr int kHeightPx = 947;

class Batch : public ScanTest {
 protected:
  // Sheets that all differ, as files for the feeder.
  Arguments drawSheets(int count, Picture (*draw)(int, int, double, unsigned) = drawText) {
    Arguments paths;
    for (int i = 0; i < count; ++i) {
      drawn_.push_back(draw(kWidthPx, kHeightPx, 300, static_cast<unsigned>(100 + i)));
      paths.push_back(sheet("sheet" + std::to_string(i + 1) + ".png", drawn_.back()));
    }
    return paths;
  }

  static Arguments with(Arguments arguments, const Arguments& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  Picture page(int number) const { return readPng(file("page" + std::to_string(number) + ".png")); }
  Arguments toPages(const Arguments& more) const {
    return with({"--page-size", paperOf(kWidthPx, kHeightPx, 300), "--batch", file("page%d.png")}, more);
  }

  std::vector<Picture> drawn_;
};

// What the device offers for grey: lines only, so that pages can be compared exactly.
const Arguments kGreyByLines = {"--set", "compressType[2]=3"};

TEST_F(Batch, OneSideTakesEachPageOfTheStackAsASheet) {
  VirtualScanner& scanner = startScanner(with(drawSheets(3), kGreyByLines));
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--mode", "gray"}))));
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(difference(drawn_[static_cast<std::size_t>(i - 1)], page(i)), "") << "page " << i;
  }
  EXPECT_FALSE(exists("page4.png"));
}

TEST_F(Batch, BothSidesAlternateFrontAndBack) {
  VirtualScanner& scanner = startScanner(with(drawSheets(4), kGreyByLines));
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--mode", "gray", "--source", "adf-duplex"}))));
  EXPECT_TRUE(scanner.wasTold("DPLX=ON"));
  for (int i = 1; i <= 4; ++i) {
    EXPECT_EQ(difference(drawn_[static_cast<std::size_t>(i - 1)], page(i)), "") << "page " << i;
  }
}

TEST_F(Batch, TheBackThatAStackLacksIsWhite) {
  VirtualScanner& scanner = startScanner(with(drawSheets(3), kGreyByLines));
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--mode", "gray", "--duplex"}))));
  EXPECT_EQ(difference(drawn_[2], page(3)), "");
  EXPECT_EQ(difference(Picture(kWidthPx, kHeightPx, 1, 300), page(4)), "");
}

TEST_F(Batch, BoundAtTheShortEdgeEvenGreyPagesAreTurned) {
  VirtualScanner& scanner = startScanner(with(drawSheets(4), kGreyByLines));
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--mode", "gray", "--duplex", "--binding", "short"}))));
  for (int i = 1; i <= 4; ++i) {
    const Picture& face = drawn_[static_cast<std::size_t>(i - 1)];
    EXPECT_EQ(difference(i % 2 == 0 ? turnedHalfway(face) : face, page(i)), "") << "page " << i;
  }
}

// The bits of a line that is no whole number of bytes must move when they are turned.
TEST_F(Batch, BoundAtTheShortEdgeEvenBlackAndWhitePagesAreTurned) {
  VirtualScanner& scanner = startScanner(drawSheets(2));
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--mode", "mono", "--duplex", "--binding", "short"}))));
  EXPECT_EQ(difference(blackAndWhite(drawn_[0], 128), page(1)), "");
  EXPECT_EQ(difference(blackAndWhite(turnedHalfway(drawn_[1]), 128), page(2)), "");
}

TEST_F(Batch, BoundAtTheShortEdgeEvenColorPagesAreTurned) {
  VirtualScanner& scanner = startScanner(with(drawSheets(2, drawColor), {"--reload"}));
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--duplex", "--binding", "long"}))));
  const Picture front = page(1);
  const Picture back = page(2);
  EXPECT_GE(psnrDb(drawn_[1], back), 30);
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--duplex", "--binding", "short"}))));
  EXPECT_EQ(difference(front, page(1)), "");
  EXPECT_EQ(difference(turnedHalfway(back), page(2)), "");
}

TEST_F(Batch, OnlyTheWishedPagesAreTaken) {
  VirtualScanner& scanner = startScanner(with(drawSheets(4), kGreyByLines));
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--mode", "gray", "--pages", "2"}))));
  EXPECT_EQ(difference(drawn_[1], page(2)), "");
  EXPECT_FALSE(exists("page3.png"));
  // The others are still in the feeder.
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--mode", "gray"}))));
  EXPECT_EQ(difference(drawn_[2], page(1)), "");
  EXPECT_EQ(difference(drawn_[3], page(2)), "");
}

TEST_F(Batch, PagesOfOneNameAreNumbered) {
  VirtualScanner& scanner = startScanner(with(drawSheets(2), kGreyByLines));
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "gray", "--page-size", paperOf(kWidthPx, kHeightPx, 300),
                                                    "-o", file("letter.png")})));
  EXPECT_EQ(difference(drawn_[0], readPng(file("letter-001.png"))), "");
  EXPECT_EQ(difference(drawn_[1], readPng(file("letter-002.png"))), "");
  EXPECT_FALSE(exists("letter.png"));
}

// More pages than the library holds at a time, written more slowly than they come.
TEST_F(Batch, ALongBatchArrivesWholeAndInOrder) {
  constexpr int kPages = 60;
  std::vector<Picture> drawn;
  for (int i = 0; i < kPages; ++i) drawn.push_back(drawText(600, 800, 100, static_cast<unsigned>(i)));
  writeTiff(file("stack.tif"), drawn);
  VirtualScanner& scanner = startScanner(with({file("stack.tif")}, kGreyByLines));
  ASSERT_TRUE(
      endedWith(0, scan(scanner.address(), {"--mode", "gray", "--resolution", "100", "--compression", "lossless",
                                            "--page-size", paperOf(600, 800, 100), "-o", file("long.pdf")})));
  const auto pages = readPdf(file("long.pdf"));
  ASSERT_EQ(pages.size(), drawn.size());
  for (std::size_t i = 0; i < pages.size(); ++i) {
    ASSERT_EQ(difference(drawn[i], pages[i].picture), "") << "page " << i + 1;
  }
}

TEST_F(Batch, TenA4SheetsInColorMakeOnePdf) {
  // One page, and on each sheet a dark field of its own.
  constexpr int kSheets = 10;
  const Picture base = drawColor(2480, 3508, 300, 9);
  Arguments paths;
  std::vector<Picture> drawn;
  for (int i = 0; i < kSheets; ++i) {
    Picture picture = base;
    for (int y = 300 * i; y < 300 * i + 250; ++y) std::fill_n(picture.at(200, y), 3 * 2000, std::uint8_t{90});
    paths.push_back(file("sheet" + std::to_string(i) + ".jpg"));
    writeBytes(paths.back(), encodeJpeg(picture, 95, 1, 1));
    drawn.push_back(std::move(picture));
  }
  VirtualScanner& scanner = startScanner(paths);
  const auto run = scan(scanner.address(), {"--page-size", "a4", "--progress=json", "-o", file("batch.pdf")});
  ASSERT_TRUE(endedWith(0, run));

  const auto pages = readPdf(file("batch.pdf"));
  ASSERT_EQ(pages.size(), static_cast<std::size_t>(kSheets));
  for (std::size_t i = 0; i < pages.size(); ++i) {
    EXPECT_GE(psnrDb(drawn[i], pages[i].picture), 30) << "page " << i + 1;
    EXPECT_NEAR(pages[i].widthMm, 210, 0.5);
    EXPECT_NEAR(pages[i].heightMm, 297, 0.5);
  }
  RecordProperty("pagesPerMinute", static_cast<int>(kSheets * 60 / run.exit.seconds));
  RecordProperty("peakMib", static_cast<int>(run.exit.peakKib / 1024));
  std::printf("%d A4 pages at 300 dpi: %.1f s, %.0f pages per minute, peak memory %ld MiB\n", kSheets, run.exit.seconds,
              kSheets * 60 / run.exit.seconds, run.exit.peakKib / 1024);
}

TEST_F(Batch, OneScannerServesScanAfterScan) {
  VirtualScanner& scanner = startScanner(with(with(drawSheets(2), kGreyByLines), {"--reload"}));
  for (int round = 0; round < 3; ++round) {
    SCOPED_TRACE(round);
    ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--mode", "gray"}))));
    EXPECT_EQ(difference(drawn_[0], page(1)), "");
    EXPECT_EQ(difference(drawn_[1], page(2)), "");
    ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--mode", "mono", "--duplex"}))));
    EXPECT_EQ(difference(blackAndWhite(drawn_[1], 128), page(2)), "");
    ASSERT_TRUE(endedWith(0, scan(scanner.address(), toPages({"--mode", "color", "--resolution", "100"}))));
    EXPECT_EQ(page(1).channels, 3);
  }
}

TEST_F(Batch, TwoScannersServeTwoHostsAtOnce) {
  const Arguments sheets = drawSheets(4);
  VirtualScanner& one = startScanner(with({sheets[0], sheets[1]}, kGreyByLines));
  VirtualScanner& other = startScanner(with({sheets[2], sheets[3]}, kGreyByLines));
  const std::string paper = paperOf(kWidthPx, kHeightPx, 300);
  const auto first = startScan(one.address(), {"--mode", "gray", "--page-size", paper, "--batch", file("one%d.png")});
  const auto second =
      startScan(other.address(), {"--mode", "gray", "--page-size", paper, "--batch", file("other%d.png")});
  EXPECT_TRUE(endedWith(0, finish(*first)));
  EXPECT_TRUE(endedWith(0, finish(*second)));
  EXPECT_EQ(difference(drawn_[0], readPng(file("one1.png"))), "");
  EXPECT_EQ(difference(drawn_[1], readPng(file("one2.png"))), "");
  EXPECT_EQ(difference(drawn_[2], readPng(file("other1.png"))), "");
  EXPECT_EQ(difference(drawn_[3], readPng(file("other2.png"))), "");
}

}  // namespace
}  // namespace e2e
