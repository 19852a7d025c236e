// The dispatcher as one decision table: every operation, in every generation, with every state of device, argument and
// parameter, and what the answers of the first generation come out as.
#include <gtest/gtest.h>

#include <functional>

#include "command/ScanCmd.h"
#include "tests/command/answers.h"
#include "tests/command/frame_lines.h"
#include "tests/fakes/ScriptedDevice.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;
using frame_lines::as;
using frame_lines::Param;

namespace {

constexpr QSRSLT kDeviceCode = 0x40500077;

std::string hex(std::initializer_list<int> bytes) {
  std::string text;
  for (const int byte : bytes) text += static_cast<char>(byte);
  return text;
}

Param zeroParam = frame_lines::zero();
const std::string kZeroI = "\x1BI\nR=0,0\nM=TEXT\nD=SIN\nS=NORMAL_SCAN\n\x80";
const std::string kZeroX =
    "\x1BX\nR=0,0\nM=TEXT\nC=NONE\nJ=MID\nB=50\nN=50\nA=0,0,0,0\nD=SIN\nS=NORMAL_SCAN\nP=0\nE=0\nG=0\nL=0\n\x80";

struct Operation {
  const char* name;
  std::function<QSRSLT(CScanCmd&, _SCANCMD_RESPONSE_INFO*)> run;
  bool takesResponse, needsParam;
  // Frame and message of either generation; no message: the generation does not have it.
  std::string frame1;
  const char* message1;
  std::string frame2;
  const char* message2;
};
const std::vector<Operation>& operations() {
  using R = _SCANCMD_RESPONSE_INFO;
  static const std::vector<Operation> rows = {
      {"CheckDocument", [](CScanCmd& c, R*) { return c.CheckDocument(SCANCMD_PAPERSOURCE_FB); }, false, false,
       hex({0x1B, 'D', 0x0A, 'F', 'B', 0x0A, 0x80}), "D Command START", "\x1B"s + "CKD\nPSRC=FB\n\x80",
       "CKD Command START"},
      {"SelectPaperSource", [](CScanCmd& c, R*) { return c.SelectPaperSource(SCANCMD_PAPERSOURCE_ADF); }, false, false,
       hex({0x1B, 'S', 0x0A, 'A', 'D', 'F', 0x0A, 0x80}), "S Command START", "", nullptr},
      {"GetPushScanParameter", [](CScanCmd& c, R* r) { return c.GetPushScanParameter(r); }, true, false,
       hex({0x1B, 'K', 0x0A, 0x80}), "K Command START", "\x1BGKP\n\x80", "GKP Command START"},
      {"QueryDeviceScanParameter", [](CScanCmd& c, R* r) { return c.QueryDeviceScanParameter(r); }, true, false, kZeroI,
       "I Command START", CCmdString_v2().MakeSSPcmdString(&zeroParam), "SSP Command START"},
      {"GetPaletteTable", [](CScanCmd& c, R* r) { return c.GetPaletteTable(r); }, true, false,
       hex({0x1B, 'P', 0x0A, 0x80}), "P Command START", "\x1BGCT\n\x80", "GCT Command START"},
      {"GetColorProfile", [](CScanCmd& c, R* r) { return c.GetColorProfile(r); }, true, false, "", nullptr,
       "\x1BGCP\n\x80", "GCP Command START"},
      {"GetDocumentSizeOnPaperSource", [](CScanCmd& c, R* r) { return c.GetDocumentSizeOnPaperSource(r); }, true, false,
       kZeroI, "E Command START", "\x1BGDS\n\x80", "GDS Command START"},
      {"StartScanning", [](CScanCmd& c, R*) { return c.StartScanning(); }, false, true, kZeroX, "X Command START",
       CCmdString_v2().MakeXSCcmdString(&zeroParam), "XSC Command START"},
      {"AbortScanning", [](CScanCmd& c, R*) { return c.AbortScanning(SCANCMD_EJECTION_NO); }, false, false,
       hex({0x1B, 'R', 0x0A, 0x80}), "R Command START", "\x1B"s + "ABT\nEJCT=NO\n\x80", "ABT Command START"},
  };
  return rows;
}

enum class Device { kNone, kRefuses, kOpens, kIsOpen };

std::vector<std::string> messages(const LogCapture& log) {
  std::vector<std::string> found;
  for (const LogLine& line : log.lines) {
    if (line.text.ends_with(" Command START")) found.push_back(std::to_string(line.level) + " " + line.text);
  }
  return found;
}

void expectRow(const Operation& operation, int generation, Device state, bool withArgument, bool withParam) {
  ScriptedDevice device(state == Device::kIsOpen);
  if (state == Device::kRefuses) device.openResult = 5;
  _DEV_IDENTIFIER id{0, 1, "x"};
  CScanCmd command(state == Device::kNone ? nullptr : &device, id);
  EXPECT_TRUE(command.SelectCommandVersion(as<SCANCMD_GENERATION>(generation)));
  if (withParam) {
    EXPECT_EQ(command.SetScanParam(&zeroParam), 0u);
  }

  const char* message = generation == 1 ? operation.message1 : operation.message2;
  const bool canOpen = state == Device::kOpens || state == Device::kIsOpen;
  QSRSLT wanted = kDeviceCode;
  bool opensTheDevice = true;
  if (operation.needsParam && !withParam) {
    wanted = 0x10210024, opensTheDevice = false;
  } else if (operation.takesResponse && !withArgument) {
    wanted = 0x70210002, opensTheDevice = false;
  } else if (!canOpen) {
    wanted = 0x40210012;
  } else if (generation != 1 && generation != 2) {
    wanted = 0x10210021;
  } else if (message == nullptr) {
    wanted = 0x10210022;
  } else {
    device.expectBut(generation == 1 ? operation.frame1 : operation.frame2, -1, kDeviceCode);
  }

  LogCapture log;
  unsigned char rubbish = 0;
  _SCANCMD_RESPONSE_INFO response{7, &rubbish};
  EXPECT_EQ(operation.run(command, withArgument ? &response : nullptr), wanted);
  ASSERT_FALSE(log.lines.empty());
  EXPECT_EQ(log.lines.front(), (LogLine{1, ">>>>> "s + operation.name + " >>>>>"}));
  EXPECT_EQ(messages(log),
            wanted == kDeviceCode ? std::vector<std::string>{"1 "s + message} : std::vector<std::string>{});
  EXPECT_EQ(log.says("IDeviceAccess instance does not exist."), opensTheDevice && state == Device::kNone) << log.all();
  const bool opened = opensTheDevice && (state == Device::kOpens || state == Device::kRefuses);
  EXPECT_EQ(device.opens, opened ? 1 : 0);
  if (wanted == kDeviceCode && operation.takesResponse) {
    EXPECT_EQ(response.size, 0) << "the record is copied out after a failure too";
    EXPECT_EQ(response.data, nullptr);
  }
  EXPECT_EQ(device.trouble(), "");
  device.open = false;
}

}  // namespace

