#include "command/CmdString_v2.h"

#include <climits>
#include <random>

#include "tests/command/frame_lines.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using namespace frame_lines;
using namespace std::string_literals;

TEST(CmdString_v2, APlainColourScanIsTheseBytes) {
  // The record of a plain 300 dpi colour scan.
  Param param = zero();
  param.osInfo = SCANCMD_OS_MAC;
  param.resolution = {300, 300, false};
  param.colorType = SCANCMD_COLOR_C24BIT;
  param.scanArea = {SCANCMD_SCAN_AREA_NORMAL, 0, 0, 2550, 3300};
  param.compressionType = SCANCMD_COMPRESSION_JPEG;
  param.jpegCompressionRate = 50;
  param.jpegSamplingFactor = SCANCMD_JPEG_SAMPLING_420;
  param.toneAdjust = true;
  const std::string ssp =
      "\x1BSSP\n"
      "OS=MAC\nPSRC=AUTO\nRESO=300,300\nCLR=C24BIT\nAREA=NORMAL\nMRGN=0,0,0,0\nDPLX=OFF\nBRIT=50\nCONT=50\n"
      "COMP=JPEG\nRATE=50\nJSF=420\nIPRC=NORMAL\nPTYPE=NORMAL\nPAGE=0\nLONG=OFF\nCARR=OFF\nRMGC=OFF\nDTDF=OFF\n"
      "DT4V=OFF\nDSKW=OFF\nLSMD=OFF\nRMBP=OFF\nRMMR=OFF\nGMMA=OFF\nTONE=ON\nQTFD=OFF\nUSER=\n"
      "\x80";
  EXPECT_EQ(CCmdString_v2().MakeSSPcmdString(&param), ssp);
  EXPECT_EQ(CCmdString_v2().MakeXSCcmdString(&param), "\x1BXSC\nRESO=300,300\nAREA=0,0,2550,3300\nMODE=NORMAL\n\x80");
}

TEST(CmdString_v2, EveryLineOfTheSettingsStandsInItsPlace) {
  Param param = zero();
  param.autoColorLevelOn = true;
  param.monoThreshold.isValid = true;
  param.feedMotion.isOn = true;
  const std::vector<std::string> lines = sspLines(param);
  ASSERT_EQ(lines.size(), std::size(kSspKeys));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].substr(0, lines[i].find('=')), kSspKeys[i].key);
  }
}

TEST(CmdString_v2, OnlyThreeLinesCanBeMissing) {
  const std::vector<std::string> lines = sspLines(zero());
  std::vector<std::string> keys;
  for (const KeyOperation& row : kSspKeys) {
    const std::string key = row.key;
    if (key != "ATCL" && key != "THRS" && key != "OPDF") keys.push_back(key);
  }
  ASSERT_EQ(lines.size(), keys.size());
  for (std::size_t i = 0; i < lines.size(); ++i) EXPECT_EQ(lines[i].substr(0, lines[i].find('=')), keys[i]);
}
TEST(CmdString_v2, AUserNameWithoutAnEndStopsWithItsField) {
  Param param = zero();
  std::memset(param.userName, 'u', sizeof param.userName);
  param.specialScan = as<SCANCMD_SPECIAL_SCAN_TYPE>(0x75757575);
  EXPECT_EQ(CCmdString_v2().MakeUserName(param), "USER=" + std::string(260, 'u') + "\n");
}

TEST(CmdString_v2, TheStartSendsTheAreaByWordOrByNumbers) {
  struct Row {
    int type;
    const char* line;
  };
  const Row rows[] = {{0, "AREA=10,20,40,60\n"},  {1, "AREA=FULL\n"},
                      {2, "AREA=OVER\n"},         {3, "AREA=AUTO\n"},
                      {4, "AREA=ATDSKW\n"},       {5, "AREA=10,20,40,60\n"},
                      {-1, "AREA=10,20,40,60\n"}, {INT_MAX, "AREA=10,20,40,60\n"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.type);
    Param param = zero();
    param.resolution = {200, 100, false};
    param.scanArea = {as<SCANCMD_SCAN_AREA_TYPE>(row.type), 10, 20, 30, 40};
    EXPECT_EQ(CCmdString_v2().MakeLastScanAreaString(param), row.line);
    EXPECT_EQ(CCmdString_v2().MakeXSCcmdString(&param), "\x1BXSC\nRESO=200,100\n"s + row.line + "MODE=NORMAL\n\x80");
  }
}

TEST(CmdString_v2, TheFarCornerOfTheAreaWrapsAsUnsigned) {
  Param param = zero();
  param.scanArea = {SCANCMD_SCAN_AREA_NORMAL, UINT_MAX, 3000000000u, 3, 1};
  EXPECT_EQ(CCmdString_v2().MakeLastScanAreaString(param), "AREA=4294967295,3000000000,2,3000000001\n");
}

TEST(CmdString_v2, TheStartSendsAnAutomaticResolutionToo) {
  Param param = zero();
  param.resolution = {200, 100, true};
  param.scanArea.areaType = SCANCMD_SCAN_AREA_FULL;
  EXPECT_EQ(CCmdString_v2().MakeXSCcmdString(&param), "\x1BXSC\nRESO=AUTO\nAREA=FULL\nMODE=NORMAL\n\x80");
}

