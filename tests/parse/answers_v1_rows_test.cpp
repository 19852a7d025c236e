// The answers to I, P and E against a second reading that is written here, and the dispatch of every body to the parser
// of its generation.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "parse/ParseScanCmd.h"
#include "settings/PaperSize.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;

namespace {

// An exact copy, so that a read behind the body is found out.
struct Body {
  explicit Body(const std::string& text) : size(static_cast<long>(text.size())), bytes(new unsigned char[text.size()]) {
    std::copy(text.begin(), text.end(), bytes.get());
  }
  unsigned char* data() const { return bytes.get(); }

  long size;
  std::unique_ptr<unsigned char[]> bytes;
};

int number(const std::string& digits) {
  return static_cast<int>(std::clamp<long>(std::strtol(digits.c_str(), nullptr, 10), INT_MIN, INT_MAX));
}
std::uint32_t unsignedNumber(const std::string& digits) { return static_cast<std::uint32_t>(number(digits)); }
std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> tokens(1);
  for (const char c : text) {
    if (c == ',') {
      tokens.emplace_back();
    } else {
      tokens.back() += c;
    }
  }
  return tokens;
}
std::string untilZero(const std::string& body) { return body.substr(0, body.find('\0')); }

// ---- I

std::string print(const ACTUALSCANPARAM& a) {
  std::string text;
  for (const long long n : {static_cast<long long>(a.paperSource), 0LL + a.resolution.x, 0LL + a.resolution.y,
                            0LL + a.maxSizeMm.x, 0LL + a.maxSizeMm.y, 0LL + a.maxSizePixel.x, 0LL + a.maxSizePixel.y}) {
    text += std::to_string(n) + " ";
  }
  for (const std::uint32_t n : a.reserved) text += n == 0 ? "" : "reserved!";
  return text;
}
std::string parsedI(const std::string& text) {
  const Body body(text);
  return print(CParseCmdRes_v1().ParseActualParameterResponse(body.data(), body.size));
}
std::string wantedI(const std::string& text) {
  std::vector<std::string> t = split(untilZero(text));
  t.resize(7);
  ACTUALSCANPARAM a{};
  a.resolution = {unsignedNumber(t[0]), unsignedNumber(t[1])};
  if (!t[2].empty()) a.paperSource = static_cast<PAPERSOURCESELECT>(t[2] == "1" ? 2 : t[2] == "3" ? 3 : 1);
  a.maxSizeMm = {unsignedNumber(t[3]) * 10, unsignedNumber(t[5]) * 10};
  a.maxSizePixel = {unsignedNumber(t[4]), unsignedNumber(t[6])};
  return print(a);
}

TEST(ActualParametersV1, TheEdges) {
  EXPECT_EQ(parsedI("300,300,1,2100,2480,2970,3507"), "2 300 300 21000 29700 2480 3507 ");
  EXPECT_EQ(parsedI("300,300,3,2100,2480,2970,3507"), "3 300 300 21000 29700 2480 3507 ");
  EXPECT_EQ(parsedI("300,300,13,2100,2480,2970,3507"), "1 300 300 21000 29700 2480 3507 ");
  EXPECT_EQ(parsedI("300,600"), "0 300 600 0 0 0 0 ");
  EXPECT_EQ(parsedI(""), "0 0 0 0 0 0 0 ");
}

TEST(ActualParametersV1, EveryTokenAtEveryPlace) {
  for (std::size_t place = 0; place < 7; ++place) {
    for (const char* token : {"", "0", "1", "2", "3", "13", "31", "01", "1 ", " 1", "x", "1x", "-1", "+3", "2147483647",
                              "2147483648", "4294967295", "99999999999999999999", "-99999999999999999999"}) {
      std::string text;
      for (std::size_t i = 0; i < 7; ++i) text += (i == 0 ? "" : ",") + (i == place ? token : std::to_string(100 + i));
      EXPECT_EQ(parsedI(text), wantedI(text)) << text;
      EXPECT_EQ(parsedI(text + ",8,9"), wantedI(text)) << text;
      EXPECT_EQ(parsedI(text + "\n"), wantedI(text + "\n")) << text;
    }
  }
}