TEST(ScanCmd_rows, EveryOperationInEveryState) {
  for (const Operation& operation : operations()) {
    for (const int generation : {0, 1, 2, 3, 7, -1}) {
      for (const Device state : {Device::kNone, Device::kRefuses, Device::kOpens, Device::kIsOpen}) {
        for (const bool withArgument : {true, false}) {
          for (const bool withParam : {true, false}) {
            SCOPED_TRACE(operation.name + " generation "s + std::to_string(generation) + " device " +
                         std::to_string(static_cast<int>(state)) + (withArgument ? "" : " null") +
                         (withParam ? "" : " unset"));
            expectRow(operation, generation, state, withArgument, withParam);
          }
        }
      }
    }
  }
}

namespace {

// An answer on the wire and what it comes out as.
struct AnswerRow {
  const char* name;
  std::string bytes;
  QSRSLT result;
  std::string body;
};

class ScanCmd_answers_v1 : public ::testing::Test {
 protected:
  ScanCmd_answers_v1() {
    EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_1ST));
    EXPECT_EQ(command.SetScanParam(&zeroParam), 0u);
  }
  ~ScanCmd_answers_v1() override { EXPECT_EQ(device.trouble(), ""); }

  void expectRows(const std::string& frame, QSRSLT (CScanCmd::*run)(_SCANCMD_RESPONSE_INFO*),
                  const std::vector<AnswerRow>& rows) {
    for (const AnswerRow& row : rows) {
      SCOPED_TRACE(row.name);
      LogCapture log;
      device.expect(frame).answer(row.bytes);
      EXPECT_EQ((command.*run)(&response), row.result);
      EXPECT_EQ(answers::bodyOf(response), row.body);
      std::string refusal;
      if ((row.result & 0xFFFF0000) == 0x10240000) {
        char text[80];
        std::snprintf(text, sizeof text, "Return error result from device. Result Code = 0x%02X", row.result & 0xFFu);
        refusal = text;
        EXPECT_TRUE(log.has(0, refusal)) << log.all();
      }
      ASSERT_EQ(device.trouble(), "");
      EXPECT_EQ(device.reads.back().timeOutMs, 5000);
    }
  }

  ScriptedDevice device{true};
  _DEV_IDENTIFIER id{0, 1, "x"};
  CScanCmd command{&device, id};
  _SCANCMD_RESPONSE_INFO response{};
};

}  // namespace

