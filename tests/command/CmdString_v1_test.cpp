#include "command/CmdString_v1.h"

#include <climits>
#include <functional>
#include <map>
#include <random>

#include "tests/command/frame_lines.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;
using frame_lines::as;
using frame_lines::linesOf;
using frame_lines::Param;
using frame_lines::zero;

#define SET(...) [](Param& p) { __VA_ARGS__; }

namespace {

using MakeLine = std::string (CCmdString_v1::*)(const Param&) const;
struct KeyOperation {
  const char* key;
  MakeLine make;
};
// Wire order of X.
const KeyOperation kXKeys[] = {
    {"R", &CCmdString_v1::MakeResolutionString},
    {"M", &CCmdString_v1::MakeScanModeString},
    {"C", &CCmdString_v1::MakeCommpressionString},
    {"J", &CCmdString_v1::MakeJpegCompressionRateString},
    {"B", &CCmdString_v1::MakeBrightnessString},
    {"N", &CCmdString_v1::MakeConstrastString},
    {"A", &CCmdString_v1::MakeScanAreaString},
    {"D", &CCmdString_v1::MakeScanningSideString},
    {"S", &CCmdString_v1::MakeSpecialReadString},
    {"P", &CCmdString_v1::MakeOnePageScanString},
    {"E", &CCmdString_v1::MakeErrorSuppressString},
    {"G", &CCmdString_v1::MakeGroundColorRemovalString},
    {"L", &CCmdString_v1::MakeGroundColorRemovalLevelString},
};

struct ValueRow {
  const char* key;
  const char* name;
  std::function<void(Param&)> set;
  const char* value;
};

// Enumeration fields: every number of the table and some that no table has.
template <class Enum>
void addWords(std::vector<ValueRow>& rows, const char* key, Enum Param::*field, const std::map<int, const char*>& words,
              const char* otherwise) {
  for (const int number : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 255, 256, 258, INT_MAX, INT_MIN}) {
    const auto found = words.find(number);
    rows.push_back({key, "word", [=](Param& p) { p.*field = as<Enum>(number); },
                    found == words.end() ? otherwise : found->second});
  }
}

