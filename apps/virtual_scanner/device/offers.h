// Whether the device offers what a scan asks for.
// Threads: reentrant.
#pragma once
#include <optional>
#include <string>

#include "device/grant.h"

namespace vscan {

// The reason why not; nothing when it offers all of it. Path and resolution of the scan have been granted.
std::optional<std::string> notOffered(const Abilities& can, const GrantedScan& scan);
std::optional<std::string> notOffered(const Abilities& can, const GrantedScan& scan, const StartSettings& start);

}  // namespace vscan
