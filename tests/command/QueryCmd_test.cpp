#include "command/QueryCmd.h"

#include <gtest/gtest.h>

#include "tests/command/answers.h"
#include "tests/fakes/ScriptedDevice.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;
using answers::bodyOf;
using answers::framed;
using answers::pattern;
using answers::qAnswer;
using answers::slackOf;

namespace {

const std::string kQ = "\x1BQ\n\x80";
const std::string kQDI = "\x1BQDI\n\x80";

void expectEmpty(const _SCANCMD_DEVICECAP_INFO& info) {
  EXPECT_EQ(info.size, 0);
  EXPECT_EQ(info.data, nullptr);
}

}  // namespace

class QueryCmd : public ::testing::Test {
 protected:
  QueryCmd() { access.SetPointerToDeviceAccess(&device); }
  ~QueryCmd() override { EXPECT_EQ(device.trouble(), ""); }

  ScriptedDevice device{true};
  CCmdDevAccess access;
  CQueryCmd query{&access};
  LogCapture log;
  // Rubbish, so that a record that is not written shows.
  unsigned char rubbish = 0;
  _SCANCMD_DEVICECAP_INFO info{SCANCMD_GENERATION_2ND, 99, 99, &rubbish};
};

TEST_F(QueryCmd, QIsFourBytesAndKeepsItsBody) {
  device.expect(kQ).answer(qAnswer("\x01" + pattern(73)));
  EXPECT_EQ(query.ExeQcmd(&info), 0u);
  EXPECT_EQ(info.generation, SCANCMD_GENERATION_1ST);
  EXPECT_EQ(info.version, 1);
  EXPECT_EQ(bodyOf(info), "\x01" + pattern(73));
  EXPECT_EQ(slackOf(info), std::string(8, '\0'));
  ASSERT_EQ(device.reads.size(), 1u);
  EXPECT_EQ(device.reads[0].timeOutMs, 35000);
  EXPECT_EQ(device.closes, 0);
  const _SCANCMD_DEVICECAP_INFO kept = query.GetDeviceCapInfo();
  EXPECT_EQ(kept.data, info.data);
  EXPECT_EQ(kept.size, info.size);
}

TEST_F(QueryCmd, TheFirstBodyByteReadAsSignedTellsTheGeneration) {
  for (int first = 0; first < 256; ++first) {
    SCOPED_TRACE(first);
    device.expect(kQ).answer(qAnswer(static_cast<char>(first) + "rest"s));
    EXPECT_EQ(query.ExeQcmd(&info), 0u);
    EXPECT_EQ(info.generation, first >= 0x10 && first <= 0x7F ? SCANCMD_GENERATION_2ND : SCANCMD_GENERATION_1ST);
    EXPECT_EQ(info.version, first < 0x80 ? first : first - 256);
  }
}

TEST_F(QueryCmd, ABodyOfOneByteIsEnough) {
  device.expect(kQ).answer(qAnswer("\x10"));
  EXPECT_EQ(query.ExeQcmd(&info), 0u);
  EXPECT_EQ(info.generation, SCANCMD_GENERATION_2ND);
  EXPECT_EQ(bodyOf(info), "\x10");
}

TEST_F(QueryCmd, QMayComeInParts) {
  const std::string bytes = qAnswer(pattern(74));
  for (std::size_t cut = 3; cut < bytes.size(); ++cut) {
    device.expect(kQ).answerInParts(bytes, {cut});
    ASSERT_EQ(query.ExeQcmd(&info), 0u) << cut;
    ASSERT_EQ(bodyOf(info), pattern(74)) << cut;
  }
}

TEST_F(QueryCmd, EveryWrongSignatureOfQIsRefused) {
  for (const std::string& signature : {"\xC1\x01"s, "\x41\x00"s, "\x00\xC1"s, "\xC1\xFF"s}) {
    log.lines.clear();
    device.expect(kQ).answer(signature + "\x03\x10x");
    EXPECT_EQ(query.ExeQcmd(&info), 0x10210043u);
    EXPECT_TRUE(log.says("Invalid signature of response data.")) << log.all();
    expectEmpty(info);
  }
}

