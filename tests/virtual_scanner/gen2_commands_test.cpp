#include "protocol/gen2_commands.h"

#include <gtest/gtest.h>

#include "host.h"

namespace vscan::gen2 {
namespace {

using test::bytesOf;
using test::frameOf;
using test::plainSettings;

Frame parsed(const std::string& bytes) { return std::get<Frame>(parseFrame(bytesOf(bytes))); }

Frame settingsWith(const std::string& key, const std::string& value) {
  return parsed(test::settingsFrame({{key, value}}));
}

// The optional keys and what they stand before.
std::vector<std::pair<std::string, std::string>> allKeys() {
  auto lines = plainSettings();
  const auto before = [&](const std::string& key) {
    return std::find_if(lines.begin(), lines.end(), [&](auto& line) { return line.first == key; });
  };
  lines.insert(before("COMP"), {{"ATCL", "3,-4"}, {"THRS", "100"}});
  lines.insert(before("DT4V"), {"OPDF", "STOP"});
  return lines;
}

TEST(Gen2Commands, ThePlainColourScanIsUnderstood) {
  ScanSettings settings;
  ASSERT_FALSE(readScanSettings(parsed(test::settingsFrame()), settings));
  EXPECT_EQ(settings.hostSystem, "MAC");
  EXPECT_EQ(settings.source, PaperSource::Automatic);
  EXPECT_EQ(settings.resolution, (Resolution{false, 300, 300}));
  EXPECT_EQ(settings.color, ColorMode::Color);
  EXPECT_EQ(settings.areaKind, AreaKind::Normal);
  EXPECT_EQ(settings.sides, Sides::Front);
  EXPECT_EQ(settings.brightness, 50);
  EXPECT_EQ(settings.contrast, 50);
  EXPECT_FALSE(settings.colorLevel);
  EXPECT_FALSE(settings.threshold);
  EXPECT_EQ(settings.compression, Compression::Jpeg);
  EXPECT_EQ(settings.jpegRate, 50);
  EXPECT_EQ(settings.jpegSampling, JpegSampling::Yuv420);
  EXPECT_EQ(settings.maxSheets, 0);
  EXPECT_FALSE(settings.longPaper);
  EXPECT_FALSE(settings.blankRemoval.isOn);
  EXPECT_EQ(settings.userName, "");
}

TEST(Gen2Commands, TheThreeOptionalKeysAreUnderstoodInTheirPlaces) {
  ScanSettings settings;
  ASSERT_FALSE(readScanSettings(parsed(frameOf("SSP", allKeys())), settings));
  EXPECT_EQ(settings.colorLevel, (std::array<std::int64_t, 2>{3, -4}));
  EXPECT_EQ(settings.threshold, 100);
}

TEST(Gen2Commands, EachMissingKeyIsRefusedButTheOptionalOnes) {
  const auto lines = allKeys();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    auto fewer = lines;
    fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
    ScanSettings settings;
    const auto& key = lines[i].first;
    const bool isOptional = key == "ATCL" || key == "THRS" || key == "OPDF";
    EXPECT_EQ(!readScanSettings(parsed(frameOf("SSP", fewer)), settings), isOptional) << key;
  }
}

TEST(Gen2Commands, EachPairOfKeysInTheWrongOrderIsRefused) {
  const auto lines = allKeys();
  for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
    auto swapped = lines;
    std::swap(swapped[i], swapped[i + 1]);
    ScanSettings settings;
    EXPECT_TRUE(readScanSettings(parsed(frameOf("SSP", swapped)), settings)) << lines[i].first;
  }
}

TEST(Gen2Commands, EachKeySentTwiceIsRefused) {
  const auto lines = allKeys();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    auto doubled = lines;
    doubled.insert(doubled.begin() + static_cast<std::ptrdiff_t>(i), lines[i]);
    ScanSettings settings;
    EXPECT_TRUE(readScanSettings(parsed(frameOf("SSP", doubled)), settings)) << lines[i].first;
  }
}

