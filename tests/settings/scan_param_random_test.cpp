// The command record over any records: it agrees field by field with the plain sentences of scan_command_reference.h,
// and its groups are what the operation of each group gives.
#include <gtest/gtest.h>

#include <climits>

#include "settings/ScanParam.h"
#include "tests/settings/command_fields.h"
#include "tests/settings/random_records.h"
#include "tests/settings/scan_command_reference.h"

namespace orvalle_scan_api {
namespace {

const CScanParam kParam;
constexpr int kRecords = 120000;

void expectSame(const _SCANCMD_SCANPARAM& got, const _SCANCMD_SCANPARAM& expected) {
  const CommandValues a = valuesOf(got);
  const CommandValues b = valuesOf(expected);
  for (std::size_t i = 0; i < kCommandFieldCount; ++i) ASSERT_EQ(a[i], b[i]) << kCommandFields[i].name;
}

TEST(ScanParamRandom, EveryRecordIsThatOfThePlainSentences) {
  RandomRecords random(630);
  for (int n = 0; n < kRecords; ++n) {
    SCOPED_TRACE(n);
    const QS_SCANNER_PARAMETERS settings = random.settings();
    const QS_SCANNER_CAPABILITY capability = random.capability();
    ASSERT_NO_FATAL_FAILURE(
        expectSame(kParam.ConvertScanPramToCmdParam(settings, capability), reference::command(settings, capability)));
  }
}

TEST(ScanParamRandom, EveryGroupIsThatOfItsOwnOperation) {
  RandomRecords random(631);
  for (int n = 0; n < kRecords; ++n) {
    SCOPED_TRACE(n);
    QS_SCANNER_PARAMETERS settings = random.settings();
    const QS_SCANNER_CAPABILITY capability = random.capability();
    const _SCANCMD_SCANPARAM whole = kParam.ConvertScanPramToCmdParam(settings, capability);
    kParam.ConvertColorTypeForSpecialScanParam(settings);
    ASSERT_EQ(settings.colorType, reference::effectiveColor(settings));
    _SCANCMD_SCANPARAM parts = whole;  // what no operation gives is compared with itself
    parts.resolution = kParam.ConvertScanCmd_Resolution(settings);
    parts.colorType = kParam.ConvertScanCmd_ColorType(settings);
    parts.scanArea = kParam.ConvertScanCmd_ScanArea(settings, capability);
    parts.marginArea = kParam.GetScanCmd_Margin_ToMm(settings);
    parts.duplexScan.isDuplex = kParam.IsDuplexScan(settings, capability) || settings.plasticCard != 0;
    const ScanCmdColorLevel colorLevel = kParam.ConvertScanCmd_ColorLevel(settings, capability);
    parts.autoColorLevelOn = colorLevel.isOn;
    parts.autoColorLevel = colorLevel.level;
    parts.monoThreshold = kParam.ConvertScanCmd_MonoThreshold(settings, capability);
    parts.compressionType = kParam.ConvertScanCmd_CompressionType(settings, capability);
    parts.jpegCompressionRate = kParam.ConvertScanCmd_JpgCompressRate(settings, capability);
    parts.autoDeskew = kParam.ConvertScanCmd_Deskew(settings, capability);
    parts.groundColorRemoval = kParam.ConvertScanCmd_GroundColorRemoval(settings, capability);
    parts.carrierSheetMode = kParam.ConvertScanCmd_CarrierSheet(settings, capability);
    parts.blankPageRemoval = kParam.ConvertScanCmd_BlankPageRemoval(settings, capability);
    const ScanCmdMultifeed multifeed = kParam.ConvertScanCmd_Multifeed(settings, capability);
    parts.doubleFeedDetection = multifeed.detection;
    parts.feedMotion = multifeed.motion;
    ASSERT_NO_FATAL_FAILURE(expectSame(parts, whole));
  }
}

TEST(ScanParamRandom, TheGenerationsDifferInTheLevelOfTheGroundColourAlone) {
  RandomRecords random(632);
  int differing = 0;
  for (int n = 0; n < kRecords; ++n) {
    SCOPED_TRACE(n);
    const QS_SCANNER_PARAMETERS settings = random.settings();
    QS_SCANNER_CAPABILITY capability = random.capability();
    capability.generation = SCANCMD_GENERATION_1ST;
    _SCANCMD_SCANPARAM first = kParam.ConvertScanPramToCmdParam(settings, capability);
    capability.generation = SCANCMD_GENERATION_2ND;
    const _SCANCMD_SCANPARAM second = kParam.ConvertScanPramToCmdParam(settings, capability);
    ASSERT_EQ(first.groundColorRemoval.isOn, second.groundColorRemoval.isOn);
    if (first.groundColorRemoval.level != second.groundColorRemoval.level) ++differing;
    first.groundColorRemoval = second.groundColorRemoval;
    ASSERT_NO_FATAL_FAILURE(expectSame(first, second));
  }
  EXPECT_GT(differing, kRecords / 20);
}

TEST(ScanParamRandom, RoundingMovesByLessThanOneUnit) {
  RandomRecords random(633);
  for (int n = 0; n < kRecords; ++n) {
    const std::int32_t value = random.number();
    const std::int32_t unit = 1 + static_cast<std::int32_t>(random.bits() % 5000);
    if (value > INT_MAX - unit) continue;
    const std::int32_t up = kParam.RoundUpValue(value, unit);
    const std::int32_t down = kParam.RoundDownValue(value, unit);
    ASSERT_TRUE(up % unit == 0 && down % unit == 0) << value << " to " << unit;
    ASSERT_TRUE(up >= value && up - value < unit) << value << " to " << unit;
    const std::int64_t cut = std::int64_t{value} - down;  // towards 0 on both sides of it
    ASSERT_TRUE(value >= 0 ? cut >= 0 && cut < unit : cut <= 0 && cut > -unit) << value << " to " << unit;
  }
}

}  // namespace
}  // namespace orvalle_scan_api
