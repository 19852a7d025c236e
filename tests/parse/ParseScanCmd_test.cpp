#include "parse/ParseScanCmd.h"

#include <gtest/gtest.h>

#include "tests/fakes/log_capture.h"
#include "tests/parse/expected_capability.h"

using namespace orvalle_scan_api;
using expected_capability::Capability;
using expected_capability::expectSame;

namespace {

Capability of(int generation) {
  Capability c = expected_capability::zero();
  c.generation = static_cast<SCANCMD_GENERATION>(generation);
  return c;
}

}  // namespace

class ParseScanCmd : public ::testing::Test {
 protected:
  _SCANCMD_DEVICECAP_INFO info(int generation, BodyBytes& body) {
    return {static_cast<SCANCMD_GENERATION>(generation), 0, static_cast<long>(body.size()), body.data()};
  }
  _SCANCMD_RESPONSE_INFO response(BodyBytes& body) { return {static_cast<long>(body.size()), body.data()}; }
  void expectTraced(const char* operation) {
    EXPECT_TRUE(log.has(1, std::string(">>>>> ") + operation + " >>>>>")) << log.all();
    EXPECT_TRUE(log.has(1, std::string("<<<<< ") + operation + " <<<<<")) << log.all();
  }

  CParseScanCmd parser;
  LogCapture log;
  BodyBytes qdi = TagBody().tag(0x0001, {0x02, 0x01}).tag(0x0302, {3, 1}).end().bytes;
  BodyBytes ssp = TagBody().tag(0x2001, {1, 0}).tag(0x2002, u16s({300, 600})).end().bytes;
  BodyBytes gcp = TagBody().tag(0x3101, "colour").end().bytes;
};

TEST_F(ParseScanCmd, TheProtocolVersionIsTheGeneration) {
  for (const int generation : {0, 1, 2, 7, -1}) {
    log.lines.clear();
    _SCANCMD_DEVICECAP_INFO one = info(generation, qdi);
    EXPECT_EQ(parser.GetProtocolVersion(&one), static_cast<std::uint32_t>(generation));
    char line[100];
    std::snprintf(line, sizeof line, "<<<<< GetProtocolVersion <<<<< Command Version = 0X%04X",
                  static_cast<unsigned>(generation));
    EXPECT_EQ(log.lines, (std::vector<LogLine>{{1, ">>>>> GetProtocolVersion >>>>>"}, {1, line}})) << log.all();
  }
}

TEST_F(ParseScanCmd, NullHasNoProtocolVersionAndLogsBothLines) {
  EXPECT_EQ(parser.GetProtocolVersion(nullptr), 0u);
  EXPECT_EQ(log.lines, (std::vector<LogLine>{{1, ">>>>> GetProtocolVersion >>>>>"},
                                             {1, "<<<<< GetProtocolVersion <<<<< Command Version = 0X0000"}}))
      << log.all();
}

TEST_F(ParseScanCmd, ASecondGenerationBodyIsParsedAndItsGenerationStored) {
  _SCANCMD_DEVICECAP_INFO one = info(2, qdi);
  Capability wanted = expected_capability::deviceWith({3, 1});
  wanted.generation = SCANCMD_GENERATION_2ND;
  wanted.commandVersion = 0x0102;
  expectSame(parser.ParseDeviceInfoData(&one), wanted);
  expectTraced("ParseDeviceInfoData");
}

TEST_F(ParseScanCmd, AnUnknownGenerationGivesAZeroRecordThatKeepsIt) {
  for (const int generation : {0, 3, 7, -1}) {
    _SCANCMD_DEVICECAP_INFO one = info(generation, qdi);
    expectSame(parser.ParseDeviceInfoData(&one), of(generation));
    expectTraced("ParseDeviceInfoData");
  }
}

TEST_F(ParseScanCmd, ABodyThatCannotBeParsedGivesAZeroRecordWithItsGeneration) {
  BodyBytes cut(qdi.begin(), qdi.end() - 4);
  _SCANCMD_DEVICECAP_INFO one = info(2, cut);
  expectSame(parser.ParseDeviceInfoData(&one), of(2));
  one = {SCANCMD_GENERATION_2ND, 0, 0, nullptr};
  expectSame(parser.ParseDeviceInfoData(&one), of(2));
}

TEST_F(ParseScanCmd, NoInformationGivesAZeroRecord) {
  expectSame(parser.ParseDeviceInfoData(nullptr), of(0));
  expectTraced("ParseDeviceInfoData");
}

TEST_F(ParseScanCmd, ActualParametersAreParsedByTheGenerationOfTheCapability) {
  _SCANCMD_RESPONSE_INFO one = response(ssp);
  const ACTUALSCANPARAM actual = parser.ParseActualParameterData(&one, of(2));
  EXPECT_EQ(actual.paperSource, PAPERSOURCE_ADF);
  EXPECT_EQ(actual.resolution.x, 300u);
  EXPECT_EQ(actual.resolution.y, 600u);
  expectTraced("ParseActualParameterData");
  for (const int generation : {0, 3, 7}) {
    const ACTUALSCANPARAM none = parser.ParseActualParameterData(&one, of(generation));
    EXPECT_EQ(none.paperSource, 0) << generation;
    EXPECT_EQ(none.resolution.x, 0u) << generation;
  }
}

