// A GKP body, the settings that a user chose on the device's panel, and what becomes of them in the push-scan record.
#include <algorithm>
#include <cstddef>

#include "parse/ParseCmdRes_v2.h"
#include "parse/tag_walk.h"

namespace orvalle_scan_api {
namespace {

using Response = _GKPCMDRESPONSE;

#define GKP_ROW(tag, readBytes, field, flag) \
  { tag, readBytes, offsetof(Response, field), offsetof(Response, flag) }
constexpr TagRow kTags[] = {
    {0x1001, 2, offsetof(Response, scanEvent)},    GKP_ROW(0x1002, 10, resolutionX, hasScanSettings),
    GKP_ROW(0x1003, 2, duplex, hasDuplex),         GKP_ROW(0x1004, 8, autoCrop, hasImageSettings),
    GKP_ROW(0x1005, 4, fileType, hasFileSettings), GKP_ROW(0x1006, 4, kept1006, hasExtra),
};
#undef GKP_ROW

// An item of this value was not given.
constexpr std::uint8_t kNotGiven = 0xFF;
constexpr std::uint16_t kResolutionNotGiven = 0xFFFF;

struct CodeRow {
  std::uint8_t wire;
  std::int32_t value;
};

template <std::size_t N>
std::int32_t valueOf(const CodeRow (&rows)[N], std::uint8_t wire, std::int32_t otherwise) {
  for (const CodeRow& row : rows) {
    if (row.wire == wire) return row.value;
  }
  return otherwise;
}

PUSHSCAN_VALUE GetChangedValue(unsigned char b) { return b == kNotGiven ? PUSHSCAN_VALUE{} : PUSHSCAN_VALUE{true, b}; }

// Kept: any other value is off and given. It looks as if only 0 should be; the device means "not on" by all of them.
// Pinned by gkp_push_scan_test "EveryByteOfASwitch".
PUSHSCAN_STATE GetChangedState(unsigned char b) {
  return b == kNotGiven ? PUSHSCAN_STATE{} : PUSHSCAN_STATE{true, b == 1};
}

PUSHSCAN_VALUE GetScanEventType(const Response& r) {
  if (r.scanEvent < 1 || r.scanEvent > 4) return {};
  return {true, r.scanEvent - 1};
}

PUSHSCAN_RESOLUTION GetScanResolution(const Response& r) {
  PUSHSCAN_RESOLUTION resolution{};
  const auto set = [](std::uint16_t word, bool& valid, bool& isAuto, std::uint32_t& dpi) {
    valid = word != kResolutionNotGiven;
    isAuto = word == 0;
    if (valid) dpi = word;
  };
  set(r.resolutionX, resolution.xValid, resolution.xAuto, resolution.x);
  set(r.resolutionY, resolution.yValid, resolution.yAuto, resolution.y);
  return resolution;
}

PUSHSCAN_VALUE GetColorType(unsigned char b) {
  if (b == kNotGiven) return {};
  return {true, std::min<std::int32_t>(b, COLORTYPE_COLOR24BIT)};
}

// Kept: a code that nobody knows is A4, and 0x73 is the automatic size amid the long papers. Pinned by
// gkp_push_scan_test "EveryPaperCode".
PUSHSCAN_VALUE GetPaperType(unsigned char b) {
  static constexpr CodeRow kPapers[] = {
      {0x00, 0},  {0x11, 4},  {0x13, 8},  {0x14, 10}, {0x21, 5},  {0x22, 3},  {0x23, 20}, {0x24, 2},
      {0x25, 11}, {0x26, 21}, {0x27, 22}, {0x31, 6},  {0x32, 7},  {0x33, 9},  {0x41, 18}, {0x51, 13},
      {0x52, 15}, {0x53, 12}, {0x54, 14}, {0x61, 16}, {0x62, 17}, {0x71, 23}, {0x72, 24}, {0x73, 0},
  };
  if (b == kNotGiven) return {};
  return {true, valueOf(kPapers, b, PAPERTYPE_A4)};
}

// Kept: landscape comes with another tag than direction; without that tag it is 0 and counts as given. Asking for the
// tag would take the direction from devices that send it alone. Pinned by gkp_push_scan_test
// "TheDirectionIsGivenAlsoWithoutTheImageSettings".
PUSHSCAN_ORIENT GetDocumentDirection(const Response& r) {
  constexpr std::int32_t kQuarterTurn = 90;
  return {r.direction != kNotGiven || r.landscape != kNotGiven, r.landscape == 1, r.direction == 1 ? kQuarterTurn : 0};
}

PUSHSCAN_VALUE GetDuplexInfo(const Response& r) {
  const std::int32_t binding = r.duplexBinding == 1   ? DUPLEXTYPE_LONG_EDGE
                               : r.duplexBinding == 2 ? DUPLEXTYPE_SHORT_EDGE
                                                      : 0;
  switch (r.duplex) {
    case 1:
      return {true, binding};
    // Kept: a two-sidedness that was not given is still valid where its binding was. Pinned by gkp_push_scan_test
    // "EveryPairOfDuplexBytes".
    case kNotGiven:
      return {r.duplexBinding != kNotGiven, 0};
    default:
      return {true, 0};
  }
}

PUSHSCAN_REMOVEBACKGROUND GetGroundRemoval(const Response& r) {
  switch (r.groundRemoval) {
    case kNotGiven:
      return {};
    case 1:
      return {true, true, true, r.groundLevel};
    default:
      return {true, false, false, 0};
  }
}

PUSHSCAN_FILETYPE GetFileSaveInfo(const Response& r) {
  static constexpr CodeRow kFormats[] = {{0x21, 1}, {0x22, 3}, {0x24, 8}, {0x11, 2}, {0x12, 2}, {0x01, 4},
                                         {0x02, 5}, {0x03, 6}, {0x04, 7}, {'A', 9},  {'C', 10}, {'B', 11}};
  constexpr std::uint8_t kFineFile = 0x11, kPlainFile = 0x12;  // one format in two qualities
  constexpr std::uint8_t kQualityWithArgument = 4;
  PUSHSCAN_FILETYPE file{};
  if (r.compress != kNotGiven) {
    file.compressValid = true;
    file.compress = r.compress == 1 ? 50 : 0;
  }
  if (r.quality != kNotGiven) {
    file.qualityValid = true;
    file.quality = r.quality <= kQualityWithArgument ? r.quality : 0;
    if (r.quality == kQualityWithArgument) file.qualityArg = r.qualityArg;
  }
  if (r.fileType != kNotGiven) {
    file.valid = true;
    file.format = valueOf(kFormats, r.fileType, 0);
    // The file type's own quality wins over the byte above.
    if (r.fileType == kFineFile) file.quality = 1;
    if (r.fileType == kPlainFile) file.quality = 0;
  }
  return file;
}

}  // namespace

_GKPCMDRESPONSE CParseCmdRes_v2::GetGKPcommandResponse(unsigned char* data, long size) {
  _GKPCMDRESPONSE response{};
  walkTags(data, size, "GKP", gkpResponseComplete,
           [&response](std::uint16_t tag, const TagValue& value) { return storeTag(kTags, tag, value, &response); });
  return response;
}

tagQS_PUSHSCAN_PARAMETERS CParseCmdRes_v2::GetParseScanKeyInfoResponse(const _GKPCMDRESPONSE* response) const {
  tagQS_PUSHSCAN_PARAMETERS push{};
  if (response == nullptr) return push;
  const _GKPCMDRESPONSE& r = *response;
  push.event = GetScanEventType(r);
  if (r.hasScanSettings) {
    push.resolution = GetScanResolution(r);
    push.colorType = GetColorType(r.colorType);
    push.paperType = GetPaperType(r.paperType);
    push.orient = GetDocumentDirection(r);
    push.brightness = GetChangedValue(r.brightness);
    push.contrast = GetChangedValue(r.contrast);
  }
  if (r.hasDuplex) push.duplex = GetDuplexInfo(r);
  if (r.hasImageSettings) {
    push.autoCrop = GetChangedState(r.autoCrop);
    push.deskew = GetChangedState(r.deskew);
    push.blankPageRemove = GetChangedState(r.blankPageRemove);
    push.removeBleedThrough = GetChangedState(r.bleedThrough);
    push.removeBackground = GetGroundRemoval(r);
  }
  if (r.hasFileSettings) push.fileType = GetFileSaveInfo(r);
  return push;
}

}  // namespace orvalle_scan_api
