// The records that cross between the settings, the command strings and the response parsers.
#pragma once

#include <type_traits>

#include "scan_types.h"

namespace orvalle_scan_api {

enum SCANCMD_OS_INFO : std::int32_t {
  SCANCMD_OS_WIN = 1,
  SCANCMD_OS_MAC = 2,
  SCANCMD_OS_IOS = 3,
  SCANCMD_OS_ADR = 4,
  SCANCMD_OS_LNX = 5,
  SCANCMD_OS_WPH = 6,
};
enum SCANCMD_PAPERSOURCE_TYPE : std::int32_t {
  SCANCMD_PAPERSOURCE_AUTO = 0,
  SCANCMD_PAPERSOURCE_ADF = 1,
  SCANCMD_PAPERSOURCE_FB = 2,
};
enum SCANCMD_COLOR_TYPE : std::int32_t {
  SCANCMD_COLOR_TEXT = 0,
  SCANCMD_COLOR_ERRDIF = 1,
  SCANCMD_COLOR_GRAY256 = 2,
  SCANCMD_COLOR_C256 = 3,
  SCANCMD_COLOR_C24BIT = 4,
  SCANCMD_COLOR_AUTO = 5,
};
enum SCANCMD_COMPRESSION_TYPE : std::int32_t {
  SCANCMD_COMPRESSION_NONE = 1,  // 0 too
  SCANCMD_COMPRESSION_RLENGTH = 2,
  SCANCMD_COMPRESSION_JPEG = 3,
  SCANCMD_COMPRESSION_RLENGTH_SECOND = 4,
  SCANCMD_COMPRESSION_JPEG_SECOND = 5,
};
enum SCANCMD_JPEG_SAMPLING_FACTOR_TYPE : std::int32_t {
  SCANCMD_JPEG_SAMPLING_444 = 0,
  SCANCMD_JPEG_SAMPLING_422 = 1,
  SCANCMD_JPEG_SAMPLING_411 = 2,
  SCANCMD_JPEG_SAMPLING_420 = 3,
  SCANCMD_JPEG_SAMPLING_400 = 4,
};
enum SCANCMD_IMAGE_PROCESSING_TYPE : std::int32_t {
  SCANCMD_IMAGE_PROCESSING_NORMAL = 0,
  SCANCMD_IMAGE_PROCESSING_COPY = 1,
  SCANCMD_IMAGE_PROCESSING_OCR = 2,
  SCANCMD_IMAGE_PROCESSING_PHOTO = 3,
  SCANCMD_IMAGE_PROCESSING_TXTGR = 4,
};
enum SCANCMD_PAPER_TYPE : std::int32_t {
  SCANCMD_PAPER_NORMAL = 0,
  SCANCMD_PAPER_THIN = 1,
  SCANCMD_PAPER_THOCK = 2,
  SCANCMD_PAPER_PCARD = 3,
};
enum SCANCMD_SCAN_AREA_TYPE : std::int32_t {
  SCANCMD_SCAN_AREA_NORMAL = 0,
  SCANCMD_SCAN_AREA_FULL = 1,
  SCANCMD_SCAN_AREA_OVER = 2,
  SCANCMD_SCAN_AREA_AUTO = 3,
  SCANCMD_SCAN_AREA_ATDSKW = 4,
};
enum SCANCMD_SPECIAL_SCAN_TYPE : std::int32_t {
  SCANCMD_SPECIAL_SCAN_NORMAL = 0,  // 1 too
  SCANCMD_SPECIAL_SCAN_EDGEPRE = 2,
  SCANCMD_SPECIAL_SCAN_ORIGINAL = 3,
};
enum SCANCMD_EJECTION_TYPE : std::int32_t {
  SCANCMD_EJECTION_UNSPECIFIED = 0,
  SCANCMD_EJECTION_ALL = 1,
  SCANCMD_EJECTION_ONE = 2,
  SCANCMD_EJECTION_NO = 3,
};

struct _SCANCMD_RESOLUTION {
  std::uint32_t x;  // dots per inch
  std::uint32_t y;
  bool isAuto;
};
// Pixels; the commands send left, top, left + width, top + height in wrapping arithmetic.
struct _SCANCMD_SCANAREA {
  SCANCMD_SCAN_AREA_TYPE areaType;
  std::uint32_t left;
  std::uint32_t top;
  std::uint32_t width;
  std::uint32_t height;
};
struct _SCANCMD_DUPLEXSCAN {
  bool isDuplex;
  bool isBackSideOnly;
};
struct _SCANCMD_AUTOCOLORLEVEL {
  std::int32_t first;
  std::int32_t second;
};
struct _SCANCMD_MONO_THRESHOLD {
  std::uint32_t threshold;
  bool useDeviceValue;
  bool isValid;
};
struct _SCANCMD_GROUNDCOLORREMOVAL {
  bool isOn;
  bool hasLevel;
  std::int32_t level;
};
struct _SCANCMD_GAMMAADJIST {
  bool isOn;
  std::uint32_t value;
};
struct _SCANCMD_CARRIERSHEETMODE {
  bool isOn;
  bool isAuto;
};
struct _SCANCMD_BLANKPAGEREMOVAL {
  bool isOn;
  bool hasLevel;
  std::uint32_t level;
};
struct _SCANCMD_DOUBLEFEEDDETECTION {
  bool isOn;
  bool hasLevel;
  std::uint32_t level;
};
struct _SCANCMD_FEEDMOTION {
  bool isOn;
  bool hasValue;
  bool isContinue;
};

// Starts all zero; what the settings do not assign stays zero.
struct _SCANCMD_SCANPARAM {
  SCANCMD_OS_INFO osInfo;
  SCANCMD_PAPERSOURCE_TYPE paperSource;
  _SCANCMD_RESOLUTION resolution;
  SCANCMD_COLOR_TYPE colorType;
  _SCANCMD_SCANAREA scanArea;
  tagRECT marginArea;  // 1/100 mm
  _SCANCMD_DUPLEXSCAN duplexScan;
  std::int32_t brightness;  // -50 to 50; the commands add 50
  std::int32_t contrast;    // -50 to 50; the commands add 50
  bool autoColorLevelOn;
  _SCANCMD_AUTOCOLORLEVEL autoColorLevel;
  _SCANCMD_MONO_THRESHOLD monoThreshold;
  SCANCMD_COMPRESSION_TYPE compressionType;
  std::uint32_t jpegCompressionRate;
  SCANCMD_JPEG_SAMPLING_FACTOR_TYPE jpegSamplingFactor;
  SCANCMD_IMAGE_PROCESSING_TYPE imageProcessing;
  SCANCMD_PAPER_TYPE paperType;
  std::uint32_t scanPage;  // sheets; 0 no limit
  char userName[260];      // NUL-terminated
  SCANCMD_SPECIAL_SCAN_TYPE specialScan;
  bool longPaperMode;
  bool landscapeMode;
  bool vertexDetection;
  bool autoDeskew;
  _SCANCMD_GROUNDCOLORREMOVAL groundColorRemoval;
  _SCANCMD_GAMMAADJIST gammaAdjust;
  _SCANCMD_CARRIERSHEETMODE carrierSheetMode;
  _SCANCMD_BLANKPAGEREMOVAL blankPageRemoval;
  bool quietScan;
  _SCANCMD_DOUBLEFEEDDETECTION doubleFeedDetection;
  _SCANCMD_FEEDMOTION feedMotion;
  bool moireRemoval;
  bool toneAdjust;
};
static_assert(std::is_trivially_copyable_v<_SCANCMD_SCANPARAM>);

// A response body. The bytes belong to the command object that received them and live until the same command runs
// again.
struct _SCANCMD_RESPONSE_INFO {
  long size;
  std::uint8_t* data;
};

// The body of a capability response, with the generation that it told.
struct _SCANCMD_DEVICECAP_INFO {
  SCANCMD_GENERATION generation;
  std::int16_t version;
  long size;
  std::uint8_t* data;
};

}  // namespace orvalle_scan_api
