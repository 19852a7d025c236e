// Parses the response bodies of the first generation: the packed Q block, the palette, and the text answers to K, I
// and E.
//
// A Q body may end anywhere: fields behind its end hold what older devices are known to be. In a text an item is found
// by its key, wherever it stands; text ends at the first zero byte.
// Threads: reentrant; it has no state.
#pragma once

#include "foundation/qvtcl/TString.h"
#include "parse/IParseCmdRes.h"
#include "parse/q_response.h"

namespace orvalle_scan_api {

class CParseCmdRes_v1 : public IParseCmdRes {
 public:
  // A null or empty body is a device with all the defaults.
  QS_SCANNER_CAPABILITY ParseDeviceInfoResponse(unsigned char* data, long size) override;
  tagQS_PUSHSCAN_PARAMETERS ParseDeviceKeyInfoResponse(unsigned char* data, long size) override;
  // count is a quarter of the body; no more entries are filled than the record has.
  PALETTE ParseColorPaletteResponse(unsigned char* data, long size) override;
  ACTUALSCANPARAM ParseActualParameterResponse(unsigned char* data, long size) override;
  // A first-generation device has no colour profile: a zero record.
  ICCPROFIE ParsePDFaColorProfileResponse(unsigned char* data, long size) override;
  // A vertex that the body does not tell is 0, 0; the paper is named all the same.
  DETECTEDPAPER ParsePaperSizeDetectFrom2Vertex(unsigned char* data, long size, QS_SCANNER_CAPABILITY capability,
                                                ACTUALSCANPARAM actual, UNITTYPE unit) override;

  // The Q block.
  QCMDRESPONSE GetQcmdResponse(unsigned char* data, long size) const;
  QCMDRESPONSE GetDefaultQcmdResponse() const;

  // One capability group each.
  OPTICALRESOLUTIONS GetOpticalResolution(QCMDRESPONSE response) const;
  SUPPORTCOLORTYPES GetColorType(QCMDRESPONSE response) const;
  PAPERSOURCESUPPORT GetPaperSource(QCMDRESPONSE response) const;
  DEVICESCANSIZES GetDeviceScanSizeMax(QCMDRESPONSE response) const;
  DEVICESCANSIZES GetDeviceScanSizeMin(QCMDRESPONSE response) const;
  LONGPAPERSUPPORTSIZE GetLongPaperLength(QCMDRESPONSE response) const;
  decltype(DEVINFO_BASEFUNC::marginSize) GetMarginSize(QCMDRESPONSE response) const;
  PAPERSETTINGPOSITIONS GetPaperPosition(QCMDRESPONSE response) const;
  CARDSIZEORIENT GetCardScanOrient(QCMDRESPONSE response) const;
  decltype(DEVINFO_IMAGEPROCFUNC::supportCompresssionType) GetSupportCompressType(QCMDRESPONSE response) const;
  MONOTHRESHOLDSUPPORT GetSupportMonoThresholdFunc(QCMDRESPONSE response) const;
  decltype(DEVINFO_IMAGEPROCFUNC::specialDocumentImageProcs) GetSpecialDocumentImageProc(QCMDRESPONSE response) const;
  CAP GetColorProfileOutputInfo(QCMDRESPONSE response) const;
  SUPPORTAUTOPAPERSIZEMODE GetDetectDocumentMode(QCMDRESPONSE response) const;
  decltype(SUPPORTAUTOPAPERSIZEMODE::paperWidthDetect) GetDetectDocumentSizeInfo(QCMDRESPONSE response) const;
  decltype(SUPPORTAUTOPAPERSIZEMODE::autoCrop) GetEdgeEnhanceInfo(QCMDRESPONSE response) const;
  decltype(SUPPORTAUTOPAPERSIZEMODE::cornerDetect) GetCornerOutputInfo(QCMDRESPONSE response) const;
  decltype(DEVINFO_ADVANCEDFUNC::idCardMode) GetIdCardMode(QCMDRESPONSE response) const;
  decltype(DEVINFO_ADVANCEDFUNC::landscape) GetLandscapeOrientationMode(QCMDRESPONSE response) const;
  CARRIERSHEETSUPPORT GetCarrierSheetMode(QCMDRESPONSE response) const;
  decltype(DEVINFO_ADVANCEDFUNC::plasticCard) GetPlasticCardMode(QCMDRESPONSE response) const;
  decltype(DEVINFO_ADVANCEDFUNC::multifeedDetect) GetMultiFeedMode(QCMDRESPONSE response) const;
  BACKGROUNDREMOVALSUPPORT GetRemoveBackgroundMode(QCMDRESPONSE response) const;
  decltype(DEVINFO_ADVANCEDFUNC::deskew) GetDeskewMode(QCMDRESPONSE response) const;
  BLANKREMOVALSUPPORT GetBlankPageRemoveMode(QCMDRESPONSE response) const;
  AUTOCOLORLEVELSUPPORT GetAutoColorMode(QCMDRESPONSE response) const;
  CAP GetDetectResolutionMode(QCMDRESPONSE response) const;

