// What can be switched on for a scan beside mode, size and source: a row for each, from the option to the record.
#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "scanner_capability_v1.h"
#include "scanner_parameters.h"

namespace qsscan {

using Capability = orvalle_scan_api::tagQS_SCANNER_CAPABILITY_VER1;

struct LevelRange {
  int min, max;
  int usual;  // of an option without a number
};

struct Feature {
  const char* option;  // "--deskew"
  const char* help;
  bool takesLevel;   // an optional number follows the option
  bool needsShades;  // a mono or dithered page would not show it
  const char* lack;  // "The device cannot straighten pages", without a full stop
  // Whether the device serves it in that mode; null for what the library does itself, whatever the device.
  bool (*isServed)(const Capability&, orvalle_scan_api::COLORTYPE mode);
  // The levels of this device, nothing where it has none; null for a feature without levels.
  std::optional<LevelRange> (*levels)(const Capability&);
  void (*set)(orvalle_scan_api::QS_SCANNER_PARAMETERS&, int level);
};

std::span<const Feature> featureTable();

struct FeatureWish {
  const Feature* feature;    // a row of the table
  std::optional<int> level;  // unset: the usual one
};

bool wishesProfile(std::span<const FeatureWish> wishes);

// Puts the wishes into the settings, whose mode is known. Throws CommandError where the device cannot serve one (not
// served) or where one does not belong to the mode (usage).
void setFeatures(std::span<const FeatureWish> wishes, const Capability& capability,
                 orvalle_scan_api::QS_SCANNER_PARAMETERS& settings);

}  // namespace qsscan
