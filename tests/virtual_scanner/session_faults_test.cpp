// What goes wrong on purpose, seen by a host.
#include <algorithm>
#include <thread>

#include "session_fixture.h"

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

TEST_F(SessionTest, ADisconnectStrikesAtItsByte) {
  options_.faults = {parseFault("disconnect@page=2,byte=100")};
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
  options_.faults = {parseFault("reset@page=1,line=3")};
  serve({office_, Feeder(sheets({patternOf(50, 40, 1)}), false, true), {}, options_});
  Host host = connect();
  const ReceivedScan received = scan(host, kGreyLines, "0,0,50,40");
  EXPECT_EQ(received.endStatus, -1);
  EXPECT_EQ(received.pages.at(1).heightsSoFar, (std::vector<std::uint32_t>{1, 2, 3}));
}

TEST_F(SessionTest, ADeviceErrorIsARecordOfItsOwnAndTheConnectionStays) {
  options_.faults = {parseFault("device=0x91@page=2,line=5")};
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
  options_.faults = {parseFault("device=0x92@page=1,line=9999")};
  serve({office_, Feeder(sheets({patternOf(50, 40, 1)}), false, true), {}, options_});
  Host host = connect();
  const ReceivedScan received = scan(host, kGreyLines, "0,0,50,40");
  EXPECT_EQ(received.endResult, 0x92);
  EXPECT_EQ(received.pages.at(1).data.size(), 40u);
  EXPECT_EQ(received.pages.at(1).statuses.back(), 0x01);
}

TEST_F(SessionTest, ASilentScannerCanStillBeStopped) {
  options_.faults = {parseFault("silence@page=1")};
  serve({office_, Feeder(sheets({patternOf(50, 40, 1)}), false, true), {}, options_});
  Host host = connect();
  host.send(settingsFrame(kGreyLines));
  host.receiveFramed();
  host.send(startFrame("AUTO") + frameOf("ABT", {}));
  for (int i = 0; i < 300 && logged().find("falling silent") == std::string::npos; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_NE(logged().find("falling silent"), std::string::npos);
  stop();
  EXPECT_TRUE(host.isAtEnd());
}

}  // namespace
}  // namespace vscan