TEST_F(ParseScanCmd, ActualParametersNeedAResponseWithData) {
  _SCANCMD_RESPONSE_INFO empty{9, nullptr};
  EXPECT_EQ(parser.ParseActualParameterData(nullptr, of(2)).paperSource, 0);
  EXPECT_EQ(parser.ParseActualParameterData(&empty, of(2)).paperSource, 0);
  expectTraced("ParseActualParameterData");
}

TEST_F(ParseScanCmd, ProfilesAreParsedByTheGenerationOfTheCapability) {
  const auto size = static_cast<long>(gcp.size());
  const ICCPROFIE profiles = parser.ParsePDFaColorProfileData(gcp.data(), size, of(2));
  EXPECT_EQ(profiles.colorProfile, gcp.data() + 4);
  EXPECT_EQ(profiles.colorProfileSize, 6);
  expectTraced("ParsePDFaColorProfileData");
  for (const int generation : {0, 3, 7}) {
    EXPECT_EQ(parser.ParsePDFaColorProfileData(gcp.data(), size, of(generation)).colorProfile, nullptr);
  }
  EXPECT_EQ(parser.ParsePDFaColorProfileData(nullptr, size, of(2)).colorProfile, nullptr);
}

TEST_F(ParseScanCmd, ASecondGenerationPaletteIsZero) {
  EXPECT_EQ(parser.ParseColorPaletteData(gcp.data(), static_cast<long>(gcp.size()), of(2)).valid, 0u);
  EXPECT_EQ(parser.ParseColorPaletteData(nullptr, 5, of(2)).valid, 0u);
  expectTraced("ParseColorPaletteData");
}

TEST_F(ParseScanCmd, PanelSettingsNeedAResponseWithData) {
  _SCANCMD_RESPONSE_INFO empty{9, nullptr};
  EXPECT_FALSE(parser.ParseDeviceKeyInfoData(nullptr, of(2)).event.valid);
  EXPECT_FALSE(parser.ParseDeviceKeyInfoData(&empty, of(2)).event.valid);
  _SCANCMD_RESPONSE_INFO one = response(ssp);
  EXPECT_FALSE(parser.ParseDeviceKeyInfoData(&one, of(7)).event.valid);
  expectTraced("ParseDeviceKeyInfoData");
}

TEST_F(ParseScanCmd, PanelSettingsAreParsedByTheGenerationOfTheCapability) {
  BodyBytes gkp = TagBody().tag(0x1001, {3, 0}).end().bytes;
  _SCANCMD_RESPONSE_INFO one = response(gkp);
  const tagQS_PUSHSCAN_PARAMETERS push = parser.ParseDeviceKeyInfoData(&one, of(2));
  EXPECT_TRUE(push.event.valid);
  EXPECT_EQ(push.event.value, 2);
  expectTraced("ParseDeviceKeyInfoData");
  for (const int generation : {0, 3, 7}) {
    EXPECT_FALSE(parser.ParseDeviceKeyInfoData(&one, of(generation)).event.valid) << generation;
  }
}

TEST_F(ParseScanCmd, ABusinessCardIsVerticalAtJustOneVersion) {
  const std::string told = "Protocol Version = 0x102, Business Card is vertical direction";
  const struct {
    int version;
    int wirePaper;
    int paper;
  } rows[] = {{0x0102, 0x41, 19}, {0x0101, 0x41, 18}, {0x0103, 0x41, 18}, {0x0201, 0x41, 18},
              {0x0000, 0x41, 18}, {0x0102, 0x24, 2},  {0x0102, 0x73, 0},  {0x0102, 0xFF, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.version) + " " + std::to_string(row.wirePaper));
    BodyBytes settings(10);
    settings[5] = static_cast<unsigned char>(row.wirePaper);
    BodyBytes gkp = TagBody().tag(0x1002, settings).end().bytes;
    _SCANCMD_RESPONSE_INFO one = response(gkp);
    Capability capability = of(2);
    capability.commandVersion = static_cast<std::uint16_t>(row.version);
    log.lines.clear();
    const tagQS_PUSHSCAN_PARAMETERS push = parser.ParseDeviceKeyInfoData(&one, capability);
    EXPECT_EQ(push.paperType.value, row.paper);
    EXPECT_EQ(push.paperType.valid, row.wirePaper != 0xFF);
    EXPECT_EQ(log.has(1, told), row.paper == 19) << log.all();
  }
}

TEST_F(ParseScanCmd, OnlyKnownGenerationsHaveAParser) {
  EXPECT_NE(parser.GetParseCmdRes(SCANCMD_GENERATION_2ND), nullptr);
  for (const int generation : {0, 3, 7, -1}) {
    EXPECT_EQ(parser.GetParseCmdRes(static_cast<SCANCMD_GENERATION>(generation)), nullptr) << generation;
  }
}