std::vector<ValueRow> valueRows() {
  std::vector<ValueRow> rows;
  addWords(rows, "M", &Param::colorType, {{0, "TEXT"}, {1, "ERRDIF"}, {2, "GRAY256"}, {3, "C256"}}, "CGRAY");
  addWords(rows, "C", &Param::compressionType, {{2, "RLENGTH"}, {3, "JPEG"}}, "NONE");
  addWords(rows, "S", &Param::specialScan, {{2, "EDGE_SCAN"}, {3, "ORIGINAL_SCAN"}}, "NORMAL_SCAN");
  const std::vector<ValueRow> others = {
      {"R", "both axes", SET(p.resolution = {300, 600, false}), "300,600"},
      {"R", "automatic is not looked at", SET(p.resolution = {300, 600, true}), "300,600"},
      {"R", "nothing", SET(p.resolution = {0, 0, true}), "0,0"},
      {"R", "unsigned", SET(p.resolution = {UINT_MAX, 1u << 31, false}), "4294967295,2147483648"},
      {"J", "no rate", SET(p.jpegCompressionRate = 0), "MID"},
      {"J", "a rate is not looked at", SET(p.jpegCompressionRate = 90), "MID"},
      {"B", "least", SET(p.brightness = -50), "0"},
      {"B", "middle", SET(p.brightness = 0), "50"},
      {"B", "most", SET(p.brightness = 50), "100"},
      {"B", "below the range", SET(p.brightness = -51), "-1"},
      {"N", "least", SET(p.contrast = -50), "0"},
      {"N", "middle", SET(p.contrast = 0), "50"},
      {"N", "most", SET(p.contrast = 50), "100"},
      {"N", "below the range", SET(p.contrast = -60), "-10"},
      {"A", "corners", SET(p.scanArea = {as<SCANCMD_SCAN_AREA_TYPE>(0), 10, 20, 30, 40}), "10,20,40,60"},
      {"A", "a whole page by word has numbers all the same", SET(p.scanArea = {SCANCMD_SCAN_AREA_FULL, 1, 2, 3, 4}),
       "1,2,4,6"},
      {"A", "unsigned and wrapping", SET(p.scanArea = {SCANCMD_SCAN_AREA_NORMAL, UINT_MAX, 3000000000u, 3, 1}),
       "4294967295,3000000000,2,3000000001"},
      {"D", "one side", SET(p.duplexScan = {false, false}), "SIN"},
      {"D", "both sides", SET(p.duplexScan = {true, false}), "DUP"},
      {"D", "the back alone cannot be said", SET(p.duplexScan = {true, true}), "DUP"},
      {"D", "the back alone without duplex", SET(p.duplexScan = {false, true}), "SIN"},
      {"P", "no limit", SET(p.scanPage = 0), "0"},
      {"P", "one page", SET(p.scanPage = 1), "1"},
      {"P", "two pages", SET(p.scanPage = 2), "0"},
      {"P", "very many", SET(p.scanPage = UINT_MAX), "0"},
      {"E", "neither", SET(p.landscapeMode = false), "0"},
      {"E", "double feed", SET(p.doubleFeedDetection = {true, false, 0}), "1"},
      {"E", "double feed with a level", SET(p.doubleFeedDetection = {true, true, 7}), "1"},
      {"E", "a level but off", SET(p.doubleFeedDetection = {false, true, 7}), "0"},
      {"E", "landscape", SET(p.landscapeMode = true), "2"},
      {"E", "both", SET(p.doubleFeedDetection.isOn = true, p.landscapeMode = true), "3"},
      {"G", "off", SET(p.groundColorRemoval = {false, true, 0}), "0"},
      {"G", "on", SET(p.groundColorRemoval = {true, false, 0}), "1"},
      {"L", "level", SET(p.groundColorRemoval.level = 3), "3"},
      {"L", "below 0", SET(p.groundColorRemoval.level = -2), "-2"},
      {"L", "least", SET(p.groundColorRemoval.level = INT_MIN), "-2147483648"},
      {"L", "most", SET(p.groundColorRemoval.level = INT_MAX), "2147483647"},
  };
  rows.insert(rows.end(), others.begin(), others.end());
  return rows;
}

std::vector<std::string> xLines(const Param& param) { return linesOf(CCmdString_v1().MakeXcmdString(&param), "X"); }

}  // namespace

TEST(CmdString_v1, APlainColourScanIsTheseBytes) {
  Param param = zero();
  param.resolution = {300, 300, false};
  param.colorType = SCANCMD_COLOR_C24BIT;
  param.scanArea = {SCANCMD_SCAN_AREA_NORMAL, 0, 0, 2560, 3300};
  param.compressionType = SCANCMD_COMPRESSION_JPEG;
  param.jpegCompressionRate = 50;
  EXPECT_EQ(CCmdString_v1().MakeIcmdString(&param), "\x1BI\nR=300,300\nM=CGRAY\nD=SIN\nS=NORMAL_SCAN\n\x80");
  EXPECT_EQ(CCmdString_v1().MakeEcmdString(&param),
            "\x1B"
            "E\nR=300,300\nM=CGRAY\n\x80");
  EXPECT_EQ(CCmdString_v1().MakeXcmdString(&param),
            "\x1BX\n"
            "R=300,300\nM=CGRAY\nC=JPEG\nJ=MID\nB=50\nN=50\nA=0,0,2560,3300\nD=SIN\nS=NORMAL_SCAN\nP=0\nE=0\nG=0\nL=0\n"
            "\x80");
}

