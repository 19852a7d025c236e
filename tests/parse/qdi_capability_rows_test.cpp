// Every field of the device information by itself: for each value of each byte or word of each tag, what the capability
// record must hold, whatever sources the device has.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/parse/expected_capability.h"

using namespace expected_capability;
using namespace orvalle_scan_api;

namespace {

// Changes the record of a device with these sources into that of one whose field holds v.
using Rule = void (*)(Capability& c, int v, const Sources& s);

struct FieldRow {
  const char* name;
  int tag;
  BodyBytes value;  // of the tag; the field's own bytes are replaced
  std::size_t offset;
  int width;  // 1 or 2
  Rule rule;
};

FLAG bit(int value, int number) { return static_cast<FLAG>(value >> number & 1); }
CAP twoIf(bool has) { return has ? 2 : 1; }
int asSigned(int word) { return word < 0x8000 ? word : word - 0x10000; }
std::uint32_t length(int word, int otherwise) { return static_cast<std::uint32_t>(word != 0 ? word * 10 : otherwise); }
BodyBytes zeroes(std::size_t size) { return BodyBytes(size); }
BodyBytes with(std::size_t size, std::initializer_list<std::pair<std::size_t, int>> places) {
  BodyBytes bytes(size);
  for (const auto& [at, byte] : places) bytes[at] = static_cast<unsigned char>(byte);
  return bytes;
}

void nothing(Capability&, int, const Sources&) {}
SUPPORTCOLORTYPES colors(int v) { return {bit(v, 0), bit(v, 1), bit(v, 2), bit(v, 3), bit(v, 4), 0, 0}; }
// In the record's order, which is not that of the bits.
FUNCEXCLUSION exclusion(int v) {
  return {bit(v, 0), bit(v, 1), bit(v, 5), bit(v, 3), bit(v, 4), bit(v, 2), bit(v, 6), bit(v, 7), bit(v, 8)};
}
COMPRESSSUPPORT compression(int v) { return {bit(v, 0), bit(v, 1), 0, bit(v, 2)}; }
SUPPORTADJUSTLEVEL level(int v) { return {twoIf(v != 0), v}; }
std::int32_t positionX(int v) { return v == 2 ? 1 : v == 3 ? 2 : 0; }
std::int32_t positionY(int v) { return v == 2 ? 1 : v == 3 ? 4 : 3; }
SUPPORTPAPERSOURCES sourceBits(int v) { return {bit(v, 0), bit(v, 1), bit(v, 2), bit(v, 3)}; }

#define RULE(...) [](Capability& c, [[maybe_unused]] int v, [[maybe_unused]] const Sources& s) { __VA_ARGS__; }
#define PUSH c.func.pushScan
#define BASE c.baseFunc
#define IMAGE c.imageProcFunc
#define ADV c.advancedFunc

const std::vector<FieldRow> kIdentity = {
    {"command version", 0x0001, zeroes(2), 0, 2, RULE(c.commandVersion = static_cast<std::uint16_t>(v))},
    {"category", 0x0101, zeroes(2), 0, 2,
     RULE(c.modelInfo.category = v == 1   ? 0
                                 : v == 3 ? 2
                                 : v == 4 ? 3
                                          : 1)},
    {"push scan events", 0x0201, zeroes(2), 0, 1,
     RULE(PUSH.supportPushScanEvent = {bit(v, 0), bit(v, 1), bit(v, 2), bit(v, 3)})},
    {"kept 0201", 0x0201, zeroes(2), 1, 1, nothing},
    {"continuous scan", 0x0202, zeroes(2), 0, 1,
     RULE(PUSH.continuousScan = {twoIf((v & 3) != 0), {bit(v, 0), bit(v, 1)}})},
    {"push parameters", 0x0202, zeroes(2), 1, 1, RULE(PUSH.paramSetting = {twoIf(v != 0), FLAG(v == 1)})},
    {"functions", 0x0203, zeroes(2), 0, 2, RULE(PUSH.deviceSupportScanFunc.officeDocCreator = bit(v, 0))},
    {"QCI", 0x0204, zeroes(2), 0, 1, RULE(c.func.qciCommandSupport = twoIf(v == 1))},
    {"kept 0204", 0x0204, zeroes(2), 1, 1, nothing},
};

const std::vector<FieldRow> kBasic = {
    {"colour types", 0x0301, zeroes(2), 0, 1,
     RULE(BASE.colorType = colors(v); BASE.colorType.color256table = bit(v, 5))},
    {"kept 0301", 0x0301, zeroes(2), 1, 1, nothing},
    {"stack", 0x0303, zeroes(2), 0, 2, RULE(if (s.adf()) BASE.paperSource.adfStackCapacity = v)},

    {"optical flatbed x", 0x0304, zeroes(12), 0, 2,
     RULE(if (s.flatbed()) BASE.resolutionOptical.flatbed.x = static_cast<unsigned>(v))},
    {"optical flatbed y", 0x0304, zeroes(12), 2, 2,
     RULE(if (s.flatbed()) BASE.resolutionOptical.flatbed.y = static_cast<unsigned>(v))},
    {"optical simplex x", 0x0304, zeroes(12), 4, 2,
     RULE(if (s.adf()) BASE.resolutionOptical.adfSimplex.x = static_cast<unsigned>(v))},
    {"optical simplex y", 0x0304, zeroes(12), 6, 2,
     RULE(if (s.adf()) BASE.resolutionOptical.adfSimplex.y = static_cast<unsigned>(v))},
    {"optical duplex x", 0x0304, zeroes(12), 8, 2,
     RULE(if (s.twoSides()) BASE.resolutionOptical.adfDuplex.x = static_cast<unsigned>(v))},
    {"optical duplex y", 0x0304, zeroes(12), 10, 2,
     RULE(if (s.twoSides()) BASE.resolutionOptical.adfDuplex.y = static_cast<unsigned>(v))},

    {"greatest flatbed x", 0x0305, zeroes(12), 0, 2,
     RULE(if (s.flatbed()) BASE.deviceScanSizeMax.flatbed.x = BASE.supportDocSizeMax.flatbed.x = length(v, 21000))},
    {"greatest flatbed y", 0x0305, zeroes(12), 2, 2,
     RULE(if (s.flatbed()) BASE.deviceScanSizeMax.flatbed.y = BASE.supportDocSizeMax.flatbed.y = length(v, 29700))},
    {"greatest simplex x", 0x0305, zeroes(12), 4, 2,
     RULE(if (s.adf()) BASE.deviceScanSizeMax.simplex.x = BASE.supportDocSizeMax.simplex.x = length(v, 21000))},
    {"greatest simplex y", 0x0305, zeroes(12), 6, 2,
     RULE(if (s.adf()) BASE.deviceScanSizeMax.simplex.y = BASE.supportDocSizeMax.simplex.y = length(v, 35560))},
    {"greatest duplex x", 0x0305, zeroes(12), 8, 2,
     RULE(if (s.twoSides()) BASE.deviceScanSizeMax.duplex.x = BASE.supportDocSizeMax.duplex.x = length(v, 21000))},
    {"greatest duplex y", 0x0305, zeroes(12), 10, 2,
     RULE(if (s.twoSides()) BASE.deviceScanSizeMax.duplex.y = BASE.supportDocSizeMax.duplex.y = length(v, 35560))},

    {"long paper simplex", 0x0306, zeroes(4), 0, 2,
     RULE(BASE.longPaperLengthMax.cap = twoIf(v != 0);
          if (s.adf()) BASE.longPaperLengthMax.simplexMaxLength = v != 0 ? v * 10 : 86300)},
    {"long paper duplex", 0x0306, zeroes(4), 2, 2,
     RULE(BASE.longPaperLengthMax.cap = twoIf(v != 0);
          if (s.twoSides()) BASE.longPaperLengthMax.duplexMaxLength = v != 0 ? v * 10 : 86300)},

    {"least flatbed x", 0x0307, zeroes(12), 0, 2,
     RULE(if (s.flatbed()) BASE.deviceScanSizeMin.flatbed.x = length(v, 1))},
    {"least flatbed y", 0x0307, zeroes(12), 2, 2,
     RULE(if (s.flatbed()) BASE.deviceScanSizeMin.flatbed.y = length(v, 1))},
    {"least simplex x", 0x0307, zeroes(12), 4, 2, RULE(if (s.adf()) BASE.deviceScanSizeMin.simplex.x = length(v, 1))},
    {"least simplex y", 0x0307, zeroes(12), 6, 2, RULE(if (s.adf()) BASE.deviceScanSizeMin.simplex.y = length(v, 1))},
    {"least duplex x", 0x0307, zeroes(12), 8, 2,
     RULE(if (s.twoSides()) BASE.deviceScanSizeMin.duplex.x = length(v, 1))},
    {"least duplex y", 0x0307, zeroes(12), 10, 2,
     RULE(if (s.twoSides()) BASE.deviceScanSizeMin.duplex.y = length(v, 1))},

    {"document flatbed x", 0x0308, zeroes(12), 0, 2,
     RULE(if (s.flatbed()) BASE.supportDocSizeMax.flatbed.x = length(v, 21000))},
    {"document flatbed y", 0x0308, zeroes(12), 2, 2,
     RULE(if (s.flatbed()) BASE.supportDocSizeMax.flatbed.y = length(v, 29700))},
    {"document simplex x", 0x0308, zeroes(12), 4, 2,
     RULE(if (s.adf()) BASE.supportDocSizeMax.simplex.x = length(v, 21000))},
    {"document simplex y", 0x0308, zeroes(12), 6, 2,
     RULE(if (s.adf()) BASE.supportDocSizeMax.simplex.y = length(v, 35560))},
    {"document duplex x", 0x0308, zeroes(12), 8, 2,
     RULE(if (s.twoSides()) BASE.supportDocSizeMax.duplex.x = length(v, 21000))},
    {"document duplex y", 0x0308, zeroes(12), 10, 2,
     RULE(if (s.twoSides()) BASE.supportDocSizeMax.duplex.y = length(v, 35560))},

    {"position flatbed x", 0x030B, zeroes(6), 0, 1, RULE(if (s.flatbed()) BASE.paperPosition.flatbedX = positionX(v))},
    {"position flatbed y", 0x030B, zeroes(6), 1, 1, RULE(if (s.flatbed()) BASE.paperPosition.flatbedY = positionY(v))},
    {"position feeder x", 0x030B, zeroes(6), 2, 1, RULE(if (s.adf()) BASE.paperPosition.adfX = positionX(v))},
    {"position feeder y", 0x030B, zeroes(6), 3, 1, RULE(if (s.adf()) BASE.paperPosition.adfY = positionY(v))},
    {"position card x", 0x030B, zeroes(6), 4, 1,
     RULE(if (s.paperSource == 4) BASE.paperPosition.cardslotX = positionX(v))},
    {"position card y", 0x030B, zeroes(6), 5, 1,
     RULE(if (s.paperSource == 4) BASE.paperPosition.cardslotY = positionY(v))},
    {"card on the flatbed", 0x030C, zeroes(2), 0, 1,
     RULE(BASE.cardSizeOrient.capFlatbed = twoIf(v == 1 || v == 2); BASE.cardSizeOrient.orientFlatbed = v == 1   ? 2
                                                                                                        : v == 2 ? 1
                                                                                                                 : 0)},
    {"card in the feeder", 0x030C, zeroes(2), 1, 1,
     RULE(BASE.cardSizeOrient.capAdf = twoIf(v == 1 || v == 2); BASE.cardSizeOrient.orientAdf = v == 1   ? 2
                                                                                                : v == 2 ? 1
                                                                                                         : 0)},
    {"several pages", 0x030D, zeroes(2), 0, 1, RULE(BASE.multipageScanSystem = {bit(v, 0), bit(v, 1)})},
    {"kept 030D", 0x030D, zeroes(2), 1, 1, nothing},
    {"over-scan", 0x030E, zeroes(4), 0, 1, RULE(BASE.overScanSystem.capOverScan = bit(v, 0) + 1)},
    {"over-scan colours", 0x030E, zeroes(4), 1, 1, RULE(BASE.overScanSystem.colorType = colors(v))},
    {"over-scan exclusions", 0x030E, zeroes(4), 2, 2, RULE(BASE.overScanSystem.funcExclusion = exclusion(v))},
    {"cancel", 0x030F, zeroes(2), 0, 1, RULE(BASE.cancelSystem = {twoIf(v != 0), bit(v, 0), bit(v, 1), bit(v, 2)})},
    {"kept 030F", 0x030F, zeroes(2), 1, 1, nothing},
    {"first errors", 0x0310, zeroes(4), 0, 1, RULE(BASE.errorSystem.first = {twoIf(v != 0), bit(v, 0), bit(v, 1)})},
    {"feed errors", 0x0310, zeroes(4), 1, 1,
     RULE(BASE.errorSystem.feed = {twoIf(v != 0), bit(v, 0), bit(v, 1), bit(v, 2)})},
    {"third errors", 0x0310, zeroes(4), 2, 1, RULE(BASE.errorSystem.third = {twoIf(v != 0), bit(v, 0), bit(v, 1)})},
    {"kept 0310", 0x0310, zeroes(4), 3, 1, nothing},
    {"colour tape", 0x0311, zeroes(6), 0, 1, RULE(BASE.colorTape.cap = v == 1 || v == 2 ? v : 0)},
    {"tape red", 0x0311, zeroes(6), 1, 1, RULE(BASE.colorTape.red = v)},
    {"tape green", 0x0311, zeroes(6), 2, 1, RULE(BASE.colorTape.green = v)},
    {"tape blue", 0x0311, zeroes(6), 3, 1, RULE(BASE.colorTape.blue = v)},
    {"tape upper", 0x0311, zeroes(6), 4, 1, RULE(BASE.colorTape.upperRange = v)},
    {"tape lower", 0x0311, zeroes(6), 5, 1, RULE(BASE.colorTape.lowerRange = v)},
};

const std::vector<FieldRow> kImageProcessing = {
    {"compress mono", 0x0401, zeroes(6), 0, 1, RULE(IMAGE.supportCompresssionType.blackAndWhite = compression(v))},
    {"compress diffused", 0x0401, zeroes(6), 1, 1, RULE(IMAGE.supportCompresssionType.errorDiffusion = compression(v))},
    {"compress grey", 0x0401, zeroes(6), 2, 1, RULE(IMAGE.supportCompresssionType.trueGray = compression(v))},
    {"compress 256", 0x0401, zeroes(6), 3, 1, RULE(IMAGE.supportCompresssionType.color256 = compression(v))},
    {"compress 24 bit", 0x0401, zeroes(6), 4, 1, RULE(IMAGE.supportCompresssionType.color24bit = compression(v))},
    {"kept 0401", 0x0401, zeroes(6), 5, 1, nothing},
    {"JPEG level", 0x0402, zeroes(2), 0, 1, RULE(IMAGE.supportCompresssionType.jpegCompression.compressLevel = v)},
    {"JPEG sampling", 0x0402, zeroes(2), 1, 1,
     RULE(IMAGE.supportCompresssionType.jpegCompression.jpegSamplingFactor = {bit(v, 0), bit(v, 1), bit(v, 2),
                                                                              bit(v, 3), bit(v, 4)})},
    {"threshold", 0x0403, zeroes(4), 0, 1,
     RULE(IMAGE.monoThreshold.autoThresholdCap = bit(v, 1) + 1;
          IMAGE.monoThreshold.manuanThresholdCap = bit(v, 0) + 1)},
    {"threshold least", 0x0403, zeroes(4), 1, 1, RULE(IMAGE.monoThreshold.manualThresholdLevelMin = v)},
    {"threshold greatest", 0x0403, zeroes(4), 2, 1, RULE(IMAGE.monoThreshold.manualThresholdLevelMax = v)},
    {"kept 0403", 0x0403, zeroes(4), 3, 1, nothing},
    {"special documents", 0x0404, zeroes(2), 0, 2,
     RULE(IMAGE.specialDocumentImageProcs = {bit(v, 1), bit(v, 2), bit(v, 3), bit(v, 0)})},
    {"colour profile", 0x0405, zeroes(2), 0, 2, RULE(IMAGE.colorProfileOutput = twoIf(v == 1))},
    {"gamma", 0x0406, zeroes(2), 0, 1, RULE(IMAGE.gammaRange = v)},
    {"kept 0406", 0x0406, zeroes(2), 1, 1, nothing},
    {"moire", 0x0407, zeroes(6), 0, 1, RULE(IMAGE.moireRemoval.moireCap = IMAGE.toneAdjust = twoIf(v == 1))},
    {"kept 0407", 0x0407, zeroes(6), 1, 1, nothing},
    {"moire x", 0x0407, zeroes(6), 2, 2, RULE(IMAGE.moireRemoval.moireMaxResolution.x = static_cast<unsigned>(v))},
    {"moire y", 0x0407, zeroes(6), 4, 2, RULE(IMAGE.moireRemoval.moireMaxResolution.y = static_cast<unsigned>(v))},
    {"kept 0408", 0x0408, zeroes(2), 0, 2, nothing},
};

SUPPORTCOLORTYPES oneColor(int v) {
  return {FLAG(v == 1), FLAG(v == 2), FLAG(v == 4), FLAG(v == 8), FLAG(v == 16), 0, 0};
}

const std::vector<FieldRow> kAdvanced = {
    {"kept 0501", 0x0501, zeroes(2), 0, 2, nothing},
    {"crop", 0x0502, zeroes(10), 0, 1, RULE(ADV.autoSize.autoCrop.cap = twoIf(v == 1))},
    {"crop, but not 1", 0x0502, with(10, {{0, 2}, {1, 1}}), 2, 2, nothing},
    {"crop colour", 0x0502, with(10, {{0, 1}}), 1, 1,
     RULE(ADV.autoSize.autoCrop.cap = 2; ADV.autoSize.autoCrop.supportColorType = oneColor(v))},
    {"crop colour without crop", 0x0502, zeroes(10), 1, 1, nothing},
    {"crop greatest x", 0x0502, with(10, {{0, 1}}), 2, 2,
     RULE(ADV.autoSize.autoCrop.cap = 2; ADV.autoSize.autoCrop.resolutionDpiMax.x = static_cast<unsigned>(v))},
    {"crop greatest y", 0x0502, with(10, {{0, 1}}), 4, 2,
     RULE(ADV.autoSize.autoCrop.cap = 2; ADV.autoSize.autoCrop.resolutionDpiMax.y = static_cast<unsigned>(v))},
    {"crop least x", 0x0502, with(10, {{0, 1}}), 6, 2,
     RULE(ADV.autoSize.autoCrop.cap = 2; ADV.autoSize.autoCrop.resolutionDpiMin.x = static_cast<unsigned>(v))},
    {"crop least y", 0x0502, with(10, {{0, 1}}), 8, 2,
     RULE(ADV.autoSize.autoCrop.cap = 2; ADV.autoSize.autoCrop.resolutionDpiMin.y = static_cast<unsigned>(v))},
    {"kept 0503", 0x0503, zeroes(10), 0, 2, nothing},
    {"kept 0503", 0x0503, zeroes(10), 8, 2, nothing},
    {"ID card", 0x0504, zeroes(4), 0, 1, RULE(ADV.idCardMode = {twoIf(v != 0), {bit(v, 0), bit(v, 1)}})},
    {"landscape", 0x0504, zeroes(4), 1, 1, RULE(ADV.landscape = {twoIf(v != 0), {bit(v, 0), bit(v, 1), bit(v, 2), 0}})},
    {"back side only", 0x0504, zeroes(4), 2, 2, RULE(ADV.adfOnlyBackScan = twoIf(v == 1))},
    {"carrier sheet", 0x0505, zeroes(16), 0, 1, RULE(ADV.carrierSheet.cap = twoIf(v == 1))},
    {"carrier colours", 0x0505, zeroes(16), 1, 1, RULE(ADV.carrierSheet.supportColorType = colors(v))},
    {"carrier top", 0x0505, zeroes(16), 2, 2, RULE(ADV.carrierSheet.offsetSizeMm.top = v * 10)},
    {"carrier bottom", 0x0505, zeroes(16), 4, 2, RULE(ADV.carrierSheet.offsetSizeMm.bottom = v * 10)},
    {"carrier least x", 0x0505, zeroes(16), 6, 2, RULE(ADV.carrierSheet.resolutionDpiMin.x = static_cast<unsigned>(v))},
    {"carrier least y", 0x0505, zeroes(16), 8, 2, RULE(ADV.carrierSheet.resolutionDpiMin.y = static_cast<unsigned>(v))},
    {"carrier greatest x", 0x0505, zeroes(16), 10, 2,
     RULE(ADV.carrierSheet.resolutionDpiMax.x = static_cast<unsigned>(v))},
    {"carrier greatest y", 0x0505, zeroes(16), 12, 2,
     RULE(ADV.carrierSheet.resolutionDpiMax.y = static_cast<unsigned>(v))},
    {"carrier exclusions", 0x0505, zeroes(16), 14, 2, RULE(ADV.carrierSheet.exclusion = exclusion(v))},
    {"plastic card", 0x0506, zeroes(12), 0, 1, RULE(ADV.plasticCard.cap = twoIf(v != 0))},
    {"kept 0506", 0x0506, with(12, {{0, 1}}), 1, 1, RULE(ADV.plasticCard.cap = 2)},
    {"kept 0506", 0x0506, with(12, {{0, 1}}), 10, 2, RULE(ADV.plasticCard.cap = 2)},
    {"multi-feed", 0x0507, with(2, {{1, 7}}), 0, 1,
     RULE(ADV.multifeedDetect.cap = twoIf(bit(v, 0)); if (bit(v, 0)) ADV.multifeedDetect.systemType = bit(v, 1) + 1;
          if ((v & 3) == 3) ADV.multifeedDetect.level = 7)},
    {"multi-feed level", 0x0507, with(2, {{0, 3}}), 1, 1, RULE(ADV.multifeedDetect = {2, 2, v})},
    {"multi-feed level that cannot be set", 0x0507, with(2, {{0, 1}}), 1, 1, RULE(ADV.multifeedDetect = {2, 1, 0})},
    {"multi-feed level without detection", 0x0507, with(2, {{0, 2}}), 1, 1, nothing},
    {"background mono", 0x0508, zeroes(6), 0, 1, RULE(ADV.backgroundRemove.blackAndWhite = level(v))},
    {"background diffused", 0x0508, zeroes(6), 1, 1, RULE(ADV.backgroundRemove.errorDiffusion = level(v))},
    {"background grey", 0x0508, zeroes(6), 2, 1, RULE(ADV.backgroundRemove.trueGray = level(v))},
    {"kept 0508", 0x0508, zeroes(6), 3, 1, nothing},
    {"background 24 bit", 0x0508, zeroes(6), 4, 1, RULE(ADV.backgroundRemove.color24bit = level(v))},
    {"kept 0508", 0x0508, zeroes(6), 5, 1, nothing},
    {"bleed-through mono", 0x0509, zeroes(6), 0, 1, RULE(ADV.breedthroughRemove.blackAndWhite = level(v))},
    {"bleed-through diffused", 0x0509, zeroes(6), 1, 1, RULE(ADV.breedthroughRemove.errorDiffusion = level(v))},
    {"bleed-through grey", 0x0509, zeroes(6), 2, 1, RULE(ADV.breedthroughRemove.trueGray = level(v))},
    {"kept 0509", 0x0509, zeroes(6), 3, 1, nothing},
    {"bleed-through 24 bit", 0x0509, zeroes(6), 4, 1, RULE(ADV.breedthroughRemove.color24bit = level(v))},
    {"kept 0509", 0x0509, zeroes(6), 5, 1, nothing},
    {"document size", 0x050A, zeroes(2), 0, 1,
     RULE(ADV.autoSize.deviceDetectSize.cap = twoIf(v != 0);
          ADV.autoSize.deviceDetectSize.supportPaperSource = sourceBits(v))},
    {"document size options", 0x050A, with(2, {{0, 1}}), 1, 1,
     RULE(ADV.autoSize.deviceDetectSize = {2, {1, 0, 0, 0}, bit(v, 0), bit(v, 1)})},
    {"document size options alone", 0x050A, zeroes(2), 1, 1, nothing},
    {"deskew", 0x050B, zeroes(2), 0, 1,
     RULE(ADV.deskew.cap = twoIf(v != 0); ADV.deskew.suportPaperSource = sourceBits(v))},
    {"deskew options", 0x050B, with(2, {{0, 8}}), 1, 1,
     RULE(ADV.deskew = {2, {0, 0, 0, 1}, {bit(v, 0), bit(v, 1), 0, 0}})},
    {"deskew options alone", 0x050B, zeroes(2), 1, 1, nothing},
    {"blank pages", 0x050C, with(2, {{1, 9}}), 0, 1,
     RULE(ADV.blankRemoval.cap = twoIf(v != 0); if (bit(v, 0)) ADV.blankRemoval.systemType = bit(v, 1);
          if (bit(v, 0)) ADV.blankRemoval.levelCap = bit(v, 2) + 1; if ((v & 5) == 5) ADV.blankRemoval.levelMax = 8)},
    {"blank page level", 0x050C, with(2, {{0, 5}}), 1, 1, RULE(ADV.blankRemoval = {2, 0, 2, 0, v - 1, 0, 0})},
    {"blank page level that cannot be set", 0x050C, with(2, {{0, 1}}), 1, 1,
     RULE(ADV.blankRemoval = {2, 0, 1, 0, 0, 0, 0})},
    {"blank page level without detection", 0x050C, with(2, {{0, 4}}), 1, 1, RULE(ADV.blankRemoval.cap = 2)},
    {"automatic colour", 0x050D, with(4, {{1, 3}, {2, 4}}), 0, 1,
     RULE(if (bit(v, 0))(ADV.autoColor = {2, 2, 0, 0, 3, 0, 0}))},
    {"automatic colour first range", 0x050D, with(4, {{0, 1}}), 1, 1,
     RULE(ADV.autoColor = {2, v >= 2 ? v - 1 : 0, 0, 0, 0, 0, 0})},
    {"automatic colour second range", 0x050D, with(4, {{0, 1}}), 2, 1,
     RULE(ADV.autoColor = {2, 0, 0, 0, v >= 2 ? v - 1 : 0, 0, 0})},
    {"kept 050D", 0x050D, zeroes(4), 3, 1, nothing},
    {"resolution", 0x050E, zeroes(2), 0, 1, RULE(ADV.detectResolution = twoIf(v == 1))},
    {"kept 050E", 0x050E, zeroes(2), 1, 1, nothing},
    {"quiet", 0x050F, zeroes(10), 0, 1, RULE(ADV.quietScan.cap = twoIf(v == 1))},
    {"kept 050F", 0x050F, zeroes(10), 1, 1, nothing},
    {"quiet second a", 0x050F, with(10, {{4, 0x80}}), 2, 2, RULE(ADV.quietScan.levelAlt = std::min(v, 0x80))},
    {"quiet second b", 0x050F, with(10, {{2, 0x80}}), 4, 2, RULE(ADV.quietScan.levelAlt = std::min(v, 0x80))},
    {"quiet first a", 0x050F, with(10, {{8, 0x80}}), 6, 2, RULE(ADV.quietScan.level = std::min(v, 0x80))},
    {"quiet first b", 0x050F, with(10, {{6, 0x80}}), 8, 2, RULE(ADV.quietScan.level = std::min(v, 0x80))},
};

const int kWords[] = {0,    1,    2,     3,     4,     5,     0x0F,   0x10,   0x20,   0x40,   0x7F,   0x80,
                      0x81, 0xFF, 0x100, 0x101, 0x1FF, 0x200, 0x7FFF, 0x8000, 0x8001, 0xFF00, 0xFFFE, 0xFFFF};

void expectRow(const FieldRow& row, int v, const Sources& s) {
  BodyBytes value = row.value;
  value[row.offset] = static_cast<unsigned char>(v);
  if (row.width == 2) value[row.offset + 1] = static_cast<unsigned char>(v >> 8);
  Capability wanted = deviceWith(s);
  row.rule(wanted, v, s);
  SCOPED_TRACE(std::string(row.name) + " = " + std::to_string(v) + ", sources " + std::to_string(s.paperSource) +
               ", duplex " + std::to_string(s.duplex));
  expectSame(parse(bodyWith(s).tag(row.tag, value).end().bytes), wanted);
}

void expectRows(const std::vector<FieldRow>& rows) {
  for (const FieldRow& row : rows) {
    for (int paperSource = 0; paperSource < 8; ++paperSource) {
      for (const int duplex : {0, 1}) {
        for (const int v : kWords) {
          if (row.width == 2 || v < 256) expectRow(row, v, {paperSource, duplex});
        }
      }
    }
    for (int v = 0; v < 256; ++v) expectRow(row, v, {7, 1});
  }
}

}  // namespace

