// qsscan panel: waits for the button of a device and scans as its panel asks.
#pragma once

#include <functional>

#include "ScanCoreApi.h"
#include "options.h"
#include "scan_report.h"
#include "settings.h"

namespace qsscan {

// The options once more, now that the panel has told what it asks for.
using Complete = std::function<Options(const std::vector<OptionValue>& askedByPanel)>;
using TellEnd = void (*)(const ScanReport&, const Options&);

// On a library instance that is connected to the device. Gives the exit code; tellEnd gets what came of the scan, as
// runScan takes it. Throws CommandError.
int runPanel(orvalle_scan_api::IScanCoreApi& core, const Capability& capability, const Options& options,
             const Complete& complete, TellEnd tellEnd);

}  // namespace qsscan
