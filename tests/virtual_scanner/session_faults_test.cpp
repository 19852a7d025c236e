// What goes wrong on purpose in the image stream, seen by a host.
#include <algorithm>
#include <thread>

#include "gen1_host.h"
#include "session_fixture.h"

namespace vscan {
namespace {

using test::FirstScan;
using test::frameOf;
using test::Host;
using test::kGreyLines;
using test::patternOf;
using test::ReceivedScan;
using test::receiveFirstScan;
using test::SessionTest;
using test::settingsFrame;
using test::startFrame;
using test::startFrame1;

TEST_F(SessionTest, ADisconnectStrikesAtItsByte) {
  options_.faults = {parseFault("disconnect@page=2,byte=100", Generation::Second)};
  serve({office_, Feeder(sheets({patternOf(50, 40, 1), patternOf(50, 40, 1)}), false, true), {}, options_});
  Host host = connect();
  auto settings = kGreyLines;
  settings["COMP"] = "NONE";
  host.send(settingsFrame(settings));
  host.receiveFramed();
  host.send(startFrame("0,0,50,40"));
  // 40 records of 14 + 50 bytes and the page's end, then 100 bytes.
  EXPECT_EQ(host.receive(100000).size(), 40u * 64u + 4u + 100u);
  Host next = connect();
  next.send("\x1BQ\n\x80");
  EXPECT_EQ(next.receive(4).size(), 4u);
}

TEST_F(SessionTest, AResetBreaksTheConnectionBehindItsPlace) {
  options_.faults = {parseFault("reset@page=1,line=3", Generation::Second)};
  serve({office_, Feeder(sheets({patternOf(50, 40, 1)}), false, true), {}, options_});
  Host host = connect();
  const ReceivedScan received = scan(host, kGreyLines, "0,0,50,40");
  EXPECT_EQ(received.endStatus, -1);
  EXPECT_EQ(received.pages.at(1).heightsSoFar, (std::vector<std::uint32_t>{1, 2, 3}));
}

TEST_F(SessionTest, ADeviceErrorIsARecordOfItsOwnAndTheConnectionStays) {
  options_.faults = {parseFault("device=0x91@page=2,line=5", Generation::Second)};
  serve({office_, Feeder(sheets({patternOf(50, 40, 1), patternOf(50, 40, 1)}), false, true), {}, options_});
  Host host = connect();
  for (int repeat = 0; repeat < 2; ++repeat) {
    const ReceivedScan received = scan(host, kGreyLines, "0,0,50,40");
    EXPECT_EQ(received.endResult, 0x91);
    EXPECT_EQ(received.pages.at(1).statuses.back(), 0x21);
    EXPECT_EQ(received.pages.at(2).data.size(), 5u);
  }
}

TEST_F(SessionTest, AFaultBehindTheLastLineStrikesBeforeThePageEnds) {
  options_.faults = {parseFault("device=0x92@page=1,line=9999", Generation::Second)};
  serve({office_, Feeder(sheets({patternOf(50, 40, 1)}), false, true), {}, options_});
  Host host = connect();
  const ReceivedScan received = scan(host, kGreyLines, "0,0,50,40");
  EXPECT_EQ(received.endResult, 0x92);
  EXPECT_EQ(received.pages.at(1).data.size(), 40u);
  EXPECT_EQ(received.pages.at(1).statuses.back(), 0x01);
}

TEST_F(SessionTest, ASilentScannerCanStillBeStopped) {
  options_.faults = {parseFault("silence@page=1", Generation::Second)};
  serve({office_, Feeder(sheets({patternOf(50, 40, 1)}), false, true), {}, options_});
  Host host = connect();
  host.send(settingsFrame(kGreyLines));
  host.receiveFramed();
  host.send(startFrame("AUTO") + frameOf("ABT", {}));
  for (int i = 0; i < 300 && logged().find("falls silent") == std::string::npos; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_NE(logged().find("falls silent"), std::string::npos);
  stop();
  EXPECT_TRUE(host.isAtEnd());
}

class StreamFaultTest : public SessionTest {
 protected:
  // Two pages of four grey lines of 16 bytes, uncompressed: records of 14 + 16 and of 8 + 16 bytes.
  void serveWith(const Profile& profile, const std::vector<std::string>& faults) {
    options_.faults.clear();
    for (const auto& text : faults) options_.faults.push_back(parseFault(text, profile.generation()));
    const Raster picture = patternOf(16, 4, 1);
    serve({profile, Feeder(sheets({picture, picture}), false, true), {}, options_});
  }

  ReceivedScan scanSecond(Host& host, std::map<std::string, std::string> settings = {}) {
    settings.insert({{"CLR", "GRAY256"}, {"COMP", "NONE"}});
    return scan(host, settings, "1267,0,1283,4");
  }

  static FirstScan scanFirst(Host& host, std::map<std::string, std::string> settings = {}) {
    settings.insert({{"M", "GRAY256"}, {"C", "NONE"}, {"A", "1267,0,1283,4"}});
    host.send(startFrame1(settings));
    return receiveFirstScan(host);
  }
};

TEST_F(StreamFaultTest, EachDeviceErrorOfTheTableEndsTheScanInBothGenerations) {
  const struct {
    const char* name;
    int first;
    int second;
  } rows[] = {
      {"feeder-empty", 0xC2, 0x90},  {"jam", 0xC3, 0x91},
      {"cover-open", 0xC4, 0xA0},    {"busy", 0xC5, 0xB0},
      {"out-of-memory", 0xC6, 0xB1}, {"internal-fault", 0xC9, 0x84},
      {"lamp-fault", 0xCA, 0xA1},    {"settings-not-possible", 0xCB, 0xA4},
      {"locked", 0xCC, 0xA5},
  };
  for (const auto& row : rows) {
    const std::string fault = std::string(row.name) + "@page=2,line=2";
    serveWith(office_, {fault});
    Host second = connect();
    const ReceivedScan received = scanSecond(second);
    EXPECT_EQ(received.endResult, row.second) << row.name;
    EXPECT_EQ(received.pages.at(2).data.size(), 2u);
    stop();
    serveWith(classic_, {fault});
    Host first = connect();
    const FirstScan older = scanFirst(first);
    EXPECT_EQ(older.endStatus, row.first) << row.name;
    EXPECT_EQ(older.pages.at(1).heightPx, 4);
    EXPECT_EQ(older.pages.at(2).data.size(), 2u);
    EXPECT_EQ(older.pages.at(2).heightPx, -1);
    stop();
  }
}

TEST_F(StreamFaultTest, ADoubleFeedIsAnErrorOnlyWhereTheHostLooksForIt) {
  serveWith(office_, {"double-feed@page=2"});
  Host second = connect();
  EXPECT_EQ(scanSecond(second, {{"DTDF", "OFF"}}).pages.size(), 2u);
  EXPECT_EQ(scanSecond(second, {{"DTDF", "ON"}}).endResult, 0x92);
  stop();
  Profile graded = office_;
  graded.capability.set("multifeed", 0, 3);
  serveWith(graded, {"double-feed@page=2"});
  Host careful = connect();
  EXPECT_EQ(scanSecond(careful, {{"DTDF", "3"}}).endResult, 0x92);
  stop();
  Profile older = classic_;
  older.capability.set("landscape", 0, 1);
  serveWith(older, {"double-feed@page=2"});
  Host first = connect();
  EXPECT_EQ(scanFirst(first, {{"E", "0"}}).endStatus, 0x80);
  EXPECT_EQ(scanFirst(first, {{"E", "1"}}).endStatus, 0xC8);
  EXPECT_EQ(scanFirst(first, {{"E", "2"}}).endStatus, 0x80);  // landscape
}

TEST_F(StreamFaultTest, TheStopKeyEndsTheScan) {
  serveWith(office_, {"stop-key@page=2,line=1"});
  Host second = connect();
  const ReceivedScan received = scanSecond(second);
  EXPECT_EQ(received.endResult, 0);
  EXPECT_EQ(received.endStatus, 0x41);
  stop();
  serveWith(classic_, {"stop-key@page=2,line=1"});
  Host first = connect();
  EXPECT_EQ(scanFirst(first).endStatus, 0x86);
}

TEST_F(StreamFaultTest, APageThatIsTooLongEndsAtItsLineAndTheNextComes) {
  serveWith(office_, {"too-long@page=1,line=3"});
  Host host = connect();
  const ReceivedScan received = scanSecond(host);
  EXPECT_EQ(received.pages.at(1).statuses, (std::vector<std::uint8_t>{1, 1, 1, 0x23}));
  EXPECT_EQ(received.pages.at(2).statuses, (std::vector<std::uint8_t>{1, 1, 1, 1, 0x21}));
  EXPECT_EQ(received.endStatus, 0x20);
}

TEST_F(StreamFaultTest, RecordsComeInBetween) {
  const struct {
    const char* fault;
    Bytes record;
  } rows[] = {
      {"timer-restart=300@page=1,line=1", {0x00, 0x50, 0x2C, 0x01}},
      {"timer-extend=2@page=1,line=1", {0x00, 0x51, 0x02, 0x00}},
      {"failed-check=size@page=1,line=1", {0x00, 0x71, 0x01, 0x00, 16, 0, 0, 0, 4, 0, 0, 0}},
      {"failed-check=color@page=1,line=1", {0x00, 0x72, 0x01, 0x00}},
      {"failed-check=blank@page=1,line=1", {0x00, 0x73, 0x01, 0x00}},
      {"failed-check=deskew@page=1,line=1", {0x00, 0x74, 0x01, 0x00}},
      {"garbage=00307F@page=1,line=1", {0x00, 0x30, 0x7F}},
      {"garbage=FF@page=1,byte=30", {0xFF}},
  };
  for (const auto& row : rows) {
    serveWith(office_, {row.fault});
    Host host = connect();
    host.send(settingsFrame({{"CLR", "GRAY256"}, {"COMP", "NONE"}}));
    host.receiveFramed();
    host.send(startFrame("1267,0,1283,4"));
    EXPECT_EQ(host.receive(30).size(), 30u);
    EXPECT_EQ(host.receive(row.record.size()), row.record) << row.fault;
    EXPECT_EQ(host.receive(6), (Bytes{0x00, 0x01, 0x01, 0x00, 0x04, 0x00})) << row.fault;  // the second line
    stop();
  }
}

TEST_F(StreamFaultTest, AGarbageByteCanStandInsideARecord) {
  serveWith(classic_, {"garbage=AA@page=1,byte=9"});
  Host host = connect();
  host.send(startFrame1({{"M", "GRAY256"}, {"C", "NONE"}, {"A", "1267,0,1283,4"}}));
  EXPECT_EQ(host.receive(8), (Bytes{0x5C, 3, 0, 1, 0, 0, 16, 0}));
  const Bytes data = host.receive(17);
  EXPECT_EQ(data[1], 0xAA);
}

TEST_F(StreamFaultTest, AWrongLengthStandsInTheSizeOfTheNextLine) {
  serveWith(office_, {"wrong-length=70000@page=1,line=1"});
  Host second = connect();
  second.send(settingsFrame({{"CLR", "GRAY256"}, {"COMP", "NONE"}}));
  second.receiveFramed();
  second.send(startFrame("1267,0,1283,4"));
  EXPECT_EQ(second.receive(30).at(6), 16);
  EXPECT_EQ(second.receive(14), (Bytes{0, 1, 1, 0, 4, 0, 0x70, 0x11, 0x01, 0x00, 2, 0, 0, 0}));
  stop();
  serveWith(classic_, {"wrong-length=0x1234@page=1,line=1"});
  Host first = connect();
  first.send(startFrame1({{"M", "GRAY256"}, {"C", "NONE"}, {"A", "1267,0,1283,4"}}));
  EXPECT_EQ(first.receive(24).at(6), 16);
  EXPECT_EQ(first.receive(8), (Bytes{0x5C, 3, 0, 1, 0, 0, 0x34, 0x12}));
}

TEST_F(StreamFaultTest, AShortRecordLacksItsRest) {
  serveWith(office_, {"short@page=1,byte=40"});
  Host host = connect();
  host.send(settingsFrame({{"CLR", "GRAY256"}, {"COMP", "NONE"}}));
  host.receiveFramed();
  host.send(startFrame("1267,0,1283,4"));
  EXPECT_EQ(host.receive(40).size(), 40u);
  EXPECT_EQ(host.receive(6), (Bytes{0x00, 0x01, 0x01, 0x00, 0x04, 0x00}));  // the third line at once
  EXPECT_EQ(host.receive(4), (Bytes{16, 0, 0, 0}));
}

TEST_F(StreamFaultTest, APauseLetsWhatCameBeforeGoAndHearsAnAbort) {
  serveWith(office_, {"pause=60000@page=1,byte=35"});
  Host host = connect();
  host.send(settingsFrame({{"CLR", "GRAY256"}, {"COMP", "NONE"}}));
  host.receiveFramed();
  host.send(startFrame("1267,0,1283,4"));
  EXPECT_EQ(host.receive(35).size(), 35u);
  host.send(frameOf("ABT", {}));
  EXPECT_EQ(host.receive(2), (Bytes{0x00, 0x40}));
}

TEST_F(StreamFaultTest, APauseSplitsTheStreamAndItGoesOn) {
  serveWith(classic_, {"pause=80@page=1,line=2"});
  Host host = connect();
  const auto began = std::chrono::steady_clock::now();
  EXPECT_EQ(scanFirst(host).endStatus, 0x80);
  EXPECT_GE(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(80));
}

TEST_F(StreamFaultTest, ADripBeginsAtItsPlace) {
  serveWith(office_, {"drip=10:5@page=2,times=1"});
  Host host = connect();
  const auto began = std::chrono::steady_clock::now();
  EXPECT_EQ(scanSecond(host).pages.size(), 2u);
  EXPECT_GE(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(13 * 5));
}

TEST_F(StreamFaultTest, SeveralFaultsStrikeInTheOrderOfTheirPlaces) {
  serveWith(office_, {"jam@page=2,line=1", "timer-extend=7@page=1,line=2", "garbage=0050@page=1,line=1",
                      "timer-restart=8@page=1,line=1"});
  Host host = connect();
  host.send(settingsFrame({{"CLR", "GRAY256"}, {"COMP", "NONE"}}));
  host.receiveFramed();
  host.send(startFrame("1267,0,1283,4"));
  host.receive(30);
  EXPECT_EQ(host.receive(6), (Bytes{0x00, 0x50, 0x00, 0x50, 8, 0}));
  host.receive(30);
  EXPECT_EQ(host.receive(4), (Bytes{0x00, 0x51, 7, 0}));
  EXPECT_EQ(host.receive(30 + 30 + 4 + 30 + 2).size(), 96u);
}

TEST_F(StreamFaultTest, AFaultWithTimesLeavesLaterScansAlone) {
  serveWith(office_, {"jam@page=1,times=2"});
  Host host = connect();
  EXPECT_EQ(scanSecond(host).endResult, 0x91);
  EXPECT_EQ(scanSecond(host).endResult, 0x91);
  EXPECT_EQ(scanSecond(host).endStatus, 0x20);
}

}  // namespace
}  // namespace vscan
