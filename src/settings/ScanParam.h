// Turns the adjusted settings into what a device is told, and the device's answer into what will really arrive.
//
// At the start of a scan, in this order:
//   1. ConvertScanPramToCmdParam   the settings and the capabilities become the command record, its area still empty
//   2. GetDeviceActualParam        sends the record; the device answers with its resolution, source and maximum size
//   3. CalcScanCmdArea             the wanted part of the page, in pixels at the device's resolution
//      ReviseScanCmd_Area          the same, trimmed to the maximum
//   4. GetColorProfile             where it is wanted and offered
//   5. CreateDeviceScanParam       a copy of the settings that says what the device will deliver
// A wish that the device cannot meet is dropped without a word; only 2 and 4 can fail. A failure of CConvertUnit is
// passed over, and the value stays as that left it. All arithmetic on pixels is unsigned, 32 bits wide, and wraps.
// Threads: reentrant, but for the two calls that talk to the device: those belong to the thread of the command object.
//
// Sources: scan_param_command.cpp (1), scan_param_device.cpp (2, 4), scan_param_area.cpp (3, 5), scan_param_margin.cpp.
#pragma once

#include <cstdint>

#include "command/IScanCmd.h"
#include "command/scancmd_param.h"
#include "parse/parse_records.h"
#include "scanner_capability.h"
#include "scanner_parameters.h"

namespace orvalle_scan_api {

// Where a paper lies along one side of the maximum scan area: 0 at the start, 1 centred, 2 at the end; any other value
// acts as 0.
using POSITION = std::int32_t;

// The automatic colour level of a command record.
struct ScanCmdColorLevel {
  bool isOn;
  _SCANCMD_AUTOCOLORLEVEL level;
};

// What a command record says about double feeds: whether to look for them, and what the device does on one.
struct ScanCmdMultifeed {
  _SCANCMD_DOUBLEFEEDDETECTION detection;
  _SCANCMD_FEEDMOTION motion;
};

class CScanParam {
 public:
  // --- The command record -------------------------------------------------------------------------------------------

  // The next multiple of unit, upwards for a positive value and towards 0 for a negative one.
  std::int32_t RoundUpValue(std::int32_t value, std::int32_t unit) const;
  // The next multiple of unit towards 0. In both, a unit of 0 leaves the value as it is.
  std::int32_t RoundDownValue(std::int32_t value, std::int32_t unit) const;

  // The whole record but for the coordinates of the area. The groups below are its parts.
  _SCANCMD_SCANPARAM ConvertScanPramToCmdParam(const QS_SCANNER_PARAMETERS& settings,
                                               const QS_SCANNER_CAPABILITY& capability) const;

