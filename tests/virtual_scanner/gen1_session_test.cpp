// Whole conversations of the first generation.
#include <algorithm>

#include "gen1_host.h"
#include "session_fixture.h"

namespace vscan {
namespace {

using test::FirstPage;
using test::FirstScan;
using test::Host;
using test::patternOf;
using test::questionFrame;
using test::receiveFirstScan;
using test::receiveText;
using test::startFrame1;

class FirstSessionTest : public test::SessionTest {
 protected:
  // X and the stream.
  FirstScan scanFirst(Host& host, const std::map<std::string, std::string>& changes = {}) {
    host.send(startFrame1(changes));
    return receiveFirstScan(host);
  }

  Device classicWith(const std::vector<Raster>& pictures, bool reloads = false) {
    return {classic_, Feeder(sheets(pictures), false, reloads), {}, options_};
  }
};

Bytes unpackedLines(const FirstPage& page) {
  Bytes all;
  for (const Bytes& line : page.data) {
    const Bytes plain = test::unpackBits(line);
    all.insert(all.end(), plain.begin(), plain.end());
  }
  return all;
}

// A sheet of 48 pixels in the middle of the 2550 of the feeder.
const std::map<std::string, std::string> kGreySheet = {{"M", "GRAY256"}, {"C", "RLENGTH"}, {"A", "1251,0,1299,40"}};

TEST_F(FirstSessionTest, TheBlockHasEveryFieldInItsPlace) {
  serve(classicWith({}));
  Host host = connect();
  host.send("\x1BQ\n\x80");
  const Bytes expected = {
      0xC1, 0x00, 74,                                           // the length counts itself
      11,   0,    0x1F,                                         // version, colours
      0,    0,    0,    0,    0,    0,    0,    0,    4,    1,  //
      1,    1,    2,    1,                                      // bed left and top, feeder centred and top
      0,    1,    1,    0,                                      // functions, long paper, double feed, carrier sheet
      0,    0,    0,    0,    1,                                //
      1,                                                        // background removal
      0x6F, 0x08, 0x9C, 0x0B,                                   // bed 215.9 x 297.2 mm
      0x6F, 0x08, 0xE4, 0x0D,                                   // feeder 215.9 x 355.6 mm
      0x6F, 0x08, 0xE4, 0x0D,                                   // both sides
      0xFC, 0x01, 0xFC, 0x01, 0xFC, 0x01, 0xFC, 0x01,           // smallest sheets 50.8 mm
      0,    0,    0,    0,                                      // margins
      0,    2,    1,                                            // landscape, card
      0x58, 0x02, 0x58, 0x02, 0x58, 0x02, 0x58, 0x02, 0x58, 0x02, 0x58, 0x02,  // 600 dpi
      15,   50,   0,    0,    0,    0,    0,                                   // 50 sheets
  };
  EXPECT_EQ(host.receive(expected.size()), expected);
}

TEST_F(FirstSessionTest, TheBlockCanBeShorterAndEachFieldCanBeSet) {
  Profile profile = classic_;
  overrideProfile(profile, "blockBytes=3");
  overrideProfile(profile, "version=255");
  serve({profile, Feeder({}, false, false), {}, options_});
  Host host = connect();
  host.send("\x1BQ\n\x80");
  EXPECT_EQ(host.receive(6), (Bytes{0xC1, 0x00, 4, 255, 0, 0x1F}));
  EXPECT_THROW(overrideProfile(profile, "version=32"), std::runtime_error);
}

TEST_F(FirstSessionTest, TheGrantedSettingsAreEchoed) {
  serve(classicWith({patternOf(9, 9, 1)}));
  Host host = connect();
  host.send(questionFrame({{"R", "200,1200"}}));
  EXPECT_EQ(receiveText(host, 0), "200,600,1,2159,1700,3556,8400");
  host.send("\x1BS\nFB\n\x80");
  EXPECT_EQ(host.receive(1), Bytes{0x80});
  host.send(questionFrame({{"R", "10,300"}}));
  EXPECT_EQ(receiveText(host, 0), "50,300,2,2159,425,2972,3510");
}

TEST_F(FirstSessionTest, ThePaperSourceIsCheckedAndSelected) {
  Profile profile = classic_;
  overrideProfile(profile, "flatbedMaxX=0");
  serve({profile, Feeder(sheets({patternOf(9, 9, 1)}), false, false), {}, options_});
  Host host = connect();
  const struct {
    const char* frame;
    int status;
  } rows[] = {{"\x1B"
               "D\nADF\n\x80",
               0x80},
              {"\x1B"
               "D\nFB\n\x80",
               0xC2},
              {"\x1B"
               "D\nAUTO\n\x80",
               0x80},
              {"\x1BS\nADF\n\x80", 0x80},
              {"\x1BS\nFB\n\x80", 0xCB},
              {"\x1BS\nAUTO\n\x80", 0x80},
              {"\x1B"
               "D\nTRAY\n\x80",
               0xCB},
              {"\x1BS\nPSRC=FB\n\x80", 0xCB}};
  for (const auto& row : rows) {
    host.send(row.frame);
    EXPECT_EQ(host.receive(1), Bytes{static_cast<std::uint8_t>(row.status)}) << row.frame;
  }
}

TEST_F(FirstSessionTest, LinesComeWithTheirKindAndThePageEndsWithItsHeight) {
  const Raster picture = patternOf(48, 40, 1);
  const struct {
    const char* compression;
    int header;
  } rows[] = {{"RLENGTH", 0x5E}, {"NONE", 0x5C}};
  for (const auto& row : rows) {
    serve(classicWith({picture, picture}));
    Host host = connect();
    auto settings = kGreySheet;
    settings["C"] = row.compression;
    const FirstScan received = scanFirst(host, settings);
    EXPECT_EQ(received.endStatus, 0x80);
    ASSERT_EQ(received.pages.size(), 2u);
    for (const auto& [number, page] : received.pages) {
      EXPECT_EQ(page.headers, std::vector<int>(40, row.header)) << number;
      EXPECT_EQ(page.heightPx, 40);
      EXPECT_EQ(page.endMarker, 0x85);
      EXPECT_EQ(row.header == 0x5E ? unpackedLines(page) : page.joined(), picture.pixels) << number;
    }
    stop();
  }
}

TEST_F(FirstSessionTest, AMonoPageHasNoWhiteLineRecords) {
  serve(classicWith({Raster(48, 40, 1, 255)}));
  Host host = connect();
  auto settings = kGreySheet;
  settings["M"] = "TEXT";
  const FirstPage page = scanFirst(host, settings).pages.at(1);
  EXPECT_EQ(page.headers, std::vector<int>(40, 0x42));
  EXPECT_EQ(unpackedLines(page), Bytes(40 * 6, 0xFF));
}

TEST_F(FirstSessionTest, AColourPageComesAsJpegBlocks) {
  Raster picture(960, 700, 3);
  for (int y = 0; y < 700; ++y) {
    for (int x = 0; x < 960; ++x) {
      std::uint8_t* const pixel = picture.line(y) + 3 * x;
      pixel[0] = static_cast<std::uint8_t>(x / 4);
      pixel[1] = static_cast<std::uint8_t>(y / 3);
      pixel[2] = static_cast<std::uint8_t>((x * x / 7 + y * y / 5) / 64);
    }
  }
  serve(classicWith({picture}));
  Host host = connect();
  const FirstPage page = scanFirst(host, {{"A", "795,0,1755,700"}}).pages.at(1);
  EXPECT_EQ(page.headers, std::vector<int>(page.data.size(), 0x60));
  EXPECT_EQ(page.heightPx, 700);
  const auto decoded = test::decodeJpeg(page.joined());
  EXPECT_EQ(decoded.picture.widthPx, 960);
  EXPECT_EQ(decoded.dpiX, 300);
  EXPECT_LT(test::differenceOf(decoded.picture, picture).mean, 12);
}

TEST_F(FirstSessionTest, ColourLinesComeInTheOrderThatTheOwnerWants) {
  const Raster picture = patternOf(48, 4, 3);
  for (const ColorLines order : {ColorLines::Rgb, ColorLines::Bgr, ColorLines::Planes}) {
    options_.page.colorLines = order;
    serve(classicWith({picture}));
    Host host = connect();
    const FirstPage page = scanFirst(host, {{"C", "NONE"}, {"A", "1251,0,1299,4"}}).pages.at(1);
    EXPECT_EQ(page.headers.size(), order == ColorLines::Planes ? 12u : 4u);
    EXPECT_EQ(page.joined().size(), picture.pixels.size());
    if (order == ColorLines::Rgb) {
      EXPECT_EQ(page.joined(), picture.pixels);
    }
    stop();
  }
}

TEST_F(FirstSessionTest, APaletteScanSendsNumbersOfThePalette) {
  Raster picture(48, 1, 3, 255);
  picture.pixels[0] = picture.pixels[1] = picture.pixels[2] = 0;
  serve(classicWith({picture}));
  Host host = connect();
  host.send("\x1BP\n\x80");
  const Bytes palette = host.receive(2 + 768);
  ASSERT_EQ(palette.size(), 770u);
  EXPECT_EQ(palette[0] | palette[1] << 8, 768);
  const FirstPage page = scanFirst(host, {{"M", "C256"}, {"C", "NONE"}, {"A", "1251,0,1299,1"}}).pages.at(1);
  const Bytes numbers = page.joined();
  ASSERT_EQ(numbers.size(), 48u);
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_EQ(palette[2 + numbers[0] * 3u + c], 0);
    EXPECT_EQ(palette[2 + numbers[1] * 3u + c], 255);
  }
}

TEST_F(FirstSessionTest, BothSidesComeAsFrontAndBack) {
  serve(classicWith({patternOf(48, 10, 1), patternOf(48, 20, 1), patternOf(48, 30, 1)}));
  Host host = connect();
  auto settings = kGreySheet;
  settings["D"] = "DUP";
  settings["P"] = "1";
  EXPECT_EQ(scanFirst(host, settings).pages.size(), 2u);
  settings["P"] = "0";
  EXPECT_EQ(scanFirst(host, settings).pages.size(), 2u);  // the third sheet and its white back
  EXPECT_EQ(scanFirst(host, settings).endStatus, 0xC2);   // on AUTO with nothing on the bed either
}

TEST_F(FirstSessionTest, TheBedServesWhenTheFeederIsEmptyOrByName) {
  const Raster picture = patternOf(48, 40, 1);
  serve({classic_, Feeder({}, false, false), sheets({picture}).front(), options_});
  Host host = connect();
  auto settings = kGreySheet;
  settings["A"] = "0,0,48,40";
  EXPECT_EQ(unpackedLines(scanFirst(host, settings).pages.at(1)), picture.pixels);
  host.send("\x1BS\nADF\n\x80");
  EXPECT_EQ(host.receive(1), Bytes{0x80});
  EXPECT_EQ(scanFirst(host, settings).endStatus, 0xC2);
}

TEST_F(FirstSessionTest, AWidthIsServedUpToWhole16PixelsBeyondTheGrantedOne) {
  serve(classicWith({patternOf(9, 9, 1)}, true));
  Host host = connect();
  auto settings = kGreySheet;
  settings["C"] = "NONE";
  const struct {
    const char* area;
    std::size_t lineBytes;
  } rows[] = {{"0,0,2560,2", 2560}, {"0,0,2576,2", 2560}, {"0,0,2544,2", 2544}, {"4294967290,0,48,2", 48}};
  for (const auto& row : rows) {
    settings["A"] = row.area;
    EXPECT_EQ(scanFirst(host, settings).pages.at(1).data.at(0).size(), row.lineBytes) << row.area;
  }
}

TEST_F(FirstSessionTest, ALongAreaReachesDownToLongPaper) {
  serve(classicWith({patternOf(9, 9, 1)}, true));
  Host host = connect();
  auto settings = kGreySheet;
  settings["R"] = "50,50";
  settings["A"] = "0,0,16,99999";
  EXPECT_EQ(scanFirst(host, settings).pages.at(1).heightPx, 1698);  // 863 mm
  settings["D"] = "DUP";
  EXPECT_EQ(scanFirst(host, settings).pages.at(1).heightPx, 700);  // 355.6 mm
}

TEST_F(FirstSessionTest, ACornerScanEndsWithTheSheet) {
  Profile profile = classic_;
  overrideProfile(profile, "scanFunc=4");
  serve({profile, Feeder(sheets({patternOf(48, 40, 1)}), false, true), {}, options_});
  Host host = connect();
  auto settings = kGreySheet;
  settings["A"] = "0,0,2560,3300";
  settings["S"] = "CORNER_SCAN";
  EXPECT_EQ(scanFirst(host, settings).pages.at(1).heightPx, 40);
  settings["S"] = "NORMAL_SCAN";
  EXPECT_EQ(scanFirst(host, settings).pages.at(1).heightPx, 3300);
}

TEST_F(FirstSessionTest, TheDocumentsCornersAreTold) {
  serve(classicWith({patternOf(600, 300, 1)}));
  Host host = connect();
  host.send(
      "\x1B"
      "E\nR=150,100\nM=CGRAY\n\x80");
  EXPECT_EQ(receiveText(host, 0), "R=150,100\nV1=487,0\nV2=787,100\n");
  host.send("\x1BS\nFB\n\x80");
  host.receive(1);
  host.send(
      "\x1B"
      "E\nR=150,100\nM=CGRAY\n\x80");
  EXPECT_EQ(receiveText(host, 0xC2), "\xC2");  // nothing lies on the bed
}

TEST_F(FirstSessionTest, AButtonIsToldUntilAScanTakesIt) {
  Device device = classicWith({patternOf(9, 9, 1)});
  Panel& panel = *device.panel;
  serve(std::move(device));
  Host host = connect();
  const auto keys = [&] {
    host.send("\x1BK\n\x80");
    return receiveText(host, 0x30);
  };
  EXPECT_EQ(keys(), "\n");
  panel.press(parsePanelSettings("email resolution=200"));
  EXPECT_EQ(keys(), "F=EMAIL\nR=200\n");
  scanFirst(host, kGreySheet);
  EXPECT_EQ(keys(), "\n");
}

TEST_F(FirstSessionTest, AnAbortEndsTheStream) {
  options_.pagesPerMinute = 60;
  serve(classicWith({patternOf(48, 40, 1), patternOf(48, 40, 1)}));
  Host host = connect();
  host.send(startFrame1(kGreySheet) + "\x1BR\n\x80");
  EXPECT_EQ(receiveFirstScan(host).endStatus, 0x83);
  host.send(
      "\x1BR\n\x80\x1B"
      "D\nADF\n\x80");  // with no scan running it is not answered
  EXPECT_EQ(host.receive(1), Bytes{0x80});
}

TEST_F(FirstSessionTest, WhatIsWrongIsRefusedInTheShapeOfItsAnswer) {
  serve(classicWith({patternOf(9, 9, 1)}));
  Host host = connect();
  const Bytes framed{0xCB, 1, 0, 0xCB};
  const struct {
    const char* name;
    std::string bytes;
    Bytes answer;
    const char* words;
  } rows[] = {
      {"garbage", "hello\x80", framed, "68 65 6C 6C 6F 80"},
      {"an unknown command", "\x1BSSP\n\x80", framed, "no command SSP"},
      {"a wrong value", questionFrame({{"M", "RED"}}), framed, "\"RED\" is no value of key M"},
      {"lines where none are", "\x1BQ\nA=B\n\x80", {0xCB, 0x00, 2, 0xCB}, "41 3D 42"},
      {"a word where none is", "\x1BI\nADF\n\x80", framed, "no line of one word"},
      {"deskew where none is", questionFrame({{"S", "SKEW_ADJUST"}}), framed, "does not straighten"},
      {"corners where none are found", questionFrame({{"S", "CORNER_SCAN"}}), framed, "finds no corners"},
      {"edges where none are found", questionFrame({{"S", "EDGE_SCAN"}}), framed, "finds no edges"},
      {"a start without lines", "\x1BX\n\x80", {0xCB}, "lacks the key R"},
      {"a palette as JPEG", startFrame1({{"M", "C256"}}), {0xCB}, "does not offer this compression"},
      {"a command during a scan", startFrame1({{"M", "BLUE"}}) + "\x1BQ\n\x80", {0xCB, 0xC1}, "\"BLUE\""},
  };
  for (const auto& row : rows) {
    host.send(row.bytes);
    EXPECT_EQ(host.receive(row.answer.size()), row.answer) << row.name;
    EXPECT_NE(logged().find(row.words), std::string::npos) << row.name << "\n" << logged();
  }
}

TEST_F(FirstSessionTest, AnotherCommandDuringAScanEndsIt) {
  options_.pagesPerMinute = 60;
  serve(classicWith({patternOf(48, 40, 1), patternOf(48, 40, 1)}));
  Host host = connect();
  host.send(startFrame1(kGreySheet) + questionFrame());
  EXPECT_EQ(receiveFirstScan(host).endStatus, 0xCB);
}

TEST_F(FirstSessionTest, ABrokenSheetIsAnInternalFault) {
  auto faces = sheets({patternOf(50, 40, 1)});
  test::writeFile(faces[0].file->path(), "no picture any more");
  serve({classic_, Feeder(faces, false, false), {}, options_});
  Host host = connect();
  EXPECT_EQ(scanFirst(host).endStatus, 0xC9);
}

}  // namespace
}  // namespace vscan