TEST(ActualParametersV1, AnyLineIsReadTheSameWayTwice) {
  std::mt19937 random(35);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t length = random() % 30; length > 0; --length) text += ",,,,0123456789 -x\n"[random() % 18];
    if (random() % 5 == 0 && !text.empty()) text[random() % text.size()] = '\0';
    ASSERT_EQ(parsedI(text), wantedI(text)) << text;
  }
}

// ---- P

TEST(PaletteV1, CountsQuartersAndFillsTriples) {
  for (std::size_t size = 1; size <= 1100; ++size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 5 + i / 256);
    const Body body(text);
    const PALETTE palette = CParseCmdRes_v1().ParseColorPaletteResponse(body.data(), body.size);
    ASSERT_EQ(palette.valid, 1u);
    ASSERT_EQ(palette.count, size / 4) << size;
    for (std::size_t i = 0; i < 256; ++i) {
      const bool filled = i < size / 4;
      const auto at = [&](std::size_t part) { return filled ? static_cast<unsigned char>(text[3 * i + part]) : 0; };
      ASSERT_EQ(palette.entries[i].rgbRed, at(0)) << size << " " << i;
      ASSERT_EQ(palette.entries[i].rgbGreen, at(1)) << size << " " << i;
      ASSERT_EQ(palette.entries[i].rgbBlue, at(2)) << size << " " << i;
      ASSERT_EQ(palette.entries[i].rgbReserved, 0) << size << " " << i;
    }
  }
}

TEST(PaletteV1, AnEntryLiesInMemoryAsBlueGreenRedZero) {
  const Body body("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C"s);
  const PALETTE palette = CParseCmdRes_v1().ParseColorPaletteResponse(body.data(), body.size);
  EXPECT_EQ(palette.count, 3u);
  const unsigned char wanted[16] = {3, 2, 1, 0, 6, 5, 4, 0, 9, 8, 7, 0, 0, 0, 0, 0};
  EXPECT_EQ(std::memcmp(palette.entries, wanted, 16), 0);
}

// ---- E

DETECTEDPAPER parsedE(const std::string& text, const QS_SCANNER_CAPABILITY& capability, UNITTYPE unit,
                      PAPERSOURCESELECT source = PAPERSOURCE_FLATBED) {
  const Body body(text);
  ACTUALSCANPARAM actual{};
  actual.paperSource = source;
  return CParseCmdRes_v1().ParsePaperSizeDetectFrom2Vertex(body.data(), body.size, capability, actual, unit);
}
std::vector<int> pairOf(const std::string& text, const std::string& key) {
  const std::size_t at = text.find(key);
  if (at == std::string::npos) return {0, 0};
  const std::string rest = text.substr(at + key.size());
  std::vector<std::string> tokens = split(rest.substr(0, rest.find('\n')));
  tokens.resize(2);
  if (tokens[0].empty() || tokens[1].empty()) return {0, 0};
  return {number(tokens[0]), number(tokens[1])};
}
void expectE(const std::string& body, const QS_SCANNER_CAPABILITY& capability, UNITTYPE unit) {
  const DETECTEDPAPER paper = parsedE(body, capability, unit);
  const std::string text = untilZero(body);
  const std::vector<int> r = pairOf(text, "R="), v1 = pairOf(text, "V1="), v2 = pairOf(text, "V2=");
  EXPECT_EQ(paper.resolution.x, static_cast<std::uint32_t>(r[0])) << text;
  EXPECT_EQ(paper.resolution.y, static_cast<std::uint32_t>(r[1])) << text;
  EXPECT_EQ((std::vector<int>{paper.vertex1.x, paper.vertex1.y}), v1) << text;
  EXPECT_EQ((std::vector<int>{paper.vertex2.x, paper.vertex2.y}), v2) << text;
  ACTUALSCANPARAM actual{};
  actual.paperSource = PAPERSOURCE_FLATBED;
  EXPECT_EQ(paper.paperType, CPaperSize().GetPaperTypeFromVertex(paper.vertex1, paper.vertex2, paper.resolution,
                                                                 capability, actual, unit))
      << text;
}

