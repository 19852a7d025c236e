// The user's scan settings, as a host fills them for StartScanning.
//
// A host starts from a record of zeros and sets what it wants. Nothing that a device cannot serve is refused: a wish
// that the device cannot meet is dropped, and the pages tell what remained.
#pragma once

#include <cstddef>
#include <type_traits>

#include "scan_types.h"

namespace orvalle_scan_api {

struct COLORTONE {
  QSBOOL enable;            // apply colour tone correction
  QSBOOL autoMode;          // correct the tone automatically; colour and grey only
  std::int32_t brightness;  // -50 to 50
  std::int32_t contrast;    // -50 to 50
  std::int32_t shadow;      // low byte used, 0 to 254
  std::int32_t highlight;   // low byte used, 1 to 255, default 220
  std::int32_t gamma;       // gamma times 100, 10 to 1000, default 100
};
struct AUTOCOLORLEVEL {
  std::int32_t first;  // the two levels, sent when the device offers automatic colour
  std::int32_t second;
};
struct REMOVEBACKGROUND {
  QSBOOL enable;
  std::int32_t level;  // on a scale of 0 to 255
};
struct SMOOTHING {
  QSBOOL enable;
  std::uint8_t mode;
  std::int32_t level;  // -50 to 50
};
struct COLORDROP {
  QSBOOL enable;     // drop one colour
  QSBOOL chromatic;  // stored presets; the first one that is set wins, in this order
  QSBOOL red;
  QSBOOL green;
  QSBOOL blue;
  std::uint8_t customRed;  // custom colour when no preset is set
  std::uint8_t customGreen;
  std::uint8_t customBlue;
  std::int32_t customRange;  // width of the custom colour
  QSBOOL customFlag;         // third item of the custom setting
};
struct ENHANCELEVEL {
  QSBOOL enable;
  std::int32_t level;  // 1 to 5, default 1
};
struct LINEREMOVAL {
  QSBOOL enable;
  std::int32_t direction;  // 0 one direction, 1 the other, anything else both
  std::int32_t first;      // the three are handed to the enhancement stage
  std::int32_t second;
  std::int32_t third;
};
struct PUNCHHOLEREMOVAL {
  QSBOOL enable;
  std::int32_t fill;  // 6 selects fill mode 0, 0 selects 1, anything else 2
};
struct EDGECUT {
  QSBOOL enable;
  std::int32_t left;  // margin added to the scan; ignored with automatic paper size
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
  UNITTYPE unit;  // UNIT_PIXEL: the margin is not sent to the device
};
struct EDGEFILL {
  QSBOOL enable;
  std::int32_t mode;   // 2 is the one value told apart
  std::int32_t first;  // the five are handed to the enhancement stage
  std::int32_t second;
  std::int32_t third;
  std::int32_t fourth;
  std::int32_t fifth;
};
struct BLANKPAGEREMOVAL {
  QSBOOL enable;
  std::uint32_t level;  // sent when the device has a level
};
struct CUSTOMPAPERSIZE {
  std::int32_t x;
  std::int32_t y;  // 0 means long paper of unknown length
  UNITTYPE unit;
};

struct QS_SCANNER_PARAMETERS {
  AXIS resolution;  // dots per inch, never 0
  COLORTYPE colorType;
  PAPERTYPE paperType;
  CUSTOMPAPERSIZE customPaperSize;  // meant when paperType is 26
  QSBOOL useScanArea;               // scanArea is meant; with a scanArea.bottom of 0 the setting counts as long paper
  // The wanted part of the page: left and top are its corner, right and bottom its WIDTH and HEIGHT. Give it in pixels
  // at the wished resolution; other units are scaled twice where the device scans at another resolution.
  SCANAREA scanArea;
  std::int32_t brightness;  // -50 to 50
  std::int32_t contrast;    // -50 to 50
  DUPLEXTYPE duplexType;
  PAPERSOURCESELECT paperSource;  // selects which margin applies; the device itself chooses feeder or bed
  std::int32_t reservedA;         // copied, read by nothing
  QSBOOL reservedFlag;            // copied, read by nothing
  QSBOOL autoDeskew;
  QSBOOL autoRotate;             // rotation in the enhancement stage
  std::int32_t autoRotateParam;  // handed to the enhancement stage with it
  QSBOOL detectEndOfPage;        // the page may end early; when 0 a short page is padded with white to its height
  QSBOOL autoThreshold;          // automatic black-and-white threshold
  std::uint32_t threshold;       // manual threshold, 1 to 254
  COLORTONE colorTone;
  AUTOCOLORLEVEL autoColorLevel;
  REMOVEBACKGROUND removeBackground;
  SMOOTHING smoothing;
  COLORDROP colorDrop;
  ENHANCELEVEL thickText;
  QSBOOL dotTextCombine;
  ENHANCELEVEL edgeEnhance;
  QSBOOL firstEnhanceFlag;    // the first flag of the enhancement record
  ENHANCELEVEL noiseRemoval;  // a level other than 1 to 5 acts as 3
  LINEREMOVAL lineRemoval;
  PUNCHHOLEREMOVAL punchHoleRemoval;
  QSBOOL carrierSheet;
  QSBOOL plasticCard;
  EDGECUT edgeCut;
  EDGEFILL edgeFill;
  BLANKPAGEREMOVAL blankPageRemoval;
  std::int32_t scanPageCount;  // how many sheets; 0 or less means no limit
  QSBOOL quietScan;
  QSBOOL multifeedDetect;
  std::int32_t plasticCardProcess;  // set to 1 by the plastic-card adjustment, read by nothing
  std::int32_t wantColorProfile;    // low byte not 0: fetch the colour profile before the scan
};
static_assert(std::is_standard_layout_v<QS_SCANNER_PARAMETERS> && std::is_trivially_copyable_v<QS_SCANNER_PARAMETERS>);
// LP64 offsets, written down from the rule of natural alignment.
static_assert(offsetof(QS_SCANNER_PARAMETERS, customPaperSize) == 16);
static_assert(offsetof(QS_SCANNER_PARAMETERS, scanArea) == 32);
static_assert(offsetof(QS_SCANNER_PARAMETERS, brightness) == 52);
static_assert(offsetof(QS_SCANNER_PARAMETERS, autoDeskew) == 73);
static_assert(offsetof(QS_SCANNER_PARAMETERS, autoRotateParam) == 76);
static_assert(offsetof(QS_SCANNER_PARAMETERS, threshold) == 84);
static_assert(offsetof(QS_SCANNER_PARAMETERS, colorTone) == 88);
static_assert(offsetof(QS_SCANNER_PARAMETERS, removeBackground) == 120);
static_assert(offsetof(QS_SCANNER_PARAMETERS, colorDrop) == 136);
static_assert(offsetof(QS_SCANNER_PARAMETERS, edgeEnhance) == 164);
static_assert(offsetof(QS_SCANNER_PARAMETERS, lineRemoval) == 184);
static_assert(offsetof(QS_SCANNER_PARAMETERS, carrierSheet) == 212);
static_assert(offsetof(QS_SCANNER_PARAMETERS, edgeCut) == 216);
static_assert(offsetof(QS_SCANNER_PARAMETERS, edgeFill) == 240);
static_assert(offsetof(QS_SCANNER_PARAMETERS, blankPageRemoval) == 268);
static_assert(offsetof(QS_SCANNER_PARAMETERS, quietScan) == 280);
static_assert(offsetof(QS_SCANNER_PARAMETERS, wantColorProfile) == 288 && sizeof(QS_SCANNER_PARAMETERS) == 292);

}  // namespace orvalle_scan_api
