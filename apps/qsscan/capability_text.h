// What a device can do, for people and for programs.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "settings.h"

namespace qsscan {

// Lines of "name: value"; what the record is silent about is "not reported".
std::string capabilityText(const std::string& deviceName, const Capability& capability);

// The same as an object; what the record is silent about is null.
nlohmann::ordered_json capabilityJson(const std::string& deviceName, const Capability& capability);

}  // namespace qsscan
