// Turns a raw response body into a generation-independent record, with the parser of the generation.
//
// It parses only: framing, signatures and result bytes were checked before. Made as a local object for one call.
// A record that stays zero is the sign of failure.
// Threads: an object belongs to one call.
#pragma once

#include "command/ParseExeCmdRes_v1.h"
#include "command/ParseExeCmdRes_v2.h"
#include "parse/IParseScanCmd.h"
#include "parse/ParseCmdRes_v1.h"
#include "parse/ParseCmdRes_v2.h"

namespace orvalle_scan_api {

class CParseScanCmd : public IParseScanCmd {
 public:
  std::uint32_t GetProtocolVersion(_SCANCMD_DEVICECAP_INFO* info) override;
  QS_SCANNER_CAPABILITY ParseDeviceInfoData(_SCANCMD_DEVICECAP_INFO* info) override;
  tagQS_PUSHSCAN_PARAMETERS ParseDeviceKeyInfoData(_SCANCMD_RESPONSE_INFO* response,
                                                   QS_SCANNER_CAPABILITY capability) override;
  PALETTE ParseColorPaletteData(unsigned char* data, long size, QS_SCANNER_CAPABILITY capability) override;
  ACTUALSCANPARAM ParseActualParameterData(_SCANCMD_RESPONSE_INFO* response, QS_SCANNER_CAPABILITY capability) override;
  ICCPROFIE ParsePDFaColorProfileData(unsigned char* data, long size, QS_SCANNER_CAPABILITY capability) override;

  // The parser of a generation; null where there is none.
  IParseCmdRes* GetParseCmdRes(SCANCMD_GENERATION generation);

 private:
  CParseCmdRes_v1 v1_;
  CParseCmdRes_v2 v2_;
  // The image streams' parsers, which no body needs: they complete the parsers of a device.
  [[maybe_unused]] CParseExeCmdRes_v1 streamV1_;
  [[maybe_unused]] CParseExeCmdRes_v2 streamV2_;
};

}  // namespace orvalle_scan_api
