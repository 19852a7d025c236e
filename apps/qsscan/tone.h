// The tone of a page: which levels become black and white, and what lies between them.
#pragma once

#include <array>
#include <optional>

#include "scan_features.h"

namespace qsscan {

struct ToneControl {
  const char* option;  // "--gamma"
  const char* help;
  orvalle_scan_api::VALUERANGE orvalle_scan_api::COLORTONESUPPORT::*range;
  std::int32_t orvalle_scan_api::COLORTONE::*field;
  int scale;             // the record holds the value times this
  std::int32_t neutral;  // in the record, where the option is not given
};

constexpr std::array<ToneControl, 3> kToneControls = {{
    {"--shadow", "What is darker becomes black: 0 to 254", &orvalle_scan_api::COLORTONESUPPORT::shadow,
     &orvalle_scan_api::COLORTONE::shadow, 1, 0},
    {"--highlight", "What is brighter becomes white: 1 to 255", &orvalle_scan_api::COLORTONESUPPORT::highlight,
     &orvalle_scan_api::COLORTONE::highlight, 1, 255},
    {"--gamma", "Above 1 brightens what lies between: 0.1 to 10", &orvalle_scan_api::COLORTONESUPPORT::gamma,
     &orvalle_scan_api::COLORTONE::gamma, 100, 100},
}};

// In the order of the table.
using ToneWish = std::array<std::optional<double>, kToneControls.size()>;

// Throws CommandError for values that the device does not take (not served) and for contradictions (usage).
void setTone(const ToneWish& wish, const Capability& capability, orvalle_scan_api::QS_SCANNER_PARAMETERS& settings);

}  // namespace qsscan
