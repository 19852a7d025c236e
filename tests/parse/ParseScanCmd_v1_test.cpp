// The dispatch of first-generation bodies.
#include <gtest/gtest.h>

#include <string>

#include "parse/ParseScanCmd.h"
#include "tests/fakes/log_capture.h"
#include "tests/parse/expected_capability.h"
#include "tests/parse/q_body.h"

using namespace orvalle_scan_api;
using expected_capability::expectSame;

namespace {

QS_SCANNER_CAPABILITY firstGeneration(int commandVersion = 11) {
  QS_SCANNER_CAPABILITY c = expected_capability::zero();
  c.generation = SCANCMD_GENERATION_1ST;
  c.commandVersion = static_cast<std::uint16_t>(commandVersion);
  return c;
}

class ParseScanCmdV1 : public ::testing::Test {
 protected:
  _SCANCMD_RESPONSE_INFO response(std::string& text) {
    return {static_cast<long>(text.size()), reinterpret_cast<unsigned char*>(text.data())};
  }
  void expectTraced(const char* operation, const char* parserOperation) {
    const std::string outer = operation, inner = parserOperation;
    EXPECT_EQ(log.lines, (std::vector<LogLine>{{1, ">>>>> " + outer + " >>>>>"},
                                               {1, ">>>>> " + inner + " >>>>>"},
                                               {1, "<<<<< " + inner + " <<<<<"},
                                               {1, "<<<<< " + outer + " <<<<<"}}))
        << log.all();
  }

  CParseScanCmd parser;
  LogCapture log;
};

TEST_F(ParseScanCmdV1, EachGenerationHasItsParser) {
  EXPECT_NE(dynamic_cast<CParseCmdRes_v1*>(parser.GetParseCmdRes(SCANCMD_GENERATION_1ST)), nullptr);
  EXPECT_NE(dynamic_cast<CParseCmdRes_v2*>(parser.GetParseCmdRes(SCANCMD_GENERATION_2ND)), nullptr);
}

TEST_F(ParseScanCmdV1, TheQBlockIsParsedAndItsGenerationStored) {
  QBytes body = QBody().set8(q::kLongPaper, 1).bytes;
  QS_SCANNER_CAPABILITY wanted = parseQ(body);
  wanted.generation = SCANCMD_GENERATION_1ST;
  log.lines.clear();
  _SCANCMD_DEVICECAP_INFO info{SCANCMD_GENERATION_1ST, 0, static_cast<long>(body.size()), body.data()};
  expectSame(parser.ParseDeviceInfoData(&info), wanted);
  expectTraced("ParseDeviceInfoData", "ParseDeviceInfoResponse");
}

TEST_F(ParseScanCmdV1, AnEmptyQBlockIsADeviceWithAllTheDefaults) {
  _SCANCMD_DEVICECAP_INFO info{SCANCMD_GENERATION_1ST, 0, 0, nullptr};
  const QS_SCANNER_CAPABILITY c = parser.ParseDeviceInfoData(&info);
  EXPECT_EQ(c.generation, SCANCMD_GENERATION_1ST);
  EXPECT_EQ(c.commandVersion, 11);
  EXPECT_EQ(c.baseFunc.deviceScanSizeMax.flatbed.x, 21000u);
}

TEST_F(ParseScanCmdV1, PanelSettingsAreText) {
  std::string text = "F=OCR\nP=BCARD\n";
  _SCANCMD_RESPONSE_INFO info = response(text);
  const auto keys = parser.ParseDeviceKeyInfoData(&info, firstGeneration());
  EXPECT_TRUE(keys.event.valid);
  EXPECT_EQ(keys.event.value, 1);
  EXPECT_EQ(keys.paperType.value, PAPERTYPE_BCARD);
  expectTraced("ParseDeviceKeyInfoData", "ParseDeviceKeyInfoResponse");
}

TEST_F(ParseScanCmdV1, ACardIsUprightAtOneVersionWhateverTheGeneration) {
  constexpr const char* kLine = "Protocol Version = 0x102, Business Card is vertical direction";
  const struct {
    int version;
    const char* text;
    int paper;
    bool logged;
  } rows[] = {
      {0x0102, "P=BCARD\n", 19, true},  {0x0103, "P=BCARD\n", 18, false}, {0x0101, "P=BCARD\n", 18, false},
      {0x0002, "P=BCARD\n", 18, false}, {0x0102, "P=A4\n", 1, false},     {0x0102, "", 0, false},
  };
  for (const auto& row : rows) {
    log.lines.clear();
    std::string text = row.text;
    _SCANCMD_RESPONSE_INFO info = response(text);
    const auto keys = parser.ParseDeviceKeyInfoData(&info, firstGeneration(row.version));
    EXPECT_EQ(keys.paperType.value, row.paper) << row.version << row.text;
    EXPECT_EQ(log.has(1, kLine), row.logged) << row.version << row.text;
  }
}

TEST_F(ParseScanCmdV1, ActualParametersAreText) {
  std::string text = "300,600,3,2100,2480,2970,7014";
  _SCANCMD_RESPONSE_INFO info = response(text);
  const ACTUALSCANPARAM actual = parser.ParseActualParameterData(&info, firstGeneration());
  EXPECT_EQ(actual.paperSource, PAPERSOURCE_CARDSLOT);
  EXPECT_EQ(actual.maxSizeMm.y, 29700u);
  expectTraced("ParseActualParameterData", "ParseActualParameterResponse");
}

TEST_F(ParseScanCmdV1, APaletteIsRead) {
  unsigned char body[] = {1, 2, 3, 4};
  const PALETTE palette = parser.ParseColorPaletteData(body, sizeof body, firstGeneration());
  EXPECT_EQ(palette.count, 1u);
  EXPECT_EQ(palette.entries[0].rgbRed, 1);
  expectTraced("ParseColorPaletteData", "ParseColorPaletteResponse");
  EXPECT_EQ(parser.ParseColorPaletteData(nullptr, 4, firstGeneration()).valid, 0u);
}

TEST_F(ParseScanCmdV1, ThereIsNoColourProfile) {
  unsigned char body[] = {1, 2, 3, 4};
  EXPECT_EQ(parser.ParsePDFaColorProfileData(body, sizeof body, firstGeneration()).colorProfile, nullptr);
  expectTraced("ParsePDFaColorProfileData", "ParsePDFaColorProfileResponse");
}

TEST_F(ParseScanCmdV1, ANullResponseIsNotParsed) {
  _SCANCMD_RESPONSE_INFO empty{9, nullptr};
  for (_SCANCMD_RESPONSE_INFO* info : {static_cast<_SCANCMD_RESPONSE_INFO*>(nullptr), &empty}) {
    log.lines.clear();
    EXPECT_FALSE(parser.ParseDeviceKeyInfoData(info, firstGeneration()).event.valid);
    EXPECT_EQ(parser.ParseActualParameterData(info, firstGeneration()).paperSource, 0);
    EXPECT_EQ(log.lines.size(), 4u) << log.all();
  }
}

}  // namespace
