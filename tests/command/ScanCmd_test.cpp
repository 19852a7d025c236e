#include "command/ScanCmd.h"

#include <gtest/gtest.h>

#include <functional>

#include "foundation/qvtcl/TTime.h"
#include "tests/command/answers.h"
#include "tests/command/frame_lines.h"
#include "tests/fakes/ScriptedDevice.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;
using answers::bodyOf;
using answers::framed;
using answers::pattern;
using answers::qAnswer;
using frame_lines::Param;

namespace {

std::vector<unsigned long> sleeps;

}  // namespace

// The linker leads the library's pauses here: they are noted, not slept.
extern "C" void __wrap__ZN5qvtcl6CTTime8Sleep_msEm(qvtcl::CTTime*, unsigned long milliseconds) {
  sleeps.push_back(milliseconds);
}

namespace {

const std::string kQ = "\x1BQ\n\x80";
const std::string kQDI = "\x1BQDI\n\x80";

Param scanParam() {
  Param param = frame_lines::zero();
  param.resolution = {300, 300, false};
  param.scanArea.areaType = SCANCMD_SCAN_AREA_FULL;
  return param;
}
std::string sspFrame(const Param& param) { return CCmdString_v2().MakeSSPcmdString(&param); }
const std::string kXSC = "\x1BXSC\nRESO=300,300\nAREA=FULL\nMODE=NORMAL\n\x80";

// The operations that open the device on demand.
struct Operation {
  const char* name;
  std::function<QSRSLT(CScanCmd&)> run;
  std::string frame;    // empty: not offered
  std::string answer;   // empty: none is read
  QSRSLT result;        // of the second generation
  const char* message;  // logged before the command
  bool takesResponse;
};
_SCANCMD_RESPONSE_INFO response{};
const Operation kOperations[] = {
    {"CheckDocument", [](CScanCmd& c) { return c.CheckDocument(SCANCMD_PAPERSOURCE_ADF); },
     "\x1B"
     "CKD\nPSRC=ADF\n\x80",
     "\0\x42"s, 0x202042, "CKD Command START", false},
    {"SelectPaperSource", [](CScanCmd& c) { return c.SelectPaperSource(SCANCMD_PAPERSOURCE_ADF); }, "", "", 0x10210022,
     nullptr, false},
    {"GetPushScanParameter", [](CScanCmd& c) { return c.GetPushScanParameter(&response); }, "\x1BGKP\n\x80",
     framed("GKP", "body"), 0, "GKP Command START", true},
    {"QueryDeviceScanParameter", [](CScanCmd& c) { return c.QueryDeviceScanParameter(&response); },
     sspFrame(scanParam()), framed("SSP", "body"), 0, "SSP Command START", true},
    {"GetPaletteTable", [](CScanCmd& c) { return c.GetPaletteTable(&response); }, "\x1BGCT\n\x80",
     framed("GCT", "body"), 0, "GCT Command START", true},
    {"GetColorProfile", [](CScanCmd& c) { return c.GetColorProfile(&response); }, "\x1BGCP\n\x80",
     framed("GCP", "body"), 0, "GCP Command START", true},
    {"GetDocumentSizeOnPaperSource", [](CScanCmd& c) { return c.GetDocumentSizeOnPaperSource(&response); },
     "\x1BGDS\n\x80", framed("GDS", "body"), 0, "GDS Command START", true},
    {"StartScanning", [](CScanCmd& c) { return c.StartScanning(); }, kXSC, "", 0, "XSC Command START", false},
    {"AbortScanning", [](CScanCmd& c) { return c.AbortScanning(SCANCMD_EJECTION_ONE); },
     "\x1B"
     "ABT\nEJCT=ONE\n\x80",
     "", 0, "ABT Command START", false},
};

void expectNoData(const _SCANCMD_DEVICECAP_INFO& info) {
  EXPECT_EQ(info.size, 0);
  EXPECT_EQ(info.data, nullptr);
}

}  // namespace

class ScanCmd : public ::testing::Test {
 protected:
  ScanCmd() { sleeps.clear(); }
  ~ScanCmd() override { EXPECT_EQ(device.trouble(), ""); }