TEST(qdi_capability_rows, Identity) { expectRows(kIdentity); }
TEST(qdi_capability_rows, BasicFunctions) { expectRows(kBasic); }
TEST(qdi_capability_rows, ImageProcessing) { expectRows(kImageProcessing); }
TEST(qdi_capability_rows, AdvancedFunctions) { expectRows(kAdvanced); }

// Sixteen signed words: left, right, top, bottom of flatbed, feeder one-sided, feeder two-sided, card slot.
TEST(qdi_capability_rows, EveryMargin) {
  for (const Sources s : {Sources{0, 0}, Sources{1, 0}, Sources{2, 0}, Sources{4, 0}, Sources{0, 1}, Sources{7, 1}}) {
    for (std::size_t word = 0; word < 16; ++word) {
      for (const int v : kWords) {
        BodyBytes value(32);
        value[2 * word] = static_cast<unsigned char>(v);
        value[2 * word + 1] = static_cast<unsigned char>(v >> 8);
        Capability wanted = deviceWith(s);
        auto& b = wanted.baseFunc;
        const bool present[] = {s.flatbed(), s.adf(), s.twoSides(), s.card()};
        MARGIN* const margins[] = {&b.marginSize.flatbed, &b.marginSize.adfSimplex, &b.marginSize.adfDuplex,
                                   &b.marginSize.cardslot};
        AXIS* const documents[] = {&b.supportDocSizeMax.flatbed, &b.supportDocSizeMax.simplex,
                                   &b.supportDocSizeMax.duplex, nullptr};
        const std::size_t source = word / 4, side = word % 4;
        if (present[source]) {
          MARGIN& m = *margins[source];
          std::int32_t* const sides[] = {&m.left, &m.right, &m.top, &m.bottom};
          *sides[side] = -10 * asSigned(v);
          if (documents[source] != nullptr) {
            (side < 2 ? documents[source]->x : documents[source]->y) += static_cast<std::uint32_t>(-10 * asSigned(v));
          }
        }
        SCOPED_TRACE(std::to_string(word) + " = " + std::to_string(v));
        expectSame(parse(bodyWith(s).tag(0x0309, value).end().bytes), wanted);
      }
    }
  }
}

