#include "parse/ParseScanCmd.h"

#include "foundation/trace.h"

namespace orvalle_scan_api {
namespace {
// At this command version a business card lies upright in the device.
constexpr std::uint16_t kVerticalCardVersion = 0x0102;
}  // namespace

IParseCmdRes* CParseScanCmd::GetParseCmdRes(SCANCMD_GENERATION generation) {
  switch (generation) {
    case SCANCMD_GENERATION_1ST:
      return &v1_;
    case SCANCMD_GENERATION_2ND:
      return &v2_;
    default:
      return nullptr;
  }
}

std::uint32_t CParseScanCmd::GetProtocolVersion(_SCANCMD_DEVICECAP_INFO* info) {
  g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>>", "GetProtocolVersion");
  const auto version = info == nullptr ? 0U : static_cast<std::uint32_t>(info->generation);
  g_ScanDevApiLog.WriteLog(1, "<<<<< %s <<<<< Command Version = 0X%04X", "GetProtocolVersion", version);
  return version;
}

QS_SCANNER_CAPABILITY CParseScanCmd::ParseDeviceInfoData(_SCANCMD_DEVICECAP_INFO* info) {
  Trace trace("ParseDeviceInfoData");
  QS_SCANNER_CAPABILITY capability{};
  if (info == nullptr) return capability;
  if (IParseCmdRes* parser = GetParseCmdRes(info->generation); parser != nullptr) {
    capability = parser->ParseDeviceInfoResponse(info->data, info->size);
  }
  capability.generation = info->generation;
  return capability;
}

tagQS_PUSHSCAN_PARAMETERS CParseScanCmd::ParseDeviceKeyInfoData(_SCANCMD_RESPONSE_INFO* response,
                                                                QS_SCANNER_CAPABILITY capability) {
  Trace trace("ParseDeviceKeyInfoData");
  tagQS_PUSHSCAN_PARAMETERS keys{};
  IParseCmdRes* parser = GetParseCmdRes(capability.generation);
  if (response == nullptr || parser == nullptr || response->data == nullptr) return keys;
  keys = parser->ParseDeviceKeyInfoResponse(response->data, response->size);
  if (capability.commandVersion == kVerticalCardVersion && keys.paperType.value == PAPERTYPE_BCARD) {
    keys.paperType.value = PAPERTYPE_BCARDV;
    g_ScanDevApiLog.WriteLog(1, "Protocol Version = 0x%x, Business Card is vertical direction",
                             capability.commandVersion);
  }
  return keys;
}

PALETTE CParseScanCmd::ParseColorPaletteData(unsigned char* data, long size, QS_SCANNER_CAPABILITY capability) {
  Trace trace("ParseColorPaletteData");
  IParseCmdRes* parser = GetParseCmdRes(capability.generation);
  return parser == nullptr ? PALETTE{} : parser->ParseColorPaletteResponse(data, size);
}

ACTUALSCANPARAM CParseScanCmd::ParseActualParameterData(_SCANCMD_RESPONSE_INFO* response,
                                                        QS_SCANNER_CAPABILITY capability) {
  Trace trace("ParseActualParameterData");
  IParseCmdRes* parser = GetParseCmdRes(capability.generation);
  if (response == nullptr || parser == nullptr || response->data == nullptr) return {};
  return parser->ParseActualParameterResponse(response->data, response->size);
}

ICCPROFIE CParseScanCmd::ParsePDFaColorProfileData(unsigned char* data, long size, QS_SCANNER_CAPABILITY capability) {
  Trace trace("ParsePDFaColorProfileData");
  IParseCmdRes* parser = GetParseCmdRes(capability.generation);
  return parser == nullptr ? ICCPROFIE{} : parser->ParsePDFaColorProfileResponse(data, size);
}

}  // namespace orvalle_scan_api
