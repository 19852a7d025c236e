#include "command/CmdString_v1.h"

#include "command/command_lines.h"

namespace orvalle_scan_api {
namespace {

using namespace command_lines;
using Param = _SCANCMD_SCANPARAM;
using Line = MakeLine<CCmdString_v1>;

// Row order is wire order.
constexpr Line kILines[] = {
    &CCmdString_v1::MakeResolutionString,    // R
    &CCmdString_v1::MakeScanModeString,      // M
    &CCmdString_v1::MakeScanningSideString,  // D
    &CCmdString_v1::MakeSpecialReadString,   // S
};

constexpr Line kELines[] = {
    &CCmdString_v1::MakeResolutionString,  // R
    &CCmdString_v1::MakeScanModeString,    // M
};

constexpr Line kXLines[] = {
    &CCmdString_v1::MakeResolutionString,               // R
    &CCmdString_v1::MakeScanModeString,                 // M
    &CCmdString_v1::MakeCommpressionString,             // C
    &CCmdString_v1::MakeJpegCompressionRateString,      // J
    &CCmdString_v1::MakeBrightnessString,               // B
    &CCmdString_v1::MakeConstrastString,                // N
    &CCmdString_v1::MakeScanAreaString,                 // A
    &CCmdString_v1::MakeScanningSideString,             // D
    &CCmdString_v1::MakeSpecialReadString,              // S
    &CCmdString_v1::MakeOnePageScanString,              // P
    &CCmdString_v1::MakeErrorSuppressString,            // E
    &CCmdString_v1::MakeGroundColorRemovalString,       // G
    &CCmdString_v1::MakeGroundColorRemovalLevelString,  // L
};

const char* oneZero(bool on) { return on ? "1" : "0"; }

}  // namespace

std::string CCmdString_v1::MakeDcmdString(SCANCMD_PAPERSOURCE_TYPE source) const {
  return frame("D", MakePaperSourceString(source));
}

std::string CCmdString_v1::MakeScmdString(SCANCMD_PAPERSOURCE_TYPE source) const {
  return frame("S", MakePaperSourceString(source));
}

std::string CCmdString_v1::MakeIcmdString(const Param* param) const { return frame("I", *this, kILines, param); }

std::string CCmdString_v1::MakeEcmdString(const Param* param) const { return frame("E", *this, kELines, param); }

std::string CCmdString_v1::MakeXcmdString(const Param* param) const { return frame("X", *this, kXLines, param); }

std::string CCmdString_v1::MakePaperSourceString(SCANCMD_PAPERSOURCE_TYPE source) const {
  static constexpr Keyword kWords[] = {{1, "ADF"}, {2, "FB"}};
  return lineWithoutKey(wordOf(kWords, source, "AUTO"));
}

std::string CCmdString_v1::MakeResolutionString(const Param& param) const {
  return line("R", joined(number_, {param.resolution.x, param.resolution.y}));
}

std::string CCmdString_v1::MakeScanModeString(const Param& param) const {
  static constexpr Keyword kWords[] = {{0, "TEXT"}, {1, "ERRDIF"}, {2, "GRAY256"}, {3, "C256"}};
  return line("M", wordOf(kWords, param.colorType, "CGRAY"));
}

std::string CCmdString_v1::MakeScanningSideString(const Param& param) const {
  return line("D", param.duplexScan.isDuplex ? "DUP" : "SIN");
}

std::string CCmdString_v1::MakeSpecialReadString(const Param& param) const {
  // One line for four wishes: the first that applies wins.
  if (param.autoDeskew) return line("S", "SKEW_ADJUST");
  if (param.scanArea.areaType == SCANCMD_SCAN_AREA_AUTO) return line("S", "CORNER_SCAN");
  static constexpr Keyword kWords[] = {{2, "EDGE_SCAN"}, {3, "ORIGINAL_SCAN"}};
  return line("S", wordOf(kWords, param.specialScan, "NORMAL_SCAN"));
}

std::string CCmdString_v1::MakeCommpressionString(const Param& param) const {
  // Kept: the second run-length and JPEG values, 4 and 5, are no compression here, while the second generation reads
  // them as 2 and 3. It looks like two forgotten rows; adding them would turn on a compression that was not sent
  // before. Pinned by CmdString_v1_test "EveryValueOfEveryKeyIsSentAsTheDeviceReadsIt".
  static constexpr Keyword kWords[] = {{2, "RLENGTH"}, {3, "JPEG"}};
  return line("C", wordOf(kWords, param.compressionType, "NONE"));
}

std::string CCmdString_v1::MakeJpegCompressionRateString(const Param&) const {
  // Kept: always the middle quality. It looks as if jpegCompressionRate had been forgotten, but this generation has no
  // other value for it. Pinned by CmdString_v1_test "EveryValueOfEveryKeyIsSentAsTheDeviceReadsIt".
  return line("J", "MID");
}

std::string CCmdString_v1::MakeBrightnessString(const Param& param) const {
  return line("B", number_.ToString(param.brightness + 50LL));
}

std::string CCmdString_v1::MakeConstrastString(const Param& param) const {
  return line("N", number_.ToString(param.contrast + 50LL));
}

std::string CCmdString_v1::MakeScanAreaString(const Param& param) const {
  const _SCANCMD_SCANAREA& area = param.scanArea;
  return line("A", joined(number_, {area.left, area.top, area.left + area.width, area.top + area.height}));
}

std::string CCmdString_v1::MakeOnePageScanString(const Param& param) const {
  // The key tells one page from all pages; a limit of two or more cannot be said.
  return line("P", oneZero(param.scanPage == 1));
}

std::string CCmdString_v1::MakeErrorSuppressString(const Param& param) const {
  return line("E", number_.ToString(GetErrorSuppressBit(param)));
}

std::string CCmdString_v1::MakeGroundColorRemovalString(const Param& param) const {
  return line("G", oneZero(param.groundColorRemoval.isOn));
}

std::string CCmdString_v1::MakeGroundColorRemovalLevelString(const Param& param) const {
  return line("L", number_.ToString(param.groundColorRemoval.level));
}

std::uint32_t CCmdString_v1::GetErrorSuppressBit(const Param& param) const {
  return (param.doubleFeedDetection.isOn ? 1U : 0U) | (param.landscapeMode ? 2U : 0U);
}

}  // namespace orvalle_scan_api
