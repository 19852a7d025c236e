// Everything that is known of a device.
//
// The convention of every cap field: 0 not reported, 1 the feature is missing, 2 the device has it. Flag bytes are 0 or
// 1. Field names are those that the capability listing prints, and are kept letter for letter.
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
struct SUPPORTPAPERSOURCES {
  FLAG flatbed;
  FLAG adfSimplex;
  FLAG adfDuplex;
  FLAG cardslot;
};
struct DEVICESCANSIZES {
  AXIS flatbed;
  AXIS simplex;
  AXIS duplex;
  UNITTYPE unit;
};
struct LONGPAPERSUPPORTSIZE {
  CAP cap;
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
struct MONOTHRESHOLDSUPPORT {
  CAP autoThresholdCap;
  FLAG autoThresholdFlag;
  CAP manuanThresholdCap;
  std::int32_t manualThresholdLevelMax;
  std::int32_t manualThresholdLevelMin;
  std::int32_t manualThresholdLevelDefault;
};
struct SUPPORTADJUSTLEVEL {
  CAP cap;
  std::int32_t level;
};
struct BACKGROUNDREMOVALSUPPORT {
  SUPPORTADJUSTLEVEL blackAndWhite;
  SUPPORTADJUSTLEVEL errorDiffusion;
  SUPPORTADJUSTLEVEL trueGray;
  SUPPORTADJUSTLEVEL color24bit;
};
struct BLANKREMOVALSUPPORT {
  CAP cap;
  std::int32_t systemType;  // 0 or 1
  CAP levelCap;
  std::int32_t levelFixed;  // the last four are completed by the capability question
  std::int32_t levelMax;
  std::int32_t levelMin;
  std::int32_t levelDefault;
};
struct AUTOCOLORLEVELSUPPORT {
  CAP cap;
  std::int32_t firstMax;
  std::int32_t firstMin;
  std::int32_t firstDefault;
  std::int32_t secondMax;
  std::int32_t secondMin;
  std::int32_t secondDefault;
};
struct QUIETSCANSUPPORT {
  CAP cap;
  std::int32_t level;
  std::int32_t levelAlt;
};
struct CARRIERSHEETSUPPORT {
  CAP cap;
  std::int32_t skipOffsetSystem;
  SUPPORTCOLORTYPES supportColorType;
  struct {
    std::int32_t top;
    std::int32_t bottom;
  } offsetSizeMm;  // 1/100 mm
  AXIS resolutionDpiMax;
  AXIS resolutionDpiMin;
  FUNCEXCLUSION exclusion;
};
struct PAPERSOURCESUPPORT {
  SUPPORTPAPERSOURCES supportPaperSource;
  std::int32_t duplexScanSystem;
  std::int32_t adfStackCapacity;  // sheets
};
struct OPTICALRESOLUTIONS {
  AXIS flatbed;
  AXIS adfSimplex;
  AXIS adfDuplex;
};

struct DEVINFO_MODELINFO {
  std::int32_t category;  // 0 to 3
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
  DEVICESCANSIZES deviceScanSizeMax;
  DEVICESCANSIZES deviceScanSizeMin;
  DEVICESCANSIZES supportDocSizeMax;
  LONGPAPERSUPPORTSIZE longPaperLengthMax;
  struct {
    AXIS flatbed;
    AXIS simplex;
    AXIS duplex;
    AXIS cardslot;
    UNITTYPE unit;
  } startOffset;
  struct {
    MARGIN flatbed;
    MARGIN adfSimplex;
    MARGIN adfDuplex;
    MARGIN cardslot;
  } marginSize;
  struct {
    MARGIN flatbed_plus;
    MARGIN flatbed_minus;
    MARGIN adfSimplex_plus;
    MARGIN adfSimplex_minus;
    MARGIN adfDuplex_plus;
    MARGIN adfDuplex_minus;
    MARGIN cardslot_plus;
    MARGIN cardslot_minus;
  } marginAdjust;
  PAPERSETTINGPOSITIONS paperPosition;
  CARDSIZEORIENT cardSizeOrient;
  struct {
    FLAG scan1Paper;
    FLAG definingPageNums;
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
  } cancelSystem;
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
  } errorSystem;
  struct {
    CAP cap;  // 0, 1 or 2
    std::int32_t red;
    std::int32_t green;
    std::int32_t blue;
    std::int32_t upperRange;
    std::int32_t lowerRange;
  } colorTape;
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
      std::int32_t compressLevel;
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
  CAP colorProfileOutput;
  std::int32_t gammaRange;
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
    std::int32_t cornerInfoOutputSystem;
    AXIS resolutionDpiMin;
    AXIS resolutionDpiMax;
  } cornerDetect;
  struct {
    CAP cap;
    SUPPORTPAPERSOURCES supportPaperSource;
    FLAG detectSystem;
    FLAG detectOverScan;
  } deviceDetectSize;
};
static_assert(sizeof(SUPPORTAUTOPAPERSIZEMODE) == 92);

struct DEVINFO_ADVANCEDFUNC {
  SUPPORTAUTOPAPERSIZEMODE autoSize;
  struct {
    CAP cap;
    struct {
      FLAG scanFromFlatbed;
      FLAG showGuidsOnPanel;
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
    std::int32_t systemType;  // 1 or 2
    std::int32_t level;
  } multifeedDetect;
  BACKGROUNDREMOVALSUPPORT backgroundRemove;
  BACKGROUNDREMOVALSUPPORT breedthroughRemove;
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
