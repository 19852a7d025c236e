// Builds the frames of the second command generation.
//
// Every operation builds one line KEY=VALUE ended by 0x0A, or nothing where the line is not sent. The whole commands
// are tables of these operations in wire order.
// Threads: one thread at a time, since all operations share the text of a number.
#pragma once

#include <string>

#include "command/scancmd_param.h"
#include "foundation/qvtcl/TString.h"

namespace orvalle_scan_api {

class CCmdString_v2 {
 public:
  // Whole frames. Each is logged at level 0. A null record gives an empty string, which is logged too.
  std::string MakeCKDcmdString(SCANCMD_PAPERSOURCE_TYPE source) const;
  std::string MakeSSPcmdString(const _SCANCMD_SCANPARAM* param) const;
  std::string MakeXSCcmdString(const _SCANCMD_SCANPARAM* param) const;
  std::string MakeABTcmdString(SCANCMD_EJECTION_TYPE ejection) const;

  std::string MakeOSinfoString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakePaperSourceString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeResolutionString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeColorTypeString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeScanAreaString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeMarginAreaString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeDuplexScanString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeBrightnessString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeContrastString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeAutoColorLevelString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeMonoThresholdString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeCompressionString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeJpegCompressionRateString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeJpegSamplingFactorString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeImageProcessingString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakePaperTypeString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeScanPageString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeLongPaperModeString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeCarrierSheetModeSetring(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeGroundColorRemovalString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeDoubleFeedDetectionString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeDoubleFeedMotionString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeVertexDetectionString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeAutoDeskewString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeLandScapeModeString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeBlankPageRemoval(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeMoireRemovalString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeGammaAdjustString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeToneAdjustString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeQuietScanString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeUserName(const _SCANCMD_SCANPARAM& param) const;

  std::string MakeLastScanAreaString(const _SCANCMD_SCANPARAM& param) const;  // AREA as XSC sends it
  std::string MakeSpecialModeString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeEjectionModeString(SCANCMD_EJECTION_TYPE ejection) const;

 private:
  mutable qvtcl::CTString number_;  // the number that is being written
};

}  // namespace orvalle_scan_api
