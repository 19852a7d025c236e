// The geometry over any records: nothing that a host, a device or both put into them may break it, and it agrees with
// the plain steps of scan_area_reference.h to the last bit.
#include <gtest/gtest.h>

#include <cstring>

#include "settings/ScanParam.h"
#include "tests/settings/random_records.h"
#include "tests/settings/scan_area_reference.h"

namespace orvalle_scan_api {

void PrintTo(const _SCANCMD_SCANAREA& a, std::ostream* out) {
  *out << "type " << a.areaType << ", " << a.left << " " << a.top << " " << a.width << " " << a.height;
}
bool operator==(const _SCANCMD_SCANAREA& a, const _SCANCMD_SCANAREA& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;  // words only
}
void PrintTo(const SCANAREA& a, std::ostream* out) {
  *out << a.left << " " << a.top << " " << a.right << " " << a.bottom << ", unit " << a.unit;
}
bool operator==(const SCANAREA& a, const SCANAREA& b) { return std::memcmp(&a, &b, sizeof a) == 0; }
void PrintTo(const MARGIN& m, std::ostream* out) {
  *out << m.left << " " << m.right << " " << m.top << " " << m.bottom << ", unit " << m.unit;
}
bool operator==(const MARGIN& a, const MARGIN& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

namespace {

const CScanParam kParam;
constexpr int kRecords = 120000;

TEST(ScanAreaRandom, EveryAreaIsThatOfThePlainSteps) {
  RandomRecords random(640);
  int placed = 0;     // areas that the position moved
  int trimmed = 0;    // areas that the maximum cut
  int automatic = 0;  // areas that the device decides
  for (int n = 0; n < kRecords; ++n) {
    SCOPED_TRACE(n);
    const QS_SCANNER_PARAMETERS settings = random.settings();
    const QS_SCANNER_CAPABILITY capability = random.capability();
    ACTUALSCANPARAM actual{};
    actual.paperSource = random.source();
    actual.resolution = {random.dpi(), random.dpi()};
    actual.maxSizePixel = {static_cast<std::uint32_t>(random.number()), static_cast<std::uint32_t>(random.number())};

    const _SCANCMD_SCANAREA area = kParam.CalcScanCmdArea(actual.resolution.x, actual.resolution.y, actual.paperSource,
                                                          actual.maxSizePixel, settings, capability);
    const _SCANCMD_SCANAREA expected = reference::commandArea(
        actual.resolution.x, actual.resolution.y, actual.paperSource, actual.maxSizePixel, settings, capability);
    ASSERT_EQ(area, expected);
    const _SCANCMD_SCANAREA revised = kParam.ReviseScanCmd_Area(area, actual, capability);
    ASSERT_EQ(revised, reference::revisedArea(expected, actual.maxSizePixel));
    if (settings.useScanArea == 0 && area.left != 0) ++placed;
    if (!(revised == area)) ++trimmed;
    if (settings.paperType == PAPERTYPE_AUTO) ++automatic;

    _SCANCMD_SCANPARAM command = kParam.ConvertScanPramToCmdParam(settings, capability);
    command.resolution = {actual.resolution.x, actual.resolution.y, false};
    command.scanArea = revised;
    const QS_SCANNER_PARAMETERS device = kParam.CreateDeviceScanParam(settings, command, actual.maxSizePixel);
    const QS_SCANNER_PARAMETERS plain = reference::deviceSettings(settings, command, actual.maxSizePixel);
    ASSERT_EQ(device.scanArea, plain.scanArea);
    ASSERT_EQ(std::memcmp(&device, &plain, sizeof plain), 0);
  }
  // The sample is worth something: each kind occurs thousands of times.
  EXPECT_GT(placed, kRecords / 20);
  EXPECT_GT(trimmed, kRecords / 20);
  EXPECT_GT(automatic, kRecords / 50);
}

TEST(ScanAreaRandom, EveryMarginLengthAndUnitIsThatOfThePlainSteps) {
  RandomRecords random(641);
  for (int n = 0; n < kRecords; ++n) {
    SCOPED_TRACE(n);
    const QS_SCANNER_PARAMETERS settings = random.settings();
    QS_SCANNER_CAPABILITY capability = random.capability();
    const std::uint32_t dpi = random.dpi();
    ASSERT_EQ(kParam.GetScanMarginPixel(settings, capability, dpi),
              reference::marginInPixels(settings, capability, dpi));
    ASSERT_EQ(kParam.GetScanMarginMm(settings, capability), reference::marginInMm(settings, capability));

    LONGPAPERSUPPORTSIZE& longest = capability.baseFunc.longPaperLengthMax;
    longest = {2, random.number(), random.number(), random.unit()};
    ASSERT_EQ(kParam.GetLongPaperSizePixel(dpi, settings.duplexType, longest),
              reference::longPaperLength(dpi, settings.duplexType, longest));

    for (const UNITTYPE to : {UNIT_INCH, UNIT_MILLIMETER, UNIT_PIXEL, random.unit()}) {
      QS_SCANNER_PARAMETERS expected = settings;
      expected.scanArea = reference::areaInUnit(settings, to);
      const QS_SCANNER_PARAMETERS converted = kParam.ConvertScanAreaValueUnit(settings, to);
      ASSERT_EQ(converted.scanArea, expected.scanArea) << "to unit " << to;
      ASSERT_EQ(std::memcmp(&converted, &expected, sizeof expected), 0);
    }
  }
}

}  // namespace
}  // namespace orvalle_scan_api