TEST(CmdString_v2, TheStartSendsTheSpecialMode) {
  for (const int mode : {-1, 0, 1, 2, 3, 4, 258}) {
    Param param = zero();
    param.specialScan = as<SCANCMD_SPECIAL_SCAN_TYPE>(mode);
    const std::string line = mode == 2 ? "MODE=EDGEPRE\n" : mode == 3 ? "MODE=ORIGINAL\n" : "MODE=NORMAL\n";
    EXPECT_EQ(CCmdString_v2().MakeSpecialModeString(param), line) << mode;
    EXPECT_EQ(CCmdString_v2().MakeXSCcmdString(&param), "\x1BXSC\nRESO=0,0\nAREA=0,0,0,0\n" + line + "\x80") << mode;
  }
}

TEST(CmdString_v2, TheDocumentCheckNamesTheSource) {
  for (const int source : {-1, 0, 1, 2, 3, 257}) {
    const std::string word = source == 1 ? "ADF" : source == 2 ? "FB" : "AUTO";
    EXPECT_EQ(CCmdString_v2().MakeCKDcmdString(as<SCANCMD_PAPERSOURCE_TYPE>(source)),
              "\x1B"
              "CKD\nPSRC=" +
                  word + "\n\x80")
        << source;
  }
}

TEST(CmdString_v2, AnAbortNamesTheEjectionUnlessItIsUnspecified) {
  struct Row {
    int type;
    const char* frame;
  };
  const Row rows[] = {{0,
                       "\x1B"
                       "ABT\n\x80"},
                      {1,
                       "\x1B"
                       "ABT\nEJCT=ALL\n\x80"},
                      {2,
                       "\x1B"
                       "ABT\nEJCT=ONE\n\x80"},
                      {3,
                       "\x1B"
                       "ABT\nEJCT=NO\n\x80"},
                      {4,
                       "\x1B"
                       "ABT\nEJCT=ONE\n\x80"},
                      {-1,
                       "\x1B"
                       "ABT\nEJCT=ONE\n\x80"},
                      {256,
                       "\x1B"
                       "ABT\nEJCT=ONE\n\x80"}};
  for (const Row& row : rows) {
    EXPECT_EQ(CCmdString_v2().MakeABTcmdString(as<SCANCMD_EJECTION_TYPE>(row.type)), row.frame) << row.type;
  }
  EXPECT_EQ(CCmdString_v2().MakeEjectionModeString(SCANCMD_EJECTION_NO), "EJCT=NO\n");
}

TEST(CmdString_v2, WholeFramesAreLoggedAlsoWhenTheyAreEmpty) {
  const Param param = zero();
  LogCapture log;
  const CCmdString_v2 strings;
  const std::string ssp = strings.MakeSSPcmdString(&param);
  const std::string xsc = strings.MakeXSCcmdString(&param);
  const std::string ckd = strings.MakeCKDcmdString(SCANCMD_PAPERSOURCE_FB);
  const std::string abt = strings.MakeABTcmdString(SCANCMD_EJECTION_ALL);
  EXPECT_EQ(strings.MakeSSPcmdString(nullptr), "");
  EXPECT_EQ(strings.MakeXSCcmdString(nullptr), "");
  const std::vector<LogLine> wanted = {{0, "SSP Command:\r\n" + ssp}, {0, "XSC Command:\r\n" + xsc},
                                       {0, "CKD Command:\r\n" + ckd}, {0, "ABT Command:\r\n" + abt},
                                       {0, "SSP Command:\r\n"},       {0, "XSC Command:\r\n"}};
  EXPECT_EQ(log.lines, wanted) << log.all();
}

// Whatever the record holds, a frame has its lines and ends with the one 0x80 in it.
TEST(CmdString_v2, AnyRecordGivesAWellFormedFrame) {
  std::mt19937 random(7);
  for (int round = 0; round < 2000; ++round) {
    Param param = zero();
    const auto number = [&] { return static_cast<std::int32_t>(random()); };
    const auto flag = [&] { return random() % 2 == 0; };
    param.osInfo = as<SCANCMD_OS_INFO>(number());
    param.paperSource = as<SCANCMD_PAPERSOURCE_TYPE>(number());
    param.resolution = {static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random()), flag()};
    param.scanArea = {as<SCANCMD_SCAN_AREA_TYPE>(number() % 6), UINT_MAX - static_cast<unsigned>(round), 2, UINT_MAX,
                      4};
    param.marginArea = {number(), number(), number(), number()};
    param.brightness = round % 3 == 0 ? INT_MAX : number();
    param.contrast = round % 3 == 1 ? INT_MAX : number();
    param.autoColorLevelOn = flag();
    param.autoColorLevel = {number(), number()};
    param.monoThreshold = {7, flag(), flag()};
    param.feedMotion = {flag(), flag(), flag()};
    param.groundColorRemoval = {flag(), flag(), number()};
    param.blankPageRemoval = {flag(), flag(), 9};
    for (char& c : param.userName) c = static_cast<char>('a' + random() % 20);
    const std::string frame = CCmdString_v2().MakeSSPcmdString(&param);
    ASSERT_EQ(frame.find('\x80'), frame.size() - 1);
    const std::size_t optional = (param.autoColorLevelOn ? 1u : 0u) + (param.feedMotion.isOn ? 1u : 0u) +
                                 (param.monoThreshold.isValid && !param.monoThreshold.useDeviceValue ? 1u : 0u);
    ASSERT_EQ(linesOf(frame, "SSP").size(), 28 + optional);
    ASSERT_EQ(linesOf(CCmdString_v2().MakeXSCcmdString(&param), "XSC").size(), 3u);
  }
}
