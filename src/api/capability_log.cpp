// The listing of the capability record in the log, one line for each field: for a developer to call, called by nothing.
#include <cstring>

#include "api/DeviceCaps.h"
#include "foundation/OutputLog.h"

namespace orvalle_scan_api {
namespace {

struct Field {
  const char* path;  // as the record spells it
  std::size_t offset;
  std::size_t bytes;  // 1 flag, 4 number
};

template <std::size_t N>
void writeGroup(const char* name, const Field (&fields)[N], const void* group) {
  g_ScanDevApiLog.WriteLog(1, "<-- %s -->", name);
  for (const Field& field : fields) {
    std::int32_t value = 0;
    std::memcpy(&value, static_cast<const char*>(group) + field.offset, field.bytes);
    g_ScanDevApiLog.WriteLog(1, "%s = %d", field.path, value);
  }
}

// Rows of the table of a function's Group. A path is spelled into the text, so it stands without parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define FIELD(path) \
  { #path, offsetof(Group, path), sizeof(Group::path) }
#define AXIS_OF(path) FIELD(path.x), FIELD(path.y)
#define SIZES(path) AXIS_OF(path.flatbed), AXIS_OF(path.simplex), AXIS_OF(path.duplex), FIELD(path.unit)
#define MARGIN_OF(path) FIELD(path.left), FIELD(path.right), FIELD(path.top), FIELD(path.bottom), FIELD(path.unit)
#define COLORS(path)                                                                                 \
  FIELD(path.blackAndWhite), FIELD(path.errorDiffusion), FIELD(path.trueGray), FIELD(path.color256), \
      FIELD(path.color24bit), FIELD(path.color256table), FIELD(path.autoColor)
#define SOURCES(path) FIELD(path.flatbed), FIELD(path.adfSimplex), FIELD(path.adfDuplex), FIELD(path.cardslot)
#define EXCLUSION(path)                                                                            \
  FIELD(path.detectDocSize), FIELD(path.detectMultifeed), FIELD(path.removeBackgroundByDevice),    \
      FIELD(path.deskewByDevice), FIELD(path.autoColorByDevice), FIELD(path.blankRemovalByDevice), \
      FIELD(path.detectDocSizeByDevice), FIELD(path.autoResolutionByDevice), FIELD(path.autoRotateByDevice)
#define COMPRESSION(path) FIELD(path.noCompress), FIELD(path.packbits), FIELD(path.mh), FIELD(path.jpeg)
#define LEVEL(path) FIELD(path.cap), FIELD(path.level)
#define LEVELS(path) LEVEL(path.blackAndWhite), LEVEL(path.errorDiffusion), LEVEL(path.trueGray), LEVEL(path.color24bit)
// NOLINTEND(bugprone-macro-parentheses)

}  // namespace

void CDeviceCaps::WriteLogModelInfo(const DEVINFO_MODELINFO& info) {
  using Group = DEVINFO_MODELINFO;
  static constexpr Field kFields[] = {FIELD(category)};
  writeGroup("DEVINFO_MODELINFO", kFields, &info);
  // A name of the full length has no terminator.
  g_ScanDevApiLog.WriteLog(1, "modelName = %.*s", static_cast<int>(sizeof info.modelName), info.modelName);
}

void CDeviceCaps::WriteLogDevInfoFunc(const DEVINFO_FUNC& func) {
  using Group = DEVINFO_FUNC;
  static constexpr Field kFields[] = {
      FIELD(pushScan.supportPushScanEvent.scanToImage),
      FIELD(pushScan.supportPushScanEvent.scanToCOR),
      FIELD(pushScan.supportPushScanEvent.scanToEmail),
      FIELD(pushScan.supportPushScanEvent.scanToFile),
      FIELD(pushScan.continuousScan.cap),
      FIELD(pushScan.continuousScan.supportScanSystem.pushScan),
      FIELD(pushScan.continuousScan.supportScanSystem.otherSystem),
      FIELD(pushScan.paramSetting.cap),
      FIELD(pushScan.paramSetting.dupScanOnly),
      FIELD(pushScan.deviceSupportScanFunc.officeDocCreator),
      FIELD(qciCommandSupport),
  };
  writeGroup("DEVINFO_FUNC", kFields, &func);
}

void CDeviceCaps::WriteLogDevInfoBaseFunc(const DEVINFO_BASEFUNC& base) {
  using Group = DEVINFO_BASEFUNC;
  static constexpr Field kFields[] = {
      AXIS_OF(resolutionOptical.flatbed),
      AXIS_OF(resolutionOptical.adfSimplex),
      AXIS_OF(resolutionOptical.adfDuplex),
      COLORS(colorType),
      SOURCES(paperSource.supportPaperSource),
      FIELD(paperSource.duplexScanSystem),
      FIELD(paperSource.adfStackCapacity),
      SIZES(deviceScanSizeMax),
      SIZES(deviceScanSizeMin),
      SIZES(supportDocSizeMax),
      FIELD(longPaperLengthMax.cap),
      FIELD(longPaperLengthMax.simplexMaxLength),
      FIELD(longPaperLengthMax.duplexMaxLength),
      FIELD(longPaperLengthMax.unit),
      AXIS_OF(startOffset.flatbed),
      AXIS_OF(startOffset.simplex),
      AXIS_OF(startOffset.duplex),
      AXIS_OF(startOffset.cardslot),
      FIELD(startOffset.unit),
      MARGIN_OF(marginSize.flatbed),
      MARGIN_OF(marginSize.adfSimplex),
      MARGIN_OF(marginSize.adfDuplex),
      MARGIN_OF(marginSize.cardslot),
      MARGIN_OF(marginAdjust.flatbed_plus),
      MARGIN_OF(marginAdjust.flatbed_minus),
      MARGIN_OF(marginAdjust.adfSimplex_plus),
      MARGIN_OF(marginAdjust.adfSimplex_minus),
      MARGIN_OF(marginAdjust.adfDuplex_plus),
      MARGIN_OF(marginAdjust.adfDuplex_minus),
      MARGIN_OF(marginAdjust.cardslot_plus),
      MARGIN_OF(marginAdjust.cardslot_minus),
      FIELD(paperPosition.flatbedX),
      FIELD(paperPosition.flatbedY),
      FIELD(paperPosition.adfX),
      FIELD(paperPosition.adfY),
      FIELD(paperPosition.cardslotX),
      FIELD(paperPosition.cardslotY),
      FIELD(cardSizeOrient.capFlatbed),
      FIELD(cardSizeOrient.orientFlatbed),
      FIELD(cardSizeOrient.capAdf),
      FIELD(cardSizeOrient.orientAdf),
      FIELD(multipageScanSystem.scan1Paper),
      FIELD(multipageScanSystem.definingPageNums),
      FIELD(overScanSystem.capOverScan),
      COLORS(overScanSystem.colorType),
      EXCLUSION(overScanSystem.funcExclusion),
      FIELD(cancelSystem.cap),
      FIELD(cancelSystem.ejectAll),
      FIELD(cancelSystem.ejectOne),
      FIELD(cancelSystem.ejectNone),
      FIELD(errorSystem.first.cap),
      FIELD(errorSystem.first.flagA),
      FIELD(errorSystem.first.flagB),
      FIELD(errorSystem.feed.cap),
      FIELD(errorSystem.feed.stop),
      FIELD(errorSystem.feed.resume),
      FIELD(errorSystem.feed.keepOn),
      FIELD(errorSystem.third.cap),
      FIELD(errorSystem.third.flagA),
      FIELD(errorSystem.third.flagB),
      FIELD(colorTape.cap),
      FIELD(colorTape.red),
      FIELD(colorTape.green),
      FIELD(colorTape.blue),
      FIELD(colorTape.upperRange),
      FIELD(colorTape.lowerRange),
  };
  writeGroup("DEVINFO_BASEFUNC", kFields, &base);
}

void CDeviceCaps::WriteLogDevInfoImageProcFunc(const DEVINFO_IMAGEPROCFUNC& imageProc) {
  using Group = DEVINFO_IMAGEPROCFUNC;
  static constexpr Field kFields[] = {
      COMPRESSION(supportCompresssionType.blackAndWhite),
      COMPRESSION(supportCompresssionType.errorDiffusion),
      COMPRESSION(supportCompresssionType.trueGray),
      COMPRESSION(supportCompresssionType.color256),
      COMPRESSION(supportCompresssionType.color24bit),
      FIELD(supportCompresssionType.jpegCompression.compressLevel),
      FIELD(supportCompresssionType.jpegCompression.jpegSamplingFactor.ycbcr444),
      FIELD(supportCompresssionType.jpegCompression.jpegSamplingFactor.ycbcr422),
      FIELD(supportCompresssionType.jpegCompression.jpegSamplingFactor.ycbcr411),
      FIELD(supportCompresssionType.jpegCompression.jpegSamplingFactor.ycbcr420),
      FIELD(supportCompresssionType.jpegCompression.jpegSamplingFactor.ycbcr400),
      FIELD(monoThreshold.autoThresholdCap),
      FIELD(monoThreshold.autoThresholdFlag),
      FIELD(monoThreshold.manuanThresholdCap),
      FIELD(monoThreshold.manualThresholdLevelMax),
      FIELD(monoThreshold.manualThresholdLevelMin),
      FIELD(monoThreshold.manualThresholdLevelDefault),
      FIELD(specialDocumentImageProcs.ocr),
      FIELD(specialDocumentImageProcs.photo),
      FIELD(specialDocumentImageProcs.textandgraph),
      FIELD(specialDocumentImageProcs.copy),
      FIELD(colorProfileOutput),
      FIELD(gammaRange),
      FIELD(moireRemoval.moireCap),
      AXIS_OF(moireRemoval.moireMaxResolution),
      FIELD(toneAdjust),
  };
  writeGroup("DEVINFO_IMAGEPROCFUNC", kFields, &imageProc);
}

void CDeviceCaps::WriteLogDevInfoAdvancedFunc(const DEVINFO_ADVANCEDFUNC& advanced) {
  using Group = DEVINFO_ADVANCEDFUNC;
  static constexpr Field kFields[] = {
      FIELD(autoSize.paperWidthDetect.cap),
      COLORS(autoSize.paperWidthDetect.supportColorType),
      SOURCES(autoSize.paperWidthDetect.supportPaperSource),
      FIELD(autoSize.autoCrop.cap),
      COLORS(autoSize.autoCrop.supportColorType),
      AXIS_OF(autoSize.autoCrop.resolutionDpiMax),
      AXIS_OF(autoSize.autoCrop.resolutionDpiMin),
      FIELD(autoSize.cornerDetect.cap),
      COLORS(autoSize.cornerDetect.supportColorType),
      SOURCES(autoSize.cornerDetect.supportPaperSource),
      FIELD(autoSize.cornerDetect.cornerInfoOutputSystem),
      AXIS_OF(autoSize.cornerDetect.resolutionDpiMin),
      AXIS_OF(autoSize.cornerDetect.resolutionDpiMax),
      FIELD(autoSize.deviceDetectSize.cap),
      SOURCES(autoSize.deviceDetectSize.supportPaperSource),
      FIELD(autoSize.deviceDetectSize.detectSystem),
      FIELD(autoSize.deviceDetectSize.detectOverScan),
      FIELD(idCardMode.cap),
      FIELD(idCardMode.deviceFunc.scanFromFlatbed),
      FIELD(idCardMode.deviceFunc.showGuidsOnPanel),
      FIELD(landscape.cap),
      SOURCES(landscape.ladscapeCapablePaperSource),
      FIELD(carrierSheet.cap),
      FIELD(carrierSheet.skipOffsetSystem),
      COLORS(carrierSheet.supportColorType),
      FIELD(carrierSheet.offsetSizeMm.top),
      FIELD(carrierSheet.offsetSizeMm.bottom),
      AXIS_OF(carrierSheet.resolutionDpiMax),
      AXIS_OF(carrierSheet.resolutionDpiMin),
      EXCLUSION(carrierSheet.exclusion),
      FIELD(plasticCard.cap),
      COLORS(plasticCard.supportColorType),
      AXIS_OF(plasticCard.resolutionDpiMin),
      AXIS_OF(plasticCard.resolutionDpiMax),
      EXCLUSION(plasticCard.exclusion),
      FIELD(multifeedDetect.cap),
      FIELD(multifeedDetect.systemType),
      FIELD(multifeedDetect.level),
      LEVELS(backgroundRemove),
      LEVELS(breedthroughRemove),
      FIELD(deskew.cap),
      SOURCES(deskew.suportPaperSource),
      FIELD(deskew.systemType),
      FIELD(blankRemoval.cap),
      FIELD(blankRemoval.systemType),
      FIELD(blankRemoval.levelCap),
      FIELD(blankRemoval.levelFixed),
      FIELD(blankRemoval.levelMax),
      FIELD(blankRemoval.levelMin),
      FIELD(blankRemoval.levelDefault),
      FIELD(autoColor.cap),
      FIELD(autoColor.firstMax),
      FIELD(autoColor.firstMin),
      FIELD(autoColor.firstDefault),
      FIELD(autoColor.secondMax),
      FIELD(autoColor.secondMin),
      FIELD(autoColor.secondDefault),
      FIELD(detectResolution),
      FIELD(adfOnlyBackScan),
      FIELD(quietScan.cap),
      FIELD(quietScan.level),
      FIELD(quietScan.levelAlt),
  };
  writeGroup("DEVINFO_ADVANCEDFUNC", kFields, &advanced);
}

}  // namespace orvalle_scan_api
