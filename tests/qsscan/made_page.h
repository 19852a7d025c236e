// Pages for the writers, the same picture as a fake library delivers.
#pragma once

#include "apps/qsscan/page.h"
#include "fake_scan_core.h"

namespace qsscan_test {

inline qsscan::Page makePage(int widthPx, int heightPx, int bitsPerPixel, int dpi = 300, int number = 1) {
  FakePage fake;
  fake.widthPx = widthPx;
  fake.heightPx = heightPx;
  fake.bitsPerPixel = bitsPerPixel;
  fake.dpi = dpi;
  std::vector<std::uint8_t> bytes = fake.file();
  return qsscan::copyPage(fake.describe(bytes), number, dpi).value();
}

}  // namespace qsscan_test