TEST(CmdString_v1, AScanThatAsksForEverythingIsTheseBytes) {
  Param param = zero();
  param.resolution = {200, 100, true};
  param.colorType = SCANCMD_COLOR_ERRDIF;
  param.scanArea = {SCANCMD_SCAN_AREA_AUTO, 16, 32, 1600, 2200};
  param.duplexScan = {true, false};
  param.brightness = -50;
  param.contrast = 50;
  param.compressionType = SCANCMD_COMPRESSION_RLENGTH;
  param.scanPage = 1;
  param.landscapeMode = true;
  param.doubleFeedDetection.isOn = true;
  param.groundColorRemoval = {true, true, -3};
  EXPECT_EQ(CCmdString_v1().MakeIcmdString(&param), "\x1BI\nR=200,100\nM=ERRDIF\nD=DUP\nS=CORNER_SCAN\n\x80");
  EXPECT_EQ(
      CCmdString_v1().MakeXcmdString(&param),
      "\x1BX\n"
      "R=200,100\nM=ERRDIF\nC=RLENGTH\nJ=MID\nB=0\nN=100\nA=16,32,1616,2232\nD=DUP\nS=CORNER_SCAN\nP=1\nE=3\nG=1\n"
      "L=-3\n\x80");
}

TEST(CmdString_v1, EveryLineIsSentWhateverItsValue) {
  const std::vector<std::string> lines = xLines(zero());
  ASSERT_EQ(lines.size(), std::size(kXKeys));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].substr(0, lines[i].find('=')), kXKeys[i].key);
  }
}

TEST(CmdString_v1, EveryValueOfEveryKeyIsSentAsTheDeviceReadsIt) {
  for (const ValueRow& row : valueRows()) {
    SCOPED_TRACE(std::string(row.key) + " " + row.name);
    Param param = zero();
    row.set(param);
    const std::string wanted = row.key + "="s + row.value;
    std::vector<std::string> expected = xLines(zero());
    for (std::size_t i = 0; i < std::size(kXKeys); ++i) {
      if (kXKeys[i].key != std::string(row.key)) continue;
      EXPECT_EQ((CCmdString_v1().*kXKeys[i].make)(param), wanted + "\n");
      expected[i] = wanted;
    }
    EXPECT_EQ(xLines(param), expected) << "its own line alone changes";
  }
}

TEST(CmdString_v1, TheQueryOfTheParametersHasTheLinesOfTheStart) {
  for (const ValueRow& row : valueRows()) {
    SCOPED_TRACE(std::string(row.key) + " " + row.name);
    Param param = zero();
    row.set(param);
    const std::vector<std::string> start = xLines(param);
    EXPECT_EQ(linesOf(CCmdString_v1().MakeIcmdString(&param), "I"),
              (std::vector<std::string>{start[0], start[1], start[7], start[8]}));
    EXPECT_EQ(linesOf(CCmdString_v1().MakeEcmdString(&param), "E"), (std::vector<std::string>{start[0], start[1]}));
  }
}

TEST(CmdString_v1, TheFirstSpecialWishThatAppliesWins) {
  for (const bool deskew : {true, false}) {
    for (const int area : {-1, 0, 1, 2, 3, 4, 5}) {
      for (const int special : {-1, 0, 1, 2, 3, 4}) {
        Param param = zero();
        param.autoDeskew = deskew;
        param.scanArea.areaType = as<SCANCMD_SCAN_AREA_TYPE>(area);
        param.specialScan = as<SCANCMD_SPECIAL_SCAN_TYPE>(special);
        const char* word = deskew         ? "SKEW_ADJUST"
                           : area == 3    ? "CORNER_SCAN"
                           : special == 3 ? "ORIGINAL_SCAN"
                           : special == 2 ? "EDGE_SCAN"
                                          : "NORMAL_SCAN";
        EXPECT_EQ(CCmdString_v1().MakeSpecialReadString(param), "S="s + word + "\n") << deskew << area << special;
      }
    }
  }
}

