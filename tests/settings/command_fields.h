// Every field of the command record by name, for tests that compare records.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "command/scancmd_param.h"

namespace orvalle_scan_api {

struct CommandField {
  const char* name;
  std::int64_t (*get)(const _SCANCMD_SCANPARAM&);
};

// Any byte of the user's name that is not 0.
inline std::int64_t anyOfName(const _SCANCMD_SCANPARAM& command) {
  std::int64_t any = 0;
  for (const char c : command.userName) any |= c;
  return any;
}

#define QS_FIELD(path)                                                                   \
  {                                                                                      \
#path, [](const _SCANCMD_SCANPARAM& c) { return static_cast<std::int64_t>(c.path); } \
  }
inline constexpr CommandField kCommandFields[] = {
    QS_FIELD(osInfo),
    QS_FIELD(paperSource),
    QS_FIELD(resolution.x),
    QS_FIELD(resolution.y),
    QS_FIELD(resolution.isAuto),
    QS_FIELD(colorType),
    QS_FIELD(scanArea.areaType),
    QS_FIELD(scanArea.left),
    QS_FIELD(scanArea.top),
    QS_FIELD(scanArea.width),
    QS_FIELD(scanArea.height),
    QS_FIELD(marginArea.left),
    QS_FIELD(marginArea.top),
    QS_FIELD(marginArea.right),
    QS_FIELD(marginArea.bottom),
    QS_FIELD(duplexScan.isDuplex),
    QS_FIELD(duplexScan.isBackSideOnly),
    QS_FIELD(brightness),
    QS_FIELD(contrast),
    QS_FIELD(autoColorLevelOn),
    QS_FIELD(autoColorLevel.first),
    QS_FIELD(autoColorLevel.second),
    QS_FIELD(monoThreshold.threshold),
    QS_FIELD(monoThreshold.useDeviceValue),
    QS_FIELD(monoThreshold.isValid),
    QS_FIELD(compressionType),
    QS_FIELD(jpegCompressionRate),
    QS_FIELD(jpegSamplingFactor),
    QS_FIELD(imageProcessing),
    QS_FIELD(paperType),
    QS_FIELD(scanPage),
    {"userName", anyOfName},
    QS_FIELD(specialScan),
    QS_FIELD(longPaperMode),
    QS_FIELD(landscapeMode),
    QS_FIELD(vertexDetection),
    QS_FIELD(autoDeskew),
    QS_FIELD(groundColorRemoval.isOn),
    QS_FIELD(groundColorRemoval.hasLevel),
    QS_FIELD(groundColorRemoval.level),
    QS_FIELD(gammaAdjust.isOn),
    QS_FIELD(gammaAdjust.value),
    QS_FIELD(carrierSheetMode.isOn),
    QS_FIELD(carrierSheetMode.isAuto),
    QS_FIELD(blankPageRemoval.isOn),
    QS_FIELD(blankPageRemoval.hasLevel),
    QS_FIELD(blankPageRemoval.level),
    QS_FIELD(quietScan),
    QS_FIELD(doubleFeedDetection.isOn),
    QS_FIELD(doubleFeedDetection.hasLevel),
    QS_FIELD(doubleFeedDetection.level),
    QS_FIELD(feedMotion.isOn),
    QS_FIELD(feedMotion.hasValue),
    QS_FIELD(feedMotion.isContinue),
    QS_FIELD(moireRemoval),
    QS_FIELD(toneAdjust),
};
#undef QS_FIELD

inline constexpr std::size_t kCommandFieldCount = std::size(kCommandFields);

using CommandValues = std::array<std::int64_t, kCommandFieldCount>;

inline CommandValues valuesOf(const _SCANCMD_SCANPARAM& command) {
  CommandValues values{};
  for (std::size_t i = 0; i < kCommandFieldCount; ++i) values[i] = kCommandFields[i].get(command);
  return values;
}

}  // namespace orvalle_scan_api
