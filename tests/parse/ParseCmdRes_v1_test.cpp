#include "parse/ParseCmdRes_v1.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;

namespace {

// An exact copy of a body, so that a read behind it is found out.
class Body {
 public:
  explicit Body(std::string_view text) : size_(text.size()), bytes_(new unsigned char[text.size()]) {
    std::copy(text.begin(), text.end(), bytes_.get());
  }
  unsigned char* data() { return bytes_.get(); }
  long size() const { return static_cast<long>(size_); }

 private:
  std::size_t size_;
  std::unique_ptr<unsigned char[]> bytes_;
};

tagQS_PUSHSCAN_PARAMETERS keysOf(std::string_view text) {
  Body body(text);
  return CParseCmdRes_v1().ParseDeviceKeyInfoResponse(body.data(), body.size());
}
ACTUALSCANPARAM actualOf(std::string_view text) {
  Body body(text);
  return CParseCmdRes_v1().ParseActualParameterResponse(body.data(), body.size());
}
PALETTE paletteOf(std::string_view bytes) {
  Body body(bytes);
  return CParseCmdRes_v1().ParseColorPaletteResponse(body.data(), body.size());
}

bool anyKeyValid(const tagQS_PUSHSCAN_PARAMETERS& k) {
  return k.event.valid || k.duplex.valid || k.resolution.xValid || k.resolution.yValid || k.colorType.valid ||
         k.paperType.valid || k.brightness.valid || k.contrast.valid || k.autoCrop.valid || k.fileType.valid ||
         k.fileType.compressValid || k.fileType.tiffCompressValid || k.fileType.qualityValid ||
         k.blankPageRemove.valid || k.removeBleedThrough.valid || k.orient.valid || k.deskew.valid ||
         k.removeBackground.valid || k.removeBackground.hasLevel;
}

constexpr std::string_view kAllKeys =
    "F=FILE\nD=DUP\nE=SHO\nR=300\nM=CGRAY\nP=A4\nB=40\nN=60\nA=1\nT=JPEG\nJ=80\nW=1\nK=0\nO=0\nX=1\nS=1\nG=1\nL=128\n";

}  // namespace

class ParseCmdResV1 : public ::testing::Test {
 protected:
  // Every operation logs its entry and its exit, and nothing else.
  void expectTraced(const char* operation) {
    EXPECT_EQ(log.lines, (std::vector<LogLine>{{1, std::string(">>>>> ") + operation + " >>>>>"},
                                               {1, std::string("<<<<< ") + operation + " <<<<<"}}))
        << log.all();
    log.lines.clear();
  }

  LogCapture log;
  CParseCmdRes_v1 parser;
};

TEST_F(ParseCmdResV1, EveryOperationLogsEntryAndExit) {
  Body body("1");
  parser.ParseDeviceInfoResponse(body.data(), body.size());
  expectTraced("ParseDeviceInfoResponse");
  parser.ParseDeviceKeyInfoResponse(body.data(), body.size());
  expectTraced("ParseDeviceKeyInfoResponse");
  parser.ParseColorPaletteResponse(body.data(), body.size());
  expectTraced("ParseColorPaletteResponse");
  parser.ParseActualParameterResponse(body.data(), body.size());
  expectTraced("ParseActualParameterResponse");
  parser.ParsePDFaColorProfileResponse(body.data(), body.size());
  expectTraced("ParsePDFaColorProfileResponse");
  parser.ParsePaperSizeDetectFrom2Vertex(body.data(), body.size(), {}, {}, UNIT_MILLIMETER);
  expectTraced("ParsePaperSizeDetectFrom2Vertex");
}

TEST_F(ParseCmdResV1, NoBodyGivesZeroRecordsAndIsLoggedAllTheSame) {
  Body body("F=FILE,2,3");
  for (const auto& [data, size] : {std::pair<unsigned char*, long>{nullptr, 9}, {body.data(), 0}, {body.data(), -1}}) {
    EXPECT_FALSE(anyKeyValid(parser.ParseDeviceKeyInfoResponse(data, size)));
    expectTraced("ParseDeviceKeyInfoResponse");
    EXPECT_EQ(parser.ParseActualParameterResponse(data, size).paperSource, 0);
    expectTraced("ParseActualParameterResponse");
    EXPECT_EQ(parser.ParseColorPaletteResponse(data, size).valid, 0u);
    expectTraced("ParseColorPaletteResponse");
    // Without a body the paper is not named either, though any corners have a name.
    EXPECT_EQ(parser.ParsePaperSizeDetectFrom2Vertex(data, size, {}, {}, UNIT_MILLIMETER).paperType, PAPERTYPE_AUTO);
    expectTraced("ParsePaperSizeDetectFrom2Vertex");
  }
}

