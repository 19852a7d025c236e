// The pages of a second-generation scan, as a host receives them.
#include "session_fixture.h"

namespace vscan {
namespace {

using test::Host;
using test::kGreyJpeg;
using test::kGreyLines;
using test::patternOf;
using test::ReceivedPage;
using test::ReceivedScan;
using test::SessionTest;
using test::unpacked;

TEST_F(SessionTest, AGreyPageOfPackedLinesHasThePixelsOfTheSheet) {
  const Raster picture = patternOf(123, 77, 1);
  serve({office_, Feeder(sheets({picture}), false, false), {}, options_});
  Host host = connect();
  const ReceivedScan received = scan(host, kGreyLines);
  EXPECT_EQ(received.endResult, 0);
  EXPECT_EQ(received.endStatus, 0x20);
  ASSERT_EQ(received.pages.size(), 1u);
  const ReceivedPage& page = received.pages.at(1);
  EXPECT_EQ(page.formatByte, 0x0C);
  EXPECT_EQ(page.data.size(), 77u);
  EXPECT_EQ(page.heightsSoFar.back(), 77u);
  EXPECT_EQ(unpacked(page), picture.pixels);
  EXPECT_EQ(page.statuses.back(), 0x21);
}

TEST_F(SessionTest, ColourAndGreyComeOutAlikeOnEachLosslessRoad) {
  const Raster picture = patternOf(60, 50, 3);
  const struct {
    const char* name;
    const char* color;
    const char* compression;
    bool rawLines;
    int formatByte;
  } rows[] = {
      {"colour uncompressed", "C24BIT", "NONE", false, 0x05},
      {"colour packed", "C24BIT", "RLENGTH", false, 0x0D},
      {"colour packed, sent raw", "C24BIT", "RLENGTH", true, 0x05},
      {"grey uncompressed", "GRAY256", "NONE", false, 0x04},
      {"grey packed", "GRAY256", "RLENGTH", false, 0x0C},
      {"grey packed, sent raw", "GRAY256", "RLENGTH", true, 0x04},
  };
  for (const auto& row : rows) {
    options_.page.rawLines = row.rawLines;
    serve({office_, Feeder(sheets({picture}), false, false), {}, options_});
    Host host = connect();
    const ReceivedScan received = scan(host, {{"CLR", row.color}, {"COMP", row.compression}});
    const ReceivedPage& page = received.pages.at(1);
    EXPECT_EQ(page.formatByte, row.formatByte) << row.name;
    const bool isPacked = (row.formatByte & 0x08) != 0;
    const Bytes pixels = isPacked ? unpacked(page) : page.joined();
    if ((row.formatByte & 7) == 5) {
      EXPECT_EQ(pixels, picture.pixels) << row.name;
    } else {
      EXPECT_EQ(pixels.size(), 60u * 50u) << row.name;
    }
    stop();
  }
}

TEST_F(SessionTest, WhiteLinesOfAMonoPageGoWithoutData) {
  Raster picture(16, 6, 1, 255);
  for (int x = 0; x < 16; ++x) picture.line(3)[x] = 0;
  for (const bool whiteLines : {true, false}) {
    options_.whiteLinesInMono = whiteLines;
    serve({office_, Feeder(sheets({picture}), false, false), {}, options_});
    Host host = connect();
    const ReceivedPage page = scan(host, {{"CLR", "TEXT"}, {"COMP", "RLENGTH"}}).pages.at(1);
    ASSERT_EQ(page.data.size(), 6u);
    EXPECT_EQ(page.formatByte, 0x09);
    EXPECT_EQ(test::unpackBits(page.data[3]), (Bytes{0, 0}));
    EXPECT_EQ(page.data[0].empty(), whiteLines);
    EXPECT_EQ(page.statuses[0], whiteLines ? 0x00 : 0x01);
    stop();
  }
}

TEST_F(SessionTest, AColourPageComesAsJpegBlocks) {
  Raster picture = patternOf(900, 700, 3);
  serve({office_, Feeder(sheets({picture}), false, false), {}, options_});
  Host host = connect();
  const ReceivedPage page = scan(host, {{"RATE", "0"}, {"JSF", "444"}}).pages.at(1);
  EXPECT_EQ(page.formatByte, 0x15);
  EXPECT_GT(page.data.size(), 2u);
  EXPECT_EQ(page.heightsSoFar.back(), 700u);
  EXPECT_EQ(test::decodeJpeg(page.joined()).picture.widthPx, 900);
  EXPECT_LT(test::differenceOf(test::decodeJpeg(page.joined()).picture, picture).mean, 6);
}

TEST_F(SessionTest, OnlyAnAutomaticSizeIsToldAndOnlyBehindTheData) {
  serve({office_, Feeder(sheets({patternOf(50, 40, 1)}), false, true), {}, options_});
  Host host = connect();
  const ReceivedPage automatic = scan(host, kGreyLines, "AUTO").pages.at(1);
  EXPECT_EQ(automatic.sizeWidth, 50u);
  EXPECT_EQ(automatic.sizeHeight, 40u);
  ASSERT_EQ(automatic.statuses.size(), 42u);
  EXPECT_EQ(automatic.statuses[40], 0x11);
  const ReceivedPage fixed = scan(host, kGreyLines, "0,0,100,30").pages.at(1);
  EXPECT_EQ(std::count(fixed.statuses.begin(), fixed.statuses.end(), 0x11), 0);
  EXPECT_EQ(fixed.data.size(), 30u);
}

TEST_F(SessionTest, BothSidesTakeTheFilesAsFrontAndBack) {
  const std::vector<Raster> pictures = {patternOf(20, 10, 1), patternOf(21, 11, 1), patternOf(22, 12, 1)};
  const struct {
    const char* name;
    const char* sides;
    bool blankBacks;
    const char* maxSheets;
    std::vector<int> heights;  // of the pages that come
  } rows[] = {
      {"fronts only", "OFF", false, "0", {10, 11, 12}},
      {"both sides, the last back is white", "ON", false, "0", {10, 11, 12, 12}},
      {"backs only", "BACK", false, "0", {11, 12}},
      {"one sheet of both sides", "ON", false, "1", {10, 11}},
      {"two sheets of one side", "OFF", false, "2", {10, 11}},
      {"white backs", "ON", true, "0", {10, 10, 11, 11, 12, 12}},
      {"white backs, fronts only", "OFF", true, "0", {10, 11, 12}},
  };
  for (const auto& row : rows) {
    serve({office_, Feeder(sheets(pictures), row.blankBacks, false), {}, options_});
    Host host = connect();
    auto settings = kGreyLines;
    settings["DPLX"] = row.sides;
    settings["PAGE"] = row.maxSheets;
    const ReceivedScan received = scan(host, settings);
    std::vector<int> heights;
    for (const auto& [number, page] : received.pages) {
      EXPECT_EQ(number, static_cast<int>(heights.size()) + 1) << row.name;
      heights.push_back(static_cast<int>(page.data.size()));
    }
    EXPECT_EQ(heights, row.heights) << row.name;
    stop();
  }
}

TEST_F(SessionTest, TheFeederEmptiesUnlessItReloads) {
  for (const bool reloads : {false, true}) {
    serve({office_, Feeder(sheets({patternOf(9, 9, 1), patternOf(9, 9, 1)}), false, reloads), {}, options_});
    Host host = connect();
    auto oneSheet = kGreyLines;
    oneSheet["PAGE"] = "1";
    EXPECT_EQ(scan(host, oneSheet).pages.size(), 1u);
    EXPECT_EQ(scan(host, kGreyLines).pages.size(), reloads ? 2u : 1u);
    const ReceivedScan third = scan(host, kGreyLines);
    EXPECT_EQ(third.endResult, reloads ? 0x00 : 0x90);
    stop();
  }
}

TEST_F(SessionTest, WithNothingAnywhereTheFeederIsEmptyAndTheBedByNameIsWhite) {
  serve({office_, Feeder({}, false, false), {}, options_});
  Host host = connect();
  const ReceivedScan automatic = scan(host, kGreyLines);
  EXPECT_EQ(automatic.endResult, 0x90);
  EXPECT_TRUE(automatic.pages.empty());
  auto bed = kGreyLines;
  bed["PSRC"] = "FB";
  const ReceivedScan white = scan(host, bed, "0,0,8,2");
  EXPECT_EQ(unpacked(white.pages.at(1)), Bytes(16, 255));
}

TEST_F(SessionTest, TheBedServesWhenTheFeederIsEmpty) {
  const Raster picture = patternOf(30, 20, 1);
  serve({office_, Feeder({}, false, false), sheets({picture}).front(), options_});
  Host host = connect();
  const ReceivedScan received = scan(host, kGreyLines, "0,0,30,20");
  EXPECT_EQ(unpacked(received.pages.at(1)), picture.pixels);
}

TEST_F(SessionTest, ABlankPageIsNamedAndThenEndedAsBlank) {
  serve({office_, Feeder(sheets({Raster(20, 10, 1, 255), patternOf(20, 10, 1)}), false, false), {}, options_});
  Host host = connect();
  auto settings = kGreyJpeg;
  settings["RMBP"] = "ON";
  const ReceivedScan received = scan(host, settings, "1200,0,1300,100");
  EXPECT_EQ(received.pages.at(1).statuses, (std::vector<std::uint8_t>{0x11, 0x22}));
  EXPECT_EQ(received.pages.at(2).statuses, (std::vector<std::uint8_t>{0x02, 0x21}));
}

TEST_F(SessionTest, AnAutomaticColourScanTellsTheColourOfEachPageBehindItsData) {
  serve({office_, Feeder(sheets({patternOf(20, 10, 3), Raster(20, 10, 3, 128)}), false, false), {}, options_});
  Host host = connect();
  const ReceivedScan received = scan(host, {{"CLR", "AUTO"}}, "1265,0,1285,10");
  EXPECT_EQ(received.pages.at(1).statuses, (std::vector<std::uint8_t>{0x02, 0x12, 0x21}));
  EXPECT_EQ(received.pages.at(1).checkedFormat, 0x15);
  EXPECT_EQ(received.pages.at(1).formatByte, 0x15);
  EXPECT_EQ(received.pages.at(2).checkedFormat, 0x14);
  EXPECT_EQ(received.pages.at(2).formatByte, 0x14);
  EXPECT_EQ(received.pages.at(2).statuses, (std::vector<std::uint8_t>{0x02, 0x12, 0x21}));
}

TEST_F(SessionTest, DripsArriveAsTheSameStream) {
  const Raster picture = patternOf(50, 40, 1);
  options_.drip.chunkBytes = 3;
  serve({office_, Feeder(sheets({picture}), false, true), {}, options_});
  Host host = connect();
  EXPECT_EQ(unpacked(scan(host, kGreyLines).pages.at(1)), picture.pixels);
}

TEST_F(SessionTest, ABrokenSheetEndsTheScanWithAnInternalFaultAndIsEjected) {
  auto faces = sheets({patternOf(50, 40, 1), patternOf(30, 20, 1)});
  test::writeFile(faces[0].file->path(), "no picture any more");
  serve({office_, Feeder(faces, false, false), {}, options_});
  Host host = connect();
  EXPECT_EQ(scan(host, kGreyLines).endResult, 0x84);
  EXPECT_EQ(scan(host, kGreyLines).pages.size(), 1u);
}

}  // namespace
}  // namespace vscan