TEST(CmdString_v1, TheErrorBitsAreANumber) {
  for (const bool doubleFeed : {false, true}) {
    for (const bool landscape : {false, true}) {
      Param param = zero();
      param.doubleFeedDetection.isOn = doubleFeed;
      param.landscapeMode = landscape;
      EXPECT_EQ(CCmdString_v1().GetErrorSuppressBit(param), (doubleFeed ? 1u : 0u) + (landscape ? 2u : 0u));
    }
  }
}

TEST(CmdString_v1, ThePaperSourceIsALineWithoutAKey) {
  for (const int source : {-1, 0, 1, 2, 3, 257, INT_MAX, INT_MIN}) {
    SCOPED_TRACE(source);
    const auto type = as<SCANCMD_PAPERSOURCE_TYPE>(source);
    const std::string line = source == 1 ? "ADF\n" : source == 2 ? "FB\n" : "AUTO\n";
    EXPECT_EQ(CCmdString_v1().MakePaperSourceString(type), line);
    EXPECT_EQ(CCmdString_v1().MakeDcmdString(type),
              "\x1B"
              "D\n" +
                  line + "\x80");
    EXPECT_EQ(CCmdString_v1().MakeScmdString(type), "\x1BS\n" + line + "\x80");
  }
}

TEST(CmdString_v1, WholeFramesAreLoggedAlsoWhenTheyAreEmpty) {
  const Param param = zero();
  LogCapture log;
  const CCmdString_v1 strings;
  const std::string d = strings.MakeDcmdString(SCANCMD_PAPERSOURCE_FB);
  const std::string s = strings.MakeScmdString(SCANCMD_PAPERSOURCE_AUTO);
  const std::string i = strings.MakeIcmdString(&param);
  const std::string e = strings.MakeEcmdString(&param);
  const std::string x = strings.MakeXcmdString(&param);
  EXPECT_EQ(strings.MakeIcmdString(nullptr), "");
  EXPECT_EQ(strings.MakeEcmdString(nullptr), "");
  EXPECT_EQ(strings.MakeXcmdString(nullptr), "");
  const std::vector<LogLine> wanted = {{0, "D Command:\r\n" + d}, {0, "S Command:\r\n" + s}, {0, "I Command:\r\n" + i},
                                       {0, "E Command:\r\n" + e}, {0, "X Command:\r\n" + x}, {0, "I Command:\r\n"},
                                       {0, "E Command:\r\n"},     {0, "X Command:\r\n"}};
  EXPECT_EQ(log.lines, wanted) << log.all();
}

// Whatever the record holds, a frame has its lines and ends with the one 0x80 in it.
TEST(CmdString_v1, AnyRecordGivesAWellFormedFrame) {
  std::mt19937 random(11);
  for (int round = 0; round < 2000; ++round) {
    Param param = zero();
    const auto number = [&] { return static_cast<std::int32_t>(random()); };
    const auto flag = [&] { return random() % 2 == 0; };
    param.resolution = {static_cast<std::uint32_t>(random()), static_cast<std::uint32_t>(random()), flag()};
    param.colorType = as<SCANCMD_COLOR_TYPE>(number());
    param.compressionType = as<SCANCMD_COMPRESSION_TYPE>(number());
    param.scanArea = {as<SCANCMD_SCAN_AREA_TYPE>(number() % 6), UINT_MAX - static_cast<unsigned>(round), 2, UINT_MAX,
                      4};
    param.brightness = round % 3 == 0 ? INT_MAX : number();
    param.contrast = round % 3 == 1 ? INT_MAX : number();
    param.duplexScan = {flag(), flag()};
    param.autoDeskew = flag();
    param.specialScan = as<SCANCMD_SPECIAL_SCAN_TYPE>(number());
    param.groundColorRemoval = {flag(), flag(), number()};
    const std::string frame = CCmdString_v1().MakeXcmdString(&param);
    ASSERT_EQ(frame.find('\x80'), frame.size() - 1);
    ASSERT_EQ(linesOf(frame, "X").size(), 13u);
    ASSERT_EQ(linesOf(CCmdString_v1().MakeIcmdString(&param), "I").size(), 4u);
  }
}
