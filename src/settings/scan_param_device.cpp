// What the device answers to the command record.
#include "parse/ParseScanCmd.h"
#include "settings/ScanParam.h"

namespace orvalle_scan_api {

QSRSLT CScanParam::GetDeviceActualParam(IScanCmd* scanCmd, ACTUALSCANPARAM* actual,
                                        QS_SCANNER_CAPABILITY capability) const {
  if (scanCmd == nullptr || actual == nullptr) return QSRSLT_NO_ACTUAL_PARAM;
  _SCANCMD_RESPONSE_INFO response{};
  const QSRSLT result = scanCmd->QueryDeviceScanParameter(&response);
  if (result != QSRSLT_SUCCESS) return result;
  *actual = CParseScanCmd().ParseActualParameterData(&response, capability);
  return QSRSLT_SUCCESS;
}

QSRSLT CScanParam::GetColorProfile(IScanCmd* scanCmd, ICCPROFIE* profile, QS_SCANNER_CAPABILITY capability) const {
  if (scanCmd == nullptr || profile == nullptr) return QSRSLT_NULL_ARGUMENT;
  _SCANCMD_RESPONSE_INFO response{};
  const QSRSLT result = scanCmd->GetColorProfile(&response);
  if (result != QSRSLT_SUCCESS) return result;
  *profile = CParseScanCmd().ParsePDFaColorProfileData(response.data, response.size, capability);
  return QSRSLT_SUCCESS;
}

}  // namespace orvalle_scan_api
