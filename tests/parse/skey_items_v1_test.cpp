#include <gtest/gtest.h>

#include <string>

#include "parse/ParseCmdRes_v1.h"

using namespace orvalle_scan_api;

namespace {

const CParseCmdRes_v1 kParser;

void expectValue(PUSHSCAN_VALUE got, bool valid, int value, const std::string& text) {
  EXPECT_EQ(got.valid, valid) << text;
  EXPECT_EQ(got.value, value) << text;
}
void expectState(PUSHSCAN_STATE got, bool valid, bool on, const std::string& text) {
  EXPECT_EQ(got.valid, valid) << text;
  EXPECT_EQ(got.on, on) << text;
}

struct KeywordCase {
  const char* text;
  bool valid;
  int value;
};

TEST(SkeyItemsV1, TheEventIsAKeyword) {
  const KeywordCase cases[] = {
      {"F=IMAGE\n", true, 0},  {"F=OCR\n", true, 1},         {"F=EMAIL\n", true, 2}, {"F=FILE\n", true, 3},
      {"F=FILE", true, 3},     {"F=xFILEx\n", true, 3},      {"F=file\n", false, 0}, {"F=\n", false, 0},
      {"F=COPY\n", false, 0},  {"R=300\nIMAGE\n", false, 0}, {"", false, 0},         {"F=FILE,IMAGE\n", true, 0},
      {"F=\nIMAGE", false, 0},
  };
  for (const auto& one : cases) expectValue(kParser.GetSkeyEventInfo(one.text), one.valid, one.value, one.text);
}

TEST(SkeyItemsV1, TheEdgeIsLookedAtOnlyForTwoSides) {
  const KeywordCase cases[] = {
      {"D=DUP\n", true, 1},        {"D=DUP\nE=LON\n", true, 1}, {"D=DUP\nE=SHO\n", true, 2},
      {"E=SHO\nD=DUP", true, 2},   {"D=DUP\nE=\n", true, 1},    {"D=SIN\n", true, 0},
      {"D=SIN\nE=SHO\n", true, 0}, {"E=SHO\n", false, 0},       {"D=\nE=SHO\n", false, 0},
      {"D=OFF\n", false, 0},       {"D=DUPSIN\n", true, 1},     {"D=DUP\nE=SHORT\n", true, 2},
  };
  for (const auto& one : cases) expectValue(kParser.GetSkeyDuplexInfo(one.text), one.valid, one.value, one.text);
}

TEST(SkeyItemsV1, OneResolutionServesBothAxes) {
  const struct {
    const char* text;
    bool valid, automatic;
    std::uint32_t dpi;
  } cases[] = {
      {"R=300\n", true, false, 300},
      {"R=400,600\n", true, false, 400},
      {"R=AUTO\n", true, true, 0},
      {"R=300AUTO\n", true, true, 0},
      {"R=x\n", true, false, 0},
      {"R= 75\n", true, false, 75},
      {"R=-5\n", true, false, 0xFFFFFFFB},
      {"R=99999999999999999999\n", true, false, 0x7FFFFFFF},
      {"R=-99999999999999999999\n", true, false, 0x80000000},
      {"R=4294967296\n", true, false, 0x7FFFFFFF},
      {"R=\n", false, false, 0},
      {"D=DUP\n", false, false, 0},
  };
  for (const auto& one : cases) {
    const PUSHSCAN_RESOLUTION got = kParser.GetSkeyResolutionInfo(one.text);
    EXPECT_EQ(got.xValid, one.valid) << one.text;
    EXPECT_EQ(got.yValid, one.valid) << one.text;
    EXPECT_EQ(got.xAuto, one.automatic) << one.text;
    EXPECT_EQ(got.yAuto, one.automatic) << one.text;
    EXPECT_EQ(got.x, one.dpi) << one.text;
    EXPECT_EQ(got.y, one.dpi) << one.text;
  }
}

TEST(SkeyItemsV1, TheColourTypeIsAKeyword) {
  const KeywordCase cases[] = {
      {"M=AUTO\n", true, 0}, {"M=TEXT\n", true, 1},  {"M=ERRDIF\n", true, 2}, {"M=GRAY256\n", true, 3},
      {"M=C256\n", true, 4}, {"M=CGRAY\n", true, 5}, {"M=COLOR\n", false, 0}, {"", false, 0},
  };
  for (const auto& one : cases) expectValue(kParser.GetSkeyColorTypeInfo(one.text), one.valid, one.value, one.text);
}

TEST(SkeyItemsV1, ThePaperIsAKeyword) {
  const KeywordCase cases[] = {
      {"P=AUTO", true, 0},   {"P=A4", true, 1},         {"P=LETTER", true, 2},    {"P=LEGAL", true, 3},
      {"P=A3", true, 4},     {"P=LEDGER", true, 5},     {"P=JISB4", true, 6},     {"P=JISB5", true, 7},
      {"P=A5", true, 8},     {"P=JISB6", true, 9},      {"P=A6", true, 10},       {"P=EXECUTIVE", true, 11},
      {"P=PHOTO", true, 12}, {"P=INDEXCARD", true, 13}, {"P=POSTCARD", true, 16}, {"P=BCARD", true, 18},
      {"P=LONG", true, 24},  {"P=FOLIO", true, 20},     {"P=B5", false, 0},       {"", false, 0},
  };
  for (const auto& one : cases) expectValue(kParser.GetSkeyPaperTypeInfo(one.text), one.valid, one.value, one.text);
}

TEST(SkeyItemsV1, AKeywordInsideAnotherOneHidesIt) {
  const KeywordCase papers[] = {
      {"P=PHOTOL", true, 12}, {"P=PHOTO2L", true, 12}, {"P=POSTCARD2", true, 16},
      {"P=BCARDV", true, 18}, {"P=LETTERA4", true, 1},
  };
  for (const auto& one : papers) expectValue(kParser.GetSkeyPaperTypeInfo(one.text), one.valid, one.value, one.text);
  const PUSHSCAN_FILETYPE tiff = kParser.GetSkeyFileTypeInfo("T=MULTI-TIFF\nC=1\n");
  EXPECT_EQ(tiff.format, 2);
  EXPECT_EQ(tiff.quality, 1);
  EXPECT_TRUE(tiff.qualityValid);
  expectState(kParser.GetSkeyAutoCropInfo("A=10\n"), true, true, "A=10");
}

TEST(SkeyItemsV1, NumbersAreRaisedThenLoweredIntoTheirRange) {
  const struct {
    const char* number;
    bool valid;
    int value;
  } cases[] = {
      {"0", true, 0},
      {"50", true, 50},
      {"100", true, 100},
      {"101", true, 100},
      {"150", true, 100},
      {"-5", true, 0},
      {"abc", true, 0},
      {"+7", true, 7},
      {"12abc", true, 12},
      {"017", true, 17},
      {"0x1F", true, 0},
      {"", false, 0},
      {" 8", true, 8},
      {"-", true, 0},
      {"99999999999999999999", true, 100},
      {"-99999999999999999999", true, 0},
  };
  for (const auto& one : cases) {
    const std::string brightness = std::string("B=") + one.number + "\n";
    expectValue(kParser.GetSkeyBrightnessInfo(brightness.c_str()), one.valid, one.value, brightness);
    const std::string contrast = std::string("N=") + one.number;
    expectValue(kParser.GetSkeyContrastInfo(contrast.c_str()), one.valid, one.value, contrast);
  }
}

TEST(SkeyItemsV1, TheMaximumStandsBeforeTheMinimumAndIsAppliedLast) {
  expectValue(kParser.GetSkeySettingValueTypeInfo("V=5\n", "V=", 9, 7), true, 7, "raised");
  expectValue(kParser.GetSkeySettingValueTypeInfo("V=11\n", "V=", 9, 7), true, 9, "lowered");
  expectValue(kParser.GetSkeySettingValueTypeInfo("V=11\n", "V=", 3, 7), true, 3, "raised, then lowered");
  expectValue(kParser.GetSkeySettingValueTypeInfo("V=1\n", "V=", 3, 7), true, 3, "raised, then lowered");
}

TEST(SkeyItemsV1, SwitchesAreOnOffOrInvalid) {
  const struct {
    const char* value;
    bool valid, on;
  } cases[] = {{"1", true, true},   {"0", true, false},  {"10", true, true}, {"01", true, true},
               {"20", true, false}, {"2", false, false}, {"", false, false}, {"on", false, false}};
  const struct {
    const char* key;
    PUSHSCAN_STATE (CParseCmdRes_v1::*item)(qvtcl::CTString) const;
  } items[] = {
      {"A=", &CParseCmdRes_v1::GetSkeyAutoCropInfo},
      {"W=", &CParseCmdRes_v1::GetSkeyBlankPageRemoveInfo},
      {"K=", &CParseCmdRes_v1::GetSkeyRemoveBleedThroughInfo},
      {"S=", &CParseCmdRes_v1::GetSkeyDskewInfo},
  };
  for (const auto& item : items) {
    for (const auto& one : cases) {
      const std::string text = std::string("F=FILE\n") + item.key + one.value + "\n";
      expectState((kParser.*item.item)(text.c_str()), one.valid, one.on, text);
    }
    expectState((kParser.*item.item)("F=FILE\n"), false, false, item.key);
  }
  expectState(kParser.GetSkeySettingSwitchTypeInfo("V=yes\n", "V=", "yes", "no"), true, true, "own words");
  expectState(kParser.GetSkeySettingSwitchTypeInfo("V=no\n", "V=", "yes", "no"), true, false, "own words");
}

struct FileCase {
  const char* text;
  PUSHSCAN_FILETYPE wanted;
};

TEST(SkeyItemsV1, FileTypesHaveTheirExtras) {
  // valid, format, compressValid, compress, tiffCompressValid, tiffCompressOn, qualityValid, quality, qualityArg
  const FileCase cases[] = {
      {"T=BMP\nJ=50\nC=1\n", {true, 0, false, 0, false, false, false, 1, 0}},
      {"T=JPEG\n", {true, 1, false, 0, false, false, false, 1, 0}},
      {"T=JPEG\nJ=0\nC=1\n", {true, 1, true, 1, false, false, false, 1, 0}},
      {"T=JPEG\nJ=75\n", {true, 1, true, 75, false, false, false, 1, 0}},
      {"T=JPEG\nJ=101\n", {true, 1, true, 100, false, false, false, 1, 0}},
      {"T=JPEG\nJ=x\n", {true, 1, true, 1, false, false, false, 1, 0}},
      {"T=TIFF\nJ=50\n", {true, 2, false, 0, false, false, true, 1, 0}},
      {"T=TIFF\nC=1\n", {true, 2, false, 0, true, true, true, 1, 0}},
      {"T=TIFF\nC=0\n", {true, 2, false, 0, true, false, true, 1, 0}},
      {"T=TIFF\nC=5\n", {true, 2, false, 0, false, false, true, 1, 0}},
      {"T=PNG\nJ=50\n", {true, 3, false, 0, false, false, false, 1, 0}},
      {"T=PDF(Image)\n", {true, 4, false, 0, false, false, false, 0, 0}},
      {"T=PDF(Image)\nJ=0\n", {true, 4, true, 0, false, false, false, 0, 0}},
      {"T=PDF(Image)\nJ=200\n", {true, 4, true, 100, false, false, false, 0, 0}},
      {"T=PDF\n", {}},
      {"T=XPS\nJ=50\n", {true, 8, false, 0, false, false, false, 0, 0}},
      {"T=TXT\n", {true, 9, false, 0, false, false, false, 0, 0}},
      {"T=HTML\n", {true, 10, false, 0, false, false, false, 0, 0}},
      {"T=RTF\n", {true, 11, false, 0, false, false, false, 0, 0}},
      {"T=DOC\nJ=50\nC=1\n", {}},
      {"J=50\nC=1\n", {}},
  };
  for (const auto& one : cases) {
    const PUSHSCAN_FILETYPE got = kParser.GetSkeyFileTypeInfo(one.text);
    EXPECT_EQ(got.valid, one.wanted.valid) << one.text;
    EXPECT_EQ(got.format, one.wanted.format) << one.text;
    EXPECT_EQ(got.compressValid, one.wanted.compressValid) << one.text;
    EXPECT_EQ(got.compress, one.wanted.compress) << one.text;
    EXPECT_EQ(got.tiffCompressValid, one.wanted.tiffCompressValid) << one.text;
    EXPECT_EQ(got.tiffCompressOn, one.wanted.tiffCompressOn) << one.text;
    EXPECT_EQ(got.qualityValid, one.wanted.qualityValid) << one.text;
    EXPECT_EQ(got.quality, one.wanted.quality) << one.text;
    EXPECT_EQ(got.qualityArg, one.wanted.qualityArg) << one.text;
  }
}

TEST(SkeyItemsV1, ATurnedPageIs9000) {
  const struct {
    const char* text;
    bool valid, landscape;
    int angle;
  } cases[] = {
      {"O=1\n", true, true, 0},     {"O=1\nX=1\n", true, true, 0}, {"O=0\nX=1\n", true, false, 9000},
      {"X=1\n", true, false, 9000}, {"X=0\n", true, false, 0},     {"O=0\nX=0\n", true, false, 0},
      {"X=10\n", true, false, 0},   {"O=0\n", false, false, 0},    {"O=2\nX=1\n", true, false, 9000},
      {"X=2\n", false, false, 0},   {"", false, false, 0},         {"O=10\nX=1\n", true, true, 0},
  };
  for (const auto& one : cases) {
    const PUSHSCAN_ORIENT got = kParser.GetSkeyOrientInfo(one.text);
    EXPECT_EQ(got.valid, one.valid) << one.text;
    EXPECT_EQ(got.isLandscape, one.landscape) << one.text;
    EXPECT_EQ(got.angle, one.angle) << one.text;
  }
}

TEST(SkeyItemsV1, BackgroundRemovalIsValidOnlyWhenItIsOn) {
  const struct {
    const char* text;
    bool on, hasLevel;
    int level;
  } cases[] = {
      {"G=1\n", true, false, 0},         {"G=1\nL=128\n", true, true, 128}, {"G=1\nL=256\n", true, true, 255},
      {"G=1\nL=-1\n", true, true, 0},    {"L=9\nG=1", true, true, 9},       {"G=1\nL=\n", true, false, 0},
      {"G=0\nL=128\n", false, false, 0}, {"G=\nL=128\n", false, false, 0},  {"L=128\n", false, false, 0},
      {"G=10\n", true, false, 0},
  };
  for (const auto& one : cases) {
    const PUSHSCAN_REMOVEBACKGROUND got = kParser.GetSkeyRemoveBacgroundInfo(one.text);
    EXPECT_EQ(got.valid, one.on) << one.text;
    EXPECT_EQ(got.on, one.on) << one.text;
    EXPECT_EQ(got.hasLevel, one.hasLevel) << one.text;
    EXPECT_EQ(got.level, one.level) << one.text;
  }
}

}  // namespace
