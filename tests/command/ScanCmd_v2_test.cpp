#include "command/ScanCmd_v2.h"

#include <gtest/gtest.h>

#include "tests/command/answers.h"
#include "tests/command/frame_lines.h"
#include "tests/fakes/ScriptedDevice.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;
using answers::bodyOf;
using answers::framed;
using answers::pattern;
using answers::slackOf;
using frame_lines::Param;

namespace {

const char kNoAccess[] = "CCmdDevAccess instance does not exist.";
const char kEmptySsp[] =
    "\x1BSSP\n"
    "OS=WIN\nPSRC=AUTO\nRESO=0,0\nCLR=TEXT\nAREA=NORMAL\nMRGN=0,0,0,0\nDPLX=OFF\nBRIT=50\nCONT=50\nCOMP=NONE\n"
    "RATE=0\nJSF=444\nIPRC=NORMAL\nPTYPE=NORMAL\nPAGE=0\nLONG=OFF\nCARR=OFF\nRMGC=OFF\nDTDF=OFF\nDT4V=OFF\nDSKW=OFF\n"
    "LSMD=OFF\nRMBP=OFF\nRMMR=OFF\nGMMA=OFF\nTONE=OFF\nQTFD=OFF\nUSER=\n\x80";

// The five commands with a framed answer.
struct Query {
  const char* signature;
  std::string frame;
  QSRSLT (*run)(CScanCmd_v2&, _SCANCMD_RESPONSE_INFO*);
};
Param param = frame_lines::zero();
const Query kQueries[] = {
    {"GKP", "\x1BGKP\n\x80", [](CScanCmd_v2& c, _SCANCMD_RESPONSE_INFO* r) { return c.ExeGKPcmd(r); }},
    {"SSP", kEmptySsp, [](CScanCmd_v2& c, _SCANCMD_RESPONSE_INFO* r) { return c.ExeSSPcmd(r, &param); }},
    {"GCT", "\x1BGCT\n\x80", [](CScanCmd_v2& c, _SCANCMD_RESPONSE_INFO* r) { return c.ExeGCTcmd(r); }},
    {"GCP", "\x1BGCP\n\x80", [](CScanCmd_v2& c, _SCANCMD_RESPONSE_INFO* r) { return c.ExeGCPcmd(r); }},
    {"GDS", "\x1BGDS\n\x80", [](CScanCmd_v2& c, _SCANCMD_RESPONSE_INFO* r) { return c.ExeGDScmd(r); }},
};

std::string refusal(int result) {
  char line[100];
  std::snprintf(line, sizeof line, "Return error result from device. Result Code = 0x%02X",
                static_cast<unsigned>(result));
  return line;
}

}  // namespace

class ScanCmd_v2 : public ::testing::Test {
 protected:
  ScanCmd_v2() { access.SetPointerToDeviceAccess(&device); }
  ~ScanCmd_v2() override { EXPECT_EQ(device.trouble(), ""); }

  ScriptedDevice device{true};
  CCmdDevAccess access;
  CScanCmd_v2 command{&access};
  LogCapture log;
  unsigned char rubbish = 0;
  _SCANCMD_RESPONSE_INFO response{99, &rubbish};
};

TEST_F(ScanCmd_v2, EachQuerySendsItsFrameAndKeepsItsBody) {
  _SCANCMD_RESPONSE_INFO kept[std::size(kQueries)];
  for (std::size_t i = 0; i < std::size(kQueries); ++i) {
    SCOPED_TRACE(kQueries[i].signature);
    device.reads.clear();
    device.expect(kQueries[i].frame).answer(framed(kQueries[i].signature, pattern(50 + i)));
    EXPECT_EQ(kQueries[i].run(command, &kept[i]), 0u);
    EXPECT_EQ(slackOf(kept[i]), std::string(8, '\0'));
    ASSERT_EQ(device.reads.size(), 1u);
    EXPECT_EQ(device.reads[0].timeOutMs, 5000);
  }
  for (std::size_t i = 0; i < std::size(kQueries); ++i) {
    EXPECT_EQ(bodyOf(kept[i]), pattern(50 + i)) << "one command's answer outlives the others";
  }
  EXPECT_EQ(device.closes, 0);
}

TEST_F(ScanCmd_v2, AnAnswerMayComeInPartsBehindItsHeader) {
  for (const Query& query : kQueries) {
    const std::string bytes = framed(query.signature, pattern(30));
    for (std::size_t cut = 8; cut < bytes.size(); ++cut) {
      device.expect(query.frame).answerInParts(bytes, {cut});
      ASSERT_EQ(query.run(command, &response), 0u) << query.signature << cut;
      ASSERT_EQ(bodyOf(response), pattern(30)) << query.signature << cut;
    }
  }
}

