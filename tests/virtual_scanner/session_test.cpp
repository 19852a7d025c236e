// Whole conversations of the second generation.
#include <sys/socket.h>
#include <sys/un.h>

#include "session_fixture.h"
#include "support/failure.h"

namespace vscan {
namespace {

using test::bytesOf;
using test::frameOf;
using test::Host;
using test::kGreyJpeg;
using test::kGreyLines;
using test::patternOf;
using test::ReceivedPage;
using test::ReceivedScan;
using test::SessionTest;
using test::settingsFrame;
using test::startFrame;
using test::unpacked;

TEST_F(SessionTest, TheCapabilityCommandsAreAnsweredOnOneConnection) {
  serve({office_, Feeder({}, false, false), {}, options_});
  Host host = connect();
  host.send("\x1BQ\n\x80");
  EXPECT_EQ(host.receive(4), (Bytes{0xC1, 0x00, 0x02, 0x12}));
  host.send("\x1BQDI\n\x80");
  const Bytes answer = host.receiveFramed();
  EXPECT_EQ(Bytes(answer.begin(), answer.begin() + 4), (Bytes{0x00, 'Q', 'D', 'I'}));
  EXPECT_EQ(Bytes(answer.begin() + 8, answer.end()), office_.capability.body());
}

TEST_F(SessionTest, SettingsAreGrantedWithSourceResolutionAndSize) {
  serve({office_, Feeder(sheets({patternOf(10, 10, 1)}), false, false), {}, options_});
  Host host = connect();
  host.send(settingsFrame({{"RESO", "200,1200"}}));
  EXPECT_EQ(host.receiveFramed(), (Bytes{0x00, 'S',  'S',  'P',  0x1E, 0x00, 0x00, 0x00, 0x01, 0x20, 0x02, 0x00, 0x01,
                                         0x00, 0x02, 0x20, 0x04, 0x00, 0xC8, 0x00, 0x58, 0x02, 0x03, 0x20, 0x08, 0x00,
                                         0xA4, 0x06, 0x00, 0x00, 0xD0, 0x20, 0x00, 0x00, 0xF0, 0xF0, 0x00, 0x00}));
}

TEST_F(SessionTest, LongPaperIsGrantedAGreaterLength) {
  serve({office_, Feeder(sheets({patternOf(10, 10, 1)}), false, false), {}, options_});
  Host host = connect();
  host.send(settingsFrame({{"LONG", "ON"}}));
  const Bytes answer = host.receiveFramed();
  ASSERT_EQ(answer.size(), 38u);
  EXPECT_EQ(answer[30] | answer[31] << 8, 10192);  // 863 mm at 300 dpi
}

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

TEST_F(SessionTest, TheDocumentCheckTellsWhatIsLoaded) {
  serve({office_, Feeder(sheets({patternOf(9, 9, 1)}), false, false), {}, options_});
  Host host = connect();
  const struct {
    const char* source;
    Bytes answer;
  } rows[] = {{"ADF", {0x00, 0x80}}, {"FB", {0x90, 0x00}}, {"AUTO", {0x00, 0x80}}, {"TRAY", {0xA4, 0x00}}};
  for (const auto& row : rows) {
    host.send(frameOf("CKD", {{"PSRC", row.source}}));
    EXPECT_EQ(host.receive(2), row.answer) << row.source;
  }
}

TEST_F(SessionTest, AButtonIsToldUntilAScanTakesIt) {
  Device device{office_, Feeder(sheets({patternOf(9, 9, 1)}), false, true), {}, options_};
  Panel& panel = *device.panel;
  serve(std::move(device));
  Host host = connect();
  const auto event = [&] {
    host.send("\x1BGKP\n\x80");
    return static_cast<int>(host.receiveFramed().at(12));
  };
  EXPECT_EQ(event(), 0);
  panel.press(parsePanelSettings("file"));
  EXPECT_EQ(event(), 4);
  EXPECT_EQ(event(), 4);
  scan(host, kGreyLines);
  EXPECT_EQ(event(), 0);
}

TEST_F(SessionTest, ThePaletteIsToldInTriples) {
  serve({office_, Feeder({}, false, false), {}, options_});
  Host host = connect();
  host.send("\x1BGCT\n\x80");
  EXPECT_EQ(host.receiveFramed().size(), 8u + 768u);
}

TEST_F(SessionTest, TheColourProfilesAreRealOnes) {
  serve({office_, Feeder({}, false, false), {}, options_});
  Host host = connect();
  host.send("\x1BGCP\n\x80");
  const Bytes answer = host.receiveFramed();
  ASSERT_GT(answer.size(), 500u);
  std::size_t at = 8;
  for (const int tag : {0x3101, 0x3102}) {
    ASSERT_EQ(answer[at] | answer[at + 1] << 8, tag);
    const auto size = static_cast<std::size_t>(answer[at + 2] | answer[at + 3] << 8);
    ASSERT_LE(at + 4 + size, answer.size());
    const auto profile = answer.begin() + static_cast<std::ptrdiff_t>(at + 4);
    EXPECT_EQ(static_cast<std::size_t>(profile[2] << 8 | profile[3]), size);  // the length that it tells of itself
    EXPECT_EQ(std::string(profile + 16, profile + 20), tag == 0x3101 ? "RGB " : "GRAY");
    EXPECT_EQ(std::string(profile + 36, profile + 40), "acsp");
    at += 4 + size;
  }
  EXPECT_EQ(Bytes(answer.begin() + static_cast<std::ptrdiff_t>(at), answer.end()), (Bytes{0xF0, 0xF0, 0, 0}));
}

TEST_F(SessionTest, AProfileWithoutColourProfilesRefusesThem) {
  Profile profile = office_;
  overrideProfile(profile, "colorProfile=0");
  serve({profile, Feeder({}, false, false), {}, options_});
  Host host = connect();
  host.send("\x1BGCP\n\x80");
  EXPECT_EQ(host.receiveFramed(), (Bytes{0xA4, 'G', 'C', 'P', 1, 0, 0, 0, 0xA4}));
}

TEST_F(SessionTest, TheSizeOfTheDocumentIsTold) {
  serve({office_, Feeder(sheets({patternOf(600, 300, 1)}), false, false), {}, options_});
  Host host = connect();
  const auto documentOf = [&] {
    host.send("\x1BGDS\n\x80");
    const Bytes answer = host.receiveFramed();
    return Bytes(answer.begin() + 8, answer.end());
  };
  EXPECT_EQ(documentOf(), (Bytes{0x02, 0x20, 4, 0, 0x2C, 0x01, 0x2C, 0x01, 0x03, 0x20, 8, 0,
                                 0x58, 0x02, 0, 0, 0x2C, 0x01, 0,    0,    0xF0, 0xF0, 0, 0}));
  host.send(settingsFrame({{"RESO", "150,150"}, {"PSRC", "FB"}}));
  host.receiveFramed();
  EXPECT_EQ(documentOf(),
            (Bytes{0x02, 0x20, 4, 0, 0, 0, 0, 0, 0x03, 0x20, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0xF0, 0, 0}));
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

TEST_F(SessionTest, WhatIsWrongIsRefusedAndLoggedAndTheConversationGoesOn) {
  serve({office_, Feeder(sheets({patternOf(9, 9, 1)}), false, false), {}, options_});
  Host host = connect();
  const struct {
    const char* name;
    std::string bytes;
    Bytes answer;
    const char* words;
  } rows[] = {
      {"garbage", "hello\x80", {0xA4, '?', '?', '?', 1, 0, 0, 0, 0xA4}, "68 65 6C 6C 6F 80"},
      {"a frame without line feed", "\x1BQ\x80", {0xA4, '?', '?', '?', 1, 0, 0, 0, 0xA4}, "1B 51 80"},
      {"an unknown command", "\x1BHELO\n\x80", {0xA4, 'H', 'E', 'L', 1, 0, 0, 0, 0xA4}, "no command HELO"},
      {"a key where none is", frameOf("QDI", {{"A", "B"}}), {0xA4, 'Q', 'D', 'I', 1, 0, 0, 0, 0xA4}, "41 3D 42"},
      {"a wrong value",
       settingsFrame({{"CLR", "RED"}}),
       {0xA4, 'S', 'S', 'P', 1, 0, 0, 0, 0xA4},
       "\"RED\" is no value"},
      {"a wish not to be had",
       settingsFrame({{"CLR", "C256"}}),
       {0xA4, 'S', 'S', 'P', 1, 0, 0, 0, 0xA4},
       "does not offer"},
      {"a start without settings", startFrame("AUTO"), {0xA4, 0x00}, "needs an SSP before it"},
      {"a wrong start", startFrame("HERE"), {0xA4, 0x00}, "\"HERE\" is no value"},
  };
  for (const auto& row : rows) {
    host.send(row.bytes);
    EXPECT_EQ(host.receive(row.answer.size()), row.answer) << row.name;
    EXPECT_NE(logged().find(row.words), std::string::npos) << row.name << "\n" << logged();
  }
  EXPECT_EQ(scan(host, kGreyLines).endStatus, 0x20);
}

TEST_F(SessionTest, ARefusedSettingLeavesNoOldOneBehind) {
  serve({office_, Feeder(sheets({patternOf(9, 9, 1)}), false, false), {}, options_});
  Host host = connect();
  host.send(settingsFrame() + settingsFrame({{"CLR", "RED"}}) + startFrame("AUTO"));
  host.receiveFramed();
  host.receiveFramed();
  EXPECT_EQ(host.receive(2), (Bytes{0xA4, 0x00}));
}

TEST_F(SessionTest, SettingsBelongToTheirConnection) {
  serve({office_, Feeder(sheets({patternOf(9, 9, 1)}), false, false), {}, options_});
  Host first = connect();
  first.send(settingsFrame());
  first.receiveFramed();
  first.close();
  Host second = connect();
  second.send(startFrame("AUTO"));
  EXPECT_EQ(second.receive(2), (Bytes{0xA4, 0x00}));
}

TEST_F(SessionTest, AnAbortEndsTheStreamAndTheSheetIsEjected) {
  options_.pagesPerMinute = 240;  // the abort falls into the wait for the first page's end
  const struct {
    const char* ejection;
    std::size_t left;
  } rows[] = {{"", 2}, {"ONE", 2}, {"ALL", 0}, {"NO", 3}};
  for (const auto& row : rows) {
    serve({office_,
           Feeder(sheets({patternOf(9, 9, 1), patternOf(9, 9, 1), patternOf(9, 9, 1)}), false, false),
           {},
           options_});
    Host host = connect();
    host.send(settingsFrame(kGreyLines));
    host.receiveFramed();
    host.send(startFrame("AUTO"));
    host.receive(4);  // the scan runs
    host.send(row.ejection[0] == 0 ? frameOf("ABT", {}) : frameOf("ABT", {{"EJCT", row.ejection}}));
    Bytes rest;
    for (Bytes byte = host.receive(1); !byte.empty(); byte = host.receive(1)) {
      rest.push_back(byte[0]);
      if (rest.size() >= 2 && rest[rest.size() - 2] == 0x00 && rest.back() == 0x40 && rest.size() > 9 * 20) break;
    }
    ASSERT_GE(rest.size(), 2u);
    EXPECT_EQ(rest.back(), 0x40);
    host.close();
    Host next = connect();
    next.send(settingsFrame({{"PAGE", "3"}, {"CLR", "GRAY256"}}));
    next.receiveFramed();
    next.send(startFrame("AUTO"));
    const ReceivedScan received = next.receiveScan();
    EXPECT_EQ(received.pages.size(), row.left) << row.ejection;
    stop();
  }
}

TEST_F(SessionTest, AnAbortWithoutAScanIsNotAnswered) {
  serve({office_, Feeder({}, false, false), {}, options_});
  Host host = connect();
  host.send(frameOf("ABT", {}) + "\x1BQ\n\x80");
  EXPECT_EQ(host.receive(4), (Bytes{0xC1, 0x00, 0x02, 0x12}));
}

TEST_F(SessionTest, AnotherCommandDuringAScanEndsIt) {
  options_.pagesPerMinute = 60;
  serve({office_, Feeder(sheets({patternOf(9, 9, 1), patternOf(9, 9, 1)}), false, false), {}, options_});
  Host host = connect();
  host.send(settingsFrame(kGreyLines));
  host.receiveFramed();
  host.send(startFrame("AUTO") + "\x1BQ\n\x80");
  const ReceivedScan received = host.receiveScan();
  EXPECT_EQ(received.endResult, 0xA4);
  EXPECT_NE(logged().find("only an abort is possible"), std::string::npos);
}

TEST_F(SessionTest, AHostThatGoesInTheMiddleOfAScanLeavesTheScannerFree) {
  serve({office_, Feeder(sheets({patternOf(2000, 3000, 3), patternOf(9, 9, 1)}), false, false), {}, options_});
  Host host = connect();
  host.send(settingsFrame({{"COMP", "NONE"}}));
  host.receiveFramed();
  host.send(startFrame("AUTO"));
  host.receive(1000);
  host.close();
  Host next = connect();
  EXPECT_EQ(scan(next, kGreyLines).pages.size(), 1u);
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

TEST_F(SessionTest, AUnixSocketServesAsTcpDoes) {
  serve({office_, Feeder({}, false, false), {}, options_});
  UniqueFd fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  folder_.file("socket").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::connect(fd.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  Host host(std::move(fd));
  host.send("\x1BQ\n\x80");
  EXPECT_EQ(host.receive(4), (Bytes{0xC1, 0x00, 0x02, 0x12}));
  EXPECT_THROW(Listener::onUnix(folder_.file("socket")), Failure);  // in use
  stop();
  EXPECT_FALSE(std::filesystem::exists(folder_.file("socket")));
}

TEST(Listener, AnAddressThatIsNoneIsRefusedInASentence) {
  for (const char* address : {"", "9480", ":9480", "127.0.0.1:", "nosuchhost.invalid:1", "127.0.0.1:x"}) {
    EXPECT_THROW(Listener::onTcp(address), Failure) << address;
  }
  EXPECT_THROW(Listener::onUnix(std::string(200, 'x')), Failure);
  EXPECT_THROW(Listener::onUnix(""), Failure);
}

TEST(Listener, AnIpv6AddressStandsInBrackets) {
  try {
    const Listener listener = Listener::onTcp("[::1]:0");
    EXPECT_TRUE(listener.address().starts_with("[::1]:"));
    EXPECT_TRUE(listener.isLoopback());
    EXPECT_EQ("[::1]:" + std::to_string(listener.port()), listener.address());
  } catch (const Failure&) {
    GTEST_SKIP() << "this machine has no IPv6";
  }
}

}  // namespace
}  // namespace vscan
