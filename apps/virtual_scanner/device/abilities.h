// What the device can do, whichever way its generation says so.
// Threads: reentrant; a plain value.
#pragma once
#include <array>
#include <cstdint>

#include "protocol/capability.h"

namespace vscan {

// The three geometries of a device, in the order in which the capability answers name them.
enum class Path { Flatbed, FeederOneSide, FeederBothSides };

struct PathAbilities {
  std::array<std::int64_t, 2> dpi{};      // the finest, x and y
  std::array<std::int64_t, 2> size{};     // the largest area, x and y; tenths of a millimetre
  std::int64_t longLength = 0;            // of long paper; 0 = none
  std::array<std::int64_t, 4> margins{};  // left, right, top, bottom of a sheet that cannot be seen; the same unit
  bool straightens = false;
  bool takesLandscape = false;  // sheets with their left edge first
  bool findsSize = false;       // of a sheet, for areas that follow it
};

struct Abilities {
  bool hasFlatbed = false;
  bool hasFeeder = false;
  bool hasDuplex = false;
  std::array<PathAbilities, 3> paths{};
  std::array<std::int64_t, 4> position{};  // bed x, y; feeder x, y; 1 left or top, 2 in the middle, 3 right or bottom
  std::int64_t colors = 0;                 // bit 0 mono, 1 error diffusion, 2 grey, 3 palette, 4 colour
  std::array<std::int64_t, 5> compressions{};  // of each of these; bit 0 none, 1 run length, 2 JPEG
  std::int64_t jpegSamplings = 0;              // bit 0 4:4:4, 1 4:2:2, 2 4:1:1, 3 4:2:0, 4 4:0:0
  std::int64_t thresholdMin = 1;               // of a threshold that the host gives; the minimum above
  std::int64_t thresholdMax = 0;               // the maximum: none can be given
  bool findsDoubleFeeds = false;
  bool gradesDoubleFeeds = false;  // takes a level with it
  bool judgesColor = false;
  bool gradesGrey = false;  // takes a level for grey pages beside that for colour
  bool hasColorProfiles = false;
  bool findsEdges = false;
  bool findsCorners = false;
  bool overScans = false;
  bool scansBacksOnly = false;
  bool takesCarrierSheets = false;
  std::int64_t carrierOffset = 320;  // from the beginning of a carrier sheet to that of the sheet in it; the same unit
  bool takesPlasticCards = false;
  std::int64_t imageProcessings = 0;               // bit 0 copy, 1 OCR, 2 photo, 3 text and graphics
  std::array<std::int64_t, 5> backgroundLevels{};  // of removal, for each of the colours; 0 = none
  bool findsBlankPages = false;
  bool gradesBlankPages = false;
  bool removesMoire = false;
  std::array<std::int64_t, 2> moireDpi{};  // up to here; 0 = any
  std::int64_t gammaMax = 0;               // hundredths; 0 = no gamma
  bool isQuietOnWish = false;

  const PathAbilities& of(Path path) const { return paths[static_cast<std::size_t>(path)]; }
};

Abilities abilitiesOf(const Capability& capability);

}  // namespace vscan
