// Turns raw response bodies into generation-independent records. A zero record is the sign of failure.
#pragma once

#include "command/scancmd_param.h"
#include "parse/parse_records.h"
#include "push_scan.h"
#include "scanner_capability.h"

namespace orvalle_scan_api {

class IParseScanCmd {
 public:
  virtual ~IParseScanCmd() = default;
  // Returns the generation, despite its name; 0 for null.
  virtual std::uint32_t GetProtocolVersion(_SCANCMD_DEVICECAP_INFO* info) = 0;
  virtual QS_SCANNER_CAPABILITY ParseDeviceInfoData(_SCANCMD_DEVICECAP_INFO* info) = 0;
  virtual tagQS_PUSHSCAN_PARAMETERS ParseDeviceKeyInfoData(_SCANCMD_RESPONSE_INFO* response,
                                                           QS_SCANNER_CAPABILITY capability) = 0;
  virtual PALETTE ParseColorPaletteData(unsigned char* data, long size, QS_SCANNER_CAPABILITY capability) = 0;
  virtual ACTUALSCANPARAM ParseActualParameterData(_SCANCMD_RESPONSE_INFO* response,
                                                   QS_SCANNER_CAPABILITY capability) = 0;
  virtual ICCPROFIE ParsePDFaColorProfileData(unsigned char* data, long size, QS_SCANNER_CAPABILITY capability) = 0;
};

}  // namespace orvalle_scan_api
