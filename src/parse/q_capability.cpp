// A Q block becomes the capability record: what the device is, its sources, sizes and picture functions. The block says
// little, and what it does not say is what first-generation devices are known to do.
#include "foundation/trace.h"
#include "parse/ParseCmdRes_v1.h"
#include "settings/ConvertUnit.h"

namespace orvalle_scan_api {
namespace {

constexpr CAP kMissing = 1;
constexpr CAP kPresent = 2;

// 1/100 mm.
constexpr std::uint32_t kDefaultFlatbedLength = 29700;
constexpr std::uint32_t kDefaultFeederLength = 35560;
constexpr std::int32_t kLongPaperLength = 86300;
constexpr std::uint32_t kCardLongSide = 9000;
constexpr std::uint32_t kCardShortSide = 6000;

FLAG bit(int value, int number) { return (value >> number & 1) != 0 ? FLAG{1} : FLAG{0}; }
CAP capIf(bool present) { return present ? kPresent : kMissing; }

std::uint32_t conv(std::uint32_t deviceMillimeter) {
  return CConvertUnit().ConvDeviceMillimeterToDriverMillimeter(deviceMillimeter);
}
std::uint32_t convOr(std::uint16_t word, std::uint32_t otherwise) { return word == 0 ? otherwise : conv(word); }

// The shorter side of what fits into the feeder, to be held against a business card. 1/100 mm.
// Devices of this generation give this one size in tenths of a millimetre or in hundredths; no feeder's smallest paper
// measures 300 mm, so that a word from there on is in hundredths.
std::uint32_t cardSide(std::uint16_t word) {
  constexpr std::uint16_t kNoTenths = 3000;
  return word >= kNoTenths ? word : convOr(word, 1);
}

}  // namespace

QS_SCANNER_CAPABILITY CParseCmdRes_v1::ParseDeviceInfoResponse(unsigned char* data, long size) {
  Trace trace("ParseDeviceInfoResponse");
  const QCMDRESPONSE r = GetQcmdResponse(data, size);
  QS_SCANNER_CAPABILITY capability{};
  capability.commandVersion = r.version;
  capability.modelInfo.category = 1;

  auto& push = capability.func.pushScan;
  push.supportPushScanEvent = {1, 1, 1, 1};
  push.continuousScan.cap = kMissing;
  push.paramSetting.cap = kPresent;

  auto& base = capability.baseFunc;
  base.resolutionOptical = GetOpticalResolution(r);
  base.colorType = GetColorType(r);
  base.paperSource = GetPaperSource(r);
  base.deviceScanSizeMax = GetDeviceScanSizeMax(r);
  base.deviceScanSizeMin = GetDeviceScanSizeMin(r);
  base.longPaperLengthMax = GetLongPaperLength(r);
  base.marginSize = GetMarginSize(r);
  base.paperPosition = GetPaperPosition(r);
  base.cardSizeOrient = GetCardScanOrient(r);

  auto& image = capability.imageProcFunc;
  image.supportCompresssionType = GetSupportCompressType(r);
  image.monoThreshold = GetSupportMonoThresholdFunc(r);
  image.specialDocumentImageProcs = GetSpecialDocumentImageProc(r);
  image.colorProfileOutput = GetColorProfileOutputInfo(r);

  auto& advanced = capability.advancedFunc;
  advanced.autoSize = GetDetectDocumentMode(r);
  advanced.idCardMode = GetIdCardMode(r);
  advanced.landscape = GetLandscapeOrientationMode(r);
  advanced.carrierSheet = GetCarrierSheetMode(r);
  advanced.plasticCard = GetPlasticCardMode(r);
  advanced.multifeedDetect = GetMultiFeedMode(r);
  advanced.backgroundRemove = GetRemoveBackgroundMode(r);
  advanced.deskew = GetDeskewMode(r);
  advanced.blankRemoval = GetBlankPageRemoveMode(r);
  advanced.autoColor = GetAutoColorMode(r);
  advanced.detectResolution = GetDetectResolutionMode(r);
  return capability;
}

// --- the sources

CAP CParseCmdRes_v1::IsFbScanSupported(QCMDRESPONSE r) const {
  if (r.hasFlatbed()) return kPresent;
  return r.hasFeeder() ? kMissing : 0;
}
CAP CParseCmdRes_v1::IsAdfSimplexScanSupported(QCMDRESPONSE r) const {
  if (r.hasFeeder()) return kPresent;
  return r.hasFlatbed() ? kMissing : 0;
}
CAP CParseCmdRes_v1::IsAdfDuplexScanSupported(QCMDRESPONSE r) const {
  if (r.scansBothSides()) return kPresent;
  return r.hasFlatbed() ? kMissing : 0;
}
CAP CParseCmdRes_v1::IsCardSlotScanSupported(QCMDRESPONSE r) const {
  return capIf(r.cardPositionX != 0 || r.cardPositionY != 0);
}

OPTICALRESOLUTIONS CParseCmdRes_v1::GetOpticalResolution(QCMDRESPONSE r) const {
  OPTICALRESOLUTIONS resolution{};
  if (r.hasFlatbed()) resolution.flatbed = {r.flatbedOpticalX, r.flatbedOpticalY};
  if (r.hasFeeder()) resolution.adfSimplex = {r.adfOpticalX, r.adfOpticalY};
  if (r.scansBothSides()) resolution.adfDuplex = {r.duplexOpticalX, r.duplexOpticalY};
  return resolution;
}

PAPERSOURCESUPPORT CParseCmdRes_v1::GetPaperSource(QCMDRESPONSE r) const {
  PAPERSOURCESUPPORT source{};
  source.supportPaperSource = {r.hasFlatbed(), r.hasFeeder(), r.scansBothSides(), 0};
  source.duplexScanSystem = r.scansBothSides() ? 1 : 0;
  source.adfStackCapacity = r.hasFeeder() ? r.adfStackCapacity : 0;
  return source;
}

DEVICESCANSIZES CParseCmdRes_v1::GetDeviceScanSizeMax(QCMDRESPONSE r) const {
  DEVICESCANSIZES sizes{};
  if (r.hasFlatbed()) sizes.flatbed = {conv(r.flatbedMaxX), convOr(r.flatbedMaxY, kDefaultFlatbedLength)};
  if (r.hasFeeder()) sizes.simplex = {conv(r.adfMaxX), convOr(r.adfMaxY, kDefaultFeederLength)};
  if (r.scansBothSides()) sizes.duplex = {conv(r.duplexMaxX), convOr(r.duplexMaxY, kDefaultFeederLength)};
  sizes.unit = UNIT_MILLIMETER;
  return sizes;
}

DEVICESCANSIZES CParseCmdRes_v1::GetDeviceScanSizeMin(QCMDRESPONSE r) const {
  DEVICESCANSIZES sizes{};
  if (r.hasFlatbed()) sizes.flatbed = {1, 1};
  if (r.hasFeeder()) sizes.simplex = {convOr(r.adfMinX, 1), convOr(r.adfMinY, 1)};
  if (r.scansBothSides()) sizes.duplex = {convOr(r.duplexMinX, 1), convOr(r.duplexMinY, 1)};
  sizes.unit = UNIT_MILLIMETER;
  return sizes;
}

LONGPAPERSUPPORTSIZE CParseCmdRes_v1::GetLongPaperLength(QCMDRESPONSE r) const {
  if (r.longPaper == 1) return {kPresent, kLongPaperLength, 0, UNIT_MILLIMETER};
  return {capIf(r.longPaper != 0), 0, 0, UNIT_INCH};
}

AXIS CParseCmdRes_v1::GetMarginSizeMmOfFlatbed(QCMDRESPONSE r) const {
  return r.hasFlatbed() ? AXIS{conv(r.marginX), conv(r.marginY)} : AXIS{};
}
AXIS CParseCmdRes_v1::GetMarginSizeMmOfAdfSimplex(QCMDRESPONSE r) const {
  return r.hasFeeder() ? AXIS{conv(r.marginX), conv(r.marginY)} : AXIS{};
}
AXIS CParseCmdRes_v1::GetMarginSizeMmOfAdfDuplex(QCMDRESPONSE r) const {
  return r.scansBothSides() ? AXIS{conv(r.marginX), conv(r.marginY)} : AXIS{};
}

// Kept: the margins are positive, while a second-generation device's are negated; and the card slot has neither margin
// nor unit. Whoever takes them off a size knows the generation. Pinned by q_capability_test
// "MarginsArePositiveAndTheSameForEverySource".
decltype(DEVINFO_BASEFUNC::marginSize) CParseCmdRes_v1::GetMarginSize(QCMDRESPONSE r) const {
  const auto margin = [](AXIS size) {
    const auto x = static_cast<std::int32_t>(size.x);
    const auto y = static_cast<std::int32_t>(size.y);
    return MARGIN{x, x, y, y, UNIT_MILLIMETER};
  };
  return {margin(GetMarginSizeMmOfFlatbed(r)),
          margin(GetMarginSizeMmOfAdfSimplex(r)),
          margin(GetMarginSizeMmOfAdfDuplex(r)),
          {}};
}

std::int32_t CParseCmdRes_v1::GetPositionX(unsigned char position) const {
  return position == 2 ? 1 : position == 3 ? 2 : 0;
}
std::int32_t CParseCmdRes_v1::GetPositionY(unsigned char position) const {
  return position == 2 ? 1 : position == 3 ? 4 : 3;
}

PAPERSETTINGPOSITIONS CParseCmdRes_v1::GetPaperPosition(QCMDRESPONSE r) const {
  PAPERSETTINGPOSITIONS position{};
  if (r.hasFlatbed()) {
    position.flatbedX = GetPositionX(r.flatbedPositionX);
    position.flatbedY = GetPositionY(r.flatbedPositionY);
  }
  if (r.hasFeeder()) {
    position.adfX = GetPositionX(r.adfPositionX);
    position.adfY = GetPositionY(r.adfPositionY);
  }
  // Kept: the card's position hangs on two-sided feeding. It looks like the wrong test; a device that feeds one side
  // alone reports bytes here that are not meant. Pinned by q_capability_test
  // "TheCardPositionHangsOnTwoSidedFeeding".
  if (r.scansBothSides()) {
    position.cardslotX = GetPositionX(r.cardPositionX);
    position.cardslotY = GetPositionY(r.cardPositionY);
  }
  return position;
}

// Kept: the flatbed takes cards also where the device has none. Nobody asks then; a test added here would only make the
// two halves differ from what clients have seen. Pinned by q_capability_test "CardsLieOnAFlatbedThatIsNotThere".
CARDSIZEORIENT CParseCmdRes_v1::GetCardScanOrient(QCMDRESPONSE r) const {
  CARDSIZEORIENT card{kPresent, 2, 0, 0};
  if (!r.hasFeeder()) return card;
  const std::uint32_t x = cardSide(r.adfMinX);
  const std::uint32_t y = cardSide(r.adfMinY);
  card.capAdf = kMissing;
  if (x <= kCardLongSide && y <= kCardShortSide) {
    card.capAdf = kPresent;
    card.orientAdf = 2;
  } else if (x <= kCardShortSide && y <= kCardLongSide) {
    card.capAdf = kPresent;
    card.orientAdf = 1;
  }
  return card;
}

// --- the picture

SUPPORTCOLORTYPES CParseCmdRes_v1::GetColorType(QCMDRESPONSE r) const {
  const int mask = r.colorType;
  return {bit(mask, 0), bit(mask, 1), bit(mask, 2), bit(mask, 3), bit(mask, 4), 0, 0};
}

decltype(DEVINFO_IMAGEPROCFUNC::supportCompresssionType) CParseCmdRes_v1::GetSupportCompressType(QCMDRESPONSE) const {
  constexpr COMPRESSSUPPORT kRunLength{1, 1, 0, 0};
  decltype(DEVINFO_IMAGEPROCFUNC::supportCompresssionType) compression{};
  compression.blackAndWhite = kRunLength;
  compression.errorDiffusion = kRunLength;
  compression.trueGray = kRunLength;
  compression.color256 = {1, 0, 0, 0};
  compression.color24bit = {0, 0, 0, 1};
  return compression;
}

MONOTHRESHOLDSUPPORT CParseCmdRes_v1::GetSupportMonoThresholdFunc(QCMDRESPONSE) const {
  return {kPresent, 0, kMissing, 0, 0, 0};
}

decltype(DEVINFO_IMAGEPROCFUNC::specialDocumentImageProcs) CParseCmdRes_v1::GetSpecialDocumentImageProc(
    QCMDRESPONSE) const {
  return {};
}

CAP CParseCmdRes_v1::GetColorProfileOutputInfo(QCMDRESPONSE) const { return kMissing; }

}  // namespace orvalle_scan_api
