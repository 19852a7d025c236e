// The command record of settings and capabilities, computed a second time: one plain sentence after another, with
// nothing taken from the product but the records. scan_param_random_test compares the product with it.
#pragma once

#include <cstdint>

#include "command/scancmd_param.h"
#include "scanner_capability.h"
#include "scanner_parameters.h"
#include "tests/settings/scan_area_reference.h"

namespace orvalle_scan_api::reference {

// The colour type that is really scanned.
inline int effectiveColor(const QS_SCANNER_PARAMETERS& s) {
  if (s.autoThreshold != 0 && s.colorType == 1) return 5;
  if (s.smoothing.enable != 0 || s.colorDrop.enable != 0 || s.punchHoleRemoval.enable != 0) return 5;
  return s.colorType;
}

inline int colorWord(int color) {
  if (color == 0) return 5;
  if (color >= 1 && color <= 4) return color - 1;
  return 4;
}

inline int areaType(const QS_SCANNER_PARAMETERS& s, const QS_SCANNER_CAPABILITY& c) {
  const auto& detect = c.advancedFunc.autoSize.deviceDetectSize;
  if (s.paperType != 0) return 0;
  if (detect.cap != 2) return 0;
  if (detect.detectSystem == 0) return 3;
  if (c.advancedFunc.deskew.cap != 2) return 0;
  return detect.detectOverScan != 0 ? 4 : 0;
}

// The edge cut in 1/100 mm. The sides are converted left, right, top, bottom; from the first that fails on, which
// itself becomes 0, they stay 0.
inline tagRECT edgeCutMm(const QS_SCANNER_PARAMETERS& s) {
  const EDGECUT& cut = s.edgeCut;
  tagRECT mm{};
  if (cut.enable == 0 || cut.unit == 2) return mm;
  const std::int32_t sides[4] = {cut.left, cut.right, cut.top, cut.bottom};
  std::int32_t* const results[4] = {&mm.left, &mm.right, &mm.top, &mm.bottom};
  for (int i = 0; i < 4; ++i) {
    if (cut.unit == 0 && sides[i] == INT32_MIN) break;
    *results[i] = asSigned(toUnit(pattern(sides[i]), cut.unit, UNIT_MILLIMETER));
  }
  return mm;
}

inline _SCANCMD_MONO_THRESHOLD monoThreshold(const QS_SCANNER_PARAMETERS& s, const QS_SCANNER_CAPABILITY& c,
                                             int color) {
  const MONOTHRESHOLDSUPPORT& support = c.imageProcFunc.monoThreshold;
  if (s.autoThreshold != 0) return {0, true, false};
  if (support.manuanThresholdCap != 2 || color != 1) return {};
  const bool fits = pattern(support.manualThresholdLevelMin) <= s.threshold &&
                    s.threshold <= pattern(support.manualThresholdLevelMax);
  return fits ? _SCANCMD_MONO_THRESHOLD{s.threshold, false, true} : _SCANCMD_MONO_THRESHOLD{};
}

inline _SCANCMD_GROUNDCOLORREMOVAL groundColor(const QS_SCANNER_PARAMETERS& s, const QS_SCANNER_CAPABILITY& c,
                                               int color) {
  const BACKGROUNDREMOVALSUPPORT& all = c.advancedFunc.backgroundRemove;
  SUPPORTADJUSTLEVEL support{};
  switch (colorWord(color)) {
    case 0:
      support = all.blackAndWhite;
      break;
    case 1:
      support = all.errorDiffusion;
      break;
    case 2:
      support = all.trueGray;
      break;
    case 3:
      return {};  // 256 colours
    default:
      support = all.color24bit;
  }
  const std::int32_t want = s.removeBackground.level;
  if (s.removeBackground.enable == 0 || support.cap != 2) return {};
  if (c.generation == 1) return {true, true, want};
  if (support.level < 2) return {true, false, 0};
  if (want <= support.level) return {true, true, want};
  std::int32_t step = 255 / support.level;
  std::int32_t folded = 0;
  while (step > 0 && want > step) {
    folded += 1;
    step *= 2;
    if (step >= 255) break;
  }
  return {true, true, folded};
}

inline _SCANCMD_SCANPARAM command(const QS_SCANNER_PARAMETERS& s, const QS_SCANNER_CAPABILITY& c) {
  const int color = effectiveColor(s);
  const auto& advanced = c.advancedFunc;
  _SCANCMD_SCANPARAM p{};
  p.osInfo = static_cast<SCANCMD_OS_INFO>(2);
  p.resolution = {s.resolution.x, s.resolution.y, false};
  p.colorType = static_cast<SCANCMD_COLOR_TYPE>(colorWord(color));
  p.scanArea.areaType = static_cast<SCANCMD_SCAN_AREA_TYPE>(areaType(s, c));
  p.longPaperMode = s.paperType == 23 || s.paperType == 24 || (s.paperType == 26 && s.customPaperSize.y == 0);
  p.marginArea = edgeCutMm(s);
  p.duplexScan.isDuplex = s.duplexType != 0 || s.plasticCard != 0;
  p.brightness = s.brightness;
  p.contrast = color == 1 ? 0 : s.contrast;
  p.toneAdjust = true;
  if (advanced.autoColor.cap == 2) {
    p.autoColorLevelOn = true;
    p.autoColorLevel = {s.autoColorLevel.first, s.autoColorLevel.second};
  }
  p.monoThreshold = monoThreshold(s, c, color);

  int compression = 3;
  if (color == 1 || color == 2) compression = 2;
  if (color == 3 && c.imageProcFunc.supportCompresssionType.trueGray.jpeg == 0) compression = 2;
  if (color == 4) compression = 1;
  p.compressionType = static_cast<SCANCMD_COMPRESSION_TYPE>(compression);
  if (compression == 3 && (color == 0 || color == 3 || color == 5)) p.jpegCompressionRate = 50;
  p.jpegSamplingFactor = static_cast<SCANCMD_JPEG_SAMPLING_FACTOR_TYPE>(3);

  p.autoDeskew = s.autoDeskew != 0 && advanced.deskew.cap == 2 && advanced.deskew.systemType[0] != 1;
  p.groundColorRemoval = groundColor(s, c, color);
  if (s.carrierSheet != 0 && advanced.carrierSheet.cap != 0) {
    p.carrierSheetMode = {true, advanced.carrierSheet.skipOffsetSystem == 1};
  }
  if (s.blankPageRemoval.enable != 0 && advanced.blankRemoval.cap == 2) {
    p.blankPageRemoval.isOn = true;
    if (advanced.blankRemoval.levelCap == 2) p.blankPageRemoval = {true, true, s.blankPageRemoval.level};
  }
  if (s.scanPageCount > 0) p.scanPage = pattern(s.scanPageCount);
  p.quietScan = s.quietScan != 0;
  if (s.multifeedDetect != 0 && advanced.multifeedDetect.cap == 2) {
    p.doubleFeedDetection = {true, advanced.multifeedDetect.systemType == 2, 0};
    const auto& feed = c.baseFunc.errorSystem.feed;
    if (feed.cap == 2 && feed.stop != 0) {
      p.feedMotion = {true, true, false};
    } else if (feed.cap == 2 && feed.keepOn != 0) {
      p.feedMotion = {true, false, true};
    }
  }
  return p;
}

}  // namespace orvalle_scan_api::reference
