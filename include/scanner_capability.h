// Everything that is known of a device.
//
// The convention of every cap field: 0 not reported, 1 the feature is missing, 2 the device has it. Flag bytes are 0 or
// 1: the colour type, paper source or function of that name is there. Where a comment says "passed on", the number is
// the device's own and nothing in the core goes by it. Resolutions are dots per inch; a length is in the unit that
// stands beside it. What does not apply to a device, such as the feeder of a bed without one, is 0.
// Field names are those that the capability listing prints, and are kept letter for letter.
#pragma once

#include <cstddef>
#include <type_traits>

#include "scan_types.h"

namespace orvalle_scan_api {

using CAP = std::int32_t;
using FLAG = std::uint8_t;

struct SUPPORTCOLORTYPES {
  FLAG blackAndWhite;
  FLAG errorDiffusion;
  FLAG trueGray;
  FLAG color256;
  FLAG color24bit;
  FLAG color256table;
  FLAG autoColor;
};
static_assert(sizeof(SUPPORTCOLORTYPES) == 7);
struct SUPPORTPAPERSOURCES {
  FLAG flatbed;
  FLAG adfSimplex;
  FLAG adfDuplex;
  FLAG cardslot;
};
static_assert(sizeof(SUPPORTPAPERSOURCES) == 4);
// Width and height for each source, in one unit.
struct DEVICESCANSIZES {
  AXIS flatbed;
  AXIS simplex;
  AXIS duplex;
  UNITTYPE unit;
};
struct LONGPAPERSUPPORTSIZE {
  CAP cap;  // long paper is taken; this also tells a document scanner
  std::int32_t simplexMaxLength;
  std::int32_t duplexMaxLength;
  UNITTYPE unit;
};
// Where the paper lies in the maximum scan area: 0 against the left or top edge, 1 centred, 2 right or bottom. The
// second-generation parser also uses 3 and 4 for Y, as the device names them.
struct PAPERSETTINGPOSITIONS {
  std::int32_t flatbedX;
  std::int32_t flatbedY;
  std::int32_t adfX;
  std::int32_t adfY;
  std::int32_t cardslotX;
  std::int32_t cardslotY;
};
// Whether a business card can be scanned, and how it lies: 0 not told, 1 upright, 2 lengthwise.
struct CARDSIZEORIENT {
  CAP capFlatbed;
  std::int32_t orientFlatbed;
  CAP capAdf;
  std::int32_t orientAdf;
};
// Device functions that exclude the mode they belong to.
struct FUNCEXCLUSION {
  FLAG detectDocSize;
  FLAG detectMultifeed;
  FLAG removeBackgroundByDevice;
  FLAG deskewByDevice;
  FLAG autoColorByDevice;
  FLAG blankRemovalByDevice;
  FLAG detectDocSizeByDevice;
  FLAG autoResolutionByDevice;
  FLAG autoRotateByDevice;
};
static_assert(sizeof(FUNCEXCLUSION) == 9);
struct MONOTHRESHOLDSUPPORT {
  CAP autoThresholdCap;
  FLAG autoThresholdFlag;  // always 0
  CAP manuanThresholdCap;
  std::int32_t manualThresholdLevelMax;  // of a scale of 0 to 255
  std::int32_t manualThresholdLevelMin;
  std::int32_t manualThresholdLevelDefault;
};
struct SUPPORTADJUSTLEVEL {
  CAP cap;
  std::int32_t level;  // the highest, up to 255; below 2 the feature is on or off only
};
struct BACKGROUNDREMOVALSUPPORT {
  SUPPORTADJUSTLEVEL blackAndWhite;
  SUPPORTADJUSTLEVEL errorDiffusion;
  SUPPORTADJUSTLEVEL trueGray;
  SUPPORTADJUSTLEVEL color24bit;
};
struct BLANKREMOVALSUPPORT {
  CAP cap;
  std::int32_t systemType;  // 0 or 1, passed on
  CAP levelCap;             // the device takes a level
  // In the full record 0 but for the maximum; the question for this feature, and the flat record, complete them.
  std::int32_t levelFixed;  // 1
  std::int32_t levelMax;    // highest level, from 0
  std::int32_t levelMin;
  std::int32_t levelDefault;  // half the maximum
};
struct AUTOCOLORLEVELSUPPORT {
  CAP cap;
  // Two levels, each from its minimum 0. The defaults are completed, as the middle, like those above.
  std::int32_t firstMax;
  std::int32_t firstMin;
  std::int32_t firstDefault;
  std::int32_t secondMax;
  std::int32_t secondMin;
  std::int32_t secondDefault;
};
struct QUIETSCANSUPPORT {
  CAP cap;
  std::int32_t level;  // both passed on
  std::int32_t levelAlt;
};
struct CARRIERSHEETSUPPORT {
  CAP cap;
  std::int32_t skipOffsetSystem;  // 1: the device itself finds out that a sheet is used
  SUPPORTCOLORTYPES supportColorType;
  struct {
    std::int32_t top;  // 0 stands for 32 mm
    std::int32_t bottom;
  } offsetSizeMm;  // what the sheet's own edges take from the page, in 1/100 mm
  AXIS resolutionDpiMax;
  AXIS resolutionDpiMin;
  FUNCEXCLUSION exclusion;
};
struct PAPERSOURCESUPPORT {
  SUPPORTPAPERSOURCES supportPaperSource;
  std::int32_t duplexScanSystem;  // 0 or 1, passed on
  std::int32_t adfStackCapacity;  // sheets
};
struct OPTICALRESOLUTIONS {
  AXIS flatbed;
  AXIS adfSimplex;
  AXIS adfDuplex;
};

struct DEVINFO_MODELINFO {
  std::int32_t category;  // 0 to 3, passed on; the kind of machine is told by its features
  char modelName[128];    // a name of 128 characters has no terminator
};
static_assert(sizeof(DEVINFO_MODELINFO) == 132);

struct DEVINFO_FUNC {
  struct {
    struct {
      FLAG scanToImage;
      FLAG scanToCOR;
      FLAG scanToEmail;
      FLAG scanToFile;
    } supportPushScanEvent;
    struct {
      CAP cap;
      struct {
        FLAG pushScan;
        FLAG otherSystem;
      } supportScanSystem;
    } continuousScan;
    struct {
      CAP cap;
      FLAG dupScanOnly;
    } paramSetting;
    struct {
      FLAG officeDocCreator;
    } deviceSupportScanFunc;
  } pushScan;
  CAP qciCommandSupport;
};
static_assert(offsetof(DEVINFO_FUNC, qciCommandSupport) == 24 && sizeof(DEVINFO_FUNC) == 28);

struct DEVINFO_BASEFUNC {
  OPTICALRESOLUTIONS resolutionOptical;  // dots per inch
  SUPPORTCOLORTYPES colorType;
  PAPERSOURCESUPPORT paperSource;
  DEVICESCANSIZES deviceScanSizeMax;  // what the device can scan
  DEVICESCANSIZES deviceScanSizeMin;
  DEVICESCANSIZES supportDocSizeMax;  // what fits within its margins
  LONGPAPERSUPPORTSIZE longPaperLengthMax;
  struct {
    AXIS flatbed;
    AXIS simplex;
    AXIS duplex;
    AXIS cardslot;
    UNITTYPE unit;
  } startOffset;  // never told: 0
  struct {
    MARGIN flatbed;
    MARGIN adfSimplex;
    MARGIN adfDuplex;
    MARGIN cardslot;
  } marginSize;  // what cannot be scanned along each edge, as negative numbers
  struct {
    MARGIN flatbed_plus;
    MARGIN flatbed_minus;
    MARGIN adfSimplex_plus;
    MARGIN adfSimplex_minus;
    MARGIN adfDuplex_plus;
    MARGIN adfDuplex_minus;
    MARGIN cardslot_plus;
    MARGIN cardslot_minus;
  } marginAdjust;  // how far each edge can be moved, stored with the sign turned
  PAPERSETTINGPOSITIONS paperPosition;
  CARDSIZEORIENT cardSizeOrient;
  struct {
    FLAG scan1Paper;        // can stop after one sheet
    FLAG definingPageNums;  // can stop after a number of sheets
  } multipageScanSystem;
  struct {
    CAP capOverScan;
    SUPPORTCOLORTYPES colorType;
    FUNCEXCLUSION funcExclusion;
  } overScanSystem;
  struct {
    CAP cap;
    FLAG ejectAll;
    FLAG ejectOne;
    FLAG ejectNone;
  } cancelSystem;  // which sheets the device can eject after a cancellation
  struct {
    struct {
      CAP cap;
      FLAG flagA;
      FLAG flagB;
    } first;
    struct {
      CAP cap;
      FLAG stop;
      FLAG resume;
      FLAG keepOn;
    } feed;
    struct {
      CAP cap;
      FLAG flagA;
      FLAG flagB;
    } third;
  } errorSystem;  // how the device goes on after an error; feed: after a double feed. The others are passed on
  struct {
    CAP cap;           // 0, 1 or 2; not 0: there is a tape
    std::int32_t red;  // 0 to 255
    std::int32_t green;
    std::int32_t blue;
    std::int32_t upperRange;  // how much lighter and how much darker it may look, 0 to 255
    std::int32_t lowerRange;
  } colorTape;  // the colour behind the paper, which shows through punch holes
};
static_assert(offsetof(DEVINFO_BASEFUNC, colorType) == 24 && offsetof(DEVINFO_BASEFUNC, paperSource) == 32);
static_assert(offsetof(DEVINFO_BASEFUNC, deviceScanSizeMax) == 44 && sizeof(DEVICESCANSIZES) == 28);
static_assert(offsetof(DEVINFO_BASEFUNC, longPaperLengthMax) == 128);
static_assert(offsetof(DEVINFO_BASEFUNC, startOffset) == 144 && offsetof(DEVINFO_BASEFUNC, marginSize) == 180);
static_assert(offsetof(DEVINFO_BASEFUNC, marginAdjust) == 260 && offsetof(DEVINFO_BASEFUNC, paperPosition) == 420);
static_assert(offsetof(DEVINFO_BASEFUNC, cardSizeOrient) == 444);
static_assert(offsetof(DEVINFO_BASEFUNC, multipageScanSystem) == 460);
static_assert(offsetof(DEVINFO_BASEFUNC, overScanSystem) == 464 && offsetof(DEVINFO_BASEFUNC, cancelSystem) == 484);
static_assert(offsetof(DEVINFO_BASEFUNC, errorSystem) == 492 && offsetof(DEVINFO_BASEFUNC, colorTape) == 516);
static_assert(sizeof(DEVINFO_BASEFUNC) == 540);

struct COMPRESSSUPPORT {
  FLAG noCompress;
  FLAG packbits;
  FLAG mh;
  FLAG jpeg;
};

struct DEVINFO_IMAGEPROCFUNC {
  struct {
    COMPRESSSUPPORT blackAndWhite;
    COMPRESSSUPPORT errorDiffusion;
    COMPRESSSUPPORT trueGray;
    COMPRESSSUPPORT color256;
    COMPRESSSUPPORT color24bit;
    struct {
      std::int32_t compressLevel;  // passed on
      struct {
        FLAG ycbcr444;
        FLAG ycbcr422;
        FLAG ycbcr411;
        FLAG ycbcr420;
        FLAG ycbcr400;
      } jpegSamplingFactor;
    } jpegCompression;
  } supportCompresssionType;
  MONOTHRESHOLDSUPPORT monoThreshold;
  struct {
    FLAG ocr;
    FLAG photo;
    FLAG textandgraph;
    FLAG copy;
  } specialDocumentImageProcs;
  CAP colorProfileOutput;   // the device gives an ICC profile
  std::int32_t gammaRange;  // passed on
  struct {
    CAP moireCap;
    AXIS moireMaxResolution;
  } moireRemoval;
  CAP toneAdjust;
};
static_assert(offsetof(DEVINFO_IMAGEPROCFUNC, monoThreshold) == 32 && sizeof(MONOTHRESHOLDSUPPORT) == 24);
static_assert(offsetof(DEVINFO_IMAGEPROCFUNC, colorProfileOutput) == 60 && sizeof(DEVINFO_IMAGEPROCFUNC) == 84);

// All ways in which the paper's size can be found out. Max and Min stand in another order in autoCrop than in
// cornerDetect.
struct SUPPORTAUTOPAPERSIZEMODE {
  struct {
    CAP cap;
    SUPPORTCOLORTYPES supportColorType;
    SUPPORTPAPERSOURCES supportPaperSource;
  } paperWidthDetect;
  struct {
    CAP cap;
    SUPPORTCOLORTYPES supportColorType;
    AXIS resolutionDpiMax;
    AXIS resolutionDpiMin;
  } autoCrop;
  struct {
    CAP cap;
    SUPPORTCOLORTYPES supportColorType;
    SUPPORTPAPERSOURCES supportPaperSource;
    std::int32_t cornerInfoOutputSystem;  // 1 the corners come with the page, passed on
    AXIS resolutionDpiMin;
    AXIS resolutionDpiMax;
  } cornerDetect;
  struct {
    CAP cap;
    SUPPORTPAPERSOURCES supportPaperSource;
    FLAG detectSystem;    // together with deskew only
    FLAG detectOverScan;  // beyond the paper's edges
  } deviceDetectSize;
};
static_assert(sizeof(SUPPORTAUTOPAPERSIZEMODE) == 92);

struct DEVINFO_ADVANCEDFUNC {
  SUPPORTAUTOPAPERSIZEMODE autoSize;
  struct {
    CAP cap;
    struct {
      FLAG scanFromFlatbed;
      FLAG showGuidsOnPanel;  // the panel leads through the scan
    } deviceFunc;
  } idCardMode;
  struct {
    CAP cap;
    SUPPORTPAPERSOURCES ladscapeCapablePaperSource;
  } landscape;
  CARRIERSHEETSUPPORT carrierSheet;
  struct {
    CAP cap;
    SUPPORTCOLORTYPES supportColorType;
    AXIS resolutionDpiMin;
    AXIS resolutionDpiMax;
    FUNCEXCLUSION exclusion;
  } plasticCard;
  struct {
    CAP cap;
    std::int32_t systemType;  // 2 the device takes a level, 1 it does not
    std::int32_t level;       // the highest
  } multifeedDetect;
  BACKGROUNDREMOVALSUPPORT backgroundRemove;
  BACKGROUNDREMOVALSUPPORT breedthroughRemove;  // what shows through from the back; passed on
  struct {
    CAP cap;
    SUPPORTPAPERSOURCES suportPaperSource;
    FLAG systemType[4];  // byte 0 and byte 1 are two flags of the device, the other two are 0
  } deskew;
  BLANKREMOVALSUPPORT blankRemoval;
  AUTOCOLORLEVELSUPPORT autoColor;
  CAP detectResolution;
  CAP adfOnlyBackScan;
  QUIETSCANSUPPORT quietScan;
};
static_assert(offsetof(DEVINFO_ADVANCEDFUNC, idCardMode) == 92 && offsetof(DEVINFO_ADVANCEDFUNC, landscape) == 100);
static_assert(offsetof(DEVINFO_ADVANCEDFUNC, carrierSheet) == 108 && sizeof(CARRIERSHEETSUPPORT) == 52);
static_assert(offsetof(DEVINFO_ADVANCEDFUNC, plasticCard) == 160);
static_assert(offsetof(DEVINFO_ADVANCEDFUNC, multifeedDetect) == 200);
static_assert(offsetof(DEVINFO_ADVANCEDFUNC, backgroundRemove) == 212);
static_assert(offsetof(DEVINFO_ADVANCEDFUNC, deskew) == 276 && offsetof(DEVINFO_ADVANCEDFUNC, blankRemoval) == 288);
static_assert(offsetof(DEVINFO_ADVANCEDFUNC, autoColor) == 316);
static_assert(offsetof(DEVINFO_ADVANCEDFUNC, quietScan) == 352 && sizeof(DEVINFO_ADVANCEDFUNC) == 364);

struct QS_SCANNER_CAPABILITY {
  SCANCMD_GENERATION generation;  // tells which read thread and parser serve the device
  std::uint16_t commandVersion;   // such as 0x0101 or 0x0102
  DEVINFO_MODELINFO modelInfo;
  DEVINFO_FUNC func;
  DEVINFO_BASEFUNC baseFunc;
  DEVINFO_IMAGEPROCFUNC imageProcFunc;
  DEVINFO_ADVANCEDFUNC advancedFunc;
};
static_assert(std::is_standard_layout_v<QS_SCANNER_CAPABILITY> && std::is_trivially_copyable_v<QS_SCANNER_CAPABILITY>);
static_assert(offsetof(QS_SCANNER_CAPABILITY, modelInfo) == 8 && offsetof(QS_SCANNER_CAPABILITY, func) == 140);
static_assert(offsetof(QS_SCANNER_CAPABILITY, baseFunc) == 168 &&
              offsetof(QS_SCANNER_CAPABILITY, imageProcFunc) == 708);
static_assert(offsetof(QS_SCANNER_CAPABILITY, advancedFunc) == 792 && sizeof(QS_SCANNER_CAPABILITY) == 1156);

}  // namespace orvalle_scan_api
