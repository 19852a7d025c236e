// The read thread of first-generation devices: every line is written as it comes; there are no blank pages, no size or
// colour records, no timer and no colour profile.
// Threads: as CReadThread_base.
#pragma once

#include "command/ParseExeCmdRes_v1.h"
#include "parse/parse_records.h"
#include "reception/ReadThread_base.h"

namespace orvalle_scan_api {

// What a parsed record asks for.
enum RECEIVED_INFO : int {
  kReceivedLineIncomplete = 0,
  kReceivedLineLast = 1,
  kReceivedLine = 2,
  kReceivedStatusIncomplete = 3,
  kReceivedStatusLast = 4,
  kReceivedStatus = 5,
};

class CReadThread_v1 : public CReadThread_base {
 public:
  ~CReadThread_v1() override { End(); }

  //   0x7010000A  null argument    0x10100011  this generation has no profile; both results are cleared
  QSRSLT GetColorProfile(void** data, int* size, int bpp) override;

  // Codes outside the device's table give 0x500000FF.
  QSRSLT ConvertDeviceErrorToQSRSLT(unsigned short deviceError) override;

  static RECEIVED_INFO GetReceivedImageInfoStatus(const SCANIMAGEINFO& info);

 protected:
  QSRSLT StartScan() override;
  QSRSLT DispatchReceivedData(unsigned char* bytes, unsigned int size, unsigned char** escape,
                              unsigned int* escapeSize) override;

 private:
  // Sends a copy whose area is as wide as a multiple of 16.
  QSRSLT SetScanParam(_SCANCMD_SCANPARAM param);
  QSRSLT dispatchLine(const LINEDATA& line, SCANSTATUS& status);
  QSRSLT WriteDataBlockToImageDataArray(const LINEDATA& line);
  void AddNewImageDataToArray(const LINEDATA& line);
  bool DispatchStatusCode(const SCANIMAGEINFO& info);

  ACTUALSCANPARAM m_actualParam{};  // what the device answered
};

}  // namespace orvalle_scan_api
