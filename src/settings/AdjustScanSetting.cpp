#include "settings/AdjustScanSetting.h"

namespace orvalle_scan_api {

// Kept: each rewrite starts from the user's settings and replaces the one before, so that the plastic card's alone
// counts. It looks as if the results were meant to be chained; doing so would take deskew off every long page. Pinned
// by AdjustScanSetting_test "without a plastic card the settings come back byte for byte".
QS_SCANNER_PARAMETERS CAdjustScanSetting::ConvertUserSetting(QS_SCANNER_PARAMETERS settings,
                                                             QS_SCANNER_CAPABILITY capability) const {
  QS_SCANNER_PARAMETERS adjusted = ConvertUserSetting_AutoSize(settings, capability);
  adjusted = ConvertUserSetting_LongPaper(settings, capability);
  adjusted = ConvertUserSetting_CarrierSheet(settings, capability);
  adjusted = ConvertUserSetting_PlasticCard(settings, capability);
  return adjusted;
}

QS_SCANNER_PARAMETERS CAdjustScanSetting::ConvertUserSetting_AutoSize(QS_SCANNER_PARAMETERS settings,
                                                                      QS_SCANNER_CAPABILITY) const {
  if (settings.paperType == PAPERTYPE_AUTO) settings.carrierSheet = 0;
  return settings;
}

QS_SCANNER_PARAMETERS CAdjustScanSetting::ConvertUserSetting_LongPaper(QS_SCANNER_PARAMETERS settings,
                                                                       QS_SCANNER_CAPABILITY capability) const {
  const bool isLong = settings.paperType == PAPERTYPE_LONG_NARROW || settings.paperType == PAPERTYPE_LONG;
  if (!isLong || capability.baseFunc.longPaperLengthMax.cap != 2) return settings;
  settings.autoDeskew = 0;
  settings.autoRotate = 0;
  settings.autoThreshold = 0;
  settings.colorTone.autoMode = 0;
  settings.edgeEnhance.enable = 0;
  settings.noiseRemoval.enable = 0;
  settings.lineRemoval.enable = 0;
  settings.carrierSheet = 0;
  settings.plasticCard = 0;
  return settings;
}

// Kept: with a sheet that the device takes, deskew and double-feed detection stay as they were, although a carrier
// sheet needs neither; a device sorts that out itself. Pinned by AdjustScanSetting_test "a carrier sheet that the
// device takes changes nothing".
QS_SCANNER_PARAMETERS CAdjustScanSetting::ConvertUserSetting_CarrierSheet(QS_SCANNER_PARAMETERS settings,
                                                                          QS_SCANNER_CAPABILITY capability) const {
  if (settings.carrierSheet != 1) return settings;
  const bool isTaken = settings.paperType != PAPERTYPE_AUTO && capability.advancedFunc.carrierSheet.cap == 2;
  if (!isTaken) settings.carrierSheet = 0;
  return settings;
}

QS_SCANNER_PARAMETERS CAdjustScanSetting::ConvertUserSetting_PlasticCard(QS_SCANNER_PARAMETERS settings,
                                                                         QS_SCANNER_CAPABILITY) const {
  if (settings.plasticCard != 1) return settings;
  settings.resolution = {600, 600};
  settings.paperType = PAPERTYPE_AUTO;
  settings.duplexType = DUPLEXTYPE_SHORT_EDGE;
  settings.autoDeskew = 0;
  settings.multifeedDetect = 0;
  settings.autoRotate = 0;
  settings.plasticCardProcess = 1;
  return settings;
}

}  // namespace orvalle_scan_api
