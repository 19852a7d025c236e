// Every value that the keys of the settings can have.
#include <climits>
#include <functional>
#include <map>

#include "tests/command/frame_lines.h"

using namespace frame_lines;
using namespace std::string_literals;

#define SET(...) [](Param& p) { __VA_ARGS__; }

namespace {

using AreaType = orvalle_scan_api::SCANCMD_SCAN_AREA_TYPE;

Make operationOf(const std::string& key) {
  for (const KeyOperation& row : kSspKeys) {
    if (key == row.key) return row.make;
  }
  return nullptr;
}
struct ValueRow {
  const char* key;
  const char* name;
  std::function<void(Param&)> set;
  const char* value;  // null: no line
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
  addWords(rows, "OS", &Param::osInfo, {{2, "MAC"}, {3, "IOS"}, {4, "ADR"}, {5, "LNX"}, {6, "WPH"}}, "WIN");
  addWords(rows, "PSRC", &Param::paperSource, {{1, "ADF"}, {2, "FB"}}, "AUTO");
  addWords(rows, "CLR", &Param::colorType, {{0, "TEXT"}, {1, "ERRDIF"}, {2, "GRAY256"}, {3, "C256"}, {4, "C24BIT"}},
           "AUTO");
  addWords(rows, "COMP", &Param::compressionType, {{2, "RLENGTH"}, {3, "JPEG"}, {4, "RLENGTH"}, {5, "JPEG"}}, "NONE");
  addWords(rows, "JSF", &Param::jpegSamplingFactor, {{1, "422"}, {2, "411"}, {3, "420"}, {4, "400"}}, "444");
  addWords(rows, "IPRC", &Param::imageProcessing, {{1, "COPY"}, {2, "OCR"}, {3, "PHOTO"}, {4, "TXTGR"}}, "NORMAL");
  addWords(rows, "PTYPE", &Param::paperType, {{1, "THIN"}, {2, "THOCK"}, {3, "PCARD"}}, "NORMAL");