TEST(VerticesV1, LinesInAnyOrder) {
  std::vector<std::string> lines = {"R=300,300\n", "V1=10,20\n", "V2=1110,20\n"};
  std::sort(lines.begin(), lines.end());
  do {
    const DETECTEDPAPER paper = parsedE(lines[0] + lines[1] + lines[2], {}, UNIT_INCH);
    EXPECT_EQ(paper.resolution.x, 300u);
    EXPECT_EQ(paper.resolution.y, 300u);
    EXPECT_EQ(paper.vertex1.x, 10);
    EXPECT_EQ(paper.vertex1.y, 20);
    EXPECT_EQ(paper.vertex2.x, 1110);
    EXPECT_EQ(paper.vertex2.y, 20);
    EXPECT_EQ(paper.paperType, 14) << "1100 pixels at 300 dots are 93.13 mm";
  } while (std::next_permutation(lines.begin(), lines.end()));
}

TEST(VerticesV1, WithoutTheFirstCornerThePaperIsNamedAllTheSame) {
  const DETECTEDPAPER paper = parsedE("R=300,300\nV2=1200,0\n", {}, UNIT_MILLIMETER);
  EXPECT_EQ(paper.vertex1.x, 0);
  EXPECT_EQ(paper.vertex1.y, 0);
  EXPECT_EQ(paper.paperType, 16);
  EXPECT_EQ(parsedE("R=300,300\nV2=1200,0\n", {}, UNIT_INCH).paperType, 12);
  // Neither corner: an edge of nothing on a device that is not wide.
  EXPECT_EQ(parsedE("R=300,300\n", {}, UNIT_MILLIMETER).paperType, 1);
  EXPECT_EQ(parsedE("R=300,300\n", {}, UNIT_INCH).paperType, 2);
  // Without a body nothing is named.
  EXPECT_EQ(parsedE("", {}, UNIT_INCH).paperType, 0);
}

TEST(VerticesV1, AnyLinesAreReadTheSameWayTwice) {
  std::mt19937 random(36);
  QS_SCANNER_CAPABILITY capability{};
  capability.baseFunc.marginSize.flatbed = {300, 300, 300, 300, UNIT_MILLIMETER};
  capability.baseFunc.deviceScanSizeMax.flatbed = {29700, 42000};
  const std::vector<std::string> pieces = {"R=", "V1=", "V2=", ",",    ",", "\n",   "\n", "-",
                                           "0",  "7",   "300", "1200", " ", "2480", "x"};
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t parts = random() % 24; parts > 0; --parts) text += pieces[random() % pieces.size()];
    if (random() % 8 == 0) text += "\0V1=5,5\n"s;
    if (text.empty()) continue;
    expectE(text, capability, random() % 2 == 0 ? UNIT_MILLIMETER : UNIT_INCH);
  }
}

// ---- the dispatch

TEST(ParserOfAGeneration, OnlyOneAndTwoHaveOne) {
  CParseScanCmd parser;
  EXPECT_NE(parser.GetParseCmdRes(SCANCMD_GENERATION_1ST), nullptr);
  EXPECT_NE(parser.GetParseCmdRes(SCANCMD_GENERATION_2ND), nullptr);
  EXPECT_NE(parser.GetParseCmdRes(SCANCMD_GENERATION_1ST), parser.GetParseCmdRes(SCANCMD_GENERATION_2ND));
  for (const int generation : {0, 3, 7, -1, INT_MAX}) {
    EXPECT_EQ(parser.GetParseCmdRes(static_cast<SCANCMD_GENERATION>(generation)), nullptr) << generation;
  }
}

