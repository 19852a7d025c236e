// The enhancement record: what IImageEnhance::Process is asked to do. It starts all zero. A part is meant when its flag
// of the same name is set. Numbers without a range are the host's, handed on as they came.
#pragma once

#include <cstddef>
#include <type_traits>

#include "../scan_types.h"

namespace orvalle_scan_api {

struct IE_COLORDROP {
  std::uint8_t isChromatic;
  std::uint8_t red;
  std::uint8_t green;
  std::uint8_t blue;
  std::int32_t range;  // how far a colour may be from this one
  std::int32_t flag;   // 0 or 1
};
struct IE_PUNCHHOLE {
  std::int32_t margin[4];     // 30 each
  std::int32_t areaLimit;     // 3
  std::int32_t step;          // 10
  std::int32_t hasColorTape;  // 1: holes show a tape whose grey lies between grayLow and grayHigh
  std::int32_t grayLow;
  std::int32_t grayHigh;
  std::int32_t fillMode;     // 0, 1 or 2
  std::int32_t reserved[2];  // 0
};
struct IE_TONEADJUST {
  std::uint8_t brightness;  // 128 is neutral
  std::uint8_t contrast;    // 128 is neutral
  std::uint8_t shadow;      // 0 to 254
  std::uint8_t highlight;   // 1 to 255
  double gamma;             // 0.1 to 10
};
struct IE_AUTOTHRESHOLD {
  std::int16_t first[2];
  std::size_t word;
  std::int16_t second[2];
};
struct IE_NOISEREMOVAL {
  std::int32_t value[5];
};
struct IE_LINEREMOVAL {
  std::size_t enable;
  std::size_t reserved;  // 0
  std::int16_t mode;     // 0x21
  std::int32_t second;   // mind the order: second stands before first
  std::int32_t first;
};
struct IE_EDGEFILL {
  bool isPixel;
  std::int32_t first;  // mind the order: third stands before second
  std::int32_t third;
  std::int32_t second;
  std::int32_t fourth;
  std::int32_t fifth;
};

struct _IE_PARAM {
  bool doFirstEnhance;
  bool doAutoTone;
  bool doSmoothing;
  bool doThickText;
  bool doColorDrop;
  bool doDotTextCombine;
  bool doEdgeEnhance;
  bool doPunchHole;
  bool doToneAdjust;
  bool doNoiseRemoval;
  bool doLineRemoval;
  bool doAutoThreshold;
  std::int32_t colorClass;  // 1 black and white, 2 error diffusion, 3 grey, 4 colour, 0 any other
  bool doAutoRotate;
  bool doEdgeFill;
  std::int32_t smoothingMode;
  std::int32_t smoothingLevel;  // -50 to 50
  IE_COLORDROP colorDrop;
  IE_PUNCHHOLE punchHole;
  IE_TONEADJUST toneAdjust;
  std::uint8_t grayBrightness;      // 128 is neutral
  std::int32_t thickTextLevel;      // 1 to 5
  std::int32_t dotTextCombineMode;  // 1 below 600 dpi, 2 from there on
  std::int32_t edgeEnhanceLevel;    // 1 to 5
  IE_AUTOTHRESHOLD autoThreshold;
  std::int32_t threshold;  // 1 to 254; anything else means automatic
  IE_NOISEREMOVAL noiseRemoval;
  IE_LINEREMOVAL lineRemovalA;
  IE_LINEREMOVAL lineRemovalB;
  std::int32_t lineRemovalThird;
  IE_EDGEFILL edgeFill;
  std::int32_t autoRotateParam;
};
static_assert(std::is_standard_layout_v<_IE_PARAM> && std::is_trivially_copyable_v<_IE_PARAM>);
static_assert(offsetof(_IE_PARAM, colorClass) == 12 && offsetof(_IE_PARAM, smoothingMode) == 20);
static_assert(offsetof(_IE_PARAM, colorDrop) == 28 && offsetof(_IE_PARAM, punchHole) == 40);
static_assert(offsetof(_IE_PARAM, toneAdjust) == 88 && offsetof(_IE_PARAM, grayBrightness) == 104);
static_assert(offsetof(_IE_PARAM, autoThreshold) == 120 && sizeof(IE_AUTOTHRESHOLD) == 24);
static_assert(offsetof(_IE_PARAM, threshold) == 144 && offsetof(_IE_PARAM, lineRemovalA) == 168);
static_assert(offsetof(_IE_PARAM, lineRemovalThird) == 232 && sizeof(IE_LINEREMOVAL) == 32);
static_assert(offsetof(_IE_PARAM, autoRotateParam) == 260 && sizeof(_IE_PARAM) == 264);

}  // namespace orvalle_scan_api
