// qsscan scan: from a connected device to files.
#pragma once

#include <cstdio>
#include <string>

#include "ScanCoreApi.h"
#include "options.h"
#include "scan_report.h"
#include "settings.h"

namespace qsscan {

// Runs the whole scan on a library instance that nobody else uses and that is connected to the device; progress goes to
// the stream. Everything that goes wrong once the device is being asked to scan is told in the report, with what was
// kept; what goes wrong before throws CommandError.
//
// The first Ctrl-C asks the device to stop, and the pages that still come are kept. After the second one, or two
// seconds after the first, this does not return: the files are completed, leave is called with the report, and the
// program ends at once.
ScanReport runScan(orvalle_scan_api::IScanCoreApi& core, const Capability& capability, const Options& options,
                   std::FILE* progress, void (*leave)(const ScanReport&, const Options&));

}  // namespace qsscan
