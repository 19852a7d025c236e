// Hosts that want the same scanner at the same time, and hosts that come and go.
#include <algorithm>
#include <filesystem>
#include <iterator>
#include <random>

#include "gen1_host.h"
#include "session_fixture.h"

namespace vscan {
namespace {

using test::Host;
using test::kGreyLines;
using test::patternOf;

class SeveralHostsTest : public test::SessionTest {
 protected:
  void serveSheets(const Profile& profile, int count) {
    const std::vector<Raster> pictures(static_cast<std::size_t>(count), patternOf(48, 40, 1));
    Device device{profile, Feeder(sheets(pictures), false, false), {}, options_};
    device.turn = std::make_unique<Turn>(std::chrono::milliseconds(200));
    serve(std::move(device));
  }
};

constexpr const char* kQ = "\x1BQ\n\x80";

TEST_F(SeveralHostsTest, AnotherHostIsToldThatTheDeviceIsBusyAndDisturbsNothing) {
  options_.pagesPerMinute = 40;  // the page's end comes behind all that the other host asks for
  serveSheets(office_, 1);
  Host first = connect();
  first.send(test::settingsFrame(kGreyLines));
  ASSERT_EQ(first.receiveFramed().at(0), 0);
  Host second = connect();
  second.send(test::settingsFrame(kGreyLines));  // between the settings and the start
  EXPECT_EQ(second.receiveFramed(), (Bytes{0xB0, 'S', 'S', 'P', 1, 0, 0, 0, 0xB0}));
  first.send(test::startFrame("AUTO"));
  while (logged().find("  XSC\n") == std::string::npos) std::this_thread::yield();
  const struct {
    std::string frame;
    Bytes answer;
  } rows[] = {
      {kQ, {0xC1, 0x00, 0x02, 0x12}},
      {test::frameOf("CKD", {{"PSRC", "AUTO"}}), {0xB0, 0x00}},
      {test::frameOf("GDS", {}), {0xB0, 'G', 'D', 'S', 1, 0, 0, 0, 0xB0}},
      {test::frameOf("ABT", {{"EJCT", "ALL"}}) + kQ, {0xC1, 0x00, 0x02, 0x12}},  // an abort is never answered
  };
  for (const auto& row : rows) {
    second.send(row.frame);
    EXPECT_EQ(second.receive(row.answer.size()), row.answer) << row.frame;
  }
  EXPECT_NE(logged().find("\nhost 2: SSP refused: the device is busy with another host"), std::string::npos);
  const test::ReceivedScan received = first.receiveScan();
  EXPECT_EQ(received.endStatus, 0x20);
  EXPECT_EQ(received.pages.size(), 1u);
}

TEST_F(SeveralHostsTest, AScanGoesThroughWhileAnotherHostAsks) {
  serveSheets(office_, 2);
  Host second = connect();
  Host first = connect();
  first.send(test::settingsFrame(kGreyLines));
  ASSERT_EQ(first.receiveFramed().at(0), 0);
  second.send(std::string("\x1BQDI\n\x80"));
  EXPECT_EQ(second.receiveFramed().at(0), 0);
  second.send("\x1BGKP\n\x80");
  EXPECT_EQ(second.receiveFramed().at(0), 0);
  second.send("\x1BGCP\n\x80");
  EXPECT_EQ(second.receiveFramed().at(0), 0);
  first.send(test::startFrame("AUTO"));
  const test::ReceivedScan received = first.receiveScan();
  EXPECT_EQ(received.endStatus, 0x20);
  EXPECT_EQ(received.pages.size(), 2u);
}

TEST_F(SeveralHostsTest, WithTheEndOfTheScanTheDeviceIsFree) {
  serveSheets(office_, 2);
  Host first = connect();
  EXPECT_EQ(scan(first, {{"CLR", "GRAY256"}, {"PAGE", "1"}}).pages.size(), 1u);
  Host second = connect();  // the first is still connected
  EXPECT_EQ(scan(second, {{"CLR", "GRAY256"}, {"PAGE", "1"}}).pages.size(), 1u);
}

TEST_F(SeveralHostsTest, AHostThatLeavesWithoutAScanLeavesTheDevice) {
  serveSheets(office_, 1);
  Host first = connect();
  first.send(test::settingsFrame(kGreyLines));
  ASSERT_EQ(first.receiveFramed().at(0), 0);
  Host second = connect();
  first.close();
  EXPECT_EQ(scan(second, kGreyLines).pages.size(), 1u);
}

TEST_F(SeveralHostsTest, TheFirstGenerationIsBusyInItsOwnWords) {
  options_.pagesPerMinute = 40;
  serveSheets(classic_, 1);
  Host first = connect();
  first.send(test::questionFrame());
  ASSERT_FALSE(test::receiveText(first, 0x00).empty());
  first.send(test::startFrame1({{"M", "GRAY256"}, {"C", "NONE"}, {"A", "0,0,48,40"}}));
  Host second = connect();
  const struct {
    std::string frame;
    Bytes answer;
  } rows[] = {
      {"\x1BK\n\x80", {0x30, 1, 0, '\n'}},
      {"\x1BS\nADF\n\x80", {0xC5}},
      {test::questionFrame(), {0xC5, 1, 0, 0xC5}},
      {test::startFrame1(), {0xC5}},
  };
  for (const auto& row : rows) {
    second.send(row.frame);
    EXPECT_EQ(second.receive(row.answer.size()), row.answer) << row.frame;
  }
  const test::FirstScan received = test::receiveFirstScan(first);
  EXPECT_EQ(received.endStatus, 0x80);
  EXPECT_EQ(received.pages.size(), 1u);
}

std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

TEST_F(SeveralHostsTest, TwoHundredHostsComeAndGoAndLeaveNothingBehind) {
  serveSheets(office_, 1);
  {
    Host host = connect();
    host.send(kQ);
    ASSERT_EQ(host.receive(4).size(), 4u);
  }
  const auto before = openDescriptors();
  for (int i = 0; i < 200; ++i) {
    Host host = connect();
    if (i % 4 == 1) host.send("\x1BSS");                         // a command that never ends
    if (i % 4 == 2) host.send(test::settingsFrame(kGreyLines));  // an answer that nobody takes
    if (i % 4 == 3) {
      host.send(kQ);
      EXPECT_EQ(host.receive(4).size(), 4u) << i;
    }
  }
  Host last = connect();
  EXPECT_EQ(scan(last, kGreyLines).pages.size(), 1u);
  last.close();
  for (int wait = 0; wait < 200 && openDescriptors() > before; ++wait) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_LE(openDescriptors(), before);
}

TEST_F(SeveralHostsTest, NoiseIsRefusedAndTheScannerGoesOn) {
  std::mt19937 random(18);
  for (const Profile& profile : {office_, classic_}) {
    serveSheets(profile, 1);
    for (int i = 0; i < 60; ++i) {
      std::string bytes = i % 3 == 0   ? test::settingsFrame(kGreyLines) + test::startFrame("AUTO")
                          : i % 3 == 1 ? test::startFrame1()
                                       : std::string(random() % 6000, '\0');
      if (i % 3 == 2) std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
      for (int hits = 0; hits < 4; ++hits) bytes[random() % bytes.size()] = static_cast<char>(random());
      Host host = connect();
      host.send(bytes);
      if (i % 2 == 0) host.receive(1);
    }
    Host host = connect();
    host.send(kQ);
    EXPECT_EQ(host.receive(2), (Bytes{0xC1, 0x00}));
    stop();
  }
}

TEST_F(SeveralHostsTest, OneHostTooManyIsTurnedAway) {
  serveSheets(office_, 1);
  std::vector<Host> hosts;
  for (std::size_t i = 0; i < Server::kMaxHosts; ++i) {
    hosts.push_back(connect());
    hosts.back().send(kQ);
    ASSERT_EQ(hosts.back().receive(4).size(), 4u);
  }
  Host tooMany = connect();
  EXPECT_TRUE(tooMany.isAtEnd());
  EXPECT_NE(logged().find("too many hosts"), std::string::npos);
  hosts.pop_back();
  for (int tries = 0; tries < 100; ++tries) {
    Host next = connect();
    next.send(kQ);
    if (next.receive(4).size() == 4) return;
  }
  FAIL() << "no host is served any more";
}

}  // namespace
}  // namespace vscan
