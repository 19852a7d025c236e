// What is done with the edges of a page: left out of the scan, or painted over afterwards.
#pragma once

#include <optional>
#include <string_view>

#include "scan_features.h"

namespace qsscan {

struct EdgeWidths {
  double leftMm, topMm, rightMm, bottomMm;
};

struct EdgeWish {
  std::optional<EdgeWidths> cut;
  std::optional<EdgeWidths> fill;
  bool fillIsBlack = false;
};

// "3" for all four edges, or "LEFT,TOP,RIGHT,BOTTOM" such as "10,0,3,0", in millimetres. Nothing for anything else,
// widths below 0 and above 100 included.
std::optional<EdgeWidths> findEdgeWidths(std::string_view text);

// Needs the paper to be in the settings. Throws CommandError where the device cannot leave edges out (not served) or
// where the wish does not go with the paper (usage).
void setEdges(const EdgeWish& wish, const Capability& capability, orvalle_scan_api::QS_SCANNER_PARAMETERS& settings);

}  // namespace qsscan