  // Whether the device has it: 2 present, 1 missing.
  CAP IsFbDeskewSupported(QCMDRESPONSE response) const;
  CAP IsAdfDeskewSupported(QCMDRESPONSE response) const;
  CAP IsEdgeDetectScanSupported(QCMDRESPONSE response) const;
  CAP IsDetectDocSizeSupported(QCMDRESPONSE response) const;
  CAP IsDetectCornerSupported(QCMDRESPONSE response) const;
  CAP IsOverScanSupported(QCMDRESPONSE response) const;
  CAP IsCardSlotScanSupported(QCMDRESPONSE response) const;
  // The same; 0 where the device tells neither this source nor the other one (the feeder, for the feeder the flatbed).
  CAP IsFbScanSupported(QCMDRESPONSE response) const;
  CAP IsAdfSimplexScanSupported(QCMDRESPONSE response) const;
  CAP IsAdfDuplexScanSupported(QCMDRESPONSE response) const;

  // 1/100 mm: x left and right, y top and bottom; 0, 0 for a source that is not there.
  AXIS GetMarginSizeMmOfFlatbed(QCMDRESPONSE response) const;
  AXIS GetMarginSizeMmOfAdfSimplex(QCMDRESPONSE response) const;
  AXIS GetMarginSizeMmOfAdfDuplex(QCMDRESPONSE response) const;

  // The device's codes for where the paper lies, as paperPosition counts them.
  std::int32_t GetPositionX(unsigned char position) const;
  std::int32_t GetPositionY(unsigned char position) const;

  // One item of the panel's settings each, from the whole text.
  PUSHSCAN_VALUE GetSkeyEventInfo(qvtcl::CTString text) const;
  PUSHSCAN_VALUE GetSkeyDuplexInfo(qvtcl::CTString text) const;
  PUSHSCAN_RESOLUTION GetSkeyResolutionInfo(qvtcl::CTString text) const;
  PUSHSCAN_VALUE GetSkeyColorTypeInfo(qvtcl::CTString text) const;
  PUSHSCAN_VALUE GetSkeyPaperTypeInfo(qvtcl::CTString text) const;
  PUSHSCAN_VALUE GetSkeyBrightnessInfo(qvtcl::CTString text) const;
  PUSHSCAN_VALUE GetSkeyContrastInfo(qvtcl::CTString text) const;
  PUSHSCAN_STATE GetSkeyAutoCropInfo(qvtcl::CTString text) const;
  PUSHSCAN_FILETYPE GetSkeyFileTypeInfo(qvtcl::CTString text) const;
  PUSHSCAN_STATE GetSkeyBlankPageRemoveInfo(qvtcl::CTString text) const;
  PUSHSCAN_STATE GetSkeyRemoveBleedThroughInfo(qvtcl::CTString text) const;
  PUSHSCAN_ORIENT GetSkeyOrientInfo(qvtcl::CTString text) const;
  PUSHSCAN_STATE GetSkeyDskewInfo(qvtcl::CTString text) const;
  PUSHSCAN_REMOVEBACKGROUND GetSkeyRemoveBacgroundInfo(qvtcl::CTString text) const;

  // A number, raised to minimum, then lowered to maximum; a value without a number is 0 before that. Mind the order of
  // the two.
  PUSHSCAN_VALUE GetSkeySettingValueTypeInfo(qvtcl::CTString text, qvtcl::CTString key, int maximum, int minimum) const;
  // Whether the value holds on, or else off, somewhere.
  PUSHSCAN_STATE GetSkeySettingSwitchTypeInfo(qvtcl::CTString text, qvtcl::CTString key, qvtcl::CTString on,
                                              qvtcl::CTString off) const;
};

}  // namespace orvalle_scan_api