TEST_F(ScanCmd_v2, AFailedQueryHasForgottenTheAnswerBefore) {
  struct Row {
    const char* name;
    void (*script)(ScriptedDevice&, const Query&);
    QSRSLT result;
  };
  const Row rows[] = {
      {"the send fails", [](ScriptedDevice& d, const Query& q) { d.expectBut(q.frame, 0, 0x40500020); }, 0x40500020},
      {"the send leaves a code", [](ScriptedDevice& d, const Query& q) { d.expectBut(q.frame, 6, 0x40500022); },
       0x40500022},
      {"a time-out", [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).timeOut(); }, ScriptedDevice::kTimeOut},
      {"a time-out that leaves no code", [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).timeOut(0); },
       0x70210002},
      {"a lost device", [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).failRead(ScriptedDevice::kLost); },
       ScriptedDevice::kLost},
      {"refused", [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).answer(framed(q.signature, "x", 0xA4)); },
       0x102400A4},
      {"refused with another signature",
       [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).answer(framed("???", "x", 0xFF)); }, 0x102400FF},
      {"wrong signature", [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).answer(framed("QDI", "x")); },
       0x10210043},
      {"an empty body",
       [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).answer(framed(q.signature, "")).timeOut(); },
       ScriptedDevice::kTimeOut},
      {"an empty body without a code",
       [](ScriptedDevice& d, const Query& q) { d.expect(q.frame).answer(framed(q.signature, "")).timeOut(0); },
       0x70210002},
      {"too large",
       [](ScriptedDevice& d, const Query& q) {
         d.expect(q.frame).answer("\0"s + q.signature + "\xF8\xFF\x03\0rest"s).answer("more").timeOut(0);
       },
       0x10210032},
  };
  for (const Query& query : kQueries) {
    for (const Row& row : rows) {
      SCOPED_TRACE(query.signature + ": "s + row.name);
      device.expect(query.frame).answer(framed(query.signature, "good"));
      EXPECT_EQ(query.run(command, &response), 0u);
      row.script(device, query);
      EXPECT_EQ(query.run(command, &response), row.result);
      EXPECT_EQ(response.size, 0);
      EXPECT_EQ(response.data, nullptr);
      EXPECT_EQ(device.closes, 0);
    }
  }
}

TEST_F(ScanCmd_v2, EveryResultByteOfARefusalIsTheLowByteOfTheCode) {
  for (int result = 1; result < 256; ++result) {
    log.lines.clear();
    device.expect(kQueries[1].frame).answer(framed("SSP", "x", result));
    EXPECT_EQ(kQueries[1].run(command, &response), 0x10240000u + static_cast<unsigned>(result));
    EXPECT_TRUE(log.says(refusal(result))) << log.all();
  }
}

TEST_F(ScanCmd_v2, NullArgumentsAreRefusedUnbuiltAndUnsent) {
  for (const Query& query : kQueries) EXPECT_EQ(query.run(command, nullptr), 0x70210002u) << query.signature;
  EXPECT_EQ(command.ExeSSPcmd(&response, nullptr), 0x70210002u);
  EXPECT_EQ(command.ExeXSCcmd(nullptr), 0x70210002u);
  EXPECT_TRUE(device.writes.empty());
  EXPECT_EQ(log.all().find(" Command:"), std::string::npos) << log.all();
}

TEST_F(ScanCmd_v2, ARefusedArgumentBuildsNoFrameAndHandsOutWhatIsStored) {
  device.expect(kQueries[1].frame).answer(framed("SSP", "good"));
  EXPECT_EQ(command.ExeSSPcmd(&response, &param), 0u);
  log.lines.clear();
  response = {99, &rubbish};
  EXPECT_EQ(command.ExeSSPcmd(&response, nullptr), 0x70210002u);
  EXPECT_EQ(bodyOf(response), "good");
  EXPECT_EQ(command.ExeSSPcmd(nullptr, &param), 0x70210002u);
  for (const LogLine& line : log.lines) EXPECT_EQ(line.text.find("Command:"), std::string::npos) << line.text;
}

