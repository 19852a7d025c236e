// Which field of the settings, the capabilities and the device's answer can change which number of the area, and which
// field of the command record can change the device's copy of the settings.
#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string_view>
#include <vector>

#include "settings/ScanParam.h"
#include "tests/settings/random_records.h"
#include "tests/settings/ties.h"

namespace orvalle_scan_api {
namespace {

const CScanParam kParam;

template <class Record>
struct Field {
  const char* name;
  std::int64_t (*get)(const Record&);
};
template <class Record, std::size_t count>
std::array<std::int64_t, count> valuesOf(const Record& record, const Field<Record> (&fields)[count]) {
  std::array<std::int64_t, count> values{};
  for (std::size_t i = 0; i < count; ++i) values[i] = fields[i].get(record);
  return values;
}

// --- The area that is sent --------------------------------------------------------------------------------------

// Everything that the area may come from.
struct Inputs {
  QS_SCANNER_PARAMETERS settings;
  QS_SCANNER_CAPABILITY capability;
  AXIS resolution;  // this and the rest are the device's answer
  PAPERSOURCESELECT source;
  AXIS maxPixel;
};

constexpr Field<_SCANCMD_SCANAREA> kAreaFields[] = {
    {"areaType", [](const _SCANCMD_SCANAREA& a) { return std::int64_t{a.areaType}; }},
    {"left", [](const _SCANCMD_SCANAREA& a) { return std::int64_t{a.left}; }},
    {"top", [](const _SCANCMD_SCANAREA& a) { return std::int64_t{a.top}; }},
    {"width", [](const _SCANCMD_SCANAREA& a) { return std::int64_t{a.width}; }},
    {"height", [](const _SCANCMD_SCANAREA& a) { return std::int64_t{a.height}; }},
};
auto areaOf(const Inputs& in) {
  return valuesOf(
      kParam.CalcScanCmdArea(in.resolution.x, in.resolution.y, in.source, in.maxPixel, in.settings, in.capability),
      kAreaFields);
}

using Names = std::vector<std::string_view>;
const Names kX = {"left", "width"};
const Names kY = {"top", "height"};
const Names kXY = {"left", "top", "width", "height"};

bool automaticSize(const Inputs& in) { return in.settings.paperType == PAPERTYPE_AUTO; }
bool named(const Inputs& in) { return !automaticSize(in); }
bool custom(const Inputs& in) { return in.settings.paperType == PAPERTYPE_CUSTOM; }
bool part(const Inputs& in) { return named(in) && in.settings.useScanArea != 0; }
bool inUserPixels(const Inputs& in) {
  return part(in) || (custom(in) && in.settings.customPaperSize.unit == UNIT_PIXEL);
}
bool carrier(const Inputs& in) { return named(in) && in.settings.carrierSheet != 0; }
// The margin goes by the settings.
bool wantsFeeder(const Inputs& in) { return named(in) && in.settings.paperSource == PAPERSOURCE_ADF; }
bool wantsSimplex(const Inputs& in) { return wantsFeeder(in) && in.settings.duplexType == 0; }
bool wantsDuplex(const Inputs& in) { return wantsFeeder(in) && in.settings.duplexType != 0; }
bool wantsCardslot(const Inputs& in) { return named(in) && in.settings.paperSource == PAPERSOURCE_CARDSLOT; }
bool wantsFlatbed(const Inputs& in) { return named(in) && !wantsFeeder(in) && !wantsCardslot(in); }
// The position goes by the device.
bool inFeeder(const Inputs& in) { return named(in) && in.source == PAPERSOURCE_ADF; }
bool inCardslot(const Inputs& in) { return named(in) && in.source == PAPERSOURCE_CARDSLOT; }
bool onFlatbed(const Inputs& in) { return named(in) && !inFeeder(in) && !inCardslot(in); }

#define S(path, ...) QS_TIE(Inputs, settings.path, __VA_ARGS__)
#define C(path, ...) QS_TIE(Inputs, capability.path, __VA_ARGS__)
#define MARGIN_OF(source, when)                                                                    \
  C(baseFunc.marginSize.source.left, kX, when), C(baseFunc.marginSize.source.right, kX, when),     \
      C(baseFunc.marginSize.source.top, kY, when), C(baseFunc.marginSize.source.bottom, kY, when), \
      C(baseFunc.marginSize.source.unit, kXY, when)
const std::vector<Tie<Inputs>> kAreaTies = {
    S(resolution.x, kX, inUserPixels),
    S(resolution.y, kY, inUserPixels),
    S(paperType, {"areaType", "left", "top", "width", "height"}),
    S(customPaperSize.x, kX, custom),
    S(customPaperSize.y, kY, custom),
    S(customPaperSize.unit, kXY, custom),
    S(useScanArea, kXY, named),
    S(scanArea.left, {"left"}, part),
    S(scanArea.top, {"top"}, part),
    S(scanArea.right, {"width"}, part),
    S(scanArea.bottom, {"height"}, part),
    S(scanArea.unit, kXY, part),
    S(duplexType, kXY, wantsFeeder),
    S(paperSource, kXY, named),
    S(carrierSheet, {"top"}, named),
    C(advancedFunc.carrierSheet.offsetSizeMm.top, {"top"}, carrier),
    C(advancedFunc.autoSize.deviceDetectSize.cap, {"areaType"}, automaticSize),
    C(advancedFunc.autoSize.deviceDetectSize.detectSystem, {"areaType"}, automaticSize),
    C(advancedFunc.autoSize.deviceDetectSize.detectOverScan, {"areaType"}, automaticSize),
    C(advancedFunc.deskew.cap, {"areaType"}, automaticSize),
    C(baseFunc.paperPosition.flatbedX, {"left"}, onFlatbed),
    C(baseFunc.paperPosition.flatbedY, {"top"}, onFlatbed),
    C(baseFunc.paperPosition.adfX, {"left"}, inFeeder),
    C(baseFunc.paperPosition.adfY, {"top"}, inFeeder),
    C(baseFunc.paperPosition.cardslotX, {"left"}, inCardslot),
    C(baseFunc.paperPosition.cardslotY, {"top"}, inCardslot),
    MARGIN_OF(flatbed, wantsFlatbed),
    MARGIN_OF(adfSimplex, wantsSimplex),
    MARGIN_OF(adfDuplex, wantsDuplex),
    MARGIN_OF(cardslot, wantsCardslot),
    // The margin above and below a size in pixels goes by the horizontal resolution too.
    QS_TIE(Inputs, resolution.x, kXY, named),
    QS_TIE(Inputs, resolution.y, kY, named),
    QS_TIE(Inputs, source, kXY, named),
    QS_TIE(Inputs, maxPixel.x, {"left"}, named),
    QS_TIE(Inputs, maxPixel.y, {"top"}, named),
};
#undef MARGIN_OF
#undef C
#undef S

TEST(ScanAreaTies, RecordsThatDifferInOneFieldChangeOnlyTheNumbersTiedToIt) {
  RandomRecords records(65);
  std::mt19937 random(66);
  TieCheck check(kAreaFields, kAreaTies, areaOf);
  for (int n = 0; n < 1500; ++n) {
    Inputs inputs{records.settings(), records.capability(), {}, records.source(), {}};
    inputs.resolution = {records.dpi(), records.dpi()};
    inputs.maxPixel = {records.bits() % 10000, records.bits() % 10000};
    ASSERT_NO_FATAL_FAILURE(check.changeEveryByte(inputs, random, anyByte));
  }
  check.expectAllSeen();
}

TEST(ScanAreaTies, TheTrimLooksAtTheMaximumAlone) {
  RandomRecords records(67);
  for (int n = 0; n < 20000; ++n) {
    const _SCANCMD_SCANAREA area{SCANCMD_SCAN_AREA_NORMAL, records.bits() % 9000, records.bits() % 9000,
                                 records.bits() % 9000, records.bits() % 9000};
    ACTUALSCANPARAM actual{};
    actual.maxSizePixel = {records.bits() % 9000, records.bits() % 9000};
    const auto expected = valuesOf(kParam.ReviseScanCmd_Area(area, actual, {}), kAreaFields);
    actual.paperSource = records.source();
    actual.resolution = {records.dpi(), records.dpi()};
    actual.maxSizeMm = {records.bits(), records.bits()};
    ASSERT_EQ(valuesOf(kParam.ReviseScanCmd_Area(area, actual, records.capability()), kAreaFields), expected);
  }
}

// --- What the device will deliver -------------------------------------------------------------------------------

struct DeliveryInputs {
  QS_SCANNER_PARAMETERS settings;
  _SCANCMD_SCANPARAM command;
  AXIS maxPixel;
};

constexpr Field<QS_SCANNER_PARAMETERS> kDeliveryFields[] = {
    {"resolution.x", [](const QS_SCANNER_PARAMETERS& s) { return std::int64_t{s.resolution.x}; }},
    {"resolution.y", [](const QS_SCANNER_PARAMETERS& s) { return std::int64_t{s.resolution.y}; }},
    {"colorType", [](const QS_SCANNER_PARAMETERS& s) { return std::int64_t{s.colorType}; }},
    {"left", [](const QS_SCANNER_PARAMETERS& s) { return std::int64_t{s.scanArea.left}; }},
    {"top", [](const QS_SCANNER_PARAMETERS& s) { return std::int64_t{s.scanArea.top}; }},
    {"right", [](const QS_SCANNER_PARAMETERS& s) { return std::int64_t{s.scanArea.right}; }},
    {"bottom", [](const QS_SCANNER_PARAMETERS& s) { return std::int64_t{s.scanArea.bottom}; }},
    {"unit", [](const QS_SCANNER_PARAMETERS& s) { return std::int64_t{s.scanArea.unit}; }},
};
auto deliveryOf(const DeliveryInputs& in) {
  return valuesOf(kParam.CreateDeviceScanParam(in.settings, in.command, in.maxPixel), kDeliveryFields);
}

bool hasEdge(const DeliveryInputs& in) { return in.settings.edgeCut.enable != 0 && in.settings.paperType != 0; }
bool wantsEdge(const DeliveryInputs& in) { return in.settings.edgeCut.enable != 0; }
bool hasName(const DeliveryInputs& in) { return in.settings.paperType != 0; }

#define D(path, ...) QS_TIE(DeliveryInputs, path, __VA_ARGS__)
const std::vector<Tie<DeliveryInputs>> kDeliveryTies = {
    D(settings.paperType, {"right", "bottom"}, wantsEdge),
    D(settings.edgeCut.enable, {"right", "bottom"}, hasName),
    D(settings.edgeCut.left, {"right"}, hasEdge),
    D(settings.edgeCut.top, {"bottom"}, hasEdge),
    D(settings.edgeCut.right, {"right"}, hasEdge),
    D(settings.edgeCut.bottom, {"bottom"}, hasEdge),
    D(settings.edgeCut.unit, {"right", "bottom"}, hasEdge),
    D(command.resolution.x, {"resolution.x", "right"}),
    D(command.resolution.y, {"resolution.y", "bottom"}),
    D(command.colorType, {"colorType"}),
    D(command.scanArea.left, {"left"}),
    D(command.scanArea.top, {"top"}),
    D(command.scanArea.width, {"right"}),
    D(command.scanArea.height, {"bottom"}),
    D(maxPixel.x, {"left", "right"}),
    D(maxPixel.y, {"top", "bottom"}),
};
#undef D

TEST(ScanAreaTies, TheDeviceCopyComesFromTheCommandAndTheEdgeCutAlone) {
  RandomRecords records(68);
  std::mt19937 random(69);
  TieCheck check(kDeliveryFields, kDeliveryTies, deliveryOf);
  for (int n = 0; n < 1500; ++n) {
    DeliveryInputs inputs{records.settings(), {}, {records.bits() % 9000, records.bits() % 9000}};
    if (records.bits() % 3 == 0) inputs.settings.paperType = PAPERTYPE_AUTO;
    if (records.bits() % 2 == 0) inputs.maxPixel = {0x7FFFFF00, 0x7FFFFF00};  // no limit in practice
    inputs.command = kParam.ConvertScanPramToCmdParam(inputs.settings, records.capability());
    inputs.command.scanArea = {SCANCMD_SCAN_AREA_NORMAL, records.bits() % 9000, records.bits() % 9000,
                               records.bits() % 9000, records.bits() % 9000};
    ASSERT_NO_FATAL_FAILURE(check.changeEveryByte(inputs, random, flippedByte));
  }
  check.expectAllSeen();
}

}  // namespace
}  // namespace orvalle_scan_api
