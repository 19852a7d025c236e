// From what the user wishes and what the device can do to the record that starts the scan.
#pragma once

#include <string>
#include <vector>

#include "scan_wish.h"
#include "scanner_parameters.h"

namespace qsscan {

// The settings for the wish. Throws CommandError where the device cannot serve it (not served) or where the wish
// contradicts itself (usage); the sentence names what the device can do. What the record is silent about is not
// refused. paperInFeeder is the device's answer, which settles the automatic source where a device has both.
orvalle_scan_api::QS_SCANNER_PARAMETERS makeSettings(const ScanWish& wish, const Capability& capability,
                                                     bool paperInFeeder);

// The offered resolutions, rising; empty when not reported.
std::vector<unsigned> offeredResolutions(const Capability& capability);

// The offered modes; empty when not reported. The 256-colour mode is never offered.
std::vector<orvalle_scan_api::COLORTYPE> offeredModes(const Capability& capability);

// A length of the library in millimetres; 0 for a length in pixels, which has no size by itself.
double toMm(double value, orvalle_scan_api::UNITTYPE unit);

}  // namespace qsscan
