// The layout of the two capability records, spelled out again: offset and width of every field by the rule of natural
// alignment on 64-bit systems, in the order in which a host compiled long ago has them.
#include <gtest/gtest.h>

#include <cstddef>

#include "scanner_capability_v1.h"
#include "tests/api/record_layout.h"

namespace {

using namespace orvalle_scan_api;
using api_test::expectLayout;

TEST(CapabilityRecords, TheirCommonGroups) {
  {
    using Record = AXIS;
    expectLayout(sizeof(Record), 8, {FIELD(x, 0, 4), FIELD(y, 4, 4)});
  }
  {
    using Record = SUPPORTCOLORTYPES;
    expectLayout(sizeof(Record), 7,
                 {FIELD(blackAndWhite, 0, 1), FIELD(errorDiffusion, 1, 1), FIELD(trueGray, 2, 1), FIELD(color256, 3, 1),
                  FIELD(color24bit, 4, 1), FIELD(color256table, 5, 1), FIELD(autoColor, 6, 1)});
  }
  {
    using Record = SUPPORTPAPERSOURCES;
    expectLayout(sizeof(Record), 4,
                 {FIELD(flatbed, 0, 1), FIELD(adfSimplex, 1, 1), FIELD(adfDuplex, 2, 1), FIELD(cardslot, 3, 1)});
  }
  {
    using Record = MARGIN;
    expectLayout(sizeof(Record), 20,
                 {FIELD(left, 0, 4), FIELD(right, 4, 4), FIELD(top, 8, 4), FIELD(bottom, 12, 4), FIELD(unit, 16, 4)});
  }
  {
    using Record = PAPERSETTINGPOSITIONS;
    expectLayout(sizeof(Record), 24,
                 {FIELD(flatbedX, 0, 4), FIELD(flatbedY, 4, 4), FIELD(adfX, 8, 4), FIELD(adfY, 12, 4),
                  FIELD(cardslotX, 16, 4), FIELD(cardslotY, 20, 4)});
  }
  {
    using Record = FUNCEXCLUSION;
    expectLayout(
        sizeof(Record), 9,
        {FIELD(detectDocSize, 0, 1), FIELD(detectMultifeed, 1, 1), FIELD(removeBackgroundByDevice, 2, 1),
         FIELD(deskewByDevice, 3, 1), FIELD(autoColorByDevice, 4, 1), FIELD(blankRemovalByDevice, 5, 1),
         FIELD(detectDocSizeByDevice, 6, 1), FIELD(autoResolutionByDevice, 7, 1), FIELD(autoRotateByDevice, 8, 1)});
  }
  {
    using Record = COMPRESSSUPPORT;
    expectLayout(sizeof(Record), 4,
                 {FIELD(noCompress, 0, 1), FIELD(packbits, 1, 1), FIELD(mh, 2, 1), FIELD(jpeg, 3, 1)});
  }
  {
    using Record = MONOTHRESHOLDSUPPORT;
    expectLayout(sizeof(Record), 24,
                 {FIELD(autoThresholdCap, 0, 4), FIELD(autoThresholdFlag, 4, 1), FIELD(manuanThresholdCap, 8, 4),
                  FIELD(manualThresholdLevelMax, 12, 4), FIELD(manualThresholdLevelMin, 16, 4),
                  FIELD(manualThresholdLevelDefault, 20, 4)});
  }
  {
    using Record = SUPPORTADJUSTLEVEL;
    expectLayout(sizeof(Record), 8, {FIELD(cap, 0, 4), FIELD(level, 4, 4)});
  }
  {
    using Record = BLANKREMOVALSUPPORT;
    expectLayout(sizeof(Record), 28,
                 {FIELD(cap, 0, 4), FIELD(systemType, 4, 4), FIELD(levelCap, 8, 4), FIELD(levelFixed, 12, 4),
                  FIELD(levelMax, 16, 4), FIELD(levelMin, 20, 4), FIELD(levelDefault, 24, 4)});
  }
  {
    using Record = AUTOCOLORLEVELSUPPORT;
    expectLayout(sizeof(Record), 28,
                 {FIELD(cap, 0, 4), FIELD(firstMax, 4, 4), FIELD(firstMin, 8, 4), FIELD(firstDefault, 12, 4),
                  FIELD(secondMax, 16, 4), FIELD(secondMin, 20, 4), FIELD(secondDefault, 24, 4)});
  }
  {
    using Record = OPTICALRESOLUTIONS;
    expectLayout(sizeof(Record), 24, {FIELD(flatbed, 0, 8), FIELD(adfSimplex, 8, 8), FIELD(adfDuplex, 16, 8)});
  }
  {
    using Record = DEVICESCANSIZES;
    expectLayout(sizeof(Record), 28,
                 {FIELD(flatbed, 0, 8), FIELD(simplex, 8, 8), FIELD(duplex, 16, 8), FIELD(unit, 24, 4)});
  }
  {
    using Record = BACKGROUNDREMOVALSUPPORT;
    expectLayout(
        sizeof(Record), 32,
        {FIELD(blackAndWhite, 0, 8), FIELD(errorDiffusion, 8, 8), FIELD(trueGray, 16, 8), FIELD(color24bit, 24, 8)});
  }
  {
    using Record = VALUERANGE;
    expectLayout(sizeof(Record), 12, {FIELD(max, 0, 4), FIELD(min, 4, 4), FIELD(def, 8, 4)});
  }
}

TEST(CapabilityRecords, TheFullOne) {
  using Record = QS_SCANNER_CAPABILITY;
  expectLayout(sizeof(Record), 1156,
               {FIELD(generation, 0, 4),
                FIELD(commandVersion, 4, 2),
                FIELD(modelInfo.category, 8, 4),
                FIELD(modelInfo.modelName, 12, 128),
                FIELD(func.pushScan.supportPushScanEvent.scanToImage, 140, 1),
                FIELD(func.pushScan.supportPushScanEvent.scanToCOR, 141, 1),
                FIELD(func.pushScan.supportPushScanEvent.scanToEmail, 142, 1),
                FIELD(func.pushScan.supportPushScanEvent.scanToFile, 143, 1),
                FIELD(func.pushScan.continuousScan.cap, 144, 4),
                FIELD(func.pushScan.continuousScan.supportScanSystem.pushScan, 148, 1),
                FIELD(func.pushScan.continuousScan.supportScanSystem.otherSystem, 149, 1),
                FIELD(func.pushScan.paramSetting.cap, 152, 4),
                FIELD(func.pushScan.paramSetting.dupScanOnly, 156, 1),
                FIELD(func.pushScan.deviceSupportScanFunc.officeDocCreator, 160, 1),
                FIELD(func.qciCommandSupport, 164, 4),
                FIELD(baseFunc.resolutionOptical, 168, 24),
                FIELD(baseFunc.colorType, 192, 7),
                FIELD(baseFunc.paperSource.supportPaperSource, 200, 4),
                FIELD(baseFunc.paperSource.duplexScanSystem, 204, 4),
                FIELD(baseFunc.paperSource.adfStackCapacity, 208, 4),
                FIELD(baseFunc.deviceScanSizeMax, 212, 28),
                FIELD(baseFunc.deviceScanSizeMin, 240, 28),
                FIELD(baseFunc.supportDocSizeMax, 268, 28),
                FIELD(baseFunc.longPaperLengthMax.cap, 296, 4),
                FIELD(baseFunc.longPaperLengthMax.simplexMaxLength, 300, 4),
                FIELD(baseFunc.longPaperLengthMax.duplexMaxLength, 304, 4),
                FIELD(baseFunc.longPaperLengthMax.unit, 308, 4),
                FIELD(baseFunc.startOffset.flatbed, 312, 8),
                FIELD(baseFunc.startOffset.simplex, 320, 8),
                FIELD(baseFunc.startOffset.duplex, 328, 8),
                FIELD(baseFunc.startOffset.cardslot, 336, 8),
                FIELD(baseFunc.startOffset.unit, 344, 4),
                FIELD(baseFunc.marginSize.flatbed, 348, 20),
                FIELD(baseFunc.marginSize.adfSimplex, 368, 20),
                FIELD(baseFunc.marginSize.adfDuplex, 388, 20),
                FIELD(baseFunc.marginSize.cardslot, 408, 20),
                FIELD(baseFunc.marginAdjust.flatbed_plus, 428, 20),
                FIELD(baseFunc.marginAdjust.flatbed_minus, 448, 20),
                FIELD(baseFunc.marginAdjust.adfSimplex_plus, 468, 20),
                FIELD(baseFunc.marginAdjust.adfSimplex_minus, 488, 20),
                FIELD(baseFunc.marginAdjust.adfDuplex_plus, 508, 20),
                FIELD(baseFunc.marginAdjust.adfDuplex_minus, 528, 20),
                FIELD(baseFunc.marginAdjust.cardslot_plus, 548, 20),
                FIELD(baseFunc.marginAdjust.cardslot_minus, 568, 20),
                FIELD(baseFunc.paperPosition, 588, 24),
                FIELD(baseFunc.cardSizeOrient.capFlatbed, 612, 4),
                FIELD(baseFunc.cardSizeOrient.orientFlatbed, 616, 4),
                FIELD(baseFunc.cardSizeOrient.capAdf, 620, 4),
                FIELD(baseFunc.cardSizeOrient.orientAdf, 624, 4),
                FIELD(baseFunc.multipageScanSystem.scan1Paper, 628, 1),
                FIELD(baseFunc.multipageScanSystem.definingPageNums, 629, 1),
                FIELD(baseFunc.overScanSystem.capOverScan, 632, 4),
                FIELD(baseFunc.overScanSystem.colorType, 636, 7),
                FIELD(baseFunc.overScanSystem.funcExclusion, 643, 9),
                FIELD(baseFunc.cancelSystem.cap, 652, 4),
                FIELD(baseFunc.cancelSystem.ejectAll, 656, 1),
                FIELD(baseFunc.cancelSystem.ejectOne, 657, 1),
                FIELD(baseFunc.cancelSystem.ejectNone, 658, 1),
                FIELD(baseFunc.errorSystem.first.cap, 660, 4),
                FIELD(baseFunc.errorSystem.first.flagA, 664, 1),
                FIELD(baseFunc.errorSystem.first.flagB, 665, 1),
                FIELD(baseFunc.errorSystem.feed.cap, 668, 4),
                FIELD(baseFunc.errorSystem.feed.stop, 672, 1),
                FIELD(baseFunc.errorSystem.feed.resume, 673, 1),
                FIELD(baseFunc.errorSystem.feed.keepOn, 674, 1),
                FIELD(baseFunc.errorSystem.third.cap, 676, 4),
                FIELD(baseFunc.errorSystem.third.flagA, 680, 1),
                FIELD(baseFunc.errorSystem.third.flagB, 681, 1),
                FIELD(baseFunc.colorTape.cap, 684, 4),
                FIELD(baseFunc.colorTape.red, 688, 4),
                FIELD(baseFunc.colorTape.green, 692, 4),
                FIELD(baseFunc.colorTape.blue, 696, 4),
                FIELD(baseFunc.colorTape.upperRange, 700, 4),
                FIELD(baseFunc.colorTape.lowerRange, 704, 4),
                FIELD(imageProcFunc.supportCompresssionType.blackAndWhite, 708, 4),
                FIELD(imageProcFunc.supportCompresssionType.errorDiffusion, 712, 4),
                FIELD(imageProcFunc.supportCompresssionType.trueGray, 716, 4),
                FIELD(imageProcFunc.supportCompresssionType.color256, 720, 4),
                FIELD(imageProcFunc.supportCompresssionType.color24bit, 724, 4),
                FIELD(imageProcFunc.supportCompresssionType.jpegCompression.compressLevel, 728, 4),
                FIELD(imageProcFunc.supportCompresssionType.jpegCompression.jpegSamplingFactor.ycbcr444, 732, 1),
                FIELD(imageProcFunc.supportCompresssionType.jpegCompression.jpegSamplingFactor.ycbcr422, 733, 1),
                FIELD(imageProcFunc.supportCompresssionType.jpegCompression.jpegSamplingFactor.ycbcr411, 734, 1),
                FIELD(imageProcFunc.supportCompresssionType.jpegCompression.jpegSamplingFactor.ycbcr420, 735, 1),
                FIELD(imageProcFunc.supportCompresssionType.jpegCompression.jpegSamplingFactor.ycbcr400, 736, 1),
                FIELD(imageProcFunc.monoThreshold, 740, 24),
                FIELD(imageProcFunc.specialDocumentImageProcs.ocr, 764, 1),
                FIELD(imageProcFunc.specialDocumentImageProcs.photo, 765, 1),
                FIELD(imageProcFunc.specialDocumentImageProcs.textandgraph, 766, 1),
                FIELD(imageProcFunc.specialDocumentImageProcs.copy, 767, 1),
                FIELD(imageProcFunc.colorProfileOutput, 768, 4),
                FIELD(imageProcFunc.gammaRange, 772, 4),
                FIELD(imageProcFunc.moireRemoval.moireCap, 776, 4),
                FIELD(imageProcFunc.moireRemoval.moireMaxResolution, 780, 8),
                FIELD(imageProcFunc.toneAdjust, 788, 4),
                FIELD(advancedFunc.autoSize.paperWidthDetect.cap, 792, 4),
                FIELD(advancedFunc.autoSize.paperWidthDetect.supportColorType, 796, 7),
                FIELD(advancedFunc.autoSize.paperWidthDetect.supportPaperSource, 803, 4),
                FIELD(advancedFunc.autoSize.autoCrop.cap, 808, 4),
                FIELD(advancedFunc.autoSize.autoCrop.supportColorType, 812, 7),
                FIELD(advancedFunc.autoSize.autoCrop.resolutionDpiMax, 820, 8),
                FIELD(advancedFunc.autoSize.autoCrop.resolutionDpiMin, 828, 8),
                FIELD(advancedFunc.autoSize.cornerDetect.cap, 836, 4),
                FIELD(advancedFunc.autoSize.cornerDetect.supportColorType, 840, 7),
                FIELD(advancedFunc.autoSize.cornerDetect.supportPaperSource, 847, 4),
                FIELD(advancedFunc.autoSize.cornerDetect.cornerInfoOutputSystem, 852, 4),
                FIELD(advancedFunc.autoSize.cornerDetect.resolutionDpiMin, 856, 8),
                FIELD(advancedFunc.autoSize.cornerDetect.resolutionDpiMax, 864, 8),
                FIELD(advancedFunc.autoSize.deviceDetectSize.cap, 872, 4),
                FIELD(advancedFunc.autoSize.deviceDetectSize.supportPaperSource, 876, 4),
                FIELD(advancedFunc.autoSize.deviceDetectSize.detectSystem, 880, 1),
                FIELD(advancedFunc.autoSize.deviceDetectSize.detectOverScan, 881, 1),
                FIELD(advancedFunc.idCardMode.cap, 884, 4),
                FIELD(advancedFunc.idCardMode.deviceFunc.scanFromFlatbed, 888, 1),
                FIELD(advancedFunc.idCardMode.deviceFunc.showGuidsOnPanel, 889, 1),
                FIELD(advancedFunc.landscape.cap, 892, 4),
                FIELD(advancedFunc.landscape.ladscapeCapablePaperSource, 896, 4),
                FIELD(advancedFunc.carrierSheet.cap, 900, 4),
                FIELD(advancedFunc.carrierSheet.skipOffsetSystem, 904, 4),
                FIELD(advancedFunc.carrierSheet.supportColorType, 908, 7),
                FIELD(advancedFunc.carrierSheet.offsetSizeMm.top, 916, 4),
                FIELD(advancedFunc.carrierSheet.offsetSizeMm.bottom, 920, 4),
                FIELD(advancedFunc.carrierSheet.resolutionDpiMax, 924, 8),
                FIELD(advancedFunc.carrierSheet.resolutionDpiMin, 932, 8),
                FIELD(advancedFunc.carrierSheet.exclusion, 940, 9),
                FIELD(advancedFunc.plasticCard.cap, 952, 4),
                FIELD(advancedFunc.plasticCard.supportColorType, 956, 7),
                FIELD(advancedFunc.plasticCard.resolutionDpiMin, 964, 8),
                FIELD(advancedFunc.plasticCard.resolutionDpiMax, 972, 8),
                FIELD(advancedFunc.plasticCard.exclusion, 980, 9),
                FIELD(advancedFunc.multifeedDetect.cap, 992, 4),
                FIELD(advancedFunc.multifeedDetect.systemType, 996, 4),
                FIELD(advancedFunc.multifeedDetect.level, 1000, 4),
                FIELD(advancedFunc.backgroundRemove, 1004, 32),
                FIELD(advancedFunc.breedthroughRemove, 1036, 32),
                FIELD(advancedFunc.deskew.cap, 1068, 4),
                FIELD(advancedFunc.deskew.suportPaperSource, 1072, 4),
                FIELD(advancedFunc.deskew.systemType, 1076, 4),
                FIELD(advancedFunc.blankRemoval, 1080, 28),
                FIELD(advancedFunc.autoColor, 1108, 28),
                FIELD(advancedFunc.detectResolution, 1136, 4),
                FIELD(advancedFunc.adfOnlyBackScan, 1140, 4),
                FIELD(advancedFunc.quietScan.cap, 1144, 4),
                FIELD(advancedFunc.quietScan.level, 1148, 4),
                FIELD(advancedFunc.quietScan.levelAlt, 1152, 4)});
}

TEST(CapabilityRecords, TheOlderFlatOne) {
  using Record = tagQS_SCANNER_CAPABILITY_VER1;
  expectLayout(sizeof(Record), 564,
               {FIELD(resolutionOptical, 0, 24),
                FIELD(resolutionList, 24, 44),
                FIELD(colorType.blackAndWhite, 68, 1),
                FIELD(colorType.errorDiffusion, 69, 1),
                FIELD(colorType.trueGray, 70, 1),
                FIELD(colorType.color256, 71, 1),
                FIELD(colorType.color24bit, 72, 1),
                FIELD(autoColorFlag, 73, 1),
                FIELD(supportDocSizeMax, 76, 28),
                FIELD(deviceScanSizeMin, 104, 28),
                FIELD(longPaperLengthMax.cap, 132, 4),
                FIELD(longPaperLengthMax.simplexMaxLength, 136, 4),
                FIELD(longPaperLengthMax.duplexMaxLength, 140, 4),
                FIELD(paperSource.supportPaperSource, 144, 4),
                FIELD(paperSource.duplexScanSystem, 148, 4),
                FIELD(paperSource.adfStackCapacity, 152, 4),
                FIELD(paperPosition, 156, 24),
                FIELD(marginSize, 180, 20),
                FIELD(autoPaperSize, 200, 4),
                FIELD(autoCrop, 204, 4),
                FIELD(autoDeskew, 208, 4),
                FIELD(autoRotate, 212, 4),
                FIELD(detectEndOfPage, 216, 4),
                FIELD(monoThreshold, 220, 24),
                FIELD(colorTone.cap, 244, 4),
                FIELD(colorTone.flag, 248, 1),
                FIELD(colorTone.brightness, 252, 12),
                FIELD(colorTone.contrast, 264, 12),
                FIELD(colorTone.shadow, 276, 12),
                FIELD(colorTone.highlight, 288, 12),
                FIELD(colorTone.gamma, 300, 12),
                FIELD(autoColor, 312, 28),
                FIELD(backgroundRemoval, 340, 32),
                FIELD(smoothing.cap, 372, 4),
                FIELD(smoothing.flag, 376, 1),
                FIELD(smoothing.levelCap, 380, 4),
                FIELD(smoothing.levelFlag, 384, 1),
                FIELD(smoothing.level, 388, 12),
                FIELD(colorDrop.cap, 400, 4),
                FIELD(colorDrop.red, 404, 1),
                FIELD(colorDrop.green, 405, 1),
                FIELD(colorDrop.blue, 406, 1),
                FIELD(colorDrop.chromatic, 407, 1),
                FIELD(colorDrop.custom, 408, 4),
                FIELD(thickText.cap, 412, 4),
                FIELD(thickText.flag, 416, 1),
                FIELD(thickText.level, 420, 12),
                FIELD(dotTextCombine, 432, 4),
                FIELD(edgeEnhance.cap, 436, 4),
                FIELD(edgeEnhance.flag, 440, 1),
                FIELD(edgeEnhance.level, 444, 12),
                FIELD(firstEnhanceFlag, 456, 4),
                FIELD(dustRemoval.cap, 460, 4),
                FIELD(dustRemoval.flag, 464, 1),
                FIELD(dustRemoval.level, 468, 12),
                FIELD(lineRemoval.cap, 480, 4),
                FIELD(lineRemoval.flag, 484, 1),
                FIELD(punchHole.cap, 488, 4),
                FIELD(punchHole.flag, 492, 1),
                FIELD(carrierSheet, 496, 4),
                FIELD(plasticCard, 500, 4),
                FIELD(edgeCut, 504, 4),
                FIELD(edgeFill.cap, 508, 4),
                FIELD(edgeFill.first, 512, 1),
                FIELD(edgeFill.second, 513, 1),
                FIELD(blankRemoval, 516, 28),
                FIELD(xferCount, 544, 4),
                FIELD(multifeed, 548, 4),
                FIELD(quietMode, 552, 4),
                FIELD(reserved, 556, 4),
                FIELD(iccProfile, 560, 4)});
}

}  // namespace