  ScriptedDevice device;
  _DEV_IDENTIFIER id{3, 2, "scanner"};
  CScanCmd command{&device, id};
  Param param = scanParam();
  _SCANCMD_DEVICECAP_INFO info{};
  LogCapture log;
};

// ---- the generation

TEST_F(ScanCmd, TheGenerationIsStoredOnceAndThenOnlyCompared) {
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  EXPECT_FALSE(command.SelectCommandVersion(SCANCMD_GENERATION_1ST));
  EXPECT_FALSE(command.SelectCommandVersion(SCANCMD_GENERATION_UNKNOWN));
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  EXPECT_EQ(device.opens, 0);
}

TEST_F(ScanCmd, SelectingTheUnknownGenerationLeavesItUnknown) {
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_UNKNOWN));
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_1ST));
  EXPECT_FALSE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
}

TEST_F(ScanCmd, EveryFirstByteOfTheQAnswerChoosesItsGeneration) {
  for (int first = 0; first < 256; ++first) {
    SCOPED_TRACE(first);
    const bool second = first >= 0x10 && first <= 0x7F;
    ScriptedDevice one;
    CScanCmd fresh(&one, id);
    sleeps.clear();
    one.expect(kQ).answer(qAnswer(static_cast<char>(first) + "rest"s));
    if (second) one.expect(kQDI).answer(framed("QDI", "capability"));
    EXPECT_EQ(fresh.QueryDeviceCapability(&info, true), 0u);
    EXPECT_EQ(info.generation, second ? SCANCMD_GENERATION_2ND : SCANCMD_GENERATION_1ST);
    EXPECT_EQ(bodyOf(info), second ? "capability" : static_cast<char>(first) + "rest"s);
    EXPECT_FALSE(fresh.SelectCommandVersion(second ? SCANCMD_GENERATION_1ST : SCANCMD_GENERATION_2ND));
    EXPECT_TRUE(fresh.SelectCommandVersion(second ? SCANCMD_GENERATION_2ND : SCANCMD_GENERATION_1ST));
    EXPECT_EQ(sleeps, second ? std::vector<unsigned long>{100} : std::vector<unsigned long>{});
    EXPECT_EQ(one.opens, 1);
    EXPECT_EQ(one.closes, 1) << "closed behind the capability";
    EXPECT_EQ(one.trouble(), "");
  }
}

TEST_F(ScanCmd, AQueryReplacesTheGenerationThatWasSelected) {
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_1ST));
  device.expect(kQ).answer(qAnswer("\x10")).expect(kQDI).answer(framed("QDI", "x"));
  EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0u);
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
}

// ---- the capability

TEST_F(ScanCmd, ASecondGenerationQueryLogsItsSteps) {
  device.expect(kQ).answer(qAnswer("\x10")).expect(kQDI).answer(framed("QDI", "x"));
  EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0u);
  std::vector<std::string> steps;
  for (const LogLine& line : log.lines) {
    if (line.text.rfind("Q", 0) != 0 && line.text.rfind("Command", 0) != 0) continue;
    EXPECT_EQ(line.level, 1) << line.text;
    steps.push_back(line.text);
  }
  EXPECT_EQ(steps,
            (std::vector<std::string>{"Q Command START", "Command Generation is 2nd Generation", "QDI Command START"}))
      << log.all();
  EXPECT_EQ(device.openedWith.kind, 3);
  EXPECT_EQ(device.openedWith.connection, 2);
  EXPECT_STREQ(device.openedWith.name, "scanner");
  EXPECT_EQ(info.version, 0);
}

TEST_F(ScanCmd, AFirstGenerationQueryKeepsTheQBody) {
  device.expect(kQ).answer(qAnswer("\x0F" + pattern(73)));
  EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0u);
  EXPECT_TRUE(log.says("Command Generation is 1st Generation")) << log.all();
  EXPECT_EQ(bodyOf(info), "\x0F" + pattern(73));
  _SCANCMD_DEVICECAP_INFO again{};
  EXPECT_EQ(command.QueryDeviceCapability(&again, false), 0u);
  EXPECT_EQ(again.data, info.data);
  EXPECT_EQ(again.generation, SCANCMD_GENERATION_1ST);
  EXPECT_EQ(again.version, 15);
}

