// From a loaded library to a device that has said what it can do.
#pragma once

#include <string>

#include "ScanCoreApi.h"
#include "settings.h"

namespace qsscan {

// Initialises the library, selects the device and asks it for its capabilities. Throws CommandError with the sentence
// of the step that failed.
Capability connect(orvalle_scan_api::IScanCoreApi& core, const std::string& deviceName);

}  // namespace qsscan