TEST_F(ScanCmd_v2, WithoutAccessNothingElseIsLookedAt) {
  CScanCmd_v2 without(nullptr);
  for (const Query& query : kQueries) EXPECT_EQ(query.run(without, nullptr), 0x40210011u) << query.signature;
  EXPECT_EQ(without.ExeXSCcmd(nullptr), 0x40210011u);
  EXPECT_EQ(without.ExeABTcmd(SCANCMD_EJECTION_ALL), 0x40210011u);
  EXPECT_EQ(without.ExeCKDcmd(SCANCMD_PAPERSOURCE_ADF), 0x40210011u);
  EXPECT_TRUE(log.says(kNoAccess)) << log.all();
  EXPECT_EQ(log.all().find(" Command:"), std::string::npos) << log.all();
}

TEST_F(ScanCmd_v2, TheStartIsSentWithoutWaitingForAnAnswer) {
  param = frame_lines::zero();
  param.resolution = {300, 300, false};
  param.scanArea = {SCANCMD_SCAN_AREA_NORMAL, 0, 0, 2550, 3300};
  const std::string frame = "\x1BXSC\nRESO=300,300\nAREA=0,0,2550,3300\nMODE=NORMAL\n\x80";
  device.expect(frame);
  EXPECT_EQ(command.ExeXSCcmd(&param), 0u);
  device.expectBut(frame, -1, 0x40500023);
  EXPECT_EQ(command.ExeXSCcmd(&param), 0x40500023u);
  EXPECT_TRUE(device.reads.empty());
  param = frame_lines::zero();
}

TEST_F(ScanCmd_v2, AnAbortIsSentWithoutWaitingForAnAnswer) {
  device
      .expect(
          "\x1B"
          "ABT\n\x80")
      .expect(
          "\x1B"
          "ABT\nEJCT=ALL\n\x80");
  EXPECT_EQ(command.ExeABTcmd(SCANCMD_EJECTION_UNSPECIFIED), 0u);
  EXPECT_EQ(command.ExeABTcmd(SCANCMD_EJECTION_ALL), 0u);
  device.expectBut(
      "\x1B"
      "ABT\nEJCT=NO\n\x80",
      4, 0x40500024);
  EXPECT_EQ(command.ExeABTcmd(SCANCMD_EJECTION_NO), 0x40500024u);
  EXPECT_TRUE(device.reads.empty());
}

TEST_F(ScanCmd_v2, ADocumentCheckGivesEveryStatusByteAndIsNeverZero) {
  const std::string frame =
      "\x1B"
      "CKD\nPSRC=ADF\n\x80";
  for (int status = 0; status < 256; ++status) {
    device.expect(frame).answer("\0"s + static_cast<char>(status));
    EXPECT_EQ(command.ExeCKDcmd(SCANCMD_PAPERSOURCE_ADF), 0x202000u | static_cast<unsigned>(status));
  }
  EXPECT_EQ(device.reads[0].timeOutMs, 5000);
}

TEST_F(ScanCmd_v2, ARefusedDocumentCheckGivesTheResultByte) {
  const std::string frame =
      "\x1B"
      "CKD\nPSRC=FB\n\x80";
  for (int result = 1; result < 256; ++result) {
    log.lines.clear();
    device.expect(frame).answer(static_cast<char>(result) + "\x05"s);
    EXPECT_EQ(command.ExeCKDcmd(SCANCMD_PAPERSOURCE_FB), 0x10240000u | static_cast<unsigned>(result));
    EXPECT_TRUE(log.says(refusal(result))) << log.all();
  }
}

TEST_F(ScanCmd_v2, ADocumentCheckTellsTheTransportsFailures) {
  const std::string frame =
      "\x1B"
      "CKD\nPSRC=AUTO\n\x80";
  device.expect(frame).answer("\0"s);
  EXPECT_EQ(command.ExeCKDcmd(SCANCMD_PAPERSOURCE_AUTO), 0x10210041u);
  device.expect(frame).timeOut();
  EXPECT_EQ(command.ExeCKDcmd(SCANCMD_PAPERSOURCE_AUTO), ScriptedDevice::kTimeOut);
  device.expectBut(frame, 0, 0x40500025);
  EXPECT_EQ(command.ExeCKDcmd(SCANCMD_PAPERSOURCE_AUTO), 0x40500025u);
}

TEST_F(ScanCmd_v2, FreeingForgetsEveryAnswer) {
  for (const Query& query : kQueries) {
    device.expect(query.frame).answer(framed(query.signature, "good"));
    EXPECT_EQ(query.run(command, &response), 0u);
  }
  command.FreeResCmdData();
  command.FreeResCmdData();
}
