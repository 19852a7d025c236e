#include "image/enhance_param.h"

#include <algorithm>
#include <iterator>

namespace orvalle_scan_api {
namespace {

constexpr IE_COLORDROP defColorDropParam_Chromatic = {1, 0, 0, 0, 1, 1};
constexpr IE_COLORDROP defColorDropParam_Red = {0, 80, 0, 28, 40, 1};
constexpr IE_COLORDROP defColorDropParam_Green = {0, 0, 60, 0, 40, 1};
constexpr IE_COLORDROP defColorDropParam_Blue = {0, 0, 0, 40, 60, 1};

constexpr IE_TONEADJUST defToneAdjustParam_ED = {128, 128, 0, 220, 1.0};
constexpr IE_TONEADJUST defToneAdjustParam_BW = {128, 128, 0, 255, 1.4};

constexpr IE_NOISEREMOVAL defNoiseRemovalParam_Lvel1 = {{100, 30, 30, 500, 1}};
constexpr IE_NOISEREMOVAL defNoiseRemovalParam_Lvel2 = {{100, 60, 60, 500, 1}};
constexpr IE_NOISEREMOVAL defNoiseRemovalParam_Lvel3 = {{100, 120, 120, 500, 1}};
constexpr IE_NOISEREMOVAL defNoiseRemovalParam_Lvel4 = {{100, 200, 200, 500, 1}};
constexpr IE_NOISEREMOVAL defNoiseRemovalParam_Lvel5 = {{100, 300, 300, 500, 1}};

constexpr IE_AUTOTHRESHOLD kAutoThreshold = {{50, 50}, 0, {7, 2}};
constexpr std::uint16_t kRemovalCommandVersion = 0x102;
constexpr std::int16_t kLineRemovalMode = 0x21;

// -50 to 50 onto 0 to 255; values outside wrap.
std::uint8_t toneByte(std::int32_t value) {
  return static_cast<std::uint8_t>(static_cast<std::int64_t>(value * 2.55 + 128));
}

std::int32_t colorClass(COLORTYPE colorType) {
  switch (colorType) {
    case COLORTYPE_BLACKANDWHITE:
      return 1;
    case COLORTYPE_ERRORDIFFUSION:
      return 2;
    case COLORTYPE_TRUEGRAY:
      return 3;
    case COLORTYPE_COLOR24BIT:
      return 4;
    default:
      return 0;
  }
}

IE_COLORDROP colorDrop(const COLORDROP& user) {
  if (user.chromatic) return defColorDropParam_Chromatic;
  if (user.red) return defColorDropParam_Red;
  if (user.green) return defColorDropParam_Green;
  if (user.blue) return defColorDropParam_Blue;
  return {0, user.customRed, user.customGreen, user.customBlue, user.customRange, user.customFlag ? 1 : 0};
}

IE_PUNCHHOLE punchHole(const PUNCHHOLEREMOVAL& user, const QS_SCANNER_CAPABILITY& capability) {
  const auto& tape = capability.baseFunc.colorTape;
  const std::int64_t gray =
      (std::int64_t{306} * tape.red + std::int64_t{601} * tape.green + std::int64_t{117} * tape.blue) >> 10;
  IE_PUNCHHOLE hole{};
  std::fill(std::begin(hole.margin), std::end(hole.margin), 30);
  hole.areaLimit = 3;
  hole.step = 10;
  hole.hasColorTape = tape.cap != 0 ? 1 : 0;
  hole.grayLow = static_cast<std::int32_t>(gray - tape.lowerRange);
  hole.grayHigh = static_cast<std::int32_t>(gray + tape.upperRange);
  hole.fillMode = user.fill == 6 ? 0 : user.fill == 0 ? 1 : 2;
  return hole;
}

void setTone(const QS_SCANNER_PARAMETERS& user, _IE_PARAM& param) {
  const COLORTONE& tone = user.colorTone;
  if (!tone.enable) return;
  if (tone.autoMode && param.colorClass != 1 && param.colorClass != 2) {
    param.doAutoTone = true;
    return;
  }
  param.doToneAdjust = true;
  param.toneAdjust = {toneByte(tone.brightness), toneByte(tone.contrast), static_cast<std::uint8_t>(tone.shadow),
                      static_cast<std::uint8_t>(tone.highlight), tone.gamma / 100.0};
  // For mono the whole record is replaced, and brightness and contrast come from the main settings.
  switch (param.colorClass) {
    case 0:
      param.grayBrightness = toneByte(user.brightness);
      break;
    case 1:
      param.toneAdjust = defToneAdjustParam_BW;
      param.toneAdjust.brightness = toneByte(user.brightness);
      break;
    case 2:
      param.toneAdjust = defToneAdjustParam_ED;
      param.toneAdjust.brightness = toneByte(user.brightness);
      param.toneAdjust.contrast = toneByte(user.contrast);
      break;
    default:
      break;
  }
}

IE_NOISEREMOVAL noiseRemoval(std::int32_t level) {
  switch (level) {
    case 1:
      return defNoiseRemovalParam_Lvel1;
    case 2:
      return defNoiseRemovalParam_Lvel2;
    case 4:
      return defNoiseRemovalParam_Lvel4;
    case 5:
      return defNoiseRemovalParam_Lvel5;
    default:
      return defNoiseRemovalParam_Lvel3;
  }
}

// Kept: threshold is handed on for every command version, the rest for exactly one, whatever the user asked.
// Pinned by enhance_param_test "older and newer command versions".
void setRemovals(const QS_SCANNER_PARAMETERS& user, std::uint16_t commandVersion, _IE_PARAM& param) {
  param.threshold = static_cast<std::int32_t>(user.threshold);
  if (commandVersion != kRemovalCommandVersion) return;
  if (user.autoThreshold) {
    param.doAutoThreshold = true;
    param.autoThreshold = kAutoThreshold;
  }
  if (user.noiseRemoval.enable) {
    param.doNoiseRemoval = true;
    param.noiseRemoval = noiseRemoval(user.noiseRemoval.level);
  }
  if (user.lineRemoval.enable) {
    const LINEREMOVAL& line = user.lineRemoval;
    param.doLineRemoval = true;
    param.lineRemovalA = {line.direction == 1 ? 0U : 1U, 0, kLineRemovalMode, line.second, line.first};
    param.lineRemovalB = {line.direction == 0 ? 0U : 1U, 0, kLineRemovalMode, line.second, line.first};
    param.lineRemovalThird = line.third;
  }
}

}  // namespace

_IE_PARAM makeEnhanceParam(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_CAPABILITY& capability) {
  _IE_PARAM param{};
  param.colorClass = colorClass(user.colorType);
  param.doFirstEnhance = user.firstEnhanceFlag != 0;
  if (user.colorDrop.enable) {
    param.doColorDrop = true;
    param.colorDrop = colorDrop(user.colorDrop);
  }
  if (user.punchHoleRemoval.enable) {
    param.doPunchHole = true;
    param.punchHole = punchHole(user.punchHoleRemoval, capability);
  }
  if (user.smoothing.enable) {
    param.doSmoothing = true;
    param.smoothingMode = user.smoothing.mode;
    param.smoothingLevel = user.smoothing.level;
  }
  setTone(user, param);
  if (user.edgeEnhance.enable) {
    param.doEdgeEnhance = true;
    param.edgeEnhanceLevel = user.edgeEnhance.level;
  }
  setRemovals(user, capability.commandVersion, param);
  if (user.thickText.enable) {
    param.doThickText = true;
    param.thickTextLevel = user.thickText.level;
  } else if (user.dotTextCombine) {
    param.doDotTextCombine = true;
    param.dotTextCombineMode = std::min(user.resolution.x, user.resolution.y) < 600 ? 1 : 2;
  }
  if (user.autoRotate) {
    param.doAutoRotate = true;
    param.autoRotateParam = user.autoRotateParam;
  }
  if (user.edgeFill.enable) {
    const EDGEFILL& fill = user.edgeFill;
    param.doEdgeFill = true;
    param.edgeFill = {fill.mode == 2, fill.first, fill.third, fill.second, fill.fourth, fill.fifth};
  }
  return param;
}

}  // namespace orvalle_scan_api
