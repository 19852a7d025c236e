// Rewrites the user's settings for the special modes before they become a command: automatic size, long paper, carrier
// sheet and plastic card.
//
// Here a mode counts as asked for when its byte is 1, while the command conversion takes any other value than 0.
// Threads: reentrant; the read thread calls it once at the start of a scan.
#pragma once

#include "scanner_capability.h"
#include "scanner_parameters.h"

namespace orvalle_scan_api {

class CAdjustScanSetting {
 public:
  // The settings that a scan goes by: those of the plastic card, and otherwise the user's, byte for byte.
  QS_SCANNER_PARAMETERS ConvertUserSetting(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const;

  // The rewrite of each mode on its own. What a mode does not name stays as the user set it.
  QS_SCANNER_PARAMETERS ConvertUserSetting_AutoSize(QS_SCANNER_PARAMETERS settings,
                                                    QS_SCANNER_CAPABILITY capability) const;
  QS_SCANNER_PARAMETERS ConvertUserSetting_LongPaper(QS_SCANNER_PARAMETERS settings,
                                                     QS_SCANNER_CAPABILITY capability) const;
  QS_SCANNER_PARAMETERS ConvertUserSetting_CarrierSheet(QS_SCANNER_PARAMETERS settings,
                                                        QS_SCANNER_CAPABILITY capability) const;
  QS_SCANNER_PARAMETERS ConvertUserSetting_PlasticCard(QS_SCANNER_PARAMETERS settings,
                                                       QS_SCANNER_CAPABILITY capability) const;
};

}  // namespace orvalle_scan_api
