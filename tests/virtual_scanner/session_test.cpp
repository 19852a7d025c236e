// Whole conversations of the second generation.
#include <sys/socket.h>
#include <sys/un.h>

#include "session_fixture.h"
#include "support/failure.h"

namespace vscan {
namespace {

using test::frameOf;
using test::Host;
using test::kGreyLines;
using test::patternOf;
using test::ReceivedScan;
using test::SessionTest;
using test::settingsFrame;
using test::startFrame;

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
