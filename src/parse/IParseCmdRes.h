// The response parser of one command generation. Bodies are only read; a zero record is the sign of failure.
#pragma once

#include "parse/parse_records.h"
#include "push_scan.h"
#include "scanner_capability.h"

namespace orvalle_scan_api {

class IParseCmdRes {
 public:
  virtual ~IParseCmdRes() = default;
  virtual QS_SCANNER_CAPABILITY ParseDeviceInfoResponse(unsigned char* data, long size) = 0;
  virtual tagQS_PUSHSCAN_PARAMETERS ParseDeviceKeyInfoResponse(unsigned char* data, long size) = 0;
  virtual PALETTE ParseColorPaletteResponse(unsigned char* data, long size) = 0;
  virtual ACTUALSCANPARAM ParseActualParameterResponse(unsigned char* data, long size) = 0;
  // The record points into data.
  virtual ICCPROFIE ParsePDFaColorProfileResponse(unsigned char* data, long size) = 0;
  virtual DETECTEDPAPER ParsePaperSizeDetectFrom2Vertex(unsigned char* data, long size,
                                                        QS_SCANNER_CAPABILITY capability, ACTUALSCANPARAM actual,
                                                        UNITTYPE unit) = 0;
};

}  // namespace orvalle_scan_api
