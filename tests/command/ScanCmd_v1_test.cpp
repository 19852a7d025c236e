#include "command/ScanCmd_v1.h"

#include <gtest/gtest.h>

#include "tests/command/answers.h"
#include "tests/command/frame_lines.h"
#include "tests/fakes/ScriptedDevice.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;
using answers::bodyOf;
using answers::pattern;
using answers::slackOf;
using frame_lines::Param;

namespace {

const char kNoAccess[] = "CCmdDevAccess instance does not exist.";
const std::string kEmptyI = "\x1BI\nR=0,0\nM=TEXT\nD=SIN\nS=NORMAL_SCAN\n\x80";

// A framed answer: the result byte if there is one, a length of two bytes, the body.
std::string framed(int result, const std::string& body) {
  std::string bytes;
  if (result >= 0) bytes += static_cast<char>(result);
  return bytes + static_cast<char>(body.size() & 0xFF) + static_cast<char>(body.size() >> 8) + body;
}

// The four commands with a framed answer.
struct Query {
  const char* name;
  std::string frame;
  int result;  // expected result byte; below 0 there is none
  QSRSLT (*run)(CScanCmd_v1&, _SCANCMD_RESPONSE_INFO*);
};
Param param = frame_lines::zero();
const Query kQueries[] = {
    {"K", "\x1BK\n\x80", 0x30, [](CScanCmd_v1& c, _SCANCMD_RESPONSE_INFO* r) { return c.ExeKcmd(r); }},
    {"I", kEmptyI, 0x00, [](CScanCmd_v1& c, _SCANCMD_RESPONSE_INFO* r) { return c.ExeIcmd(r, &param); }},
    {"P", "\x1BP\n\x80", -1, [](CScanCmd_v1& c, _SCANCMD_RESPONSE_INFO* r) { return c.ExePcmd(r); }},
    {"E", kEmptyI, 0x00, [](CScanCmd_v1& c, _SCANCMD_RESPONSE_INFO* r) { return c.ExeEcmd(r, &param); }},
};

std::string refusal(const char* what, int byte) {
  char line[100];
  std::snprintf(line, sizeof line, "Return error result from device. %s Code = 0x%02X", what,
                static_cast<unsigned>(byte));
  return line;
}

}  // namespace

class ScanCmd_v1 : public ::testing::Test {
 protected:
  ScanCmd_v1() { access.SetPointerToDeviceAccess(&device); }
  ~ScanCmd_v1() override { EXPECT_EQ(device.trouble(), ""); }

  ScriptedDevice device{true};
  CCmdDevAccess access;
  CScanCmd_v1 command{&access};
  LogCapture log;
  unsigned char rubbish = 0;
  _SCANCMD_RESPONSE_INFO response{99, &rubbish};
};

TEST_F(ScanCmd_v1, EachQuerySendsItsFrameAndKeepsItsBody) {
  _SCANCMD_RESPONSE_INFO kept[std::size(kQueries)];
  for (std::size_t i = 0; i < std::size(kQueries); ++i) {
    SCOPED_TRACE(kQueries[i].name);
    device.reads.clear();
    device.expect(kQueries[i].frame).answer(framed(kQueries[i].result, pattern(300 + i)));
    EXPECT_EQ(kQueries[i].run(command, &kept[i]), 0u);
    EXPECT_EQ(slackOf(kept[i]), std::string(8, '\0'));
    ASSERT_EQ(device.reads.size(), 1u);
    EXPECT_EQ(device.reads[0].timeOutMs, 5000);
  }
  for (std::size_t i = 0; i < std::size(kQueries); ++i) {
    EXPECT_EQ(bodyOf(kept[i]), pattern(300 + i)) << "one command's answer outlives the others";
  }
  EXPECT_EQ(device.closes, 0);
}

TEST_F(ScanCmd_v1, AnAnswerMayComeInPartsBehindItsHeader) {
  for (const Query& query : kQueries) {
    const std::string bytes = framed(query.result, pattern(30));
    for (std::size_t cut = 3; cut < bytes.size(); ++cut) {
      device.expect(query.frame).answerInParts(bytes, {cut});
      ASSERT_EQ(query.run(command, &response), 0u) << query.name << cut;
      ASSERT_EQ(bodyOf(response), pattern(30)) << query.name << cut;
    }
  }
}

TEST_F(ScanCmd_v1, EveryOtherResultByteIsTheLowByteOfTheCode) {
  for (const Query& query : kQueries) {
    if (query.result < 0) continue;
    for (int result = 0; result < 256; ++result) {
      SCOPED_TRACE(query.name + std::to_string(result));
      log.lines.clear();
      device.expect(query.frame).answer(framed(result, "body"));
      const bool good = result == query.result;
      EXPECT_EQ(query.run(command, &response), good ? 0u : 0x10240000u + static_cast<unsigned>(result));
      EXPECT_EQ(bodyOf(response), good ? "body" : "");
      EXPECT_EQ(log.has(0, refusal("Result", result)), !good) << log.all();
    }
  }
}

