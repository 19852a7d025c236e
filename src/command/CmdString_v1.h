// Builds the frames of the first command generation.
//
// Every operation builds one line KEY=VALUE ended by 0x0A; no line depends on a condition. The whole commands are
// tables of these operations in wire order.
// Threads: one thread at a time, since all operations share the text of a number.
#pragma once

#include <string>

#include "command/scancmd_param.h"
#include "foundation/qvtcl/TString.h"

namespace orvalle_scan_api {

class CCmdString_v1 {
 public:
  // Whole frames. Each is logged at level 0. A null record gives an empty string, which is logged too.
  std::string MakeDcmdString(SCANCMD_PAPERSOURCE_TYPE source) const;
  std::string MakeScmdString(SCANCMD_PAPERSOURCE_TYPE source) const;
  std::string MakeIcmdString(const _SCANCMD_SCANPARAM* param) const;
  // The frame that the E command would have if it had one of its own; nobody sends it.
  std::string MakeEcmdString(const _SCANCMD_SCANPARAM* param) const;
  std::string MakeXcmdString(const _SCANCMD_SCANPARAM* param) const;

  std::string MakePaperSourceString(SCANCMD_PAPERSOURCE_TYPE source) const;  // the one line without a key

  std::string MakeResolutionString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeScanModeString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeScanningSideString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeSpecialReadString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeCommpressionString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeJpegCompressionRateString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeBrightnessString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeConstrastString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeScanAreaString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeOnePageScanString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeErrorSuppressString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeGroundColorRemovalString(const _SCANCMD_SCANPARAM& param) const;
  std::string MakeGroundColorRemovalLevelString(const _SCANCMD_SCANPARAM& param) const;

  // Bit 0: double feeds are detected; bit 1: landscape.
  std::uint32_t GetErrorSuppressBit(const _SCANCMD_SCANPARAM& param) const;

 private:
  mutable qvtcl::CTString number_;  // the number that is being written
};

}  // namespace orvalle_scan_api
