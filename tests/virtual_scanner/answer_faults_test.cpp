// What goes wrong on purpose at the answers to commands, seen by a host.
#include <thread>

#include "device/dialogue.h"
#include "gen1_host.h"
#include "session_fixture.h"

namespace vscan {
namespace {

using test::frameOf;
using test::Host;
using test::patternOf;
using test::questionFrame;
using test::SessionTest;
using test::settingsFrame;
using test::startFrame;
using test::startFrame1;

class AnswerFaultTest : public SessionTest {
 protected:
  Host serveWith(const Profile& profile, const std::string& fault) {
    options_.faults = {parseFault(fault, profile.generation())};
    checkFault(options_.faults.front(), profile.generation());
    serve({profile, Feeder(sheets({patternOf(16, 4, 1)}), false, true), {}, options_});
    return connect();
  }
};

TEST_F(AnswerFaultTest, ADeviceErrorRefusesTheCommand) {
  const struct {
    const char* name;
    bool isFirst;
    const char* fault;
    std::string command;
    Bytes answer;
  } rows[] = {
      {"locked settings", false, "locked@command=SSP", settingsFrame(), {0xA5, 'S', 'S', 'P', 1, 0, 0, 0, 0xA5}},
      {"busy at the start", false, "busy@command=XSC", startFrame("AUTO"), {0xB0, 0x00}},
      {"an open cover at the check", false, "cover-open@command=CKD", frameOf("CKD", {{"PSRC", "ADF"}}), {0xA0, 0}},
      {"a dead lamp", true, "lamp-fault@command=X", startFrame1(), {0xCA}},
      {"busy", true, "busy@command=I", questionFrame(), {0xC5, 1, 0, 0xC5}},
      {"an open cover",
       true,
       "cover-open@command=D",
       "\x1B"
       "D\nADF\n\x80",
       {0xC4}},
  };
  for (const auto& row : rows) {
    Host host = serveWith(row.isFirst ? classic_ : office_, row.fault);
    host.send(row.command);
    EXPECT_EQ(host.receive(row.answer.size()), row.answer) << row.name;
    stop();
  }
}

TEST_F(AnswerFaultTest, SignatureAndLengthAreSpoiltInTheirPlace) {
  const struct {
    bool isFirst;
    const char* fault;
    std::string command;
    Bytes head;
  } rows[] = {
      {false, "wrong-signature@command=Q", "\x1BQ\n\x80", {0x3E, 0x00, 0x02, 0x12}},
      {false, "wrong-signature@command=SSP", settingsFrame(), {0x00, 'S' ^ 0xFF, 'S', 'P', 0x1E, 0, 0, 0}},
      {false, "wrong-length=66000@command=SSP", settingsFrame(), {0x00, 'S', 'S', 'P', 0xD0, 0x01, 0x01, 0x00}},
      {false, "wrong-length=0@command=Q", "\x1BQ\n\x80", {0xC1, 0x00, 0x00, 0x12}},
      {true, "wrong-signature@command=I", questionFrame(), {0xFF}},
      {true, "wrong-length=0xFFFF@command=I", questionFrame(), {0x00, 0xFF, 0xFF}},
      {true, "wrong-length=1@command=Q", "\x1BQ\n\x80", {0xC1, 0x00, 0x01, 11}},
  };
  for (const auto& row : rows) {
    Host host = serveWith(row.isFirst ? classic_ : office_, row.fault);
    host.send(row.command);
    EXPECT_EQ(host.receive(row.head.size()), row.head) << row.fault;
    stop();
  }
}

TEST_F(AnswerFaultTest, ASleepingScannerAnswersItsFirstCommandLate) {
  Host host = serveWith(office_, "pause=150@command=Q,times=1");
  auto began = std::chrono::steady_clock::now();
  host.send("\x1BQ\n\x80");
  EXPECT_EQ(host.receive(4), (Bytes{0xC1, 0x00, 0x02, 0x12}));
  EXPECT_GE(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(150));
  began = std::chrono::steady_clock::now();
  host.send("\x1BQ\n\x80");
  host.receive(4);
  EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds(140));
}

TEST_F(AnswerFaultTest, AnAnswerIsSplitCutShortOrMixedWithGarbage) {
  const struct {
    const char* fault;
    Bytes bytes;  // of the answer to Q and, where that is short, of the next
  } rows[] = {
      {"pause=60@command=Q,byte=2", {0xC1, 0x00, 0x02, 0x12}},
      {"short@command=Q,byte=2,times=1", {0xC1, 0x00, 0xC1, 0x00, 0x02, 0x12}},
      {"garbage=FFFE@command=Q", {0xFF, 0xFE, 0xC1, 0x00, 0x02, 0x12}},
      {"garbage=FFFE@command=Q,byte=3", {0xC1, 0x00, 0x02, 0xFF, 0xFE, 0x12}},
      {"drip=1:5@command=Q", {0xC1, 0x00, 0x02, 0x12}},
  };
  for (const auto& row : rows) {
    Host host = serveWith(office_, row.fault);
    host.send("\x1BQ\n\x80");
    if (std::string(row.fault).starts_with("short")) host.send("\x1BQ\n\x80");
    EXPECT_EQ(host.receive(row.bytes.size()), row.bytes) << row.fault;
    stop();
  }
}

TEST_F(AnswerFaultTest, TheConnectionBreaksOffInsideAnAnswer) {
  for (const char* fault : {"disconnect@command=QDI,byte=11,times=1", "reset@command=QDI,byte=11,times=1"}) {
    Host host = serveWith(office_, fault);
    host.send("\x1BQDI\n\x80");
    EXPECT_EQ(host.receive(100).size(), 11u) << fault;
    EXPECT_TRUE(host.isAtEnd());
    Host next = connect();
    next.send("\x1BQDI\n\x80");
    EXPECT_EQ(next.receive(100).size(), 100u) << fault;
    stop();
  }
}

TEST_F(AnswerFaultTest, SilenceAtTheStartSendsNoRecord) {
  Host host = serveWith(classic_, "silence@command=X");
  host.send(startFrame1());
  for (int i = 0; i < 300 && logged().find("falls silent") == std::string::npos; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_NE(logged().find("falls silent"), std::string::npos);
  stop();
  EXPECT_TRUE(host.isAtEnd());
}

}  // namespace
}  // namespace vscan
