// The read thread of second-generation devices: runs the commands up to the start of the scan, and turns each record of
// the image stream into page data, finished pages and scan status.
// Threads: as CReadThread_base; GetColorProfile is the caller's.
#pragma once

#include "command/ParseExeCmdRes_v2.h"
#include "parse/parse_records.h"
#include "reception/ReadThread_base.h"

namespace orvalle_scan_api {

class CReadThread_v2 : public CReadThread_base {
 public:
  ~CReadThread_v2() override { End(); }

  //   0x7010000A  null argument    0x1010000D  the device gave no profile for that depth
  QSRSLT GetColorProfile(void** data, int* size, int bpp) override;

  // Codes outside the device's table give 0x500000FF.
  QSRSLT ConvertDeviceErrorToQSRSLT(unsigned short deviceError) override;

 protected:
  QSRSLT StartScan() override;
  QSRSLT DispatchReceivedData(unsigned char* bytes, unsigned int size, unsigned char** escape,
                              unsigned int* escapeSize) override;

 private:
  QSRSLT dispatchRecord(const IMAGE_HEADER& header, const PARSE_RESULT& result, SCANSTATUS& status);
  QSRSLT fetchColorProfile();
  void setIccProfile(const ICCPROFIE& profile);
  void rememberHeightLimit();
  QSRSLT WriteDataBlockToImageDataArray(const IMAGE_HEADER& header);
  QSRSLT writeJpeg(CImageDataStore& store, const IMAGE_HEADER& header, int newHeight);
  QSRSLT writeLine(CImageDataStore& store, const IMAGE_HEADER& header, int newHeight);
  void AddNewImageDataToArray(unsigned int pageNo, std::uint32_t compress, std::uint32_t dataType);
  bool DispatchDataInfo(const IMAGE_HEADER& header, const PARSE_RESULT& result);
  bool DispatchStatusCode(const IMAGE_HEADER& header, const PARSE_RESULT& result);
  void endPage(const IMAGE_HEADER& header, SCANSTATUS& status);
  void endScan(const IMAGE_HEADER& header, const PARSE_RESULT& result, SCANSTATUS& status);
  void SetBlankPageFlag(unsigned int pageNo);
  void SetPageScanIsTerminated(unsigned int pageNo);
  void SetAutoColorInfo(unsigned int pageNo, int bitPerPixel);
  bool isAboveLimit(int height) const { return m_heightLimited && height > m_requestedHeight; }

  static std::uint32_t ConvertToQvSncdcCompressType(IMAGE_COMPRESS compress);
  static std::uint32_t ConvertToQvSncdkDataType(IMAGE_COLOR color);

  ACTUALSCANPARAM m_actualParam{};  // what the device answered
  bool m_heightLimited = false;     // lines above m_requestedHeight are dropped
  int m_requestedHeight = 0;        // lines

  std::mutex m_iccMutex;
  ICCPROFIE m_iccProfile{};  // guarded by m_iccMutex; the bytes belong to the command object
};

}  // namespace orvalle_scan_api