// Bodies of either dialect, each of which means nothing in the other one.
TEST(ParserOfAGeneration, EachBodyIsReadInTheDialectOfItsGeneration) {
  const Body keys("F=FILE\n");
  const Body tagged("\x01\x10\x02\0\x04\0\xF0\xF0\0\0"s);
  for (int generation = -1; generation <= 3; ++generation) {
    SCOPED_TRACE(generation);
    QS_SCANNER_CAPABILITY capability{};
    capability.generation = static_cast<SCANCMD_GENERATION>(generation);
    CParseScanCmd parser;
    _SCANCMD_RESPONSE_INFO k{keys.size, keys.data()}, t{tagged.size, tagged.data()};
    EXPECT_EQ(parser.ParseDeviceKeyInfoData(&k, capability).event.valid, generation == 1);
    EXPECT_EQ(parser.ParseDeviceKeyInfoData(&t, capability).event.valid, generation == 2);
    EXPECT_FALSE(parser.ParseDeviceKeyInfoData(nullptr, capability).event.valid);
    _SCANCMD_RESPONSE_INFO none{9, nullptr};
    EXPECT_FALSE(parser.ParseDeviceKeyInfoData(&none, capability).event.valid);
    EXPECT_EQ(parser.ParseActualParameterData(&none, capability).resolution.x, 0u);

    const Body line("300,600");
    _SCANCMD_RESPONSE_INFO i{line.size, line.data()};
    EXPECT_EQ(parser.ParseActualParameterData(&i, capability).resolution.y, generation == 1 ? 600u : 0u);
    EXPECT_EQ(parser.ParseActualParameterData(nullptr, capability).resolution.x, 0u);
    EXPECT_EQ(parser.ParseColorPaletteData(line.data(), line.size, capability).valid, generation == 1 ? 1u : 0u);
    EXPECT_EQ(parser.ParseColorPaletteData(nullptr, 9, capability).valid, 0u);
    EXPECT_EQ(parser.ParsePDFaColorProfileData(nullptr, 9, capability).colorProfile, nullptr);

    const Body q("\x0B");
    _SCANCMD_DEVICECAP_INFO info{static_cast<SCANCMD_GENERATION>(generation), 0, q.size, q.data()};
    const QS_SCANNER_CAPABILITY told = parser.ParseDeviceInfoData(&info);
    EXPECT_EQ(told.generation, generation) << "stored whatever it is";
    EXPECT_EQ(told.commandVersion, generation == 1 ? 11 : 0);
    EXPECT_EQ(parser.GetProtocolVersion(&info), static_cast<std::uint32_t>(generation));
  }
  EXPECT_EQ(CParseScanCmd().GetProtocolVersion(nullptr), 0u);
  EXPECT_EQ(CParseScanCmd().ParseDeviceInfoData(nullptr).generation, 0);
}

TEST(ParserOfAGeneration, ACardIsUprightAtVersion0102InBothDialects) {
  const Body key("P=BCARD\n"), upright("P=BCARDV\n");
  const Body tagged("\x02\x10\x0A\0\0\0\0\0\0\x41\0\0\0\0\xF0\xF0\0\0"s);
  for (int version = 0; version < 0x10000; version += version < 0x200 ? 1 : 0x81) {
    QS_SCANNER_CAPABILITY capability{};
    capability.commandVersion = static_cast<std::uint16_t>(version);
    const int wanted = version == 0x0102 ? 19 : 18;
    for (const Body* body : {&key, &upright, &tagged}) {
      capability.generation = body == &tagged ? SCANCMD_GENERATION_2ND : SCANCMD_GENERATION_1ST;
      _SCANCMD_RESPONSE_INFO response{body->size, body->data()};
      ASSERT_EQ(CParseScanCmd().ParseDeviceKeyInfoData(&response, capability).paperType.value, wanted) << version;
    }
  }
}

}  // namespace