TEST_F(ScanCmd, TheLastAnswerIsGivenWithoutSendingAnything) {
  unsigned char rubbish = 0;
  info = {SCANCMD_GENERATION_2ND, 7, 7, &rubbish};
  EXPECT_EQ(command.QueryDeviceCapability(&info, false), 0x10210042u);
  EXPECT_EQ(info.generation, SCANCMD_GENERATION_UNKNOWN);
  EXPECT_EQ(info.version, 0);
  expectNoData(info);
  EXPECT_EQ(device.opens, 0);

  device.expect(kQ).answer(qAnswer("\x10")).expect(kQDI).answer(framed("QDI", "capability"));
  EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0u);
  _SCANCMD_DEVICECAP_INFO again{};
  EXPECT_EQ(command.QueryDeviceCapability(&again, false), 0u);
  EXPECT_EQ(bodyOf(again), "capability");
  EXPECT_EQ(again.generation, SCANCMD_GENERATION_2ND);
  EXPECT_EQ(device.opens, 1);
}

TEST_F(ScanCmd, AFailedQLeavesTheDeviceOpenAndTheGenerationAsItWas) {
  device.expect(kQ).timeOut().expect(kQ).answer("\xC1\x01\x02\x10"s);
  EXPECT_EQ(command.QueryDeviceCapability(&info, true), ScriptedDevice::kTimeOut);
  expectNoData(info);
  EXPECT_TRUE(device.open);
  EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0x10210043u);
  EXPECT_TRUE(device.open);
  EXPECT_EQ(device.opens, 1);
  EXPECT_TRUE(sleeps.empty());
  EXPECT_EQ(command.GetPaletteTable(&response), 0x10210021u);
}

TEST_F(ScanCmd, AFailedQDIClosesTheDeviceAndLeavesNoData) {
  struct Row {
    const char* name;
    std::string answer;
    QSRSLT result;
  };
  for (const Row& row : {Row{"refused", framed("QDI", "x", 0x84), 0x10240084},
                         Row{"signature", framed("GKP", "x"), 0x10210043}, Row{"silence", "", 0x40500031}}) {
    SCOPED_TRACE(row.name);
    device.expect(kQ).answer(qAnswer("\x10good")).expect(kQDI);
    if (!row.answer.empty()) device.answer(row.answer);
    EXPECT_EQ(command.QueryDeviceCapability(&info, true), row.result);
    expectNoData(info);
    EXPECT_FALSE(device.open);
    _SCANCMD_DEVICECAP_INFO again{};
    EXPECT_EQ(command.QueryDeviceCapability(&again, false), 0x10210042u);
    expectNoData(again);
    EXPECT_FALSE(command.SelectCommandVersion(SCANCMD_GENERATION_1ST)) << "Q has told the generation all the same";
  }
}

TEST_F(ScanCmd, AQueryNeedsItsRecordAndAnOpenDevice) {
  EXPECT_EQ(command.QueryDeviceCapability(nullptr, true), 0x70210002u);
  EXPECT_EQ(device.opens, 0);
  device.openResult = -3;
  EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0x40210012u);
  EXPECT_TRUE(device.writes.empty());
}

// ---- opening

TEST_F(ScanCmd, TheConnectionStatusOpensADeviceThatIsNotOpen) {
  EXPECT_TRUE(command.GetConnectionStatus());
  EXPECT_TRUE(command.GetConnectionStatus());
  EXPECT_EQ(device.opens, 1);
  device.open = false;
  device.openResult = 1;
  EXPECT_FALSE(command.GetConnectionStatus());
  EXPECT_EQ(device.opens, 2);
}

TEST_F(ScanCmd, ADeviceThatIsOpenAlreadyIsUsedAsItIs) {
  device.open = true;
  EXPECT_TRUE(command.GetConnectionStatus());
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  device.expect("\x1BGCT\n\x80").answer(framed("GCT", "x"));
  EXPECT_EQ(command.GetPaletteTable(&response), 0u);
  EXPECT_EQ(device.opens, 0);
}

