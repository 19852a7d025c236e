// What a device's error byte becomes, by the generation of its commands.
#pragma once

#include "result_codes.h"

namespace orvalle_scan_api {

// 0x50000001 to 0x50000016; 0x500000FF for every code that is not in the table.
QSRSLT deviceErrorResult_v1(unsigned int deviceError);
QSRSLT deviceErrorResult_v2(unsigned int deviceError);

}  // namespace orvalle_scan_api
