// Roads without loss: what the sheet shows arrives sample for sample.
#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

class Lossless : public ScanTest {};

TEST_F(Lossless, GreyComesAsPackBitsLines) {
  const Picture drawn = drawText(1200, 1800, 300, 1);
  VirtualScanner& scanner = startScanner({sheet("s.png", drawn), "--set", "compressType[2]=3"});
  ASSERT_TRUE(
      endedWith(0, scan(scanner.address(), {"--mode", "gray", "--page-size", "photo-4x6", "-o", file("o.png")})));
  EXPECT_EQ(difference(drawn, readPng(file("o.png"))), "");
  EXPECT_EQ(readPng(file("o.png")).dpi, 300);
}

}  // namespace
}  // namespace e2e
