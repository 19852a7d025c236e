// The older, flat capability record, the one that QueryDeviceCapabilities(1, ...) fills.
#pragma once

#include <cstddef>
#include <type_traits>

#include "scanner_capability.h"

namespace orvalle_scan_api {

// Maximum, minimum and default of a setting.
struct VALUERANGE {
  std::int32_t max;
  std::int32_t min;
  std::int32_t def;
};
struct COLORTONESUPPORT {
  CAP cap;
  FLAG flag;
  VALUERANGE brightness;
  VALUERANGE contrast;
  VALUERANGE shadow;
  VALUERANGE highlight;
  VALUERANGE gamma;
};
struct SMOOTHINGSUPPORT {
  CAP cap;
  FLAG flag;
  CAP levelCap;
  FLAG levelFlag;
  VALUERANGE level;
};
struct COLORDROPSUPPORT {
  CAP cap;
  FLAG red;
  FLAG green;
  FLAG blue;
  FLAG chromatic;
  std::int32_t custom;
};
struct ENHANCELEVELSUPPORT {
  CAP cap;
  FLAG flag;
  VALUERANGE level;
};
using THICKTEXTSUPPORT = ENHANCELEVELSUPPORT;
using EDGEENHANCESUPPORT = ENHANCELEVELSUPPORT;
using DUSTREMOVALSUPPORT = ENHANCELEVELSUPPORT;
struct REMOVELINESUPPORT {
  CAP cap;
  FLAG flag;
};
struct PUNCHHOLESUPPORT {
  CAP cap;
  FLAG flag;
};
struct EDGEFILLSUPPORT {
  CAP cap;
  FLAG first;
  FLAG second;
};

struct tagQS_SCANNER_CAPABILITY_VER1 {
  OPTICALRESOLUTIONS resolutionOptical;  // dots per inch
  std::uint32_t resolutionList[11];      // offered resolutions, rising, 0 in the empty places
  struct {
    FLAG blackAndWhite;
    FLAG errorDiffusion;
    FLAG trueGray;
    FLAG color256;
    FLAG color24bit;
  } colorType;
  FLAG autoColorFlag;  // always 1
  DEVICESCANSIZES supportDocSizeMax;
  DEVICESCANSIZES deviceScanSizeMin;
  struct {
    CAP cap;
    std::int32_t simplexMaxLength;
    std::int32_t duplexMaxLength;
  } longPaperLengthMax;
  PAPERSOURCESUPPORT paperSource;
  PAPERSETTINGPOSITIONS paperPosition;
  MARGIN marginSize;  // of the flatbed if the device has one, otherwise of the feeder
  CAP autoPaperSize;
  CAP autoCrop;
  CAP autoDeskew;
  CAP autoRotate;       // always 1
  CAP detectEndOfPage;  // always 2
  MONOTHRESHOLDSUPPORT monoThreshold;
  COLORTONESUPPORT colorTone;
  AUTOCOLORLEVELSUPPORT autoColor;
  BACKGROUNDREMOVALSUPPORT backgroundRemoval;
  SMOOTHINGSUPPORT smoothing;
  COLORDROPSUPPORT colorDrop;
  THICKTEXTSUPPORT thickText;
  CAP dotTextCombine;  // always 2
  EDGEENHANCESUPPORT edgeEnhance;
  CAP firstEnhanceFlag;  // always 2
  DUSTREMOVALSUPPORT dustRemoval;
  REMOVELINESUPPORT lineRemoval;
  PUNCHHOLESUPPORT punchHole;
  CAP carrierSheet;
  CAP plasticCard;
  CAP edgeCut;
  EDGEFILLSUPPORT edgeFill;
  BLANKREMOVALSUPPORT blankRemoval;
  std::int32_t xferCount;  // 0 no limit can be set, 1 one sheet, 2 a number of sheets
  CAP multifeed;
  CAP quietMode;
  std::int32_t reserved;
  CAP iccProfile;
};
static_assert(std::is_standard_layout_v<tagQS_SCANNER_CAPABILITY_VER1> &&
              std::is_trivially_copyable_v<tagQS_SCANNER_CAPABILITY_VER1>);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, resolutionList) == 24);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, colorType) == 68);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, supportDocSizeMax) == 76);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, longPaperLengthMax) == 132);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, paperPosition) == 156);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, marginSize) == 180);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, monoThreshold) == 220);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, colorTone) == 244 && sizeof(COLORTONESUPPORT) == 68);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, backgroundRemoval) == 340);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, smoothing) == 372 && sizeof(SMOOTHINGSUPPORT) == 28);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, thickText) == 412 && sizeof(THICKTEXTSUPPORT) == 20);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, dustRemoval) == 460);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, carrierSheet) == 496);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, blankRemoval) == 516);
static_assert(offsetof(tagQS_SCANNER_CAPABILITY_VER1, iccProfile) == 560);
static_assert(sizeof(tagQS_SCANNER_CAPABILITY_VER1) == 564);

}  // namespace orvalle_scan_api