TEST_F(ParseCmdResV1, ThereIsNoColourProfile) {
  Body body("profile");
  const ICCPROFIE profile = parser.ParsePDFaColorProfileResponse(body.data(), body.size());
  EXPECT_EQ(profile.colorProfile, nullptr);
  EXPECT_EQ(profile.grayProfile, nullptr);
  EXPECT_EQ(profile.colorProfileSize, 0);
  EXPECT_EQ(profile.grayProfileSize, 0);
}

// --- K

TEST(ParseCmdResV1Keys, ThePanelsSettingsAreFoundByTheirKeys) {
  const auto k = keysOf(kAllKeys);
  EXPECT_TRUE(k.event.valid && k.event.value == 3);
  EXPECT_TRUE(k.duplex.valid && k.duplex.value == DUPLEXTYPE_SHORT_EDGE);
  EXPECT_TRUE(k.resolution.xValid && k.resolution.yValid && k.resolution.x == 300 && k.resolution.y == 300);
  EXPECT_TRUE(k.colorType.valid && k.colorType.value == COLORTYPE_COLOR24BIT);
  EXPECT_TRUE(k.paperType.valid && k.paperType.value == PAPERTYPE_A4);
  EXPECT_TRUE(k.brightness.valid && k.brightness.value == 40);
  EXPECT_TRUE(k.contrast.valid && k.contrast.value == 60);
  EXPECT_TRUE(k.autoCrop.valid && k.autoCrop.on);
  EXPECT_TRUE(k.fileType.valid && k.fileType.format == 1 && k.fileType.compressValid && k.fileType.compress == 80);
  EXPECT_TRUE(k.blankPageRemove.valid && k.blankPageRemove.on);
  EXPECT_TRUE(k.removeBleedThrough.valid && !k.removeBleedThrough.on);
  EXPECT_TRUE(k.orient.valid && !k.orient.isLandscape && k.orient.angle == 9000);
  EXPECT_TRUE(k.deskew.valid && k.deskew.on);
  EXPECT_TRUE(k.removeBackground.valid && k.removeBackground.on && k.removeBackground.level == 128);
}

TEST(ParseCmdResV1Keys, WhatIsNotThereStaysInvalid) {
  auto k = keysOf("F=IMAGE\nR=300\n");
  EXPECT_TRUE(k.event.valid);
  EXPECT_EQ(k.event.value, 0);
  EXPECT_TRUE(k.resolution.xValid && k.resolution.yValid);
  EXPECT_EQ(k.resolution.x, 300u);
  EXPECT_EQ(k.resolution.y, 300u);
  k.event = {};
  k.resolution = {};
  EXPECT_FALSE(anyKeyValid(k));
  EXPECT_FALSE(anyKeyValid(keysOf("\n")));
}

TEST(ParseCmdResV1Keys, AZeroByteEndsTheText) {
  const auto k = keysOf(std::string_view("F=FILE\nB=1\0B=2\nR=300\n", 22));
  EXPECT_TRUE(k.event.valid);
  EXPECT_EQ(k.brightness.value, 1);
  EXPECT_FALSE(k.resolution.xValid);
  EXPECT_FALSE(anyKeyValid(keysOf(std::string_view("\0F=FILE\n", 8))));
}

