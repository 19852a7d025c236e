// The lines of second-generation frames, spelled out again for the tests.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "command/CmdString_v2.h"

namespace frame_lines {

using Param = orvalle_scan_api::_SCANCMD_SCANPARAM;
using orvalle_scan_api::CCmdString_v2;
using Make = std::string (CCmdString_v2::*)(const Param&) const;

inline Param zero() {
  Param param;
  std::memset(&param, 0, sizeof param);
  return param;
}

// A number that the enumeration may not know.
template <class Enum>
Enum as(int value) {
  return static_cast<Enum>(value);
}

struct KeyOperation {
  const char* key;
  Make make;
};
// Wire order of SSP.
inline const KeyOperation kSspKeys[] = {
    {"OS", &CCmdString_v2::MakeOSinfoString},
    {"PSRC", &CCmdString_v2::MakePaperSourceString},
    {"RESO", &CCmdString_v2::MakeResolutionString},
    {"CLR", &CCmdString_v2::MakeColorTypeString},
    {"AREA", &CCmdString_v2::MakeScanAreaString},
    {"MRGN", &CCmdString_v2::MakeMarginAreaString},
    {"DPLX", &CCmdString_v2::MakeDuplexScanString},
    {"BRIT", &CCmdString_v2::MakeBrightnessString},
    {"CONT", &CCmdString_v2::MakeContrastString},
    {"ATCL", &CCmdString_v2::MakeAutoColorLevelString},
    {"THRS", &CCmdString_v2::MakeMonoThresholdString},
    {"COMP", &CCmdString_v2::MakeCompressionString},
    {"RATE", &CCmdString_v2::MakeJpegCompressionRateString},
    {"JSF", &CCmdString_v2::MakeJpegSamplingFactorString},
    {"IPRC", &CCmdString_v2::MakeImageProcessingString},
    {"PTYPE", &CCmdString_v2::MakePaperTypeString},
    {"PAGE", &CCmdString_v2::MakeScanPageString},
    {"LONG", &CCmdString_v2::MakeLongPaperModeString},
    {"CARR", &CCmdString_v2::MakeCarrierSheetModeSetring},
    {"RMGC", &CCmdString_v2::MakeGroundColorRemovalString},
    {"DTDF", &CCmdString_v2::MakeDoubleFeedDetectionString},
    {"OPDF", &CCmdString_v2::MakeDoubleFeedMotionString},
    {"DT4V", &CCmdString_v2::MakeVertexDetectionString},
    {"DSKW", &CCmdString_v2::MakeAutoDeskewString},
    {"LSMD", &CCmdString_v2::MakeLandScapeModeString},
    {"RMBP", &CCmdString_v2::MakeBlankPageRemoval},
    {"RMMR", &CCmdString_v2::MakeMoireRemovalString},
    {"GMMA", &CCmdString_v2::MakeGammaAdjustString},
    {"TONE", &CCmdString_v2::MakeToneAdjustString},
    {"QTFD", &CCmdString_v2::MakeQuietScanString},
    {"USER", &CCmdString_v2::MakeUserName},
};
// The lines of a frame without their 0x0A; the frame's own first and last bytes are checked on the way.
inline std::vector<std::string> linesOf(const std::string& frame, const std::string& mnemonic) {
  const std::string head = "\x1B" + mnemonic + "\n";
  EXPECT_EQ(frame.substr(0, head.size()), head);
  EXPECT_EQ(frame.back(), '\x80');
  std::vector<std::string> lines;
  for (std::size_t at = head.size(); at + 1 < frame.size();) {
    const std::size_t end = frame.find('\n', at);
    if (end == std::string::npos) {
      ADD_FAILURE() << "a line without its end: " << frame.substr(at);
      break;
    }
    lines.push_back(frame.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}
inline std::vector<std::string> sspLines(const Param& param) {
  return linesOf(CCmdString_v2().MakeSSPcmdString(&param), "SSP");
}

}  // namespace frame_lines