// Thirty-two signed words: for each source left, right, top, bottom, each plus and then minus.
TEST(qdi_capability_rows, EveryMarginAdjustment) {
  for (const Sources s : {Sources{0, 0}, Sources{1, 0}, Sources{2, 0}, Sources{4, 0}, Sources{0, 1}, Sources{7, 1}}) {
    for (std::size_t word = 0; word < 32; ++word) {
      for (const int v : kWords) {
        BodyBytes value(64);
        value[2 * word] = static_cast<unsigned char>(v);
        value[2 * word + 1] = static_cast<unsigned char>(v >> 8);
        Capability wanted = deviceWith(s);
        auto& a = wanted.baseFunc.marginAdjust;
        const bool present[] = {s.flatbed(), s.adf(), s.twoSides(), s.card()};
        MARGIN* const plus[] = {&a.flatbed_plus, &a.adfSimplex_plus, &a.adfDuplex_plus, &a.cardslot_plus};
        MARGIN* const minus[] = {&a.flatbed_minus, &a.adfSimplex_minus, &a.adfDuplex_minus, &a.cardslot_minus};
        const std::size_t source = word / 8, side = word % 8 / 2;
        if (present[source]) {
          MARGIN& m = *(word % 2 == 0 ? plus : minus)[source];
          std::int32_t* const sides[] = {&m.left, &m.right, &m.top, &m.bottom};
          *sides[side] = -10 * asSigned(v);
        }
        SCOPED_TRACE(std::to_string(word) + " = " + std::to_string(v));
        expectSame(parse(bodyWith(s).tag(0x030A, value).end().bytes), wanted);
      }
    }
  }
}
