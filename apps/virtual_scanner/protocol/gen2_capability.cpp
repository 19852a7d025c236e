#include "protocol/capability.h"

namespace vscan::gen2 {
namespace {

// Fields called "...Reserved" belong to a tag and are read by no host that we know of.
constexpr CapabilityField kFields[] = {
    // tag  key  bytes  places
    {0x0001, "protocolVersion", 2, 1},
    {0x0101, "deviceCategory", 2, 1},
    {kModelNameTag, "modelName", 0, 0},
    {0x0201, "pushScanEvent", 1, 1},
    {0x0201, "pushScanReserved", 1, 1},
    {0x0202, "continuousScan", 1, 1},
    {0x0202, "pushParamSetting", 1, 1},
    {0x0203, "deviceFunc", 2, 1},
    {0x0204, "qciCommand", 1, 1},
    {0x0204, "qciReserved", 1, 1},
    {0x0301, "colorType", 1, 1},
    {0x0301, "colorTypeReserved", 1, 1},
    {0x0302, "paperSource", 1, 1},
    {0x0302, "duplex", 1, 1},
    {0x0303, "adfStackCapacity", 2, 1},
    {0x0304, "opticalResolution", 2, 6},  // bed x, y; feeder one side x, y; feeder both sides x, y
    {0x0305, "scanSizeMax", 2, 6},        // the same order; tenths of a millimetre
    {0x0306, "longPaperSimplex", 2, 1},
    {0x0306, "longPaperDuplex", 2, 1},
    {0x0307, "scanSizeMin", 2, 6},
    {0x0308, "docSizeMax", 2, 6},
    {0x0309, "marginSize", 2, 16, true},    // left, right, top, bottom of bed, one side, both sides, card slot
    {0x030A, "marginAdjust", 2, 32, true},  // plus and minus for each of these
    {0x030B, "paperPosition", 1, 6},        // bed x, y; feeder x, y; card slot x, y
    {0x030C, "cardOrientFlatbed", 1, 1},
    {0x030C, "cardOrientAdf", 1, 1},
    {0x030D, "multiPageSystem", 1, 1},
    {0x030D, "multiPageReserved", 1, 1},
    {0x030E, "overScan", 1, 1},
    {0x030E, "overScanColor", 1, 1},
    {0x030E, "overScanExclusion", 2, 1},
    {0x030F, "cancelSystem", 1, 1},
    {0x030F, "cancelReserved", 1, 1},
    {0x0310, "errorSystem", 1, 3},
    {0x0310, "errorReserved", 1, 1},
    {0x0311, "colorTapeMode", 1, 1},
    {0x0311, "colorTapeValue", 1, 4},
    {0x0311, "colorTapeExtra", 1, 1},
    {0x0401, "compressType", 1, 5},  // text, error diffusion, grey, palette, colour
    {0x0401, "compressReserved", 1, 1},
    {0x0402, "jpegLevel", 1, 1},
    {0x0402, "jpegSampling", 1, 1},
    {0x0403, "monoThreshold", 1, 1},
    {0x0403, "monoThresholdMin", 1, 1},
    {0x0403, "monoThresholdMax", 1, 1},
    {0x0403, "thresholdReserved", 1, 1},
    {0x0404, "specialDocument", 2, 1},
    {0x0405, "colorProfile", 2, 1},
    {0x0406, "gammaRange", 1, 1},
    {0x0406, "gammaReserved", 1, 1},
    {0x0407, "moire", 1, 1},
    {0x0407, "moireReserved", 1, 1},
    {0x0407, "moireMaxX", 2, 1},
    {0x0407, "moireMaxY", 2, 1},
    {0x0408, "imageReserved", 1, 2},
    {0x0501, "advancedReserved", 1, 2},
    {0x0502, "autoCrop", 1, 1},
    {0x0502, "autoCropColor", 1, 1},
    {0x0502, "autoCropDpi", 2, 4},  // maximum x, y; minimum x, y
    {0x0503, "cropReserved", 1, 2},
    {0x0503, "cropReservedDpi", 2, 4},
    {0x0504, "idCard", 1, 1},
    {0x0504, "landscape", 1, 1},
    {0x0504, "adfOnlyBackScan", 2, 1},
    {0x0505, "carrierSheet", 1, 1},
    {0x0505, "carrierColor", 1, 1},
    {0x0505, "carrierOffset", 2, 2},  // top, bottom
    {0x0505, "carrierDpiMin", 2, 2},
    {0x0505, "carrierDpiMax", 2, 2},
    {0x0505, "carrierExclusion", 2, 1},
    {0x0506, "plasticCard", 1, 1},
    {0x0506, "plasticCardReserved", 1, 1},
    {0x0506, "plasticCardReservedWords", 2, 5},
    {0x0507, "multifeed", 1, 1},
    {0x0507, "multifeedLevel", 1, 1},
    {0x0508, "backgroundRemove", 1, 6},
    {0x0509, "bleedThroughRemove", 1, 6},
    {0x050A, "autoDocSize", 1, 1},
    {0x050A, "autoDocSizeOption", 1, 1},
    {0x050B, "deskew", 1, 1},
    {0x050B, "deskewOption", 1, 1},
    {0x050C, "blankRemove", 1, 1},
    {0x050C, "blankRemoveLevel", 1, 1},
    {0x050D, "autoColorLevel", 1, 1},
    {0x050D, "autoColorRangeA", 1, 1},
    {0x050D, "autoColorRangeB", 1, 1},
    {0x050D, "autoColorReserved", 1, 1},
    {0x050E, "detectResolution", 1, 1},
    {0x050E, "detectResolutionReserved", 1, 1},
    {0x050F, "quietScan", 1, 1},
    {0x050F, "quietReserved", 1, 1},
    {0x050F, "quietSecond", 2, 2},
    {0x050F, "quietFirst", 2, 2},
};

}  // namespace

std::span<const CapabilityField> capabilityFields() { return kFields; }

}  // namespace vscan::gen2
