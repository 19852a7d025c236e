#include "parse/ParseCmdRes_v2.h"

#include "foundation/trace.h"
#include "parse/tag_walk.h"

namespace orvalle_scan_api {
namespace {

constexpr TagRow kSspTags[] = {
    {0x2001, 2, offsetof(_SSPCMDRESPONSE, paperSource)},
    {0x2002, 4, offsetof(_SSPCMDRESPONSE, resolutionX)},
    {0x2003, 8, offsetof(_SSPCMDRESPONSE, pixelWidth)},
};

}  // namespace

QS_SCANNER_CAPABILITY CParseCmdRes_v2::ParseDeviceInfoResponse(unsigned char* data, long size) {
  Trace trace("ParseDeviceInfoResponse");
  if (data == nullptr) return {};
  const _QDICMDRESPONSE response = GetQDIcommandResponse(data, size);
  return qdiResponseComplete ? GetParseDeviceInfoResponse(&response) : QS_SCANNER_CAPABILITY{};
}

tagQS_PUSHSCAN_PARAMETERS CParseCmdRes_v2::ParseDeviceKeyInfoResponse(unsigned char* data, long size) {
  Trace trace("ParseDeviceKeyInfoResponse");
  if (data == nullptr) return {};
  const _GKPCMDRESPONSE response = GetGKPcommandResponse(data, size);
  return gkpResponseComplete ? GetParseScanKeyInfoResponse(&response) : tagQS_PUSHSCAN_PARAMETERS{};
}

PALETTE CParseCmdRes_v2::ParseColorPaletteResponse(unsigned char*, long) {
  Trace trace("ParseColorPaletteResponse");
  return {};
}

DETECTEDPAPER CParseCmdRes_v2::ParsePaperSizeDetectFrom2Vertex(unsigned char*, long, QS_SCANNER_CAPABILITY,
                                                               ACTUALSCANPARAM, UNITTYPE) {
  Trace trace("ParsePaperSizeDetectFrom2Vertex");
  return {};
}

ACTUALSCANPARAM CParseCmdRes_v2::ParseActualParameterResponse(unsigned char* data, long size) {
  Trace trace("ParseActualParameterResponse");
  if (data == nullptr) return {};
  const _SSPCMDRESPONSE response = GetSSPcommandResponse(data, size);
  return sspResponseComplete ? GetParseActualParameterResponse(&response) : ACTUALSCANPARAM{};
}

_SSPCMDRESPONSE CParseCmdRes_v2::GetSSPcommandResponse(unsigned char* data, long size) {
  _SSPCMDRESPONSE response{};
  walkTags(data, size, "SSP", sspResponseComplete,
           [&response](std::uint16_t tag, const TagValue& value) { return storeTag(kSspTags, tag, value, &response); });
  return response;
}

ACTUALSCANPARAM CParseCmdRes_v2::GetParseActualParameterResponse(const _SSPCMDRESPONSE* response) const {
  ACTUALSCANPARAM actual{};
  if (response == nullptr) return actual;
  actual.paperSource = GetPaperSourceSelect(response);
  actual.resolution = {response->resolutionX, response->resolutionY};
  actual.maxSizePixel = {response->pixelWidth, response->pixelHeight};
  return actual;
}

PAPERSOURCESELECT CParseCmdRes_v2::GetPaperSourceSelect(const _SSPCMDRESPONSE* response) const {
  // The device counts feeder 1 and bed 2, the record the other way round.
  switch (response == nullptr ? 0 : response->paperSource) {
    case 1:
      return PAPERSOURCE_ADF;
    case 2:
      return PAPERSOURCE_FLATBED;
    default:
      return PAPERSOURCE_CARDSLOT;
  }
}

ICCPROFIE CParseCmdRes_v2::ParsePDFaColorProfileResponse(unsigned char* data, long size) {
  Trace trace("ParsePDFaColorProfileResponse");
  if (data == nullptr) return {};
  const _GCPCMDRESPONSE response = GetGCPcommandResponse(data, size);
  return gcpResponseComplete ? GetParseColorProfileResponse(&response) : ICCPROFIE{};
}

_GCPCMDRESPONSE CParseCmdRes_v2::GetGCPcommandResponse(unsigned char* data, long size) {
  _GCPCMDRESPONSE response{};
  walkTags(data, size, "GCP", gcpResponseComplete,
           [&response](std::uint16_t tag, const TagValue& value) -> std::optional<std::size_t> {
             const auto bytes = static_cast<std::int32_t>(value.bytesPresent());
             switch (tag) {
               case 0x3101:
                 response.colorProfile = value.bytes();
                 response.colorProfileSize = bytes;
                 return 0;
               case 0x3102:
                 response.grayProfile = value.bytes();
                 response.grayProfileSize = bytes;
                 return 0;
               default:
                 return std::nullopt;
             }
           });
  return response;
}

ICCPROFIE CParseCmdRes_v2::GetParseColorProfileResponse(const _GCPCMDRESPONSE* response) const {
  return response == nullptr ? ICCPROFIE{} : *response;
}

}  // namespace orvalle_scan_api
