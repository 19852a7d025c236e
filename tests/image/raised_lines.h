// The lines of a finished page through a resampler of the test's own: every line after the other in the order of the
// memory, each cut to its length, the flush behind them as one block.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "image/QvChangeReso.h"
#include "scan_types.h"
#include "tests/fakes/test_bmp.h"

namespace fakes {

struct RaisedLines {
  int width = 0;
  int height = 0;
  ByteVector pixels;
};

inline RaisedLines raiseLines(int width, int bpp, const ByteVector& pixels, orvalle_scan_api::AXIS from,
                              orvalle_scan_api::AXIS to) {
  const std::size_t lineBytes = lineBytesOf(width, bpp);
  CHRESO_OPEN open{};
  open.inResoX = static_cast<int>(from.x);
  open.inResoY = static_cast<int>(from.y);
  open.outResoX = static_cast<int>(to.x);
  open.outResoY = static_cast<int>(to.y);
  open.formatFlags = bpp == 1 ? 0x101 : bpp == 8 ? 0x208 : 0x420;
  open.inLinePixels = static_cast<unsigned long>(width);
  open.colorOrder = 3;
  CQvChangeReso reso;
  EXPECT_TRUE(reso.ChangeResoInit(&open));
  EXPECT_EQ(reso.ChangeResoWriteStart(), 1);
  RaisedLines raised{static_cast<int>(open.outPixels), 0, {}};
  ByteVector buffer(open.writeBufferSize + 64);
  CHRESO_WRITE write{static_cast<int>(open.formatFlags), nullptr, lineBytes, buffer.data(), buffer.size(), false};
  const std::size_t outBytes = lineBytesOf(raised.width, bpp);
  for (std::size_t at = 0; at < pixels.size(); at += lineBytes) {
    write.lineData = pixels.data() + at;
    int lines = 0;
    const int bytes = reso.ChangeResoWrite(&write, &lines);
    for (int line = 0; bytes > 0 && line < lines; ++line) {
      const auto first = buffer.begin() + bytes / lines * line;
      raised.pixels.insert(raised.pixels.end(), first, first + static_cast<std::ptrdiff_t>(outBytes));
    }
    raised.height += bytes > 0 ? lines : 0;
  }
  int lines = 0;
  const int bytes = reso.ChangeResoWriteEnd(&write, &lines);
  raised.pixels.insert(raised.pixels.end(), buffer.begin(), buffer.begin() + std::max(0, bytes));
  const auto inLines = static_cast<unsigned>(pixels.size() / lineBytes);
  raised.height = bytes > 0 ? raised.height + lines : static_cast<int>(inLines * to.y / from.y);
  raised.pixels.resize(outBytes * static_cast<std::size_t>(raised.height), 0xFF);
  return raised;
}

}  // namespace fakes