TEST(ParseCmdResV1Keys, ACutTextIsTheSameAsOneThatEndsThere) {
  const std::string whole(kAllKeys);
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const auto cut = keysOf(std::string_view(whole).substr(0, size));
    std::string ended = whole;
    for (std::size_t i = size; i < ended.size(); ++i) ended[i] = '\0';
    const auto zeroed = keysOf(ended);
    EXPECT_EQ(cut.event.valid, size >= 6) << size;
    EXPECT_EQ(cut.paperType.valid, size >= whole.find("P=A4") + 4) << size;
    EXPECT_EQ(cut.removeBackground.hasLevel, size > whole.find("L=128") + 2) << size;
    EXPECT_EQ(cut.removeBackground.level, zeroed.removeBackground.level) << size;
    EXPECT_EQ(cut.orient.angle, zeroed.orient.angle) << size;
    EXPECT_EQ(cut.fileType.compress, zeroed.fileType.compress) << size;
    EXPECT_EQ(cut.resolution.x, zeroed.resolution.x) << size;
  }
}

TEST(ParseCmdResV1Keys, ATextThatIsMoreThanAStringHoldsGivesNothing) {
  // A device can declare 65535 bytes; a string holds 65519.
  const std::string text = std::string(kAllKeys) + std::string(65000, '.');
  for (const std::size_t size : {65000u, 65518u}) {
    EXPECT_TRUE(keysOf(std::string_view(text).substr(0, size > text.size() ? text.size() : size)).event.valid) << size;
  }
  const std::string longer = text + std::string(70000, '.');
  for (const std::size_t size : {65520u, 65535u, 70000u, 131072u}) {
    EXPECT_FALSE(anyKeyValid(keysOf(std::string_view(longer).substr(0, size)))) << size;
  }
}

// --- I

TEST(ParseCmdResV1Actual, SevenTokensTellWhatTheDeviceWillDo) {
  const ACTUALSCANPARAM actual = actualOf("300,600,1,2100,2480,2970,3507");
  EXPECT_EQ(actual.resolution.x, 300u);
  EXPECT_EQ(actual.resolution.y, 600u);
  EXPECT_EQ(actual.paperSource, PAPERSOURCE_ADF);
  EXPECT_EQ(actual.maxSizeMm.x, 21000u);
  EXPECT_EQ(actual.maxSizeMm.y, 29700u);
  EXPECT_EQ(actual.maxSizePixel.x, 2480u);
  EXPECT_EQ(actual.maxSizePixel.y, 3507u);
  for (const std::uint32_t word : actual.reserved) EXPECT_EQ(word, 0u);
}

TEST(ParseCmdResV1Actual, TheSourceIsComparedExactly) {
  const struct {
    const char* token;
    int source;
  } rows[] = {{"1", 2}, {"3", 3}, {"0", 1}, {"2", 1}, {"13", 1}, {"31", 1}, {"1 ", 1}, {"01", 1}, {"x", 1}, {"", 0}};
  for (const auto& row : rows) {
    EXPECT_EQ(actualOf(std::string("300,300,") + row.token + ",1,2,3,4").paperSource, row.source) << row.token;
  }
  EXPECT_EQ(actualOf("300,300,1").paperSource, PAPERSOURCE_ADF);
  EXPECT_EQ(actualOf("300,300,1\n").paperSource, PAPERSOURCE_FLATBED);
  EXPECT_EQ(actualOf("300,300,").paperSource, 0);
}

TEST(ParseCmdResV1Actual, MissingAndEmptyTokensAreZero) {
  const ACTUALSCANPARAM some = actualOf("300,,3,,5");
  EXPECT_EQ(some.resolution.x, 300u);
  EXPECT_EQ(some.resolution.y, 0u);
  EXPECT_EQ(some.paperSource, PAPERSOURCE_CARDSLOT);
  EXPECT_EQ(some.maxSizeMm.x, 0u);
  EXPECT_EQ(some.maxSizePixel.x, 5u);
  EXPECT_EQ(some.maxSizeMm.y, 0u);
  EXPECT_EQ(some.maxSizePixel.y, 0u);
}

TEST(ParseCmdResV1Actual, NumbersAreLeadingDigitsAndNeverOverflow) {
  const ACTUALSCANPARAM actual = actualOf("300dpi,x, 1,-5,-5,99999999999999999999,99999999999999999999\n");
  EXPECT_EQ(actual.resolution.x, 300u);
  EXPECT_EQ(actual.resolution.y, 0u);
  EXPECT_EQ(actual.paperSource, PAPERSOURCE_FLATBED);
  EXPECT_EQ(actual.maxSizeMm.x, static_cast<std::uint32_t>(-50));
  EXPECT_EQ(actual.maxSizePixel.x, static_cast<std::uint32_t>(-5));
  EXPECT_EQ(actual.maxSizeMm.y, 0x7FFFFFFFu * 10);
  EXPECT_EQ(actual.maxSizePixel.y, 0x7FFFFFFFu);
}

