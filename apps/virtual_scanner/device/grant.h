// What the device makes of the settings that it was sent: a scan that it can do, or the reason why it cannot.
// Threads: reentrant.
#pragma once
#include <string>
#include <variant>

#include "device/placement.h"
#include "device/profile.h"
#include "protocol/scan_settings.h"

namespace vscan {

struct GrantedScan {
  ScanSettings settings;
  Path path = Path::Flatbed;
  int dpiX = 0;
  int dpiY = 0;
  Size maximum;  // at that resolution
  Size reach;    // what an area is cut to; in the first generation a little wider than the maximum
  int threshold = 128;
  std::int64_t backgroundLevels = 0;  // of removal, in the colour mode of the scan; 0 = none
};

// feederLoaded decides where an automatic source takes its paper.
std::variant<GrantedScan, std::string> grantScan(const Profile& profile, const ScanSettings& settings,
                                                 bool feederLoaded, bool bedLoaded);

// The start command names the resolution once more; what it says counts, within the same bounds.
void regrantResolution(const Profile& profile, const Resolution& wanted, GrantedScan& scan);

}  // namespace vscan
