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

// What help shows together.
inline constexpr char kPageGroup[] = "Page";
inline constexpr char kFeedGroup[] = "Paper";
inline constexpr char kPictureGroup[] = "Picture";
inline constexpr char kCleaningGroup[] = "Cleaning";

struct Feature {
  const char* option = nullptr;  // "--deskew"
  const char* group = nullptr;   // of help
  const char* help = nullptr;
  bool takesLevel = false;               // an optional number follows the option,
  std::span<const char* const> words{};  // or one of these words, whose place in the list is the level
  bool needsShades = false;              // a mono or dithered page would not show it
  bool isDroppedOnLongPaper = false;     // by the library, without a word
  const char* excludes = nullptr;        // the option of another row
  const char* lack = "";                 // "The device cannot straighten pages", without a full stop
  // Whether the device serves it in that mode; null for what the library does itself, whatever the device.
  bool (*isServed)(const Capability&, orvalle_scan_api::COLORTYPE mode) = nullptr;
  // The levels of this device, nothing where it has none; null for a feature without levels.
  std::optional<LevelRange> (*levels)(const Capability&) = nullptr;
  void (*set)(orvalle_scan_api::QS_SCANNER_PARAMETERS&, int level) = nullptr;

  bool takesValue() const { return takesLevel || !words.empty(); }
};

std::span<const Feature> featureTable();

struct FeatureWish {
  const Feature* feature;    // a row of the table
  std::optional<int> level;  // unset: the usual one
};

// The level that a text means to this feature. Throws CommandError (usage) for any other text.
int parseLevel(const Feature& feature, std::string_view text);

bool wishesProfile(std::span<const FeatureWish> wishes);

// Puts the wishes into the settings, whose mode and paper are known. Throws CommandError where the device cannot serve
// one (not served) or where one does not go with the mode, the paper or another wish (usage).
void setFeatures(std::span<const FeatureWish> wishes, const Capability& capability,
                 orvalle_scan_api::QS_SCANNER_PARAMETERS& settings);

}  // namespace qsscan
