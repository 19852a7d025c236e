// The layout of the records of the boundary, spelled out again: offset and width of every field by the rule of natural
// alignment on 64-bit systems, in the order in which a host compiled long ago has them.
#include <gtest/gtest.h>

#include <cstddef>

#include "modules/DeviceAccess.h"
#include "modules/JpegDecode.h"
#include "modules/ScanDec.h"
#include "push_scan.h"
#include "scan_image.h"
#include "scanner_parameters.h"
#include "select_device.h"
#include "tests/api/record_layout.h"

namespace {

using namespace orvalle_scan_api;
using api_test::expectLayout;

TEST(Records, TheSettings) {
  using Record = QS_SCANNER_PARAMETERS;
  expectLayout(sizeof(Record), 292,
               {FIELD(resolution.x, 0, 4),
                FIELD(resolution.y, 4, 4),
                FIELD(colorType, 8, 4),
                FIELD(paperType, 12, 4),
                FIELD(customPaperSize.x, 16, 4),
                FIELD(customPaperSize.y, 20, 4),
                FIELD(customPaperSize.unit, 24, 4),
                FIELD(useScanArea, 28, 1),
                FIELD(scanArea.left, 32, 4),
                FIELD(scanArea.top, 36, 4),
                FIELD(scanArea.right, 40, 4),
                FIELD(scanArea.bottom, 44, 4),
                FIELD(scanArea.unit, 48, 4),
                FIELD(brightness, 52, 4),
                FIELD(contrast, 56, 4),
                FIELD(duplexType, 60, 4),
                FIELD(paperSource, 64, 4),
                FIELD(reservedA, 68, 4),
                FIELD(reservedFlag, 72, 1),
                FIELD(autoDeskew, 73, 1),
                FIELD(autoRotate, 74, 1),
                FIELD(autoRotateParam, 76, 4),
                FIELD(detectEndOfPage, 80, 1),
                FIELD(autoThreshold, 81, 1),
                FIELD(threshold, 84, 4),
                FIELD(colorTone.enable, 88, 1),
                FIELD(colorTone.autoMode, 89, 1),
                FIELD(colorTone.brightness, 92, 4),
                FIELD(colorTone.contrast, 96, 4),
                FIELD(colorTone.shadow, 100, 4),
                FIELD(colorTone.highlight, 104, 4),
                FIELD(colorTone.gamma, 108, 4),
                FIELD(autoColorLevel.first, 112, 4),
                FIELD(autoColorLevel.second, 116, 4),
                FIELD(removeBackground.enable, 120, 1),
                FIELD(removeBackground.level, 124, 4),
                FIELD(smoothing.enable, 128, 1),
                FIELD(smoothing.mode, 129, 1),
                FIELD(smoothing.level, 132, 4),
                FIELD(colorDrop.enable, 136, 1),
                FIELD(colorDrop.chromatic, 137, 1),
                FIELD(colorDrop.red, 138, 1),
                FIELD(colorDrop.green, 139, 1),
                FIELD(colorDrop.blue, 140, 1),
                FIELD(colorDrop.customRed, 141, 1),
                FIELD(colorDrop.customGreen, 142, 1),
                FIELD(colorDrop.customBlue, 143, 1),
                FIELD(colorDrop.customRange, 144, 4),
                FIELD(colorDrop.customFlag, 148, 1),
                FIELD(thickText.enable, 152, 1),
                FIELD(thickText.level, 156, 4),
                FIELD(dotTextCombine, 160, 1),
                FIELD(edgeEnhance.enable, 164, 1),
                FIELD(edgeEnhance.level, 168, 4),
                FIELD(firstEnhanceFlag, 172, 1),
                FIELD(noiseRemoval.enable, 176, 1),
                FIELD(noiseRemoval.level, 180, 4),
                FIELD(lineRemoval.enable, 184, 1),
                FIELD(lineRemoval.direction, 188, 4),
                FIELD(lineRemoval.first, 192, 4),
                FIELD(lineRemoval.second, 196, 4),
                FIELD(lineRemoval.third, 200, 4),
                FIELD(punchHoleRemoval.enable, 204, 1),
                FIELD(punchHoleRemoval.fill, 208, 4),
                FIELD(carrierSheet, 212, 1),
                FIELD(plasticCard, 213, 1),
                FIELD(edgeCut.enable, 216, 1),
                FIELD(edgeCut.left, 220, 4),
                FIELD(edgeCut.top, 224, 4),
                FIELD(edgeCut.right, 228, 4),
                FIELD(edgeCut.bottom, 232, 4),
                FIELD(edgeCut.unit, 236, 4),
                FIELD(edgeFill.enable, 240, 1),
                FIELD(edgeFill.mode, 244, 4),
                FIELD(edgeFill.first, 248, 4),
                FIELD(edgeFill.second, 252, 4),
                FIELD(edgeFill.third, 256, 4),
                FIELD(edgeFill.fourth, 260, 4),
                FIELD(edgeFill.fifth, 264, 4),
                FIELD(blankPageRemoval.enable, 268, 1),
                FIELD(blankPageRemoval.level, 272, 4),
                FIELD(scanPageCount, 276, 4),
                FIELD(quietScan, 280, 1),
                FIELD(multifeedDetect, 281, 1),
                FIELD(plasticCardProcess, 284, 4),
                FIELD(wantColorProfile, 288, 4)});
}

TEST(Records, TheSelectedDevice) {
  using Record = _QS_SELECT_DEVICE_INFO;
  expectLayout(sizeof(Record), 260,
               {FIELD(connectionType, 0, 4), FIELD(primaryName, 4, 128), FIELD(secondaryName, 132, 128)});
}

TEST(Records, AFinishedPage) {
  using Record = tagQS_SCAN_IMAGEDATA;
  expectLayout(sizeof(Record), 64,
               {FIELD(data, 0, 8), FIELD(dataSize, 8, 8), FIELD(pixelData, 16, 8), FIELD(pixelDataSize, 24, 4),
                FIELD(resolutionX, 28, 4), FIELD(resolutionY, 32, 4), FIELD(bitPerPixel, 36, 4),
                FIELD(widthPixel, 40, 4), FIELD(heightPixel, 44, 4), FIELD(widthBytes, 48, 4),
                FIELD(isBlankPage, 52, 1), FIELD(pageScanIsTerminated, 53, 1), FIELD(imageEnhanceTerminated, 56, 4)});
}

TEST(Records, TheForecastOfAPage) {
  using Record = QS_BITMAP_IMAGE_INFO;
  expectLayout(
      sizeof(Record), 32,
      {FIELD(bitPerPixel, 0, 2), FIELD(resolutionX, 4, 4), FIELD(resolutionY, 8, 4), FIELD(pixelsPerMeterX, 12, 4),
       FIELD(pixelsPerMeterY, 16, 4), FIELD(widthPixel, 20, 4), FIELD(heightPixel, 24, 4), FIELD(widthBytes, 28, 4)});
}

TEST(Records, ThePanelsWishes) {
  using Record = tagQS_PUSHSCAN_PARAMETERS;
  expectLayout(sizeof(Record), 116,
               {FIELD(event.valid, 0, 1),
                FIELD(event.value, 4, 4),
                FIELD(duplex.valid, 8, 1),
                FIELD(duplex.value, 12, 4),
                FIELD(resolution.xValid, 16, 1),
                FIELD(resolution.yValid, 17, 1),
                FIELD(resolution.xAuto, 18, 1),
                FIELD(resolution.yAuto, 19, 1),
                FIELD(resolution.x, 20, 4),
                FIELD(resolution.y, 24, 4),
                FIELD(colorType.valid, 28, 1),
                FIELD(colorType.value, 32, 4),
                FIELD(paperType.valid, 36, 1),
                FIELD(paperType.value, 40, 4),
                FIELD(brightness.valid, 44, 1),
                FIELD(brightness.value, 48, 4),
                FIELD(contrast.valid, 52, 1),
                FIELD(contrast.value, 56, 4),
                FIELD(autoCrop.valid, 60, 1),
                FIELD(autoCrop.on, 61, 1),
                FIELD(fileType.valid, 64, 1),
                FIELD(fileType.format, 68, 4),
                FIELD(fileType.compressValid, 72, 1),
                FIELD(fileType.compress, 76, 4),
                FIELD(fileType.tiffCompressValid, 80, 1),
                FIELD(fileType.tiffCompressOn, 81, 1),
                FIELD(fileType.qualityValid, 82, 1),
                FIELD(fileType.quality, 84, 4),
                FIELD(fileType.qualityArg, 88, 4),
                FIELD(blankPageRemove.valid, 92, 1),
                FIELD(blankPageRemove.on, 93, 1),
                FIELD(removeBleedThrough.valid, 94, 1),
                FIELD(removeBleedThrough.on, 95, 1),
                FIELD(orient.valid, 96, 1),
                FIELD(orient.isLandscape, 97, 1),
                FIELD(orient.angle, 100, 4),
                FIELD(deskew.valid, 104, 1),
                FIELD(deskew.on, 105, 1),
                FIELD(removeBackground.valid, 108, 1),
                FIELD(removeBackground.on, 109, 1),
                FIELD(removeBackground.hasLevel, 110, 1),
                FIELD(removeBackground.level, 112, 4)});
}

TEST(Records, TheIdentifierOfADevice) {
  using Record = _DEV_IDENTIFIER;
  expectLayout(sizeof(Record), 16, {FIELD(kind, 0, 4), FIELD(connection, 4, 4), FIELD(name, 8, 8)});
}

TEST(Records, TheFormatForTheLineDecoder) {
  using Record = SCANDEC_OPEN;
  expectLayout(sizeof(Record), 112,
               {FIELD(reservedFirst, 0, 4), FIELD(nPageNum, 4, 4), FIELD(nInResoX, 8, 4), FIELD(nInResoY, 12, 4),
                FIELD(nOutResoX, 16, 4), FIELD(nOutResoY, 20, 4), FIELD(nColorType, 24, 4),
                FIELD(dwInLinePixCnt, 32, 8), FIELD(dwInHeightPixCnt, 40, 8), FIELD(reservedOne, 48, 4),
                FIELD(reservedWord, 56, 8), FIELD(reservedByte, 64, 1), FIELD(nBrightness, 68, 4),
                FIELD(nContrast, 72, 4), FIELD(reservedByte2, 76, 1), FIELD(dwOutLineByteCnt, 80, 8),
                FIELD(reservedWord2, 88, 8), FIELD(reservedText, 96, 8), FIELD(dwWriteBuffSize, 104, 8)});
}

TEST(Records, OneCallOfTheLineDecoder) {
  using Record = SCANDEC_WRITE;
  expectLayout(
      sizeof(Record), 48,
      {FIELD(nInDataComp, 0, 4), FIELD(nInDataKind, 4, 4), FIELD(pLineData, 8, 8), FIELD(inSize, 16, 8),
       FIELD(pWriteBuff, 24, 8), FIELD(writeBuffSize, 32, 8), FIELD(reservedFlag, 40, 1), FIELD(reservedFlag2, 41, 1)});
}

TEST(Records, TheHeadOfAJpegInBands) {
  using Record = JPEGBANDINFO;
  expectLayout(sizeof(Record), 28,
               {FIELD(resolutionX, 0, 4), FIELD(resolutionY, 4, 4), FIELD(bitPerPixel, 8, 4), FIELD(widthPixel, 12, 4),
                FIELD(heightPixel, 16, 4), FIELD(reserved, 20, 4), FIELD(writeSizeSpan, 24, 4)});
}

}  // namespace