TEST(ParseCmdResV1Actual, ACutLineTellsWhatItStillTells) {
  const std::string whole = "300,600,1,2100,2480,2970,3507";
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const ACTUALSCANPARAM actual = actualOf(std::string_view(whole).substr(0, size));
    EXPECT_EQ(actual.resolution.x, size == 0 ? 0u : size == 1 ? 3u : size == 2 ? 30u : 300u) << size;
    EXPECT_EQ(actual.paperSource, size < 9 ? 0 : 2) << size;
    EXPECT_EQ(actual.maxSizeMm.x, size < 11    ? 0u
                                  : size == 11 ? 20u
                                  : size == 12 ? 210u
                                  : size == 13 ? 2100u
                                               : 21000u)
        << size;
    if (size < 26) {
      EXPECT_EQ(actual.maxSizePixel.y, 0u) << size;
    }
  }
}

TEST(ParseCmdResV1Actual, AZeroByteEndsTheLine) {
  const ACTUALSCANPARAM actual =
      actualOf(std::string_view("300,6\0"
                                "00,1",
                                10));
  EXPECT_EQ(actual.resolution.y, 6u);
  EXPECT_EQ(actual.paperSource, 0);
}

// --- P

// Byte i is i, so that an entry tells where it came from.
std::string countingBytes(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i);
  return bytes;
}

TEST(ParseCmdResV1Palette, TheCountIsAQuarterOfTheBody) {
  const struct {
    std::size_t bodyBytes;
    std::uint32_t count;
  } rows[] = {{1, 0}, {3, 0}, {4, 1}, {7, 1}, {11, 2}, {12, 3}, {768, 192}, {1023, 255}, {1024, 256}, {1027, 256}};
  for (const auto& row : rows) {
    const PALETTE palette = paletteOf(countingBytes(row.bodyBytes));
    EXPECT_EQ(palette.valid, 1u) << row.bodyBytes;
    EXPECT_EQ(palette.count, row.count) << row.bodyBytes;
    for (std::size_t i = 0; i < 256; ++i) {
      const bool filled = i < row.count;
      EXPECT_EQ(palette.entries[i].rgbRed, filled ? static_cast<std::uint8_t>(3 * i) : 0) << row.bodyBytes;
      EXPECT_EQ(palette.entries[i].rgbGreen, filled ? static_cast<std::uint8_t>(3 * i + 1) : 0) << row.bodyBytes;
      EXPECT_EQ(palette.entries[i].rgbBlue, filled ? static_cast<std::uint8_t>(3 * i + 2) : 0) << row.bodyBytes;
      EXPECT_EQ(palette.entries[i].rgbReserved, 0) << row.bodyBytes;
    }
  }
}

TEST(ParseCmdResV1Palette, MoreThan256EntriesAreClippedThoughTheyCount) {
  for (const std::size_t size : {1028u, 1032u, 4000u, 65535u}) {
    const PALETTE palette = paletteOf(countingBytes(size));
    EXPECT_EQ(palette.count, size / 4) << size;
    EXPECT_EQ(palette.entries[255].rgbRed, static_cast<std::uint8_t>(765)) << size;
  }
}

// --- E

TEST(ParseCmdResV1Vertex, TwoCornersAreAPaper) {
  for (const char* text : {"R=300,600\nV1=10,20\nV2=1210,20\n", "V2=1210,20\nR=300,600\nV1=10,20"}) {
    Body body(text);
    const DETECTEDPAPER paper =
        CParseCmdRes_v1().ParsePaperSizeDetectFrom2Vertex(body.data(), body.size(), {}, {}, UNIT_MILLIMETER);
    EXPECT_EQ(paper.resolution.x, 300u);
    EXPECT_EQ(paper.resolution.y, 600u);
    EXPECT_EQ(paper.vertex1.x, 10);
    EXPECT_EQ(paper.vertex1.y, 20);
    EXPECT_EQ(paper.vertex2.x, 1210);
    EXPECT_EQ(paper.vertex2.y, 20);
    EXPECT_EQ(paper.paperType, PAPERTYPE_POSTCARD);
    EXPECT_EQ(CParseCmdRes_v1().ParsePaperSizeDetectFrom2Vertex(body.data(), body.size(), {}, {}, UNIT_INCH).paperType,
              PAPERTYPE_PHOTO);
  }
}