TEST_F(ScanCmd, ADeviceThatTheQueryClosedIsOpenedAgainOnDemand) {
  device.expect(kQ).answer(qAnswer("\x10")).expect(kQDI).answer(framed("QDI", "x"));
  EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0u);
  EXPECT_FALSE(device.open);
  device.expect("\x1BGCT\n\x80").answer(framed("GCT", "x"));
  EXPECT_EQ(command.GetPaletteTable(&response), 0u);
  EXPECT_EQ(device.opens, 2);
}

TEST(ScanCmdWithoutADevice, EveryOperationSaysThatItCannotOpen) {
  CScanCmd command;
  LogCapture log;
  _SCANCMD_DEVICECAP_INFO info{};
  Param param = scanParam();
  EXPECT_EQ(command.SetScanParam(&param), 0u);
  EXPECT_FALSE(command.GetConnectionStatus());
  EXPECT_TRUE(log.says("IDeviceAccess instance does not exist.")) << log.all();
  EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0x40210012u);
  EXPECT_EQ(command.QueryDeviceCapability(&info, false), 0x10210042u);
  for (const Operation& operation : kOperations) EXPECT_EQ(operation.run(command), 0x40210012u) << operation.name;
}

// ---- the operations

TEST_F(ScanCmd, EachOperationSendsItsCommand) {
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  EXPECT_EQ(command.SetScanParam(&param), 0u);
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    log.lines.clear();
    response = {};
    const std::size_t reads = device.reads.size();
    if (!operation.frame.empty()) device.expect(operation.frame);
    if (!operation.answer.empty()) device.answer(operation.answer);
    EXPECT_EQ(operation.run(command), operation.result);
    EXPECT_EQ(device.reads.size() - reads, operation.answer.empty() ? 0u : 1u);
    EXPECT_EQ(bodyOf(response), operation.takesResponse ? "body" : "");
    EXPECT_TRUE(log.has(1, ">>>>> "s + operation.name + " >>>>>")) << log.all();
    if (operation.message != nullptr) {
      EXPECT_TRUE(log.has(1, operation.message)) << log.all();
    }
    EXPECT_EQ(device.trouble(), "");
  }
  EXPECT_EQ(device.opens, 1);
  EXPECT_EQ(device.closes, 0);
}

TEST_F(ScanCmd, AnOperationWithoutAGenerationOpensTheDeviceFirst) {
  EXPECT_EQ(command.SetScanParam(&param), 0u);
  int opens = 0;
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    device.open = false;
    EXPECT_EQ(operation.run(command), 0x10210021u);
    EXPECT_EQ(device.opens, ++opens);
  }
  EXPECT_TRUE(device.writes.empty());
}

TEST_F(ScanCmd, AnOperationOnADeviceThatCannotBeOpenedSaysSo) {
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  EXPECT_EQ(command.SetScanParam(&param), 0u);
  device.openResult = 5;
  for (const Operation& operation : kOperations) EXPECT_EQ(operation.run(command), 0x40210012u) << operation.name;
}

TEST_F(ScanCmd, ANullResponseIsRefusedBeforeTheDeviceIsTouched) {
  EXPECT_EQ(command.GetPushScanParameter(nullptr), 0x70210002u);
  EXPECT_EQ(command.QueryDeviceScanParameter(nullptr), 0x70210002u);
  EXPECT_EQ(command.GetPaletteTable(nullptr), 0x70210002u);
  EXPECT_EQ(command.GetColorProfile(nullptr), 0x70210002u);
  EXPECT_EQ(command.GetDocumentSizeOnPaperSource(nullptr), 0x70210002u);
  EXPECT_EQ(device.opens, 0);
}

TEST_F(ScanCmd, AFailureOfTheDevicePassesThroughEveryOperation) {
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  EXPECT_EQ(command.SetScanParam(&param), 0u);
  for (const Operation& operation : kOperations) {
    if (operation.frame.empty()) continue;
    SCOPED_TRACE(operation.name);
    device.expectBut(operation.frame, -1, 0x40500029);
    unsigned char rubbish = 0;
    response = {9, &rubbish};
    EXPECT_EQ(operation.run(command), 0x40500029u);
    if (operation.takesResponse) {
      EXPECT_EQ(response.data, nullptr);
      EXPECT_EQ(response.size, 0);
    }
  }
  EXPECT_TRUE(device.open) << "a failed command does not close the device";
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
}