TEST_F(ScanCmd_answers_v1, AKeyAnswerBeginsWith0x30) {
  expectRows(hex({0x1B, 0x4B, 0x0A, 0x80}), &CScanCmd::GetPushScanParameter,
             {{"good", hex({0x30, 0x03, 0x00, 'F', '=', 'X'}), 0, "F=X"},
              {"what I and E expect", hex({0x00, 0x03, 0x00, 'F', '=', 'X'}), 0x10240000, ""},
              {"0x31", hex({0x31, 0x01, 0x00, 'F'}), 0x10240031, ""},
              {"0x80", hex({0x80, 0x01, 0x00, 'F'}), 0x10240080, ""},
              {"0xFF", hex({0xFF, 0x01, 0x00, 'F'}), 0x102400FF, ""},
              {"bytes behind the body", hex({0x30, 0x01, 0x00, 'A', 'B', 'C'}), 0, "A"},
              {"a zero byte in the body", hex({0x30, 0x03, 0x00, 'A', 0, 'C'}), 0, "A\0C"s}});
}

TEST_F(ScanCmd_answers_v1, ParameterAndSizeAnswersBeginWith0x00) {
  for (const auto run : {&CScanCmd::QueryDeviceScanParameter, &CScanCmd::GetDocumentSizeOnPaperSource}) {
    expectRows(kZeroI, run,
               {{"good", hex({0x00, 0x03, 0x00, '3', ',', '4'}), 0, "3,4"},
                {"what K expects", hex({0x30, 0x03, 0x00, '3', ',', '4'}), 0x10240030, ""},
                {"0x01", hex({0x01, 0x01, 0x00, 'x'}), 0x10240001, ""}});
  }
}

TEST_F(ScanCmd_answers_v1, APaletteHasItsLengthAtOnce) {
  expectRows(hex({0x1B, 0x50, 0x0A, 0x80}), &CScanCmd::GetPaletteTable,
             {{"three bytes", hex({0x03, 0x00, 0x01, 0x02, 0x03}), 0, "\x01\x02\x03"},
              {"a body like a length", hex({0x02, 0x00, 0x30, 0x00}), 0, "\x30\0"s},
              {"768 bytes", hex({0x00, 0x03}) + answers::pattern(768), 0, answers::pattern(768)}});
}

TEST_F(ScanCmd_answers_v1, TheLargestBodyIs32767Bytes) {
  const std::string body = answers::pattern(32767);
  device.expect(hex({0x1B, 0x4B, 0x0A, 0x80})).answer(hex({0x30, 0xFF, 0x7F}) + body);
  EXPECT_EQ(command.GetPushScanParameter(&response), 0u);
  EXPECT_EQ(response.size, 32767);
  EXPECT_EQ(answers::bodyOf(response), body);
  // One more is a negative length, which no body completes.
  device.expect(hex({0x1B, 0x4B, 0x0A, 0x80})).answer(hex({0x30, 0x00, 0x80}) + body + "x").timeOut();
  EXPECT_EQ(command.GetPushScanParameter(&response), ScriptedDevice::kTimeOut);
  EXPECT_EQ(response.data, nullptr);
}

TEST_F(ScanCmd_answers_v1, TheStatusIsOneByte) {
  for (int status = 0; status < 256; ++status) {
    LogCapture log;
    device.expect(hex({0x1B, 'D', 0x0A, 'A', 'D', 'F', 0x0A, 0x80})).answer(hex({status}));
    device.expect(hex({0x1B, 'S', 0x0A, 'A', 'U', 'T', 'O', 0x0A, 0x80})).answer(hex({status}));
    const QSRSLT wanted = status == 0x80 ? 0 : 0x10240000u | static_cast<unsigned>(status);
    EXPECT_EQ(command.CheckDocument(SCANCMD_PAPERSOURCE_ADF), wanted) << status;
    EXPECT_EQ(command.SelectPaperSource(SCANCMD_PAPERSOURCE_AUTO), wanted) << status;
    char text[80];
    std::snprintf(text, sizeof text, "Return error result from device. Status Code = 0x%02X",
                  static_cast<unsigned>(status));
    EXPECT_EQ(std::count(log.lines.begin(), log.lines.end(), LogLine{0, text}), status == 0x80 ? 0 : 2) << log.all();
    ASSERT_EQ(device.trouble(), "");
    EXPECT_EQ(device.reads.back().timeOutMs, 5000);
  }
}

// ---- what a query leaves behind