TEST_F(ScanCmd_v1, APaletteHasNoResultByteToCompare) {
  for (int first = 1; first < 256; ++first) {
    const std::string body(static_cast<std::size_t>(first), 'p');
    device.expect("\x1BP\n\x80").answer(framed(-1, body));
    EXPECT_EQ(command.ExePcmd(&response), 0u) << first;
    EXPECT_EQ(bodyOf(response), body);
  }
}

TEST_F(ScanCmd_v1, AFailedQueryHasForgottenTheAnswerBefore) {
  struct Row {
    const char* name;
    void (*script)(ScriptedDevice&, const Query&);
    QSRSLT result;
  };
  const Row rows[] = {
      {"the send fails", [](ScriptedDevice& d, const Query& q) { d.expectBut(q.frame, 0, 0x40500020); }, 0x40500020},
      {"the send leaves a code", [](ScriptedDevice& d, const Query& q) { d.expectBut(q.frame, 4, 0x40500022); },
       0x40500022},
      {"a time-out", [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).timeOut(); }, ScriptedDevice::kTimeOut},
      {"a lost device", [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).failRead(ScriptedDevice::kLost); },
       ScriptedDevice::kLost},
      {"an empty body",
       [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).answer(framed(q.result, "")).timeOut(); },
       ScriptedDevice::kTimeOut},
      {"an empty body without a code",
       [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).answer(framed(q.result, "")).timeOut(0); },
       0x70210002},
      {"a length of 0x8000 and more is negative",
       [](ScriptedDevice& d, const Query& q) {
         const std::string head = framed(q.result, "");
         d.expect(q.frame).answer(head.substr(0, head.size() - 2) + "\xFF\xFFrest").timeOut();
       },
       ScriptedDevice::kTimeOut},
  };
  for (const Query& query : kQueries) {
    for (const Row& row : rows) {
      SCOPED_TRACE(query.name + ": "s + row.name);
      device.expect(query.frame).answer(framed(query.result, "good"));
      EXPECT_EQ(query.run(command, &response), 0u);
      row.script(device, query);
      EXPECT_EQ(query.run(command, &response), row.result);
      EXPECT_EQ(response.size, 0);
      EXPECT_EQ(response.data, nullptr);
      EXPECT_EQ(device.closes, 0);
    }
  }
}

TEST_F(ScanCmd_v1, TheDocumentSizeIsAskedForWithAnIFrame) {
  param.resolution = {200, 200, false};
  param.duplexScan.isDuplex = true;
  const std::string frame = "\x1BI\nR=200,200\nM=TEXT\nD=DUP\nS=NORMAL_SCAN\n\x80";
  _SCANCMD_RESPONSE_INFO i{};
  device.expect(frame).answer(framed(0, "i body")).expect(frame).answer(framed(0, "e body"));
  EXPECT_EQ(command.ExeIcmd(&i, &param), 0u);
  log.lines.clear();
  EXPECT_EQ(command.ExeEcmd(&response, &param), 0u);
  EXPECT_EQ(bodyOf(response), "e body");
  EXPECT_EQ(bodyOf(i), "i body") << "it is kept apart from I's answer";
  EXPECT_TRUE(log.has(0, "I Command:\r\n" + frame)) << log.all();
  EXPECT_FALSE(log.says("E Command:\r\n" + frame)) << log.all();
  param = frame_lines::zero();
}

TEST_F(ScanCmd_v1, NullArgumentsAreRefusedUnsentAndUnlogged) {
  for (const Query& query : kQueries) EXPECT_EQ(query.run(command, nullptr), 0x70210002u) << query.name;
  EXPECT_EQ(command.ExeIcmd(&response, nullptr), 0x70210002u);
  EXPECT_EQ(command.ExeEcmd(&response, nullptr), 0x70210002u);
  EXPECT_EQ(command.ExeXcmd(nullptr), 0x70210002u);
  EXPECT_TRUE(device.writes.empty());
  for (const LogLine& line : log.lines) EXPECT_EQ(line.text.find("Command:"), std::string::npos) << line.text;
}

