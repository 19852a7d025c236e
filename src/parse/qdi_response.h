// A QDI body as the walk leaves it: the device's values unchanged, in the order of the tags, without gaps.
#pragma once

#include <cstdint>

namespace orvalle_scan_api {

struct __attribute__((packed)) _QDICMDRESPONSE {
  std::uint16_t protocolVersion;       // 0x0001
  std::uint16_t deviceCategory;        // 0x0101
  char modelName[128];                 // 0x0102
  std::uint8_t pushScanEvent;          // 0x0201
  std::uint8_t kept0201;               //
  std::uint8_t continuousScan;         // 0x0202
  std::uint8_t pushParamSetting;       //
  std::uint16_t deviceFunc;            // 0x0203
  std::uint8_t qciCommand;             // 0x0204
  std::uint8_t kept0204;               //
  std::uint8_t colorType;              // 0x0301
  std::uint8_t kept0301;               //
  std::uint8_t paperSource;            // 0x0302
  std::uint8_t duplex;                 //
  std::uint16_t adfStackCapacity;      // 0x0303
  std::uint16_t opticalResolution[6];  // 0x0304  flatbed x, y; feeder simplex x, y; feeder duplex x, y
  std::uint16_t scanSizeMax[6];        // 0x0305  the same order, 1/10 mm
  std::uint16_t longPaperSimplex;      // 0x0306  1/10 mm
  std::uint16_t longPaperDuplex;       //
  std::uint16_t scanSizeMin[6];        // 0x0307
  std::uint16_t docSizeMax[6];         // 0x0308
  std::int16_t marginSize[16];         // 0x0309  left, right, top, bottom of the four sources
  std::int16_t marginAdjust[32];       // 0x030A  left, right, top, bottom, each plus then minus, of the four sources
  std::uint8_t paperPosition[6];       // 0x030B  flatbed x, y; feeder x, y; card slot x, y
  std::uint8_t cardOrientFlatbed;      // 0x030C
  std::uint8_t cardOrientAdf;          //
  std::uint8_t multiPageSystem;        // 0x030D
  std::uint8_t kept030D;               //
  std::uint8_t overScan;               // 0x030E
  std::uint8_t overScanColor;          //
  std::uint16_t overScanExclusion;     //
  std::uint8_t cancelSystem;           // 0x030F
  std::uint8_t kept030F;               //
  std::uint8_t errorSystem[3];         // 0x0310
  std::uint8_t kept0310;               //
  std::uint8_t colorTapeMode;          // 0x0311
  std::uint8_t colorTapeValue[4];      //
  std::uint8_t colorTapeExtra;         //
  std::uint8_t compressType[5];        // 0x0401  black and white, error diffusion, grey, 256 colours, 24 bits
  std::uint8_t kept0401;               //
  std::uint8_t jpegLevel;              // 0x0402
  std::uint8_t jpegSampling;           //
  std::uint8_t monoThreshold;          // 0x0403
  std::uint8_t monoThresholdMin;       //
  std::uint8_t monoThresholdMax;       //
  std::uint8_t kept0403;               //
  std::uint16_t specialDocument;       // 0x0404
  std::uint16_t colorProfile;          // 0x0405
  std::uint8_t gammaRange;             // 0x0406
  std::uint8_t kept0406;               //
  std::uint8_t moire;                  // 0x0407
  std::uint8_t kept0407;               //
  std::uint16_t moireMaxX;             //
  std::uint16_t moireMaxY;             //
  std::uint16_t kept0408[2];           // 0x0408  two bytes on the wire
  std::uint8_t kept0501[2];            // 0x0501
  std::uint8_t autoCrop;               // 0x0502
  std::uint8_t autoCropColor;          //
  std::uint16_t autoCropDpi[4];        //         maximum x, y, minimum x, y
  std::uint8_t kept0503Bytes[2];       // 0x0503
  std::uint16_t kept0503[4];           //
  std::uint8_t idCard;                 // 0x0504
  std::uint8_t landscape;              //
  std::uint16_t adfOnlyBackScan;       //
  std::uint8_t carrierSheet;           // 0x0505
  std::uint8_t carrierColor;           //
  std::uint16_t carrierOffsetTop;      //
  std::uint16_t carrierOffsetBottom;   //
  std::uint16_t carrierDpiMin[2];      //
  std::uint16_t carrierDpiMax[2];      //
  std::uint16_t carrierExclusion;      //
  std::uint8_t plasticCard;            // 0x0506
  std::uint8_t kept0506Byte;           //
  std::uint16_t kept0506[5];           //
  std::uint8_t multifeed;              // 0x0507
  std::uint8_t multifeedLevel;         //
  std::uint8_t backgroundRemove[6];    // 0x0508  0 black and white, 1 error diffusion, 2 grey, 4 24 bits
  std::uint8_t bleedThroughRemove[6];  // 0x0509  the same order
  std::uint8_t autoDocSize;            // 0x050A
  std::uint8_t autoDocSizeOption;      //
  std::uint8_t deskew;                 // 0x050B
  std::uint8_t deskewOption;           //
  std::uint8_t blankRemove;            // 0x050C
  std::uint8_t blankRemoveLevel;       //
  std::uint8_t autoColorLevel;         // 0x050D
  std::uint8_t autoColorRangeA;        //
  std::uint8_t autoColorRangeB;        //
  std::uint8_t kept050D;               //
  std::uint8_t detectResolution;       // 0x050E
  std::uint8_t kept050E;               //
  std::uint8_t quietScan;              // 0x050F
  std::uint8_t kept050F;               //
  std::uint16_t quietSecond[2];        //
  std::uint16_t quietFirst[2];         //
};
static_assert(sizeof(_QDICMDRESPONSE) == 438);

}  // namespace orvalle_scan_api
