// Converts the device's own values of a QDI body into the capability record: tenths of a millimetre become driver
// millimetres, bit masks become flags, missing values become defaults.
// Threads: reentrant.
#pragma once

#include "parse/qdi_response.h"
#include "scanner_capability.h"

namespace orvalle_scan_api {

// generation stays 0: the caller knows it.
QS_SCANNER_CAPABILITY capabilityOf(const _QDICMDRESPONSE& response);

}  // namespace orvalle_scan_api