TEST_F(QueryCmd, AFailedQHasForgottenTheAnswerBefore) {
  struct Row {
    const char* name;
    void (*script)(ScriptedDevice&);
    QSRSLT result;
  };
  const Row rows[] = {
      {"the send fails", [](ScriptedDevice& d) { d.expectBut(kQ, -1, 0x40500020); }, 0x40500020},
      {"a time-out", [](ScriptedDevice& d) { d.expect(kQ).timeOut(); }, ScriptedDevice::kTimeOut},
      {"a time-out that leaves no code", [](ScriptedDevice& d) { d.expect(kQ).timeOut(0); }, 0x70210002},
      {"a lost device", [](ScriptedDevice& d) { d.expect(kQ).failRead(ScriptedDevice::kLost); }, ScriptedDevice::kLost},
      {"an empty body", [](ScriptedDevice& d) { d.expect(kQ).answer("\xC1\x00\x01"s).timeOut(); },
       ScriptedDevice::kTimeOut},
      {"an empty body without a code", [](ScriptedDevice& d) { d.expect(kQ).answer("\xC1\x00\x01"s).timeOut(0); },
       0x70210002},
      {"a length below its own width", [](ScriptedDevice& d) { d.expect(kQ).answer("\xC1\x00\x00"s).timeOut(0); },
       0x70210002},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    device.expect(kQ).answer(qAnswer("good"));
    EXPECT_EQ(query.ExeQcmd(&info), 0u);
    row.script(device);
    EXPECT_EQ(query.ExeQcmd(&info), row.result);
    expectEmpty(info);
    expectEmpty(query.GetDeviceCapInfo());
    EXPECT_EQ(device.closes, 0);
  }
}

TEST_F(QueryCmd, QDIIsSixBytesAndAlwaysOfTheSecondGenerationAndVersionZero) {
  device.expect(kQDI).answer(framed("QDI", pattern(700)));
  EXPECT_EQ(query.ExeQDIcmd(&info), 0u);
  EXPECT_EQ(info.generation, SCANCMD_GENERATION_2ND);
  EXPECT_EQ(info.version, 0);
  EXPECT_EQ(bodyOf(info), pattern(700));
  EXPECT_EQ(slackOf(info), std::string(8, '\0'));
  EXPECT_EQ(device.reads[0].timeOutMs, 35000);
}

TEST_F(QueryCmd, ARefusedQDIGivesTheDevicesByte) {
  for (int result = 1; result < 256; ++result) {
    log.lines.clear();
    device.expect(kQDI).answer(framed("QDI", "x", result));
    EXPECT_EQ(query.ExeQDIcmd(&info), 0x10240000u + static_cast<unsigned>(result));
    char line[100];
    std::snprintf(line, sizeof line, "Return error result from device. Result Code = 0x%02X",
                  static_cast<unsigned>(result));
    EXPECT_TRUE(log.says(line)) << log.all();
    expectEmpty(info);
  }
}

TEST_F(QueryCmd, AFailedQDIHasForgottenTheAnswerBefore) {
  struct Row {
    const char* name;
    void (*script)(ScriptedDevice&);
    QSRSLT result;
  };
  const Row rows[] = {
      {"wrong signature", [](ScriptedDevice& d) { d.expect(kQDI).answer(framed("QDX", "x")); }, 0x10210043},
      {"the result byte goes before the signature",
       [](ScriptedDevice& d) { d.expect(kQDI).answer(framed("XXX", "x", 0x84)); }, 0x10240084},
      {"a time-out", [](ScriptedDevice& d) { d.expect(kQDI).timeOut(); }, ScriptedDevice::kTimeOut},
      {"a time-out that leaves no code", [](ScriptedDevice& d) { d.expect(kQDI).timeOut(0); }, 0x70210002},
      {"a refusal without a body ends by time-out",
       [](ScriptedDevice& d) { d.expect(kQDI).answer(framed("QDI", "", 0x90)).timeOut(); }, ScriptedDevice::kTimeOut},
      {"an empty body", [](ScriptedDevice& d) { d.expect(kQDI).answer(framed("QDI", "")).timeOut(0); }, 0x70210002},
      {"too large", [](ScriptedDevice& d) { d.expect(kQDI).answer("\0QDI\0\0\4\0"s).timeOut(0); }, 0x10210032},
      {"the send fails", [](ScriptedDevice& d) { d.expectBut(kQDI, 6, 0x40500021); }, 0x40500021},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    device.expect(kQDI).answer(framed("QDI", "good"));
    EXPECT_EQ(query.ExeQDIcmd(&info), 0u);
    row.script(device);
    EXPECT_EQ(query.ExeQDIcmd(&info), row.result);
    expectEmpty(info);
    expectEmpty(query.GetDeviceCapInfo());
  }
}

