// The same pages over every line: another kind of socket, and a stream cut into pieces of any size.
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

class Line : public ScanTest {};

TEST_F(Line, AUnixSocketCarriesAScan) {
  const Picture drawn = drawText(709, 947, 300, 1);
  VirtualScanner& scanner =
      startScanner({sheet("sheet.png", drawn), "--set", "compressType[2]=3", "--unix", file("scanner.socket")});
  EXPECT_EQ(scanner.address(), "unix:" + file("scanner.socket"));
  ASSERT_TRUE(endedWith(
      0, scan(scanner.address(), {"--mode", "gray", "--page-size", paperOf(709, 947, 300), "-o", file("page.png")})));
  EXPECT_EQ(difference(drawn, readPng(file("page.png"))), "");
}

struct Piece {
  int bytes;
  const char* mode;
};

class ShortWrites : public ScanTest, public ::testing::WithParamInterface<Piece> {};

// Frames, record heads and bodies are cut everywhere. The reference is the page over a line that cuts nothing.
TEST_P(ShortWrites, ChangeNothing) {
  const auto [bytes, mode] = GetParam();
  const bool isSmall = bytes < 1000;
  const int widthPx = isSmall ? 211 : 1240;
  const int heightPx = isSmall ? 203 : 1748;
  const Picture drawn = drawColor(widthPx, heightPx, isSmall ? 100 : 300, 1);
  const Arguments arguments = {"--mode",
                               mode,
                               "--resolution",
                               isSmall ? "100" : "300",
                               "--page-size",
                               paperOf(widthPx, heightPx, isSmall ? 100 : 300),
                               "-o"};
  const std::string path = sheet("sheet.png", drawn);
  const Arguments lines = {path, path, "--set", "compressType[2]=3"};
  const auto scanTo = [&](const Arguments& more, const std::string& name) {
    Arguments all = lines;
    all.insert(all.end(), more.begin(), more.end());
    VirtualScanner& scanner = startScanner(all);
    all = arguments;
    all.push_back(file(name));
    return endedWith(0, scan(scanner.address(), all));
  };
  ASSERT_TRUE(scanTo({}, "whole.png"));
  ASSERT_TRUE(scanTo({"--drip", std::to_string(bytes)}, "cut.png"));
  for (const char* number : {"-001", "-002"}) {
    EXPECT_EQ(difference(readPng(file(std::string("whole") + number + ".png")),
                         readPng(file(std::string("cut") + number + ".png"))),
              "");
  }
  EXPECT_EQ(readPng(file("whole-001.png")).widthPx, widthPx);
}

std::vector<Piece> pieces() {
  std::vector<Piece> all;
  for (const int bytes : {1, 2, 3, 4, 5, 6, 7, 1000}) {
    for (const char* mode : {"color", "gray", "mono"}) all.push_back({bytes, mode});
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(Pieces, ShortWrites, ::testing::ValuesIn(pieces()), [](const auto& info) {
  return "Of" + std::to_string(info.param.bytes) + "Bytes" + info.param.mode;
});

}  // namespace
}  // namespace e2e
