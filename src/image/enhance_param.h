// The enhancement record out of a user's settings and a device's capabilities.
#pragma once

#include "modules/enhance_param.h"
#include "scanner_capability.h"
#include "scanner_parameters.h"

namespace orvalle_scan_api {

_IE_PARAM makeEnhanceParam(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_CAPABILITY& capability);

}  // namespace orvalle_scan_api
