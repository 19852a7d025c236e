// The older, flat capability record.
#include <gtest/gtest.h>

#include "tests/api/caps_bench.h"

namespace caps_test {
namespace {

TEST(DeviceCaps, TheFlatRecordRefusesNothingAtAll) {
  Known known([](Record&) {});
  tagQS_SCANNER_CAPABILITY_VER1 older;
  EXPECT_EQ(known.caps.ScanCap2ScanCapV1(nullptr, &known.record()), 0x70100012u);
  EXPECT_EQ(known.caps.ScanCap2ScanCapV1(&older, nullptr), 0x70100012u);
}

void putFullDevice(tagQS_SCANNER_CAPABILITY_VER1& older) {
  const auto put = []<class T>(T& field, const T& value) { std::memcpy(&field, &value, sizeof(T)); };
  put(older.resolutionOptical, OPTICALRESOLUTIONS{{600, 601}, {602, 603}, {604, 605}});
  const unsigned list[11] = {100, 150, 200, 300, 400, 600, 1200, 0, 0, 0, 0};
  std::memcpy(older.resolutionList, list, sizeof list);
  const FLAG colors[5] = {1, 0, 1, 1, 1};
  std::memcpy(&older.colorType, colors, sizeof colors);
  older.autoColorFlag = 1;
  put(older.supportDocSizeMax, DEVICESCANSIZES{{1, 2}, {3, 4}, {5, 6}, UNIT_MILLIMETER});
  put(older.deviceScanSizeMin, DEVICESCANSIZES{{11, 12}, {13, 14}, {15, 16}, UNIT_MILLIMETER});
  older.longPaperLengthMax = {2, 86300, 50000};
  put(older.paperSource, PAPERSOURCESUPPORT{{1, 1, 1, 0}, 1, 50});
  put(older.paperPosition, PAPERSETTINGPOSITIONS{1, 2, 3, 4, 5, 6});
  put(older.marginSize, MARGIN{21, 22, 23, 24, UNIT_MILLIMETER});
  older.autoPaperSize = older.autoCrop = older.autoDeskew = 2;
  older.autoRotate = 1;
  older.detectEndOfPage = 2;
  older.monoThreshold.autoThresholdCap = 1;
  older.monoThreshold.autoThresholdFlag = 0;
  older.monoThreshold.manuanThresholdCap = 2;
  older.monoThreshold.manualThresholdLevelMax = 254;
  older.monoThreshold.manualThresholdLevelMin = 1;
  older.monoThreshold.manualThresholdLevelDefault = 128;
  older.colorTone.cap = 2;
  older.colorTone.flag = 0;
  older.colorTone.brightness = older.colorTone.contrast = {50, -50, 0};
  older.colorTone.shadow = {254, 0, 0};
  older.colorTone.highlight = {255, 1, 220};
  older.colorTone.gamma = {1000, 10, 100};
  put(older.autoColor, AUTOCOLORLEVELSUPPORT{2, 100, 0, 50, 60, 20, 40});
  put(older.backgroundRemoval, BACKGROUNDREMOVALSUPPORT{{2, 1}, {1, 0}, {2, 3}, {2, 4}});
  older.smoothing.cap = older.smoothing.levelCap = 2;
  older.smoothing.flag = older.smoothing.levelFlag = 0;
  older.smoothing.level = {50, -50, 0};
  older.colorDrop.cap = 2;
  older.colorDrop.red = older.colorDrop.green = older.colorDrop.blue = 1;
  older.colorDrop.chromatic = 0;
  older.colorDrop.custom = 1;
  older.thickText.cap = older.edgeEnhance.cap = 2;
  older.thickText.flag = older.edgeEnhance.flag = 0;
  older.thickText.level = older.edgeEnhance.level = {5, 1, 1};
  older.dotTextCombine = older.firstEnhanceFlag = 2;
  older.dustRemoval.cap = older.lineRemoval.cap = older.punchHole.cap = 1;
  older.dustRemoval.flag = older.lineRemoval.flag = older.punchHole.flag = 0;
  older.dustRemoval.level = {0, 0, 0};
  older.carrierSheet = older.plasticCard = older.edgeCut = 2;
  older.edgeFill.cap = 2;
  older.edgeFill.first = older.edgeFill.second = 1;
  put(older.blankRemoval, BLANKREMOVALSUPPORT{2, 1, 2, 1, 8, 0, 4});
  older.xferCount = 2;
  older.reserved = 0;
  older.multifeed = older.quietMode = older.iccProfile = 2;
}

TEST(DeviceCaps, TheFlatRecordOfAFullDevice) {
  Known known([](Record& r) {
    r.commandVersion = 0x0102;
    DEVINFO_BASEFUNC& base = r.baseFunc;
    base.resolutionOptical = {{600, 601}, {602, 603}, {604, 605}};
    base.colorType = {1, 0, 1, 1, 1, 1, 1};
    base.supportDocSizeMax = {{1, 2}, {3, 4}, {5, 6}, UNIT_MILLIMETER};
    base.deviceScanSizeMin = {{11, 12}, {13, 14}, {15, 16}, UNIT_MILLIMETER};
    base.longPaperLengthMax = {2, 86300, 50000, UNIT_MILLIMETER};
    base.paperSource = {{1, 1, 1, 0}, 1, 50};
    base.paperPosition = {1, 2, 3, 4, 5, 6};
    base.marginSize.flatbed = {21, 22, 23, 24, UNIT_MILLIMETER};
    base.marginSize.adfSimplex = {31, 32, 33, 34, UNIT_MILLIMETER};
    base.marginAdjust.flatbed_plus = base.marginAdjust.flatbed_minus = {1, 1, 1, 1, UNIT_MILLIMETER};
    base.multipageScanSystem = {1, 1};
    r.imageProcFunc.colorProfileOutput = 2;
    DEVINFO_ADVANCEDFUNC& more = r.advancedFunc;
    more.autoSize.deviceDetectSize.cap = 2;
    more.autoSize.autoCrop.cap = 2;
    more.deskew.cap = 2;
    more.carrierSheet.cap = 2;
    more.plasticCard.cap = 2;
    more.multifeedDetect.cap = 2;
    more.backgroundRemove = {{2, 1}, {1, 0}, {2, 3}, {2, 4}};
    more.blankRemoval = {2, 1, 2, 0, 8, 3, 3};
    more.autoColor = {2, 100, 0, 0, 60, 20, 0};
    more.quietScan = {2, 1, 1};
  });
  tagQS_SCANNER_CAPABILITY_VER1 v1;
  std::memset(&v1, 0xEE, sizeof v1);
  ASSERT_EQ(known.caps.ScanCap2ScanCapV1(&v1, &known.record()), 0u);
  // What is not named is padding: whatever both backgrounds of the expectation show through.
  tagQS_SCANNER_CAPABILITY_VER1 expected[2];
  std::memset(&expected[0], 0x00, sizeof expected[0]);
  std::memset(&expected[1], 0xFF, sizeof expected[1]);
  for (auto& record : expected) putFullDevice(record);
  const auto* isBytes = reinterpret_cast<const unsigned char*>(&v1);
  const auto* zeroes = reinterpret_cast<const unsigned char*>(&expected[0]);
  const auto* ones = reinterpret_cast<const unsigned char*>(&expected[1]);
  std::size_t compared = 0;
  for (std::size_t i = 0; i < sizeof v1; ++i) {
    if (zeroes[i] != ones[i]) continue;
    ++compared;
    EXPECT_EQ(int{isBytes[i]}, int{zeroes[i]}) << "offset " << i;
  }
  EXPECT_EQ(compared, sizeof v1 - 31u);
}

TEST(DeviceCaps, TheFlatRecordOfABareFeeder) {
  Known known([](Record& r) {
    r.baseFunc.paperSource.supportPaperSource = {0, 1, 0, 0};
    r.baseFunc.marginSize.flatbed = {21, 22, 23, 24, UNIT_MILLIMETER};
    r.baseFunc.marginSize.adfSimplex = {31, 32, 33, 34, UNIT_MILLIMETER};
    r.baseFunc.longPaperLengthMax = {1, 7, 8, UNIT_MILLIMETER};
  });
  tagQS_SCANNER_CAPABILITY_VER1 v1;
  ASSERT_EQ(known.caps.ScanCap2ScanCapV1(&v1, &known.record()), 0u);
  EXPECT_TRUE(sameBytes(v1.marginSize, MARGIN{31, 32, 33, 34, UNIT_MILLIMETER}));
  EXPECT_EQ(v1.longPaperLengthMax.cap, 1);
  EXPECT_EQ(v1.longPaperLengthMax.simplexMaxLength, 7);
  EXPECT_EQ(v1.longPaperLengthMax.duplexMaxLength, 8);
  EXPECT_EQ(v1.resolutionList[10], 19200u);
  for (const CAP cap : {v1.autoPaperSize, v1.autoCrop, v1.autoDeskew, v1.carrierSheet, v1.plasticCard, v1.edgeCut,
                        v1.multifeed, v1.quietMode, v1.iccProfile, v1.autoRotate}) {
    EXPECT_EQ(cap, 1) << "missing, not unknown";
  }
  EXPECT_EQ(v1.xferCount, 0);
  EXPECT_EQ(v1.autoColor.cap, 0) << "copied";
}

}  // namespace
}  // namespace caps_test