TEST_F(ScanCmd, TheFirstGenerationHasNoColourProfile) {
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_1ST));
  EXPECT_EQ(command.GetColorProfile(&response), 0x10210022u);
  EXPECT_EQ(device.opens, 1);
  EXPECT_TRUE(device.writes.empty());
}

// ---- the scan parameter

TEST_F(ScanCmd, StartingBeforeAParameterIsSetDoesNotOpenTheDevice) {
  EXPECT_EQ(command.StartScanning(), 0x10210024u);
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  EXPECT_EQ(command.StartScanning(), 0x10210024u);
  EXPECT_EQ(device.opens, 0);
}

TEST_F(ScanCmd, ANullParameterClearsTheFlagAndKeepsTheRecord) {
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  EXPECT_EQ(command.SetScanParam(&param), 0u);
  EXPECT_EQ(command.SetScanParam(nullptr), 0x70210002u);
  EXPECT_EQ(command.StartScanning(), 0x10210024u);
  EXPECT_EQ(device.opens, 0);
  device.expect(sspFrame(param)).answer(framed("SSP", "x"));
  EXPECT_EQ(command.QueryDeviceScanParameter(&response), 0u);
}

TEST_F(ScanCmd, TheParameterIsCopied) {
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  EXPECT_EQ(command.SetScanParam(&param), 0u);
  param.resolution.x = 75;
  device.expect(kXSC);
  EXPECT_EQ(command.StartScanning(), 0u);
}

TEST_F(ScanCmd, BeforeAnyParameterIsSetTheSettingsSentAreZero) {
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  device.expect(sspFrame(frame_lines::zero())).answer(framed("SSP", "x"));
  EXPECT_EQ(command.QueryDeviceScanParameter(&response), 0u);
}

// ---- the end

TEST(ScanCmdEnd, AnOpenDeviceIsClosed) {
  ScriptedDevice device;
  _DEV_IDENTIFIER id{};
  {
    CScanCmd command(&device, id);
    EXPECT_TRUE(command.GetConnectionStatus());
  }
  EXPECT_EQ(device.closes, 1);
}

TEST(ScanCmdEnd, ADeviceThatIsNotOpenIsLeftAlone) {
  ScriptedDevice device;
  _DEV_IDENTIFIER id{};
  {
    CScanCmd command(&device, id);
    EXPECT_TRUE(command.GetConnectionStatus());
    device.open = false;
  }
  EXPECT_EQ(device.closes, 0);
}

// Every call of the device fails once, in turn; each failure is told and nothing is lost.
TEST_F(ScanCmd, AFailureAtAnyCallOfTheDeviceIsTold) {
  // A query is Open, Write, Read, Write, Read.
  for (int failing = 0; failing < 5; ++failing) {
    SCOPED_TRACE(failing);
    ScriptedDevice one;
    CScanCmd fresh(&one, id);
    if (failing == 0) one.openResult = 1;
    if (failing == 1) one.expectBut(kQ, -1, ScriptedDevice::kLost);
    if (failing == 2) one.expect(kQ).failRead(ScriptedDevice::kLost);
    if (failing >= 3) one.expect(kQ).answer(qAnswer("\x10"));
    if (failing == 3) one.expectBut(kQDI, -1, ScriptedDevice::kLost);
    if (failing == 4) one.expect(kQDI).failRead(ScriptedDevice::kLost);
    EXPECT_EQ(fresh.QueryDeviceCapability(&info, true), failing == 0 ? 0x40210012u : ScriptedDevice::kLost);
    EXPECT_EQ(one.trouble(), "");
    one.openResult = 0;
    one.expect(kQ).answer(qAnswer("\x10")).expect(kQDI).answer(framed("QDI", "good"));
    EXPECT_EQ(fresh.QueryDeviceCapability(&info, true), 0u);
    EXPECT_EQ(bodyOf(info), "good");
    EXPECT_EQ(one.trouble(), "");
  }
}