TEST(Gen2Commands, ARefusalNamesTheLine) {
  ScanSettings settings;
  const auto refusal = readScanSettings(settingsWith("CLR", "PINK"), settings);
  ASSERT_TRUE(refusal);
  EXPECT_EQ(refusal->bytes, bytesOf("CLR=PINK"));
  EXPECT_EQ(refusal->sentence, "\"PINK\" is no value of key CLR");
}

TEST(Gen2Commands, AnUnknownKeyIsToldFromOneInTheWrongPlace) {
  auto unknown = plainSettings();
  unknown.insert(unknown.begin() + 1, {"FOO", "1"});
  auto misplaced = plainSettings();
  std::swap(misplaced[0], misplaced[1]);
  ScanSettings settings;
  EXPECT_EQ(readScanSettings(parsed(frameOf("SSP", unknown)), settings)->sentence, "SSP has no key FOO");
  EXPECT_EQ(readScanSettings(parsed(frameOf("SSP", misplaced)), settings)->sentence,
            "key PSRC stands in the wrong place; expected OS");
}

struct ValueRow {
  const char* key;
  std::vector<const char*> good;
  std::vector<const char*> bad;
};

TEST(Gen2Commands, EachValueOfTheScanSettingsIsUnderstood) {
  const ValueRow rows[] = {
      {"OS", {"WIN", "MAC", "IOS", "ADR", "LNX", "WPH"}, {"", "mac", "BSD"}},
      {"PSRC", {"AUTO", "ADF", "FB"}, {"", "CARD", "adf"}},
      {"RESO",
       {"AUTO", "300,300", "75,600", "0,0"},
       {"", "300", "300,", "300,300,300", "+300,300", "0300,300", "-1,1"}},
      {"CLR", {"TEXT", "ERRDIF", "GRAY256", "C256", "C24BIT", "AUTO"}, {"", "GRAY"}},
      {"AREA", {"NORMAL", "FULL", "OVER", "AUTO", "ATDSKW"}, {"", "0,0,1,1"}},
      {"MRGN", {"0,0,0,0", "-1,2,-3,4"}, {"", "0,0,0", "0,0,0,0,0", "-0,0,0,0", "1.5,0,0,0"}},
      {"DPLX", {"OFF", "ON", "BACK"}, {"", "AUTO"}},
      {"BRIT", {"0", "50", "100"}, {"", "-1", "101", "050"}},
      {"CONT", {"0", "50", "100"}, {"", "-1", "101", "5O"}},
      {"COMP", {"NONE", "RLENGTH", "JPEG"}, {"", "MH"}},
      {"RATE", {"0", "50", "100"}, {"", "101"}},
      {"JSF", {"444", "422", "411", "420", "400"}, {"", "440", "42"}},
      {"IPRC", {"NORMAL", "COPY", "OCR", "PHOTO", "TXTGR"}, {""}},
      {"PTYPE", {"NORMAL", "THIN", "THOCK", "PCARD"}, {"", "THICK"}},
      {"PAGE", {"0", "1", "4294967295"}, {"", "-1", "4294967296"}},
      {"LONG", {"ON", "OFF"}, {"", "on"}},
      {"CARR", {"OFF", "ON", "AUTO"}, {"", "1"}},
      {"RMGC", {"OFF", "ON", "0", "-3"}, {"", "AUTO", "4294967295"}},
      {"DTDF", {"OFF", "ON", "0"}, {"", "AUTO", "-1"}},
      {"DT4V", {"ON", "OFF"}, {"", "0"}},
      {"DSKW", {"ON", "OFF"}, {"", "0"}},
      {"LSMD", {"ON", "OFF"}, {"", "0"}},
      {"RMBP", {"OFF", "ON", "2"}, {"", "AUTO", "-1"}},
      {"RMMR", {"ON", "OFF"}, {"", "0"}},
      {"GMMA", {"OFF", "22", ""}, {"ON", "0", "-22", "x"}},
      {"TONE", {"ON", "OFF"}, {"", "0"}},
      {"QTFD", {"ON", "OFF"}, {"", "0"}},
      {"USER", {"", "J. Doe", "a=b"}, {}},
  };
  for (const auto& row : rows) {
    ScanSettings settings;
    for (const char* value : row.good) {
      EXPECT_FALSE(readScanSettings(settingsWith(row.key, value), settings)) << row.key << "=" << value;
    }
    for (const char* value : row.bad) {
      EXPECT_TRUE(readScanSettings(settingsWith(row.key, value), settings)) << row.key << "=" << value;
    }
  }
  EXPECT_EQ(std::size(rows), plainSettings().size());
}

