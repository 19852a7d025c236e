// What the user wishes for a scan, before anything is known of the device.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "color_drop.h"
#include "edges.h"
#include "paper.h"
#include "scan_features.h"
#include "scan_types.h"
#include "tone.h"

namespace qsscan {

enum class Source { kAuto, kFlatbed, kFeeder, kFeederDuplex };

struct ScanWish {
  unsigned resolutionDpi = 300;
  std::optional<orvalle_scan_api::COLORTYPE> mode;  // unset: color where the device offers it, else its best
  Source source = Source::kAuto;
  bool duplex = false;  // also set by kFeederDuplex
  bool bindShortEdge = false;
  Paper paper;
  bool paperIsAuto = false;    // the device detects the size
  bool paperIsWished = false;  // the user named it; the default paper is never refused
  // The part of the paper to scan; an unset size reaches to the paper's edge.
  std::optional<double> leftMm;
  std::optional<double> topMm;
  std::optional<double> widthMm;
  std::optional<double> heightMm;
  int brightness = 0;
  int contrast = 0;
  std::optional<unsigned> threshold;
  bool autoThreshold = false;  // found for each page
  ToneWish tone;
  EdgeWish edges;
  std::optional<ColorDropWish> colorDrop;
  std::optional<int> colorDropRange;
  std::vector<FeatureWish> features;
  int turnDegrees = 0;  // clockwise, done here to pages that the device has sent: 0, 90, 180 or 270
  int pages = 0;        // 0 for all
  int sheets = 0;       // 0 for all

  bool hasArea() const { return leftMm || topMm || widthMm || heightMm; }
};

// The usual spellings are accepted in any case, with blanks, hyphens or underscores. Nothing for an unknown one.
std::optional<orvalle_scan_api::COLORTYPE> findMode(std::string_view name);
std::optional<Source> findSource(std::string_view name);

// "color", "gray", "mono", "dither", "auto".
const char* modeName(orvalle_scan_api::COLORTYPE mode);

}  // namespace qsscan