TEST_F(QueryCmd, TheQDIAnswerGoesBeforeThatOfQ) {
  expectEmpty(query.GetDeviceCapInfo());
  device.expect(kQ).answer(qAnswer("\x10q")).expect(kQDI).answer(framed("QDI", "qdi"));
  EXPECT_EQ(query.ExeQcmd(&info), 0u);
  EXPECT_EQ(bodyOf(query.GetDeviceCapInfo()), "\x10q");
  EXPECT_EQ(query.ExeQDIcmd(&info), 0u);
  EXPECT_EQ(bodyOf(query.GetDeviceCapInfo()), "qdi");
  query.FreeQDIcmdResponseData();
  EXPECT_EQ(bodyOf(query.GetDeviceCapInfo()), "\x10q");
  query.FreeQcmdResponseData();
  expectEmpty(query.GetDeviceCapInfo());
}

TEST_F(QueryCmd, WithoutARecordNothingIsSent) {
  EXPECT_EQ(query.ExeQcmd(nullptr), 0x70210002u);
  EXPECT_EQ(query.ExeQDIcmd(nullptr), 0x70210002u);
  EXPECT_TRUE(device.writes.empty());
}

TEST_F(QueryCmd, CopyingRefusesEmptyBodiesAndReplacesWhatWasThere) {
  const unsigned char bytes[] = {1, 2, 3};
  _SCANCMD_DEVICECAP_INFO record{};
  EXPECT_EQ(query.CopyCmdResDataFromRxBuff(nullptr, 3, record), 0x70210002u);
  EXPECT_EQ(query.CopyCmdResDataFromRxBuff(bytes, 0, record), 0x70210002u);
  EXPECT_EQ(query.CopyCmdResDataFromRxBuff(bytes, -1, record), 0x70210002u);
  EXPECT_EQ(record.data, nullptr);
  EXPECT_EQ(query.CopyCmdResDataFromRxBuff(bytes, 3, record), 0u);
  EXPECT_EQ(query.CopyCmdResDataFromRxBuff(bytes, 2, record), 0u);
  EXPECT_EQ(bodyOf(record), "\1\2");
  EXPECT_EQ(slackOf(record), std::string(8, '\0'));
  query.FreeCmdResponseData(record);
  query.FreeCmdResponseData(record);
  expectEmpty(record);
}

TEST(QueryCmdWithoutADevice, SaysSo) {
  CCmdDevAccess access;
  CQueryCmd query(&access);
  LogCapture log;
  _SCANCMD_DEVICECAP_INFO info{};
  EXPECT_EQ(query.ExeQcmd(&info), 0x40210011u);
  EXPECT_EQ(query.ExeQDIcmd(&info), 0x40210011u);
  EXPECT_TRUE(log.says("IDeviceAccess instance does not exist.")) << log.all();
}

TEST(QueryCmdWithoutAccess, SaysSo) {
  CQueryCmd query(nullptr);
  LogCapture log;
  _SCANCMD_DEVICECAP_INFO info{};
  EXPECT_EQ(query.ExeQcmd(&info), 0x40210011u);
  EXPECT_EQ(query.ExeQDIcmd(&info), 0x40210011u);
  EXPECT_TRUE(log.says("CCmdDevAccess instance does not exist.")) << log.all();
}