TEST(ScanCmd_query, TheFirstByteOfTheAnswerDecidesAndCannotBeOverruled) {
  for (const auto& [first, generation] : {std::pair(0x10, 2), {0x0F, 1}, {0xFF, 1}, {0x7F, 2}, {0x80, 1}, {0x00, 1}}) {
    SCOPED_TRACE(first);
    ScriptedDevice device;
    _DEV_IDENTIFIER id{0, 1, "x"};
    CScanCmd command(&device, id);
    _SCANCMD_DEVICECAP_INFO info{};
    device.expect(hex({0x1B, 0x51, 0x0A, 0x80})).answer(hex({0xC1, 0x00, 0x03, first, 0x55}));
    if (generation == 2) {
      device.expect(hex({0x1B, 0x51, 0x44, 0x49, 0x0A, 0x80})).answer("\0QDI\x01\0\0\0x"s);
    }
    EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0u);
    EXPECT_EQ(info.generation, generation);
    EXPECT_EQ(info.version, generation == 2 ? 0 : static_cast<signed char>(first));
    EXPECT_EQ(info.size, generation == 2 ? 1 : 2);
    EXPECT_EQ(command.SelectCommandVersion(SCANCMD_GENERATION_2ND), generation == 2);
    EXPECT_EQ(command.SelectCommandVersion(SCANCMD_GENERATION_1ST), generation == 1);
    EXPECT_FALSE(device.open) << "both generations leave the device closed";
    _SCANCMD_DEVICECAP_INFO again{};
    EXPECT_EQ(command.QueryDeviceCapability(&again, false), 0u);
    EXPECT_EQ(again.data, info.data);
    EXPECT_EQ(again.size, info.size);
    EXPECT_EQ(again.generation, info.generation);
    EXPECT_EQ(device.trouble(), "");
  }
}

TEST(ScanCmd_query, AskedForWithoutSendingItTellsOnlyWhatIsKept) {
  ScriptedDevice device;
  _DEV_IDENTIFIER id{0, 1, "x"};
  CScanCmd command(&device, id);
  unsigned char rubbish = 0;
  _SCANCMD_DEVICECAP_INFO info{SCANCMD_GENERATION_2ND, 9, 9, &rubbish};
  EXPECT_EQ(command.QueryDeviceCapability(&info, false), 0x10210042u);
  EXPECT_EQ(info.generation, 0);
  EXPECT_EQ(info.version, 0);
  EXPECT_EQ(info.size, 0);
  EXPECT_EQ(info.data, nullptr);
  EXPECT_EQ(device.opens, 0);
  // A QDI that is refused: the data of Q has gone too.
  device.expect("\x1BQ\n\x80")
      .answer(hex({0xC1, 0x00, 0x02, 0x10}))
      .expect("\x1BQDI\n\x80")
      .answer("\x05QDI\1\0\0\0x"s);
  EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0x10240005u);
  EXPECT_EQ(command.QueryDeviceCapability(&info, false), 0x10210042u);
  EXPECT_EQ(info.data, nullptr);
  EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND)) << "the generation is known all the same";
  EXPECT_EQ(device.trouble(), "");
}

TEST(ScanCmd_query, AFailedQueryKeepsTheGenerationAndTheOpenDevice) {
  for (const std::string& answer : {hex({0xC1, 0x01, 0x02, 0x01}), hex({0xC0, 0x00, 0x02, 0x01})}) {
    ScriptedDevice device;
    _DEV_IDENTIFIER id{0, 1, "x"};
    CScanCmd command(&device, id);
    _SCANCMD_DEVICECAP_INFO info{};
    device.expect("\x1BQ\n\x80").answer(answer);
    EXPECT_EQ(command.QueryDeviceCapability(&info, true), 0x10210043u);
    EXPECT_TRUE(device.open);
    EXPECT_EQ(device.closes, 0);
    EXPECT_EQ(command.CheckDocument(SCANCMD_PAPERSOURCE_ADF), 0x10210021u) << "no generation is known";
    EXPECT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_1ST));
    EXPECT_EQ(device.trouble(), "");
  }
}

TEST(ScanCmd_query, TheRecordIsCopiedOutAlsoWithoutAnythingToAsk) {
  CQueryCmd query(nullptr);
  for (const auto run : {&CQueryCmd::ExeQcmd, &CQueryCmd::ExeQDIcmd}) {
    unsigned char rubbish = 0;
    _SCANCMD_DEVICECAP_INFO info{SCANCMD_GENERATION_2ND, 9, 9, &rubbish};
    EXPECT_EQ((query.*run)(&info), 0x40210011u);
    EXPECT_EQ(info.generation, 0);
    EXPECT_EQ(info.version, 0);
    EXPECT_EQ(info.size, 0);
    EXPECT_EQ(info.data, nullptr);
    EXPECT_EQ((query.*run)(nullptr), 0x40210011u);
  }
}
