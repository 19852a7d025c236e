// Parses the tagged response bodies of the second generation: QDI, GKP, SSP and GCP.
//
// A body is walked into a plain record of the device's values, which is then converted. A body without its terminator
// gives a zero record.
// Threads: an object belongs to one call; its only state are the completion flags, cleared by construction alone.
#pragma once

#include "parse/IParseCmdRes.h"
#include "parse/gkp_response.h"
#include "parse/qdi_response.h"

namespace orvalle_scan_api {

struct _SSPCMDRESPONSE {
  std::uint8_t paperSource;
  std::uint8_t kept2001;
  std::uint16_t resolutionX;  // dots per inch
  std::uint16_t resolutionY;
  std::uint32_t pixelWidth;
  std::uint32_t pixelHeight;
};
using _GCPCMDRESPONSE = ICCPROFIE;

class CParseCmdRes_v2 : public IParseCmdRes {
 public:
  QS_SCANNER_CAPABILITY ParseDeviceInfoResponse(unsigned char* data, long size) override;
  tagQS_PUSHSCAN_PARAMETERS ParseDeviceKeyInfoResponse(unsigned char* data, long size) override;
  // A second-generation device's palette is not used: a zero record.
  PALETTE ParseColorPaletteResponse(unsigned char* data, long size) override;
  ACTUALSCANPARAM ParseActualParameterResponse(unsigned char* data, long size) override;
  ICCPROFIE ParsePDFaColorProfileResponse(unsigned char* data, long size) override;
  // The body of a second-generation device is not decoded: a zero record.
  DETECTEDPAPER ParsePaperSizeDetectFrom2Vertex(unsigned char* data, long size, QS_SCANNER_CAPABILITY capability,
                                                ACTUALSCANPARAM actual, UNITTYPE unit) override;

  // The walks.
  _QDICMDRESPONSE GetQDIcommandResponse(unsigned char* data, long size);
  _GKPCMDRESPONSE GetGKPcommandResponse(unsigned char* data, long size);
  _SSPCMDRESPONSE GetSSPcommandResponse(unsigned char* data, long size);
  _GCPCMDRESPONSE GetGCPcommandResponse(unsigned char* data, long size);

  // The conversions. Null gives a zero record.
  // generation stays 0: the caller knows it.
  QS_SCANNER_CAPABILITY GetParseDeviceInfoResponse(const _QDICMDRESPONSE* response) const;
  // An item that the device did not give stays invalid.
  tagQS_PUSHSCAN_PARAMETERS GetParseScanKeyInfoResponse(const _GKPCMDRESPONSE* response) const;
  ACTUALSCANPARAM GetParseActualParameterResponse(const _SSPCMDRESPONSE* response) const;
  PAPERSOURCESELECT GetPaperSourceSelect(const _SSPCMDRESPONSE* response) const;
  ICCPROFIE GetParseColorProfileResponse(const _GCPCMDRESPONSE* response) const;

  // Whether the last walk of that response ended with its terminator as the last known word.
  bool qdiResponseComplete = false;
  bool gkpResponseComplete = false;
  bool sspResponseComplete = false;
  bool gcpResponseComplete = false;
};

}  // namespace orvalle_scan_api
