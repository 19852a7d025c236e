// What a device's panel asks for: for people, for programs, and as the options of a scan.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "configuration.h"
#include "push_scan.h"
#include "settings.h"

namespace qsscan {

using PanelRecord = orvalle_scan_api::tagQS_PUSHSCAN_PARAMETERS;

// Lines of "name: value"; what the panel left open is "not given". Without a button a sentence.
std::string panelText(const PanelRecord& record);

// The same as an object; what the panel left open is null.
nlohmann::ordered_json panelJson(const PanelRecord& record);

struct PanelWish {
  std::vector<OptionValue> options;
  std::vector<std::string> leftOut;  // sentences: what is asked for and not done
};

// The options for what is asked. What the device or this program cannot do is left out and told.
PanelWish wishOfPanel(const PanelRecord& record, const Capability& capability);

}  // namespace qsscan
