// Roads by JPEG: the pixels are those of the JPEG that the device has sent, and close to the sheet's.
#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

constexpr double kCloseDb = 30;

class Jpeg : public ScanTest {
 protected:
  // What the device makes of a sheet when it is asked for RATE=50 and JSF=420, as its description tells.
  static Picture sentByTheDevice(const Picture& drawn) {
    const int luminance = drawn.channels == 3 ? 2 : 1;
    const auto file = encodeJpeg(drawn, 85, luminance, luminance);
    return decodeJpeg(file.data(), file.size());
  }

  Picture scanToPng(VirtualScanner& scanner, const std::string& mode, const Picture& drawn) {
    const auto run = scan(scanner.address(), {"--mode", mode, "--page-size",
                                              paperOf(drawn.widthPx, drawn.heightPx, static_cast<int>(drawn.dpi)), "-o",
                                              file("page.png")});
    EXPECT_TRUE(endedWith(0, run));
    return readPng(file("page.png"));
  }
};

TEST_F(Jpeg, AColorPageHasThePixelsThatTheDeviceSent) {
  const Picture drawn = drawColor(1200, 1800, 300, 1);
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn), "--reload"});
  const Picture page = scanToPng(scanner, "color", drawn);
  EXPECT_EQ(difference(sentByTheDevice(drawn), page), "");
  EXPECT_GE(psnrDb(drawn, page), kCloseDb);
  EXPECT_TRUE(scanner.wasTold("COMP=JPEG"));
  EXPECT_EQ(difference(page, scanToPng(scanner, "color", drawn)), "") << "the second scan of the same sheet";
}

TEST_F(Jpeg, AColorPageOfOddWidthHasThePixelsThatTheDeviceSent) {
  const Picture drawn = drawColor(709, 947, 300, 2);
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn)});
  const Picture page = scanToPng(scanner, "color", drawn);
  EXPECT_EQ(difference(sentByTheDevice(drawn), page), "");
  EXPECT_GE(psnrDb(drawn, page), kCloseDb);
}

TEST_F(Jpeg, AGreyPageHasThePixelsThatTheDeviceSent) {
  const Picture drawn = drawText(709, 947, 300, 3);
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn)});
  const Picture page = scanToPng(scanner, "gray", drawn);
  EXPECT_TRUE(scanner.wasTold("COMP=JPEG"));
  EXPECT_EQ(difference(sentByTheDevice(drawn), page), "");
  EXPECT_GE(psnrDb(drawn, page), kCloseDb);
}

TEST_F(Jpeg, AWholeA4PageIsCloseToTheSheet) {
  const Picture drawn = drawColor(2480, 3508, 300, 4);
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn)});
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--page-size", "a4", "-o", file("page.pdf")})));
  const auto pages = readPdf(file("page.pdf"));
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_EQ(pages[0].filter, "/DCTDecode");
  EXPECT_EQ(pages[0].picture.channels, 3);
  EXPECT_GE(psnrDb(drawn, pages[0].picture), kCloseDb);
}

TEST_F(Jpeg, APdfWithoutFurtherLossHoldsWhatTheDeviceSent) {
  const Picture drawn = drawColor(709, 947, 300, 5);
  VirtualScanner& scanner = startScanner({sheet("sheet.png", drawn)});
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--compression", "lossless", "--page-size", paperOf(709, 947, 300),
                                                    "-o", file("page.pdf")})));
  EXPECT_EQ(difference(sentByTheDevice(drawn), readPdf(file("page.pdf")).at(0).picture), "");
}

TEST_F(Jpeg, AJpegFileIsCloseToTheSheet) {
  const Picture color = drawColor(709, 947, 300, 6);
  const Picture grey = drawText(709, 947, 300, 6);
  VirtualScanner& scanner = startScanner({sheet("c.png", color), sheet("g.png", grey)});
  ASSERT_TRUE(endedWith(
      0, scan(scanner.address(), {"--page-size", paperOf(709, 947, 300), "--pages", "1", "-o", file("color.jpg")})));
  EXPECT_GE(psnrDb(color, readJpeg(file("color.jpg"))), kCloseDb);
  ASSERT_TRUE(endedWith(
      0, scan(scanner.address(), {"--mode", "gray", "--page-size", paperOf(709, 947, 300), "-o", file("grey.jpg")})));
  EXPECT_GE(psnrDb(grey, readJpeg(file("grey.jpg"))), kCloseDb);
}

TEST_F(Jpeg, SheetsOfOtherFileFormatsArriveToo) {
  const Picture drawn = drawColor(709, 947, 300, 7);
  writeBytes(file("sheet.jpg"), encodeJpeg(drawn, 95, 1, 1));
  writeTiff(file("sheets.tif"), {drawn, drawText(709, 947, 300, 7)});
  VirtualScanner& scanner = startScanner({file("sheet.jpg"), file("sheets.tif")});
  ASSERT_TRUE(
      endedWith(0, scan(scanner.address(), {"--page-size", paperOf(709, 947, 300), "--batch", file("page%d.png")})));
  EXPECT_GE(psnrDb(drawn, readPng(file("page1.png"))), kCloseDb);
  EXPECT_EQ(difference(sentByTheDevice(drawn), readPng(file("page2.png"))), "");
  EXPECT_TRUE(exists("page3.png"));
}

}  // namespace
}  // namespace e2e