  // Asks for 24-bit colour where an enhancement needs colour to work on; the host reduces the page afterwards.
  void ConvertColorTypeForSpecialScanParam(QS_SCANNER_PARAMETERS& settings) const;
  bool IsDuplexScan(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const;

  // One group each. Their colour type is the one that the call above has left.
  _SCANCMD_RESOLUTION ConvertScanCmd_Resolution(QS_SCANNER_PARAMETERS settings) const;
  SCANCMD_COLOR_TYPE ConvertScanCmd_ColorType(QS_SCANNER_PARAMETERS settings) const;
  // The type of the area; its numbers stay 0.
  _SCANCMD_SCANAREA ConvertScanCmd_ScanArea(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const;
  // The edge cut in 1/100 mm; 0 for one in pixels, which stays on the host's side.
  tagRECT GetScanCmd_Margin_ToMm(QS_SCANNER_PARAMETERS settings) const;
  ScanCmdColorLevel ConvertScanCmd_ColorLevel(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const;
  _SCANCMD_MONO_THRESHOLD ConvertScanCmd_MonoThreshold(QS_SCANNER_PARAMETERS settings,
                                                       QS_SCANNER_CAPABILITY capability) const;
  SCANCMD_COMPRESSION_TYPE ConvertScanCmd_CompressionType(QS_SCANNER_PARAMETERS settings,
                                                          QS_SCANNER_CAPABILITY capability) const;
  std::uint32_t ConvertScanCmd_JpgCompressRate(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const;
  bool ConvertScanCmd_Deskew(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const;
  _SCANCMD_GROUNDCOLORREMOVAL ConvertScanCmd_GroundColorRemoval(QS_SCANNER_PARAMETERS settings,
                                                                QS_SCANNER_CAPABILITY capability) const;
  // The level for a device with these levels: as it is for generation 1, folded for others. The switch in the settings
  // is not looked at.
  _SCANCMD_GROUNDCOLORREMOVAL GetGroundColorRemoval(QS_SCANNER_PARAMETERS settings, SUPPORTADJUSTLEVEL support,
                                                    SCANCMD_GENERATION generation) const;
  _SCANCMD_CARRIERSHEETMODE ConvertScanCmd_CarrierSheet(QS_SCANNER_PARAMETERS settings,
                                                        QS_SCANNER_CAPABILITY capability) const;
  _SCANCMD_BLANKPAGEREMOVAL ConvertScanCmd_BlankPageRemoval(QS_SCANNER_PARAMETERS settings,
                                                            QS_SCANNER_CAPABILITY capability) const;
  ScanCmdMultifeed ConvertScanCmd_Multifeed(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const;

  // --- The device's answers -----------------------------------------------------------------------------------------

  // Sends the record that the command object holds and stores what the device will really do. A failure of the command
  // is returned as it is and stores nothing; a null pointer gives QSRSLT_NO_ACTUAL_PARAM, and nothing is sent.
  QSRSLT GetDeviceActualParam(IScanCmd* scanCmd, ACTUALSCANPARAM* actual, QS_SCANNER_CAPABILITY capability) const;
  // The profiles point into the command object's response, until the same command runs again. A failure of the command
  // is returned as it is and stores nothing; a null pointer gives QSRSLT_NULL_ARGUMENT, and nothing is sent.
  QSRSLT GetColorProfile(IScanCmd* scanCmd, ICCPROFIE* profile, QS_SCANNER_CAPABILITY capability) const;

  // --- The area -----------------------------------------------------------------------------------------------------

  // The part of the page that the device shall deliver, in pixels at the resolution it answered. source and maxPixel
  // are the device's answer too. With automatic paper size only the type is set, and the device decides.
  _SCANCMD_SCANAREA CalcScanCmdArea(std::uint32_t resolutionX, std::uint32_t resolutionY, PAPERSOURCESELECT source,
                                    AXIS maxPixel, QS_SCANNER_PARAMETERS settings,
                                    QS_SCANNER_CAPABILITY capability) const;
  // The area trimmed to the device's maximum, its type kept.
  _SCANCMD_SCANAREA ReviseScanCmd_Area(_SCANCMD_SCANAREA area, ACTUALSCANPARAM actual,
                                       QS_SCANNER_CAPABILITY capability) const;
  // Left and right at resolutionX, top and bottom at resolutionY.
  SCANAREA GetPixelArea(SCANAREA area, std::uint32_t resolutionX, std::uint32_t resolutionY) const;
  // The settings with resolution, colorType and scanArea as the device will deliver them. The area holds a position,
  // a width and a height in pixels, grown by the edge cut that the host removes later.
  QS_SCANNER_PARAMETERS CreateDeviceScanParam(QS_SCANNER_PARAMETERS settings, _SCANCMD_SCANPARAM cmdParam,
                                              AXIS maxPixel) const;
  // The settings with scanArea in the given unit, by the resolution of the settings.
  QS_SCANNER_PARAMETERS ConvertScanAreaValueUnit(const QS_SCANNER_PARAMETERS& settings, UNITTYPE to) const;
  POSITION GetPaperPositionX(PAPERSOURCESELECT source, PAPERSETTINGPOSITIONS positions) const;
  POSITION GetPaperPositionY(PAPERSOURCESELECT source, PAPERSETTINGPOSITIONS positions) const;
  // How far from the start of maxSize something of this size lies; 0 when it does not fit.
  std::int32_t CalcOffsetValue(std::int32_t size, std::int32_t maxSize, POSITION position) const;

  // --- Margins and lengths ------------------------------------------------------------------------------------------

  // The margin of the source and the sides that the settings ask for, not of those that the device answered: in the
  // capability's own unit, in pixels at one resolution for all sides, and in 1/100 mm. Pixels do not become
  // millimetres: the numbers stay, the unit is told as millimetres.
  MARGIN GetScanMargin(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const;
  MARGIN GetScanMarginPixel(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability,
                            std::uint32_t resolution) const;
  MARGIN GetScanMarginMm(QS_SCANNER_PARAMETERS settings, QS_SCANNER_CAPABILITY capability) const;
  // Whether the length of the page is not known beforehand. False for a null pointer.
  bool IsLongPaperScanSetting(const QS_SCANNER_PARAMETERS* settings) const;
  // The longest page, 863 mm where the device tells none; by 1/100 mm whatever the record's unit says.
  std::uint32_t GetLongPaperSizePixel(std::uint32_t resolution, DUPLEXTYPE duplexType,
                                      LONGPAPERSUPPORTSIZE support) const;
  // How far the page lies below the carrier sheet's edge, 32 mm where the device tells nothing.
  std::uint32_t GetCarrierSheetOffsetSizePixel(std::uint32_t resolution, CARRIERSHEETSUPPORT support) const;
};

}  // namespace orvalle_scan_api