TEST(ParseCmdResV1Vertex, NegativeCornersStayNegative) {
  Body body("R=300,300\nV1=-10,-20\nV2=-1110,-20\n");
  const DETECTEDPAPER paper =
      CParseCmdRes_v1().ParsePaperSizeDetectFrom2Vertex(body.data(), body.size(), {}, {}, UNIT_MILLIMETER);
  EXPECT_EQ(paper.vertex1.x, -10);
  EXPECT_EQ(paper.vertex2.x, -1110);
  EXPECT_EQ(paper.paperType, PAPERTYPE_PHOTOL);
}

TEST(ParseCmdResV1Vertex, AMissingCornerIsZeroAndThePaperIsNamedAllTheSame) {
  Body body("R=300,300\nV2=1200,0\n");
  const DETECTEDPAPER paper =
      CParseCmdRes_v1().ParsePaperSizeDetectFrom2Vertex(body.data(), body.size(), {}, {}, UNIT_MILLIMETER);
  EXPECT_EQ(paper.vertex1.x, 0);
  EXPECT_EQ(paper.vertex1.y, 0);
  EXPECT_EQ(paper.paperType, PAPERTYPE_POSTCARD);
}

TEST(ParseCmdResV1Vertex, ALineWithOneNumberStoresNothing) {
  for (const char* line : {"V1=7\n", "V1=7,\n", "V1=,7\n", "V1=\n", "V1=,\n"}) {
    Body body(std::string("R=300,300\n") + line + "V2=1200,0\n");
    const DETECTEDPAPER paper =
        CParseCmdRes_v1().ParsePaperSizeDetectFrom2Vertex(body.data(), body.size(), {}, {}, UNIT_MILLIMETER);
    EXPECT_EQ(paper.vertex1.x, 0) << line;
    EXPECT_EQ(paper.vertex1.y, 0) << line;
    EXPECT_EQ(paper.vertex2.x, 1200) << line;
  }
}

TEST(ParseCmdResV1Vertex, ABodyWithoutAnythingIsThePageOfTheDevice) {
  Body body("?");
  QS_SCANNER_CAPABILITY capability{};
  ACTUALSCANPARAM actual{};
  actual.paperSource = PAPERSOURCE_ADF;
  const auto name = [&](UNITTYPE unit) {
    return CParseCmdRes_v1()
        .ParsePaperSizeDetectFrom2Vertex(body.data(), body.size(), capability, actual, unit)
        .paperType;
  };
  EXPECT_EQ(name(UNIT_MILLIMETER), PAPERTYPE_A4);
  EXPECT_EQ(name(UNIT_INCH), PAPERTYPE_LETTER);
  capability.baseFunc.deviceScanSizeMax.simplex.x = 29700;
  EXPECT_EQ(name(UNIT_MILLIMETER), PAPERTYPE_A3);
  EXPECT_EQ(name(UNIT_INCH), PAPERTYPE_LEDGER);
}

TEST(ParseCmdResV1Vertex, ACutBodyIsRead) {
  const std::string whole = "R=300,600\nV1=10,20\nV2=1210,20\n";
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    Body body(whole.substr(0, size));
    const DETECTEDPAPER paper =
        CParseCmdRes_v1().ParsePaperSizeDetectFrom2Vertex(body.data(), body.size(), {}, {}, UNIT_MILLIMETER);
    EXPECT_EQ(paper.resolution.x, size < 7 ? 0u : 300u) << size;
    EXPECT_EQ(paper.vertex1.x, size < 17 ? 0 : 10) << size;
    EXPECT_EQ(paper.vertex2.x, size < 28 ? 0 : 1210) << size;
  }
}