TEST(Gen2Commands, TheStartTakesNumbersOrAKeyword) {
  const struct {
    const char* area;
    AreaKind kind;
    std::array<std::int64_t, 4> numbers;
  } rows[] = {
      {"0,0,2550,3300", AreaKind::Normal, {0, 0, 2550, 3300}},
      {"35,0,4294967290,4294967295", AreaKind::Normal, {35, 0, 4294967290, 4294967295}},
      {"FULL", AreaKind::Full, {}},
      {"OVER", AreaKind::Over, {}},
      {"AUTO", AreaKind::Automatic, {}},
      {"ATDSKW", AreaKind::AutomaticDeskewed, {}},
  };
  for (const auto& row : rows) {
    StartSettings start;
    ASSERT_FALSE(readStart(parsed(test::startFrame(row.area)), start)) << row.area;
    EXPECT_EQ(start.areaKind, row.kind) << row.area;
    EXPECT_EQ(start.area, row.numbers) << row.area;
  }
}

TEST(Gen2Commands, AWrongStartIsRefused) {
  const char* const areas[] = {"", "NORMAL", "0,0,1", "0,0,1,1,1", "-1,0,1,1", "0,0,1,4294967296", "auto"};
  for (const char* area : areas) {
    StartSettings start;
    EXPECT_TRUE(readStart(parsed(test::startFrame(area)), start)) << area;
  }
  StartSettings start;
  EXPECT_TRUE(readStart(parsed(frameOf("XSC", {{"RESO", "300,300"}, {"AREA", "FULL"}})), start));
  EXPECT_TRUE(readStart(parsed(frameOf("XSC", {{"RESO", "300,300"}, {"AREA", "FULL"}, {"MODE", "FAST"}})), start));
}

TEST(Gen2Commands, AnAbortSaysWhatToEjectOrNothing) {
  const struct {
    std::string frame;
    Ejection ejection;
  } rows[] = {
      {frameOf("ABT", {}), Ejection::NotSaid},
      {frameOf("ABT", {{"EJCT", "ALL"}}), Ejection::All},
      {frameOf("ABT", {{"EJCT", "ONE"}}), Ejection::One},
      {frameOf("ABT", {{"EJCT", "NO"}}), Ejection::None},
  };
  for (const auto& row : rows) {
    Abort abort;
    EXPECT_FALSE(readAbort(parsed(row.frame), abort));
    EXPECT_EQ(abort.ejection, row.ejection);
  }
  Abort abort;
  EXPECT_TRUE(readAbort(parsed(frameOf("ABT", {{"EJCT", "TWO"}})), abort));
}

TEST(Gen2Commands, ADocumentCheckNamesASource) {
  DocumentCheck check;
  EXPECT_FALSE(readDocumentCheck(parsed(frameOf("CKD", {{"PSRC", "ADF"}})), check));
  EXPECT_EQ(check.source, PaperSource::Feeder);
  EXPECT_TRUE(readDocumentCheck(parsed(frameOf("CKD", {})), check));
}

TEST(Gen2Commands, ACommandWithoutKeysIsRefusedWithOne) {
  EXPECT_FALSE(readNoKeys(parsed(frameOf("QDI", {}))));
  EXPECT_TRUE(readNoKeys(parsed(frameOf("QDI", {{"OS", "MAC"}}))));
}

}  // namespace
}  // namespace vscan::gen2
