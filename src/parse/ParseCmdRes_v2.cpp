#include "parse/ParseCmdRes_v2.h"

#include "foundation/trace.h"
#include "parse/qdi_capability.h"
#include "parse/tag_walk.h"

namespace orvalle_scan_api {

QS_SCANNER_CAPABILITY CParseCmdRes_v2::ParseDeviceInfoResponse(unsigned char* data, long size) {
  Trace trace("ParseDeviceInfoResponse");
  if (data == nullptr) return {};
  const _QDICMDRESPONSE response = GetQDIcommandResponse(data, size);
  return qdiResponseComplete ? capabilityOf(response) : QS_SCANNER_CAPABILITY{};
}

tagQS_PUSHSCAN_PARAMETERS CParseCmdRes_v2::ParseDeviceKeyInfoResponse(unsigned char*, long) {
  Trace trace("ParseDeviceKeyInfoResponse");
  return {};
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
           [&response](std::uint16_t tag, const TagValue& value) -> std::optional<std::size_t> {
             switch (tag) {
               case 0x2001:
                 response.paperSource = value.u8(0);
                 response.kept2001 = value.u8(1);
                 return 2;
               case 0x2002:
                 response.resolutionX = value.u16(0);
                 response.resolutionY = value.u16(2);
                 return 4;
               case 0x2003:
                 response.pixelWidth = value.u32(0);
                 response.pixelHeight = value.u32(4);
                 return 8;
               default:
                 return std::nullopt;
             }
           });
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
