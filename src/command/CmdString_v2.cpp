#include "command/CmdString_v2.h"

#include <cstring>

#include "command/command_lines.h"

namespace orvalle_scan_api {
namespace {

using namespace command_lines;
using Param = _SCANCMD_SCANPARAM;
using Line = MakeLine<CCmdString_v2>;

// Row order is wire order.
constexpr Line kSSPLines[] = {
    &CCmdString_v2::MakeOSinfoString,               // OS
    &CCmdString_v2::MakePaperSourceString,          // PSRC
    &CCmdString_v2::MakeResolutionString,           // RESO
    &CCmdString_v2::MakeColorTypeString,            // CLR
    &CCmdString_v2::MakeScanAreaString,             // AREA
    &CCmdString_v2::MakeMarginAreaString,           // MRGN
    &CCmdString_v2::MakeDuplexScanString,           // DPLX
    &CCmdString_v2::MakeBrightnessString,           // BRIT
    &CCmdString_v2::MakeContrastString,             // CONT
    &CCmdString_v2::MakeAutoColorLevelString,       // ATCL  only with an automatic colour level
    &CCmdString_v2::MakeMonoThresholdString,        // THRS  only with a valid threshold of our own
    &CCmdString_v2::MakeCompressionString,          // COMP
    &CCmdString_v2::MakeJpegCompressionRateString,  // RATE
    &CCmdString_v2::MakeJpegSamplingFactorString,   // JSF
    &CCmdString_v2::MakeImageProcessingString,      // IPRC
    &CCmdString_v2::MakePaperTypeString,            // PTYPE
    &CCmdString_v2::MakeScanPageString,             // PAGE
    &CCmdString_v2::MakeLongPaperModeString,        // LONG
    &CCmdString_v2::MakeCarrierSheetModeSetring,    // CARR
    &CCmdString_v2::MakeGroundColorRemovalString,   // RMGC
    &CCmdString_v2::MakeDoubleFeedDetectionString,  // DTDF
    &CCmdString_v2::MakeDoubleFeedMotionString,     // OPDF  only with a motion
    &CCmdString_v2::MakeVertexDetectionString,      // DT4V
    &CCmdString_v2::MakeAutoDeskewString,           // DSKW
    &CCmdString_v2::MakeLandScapeModeString,        // LSMD
    &CCmdString_v2::MakeBlankPageRemoval,           // RMBP
    &CCmdString_v2::MakeMoireRemovalString,         // RMMR
    &CCmdString_v2::MakeGammaAdjustString,          // GMMA
    &CCmdString_v2::MakeToneAdjustString,           // TONE
    &CCmdString_v2::MakeQuietScanString,            // QTFD
    &CCmdString_v2::MakeUserName,                   // USER
};

constexpr Line kXSCLines[] = {
    &CCmdString_v2::MakeResolutionString,    // RESO
    &CCmdString_v2::MakeLastScanAreaString,  // AREA
    &CCmdString_v2::MakeSpecialModeString,   // MODE
};

constexpr Keyword kAreaWords[] = {{1, "FULL"}, {2, "OVER"}, {3, "AUTO"}, {4, "ATDSKW"}};

const char* onOff(bool on) { return on ? "ON" : "OFF"; }

// The three-way form of a function that may have a level.
template <class Setting>
const char* onOffOrLevel(qvtcl::CTString& number, const Setting& setting) {
  if (setting.isOn && setting.hasLevel) return number.ToString(setting.level);
  return onOff(setting.isOn);
}

std::string paperSourceLine(SCANCMD_PAPERSOURCE_TYPE source) {
  static constexpr Keyword kWords[] = {{1, "ADF"}, {2, "FB"}};
  return line("PSRC", wordOf(kWords, source, "AUTO"));
}

}  // namespace

std::string CCmdString_v2::MakeCKDcmdString(SCANCMD_PAPERSOURCE_TYPE source) const {
  return frame("CKD", paperSourceLine(source));
}

std::string CCmdString_v2::MakeSSPcmdString(const Param* param) const { return frame("SSP", *this, kSSPLines, param); }

std::string CCmdString_v2::MakeXSCcmdString(const Param* param) const { return frame("XSC", *this, kXSCLines, param); }

std::string CCmdString_v2::MakeABTcmdString(SCANCMD_EJECTION_TYPE ejection) const {
  return frame("ABT", MakeEjectionModeString(ejection));
}

std::string CCmdString_v2::MakeOSinfoString(const Param& param) const {
  static constexpr Keyword kWords[] = {{2, "MAC"}, {3, "IOS"}, {4, "ADR"}, {5, "LNX"}, {6, "WPH"}};
  return line("OS", wordOf(kWords, param.osInfo, "WIN"));
}

std::string CCmdString_v2::MakePaperSourceString(const Param& param) const {
  return paperSourceLine(param.paperSource);
}

std::string CCmdString_v2::MakeResolutionString(const Param& param) const {
  return line("RESO", param.resolution.isAuto ? "AUTO" : joined(number_, {param.resolution.x, param.resolution.y}));
}

std::string CCmdString_v2::MakeColorTypeString(const Param& param) const {
  static constexpr Keyword kWords[] = {{0, "TEXT"}, {1, "ERRDIF"}, {2, "GRAY256"}, {3, "C256"}, {4, "C24BIT"}};
  return line("CLR", wordOf(kWords, param.colorType, "AUTO"));
}

std::string CCmdString_v2::MakeScanAreaString(const Param& param) const {
  return line("AREA", wordOf(kAreaWords, param.scanArea.areaType, "NORMAL"));
}

std::string CCmdString_v2::MakeMarginAreaString(const Param& param) const {
  // The order left, right, top, bottom is the device's; it is not the rectangle's own.
  const tagRECT& margin = param.marginArea;
  return line("MRGN", joined(number_, {margin.left / 10, margin.right / 10, margin.top / 10, margin.bottom / 10}));
}

std::string CCmdString_v2::MakeDuplexScanString(const Param& param) const {
  const bool backOnly = param.duplexScan.isDuplex && param.duplexScan.isBackSideOnly;
  return line("DPLX", backOnly ? "BACK" : onOff(param.duplexScan.isDuplex));
}

std::string CCmdString_v2::MakeBrightnessString(const Param& param) const {
  return line("BRIT", number_.ToString(param.brightness + 50LL));
}

std::string CCmdString_v2::MakeContrastString(const Param& param) const {
  return line("CONT", number_.ToString(param.contrast + 50LL));
}

std::string CCmdString_v2::MakeAutoColorLevelString(const Param& param) const {
  if (!param.autoColorLevelOn) return {};
  return line("ATCL", joined(number_, {param.autoColorLevel.first, param.autoColorLevel.second}));
}

std::string CCmdString_v2::MakeMonoThresholdString(const Param& param) const {
  if (param.monoThreshold.useDeviceValue || !param.monoThreshold.isValid) return {};
  return line("THRS", number_.ToString(param.monoThreshold.threshold));
}

std::string CCmdString_v2::MakeCompressionString(const Param& param) const {
  static constexpr Keyword kWords[] = {{2, "RLENGTH"}, {4, "RLENGTH"}, {3, "JPEG"}, {5, "JPEG"}};
  return line("COMP", wordOf(kWords, param.compressionType, "NONE"));
}

std::string CCmdString_v2::MakeJpegCompressionRateString(const Param& param) const {
  return line("RATE", number_.ToString(param.jpegCompressionRate));
}

std::string CCmdString_v2::MakeJpegSamplingFactorString(const Param& param) const {
  static constexpr Keyword kWords[] = {{1, "422"}, {2, "411"}, {3, "420"}, {4, "400"}};
  return line("JSF", wordOf(kWords, param.jpegSamplingFactor, "444"));
}

std::string CCmdString_v2::MakeImageProcessingString(const Param& param) const {
  static constexpr Keyword kWords[] = {{1, "COPY"}, {2, "OCR"}, {3, "PHOTO"}, {4, "TXTGR"}};
  return line("IPRC", wordOf(kWords, param.imageProcessing, "NORMAL"));
}

std::string CCmdString_v2::MakePaperTypeString(const Param& param) const {
  // Kept: "THOCK" is the word that devices understand. It looks like a slip for THICK, which they would refuse. Pinned
  // by CmdString_v2_values_test "EveryValueOfEveryKeyIsSentAsTheDeviceReadsIt".
  static constexpr Keyword kWords[] = {{1, "THIN"}, {2, "THOCK"}, {3, "PCARD"}};
  return line("PTYPE", wordOf(kWords, param.paperType, "NORMAL"));
}

std::string CCmdString_v2::MakeScanPageString(const Param& param) const {
  return line("PAGE", number_.ToString(param.scanPage));
}

std::string CCmdString_v2::MakeLongPaperModeString(const Param& param) const {
  return line("LONG", onOff(param.longPaperMode));
}

std::string CCmdString_v2::MakeCarrierSheetModeSetring(const Param& param) const {
  const bool automatic = param.carrierSheetMode.isOn && param.carrierSheetMode.isAuto;
  return line("CARR", automatic ? "AUTO" : onOff(param.carrierSheetMode.isOn));
}

std::string CCmdString_v2::MakeGroundColorRemovalString(const Param& param) const {
  return line("RMGC", onOffOrLevel(number_, param.groundColorRemoval));
}

std::string CCmdString_v2::MakeDoubleFeedDetectionString(const Param& param) const {
  return line("DTDF", onOffOrLevel(number_, param.doubleFeedDetection));
}

std::string CCmdString_v2::MakeDoubleFeedMotionString(const Param& param) const {
  if (!param.feedMotion.isOn) return {};
  return line("OPDF", param.feedMotion.isContinue ? "CONT" : "STOP");
}

std::string CCmdString_v2::MakeVertexDetectionString(const Param& param) const {
  return line("DT4V", onOff(param.vertexDetection));
}

std::string CCmdString_v2::MakeAutoDeskewString(const Param& param) const {
  return line("DSKW", onOff(param.autoDeskew));
}

std::string CCmdString_v2::MakeLandScapeModeString(const Param& param) const {
  return line("LSMD", onOff(param.landscapeMode));
}

std::string CCmdString_v2::MakeBlankPageRemoval(const Param& param) const {
  return line("RMBP", onOffOrLevel(number_, param.blankPageRemoval));
}

std::string CCmdString_v2::MakeMoireRemovalString(const Param& param) const {
  return line("RMMR", onOff(param.moireRemoval));
}

std::string CCmdString_v2::MakeGammaAdjustString(const Param& param) const {
  if (!param.gammaAdjust.isOn) return line("GMMA", "OFF");
  return line("GMMA", param.gammaAdjust.value == 0 ? "" : number_.ToString(param.gammaAdjust.value));
}

std::string CCmdString_v2::MakeToneAdjustString(const Param& param) const {
  return line("TONE", onOff(param.toneAdjust));
}

std::string CCmdString_v2::MakeQuietScanString(const Param& param) const {
  return line("QTFD", onOff(param.quietScan));
}

std::string CCmdString_v2::MakeUserName(const Param& param) const {
  return line("USER", std::string_view(param.userName, strnlen(param.userName, sizeof param.userName)));
}

std::string CCmdString_v2::MakeLastScanAreaString(const Param& param) const {
  const _SCANCMD_SCANAREA& area = param.scanArea;
  if (const char* word = wordOf(kAreaWords, area.areaType, nullptr); word != nullptr) return line("AREA", word);
  return line("AREA", joined(number_, {area.left, area.top, area.left + area.width, area.top + area.height}));
}

std::string CCmdString_v2::MakeSpecialModeString(const Param& param) const {
  static constexpr Keyword kWords[] = {{2, "EDGEPRE"}, {3, "ORIGINAL"}};
  return line("MODE", wordOf(kWords, param.specialScan, "NORMAL"));
}

std::string CCmdString_v2::MakeEjectionModeString(SCANCMD_EJECTION_TYPE ejection) const {
  if (ejection == SCANCMD_EJECTION_UNSPECIFIED) return {};
  static constexpr Keyword kWords[] = {{1, "ALL"}, {3, "NO"}};
  return line("EJCT", wordOf(kWords, ejection, "ONE"));
}

}  // namespace orvalle_scan_api