  const std::vector<ValueRow> others = {
      {"AREA", "normal", SET(p.scanArea = {as<AreaType>(0), 1, 2, 3, 4}), "NORMAL"},
      {"AREA", "1", SET(p.scanArea = {as<AreaType>(1), 1, 2, 3, 4}), "FULL"},
      {"AREA", "2", SET(p.scanArea = {as<AreaType>(2), 1, 2, 3, 4}), "OVER"},
      {"AREA", "3", SET(p.scanArea = {as<AreaType>(3), 1, 2, 3, 4}), "AUTO"},
      {"AREA", "4", SET(p.scanArea = {as<AreaType>(4), 1, 2, 3, 4}), "ATDSKW"},
      {"AREA", "5", SET(p.scanArea = {as<AreaType>(5), 1, 2, 3, 4}), "NORMAL"},
      {"AREA", "-1", SET(p.scanArea = {as<AreaType>(-1), 1, 2, 3, 4}), "NORMAL"},
      {"RESO", "both axes", SET(p.resolution = {300, 600, false}), "300,600"},
      {"RESO", "automatic", SET(p.resolution = {300, 600, true}), "AUTO"},
      {"RESO", "nothing", SET(p.resolution = {0, 0, false}), "0,0"},
      {"RESO", "unsigned", SET(p.resolution = {UINT_MAX, 1u << 31, false}), "4294967295,2147483648"},
      {"MRGN", "left, right, top, bottom in tenths", SET(p.marginArea = {100, 200, 300, 400}), "10,30,20,40"},
      {"MRGN", "truncated toward zero", SET(p.marginArea = {-15, 9, 15, -9}), "-1,1,0,0"},
      {"MRGN", "-10 and 19", SET(p.marginArea = {-10, 19, -19, 10}), "-1,-1,1,1"},
      {"MRGN", "extremes", SET(p.marginArea = {INT_MIN, INT_MAX, 0, 0}), "-214748364,0,214748364,0"},
      {"DPLX", "off", SET(p.duplexScan = {false, false}), "OFF"},
      {"DPLX", "both sides", SET(p.duplexScan = {true, false}), "ON"},
      {"DPLX", "back side only", SET(p.duplexScan = {true, true}), "BACK"},
      {"DPLX", "back side only without duplex", SET(p.duplexScan = {false, true}), "OFF"},
      {"BRIT", "least", SET(p.brightness = -50), "0"},
      {"BRIT", "middle", SET(p.brightness = 0), "50"},
      {"BRIT", "most", SET(p.brightness = 50), "100"},
      {"BRIT", "below the range", SET(p.brightness = -51), "-1"},
      {"CONT", "least", SET(p.contrast = -50), "0"},
      {"CONT", "middle", SET(p.contrast = 0), "50"},
      {"CONT", "most", SET(p.contrast = 50), "100"},
      {"CONT", "below the range", SET(p.contrast = -60), "-10"},
      {"ATCL", "off", SET(p.autoColorLevel = {3, 4}), nullptr},
      {"ATCL", "on", SET(p.autoColorLevelOn = true, p.autoColorLevel = {3, 4}), "3,4"},
      {"ATCL", "signed", SET(p.autoColorLevelOn = true, p.autoColorLevel = {-1, INT_MIN}), "-1,-2147483648"},
      {"THRS", "nothing said", SET(p.monoThreshold = {128, false, false}), nullptr},
      {"THRS", "valid", SET(p.monoThreshold = {128, false, true}), "128"},
      {"THRS", "valid, but the device's value", SET(p.monoThreshold = {128, true, true}), nullptr},
      {"THRS", "the device's value", SET(p.monoThreshold = {128, true, false}), nullptr},
      {"THRS", "zero", SET(p.monoThreshold = {0, false, true}), "0"},
      {"THRS", "unsigned", SET(p.monoThreshold = {UINT_MAX, false, true}), "4294967295"},
      {"RATE", "zero", SET(p.jpegCompressionRate = 0), "0"},
      {"RATE", "unsigned", SET(p.jpegCompressionRate = UINT_MAX), "4294967295"},
      {"PAGE", "one", SET(p.scanPage = 1), "1"},
      {"PAGE", "unsigned", SET(p.scanPage = UINT_MAX), "4294967295"},
      {"LONG", "on", SET(p.longPaperMode = true), "ON"},
      {"LONG", "off", SET(p.longPaperMode = false), "OFF"},
      {"CARR", "off", SET(p.carrierSheetMode = {false, false}), "OFF"},
      {"CARR", "on", SET(p.carrierSheetMode = {true, false}), "ON"},
      {"CARR", "automatic", SET(p.carrierSheetMode = {true, true}), "AUTO"},
      {"CARR", "automatic but off", SET(p.carrierSheetMode = {false, true}), "OFF"},
      {"RMGC", "off", SET(p.groundColorRemoval = {false, false, 3}), "OFF"},
      {"RMGC", "on", SET(p.groundColorRemoval = {true, false, 3}), "ON"},
      {"RMGC", "level", SET(p.groundColorRemoval = {true, true, 3}), "3"},
      {"RMGC", "level 0", SET(p.groundColorRemoval = {true, true, 0}), "0"},
      {"RMGC", "level below 0", SET(p.groundColorRemoval = {true, true, -2}), "-2"},
      {"RMGC", "level but off", SET(p.groundColorRemoval = {false, true, 3}), "OFF"},
      {"DTDF", "off", SET(p.doubleFeedDetection = {false, false, 2}), "OFF"},
      {"DTDF", "on", SET(p.doubleFeedDetection = {true, false, 2}), "ON"},
      {"DTDF", "level", SET(p.doubleFeedDetection = {true, true, 2}), "2"},
      {"DTDF", "level 0", SET(p.doubleFeedDetection = {true, true, 0}), "0"},
      {"DTDF", "unsigned level", SET(p.doubleFeedDetection = {true, true, UINT_MAX}), "4294967295"},
      {"DTDF", "level but off", SET(p.doubleFeedDetection = {false, true, 2}), "OFF"},
      {"OPDF", "off", SET(p.feedMotion = {false, true, true}), nullptr},
      {"OPDF", "stop", SET(p.feedMotion = {true, false, false}), "STOP"},
      {"OPDF", "a value alone changes nothing", SET(p.feedMotion = {true, true, false}), "STOP"},
      {"OPDF", "continue", SET(p.feedMotion = {true, false, true}), "CONT"},
      {"OPDF", "continue with a value", SET(p.feedMotion = {true, true, true}), "CONT"},
      {"DT4V", "on", SET(p.vertexDetection = true), "ON"},
      {"DT4V", "off", SET(p.vertexDetection = false), "OFF"},
      {"DSKW", "on", SET(p.autoDeskew = true), "ON"},
      {"DSKW", "off", SET(p.autoDeskew = false), "OFF"},
      {"LSMD", "on", SET(p.landscapeMode = true), "ON"},
      {"LSMD", "off", SET(p.landscapeMode = false), "OFF"},
      {"RMBP", "off", SET(p.blankPageRemoval = {false, false, 5}), "OFF"},
      {"RMBP", "on", SET(p.blankPageRemoval = {true, false, 5}), "ON"},
      {"RMBP", "level", SET(p.blankPageRemoval = {true, true, 5}), "5"},
      {"RMBP", "level 0", SET(p.blankPageRemoval = {true, true, 0}), "0"},
      {"RMBP", "level but off", SET(p.blankPageRemoval = {false, true, 5}), "OFF"},
      {"RMMR", "on", SET(p.moireRemoval = true), "ON"},
      {"RMMR", "off", SET(p.moireRemoval = false), "OFF"},
      {"GMMA", "off", SET(p.gammaAdjust = {false, 18}), "OFF"},
      {"GMMA", "value", SET(p.gammaAdjust = {true, 18}), "18"},
      {"GMMA", "unsigned value", SET(p.gammaAdjust = {true, UINT_MAX}), "4294967295"},
      {"GMMA", "on with value 0 is empty", SET(p.gammaAdjust = {true, 0}), ""},
      {"TONE", "on", SET(p.toneAdjust = true), "ON"},
      {"TONE", "off", SET(p.toneAdjust = false), "OFF"},
      {"QTFD", "on", SET(p.quietScan = true), "ON"},
      {"QTFD", "off", SET(p.quietScan = false), "OFF"},
      {"USER", "nobody", SET(p.userName[0] = 0), ""},
      {"USER", "a name as it is", SET(std::strcpy(p.userName, "a=b, c%d\xC3\xA9")), "a=b, c%d\xC3\xA9"},
      {"USER", "ends at its NUL", SET(std::memcpy(p.userName, "ab\0cd", 6)), "ab"},
  };
  rows.insert(rows.end(), others.begin(), others.end());
  return rows;
}

}  // namespace

TEST(CmdString_v2_values, EveryValueOfEveryKeyIsSentAsTheDeviceReadsIt) {
  for (const ValueRow& row : valueRows()) {
    SCOPED_TRACE(std::string(row.key) + " " + row.name);
    Param param = zero();
    row.set(param);
    const std::string line = row.value == nullptr ? "" : std::string(row.key) + "=" + row.value;
    EXPECT_EQ((CCmdString_v2().*operationOf(row.key))(param), line.empty() ? "" : line + "\n");
    std::string sent;
    for (const std::string& one : sspLines(param)) {
      if (one.rfind(row.key + "="s, 0) == 0) sent += one;
    }
    EXPECT_EQ(sent, line);
  }
}

TEST(CmdString_v2_values, AValueChangesItsOwnLineAlone) {
  for (const ValueRow& row : valueRows()) {
    SCOPED_TRACE(std::string(row.key) + " " + row.name);
    Param param = zero();
    row.set(param);
    std::vector<std::string> before = sspLines(zero()), after = sspLines(param);
    for (std::vector<std::string>* lines : {&before, &after}) {
      std::erase_if(*lines, [&](const std::string& line) { return line.rfind(row.key + "="s, 0) == 0; });
    }
    EXPECT_EQ(before, after);
  }
}