TEST_F(ScanCmd_v1, ARefusedArgumentHandsOutWhatIsStored) {
  device.expect(kEmptyI).answer(framed(0, "good"));
  EXPECT_EQ(command.ExeIcmd(&response, &param), 0u);
  response = {99, &rubbish};
  EXPECT_EQ(command.ExeIcmd(&response, nullptr), 0x70210002u);
  EXPECT_EQ(bodyOf(response), "good");
  response = {99, &rubbish};
  EXPECT_EQ(command.ExeEcmd(&response, nullptr), 0x70210002u);
  EXPECT_EQ(response.data, nullptr);
  EXPECT_EQ(response.size, 0);
}

TEST_F(ScanCmd_v1, WithoutAccessNothingElseIsLookedAt) {
  CScanCmd_v1 without(nullptr);
  for (const Query& query : kQueries) {
    EXPECT_EQ(query.run(without, nullptr), 0x40210011u) << query.name;
    response = {99, &rubbish};
    EXPECT_EQ(query.run(without, &response), 0x40210011u) << query.name;
    EXPECT_EQ(response.data, nullptr);
  }
  EXPECT_EQ(without.ExeXcmd(nullptr), 0x40210011u);
  EXPECT_EQ(without.ExeRcmd(), 0x40210011u);
  EXPECT_EQ(without.ExeDcmd(SCANCMD_PAPERSOURCE_ADF), 0x40210011u);
  EXPECT_EQ(without.ExeScmd(SCANCMD_PAPERSOURCE_ADF), 0x40210011u);
  EXPECT_TRUE(log.has(0, kNoAccess)) << log.all();
  EXPECT_TRUE(device.writes.empty());
}

TEST_F(ScanCmd_v1, TheStartAndTheStopAreSentWithoutWaitingForAnAnswer) {
  const std::string x =
      "\x1BX\nR=0,0\nM=TEXT\nC=NONE\nJ=MID\nB=50\nN=50\nA=0,0,0,0\nD=SIN\nS=NORMAL_SCAN\nP=0\nE=0\nG=0\nL=0\n\x80";
  device.expect(x).expectBut(x, -1, 0x40500023).expect("\x1BR\n\x80").expectBut("\x1BR\n\x80", 4, 0x40500024);
  EXPECT_EQ(command.ExeXcmd(&param), 0u);
  EXPECT_EQ(command.ExeXcmd(&param), 0x40500023u);
  EXPECT_EQ(command.ExeRcmd(), 0u);
  EXPECT_EQ(command.ExeRcmd(), 0x40500024u);
  EXPECT_TRUE(device.reads.empty());
}

TEST_F(ScanCmd_v1, AStatusByteOtherThan0x80IsTheLowByteOfTheCode) {
  for (int status = 0; status < 256; ++status) {
    SCOPED_TRACE(status);
    log.lines.clear();
    device
        .expect(
            "\x1B"
            "D\nADF\n\x80")
        .answer(std::string(1, static_cast<char>(status)));
    device.expect("\x1BS\nFB\n\x80").answer(std::string(1, static_cast<char>(status)) + "more");
    const bool good = status == 0x80;
    const QSRSLT wanted = good ? 0 : 0x10240000u + static_cast<unsigned>(status);
    EXPECT_EQ(command.ExeDcmd(SCANCMD_PAPERSOURCE_ADF), wanted);
    EXPECT_EQ(log.has(0, refusal("Status", status)), !good) << log.all();
    log.lines.clear();
    EXPECT_EQ(command.ExeScmd(SCANCMD_PAPERSOURCE_FB), wanted);
    EXPECT_EQ(log.has(0, refusal("Status", status)), !good) << log.all();
  }
  EXPECT_EQ(device.reads[0].timeOutMs, 5000);
}

TEST_F(ScanCmd_v1, AStatusTellsTheTransportsFailures) {
  const std::string frame = "\x1BS\nAUTO\n\x80";
  device.expect(frame).timeOut();
  EXPECT_EQ(command.ExeScmd(SCANCMD_PAPERSOURCE_AUTO), ScriptedDevice::kTimeOut);
  device.expect(frame).timeOut(0);
  EXPECT_EQ(command.ExeScmd(SCANCMD_PAPERSOURCE_AUTO), 0x10210041u);
  device.expectBut(frame, 0, 0x40500025);
  EXPECT_EQ(command.ExeScmd(SCANCMD_PAPERSOURCE_AUTO), 0x40500025u);
}

TEST_F(ScanCmd_v1, FreeingForgetsEveryAnswer) {
  for (const Query& query : kQueries) {
    device.expect(query.frame).answer(framed(query.result, "good"));
    EXPECT_EQ(query.run(command, &response), 0u);
  }
  command.FreeResCmdData();
  EXPECT_EQ(command.ExeIcmd(&response, nullptr), 0x70210002u);
  EXPECT_EQ(response.data, nullptr);
  command.FreeResCmdData();
}
