// The dispatcher with a device of the first generation.
#include <gtest/gtest.h>

#include <functional>

#include "command/ScanCmd.h"
#include "tests/command/answers.h"
#include "tests/command/frame_lines.h"
#include "tests/fakes/ScriptedDevice.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;
using answers::bodyOf;
using answers::pattern;
using answers::qAnswer;
using frame_lines::Param;

namespace {

Param scanParam() {
  Param param = frame_lines::zero();
  param.resolution = {300, 300, false};
  param.scanArea = {SCANCMD_SCAN_AREA_NORMAL, 0, 0, 2560, 3300};
  return param;
}
const std::string kQ = "\x1BQ\n\x80";
const std::string kI = "\x1BI\nR=300,300\nM=TEXT\nD=SIN\nS=NORMAL_SCAN\n\x80";
const std::string kX =
    "\x1BX\nR=300,300\nM=TEXT\nC=NONE\nJ=MID\nB=50\nN=50\nA=0,0,2560,3300\nD=SIN\nS=NORMAL_SCAN\nP=0\nE=0\nG=0\nL=0\n"
    "\x80";

_SCANCMD_RESPONSE_INFO response{};
struct Operation {
  const char* name;
  std::function<QSRSLT(CScanCmd&)> run;
  std::string frame;    // empty: not offered
  std::string answer;   // empty: none is read
  const char* message;  // logged before the command
  bool takesResponse;
};
const Operation kOperations[] = {
    {"CheckDocument", [](CScanCmd& c) { return c.CheckDocument(SCANCMD_PAPERSOURCE_ADF); },
     "\x1B"
     "D\nADF\n\x80",
     "\x80", "D Command START", false},
    {"SelectPaperSource", [](CScanCmd& c) { return c.SelectPaperSource(SCANCMD_PAPERSOURCE_FB); }, "\x1BS\nFB\n\x80",
     "\x80", "S Command START", false},
    {"GetPushScanParameter", [](CScanCmd& c) { return c.GetPushScanParameter(&response); }, "\x1BK\n\x80",
     "\x30\x04\0body"s, "K Command START", true},
    {"QueryDeviceScanParameter", [](CScanCmd& c) { return c.QueryDeviceScanParameter(&response); }, kI, "\0\x04\0body"s,
     "I Command START", true},
    {"GetPaletteTable", [](CScanCmd& c) { return c.GetPaletteTable(&response); }, "\x1BP\n\x80", "\x04\0body"s,
     "P Command START", true},
    {"GetColorProfile", [](CScanCmd& c) { return c.GetColorProfile(&response); }, "", "", nullptr, true},
    {"GetDocumentSizeOnPaperSource", [](CScanCmd& c) { return c.GetDocumentSizeOnPaperSource(&response); }, kI,
     "\0\x04\0body"s, "E Command START", true},
    {"StartScanning", [](CScanCmd& c) { return c.StartScanning(); }, kX, "", "X Command START", false},
    {"AbortScanning", [](CScanCmd& c) { return c.AbortScanning(SCANCMD_EJECTION_ALL); }, "\x1BR\n\x80", "",
     "R Command START", false},
};

}  // namespace

class ScanCmd_operations_v1 : public ::testing::Test {
 protected:
  ScanCmd_operations_v1() {
    EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_1ST));
    EXPECT_EQ(command.SetScanParam(&param), 0u);
    response = {};
  }
  ~ScanCmd_operations_v1() override { EXPECT_EQ(device.trouble(), ""); }

  ScriptedDevice device;
  _DEV_IDENTIFIER id{3, 2, "scanner"};
  CScanCmd command{&device, id};
  Param param = scanParam();
  LogCapture log;
};

TEST_F(ScanCmd_operations_v1, EachOperationSendsItsCommand) {
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    log.lines.clear();
    response = {};
    const std::size_t reads = device.reads.size();
    if (!operation.frame.empty()) device.expect(operation.frame);
    if (!operation.answer.empty()) device.answer(operation.answer);
    EXPECT_EQ(operation.run(command), operation.frame.empty() ? 0x10210022u : 0u);
    EXPECT_EQ(device.reads.size() - reads, operation.answer.empty() ? 0u : 1u);
    EXPECT_EQ(bodyOf(response), operation.takesResponse && !operation.answer.empty() ? "body" : "");
    EXPECT_TRUE(log.has(1, ">>>>> "s + operation.name + " >>>>>")) << log.all();
    std::vector<std::string> messages;
    for (const LogLine& line : log.lines) {
      if (line.level == 1 && line.text.ends_with(" Command START")) messages.push_back(line.text);
    }
    EXPECT_EQ(messages,
              operation.message == nullptr ? std::vector<std::string>{} : std::vector<std::string>{operation.message});
    EXPECT_EQ(device.trouble(), "");
  }
  EXPECT_EQ(device.opens, 1);
  EXPECT_EQ(device.closes, 0);
}

TEST_F(ScanCmd_operations_v1, TheStopDropsTheWishForAnEjection) {
  for (const int ejection : {-1, 0, 1, 2, 3, 4}) {
    device.expect("\x1BR\n\x80");
    EXPECT_EQ(command.AbortScanning(frame_lines::as<SCANCMD_EJECTION_TYPE>(ejection)), 0u) << ejection;
  }
}

TEST_F(ScanCmd_operations_v1, AFailureOfTheDevicePassesThroughEveryOperation) {
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
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_1ST));
}

TEST_F(ScanCmd_operations_v1, AnOperationThatTheGenerationDoesNotHaveOpensTheDeviceAllTheSame) {
  EXPECT_EQ(command.GetColorProfile(&response), 0x10210022u);
  EXPECT_EQ(device.opens, 1);
  device.open = false;
  device.openResult = 1;
  EXPECT_EQ(command.GetColorProfile(&response), 0x40210012u);
  EXPECT_TRUE(device.writes.empty());
}

TEST_F(ScanCmd_operations_v1, StartingNeedsAParameter) {
  EXPECT_EQ(command.SetScanParam(nullptr), 0x70210002u);
  EXPECT_EQ(command.StartScanning(), 0x10210024u);
  EXPECT_EQ(device.opens, 0);
  device.expect(kI).answer("\0\x01\0x"s).expect(kI).answer("\0\x01\0x"s);
  EXPECT_EQ(command.QueryDeviceScanParameter(&response), 0u) << "the record itself is kept";
  EXPECT_EQ(command.GetDocumentSizeOnPaperSource(&response), 0u);
}

TEST_F(ScanCmd_operations_v1, AWholeScanAsksInThisOrder) {
  CScanCmd fresh(&device, id);
  _SCANCMD_DEVICECAP_INFO info{};
  device.expect(kQ).answer(qAnswer("\x01" + pattern(73)));
  EXPECT_EQ(fresh.QueryDeviceCapability(&info, true), 0u);
  EXPECT_EQ(bodyOf(info), "\x01" + pattern(73));
  EXPECT_EQ(info.version, 1);
  EXPECT_EQ(device.closes, 1) << "closed behind the capability";
  EXPECT_TRUE(fresh.SelectCommandVersion(info.generation));
  EXPECT_EQ(fresh.SetScanParam(&param), 0u);
  device.expect(kI).answer("\0\x04\0body"s).expect(kX).expect("\x1BR\n\x80");
  EXPECT_EQ(fresh.QueryDeviceScanParameter(&response), 0u);
  EXPECT_EQ(fresh.StartScanning(), 0u);
  EXPECT_EQ(fresh.AbortScanning(SCANCMD_EJECTION_ONE), 0u);
  EXPECT_EQ(device.opens, 2);
}
